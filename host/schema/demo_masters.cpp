// Banks, accounts, classes, charts, people: what the rest of the demo names by code.
#include <array>

#include "host/schema/demo_company.h"
#include "toolkit/text.h"

namespace orv::demo {

namespace {

// A tax number of the right look; its digits are nobody's.
std::string TaxNumber(int64_t n) {
  const std::string d = Padded(n, 8);
  return d.substr(0, 2) + "." + d.substr(2, 3) + "." + d.substr(5, 3) + "/0001-" + Padded(n % 97, 2);
}

}  // namespace

void Company::Banks() {
  struct Bank {
    const char *code, *name, *file;
    int contract;
  };
  // The codes above 950 stand for acquirers: their column maps are kept by bank.
  const Bank banks[] = {
      {"000", "CAIXA INTERNO", "", 0},
      {"901", "BANCO DA SERRA", "EXTRATO.RET", 250000},
      {"902", "BANCO DO VALE", "EXTRATO.TXT", 180000},
      {"903", "BANCO LITORAL", "EXTRATO.OFX", 120000},
      {"904", "COOPERATIVA PLANALTO", "EXTRATO.OFX", 60000},
      {"951", "CIELO ARQUIVO CSV", "CIELO.csv", 0},
      {"952", "GETNET VENDAS", "GETNET_VENDAS.csv", 0},
      {"953", "GETNET PAGAMENTOS", "GETNET_PAGTOS.csv", 0},
      {"954", "REDE VENDAS", "REDE_VENDAS.csv", 0},
      {"955", "REDE PAGAMENTOS", "REDE_PAGTOS.csv", 0},
      {"956", "PAGAR.ME", "PAGARME.xlsx", 0},
      {"957", "YAPAY", "YAPAY.xlsx", 0},
      {"958", "CIELO PEDIDOS", "CIELO_PEDIDOS.csv", 0},
  };
  for (const Bank& b : banks)
    rows_.Add("CADBAN", {{"BANCO", b.code},
                         {"NOME_BANCO", b.name},
                         {"VAL_CONTRATO", Currency(b.contract)},
                         {"ENTRADA", b.file}});
}

void Company::Accounts() {
  static const std::array<std::array<const char*, 4>, 3> numbers = {{
      {"10250-1", "20418-7", "33021-5", "47780-0"},
      {"60117-3", "61990-8", "62345-0", "63102-9"},
      {"80231-6", "81877-2", "82940-5", "83616-3"},
  }};
  static const char* const banks[] = {"901", "902", "903", "904"};
  static const char* const texts[] = {"CONTA MOVIMENTO", "CONTA COBRANCA", "CONTA PAGAMENTOS",
                                      "APLICACAO FINANCEIRA"};
  for (std::size_t i = 0; i < 4; ++i) {
    std::string conta = index_ < 3 ? numbers[static_cast<std::size_t>(index_)][i]
                                   : std::to_string(90000 + index_ * 1000 + static_cast<int>(i) * 111) + "-" +
                                         std::to_string((index_ + static_cast<int>(i)) % 10);
    accounts_.push_back({std::move(conta), banks[i], Padded(1200 + static_cast<int>(i) * 37 + index_, 4),
                         texts[i], "1.1.02." + Padded(static_cast<int64_t>(i) + 1, 3), i == 3 ? 'A' : 'C',
                         Currency(), 1});
  }
  accounts_.push_back({"CAIXA", "000", "0000", "CAIXA DA EMPRESA", "1.1.01.001", 'X', Currency(), 1});
}

// After all movements, since the master row holds the balance.
void Company::CloseBooks() {
  int number = 0;
  for (const Account& a : accounts_) {
    ++number;
    rows_.Add("CADCONTA", {{"CONTA", a.conta},
                           {"BANCO", a.banco},
                           {"AGENCIA", a.agencia},
                           {"EMPRESA", CutChars(Upper(company_.name), 30)},
                           {"DESCRICAO", a.descricao},
                           {"IMP_FLUXO", a.tipo == 'A' ? "N" : "S"},
                           {"LIMITE", Currency(a.tipo == 'C' ? 50000 : 0)},
                           {"SALDO", a.balance},
                           {"CNPJ", TaxNumber(11000000 + index_)},
                           {"INSCRICAO", Padded(250000000 + index_, 9)},
                           {"CONTADOR", number},
                           {"LOTE_SERVICO", Padded(number, 4)},
                           {"DIAS_COMP", a.tipo == 'C' ? 1 + number % 2 : 1},
                           {"CODIGO", Padded(number, 3)},
                           {"TIPO", std::string(1, a.tipo)}});
  }
}

void Company::Histories() {
  struct History {
    const char *code, *text, *situation, *kind;
  };
  // Kind "08": clearing posts accounting as a cheque's does.
  const History histories[] = {
      {"001", "SALDO INICIAL", "N", "01"},
      {"002", "RECEBIMENTO DE DUPLICATA", "N", "02"},
      {"003", "PAGAMENTO DE DUPLICATA", "N", "03"},
      {"004", "CHEQUE EMITIDO", "P", "08"},
      {"005", "CHEQUE RECEBIDO", "P", "08"},
      {"006", "TRANSFERENCIA - SAIDA", "N", "04"},
      {"007", "TRANSFERENCIA - ENTRADA", "N", "04"},
      {"008", "DEPOSITO", "P", "05"},
      {"009", "TARIFA BANCARIA", "N", "06"},
      {"010", "IMPOSTOS E TAXAS", "N", "06"},
      {"011", "FOLHA DE PAGAMENTO", "N", "06"},
      {"012", "ENERGIA, AGUA E TELEFONE", "N", "06"},
      {"013", "ALUGUEL", "N", "06"},
      {"014", "VENDA COM CARTAO", "P", "07"},
      {"015", "RENDIMENTO DE APLICACAO", "N", "06"},
      {"016", "ADIANTAMENTO A FORNECEDOR", "N", "03"},
      {"017", "ADIANTAMENTO DE CLIENTE", "N", "02"},
      {"018", "CHEQUE DEVOLVIDO", "N", "08"},
      {"019", "DESPESAS GERAIS", "N", "06"},
      {"020", "RECEITAS DIVERSAS", "N", "02"},
  };
  for (const History& h : histories)
    rows_.Add("HISTCP",
              {{"HISTORICO", h.code}, {"DESCRICAO", h.text}, {"SITUACAO", h.situation}, {"TIPO", h.kind}});
  // Cash in hand has nothing to wait for; the collecting account's receipts wait for the bank.
  rows_.Add("HIST_CONTA", {{"CONTA", "CAIXA"}, {"HISTORICO", "008"}, {"PENDENTE", "N"}});
  rows_.Add("HIST_CONTA", {{"CONTA", accounts_[1].conta}, {"HISTORICO", "002"}, {"PENDENTE", "S"}});
}

void Company::Classes() {
  struct Class {
    const char *code, *text, *side, *kind, *place, *type;
  };
  // The first digit of a code is the code of the branch's title.
  const Class classes[] = {
      {"1", "RECEITAS", "+", "T", "1", ""},
      {"11", "RECEITAS DE VENDAS", "+", "T", "1.01", ""},
      {"1101", "VENDA DE MALHAS", "+", "A", "1.01.01", ""},
      {"1102", "VENDA DE CONFECCOES", "+", "A", "1.01.02", ""},
      {"1103", "VENDA DE LOJA", "+", "A", "1.01.03", "Loja"},
      {"12", "OUTRAS RECEITAS", "+", "T", "1.02", ""},
      {"1201", "RENDIMENTOS FINANCEIROS", "+", "A", "1.02.01", ""},
      {"1202", "RECEITAS EVENTUAIS", "+", "A", "1.02.02", ""},
      {"1203", "ADIANTAMENTO DE CLIENTES", "+", "A", "1.02.03", ""},
      {"2", "CUSTOS", "-", "T", "2", ""},
      {"21", "CUSTO DE PRODUCAO", "-", "T", "2.01", ""},
      {"2101", "FIOS E LINHAS", "-", "A", "2.01.01", "Custo Producao"},
      {"2102", "FACCAO E BENEFICIAMENTO", "-", "A", "2.01.02", "Custo Producao"},
      {"2103", "AVIAMENTOS", "-", "A", "2.01.03", "Custo Producao"},
      {"22", "CUSTO DOS PRODUTOS VENDIDOS", "-", "T", "2.02", ""},
      {"2201", "CUSTO DOS PRODUTOS VENDIDOS", "-", "A", "2.02.01", "CPV"},
      {"3", "DESPESAS", "-", "T", "3", ""},
      {"31", "DESPESAS ADMINISTRATIVAS", "-", "T", "3.01", ""},
      {"3101", "SALARIOS E ENCARGOS", "-", "A", "3.01.01", ""},
      {"3102", "ALUGUEL", "-", "A", "3.01.02", ""},
      {"3103", "ENERGIA, AGUA E TELEFONE", "-", "A", "3.01.03", ""},
      {"3104", "MATERIAL DE CONSUMO", "-", "A", "3.01.04", ""},
      {"32", "DESPESAS FINANCEIRAS", "-", "T", "3.02", ""},
      {"3201", "TARIFAS BANCARIAS", "-", "A", "3.02.01", ""},
      {"3202", "JUROS E MULTAS", "-", "A", "3.02.02", ""},
      {"33", "TRIBUTOS E COMERCIAIS", "-", "T", "3.03", ""},
      {"3301", "IMPOSTOS SOBRE VENDAS", "-", "A", "3.03.01", ""},
      {"3302", "FRETES E COMISSOES", "-", "A", "3.03.02", ""},
      {"4", "TRANSFERENCIAS", "+", "T", "4", ""},
      {"4101", "TRANSFERENCIA - SAIDA", "-", "A", "4.01.01", "Transferencia"},
      {"4102", "TRANSFERENCIA - ENTRADA", "+", "A", "4.01.02", "Transferencia"},
      {"5", "INVESTIMENTOS E CAPITAL", "-", "T", "5", ""},
      {"5101", "MAQUINAS E EQUIPAMENTOS", "-", "A", "5.01.01", ""},
      {"5102", "CAPITAL E SALDOS INICIAIS", "+", "A", "5.01.02", "Transferencia"},
  };
  for (const Class& c : classes)
    rows_.Add("SUBGRUPO", {{"CODIGO", c.code},
                           {"DESCRICAO", c.text},
                           {"OPERACAO", c.side},
                           {"TP_CONTA", c.kind},
                           {"CONTA", c.place},
                           {"TIPO", c.type}});
}

void Company::Chart() {
  const auto account = [&](std::string_view code, std::string_view text, bool title, bool result) {
    rows_.Add("CONTA_CONT", {{"CODIGO", code},
                             {"DESCRICAO", text},
                             {"TP_CONTA", title ? "T" : "A"},
                             {"CT_RESULT", result ? "S" : "N"}});
  };
  account("1", "ATIVO", true, false);
  account("1.1", "ATIVO CIRCULANTE", true, false);
  account("1.1.01", "CAIXA", true, false);
  account("1.1.02", "BANCOS", true, false);
  for (const Account& a : accounts_) account(a.ledger, a.descricao, false, false);
  account("1.1.03.001", "CLIENTES", false, false);
  account("1.1.04.001", "CHEQUES A RECEBER", false, false);
  account("1.2.01.001", "MAQUINAS E EQUIPAMENTOS", false, false);
  account("2", "PASSIVO", true, false);
  account("2.1.01.001", "FORNECEDORES", false, false);
  account("2.1.02.001", "CHEQUES A COMPENSAR", false, false);
  account("2.3.01.001", "CAPITAL SOCIAL", false, false);
  account("3", "RECEITAS", true, false);
  account("3.1.01.001", "VENDAS", false, true);
  account("3.1.02.001", "RECEITAS FINANCEIRAS", false, true);
  account("4", "DESPESAS", true, false);
  account("4.1.01.001", "SALARIOS E ENCARGOS", false, true);
  account("4.1.02.001", "ALUGUEL", false, true);
  account("4.1.03.001", "ENERGIA ELETRICA", false, true);
  account("4.1.03.002", "AGUA E TELEFONE", false, true);
  account("4.1.04.001", "DESPESAS GERAIS", false, true);
  account("4.2.01.001", "DESPESAS FINANCEIRAS", false, true);
  account("4.3.01.001", "IMPOSTOS", false, true);

  const char* const centres[][2] = {{"0100", "ADMINISTRACAO"},
                                    {"0200", "TECELAGEM"},
                                    {"0300", "CONFECCAO"},
                                    {"0400", "LOJA"},
                                    {"0500", "COMERCIAL"}};
  for (const auto& c : centres) rows_.Add("CENTROCUSTO", {{"CODIGO", c[0]}, {"DESCRICAO", c[1]}});
}

// Per class the accounts' shares make 100, and per account its centres' shares do.
const std::vector<SplitRule>& SplitRules() {
  static const std::vector<SplitRule> rules = {
      {"3101", "4.1.01.001", 100, "0100", 20},    {"3101", "4.1.01.001", 100, "0200", 45},
      {"3101", "4.1.01.001", 100, "0300", 35},    {"3102", "4.1.02.001", 100, "0100", 50},
      {"3102", "4.1.02.001", 100, "0200", 50},    {"3103", "4.1.03.001", 65, "0200", 60},
      {"3103", "4.1.03.001", 65, "0300", 40},     {"3103", "4.1.03.002", 35, "0100", 100},
      {"3104", "4.1.04.001", 100, "0100", 33.34}, {"3104", "4.1.04.001", 100, "0200", 33.33},
      {"3104", "4.1.04.001", 100, "0300", 33.33}, {"3201", "4.2.01.001", 100, "0100", 100},
      {"3301", "4.3.01.001", 100, "0100", 40},    {"3301", "4.3.01.001", 100, "0500", 60},
  };
  return rules;
}

void Company::Rules() {
  const auto account = [&](std::string_view classe, std::string_view history, std::string_view conta,
                           std::string_view ledger) {
    rows_.Add("CLASSE_CONTA", {{"CODCLI", ""},
                               {"CLASSE", classe},
                               {"HISTORICO", history},
                               {"CARTEIRA", "0"},
                               {"CONTA", conta},
                               {"CONTA_CONT", ledger}});
  };
  for (const Account& a : accounts_) {
    account("0", "0", a.conta, a.ledger);
    account("0", "004", a.conta, "2.1.02.001");
    account("0", "005", a.conta, "1.1.04.001");
    account("0", "014", a.conta, "1.1.03.001");
    account("0", "018", a.conta, "1.1.04.001");
  }
  account("0", "002", "0", "1.1.03.001");
  account("0", "003", "0", "2.1.01.001");
  account("0", "004", "0", "2.1.01.001");
  account("0", "016", "0", "2.1.01.001");
  account("0", "019", "0", "4.1.04.001");

  for (const SplitRule& r : SplitRules())
    rows_.Add("CONT_RATEIO", {{"CODIGO", r.classe},
                              {"TIPO", "C"},
                              {"TIPO_VAL", "VF"},
                              {"CONTA", r.ledger},
                              {"PERC_CONTA", r.share},
                              {"CCUSTO", r.centre},
                              {"PERC_CCUSTO", r.centre_share}});
}

void Company::People() {
  static const char* const stems[] = {"AURORA",      "BELA VISTA",    "CAMPOS VERDES", "DOIS IRMAOS",
                                      "ESTRELA",     "FLOR DO CAMPO", "GIRASSOL",      "HORIZONTE",
                                      "IPE AMARELO", "JATOBA",        "LUA NOVA",      "MONTE CLARO",
                                      "NOVA ERA",    "ORQUIDEA",      "PINHEIRAL",     "QUATRO VENTOS",
                                      "RIO MANSO",   "SANTA LUZ",     "TRES RIOS",     "VERAO"};
  static const char* const trades[] = {"MODAS",    "CONFECCOES", "TECIDOS",
                                       "MAGAZINE", "BOUTIQUE",   "COMERCIO DE ROUPAS"};
  static const char* const supplies[] = {"FIOS",        "TINTURARIA", "AVIAMENTOS", "FACCAO",
                                         "TRANSPORTES", "EMBALAGENS", "MAQUINAS",   "MALHARIA"};
  static const char* const forms[] = {"LTDA", "ME", "EIRELI", "S/A"};
  static const char* const terms[] = {"030", "030060", "030060090", "028", "015030", "000"};

  int code = 0;
  const auto add = [&](std::string name, std::string_view condition, Currency credit) {
    const Person person{Padded(++code, 5), std::move(name),
                        TaxNumber(12000000 + index_ * 1000000 + code * 37)};
    rows_.Add("ENTIDADE", {{"CODCLI", person.code},
                           {"NOME", person.name},
                           {"CNPJ", person.cnpj},
                           {"CONTAC", "1.1.03.001"},
                           {"CONTAD", "2.1.01.001"},
                           {"CONDICAO", condition},
                           {"CREDITO", credit},
                           {"ATRASO_MEDIO", 0}});
    return person;
  };
  // The company itself stands first: its code marks its own cheques.
  add(Upper(company_.name), "", Currency());
  const int count = 40 + (units_ < 500 ? units_ * 2 : 1000);
  for (int i = 0; i < count; ++i)
    customers_.push_back(add(std::string(random_.Pick(stems)) + " " + random_.Pick(trades) + " " +
                                 Padded(i + 1, 3) + " " + random_.Pick(forms),
                             random_.Pick(terms), Currency(random_.Between(2, 60) * 1000)));
  for (int i = 0; i < count / 2 + 8; ++i)
    suppliers_.push_back(add(std::string(supplies[static_cast<std::size_t>(i) % 8]) + " " +
                                 random_.Pick(stems) + " " + Padded(i + 1, 3) + " " + random_.Pick(forms),
                             random_.Pick(terms), Currency()));

  static const char* const agents[] = {"ANA PRADO", "BENTO LIMA", "CELIA ROCHA", "DARIO NUNES",
                                       "ELISA MOURA"};
  static const char* const regions[] = {"SERRA", "VALE", "LITORAL"};
  for (int i = 0; i < 3; ++i) rows_.Add("REGIAO", {{"REGIAO", Padded(i + 1, 2)}, {"DESCRICAO", regions[i]}});
  for (int i = 0; i < 5; ++i) {
    agents_.push_back({Padded(i + 1, 4), agents[i], ""});
    rows_.Add("REPRESEN",
              {{"CODREP", Padded(i + 1, 4)}, {"NOME", agents[i]}, {"REGIAO", Padded(i % 3 + 1, 2)}});
  }
}

void Company::Codes() {
  struct Situation {
    const char *code, *text, *flow;
    int days;
  };
  const Situation situations[] = {{"0", "EM CARTEIRA", "S", 0},        {"1", "COBRANCA SIMPLES", "S", 1},
                                  {"2", "DESCONTADA", "S", 0},         {"3", "EM CARTORIO", "N", 0},
                                  {"4", "CHEQUE EM CUSTODIA", "S", 2}, {"P", "PERDIDA", "N", 0}};
  for (const Situation& s : situations)
    rows_.Add("TABSIT",
              {{"CODIGO", s.code}, {"DESCRICAO", s.text}, {"IMP_FLUXO", s.flow}, {"DIAS_FLOAT", s.days}});

  struct Currencies {
    const char *code, *text;
    bool card;
    double rate;
  };
  const Currencies currencies[] = {{"1", "DINHEIRO", false, 0},
                                   {"2", "CARTAO DE CREDITO", true, 2.49},
                                   {"3", "CARTAO DE DEBITO", true, 1.29},
                                   {"4", "DOLAR", false, 0},
                                   {"5", "EURO", false, 0}};
  for (const Currencies& c : currencies)
    rows_.Add("MOEDA", {{"CODMOE", c.code},
                        {"DESCRICAO", c.text},
                        {"CONTA", c.card ? accounts_[0].conta : std::string()},
                        {"TXOPERADORA", c.rate}});
  for (const PaymentForm& form : kPaymentForms)
    rows_.Add("MOEDA", {{"CODMOE", form.code},
                        {"DESCRICAO", form.text},
                        {"CONTA", accounts_[form.account].conta},
                        {"TXOPERADORA", form.rate}});

  const char* const terms[][2] = {
      {"01", "A VISTA"}, {"02", "CARTAO 2X"}, {"03", "CARTAO 3X"}, {"04", "30/60 DIAS"}};
  for (const auto& t : terms) rows_.Add("CONDICAO", {{"CODCOND", t[0]}, {"DESCRICAO", t[1]}});

  struct Nature {
    const char *code, *text, *kind, *titles;
  };
  const Nature natures[] = {{"5101", "VENDA DE PRODUCAO", "V", "S"},
                            {"5102", "VENDA SEM DUPLICATA", "V", "N"},
                            {"5201", "DEVOLUCAO DE VENDA", "D", "N"},
                            {"5901", "REMESSA PARA BENEFICIAMENTO", "R", "N"}};
  for (const Nature& n : natures)
    rows_.Add("NATUREZA",
              {{"NATUREZA", n.code}, {"DESCRICAO", n.text}, {"TIPO", n.kind}, {"DUPLI", n.titles}});

  const char* const sectors[][3] = {
      {"01", "COSTURA", "S"}, {"02", "CORTE", "N"}, {"03", "BORDADO", "S"}, {"04", "ACABAMENTO", "S"}};
  for (const auto& s : sectors)
    rows_.Add("CADFLUXO", {{"CODIGO", s[0]}, {"DESCRICAO", s[1]}, {"IMP_FLUXO", s[2]}});
}

// Daily rates, on working days only.
void Company::Rates() {
  int dollar = 52000, euro = 57000;  // ten-thousandths
  for (Date day = first_; day <= today_; day = day.AddDays(1)) {
    if (day.WeekDay() == 0 || day.WeekDay() == 6) continue;
    dollar += random_.Between(-300, 302);
    euro += random_.Between(-310, 311);
    rows_.Add("VALOR_MOEDA", {{"MOEDA", "4"}, {"DATA", day.Brazil()}, {"VALOR", dollar / 10000.0}});
    rows_.Add("VALOR_MOEDA", {{"MOEDA", "5"}, {"DATA", day.Brazil()}, {"VALOR", euro / 10000.0}});
  }
}

// Weeks from Monday to Sunday, a year beyond today. The code sorts by time.
void Company::Terms() {
  Date monday = first_.AddDays(-((first_.WeekDay() + 6) % 7));
  for (int week = 1; monday <= today_.AddDays(366); ++week, monday = monday.AddDays(7))
    rows_.Add("TABPRZ", {{"PRAZO", monday.Neutral()},
                         {"DESCRICAO", "SEMANA " + Padded(week, 3)},
                         {"DT_INICIO", monday},
                         {"DT_FIM", monday.AddDays(6)}});
}

}  // namespace orv::demo
