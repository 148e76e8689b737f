// The sessions at the desk, each of them a window of someone who is logged in. A session outlives its link: a
// browser that comes back within the grace time finds it as it was. Runs on the network's thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desk/http/http_server.h"
#include "desk/log.h"
#include "desk/server/logins.h"
#include "desk/server/server_workers.h"
#include "desk/session/session.h"

namespace orv {

// A file that a session wrote for its display: a report, or an attachment under the name that it has there.
struct HandedFile {
  std::filesystem::path path;
  std::string name;
  bool attachment = false;
};

class ServerSessions {
 public:
  struct Limits {
    std::chrono::seconds grace = std::chrono::minutes(10);
    std::size_t per_user = 8;
    double messages_a_second = 200;
  };
  struct Hooks {
    // What a session of that login works with.
    std::function<SessionOptions(const Login&)> options;
    // The login's user has done something.
    std::function<void(const std::string& login)> used;
    std::function<Instant()> now;
  };

  // `workers` read what would take long on the network's thread.
  ServerSessions(Limits limits, Hooks hooks, Log& log, HttpServer& network, Workers& workers);
  ~ServerSessions();
  ServerSessions(const ServerSessions&) = delete;
  ServerSessions& operator=(const ServerSessions&) = delete;

  // A link of a login, to the session named or to a new one. It is greeted by "hello" with the session's name
  // and the number of the latest object taken from it, or told by "ended" why there is none.
  void Attach(const Login& login, const std::string& session, const std::shared_ptr<Link>& link);
  void Detach(const std::shared_ptr<Link>& link);
  void Message(const std::shared_ptr<Link>& link, std::string text, std::function<void()> next);

  // Where the file goes that a window of that login was asked for.
  BodyPlan Receive(const Login& login, const std::string& session, uint64_t size);

  // Ends all sessions of a login; they are told the text once what they did is undone.
  void EndLogin(const std::string& login, const std::string& text);
  void EndAll(const std::string& text);
  // The rights of a login's user have changed: its sessions look whether they may go on.
  void Recheck(const std::string& login);
  // Ends the sessions whose browser has been away for the grace time.
  void Sweep();

  // A file of that login by the secret of its address.
  std::optional<HandedFile> FileOf(const std::string& login, std::string_view secret) const;

  std::size_t Count() const { return windows_.size(); }
  std::size_t CountOf(const std::string& login) const;
  // Called whenever a session has ended and is gone.
  void OnGone(std::function<void()> gone) { gone_ = std::move(gone); }

 private:
  struct Window;
  class Receiver;
  using WindowPointer = std::shared_ptr<Window>;

  void Begin(const Login& login, const std::shared_ptr<Link>& link);
  void Connect(const WindowPointer& window, const std::shared_ptr<Link>& link);
  // False when all of the user's windows are in use.
  bool MakeRoom(const std::string& user);
  WindowPointer Of(const std::shared_ptr<Link>& link) const;
  void Take(const WindowPointer& window, const std::shared_ptr<Link>& link, Json in,
            std::function<void()> next);
  struct Said;
  void Out(const std::string& id, Said said);
  void End(Window& window, const std::string& text);
  // A file becomes an address of the window's.
  static Json Addressed(Window& window, const Json& handed);

  Limits limits_;
  Hooks hooks_;
  Log& log_;
  HttpServer& network_;
  Workers& workers_;
  std::map<std::string, WindowPointer> windows_;
  std::function<void()> gone_;
};

}  // namespace orv
