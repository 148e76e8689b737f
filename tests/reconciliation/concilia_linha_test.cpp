// A line without a movement is posted from the workbench, by a rule where there is one.
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

class ConciliaLinhaTest : public ConciliaTest {
 protected:
  // The quick entry of a line; where the focus is in it.
  static std::string Post(Desk& desk) {
    desk.Stand("OrvDBGrid2", 0);
    desk.Click("BtLancaLinha");
    return desk.FocusName();
  }
  // The stored movement but for its number and what the reconciliation writes.
  std::string Posting(const std::string& docto) {
    return Sql(
        "SELECT M.CONTA, BANCO, M.VALOR, GRUPO, M.OBSERVACAO, TIPO, DT_LAN, DT_VENCTO, DT_CONT, CONTA_C, "
        "CONTA_D, C.VALOR, DATA FROM CONTACOR_001 M LEFT JOIN CONTABIL_001 C ON C.LANCAMENTO = M.LANCAMENTO "
        "WHERE M.DOCTO = '" +
        docto + "' ORDER BY C.VALOR");
  }
  std::string Rules() { return Sql("SELECT * FROM REGRA_EXTRATO_001"); }
};

TEST_F(ConciliaLinhaTest, IsPostedAsTheQuickEntryPostsTiedAndKeptAsARule) {
  // Beside a text that would break a statement, one that a pattern would take for another.
  Put(Extrato{.lancto = "E1", .docto = "900", .valor = "15.50", .observacao = "TARIFA D'ÁGUA 100% 11/2026"});
  Put(Extrato{.lancto = "E2", .docto = "", .valor = "16", .observacao = "Tarifa d'agua 12/2026"});
  Put(Extrato{.lancto = "E3", .docto = "902", .valor = "99", .observacao = "TARIFA D'ÁGUA 13"});
  Put(Extrato{.lancto = "E4", .docto = "903", .valor = "16", .operacao = "C", .observacao = "TARIFA D'ÁGUA"});
  Desk desk(database_);
  Open(desk);
  EXPECT_EQ(desk.Told("BtLancaLinha"), "Nenhuma linha do extrato está selecionada.");
  EXPECT_EQ(Consult(desk), " / E1 E2 E3 E4");

  EXPECT_EQ(Post(desk), "EdtTipo");
  EXPECT_EQ(desk.EnabledOf({"EdtConta", "PqConta", "CbOper", "EdtValor"}), "0000");
  // The side is the line's, whatever the class says.
  desk.Fill({{"EdtTipo", "1202"}, {"EdtTipo", "3103"}, {"EdtHis", "012"}});
  EXPECT_EQ(desk.Texts({"EdtConta", "EdtDocto", "CbOper", "EdtValor", "DtLancto", "DtCont", "EdtRegraTexto"}),
            "10250-1|900|Débito|15,50|11/11/2026|11/11/2026|TARIFA D'ÁGUA");
  const char* tables = "CONTACOR_001 CONTABIL_001 EXTRATO_001 REGRA_EXTRATO_001 AUDITORIA";
  const std::string before = Tables(tables);
  // Neither a rule that is none nor a closed period leaves anything behind.
  desk.Set({{"EdtRegraDe", "20"}, {"EdtRegraAte", "10"}});
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(desk.Messages(), "error: O valor final da regra deve ser maior que o inicial.");
  EXPECT_EQ(Tables(tables), before);
  Closed(desk, "BitBtn1", "CT", kConta);
  desk.Set({{"EdtRegraDe", "10"}, {"EdtRegraAte", "20"}});
  // So is a line that another user has tied meanwhile.
  Run("UPDATE EXTRATO_001 SET CONCILIADO = 'S', LANC_CON = 'X' WHERE LANCTO = 'E1'");
  desk.Press("BitBtn1", "yes");
  EXPECT_NE(desk.Messages().find("Outro usuário alterou ou conciliou a linha E1"), std::string::npos);
  Run("UPDATE EXTRATO_001 SET CONCILIADO = 'N', LANC_CON = '' WHERE LANCTO = 'E1'");
  EXPECT_EQ(Count("CONTACOR_001"), "0");
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(desk.Top(), "TFmConcilia");
  EXPECT_EQ(Rules(), "10250-1|D|TARIFA D'ÁGUA|10.0000|20.0000|3103|012");
  EXPECT_EQ(Listed(desk), " / E2 E3 E4");
  EXPECT_EQ(Sql("SELECT M.PENDENTE, E.CONCILIADO FROM CONTACOR_001 M JOIN EXTRATO_001 E ON E.LANC_CON = "
                "M.LANC_CON AND E.LANCTO = 'E1'"),
            "N|S");
  EXPECT_EQ(Count("AUDITORIA", "AREA IN ('CONTA CORRENTE', 'CONCILIACAO')"), "2");
  // The same by the button that was there before.
  desk.Click("BitBtn5");
  desk.Fill({{"EdtDocto", "905"}, {"EdtTipo", "3103"}, {"EdtHis", "012"}, {"EdtValor", "15,50"}});
  desk.Set({{"DtLancto", "11/11/2026"}, {"DtCont", "11/11/2026"}, {"EdtObs", "TARIFA D'ÁGUA 100% 11/2026"}});
  EXPECT_FALSE(desk.Visible("GbRegra"));
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(Posting("900"), Posting("905"));
  EXPECT_NE(Posting("900").find("|4.1.03.001|"), std::string::npos);
  Run("DELETE FROM CONTACOR_001 WHERE DOCTO = '905'");

  // The next such line: named among the proposals, not ticked, its fields filled, nothing posted by itself.
  Consult(desk);
  EXPECT_EQ(desk.Told("BtSugerir"), "");
  EXPECT_EQ(desk.Read("TbSugestao", {"Linha", "Motivo"}), "E2|Regra: TARIFA D'ÁGUA, de 10,00 a 20,00\n");
  EXPECT_EQ(desk.Caption("GbSugestao"),
            "1 linha sem lançamento tem regra: Lançar Linha preenche o lançamento.");
  EXPECT_EQ(Ticked(desk), " / ");
  EXPECT_EQ(Post(desk), "BitBtn1");
  EXPECT_EQ(desk.Texts({"EdtDocto", "EdtTipo", "EdtHis"}) + "|" + desk.Caption("LbRegra"),
            "EXT E2|3103|012|Preenchido pela regra TARIFA D'ÁGUA, de 10,00 a 20,00.");
  EXPECT_FALSE(desk.Property("CbRegra", "checked").Bool());
  EXPECT_EQ(Count("CONTACOR_001"), "1");
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(Listed(desk), " / E3 E4");

  // A change in the list of rules takes the place of what stood there.
  desk.Click("BtRegras");
  desk.Set({{"EdtTexto", "água"}, {"EdtAte", "1"}});
  EXPECT_EQ(desk.Refused("BtGrava"), "O valor final da regra deve ser maior que o inicial. > EdtAte");
  desk.Set({{"EdtAte", ""}, {"EdtConta", ""}});
  desk.Click("BtGrava");
  EXPECT_EQ(Rules(), "|D|água|10.0000|0.0000|3103|012");
  desk.Close();
  desk.Click("BtSugerir");
  EXPECT_EQ(desk.Read("TbSugestao", {"Linha", "Motivo"}), "E3|Regra: água, de 10,00\n");
  desk.Click("BtRegras");
  desk.Press("BtExclui", "yes");
  EXPECT_EQ(Rules(), "");
}

}  // namespace
}  // namespace orv::test
