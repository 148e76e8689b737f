// Postings, apportionment, closed periods, the bank's float, and what the services ask the user.
#include <algorithm>

#include "host/services/calendar.h"
#include "host/services/locks.h"
#include "host/services/rateio_dialog.h"
#include "tests/services/services_fixture.h"

namespace orv::test {
namespace {

class ContabilTest : public ServicesTest {
 protected:
  ContabilTest() {
    const char* const shares[] = {"33.33", "33.33", "33.34"};
    for (int i = 0; i < 3; ++i)
      Put(RegraRateio{.codigo = "020201",
                      .conta = "4.01",
                      .ccusto = "000" + std::to_string(i + 1),
                      .perc_ccusto = shares[i]});
    Put(RegraRateio{.codigo = "030301", .conta = "4.01", .perc_conta = 60, .ccusto = "0001"});
    Put(RegraRateio{.codigo = "030301", .conta = "4.02", .perc_conta = 20, .ccusto = "0002"});
  }
  std::string Shares() {
    return Sql(
        "SELECT LANCAMENTO, ORDEM, CONTA, NUMERO, CENTROCUSTO, TIPO, PERC_RAT, VALOR_RAT FROM "
        "CENTRO_RATEIO_001 ORDER BY NUMERO, ORDEM, CENTROCUSTO");
  }
  bool Apportion(const char* numero, const char* classe, int cents, bool confirm = true, bool store = true) {
    return Contabil().SetRateioClasse(numero, classe, "CC", Currency::FromCents(cents), "0", confirm, Date(),
                                      store);
  }
  // Lets the user work at the dialog.
  void AtTheDialog(std::function<void(TfmRateio&)> work) {
    User().modal = [work](Form& form) { work(dynamic_cast<TfmRateio&>(form)); };
  }
};

TEST_F(ContabilTest, AMovementTakesTheBankOfItsAccount) {
  MovimentoConta movimento{.lancamento = "000001",
                           .docto = "D'1",
                           .conta = "222-2",
                           .grupo = "010101",
                           .historico = "002",
                           .tipo = "L",
                           .pendente = "S",
                           .operacao = "+",
                           .observacao = std::string(120, 'o'),
                           .valor = Currency::FromCents(123456),
                           .dt_lan = Date(2026, 11, 1),
                           .dt_vencto = Date(2026, 11, 2),
                           .dt_cont = Date(2026, 11, 3)};
  Contabil().LancaContaCorrente(movimento);
  movimento.banco = "999", movimento.conta = "111-1", movimento.tipo = "TR", movimento.pendente = "N";
  movimento.operacao = "-", movimento.observacao = "x", movimento.valor = Currency::FromRaw(15);
  movimento.dt_cont = Date(), movimento.tipo_doc = "CH";
  Contabil().LancaContaCorrente(movimento);
  EXPECT_EQ(
      Sql("SELECT DOCTO, BANCO, DT_LAN, DT_VENCTO, DT_CONT, VALOR, OPERACAO, GRUPO, HISTORICO, "
          "CHAR_LENGTH(OBSERVACAO), TIPO, TIPO_DOC, PENDENTE, LANC_CON FROM CONTACOR_001 ORDER BY BANCO"),
      "D'1|237|2026-11-01|2026-11-02|2026-11-03|1234.5600|+|010101|002|100|L||S|;"
      "D'1|999|2026-11-01|2026-11-02|-|0.0015|-|010101|002|1|TR|CH|N|");
  Contabil().DeletaContaCorrente("000001");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CONTACOR_001"), "0");
}

TEST_F(ContabilTest, APostingIsWrittenOnlyAfterTheUsersYes) {
  const auto posting = Contabil().Create();
  const auto line = [&](const char* number, const char* docto, const char* docto2, const char* credit,
                        const char* debit, const char* origin, const char* share_class, int cents,
                        const char* note) {
    posting->SetContabilidadeFinan({.lancamento = number,
                                    .docto = docto,
                                    .docto2 = docto2,
                                    .conta_c = credit,
                                    .conta_d = debit,
                                    .operacao = "-",
                                    .origem = origin,
                                    .classe = share_class,
                                    .historico = "002",
                                    .valor = Currency::FromCents(cents),
                                    .data = Date(2026, 11, 3),
                                    .codigo = "000",
                                    .observacao = note});
  };
  line("000007", "1234567890123", "DOC2", "1.01", "4.01", "CC", "020201", 10000, "Luz");
  posting->GravaRaterioCentroCusto("4.01", "020201", "C", "VF", Currency::FromCents(10000));
  line("000007", "DOC", "DOC", "9.99", "111-1", "PP", "", 1, "");
  EXPECT_EQ(ErrorOf([&] { posting->GravaContabilidadeFinan(); }),
            "O lançamento contábil não foi confirmado.");

  User().confirms = false;
  EXPECT_FALSE(posting->ConfirmaDadosContabilidade(0));
  EXPECT_EQ(ErrorOf([&] { posting->GravaContabilidadeFinan(); }),
            "O lançamento contábil não foi confirmado.");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CONTABIL_001"), "0");

  User().confirms = true;
  EXPECT_TRUE(posting->ConfirmaDadosContabilidade(0));
  ASSERT_EQ(User().posting.size(), 2U);
  EXPECT_EQ(User().posting[0].credit_description + "/" + User().posting[0].debit_description,
            "Bancos/Energia");
  EXPECT_EQ(User().posting[0].amount, "100,00");
  EXPECT_FALSE(User().posting[0].unknown_account);
  EXPECT_EQ(User().posting[1].debit_description, "Conta movimento");
  EXPECT_TRUE(User().posting[1].unknown_account);

  posting->GravaContabilidadeFinan();
  posting->GravaContabilidadeFinan();
  EXPECT_EQ(
      Sql("SELECT LANCAMENTO, DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, CLASSE, HISTORICO, VALOR, "
          "DATA, CODIGO, OBSERVACAO FROM CONTABIL_001 ORDER BY DOCTO"),
      "000007|123456789012|DOC2|1.01|4.01|-|CC|020201|002|100.0000|2026-11-03|000|Luz;"
      "000007|DOC|DOC|9.99|111-1|-|PP||002|0.0100|2026-11-03|000|");
  EXPECT_EQ(
      Sql("SELECT LANCAMENTO, ORDEM, CONTA, NUMERO, CENTROCUSTO, TIPO, VALOR_RAT FROM CENTRO_RATEIO_001 "
          "ORDER BY CENTROCUSTO"),
      "000007|1|4.01|123456789012|0001|CC|33.3300;000007|1|4.01|123456789012|0002|CC|33.3300;"
      "000007|1|4.01|123456789012|0003|CC|33.3400");

  // A line added after the yes needs another one.
  line("000008", "", "", "1.01", "4.01", "CC", "", 100, "");
  EXPECT_NE(ErrorOf([&] { posting->GravaContabilidadeFinan(); }), "");
  Contabil().DeletaContabilidadeFinan("000007");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CONTABIL_001"), "0");
}

TEST_F(ContabilTest, RulesThatAreWholeAskNothing) {
  EXPECT_TRUE(Apportion("000009", "020201", 10001));
  EXPECT_EQ(Shares(),
            "|1|4.01|000009|0001|CC|33.33|33.3300;|2|4.01|000009|0002|CC|33.33|33.3300;"
            "|3|4.01|000009|0003|CC|33.34|33.3500");
  // Again: replaced. A movement's own rows whose document reads the same stay.
  Put(Rateio{.lancamento = "000001", .numero = "000009", .centrocusto = "0009", .tipo = "CC"});
  EXPECT_TRUE(Apportion("000009", "020201", 3));
  EXPECT_EQ(Sql("SELECT SUM(VALOR_RAT), COUNT(*) FROM CENTRO_RATEIO_001 WHERE LANCAMENTO = ''"), "0.0300|3");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CENTRO_RATEIO_001"), "4");
  // A class without rules that doesn't ask for shares has none.
  EXPECT_TRUE(Apportion("000009", "010101", 10000));
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CENTRO_RATEIO_001 WHERE LANCAMENTO = ''"), "0");
  EXPECT_EQ(User().modals, 0);
}

TEST_F(ContabilTest, ADifferenceIsAskedAndMustCloseToTheCent) {
  // Without a question there is no answer; a dialog that is just closed is a no.
  EXPECT_FALSE(Apportion("000010", "030301", 10000, false));
  EXPECT_FALSE(Apportion("000010", "030301", 10000));
  EXPECT_EQ(User().modals, 1);
  EXPECT_EQ(Shares(), "");

  AtTheDialog([&](TfmRateio& dialog) {
    EXPECT_EQ(dialog.EdtTotal.Text(), "100,00");
    EXPECT_EQ(dialog.EdtDiferenca.Text(), "20,00");
    ASSERT_EQ(dialog.TbRateio.RecordCount(), 2);
    EXPECT_EQ(dialog.DbgRateio.CellText(1, dialog.DbgRateio.Columns()[1]), "Tinturaria");
    dialog.BitBtn1.UserClick();
    EXPECT_EQ(Said(),
              "Rateio por Centro de Custo: Diferença no percentual de Rateio de Centro de Custo de 20,00%");

    dialog.DbgRateio.UserAppend();
    dialog.DbgRateio.UserCell(2, "Codigo", "0099");
    dialog.DbgRateio.UserCell(2, "Perc", "20");
    dialog.BitBtn1.UserClick();
    EXPECT_EQ(Said(), "Rateio por Centro de Custo: Centro de Custo Inválido.");

    dialog.DbgRateio.UserCell(2, "Codigo", "0003");
    EXPECT_EQ(dialog.TbRateio.CentroCusto.AsString(), "Corte");
    EXPECT_EQ(dialog.TbRateio.Valor.AsCurrency(), Currency::FromCents(2000));
    // The percentage follows an amount, within the hundredth.
    dialog.DbgRateio.UserCell(2, "Valor", "20,01");
    dialog.BitBtn1.UserClick();
    EXPECT_EQ(Said(),
              "Rateio por Centro de Custo: Diferença no valor do Rateio de Centro de Custo de -0,01.");
    EXPECT_FALSE(dialog.Confirmed());
    dialog.DbgRateio.UserCell(2, "Valor", "20");
    dialog.BitBtn1.UserClick();
    EXPECT_EQ(Said(), "");
  });
  EXPECT_TRUE(Apportion("000010", "030301", 10000));
  EXPECT_EQ(
      Shares(),
      "|1|4.01|000010|0001|CC|60|60.0000;|2|4.02|000010|0002|CC|20|20.0000;|3||000010|0003|CC|20|20.0000");
}

TEST_F(ContabilTest, AClassMayAskForSharesWithoutRules) {
  AtTheDialog([&](TfmRateio& dialog) {
    dialog.BitBtn1.UserClick();
    EXPECT_EQ(Said(),
              "Rateio por Centro de Custo: Diferença no percentual de Rateio de Centro de Custo de 100,00%");
    dialog.DbgRateio.UserAppend();
    dialog.DbgRateio.UserCell(0, "Codigo", "0001");
    dialog.DbgRateio.UserCell(0, "Perc", "100");
    dialog.BitBtn1.UserClick();
  });
  // Checked without being stored, then stored.
  EXPECT_TRUE(Apportion("000011", "010102", 5005, true, false));
  EXPECT_EQ(Shares(), "");
  EXPECT_TRUE(Apportion("000011", "010102", 5005));
  EXPECT_EQ(Shares(), "|1||000011|0001|CC|100|50.0500");
}

TEST_F(ContabilTest, ClosedPeriodsAreTold) {
  PeriodLocks& locks = main_->services->Locks();
  locks.Set({"_001", "CT", "111-1", Date(2026, 10, 31)});
  locks.Set({"_001", "CX", "", Date(2026, 9, 30)});
  locks.Set({"_002", "CX", "", Date(2026, 12, 31)});
  Tabela().AbreTabela("tbcadconta", false);
  ASSERT_TRUE(Tabela().TbCadConta().Locate("CONTA", Value("111-1")));
  EXPECT_TRUE(Contabil().PeriodoConciliado(Date(2026, 10, 31), "CT"));
  EXPECT_EQ(Said(), "Contabilidade: Período fechado até 31/10/2026 para a conta 111-1.");
  EXPECT_FALSE(Contabil().PeriodoConciliado(Date(2026, 11, 1), "CT"));
  EXPECT_FALSE(Contabil().PeriodoConciliado(Date(), "CT"));
  EXPECT_TRUE(Contabil().PeriodoConciliado(Date(2026, 9, 30), "CX"));
  EXPECT_EQ(Said(), "Contabilidade: Período do caixa fechado até 30/09/2026.");
  EXPECT_FALSE(Contabil().PeriodoConciliado(Date(2026, 10, 1), "CX"));
  ASSERT_TRUE(Tabela().TbCadConta().Locate("CONTA", Value("222-2")));
  EXPECT_FALSE(Contabil().PeriodoConciliado(Date(2026, 10, 1), "CT"));
  locks.Set({"_001", "CT", "", Date(2026, 10, 15)});
  EXPECT_TRUE(Contabil().PeriodoConciliado(Date(2026, 10, 1), "CT"));
  EXPECT_TRUE(locks.Clear("_001", "CT", ""));
  EXPECT_FALSE(locks.Clear("_001", "CT", ""));
  EXPECT_EQ(locks.List("_001").size(), 2U);
  for (const PeriodLock& bad :
       {PeriodLock{"_001", "XX", "", Date(2026, 1, 1)}, PeriodLock{"_001", "CX", "1", Date(2026, 1, 1)},
        PeriodLock{"_001", "CX", "", Date()}}) {
    EXPECT_NE(ErrorOf([&] { locks.Set(bad); }), "");
  }
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE AREA = 'BLOQUEIO'"), "5");
}

TEST_F(ContabilTest, TheBankCreditsAfterItsFloat) {
  const Date thursday(2026, 11, 19);
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(thursday, "", true), thursday);
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(thursday, "1", true), thursday);
  // Friday the 20th is a holiday: two working days on is Tuesday.
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(thursday, "2", true), Date(2026, 11, 24));
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(Date(2026, 11, 21), "", true), Date(2026, 11, 23));
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(Date(2026, 11, 21), "", false), Date(2026, 11, 21));
  EXPECT_EQ(Contabil().DataContabilizacaoBancaria(thursday, "?", true), thursday);
  EXPECT_TRUE(Contabil().DataContabilizacaoBancaria(Date(), "2", true).Empty());
}

TEST_F(ContabilTest, APairOfAccountAndHistoryOutrulesTheHistory) {
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "001"), "S");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "002"), "N");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "404"), "N");
  Run("INSERT INTO HIST_CONTA_001 (CONTA, HISTORICO, PENDENTE) VALUES ('111-1', '001', 'N')");
  Run("INSERT INTO HIST_CONTA_001 (CONTA, HISTORICO, PENDENTE) VALUES ('111-1', '002', 'S')");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "001"), "N");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "002"), "S");
  EXPECT_EQ(Funcoes().LancamentoPendente("222-2", "001"), "S");
}

TEST_F(ContabilTest, SharedTablesStayOpenUntilTheLastClose) {
  Tabela().AbreTabela("TbCadConta", false);
  Tabela().AbreTabela("TBCADCONTA", false);
  Tabela().FechaTabela("tbcadconta");
  EXPECT_TRUE(Tabela().TbCadConta().Active());
  Tabela().FechaTabela("tbcadconta");
  EXPECT_FALSE(Tabela().TbCadConta().Active());
  Tabela().FechaTabela("tbcadconta");
  Tabela().AbreTabela("tbcadconta", false);
  EXPECT_TRUE(Tabela().TbCadConta().Active());
  Tabela().FechaTabela("tbEmpresa");
  EXPECT_TRUE(Tabela().tbEmpresa().Active());
  Tabela().AbreTabela("tbEmpresa", true);
  EXPECT_EQ(Tabela().tbEmpresa()["EMP_PAT"].AsString(), "_001");
  EXPECT_EQ(ErrorOf([&] { Tabela().AbreTabela("tbNada", false); }), "A tabela \"tbNada\" não existe.");
  // A table stays the one of the company that it was opened for.
  ASSERT_TRUE(Tabela().tbEmpresa().Locate("EMP_PAT", Value("_002")));
  EXPECT_TRUE(Tabela().TbCadConta().Locate("CONTA", Value("222-2")));
  EXPECT_FALSE(Tabela().TbCadConta().Locate("CONTA", Value("333-3")));
}

TEST_F(ContabilTest, ADateIsAskedUntilItIsOne) {
  Date date(2026, 11, 20);
  User().inputs = {"31/02/2026", "", "05/12/2026"};
  EXPECT_TRUE(Funcoes().InputBoxData("Tela", "Informe a data", date));
  EXPECT_EQ(date, Date(2026, 12, 5));
  EXPECT_EQ(User().messages, (std::vector<std::string>{"Tela: Data inválida.", "Tela: Data inválida."}));
  EXPECT_EQ(User().proposals, (std::vector<std::string>{"20/11/2026", "31/02/2026", ""}));
  EXPECT_FALSE(Funcoes().InputBoxData("Tela", "Informe a data", date));
  EXPECT_EQ(date, Date(2026, 12, 5));
}

TEST_F(ContabilTest, ScreensReportsAndTheBusyMark) {
  EXPECT_EQ(ErrorOf([&] { Funcoes().Carrega_Form("orvXX", "TfmRateio", "", false, true); }),
            "O módulo \"orvXX\" não está carregado.");
  EXPECT_NE(ErrorOf([&] { Funcoes().Carrega_Form("orvCC", "TfmNada", "", false, true); }), "");
  TfmRateio screen(main_->application);
  Funcoes().Chama_RelatorioTxt(screen, "WX");
  Funcoes().Chama_Relatorio(screen, "WY");
  ASSERT_EQ(User().reports.size(), 2U);
  EXPECT_EQ(User().reports[0].screen->Sets().size(), 1U);
  EXPECT_TRUE(!User().reports[0].graphic && User().reports[0].text);
  EXPECT_TRUE(User().reports[1].graphic && User().reports[1].text);

  Funcoes().Ocupado(true, screen);
  Funcoes().Ocupado(true, screen);
  Funcoes().Ocupado(false, screen);
  EXPECT_EQ(User().busy, "+");
  main_->services->AfterAction();
  Funcoes().Ocupado(false, screen);
  EXPECT_EQ(User().busy, "+-");

  EXPECT_FALSE(Funcoes().pSetFocus(screen, 'x'));
  EXPECT_TRUE(Funcoes().pSetFocus(screen, '\r'));
  EXPECT_EQ(screen.Focus(), &screen.DbgRateio);

  EXPECT_EQ(Funcoes().Extenso("1.234,50"), "um mil duzentos e trinta e quatro reais e cinquenta centavos");
  EXPECT_EQ(Funcoes().DeletaPonto("1.234.567,8"), "1234567,8");
  EXPECT_EQ(Funcoes().Explode("a;;b", ";").size(), 3U);
  EXPECT_EQ(Funcoes().Explode("a", "").size(), 1U);
  EXPECT_TRUE(Funcoes().ValidaData("29/02/2028"));
  EXPECT_FALSE(Funcoes().ValidaData("29/02/2027"));
  EXPECT_FALSE(Funcoes().ValidaData(""));
  EXPECT_EQ(Funcoes().AspasData(Date(2026, 3, 9)), "'03/09/2026'");
  EXPECT_EQ(Funcoes().AspasData(Date()), "'12/30/1899'");
  EXPECT_EQ(Funcoes().NomeMes()[3], "Março");
}

}  // namespace
}  // namespace orv::test
