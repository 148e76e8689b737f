// The network as a small browser sees it, one step after the other: bytes, requests, WebSocket messages.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orv::wire {

using Headers = std::map<std::string, std::string>;

// A connection to this machine.
class Connection {
 public:
  // `ciphers` are those of TLS 1.2, as their names are written, "" for what is newest. Raises
  // std::runtime_error when nobody listens there or nothing is agreed on.
  explicit Connection(int port, bool tls = false, const std::string& ciphers = "");
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // False when the other side has hung up.
  bool Send(std::string_view bytes);
  // Nothing more will be sent.
  void Done();
  // Waits for something more to come, or for the end; false when neither came in time.
  bool Ready(int milliseconds);
  // Reads what there is, and waits for the first of it; false at the end.
  bool More();
  // What was read and not yet taken.
  std::string& Unread() { return unread_; }
  // What comes until the other side hangs up. Raises std::runtime_error when it doesn't within half a minute.
  std::string Rest();
  int Socket() const { return socket_; }

 private:
  struct Tls;
  int socket_;
  std::unique_ptr<Tls> tls_;
  std::string unread_;
};

struct Answer {
  int status = 0;  // 0 when none came
  std::string body;
  Headers headers;  // names in lower case; one that comes a second time has "-2" behind its name

  std::string Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
  }
};

// Sends a request and reads its answer. A header whose value is "" is left out.
Answer Ask(Connection& connection, std::string_view method, std::string_view target, const Headers& headers,
           std::string_view body = "");

// A frame as a browser sends it: `first` holds the flags and the kind, 0x81 for a whole text.
std::string Frame(int first, std::string_view content);

// Asks for messages to be compressed, and sends none so.
class WebSocket {
 public:
  WebSocket(int port, std::string_view target, const Headers& headers);
  ~WebSocket();

  // 101, or why it wasn't opened.
  int Status() const { return status_; }
  // False when the link has been closed.
  bool Send(std::string_view text, bool binary = false);
  // The next message, or none: the link has been closed, or, without waiting, there is no whole one yet.
  std::optional<std::string> Next(bool wait = true);
  bool Closed() const { return closed_; }
  // Closes as a browser does that goes away.
  void Close();
  int Socket() const { return connection_.Socket(); }

 private:
  struct Inflater;
  void Take(int first, std::string_view content);

  Connection connection_;
  std::unique_ptr<Inflater> inflater_;
  int status_ = 0;
  bool closed_ = false;
  bool compressed_ = false;
  bool whole_ = false;
  std::string message_;
};

}  // namespace orv::wire
