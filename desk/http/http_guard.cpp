#include "desk/http/http_guard.h"

#include <arpa/inet.h>
#include <sodium.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::string_view kPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; font-src 'self'; "
    "connect-src 'self'; frame-src 'self'; base-uri 'none'; object-src 'none'; frame-ancestors 'none'; "
    "form-action 'self'";

bool Number(const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    return inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), bytes.data()) == 1;
  }
  return inet_pton(AF_INET, host.c_str(), bytes.data()) == 1;
}

// "mesa:8080" without its port.
std::string WithoutPort(const std::string& host) {
  const std::size_t colon = host.rfind(':');
  if (colon == std::string::npos || host.find(']', colon) != std::string::npos) return host;
  return host.substr(0, colon);
}

}  // namespace

std::string NetworkOf(const std::string& address) {
  in6_addr bytes{};
  if (inet_pton(AF_INET6, address.c_str(), &bytes) != 1) return address;
  if (IN6_IS_ADDR_V4MAPPED(&bytes)) {
    std::array<char, INET_ADDRSTRLEN> text{};
    return inet_ntop(AF_INET, bytes.s6_addr + 12, text.data(), text.size());
  }
  std::array<char, 17> hex{};
  sodium_bin2hex(hex.data(), hex.size(), bytes.s6_addr, 8);
  return hex.data();
}

HttpGuard::HttpGuard(bool tls, std::string_view public_address, std::string proxy, bool subdomains)
    : tls_(tls), subdomains_(subdomains), proxy_(std::move(proxy)) {
  std::string address = Lower(Trim(public_address));
  if (!address.empty() && address.back() == '/') address.pop_back();
  const bool https = address.starts_with("https://");
  if (!address.empty()) {
    if (!https && !address.starts_with("http://")) throw UserError("O endereço público começa com https://.");
    public_host_ = address.substr(https ? 8 : 7);
    if (public_host_.empty() || public_host_.find_first_of("/?#@ ") != std::string::npos) {
      throw UserError("O endereço público é só https://nome ou https://nome:porta.");
    }
    public_origin_ = address;
  }
  secure_ = tls_ || https;
  cookie_ = secure_ ? "__Host-orvcc" : "orvcc";
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) == 0) machine_ = Lower(std::string(name.data()));
}

bool HttpGuard::HostAccepted(const HttpRequest& request) const {
  const std::string host = Lower(std::string(request.Header("host")));
  if (!public_host_.empty() && host == public_host_) return true;
  const std::string name = WithoutPort(host);
  return name == "localhost" || Number(name) || (!machine_.empty() && name == machine_);
}

bool HttpGuard::OriginAccepted(const HttpRequest& request) const {
  const std::string origin = Lower(std::string(request.Header("origin")));
  if (origin.empty()) return false;
  if (!public_origin_.empty() && origin == public_origin_) return true;
  return origin == (tls_ ? "https://" : "http://") + Lower(std::string(request.Header("host")));
}

std::string HttpGuard::AddressOfAsker(const HttpRequest& request) const {
  if (proxy_.empty() || request.address != proxy_) return request.address;
  // The proxy adds whom it saw at the end; what stands before is hearsay.
  const std::string_view chain = request.Header("x-forwarded-for");
  const std::string last(Trim(chain.substr(chain.rfind(',') + 1)));
  const bool address = !last.empty() && (Number(last) || Number("[" + last + "]"));
  return address ? last : request.address;
}

std::string HttpGuard::NetworkOfAsker(const HttpRequest& request) const {
  const std::string asker = AddressOfAsker(request);
  return asker == proxy_ ? "" : NetworkOf(asker);
}

std::string HttpGuard::Cookie(const HttpRequest& request, const std::string& name) {
  for (const std::string& part : Split(std::string(request.Header("cookie")), ";")) {
    const std::string_view pair = Trim(part);
    if (pair.size() > name.size() && pair.starts_with(name) && pair[name.size()] == '=') {
      return std::string(pair.substr(name.size() + 1));
    }
  }
  return "";
}

std::string HttpGuard::Cookie(const std::string& name, std::string_view value) const {
  return name + "=" + std::string(value) + "; Path=/; HttpOnly; SameSite=Strict" +
         (secure_ ? "; Secure" : "");
}

std::string HttpGuard::Token(const HttpRequest& request) const { return Cookie(request, cookie_); }

std::string HttpGuard::SetCookie(std::string_view token) const { return Cookie(cookie_, token); }

std::string HttpGuard::ClearCookie() const { return Cookie(cookie_, "") + "; Max-Age=0"; }

std::string HttpGuard::DeviceName(std::string_view user) const {
  const std::string login = Lower(Trim(user));
  std::array<unsigned char, crypto_generichash_BYTES_MIN> digest{};
  crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(login.data()),
                     login.size(), nullptr, 0);
  std::array<char, 2 * crypto_generichash_BYTES_MIN + 1> hex{};
  sodium_bin2hex(hex.data(), hex.size(), digest.data(), digest.size());
  return cookie_ + "-" + hex.data();
}

std::string HttpGuard::DeviceNote(const HttpRequest& request, std::string_view user) const {
  return Cookie(request, DeviceName(user));
}

std::string HttpGuard::SetDeviceNote(std::string_view user, std::string_view note, int days) const {
  return Cookie(DeviceName(user), note) + "; Max-Age=" + std::to_string(int64_t{days} * 24 * 60 * 60);
}

void HttpGuard::Finish(HttpResponse& response) const {
  const auto has = [&](std::string_view name) {
    return std::any_of(response.headers.begin(), response.headers.end(),
                       [&](const auto& header) { return header.first == name; });
  };
  if (!has("Cache-Control")) response.headers.emplace_back("Cache-Control", "no-store");
  if (!has("Content-Security-Policy")) response.headers.emplace_back("Content-Security-Policy", kPolicy);
  response.headers.emplace_back("X-Content-Type-Options", "nosniff");
  response.headers.emplace_back("Referrer-Policy", "no-referrer");
  response.headers.emplace_back("Cross-Origin-Opener-Policy", "same-origin");
  response.headers.emplace_back("Cross-Origin-Resource-Policy", "same-origin");
  if (secure_) {
    response.headers.emplace_back("Strict-Transport-Security",
                                  subdomains_ ? "max-age=31536000; includeSubDomains" : "max-age=31536000");
  }
}

}  // namespace orv
