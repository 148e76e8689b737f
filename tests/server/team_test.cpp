// Several desks on a Firebird server of the test's own, made as the page for administrators tells it.
#include <arpa/inet.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/server/server_test.h"
#include "tests/support/process.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;

// The page's blocks of a kind, "sh" or "sql", one after the other.
std::string Blocks(const std::string& kind) {
  std::string blocks, line;
  bool inside = false;
  std::ifstream page(ORV_TEAM_PAGE);
  while (std::getline(page, line)) {
    const std::string text(Trim(line));
    if (text.starts_with("```")) {
      inside = text == "```" + kind;
    } else if (inside) {
      blocks += text + "\n";
    }
  }
  return blocks;
}

class FirebirdServer {
 public:
  FirebirdServer() {
    fs::path installed;
    for (const auto& entry : fs::directory_iterator("/usr/lib")) {
      if (fs::exists(entry.path() / "firebird/3.0/plugins")) installed = entry.path() / "firebird/3.0";
    }
    for (const char* part : {"plugins", "plugins.conf", "firebird.msg", "intl"})
      fs::create_symlink(installed / part, root_ / part);
    for (const char* part : {"lock", "tmp"}) fs::create_directory(root_ / part);
    const int any = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bind(any, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(any, reinterpret_cast<sockaddr*>(&address), &size);
    close(any);
    port_ = ntohs(address.sin_port);
    const std::string security = (root_ / "security3.fdb").string();
    std::ofstream(root_ / "firebird.conf")
        << "SecurityDatabase = " << security << "\nRemoteServicePort = " << port_
        << "\nRemoteBindAddress = 127.0.0.1\n";
    std::ofstream(root_ / "databases.conf")
        << "empresa = " << (root_ / "empresa.fdb").string() << "\nsecurity.db = " << security << "\n";
    // What the package does when it is installed.
    Wait(Start(
        {"/usr/bin/isql-fb", "-q", "-user", "sysdba", "-input",
         Script("CREATE DATABASE '" + security + "';\nCREATE USER sysdba PASSWORD 'chave';\nCOMMIT;\n")}));
  }
  ~FirebirdServer() { Stop(); }
  FirebirdServer(const FirebirdServer&) = delete;
  FirebirdServer& operator=(const FirebirdServer&) = delete;

  // While it doesn't run.
  int Sql(const std::string& sql) {
    return Wait(
        Start({"/usr/bin/isql-fb", "-q", "-bail", "-user", "sysdba", "-input", Script(sql), "security.db"}));
  }
  void Run() { pid_ = Start({"/usr/sbin/firebird"}); }
  void Stop() {
    // It takes its time over a gentler signal, and what is committed stays.
    if (pid_ > 0) kill(pid_, SIGKILL);
    if (pid_ > 0) Wait(pid_);
    pid_ = -1;
  }
  int Port() const { return port_; }
  const fs::path& Root() const { return root_; }

 private:
  std::string Script(const std::string& text) {
    std::ofstream(root_ / "script.sql") << text;
    return (root_ / "script.sql").string();
  }
  pid_t Start(std::vector<std::string> words) {
    std::vector<std::string> environment{"FIREBIRD=" + root_.string(),
                                         "FIREBIRD_LOCK=" + (root_ / "lock").string(),
                                         "FIREBIRD_TMP=" + (root_ / "tmp").string(), "PATH=/usr/bin:/bin"};
    std::vector<char*> argv, envp;
    for (std::string& word : words) argv.push_back(word.data());
    for (std::string& line : environment) envp.push_back(line.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    pid_t pid = -1;
    EXPECT_EQ(posix_spawn(&pid, words[0].c_str(), nullptr, nullptr, argv.data(), envp.data()), 0) << words[0];
    return pid;
  }
  static int Wait(pid_t pid) {
    int status = -1;
    waitpid(pid, &status, 0);
    return status;
  }

  TempFolder folder_;
  fs::path root_ = folder_.Path();
  int port_ = 0;
  pid_t pid_ = -1;
};

TEST(TeamTest, ThePageHoldsAndUsersAreCutOffAtEveryDesk) {
  FirebirdServer server;
  const std::string local = "127.0.0.1/" + std::to_string(server.Port()) + ":";
  const std::string address = local + "empresa";
  RunOptions options;
  options.env = {{"ORVCC_DATABASE", address}, {"ORVCC_DB_USER", "orvcc"}, {"ORVCC_DB_PASSWORD", "mesa"}};
  const auto here = [&](std::string text) {
    for (const auto& [there, here] : {std::pair<std::string, std::string>{"127.0.0.1:", local},
                                      {"/var/lib/firebird/3.0/data", server.Root().string()},
                                      {"/var/backups/orvcc", server.Root().string()},
                                      {"/etc/orvcc", server.Root().string()},
                                      {"$(date +%F)", "2026-11-20"},
                                      {"…", "mesa"}}) {
      for (std::size_t at = 0; (at = text.find(there, at)) != std::string::npos; at += here.size())
        text.replace(at, there.size(), here);
    }
    return text;
  };
  const std::string sql = here(Blocks("sql"));
  ASSERT_NE(sql.find("GRANT"), std::string::npos);
  // Without the right to create it the database isn't made, and the reason is told.
  ASSERT_EQ(server.Sql(sql.substr(0, sql.find("GRANT"))), 0);
  const auto run = [&](const std::string& command, const std::string& in = "") {
    options.in = in;
    Finished finished;
    // The server takes a moment to be there.
    for (int tries = 0; tries < 300; ++tries) {
      finished = RunOrvcc(Split(command, " "), options);
      if (finished.err.find("falar com o servidor") == std::string::npos) break;
    }
    return finished;
  };
  server.Run();
  EXPECT_NE(run("init").err.find("GRANT CREATE DATABASE TO USER"), std::string::npos);
  server.Stop();
  ASSERT_EQ(server.Sql(sql.substr(sql.find("GRANT"))), 0);
  server.Run();
  int commands = 0;
  for (const std::string& line : Split(here(Blocks("sh")), "\n")) {
    if (!line.starts_with("orvcc ")) continue;
    const Finished finished = run(line.substr(6), "mesa clara 2026\n");
    EXPECT_EQ(finished.status, 0) << line << "\n" << finished.err;
    ++commands;
  }
  EXPECT_EQ(commands, 7);

  // Two desks, and a person at a command line beside them.
  ASSERT_EQ(run("user add leo", "mesa clara 2027\n").status, 0);
  ASSERT_EQ(run("user grant leo TfmCC AE").status, 0);
  for (const auto& [name, value] : options.env) setenv(name.c_str(), value.c_str(), 1);
  static const Module module("orvCC");
  Log log((server.Root() / "mesa.log").string());
  std::ofstream(server.Root() / "index.html") << "<!doctype html>";
  std::vector<std::unique_ptr<Server>> desks;
  for (const char* data : {"um", "dois"}) {
    ServerOptions serve;
    serve.database = address;
    serve.data = server.Root() / data;
    serve.web = server.Root();
    desks.push_back(std::make_unique<Server>(serve, log));
  }
  const auto open = [&](std::size_t desk) {
    Browser leo(desks[desk]->Port());
    EXPECT_EQ(leo.LogIn("leo", kLeo).status, 200);
    auto door = std::make_unique<Door>(leo);
    door->Session();
    door->Await();
    EXPECT_EQ(Only(door->Do({{"do", "open"}, {"class", "TfmCC"}}), "screen").size(), 1U);
    return door;
  };
  const auto told = [](Door& door) {
    for (;;) {
      const Json out = door.Next();
      if (out.IsNull() || out["on"] == Json("ended")) return out["text"].IsNull() ? "" : out["text"].String();
    }
  };
  auto first = open(0), second = open(1);
  ASSERT_EQ(run("user grant leo TfmCC E").status, 0);
  first->Send(Json{{"do", "click"}, {"control", "BitBtn1"}}.Text());
  for (Door* door : {first.get(), second.get()})
    EXPECT_EQ(told(*door).substr(0, 24), "Um direito seu foi retir");
  first = open(0), second = open(1);
  ASSERT_EQ(run("user remove leo").status, 0);
  for (Door* door : {first.get(), second.get()}) EXPECT_EQ(told(*door).substr(0, 16), "Seu acesso foi r");
  for (const auto& [name, value] : options.env) unsetenv(name.c_str());
}

}  // namespace
}  // namespace orv::test
