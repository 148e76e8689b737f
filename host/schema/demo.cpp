#include "host/schema/demo.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "host/data/attachment.h"
#include "host/schema/balances.h"
#include "host/schema/ddl.h"
#include "host/schema/demo_company.h"
#include "host/schema/schema.h"
#include "host/schema/tables.h"
#include "toolkit/error.h"

namespace orv {

namespace demo {

// The unit of size: the first company has five of them at scale 1, the others one.
constexpr int kWholeUnits = 5;

namespace {

constexpr int kDays = 730;

bool Weekend(Date day) { return day.WeekDay() == 0 || day.WeekDay() == 6; }

}  // namespace

std::string Padded(int64_t number, int width) {
  std::string text = std::to_string(number);
  if (static_cast<int>(text.size()) < width)
    text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
  return text;
}

Company::Company(Attachment& db, const orv::Company& company, int index, int units, Date today)
    : db_(db),
      company_(company),
      index_(index),
      units_(units),
      today_(today),
      first_(today.AddDays(-kDays)),
      day_(first_),
      random_(0x5EED0000u + static_cast<unsigned>(index)),
      rows_(db, company.emp_pat),
      receivable_(kDays + 1),
      payable_(kDays + 1) {}

void Company::Make() {
  Banks();
  Accounts();
  Histories();
  Classes();
  Chart();
  Rules();
  People();
  Codes();
  Rates();
  Terms();
  Layouts();
  Bordereaux();

  for (Date day = first_; day <= today_; day = day.AddDays(1)) working_days_ += Weekend(day) ? 0 : 1;
  OpeningBalances();
  for (Date day = first_; day <= today_; day = day.AddDays(1)) {
    if (Weekend(day)) continue;
    day_ = day;
    Invoices(Share(150));
    Bills(Share(133));
    CardSales(Share(100));
    OnlineOrders(Share(50));
    Receive(receivable_[DayIndex(day)]);
    Pay(payable_[DayIndex(day)]);
    Transfers(Share(200));
    ReceivedCheques(Share(120));
    ChequeBatch(Share(150));
    HandMovements(Share(2690));
    for (int i = Share(6); i > 0; --i) CancelledCheque();
    ++working_day_;
  }
  AdvancesAndBudgets();
  LooseStatementLines();
  PendingOrders();
  Purchases();
  OutsideWork();
  CloseBooks();
  rows_.Close();
  StatementFiles();
  Parameters();
  Sequences();
}

// Each came to its end.
void Company::StatementFiles() {
  const std::string& pat = company_.emp_pat;
  db_.Execute("INSERT INTO ARQUIVO_EXTRATO" + pat +
              " (ARQUIVO, CONTA, LINHAS, PARADA) SELECT ARQUIVO, CONTA, COUNT(*), 0 FROM EXTRATO" + pat +
              " GROUP BY ARQUIVO, CONTA");
}

void Company::Parameters() {
  // The entity that stands for the company itself.
  db_.Execute("INSERT INTO PARAMETRO (EMP_PAT, GRUPO, NUMERO, VALOR) VALUES ('" + company_.emp_pat +
              "', 'FAC', 80, '00001')");
}

void Company::Sequences() {
  const auto set = [&](const char* table, const char* column, int64_t last) {
    db_.Execute("SET GENERATOR " + SequenceName(table, column, company_.emp_pat) + " TO " +
                std::to_string(last));
  };
  set("CONTACOR", "LANCAMENTO", movement_);
  set("CONTACOR", "DOCTO", document_);
  set("EXTRATO", "LANCTO", line_);
  set("PAGTO", "NUM_AP", bill_);
}

std::string Company::Number() { return Padded(++movement_, 6); }

std::string Company::DocNumber() { return Padded(++document_, 8); }

int Company::Share(int64_t base) const {
  const int64_t total = base * units_ / kWholeUnits;
  return static_cast<int>(total * (working_day_ + 1) / working_days_ - total * working_day_ / working_days_);
}

Account& Company::AnyAccount() {
  return random_.Chance(8) ? accounts_.back() : accounts_[static_cast<std::size_t>(random_.Between(0, 3))];
}

Account& Company::RichestAccount() {
  return *std::max_element(accounts_.begin(), accounts_.end(),
                           [](const Account& a, const Account& b) { return a.balance < b.balance; });
}

Account& Company::PayingAccount(Currency valor) {
  Account& account = AnyAccount();
  return account.balance < valor ? RichestAccount() : account;
}

const Person& Company::Customer() { return random_.Pick(customers_); }

const Person& Company::Supplier() { return random_.Pick(suppliers_); }

Date Company::WorkingDay(Date day) const {
  while (Weekend(day)) day = day.AddDays(1);
  return day;
}

std::size_t Company::DayIndex(Date day) const { return static_cast<std::size_t>(day - first_); }

}  // namespace demo

namespace {

const std::array<std::array<const char*, 2>, 9> kCompanies = {{
    {"Malharia Serra Azul Ltda", "Vila das Malhas"},
    {"Confecções Vale Verde Ltda", "Porto Sereno"},
    {"Tecelagem Rio Manso Ltda", "Campo Alto"},
    {"Comercial Lua Nova Ltda", "Vila das Malhas"},
    {"Estamparia Girassol Ltda", "Porto Sereno"},
    {"Fiação Monte Claro Ltda", "Campo Alto"},
    {"Loja Bela Vista Ltda", "Vila das Malhas"},
    {"Lavanderia Quatro Ventos Ltda", "Porto Sereno"},
    {"Transportes Horizonte Ltda", "Campo Alto"},
}};

// An index that stands while a table fills costs many times what making it afterwards does, and so do sums.
void SetIndexesAndSums(Attachment& db, const std::string& emp_pat, const char* state) {
  std::vector<std::string> ddl;
  for (const TableDef& table : CompanyTables())
    for (std::size_t i = 0; i < table.indexes.size(); ++i)
      ddl.push_back("ALTER INDEX " + IndexName(table, emp_pat, i) + " " + state);
  for (const KeptSums& kept : AllKeptSums())
    ddl.push_back("ALTER TRIGGER " + SumTriggerName(kept, emp_pat) + " " + state);
  RunDdl(db, ddl);
  db.CommitRetaining();
}

// The keys' indexes were made over empty tables: without this the engine would think them useless.
void MeasureKeys(Attachment& db, const std::string& emp_pat) {
  std::vector<std::string> ddl;
  for (const TableDef& table : CompanyTables())
    if (!table.key.empty()) ddl.push_back("SET STATISTICS INDEX PK_" + table.name + emp_pat);
  RunDdl(db, ddl);
  db.CommitRetaining();
}

}  // namespace

void MakeDemo(Attachment& db, const DemoOptions& options) {
  if (options.scale < 1 || options.scale > 1000) throw UserError("A escala da demonstração vai de 1 a 1000.");
  if (options.companies < 1 || options.companies > static_cast<int>(kCompanies.size()))
    throw UserError("A demonstração tem de 1 a 9 empresas.");
  if (options.date.Empty() || options.date.Year() < 1990 || options.date.Year() > 2190)
    throw UserError("A data da demonstração deve estar entre 1990 e 2190.");

  ORV_ASSERT(options.suffixes.empty() || static_cast<int>(options.suffixes.size()) == options.companies);
  std::vector<Company> companies;
  for (int i = 0; i < options.companies; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const auto& [name, city] = kCompanies[at];
    companies.push_back(
        {options.suffixes.empty() ? "_" + demo::Padded(i + 1, 3) : options.suffixes[at], name, city});
  }
  CreateSchema(db, companies);
  for (int i = 0; i < options.companies; ++i) {
    const Company& company = companies[static_cast<std::size_t>(i)];
    SetIndexesAndSums(db, company.emp_pat, "INACTIVE");
    demo::Company(db, company, i, options.scale * (i == 0 ? demo::kWholeUnits : 1), options.date).Make();
    db.CommitRetaining();
    SetIndexesAndSums(db, company.emp_pat, "ACTIVE");
    MeasureKeys(db, company.emp_pat);
  }
  MendSums(db);
}

}  // namespace orv
