// A small browser: it asks over HTTP and speaks the door, one step after the other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/json.h"
#include "tests/wire/wire.h"

namespace orv::test {

struct Answer : wire::Answer {
  std::string Text() const { return Json::Parse(body)["text"].String(); }
};

class Browser {
 public:
  using Headers = wire::Headers;

  explicit Browser(int port, bool tls = false) : port_(port), tls_(tls) {}

  // The headers given stand in place of the browser's own; "" leaves one out.
  Answer Ask(std::string_view method, std::string_view target, std::string_view body = "",
             const Headers& headers = {});
  Answer Get(std::string_view target, const Headers& headers = {}) { return Ask("GET", target, "", headers); }
  // Keeps the cookie.
  Answer LogIn(std::string_view user, std::string_view password, std::string_view company = "_001",
               const Headers& headers = {});

  std::string cookie;
  // Of TLS 1.2, as its names are written; "" for what is newest.
  std::string ciphers;
  std::string device;  // the note that tells the desk the browser again

 private:
  friend class Door;
  friend std::string DoorRequest(const Browser&, const std::string&, bool);
  int port_;
  bool tls_;
};

class Door {
 public:
  // Opens the door; `Status` tells 101 or why it wasn't opened.
  explicit Door(const Browser& browser, const std::string& session = "",
                const Browser::Headers& headers = {});

  int Status() const { return socket_.Status(); }
  // Greeted by the desk: the session's name.
  std::string Session();

  // False when the link has been closed.
  bool Send(const std::string& text, bool binary = false) { return socket_.Send(text, binary); }
  // The next object; null when the link has been closed.
  Json Next();
  // What comes up to the "idle", "waiting" or "ended" that ends an answer.
  std::vector<Json> Await();
  std::vector<Json> Do(const Json& in) {
    Send(in.Text());
    return Await();
  }
  // Closes as a browser does that goes away.
  void Close() { socket_.Close(); }

 private:
  wire::WebSocket socket_;
};

// A connection that says what it likes, byte by byte.
class Raw : public wire::Connection {
 public:
  using Connection::Connection;
  // Sends a request that opens the door and waits for the desk's consent; false when it isn't given.
  bool Open(std::string_view request);
};

// A request to open the door with the browser's cookie, as sent.
std::string DoorRequest(const Browser& browser, const std::string& session = "", bool deflate = false);
using wire::Frame;

// The objects of one kind.
std::vector<Json> Only(const std::vector<Json>& all, std::string_view kind);

// A certificate for "localhost" signed by itself, and its key, as PEM files.
void MakeCertificate(const std::string& certificate, const std::string& key);

}  // namespace orv::test
