// One company's life as the demo makes it: masters first, then day by day what happens, so that numbers grow
// with time as they do in a real house.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/schema/demo_acquirers.h"
#include "host/schema/demo_random.h"
#include "host/schema/demo_rows.h"
#include "host/schema/schema.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv::demo {

struct Account {
  std::string conta, banco, agencia, descricao, ledger;
  char tipo;
  Currency balance;  // settled so far
  int next_cheque = 1;
};

struct Person {
  std::string code, name, cnpj;
};

// What the bank, or nobody yet, has said to a movement.
enum class Clearing { Pending, Settled, Outside, Statement, Compensated };

struct Movement {
  std::string lancamento, docto;
  Account* account = nullptr;
  Date dt_lan, dt_cont, dt_vencto;
  Currency valor;
  char operacao = '+';
  std::string_view grupo, historico;
  std::string observacao;
  std::string_view tipo = "L", tipo_doc = "";
  char pendente = 'N';
  std::string lanc_con;
};

// A share of a class's amount: what goes to the account, and of that what goes to the cost centre.
struct SplitRule {
  const char *classe, *ledger;
  double share;
  const char* centre;
  double centre_share;
};
const std::vector<SplitRule>& SplitRules();

// A title's settlement that waits for its day.
struct Due {
  std::string number, entity;
  std::string_view classe;
  Currency valor, paid, juros, desconto, dev, fee;
  std::string operation;  // the acquirer's id of an order paid on line
  bool cheque = false;
};

struct Cheque {
  std::string chave, banco, agencia, conta, numero;
  Currency valor;
  Date emissao, vencimento, baixa;
  char tipo = 'R', status = 'P';
  std::string emissor, cnpj, cliente, fornecedor, representante, duplicata, lote, barra, obs;
};

struct Receivable {
  std::string number, customer, agent;
  double commission = 0;
  Date issued, due;
  Currency valor, paid, dev, juros, desconto;
  std::string_view classe, bank = "", status = "N", situation = "0", history = "002";
  std::string bordereau;
  Cheque cheque;  // where the title is one
  std::string invoice, order, coupon, text;
};

struct Bill {
  std::string number, supplier, docto, dupli;
  Date issued, due;
  std::string_view classe, status = "N", history = "003";
  Currency valor, paid;
  std::string text, batch;
};

class Company {
 public:
  Company(Attachment& db, const orv::Company& company, int index, int units, Date today);
  void Make();

 private:
  // Masters (demo_masters.cpp, demo_layouts.cpp).
  void Banks();
  void Accounts();
  void Histories();
  void Classes();
  void Chart();
  void Rules();
  void People();
  void Codes();
  void Rates();
  void Terms();
  void StatementFiles();
  void Parameters();
  void Layouts();

  // Ledger (demo_ledger.cpp).
  void OpeningBalances();
  void HandMovements(int count);
  void Transfers(int count);
  Clearing Decide(const Account& account, Date due);
  Clearing DecideCheque(Date due);
  void Post(Movement movement, Clearing clearing);
  void Put(const Movement& movement);
  void StatementLine(const Movement& movement, Date day, Currency valor, const std::string& lanc_con);
  void Split(const Movement& movement);
  void Entry(const std::string& number, const Movement& movement, std::string_view docto2,
             std::string_view credit, std::string_view debit, std::string_view origin, Currency valor,
             Date day, std::string_view codigo, std::string_view text);
  void LooseStatementLines();

  // Titles and cheques (demo_titles.cpp, demo_cheques.cpp).
  void Invoices(int count);
  void Bills(int count);
  void Receive(std::vector<Due>& due);
  void Pay(std::vector<Due>& due);
  void PayByCheque(std::vector<Due> due);
  void Settle(const Due& due, const std::string& lancamento, std::string_view docto);
  void SettleBill(const Due& due, const std::string& lancamento, std::string_view docto,
                  std::string_view history);
  void AdvancesAndBudgets();
  void ReceivedCheques(int count);
  void ChequeBatch(int count);
  void TitleHeldAsCheque(const std::string& number, const Person& customer, Currency valor, Date day);
  void CancelledCheque();
  void Link(const Cheque& cheque, std::string_view title, std::string_view chave, Currency valor);
  void Write(const Cheque& cheque);
  void Write(const Receivable& title);
  void Write(const Bill& bill);

  // Trade (demo_trade.cpp).
  Acquirer SaleAcquirer(int parts, bool recent);
  Acquirer OrderAcquirer(int parts, bool open);
  void CardSales(int count);
  void OnlineOrders(int count);
  void PendingOrders();
  void Purchases();
  void OutsideWork();
  void Bordereaux();

  // Counting and picking.
  std::string Number();  // of a movement
  std::string DocNumber();
  int Share(int64_t base)
      const;  // of what a full year-pair of the first company at scale 1 sees, the part of today
  Account& AnyAccount();
  Account& PayingAccount(Currency valor);
  Account& RichestAccount();
  const Person& Customer();
  const Person& Supplier();
  void Sequences();
  Date WorkingDay(Date day) const;
  std::size_t DayIndex(Date day) const;
  void CloseBooks();

  Attachment& db_;
  orv::Company company_;
  int index_, units_;
  Date today_, first_, day_;
  Random random_;
  Rows rows_;

  std::vector<Account> accounts_;
  std::vector<Person> customers_, suppliers_, agents_;
  std::vector<std::vector<Due>> receivable_, payable_;  // by day
  int working_days_ = 0, working_day_ = 0;

  int64_t movement_ = 0, document_ = 0, line_ = 0, bill_ = 0, tie_ = 0;
  // Orders and invoices number their titles in the same way: the orders' numbers stand apart.
  int64_t invoice_ = 0, order_ = 500000, sale_ = 0, card_item_ = 0, purchase_ = 0, held_ = 0, work_ = 0;
  // What the acquirers have so far: of sales long ago and of late, of orders that are paid and that are open.
  std::array<std::array<int, 4>, 2> acquirer_sales_{};
  std::array<std::array<int, 3>, 2> acquirer_orders_{};
};

}  // namespace orv::demo
