// A database that can't be used: a sentence that says what to do, and no crash.
#include <sys/resource.h>

#include <csignal>
#include <fstream>

#include "host/schema/check.h"
#include "host/schema/schema.h"
#include "tests/ledger/cc_desk.h"
#include "tests/support/process.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;

class DatabaseTest : public CcTest {
 protected:
  // What a session is told that can't start.
  static std::string Refusal(const fs::path& database) {
    try {
      Desk desk(database);
      return "";
    } catch (const UserError& e) {
      return e.what();
    }
  }
  Finished Drive(const fs::path& database, RunOptions options = {}) {
    return RunOrvcc({"drive", "--database", database.string(), "--user", "ana", "--today", kToday, "--data",
                     (folder_.Path() / "files").string()},
                    options);
  }
  static void Write(const fs::path& file, const std::string& bytes) { std::ofstream(file) << bytes; }
  std::string Bytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::ifstream(database_, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(size));
    return bytes;
  }
};

TEST_F(DatabaseTest, WhatIsNoDatabaseOfOursIsRefused) {
  const fs::path folder = folder_.Path();
  fs::create_directory(folder / "folder.fdb");
  Write(folder / "empty.fdb", "");
  Write(folder / "text.fdb", std::string(100000, 'x'));
  Write(folder / "first.fdb", Bytes(100));
  Attachment::Create((folder / "bare.fdb").string());

  struct Case {
    const char* file;
    const char* message;
  };
  const Case cases[] = {
      {"missing.fdb", "O banco de dados não existe. Verifique o caminho do arquivo."},
      {"nowhere/x.fdb", "O banco de dados não existe. Verifique o caminho do arquivo."},
      {"folder.fdb", "O arquivo não é um banco de dados."},
      {"empty.fdb", "O arquivo não é um banco de dados."},
      {"text.fdb", "O arquivo não é um banco de dados."},
      {"first.fdb", "O arquivo não é um banco de dados."},
      {"bare.fdb", "O banco de dados não contém o esquema desta mesa."},
  };
  for (const Case& c : cases) {
    const Finished finished = Drive(folder / c.file);
    EXPECT_EQ(finished.status, 1) << c.file;
    EXPECT_EQ(finished.err.find("orvcc: ") == std::string::npos, false) << finished.err;
    EXPECT_NE(finished.err.find(c.message), std::string::npos) << finished.err;
    EXPECT_EQ(finished.out, "") << c.file;
  }
  EXPECT_FALSE(fs::exists(folder / "missing.fdb"));
}

TEST_F(DatabaseTest, OtherVersionsAreRefused) {
  Run("UPDATE VERSAO_ESQUEMA SET VERSAO = VERSAO + 1");
  EXPECT_NE(Refusal(database_).find("Atualize o programa."), std::string::npos);
  Run("UPDATE VERSAO_ESQUEMA SET VERSAO = 1");
  EXPECT_NE(Refusal(database_).find("Execute \"orvcc upgrade\"."), std::string::npos);
}

// Cut off after any number of pages it is told, not a crash; each in a process of its own.
TEST_F(DatabaseTest, ATornFileIsTold) {
  const auto size = static_cast<std::size_t>(fs::file_size(database_));
  for (const std::size_t part :
       {std::size_t{16384}, std::size_t{16384} * 3, size / 10, size / 2, size - 5000}) {
    const fs::path torn = folder_.Path() / "torn.fdb";
    Write(torn, Bytes(part));
    RunOptions options;
    options.in = "{\"do\":\"open\",\"class\":\"TfmCC\"}\n{\"do\":\"click\",\"control\":\"BitBtn1\"}\n";
    const Finished finished = Drive(torn, options);
    EXPECT_TRUE(finished.status == 0 || finished.status == 1)
        << part << ": " << finished.status << finished.err;
    EXPECT_EQ(finished.err.find("AddressSanitizer"), std::string::npos) << finished.err;
    // What isn't read isn't missed.
    EXPECT_TRUE(finished.status == 0 || finished.err.find("banco de dados") != std::string::npos) << part;
  }
}

TEST_F(DatabaseTest, HeldByAnotherProcess) {
  Db();
  Finished finished = Drive(database_);
  EXPECT_EQ(finished.status, 1);
  EXPECT_NE(finished.err.find("O banco de dados está em uso por outro programa."), std::string::npos)
      << finished.err;
  LetGo();
  finished = Drive(database_);
  EXPECT_EQ(finished.status, 0) << finished.err;
}

TEST_F(DatabaseTest, WithoutPermission) {
  fs::permissions(folder_.Path(), fs::perms::owner_all | fs::perms::others_all);
  RunOptions options;
  options.unprivileged = true;
  if (RunOrvcc({"--help"}, options).status != 0) GTEST_SKIP() << "nobody can't run the program here";
  const fs::path other = folder_.Path() / "read_only.fdb";
  fs::copy_file(database_, other);
  fs::permissions(other, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  Finished finished = Drive(other, options);
  EXPECT_EQ(finished.status, 1) << finished.out;
  EXPECT_NE(finished.err.find("Verifique as permissões"), std::string::npos) << finished.err;

  fs::permissions(other, fs::perms::none);
  finished = Drive(other, options);
  EXPECT_EQ(finished.status, 1);
  EXPECT_NE(finished.err.find("Verifique as permissões"), std::string::npos) << finished.err;
}

// The engine would go on writing into a file that nobody finds again.
TEST_F(DatabaseTest, AFileThatGoesOrIsReplacedIsTold) {
  const fs::path away = folder_.Path() / "away.fdb";
  Desk desk(database_, At{"TfmCC"});
  New(desk, {{"EdtNumDoc", "SUMIU"}});
  for (const bool replaced : {false, true}) {
    fs::rename(database_, away);
    if (replaced) Write(database_, "something else");
    EXPECT_EQ(Confirm(desk),
              "error: O arquivo do banco de dados foi removido ou substituído durante o uso. Nada foi "
              "gravado. Encerre todas as sessões, recupere o arquivo e entre novamente.");
    EXPECT_EQ(desk.End(), "idle");
    fs::rename(away, database_);
  }
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'SUMIU'"), "0");
  // It is back in its place: the screen stands as it was.
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'SUMIU'"), "1");
}

// While it lives, no file of this process grows beyond a size, as on a full disk.
class FileLimit {
 public:
  explicit FileLimit(std::uintmax_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  ~FileLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(DatabaseTest, ADiskThatFillsUp) {
  Desk desk(database_, At{"TfmCC"});
  int posted = 0;
  {
    const FileLimit limit(fs::file_size(database_));
    // Takes what is free in the file, to the last page.
    for (const char* rows : {"200", "1"}) {
      try {
        for (;;) {
          Run("INSERT INTO AUDITORIA (ID, AREA, TEXTO) SELECT FIRST " + std::string(rows) +
              " NEXT VALUE FOR SQ_AUDITORIA_ID, 'CARGA', RPAD('', 1000, UUID_TO_CHAR(GEN_UUID())) FROM "
              "CONTACOR_001");
        }
      } catch (const DatabaseError& e) {
        EXPECT_EQ(e.Why(), DatabaseError::Kind::DiskFull) << e.Detail();
        Db().Rollback();
      }
    }
    for (;; ++posted) {
      ASSERT_LT(posted, 300);
      New(desk, {{"EdtNumDoc", "CHEIO " + std::to_string(posted)}});
      const std::string told = Confirm(desk);
      if (told.empty()) continue;
      EXPECT_EQ(told, "error: O disco está cheio. Libere espaço e tente novamente.");
      break;
    }
    EXPECT_EQ(Count("CONTACOR_001", "DOCTO STARTING WITH 'CHEIO'"), std::to_string(posted));
    EXPECT_EQ(Count("AUDITORIA", "CHAVE STARTING WITH 'CHEIO'"), std::to_string(posted));
  }
  // With room the same screen goes on.
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO STARTING WITH 'CHEIO'"), std::to_string(posted + 1));
  EXPECT_TRUE(CheckData(Db()).empty());
}

}  // namespace
}  // namespace orv::test
