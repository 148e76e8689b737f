// The position of receivables and payables: rows by title and day, filters, companies, the printed page.
#include "tests/reports/rel_cc_desk.h"
#include "toolkit/currency.h"

namespace orv::test {
namespace {

class PosicaoTest : public RelCcTest {
 protected:
  static void Open(Desk& desk, const Fields& fields = {}) {
    desk.Open("TFmRelCCPosicao");
    Fill(desk, fields);
    Days(desk, "01/11/2026", "30/11/2026");
  }
  static void Days(Desk& desk, const std::string& from, const std::string& to) {
    desk.Set({{"EdtDataIni", from}, {"EdtDataFim", to}});
  }
  // Gathers; receivables and payables, and the position at the end of each day.
  static std::string Gathered(Desk& desk, const Fields& fields = {}) {
    Fill(desk, fields);
    EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
    const auto shown = {"Dt_Movto", "Numero",   "Val_Emi", "Val_Pag",
                        "Juros",    "Desconto", "Val_Dev", "Saldo_Ini"};
    return desk.Read("TbReceber", shown) + "/\n" + desk.Read("TbPagar", shown) + "/\n" +
           desk.Read("TbPosicao", {"Periodo", "Receber", "Pagar"});
  }
  void Titles() {
    Clear();
    // Issued before: half of one was paid since, interest and all, and one on the first day.
    const std::string number = "000000000001";
    Put(Receber{
        .numero = number, .dt_emissao = "10/01/2026", .valor2 = 200, .valor_pago = 102, .classe = "1101"});
    Run("UPDATE RECEBER_001 SET JUROS = 2, FATURA = 'FATURA 00000001', DT_VENCTO = '11/15/2026'");
    Put(Receberb{.numero = number, .valor_pago = 62, .juros = 2, .dt_cont = "11/10/2026"});
    Put(Receberb{.numero = number, .valor_pago = 40, .dt_cont = "11/10/2026"});
    // Issued in it, paid that day and later; another situation; and titles that don't count.
    Put(Receber{.numero = "R2", .dt_emissao = "11/12/2026", .valor2 = 90, .valor_pago = 70, .situacao = "2"});
    Put(Receberb{.numero = "R2", .valor_pago = 50, .desconto = 2, .desconto3 = 4, .dt_cont = "11/12/2026"});
    Put(Receberb{.numero = "R2", .valor_pago = 20, .val_dev = 4, .dt_cont = "11/30/2026"});
    Put(Receber{.numero = "R3", .dt_emissao = "11/12/2026", .status = "O"});
    Put(Receber{.numero = "R4", .dt_emissao = "12/01/2026"});
    Put(Pagto{.docto = "NOTA 1", .dupli = "NOTA 1/1", .dt_ven = "11/20/2026", .valor = 300, .val_pag = 110});
    Run("UPDATE PAGTO_001 SET DESCONTO = 10, DT_DIGITA = '10/31/2026'");
    Put(Pagto1{.val_pag = 110, .juro = 5, .desconto = 10, .dt_lan = "11/20/2026", .val_dev = 1});
    Put(Pagto{
        .num_ap = "000002", .codcre = "00004", .valor = 80, .situacao = "1", .dt_digita = "11/20/2026"});
    Put(Pagto1{.num_ap = "000002", .val_pag = 8, .dt_lan = "11/20/2026"});
    Run("UPDATE ENTIDADE_001 SET NOME = 'CLIENTE DA SERRA' WHERE CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIOS DO VALE' WHERE CODCLI IN ('00003', '00004')");
  }
};

TEST_F(PosicaoTest, RowsByTitleAndDay) {
  Titles();
  Desk desk(database_);
  Open(desk);
  const std::string first = "2026-11-10|000000000001|-|102|2|0|0|200\n";
  const std::string second = "2026-11-12|R2|90|50|0|6|0|200\n2026-11-30|R2|-|20|0|0|4|200\n";
  const std::string pay1 = "2026-11-20|000001|-|116|5|10|1|296\n",
                    pay2 = "2026-11-20|000002|80|8|0|0|0|296\n";
  EXPECT_EQ(Gathered(desk), first + second + "/\n" + pay1 + pay2 +
                                "/\nInício|200.0000|296.0000\n10/11/26|100.0000|296.0000\n"
                                "12/11/26|134.0000|296.0000\n20/11/26|134.0000|252.0000\n"
                                "30/11/26|110.0000|252.0000\n");
  EXPECT_EQ(desk.Read("TbPagar", {"Docto", "Dupli", "Codcli", "Nome", "Dt_Vencto"}).substr(0, 45),
            "NOTA 1|NOTA 1/1|00003|FIOS DO VALE|2026-11-20");
  EXPECT_EQ(desk.Read("TbReceber", {"Docto"}).substr(0, 16), "FATURA 00000001\n");

  // From figures to their rows.
  EXPECT_EQ(Detail(desk, "DBGrid3", 3, "Bai_Pagar"), "Títulos de 20/11/26 2");
  EXPECT_EQ(Detail(desk, "DBGrid3", 3, "Emi_Receber"), "Títulos de 20/11/26 0");
  desk.Page("TsReceber");
  EXPECT_EQ(Detail(desk, "DBGrid1", 0, "Val_Pag"), "Título a receber 000000000001 3");
  desk.Page("TsPagar");
  EXPECT_EQ(Detail(desk, "DBGrid2", 0, "Saldo_Ini"), "Posição a pagar antes de 01/11/2026 1");
  ExpectFile(Printed(desk, "BtnImprimir"), ORV_FILES "WCCPosicao.html");

  const struct {
    Fields fields;
    std::string receber, pagar;
  } cases[] = {
      // The situation reaches what was received and not what was paid, nor the positions.
      {{{"EdtSituacao", "'2'"}}, second, pay1 + "2026-11-20|000002|-|8|0|0|0|296\n"},
      {{{"CbSituacao", "Desconsiderar"}}, first, pay1 + pay2},
      {{{"EdtSituacao", ""}}, first + second, pay1 + pay2},
      {{{"EdtCodCli", "00004"}}, "-|-|-|-|-|-|-|0\n", "2026-11-20|000002|80|8|0|0|0|0\n"},
      {{{"EdtCodCli", ""}, {"EdtCodClasse", "1101"}}, first, "-|-|-|-|-|-|-|0\n"},
      {{{"CbPagar", "false"}}, first, ""},
  };
  for (const auto& c : cases) {
    const std::string all = Gathered(desk, c.fields);
    EXPECT_EQ(all.substr(0, all.find("/\nIn")), c.receber + "/\n" + c.pagar) << c.fields[0].first;
  }
  // Another company's title of the same number and day falls on the row, one of another day doesn't.
  Put(Receber{.numero = "R2", .dt_emissao = "11/05/2026", .valor2 = 7}, "_002");
  Put(Receberb{.numero = "R2", .valor_pago = 7, .dt_cont = "11/12/2026"}, "_002");
  EXPECT_EQ(desk.Press("SpeedButton2"), "");
  const std::string both = Gathered(desk, {{"EdtCodClasse", ""}, {"CbEmpresa", "true"}});
  EXPECT_EQ(both.substr(0, both.find('/')),
            "2026-11-05|R2|7|-|-|-|-|200\n" + first + "2026-11-12|R2|90|57|0|6|0|200\n" + second.substr(30));
}

// The position at the end of a day is the one at the start of the next.
TEST_F(PosicaoTest, PositionsOfTheDemoCompanies) {
  Run("UPDATE PAGTO1_001 SET DESCONTO = 0.5 WHERE CHAR_LENGTH(NUM_AP) > 0 AND DT_LAN > '06/30/2026'");
  Run("UPDATE PAGTO_001 P SET DESCONTO = (SELECT COALESCE(SUM(B.DESCONTO), 0) FROM PAGTO1_001 B WHERE "
      "B.NUM_AP = P.NUM_AP), VALOR = VALOR + (SELECT COALESCE(SUM(B.DESCONTO), 0) FROM PAGTO1_001 B WHERE "
      "B.NUM_AP = P.NUM_AP)");
  Desk desk(database_);
  Open(desk);
  const auto positions = [&](bool last) {
    std::string text;
    for (const char* all : {"false", "true"}) {
      Fill(desk, {{"CbEmpresa", all}});
      desk.Click("BtnExecutaSQL");
      const auto rows = desk.Read("TbPosicao");
      const Row& row = last ? rows.back() : rows.front();
      text += row.at("Receber") + "|" + row.at("Pagar") + "\n";
    }
    return text;
  };
  Days(desk, "15/03/2026", "31/10/2026");
  std::string all = positions(false);
  const std::string end = positions(true);
  Days(desk, "01/11/2026", "20/11/2026");
  EXPECT_EQ(positions(false), end);
  all += end + positions(true);
  EXPECT_EQ(all,
            "54001.2200|26922.3500\n64215.2000|30615.9600\n74777.5200|34096.0700\n"
            "86554.9800|37367.8000\n73068.7700|37693.4600\n89190.7000|42106.6800\n");
}

}  // namespace
}  // namespace orv::test
