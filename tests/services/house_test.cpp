// Users, parameters, period locks, numbers, holidays and audit lines over a real database.
#include <algorithm>
#include <thread>

#include "host/schema/tables.h"
#include "host/services/audit.h"
#include "host/services/calendar.h"
#include "host/services/companies.h"
#include "host/services/locks.h"
#include "host/services/parameters.h"
#include "host/services/preferences.h"
#include "host/services/users.h"
#include "tests/services/services_fixture.h"

namespace orv::test {
namespace {

using HouseTest = ServicesTest;

TEST_F(HouseTest, ASessionNeedsAKnownUserAndCompany) {
  EXPECT_EQ(ErrorOf([&] { NewSession("zeca"); }), "O usuário \"zeca\" não existe.");
  EXPECT_EQ(ErrorOf([&] { NewSession("ana", "_009"); }), "A empresa \"_009\" não existe.");
  EXPECT_EQ(ErrorOf([&] { NewSession("ana", ""); }), "A empresa \"\" não existe.");
  EXPECT_EQ(NewSession(" LEO ")->services->Login(), "Leo");
  main_->services->Users().SetActive("leo", false);
  main_->db->CommitRetaining();
  EXPECT_EQ(ErrorOf([&] { NewSession("leo"); }), "O usuário \"Leo\" está desativado.");
}

TEST_F(HouseTest, UsersComeAndGoWithAnAuditLine) {
  Audit audit(*main_->db, Clock(Date::ParseNeutral(kToday)), "ana", "_001");
  Users users(*main_->db, audit, PasswordCost::Least());
  EXPECT_EQ(ErrorOf([&] { users.Add({"LEO", "outro"}, "mesa clara 2026"); }), "O usuário \"LEO\" já existe.");
  EXPECT_NE(ErrorOf([&] { users.Add({"dois nomes", ""}, "mesa clara 2026"); }), "");
  EXPECT_NE(ErrorOf([&] { users.Add({"", ""}, "mesa clara 2026"); }), "");
  EXPECT_NE(ErrorOf([&] { users.Add({"rui", ""}, "senha1234567"); }), "");
  EXPECT_FALSE(users.Find("rui"));

  users.Add({"d'Ávila", "O'Neil"}, "mesa clara 2026");
  EXPECT_TRUE(users.Verify("D'ÁVILA", "mesa clara 2026"));
  EXPECT_FALSE(users.Verify("d'Ávila", "mesa clara 2025"));
  EXPECT_FALSE(users.Verify("ninguém", "mesa clara 2026"));
  users.SetPassword("d'ávila", "outra mesa 2026");
  EXPECT_FALSE(users.Verify("d'Ávila", "mesa clara 2026"));
  EXPECT_TRUE(users.Verify("d'Ávila", "outra mesa 2026"));
  users.SetActive("d'Ávila", false);
  EXPECT_FALSE(users.Verify("d'Ávila", "outra mesa 2026"));
  users.Remove("d'Ávila");
  EXPECT_EQ(users.List().size(), 2U);

  // Somebody must stay who can let others in.
  for (const auto& act : {std::function<void()>([&] { users.Remove("ana"); }),
                          {[&] { users.SetActive("ana", false); }},
                          {[&] { users.SetAdministrator("ana", false); }}}) {
    EXPECT_EQ(ErrorOf(act), "É preciso que haja pelo menos um administrador ativo.");
  }
  users.SetAdministrator("leo", true);
  users.Remove("ana");
  EXPECT_EQ(Sql("SELECT OPERACAO, TEXTO FROM AUDITORIA WHERE CHAVE = 'd''Ávila' ORDER BY ID"),
            "1|INCLUSAO DO USUARIO d'Ávila;1|TROCA DA SENHA DO USUARIO d'Ávila;"
            "1|DESATIVACAO DO USUARIO d'Ávila;2|EXCLUSAO DO USUARIO d'Ávila");
}

TEST_F(HouseTest, RightsGoByClassAndKind) {
  Users& users = main_->services->Users();
  EXPECT_TRUE(users.May("ana", "TfmCC", 'E'));
  EXPECT_FALSE(users.MayOpen("leo", "TfmCC"));
  users.Grant("leo", {"TfmCC", "a"});
  users.Grant("leo", {"tfmcc", "A"});
  EXPECT_EQ(users.Rights("leo").size(), 1U);
  EXPECT_TRUE(users.MayOpen("LEO", "TFMCC"));
  EXPECT_TRUE(users.May("leo", "TfmCC", 'A'));
  EXPECT_FALSE(users.May("leo", "TfmCC", 'E'));
  EXPECT_FALSE(users.MayOpen("leo", "TfmChequePre"));
  EXPECT_NE(ErrorOf([&] { users.Grant("leo", {"TfmCC", "X"}); }), "");
  EXPECT_TRUE(users.Revoke("leo", "TfmCC"));
  EXPECT_FALSE(users.Revoke("leo", "TfmCC"));
  users.Grant("leo", {"*", "*"});
  EXPECT_TRUE(users.May("leo", "TfmChequePre", 'E'));
  users.SetActive("leo", false);
  EXPECT_FALSE(users.MayOpen("leo", "TfmChequePre"));

  users.SetActive("leo", true);
  users.Revoke("leo", "*");
  LoginAgain("leo");
  EXPECT_FALSE(Funcoes().Acessa("TfmCC", 'A', "0", ""));
  EXPECT_EQ(Said(), "orvCC: Usuário sem permissão para esta operação.");
  EXPECT_TRUE(NewSession("ana")->application.Funcoes().Acessa("TfmCC", 'A', "0", ""));
}

TEST_F(HouseTest, ParametersFallBackToAllCompanies) {
  Parameters& parameters = main_->services->Parameters();
  EXPECT_EQ(Funcoes().BuscaParametro("FIN", 999), "");
  parameters.Set({"", "TST", 1, "geral"});
  EXPECT_EQ(Funcoes().BuscaParametro("tst", 1), "geral");
  parameters.Set({"_001", "tst", 1, "d'água"});
  EXPECT_EQ(Funcoes().BuscaParametro("TST", 1), "d'água");
  EXPECT_EQ(parameters.Get("_002", "TST", 1), "geral");
  // A company's empty value hides the general one.
  parameters.Set({"_001", "TST", 1, ""});
  EXPECT_EQ(Funcoes().BuscaParametro("TST", 1), "");
  EXPECT_TRUE(parameters.Remove("_001", "TST", 1));
  EXPECT_FALSE(parameters.Remove("_001", "TST", 1));
  EXPECT_NE(ErrorOf([&] { parameters.Set({"", "TST", 1, std::string(251, 'x')}); }), "");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE AREA = 'PARAMETRO'"), "4");
}

TEST_F(HouseTest, NumbersAreNeverGivenTwice) {
  EXPECT_EQ(Funcoes().Proximo("CONTACOR", "LANCAMENTO", 6, true), "000001");
  // A number drawn and not used is gone, also when its action is undone.
  main_->db->Rollback();
  EXPECT_EQ(Funcoes().Proximo("CONTACOR", "LANCAMENTO", 6, true), "000002");
  // A clearing's number is no movement's.
  EXPECT_EQ(Funcoes().Proximo("contacor", "lanc_con", 6, true), "000003");
  EXPECT_EQ(NewSession("ana", "_002")->application.Funcoes().Proximo("CONTACOR", "LANCAMENTO", 6, true),
            "000001");

  // Rows put in by other means are stepped over, a whole block of them too.
  for (int n = 4; n < 60; ++n) {
    Put(Movimento{.lancamento = std::string(n < 10 ? "00000" : "0000") + std::to_string(n)});
  }
  const std::string next = Funcoes().Proximo("CONTACOR", "LANCAMENTO", 6, true);
  EXPECT_GE(next, "000060");
  EXPECT_LE(next, "000130");

  // A sequence never used starts above what is there, but a lone number at the end doesn't use up the range.
  Put(Extrato{.lancto = "004711"});
  Put(Extrato{.lancto = "12X"});
  EXPECT_EQ(Funcoes().Proximo("EXTRATO", "LANCTO", 6, true), "004712");
  Put(Movimento{.docto = "99999999"});
  Put(Movimento{.docto = "00000002"});
  EXPECT_EQ(Funcoes().Proximo("CONTACOR", "DOCTO", 8, true), "00000003");

  // Another column gets its sequence on first use, without a commit of what the session wrote.
  EXPECT_EQ(Funcoes().Proximo("BORDERO", "NUMERO", 6, true), "000001");
  EXPECT_EQ(NewSession()->application.Funcoes().Proximo("BORDERO", "NUMERO", 6, true), "000002");
  EXPECT_NE(ErrorOf([&] { Funcoes().Proximo("CONTACOR", "NADA", 6, true); }), "");
  main_->db->Rollback();
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM EXTRATO_001"), "0");

  // Several sessions at once.
  std::vector<std::vector<std::string>> drawn(4);
  std::vector<std::thread> threads;
  for (auto& numbers : drawn) {
    threads.emplace_back([&numbers, this] {
      const auto session = NewSession();
      for (int i = 0; i < 50; ++i) {
        numbers.push_back(session->application.Funcoes().Proximo("PAGTO", "NUM_AP", 6, true));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  std::vector<std::string> all;
  for (const auto& numbers : drawn) all.insert(all.end(), numbers.begin(), numbers.end());
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all.size(), 200U);
  EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
}

// Whatever deletes by a number deletes what stands under it in any table.
TEST_F(HouseTest, ANumberIsFreeInEveryColumnOfItsKind) {
  const auto draw = [this](const char* company) {
    main_->db->CommitRetaining();
    const std::string next =
        NewSession("ana", company)->application.Funcoes().Proximo("CONTACOR", "LANC_CON", 6, true);
    return std::stoi(next);
  };
  const auto padded = [](int n) { return std::to_string(1000000 + n).substr(1); };
  int last = draw("_001");
  for (const ColumnRef& held : SequenceOf("EXTRATO", "LANC_CON").Columns()) {
    const std::string extra = held.table == "EXTRATO" ? ", LANCTO" : "";
    Run("INSERT INTO " + held.table + "_001 (" + held.column + extra + ") VALUES ('" + padded(last + 1) +
        "'" + (extra.empty() ? "" : ", 'X'") + ")");
    const int next = draw("_001");
    EXPECT_EQ(next, last + 2) << held.table << "." << held.column;
    last = next;
  }
  Put(Pagto1{.lancamento = padded(last + 2)});
  const std::vector<std::string> many = Funcoes().Proximos("CONTACOR", "LANCAMENTO", 6, true, 3);
  EXPECT_EQ(many, (std::vector<std::string>{padded(last + 1), padded(last + 3), padded(last + 4)}));

  // Companies that share one of the tables meet there: they number together, and look at each other's rows.
  EXPECT_EQ(draw("_002"), 1);
  Put(Compartilhada{.tabela = "CONTABIL", .emp_pat = "_001"});
  EXPECT_EQ(draw("_002"), last + 5);
  Put(Movimento{.lancamento = padded(last + 6)}, "_002");
  EXPECT_EQ(draw("_001"), last + 7);
}

TEST_F(HouseTest, HolidaysOfTheHouseMoveADate) {
  Calendar& calendar = main_->services->Calendar();
  // 20 November is a Friday and a holiday; the Monday after is made one for the first company.
  EXPECT_EQ(Funcoes().VerificaDiaUtil(Date(2026, 11, 20), false), Date(2026, 11, 23));
  EXPECT_EQ(Funcoes().VerificaDiaUtil(Date(2026, 11, 22), true), Date(2026, 11, 19));
  EXPECT_TRUE(Funcoes().VerificaDiaUtil(Date(), false).Empty());
  calendar.Add({Date(2026, 11, 23), "_001", "Aniversário"});
  calendar.Add({Date(2026, 11, 24), "", "Luto"});
  EXPECT_EQ(Funcoes().VerificaDiaUtil(Date(2026, 11, 20), false), Date(2026, 11, 25));
  EXPECT_EQ(calendar.WorkingDay(Date(2026, 11, 20), false, "_002"), Date(2026, 11, 23));
  EXPECT_EQ(calendar.AddWorkingDays(Date(2026, 11, 19), 1, "_001"), Date(2026, 11, 25));
  EXPECT_TRUE(calendar.Remove(Date(2026, 11, 24), ""));
  EXPECT_EQ(Funcoes().VerificaDiaUtil(Date(2026, 11, 20), false), Date(2026, 11, 24));
}

TEST_F(HouseTest, AuditLinesAreCutAndKept) {
  Funcoes().GeraLog("CONTACOR", std::string(1500, 'x') + "ç", TOperacaoLog::Processo, "000001'");
  EXPECT_EQ(Sql("SELECT LOGIN, EMP_PAT, AREA, CHAR_LENGTH(TEXTO), OPERACAO, CHAVE FROM AUDITORIA WHERE AREA "
                "= 'CONTACOR'"),
            "ana|_001|CONTACOR|1000|3|000001'");
}

TEST_F(HouseTest, PreferencesAreTheUsersOwn) {
  Preferences& preferences = main_->services->Preferences();
  EXPECT_EQ(Funcoes().LeConfiguracao("Venda", "Parametros", "PortaImpCheque", 7), 7);
  preferences.Set(Preferences::Path("Venda", "Parametros", "PortaImpCheque"), "2");
  EXPECT_EQ(Funcoes().LeConfiguracao("Venda", "Parametros", "PortaImpCheque", 7), 2);
  preferences.Set(Preferences::Path("Venda", "Parametros", "PortaImpCheque"), "dois");
  EXPECT_EQ(Funcoes().LeConfiguracao("Venda", "Parametros", "PortaImpCheque", 7), 7);
  main_->db->CommitRetaining();
  EXPECT_EQ(
      NewSession("leo")->application.Funcoes().LeConfiguracao("Venda", "Parametros", "PortaImpCheque", 9), 9);
}

TEST_F(HouseTest, StatementsReachTheCompaniesTheyShould) {
  const char* sql = "SELECT CONTA, '{}' AS EMP FROM {CADCONTA} WHERE CONTA <> '{X}'";
  EXPECT_EQ(Sql(Funcoes().DBLocal_SQL(sql, "") + " ORDER BY 1"), "111-1|_001;222-2|_001");
  EXPECT_EQ(Sql(Funcoes().UnionTodasEmpresas(sql, "", true) + " ORDER BY 1"),
            "111-1|_001;222-2|_001;333-3|_002");
  EXPECT_EQ(Sql(Funcoes().UnionTodasEmpresas(sql, "", false) + " ORDER BY 1"), "111-1|_001;222-2|_001");

  // Walking the companies names the tables of each; the session's company stays what it is.
  auto& companies = Tabela().tbEmpresa();
  std::string walked;
  for (companies.First(); !companies.Eof(); companies.Next()) {
    walked += Funcoes().DBLocal("CADCONTA", true) + " " + main_->db->LocalName("CADCONTA") + " " +
              Funcoes().Busca_Valor("CADCONTA", {{"BANCO", "341"}}, "CONTA") + ";";
  }
  EXPECT_EQ(walked, "CADCONTA_001 CADCONTA_001 ;CADCONTA_002 CADCONTA_002 333-3;");
  EXPECT_EQ(Funcoes().vEmpresa_Atual(), "_001");
  main_->services->AfterAction();
  // A company is named without walking to it, which would take a statement there and one back.
  companies.AfterScroll = [] { FAIL(); };
  EXPECT_EQ(Sql(Funcoes().DBEmpresa_SQL(sql, "_002")), "333-3|_002");
  EXPECT_EQ(Funcoes().DBLocal("CADCONTA", true), "CADCONTA_001");
  EXPECT_EQ(Funcoes().DBLocal("EMPRESA", true), "EMPRESA");
  EXPECT_EQ(Funcoes().DBLocal("CADCONTA", false), "CADCONTA");
}

TEST_F(HouseTest, SharedTablesStandOnce) {
  Put(Compartilhada{.tabela = "CADCONTA", .emp_pat = "_002"});
  LoginAgain();
  EXPECT_EQ(Tabela().TabelasCompartilhadas(), std::vector<std::string>{"CADCONTA"});
  const std::string sql = "SELECT CONTA, '{}' AS EMP FROM {CADCONTA}";
  EXPECT_EQ(Sql(Funcoes().DBLocal_SQL(sql, "")), "333-3|_001");
  EXPECT_EQ(Sql(Funcoes().UnionTodasEmpresas(sql, "", true)), "333-3|_002");
  EXPECT_TRUE(Funcoes().Existe("CADCONTA", {{"CONTA", "333-3"}}));
  // A table of each company beside a shared one takes a branch each.
  Put(Movimento{.conta = "333-3", .valor = "10"});
  Put(Movimento{.conta = "333-3", .valor = "20"}, "_002");
  const std::string joined =
      "SELECT C.VALOR, '{}' AS EMP FROM {CONTACOR} C INNER JOIN {CADCONTA} A ON (A.CONTA = C.CONTA)";
  EXPECT_EQ(Sql(Funcoes().UnionTodasEmpresas(joined, "CONTACOR", true) + " ORDER BY 2"),
            "10.0000|_001;20.0000|_002");
}

TEST_F(HouseTest, AUnionOfTooManyCompaniesIsRefusedBeforeTheEngineFails) {
  const auto suffix = [](int n) { return "_" + std::to_string(1000 + n).substr(1); };
  const auto many = [&] {
    for (int n = 3; n <= 260; ++n)
      Run("INSERT INTO EMPRESA (EMP_PAT, EMP_NOME) VALUES ('" + suffix(n) + "', 'x')");
  };
  many();
  EXPECT_EQ(
      ErrorOf([&] { Funcoes().UnionTodasEmpresas("SELECT 1 FROM {CADCONTA} A, {CADBAN} B", "", true); }),
      "A consulta de todas as empresas alcança no máximo 127 empresas, e há 260. Consulte uma empresa por "
      "vez.");

  // The largest union that is let through is one that the engine takes.
  const char* statements[] = {
      "SELECT CONTA FROM {CADCONTA}",
      "SELECT A.CONTA FROM {CADCONTA} A LEFT JOIN {CADBAN} B ON (A.BANCO = B.BANCO) WHERE EXISTS (SELECT 1 "
      "FROM {CONTACOR} C WHERE C.CONTA = A.CONTA)",
      "SELECT CONTA, SUM(LIMITE) FROM {CADCONTA} GROUP BY CONTA",
      "SELECT SUM(A.LIMITE) FROM {CADCONTA} A INNER JOIN {CADBAN} B ON (A.BANCO = B.BANCO)",
      "SELECT X.CONTA FROM (SELECT CONTA, COUNT(*) AS N FROM {CADCONTA} GROUP BY CONTA) X",
  };
  for (const char* sql : statements) {
    int fits = 260;
    while (fits > 0 && ErrorOf([&] { Funcoes().UnionTodasEmpresas(sql, "", true); }) != "") {
      Run("DELETE FROM EMPRESA WHERE EMP_PAT = (SELECT MAX(EMP_PAT) FROM EMPRESA)");
      --fits;
    }
    // The further companies have no tables: the first company's stand in for theirs.
    std::string text = Funcoes().UnionTodasEmpresas(sql, "", true);
    for (int n = fits; n > 1; --n) text = ReplaceAll(text, suffix(n), "_001");
    EXPECT_EQ(ErrorOf([&] { main_->db->Rows(text); }), "") << sql << " x " << fits;
    main_->db->Rollback();
    many();
  }
}

TEST_F(HouseTest, LookUpsTakeListsAndAnyText) {
  EXPECT_EQ(Funcoes().Busca_Valor("CADCONTA", {{"CONTA", "111-1"}, {"BANCO", "001"}}, "DESCRICAO;BANCO"),
            "Conta movimento;001");
  EXPECT_EQ(Funcoes().Busca_Valor("CADCONTA", {{"CONTA", "9"}}, "DESCRICAO"), "");
  EXPECT_TRUE(Funcoes().Existe("CADCONTA", {{"CONTA", "111-1"}, {"BANCO", "001"}}));
  EXPECT_FALSE(Funcoes().Existe("CADCONTA", {{"CONTA", "111-1"}, {"BANCO", "237"}}));
  // Separators and quotes inside a value.
  for (const std::string text : {"a;b", "a,b", "d'água", "{}", "' OR '1'='1"}) {
    Run("UPDATE CADCONTA_001 SET DESCRICAO = " + Funcoes().Aspas(text) + " WHERE CONTA = '222-2'");
    EXPECT_EQ(Sql("SELECT DESCRICAO FROM CADCONTA_001 WHERE CONTA = '222-2'"), text);
    EXPECT_EQ(Funcoes().Busca_Valor("CADCONTA", {{"BANCO", "237"}, {"DESCRICAO", text}}, "CONTA"), "222-2");
    EXPECT_TRUE(Funcoes().Existe("CADCONTA", {{"DESCRICAO", text}, {"BANCO", "237"}}));
    EXPECT_FALSE(Funcoes().Existe("CADCONTA", {{"CONTA", text}}));
  }
}

}  // namespace
}  // namespace orv::test
