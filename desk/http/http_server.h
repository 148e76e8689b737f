// The network: one thread that takes connections, speaks HTTP/1.1 and WebSocket on them, with or without TLS,
// and bounds what a connection may cost.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "desk/http/http_types.h"

namespace orv {

class HttpServer {
 public:
  struct Options {
    std::string address = "127.0.0.1";  // a number
    int port = 0;                       // 0 for any that is free
    std::string certificate, key;       // PEM files; empty for no TLS
    std::size_t max_connections = 1024;
    // Of them one network may have so many, and so many that aren't logged in.
    std::size_t max_of_one = 512, max_unknown_of_one = 64;
    std::chrono::milliseconds request_time{15000};  // for a request to be there as a whole
    std::chrono::milliseconds keep_time{60000};     // between two requests
  };

  // Takes the port. Raises UserError when it can't, or for a certificate that can't be used.
  HttpServer(const Options& options, HttpHandler& handler);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  int Port() const;
  // Works until `Stop`.
  void Run();
  // From any thread: runs it on the network's thread.
  void Post(std::function<void()> work);
  // On the network's thread: runs it after a time, or never when the network stops before.
  void After(std::chrono::milliseconds time, std::function<void()> work);
  // On the network's thread: no further connections; the links get a moment to say goodbye, then it stops.
  void Stop();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace orv
