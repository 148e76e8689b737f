#include "bench/windows.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <deque>
#include <fstream>
#include <functional>

#include "toolkit/error.h"

namespace orv::bench {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;
using Clock = std::chrono::steady_clock;

double Since(Clock::time_point begun) { return std::chrono::duration<double>(Clock::now() - begun).count(); }

tcp::endpoint Endpoint(int port) { return {asio::ip::address_v4::loopback(), static_cast<uint16_t>(port)}; }

std::string Host(int port) { return "127.0.0.1:" + std::to_string(port); }

http::response<http::string_body> Ask(int port, http::verb method, const char* target,
                                      const std::string& body) {
  http::request<http::string_body> request(method, target, 11, body);
  request.set(http::field::host, Host(port));
  request.set(http::field::content_type, "application/json");
  request.prepare_payload();
  asio::io_context io;
  tcp::socket socket(io);
  socket.connect(Endpoint(port));
  http::write(socket, request);
  beast::flat_buffer buffer;
  http::response<http::string_body> response;
  http::read(socket, buffer, response);
  return response;
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
  if (Ask(port_, http::verb::get, "/companies", "").result_int() != 200) throw UserError("No companies.");
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
  const auto response = Ask(port_, http::verb::post, "/login", body);
  const std::string cookie(response[http::field::set_cookie]);
  if (cookie.empty()) throw UserError("The login failed: " + response.body());
  return cookie.substr(0, cookie.find(';'));
}

namespace {

class Window {
 public:
  Window(asio::io_context& io, int port, const std::string& cookie) : socket_(io), timer_(io) {
    socket_.next_layer().connect(Endpoint(port));
    socket_.next_layer().set_option(tcp::no_delay(true));
    websocket::permessage_deflate deflate;
    deflate.client_enable = true;
    socket_.set_option(deflate);
    socket_.set_option(websocket::stream_base::decorator([&](websocket::request_type& request) {
      request.set(http::field::origin, "http://" + Host(port));
      request.set(http::field::cookie, cookie);
    }));
    socket_.handshake(Host(port), "/door");
    Await();
  }

  std::string Do(std::string_view object) {
    socket_.write(asio::buffer(object.data(), object.size()));
    return Await();
  }

  // From now on until the end, the answers' times go to `times`.
  void Press(const std::vector<std::string>& objects, Clock::time_point first,
             std::chrono::milliseconds every, Clock::time_point end, std::vector<double>& times,
             std::function<void()> done) {
    objects_ = objects;
    every_ = every;
    end_ = end;
    times_ = &times;
    done_ = std::move(done);
    pressing_ = true;
    Tick(first);
    // What was begun to be read the last time is still awaited.
    if (!std::exchange(reading_, true)) Read();
  }

 private:
  static bool Settled(std::string_view text) {
    if (text.starts_with(R"({"on":"error")") || text.starts_with(R"({"on":"ended")"))
      throw UserError(std::string(text));
    return text.starts_with(R"({"on":"idle")") || text.starts_with(R"({"on":"waiting")");
  }

  std::string Await() {
    for (;;) {
      beast::flat_buffer buffer;
      socket_.read(buffer);
      const std::string text = beast::buffers_to_string(buffer.data());
      if (Settled(text)) return text.starts_with(R"({"on":"idle")") ? "idle" : "waiting";
    }
  }

  void Tick(Clock::time_point at) {
    timer_.expires_at(at);
    timer_.async_wait([this, at](beast::error_code) {
      if (at >= end_) {
        pressing_ = false;
        if (sent_.empty()) done_();
        return;
      }
      sent_.push_back(Clock::now());
      ++unwritten_;
      if (unwritten_ == 1) Write();
      Tick(at + every_);
    });
  }

  void Write() {
    const std::string& object = objects_[written_++ % objects_.size()];
    socket_.async_write(asio::buffer(object), [this](beast::error_code error, std::size_t) {
      if (error) throw UserError("A window was closed: " + error.message());
      if (--unwritten_ > 0) Write();
    });
  }

  void Read() {
    socket_.async_read(buffer_, [this](beast::error_code error, std::size_t) {
      if (error) throw UserError("A window was closed: " + error.message());
      const std::string text = beast::buffers_to_string(buffer_.data());
      buffer_.consume(buffer_.size());
      if (Settled(text)) {
        times_->push_back(Since(sent_.front()));
        sent_.pop_front();
        if (!pressing_ && sent_.empty()) done_();
      }
      Read();
    });
  }

  websocket::stream<tcp::socket> socket_;
  asio::steady_timer timer_;
  beast::flat_buffer buffer_;
  std::vector<std::string> objects_;
  std::size_t written_ = 0;
  std::chrono::milliseconds every_{};
  Clock::time_point end_;
  std::vector<double>* times_ = nullptr;
  std::function<void()> done_;
  std::deque<Clock::time_point> sent_;
  int unwritten_ = 0;
  bool pressing_ = false;
  bool reading_ = false;
};

}  // namespace

struct Windows::Parts {
  explicit Parts(int given) : port(given) {}

  int port;
  asio::io_context io{1};
  std::vector<std::unique_ptr<Window>> all;
};

Windows::Windows(int port) : parts_(std::make_unique<Parts>(port)) {}
Windows::~Windows() = default;

void Windows::Open(const std::string& cookie) {
  parts_->all.push_back(std::make_unique<Window>(parts_->io, parts_->port, cookie));
}

std::size_t Windows::Count() const { return parts_->all.size(); }

std::string Windows::Do(std::size_t window, std::string_view object) {
  return parts_->all.at(window)->Do(object);
}

std::vector<double> Windows::Press(std::size_t first, std::size_t last,
                                   const std::vector<std::string>& objects, std::chrono::milliseconds every,
                                   std::chrono::milliseconds during) {
  std::vector<double> times;
  std::size_t pressing = last - first;
  const auto begin = Clock::now() + std::chrono::milliseconds(50);
  for (std::size_t i = first; i < last; ++i) {
    const auto phase = every * static_cast<int64_t>(i - first) / static_cast<int64_t>(last - first);
    parts_->all.at(i)->Press(objects, begin + phase, every, begin + during, times, [&] {
      if (--pressing == 0) parts_->io.stop();
    });
  }
  parts_->io.restart();
  parts_->io.run();
  return times;
}

}  // namespace orv::bench
