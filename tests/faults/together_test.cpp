// Several users at once: none loses what another wrote, and no session makes the database swell.
#include <cstdlib>
#include <thread>

#include "host/data/versions.h"
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

constexpr const char* kChanged =
    "error: Outro usuário alterou este registro depois que ele foi carregado. Nada foi gravado. Cancele e "
    "consulte-o novamente.";

// Loads a movement and goes into edit.
void Alter(Desk& desk, const std::string& numero, const std::string& obs) {
  desk.Click("btnConsulta");
  desk.Choose(numero);
  desk.Click("BitBtn2");
  desk.Leave("EdtObs", obs, "SpeedButton2");
}

TEST_F(CcTest, SixteenSessionsPostAtOnce) {
  constexpr int kSessions = 16;
  // ORV_POSTINGS makes the load lighter where each step is slow.
  const char* given = std::getenv("ORV_POSTINGS");
  const int postings = given != nullptr ? std::max(1, std::atoi(given)) : 200;
  std::vector<std::unique_ptr<Desk>> desks;
  for (int i = 0; i < kSessions; ++i) {
    desks.push_back(std::make_unique<Desk>(database_));
    desks.back()->Open("TfmCC");
  }
  std::vector<std::thread> threads;
  for (int i = 0; i < kSessions; ++i) {
    threads.emplace_back([&, i] {
      Desk& desk = *desks[static_cast<std::size_t>(i)];
      for (int k = 0; k < postings; ++k) {
        desk.Click("BitBtn1");
        desk.Fill({{"EdtConta", kConta},
                   {"EdtNumDoc", "P" + std::to_string(i) + "-" + std::to_string(k)},
                   {"EdtTipo", "3104"},
                   {"EdtHis", "019"},
                   {"EdtValor", "1,00"}});
        EXPECT_EQ(Confirm(desk), "");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  const std::string all = std::to_string(kSessions * postings);
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT LANCAMENTO), COUNT(DISTINCT DOCTO), SUM(VALOR) FROM "
                "CONTACOR_001 WHERE DOCTO STARTING WITH 'P' AND OBSERVACAO = ''"),
            all + "|" + all + "|" + all + "|" + all + ".0000");
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT CHAVE), COUNT(DISTINCT ID) FROM AUDITORIA WHERE AREA = "
                "'CONTACOR'"),
            all + "|" + all + "|" + all);
}

TEST_F(CcTest, TheSecondOfTwoUsersIsTold) {
  Fin({30, 50});
  Put(RegraRateio{.codigo = "2103"});
  Desk first(database_), second(database_);
  for (Desk* desk : {&first, &second}) desk->Open("TfmCC");
  const std::string numero = New(first, {{"EdtTipo", "2103"}});
  EXPECT_EQ(Confirm(first), "");

  // Both change it: the second to confirm is told, before and after the other's split is in its place.
  Alter(first, numero, "DO PRIMEIRO");
  Alter(second, numero, "DO SEGUNDO");
  EXPECT_EQ(Confirm(first), "");
  const std::string movement = Movement(numero), entries = Entries(numero), shares = Shares(numero),
                    audit = Audit();
  EXPECT_NE(movement.find("DO PRIMEIRO"), std::string::npos);
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_EQ(Confirm(second), kChanged);
    EXPECT_EQ(second.Text("EdtObs"), "DO SEGUNDO");
    EXPECT_TRUE(second.Visible("Panel5"));
  }
  EXPECT_EQ(Movement(numero), movement);
  EXPECT_EQ(Entries(numero), entries);
  EXPECT_EQ(Shares(numero), shares);
  EXPECT_EQ(Audit(), audit);

  // Giving up shows what the other one wrote, which may be altered now.
  second.Click("SpeedButton1");
  EXPECT_EQ(second.Text("EdtObs"), "DO PRIMEIRO");
  second.Click("BitBtn2");
  second.Set("EdtObs", "DO SEGUNDO");
  EXPECT_EQ(Confirm(second), "");
  EXPECT_NE(Movement(numero).find("DO SEGUNDO"), std::string::npos);

  // What only one column tells, and what is gone, counts too.
  struct Case {
    const char* what;
    std::string sql;
  };
  const Case cases[] = {
      {"cleared", "UPDATE CONTACOR_001 SET LANC_CON = '000777' WHERE LANCAMENTO = '" + numero + "'"},
      {"written again as it was",
       "UPDATE CONTACOR_001 SET LANC_CON = '' WHERE LANCAMENTO = '" + numero + "'"},
      {"deleted", "DELETE FROM CONTACOR_001 WHERE LANCAMENTO = '" + numero + "'"},
  };
  Run(cases[1].sql);
  for (const Case& c : cases) {
    if (c.what == std::string("written again as it was")) continue;
    Alter(first, numero, "TARDE DEMAIS");
    Run(c.sql);
    const std::string before = Movement(numero);
    EXPECT_EQ(Confirm(first), kChanged) << c.what;
    EXPECT_EQ(Movement(numero), before) << c.what;
    Run(cases[1].sql);
    first.Click("SpeedButton1");
  }
}

TEST_F(CcTest, DeletionOfWhatAnotherChangedIsRefused) {
  Put(Movimento{.lancamento = "T00200", .docto = "2000"});
  Desk first(database_), second(database_);
  for (Desk* desk : {&first, &second}) desk->Open("TfmCC");
  Load(second, "T00200");
  Alter(first, "T00200", "DO PRIMEIRO");
  EXPECT_EQ(Confirm(first), "");
  const std::string audit = Audit(), movement = Movement("T00200");
  EXPECT_EQ(second.Press("BitBtn3"), "Deseja eliminar este Registro?");
  second.Answer("yes");
  EXPECT_EQ(second.Messages(), kChanged);
  EXPECT_EQ(Movement("T00200"), movement);
  EXPECT_EQ(Audit(), audit);
  Load(second, "T00200");
  second.Press("BitBtn3", "yes");
  EXPECT_EQ(Movement("T00200"), "");
}

// Idle sessions hold nothing back, whatever they were left at.
TEST_F(CcTest, ALongDayLeavesFewDeadVersions) {
  Put(Movimento{.lancamento = "T00202", .docto = "2002"});
  Put(Movimento{.lancamento = "T00203", .docto = "2003"});
  Desk busy(database_), idle(database_), asked(database_), choosing(database_);
  for (Desk* desk : {&busy, &idle, &asked, &choosing}) desk->Open("TfmCC");
  Load(idle, "T00203");
  Load(asked, "T00203");
  asked.Click("BitBtn3");
  EXPECT_EQ(asked.End(), "waiting answer");
  choosing.Click("btnConsulta");
  EXPECT_EQ(choosing.End(), "waiting lookup");

  constexpr int kCommits = 120;
  int64_t most = 0;
  for (int i = 1; i <= kCommits; ++i) {
    Alter(busy, "T00202", "HORA " + std::to_string(i));
    ASSERT_EQ(Confirm(busy), "");
    if (i % 40 == 0) most = std::max(most, DeadVersions(database_.string(), "CONTACOR_001"));
  }
  EXPECT_LT(most, 20);
  EXPECT_EQ(Count("CONTACOR_001", "LANCAMENTO = 'T00202'"), "1");
  asked.Answer("no");
  choosing.Do({{"do", "choose"}});
}

}  // namespace
}  // namespace orv::test
