// The desk on the network: the page, who may log in, and a session for each window.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "desk/json.h"
#include "desk/log.h"
#include "desk/server/logins.h"
#include "host/services/passwords.h"
#include "toolkit/date.h"

namespace orv {

struct ServerOptions {
  std::string database;
  std::string address = "127.0.0.1";
  int port = 0;                  // 0 for any that is free
  std::filesystem::path data;    // the users' files, and the administrator's socket
  std::filesystem::path web;     // the page's files
  std::string certificate, key;  // PEM files; empty for no TLS
  std::string public_address;    // "https://mesa.exemplo.com" behind a proxy
  std::string proxy;             // the proxy's address
  std::chrono::seconds idle = std::chrono::minutes(30);
  std::chrono::seconds absolute = std::chrono::hours(12);
  std::chrono::seconds grace = std::chrono::minutes(10);
  std::size_t windows = 8;                           // of one user
  std::size_t max_upload = std::size_t{64} << 20;    // bytes
  std::size_t max_uploads = std::size_t{256} << 20;  // bytes of all files of one user
  std::size_t connections = 512;                  // of one address, an eighth of them before its users log in
  bool subdomains = false;                        // TLS for the names below the desk's, too
  int64_t max_rows = 10000;                       // of a set in one answer to a read
  double messages_a_second = 200;                 // of one window
  std::chrono::milliseconds request_time{15000};  // for a request to be there as a whole
  Clock clock;
  PasswordCost cost;  // what an unknown user's attempt costs
  // The time by which sessions age.
  std::function<Instant()> now = [] { return std::chrono::steady_clock::now(); };
};

class Server {
 public:
  // Serves from here on. Raises UserError when the database, the page's files, the port or the certificate
  // can't be used.
  Server(ServerOptions options, Log& log);
  // Stops.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  int Port() const;
  // "http://127.0.0.1:8080"
  std::string Address() const;

  // Ends what has been idle, old or away for too long. Done by itself every few seconds.
  void Sweep();
  // Ends all sessions: what is open is undone, and the users are told. Returns when all is closed.
  void Stop();

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace orv
