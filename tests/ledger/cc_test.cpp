// The ledger's screen, page "Manutenção": posting, altering, deleting, and who may do it when.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

constexpr const char* kDateOrder = "A Data de Contabilização deve ser maior que a Data de Lançamento.";

TEST_F(CcTest, PostsANewMovement) {
  Desk desk(database_);
  desk.Open("TfmCC");
  EXPECT_FALSE(desk.Enabled("EdtConta"));
  EXPECT_FALSE(desk.Enabled("BitBtn2"));
  EXPECT_FALSE(desk.Enabled("BitBtn3"));

  desk.Click("BitBtn1");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  EXPECT_EQ(desk.Text("EdtTipoLan"), "L");
  EXPECT_EQ(desk.Text("EdtTipoDocto"), "DP");
  EXPECT_EQ(desk.Text("EdtDtCont"), "20/11/2026");
  EXPECT_FALSE(desk.Property("Panel6", "visible").Bool());
  const std::string numero = desk.Text("EdtLancto");

  // A code that isn't there keeps the focus; an empty one opens the list.
  desk.Set("EdtConta", "99999");
  desk.Focus("EdtNumDoc");
  EXPECT_EQ(desk.Messages(), "Conta inexistente.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  desk.Set("EdtConta", "");
  desk.Focus("EdtNumDoc");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Do({{"do", "choose"}, {"key", kConta}});
  EXPECT_EQ(desk.Text("EdtConta"), kConta);
  EXPECT_EQ(desk.Text("EdtCodBan"), "901");
  EXPECT_EQ(desk.Text("EdtDesBan"), "BANCO DA SERRA");

  // The class gives the side, the history the situation; what is chosen by hand stands.
  desk.Set("EdtNumDoc", "D'AGUA 1");
  desk.Set("EdtTipo", "3104");
  EXPECT_EQ(desk.Text("CbOper"), "-");
  EXPECT_EQ(desk.Text("EdtDesTipo"), "MATERIAL DE CONSUMO");
  desk.Set("EdtHis", "008");
  EXPECT_EQ(desk.Text("RgSituacao"), "Pendente");
  desk.Set("EdtHis", "019");
  EXPECT_EQ(desk.Text("RgSituacao"), "Baixado");
  desk.Set("CbOper", "+");
  desk.Set("EdtValor", "1234,56");
  // The date of posting carries the others along.
  desk.Set("EdtDtLanc", "18/11/2026");
  desk.Focus("EdtDtVencto");
  EXPECT_EQ(desk.Text("EdtDtCont"), "18/11/2026");
  desk.Set("EdtDtVencto", "30/11/2026");
  desk.Set("EdtObs", "AÇÃO D'OURO");
  desk.Focus("EdtHis");
  EXPECT_EQ(desk.FocusName(), "SpeedButton2");

  EXPECT_EQ(Confirm(desk), "");
  const auto stored = std::find_if(desk.Latest().begin(), desk.Latest().end(),
                                   [](const Json& out) { return out["kind"] == Json("stored"); });
  ASSERT_NE(stored, desk.Latest().end());
  EXPECT_EQ((*stored)["text"].String(), "Lançamento " + numero + " gravado: conta 10250-1, 1.234,56.");
  EXPECT_EQ(Movement(numero),
            "D'AGUA 1|901|10250-1|2026-11-18|2026-11-30|2026-11-18|1234.5600|+|3104|019|AÇÃO D'OURO|L|DP|N|");
  EXPECT_EQ(Audit(), "INC. ALT. DOCTO: D'AGUA 1 LANCTO: " + numero + " VALOR: 1.234,56|1|D'AGUA 1");
  EXPECT_EQ(desk.Text("EdtLancto"), "");
  EXPECT_EQ(desk.Text("EdtValor"), "");
  EXPECT_EQ(desk.Text("CbOper"), "+");
  EXPECT_TRUE(desk.Property("Panel6", "visible").Bool());
}

TEST_F(CcTest, ConfirmationRefusesInOrder) {
  Desk desk(database_);
  desk.Open("TfmCC");
  const std::string numero = New(desk);
  Fill(desk, {{"EdtValor", ""}, {"EdtTipo", ""}, {"EdtHis", ""}, {"EdtNumDoc", ""}});
  Lock("CX", "");
  Lock("CT", kConta);

  struct Step {
    std::string right;  // what puts the rule before in order: a statement or a field
    std::string value;
    std::string message;
    std::string focus;
  };
  const Step steps[] = {
      {"", "", "Período do caixa fechado até 20/11/2026.", "SpeedButton2"},
      {"DELETE FROM BLOQUEIO WHERE TIPO = 'CX'", "", "Período fechado até 20/11/2026 para a conta 10250-1.",
       "SpeedButton2"},
      {"DELETE FROM BLOQUEIO", "", "Valor Inválido.", "EdtValor"},
      {"EdtValor", "0,00", "Classe Gerencial Inválida.", "EdtTipo"},
      {"EdtTipo", "31", "Classe Inválida, Não é possível lançar com classe do tipo Título.", "EdtTipo"},
      {"EdtTipo", "3104", "Histórico Inválido.", "EdtHis"},
      {"EdtConta", "", "Histórico Inválido.", "EdtHis"},
      {"EdtHis", "ZZZ", "Conta Inexistente.", "EdtConta"},
      {"EdtConta", kConta, "Documento Inexistente.", "EdtNumDoc"},
      {"DELETE FROM CADCONTA_001 WHERE CONTA = '10250-1'", "", "Conta Inexistente.", "EdtConta"},
  };
  for (const Step& step : steps) {
    if (step.right.starts_with("DELETE")) {
      Run(step.right);
    } else if (!step.right.empty()) {
      Fill(desk, {{step.right, step.value}});
    }
    EXPECT_EQ(Confirm(desk), step.message);
    desk.Answer("ok");
    CloseLists(desk);
    EXPECT_EQ(desk.FocusName(), step.focus) << step.message;
    EXPECT_EQ(Movement(numero), "") << step.message;
    EXPECT_EQ(desk.Text("EdtLancto"), numero);
  }
  EXPECT_EQ(Audit(), "");
  Run("INSERT INTO CADCONTA_001 (CONTA, BANCO) VALUES ('10250-1', '901')");
  // An unknown history and a zero amount pass.
  desk.Set("EdtNumDoc", "1");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Movement(numero),
            "1|901|10250-1|2026-11-20|2026-11-20|2026-11-20|0.0000|-|3104|ZZZ|PAPEL E TINTA|L|DP|N|");
}

TEST_F(CcTest, AccountingDateMayNotPrecede) {
  Store({"T00001", "NF 1"});
  Desk desk(database_);
  desk.Open("TfmCC");
  Load(desk, "T00001");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.FocusName(), "EdtDtVencto");
  // An empty date lies in no closed period, and a period closed meanwhile lets nothing out either.
  const std::string before = Movement("T00001");
  Lock("CX", "");
  Fill(desk, {{"EdtDtLanc", ""}, {"EdtDtVencto", ""}, {"EdtDtCont", ""}});
  const std::string refusals[][3] = {{"EdtDtLanc", "Data de Lançamento Inválida.", "10/11/2026"},
                                     {"EdtDtVencto", "Data de Vencimento Inválida.", "12/11/2026"},
                                     {"EdtDtCont", "Data de Contabilização Inválida.", "25/11/2026"},
                                     {"SpeedButton2", "Período do caixa fechado até 20/11/2026.", ""}};
  for (const auto& [focus, message, right] : refusals) {
    EXPECT_EQ(Confirm(desk), message);
    desk.Answer("ok");
    EXPECT_EQ(desk.FocusName() + Movement("T00001"), focus + before);
    if (!right.empty()) Fill(desk, {{focus, right}});
  }
  Unlock("CX");
  desk.Set("EdtDtCont", "09/11/2026");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.Messages(), kDateOrder);
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "EdtDtCont");
  desk.Set("EdtDtCont", "10/11/2026");

  // On a stored movement the posting date carries nothing along, so that the confirmation has to see it.
  desk.Set("EdtDtLanc", "12/11/2026");
  EXPECT_EQ(Confirm(desk), kDateOrder);
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "EdtDtCont");
  EXPECT_EQ(Audit(), "");
}

TEST_F(CcTest, AltersOneRowOfATransfer) {
  Store({"T00002", "TR 9", "TR", "", kConta, "-"});
  Store({"T00002", "TR 9", "TR", "", kOutraConta, "+"});
  const std::string before = Movement("T00002");
  Desk desk(database_);
  desk.Open("TfmCC");
  Load(desk, "T00002", 1);
  EXPECT_EQ(desk.Text("EdtConta"), kOutraConta);
  EXPECT_EQ(desk.Text("EdtValDoc"), "150,00");
  desk.Click("BitBtn2");
  for (const char* control : {"EdtConta", "PqConta", "EdtNumDoc", "CbOper"})
    EXPECT_FALSE(desk.Enabled(control));
  // On a stored row the class says nothing of the side, nor the history of the situation.
  Fill(desk, {{"EdtTipo", "3104"}, {"EdtTipo", "3101"}, {"EdtHis", "008"}, {"EdtValor", "151,00"}});
  EXPECT_EQ(desk.Text("CbOper"), "+");
  EXPECT_EQ(desk.Text("RgSituacao"), "Baixado");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(
      Movement("T00002"),
      before.substr(0, before.find(';')) +
          ";TR 9|902|20418-7|2026-11-10|2026-11-12|2026-11-10|151.0000|+|3101|008|COMO ESTAVA|TR|DP|N|");
}

TEST_F(CcTest, CancelDropsTheEdit) {
  Store({"T00003", "NF 3"});
  Desk desk(database_);
  desk.Open("TfmCC");
  Load(desk, "T00003");
  desk.Click("BitBtn2");
  Fill(desk, {{"EdtObs", "OUTRA"}, {"EdtValor", "9,00"}});
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Text("EdtObs"), "COMO ESTAVA");
  EXPECT_EQ(desk.Text("EdtValor"), "150,00");
  EXPECT_TRUE(desk.Enabled("BitBtn2"));

  // Giving up a new one opens no list of an empty field and leaves nothing to alter.
  New(desk, {{"EdtConta", ""}});
  desk.Focus("EdtConta");
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.End(), "idle");
  for (const char* control :
       {"EdtLancto", "EdtNumDoc", "EdtDtLanc", "EdtTipo", "EdtDesTipo", "EdtValor", "EdtObs"}) {
    EXPECT_EQ(desk.Text(control), "") << control;
  }
  EXPECT_FALSE(desk.Enabled("BitBtn2"));
  EXPECT_FALSE(desk.Enabled("BitBtn3"));
  EXPECT_EQ(Audit(), "");
}

TEST_F(CcTest, DeletesWithAllThatHangsOnIt) {
  Store({"T00004", "4004"});
  Store({"T00005", "T00004"});
  for (const char* row : {"'T00004', '4004'", "'', 'T00004'", "'T00005', 'T00004'"}) {
    Run("INSERT INTO CENTRO_RATEIO_001 (LANCAMENTO, NUMERO, ORDEM, CONTA, CENTROCUSTO, TIPO, PERC_RAT, "
        "VALOR_RAT) "
        "VALUES (" +
        std::string(row) + ", 1, '4.1.04.001', '0100', 'CC', 100, 150)");
  }
  Run("INSERT INTO CONTABIL_001 (LANCAMENTO, CONTA_C, CONTA_D, VALOR) VALUES ('T00004', '1.1.02.001', "
      "'4.1.04.001', "
      "150)");
  Run("INSERT INTO CHEQUE_PRE_001 (CHAVE, NUMERO, BANCO, CONTA, VALOR, STATUS) VALUES ('T00004', '4004', "
      "'901', "
      "'10250-1', 150, 'P')");
  Desk desk(database_);
  desk.Open("TfmCC");

  // A No keeps the movement and clears the screen all the same.
  Load(desk, "4004");
  desk.Click("BitBtn3");
  EXPECT_EQ(desk.Messages(), "Deseja eliminar este Registro?");
  desk.Answer("no");
  EXPECT_EQ(desk.Text("EdtLancto"), "");
  EXPECT_EQ(desk.Text("EdtDesBan"), "");
  EXPECT_NE(Movement("T00004"), "");

  Load(desk, "4004");
  desk.Click("BitBtn3");
  desk.Answer("yes");
  EXPECT_EQ(desk.Messages(), "Cheque Cancelado.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Text("EdtLancto"), "");
  EXPECT_EQ(Movement("T00004"), "");
  EXPECT_EQ(Entries("T00004"), "");
  EXPECT_EQ(Sql("SELECT LANCAMENTO FROM CENTRO_RATEIO_001 WHERE NUMERO IN ('4004', 'T00004')"), "T00005");
  EXPECT_EQ(Sql("SELECT STATUS FROM CHEQUE_PRE_001 WHERE CHAVE = 'T00004'"), "C");
  EXPECT_EQ(Audit(),
            "EXCLUSAO LANCTO. T00004, DOCTO. 4004 VALOR 150,00|2|T00004;"
            "CANCELAMENTO DE CHEQUE 4004 LANCTO. T00004|1|4004");
  EXPECT_NE(Movement("T00005"), "");
}

TEST_F(CcTest, ClosedPeriodAndClearingBarChange) {
  Store({"T00006", "6006"});
  Store({"T00007", "7007", "L", "000321"});
  Store({"T00008", "8008", "TR", "", kConta, "-"});
  Store({"T00008", "8008", "TR", "", kOutraConta, "+"});
  Desk desk(database_);
  desk.Open("TfmCC");

  Load(desk, "T00007");
  EXPECT_EQ(desk.Text("EdtLancConc"), "000321");
  EXPECT_FALSE(desk.Enabled("BitBtn2"));
  EXPECT_FALSE(desk.Enabled("BitBtn3"));

  // Cleared elsewhere while it stood on the screen.
  Load(desk, "T00008");
  Run("UPDATE CONTACOR_001 SET LANC_CON = '000322' WHERE LANCAMENTO = 'T00008'");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.Messages(), "Lançamento já conciliado.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Messages(), "Lançamento já conciliado.");
  desk.Answer("ok");
  EXPECT_EQ(desk.End(), "idle");
  EXPECT_TRUE(desk.Property("Panel6", "visible").Bool());
  Run("UPDATE CONTACOR_001 SET LANC_CON = '' WHERE LANCAMENTO = 'T00008'");

  // The other row's account counts too.
  Lock("CT", kOutraConta);
  Load(desk, "T00008");
  desk.Click("BitBtn3");
  EXPECT_EQ(desk.Messages(), "Período fechado até 20/11/2026 para a conta 20418-7.");
  desk.Answer("ok");
  EXPECT_EQ(desk.End(), "idle");
  EXPECT_EQ(desk.Text("EdtLancto"), "T00008");

  Lock("CX", "");
  Load(desk, "T00006");
  for (const char* button : {"BitBtn2", "BitBtn3"}) {
    desk.Click(button);
    EXPECT_EQ(desk.Messages(), "Período do caixa fechado até 20/11/2026.");
    desk.Answer("ok");
    EXPECT_EQ(desk.End(), "idle");
    EXPECT_FALSE(desk.Enabled("EdtObs"));
  }
  EXPECT_EQ(Audit(), "");
}

TEST_F(CcTest, MovementOfAnotherOrigin) {
  Store({"T00009", "9009", "P"});
  for (const char* company : {"_001", "_002"}) {
    const std::string suffix = company;
    Run("INSERT INTO PAGTO" + suffix + " (NUM_AP, CODCRE, DT_EMI, DT_VEN, VALOR) VALUES ('X90" +
        suffix.substr(3) + "', '00050', '10/01/2026', '11/10/2026', 150)");
    Run("INSERT INTO PAGTO1" + suffix + " (NUM_AP, LANCAMENTO, VAL_PAG, JURO, DESCONTO) VALUES ('X90" +
        suffix.substr(3) + "', 'T00009', 75, 1, 2)");
  }
  Run("INSERT INTO RECEBERB_001 (NUMERO, LANCAMENTO, VALOR_PAGO) VALUES ('NAO ESTA', 'T00010', 12)");
  Store({"T00010", "1010", "R"});
  {
    Desk desk(database_);
    desk.Open("TfmCC");
    Load(desk, "T00009");
    EXPECT_TRUE(desk.Enabled("BitBtn2"));
    EXPECT_FALSE(desk.Enabled("BitBtn3"));
    EXPECT_EQ(Count("PAGTO1_001", "LANCAMENTO = 'T00009'"), "1");
    EXPECT_NE(desk.Rows("QryFinan").find("X901"), std::string::npos);
    EXPECT_EQ(desk.Rows("QryFinan").find("X902"), std::string::npos);
    desk.Do({{"do", "check"}, {"control", "CbEmpFinan"}, {"value", true}});
    EXPECT_NE(desk.Rows("QryFinan").find("X902"), std::string::npos);

    desk.Click("BitBtn2");
    for (const char* control : {"EdtConta", "PqConta", "EdtNumDoc", "EdtDtLanc", "EdtValor", "CbOper"}) {
      EXPECT_FALSE(desk.Enabled(control)) << control;
    }
    Fill(desk, {{"EdtDtVencto", "13/11/2026"},
                {"EdtDtCont", "14/11/2026"},
                {"EdtTipo", "3101"},
                {"EdtHis", "011"},
                {"EdtObs", "AJUSTE"}});
    EXPECT_EQ(Confirm(desk), "");
    EXPECT_EQ(Movement("T00009"),
              "9009|901|10250-1|2026-11-10|2026-11-13|2026-11-14|150.0000|-|3101|011|AJUSTE|P|DP|N|");

    Load(desk, "T00010");
    EXPECT_NE(desk.Rows("QryFinan").find("12"), std::string::npos);
    // A new movement shows no one's titles.
    desk.Click("BitBtn1");
    EXPECT_EQ(desk.Rows("QryFinan"), "");
  }
  Fin({30});
  Desk desk(database_);
  desk.Open("TfmCC");
  Load(desk, "T00009");
  EXPECT_FALSE(desk.Enabled("BitBtn2"));
}

TEST_F(CcTest, RightsDecide) {
  Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmCC', 'A')");
  Store({"T00011", "1111"});
  {
    Desk desk(database_, "leo");
    desk.Open("TfmCC");
    Load(desk, "T00011");
    desk.Click("BitBtn3");
    EXPECT_EQ(desk.Messages(), "Usuário sem permissão para esta operação.");
    desk.Answer("ok");
    EXPECT_EQ(desk.Text("EdtLancto"), "T00011");
    desk.Click("BitBtn2");
    EXPECT_TRUE(desk.Enabled("EdtObs"));
  }
  Run("UPDATE DIREITO SET TIPOS = 'E' WHERE LOGIN_BUSCA = 'leo'");
  Desk desk(database_, "leo");
  desk.Open("TfmCC");
  Load(desk, "T00011");
  for (const char* button : {"BitBtn1", "BitBtn2"}) {
    desk.Click(button);
    EXPECT_EQ(desk.Messages(), "Usuário sem permissão para esta operação.");
    desk.Answer("ok");
    EXPECT_EQ(desk.Text("EdtLancto"), "T00011");
    EXPECT_FALSE(desk.Enabled("EdtObs"));
  }
}

TEST_F(CcTest, EachCompanyHasItsLedger) {
  Desk desk(database_, "ana", "_002");
  desk.Open("TfmCC");
  const std::string numero = New(desk, {{"EdtConta", "60117-3"}});
  const std::string before = Movement(numero);
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Count("CONTACOR_002", "LANCAMENTO = '" + numero + "' AND OBSERVACAO = 'PAPEL E TINTA'"), "1");
  EXPECT_EQ(Movement(numero), before);
  EXPECT_EQ(Sql("SELECT EMP_PAT FROM AUDITORIA WHERE AREA = 'CONTACOR'"), "_002");
}

}  // namespace
}  // namespace orv::test
