// The pages "Acesso" and "Cadastro": lines found, typed, altered and deleted.
#include "tests/reconciliation/extrato_desk.h"
#include "tests/support/table.h"

namespace orv::test {
namespace {

class LinesTest : public ExtratoTest {
 protected:
  // Three lines alone in the table, the second one reconciled.
  LinesTest() {
    Run("DELETE FROM EXTRATO_001");
    Usual(Extrato{.banco = nullptr, .arquivo = nullptr, .lanc_con = nullptr});
    Put(Extrato{
        .lancto = "000001", .docto = "DOC 1", .dt_cont = "11/10/2026", .operacao = "C", .observacao = "UM"});
    Put(Extrato{.lancto = "000002",
                .docto = "DOC 2",
                .dt_cont = "11/12/2026",
                .valor = "30.5",
                .observacao = "DOIS",
                .conciliado = "S",
                .lanc_con = "000900"});
    Put(Extrato{.lancto = "000003",
                .conta = kOutraConta,
                .docto = "DOC 1",
                .valor = 7,
                .operacao = "C",
                .observacao = "TRES"});
  }
  // The numbers found.
  static std::string Found(Desk& desk) { return desk.Column("QryExtrato", "LANCTO"); }
  // A member of what the desk sent.
  static std::string Said(const std::vector<Json>& sent, std::string_view on, std::string_view member) {
    for (const Json& out : sent) {
      if (out["on"] == Json(on)) return out[member].String();
    }
    return "";
  }
  std::string Line(const std::string& lancto) {
    return Sql(
        "SELECT BANCO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, CONCILIADO, ARQUIVO FROM "
        "EXTRATO_001 WHERE LANCTO = '" +
        lancto + "'");
  }
};

TEST_F(LinesTest, FindsByAnyMixOfFilters) {
  Desk desk(database_, At{"TFmCadExtrato"});
  EXPECT_EQ(desk.Texts({"dtInicio", "dtFim"}), "01/01/2000|01/01/2050");
  // Printed at once, the page has what the filters say.
  EXPECT_NE(Printed(desk, "BitBtn1").find("DOC 1"), std::string::npos);
  // Each filter stays while the next ones come.
  for (const auto& c : Table(ORV_FILES "lines.txt", 2)) {
    desk.Set(Named(c[0]));
    desk.Click("BitBtn5");
    EXPECT_EQ(Found(desk), c[1]) << c[0];
  }
  desk.Set({{"dtInicio", "01/01/2000"}, {"dtFim", "01/01/2050"}});
  desk.Title("DBGrid2", "VALOR");
  EXPECT_EQ(Found(desk), "000003 000002 000001");

  desk.Set("edtAConta", "99");
  EXPECT_EQ(desk.Refused("BitBtn5"), "Conta não cadastrada. > edtAConta");

  desk.Set("edtAConta", "");

  // A line found is opened on the other page.
  desk.DoubleClick("DBGrid2", 1, "DOCTO");
  EXPECT_EQ(desk.Texts({"EdtLancamento", "EdtSaldo", "CbOperacao"}), "000002|69,50|D");

  desk.Page("TabSheet1");
  std::string sent;
  for (const Json& out : desk.Click("BitBtn1")) sent += out.Text();
  EXPECT_NE(sent.find("WCCDigExtrato"), std::string::npos);
}

TEST_F(LinesTest, TypesARunOfLines) {
  Desk desk(database_, At{"TFmCadExtrato"});
  desk.Page("TabSheet2");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000003");
  EXPECT_EQ(desk.EnabledOf({"EdtValor", "DBGrid1"}), "01");

  // Account and day come from the line before.
  desk.Click("btnincluir");
  const std::string lancto = desk.Text("EdtLancamento");
  EXPECT_EQ(desk.Texts({"EdtConta", "EdtData", "CbConciliado", "CbOperacao"}), "20418-7|11/11/2026|N|");
  EXPECT_FALSE(desk.Enabled("DBGrid1"));
  EXPECT_FALSE(desk.Visible("PainelControle"));

  // Refused in order, the row still in edit; the side is asked for first, as its field is left.
  const std::string amount = "O Valor deve ser maior que Zero.",
                    document = "O campo documento não pode ser vazio.";
  Refuses(desk, "SbConfirmar", "EXTRATO_001 AUDITORIA",
          {{{{"EdtObs", "água d'oeste"}}, amount, "EdtValor"},
           {{{"EdtValor", "-1,00"}}, amount, "EdtValor"},
           {{{"EdtValor", "12,34"}}, document, "EdtDocto"},
           {{{"EdtDocto", "  "}}, document, "EdtDocto"}});
  EXPECT_EQ(desk.Text("EdtLancamento"), lancto);
  desk.Leave("EdtDocto", "nf 1", "CbOperacao");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.FocusName(), "CbOperacao");
  desk.Set({{"CbOperacao", "C"}, {"EdtConta", "123"}});
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.Refused(), "Conta não cadastrada. > EdtConta");
  desk.Leave("EdtConta", "", "EdtObs");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Choose("10250-1");
  EXPECT_EQ(desk.Text("EdtSaldo"), "69,50");

  // What is being typed isn't thrown away by a look at the other page.
  desk.Page("TabSheet1");
  desk.Click("BitBtn5");
  desk.DoubleClick("DBGrid2", 0, "DOCTO");
  EXPECT_EQ(desk.Told(), "Confirme ou desista primeiro do lançamento em edição.");

  EXPECT_EQ(desk.Press("SbConfirmar"), "");
  EXPECT_EQ(Line(lancto), "901|10250-1|NF 1|2026-11-11|12.3400|C|ÁGUA D'OESTE|N|-");
  EXPECT_EQ(Audit("CADEXTRATO"), "INCLUSAO / ALTERACAO LANCAMENTO " + lancto + "|1|" + lancto);
  EXPECT_EQ(desk.FocusName(), "btnincluir");
  EXPECT_EQ(desk.Text("EdtSaldo"), "81,84");

  // Altered; given up; deleted.
  desk.Click("BtnAltera");
  desk.Set("EdtValor", "20,00");
  desk.Click("SbDesistir");
  EXPECT_EQ(desk.Text("EdtValor"), "12,34");
  desk.Click("BtnAltera");
  desk.Set("EdtValor", "20,00");
  desk.Click("SbConfirmar");
  EXPECT_EQ(Line(lancto), "901|10250-1|NF 1|2026-11-11|20.0000|C|ÁGUA D'OESTE|N|-");
  desk.Click("btnincluir");
  desk.Click("SbDesistir");
  EXPECT_EQ(Lines(), "4");
}

TEST_F(LinesTest, AReconciledLineIsDeletedButNotAltered) {
  Desk desk(database_, At{"TFmCadExtrato"});
  desk.Page("TabSheet2");
  desk.Click("sbAnterior");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000002");
  EXPECT_FALSE(desk.Enabled("BtnAltera"));
  EXPECT_EQ(Said(desk.Click("BtExcluir"), "message", "default"), "no");
  EXPECT_EQ(desk.Messages(), "Deseja eliminar este Registro?");
  desk.Answer("no");
  EXPECT_EQ(Lines(), "3");
  desk.Press("BtExcluir", "yes");
  EXPECT_EQ(Line("000002"), "");
  EXPECT_EQ(Audit("CADEXTRATO"), "EXCLUSAO LANCAMENTO 000002|2|000002");
  EXPECT_TRUE(desk.Enabled("BtnAltera"));

  desk.Click("SbConsulta");
  desk.Choose("000001");
  EXPECT_EQ(desk.Texts({"EdtLancamento", "EdtSaldo"}), "000001|100,00");
  desk.Title("DBGrid1", "VALOR");
  desk.Click("sbPrimeiro");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000003");

  // What another user reconciled meanwhile isn't overwritten.
  desk.Click("BtnAltera");
  Run("UPDATE EXTRATO_001 SET CONCILIADO = 'S', LANC_CON = '000901' WHERE LANCTO = '000003'");
  desk.Set("EdtValor", "9,00");
  EXPECT_EQ(desk.Press("SbConfirmar"),
            "error: Outro usuário alterou este registro. Consulte-o de novo antes de gravar.");
  desk.Click("SbDesistir");
  EXPECT_FALSE(desk.Enabled("BtnAltera"));
  EXPECT_EQ(Line("000003"), "-|20418-7|DOC 1|2026-11-11|7.0000|C|TRES|S|-");
  EXPECT_EQ(Audit("CADEXTRATO"), "EXCLUSAO LANCAMENTO 000002|2|000002");

  // The last rows go; an empty table still takes a new line, dated today.
  for (int i = 0; i < 2; ++i) {
    desk.Press("BtExcluir", "yes");
  }
  EXPECT_EQ(desk.Press("BtExcluir"), "");
  desk.Click("BtnAltera");
  EXPECT_FALSE(desk.Enabled("EdtValor"));
  desk.Click("btnincluir");
  EXPECT_EQ(desk.Text("EdtData"), "20/11/2026");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
}

}  // namespace
}  // namespace orv::test
