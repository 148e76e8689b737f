// Movements of the bank accounts, their accounting, and what the bank's statement says to them.
#include <algorithm>

#include "host/schema/demo_company.h"
#include "toolkit/text.h"

namespace orv::demo {

namespace {

constexpr int kYoung = 12;  // days within which much is still open

}  // namespace

void Company::OpeningBalances() {
  for (Account& account : accounts_) {
    Movement m;
    m.lancamento = Number();
    m.docto = DocNumber();
    m.account = &account;
    m.dt_lan = m.dt_cont = m.dt_vencto = first_;
    m.valor = Currency(account.tipo == 'X' ? 5000 : 60000) * units_;
    m.grupo = "5102";
    m.historico = "001";
    m.observacao = "SALDO INICIAL";
    Post(std::move(m), Clearing::Settled);
  }
}

Clearing Company::Decide(const Account& account, Date due) {
  if (due > today_) return Clearing::Pending;
  const bool young = today_ - due <= kYoung;
  if (account.tipo == 'X') return young && random_.Chance(10) ? Clearing::Pending : Clearing::Settled;
  const int draw = random_.Between(1, 100);
  if (young) return draw <= 45 ? Clearing::Pending : draw <= 75 ? Clearing::Settled : Clearing::Statement;
  return draw <= 2    ? Clearing::Pending
         : draw <= 18 ? Clearing::Settled
         : draw <= 22 ? Clearing::Outside
                      : Clearing::Statement;
}

Clearing Company::DecideCheque(Date due) {
  if (due > today_) return Clearing::Pending;
  const int draw = random_.Between(1, 100);
  if (today_ - due <= kYoung) return draw <= 60 ? Clearing::Pending : Clearing::Compensated;
  return draw <= 3 ? Clearing::Pending : draw <= 60 ? Clearing::Compensated : Clearing::Statement;
}

void Company::Post(Movement m, Clearing clearing) {
  const std::string_view bank = m.account->ledger;
  const std::string_view other = m.tipo_doc == "CH" ? "2.1.02.001" : "1.1.04.001";
  switch (clearing) {
    case Clearing::Pending:
      m.pendente = 'S';
      Put(m);
      if (m.dt_vencto <= today_ && m.account->tipo != 'X' && random_.Chance(60))
        StatementLine(m, m.dt_vencto, m.valor, "");
      return;
    case Clearing::Settled:
      Put(m);
      return;
    case Clearing::Outside:
      m.pendente = 'C';
      Put(m);
      return;
    case Clearing::Statement: {
      m.lanc_con = Number();
      Put(m);
      // One movement can stand against two lines of the bank.
      const Currency part = random_.Chance(8) ? (m.valor * 0.6).Round2() : Currency();
      if (part > Currency()) StatementLine(m, m.dt_cont, part, m.lanc_con);
      StatementLine(m, m.dt_cont, m.valor - part, m.lanc_con);
      return;
    }
    case Clearing::Compensated:
      m.lanc_con = Number();
      Put(m);
      Entry(m.lanc_con, m, CutChars(m.docto, 12), m.operacao == '+' ? other : bank,
            m.operacao == '+' ? bank : other, "CC", m.valor, m.dt_cont, "000",
            "COMPENSAÇÃO DOCTO NR: " + m.docto + ".");
      return;
  }
}

void Company::Put(const Movement& m) {
  rows_.Add("CONTACOR", {{"LANCAMENTO", m.lancamento},
                         {"DOCTO", m.docto},
                         {"BANCO", m.account->banco},
                         {"CONTA", m.account->conta},
                         {"DT_LAN", m.dt_lan},
                         {"DT_CONT", m.dt_cont},
                         {"DT_VENCTO", m.dt_vencto},
                         {"VALOR", m.valor},
                         {"OPERACAO", std::string_view(&m.operacao, 1)},
                         {"GRUPO", m.grupo},
                         {"HISTORICO", m.historico},
                         {"OBSERVACAO", CutChars(m.observacao, 100)},
                         {"TIPO", m.tipo},
                         {"TIPO_DOC", m.tipo_doc},
                         {"PENDENTE", std::string_view(&m.pendente, 1)},
                         {"LANC_CON", m.lanc_con}});
  if (m.pendente == 'S') return;
  if (m.operacao == '+')
    m.account->balance += m.valor;
  else
    m.account->balance -= m.valor;
}

void Company::StatementLine(const Movement& m, Date day, Currency valor, const std::string& lanc_con) {
  const std::string number = Padded(++line_, 6);
  const Date file = std::min(day.LastOfMonth(), today_);
  rows_.Add("EXTRATO", {{"LANCTO", number},
                        {"BANCO", m.account->banco},
                        {"CONTA", m.account->conta},
                        {"DOCTO", CutChars(m.docto, 10)},
                        {"DT_CONT", day},
                        {"DT_ARQ", file},
                        {"VALOR", valor},
                        {"OPERACAO", m.operacao == '+' ? "C" : "D"},
                        {"OBSERVACAO", CutChars(m.observacao, 50)},
                        {"ARQUIVO", "extrato_" + m.account->conta + "_" + file.Neutral() + ".ofx"},
                        {"CHAVE", number},
                        {"CONCILIADO", lanc_con.empty() ? "N" : "S"},
                        {"LANC_CON", lanc_con}});
}

void Company::Entry(const std::string& number, const Movement& m, std::string_view docto2,
                    std::string_view credit, std::string_view debit, std::string_view origin, Currency valor,
                    Date day, std::string_view codigo, std::string_view text) {
  rows_.Add("CONTABIL", {{"LANCAMENTO", number},
                         {"DOCTO", CutChars(m.docto, 12)},
                         {"DOCTO2", CutChars(docto2, 12)},
                         {"CONTA_C", credit},
                         {"CONTA_D", debit},
                         {"OPERACAO", std::string_view(&m.operacao, 1)},
                         {"ORIGEM", origin},
                         {"CLASSE", m.grupo},
                         {"HISTORICO", m.historico},
                         {"VALOR", valor},
                         {"DATA", day},
                         {"CODIGO", codigo},
                         {"OBSERVACAO", CutChars(text, 200)}});
}

// The accounting of a posting by hand, where its class has rules. What rounding leaves over goes to the last
// account, and within an account to its last centre.
void Company::Split(const Movement& m) {
  std::vector<const SplitRule*> rules;
  for (const SplitRule& rule : SplitRules())
    if (m.grupo == rule.classe) rules.push_back(&rule);
  Currency left = m.valor;
  int order = 0;
  for (std::size_t i = 0; i < rules.size();) {
    std::size_t end = i;
    while (end < rules.size() && std::string_view(rules[end]->ledger) == rules[i]->ledger) ++end;
    const Currency part = end == rules.size() ? left : (m.valor * (rules[i]->share / 100)).Round2();
    left -= part;
    ++order;
    const bool debit = m.operacao == '-';
    Entry(m.lancamento, m, m.docto, debit ? std::string_view(m.account->ledger) : rules[i]->ledger,
          debit ? std::string_view(rules[i]->ledger) : m.account->ledger, "CC", part, m.dt_cont, "",
          m.observacao);
    Currency rest = part;
    for (; i < end; ++i) {
      const Currency share = i + 1 == end ? rest : (part * (rules[i]->centre_share / 100)).Round2();
      rest -= share;
      rows_.Add("CENTRO_RATEIO", {{"LANCAMENTO", m.lancamento},
                                  {"ORDEM", order},
                                  {"CONTA", rules[i]->ledger},
                                  {"NUMERO", CutChars(m.docto, 12)},
                                  {"CENTROCUSTO", rules[i]->centre},
                                  {"TIPO", "CC"},
                                  {"PERC_RAT", rules[i]->centre_share},
                                  {"VALOR_RAT", share}});
    }
  }
}

void Company::HandMovements(int count) {
  struct Kind {
    const char *classe, *history;
    char side;
    int low, high, weight;
    const char* text;
  };
  static const Kind kinds[] = {
      {"3201", "009", '-', 5, 120, 20, "TARIFA DE SERVICOS"},
      {"3104", "019", '-', 20, 900, 20, "MATERIAL DE CONSUMO"},
      {"3103", "012", '-', 80, 3500, 8, "CONTA DE CONSUMO"},
      {"3101", "011", '-', 900, 6000, 8, "FOLHA DE PAGAMENTO"},
      {"3102", "013", '-', 1500, 4500, 2, "ALUGUEL DO GALPAO"},
      {"3301", "010", '-', 100, 5000, 6, "GUIA DE IMPOSTO"},
      {"3302", "019", '-', 30, 1200, 8, "FRETE DE ENTREGA"},
      {"2102", "019", '-', 100, 3500, 6, "SERVICO DE FACCAO"},
      {"5101", "019", '-', 1000, 15000, 1, "PARCELA DE MAQUINA"},
      {"1101", "020", '+', 200, 12000, 15, "VENDA A VISTA"},
      {"1202", "020", '+', 50, 2500, 4, "RECEITA EVENTUAL"},
      {"1201", "015", '+', 3, 300, 2, "RENDIMENTO DA APLICACAO"},
  };
  for (int i = 0; i < count; ++i) {
    int draw = random_.Between(1, 100);
    const Kind* kind = kinds;
    while (draw > kind->weight) draw -= (kind++)->weight;
    Movement m;
    m.valor = random_.Amount(kind->low, kind->high);
    m.account = kind->side == '+' ? &AnyAccount() : &PayingAccount(m.valor);
    m.lancamento = Number();
    m.docto = DocNumber();
    m.dt_lan = day_;
    // Part of what is posted falls due later.
    const Date due = random_.Chance(12) ? WorkingDay(day_.AddDays(random_.Between(2, 40))) : day_;
    m.dt_cont = m.dt_vencto = due;
    m.operacao = kind->side;
    m.grupo = kind->classe;
    m.historico = kind->history;
    m.observacao = std::string(kind->text) + " " + day_.Brazil().substr(3);
    m.tipo_doc = "DP";
    if (random_.Chance(35)) Split(m);
    const Clearing clearing = Decide(*m.account, due);
    Post(std::move(m), clearing);
  }
}

void Company::Transfers(int count) {
  for (int i = 0; i < count; ++i) {
    Account& source = RichestAccount();
    Account* target = &AnyAccount();
    while (target == &source) target = &AnyAccount();
    Movement m;
    m.lancamento = Number();
    m.docto = DocNumber();
    m.account = &source;
    m.dt_lan = m.dt_cont = m.dt_vencto = day_;
    m.valor = random_.Amount(500, 20000);
    m.operacao = '-';
    m.grupo = "4101";
    m.historico = "006";
    m.tipo = "TR";
    m.observacao = "Trf. cc - de " + source.conta + " para " + target->conta;
    Entry(m.lancamento, m, m.docto, source.ledger, target->ledger, "CC", m.valor, day_, "000-00",
          "TRANSFERENCIA - SAIDA - " + m.observacao);
    Movement entry = m;
    entry.account = target;
    entry.operacao = '+';
    entry.grupo = "4102";
    entry.historico = "007";
    const Clearing out = Decide(source, day_), in = Decide(*target, day_);
    Post(std::move(m), out);
    Post(std::move(entry), in);
  }
}

// Charges that the bank has taken and nobody has posted yet.
void Company::LooseStatementLines() {
  for (int i = 0; i < 6; ++i) {
    Movement m;
    m.account = &accounts_[static_cast<std::size_t>(i) % 4];
    m.docto = DocNumber();
    m.operacao = '-';
    m.observacao = "TARIFA MENSAL DE PACOTE";
    StatementLine(m, std::min(today_, WorkingDay(today_.AddDays(-random_.Between(1, 9)))),
                  random_.Amount(10, 90), "");
  }
}

}  // namespace orv::demo
