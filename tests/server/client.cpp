#include "tests/server/client.h"

#include <arpa/inet.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <cstdio>
#include <stdexcept>

#include "toolkit/text.h"

namespace orv::test {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;

tcp::endpoint Endpoint(int port) {
  return {asio::ip::make_address("127.0.0.1"), static_cast<uint16_t>(port)};
}

Browser::Headers With(const Browser& browser, int port, bool tls, const Browser::Headers& given) {
  const std::string host = "127.0.0.1:" + std::to_string(port);
  Browser::Headers headers{{"Host", host},
                           {"Origin", (tls ? "https://" : "http://") + host},
                           {"Content-Type", "application/json"},
                           {"Cookie", browser.cookie}};
  for (const auto& [name, value] : given) headers[name] = value;
  return headers;
}

template <class Stream>
Answer Exchange(Stream& stream, const http::request<http::string_body>& request) {
  http::write(stream, request);
  beast::flat_buffer buffer;
  http::response_parser<http::string_body> parser;
  if (request.method() == http::verb::head) parser.skip(true);
  http::read(stream, buffer, parser);
  Answer answer{static_cast<int>(parser.get().result_int()), parser.get().body(), {}};
  for (const auto& field : parser.get())
    answer.headers[Lower(std::string(field.name_string()))] = std::string(field.value());
  return answer;
}

}  // namespace

Answer Browser::Ask(std::string_view method, std::string_view target, std::string_view body,
                    const Headers& headers) {
  http::request<http::string_body> request;
  request.method_string({method.data(), method.size()});
  request.target({target.data(), target.size()});
  for (const auto& [name, value] : With(*this, port_, tls_, headers)) {
    if (!value.empty()) request.set(name, value);
  }
  request.body() = std::string(body);
  request.prepare_payload();
  asio::io_context io;
  tcp::socket socket(io);
  socket.connect(Endpoint(port_));
  if (!tls_) return Exchange(socket, request);
  asio::ssl::context context(ciphers.empty() ? asio::ssl::context::tls_client
                                             : asio::ssl::context::tlsv12_client);
  if (!ciphers.empty()) SSL_CTX_set_cipher_list(context.native_handle(), ciphers.c_str());
  asio::ssl::stream<tcp::socket&> stream(socket, context);
  stream.handshake(asio::ssl::stream_base::client);
  return Exchange(stream, request);
}

Answer Browser::LogIn(std::string_view user, std::string_view password, std::string_view company) {
  const Json body{{"user", user}, {"password", password}, {"company", company}};
  Answer answer = Ask("POST", "/login", body.Text());
  const std::string set = answer.Header("set-cookie");
  if (answer.status == 200) cookie = set.substr(0, set.find(';'));
  return answer;
}

struct Door::Parts {
  asio::io_context io;
  websocket::stream<tcp::socket> socket{io};
  int status = 0;
};

Door::Door(const Browser& browser, const std::string& session, const Browser::Headers& headers)
    : parts_(std::make_unique<Parts>()) {
  auto& socket = parts_->socket;
  socket.next_layer().connect(Endpoint(browser.port_));
  const auto all = With(browser, browser.port_, false, headers);
  socket.set_option(websocket::stream_base::decorator([&](websocket::request_type& request) {
    for (const auto& [name, value] : all) {
      if (value.empty()) {
        request.erase(name);
      } else {
        request.set(name, value);
      }
    }
  }));
  websocket::permessage_deflate deflate;
  deflate.client_enable = true;
  socket.set_option(deflate);
  websocket::response_type response;
  beast::error_code error;
  socket.handshake(response, all.at("Host"), session.empty() ? "/door" : "/door?session=" + session, error);
  parts_->status = static_cast<int>(response.result_int());
}

Door::~Door() = default;

int Door::Status() const { return parts_->status; }

std::string Door::Session() {
  const Json hello = Next();
  return hello["on"] == Json("hello") ? hello["session"].String() : "";
}

bool Door::Send(const std::string& text, bool binary) {
  parts_->socket.binary(binary);
  beast::error_code error;
  parts_->socket.write(asio::buffer(text), error);
  return !error;
}

Json Door::Next() {
  beast::flat_buffer buffer;
  beast::error_code error;
  parts_->socket.read(buffer, error);
  return error ? Json() : Json::Parse(beast::buffers_to_string(buffer.data()));
}

std::vector<Json> Door::Await() {
  std::vector<Json> all;
  for (;;) {
    all.push_back(Next());
    const Json& on = all.back()["on"];
    if (all.back().IsNull() || on == Json("idle") || on == Json("waiting") || on == Json("ended")) return all;
  }
}

void Door::Close() {
  beast::error_code error;
  parts_->socket.close(websocket::close_code::normal, error);
}

Raw::Raw(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(socket_);
    throw std::runtime_error("no connection");
  }
}

Raw::~Raw() { close(socket_); }

bool Raw::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Raw::Done() { shutdown(socket_, SHUT_WR); }

bool Raw::Ready(int milliseconds) {
  pollfd one{socket_, POLLIN, 0};
  return poll(&one, 1, milliseconds) > 0;
}

bool Raw::Open(std::string_view request) {
  std::string said;
  char byte = 0;
  Send(request);
  while (!said.ends_with("\r\n\r\n") && Ready(30000) && recv(socket_, &byte, 1, 0) == 1) said += byte;
  return said.starts_with("HTTP/1.1 101") && said.ends_with("\r\n\r\n");
}

std::string Raw::Rest() {
  std::string all;
  std::array<char, 4096> bytes{};
  for (;;) {
    if (!Ready(30000)) throw std::runtime_error("the desk keeps the connection");
    const ssize_t size = recv(socket_, bytes.data(), bytes.size(), 0);
    if (size <= 0) return all;
    all.append(bytes.data(), static_cast<std::size_t>(size));
  }
}

std::string DoorRequest(const Browser& browser, const std::string& session, bool deflate) {
  const std::string host = "127.0.0.1:" + std::to_string(browser.port_);
  return "GET /door" + (session.empty() ? "" : "?session=" + session) + " HTTP/1.1\r\nHost: " + host +
         "\r\nOrigin: http://" + host + "\r\nCookie: " + browser.cookie +
         "\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" +
         (deflate ? "Sec-WebSocket-Extensions: permessage-deflate\r\n" : "") + "\r\n";
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

std::vector<Json> Only(const std::vector<Json>& all, std::string_view kind) {
  std::vector<Json> some;
  for (const Json& one : all) {
    if (one["on"] == Json(kind)) some.push_back(one);
  }
  return some;
}

void MakeCertificate(const std::string& certificate, const std::string& key) {
  EVP_PKEY* pair = EVP_EC_gen("P-256");
  X509* made = X509_new();
  ASN1_INTEGER_set(X509_get_serialNumber(made), 1);
  X509_gmtime_adj(X509_getm_notBefore(made), -60);
  X509_gmtime_adj(X509_getm_notAfter(made), 3600);
  X509_set_pubkey(made, pair);
  X509_NAME* name = X509_get_subject_name(made);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"),
                             -1, -1, 0);
  X509_set_issuer_name(made, name);
  X509_sign(made, pair, EVP_sha256());
  std::FILE* out = std::fopen(certificate.c_str(), "w");
  PEM_write_X509(out, made);
  std::fclose(out);
  out = std::fopen(key.c_str(), "w");
  PEM_write_PrivateKey(out, pair, nullptr, nullptr, 0, nullptr, nullptr);
  std::fclose(out);
  X509_free(made);
  EVP_PKEY_free(pair);
}

}  // namespace orv::test
