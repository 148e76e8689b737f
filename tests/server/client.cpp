#include "tests/server/client.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <cstdio>

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
  asio::ssl::context context(asio::ssl::context::tls_client);
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

void Door::Send(const std::string& text, bool binary) {
  parts_->socket.binary(binary);
  beast::error_code error;
  parts_->socket.write(asio::buffer(text), error);
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
