// Card sales, orders, purchases and work placed outside.
#include <algorithm>

#include "host/schema/demo_company.h"

namespace orv::demo {

namespace {

// Goods that went away or came back, with their cost.
struct Product {
  const char *code, *size, *colour;
  int cost;  // cents
};
constexpr Product kProducts[] = {{"CAM-BASICA", "M", "0001", 1890},
                                 {"CAM-POLO", "G", "0002", 2750},
                                 {"VEST-MIDI", "P", "0003", 4320},
                                 {"CALCA-MOL", "M", "0004", 3180},
                                 {"BLUSA-TRI", "G", "0005", 2595}};

// Of the acquirers from `first` on, the one that has the least gets one more.
template <std::size_t kCount>
Acquirer Next(const Acquirer (&acquirers)[kCount], std::array<int, kCount>& counts, std::size_t first) {
  const auto least = std::min_element(counts.begin() + static_cast<std::ptrdiff_t>(first), counts.end());
  ++*least;
  return acquirers[least - counts.begin()];
}

// Sales of so many days aren't confirmed yet.
constexpr int kUnconfirmedDays = 90;

}  // namespace

// Stone's file tells one amount for all instalments of a sale: of late it has only sales that are paid at
// once, since the others couldn't be confirmed by it.
Acquirer Company::SaleAcquirer(int parts, bool recent) {
  static constexpr Acquirer kShops[] = {Acquirer::Stone, Acquirer::Cielo, Acquirer::Getnet, Acquirer::Rede};
  return Next(kShops, acquirer_sales_[recent ? 1 : 0], recent && parts > 1 ? 1 : 0);
}

// Pagar.me pays an order whole, whatever the instalment: it has those of one.
Acquirer Company::OrderAcquirer(int parts, bool open) {
  static constexpr Acquirer kShops[] = {Acquirer::PagarMe, Acquirer::Yapay, Acquirer::Cielo};
  return Next(kShops, acquirer_orders_[open ? 1 : 0], parts > 1 ? 1 : 0);
}

void Company::CardSales(int count) {
  for (int i = 0; i < count; ++i) {
    const std::string sale = Padded(++sale_, 6);
    const int parts = random_.Between(1, 3);
    const bool recent = day_ > today_.AddDays(-kUnconfirmedDays);
    const Acquirer acquirer = SaleAcquirer(parts, recent);
    const std::string proof = SaleNumber(acquirer, index_, sale_);
    const Person& agent = random_.Pick(agents_);
    const CardKind kind = random_.Chance(50) && parts == 1 ? CardKind::Debit : CardKind::Credit;
    const std::string_view card = FormOf(acquirer, kind).code;
    const bool returned = random_.Chance(3);
    Currency total;
    std::vector<Currency> amounts;
    for (int part = 0; part < parts; ++part) total += amounts.emplace_back(random_.Amount(40, 600));
    rows_.Add("VENDA", {{"CODVEN", sale},
                        {"CODREP", agent.code},
                        {"DATA", day_},
                        {"VALOR", total},
                        {"CANCELADA", 0},
                        {"DEVOLUCAO", returned ? 1 : 0},
                        {"FECHADA", 1},
                        {"TROCA", 0}});
    rows_.Add("CONDIVENDA", {{"CDCONDIVENDA", sale_},
                             {"CDVENDA", sale},
                             {"CDCONDICAO", Padded(parts, 2)},
                             {"CDMOEDA", card},
                             {"VLVENDA", total}});
    const Product& product = random_.Pick(kProducts);
    const double quantity = random_.Between(1, 4);
    rows_.Add("ITVENDA", {{"CODVEN", sale},
                          {"CODIGO", product.code},
                          {"TAM", product.size},
                          {"COR", product.colour},
                          {"DEPOSITO", "01"},
                          {"LOTE", "1"},
                          {"QUANTIDADE", quantity}});
    rows_.Add("PA_MOV", {{"NUM_DOCTO", sale + "01"},
                         {"CODIGO", product.code},
                         {"TAMANHO", product.size},
                         {"COR", product.colour},
                         {"DEPOSITO", "01"},
                         {"LOTE", "1"},
                         {"OPERACAO", returned ? "E" : "S"},
                         {"TP_MOV", "LJ"},
                         {"DT_MVTO", day_},
                         {"CUSTO", product.cost / 100.0}});
    for (int part = 1; part <= parts; ++part) {
      const Currency valor = amounts[static_cast<std::size_t>(part - 1)];
      Movement m;
      m.lancamento = Number();
      m.docto = DocNumber();
      m.account = &accounts_[0];
      m.dt_lan = day_;
      m.dt_cont = m.dt_vencto = WorkingDay(day_.AddDays(30 * part));
      m.valor = valor;
      m.grupo = "1103";
      m.historico = "014";
      m.observacao = "VENDA " + sale + " PARCELA " + std::to_string(part);
      m.tipo = "LJ";
      m.tipo_doc = "DP";
      const bool credited = m.dt_vencto <= today_.AddDays(-3) && random_.Chance(92);

      Receivable t;
      t.number = sale + "C/" + std::to_string(part);
      t.customer = customers_[0].code;
      t.agent = agent.code;
      t.commission = 2;
      t.issued = day_;
      t.due = m.dt_vencto;
      t.valor = t.paid = valor;
      t.classe = "1103";
      t.history = "014";
      t.coupon = sale;
      t.text = "VENDA COM CARTAO";
      Write(t);
      Due due;
      due.number = t.number;
      due.valor = due.paid = valor;
      Settle(due, m.lancamento, proof.substr(0, 15));
      rows_.Add("ITCONDIVENDA", {{"CDITCONDIVENDA", ++card_item_},
                                 {"CDCONDIVENDA", sale_},
                                 {"CDMOEDA", card},
                                 {"NRPARCELA", part},
                                 {"VALOR", valor},
                                 {"TRANSACAO", proof},
                                 {"BAIXADO", (credited || random_.Chance(40)) && !recent ? 1 : 0}});
      Post(std::move(m), credited ? Clearing::Compensated : Clearing::Pending);
    }
  }
}

// Orders paid on line: their titles are settled with the acquirer's fee taken off.
void Company::OnlineOrders(int count) {
  for (int i = 0; i < count; ++i) {
    const std::string order = Padded(++order_, 6);
    const Person& customer = Customer();
    const Person& agent = random_.Pick(agents_);
    const int parts = random_.Between(1, 2);
    const auto due = [&](int part) { return day_.AddDays(30 * part); };
    const auto paid = [&](int part) { return WorkingDay(due(part)) <= today_.AddDays(-4); };
    rows_.Add("PEDIDO", {{"NUMERO", order},
                         {"CODCLI", customer.code},
                         {"CODREP", agent.code},
                         {"DT_EMISSAO", day_},
                         {"DT_FATURA", day_},
                         {"ENTREGA", day_.AddDays(5)},
                         {"PED_CLI", "WEB-" + order},
                         {"PER_DESC", 0.0},
                         {"PGTO", parts == 1 ? "030" : "030060"},
                         {"SIT_DUP", "0"},
                         {"BLOQUEIO", "1"},
                         {"FINANCEIRO", "1"},
                         {"ID_TRANSACAO", OrderNumber(OrderAcquirer(parts, !paid(parts)), index_, order_)}});
    // Nothing is left to invoice.
    rows_.Add("PED_ITEN",
              {{"NUMERO", order}, {"PRECO", 59.9}, {"QTDE", 0.0}, {"DT_ENTREGA", day_.AddDays(5)}});
    for (int part = 1; part <= parts; ++part) {
      Receivable t;
      t.number = order + "/" + std::to_string(part);
      t.customer = customer.code;
      t.agent = agent.code;
      t.commission = 1;
      t.issued = day_;
      t.due = due(part);
      t.valor = random_.Amount(60, 900);
      t.classe = "1102";
      t.order = order;
      t.text = "PEDIDO " + order;
      Due settled;
      if (paid(part)) {
        settled.number = t.number;
        settled.entity = t.customer;
        settled.classe = t.classe;
        settled.valor = t.valor;
        settled.fee = (t.valor * 0.0349).Round2();
        settled.paid = t.valor - settled.fee;
        settled.operation = OperationNumber(order_, part);
        t.paid = settled.paid;
        t.desconto = settled.fee;
      }
      Write(t);
      if (paid(part)) receivable_[DayIndex(WorkingDay(t.due))].push_back(std::move(settled));
    }
  }
}

void Company::PendingOrders() {
  const int count = 12 + std::min(units_, 50) * 4;
  static const char* const terms[] = {"030", "030060", "030060090", "028", "000", "015030045"};
  for (int i = 0; i < count; ++i) {
    const std::string order = Padded(++order_, 6);
    const Date invoice = today_.AddDays(random_.Between(-12, 75));
    const Date issued = std::min(today_, invoice).AddDays(-random_.Between(1, 20));
    rows_.Add("PEDIDO", {{"NUMERO", order},
                         {"CODCLI", Customer().code},
                         {"CODREP", random_.Pick(agents_).code},
                         {"DT_EMISSAO", issued},
                         {"DT_FATURA", invoice},
                         {"ENTREGA", invoice.AddDays(4)},
                         {"PED_CLI", "OC-" + Padded(random_.Between(1, 9999), 4)},
                         {"PER_DESC", random_.Chance(30) ? 5.0 : 0.0},
                         {"PGTO", random_.Pick(terms)},
                         {"SIT_DUP", random_.Chance(50) ? "0" : "1"},
                         {"BLOQUEIO", random_.Chance(90) ? "1" : "0"},
                         {"FINANCEIRO", random_.Chance(85) ? "1" : "0"},
                         {"ID_TRANSACAO", ""}});
    for (int k = random_.Between(1, 3); k > 0; --k)
      rows_.Add("PED_ITEN", {{"NUMERO", order},
                             {"PRECO", random_.Between(1990, 12990) / 100.0},
                             {"QTDE", static_cast<double>(random_.Between(2, 40))},
                             {"DT_ENTREGA", invoice.AddDays(4)}});
  }
}

void Company::Purchases() {
  const int count = 10 + std::min(units_, 50) * 3;
  static const char* const terms[] = {"028", "030060", "000030", "045"};
  for (int i = 0; i < count; ++i) {
    const std::string number = Padded(++purchase_, 6);
    const Date delivery = today_.AddDays(random_.Between(-60, 60));
    const bool open = delivery > today_.AddDays(-10);
    const bool foreign = random_.Chance(10);
    const bool freight = random_.Chance(40);
    rows_.Add("COMPRA",
              {{"NUMERO", number},
               {"CODFOR", Supplier().code},
               {"CONDICAO", random_.Pick(terms)},
               {"CLASSE", foreign ? "5101" : "2101"},
               {"DOCTO", "PC" + number},
               {"DT_EMISSAO", WorkingDay(std::min(today_, delivery).AddDays(-random_.Between(5, 25)))},
               {"DT_ENTREGA", delivery},
               {"FRETE", freight ? "2" : "1"},
               {"VAL_FRETE", freight ? random_.Amount(50, 400) : Currency()},
               {"LIBERADO", random_.Chance(85) ? "S" : "N"},
               {"MOEDA", foreign ? "4" : ""},
               {"OBS", "COMPRA DE MATERIAL"},
               {"PARCELAS", random_.Chance(10) ? 3 : 0}});
    for (int k = random_.Between(1, 3); k > 0; --k) {
      const double quantity = random_.Between(10, 200);
      rows_.Add("CO_ITEN", {{"NUMERO", number},
                            {"PRECO", random_.Between(500, 6000) / 100.0},
                            {"QTDE", quantity},
                            {"QTDE_B", open ? (random_.Chance(20) ? quantity / 2 : 0.0) : quantity},
                            {"IPI", random_.Chance(30) ? 5.0 : 0.0},
                            {"VALOR_ST", random_.Chance(20) ? random_.Amount(10, 200) : Currency()},
                            {"DT_ENTREGA", delivery},
                            {"DT_FATURA", delivery.AddDays(1)},
                            {"SITUACAO", open ? "A" : "B"}});
    }
    if (open && random_.Chance(20))
      for (const int days : {30, 75})
        rows_.Add("COND_PAGTO", {{"NUMERO", number}, {"TIPO", "C"}, {"DT_VENCTO", delivery.AddDays(days)}});
  }
}

void Company::OutsideWork() {
  const int count = 6 + std::min(units_, 50) * 2;
  for (int i = 0; i < count; ++i) {
    const std::string number = Padded(++work_, 6);
    const Date day = today_.AddDays(-random_.Between(1, 50));
    static const char* const sectors[] = {"01", "02", "03", "04"};
    static const char* const pieces[] = {"FRENTE", "COSTAS", "MANGA", "GOLA"};
    rows_.Add("FACCAO3", {{"NUMERO", number},
                          {"OP", random_.Pick(sectors)},
                          {"CODCLI", Supplier().code},
                          {"DT_LAN", day},
                          {"PARTE", random_.Pick(pieces)},
                          {"QUANT", static_cast<double>(random_.Between(40, 400))},
                          {"UNITARIO", random_.Between(80, 450) / 100.0},
                          {"PAGO", random_.Chance(25) ? "S" : "N"}});
    const double weight = random_.Between(100, 900);
    rows_.Add("TINTUR", {{"NUMERO", number}, {"TINTURARIA", Supplier().code}, {"DATR", day}});
    rows_.Add("TINTUR_ITEN", {{"NUMERO", number},
                              {"PESO_BRUTO", weight},
                              {"PESO_RETORNO", random_.Chance(40) ? weight / 2 : 0.0},
                              {"CUSTO", random_.Between(300, 900) / 100.0},
                              {"CUSTO_FLUXO", random_.Between(20, 90) / 100.0},
                              {"SITUACAO", random_.Chance(25) ? "B" : "A"}});
    const Person& mill = Supplier();
    const std::string article = "MALHA-" + number;
    rows_.Add("TECEL", {{"NUMERO", number}, {"MALHARIA", mill.code}, {"DT_INICIO", day}});
    rows_.Add("TECEL_ITEN", {{"NUMERO", number},
                             {"CODIGO", article},
                             {"QTDE", static_cast<double>(random_.Between(50, 600))},
                             {"QTDE_B", 0.0},
                             {"BAIXADA", random_.Chance(25) ? "S" : "N"}});
    rows_.Add("CADCORTI", {{"CODCLI", mill.code},
                           {"CODIGO", article},
                           {"TIPO", "C"},
                           {"CUSTO", random_.Between(150, 480) / 100.0}});
    if (i % 4 == 0) {
      const std::string note = Padded(4000 + i, 6);
      const Person& customer = Customer();
      rows_.Add("NOTA_ENTRA", {{"NOTAFISCAL", note},
                               {"CREDOR", customer.code},
                               {"SERIE", "1"},
                               {"DT_EMISSAO", day},
                               {"NATUREZA", "5201"}});
      rows_.Add("NF_ENTRA_ITEN", {{"NUMERO", note},
                                  {"CODCRE", customer.code},
                                  {"SERIE", "1"},
                                  {"VALOR", random_.Between(1500, 5000) / 100.0},
                                  {"QTDE", static_cast<double>(random_.Between(1, 20))}});
    }
  }
}

// One of each kind for a month, numbered by month.
void Company::Bordereaux() {
  int number = 0;
  for (Date month = first_.FirstOfMonth(); month <= today_; month = month.AddMonths(1)) {
    ++number;
    for (const char* kind : {"P", "R"})
      rows_.Add("BORDERO", {{"NUMERO", std::to_string(number)},
                            {"TIPO", kind},
                            {"CONTA", accounts_[1].conta},
                            {"DATA", std::min(today_, month.LastOfMonth())}});
  }
}

}  // namespace orv::demo
