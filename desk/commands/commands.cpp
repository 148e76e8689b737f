#include "desk/commands/commands.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "host/data/attachment.h"
#include "host/data/backup.h"
#include "host/data/validation.h"
#include "host/schema/check.h"
#include "host/schema/demo.h"
#include "host/schema/demo_files.h"
#include "host/schema/schema.h"
#include "host/services/audit.h"
#include "host/services/calendar.h"
#include "host/services/locks.h"
#include "host/services/parameters.h"
#include "host/services/users.h"
#include "toolkit/text.h"

namespace orv::commands {
namespace {

// A database of the present version, and the audit lines of whoever sits at the machine.
struct House {
  explicit House(const std::string& database, const std::string& company = "")
      : db(Attachment::Open(database)), audit(*db, Clock(), "", company) {
    RequireCurrentSchema(*db);
    if (company.empty()) return;
    for (const std::string& known : CompanySuffixes(*db)) {
      if (known == company) return;
    }
    throw UserError("A empresa " + company + " não existe.");
  }

  std::unique_ptr<Attachment> db;
  Audit audit;
};

// "dd/mm/yyyy" or "yyyy-mm-dd".
Date ReadDate(const std::string& text) {
  const Date date = text.find('-') != std::string::npos ? Date::ParseNeutral(text) : Date::ParseBrazil(text);
  if (date.Empty()) throw UserError("Falta a data.");
  return date;
}

// The first line of standard input. At a terminal it is asked for.
std::string ReadPassword() {
  if (isatty(STDIN_FILENO) != 0) std::cerr << "Senha: ";
  std::string password;
  std::getline(std::cin, password);
  return password;
}

void CheckAccount(House& house, const Lock& lock) {
  if (lock.cash) return;
  if (lock.account.empty()) throw UserError("Informe --account CONTA ou --cash.");
  const std::string found =
      "SELECT FIRST 1 CONTA FROM CADCONTA" + lock.company + " WHERE CONTA = " + Quote(lock.account);
  if (house.db->Scalar(found).IsNull()) throw UserError("A conta " + lock.account + " não existe.");
}

}  // namespace

void RunInit(const Init& options) {
  const Date date = options.date.empty() ? Clock().Today() : ReadDate(options.date);
  std::vector<std::string> suffixes;
  for (const std::string& suffix : Split(options.companies, ",")) suffixes.emplace_back(Trim(suffix));
  // A demonstration shows two companies beside each other, whoever names one.
  if (options.demo && suffixes.size() == 1) suffixes.push_back(suffixes[0] == "_002" ? "_001" : "_002");
  std::vector<Company> companies;
  for (const std::string& suffix : suffixes)
    companies.push_back({suffix, "Empresa " + suffix.substr(std::min<std::size_t>(1, suffix.size())), ""});
  auto db = Attachment::Create(options.database);
  try {
    if (options.demo) {
      MakeDemo(*db, {options.scale, date, static_cast<int>(suffixes.size()), suffixes});
    } else {
      CreateSchema(*db, companies);
    }
  } catch (...) {
    // A database that was only begun must not look like one.
    db.reset();
    std::error_code error;
    std::filesystem::remove(options.database, error);
    throw;
  }
  std::cout << "Banco criado em " << options.database << ".\n";
}

void WriteFiles(const DemoFiles& options) {
  House house(options.database, options.company);
  for (const DemoFile& file : WriteDemoFiles(*house.db, options.company, options.folder))
    std::cout << file.name << "\t" << file.acquirer << "\t" << file.kind << "\t"
              << (file.bank.empty() ? "sem banco" : "banco " + file.bank) << "\t" << file.lines << " linhas\t"
              << file.known << " conferem\t" << file.open << " a conciliar\n";
}

void UserAdd(const User& options) {
  House house(options.database);
  Users users(*house.db, house.audit);
  users.Add({options.name, options.name, options.admin, true}, ReadPassword());
  house.db->CommitRetaining();
  std::cout << "Usuário " << options.name << " criado.\n";
}

void UserPassword(const User& options) {
  House house(options.database);
  Users(*house.db, house.audit).SetPassword(options.name, ReadPassword());
  house.db->CommitRetaining();
  std::cout << "Senha trocada.\n";
}

void UserGrant(const User& options) {
  House house(options.database);
  Users(*house.db, house.audit).Grant(options.name, {options.screen_class, options.kinds});
  house.db->CommitRetaining();
  std::cout << "Direito dado.\n";
}

void UserRevoke(const User& options) {
  House house(options.database);
  if (!Users(*house.db, house.audit).Revoke(options.name, options.screen_class)) {
    throw UserError("O usuário não tem direitos em " + options.screen_class + ".");
  }
  house.db->CommitRetaining();
  std::cout << "Direito retirado.\n";
}

void UserList(const User& options) {
  House house(options.database);
  Users users(*house.db, house.audit);
  for (const orv::User& user : users.List()) {
    std::cout << user.login << "\t" << user.name << "\t" << (user.administrator ? "administrador" : "usuário")
              << "\t" << (user.active ? "ativo" : "inativo");
    for (const Right& right : users.Rights(user.login))
      std::cout << "\t" << right.screen_class << ":" << right.kinds;
    std::cout << "\n";
  }
}

void UserRemove(const User& options) {
  House house(options.database);
  Users(*house.db, house.audit).Remove(options.name);
  house.db->CommitRetaining();
  std::cout << "Usuário " << options.name << " removido.\n";
}

void ParamGet(const Param& options) {
  House house(options.database, options.company);
  std::cout << Parameters(*house.db, house.audit).Get(options.company, options.group, options.number) << "\n";
}

void ParamSet(const Param& options) {
  House house(options.database, options.company);
  Parameters(*house.db, house.audit).Set({options.company, options.group, options.number, options.value});
  house.db->CommitRetaining();
}

void ParamList(const Param& options) {
  House house(options.database, options.company);
  for (const Parameter& parameter : Parameters(*house.db, house.audit).List()) {
    if (!options.company.empty() && parameter.company != options.company) continue;
    std::cout << (parameter.company.empty() ? "todas" : parameter.company) << "\t" << parameter.group << "\t"
              << parameter.number << "\t" << parameter.value << "\n";
  }
}

void LockSet(const Lock& options) {
  House house(options.database, options.company);
  CheckAccount(house, options);
  PeriodLocks(*house.db, house.audit)
      .Set({options.company, options.cash ? "CX" : "CT", options.account, ReadDate(options.until)});
  house.db->CommitRetaining();
}

void LockClear(const Lock& options) {
  House house(options.database, options.company);
  CheckAccount(house, options);
  if (!PeriodLocks(*house.db, house.audit)
           .Clear(options.company, options.cash ? "CX" : "CT", options.account)) {
    throw UserError("Não há período fechado.");
  }
  house.db->CommitRetaining();
}

void LockList(const Lock& options) {
  House house(options.database, options.company);
  for (const PeriodLock& lock : PeriodLocks(*house.db, house.audit).List(options.company)) {
    std::cout << lock.company << "\t" << (lock.kind == "CX" ? "caixa" : "conta " + lock.account) << "\taté "
              << lock.until.Brazil() << "\n";
  }
}

void HolidayAdd(const std::string& database, const std::string& date, const std::string& name,
                const std::string& company) {
  House house(database, company);
  Calendar(*house.db).Add({ReadDate(date), company, name});
  house.audit.Write("FERIADO", "FERIADO " + ReadDate(date).Brazil() + " " + name, TOperacaoLog::Inclusao,
                    ReadDate(date).Brazil());
  house.db->CommitRetaining();
}

void CompanyAdd(const std::string& database, const std::string& suffix, const std::string& name) {
  House house(database);
  AddCompany(*house.db, {suffix, name, ""});
  std::cout << "Empresa " << suffix << " criada.\n";
}

std::size_t Check(const std::string& database) {
  House house(database);
  Validation structure = Validate(database);
  std::vector<std::string> found = std::move(structure.damage);
  if (found.empty()) {
    found = CheckData(*house.db);
    found.insert(found.end(), structure.unexamined.begin(), structure.unexamined.end());
  } else {
    // Reading what is damaged can end the engine.
    found.emplace_back(
        "Os dados não foram conferidos. Pare de usar o banco, guarde uma cópia e recupere o último backup.");
  }
  for (const std::string& line : found) std::cout << line << "\n";
  if (found.empty()) std::cout << "Nenhuma contradição.\n";
  return found.size();
}

void Upgrade(const std::string& database) {
  const auto db = Attachment::Open(database);
  const int before = SchemaVersion(*db);
  UpgradeSchema(*db);
  const int after = SchemaVersion(*db);
  std::cout << (before == after ? "O banco já está na versão " : "O banco está agora na versão ") << after
            << ".\n";
}

void RunBackup(const std::string& database, const std::string& file) {
  Backup(database, file);
  std::cout << "Cópia gravada em " << file << ".\n";
}

void RunRestore(const std::string& database, const std::string& file) {
  Restore(file, database);
  std::cout << "Banco criado em " << database << ".\n";
}

void AuditTail(const std::string& database, int count) {
  House house(database);
  auto rows = house.db->Rows(
      "SELECT FIRST " + std::to_string(count) +
      " MOMENTO, LOGIN, EMP_PAT, AREA, TEXTO, OPERACAO, CHAVE FROM AUDITORIA ORDER BY ID DESC");
  for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
    std::vector<std::string> texts;
    for (const Value& value : *row) texts.push_back(value.AsString());
    std::cout << Join(texts, "\t") << "\n";
  }
}

}  // namespace orv::commands
