#include "host/schema/demo_files.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <fstream>
#include <map>

#include "host/data/attachment.h"
#include "host/data/new_file.h"
#include "host/print/writers.h"
#include "host/schema/demo_acquirers.h"
#include "toolkit/text.h"

namespace orv {
namespace {

using demo::Acquirer;
using demo::CardKind;
using demo::Padded;

// An instalment as the acquirer tells it.
struct Entry {
  std::string key;
  Date date;
  Currency total, valor;
  int part = 1, parts = 1;
  double rate = 0;
  bool debit = false, open = false, known = true;
  // Of an order.
  Currency fee;
  std::string operation;
  bool reversal = false;
  // Of a payment: "00" scheduled, "01" paid, "02" sent to the bank, "03" to be confirmed.
  std::string_view status = "00";

  Currency Net(Currency gross) const { return gross - (gross * rate / 100).Round2(); }
};
using Entries = std::vector<Entry>;

// What an entry has in the columns of a file, by their names.
using Row = std::map<std::string_view, Value>;

struct Layout {
  std::vector<std::pair<std::string, int>> columns;  // counted from 1
  std::string separator = ";";
  int first_line = 2;
};

// The columns of acquirers where no map says otherwise.
const Layout kCieloOrders = {{{"MEIO_PAG", 2},
                              {"DATA", 7},
                              {"NR_PARCELA", 10},
                              {"NR_COMPROVANTE", 14},
                              {"VALOR_BRU", 16},
                              {"VALOR_LIQ", 17},
                              {"ID", 21}}};
const Layout kPagarMe = {{{"DATA", 1},
                          {"ID", 3},
                          {"NR_COMPROVANTE", 5},
                          {"NR_PARCELA", 6},
                          {"MEIO_PAG", 7},
                          {"VALOR_BRU", 8},
                          {"VAL_EST_BRU", 9},
                          {"TAXA", 12},
                          {"VALOR_LIQ", 13},
                          {"VAL_EST_LIQ", 14}}};
const Layout kYapay = {
    {{"DATA", 1}, {"NR_COMPROVANTE", 3}, {"MEIO_PAG", 4}, {"ID", 5}, {"VALOR_LIQ", 6}, {"NR_PARCELA", 11}}};
const Layout kStone = {{{"ESTABELECIMENTO", 2},
                        {"SITUACAO", 3},
                        {"DATA DA VENDA", 5},
                        {"PRODUTO", 7},
                        {"PARCELA", 8},
                        {"PARCELAS", 9},
                        {"BANDEIRA", 10},
                        {"TRANSACAO", 11},
                        {"TAXA (%)", 12},
                        {"VALOR LIQUIDO", 13},
                        {"VALOR DA PARCELA", 14}}};

struct Brand {
  int code;
  const char* name;
};

// The brand of the card: of a transaction always the same one.
const Brand& BrandOf(const Entry& e) {
  static constexpr Brand brands[] = {{1, "Visa"}, {2, "Mastercard"}, {7, "Elo"}, {40, "Hipercard"}};
  return brands[static_cast<unsigned char>(e.key.back()) % (e.debit ? 3 : 4)];
}

std::string StatusText(std::string_view status) {
  return status == "01"   ? "Pago"
         : status == "02" ? "Enviado para o banco"
         : status == "03" ? "A confirmar"
                          : "Agendado";
}

class Writer {
 public:
  Writer(Attachment& db, std::string company)
      : db_(db),
        company_(std::move(company)),
        shop_("0110000" + Padded(ParseInteger(company_.substr(1)), 4)) {
    today_ = db_.Scalar(Named("SELECT MAX(DT_LAN) FROM CONTACOR{}")).AsDate();
  }

  // Sales, each with all its instalments.
  Entries Sales(Acquirer acquirer) {
    Entries sales =
        Read("V.DATA", "1 - I.BAIXADO", acquirer, " AND V.DATA > " + Quote(today_.AddDays(-365).Sql()),
             "V.DATA DESC, V.CODVEN DESC, I.NRPARCELA", 4 * kMost);
    int count = 0;
    for (std::size_t i = 0; i < sales.size(); ++i)
      if (sales[i].part == 1 && ++count > kMost) sales.resize(i);
    return Finish(acquirer, std::move(sales), true);
  }

  // The acquirer's payments, one of a sale: what waits in the ledger first. Some aren't due yet: their file
  // says so, or they are paid ahead.
  Entries Payments(Acquirer acquirer) {
    const std::string past = " AND C.DT_VENCTO <= " + Quote(today_.Sql());
    const std::string later = " AND C.DT_VENCTO > " + Quote(today_.Sql());
    Entries payments;
    const auto add = [&](const std::string& where, const char* order, int most) {
      for (Entry& e :
           Read("C.DT_VENCTO", "CASE C.PENDENTE WHEN 'S' THEN 1 ELSE 0 END", acquirer, where, order, most))
        if (std::none_of(payments.begin(), payments.end(), [&](const Entry& p) { return p.key == e.key; }))
          payments.push_back(std::move(e));
    };
    add(past + " AND C.PENDENTE = 'S'", "C.DT_VENCTO DESC, C.LANCAMENTO", kMost / 2);
    add(later, "C.DT_VENCTO, C.LANCAMENTO", kMost / 4);
    add(past + " AND C.PENDENTE <> 'S'", "C.DT_VENCTO DESC, C.LANCAMENTO", kMost / 4);
    int waiting = 0;
    for (Entry& e : payments) {
      if (acquirer != Acquirer::Cielo) e.date = std::min(e.date, today_);
      if (e.date > today_.AddDays(7)) continue;
      e.status = e.date > today_ ? "02" : e.open && waiting++ % 4 == 3 ? "03" : "01";
    }
    return Finish(acquirer, std::move(payments), false);
  }

  // Orders whose titles are open, and the latest ones that are settled: told again, or taken back.
  Entries Orders(Acquirer acquirer) {
    const std::string prefix(demo::OrderPrefix(acquirer));
    Entries orders;
    for (const bool settled : {false, true}) {
      const bool reversal = settled && acquirer == Acquirer::PagarMe;
      const int most = reversal ? 1 : settled ? 2 : kMost;
      const auto rows = db_.Rows(Named(
          "SELECT FIRST " + std::to_string(most) +
          " P.ID_TRANSACAO, P.NUMERO, SUBSTRING(R.NUMERO FROM POSITION('/' IN R.NUMERO) + 1),"
          " (SELECT COUNT(*) FROM RECEBER{} O WHERE O.PEDIDO = P.NUMERO), R.VALOR2, R.DESCONTO, R.DT_VENCTO,"
          " (SELECT MAX(B.DT_PAGTO) FROM RECEBERB{} B WHERE B.NUMERO = R.NUMERO),"
          " (SELECT M.TXOPERADORA FROM MOEDA{} M WHERE M.CODMOE = " +
          Quote(demo::FormOf(acquirer, CardKind::Order).code) +
          ") FROM PEDIDO{} P INNER JOIN RECEBER{} R ON R.PEDIDO = P.NUMERO WHERE R.STATUS = 'N'"
          " AND POSITION('/' IN R.NUMERO) > 0 AND P.ID_TRANSACAO STARTING WITH " +
          Quote(prefix) + " AND CHAR_LENGTH(P.ID_TRANSACAO) = " + std::to_string(prefix.size() + 8) +
          " AND R.VALOR2 + R.JUROS " + (settled ? "<=" : ">") +
          " R.VALOR_PAGO + R.DESCONTO + R.VAL_DEV ORDER BY R.DT_VENCTO DESC, R.NUMERO DESC"));
      for (const auto& row : rows) {
        Entry e;
        e.key = row[0].AsString();
        e.part = static_cast<int>(row[2].AsInteger());
        e.parts = static_cast<int>(row[3].AsInteger());
        e.total = e.valor = row[4].AsCurrency();
        e.fee = row[5].AsCurrency();
        e.date = settled ? row[7].AsDate() : std::min(today_, row[6].AsDate());
        e.rate = row[8].AsFloat();
        e.operation = demo::OperationNumber(row[1].AsInteger(), e.part);
        e.open = !settled;
        e.reversal = reversal;
        orders.push_back(std::move(e));
      }
    }
    orders = Finish(acquirer, std::move(orders), false);
    for (Entry& e : orders)
      if (e.open || !e.known) e.fee = e.valor - e.Net(e.valor);
    return orders;
  }

  Layout MapOf(const std::string& bank) {
    Layout layout;
    for (const auto& row :
         db_.Rows(Named("SELECT CAMPO, INICIO, SEPARADOR, LINHA FROM POSICAO{} WHERE TIPO = 'CT'"
                        " AND BANCO = " +
                        Quote(bank) + " ORDER BY INICIO, CAMPO"))) {
      layout.columns.emplace_back(row[0].AsString(), std::max<int>(1, static_cast<int>(row[1].AsInteger())));
      layout.separator = row[2].AsString();
      layout.first_line = std::max<int>(1, static_cast<int>(row[3].AsInteger()));
    }
    if (layout.columns.empty())
      throw UserError("A empresa " + company_ + " não tem o mapa de colunas do banco " + bank +
                      ". Os arquivos são feitos para uma empresa de demonstração (orvcc init --demo).");
    return layout;
  }

  // --- What stands in the files.

  std::string Edi(const Entries& entries, bool payments) const {
    std::string text, batch;
    const auto line = [](std::initializer_list<std::pair<std::size_t, std::string>> fields) {
      std::string made(250, ' ');
      for (const auto& [column, field] : fields) made.replace(column - 1, field.size(), field);
      return made + "\r\n";
    };
    const auto day = [](Date date) {
      const std::string neutral = date.Neutral();
      return neutral.substr(2, 2) + neutral.substr(5, 2) + neutral.substr(8, 2);
    };
    text = line({{1, "0"}, {2, shop_}, {48, payments ? "04" : "03"}});
    for (const Entry& e : entries) {
      std::string head = line({{1, "1"},
                               {2, shop_},
                               {38, payments ? day(e.date) : ""},
                               {123, std::string(e.status)},
                               {185, Padded(BrandOf(e).code, 3)},
                               {210, Padded(std::lround(e.rate * 100), 4)}});
      if (head != batch) text += batch = std::move(head);
      text += line({{1, "2"},
                    {2, shop_},
                    {40, day(e.date)},
                    {46, "+"},
                    {47, Padded(e.valor.Cents(), 13)},
                    {60, e.parts == 1 ? "00" : Padded(e.part, 2)},
                    {62, e.parts == 1 ? "00" : Padded(e.parts, 2)},
                    {93, e.key},
                    {114, Padded(e.total.Cents(), 13)}});
    }
    return text + line({{1, "9"}});
  }

  Row CieloCsv(const Entry& e) const {
    return {{"DATA", e.date.Brazil()},
            {"NR_COMPROVANTE", e.key},
            {"CARTAO", BrandOf(e).name},
            {"NR_PARCELA", e.part},
            {"TOTAL_PARCELA", e.parts},
            {"VALOR_PARCELA", "R$ " + e.valor.Brazil()},
            {"TAXA", "-" + Currency::FromDouble(e.rate).Brazil()},
            {"VALOR_LIQ", "R$ " + e.Net(e.valor).Brazil()},
            {"STATUS", StatusText(e.status)},
            {"EMPRESA", shop_}};
  }

  // Getnet and Rede.
  static Row SeparatedSale(const Entry& e) {
    return {{"DATA", e.date.Brazil()},
            {"CARTAO", BrandOf(e).name},
            {"NR_AUTORIZACAO", e.key.substr(0, e.key.find('/'))},
            {"NR_COMPROVANTE", e.key.substr(e.key.find('/') + 1)},
            {"NR_PARCELA", e.parts},
            {"VALOR_TOTAL", "R$ " + e.total.Brazil()},
            {"VALOR_PARCELA", "R$ " + e.Net(e.total).Brazil()}};
  }
  static Row SeparatedPayment(const Entry& e) {
    return {{"DATA", e.date.Neutral()},
            {"CARTAO", BrandOf(e).name},
            {"NR_AUTORIZACAO", e.key.substr(0, e.key.find('/'))},
            {"NR_COMPROVANTE", e.key.substr(e.key.find('/') + 1)},
            {"NR_PARCELA", e.part},
            {"TOTAL_PARCELA", e.parts},
            {"VALOR_TOTAL", "R$ " + e.total.Format2()},
            {"VALOR_PARCELA", "R$ " + e.valor.Format2()},
            {"TAXA", "-" + Currency::FromDouble(e.rate).Format2()},
            {"VALOR_LIQ", "R$ " + e.Net(e.valor).Format2()}};
  }

  Row Stone(const Entry& e) const {
    Row row = {{"ESTABELECIMENTO", shop_},
               {"PRODUTO", e.debit        ? "Débito"
                           : e.parts == 1 ? "Crédito"
                                          : "Crédito parcelado"},
               {"PARCELA", e.part},
               {"PARCELAS", e.parts},
               {"BANDEIRA", BrandOf(e).name},
               {"TAXA (%)", Currency::FromDouble(e.rate)},
               {"VALOR LIQUIDO", e.Net(e.valor)},
               {"VALOR DA PARCELA", e.valor}};
    // The further instalments tell only what is their own. A number so long is a text in every spreadsheet.
    if (e.part > 1) return row;
    row["SITUACAO"] = "Aprovada";
    row["DATA DA VENDA"] = DateTime(e.date, 10, 30, 0);
    row["TRANSACAO"] = e.key;
    return row;
  }

  static Row OrderText(const Entry& e) {
    return {{"MEIO_PAG", "Credito"},
            {"DATA", e.date.Brazil()},
            {"NR_PARCELA", e.part},
            {"NR_COMPROVANTE", e.key},
            {"VALOR_BRU", "R$ " + e.valor.Format2()},
            {"VALOR_LIQ", "R$ " + (e.valor - e.fee).Format2()},
            {"ID", e.operation}};
  }

  // Pagar.me and Yapay. What a reversal takes back stands in columns of its own.
  static Row OrderCells(const Entry& e) {
    Row row = {{"DATA", e.date},
               {"ID", e.operation},
               {"NR_COMPROVANTE", e.key},
               {"NR_PARCELA", e.part},
               {"MEIO_PAG", "Cartão de crédito"},
               {"VALOR_BRU", e.valor},
               {"VALOR_LIQ", e.valor - e.fee},
               {"VAL_EST_BRU", Currency()},
               {"VAL_EST_LIQ", Currency()},
               {"TAXA", -e.fee}};
    if (!e.reversal) return row;
    row["VALOR_BRU"] = row["VALOR_LIQ"] = Currency();
    row["VAL_EST_BRU"] = -e.valor;
    row["VAL_EST_LIQ"] = e.fee - e.valor;
    row["TAXA"] = e.fee;
    return row;
  }

  Report Sheet(const Layout& layout, const std::vector<Row>& rows) const {
    ReportRows sheet;
    sheet.set = "Transacoes";
    sheet.fields = Cells(layout);
    for (const Row& row : rows) {
      auto& cells = sheet.rows.emplace_back(sheet.fields.size());
      for (const auto& [name, column] : layout.columns)
        if (const auto found = row.find(name); found != row.end())
          cells[static_cast<std::size_t>(column) - 1] = found->second;
    }
    Report report;
    report.when = DateTime(today_, 0, 0, 0);
    report.sets.push_back(std::move(sheet));
    return report;
  }

  static std::string Separated(const Layout& layout, const std::vector<Row>& rows) {
    std::string text;
    for (int line = 1; line + 1 < layout.first_line; ++line) text += "Relatorio de demonstracao\r\n";
    if (layout.first_line > 1) text += Join(Cells(layout), layout.separator) + "\r\n";
    for (const Row& row : rows) {
      std::vector<std::string> cells(Cells(layout).size());
      for (const auto& [name, column] : layout.columns)
        if (const auto found = row.find(name); found != row.end())
          cells[static_cast<std::size_t>(column) - 1] = found->second.AsString();
      text += Join(cells, layout.separator) + "\r\n";
    }
    return text;
  }

 private:
  // So many sales stand in a file at the most, with their instalments.
  static constexpr int kMost = 40;

  std::string Named(std::string_view sql) const { return ReplaceAll(sql, "{}", company_); }

  // The columns' names, each at its place.
  static std::vector<std::string> Cells(const Layout& layout) {
    std::vector<std::string> cells;
    for (const auto& [name, column] : layout.columns) {
      cells.resize(std::max(cells.size(), static_cast<std::size_t>(column)));
      cells[static_cast<std::size_t>(column) - 1] = name;
    }
    return cells;
  }

  // Instalments of card sales with their movements, so many rows.
  Entries Read(const std::string& date, const std::string& open, Acquirer acquirer, const std::string& where,
               const std::string& order, int most) {
    const auto code = [&](CardKind kind) { return Quote(demo::FormOf(acquirer, kind).code); };
    const auto rows = db_.Rows(
        Named("SELECT FIRST " + std::to_string(most) + " I.TRANSACAO, " + date +
              ", V.VALOR, I.VALOR, I.NRPARCELA,"
              " (SELECT COUNT(*) FROM ITCONDIVENDA{} P WHERE P.CDCONDIVENDA = I.CDCONDIVENDA), M.TXOPERADORA,"
              " CASE I.CDMOEDA WHEN " +
              code(CardKind::Debit) + " THEN 1 ELSE 0 END, " + open +
              " FROM ITCONDIVENDA{} I INNER JOIN CONDIVENDA{} K ON K.CDCONDIVENDA = I.CDCONDIVENDA"
              " INNER JOIN VENDA{} V ON V.CODVEN = K.CDVENDA INNER JOIN MOEDA{} M ON M.CODMOE = I.CDMOEDA"
              " INNER JOIN RECEBERB{} B ON B.NUMERO = V.CODVEN || 'C/' || I.NRPARCELA"
              " INNER JOIN CONTACOR{} C ON C.LANCAMENTO = B.LANCAMENTO AND C.TIPO = 'LJ'"
              " WHERE I.TRANSACAO > '' AND I.CDMOEDA IN (" +
              code(CardKind::Credit) + ", " + code(CardKind::Debit) + ")" + where + " ORDER BY " + order));
    Entries entries;
    for (const auto& row : rows) {
      Entry e;
      e.key = row[0].AsString();
      e.date = row[1].AsDate();
      e.total = row[2].AsCurrency();
      e.valor = row[3].AsCurrency();
      e.part = static_cast<int>(row[4].AsInteger());
      e.parts = static_cast<int>(row[5].AsInteger());
      e.rate = row[6].AsFloat();
      e.debit = row[7].AsInteger() != 0;
      e.open = row[8].AsInteger() != 0;
      entries.push_back(std::move(e));
    }
    return entries;
  }

  // Counted from the latest, every fifth transaction is at another rate. Two are nobody's: one at once and
  // one in three instalments, all of them or the second. By date.
  Entries Finish(Acquirer acquirer, Entries entries, bool whole) const {
    if (entries.empty())
      throw UserError("A empresa " + company_ + " não tem vendas ou pedidos da " +
                      std::string(demo::kAcquirerNames[static_cast<std::size_t>(acquirer)]) +
                      ". Os arquivos são feitos para uma empresa de demonstração (orvcc init --demo).");
    const auto by_date = [](const Entry& a, const Entry& b) {
      return std::tie(a.date, a.key, a.part) < std::tie(b.date, b.key, b.part);
    };
    std::sort(entries.begin(), entries.end(), by_date);
    int transaction = -1;
    for (std::size_t i = entries.size(); i-- > 0;) {
      if (i + 1 == entries.size() || entries[i].key != entries[i + 1].key) ++transaction;
      if (transaction % 5 == 0) entries[i].rate += 0.5;
    }
    const bool order = !entries[0].operation.empty();
    for (const int number : {1, 2}) {
      Entry e;
      e.key = order ? demo::OrderNumber(acquirer, 9, 999000 + number)
                    : demo::SaleNumber(acquirer, 8, 99000 + number);
      e.date = today_.AddDays(-number);
      e.parts = number == 1 ? 1 : 3;
      e.valor = Currency(95 * number);
      e.total = e.valor * e.parts;
      e.rate = demo::FormOf(acquirer, order ? CardKind::Order : CardKind::Credit).rate;
      e.known = false;
      e.status = "01";
      if (order) e.operation = demo::OperationNumber(999000 + number, number);
      for (e.part = whole ? 1 : number; e.part <= (whole ? e.parts : number); ++e.part) entries.push_back(e);
    }
    std::sort(entries.begin(), entries.end(), by_date);
    return entries;
  }

  Attachment& db_;
  const std::string company_, shop_;
  Date today_;  // the company's last day
};

// One line a sale: the first, open when any is.
Entries OneEach(const Entries& sales) {
  Entries entries;
  for (const Entry& e : sales) {
    if (entries.empty() || entries.back().key != e.key) entries.push_back(e);
    entries.back().open |= e.open;
  }
  return entries;
}

// Without the sales whose open instalments aren't of the first one's amount: of a file of Stone, the first
// line stands for all.
Entries OfOneAmount(const Entries& sales) {
  Entries entries;
  for (std::size_t i = 0, end = 0; i < sales.size(); i = end) {
    bool alike = true;
    for (end = i; end < sales.size() && sales[end].key == sales[i].key; ++end)
      alike &= !sales[end].open || sales[end].valor == sales[i].valor;
    if (alike)
      entries.insert(entries.end(), sales.begin() + static_cast<std::ptrdiff_t>(i),
                     sales.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return entries;
}

struct Made {
  DemoFile file;
  std::string text;
  Report sheet;
};

}  // namespace

std::vector<DemoFile> WriteDemoFiles(Attachment& db, const std::string& company,
                                     const std::filesystem::path& folder) {
  Writer writer(db, company);
  std::vector<Made> all;
  const auto make = [&](const char* name, Acquirer acquirer, const char* kind, const char* bank,
                        const Entries& entries) -> Made& {
    Made& made = all.emplace_back();
    made.file = {name, std::string(demo::kAcquirerNames[static_cast<std::size_t>(acquirer)]), kind, bank};
    for (const Entry& e : entries) {
      ++made.file.lines;
      made.file.known += e.known ? 1 : 0;
      made.file.open += e.open ? 1 : 0;
    }
    return made;
  };
  const auto rows = [](const Entries& entries, const auto& row) {
    std::vector<Row> made;
    for (const Entry& e : entries) made.push_back(row(e));
    return made;
  };
  constexpr const char *kSale = "Venda", *kLedger = "Conta Corrente", *kOrder = "Pedido";

  const Entries cielo = writer.Sales(Acquirer::Cielo);
  make("CIELO_EDI_VENDAS.txt", Acquirer::Cielo, kSale, "", cielo).text = writer.Edi(cielo, false);
  const Entries paid = writer.Payments(Acquirer::Cielo);
  make("CIELO_EDI_PAGTOS.txt", Acquirer::Cielo, kLedger, "", paid).text = writer.Edi(paid, true);
  make("CIELO.csv", Acquirer::Cielo, "Venda ou Conta Corrente", "951", paid).text =
      writer.Separated(writer.MapOf("951"), rows(paid, [&](const Entry& e) { return writer.CieloCsv(e); }));

  // These begin on the fifth line, whatever the map says.
  const Entries orders = writer.Orders(Acquirer::Cielo);
  for (const bool own : {true, false}) {
    Layout layout = own ? kCieloOrders : writer.MapOf("958");
    layout.first_line = 5;
    make(own ? "CIELO_PEDIDOS_PADRAO.csv" : "CIELO_PEDIDOS.csv", Acquirer::Cielo, kOrder, own ? "" : "958",
         orders)
        .text = writer.Separated(layout, rows(orders, writer.OrderText));
  }

  for (const Acquirer acquirer : {Acquirer::Getnet, Acquirer::Rede}) {
    const bool getnet = acquirer == Acquirer::Getnet;
    const char *sold = getnet ? "952" : "954", *settled = getnet ? "953" : "955";
    const Entries sales = OneEach(writer.Sales(acquirer));
    make(getnet ? "GETNET_VENDAS.csv" : "REDE_VENDAS.csv", acquirer, kSale, sold, sales).text =
        writer.Separated(writer.MapOf(sold), rows(sales, writer.SeparatedSale));
    const Entries payments = writer.Payments(acquirer);
    make(getnet ? "GETNET_PAGTOS.csv" : "REDE_PAGTOS.csv", acquirer, kLedger, settled, payments).text =
        writer.Separated(writer.MapOf(settled), rows(payments, writer.SeparatedPayment));
  }

  const Entries stone = OfOneAmount(writer.Sales(Acquirer::Stone));
  make("STONE.xlsx", Acquirer::Stone, kSale, "", stone).sheet =
      writer.Sheet(kStone, rows(stone, [&](const Entry& e) { return writer.Stone(e); }));

  for (const Acquirer acquirer : {Acquirer::PagarMe, Acquirer::Yapay}) {
    const bool pagarme = acquirer == Acquirer::PagarMe;
    const char* bank = pagarme ? "956" : "957";
    const Entries entries = writer.Orders(acquirer);
    const std::vector<Row> cells = rows(entries, writer.OrderCells);
    make(pagarme ? "PAGARME.xlsx" : "YAPAY.xlsx", acquirer, kOrder, bank, entries).sheet =
        writer.Sheet(writer.MapOf(bank), cells);
    make(pagarme ? "PAGARME_PADRAO.xlsx" : "YAPAY_PADRAO.xlsx", acquirer, kOrder, "", entries).sheet =
        writer.Sheet(pagarme ? kPagarMe : kYapay, cells);
  }

  std::deque<NewFile> fresh;
  for (const Made& made : all) fresh.emplace_back((folder / made.file.name).string());
  std::vector<DemoFile> files;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].text.empty()) {
      WriteReport(all[i].sheet, "xlsx", fresh[i].Path());
    } else {
      std::ofstream out(fresh[i].Path(), std::ios::binary);
      out << all[i].text;
      out.close();
      if (!out)
        throw UserError("O arquivo " + all[i].file.name +
                        " não pôde ser gravado. Verifique o espaço em disco.");
    }
    files.push_back(std::move(all[i].file));
  }
  for (NewFile& file : fresh) file.Keep();
  return files;
}

}  // namespace orv
