// The pages "Acesso" and "Cadastro": lines found, typed, altered and deleted.
#include "tests/reconciliation/extrato_desk.h"

namespace orv::test {
namespace {

class LinesTest : public ExtratoTest {
 protected:
  // Three lines alone in the table, the second one reconciled.
  LinesTest() {
    Run("DELETE FROM EXTRATO_001");
    const char* lines[] = {"'000001', '10250-1', 'DOC 1', '11/10/2026', 100, 'C', 'UM', 'N', NULL",
                           "'000002', '10250-1', 'DOC 2', '11/12/2026', 30.5, 'D', 'DOIS', 'S', '000900'",
                           "'000003', '20418-7', 'DOC 1', '11/11/2026', 7, 'C', 'TRES', 'N', NULL"};
    for (const std::string line : lines) {
      Run("INSERT INTO EXTRATO_001 (LANCTO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, CONCILIADO, "
          "LANC_CON) VALUES (" +
          line + ")");
    }
  }
  // The numbers found.
  static std::string Found(Desk& desk) {
    std::string numbers;
    const Json set = desk.State("QryExtrato")["screens"].Items().back()["sets"]["QryExtrato"];
    for (const Json& row : set["rows"].Items()) {
      numbers += (numbers.empty() ? "" : " ") + row.Items()[0].String();
    }
    return numbers;
  }
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
  Desk desk(database_);
  desk.Open("TFmCadExtrato");
  EXPECT_EQ(desk.Text("dtInicio"), "01/01/2000");
  EXPECT_EQ(desk.Text("dtFim"), "01/01/2050");
  // Printed at once, the page has what the filters say.
  EXPECT_NE(Printed(desk, "BitBtn1").find("DOC 1"), std::string::npos);
  struct Case {
    const char *control, *value, *found;
  };
  // Each filter stays while the next ones come.
  const Case cases[] = {{"RgBusca", "Todos", "000001 000003 000002"},
                        {"RgBusca", "A Conciliar", "000001 000003"},
                        {"EdtCDocto", "DOC 1", "000001 000003"},
                        {"edtAConta", "20418-7", "000003"},
                        {"RgBusca", "Conciliados", ""},
                        {"EdtCDocto", "' OR '1'='1", ""},
                        {"EdtCDocto", " ", ""},
                        {"edtAConta", "", "000002"},
                        {"dtFim", "11/11/2026", ""},
                        {"RgBusca", "0", "000001 000003"},
                        {"dtInicio", "11/11/2026", "000003"}};
  for (const Case& c : cases) {
    desk.Set(c.control, c.value);
    desk.Click("BitBtn5");
    EXPECT_EQ(Found(desk), c.found) << c.control << " " << c.value;
  }
  desk.Set("dtInicio", "01/01/2000");
  desk.Set("dtFim", "01/01/2050");
  desk.Do({{"do", "title"}, {"control", "DBGrid2"}, {"column", "VALOR"}});
  EXPECT_EQ(Found(desk), "000003 000002 000001");

  desk.Set("edtAConta", "99");
  desk.Click("BitBtn5");
  EXPECT_EQ(desk.Messages(), "Conta não cadastrada.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "edtAConta");

  desk.Set("edtAConta", "");

  // A line found is opened on the other page.
  desk.Do({{"do", "dblclick"}, {"control", "DBGrid2"}, {"row", 1}, {"column", "DOCTO"}});
  EXPECT_EQ(desk.Text("EdtLancamento"), "000002");
  EXPECT_EQ(desk.Text("EdtSaldo"), "69,50");
  EXPECT_EQ(desk.Text("CbOperacao"), "D");

  Page(desk, "TabSheet1");
  std::string sent;
  for (const Json& out : desk.Click("BitBtn1")) sent += out.Text();
  EXPECT_NE(sent.find("WCCDigExtrato"), std::string::npos);
}

TEST_F(LinesTest, TypesARunOfLines) {
  Desk desk(database_);
  desk.Open("TFmCadExtrato");
  Page(desk, "TabSheet2");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000003");
  EXPECT_FALSE(desk.Enabled("EdtValor"));
  EXPECT_TRUE(desk.Enabled("DBGrid1"));

  // Account and day come from the line before.
  desk.Click("btnincluir");
  const std::string lancto = desk.Text("EdtLancamento");
  EXPECT_EQ(desk.Text("EdtConta"), "20418-7");
  EXPECT_EQ(desk.Text("EdtData"), "11/11/2026");
  EXPECT_EQ(desk.Text("CbConciliado"), "N");
  EXPECT_EQ(desk.Text("CbOperacao"), "");
  EXPECT_FALSE(desk.Enabled("DBGrid1"));
  EXPECT_FALSE(desk.Property("PainelControle", "visible").Bool());

  // Refused in order, the row still in edit; the side is asked for first, as its field is left.
  struct Step {
    const char *control, *value, *message, *focus;
  };
  const Step steps[] = {{"EdtObs", "água d'oeste", "O Valor deve ser maior que Zero.", "EdtValor"},
                        {"EdtValor", "-1,00", "O Valor deve ser maior que Zero.", "EdtValor"},
                        {"EdtValor", "12,34", "O campo documento não pode ser vazio.", "EdtDocto"},
                        {"EdtDocto", "  ", "O campo documento não pode ser vazio.", "EdtDocto"}};
  for (const Step& step : steps) {
    desk.Set(step.control, step.value);
    desk.Click("SbConfirmar");
    EXPECT_EQ(desk.Messages(), step.message);
    desk.Answer("ok");
    EXPECT_EQ(desk.FocusName(), step.focus);
    EXPECT_EQ(Line(lancto), "");
    EXPECT_EQ(desk.Text("EdtLancamento"), lancto);
  }
  desk.Set("EdtDocto", "nf 1");
  desk.Focus("CbOperacao");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.FocusName(), "CbOperacao");
  desk.Set("CbOperacao", "C");

  desk.Set("EdtConta", "123");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.Messages(), "Conta não cadastrada.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  desk.Set("EdtConta", "");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Do({{"do", "choose"}, {"key", "10250-1"}});
  EXPECT_EQ(desk.Text("EdtSaldo"), "69,50");

  // What is being typed isn't thrown away by a look at the other page.
  Page(desk, "TabSheet1");
  desk.Click("BitBtn5");
  desk.Do({{"do", "dblclick"}, {"control", "DBGrid2"}, {"row", 0}, {"column", "DOCTO"}});
  EXPECT_EQ(desk.Messages(), "Confirme ou desista primeiro do lançamento em edição.");
  desk.Answer("ok");

  desk.Click("SbConfirmar");
  EXPECT_EQ(desk.Messages(), "");
  EXPECT_EQ(Line(lancto), "901|10250-1|NF 1|2026-11-11|12.3400|C|ÁGUA D'OESTE|N|-");
  EXPECT_EQ(Audit(), "INCLUSAO / ALTERACAO LANCAMENTO " + lancto + "|1|" + lancto);
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
  Desk desk(database_);
  desk.Open("TFmCadExtrato");
  Page(desk, "TabSheet2");
  desk.Click("sbAnterior");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000002");
  EXPECT_FALSE(desk.Enabled("BtnAltera"));
  EXPECT_EQ(Said(desk.Click("BtExcluir"), "message", "default"), "no");
  EXPECT_EQ(desk.Messages(), "Deseja eliminar este Registro?");
  desk.Answer("no");
  EXPECT_EQ(Lines(), "3");
  desk.Click("BtExcluir");
  desk.Answer("yes");
  EXPECT_EQ(Line("000002"), "");
  EXPECT_EQ(Audit(), "EXCLUSAO LANCAMENTO 000002|2|000002");
  EXPECT_TRUE(desk.Enabled("BtnAltera"));

  desk.Click("SbConsulta");
  desk.Do({{"do", "choose"}, {"key", "000001"}});
  EXPECT_EQ(desk.Text("EdtLancamento"), "000001");
  EXPECT_EQ(desk.Text("EdtSaldo"), "100,00");
  desk.Do({{"do", "title"}, {"control", "DBGrid1"}, {"column", "VALOR"}});
  desk.Click("sbPrimeiro");
  EXPECT_EQ(desk.Text("EdtLancamento"), "000003");

  // What another user reconciled meanwhile isn't overwritten.
  desk.Click("BtnAltera");
  Run("UPDATE EXTRATO_001 SET CONCILIADO = 'S', LANC_CON = '000901' WHERE LANCTO = '000003'");
  desk.Set("EdtValor", "9,00");
  desk.Click("SbConfirmar");
  EXPECT_EQ(desk.Messages(),
            "error: Outro usuário alterou este registro. Consulte-o de novo antes de gravar.");
  desk.Click("SbDesistir");
  EXPECT_FALSE(desk.Enabled("BtnAltera"));
  EXPECT_EQ(Line("000003"), "-|20418-7|DOC 1|2026-11-11|7.0000|C|TRES|S|-");
  EXPECT_EQ(Audit(), "EXCLUSAO LANCAMENTO 000002|2|000002");

  // The last rows go; an empty table still takes a new line, dated today.
  for (int i = 0; i < 2; ++i) {
    desk.Click("BtExcluir");
    desk.Answer("yes");
  }
  desk.Click("BtExcluir");
  EXPECT_EQ(desk.Messages(), "");
  desk.Click("BtnAltera");
  EXPECT_FALSE(desk.Enabled("EdtValor"));
  desk.Click("btnincluir");
  EXPECT_EQ(desk.Text("EdtData"), "20/11/2026");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
}

}  // namespace
}  // namespace orv::test
