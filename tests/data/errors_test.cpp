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

TEST_F(DataTest, AFileIsMadeForItsOwnerOnlyAndOverNoOther) {
  EXPECT_NE(std::string(ErrorOf([&] { Attachment::Create(file); }).what()).find("já existe"),
            std::string::npos);
  EXPECT_NE(std::string(ErrorOf([&] { Attachment::Create((folder / "nada/x.fdb").string()); }).what())
                .find("pasta"),
            std::string::npos);
  struct stat found {};
  ASSERT_EQ(stat(file.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600u);
}

TEST_F(DataTest, ReadOnlyFilesAndFolders) {
  database->ExecuteDdl("CREATE TABLE T (A INTEGER)");
  database.reset();
  // The user whom the system lets write everything is another one for these calls.
  const bool root = geteuid() == 0;
  const uid_t nobody = 65534;
  if (root) {
    ASSERT_EQ(chown(file.c_str(), nobody, nobody), 0);
    ASSERT_EQ(chown(folder.c_str(), nobody, nobody), 0);
    setfsuid(nobody);
  }
  chmod(file.c_str(), 0400);
  const DatabaseError error = ErrorOf([&] { Attachment::Open(file); });
  EXPECT_TRUE(error.Why() == Kind::ReadOnly || error.Why() == Kind::Connection) << error.Detail();
  EXPECT_NE(std::string(error.what()).find("permiss"), std::string::npos) << error.what() << error.Detail();
  chmod(folder.c_str(), 0500);
  EXPECT_EQ(ErrorOf([&] { Attachment::Create((folder / "novo.fdb").string()); }).Why(), Kind::ReadOnly);
  chmod(folder.c_str(), 0700);
  if (root) setfsuid(0);
}

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

TEST_F(DataTest, ABackupBringsEverythingBack) {
  database->ExecuteDdl("CREATE TABLE T (ID INTEGER NOT NULL PRIMARY KEY, S VARCHAR(200))");
  for (int i = 0; i < 2000; ++i)
    database->Execute("INSERT INTO T VALUES (" + std::to_string(i) + ", '" + std::string(100, 'x') + "é')");
  database->CommitRetaining();
  database->Execute("DELETE FROM T WHERE ID = 0");
  const std::string backup = (folder / "copia.fbk").string(), copy = (folder / "copia.fdb").string();
  Backup(file, backup);
  struct stat found {};
  ASSERT_EQ(stat(backup.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600u);
  EXPECT_NE(std::string(ErrorOf([&] { Backup(file, backup); }).what()).find("já existe"), std::string::npos);

  Restore(backup, copy);
  const auto restored = Attachment::Open(copy);
  EXPECT_EQ(restored->Scalar("SELECT COUNT(*) FROM T WHERE S LIKE '%é'").AsInteger(), 2000);
  EXPECT_NE(std::string(ErrorOf([&] { Restore(backup, file); }).what()).find("já existe"), std::string::npos);

  // Nothing stays behind of what failed.
  std::ofstream(folder / "ruim.fbk") << "not a backup";
  ErrorOf([&] { Restore(folder / "ruim.fbk", (folder / "ruim.fdb").string()); });
  ErrorOf([&] { Restore(folder / "nada.fbk", (folder / "ruim.fdb").string()); });
  ErrorOf([&] { Backup((folder / "nada.fdb").string(), (folder / "nada.fbk").string()); });
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"copia.fbk", "copia.fdb", "empresa.fdb", "ruim.fbk"}));
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
