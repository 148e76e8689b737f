#include <signal.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "host/data/backup.h"
#include "host/data/engine.h"
#include "tests/data/fixture.h"

namespace orv {
namespace {

TEST_F(DataTest, RefusalsOfStatements) {
  database->ExecuteDdl("CREATE TABLE P (ID INTEGER NOT NULL PRIMARY KEY)");
  database->ExecuteDdl(
      "CREATE TABLE T (ID INTEGER REFERENCES P, S VARCHAR(3), V NUMERIC(18,4), N SMALLINT NOT NULL CHECK (N "
      "< 100))");
  database->Execute("INSERT INTO P VALUES (1)");
  database->Execute("INSERT INTO T VALUES (1, 'a', 900000000, 1)");
  const struct {
    const char* sql;
    Kind kind;
    const char* word;
  } cases[] = {
      {"INSERT INTO P VALUES (1)", Kind::Constraint, "Já existe"},
      {"INSERT INTO T VALUES (2, 'a', 0, 1)", Kind::Constraint, "aponta"},
      {"DELETE FROM P", Kind::Constraint, "depende"},
      {"INSERT INTO T VALUES (1, 'abcd', 0, 1)", Kind::Constraint, "Encurte"},
      {"INSERT INTO T VALUES (1, 'a', 0, NULL)", Kind::Constraint, "obrigatório"},
      {"INSERT INTO T VALUES (1, 'a', 0, 100)", Kind::Constraint, "regra"},
      {"INSERT INTO T VALUES (1, 'a', 0, 99999)", Kind::Constraint, "grande demais"},
      {"UPDATE T SET V = V * V * V", Kind::Constraint, "grande demais"},
      {"UPDATE T SET V = V / 0", Kind::Other, "zero"},
      {"UPDATE T SET V = 'abc'", Kind::Constraint, "número"},
      {"UPDATE T SET X = 1", Kind::Other, "suporte"},
      {"UPDATE T SET S = '\xff'", Kind::Constraint, "inválidos"},
  };
  for (const auto& one : cases) {
    const DatabaseError error = ErrorOf([&] { database->Execute(one.sql); });
    EXPECT_EQ(error.Why(), one.kind) << one.sql << "\n" << error.Detail();
    EXPECT_NE(std::string(error.what()).find(one.word), std::string::npos) << one.sql << "\n"
                                                                           << error.what() << "\n"
                                                                           << error.Detail();
    EXPECT_NE(error.Code(), 0);
  }
  std::string all = "SELECT ID FROM P", many = "SELECT ID FROM P WHERE ID IN (0";
  for (int i = 0; i < 300; ++i) all += " UNION ALL SELECT ID FROM P";
  for (int i = 0; i < 1600; ++i) many += "," + std::to_string(i);
  const DatabaseError tables = ErrorOf([&] { database->Rows(all); });
  EXPECT_EQ(tables.Why(), Kind::Limit) << tables.Detail();
  EXPECT_NE(std::string(tables.what()).find("tabelas demais"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { database->Rows(many + ")"); }).Why(), Kind::Limit);
  EXPECT_EQ(Count("T"), 1);
}

TEST(Engine, AddressesOfFilesAndServers) {
  const struct {
    const char* text;
    const char* server;
  } cases[] = {
      {"/dados/empresa.fdb", ""},
      {"/da:dos/x.fdb", ""},
      {"./a:b", ""},
      {"empresa.fdb", ""},
      {"servidor:empresa", "servidor:"},
      {"10.0.0.1/3051:/d/x.fdb", "10.0.0.1/3051:"},
      {"[::1]/3050:x", "[::1]/3050:"},
      {"inet://h:3050/x", "inet://h:3050/"},
      {"pasta/sub dir/a:b.fdb", ""},
      {"servidor:", ""},
  };
  for (const auto& one : cases) {
    const DatabaseAddress address = ParseAddress(one.text);
    EXPECT_EQ(address.server, one.server) << one.text;
    EXPECT_EQ(address.Embedded() ? address.name[0] : '/', '/') << one.text;
  }
  EXPECT_EQ(ErrorOf([] { Attachment::Open("127.0.0.1/1:x"); }).Why(), Kind::Connection);
}

void OurHandler(int) {}

TEST_F(DataTest, SignalHandlersStayOurs) {
  for (const int signal : {SIGTERM, SIGINT}) {
    struct sigaction now {};
    ASSERT_EQ(sigaction(signal, nullptr, &now), 0);
    EXPECT_EQ(now.sa_handler, SIG_DFL) << signal;
    ::signal(signal, OurHandler);
  }
  Attachment::Open(file);
  for (const int signal : {SIGTERM, SIGINT}) {
    struct sigaction now {};
    ASSERT_EQ(sigaction(signal, nullptr, &now), 0);
    EXPECT_EQ(now.sa_handler, OurHandler) << signal;
    ::signal(signal, SIG_DFL);
  }
}

}  // namespace
}  // namespace orv
