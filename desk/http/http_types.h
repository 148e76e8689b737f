// What goes between the network and the desk: requests, responses, links. Everything here runs on the
// network's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

struct HttpRequest {
  std::string method;
  std::string path;     // before the "?"
  std::string query;    // after it
  std::string address;  // of the one who asks, as a number
  std::string body;
  // By name in lower case. Of a header that comes twice the values are joined by ", ".
  std::map<std::string, std::string, std::less<>> headers;

  std::string_view Header(std::string_view name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
  }
};

struct HttpResponse {
  int status = 200;
  std::string type = "application/json; charset=utf-8";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;
};

using Respond = std::function<void(HttpResponse)>;

// Takes a body that is too large for the memory, piece by piece. One that goes before it was told `Whole`
// drops what it has.
class BodySink {
 public:
  virtual ~BodySink() = default;
  // `next` is called on the network's thread, with false when the piece can't be kept.
  virtual void Take(std::string piece, std::function<void(bool)> next) = 0;
  virtual HttpResponse Whole() = 0;
};

// What becomes of a request's body: without either it is small and comes with the request.
struct BodyPlan {
  std::shared_ptr<BodySink> sink;
  std::optional<HttpResponse> refusal;
};

// Who asks, as far as it bounds the connections that he may have.
struct Asker {
  std::string network;  // "" for one that isn't bounded
  bool known = false;   // is logged in
};

// One WebSocket. Its messages are texts.
class Link {
 public:
  virtual ~Link() = default;
  // Sent in order. A link whose other end doesn't take what was sent is closed.
  virtual void Send(std::string text) = 0;
  // Closes after what was sent.
  virtual void Close() = 0;
};

// The desk's side of the network.
class HttpHandler {
 public:
  virtual ~HttpHandler() = default;
  // Adds what every answer carries.
  virtual void Finish(HttpResponse& response) = 0;
  // Of a connection that has asked nothing yet only the address is known.
  virtual Asker Identify(const HttpRequest& request) = 0;
  // Asked before the body comes. `size` is what the request declares, if it does.
  virtual BodyPlan Receive(const HttpRequest& request, std::optional<uint64_t> size) = 0;
  virtual void Handle(const HttpRequest& request, Respond respond) = 0;
  // Whether a WebSocket may be opened: status 101 lets it, any other is the answer.
  virtual HttpResponse Upgrade(const HttpRequest& request) = 0;
  virtual void Opened(const std::shared_ptr<Link>& link, const HttpRequest& request) = 0;
  // The next message is read after `next` was called.
  virtual void Message(const std::shared_ptr<Link>& link, std::string text, std::function<void()> next) = 0;
  virtual void Closed(const std::shared_ptr<Link>& link) = 0;
};

}  // namespace orv
