#include "tests/support/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

// Whom the system knows as nobody.
constexpr uid_t kNobody = 65534;

std::filesystem::path Program() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orvcc";
}

// Between fork and exec only calls that are safe there: everything is made before.
struct Start {
  std::vector<std::string> words;
  std::vector<std::string> environment;
  std::vector<char*> argv, envp;
  std::string program = Program().string();
};

Start Prepare(const std::vector<std::string>& arguments, const std::map<std::string, std::string>& env) {
  Start start;
  start.words = {"orvcc"};
  start.words.insert(start.words.end(), arguments.begin(), arguments.end());
  for (char** at = environ; *at != nullptr; ++at) {
    const std::string line = *at;
    const std::string name = line.substr(0, line.find('='));
    // The engine's folders of this process are no other's.
    if (name == "ORVCC_DATABASE" || name.starts_with("FIREBIRD") || env.count(name) > 0) continue;
    start.environment.push_back(line);
  }
  for (const auto& [name, value] : env) start.environment.push_back(name + "=" + value);
  return start;
}

[[noreturn]] void Become(Start& start, int in, int out, int err, const RunOptions& options) {
  dup2(in, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  if (options.file_limit >= 0) {
    const rlimit limit{static_cast<rlim_t>(options.file_limit), static_cast<rlim_t>(options.file_limit)};
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_IGN);
  }
  if (options.unprivileged && geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(126);
  execve(start.program.c_str(), start.argv.data(), start.envp.data());
  _exit(127);
}

pid_t Launch(Start start, int in, int out, int err, const RunOptions& options) {
  for (std::string& word : start.words) start.argv.push_back(word.data());
  for (std::string& line : start.environment) start.envp.push_back(line.data());
  start.argv.push_back(nullptr);
  start.envp.push_back(nullptr);
  const pid_t pid = fork();
  if (pid == 0) Become(start, in, out, err, options);
  if (pid < 0) throw UserError("O programa não pôde ser iniciado.");
  return pid;
}

int Wait(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

std::string Content(FILE* file) {
  std::rewind(file);
  std::string text;
  char part[4096];
  for (std::size_t got = 0; (got = std::fread(part, 1, sizeof part, file)) > 0;) text.append(part, got);
  std::fclose(file);
  return text;
}

}  // namespace

Finished RunOrvcc(const std::vector<std::string>& arguments, const RunOptions& options) {
  FILE* const in = std::tmpfile();
  FILE* const out = std::tmpfile();
  FILE* const err = std::tmpfile();
  std::fwrite(options.in.data(), 1, options.in.size(), in);
  std::rewind(in);
  const pid_t pid = Launch(Prepare(arguments, options.env), fileno(in), fileno(out), fileno(err), options);
  Finished finished;
  finished.status = Wait(pid);
  std::fclose(in);
  finished.out = Content(out);
  finished.err = Content(err);
  return finished;
}

DriveProcess::DriveProcess(const std::filesystem::path& database) {
  int to[2], from[2];
  if (pipe2(to, O_CLOEXEC) != 0 || pipe2(from, O_CLOEXEC) != 0) throw UserError("Não há mais canais.");
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  const std::string folder = (database.parent_path() / "files").string();
  pid_ = Launch(Prepare({"drive", "--database", database.string(), "--user", "ana", "--today", kToday,
                         "--data", folder},
                        {}),
                to[0], from[1], null, {});
  close(to[0]);
  close(from[1]);
  close(null);
  to_ = to[1];
  from_ = from[0];
}

DriveProcess::~DriveProcess() {
  if (pid_ > 0) Kill();
  close(to_);
  close(from_);
}

void DriveProcess::Send(const Json& in) {
  const std::string line = in.Text() + "\n";
  if (write(to_, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
    throw UserError("O programa não lê mais.");
}

std::vector<Json> DriveProcess::Do(const Json& in) {
  Send(in);
  std::vector<Json> answer;
  for (;;) {
    const std::size_t end = buffer_.find('\n');
    if (end != std::string::npos) {
      answer.push_back(Json::Parse(std::string_view(buffer_).substr(0, end)));
      buffer_.erase(0, end + 1);
      const Json& on = answer.back()["on"];
      if (on == Json("idle") || on == Json("waiting")) return answer;
      continue;
    }
    char part[65536];
    const ssize_t got = read(from_, part, sizeof part);
    if (got <= 0) throw UserError("O programa terminou.");
    buffer_.append(part, static_cast<std::size_t>(got));
  }
}

void DriveProcess::Kill() {
  kill(pid_, SIGKILL);
  Wait(pid_);
  pid_ = -1;
}

}  // namespace orv::test
