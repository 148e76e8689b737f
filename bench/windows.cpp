#include "bench/windows.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <deque>
#include <fstream>

#include "tests/wire/wire.h"
#include "toolkit/error.h"

namespace orv::bench {
namespace {

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point begun) { return std::chrono::duration<double>(Clock::now() - begun).count(); }

std::string Host(int port) { return "127.0.0.1:" + std::to_string(port); }

wire::Answer Ask(int port, std::string_view method, const char* target, const std::string& body = "") {
  wire::Connection connection(port);
  return wire::Ask(connection, method, target, {{"Host", Host(port)}, {"Content-Type", "application/json"}},
                   body);
}

// A line that the process prints, within half a minute.
std::string Line(int output) {
  std::string line;
  pollfd ready{output, POLLIN, 0};
  char byte = 0;
  while (poll(&ready, 1, 30000) > 0 && read(output, &byte, 1) == 1 && byte != '\n') line += byte;
  return line;
}

}  // namespace

Serving::Serving(const std::filesystem::path& database) {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvcc-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw UserError("No temporary folder.");
  folder_ = pattern;
  std::filesystem::create_directory(folder_ / "web");
  std::ofstream(folder_ / "web" / "index.html") << "<!doctype html>";
  try {
    Start(database);
  } catch (...) {
    End();
    throw;
  }
}

Serving::~Serving() { End(); }

void Serving::Start(const std::filesystem::path& database) {
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
  std::vector<std::string> words{(self.parent_path() / "orvcc").string(),
                                 "serve",
                                 "--database",
                                 database.string(),
                                 "--listen",
                                 "127.0.0.1:0",
                                 "--data",
                                 (folder_ / "data").string(),
                                 "--web",
                                 (folder_ / "web").string(),
                                 "--log",
                                 (folder_ / "log").string(),
                                 "--windows",
                                 "100"};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw UserError("No pipe.");
  output_ = ends[0];
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const auto begun = Clock::now();
  const int failed = posix_spawn(&process_, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failed != 0) {
    process_ = -1;
    throw UserError(words[0] + " can't be run.");
  }
  const std::string line = Line(output_);
  const std::size_t colon = line.find("127.0.0.1:");
  if (colon == std::string::npos) throw UserError("The desk doesn't serve: " + line);
  port_ = std::stoi(line.substr(colon + 10));
  if (Ask(port_, "GET", "/companies").status != 200) throw UserError("No companies.");
  seconds_ = Since(begun);
}

void Serving::End() {
  if (process_ > 0) {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  if (output_ >= 0) close(output_);
  std::error_code error;
  std::filesystem::remove_all(folder_, error);
}

std::size_t Serving::Memory() const {
  std::ifstream status("/proc/" + std::to_string(process_) + "/status");
  std::string word;
  while (status >> word) {
    if (word != "RssAnon:") continue;
    std::size_t kilobytes = 0;
    status >> kilobytes;
    return kilobytes << 10;
  }
  return 0;
}

std::string Serving::LogIn(const std::string& user) const {
  const std::string body = R"({"user":")" + user + R"(","password":"mesa clara 2026","company":"_001"})";
  const wire::Answer answer = Ask(port_, "POST", "/login", body);
  const std::string cookie = answer.Header("set-cookie");
  if (cookie.empty()) throw UserError("The login failed: " + answer.body);
  return cookie.substr(0, cookie.find(';'));
}

namespace {

class Window {
 public:
  Window(int port, const std::string& cookie)
      : socket_(port, "/door",
                {{"Host", Host(port)}, {"Origin", "http://" + Host(port)}, {"Cookie", cookie}}) {
    if (socket_.Status() != 101) throw UserError("A window wasn't opened.");
    Await();
  }

  std::string Do(std::string_view object) {
    Send(object);
    return Await();
  }
  void Send(std::string_view object) {
    if (!socket_.Send(object)) throw UserError("A window was closed.");
  }
  // How many answers have ended by now.
  std::size_t Settled() {
    std::size_t count = 0;
    while (const auto text = Next(false)) count += !End(*text).empty();
    return count;
  }
  int Socket() const { return socket_.Socket(); }

 private:
  // "" for what doesn't end an answer.
  static std::string End(std::string_view text) {
    if (text.starts_with(R"({"on":"error")") || text.starts_with(R"({"on":"ended")"))
      throw UserError(std::string(text));
    for (const char* end : {"idle", "waiting"}) {
      if (text.starts_with(std::string(R"({"on":")") + end + '"')) return end;
    }
    return "";
  }
  std::optional<std::string> Next(bool wait) {
    std::optional<std::string> text = socket_.Next(wait);
    if (!text && socket_.Closed()) throw UserError("A window was closed.");
    return text;
  }
  std::string Await() {
    for (;;) {
      const std::string end = End(*Next(true));
      if (!end.empty()) return end;
    }
  }

  wire::WebSocket socket_;
};

// A window in which objects are sent in turn, each at its time.
struct Pressed {
  Window& window;
  Clock::time_point next;
  std::size_t written = 0;
  std::deque<Clock::time_point> sent = {};
};

}  // namespace

struct Windows::Parts {
  int port;
  std::vector<std::unique_ptr<Window>> all = {};
};

Windows::Windows(int port) : parts_(std::make_unique<Parts>(Parts{port})) {}
Windows::~Windows() = default;

void Windows::Open(const std::string& cookie) {
  parts_->all.push_back(std::make_unique<Window>(parts_->port, cookie));
}

std::size_t Windows::Count() const { return parts_->all.size(); }

std::string Windows::Do(std::size_t window, std::string_view object) {
  return parts_->all.at(window)->Do(object);
}

std::vector<double> Windows::Press(std::size_t first, std::size_t last,
                                   const std::vector<std::string>& objects, std::chrono::milliseconds every,
                                   std::chrono::milliseconds during) {
  const auto begin = Clock::now() + std::chrono::milliseconds(50);
  std::vector<Pressed> pressed;
  std::vector<pollfd> sockets;
  for (std::size_t i = first; i < last; ++i) {
    const auto phase = every * static_cast<int64_t>(i - first) / static_cast<int64_t>(last - first);
    pressed.push_back({*parts_->all.at(i), begin + phase});
    sockets.push_back({pressed.back().window.Socket(), POLLIN, 0});
  }
  std::vector<double> times;
  for (;;) {
    auto due = Clock::time_point::max();
    bool awaited = false;
    for (Pressed& one : pressed) {
      if (one.next < begin + during && one.next <= Clock::now()) {
        one.sent.push_back(Clock::now());
        one.window.Send(objects[one.written++ % objects.size()]);
        one.next += every;
      }
      if (one.next < begin + during) due = std::min(due, one.next);
      awaited = awaited || !one.sent.empty();
    }
    if (!awaited && due == Clock::time_point::max()) return times;
    timespec wait{1, 0};
    if (due != Clock::time_point::max()) {
      const auto left = std::max(due - Clock::now(), Clock::duration::zero());
      wait = {0, std::chrono::nanoseconds(left).count() % 1'000'000'000};
    }
    ppoll(sockets.data(), sockets.size(), &wait, nullptr);
    for (std::size_t i = 0; i < pressed.size(); ++i) {
      if (sockets[i].revents == 0) continue;
      for (std::size_t settled = pressed[i].window.Settled(); settled > 0; --settled) {
        times.push_back(Since(pressed[i].sent.front()));
        pressed[i].sent.pop_front();
      }
    }
  }
}

}  // namespace orv::bench
