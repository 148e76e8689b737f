#include <signal.h>

#include "host/data/engine.h"
#include "tests/data/fixture.h"
#include "tests/support/table.h"

namespace orv {
namespace {

TEST_F(DataTest, RefusalsOfStatements) {
  database->ExecuteDdl("CREATE TABLE P (ID INTEGER NOT NULL PRIMARY KEY)");
  database->ExecuteDdl(
      "CREATE TABLE T (ID INTEGER REFERENCES P, S VARCHAR(3), V NUMERIC(18,4), N SMALLINT NOT NULL CHECK (N "
      "< 100))");
  database->Execute("INSERT INTO P VALUES (1)");
  database->Execute("INSERT INTO T VALUES (1, 'a', 900000000, 1)");
  auto cases = test::Table(ORV_FILES "refusals.txt", 3);
  cases.push_back({"UPDATE T SET S = '\xff'", "Constraint", "inválidos"});
  for (const auto& one : cases) {
    const DatabaseError error = ErrorOf([&] { database->Execute(one[0]); });
    EXPECT_EQ(error.Why(), one[1] == "Constraint" ? Kind::Constraint : Kind::Other) << one[0];
    EXPECT_NE(std::string(error.what()).find(one[2]), std::string::npos) << one[0] << "\n" << error.Detail();
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
  for (const auto& one : test::Table(ORV_FILES "addresses.txt", 2)) {
    const DatabaseAddress address = ParseAddress(one[0]);
    EXPECT_EQ(address.server, one[1]) << one[0];
    EXPECT_EQ(address.Embedded() ? address.name[0] : '/', '/') << one[0];
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
