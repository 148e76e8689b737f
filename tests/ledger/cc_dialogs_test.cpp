// The dialogs of the ledger: the transfer between accounts and the quick entry.
#include "ledger/cc_lanc_fluxo.h"
#include "tests/ledger/caller.h"
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

class DialogTest : public CcTest {
 protected:
  // The number of the movements that bear this document, one a row.
  std::string NumberOf(const std::string& docto) {
    return Sql("SELECT DISTINCT LANCAMENTO FROM CONTACOR_001 WHERE DOCTO = '" + docto + "'");
  }
  std::string Rows(const std::string& docto) {
    return Sql(
        "SELECT CONTA, BANCO, DT_LAN, DT_VENCTO, DT_CONT, VALOR, OPERACAO, GRUPO, HISTORICO, OBSERVACAO, "
        "TIPO, TIPO_DOC, PENDENTE, LANC_CON FROM CONTACOR_001 WHERE DOCTO = '" +
        docto + "' ORDER BY CONTA, OPERACAO");
  }
  // Opens the transfer from the ledger and fills it.
  static void Transfer(Desk& desk, const Fields& other = {}) {
    desk.Open("TfmCC");
    desk.Click("BitBtn7");
    desk.Fill({{"EdtConta", kConta},
               {"EdtContaDest", kOutraConta},
               {"EdtDocto", "TRF-12345678901"},
               {"EdtValor", "1.234,56"},
               {"DtLan", "18/11/2026"},
               {"DtCont", "19/11/2026"},
               {"EdtClasseSai", "4101"},
               {"EdtHisSai", "006"},
               {"EdtClasseEnt", "4102"},
               {"EdtHisEnt", "007"}});
    desk.Fill(other);
  }
  // Fills the quick entry, which stands open.
  static void Quick(Desk& desk, const Fields& other = {}) {
    desk.Fill({{"EdtConta", kConta},
               {"EdtDocto", "RAPIDO 1"},
               {"EdtTipo", "2102"},
               {"EdtHis", "019"},
               {"EdtValor", "80,00"},
               {"DtLancto", "18/11/2026"},
               {"DtCont", "19/11/2026"},
               {"EdtObs", "D'URGENCIA"}});
    desk.Fill(other);
  }
};

TEST_F(DialogTest, TransferPostsBothSides) {
  Desk desk(database_);
  Transfer(desk);
  EXPECT_EQ(desk.Texts({"EdtDescConta", "EdtDocto", "EdtObs"}),
            "MALHARIA SERRA AZUL LTDA|TRF-12345678|Trf. cc - de 10250-1 para 20418-7");
  desk.Click("BitBtn1");
  EXPECT_EQ(Posting(desk),
            "1.1.02.001|1.1.02.002|1.234,56|TRANSFERENCIA - SAIDA - Trf. cc - de 10250-1 para 20418-7");
  desk.Answer("yes");
  EXPECT_EQ(desk.End() + desk.Messages() + desk.Top(), "idleTfmCC");

  const std::string numero = NumberOf("TRF-12345678"), obs = "Trf. cc - de 10250-1 para 20418-7";
  EXPECT_EQ(Rows("TRF-12345678"),
            "10250-1|901|2026-11-18|2026-11-19|2026-11-19|1234.5600|-|4101|006|" + obs +
                "|TR||N|;20418-7|902|2026-11-18|2026-11-19|2026-11-19|1234.5600|+|4102|007|" + obs +
                "|TR||N|");
  EXPECT_EQ(Sql("SELECT DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, CLASSE, HISTORICO, VALOR, DATA, "
                "CODIGO, OBSERVACAO FROM CONTABIL_001 WHERE LANCAMENTO = '" +
                numero + "'"),
            "TRF-12345678|TRF-12345678|1.1.02.001|1.1.02.002|-|CC|4101|006|1234.5600|2026-11-18|000-00|"
            "TRANSFERENCIA - SAIDA - " +
                obs);
  EXPECT_EQ(Audit("TRANSFERENCIA ENTRE CONTAS"),
            "LANCAMENTO:" + numero + " TRASFERENCIA DA CONTA:10250-1 PARA CONTA:20418-7|3|10250-1");
  EXPECT_EQ(Count("CENTRO_RATEIO_001", "LANCAMENTO = '" + numero + "' OR NUMERO = '" + numero + "'"), "0");

  // It begins empty the next time.
  desk.Click("BitBtn7");
  EXPECT_EQ(desk.Text("EdtConta") + desk.Text("EdtDescConta") + desk.Text("EdtObs"), "");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.End() + desk.Top(), "idleTfmCC");
}

TEST_F(DialogTest, TransferSituationsAndAccounts) {
  // The history has an accounting account of its own, on each side.
  Put(ClasseConta{.conta = "20418-7",
                  .classe = "0",
                  .historico = "008",
                  .conta_cont = "1.1.03.001",
                  .codcli = "",
                  .carteira = "0"});
  struct Case {
    const char *out, *in, *tick;
    const char *posting, *pending;
  };
  const Case cases[] = {
      {"006", "008", "", "1.1.02.001|1.1.03.001", "N|S"},
      {"004", "008", "", "2.1.02.001|1.1.03.001", "S|S"},
      {"006", "008", "false", "1.1.02.001|1.1.03.001", "N|N"},
      {"006", "007", "true", "1.1.02.001|1.1.02.002", "N|S"},
  };
  Desk desk(database_);
  int k = 0;
  for (const Case& c : cases) {
    const std::string docto = "S" + std::to_string(++k);
    Transfer(desk, {{"EdtDocto", docto}, {"EdtHisSai", c.out}, {"EdtHisEnt", c.in}});
    if (*c.tick != 0) desk.Check("CbPendente", c.tick == std::string("true"));
    desk.Click("BitBtn1");
    EXPECT_EQ(Posting(desk).substr(0, 21), c.posting) << docto;
    desk.Answer("yes");
    EXPECT_EQ(Sql("SELECT A.PENDENTE, B.PENDENTE FROM CONTACOR_001 A JOIN CONTACOR_001 B ON B.LANCAMENTO = "
                  "A.LANCAMENTO AND B.OPERACAO = '+' WHERE A.OPERACAO = '-' AND A.DOCTO = '" +
                  docto + "'"),
              c.pending)
        << docto;
    desk.Close();
  }
}

TEST_F(DialogTest, TransferProposesItsText) {
  Desk desk(database_, At{"TfmCC"});
  desk.Click("BitBtn7");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  desk.Leave("EdtConta", "77", "EdtObs");
  EXPECT_EQ(desk.Messages(), "A conta informada é inválida.");
  // The user is back in the field while he reads.
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName(), "EdtConta");
  // The list of the empty field gives the account, and with the other one there the text.
  desk.Set({{"EdtConta", kConta}, {"EdtContaDest", ""}});
  desk.Focus("EdtDocto");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Choose(kOutraConta);
  EXPECT_EQ(desk.Text("EdtObs"), "Trf. cc - de 10250-1 para 20418-7");
  // A text that is there stays.
  desk.Leave("EdtContaDest", "CAIXA", "EdtDocto");
  EXPECT_EQ(desk.Text("EdtObs"), "Trf. cc - de 10250-1 para 20418-7");
  // What was ticked by hand goes with the next choice, of the same history too.
  desk.Set("EdtHisEnt", "008");
  EXPECT_TRUE(desk.Property("CbPendente", "checked").Bool());
  desk.Check("CbPendente", false);
  desk.Click("pqHistEnt");
  desk.Choose("008");
  EXPECT_TRUE(desk.Property("CbPendente", "checked").Bool());

  // Filled is enough, whether the account is there or not.
  desk.Close();
  desk.Click("BitBtn7");
  desk.Set({{"EdtConta", kConta}, {"EdtContaDest", "77"}});
  desk.Focus("EdtDocto");
  desk.Answer("ok");
  EXPECT_EQ(desk.Text("EdtObs"), "Trf. cc - de 10250-1 para 77");
}

TEST_F(DialogTest, TransferRefusesInOrder) {
  Put(Bloqueio{.tipo = "CT", .conta = kConta});
  Put(Bloqueio{.tipo = "CT", .conta = kOutraConta});
  Put(Bloqueio{.tipo = "CX"});
  Desk desk(database_);
  Transfer(desk, {{"DtLan", ""}, {"DtCont", ""}, {"EdtContaDest", ""}});
  const std::string before = Tables(kWritten);
  // A date that is entered takes today.
  Refuses(desk, "BitBtn1", kWritten,
          {{{}, "A Data de Lançamento informada é inválida."},
           {{}, "A Data de Contabilização informada é inválida."},
           {{}, "A conta informada é inválida."},
           {{{"EdtContaDest", kOutraConta}}, "Período fechado até 20/11/2026 para a conta 10250-1."},
           {{},
            "Período fechado até 20/11/2026 para a conta 20418-7.",
            "",
            "DELETE FROM BLOQUEIO WHERE CONTA = '10250-1'"},
           {{}, "Período do caixa fechado até 20/11/2026.", "", "DELETE FROM BLOQUEIO WHERE TIPO = 'CT'"}});
  Run("DELETE FROM BLOQUEIO");
  desk.Press("BitBtn1", "no");
  EXPECT_EQ(desk.End() + desk.Top() + desk.Text("EdtValor"), "idleTFmCCTransConta1.234,56");
  EXPECT_EQ(Tables(kWritten), before);
  // An amount of zero and an account to itself pass.
  desk.Fill({{"EdtContaDest", kConta}, {"EdtValor", "0,00"}, {"EdtObs", ""}});
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'TRF-12345678' AND VALOR = 0"), "2");
}

TEST_F(DialogTest, QuickEntryRefusesInOrder) {
  Run("UPDATE SUBGRUPO_001 SET RATEIO = 'S' WHERE CODIGO = '2102'");
  Put(Bloqueio{.tipo = "CT", .conta = kConta});
  Put(Bloqueio{.tipo = "CX"});
  Desk desk(database_, At{"TFmCCLancFluxo"});
  desk.Set("EdtConta", kConta);
  const std::string closed = "Período fechado até 20/11/2026 para a conta 10250-1.",
                    before = Tables(kWritten);
  Refuses(desk, "BitBtn1", kWritten,
          {// A date that is entered takes today.
           {{}, "Data de lançamento inválida.", "DtLancto"},
           {{}, "Data de contabilização inválida.", "DtCont"},
           {{{"DtLancto", "20/11/2026"}, {"DtCont", "21/11/2026"}}, closed, "BitBtn1"},
           {{{"EdtConta", ""}}, "Valor inválido.", "EdtValor"},
           {{{"EdtValor", "0,00"}}, "Valor inválido.", "EdtValor"},
           {{{"EdtValor", "80,00"}}, "Conta inválida.", "EdtConta"},
           {{{"EdtConta", kConta}, {"DtLancto", "21/11/2026"}, {"DtCont", "01/11/2026"}}, closed, "BitBtn1"},
           {{{"EdtConta", kOutraConta}}, "Período do caixa fechado até 20/11/2026.", "BitBtn1"},
           {{{"DtCont", "21/11/2026"}}, "Histórico inválido.", "EdtHis"},
           {{{"EdtHis", "019"}}, "Classe gerencial inválida.", "EdtTipo"},
           {{{"EdtTipo", "2102"}}, "Documento inválido.", "EdtDocto"}});
  desk.Set("EdtDocto", "RAPIDO 1");
  const auto left = [&] { return Tables(kWritten) == before && desk.Top() == "TFmCCLancFluxo"; };
  // The apportionment is refused, then the accounting: neither leaves anything.
  desk.Click("BitBtn1");
  EXPECT_EQ(desk.Top(), "TfmRateio");
  desk.Close();
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_TRUE(left());
  const auto apportion = [&] {
    desk.Click("BitBtn1");
    int row = 0;
    for (const auto& [centre, percent] : Fields{{"0100", "12,5"}, {"0200", "87,5"}}) {
      desk.Append("DbgRateio");
      desk.Cell("DbgRateio", row, "Codigo", centre);
      desk.Cell("DbgRateio", row++, "Perc", percent);
    }
    desk.Click("BitBtn1");
  };
  apportion();
  EXPECT_EQ(Posting(desk), "0|0|80,00|");
  // Nothing is held while the user is asked.
  EXPECT_EQ(Tables(kWritten), before);
  desk.Answer("no");
  EXPECT_TRUE(left());
  // And what was answered is asked but once in a confirmation.
  apportion();
  desk.Answer("yes");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  const std::string numero = NumberOf("RAPIDO 1");
  EXPECT_EQ(Sql("SELECT CENTROCUSTO, TIPO, VALOR_RAT FROM CENTRO_RATEIO_001 WHERE NUMERO = '" + numero +
                "' ORDER BY 1"),
            "0100|CC|10.0000;0200|CC|70.0000");
  EXPECT_EQ(Audit("CONTA CORRENTE"), "INCLUSÃO DO LANCAMENTO " + numero + "|3|" + numero);
}

TEST_F(DialogTest, QuickEntryFollowsItsCaller) {
  Put(Movimento{.lancamento = "Q00001", .docto = "MUDA", .banco = "902", .conta = kOutraConta});
  Put(ClasseConta{.conta_cont = "2.1.01.001", .codcli = "00050"});
  struct Case {
    const char *docto, *numero, *client, *classe, *history;
    bool apportion;
    const char* posting;
  };
  const Case cases[] = {
      {"SEM REGRA", "", "", "2102", "019", true, "0|0|80,00|"},
      {"COM REGRA", "", "", "3103", "012", false,
       "1.1.02.001|4.1.03.001|52,00|;1.1.02.001|4.1.03.002|28,00|"},
      {"CLIENTE", "", "00050", "3103", "012", true,
       "2.1.01.001|4.1.03.001|52,00|;2.1.01.001|4.1.03.002|28,00|"},
      {"MUDA", "Q00001", "", "2102", "019", true, "0|0|80,00|"},
      {"OUTRO", "Q00001", "", "2102", "019", true, "0|0|80,00|"},
  };
  const CallerScreens callers;
  Desk desk(database_);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.docto);
    on_call = [&](Screen& caller) {
      Screen& made = caller.Owner().CreateScreen("TFmCCLancFluxo");
      auto& entry = static_cast<TFmCCLancFluxo&>(made);
      entry.Lancamento = c.numero;
      entry.CodCliente = c.client;
      entry.UsaRateioClasse = c.apportion;
      caller.Owner().Show(entry);
      static_cast<TfmChamador&>(caller).EdtTag.SetText(std::to_string(entry.Tag) + " " + entry.Lancamento);
    };
    desk.Open("TfmChamador");
    desk.Click("BtChama");
    Quick(desk, {{"EdtDocto", c.docto}, {"EdtTipo", c.classe}, {"EdtHis", c.history}});
    EXPECT_EQ(desk.Text("CbOper"), "Débito");
    desk.Click("BitBtn1");
    EXPECT_EQ(Posting(desk), c.posting);
    desk.Answer("yes");
    const std::string numero = *c.numero != 0 ? c.numero : NumberOf(c.docto);
    EXPECT_EQ(desk.Text("EdtTag"), "0 " + numero);
    EXPECT_EQ(
        Count("CENTRO_RATEIO_001", "NUMERO = '" + numero + "' AND TIPO = 'CC' AND LANCAMENTO = ''") != "0",
        c.apportion && c.classe == std::string("3103"));
    desk.Close();
  }
  const auto row = [](const char* account, const char* side) {
    return std::string(account) + "|2026-11-18|2026-11-19|2026-11-19|80.0000|" + side +
           "|2102|019|D'URGENCIA|L||S|";
  };
  EXPECT_EQ(Rows("SEM REGRA"), row("10250-1|901", "-"));
  // The movement on another account is undone there, and all three rows stand under one number.
  EXPECT_EQ(Rows("MUDA"),
            row("10250-1|901", "-") + ";" + row("20418-7|902", "+") +
                ";20418-7|902|2026-11-10|2026-11-12|2026-11-10|150.0000|-|3104|019|COMO ESTAVA|L|DP|N|");
  EXPECT_EQ(NumberOf("MUDA"), "Q00001");
  // Another document isn't that movement.
  EXPECT_EQ(Rows("OUTRO"), row("10250-1|901", "-"));
}

TEST_F(DialogTest, QuickEntryTellsHowItEnded) {
  const CallerScreens callers;
  Desk desk(database_);
  on_call = [&](Screen& caller) {
    Screen& entry = caller.Owner().CreateScreen("TFmCCLancFluxo");
    caller.Owner().Show(entry);
    static_cast<TfmChamador&>(caller).EdtTag.SetText(std::to_string(entry.Tag));
    // Hidden, not freed: the table beneath it is closed again.
    EXPECT_EQ(caller.Owner().FindComponent("FmCCLancFluxo"), &entry);
    EXPECT_FALSE(caller.Owner().Tabela().TbCadConta().Active());
  };
  desk.Open("TfmChamador");
  const auto ended = [&](const std::function<void()>& end) {
    desk.Click("BtChama");
    Quick(desk, {{"EdtTipo", "1101"}});
    EXPECT_EQ(desk.Text("CbOper"), "Crédito");
    end();
    return desk.Top() + " " + desk.Text("EdtTag");
  };
  EXPECT_EQ(ended([&] { desk.Click("BitBtn2"); }), "TfmChamador 1");
  EXPECT_EQ(ended([&] { desk.Close(); }), "TfmChamador 0");
  EXPECT_EQ(ended([&] {
              desk.Press("BitBtn1", "no");
              EXPECT_EQ(desk.Top(), "TFmCCLancFluxo");
              desk.Press("BitBtn1", "yes");
            }),
            "TfmChamador 1");
  EXPECT_EQ(Sql("SELECT OPERACAO, VALOR FROM CONTACOR_001 WHERE DOCTO = 'RAPIDO 1'"), "+|80.0000");
}

}  // namespace
}  // namespace orv::test
