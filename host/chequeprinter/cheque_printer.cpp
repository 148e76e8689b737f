#include "host/chequeprinter/cheque_printer.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "host/chequeprinter/cheque_page.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int kPatience = 10'000;  // milliseconds

class File {
 public:
  explicit File(int handle) : handle_(handle) {}
  ~File() {
    if (handle_ >= 0) ::close(handle_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int Handle() const { return handle_; }

 private:
  int handle_;
};

[[noreturn]] void NotAnswering(const ChequePort& port) {
  throw UserError("A impressora de cheques em " + port.path + " não responde.");
}

// 9600 bits a second, 8 bits, no parity, one stop bit, the printer holding the line while it is busy.
void SetLine(const ChequePort& port, int handle) {
  termios line{};
  if (tcgetattr(handle, &line) != 0) NotAnswering(port);
  cfmakeraw(&line);
  cfsetispeed(&line, B9600);
  cfsetospeed(&line, B9600);
  line.c_cflag |= CLOCAL | CRTSCTS;
  if (tcsetattr(handle, TCSANOW, &line) != 0) NotAnswering(port);
}

}  // namespace

ChequePort SystemChequePort(std::string_view port) {
  const std::string name = Upper(Trim(port));
  const std::string digits = name.starts_with("COM") ? name.substr(3) : "";
  const bool number = !digits.empty() && digits.size() <= 2 && digits[0] != '0' &&
                      std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!number) throw UserError("A porta \"" + std::string(port) + "\" não existe.");
  if (const char* file = std::getenv(("ORVCC_CHEQUE_PORT_" + name).c_str());
      file != nullptr && *file != '\0') {
    return {file, true};
  }
  return {"/dev/ttyS" + std::to_string(std::stoi(digits) - 1), false};
}

void SendToPort(const ChequePort& port, std::string_view bytes) {
  const int flags = O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC | (port.file ? O_CREAT | O_APPEND : 0);
  const File file(::open(port.path.c_str(), flags, 0600));
  if (file.Handle() < 0) throw UserError("A impressora de cheques em " + port.path + " não pode ser aberta.");
  const bool device = ::isatty(file.Handle()) == 1;
  if (!port.file && !device) NotAnswering(port);
  if (device) SetLine(port, file.Handle());

  while (!bytes.empty()) {
    const ssize_t sent = ::write(file.Handle(), bytes.data(), bytes.size());
    if (sent > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (sent < 0 && errno == EINTR) {
      continue;
    } else if (sent < 0 && errno == EAGAIN) {
      pollfd ready{file.Handle(), POLLOUT, 0};
      if (::poll(&ready, 1, kPatience) == 0) NotAnswering(port);
      if ((ready.revents & (POLLERR | POLLHUP)) != 0) NotAnswering(port);
    } else {
      NotAnswering(port);
    }
  }
}

void ChequePrinter::SetModelo(int model) {
  if (model >= 1 && model <= 4) model_ = model;
}

void ChequePrinter::ImprimirCheque() {
  const Date date = Date::ParseBrazil(Data);
  if (date.Empty()) throw UserError("O cheque não tem data.");
  if (Trim(Nome).empty()) throw UserError("O cheque não tem favorecido.");
  const std::string page =
      ChequePage(GetChequeModel(model_), {Valor.Round2(), words_(Valor), Nome, Cidade, date});
  SendToPort(port_(Porta), page);
}

}  // namespace orv
