// Cheques received and issued, in every state of their life.
#include <utility>

#include "host/schema/demo_company.h"
#include "toolkit/text.h"

namespace orv::demo {

void Company::Write(const Cheque& c) {
  rows_.Add("CHEQUE_PRE", {{"CHAVE", c.chave},
                           {"BANCO", c.banco},
                           {"AGENCIA", c.agencia},
                           {"CONTA", c.conta},
                           {"NUMERO", c.numero},
                           {"VALOR", c.valor},
                           {"EMISSAO", c.emissao},
                           {"VENCIMENTO", c.vencimento},
                           {"DT_BAIXA", c.baixa},
                           {"TIPO", std::string_view(&c.tipo, 1)},
                           {"STATUS", std::string_view(&c.status, 1)},
                           {"EMISSOR", CutChars(c.emissor, 50)},
                           {"CNPJ_EMI", c.cnpj},
                           {"CLIENTE", c.cliente},
                           {"FORNECEDOR", c.fornecedor},
                           {"REPRESENTANTE", c.representante},
                           {"DUPLICATA", c.duplicata},
                           {"LOTE", c.lote},
                           {"BARRA", c.barra},
                           {"OBS", CutChars(c.obs, 50)}});
}

void Company::Link(const Cheque& c, std::string_view title, std::string_view chave, Currency valor) {
  rows_.Add("CHEQUE_DUP", {{"BANCO", c.banco},
                           {"CONTA", c.conta},
                           {"NUMERO", c.numero},
                           {"DUPLI", title},
                           {"CHAVE", chave},
                           {"JUROS", Currency()},
                           {"VALOR", valor}});
}

void Company::PayByCheque(std::vector<Due> due) {
  Movement m;
  for (const Due& d : due) m.valor += d.paid;
  m.account = &PayingAccount(m.valor);
  while (m.account->tipo == 'X') m.account = &AnyAccount();
  m.lancamento = Number();
  m.docto = Padded(m.account->next_cheque++, 6);
  m.dt_lan = day_;
  m.dt_cont = m.dt_vencto = random_.Chance(30) ? WorkingDay(day_.AddDays(random_.Between(10, 30))) : day_;
  m.operacao = '-';
  m.grupo = due[0].classe;
  m.historico = "004";
  m.tipo = "P";
  m.tipo_doc = "CH";
  std::string name;
  for (const Person& p : suppliers_)
    if (p.code == due[0].entity) name = p.name;
  m.observacao = "PAGTO DE CHEQUE A " + name;

  Cheque c;
  c.chave = m.lancamento;
  c.banco = m.account->banco;
  c.agencia = m.account->agencia;
  c.conta = m.account->conta;
  c.numero = m.docto;
  c.valor = m.valor;
  c.emissao = day_;
  c.vencimento = m.dt_vencto;
  c.tipo = 'P';
  c.emissor = Upper(company_.name);
  c.cliente = "00001";
  c.fornecedor = due[0].entity;
  c.duplicata = due.back().number;
  c.obs = m.observacao;
  for (const Due& d : due) {
    Entry(m.lancamento, m, d.number, m.account->conta, d.entity, "PP", d.paid, day_, "000", m.observacao);
    SettleBill(d, m.lancamento, m.docto, "004");
    Link(c, d.number, m.lancamento, d.paid);
  }
  const Clearing clearing = DecideCheque(m.dt_vencto);
  if (clearing != Clearing::Pending) c.status = 'B', c.baixa = m.dt_cont;
  Write(c);
  Post(std::move(m), clearing);
}

void Company::ReceivedCheques(int count) {
  for (int i = 0; i < count; ++i) {
    const Person& customer = Customer();
    Movement m;
    m.valor = random_.Amount(100, 3500);
    m.account = &accounts_[static_cast<std::size_t>(random_.Between(0, 2))];
    m.lancamento = Number();
    m.docto = Padded(random_.Between(1, 999999), 6);
    m.dt_lan = day_;
    m.dt_cont = m.dt_vencto = WorkingDay(day_.AddDays(random_.Between(5, 60)));
    m.grupo = "1101";
    m.historico = "005";
    m.observacao = "CHEQUE DE " + customer.name;

    Cheque c;
    c.chave = m.lancamento;
    c.banco = Padded(random_.Between(901, 904), 3);
    c.agencia = Padded(random_.Between(1, 3999), 4);
    c.conta = Padded(random_.Between(1, 999999), 6);
    c.numero = m.docto;
    c.valor = m.valor;
    c.emissao = day_;
    c.vencimento = m.dt_vencto;
    c.emissor = customer.name;
    c.cnpj = customer.cnpj;
    c.cliente = customer.code;
    c.representante = random_.Pick(agents_).code;
    if (random_.Chance(12)) c.fornecedor = Supplier().code;  // passed on
    const Clearing clearing = DecideCheque(m.dt_vencto);
    if (clearing != Clearing::Pending) c.status = 'B', c.baixa = m.dt_cont;

    // The bank returned some of those that it had cleared.
    const Date returned = WorkingDay(m.dt_vencto.AddDays(3));
    if (c.status == 'B' && returned <= today_ && random_.Chance(7)) {
      c.status = 'D';
      Movement back = m;
      back.lancamento = Number();
      back.dt_lan = back.dt_cont = back.dt_vencto = returned;
      back.operacao = '-';
      back.historico = "018";
      back.observacao = "DEVOLUCAO DO CHEQUE NR: " + c.numero;
      Post(std::move(back), Clearing::Settled);
    }
    Write(c);
    Post(std::move(m), clearing);
  }
}

void Company::ChequeBatch(int count) {
  if (count == 0) return;
  Account& account = accounts_[static_cast<std::size_t>(random_.Between(0, 2))];
  for (int i = 0; i < count; ++i) {
    const Person& customer = Customer();
    Movement m;
    m.valor = random_.Amount(80, 1800);
    m.account = &account;
    m.lancamento = Number();
    m.docto = Padded(random_.Between(1, 999999), 6);
    m.dt_lan = day_;
    m.dt_cont = m.dt_vencto = WorkingDay(day_.AddDays(random_.Between(3, 45)));
    m.grupo = "1101";
    m.historico = "005";
    m.tipo = "CH";

    Cheque c;
    c.chave = m.lancamento;
    c.banco = Padded(random_.Between(901, 904), 3);
    c.agencia = Padded(random_.Between(1, 3999), 4);
    c.conta = Padded(random_.Between(1, 999999), 6);
    c.numero = m.docto;
    c.valor = m.valor;
    c.emissao = day_;
    c.vencimento = m.dt_vencto;
    c.emissor = customer.name;
    c.cnpj = customer.cnpj;
    c.cliente = c.fornecedor = "00001";
    c.representante = "0000";
    // The line that a reader takes from the cheque's lower edge: 34 characters.
    c.barra = "<" + c.banco + c.agencia + "0<00000" + "018" + c.numero.substr(3) + "5>" + "00" + "00" +
              c.conta + "0:";
    c.barra.resize(34, '0');
    c.obs = "REF. LOTE DE CHEQUE.";
    const Clearing clearing = DecideCheque(m.dt_vencto);
    if (clearing != Clearing::Pending) c.status = 'B', c.baixa = m.dt_cont;
    Link(c, "LOTE", "", c.valor);
    Write(c);
    Post(std::move(m), clearing);
  }
}

// The customer hands over a cheque for the title: the cheque stands as a receivable of its own, which the
// bank credits later.
void Company::TitleHeldAsCheque(const std::string& number, const Person& customer, Currency valor, Date day) {
  Receivable t;
  t.number = "CH" + Padded(++held_, 6);
  t.customer = customer.code;
  t.agent = agents_[0].code;
  t.issued = day;
  t.due = WorkingDay(day.AddDays(random_.Between(10, 40)));
  t.valor = valor;
  t.classe = "1101";
  t.status = "CH";
  t.situation = "4";
  t.text = "CHEQUE DO TITULO " + number;
  t.cheque.banco = Padded(random_.Between(901, 904), 3);
  t.cheque.agencia = Padded(random_.Between(1, 3999), 4);
  t.cheque.conta = Padded(random_.Between(1, 999999), 6);
  t.cheque.numero = Padded(random_.Between(1, 999999), 6);
  t.cheque.emissor = std::string(CutChars(customer.name, 50));
  Link(t.cheque, number, "", valor);
  const bool credited = t.due <= today_ && random_.Chance(90);
  if (credited)
    t.paid = t.valor;
  else if (t.due <= today_)
    t.status = "CD";
  Write(t);
  if (!credited) return;
  Due due;
  due.number = t.number;
  due.entity = t.customer;
  due.classe = t.classe;
  due.valor = due.paid = t.valor;
  receivable_[DayIndex(t.due)].push_back(std::move(due));
}

void Company::CancelledCheque() {
  Account& account = accounts_[static_cast<std::size_t>(random_.Between(0, 2))];
  Cheque c;
  c.chave = Number();
  c.banco = account.banco;
  c.agencia = account.agencia;
  c.conta = account.conta;
  c.numero = Padded(account.next_cheque++, 6);
  c.valor = random_.Amount(100, 2000);
  c.emissao = c.vencimento = day_;
  c.tipo = 'P';
  c.status = 'C';
  c.emissor = Upper(company_.name);
  c.cliente = "00001";
  c.fornecedor = Supplier().code;
  c.obs = "PAGTO DE CHEQUE / PREENCHIDO COM ERRO";
  Write(c);
}

}  // namespace orv::demo
