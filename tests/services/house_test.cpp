// What the desk's screens ask of the house over a small one of two companies: sessions, parameters, closed
// periods, numbers, working days and statements.
#include "host/schema/schema.h"
#include "host/schema/tables.h"
#include "host/services/audit.h"
#include "host/services/calendar.h"
#include "host/services/locks.h"
#include "host/services/parameters.h"
#include "host/services/preferences.h"
#include "host/services/session_services.h"
#include "host/services/users.h"
#include "tests/support/desk_test.h"
#include "tests/support/person.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

// Made once; the tests work on copies.
const std::filesystem::path& Original() {
  static const struct Made {
    Made() {
      const auto db = Attachment::Create(file.string());
      CreateSchema(*db, {{"_001", "Malhas Serra", "Joinville"}, {"_002", "Malhas Vale", "Blumenau"}});
      Audit audit(*db, Clock(Date::ParseNeutral(kToday)), "", "");
      Users users(*db, audit, PasswordCost::Least());
      users.Add({"ana", "Ana Prado", true, true}, "mesa clara 2026");
      users.Add({"Leo", "Leo Sales", false, true}, "mesa clara 2027");
      for (const char* row :
           {"CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('111-1', '001', 'Conta movimento')",
            "CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('222-2', '237', 'Reserva')",
            "CADCONTA_002 (CONTA, BANCO, DESCRICAO) VALUES ('333-3', '341', 'Do Vale')",
            "HISTCP_001 (HISTORICO, SITUACAO) VALUES ('001', 'P')",
            "HISTCP_001 (HISTORICO, SITUACAO) VALUES ('002', 'N')",
            "TABSIT_001 (CODIGO, DIAS_FLOAT) VALUES ('1', 0)",
            "TABSIT_001 (CODIGO, DIAS_FLOAT) VALUES ('2', 2)"})
        db->Execute("INSERT INTO " + std::string(row));
      db->CommitRetaining();
    }
    TempFolder folder;
    std::filesystem::path file = folder.Path() / "house.fdb";
  } made;
  return made.file;
}

// Keeps what it is told.
struct Listener : Nobody {
  Answer Message(MessageKind, std::string_view title, std::string_view text, Answer initial) override {
    told = std::string(title) + ": " + std::string(text);
    return initial;
  }
  std::string told;
};

class HouseTest : public ::testing::Test {
 protected:
  HouseTest() {
    std::filesystem::copy_file(Original(), database_);
    main_ = NewSession();
  }
  struct Session {
    Session(const std::filesystem::path& database, const std::string& login, const std::string& company)
        : db(Attachment::Open(database.string())), services(application, *db, login, company) {}
    Listener user;
    std::unique_ptr<Attachment> db;
    Application application{user, Clock(Date::ParseNeutral(kToday))};
    SessionServices services;
  };
  std::unique_ptr<Session> NewSession(const std::string& user = "ana", const std::string& company = "_001") {
    return std::make_unique<Session>(database_, user, company);
  }
  std::string Sql(std::string_view sql) { return RowsText(*main_->db, sql); }
  void Run(std::string_view sql) { main_->db->Execute(sql); }
  template <class R>
  void Put(const R& row, const std::string& company = "_001") {
    Run(Insert(row, company));
  }
  IFuncoes& Funcoes() { return main_->application.Funcoes(); }
  IContabil& Contabil() { return main_->application.Contabil(); }
  ITabela& Tabela() { return main_->application.Tabela(); }

  TempFolder folder_;
  std::filesystem::path database_ = folder_.Path() / "house.fdb";
  std::unique_ptr<Session> main_;
};

TEST_F(HouseTest, ASessionNeedsAKnownUserAndCompany) {
  EXPECT_EQ(ErrorOf([&] { NewSession("zeca"); }), "O usuário \"zeca\" não existe.");
  EXPECT_EQ(ErrorOf([&] { NewSession("ana", "_009"); }), "A empresa \"_009\" não existe.");
  EXPECT_EQ(ErrorOf([&] { NewSession("ana", ""); }), "A empresa \"\" não existe.");
  EXPECT_EQ(NewSession(" LEO ")->services.Login(), "Leo");
  main_->services.Users().SetActive("leo", false);
  main_->db->CommitRetaining();
  EXPECT_EQ(ErrorOf([&] { NewSession("leo"); }), "O usuário \"Leo\" está desativado.");
}

TEST_F(HouseTest, WhatTheHouseKeeps) {
  Users& users = main_->services.Users();
  // Somebody must stay who can let others in.
  for (const auto& act : {std::function<void()>([&] { users.Remove("ana"); }),
                          {[&] { users.SetActive("ana", false); }},
                          {[&] { users.SetAdministrator("ana", false); }}}) {
    EXPECT_EQ(ErrorOf(act), "É preciso que haja pelo menos um administrador ativo.");
  }
  users.SetAdministrator("leo", true);
  users.Remove("ana");
  // A company's empty value hides the general one.
  Parameters& parameters = main_->services.Parameters();
  parameters.Set({"", "TST", 1, "geral"});
  EXPECT_EQ(Funcoes().BuscaParametro("tst", 1), "geral");
  parameters.Set({"_001", "tst", 1, ""});
  EXPECT_EQ(Funcoes().BuscaParametro("TST", 1) + parameters.Get("_002", "TST", 1), "geral");
  EXPECT_TRUE(parameters.Remove("_001", "TST", 1));
  EXPECT_FALSE(parameters.Remove("_001", "TST", 1));
  for (const auto& [kept, read] : {std::pair("2", 2), std::pair("dois", 7)}) {
    main_->services.Preferences().Set(Preferences::Path("Venda", "Parametros", "Porta"), kept);
    EXPECT_EQ(Funcoes().LeConfiguracao("Venda", "Parametros", "Porta", 7), read);
  }
  Funcoes().GeraLog("CONTACOR", std::string(1500, 'x') + "ç", TOperacaoLog::Processo, "000001'");
  EXPECT_EQ(Sql("SELECT LOGIN, EMP_PAT, CHAR_LENGTH(TEXTO), OPERACAO, CHAVE FROM AUDITORIA WHERE AREA = "
                "'CONTACOR'"),
            "ana|_001|1000|3|000001'");
}

TEST_F(HouseTest, ClosedPeriodsAreTold) {
  PeriodLocks& locks = main_->services.Locks();
  locks.Set({"_001", "CT", "111-1", Date(2026, 10, 31)});
  locks.Set({"_001", "CX", "", Date(2026, 9, 30)});
  locks.Set({"_002", "CX", "", Date(2026, 12, 31)});
  Tabela().AbreTabela("tbcadconta", false);
  const auto told = [&](const char* conta, Date day, const char* kind) {
    main_->user.told.clear();
    EXPECT_TRUE(Tabela().TbCadConta().Locate("CONTA", Value(conta)));
    const bool closed = Contabil().PeriodoConciliado(day, kind);
    EXPECT_EQ(closed, !main_->user.told.empty());
    return main_->user.told;
  };
  EXPECT_EQ(told("111-1", Date(2026, 10, 31), "CT"),
            "Contabilidade: Período fechado até 31/10/2026 para a conta 111-1.");
  EXPECT_EQ(told("111-1", Date(2026, 9, 30), "CX"),
            "Contabilidade: Período do caixa fechado até 30/09/2026.");
  EXPECT_EQ(told("111-1", Date(2026, 11, 1), "CT") + told("111-1", Date(), "CT") +
                told("111-1", Date(2026, 10, 1), "CX") + told("222-2", Date(2026, 10, 1), "CT"),
            "");
  locks.Set({"_001", "CT", "", Date(2026, 10, 15)});
  EXPECT_NE(told("222-2", Date(2026, 10, 1), "CT"), "");
  EXPECT_EQ(locks.List("_001").size(), 3U);
  for (const PeriodLock& bad :
       {PeriodLock{"_001", "XX", "", Date(2026, 1, 1)}, PeriodLock{"_001", "CX", "1", Date(2026, 1, 1)},
        PeriodLock{"_001", "CX", "", Date()}}) {
    EXPECT_NE(ErrorOf([&] { locks.Set(bad); }), "");
  }
}

TEST_F(HouseTest, TheBankCreditsAfterItsFloat) {
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

TEST_F(HouseTest, APairOfAccountAndHistoryOutrulesTheHistory) {
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "001"), "S");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "002"), "N");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "404"), "N");
  Run("INSERT INTO HIST_CONTA_001 (CONTA, HISTORICO, PENDENTE) VALUES ('111-1', '001', 'N')");
  Run("INSERT INTO HIST_CONTA_001 (CONTA, HISTORICO, PENDENTE) VALUES ('111-1', '002', 'S')");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "001"), "N");
  EXPECT_EQ(Funcoes().LancamentoPendente("111-1", "002"), "S");
  EXPECT_EQ(Funcoes().LancamentoPendente("222-2", "001"), "S");
}

TEST_F(HouseTest, SharedTablesStayOpenUntilTheLastClose) {
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
  Calendar& calendar = main_->services.Calendar();
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
  main_->services.AfterAction();
  // A company is named without walking to it, which would take a statement there and one back.
  companies.AfterScroll = [] { FAIL(); };
  EXPECT_EQ(Sql(Funcoes().DBEmpresa_SQL(sql, "_002")), "333-3|_002");
  EXPECT_EQ(Funcoes().DBLocal("CADCONTA", true), "CADCONTA_001");
  EXPECT_EQ(Funcoes().DBLocal("EMPRESA", true), "EMPRESA");
  EXPECT_EQ(Funcoes().DBLocal("CADCONTA", false), "CADCONTA");
}

TEST_F(HouseTest, SharedTablesStandOnce) {
  Put(Compartilhada{.tabela = "CADCONTA", .emp_pat = "_002"});
  main_->db->CommitRetaining();
  main_ = NewSession();
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
