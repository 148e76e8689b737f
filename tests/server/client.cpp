#include "tests/server/client.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstdio>

namespace orv::test {
namespace {

Browser::Headers With(const Browser& browser, int port, bool tls, const Browser::Headers& given) {
  const std::string host = "127.0.0.1:" + std::to_string(port);
  Browser::Headers headers{{"Host", host},
                           {"Origin", (tls ? "https://" : "http://") + host},
                           {"Content-Type", "application/json"},
                           {"Cookie", browser.cookie + "; " + browser.device}};
  for (const auto& [name, value] : given) headers[name] = value;
  return headers;
}

}  // namespace

Answer Browser::Ask(std::string_view method, std::string_view target, std::string_view body,
                    const Headers& headers) {
  wire::Connection connection(port_, tls_, ciphers);
  Answer answer{wire::Ask(connection, method, target, With(*this, port_, tls_, headers), body)};
  for (const char* name : {"set-cookie", "set-cookie-2"}) {
    const std::string note = answer.Header(name);
    if (note.find("orvcc-") == std::string::npos) continue;
    answer.headers["device-cookie"] = note;
    device = note.substr(0, note.find(';'));
  }
  return answer;
}

Answer Browser::LogIn(std::string_view user, std::string_view password, std::string_view company,
                      const Headers& headers) {
  const Json body{{"user", user}, {"password", password}, {"company", company}};
  Answer answer = Ask("POST", "/login", body.Text(), headers);
  const std::string set = answer.Header("set-cookie");
  if (answer.status == 200) cookie = set.substr(0, set.find(';'));
  return answer;
}

Door::Door(const Browser& browser, const std::string& session, const Browser::Headers& headers)
    : socket_(browser.port_, session.empty() ? "/door" : "/door?session=" + session,
              With(browser, browser.port_, false, headers)) {}

std::string Door::Session() {
  const Json hello = Next();
  return hello["on"] == Json("hello") ? hello["session"].String() : "";
}

Json Door::Next() {
  const std::optional<std::string> message = socket_.Next();
  return message ? Json::Parse(*message) : Json();
}

std::vector<Json> Door::Await() {
  std::vector<Json> all;
  for (;;) {
    all.push_back(Next());
    const Json& on = all.back()["on"];
    if (all.back().IsNull() || on == Json("idle") || on == Json("waiting") || on == Json("ended")) return all;
  }
}

bool Raw::Open(std::string_view request) {
  Send(request);
  std::size_t end;
  while ((end = Unread().find("\r\n\r\n")) == std::string::npos && Ready(30000) && More()) {
  }
  const bool open = end != std::string::npos && Unread().starts_with("HTTP/1.1 101");
  if (open) Unread().erase(0, end + 4);
  return open;
}

std::string DoorRequest(const Browser& browser, const std::string& session, bool deflate) {
  const std::string host = "127.0.0.1:" + std::to_string(browser.port_);
  return "GET /door" + (session.empty() ? "" : "?session=" + session) + " HTTP/1.1\r\nHost: " + host +
         "\r\nOrigin: http://" + host + "\r\nCookie: " + browser.cookie +
         "\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" +
         (deflate ? "Sec-WebSocket-Extensions: permessage-deflate\r\n" : "") + "\r\n";
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
