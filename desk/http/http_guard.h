// Who may ask what over HTTP: the names under which the desk is reached, the origins of its pages, the
// session cookie, and the headers that every answer carries.
#pragma once

#include <string>
#include <string_view>

#include "desk/http/http_types.h"

namespace orv {

// What one asker has: an IPv4 address, or of an IPv6 address the 2^64 beside it.
std::string NetworkOf(const std::string& address);

class HttpGuard {
 public:
  // `tls` when the desk itself speaks TLS. `public_address` is where browsers find the desk behind a proxy,
  // "https://mesa.exemplo.com", "" for none; `proxy` is the proxy's address, whose word on who asks is taken.
  // With `subdomains` browsers are told to keep to TLS for the names below the desk's, too.
  // Raises UserError when the public address isn't one.
  HttpGuard(bool tls, std::string_view public_address, std::string proxy, bool subdomains = false);

  // The desk's own name: its public address, a number, the machine's name. Any other is somebody else's name
  // that leads here.
  bool HostAccepted(const HttpRequest& request) const;
  // The request comes from a page of the desk, as browsers tell.
  bool OriginAccepted(const HttpRequest& request) const;
  // The address of who asks.
  std::string AddressOfAsker(const HttpRequest& request) const;
  // The network of who asks, "" where the proxy doesn't tell.
  std::string NetworkOfAsker(const HttpRequest& request) const;

  // "" when there is none.
  std::string Token(const HttpRequest& request) const;
  std::string SetCookie(std::string_view token) const;
  std::string ClearCookie() const;
  // What the browser keeps to be known again at that user's next login; each user of a browser has one.
  std::string DeviceNote(const HttpRequest& request, std::string_view user) const;
  std::string SetDeviceNote(std::string_view user, std::string_view note, int days) const;

  // Adds the headers that every answer carries.
  void Finish(HttpResponse& response) const;

 private:
  static std::string Cookie(const HttpRequest& request, const std::string& name);
  std::string Cookie(const std::string& name, std::string_view value) const;
  std::string DeviceName(std::string_view user) const;

  bool tls_;
  bool secure_;
  bool subdomains_;
  std::string public_origin_, public_host_;
  std::string proxy_;
  std::string machine_;
  std::string cookie_;
};

}  // namespace orv
