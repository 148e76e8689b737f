// The ledger's screen, page "Manutenção": posting, altering, deleting, and who may do it when.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

constexpr const char* kDateOrder = "A Data de Contabilização deve ser maior que a Data de Lançamento.";

TEST_F(CcTest, PostsANewMovement) {
  Desk desk(database_, At{"TfmCC"});
  EXPECT_EQ(desk.EnabledOf({"EdtConta", "BitBtn2", "BitBtn3"}), "000");

  desk.Click("BitBtn1");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  EXPECT_EQ(desk.Texts({"EdtTipoLan", "EdtTipoDocto", "EdtDtCont"}), "L|DP|20/11/2026");
  EXPECT_FALSE(desk.Visible("Panel6"));
  const std::string numero = desk.Text("EdtLancto");

  // A code that isn't there keeps the focus; an empty one opens the list.
  desk.Leave("EdtConta", "99999", "EdtNumDoc");
  EXPECT_EQ(desk.Refused(), "Conta inexistente. > EdtConta");
  desk.Leave("EdtConta", "", "EdtNumDoc");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Choose(kConta);
  EXPECT_EQ(desk.Text("EdtConta"), kConta);
  EXPECT_EQ(desk.Text("EdtCodBan"), "901");
  EXPECT_EQ(desk.Text("EdtDesBan"), "BANCO DA SERRA");

  // The class gives the side, the history the situation; what is chosen by hand stands.
  desk.Set({{"EdtNumDoc", "D'AGUA 1"}, {"EdtTipo", "3104"}});
  EXPECT_EQ(desk.Texts({"CbOper", "EdtDesTipo"}), "-|MATERIAL DE CONSUMO");
  desk.Set("EdtHis", "008");
  EXPECT_EQ(desk.Text("RgSituacao"), "Pendente");
  desk.Set("EdtHis", "019");
  EXPECT_EQ(desk.Text("RgSituacao"), "Baixado");
  desk.Set({{"CbOper", "+"}, {"EdtValor", "1234,56"}});
  // The date of posting carries the others along.
  desk.Leave("EdtDtLanc", "18/11/2026", "EdtDtVencto");
  EXPECT_EQ(desk.Text("EdtDtCont"), "18/11/2026");
  desk.Set({{"EdtDtVencto", "30/11/2026"}, {"EdtObs", "AÇÃO D'OURO"}});
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
  EXPECT_EQ(desk.Texts({"EdtLancto", "EdtValor", "CbOper"}), "||+");
  EXPECT_TRUE(desk.Visible("Panel6"));
}

TEST_F(CcTest, ConfirmationRefusesInOrder) {
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk);
  desk.Fill({{"EdtValor", ""}, {"EdtTipo", ""}, {"EdtHis", ""}, {"EdtNumDoc", ""}});
  Put(Bloqueio{.tipo = "CX"});
  Put(Bloqueio{.tipo = "CT", .conta = kConta});

  Refuses(
      desk, "SpeedButton2", kWritten,
      {{{}, "Período do caixa fechado até 20/11/2026.", "SpeedButton2"},
       {{},
        "Período fechado até 20/11/2026 para a conta 10250-1.",
        "SpeedButton2",
        "DELETE FROM BLOQUEIO WHERE TIPO = 'CX'"},
       {{}, "Valor Inválido.", "EdtValor", "DELETE FROM BLOQUEIO"},
       {{{"EdtValor", "0,00"}}, "Classe Gerencial Inválida.", "EdtTipo"},
       {{{"EdtTipo", "31"}}, "Classe Inválida, Não é possível lançar com classe do tipo Título.", "EdtTipo"},
       {{{"EdtTipo", "3104"}}, "Histórico Inválido.", "EdtHis"},
       {{{"EdtConta", ""}}, "Histórico Inválido.", "EdtHis"},
       {{{"EdtHis", "ZZZ"}}, "Conta Inexistente.", "EdtConta"},
       {{{"EdtConta", kConta}}, "Documento Inexistente.", "EdtNumDoc"},
       {{}, "Conta Inexistente.", "EdtConta", "DELETE FROM CADCONTA_001 WHERE CONTA = '10250-1'"}});
  EXPECT_EQ(desk.Text("EdtLancto"), numero);
  Put(Cadconta{});
  // An unknown history and a zero amount pass.
  desk.Set("EdtNumDoc", "1");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Movement(numero),
            "1|901|10250-1|2026-11-20|2026-11-20|2026-11-20|0.0000|-|3104|ZZZ|PAPEL E TINTA|L|DP|N|");
}

TEST_F(CcTest, AccountingDateMayNotPrecede) {
  Put(Movimento{.lancamento = "T00001", .docto = "NF 1"});
  Desk desk(database_, At{"TfmCC"});
  Load(desk, "T00001");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.FocusName(), "EdtDtVencto");
  // An empty date lies in no closed period, and a period closed meanwhile lets nothing out either.
  Put(Bloqueio{.tipo = "CX"});
  desk.Fill({{"EdtDtLanc", ""}, {"EdtDtVencto", ""}, {"EdtDtCont", ""}});
  Refuses(desk, "SpeedButton2", kWritten,
          {{{}, "Data de Lançamento Inválida.", "EdtDtLanc"},
           {{{"EdtDtLanc", "10/11/2026"}}, "Data de Vencimento Inválida.", "EdtDtVencto"},
           {{{"EdtDtVencto", "12/11/2026"}}, "Data de Contabilização Inválida.", "EdtDtCont"},
           {{{"EdtDtCont", "25/11/2026"}}, "Período do caixa fechado até 20/11/2026.", "SpeedButton2"}});
  Unlock("CX");
  desk.Leave("EdtDtCont", "09/11/2026", "EdtObs");
  EXPECT_EQ(desk.Told(), kDateOrder);
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
  Put(Movimento{.lancamento = "T00002", .docto = "TR 9", .tipo = "TR"});
  Put(Movimento{
      .lancamento = "T00002", .docto = "TR 9", .conta = kOutraConta, .operacao = "+", .tipo = "TR"});
  const std::string before = Movement("T00002");
  Desk desk(database_, At{"TfmCC"});
  Load(desk, "T00002");
  EXPECT_EQ(desk.Text("EdtConta"), kOutraConta);
  EXPECT_EQ(desk.Text("EdtValDoc"), "150,00");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.EnabledOf({"EdtConta", "PqConta", "EdtNumDoc", "CbOper"}), "0000");
  // On a stored row the class says nothing of the side, nor the history of the situation.
  desk.Fill({{"EdtTipo", "3104"}, {"EdtTipo", "3101"}, {"EdtHis", "008"}, {"EdtValor", "151,00"}});
  EXPECT_EQ(desk.Texts({"CbOper", "RgSituacao"}), "+|Baixado");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(
      Movement("T00002"),
      before.substr(0, before.find(';')) +
          ";TR 9|902|20418-7|2026-11-10|2026-11-12|2026-11-10|151.0000|+|3101|008|COMO ESTAVA|TR|DP|N|");
}

TEST_F(CcTest, CancelDropsTheEdit) {
  Put(Movimento{.lancamento = "T00003", .docto = "NF 3"});
  Desk desk(database_, At{"TfmCC"});
  Load(desk, "T00003");
  desk.Click("BitBtn2");
  desk.Fill({{"EdtObs", "OUTRA"}, {"EdtValor", "9,00"}});
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Texts({"EdtObs", "EdtValor"}), "COMO ESTAVA|150,00");
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
  EXPECT_EQ(desk.EnabledOf({"BitBtn2", "BitBtn3"}), "00");
  EXPECT_EQ(Audit(), "");
}

TEST_F(CcTest, DeletesWithAllThatHangsOnIt) {
  Put(Movimento{.lancamento = "T00004", .docto = "4004"});
  Put(Movimento{.lancamento = "T00005", .docto = "T00004"});
  for (const auto& [lancamento, numero] : Fields{{"T00004", "4004"}, {"", "T00004"}, {"T00005", "T00004"}})
    Put(Rateio{.lancamento = lancamento, .numero = numero});
  Put(Partida{.lancamento = "T00004"});
  Put(Cheque{.chave = "T00004", .numero = "4004"});
  Desk desk(database_, At{"TfmCC"});

  // A No keeps the movement and clears the screen all the same.
  Load(desk, "4004");
  EXPECT_EQ(desk.Press("BitBtn3"), "Deseja eliminar este Registro?");
  desk.Answer("no");
  EXPECT_EQ(desk.Texts({"EdtLancto", "EdtDesBan"}), "|");
  EXPECT_NE(Movement("T00004"), "");

  Load(desk, "4004");
  desk.Press("BitBtn3", "yes");
  EXPECT_EQ(desk.Told(), "Cheque Cancelado.");
  EXPECT_EQ(desk.Text("EdtLancto"), "");
  EXPECT_EQ(Movement("T00004") + Entries("T00004"), "");
  EXPECT_EQ(Sql("SELECT LANCAMENTO FROM CENTRO_RATEIO_001 WHERE NUMERO IN ('4004', 'T00004')"), "T00005");
  EXPECT_EQ(Sql("SELECT STATUS FROM CHEQUE_PRE_001 WHERE CHAVE = 'T00004'"), "C");
  EXPECT_EQ(Audit(),
            "EXCLUSAO LANCTO. T00004, DOCTO. 4004 VALOR 150,00|2|T00004;"
            "CANCELAMENTO DE CHEQUE 4004 LANCTO. T00004|1|4004");
  EXPECT_NE(Movement("T00005"), "");
}

TEST_F(CcTest, ClosedPeriodAndClearingBarChange) {
  Put(Movimento{.lancamento = "T00006", .docto = "6006"});
  Put(Movimento{.lancamento = "T00007", .docto = "7007", .lanc_con = "000321"});
  Put(Movimento{.lancamento = "T00008", .docto = "8008", .tipo = "TR"});
  Put(Movimento{
      .lancamento = "T00008", .docto = "8008", .conta = kOutraConta, .operacao = "+", .tipo = "TR"});
  Desk desk(database_, At{"TfmCC"});

  Load(desk, "T00007");
  EXPECT_EQ(desk.Text("EdtLancConc"), "000321");
  EXPECT_EQ(desk.EnabledOf({"BitBtn2", "BitBtn3"}), "00");

  // Cleared elsewhere while it stood on the screen.
  Load(desk, "T00008");
  Run("UPDATE CONTACOR_001 SET LANC_CON = '000322' WHERE LANCAMENTO = 'T00008'");
  EXPECT_EQ(desk.Told("BitBtn2"), "Lançamento já conciliado.");
  EXPECT_EQ(desk.Told(), "Lançamento já conciliado.");
  EXPECT_EQ(desk.End(), "idle");
  EXPECT_TRUE(desk.Visible("Panel6"));
  Run("UPDATE CONTACOR_001 SET LANC_CON = '' WHERE LANCAMENTO = 'T00008'");

  // The other row's account counts too.
  Put(Bloqueio{.tipo = "CT", .conta = kOutraConta});
  Load(desk, "T00008");
  EXPECT_EQ(desk.Told("BitBtn3"), "Período fechado até 20/11/2026 para a conta 20418-7.");
  EXPECT_EQ(desk.End(), "idle");
  EXPECT_EQ(desk.Text("EdtLancto"), "T00008");

  Put(Bloqueio{.tipo = "CX"});
  Load(desk, "T00006");
  for (const char* button : {"BitBtn2", "BitBtn3"}) {
    EXPECT_EQ(desk.Told(button), "Período do caixa fechado até 20/11/2026.");
    EXPECT_EQ(desk.End(), "idle");
    EXPECT_FALSE(desk.Enabled("EdtObs"));
  }
  EXPECT_EQ(Audit(), "");
}

TEST_F(CcTest, MovementOfAnotherOrigin) {
  Put(Movimento{.lancamento = "T00009", .docto = "9009", .tipo = "P"});
  for (const std::string company : {"_001", "_002"}) {
    Put(Pagto{.num_ap = "X90" + company.substr(3)}, company);
    Put(Pagto1{.num_ap = "X90" + company.substr(3), .lancamento = "T00009"}, company);
  }
  Put(Receberb{.numero = "NAO ESTA", .lancamento = "T00010", .valor_pago = "12"});
  Put(Movimento{.lancamento = "T00010", .docto = "1010", .tipo = "R"});
  {
    Desk desk(database_, At{"TfmCC"});
    Load(desk, "T00009");
    EXPECT_EQ(desk.EnabledOf({"BitBtn2", "BitBtn3"}), "10");
    EXPECT_EQ(Count("PAGTO1_001", "LANCAMENTO = 'T00009'"), "1");
    EXPECT_NE(desk.Rows("QryFinan").find("X901"), std::string::npos);
    EXPECT_EQ(desk.Rows("QryFinan").find("X902"), std::string::npos);
    desk.Check("CbEmpFinan", true);
    EXPECT_NE(desk.Rows("QryFinan").find("X902"), std::string::npos);

    desk.Click("BitBtn2");
    for (const char* control : {"EdtConta", "PqConta", "EdtNumDoc", "EdtDtLanc", "EdtValor", "CbOper"}) {
      EXPECT_FALSE(desk.Enabled(control)) << control;
    }
    desk.Fill({{"EdtDtVencto", "13/11/2026"},
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
  Desk desk(database_, At{"TfmCC"});
  Load(desk, "T00009");
  EXPECT_FALSE(desk.Enabled("BitBtn2"));
}

TEST_F(CcTest, RightsDecide) {
  Put(Direito{.login_busca = "leo", .classe = "TfmCC", .tipos = "A"});
  Put(Movimento{.lancamento = "T00011", .docto = "1111"});
  {
    Desk desk(database_, At{"TfmCC", "leo"});
    Load(desk, "T00011");
    EXPECT_EQ(desk.Told("BitBtn3"), "Usuário sem permissão para esta operação.");
    EXPECT_EQ(desk.Text("EdtLancto"), "T00011");
    desk.Click("BitBtn2");
    EXPECT_TRUE(desk.Enabled("EdtObs"));
  }
  Run("UPDATE DIREITO SET TIPOS = 'E' WHERE LOGIN_BUSCA = 'leo'");
  Desk desk(database_, At{"TfmCC", "leo"});
  Load(desk, "T00011");
  for (const char* button : {"BitBtn1", "BitBtn2"}) {
    EXPECT_EQ(desk.Told(button), "Usuário sem permissão para esta operação.");
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
