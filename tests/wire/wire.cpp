#include "tests/wire/wire.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/beast/zlib/inflate_stream.hpp>
#include <cctype>
#include <stdexcept>
#include <utility>

namespace orv::wire {

struct Connection::Tls {
  explicit Tls(const std::string& ciphers) : context(SSL_CTX_new(TLS_client_method())) {
    if (!ciphers.empty()) {
      SSL_CTX_set_max_proto_version(context, TLS1_2_VERSION);
      SSL_CTX_set_cipher_list(context, ciphers.c_str());
    }
    link = SSL_new(context);
  }
  SSL_CTX* context;
  SSL* link;
  ~Tls() {
    SSL_free(link);
    SSL_CTX_free(context);
  }
};

Connection::Connection(int port, bool tls, const std::string& ciphers)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bool open = connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  const int at_once = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof at_once);
  if (open && tls) {
    tls_ = std::make_unique<Tls>(ciphers);
    SSL_set_fd(tls_->link, socket_);
    open = SSL_connect(tls_->link) == 1;
  }
  if (!open) {
    close(socket_);
    throw std::runtime_error("no connection");
  }
}

Connection::~Connection() { close(socket_); }

bool Connection::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = tls_ ? SSL_write(tls_->link, bytes.data(), static_cast<int>(bytes.size()))
                              : send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Connection::Done() { shutdown(socket_, SHUT_WR); }

bool Connection::Ready(int milliseconds) {
  pollfd one{socket_, POLLIN, 0};
  return poll(&one, 1, milliseconds) > 0;
}

bool Connection::More() {
  std::array<char, 65536> bytes;
  const ssize_t size = tls_ ? SSL_read(tls_->link, bytes.data(), static_cast<int>(bytes.size()))
                            : recv(socket_, bytes.data(), bytes.size(), 0);
  if (size > 0) unread_.append(bytes.data(), static_cast<std::size_t>(size));
  return size > 0;
}

std::string Connection::Rest() {
  for (;;) {
    if (!Ready(30000)) throw std::runtime_error("the connection is kept");
    if (!More()) return std::exchange(unread_, "");
  }
}

Answer Ask(Connection& connection, std::string_view method, std::string_view target, const Headers& headers,
           std::string_view body) {
  std::string request = std::string(method) + " " + std::string(target) + " HTTP/1.1\r\n";
  for (const auto& [name, value] : headers) {
    if (!value.empty()) request += name + ": " + value + "\r\n";
  }
  if (!body.empty() || method == "POST") request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
  connection.Send(request.append("\r\n").append(body));

  std::string& unread = connection.Unread();
  std::size_t end;
  while ((end = unread.find("\r\n\r\n")) == std::string::npos) {
    if (!connection.More()) return {};
  }
  Answer answer;
  answer.status = std::stoi(unread.substr(unread.find(' ')));
  for (std::size_t at = unread.find("\r\n") + 2; at < end + 2;) {
    const std::size_t colon = unread.find(':', at), line = unread.find("\r\n", at);
    std::string name = unread.substr(at, colon - at);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    const std::string value = unread.substr(colon + 2, line - colon - 2);
    if (!answer.headers.emplace(name, value).second) answer.headers[name + "-2"] = value;
    at = line + 2;
  }
  unread.erase(0, end + 4);
  const std::string length = answer.Header("content-length");
  const std::size_t size = method == "HEAD" || length.empty() ? 0 : std::stoul(length);
  while (unread.size() < size && connection.More()) {
  }
  answer.body = unread.substr(0, size);
  unread.erase(0, size);
  return answer;
}

std::string Frame(int first, std::string_view content) {
  const std::size_t size = content.size();
  std::string frame{static_cast<char>(first)};
  if (size < 126) {
    frame += static_cast<char>(0x80 | size);
  } else if (size < 65536) {
    frame += {static_cast<char>(0xFE), static_cast<char>(size >> 8), static_cast<char>(size)};
  } else {
    frame += static_cast<char>(0xFF);
    for (int shift = 56; shift >= 0; shift -= 8) frame += static_cast<char>(size >> shift);
  }
  // A mask of zeros leaves the content as it is.
  frame.append(4, '\0');
  return frame.append(content);
}

// One for all messages: each refers to those before it.
struct WebSocket::Inflater {
  boost::beast::zlib::inflate_stream stream;

  std::string Inflate(std::string content) {
    content.append("\0\0\xFF\xFF", 4);
    boost::beast::zlib::z_params step;
    step.next_in = content.data();
    step.avail_in = content.size();
    std::string all;
    std::array<char, 16384> part;
    do {
      step.next_out = part.data();
      step.avail_out = part.size();
      boost::beast::error_code error;
      stream.write(step, boost::beast::zlib::Flush::sync, error);
      if (error && error != boost::beast::zlib::error::need_buffers)
        throw std::runtime_error("the message isn't compressed as it says");
      all.append(part.data(), part.size() - step.avail_out);
    } while (step.avail_out == 0);
    return all;
  }
};

WebSocket::WebSocket(int port, std::string_view target, const Headers& headers)
    : connection_(port), inflater_(std::make_unique<Inflater>()) {
  Headers all{{"Connection", "Upgrade"},
              {"Upgrade", "websocket"},
              {"Sec-WebSocket-Version", "13"},
              {"Sec-WebSocket-Key", "dGhlIHNhbXBsZSBub25jZQ=="},
              {"Sec-WebSocket-Extensions", "permessage-deflate"}};
  all.insert(headers.begin(), headers.end());
  const Answer answer = Ask(connection_, "GET", target, all);
  status_ = answer.status;
  closed_ = status_ != 101;
  if (!closed_ && answer.Header("sec-websocket-accept") != "s3pPLMBiTxaQ9kYGzzhZRbK+xOo=")
    throw std::runtime_error("the key isn't answered");
}

WebSocket::~WebSocket() = default;

bool WebSocket::Send(std::string_view text, bool binary) {
  return !closed_ && connection_.Send(Frame(binary ? 0x82 : 0x81, text));
}

void WebSocket::Take(int first, std::string_view content) {
  switch (first & 0x0F) {
    case 8:
      connection_.Send(Frame(0x88, content));
      closed_ = true;
      return;
    case 9:
      connection_.Send(Frame(0x8A, content));
      return;
    case 10:
      return;
    case 0:
      break;
    default:
      compressed_ = (first & 0x40) != 0;
  }
  message_ += content;
  whole_ = (first & 0x80) != 0;
}

std::optional<std::string> WebSocket::Next(bool wait) {
  std::string& unread = connection_.Unread();
  const auto byte = [&](std::size_t at) {
    return static_cast<uint64_t>(static_cast<unsigned char>(unread[at]));
  };
  while (!closed_) {
    std::size_t begin = 2;
    uint64_t size = unread.size() < 2 ? 0 : byte(1) & 0x7F;
    const std::size_t more = size == 126 ? 2 : size == 127 ? 8 : 0;
    if (more > 0 && unread.size() >= begin + more) {
      size = 0;
      for (std::size_t i = 0; i < more; ++i) size = size << 8 | byte(begin + i);
    }
    begin += more;
    if (unread.size() < begin || unread.size() - begin < size) {
      if (!wait && !connection_.Ready(0)) return {};
      if (!connection_.More()) closed_ = true;
      continue;
    }
    Take(static_cast<int>(byte(0)), std::string_view(unread).substr(begin, size));
    unread.erase(0, begin + size);
    if (!std::exchange(whole_, false)) continue;
    std::string message = std::exchange(message_, "");
    return compressed_ ? inflater_->Inflate(std::move(message)) : message;
  }
  return {};
}

void WebSocket::Close() {
  if (closed_) return;
  connection_.Send(Frame(0x88, "\x03\xE8"));
  while (Next()) {
  }
}

}  // namespace orv::wire
