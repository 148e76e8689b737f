// Receivables and payables with their settlements. A title is written once, with the totals that its
// settlements will have reached by today; the settlements' movements come on their days.
#include <utility>

#include "host/schema/demo_company.h"
#include "toolkit/text.h"

namespace orv::demo {

namespace {

// The months of the demo number the bordereaux.
std::string BordereauOf(Date first, Date day) {
  return std::to_string((day.Year() - first.Year()) * 12 + day.Month() - first.Month() + 1);
}

}  // namespace

void Company::Write(const Receivable& t) {
  rows_.Add("RECEBER", {{"NUMERO", t.number},
                        {"CODCLI", t.customer},
                        {"CODREP", t.agent},
                        {"COM1", t.commission},
                        {"DT_EMISSAO", t.issued},
                        {"DT_VENCTO", t.due},
                        {"DT_PREVISAO", t.due},
                        {"VALOR", t.valor},
                        {"VALOR2", t.valor},
                        {"VALOR_PAGO", t.paid},
                        {"VAL_DEV", t.dev},
                        {"JUROS", t.juros},
                        {"DESCONTO", t.desconto},
                        {"CLASSE", t.classe},
                        {"BANCO", t.bank},
                        {"BORDERO", t.bordereau},
                        {"STATUS", t.status},
                        {"SITUACAO", t.situation},
                        {"NUMERO_CH", t.cheque.numero},
                        {"CONTA_CH", t.cheque.conta},
                        {"AGENCIA_CH", t.cheque.agencia},
                        {"BANCO_CH", t.cheque.banco},
                        {"EMISSOR_CH", t.cheque.emissor},
                        {"FATURA", t.invoice},
                        {"PEDIDO", t.order},
                        {"NRO_CUPOM", t.coupon},
                        {"HISTORICO", t.history},
                        {"OBS", t.text}});
}

void Company::Write(const Bill& b) {
  rows_.Add("PAGTO", {{"NUM_AP", b.number},    {"CODCRE", b.supplier},
                      {"DOCTO", b.docto},      {"DUPLI", b.dupli},
                      {"DT_EMI", b.issued},    {"DT_VEN", b.due},
                      {"DT_ATUAL", b.issued},  {"DT_DIGITA", b.issued},
                      {"DATA_ORIG", b.due},    {"NUM_OS", b.classe},
                      {"BANCO", "902"},        {"NRBANCO", "902"},
                      {"VALOR", b.valor},      {"VAL_NOTA", b.valor},
                      {"VALOR_ORIG", b.valor}, {"VAL_PAG", b.paid},
                      {"STATUS", b.status},    {"BLOQUEIO", "N"},
                      {"SITUACAO", "0"},       {"HISTORICO", b.history},
                      {"OBS", b.text},         {"LOTE", b.batch.empty() ? Value() : Value(b.batch)}});
}

void Company::Invoices(int count) {
  static const char* const others[] = {"5201", "5102", "5901"};
  for (int i = 0; i < count; ++i) {
    const std::string invoice = Padded(++invoice_, 6);
    const Person& customer = Customer();
    const bool titles = !random_.Chance(5);
    rows_.Add("NOTA", {{"FATURA", invoice},
                       {"DT_EMISSAO", day_},
                       {"NATUREZA", titles ? "5101" : random_.Pick(others)},
                       {"IMPRESSO", random_.Chance(97) ? "S" : "N"}});
    for (int k = random_.Between(1, 3); k > 0; --k)
      rows_.Add("NOTAITEN", {{"FATURA", invoice},
                             {"CUSTO", random_.Between(800, 4500) / 100.0},
                             {"QTDE", static_cast<double>(random_.Between(5, 60))}});
    if (!titles) continue;

    Receivable title;
    title.customer = customer.code;
    title.agent = random_.Pick(agents_).code;
    title.commission = 3;
    title.issued = day_;
    title.classe = random_.Chance(60) ? "1101" : "1102";
    title.invoice = invoice;
    title.text = "NOTA " + invoice;
    const int parts = random_.Between(1, 3);
    for (int part = 1; part <= parts; ++part) {
      Receivable t = title;
      t.number = invoice + "/" + std::to_string(part);
      t.valor = random_.Amount(250, 6000);
      t.due = day_.AddDays(30 * part);
      const Date paid_on = WorkingDay(t.due.AddDays(random_.Chance(70) ? 0 : random_.Between(1, 25)));
      // Of a hundred: three never pay, four pay half, four pay with a third party's cheque.
      const int fate = random_.Between(1, 100);
      const bool settled = paid_on <= today_ && fate > 3;
      if (settled) {
        if (paid_on - t.due > 3) t.juros = (t.valor * 0.01).Round2();
        if (random_.Chance(4)) t.desconto = (t.valor * 0.02).Round2();
        if (random_.Chance(2)) t.dev = (t.valor * 0.1).Round2();
        const Currency whole = t.valor + t.juros - t.desconto - t.dev;
        t.paid = fate <= 7 ? (whole * 0.5).Round2() : whole;
      }
      const bool discounted = random_.Chance(10);
      if (!settled && t.due < today_.AddDays(-120))
        t.situation = "P";
      else if (discounted)
        t.situation = "2", t.bank = "902", t.bordereau = BordereauOf(first_, day_);
      else if (random_.Chance(50))
        t.situation = "1", t.bank = "902";
      if (random_.Chance(1)) t.status = "DV";
      Write(t);
      if (!settled) continue;
      Due due;
      due.number = t.number;
      due.entity = t.customer;
      due.classe = t.classe;
      due.valor = t.valor;
      due.paid = t.paid;
      due.juros = t.juros;
      due.desconto = t.desconto;
      due.dev = t.dev;
      due.cheque = fate > 96;
      if (due.cheque) TitleHeldAsCheque(t.number, customer, t.paid, paid_on);
      receivable_[DayIndex(paid_on)].push_back(std::move(due));
    }
  }
}

void Company::Receive(std::vector<Due>& due) {
  for (std::size_t i = 0; i < due.size();) {
    // A title that a cheque pays has no movement of its own: the cheque will.
    if (due[i].cheque) {
      Settle(due[i++], "", "");
      continue;
    }
    // The bank credits up to three titles at a time; an order paid on line comes alone.
    std::size_t end = i + 1;
    if (due[i].operation.empty())
      while (end < due.size() && end - i < 3 && due[end].operation.empty() && !due[end].cheque) ++end;
    Movement m;
    m.lancamento = Number();
    m.docto = DocNumber();
    m.account = &AnyAccount();
    m.dt_lan = m.dt_cont = m.dt_vencto = day_;
    m.grupo = due[i].classe;
    m.historico = "002";
    m.tipo = "R";
    m.tipo_doc = "DP";
    m.observacao = due[i].operation.empty() ? "RECEBIMENTO DE " + std::to_string(end - i) + " TITULO(S)"
                                            : std::string("Conciliação de cartões");
    for (; i < end; ++i) {
      m.valor += due[i].paid;
      Settle(due[i], m.lancamento, due[i].operation.empty() ? m.docto : due[i].operation);
    }
    const Clearing clearing = Decide(*m.account, day_);
    Post(std::move(m), clearing);
  }
  due.clear();
  due.shrink_to_fit();
}

void Company::Settle(const Due& due, const std::string& lancamento, std::string_view docto) {
  const auto row = [&](Currency paid, Currency discount, Currency fee, Currency interest, Currency returned,
                       std::string_view commission) {
    rows_.Add("RECEBERB", {{"NUMERO", due.number},
                           {"LANCAMENTO", lancamento},
                           {"VALOR2", due.valor},
                           {"DT_PAGTO", day_},
                           {"DT_CONT", day_},
                           {"HISTORICO", "002"},
                           {"VALOR_PAGO", paid},
                           {"JUROS", interest},
                           {"VAL_DEV", returned},
                           {"QT_DEV", returned > Currency() ? 1.0 : 0.0},
                           {"DESCONTO", discount},
                           {"DESCONTO2", fee},
                           {"DESCONTO3", Currency()},
                           {"DOCTO", docto},
                           {"OBS", ""},
                           {"COMISSAO", commission},
                           {"PORTADOR", ""}});
  };
  row(due.paid, due.desconto, Currency(), due.juros, due.dev, "S");
  if (!due.operation.empty()) row(Currency(), Currency(), due.fee, Currency(), Currency(), "N");
}

void Company::Bills(int count) {
  static const char* const classes[] = {"2101", "2101", "2102", "2103", "3104", "3302", "5101"};
  for (int i = 0; i < count; ++i) {
    const Person& supplier = Supplier();
    const int parts = random_.Between(1, 2);
    Bill bill;
    bill.supplier = supplier.code;
    bill.docto = Padded(random_.Between(1, 999999), 6);
    bill.issued = day_;
    bill.classe = random_.Pick(classes);
    bill.text = "NOTA " + bill.docto + " DE " + std::string(CutChars(supplier.name, 40));
    const bool by_cheque = random_.Chance(45);
    for (int part = 1; part <= parts; ++part) {
      Bill b = bill;
      b.number = Padded(++bill_, 6);
      b.dupli = b.docto + "/" + std::to_string(part);
      b.valor = random_.Amount(150, 4500);
      b.due = day_.AddDays(28 * part);
      const Date paid_on = WorkingDay(b.due.AddDays(random_.Chance(85) ? 0 : random_.Between(1, 12)));
      const bool settled = paid_on <= today_ && !random_.Chance(3);
      if (settled) b.paid = random_.Chance(3) ? (b.valor * 0.5).Round2() : b.valor;
      if (!settled && random_.Chance(30)) b.batch = BordereauOf(first_, day_);
      Write(b);
      if (!settled) continue;
      Due due;
      due.number = b.number;
      due.entity = b.supplier;
      due.classe = b.classe;
      due.valor = b.valor;
      due.paid = b.paid;
      due.cheque = by_cheque;
      payable_[DayIndex(paid_on)].push_back(std::move(due));
    }
  }
}

void Company::Pay(std::vector<Due>& due) {
  std::vector<Due> by_cheque;
  for (std::size_t i = 0; i < due.size(); ++i) {
    if (due[i].cheque) {
      by_cheque.push_back(std::move(due[i]));
      if (by_cheque.size() == 2) PayByCheque(std::exchange(by_cheque, {}));
      continue;
    }
    Movement m;
    m.valor = due[i].paid;
    m.account = &PayingAccount(m.valor);
    m.lancamento = Number();
    m.docto = due[i].number;
    m.dt_lan = m.dt_cont = m.dt_vencto = day_;
    m.operacao = '-';
    m.grupo = due[i].classe;
    m.historico = "003";
    m.tipo = "P";
    m.tipo_doc = "DP";
    m.observacao = "PAGAMENTO DO TITULO " + due[i].number;
    SettleBill(due[i], m.lancamento, m.docto, m.historico);
    const Clearing clearing = Decide(*m.account, day_);
    Post(std::move(m), clearing);
  }
  if (!by_cheque.empty()) PayByCheque(std::move(by_cheque));
  due.clear();
  due.shrink_to_fit();
}

void Company::SettleBill(const Due& due, const std::string& lancamento, std::string_view docto,
                         std::string_view history) {
  rows_.Add("PAGTO1", {{"NUM_AP", due.number},
                       {"LANCAMENTO", lancamento},
                       {"DOCTO", docto},
                       {"DT_LAN", day_},
                       {"CLASSE", due.classe},
                       {"HISTORICO", history},
                       {"VAL_PAG", due.paid},
                       {"OBS", ""}});
}

// What has no settlement yet: advances, and the budgets of the months to come.
void Company::AdvancesAndBudgets() {
  day_ = WorkingDay(today_.AddDays(-6));
  for (int i = 0; i < 4; ++i) {
    const Person &supplier = Supplier(), &customer = Customer();
    Bill bill;
    bill.number = Padded(++bill_, 6);
    bill.supplier = supplier.code;
    bill.docto = bill.dupli = bill.number;
    bill.issued = bill.due = day_;
    bill.classe = "2101";
    bill.status = "A";
    bill.history = "016";
    bill.valor = random_.Amount(500, 4000);
    bill.text = "ADIANTAMENTO";
    Write(bill);
    Movement m;
    m.valor = bill.valor;
    m.account = &PayingAccount(m.valor);
    m.lancamento = Number();
    m.docto = bill.number;
    m.dt_lan = m.dt_cont = m.dt_vencto = day_;
    m.operacao = '-';
    m.grupo = "2101";
    m.historico = "016";
    m.tipo = "P";
    m.tipo_doc = "DP";
    m.observacao = "ADIANTAMENTO A FORNECEDOR";
    Post(std::move(m), Clearing::Settled);

    Receivable advance;
    advance.number = "AD" + Padded(i + 1, 4);
    advance.customer = customer.code;
    advance.agent = agents_[0].code;
    advance.issued = advance.due = day_;
    advance.valor = random_.Amount(300, 2500);
    advance.classe = "1203";
    advance.status = "A";
    advance.history = "017";
    advance.text = "ADIANTAMENTO DE CLIENTE";
    Write(advance);
  }
  static const char* const income[] = {"1101", "1102", "1201"};
  static const char* const spending[] = {"2101", "3101", "3102", "3103", "3301"};
  int number = 0;
  for (int month = 0; month < 6; ++month) {
    const Date due = today_.FirstOfMonth().AddMonths(month).AddDays(19);
    for (const char* classe : income) {
      Receivable t;
      t.number = "OR" + Padded(++number, 4);
      t.customer = customers_[0].code;
      t.agent = agents_[0].code;
      t.issued = due;
      t.due = due;
      t.valor = Currency(random_.Between(4, 40) * 1000);
      t.classe = classe;
      t.status = "O";
      t.text = "ORCAMENTO";
      Write(t);
    }
    for (const char* classe : spending) {
      Bill b;
      b.number = Padded(++bill_, 6);
      b.supplier = suppliers_[0].code;
      b.docto = "ORCAMENTO";
      b.dupli = b.number;
      b.issued = b.due = due;
      b.classe = classe;
      b.status = "O";
      b.valor = Currency(random_.Between(2, 20) * 1000);
      b.text = "ORCAMENTO";
      Write(b);
    }
  }
}

}  // namespace orv::demo
