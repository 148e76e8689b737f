// The workbench: sales and their movements against the files of card acquirers.
#include <algorithm>

#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

constexpr const char* kWritten = "Operação concluída com sucesso.";
constexpr const char* kTables =
    "VENDA_001 CONDIVENDA_001 ITCONDIVENDA_001 RECEBERB_001 CONTACOR_001 CONTABIL_001 CENTRO_RATEIO_001";

class CartoesTest : public ConciliaTest {
 protected:
  CartoesTest() {
    Empty("VENDA_001 CONDIVENDA_001 ITCONDIVENDA_001 RECEBER_001 RECEBERB_001 POSICAO_001");
    Usual(Movimento{.operacao = "+", .historico = "014", .tipo = "LJ", .pendente = "S"});
  }

  // A sale in so many instalments of 50,00, each with its movement; the keys are 10 * number + instalment.
  void Sale(int number, const std::string& transacao, int parcelas, const std::string& company = "_001") {
    const std::string codven = "V" + std::to_string(number);
    Put(Venda{.codven = codven, .valor = 50 * parcelas}, company);
    Put(Condivenda{.cdcondivenda = number, .cdvenda = codven}, company);
    for (int p = 1; p <= parcelas; ++p) {
      const int key = 10 * number + p;
      Put(Itcondivenda{.cditcondivenda = key,
                       .cdcondivenda = number,
                       .nrparcela = p,
                       .valor = "50",
                       .transacao = transacao.c_str()},
          company);
      const std::string lancamento = "L" + std::to_string(key);
      Put(Receberb{.numero = codven + "C/" + std::to_string(p), .lancamento = lancamento}, company);
      Put(Movimento{.lancamento = lancamento, .docto = "D" + std::to_string(key), .valor = "50"}, company);
    }
  }

  static std::string Spaces(std::string text, std::size_t column, const std::string& part) {
    text.resize(std::max(text.size(), column - 1 + part.size()), ' ');
    return text.replace(column - 1, part.size(), part);
  }
  // A file of Cielo's records: kind, then batches of a status and a day with lines "proof parcel/count".
  static std::string Edi(const std::string& kind) { return Spaces("0", 48, kind) + "\r\n"; }
  static std::string Batch(const std::string& status, const std::string& day) {
    return Spaces(Spaces(Spaces(Spaces(Spaces("1", 2, "00000000077"), 38, day), 123, status), 185, "002"),
                  210, "0195") +
           "\r\n";
  }
  static std::string Detail(const std::string& proof, const std::string& parcel, const std::string& count) {
    return Spaces(Spaces(Spaces(Spaces(Spaces("2", 40, "261101"), 47, "0000000005000"), 60, parcel + count),
                         93, proof),
                  114, "0000000010000") +
           "\r\n";
  }
  // Getnet's and Rede's payments by the map of bank 801.
  void Map() {
    int column = 0;
    for (const char* name : {"DATA", "NR_AUTORIZACAO", "NR_COMPROVANTE", "VALOR_PARCELA", "VALOR_LIQ"})
      Run("INSERT INTO POSICAO_001 (BANCO, TIPO, CAMPO, INICIO, SEPARADOR, LINHA) VALUES ('801', 'CT', '" +
          std::string(name) + "', " + std::to_string(++column) + ", ';', 2)");
  }

  static void Begin(Desk& desk, const char* operadora, const char* tipo) {
    if (desk.State()["screens"].Items().empty()) {
      desk.Open("TFmConcilia");
      desk.Page("TabSheet3");
    }
    desk.Set("cbCartao_Operadora", operadora);
    if (tipo[0] != 0) desk.Set("CbCartao_TipoConcilia", tipo);
  }
  // What is listed and what the file has: number, tick, instalment.
  std::string Consult(Desk& desk, const std::string& name, const std::string& bytes) {
    desk.Set("EdCartao_Arquivo", Written(name, bytes));
    return Consult(desk);
  }
  static std::string Consult(Desk& desk) {
    const std::string said = desk.Told("BtCartao_Consultar");
    return (said.empty() ? "" : said + " ") + Shown(desk);
  }
  static std::string Shown(Desk& desk) {
    return desk.Column("TbVendas", "CDITCONDIVENDA") + " " + desk.Column("TbVendas", "SEL") + " / " +
           desk.Column("TbCartao_Arq", "SEL");
  }
  // Presses "Gravar", answers for the accounting of each company, and reads what is told.
  static std::string Write(Desk& desk, const char* answer = "yes") {
    desk.Click("BitBtn13");
    while (Confirms(desk)) desk.Answer(answer);
    return desk.Told();
  }
  static bool Confirms(const Desk& desk) {
    return std::any_of(desk.Latest().begin(), desk.Latest().end(),
                       [](const Json& one) { return one["on"] == Json("confirm"); });
  }
  std::string Items() { return Sql("SELECT CDITCONDIVENDA, BAIXADO FROM ITCONDIVENDA_001 ORDER BY 1"); }
};

TEST_F(CartoesTest, Refusals) {
  Desk desk(database_, At{"TFmConcilia"});
  desk.Page("TabSheet3");
  Map();
  Sale(1, "000123", 1);
  const std::string csv = Written("VENDAS.CSV", ""), other = Written("vendas.dat", "x");
  const auto choose = [&](const char* name, const char* kind) {
    return [&desk, name, kind] { Begin(desk, name, kind); };
  };
  Refuses(desk, "BitBtn13", kTables, {{{}, "Não há conciliação de cartões a gravar."}});
  Refuses(desk, "BtCartao_Consultar", kTables,
          {{{}, "Selecione uma operadora.", "cbCartao_Operadora"},
           {{}, "Arquivo inválido", "EdCartao_Arquivo", "", choose("2", "0")},
           {{{"EdtCodBanco", "801"}, {"EdCartao_Arquivo", other}},
            "Arquivo inválido. Tente novamente com um arquivo .csv ou .txt"},
           {{{"EdtCodBanco", ""}, {"EdCartao_Arquivo", csv}},
            "Banco inválido.",
            "EdtCodBanco",
            "INSERT INTO POSICAO_001 (BANCO, TIPO, CAMPO, INICIO) VALUES ('', 'CT', 'DATA', 1)"},
           {{},
            "Tipo do arquivo inválido para opção selecionada.",
            "",
            "DELETE FROM POSICAO_001 WHERE BANCO = ''",
            [&] { desk.Set("EdCartao_Arquivo", Written("edi.txt", Edi("04"))); }},
           {{}, "Banco inválido.", "EdtCodBanco", "", choose("0", "1")},
           {{{"EdtCodBanco", "801"}},
            "Arquivo inválido. Tente novamente com um arquivo .csv ou .txt",
            "",
            "",
            [&] { desk.Set("EdCartao_Arquivo", csv); }},
           {{}, "Arquivo inválido. Tente novamente com um arquivo .csv.", "", "", choose("5", "1")},
           {{},
            "A Rede não tem conciliação de pedidos. Escolha \"Venda\" ou \"Conta Corrente\".",
            "CbCartao_TipoConcilia",
            "",
            choose("5", "2")},
           {{}, "Arquivo inválido. Tente novamente com um arquivo .xlsx", "", "", choose("1", "")}});
  // The kind follows the acquirer.
  std::string kinds;
  for (const char* acquirer : {"Getnet", "Stone", "Cielo", "Yapay", "Rede"}) {
    desk.Set("cbCartao_Operadora", acquirer);
    kinds += desk.Text("CbCartao_TipoConcilia") + desk.EnabledOf({"CbCartao_TipoConcilia"}) + " ";
  }
  EXPECT_EQ(kinds, "Venda1 Venda0 Venda1 Pedido0 Pedido1 ");
  // The list stands by now; what was listed for another acquirer isn't written.
  EXPECT_EQ(Shown(desk), "11 0 / ");
  Begin(desk, "0", "0");
  Refuses(desk, "BitBtn13", kTables,
          {{{}, "A operadora ou o tipo foi trocado depois da consulta. Consulte novamente."}});
  desk.Set("EdCartao_Arquivo", Written("curta.csv", "\r\na;b\r\n"));
  EXPECT_EQ(Consult(desk).find("Não foi possível carregar o arquivo.\n\n"), 0U);
}

TEST_F(CartoesTest, CieloSalesAreConfirmedAndTakenBack) {
  Sale(1, "000123", 2);
  Sale(2, "1234", 1);
  Sale(3, "", 1);
  Desk desk(database_);
  Begin(desk, "2", "0");
  const std::string before = Tables(kTables);
  // One proof, one line: its instalments together; a later line of the proof, other zeros and no proof
  // nothing.
  const std::string file = Edi("03") + Batch("00", "261210") + Detail("000123", "01", "02") +
                           Detail("000123", "02", "02") + Detail("001234", "00", "00") +
                           Detail("      ", "00", "00");
  EXPECT_EQ(Consult(desk, "vendas.txt", file), "31 11 12 21 0 1 1 0 / 1 0 0 0");
  EXPECT_EQ(desk.Read("TbCartao_Arq", {"CARTAO", "DATA", "COMPROVANTE_VENDA", "VALOR_TOTAL", "VALOR_PARCELA",
                                       "VALOR_PARCELA_LIQ", "TAXA", "PARCELA", "EMPRESA", "DESC_STATUS_PAG"})
                .substr(0, 93),
            "Mastercard|2026-11-01 00:00:00|000123|100.0000|50.0000|49.0300|1.9500|1/2|0000000007|Agendado");
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(Items(), "11|1;12|1;21|0;31|0");
  EXPECT_EQ(Audit("CONCILIACAO"),
            "CONCILIACAO CARTAO DO LANCAMENTO 000123 DA VENDA V1|3|V1;"
            "CONCILIACAO CARTAO DO LANCAMENTO 000123 DA VENDA V1|3|V1");
  // A tick goes to all of the transaction and to its lines, also back.
  desk.Cell("GridCC", 1, "SEL", "false");
  EXPECT_EQ(Shown(desk), "31 11 12 21 0 0 0 0 / 0 0 0 0");
  desk.Cell("GridCC", 0, "SEL", "true");
  EXPECT_EQ(Shown(desk), "31 11 12 21 1 0 0 0 / 0 0 0 0");
  desk.Cell("GridCC", 0, "SEL", "false");
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(Tables(kTables), before);
  // Two clerks: what the other one has confirmed meanwhile stays, and is told in the audit once.
  Desk other(database_);
  Begin(other, "2", "0");
  Consult(other, "vendas.txt", file);
  EXPECT_EQ(Write(other), kWritten);
  Empty("AUDITORIA");
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(Items(), "11|1;12|1;21|0;31|0");
  EXPECT_EQ(Audit("CONCILIACAO"), "");
  // A file of a third kind passes and ticks nothing.
  desk.Set("RgCartao_Busca", "2");
  EXPECT_EQ(Consult(desk, "vendas.txt", Edi("09") + Batch("00", "") + Detail("1234  ", "00", "00")),
            "31 11 12 21 0 1 1 0 / 0");
}

TEST_F(CartoesTest, CieloPaymentsClearMovements) {
  Sale(1, "000123", 2);
  Sale(2, "000456", 1);
  Sale(3, "000789", 1);
  Put(Movimento{.lancamento = "L21", .docto = "OUTRO", .conta = kOutraConta});
  const std::string before = Tables(kTables);
  Desk desk(database_);
  Begin(desk, "2", "1");
  const std::string file = Edi("04") + Batch("01", "261118") + Detail("000123", "02", "02") +
                           Detail("000456", "01", "01") + Batch("00", "261119") +
                           Detail("000789", "00", "00");
  EXPECT_EQ(Consult(desk, "pagtos.txt", file), "11 12 21 21 31 0 1 1 1 1 / 1 1 1");
  // Confirmed once for all.
  desk.Click("BitBtn13");
  EXPECT_TRUE(Confirms(desk));
  desk.Answer("yes");
  EXPECT_EQ(desk.Told(), kWritten);
  EXPECT_NE(desk.Caption("LbCartao").find("1 marcado ficou de fora: o arquivo não diz que foi pago"),
            std::string::npos);
  EXPECT_EQ(Sql("SELECT LANCAMENTO, DOCTO, PENDENTE, DT_CONT, LANC_CON FROM CONTACOR_001 ORDER BY 1, 2"),
            "L11|D11|S|2026-11-10|;L12|D12|N|2026-11-18|006789;L21|D21|N|2026-11-18|006790;"
            "L21|OUTRO|S|2026-11-10|;L31|D31|S|2026-11-10|");
  EXPECT_EQ(Posted(),
            "006789|D12|1.1.03.001|1.1.02.001|+|CC|014|50.0000|2026-11-20|000|COMPENSAÇÃO DOCTO NR: "
            "D12.;006790|D21|1.1.03.001|1.1.02.001|+|CC|014|50.0000|2026-11-20|000|COMPENSAÇÃO DOCTO "
            "NR: D21.");
  // Once more: another day, the same number and accounting. One that isn't in the file keeps its day.
  desk.Set("RgCartao_Busca", "2");
  Consult(desk, "pagtos.txt", Edi("04") + Batch("01", "261119") + Detail("000456", "01", "01"));
  const std::string posted = Posted();
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(Sql("SELECT LANCAMENTO, DT_CONT, LANC_CON FROM CONTACOR_001 WHERE PENDENTE = 'N' ORDER BY 1"),
            "L12|2026-11-18|006789;L21|2026-11-19|006790");
  EXPECT_EQ(Posted(), posted);
  // Unticked it goes back, where the file tells it as paid.
  Consult(desk, "pagtos.txt", file);
  for (const int row : {0, 2}) desk.Cell("GridCC", row, "SEL", "false");
  EXPECT_EQ(Write(desk), kWritten);
  Run("UPDATE CONTACOR_001 SET DT_CONT = '11/10/2026'");
  EXPECT_EQ(Tables(kTables), before);
}

TEST_F(CartoesTest, GetnetPaymentsHoldLocksAndStatements) {
  Map();
  Sale(1, "A1/77", 1);
  Sale(2, "A2/", 1);
  Sale(3, "X", 1);
  Sale(4, "Y", 1);
  Desk desk(database_);
  Begin(desk, "0", "1");
  desk.Set("EdtCodBanco", "801");
  const std::string file =
      "data;aut;comp;bruto;liq\n2026-11-17;A1;77;50.00;48.50\n;A2;;50.00;48.00\n\n;;;9;9\n\n";
  EXPECT_EQ(Consult(desk, "pagtos.csv", file), "11 21 31 41 1 1 0 0 / 1 1");
  // What a closed period holds is refused whole; a refused posting clears without it.
  for (const char* tipo : {"CX", "CT"}) Closed(desk, "BitBtn13", tipo, tipo[1] == 'T' ? kConta : "");
  // By hand without a day: left out.
  desk.Cell("GridCC", 3, "SEL", "true");
  EXPECT_EQ(Write(desk, "no"), kWritten);
  EXPECT_NE(desk.Caption("LbCartao").find("1 marcado à mão, sem data no arquivo, ficou de fora"),
            std::string::npos);
  EXPECT_EQ(Movements(),
            "L11|N|006789|2026-11-17;L21|N|006790|2026-11-17;L31|S||2026-11-10;L41|S||2026-11-10");
  EXPECT_EQ(Posted(), "");
  // Tied to the statement it isn't undone here; pending under a number it is.
  Put(Extrato{.conciliado = "S", .lanc_con = "006789"});
  Put(Partida{.lancamento = "000009"});
  Run("UPDATE CONTACOR_001 SET LANC_CON = '000009' WHERE LANCAMENTO = 'L31'");
  desk.Set("RgCartao_Busca", "2");
  EXPECT_EQ(Consult(desk), "11 21 31 41 1 1 0 0 / 1 1");
  for (const int row : {0, 1}) desk.Cell("GridCC", row, "SEL", "false");
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_NE(desk.Caption("LbCartao").find("conciliado com o extrato"), std::string::npos);
  EXPECT_EQ(Movements(), "L11|N|006789|2026-11-17;L21|S||2026-11-17;L31|S||2026-11-10;L41|S||2026-11-10");
  EXPECT_EQ(Posted(), "");
}

TEST_F(CartoesTest, WhatFailsLeavesSalesWhole) {
  Map();
  Sale(1, "A1/1", 2);
  Sale(2, "A2/2", 1);
  Desk desk(database_);
  Begin(desk, "0", "1");
  desk.Set("EdtCodBanco", "801");
  const std::string file = "t\n2026-11-17;A1;1;50.00;48.50\n2026-11-17;A2;2;50.00;48.00\n";
  Stoppable("CONTABIL_001 CONTACOR_001");
  Ddl("ALTER TABLE CONTABIL_001 ADD CONSTRAINT RECUSA CHECK (DOCTO <> 'D12')");
  Consult(desk, "pagtos.csv", file);
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(Sql("SELECT LANCAMENTO, PENDENTE FROM CONTACOR_001 ORDER BY 1"), "L11|S;L12|S;L21|N");
  EXPECT_EQ(Sql("SELECT DOCTO FROM CONTABIL_001"), "D21");
  EXPECT_NE(Audit("CONCILIACAO").find("FALHA NA CONCILIACAO CARTAO DA VENDA V1"), std::string::npos);
  EXPECT_NE(desk.Caption("LbCartao").find("V1"), std::string::npos);
  // Any other row: nothing at all.
  Ddl("ALTER TABLE CONTABIL_001 DROP CONSTRAINT RECUSA");
  const std::string half = Tables(kTables);
  Consult(desk, "pagtos.csv", file);
  StopAt(2);
  EXPECT_EQ(Write(desk), kWritten);
  StopAt(-1);
  EXPECT_EQ(desk.Caption("LbCartao").find("Nada foi gravado: "), 0U);
  EXPECT_EQ(Tables(kTables), half);
}

TEST_F(CartoesTest, TheFileIsComparedWithWhatWasAgreed) {
  Map();
  Run("UPDATE MOEDA_001 SET TXOPERADORA = 3 WHERE CODMOE = '3'");
  Sale(1, "A1/1", 1);
  Sale(2, "A2/2", 1);
  Sale(3, "A3/3", 1);
  Desk desk(database_);
  Begin(desk, "0", "1");
  desk.Set("EdtCodBanco", "801");
  Consult(desk, "pagtos.csv",
          "t\n2026-11-17;A1;1;50.00;48.50\n2026-11-17;A2;2;50.00;48.00\n2026-11-17;Z;9;7;6\n");
  EXPECT_FALSE(desk.Visible("LbConferencia"));
  desk.Check("CbConferencia", true);
  EXPECT_EQ(
      desk.Caption("LbConferencia"),
      "3 linhas no arquivo, 2 conciliadas, 1 sem correspondência. Bruto 107,00, taxa 4,50, líquido 102,50. "
      "Nas conciliadas a taxa foi de 3,50, a contratada é de 3,00: 0,50 a mais.");
  desk.Check("CbDiferencas", true);
  EXPECT_EQ(Shown(desk), "21 31 1 0 / 1 0");
  desk.Cell("GridCC", 0, "SEL", "false");
  EXPECT_EQ(Shown(desk), "21 31 0 0 / 0 0");
  EXPECT_EQ(desk.Caption("LbConferencia").find("3 linhas no arquivo, 1 conciliada, 2 sem"), 0U);
  EXPECT_EQ(Write(desk), kWritten);
  desk.Check("CbDiferencas", false);
  EXPECT_EQ(Shown(desk), "11 21 31 1 0 0 / 1 0 0");
  EXPECT_EQ(Movements(), "L11|N|006789|2026-11-17;L21|S||2026-11-10;L31|S||2026-11-10");
}

TEST_F(CartoesTest, StoneWantsEqualInstalmentsAndCompaniesAreWalked) {
  Empty("VENDA_002 CONDIVENDA_002 ITCONDIVENDA_002 RECEBERB_002 CONTACOR_002 CONTABIL_002");
  Sale(1, "000123", 1);
  Sale(1, "000123", 1, "_002");
  Sale(2, "000456", 1, "_002");
  Desk desk(database_);
  Begin(desk, "2", "1");
  desk.Check("CbTodasEmpresas", true);
  const std::string file = Edi("04") + Batch("01", "261118") + Detail("000123", "01", "01");
  EXPECT_EQ(Consult(desk, "pagtos.txt", file), "11 11 21 1 1 0 / 1");
  EXPECT_EQ(Write(desk), kWritten);
  const std::string sql = "SELECT LANCAMENTO, PENDENTE, LANC_CON FROM CONTACOR_00";
  EXPECT_EQ(Sql(sql + "1"), "L11|N|006789");
  EXPECT_EQ(Sql(sql + "2 ORDER BY 1"), "L11|N|001382;L21|S|");
  EXPECT_EQ(Count("CONTABIL_001") + Count("CONTABIL_002"), "11");
  // A period that is closed in the other company only.
  Put(Bloqueio{.emp_pat = "_002"});
  desk.Set("RgCartao_Busca", "2");
  Consult(desk);
  for (const int row : {0, 1}) desk.Cell("GridCC", row, "SEL", "false");
  const std::string before = Tables("CONTACOR_001 CONTACOR_002");
  EXPECT_NE(Write(desk), kWritten);
  EXPECT_EQ(Tables("CONTACOR_001 CONTACOR_002"), before);
}

}  // namespace
}  // namespace orv::test
