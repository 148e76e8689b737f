// The cards' page with 50,000 instalments and 5,000 orders: listed, matched against a file of as many lines,
// written.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "bench/house.h"
#include "bench/measure.h"
#include "bench/statement_screen.h"
#include "frame/module.h"
#include "toolkit/database.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 3;
constexpr int kMany = 50000;
constexpr int kOrders = 5000;
// The sales are of days of their own.
constexpr const char* kDay = "01/03/2031";

std::string Padded(int64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - digits.size(), '0') + digits;
}

class Page : public StatementScreen {
 public:
  explicit Page(const std::filesystem::path& house) : StatementScreen(house, "TFmConcilia") {
    Do({{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet3"}});
    Set("cbCartao_Operadora", "2");
    Set("DtCartao_Fim", kDay);
    Set("DtCartao_Ini", kDay);
    Set("RgCartao_Busca", "2");
  }
  // Clicks, lets the accounting pass and reads what is told.
  void Click(const char* button) {
    auto out = Do({{"do", "click"}, {"control", button}});
    while (out.back()["on"] != Json("idle")) {
      const bool confirm =
          std::any_of(out.begin(), out.end(), [](const Json& one) { return one["on"] == Json("confirm"); });
      out = Do({{"do", "answer"}, {"value", confirm ? "yes" : "ok"}});
    }
  }
};

// Sales of one instalment each with their movements; every proof stands in the files, in another order.
void Fill(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  std::string block;
  int in_block = 0;
  const auto add = [&](const char* table, const std::string& columns, const std::string& values) {
    block += std::string("INSERT INTO ") + table + "_001 (" + columns + ") VALUES (" + values + ");\n";
    if (++in_block < 100) return;
    db->Execute("EXECUTE BLOCK AS BEGIN\n" + block + "END");
    block.clear();
    in_block = 0;
  };
  for (int i = 1; i <= kMany; ++i) {
    const std::string n = Padded(i, 5), key = std::to_string(1'000'000 + i);
    add("VENDA", "CODVEN, DATA, VALOR", "'B" + n + "', '03/01/2031', 100");
    add("CONDIVENDA", "CDCONDIVENDA, CDVENDA", key + ", 'B" + n + "'");
    add("ITCONDIVENDA", "CDITCONDIVENDA, CDCONDIVENDA, CDMOEDA, NRPARCELA, VALOR, TRANSACAO, BAIXADO",
        key + ", " + key + ", '3', 1, 100, 'P" + n + "', 0");
    add("RECEBERB", "NUMERO, LANCAMENTO", "'B" + n + "C/1', 'B" + n + "'");
    add("CONTACOR",
        "LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, OPERACAO, GRUPO, HISTORICO, "
        "TIPO, "
        "PENDENTE, LANC_CON",
        "'B" + n + "', 'D" + n +
            "', '901', '10250-1', '03/01/2031', '03/01/2031', '03/01/2031', 100, '+', '1103', '014', 'LJ', "
            "'S', ''");
  }
  if (in_block > 0) db->Execute("EXECUTE BLOCK AS BEGIN\n" + block + "END");
  db->CommitRetaining();
  for (const char* kind : {"03", "04"}) {
    std::ofstream file(house.parent_path() / (std::string("cartoes") + kind + ".txt"));
    std::string header(60, ' '), batch(250, ' ');
    header.replace(0, 1, "0").replace(47, 2, kind);
    batch.replace(0, 1, "1").replace(37, 6, "261118").replace(122, 2, "01").replace(184, 3, "002");
    batch.replace(209, 4, "0195");
    file << header << "\n" << batch << "\n";
    for (int i = kMany; i > 0; --i) {
      std::string line(250, ' ');
      line.replace(0, 1, "2")
          .replace(39, 6, "310301")
          .replace(46, 13, "0000000010000")
          .replace(59, 4, "0101");
      file << line.replace(92, 6, "P" + Padded(i, 5)).replace(113, 13, "0000000010000") << "\n";
    }
  }
}

// Orders of one receivable each, and the file that pays them.
void FillOrders(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  std::ofstream file(house.parent_path() / "pedidos.csv");
  file << "\n\n\n\n";
  for (int i = 1; i <= kOrders; ++i) {
    const std::string n = Padded(i, 5);
    db->Execute("INSERT INTO PEDIDO_001 (NUMERO, CODCLI, DT_EMISSAO, ID_TRANSACAO) VALUES ('Q" + n +
                "', '00002', '03/01/2031', 'TX" + n + "')");
    db->Execute(
        "INSERT INTO RECEBER_001 (NUMERO, CODCLI, DT_VENCTO, VALOR, VALOR2, CLASSE, STATUS, PEDIDO, "
        "HISTORICO) VALUES ('Q" +
        n + "/1', '00002', '03/01/2031', 100, 100, '1103', 'N', 'Q" + n + "', '014')");
    file << ";Pix;;;;;01/03/2031;;;1;;;;TX" << n << ";;R$ 100.00;R$ 97.00;;;;OP" << n << "\n";
  }
  db->CommitRetaining();
}

constexpr const char* kList =
    "SELECT VENDA.CODVEN, I.BAIXADO, I.CDITCONDIVENDA, VENDA.VALOR, I.NRPARCELA, I.VALOR AS VALOR_PARCELA, "
    "I.TRANSACAO, MOEDA.TXOPERADORA, '' AS LANCAMENTO, (SELECT COUNT(*) FROM ITCONDIVENDA_001 N WHERE "
    "N.CDCONDIVENDA = I.CDCONDIVENDA) AS QT_PARCELAS, '_001' AS EMPRESA, MOEDA.CONTA, VENDA.DATA FROM "
    "VENDA_001 VENDA INNER JOIN CONDIVENDA_001 C ON VENDA.CODVEN = C.CDVENDA INNER JOIN ITCONDIVENDA_001 I "
    "ON "
    "C.CDCONDIVENDA = I.CDCONDIVENDA LEFT JOIN MOEDA_001 MOEDA ON I.CDMOEDA = MOEDA.CODMOE WHERE "
    "(I.TRANSACAO "
    "= '' OR I.TRANSACAO IS NOT NULL) AND VENDA.DATA BETWEEN '03/01/2031' AND '03/01/2031'";

constexpr const char* kLog =
    "INSERT INTO AUDITORIA (ID, MOMENTO, LOGIN, EMP_PAT, AREA, TEXTO, OPERACAO, CHAVE) VALUES (NEXT VALUE "
    "FOR "
    "SQ_AUDITORIA_ID, CURRENT_TIMESTAMP, 'ana', '_001', 'CONCILIACAO', 'CONCILIACAO CARTAO DO LANCAMENTO', "
    "3, "
    "'B')";

int Run() {
  const Module module("orvCC");
  const Copy house(House(1), "cartoes.fdb");
  Fill(house.Path());
  const auto db = Attachment::Open(house.Path().string());
  Page page(house.Path());
  Best bare, list, match;
  // Getnet's page takes no file too.
  page.Set("EdtCodBanco", "952");
  for (int i = 0; i < kRuns; ++i) {
    bare.Take(Measure([&] {
      Nothing nothing;
      db->Fetch(kList, nothing);
      if (nothing.rows != kMany) throw UserError("Rows are missing.");
    }));
    page.Set("cbCartao_Operadora", "0");
    page.Set("EdCartao_Arquivo", "");
    list.Take(Measure([&] { page.Click("BtCartao_Consultar"); }));
    if (page.Count("TbVendas") != kMany) throw UserError("Rows are missing.");
    page.Set("EdtCodBanco", "");
    page.Set("cbCartao_Operadora", "2");
    page.Set("EdCartao_Arquivo", "cartoes03.txt");
    match.Take(Measure([&] { page.Click("BtCartao_Consultar"); }));
    page.Set("EdtCodBanco", "952");
  }
  Print("50,000 instalments, fetched", bare.Cpu(), "s");
  Print("listed (1.5 x)", list.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s");
  Print("a file of 50,000 lines read and matched with them", match.Cpu() - list.Cpu(), Bound::AtMost, 1, "s");

  const Seconds sales = Measure([&] { page.Click("BitBtn13"); });
  if (db->Scalar("SELECT COUNT(*) FROM ITCONDIVENDA_001 WHERE TRANSACAO STARTING WITH 'P' AND BAIXADO = 1")
          .AsInteger() != kMany)
    throw UserError("Not all was written.");
  const Seconds bare_sales = Measure([&] {
    for (int i = 1; i <= kMany; ++i) {
      db->Execute("UPDATE ITCONDIVENDA_001 SET BAIXADO = 0 WHERE CDITCONDIVENDA = " +
                  std::to_string(1'000'000 + i));
      db->Execute(kLog);
    }
    db->CommitRetaining();
  });
  Print("the statements that confirm 50,000 sales", bare_sales.wall, "s");
  Print("50,000 sales confirmed (2 x)", sales.wall, Bound::AtMost, 2 * bare_sales.wall, "s");

  page.Set("CbCartao_TipoConcilia", "1");
  page.Set("EdtCodBanco", "");
  page.Set("EdCartao_Arquivo", "cartoes04.txt");
  page.Click("BtCartao_Consultar");
  const Seconds cleared = Measure([&] { page.Click("BitBtn13"); });
  const auto pending = [&] {
    return db
        ->Scalar("SELECT COUNT(*) FROM CONTACOR_001 WHERE LANCAMENTO STARTING WITH 'B' AND PENDENTE = 'S'")
        .AsInteger();
  };
  if (pending() != 0) throw UserError("Not all was cleared.");
  const Seconds bare_cleared = Measure([&] {
    for (int i = 1; i <= kMany; ++i) {
      const std::string deste = " WHERE LANCAMENTO = 'B" + Padded(i, 5) + "'";
      db->Rows("SELECT CONTA, HISTORICO, DOCTO FROM CONTACOR_001" + deste);
      db->Rows("SELECT LANC_CON FROM CONTACOR_001" + deste);
      db->Execute(
          "INSERT INTO CONTABIL_001 (LANCAMENTO, DOCTO, CONTA_C, CONTA_D, VALOR, DATA, OBSERVACAO) "
          "VALUES ('Z" +
          Padded(i, 5) + "', 'D', '1.1.02.001', '1.1.02.001', 100, '11/20/2026', 'COMPENSAÇÃO DOCTO NR')");
      db->Execute("UPDATE CONTACOR_001 SET PENDENTE = 'N', DT_CONT = '11/18/2026', LANC_CON = 'Z" +
                  Padded(i, 5) + "'" + deste + " AND DOCTO = 'D" + Padded(i, 5) + "'");
      db->Execute(kLog);
    }
    db->CommitRetaining();
  });
  Print("the statements that clear 50,000 movements", bare_cleared.wall, "s");
  Print("50,000 movements cleared (2 x)", cleared.wall, Bound::AtMost, 2 * bare_cleared.wall, "s");

  FillOrders(house.Path());
  page.Set("CbCartao_TipoConcilia", "2");
  page.Set("EdtContaMoeda", "10250-1");
  page.Set("EdCartao_Arquivo", "pedidos.csv");
  page.Click("BtCartao_Consultar");
  const Seconds settled = Measure([&] { page.Click("BitBtn13"); });
  if (db->Scalar("SELECT COUNT(*) FROM RECEBERB_001 WHERE NUMERO STARTING WITH 'Q'").AsInteger() !=
      2 * kOrders)
    throw UserError("Not all was settled.");
  // And again, in the place of the first run.
  const Seconds replaced = Measure([&] { page.Click("BitBtn13"); });
  const auto settle = [&](const std::string& run, const std::string& before) {
    for (int i = 1; i <= kOrders; ++i) {
      const std::string n = "Q" + Padded(i, 5) + "/1";
      db->Rows(
          "SELECT R.CLASSE, R.HISTORICO, H.SITUACAO, R.VALOR2 FROM RECEBER_001 R LEFT JOIN HISTCP_001 H ON "
          "H.HISTORICO = R.HISTORICO WHERE R.NUMERO = '" +
          n + "'");
      const std::string former =
          " FROM RECEBERB_001 WHERE NUMERO = '" + n + "' AND DOCTO = '" + n + "' AND DT_PAGTO = '03/01/2031'";
      db->Rows("SELECT MAX(LANCAMENTO), SUM(VALOR_PAGO), SUM(DESCONTO), SUM(DESCONTO2)" + former);
      db->Execute(
          "UPDATE RECEBER_001 SET VALOR_PAGO = (VALOR_PAGO + 1), DESCONTO = (DESCONTO + 1) WHERE "
          "NUMERO = '" +
          n + "'");
      for (const char* table : {"CONTACOR_001", "CONTABIL_001"})
        db->Execute(std::string("DELETE FROM ") + table + " WHERE LANCAMENTO = '" + before + "'");
      db->Execute("DELETE" + former);
      for (int row = 0; row < 2; ++row) {
        db->Execute(
            "INSERT INTO RECEBERB_001 (LANCAMENTO, NUMERO, VALOR2, DT_PAGTO, DT_CONT, HISTORICO, VALOR_PAGO, "
            "JUROS, VAL_DEV, QT_DEV, DESCONTO, DESCONTO2, DESCONTO3, DOCTO, OBS, COMISSAO) VALUES ('" +
            run + "', '" + n + "', 100, '03/01/2031', '11/20/2026', '014', 97, 0, 0, 0, 0, 0, 0, '" + n +
            "', '', 'S')");
        db->Execute(
            "INSERT INTO CONTABIL_001 (LANCAMENTO, DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, "
            "CLASSE, HISTORICO, VALOR, DATA, CODIGO, OBSERVACAO) VALUES ('" +
            run + "', '00000001', '" + n +
            "', '00002', '10250-1', '+', 'RR', '1103', '014', 97, '11/20/2026', '000', '00002')");
      }
      db->Execute(kLog);
    }
    db->CommitRetaining();
  };
  const Seconds bare_settled = Measure([&] { settle("BARE1", "BARE0"); });
  const Seconds bare_replaced = Measure([&] { settle("BARE2", "BARE1"); });
  Print("the statements that settle 5,000 orders", bare_settled.wall, "s");
  Print("5,000 orders settled (2 x)", settled.wall, Bound::AtMost, 2 * bare_settled.wall, "s");
  Print("the statements that settle them again", bare_replaced.wall, "s");
  Print("5,000 orders settled again (2 x)", replaced.wall, Bound::AtMost, 2 * bare_replaced.wall, "s");
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
