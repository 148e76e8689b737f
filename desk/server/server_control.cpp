#include "desk/server/server_control.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace orv {
namespace {

constexpr std::size_t kMaxQuestion = 4096;
constexpr std::size_t kMaxAnswer = 4 << 20;
constexpr int kPatience = 5000;  // milliseconds

std::filesystem::path SocketPath(const std::filesystem::path& folder) { return folder / "desk.sock"; }

sockaddr_un Address(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof address.sun_path) {
    throw UserError("O caminho da pasta de dados é longo demais: " + text + ".");
  }
  std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
  return address;
}

const sockaddr* Plain(const sockaddr_un& address) { return reinterpret_cast<const sockaddr*>(&address); }

// The line that comes, "" when none does.
std::string ReadLine(int connection, std::size_t most) {
  std::string line;
  std::array<char, 4096> part{};
  while (line.size() < most) {
    pollfd ready{connection, POLLIN, 0};
    if (poll(&ready, 1, kPatience) <= 0) return "";
    const ssize_t size = recv(connection, part.data(), part.size(), 0);
    if (size <= 0) return "";
    line.append(part.data(), static_cast<std::size_t>(size));
    if (line.back() == '\n') return line;
  }
  return "";
}

void WriteLine(int connection, const Json& json) {
  const std::string line = json.Text() + "\n";
  std::size_t sent = 0;
  while (sent < line.size()) {
    const ssize_t size = send(connection, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
    if (size <= 0) return;
    sent += static_cast<std::size_t>(size);
  }
}

[[noreturn]] void Failed(const std::string& what) {
  throw UserError(what + ": " + std::strerror(errno) + ".");
}

}  // namespace

ServerControl::ServerControl(const std::filesystem::path& folder, std::function<Json(const Json&)> answer)
    : answer_(std::move(answer)), path_(SocketPath(folder)) {
  const sockaddr_un address = Address(path_);
  lock_ = open((folder / "desk.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (lock_ < 0) Failed("A pasta de dados " + folder.string() + " não pode ser usada");
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    close(lock_);
    throw UserError("Já há uma mesa em uso na pasta " + folder.string() + ".");
  }
  // What a desk that was killed has left.
  unlink(path_.c_str());
  socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool bound = socket_ >= 0 && bind(socket_, Plain(address), sizeof address) == 0 &&
                     chmod(path_.c_str(), 0600) == 0 && listen(socket_, 8) == 0;
  if (!bound) {
    const int why = errno;
    if (socket_ >= 0) close(socket_);
    close(lock_);
    errno = why;
    Failed("O acesso do administrador não pôde ser aberto em " + path_.string());
  }
  wake_ = eventfd(0, EFD_CLOEXEC);
  thread_ = std::thread([this] { Run(); });
}

ServerControl::~ServerControl() {
  eventfd_write(wake_, 1);
  thread_.join();
  unlink(path_.c_str());
  close(socket_);
  close(wake_);
  close(lock_);
}

void ServerControl::Run() {
  for (;;) {
    std::array<pollfd, 2> ready{pollfd{socket_, POLLIN, 0}, pollfd{wake_, POLLIN, 0}};
    if (poll(ready.data(), ready.size(), -1) < 0 && errno != EINTR) return;
    if (ready[1].revents != 0) return;
    if (ready[0].revents == 0) continue;
    const int connection = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    Serve(connection);
    close(connection);
  }
}

void ServerControl::Serve(int connection) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return;
  if (peer.uid != geteuid() && peer.uid != 0) return;
  try {
    WriteLine(connection, answer_(Json::Parse(ReadLine(connection, kMaxQuestion))));
  } catch (const UserError& e) {
    WriteLine(connection, {{"error", e.what()}});
  }
}

Json AskDesk(const std::filesystem::path& folder, const Json& question) {
  const sockaddr_un address = Address(SocketPath(folder));
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connection < 0) Failed("A mesa não pôde ser consultada");
  std::string line;
  const bool reached = connect(connection, Plain(address), sizeof address) == 0;
  if (reached) {
    WriteLine(connection, question);
    line = ReadLine(connection, kMaxAnswer);
  }
  close(connection);
  if (!reached) throw UserError("Nenhuma mesa está em uso na pasta " + folder.string() + ".");
  if (line.empty()) throw UserError("A mesa não respondeu.");
  const Json answer = Json::Parse(line);
  if (answer.Has("error")) throw UserError(answer["error"].String());
  return answer;
}

}  // namespace orv
