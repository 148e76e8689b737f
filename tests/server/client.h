// A small browser: it asks over HTTP and speaks the door, one step after the other.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desk/json.h"

namespace orv::test {

struct Answer {
  int status = 0;
  std::string body;
  std::map<std::string, std::string> headers;  // names in lower case

  std::string Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
  }
  std::string Text() const { return Json::Parse(body)["text"].String(); }
};

class Browser {
 public:
  using Headers = std::map<std::string, std::string>;

  explicit Browser(int port, bool tls = false) : port_(port), tls_(tls) {}

  // The headers given stand in place of the browser's own; "" leaves one out.
  Answer Ask(std::string_view method, std::string_view target, std::string_view body = "",
             const Headers& headers = {});
  Answer Get(std::string_view target, const Headers& headers = {}) { return Ask("GET", target, "", headers); }
  // Keeps the cookie.
  Answer LogIn(std::string_view user, std::string_view password, std::string_view company = "_001");

  std::string cookie;
  // Of TLS 1.2, as its names are written; "" for what is newest.
  std::string ciphers;

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
  ~Door();

  int Status() const;
  // Greeted by the desk: the session's name.
  std::string Session();

  // False when the link has been closed.
  bool Send(const std::string& text, bool binary = false);
  // The next object; null when the link has been closed.
  Json Next();
  // What comes up to the "idle", "waiting" or "ended" that ends an answer.
  std::vector<Json> Await();
  std::vector<Json> Do(const Json& in) {
    Send(in.Text());
    return Await();
  }
  // Closes as a browser does that goes away.
  void Close();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

// A connection that says what it likes, byte by byte.
class Raw {
 public:
  explicit Raw(int port);
  ~Raw();
  Raw(const Raw&) = delete;
  Raw& operator=(const Raw&) = delete;

  // False when the desk has hung up.
  bool Send(std::string_view bytes);
  // Nothing more will be sent.
  void Done();
  // Sends a request that opens the door and waits for the desk's consent; false when it isn't given.
  bool Open(std::string_view request);
  // What the desk says until it hangs up. Raises an error when it doesn't within half a minute.
  std::string Rest();
  // Waits for something to read, or for the end; false when neither came in time.
  bool Ready(int milliseconds);

 private:
  int socket_;
};

// A request to open the door with the browser's cookie, as sent.
std::string DoorRequest(const Browser& browser, const std::string& session = "", bool deflate = false);
// A frame as a browser sends it: `first` holds the flags and the kind, 0x81 for a whole text.
std::string Frame(int first, std::string_view content);

// The objects of one kind.
std::vector<Json> Only(const std::vector<Json>& all, std::string_view kind);

// A certificate for "localhost" signed by itself, and its key, as PEM files.
void MakeCertificate(const std::string& certificate, const std::string& key);

}  // namespace orv::test
