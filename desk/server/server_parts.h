// What a server is made of. How it begins, ages and ends stands in server.cpp, what is asked of it in
// server_requests.cpp, who may be at the desk in server_access.cpp. All runs on the network's thread but what
// the server's owner calls.
#pragma once

#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "desk/http/http_files.h"
#include "desk/http/http_guard.h"
#include "desk/http/http_server.h"
#include "desk/server/server.h"
#include "desk/server/server_checks.h"
#include "desk/server/server_control.h"
#include "desk/server/server_database.h"
#include "desk/server/server_sessions.h"

namespace orv {

class Server::Parts : private HttpHandler {
 public:
  Parts(ServerOptions options, Log& log);
  ~Parts() override { Stop(); }

  int Port() const { return network_.Port(); }
  std::string Address() const;
  void Sweep();
  void Stop();

 private:
  // Runs it on the network's thread and waits.
  template <class Work>
  auto OnNetwork(Work work) {
    std::packaged_task<decltype(work())()> task(std::move(work));
    auto done = task.get_future();
    network_.Post([&task] { task(); });
    return done.get();
  }

  // --- Its life (server.cpp).
  static void Prepare(const ServerOptions& options);
  Workers::Post Poster();
  HttpServer::Options NetworkOptions() const;
  SessionOptions OptionsOf(const Login& login) const;
  void Tick();
  void SweepNow();
  // Looks again and again at what other programs have changed in the database.
  void Watch();
  // `before` are the logins that were there when the database was asked: it may not have known the password
  // of a later one yet.
  void Watched(const std::vector<Login>& before, std::map<std::string, Standing> standings);
  // Folds the kept sums now and then, when nobody is at work.
  void Fold();
  Json Control(const Json& question);
  Json Answer(const Json& question);

  // --- What is asked of it (server_requests.cpp).
  void Finish(HttpResponse& response) override { guard_.Finish(response); }
  Asker Identify(const HttpRequest& request) override;
  // The file that a window was asked for; any other body is small.
  BodyPlan Receive(const HttpRequest& request, std::optional<uint64_t> size) override;
  void Handle(const HttpRequest& request, Respond respond) override;
  HttpResponse Upgrade(const HttpRequest& request) override;
  void Opened(const std::shared_ptr<Link>& link, const HttpRequest& request) override;
  void Message(const std::shared_ptr<Link>& link, std::string text, std::function<void()> next) override;
  void Closed(const std::shared_ptr<Link>& link) override { sessions_.Detach(link); }
  // A browser tells the origin of what changes something; other programs needn't.
  bool ChangeAccepted(const HttpRequest& request) const;
  const Login* LoginOf(const HttpRequest& request) const;
  // Null after the refusal was sent.
  const Login* RequireLogin(const HttpRequest& request, const Respond& respond) const;
  // Work for the database, done on a worker.
  void Job(const Respond& respond, std::function<HttpResponse()> work);
  // The same for who is logged in, once the database knows him still.
  void JobOf(const Login& login, const Respond& respond, std::function<HttpResponse()> work);
  // The body as an object, or nothing after the refusal was sent.
  std::optional<Json> Body(const HttpRequest& request, const Respond& respond) const;
  // Whoever stands before the login page may ask: the answer is kept for a while.
  void Companies(const HttpRequest&, const Respond& respond);
  void Me(const HttpRequest& request, const Respond& respond);
  void Preferences(const HttpRequest& request, const Respond& respond);
  void SetPreference(const HttpRequest& request, const Respond& respond);
  void FetchFile(const HttpRequest& request, const Respond& respond);

  // --- Who may be at the desk (server_access.cpp).
  // Nothing after the refusal was sent.
  std::optional<PasswordCheck> BeginCheck(const HttpRequest& request, const std::string& user,
                                          const Respond& respond);
  // Work with a password, in its turn; `done` makes the response of its result.
  template <class Work, class Done>
  void DoCheck(const PasswordCheck& check, const Respond& respond, Work work, Done done);
  void LogIn(const HttpRequest& request, const Respond& respond);
  HttpResponse LoggedIn(const ServerDatabase::Attempt& attempt, const PasswordCheck& check,
                        const std::string& company, const std::string& before);
  void KnowDevice(HttpResponse& response, const std::string& user, const std::string& seal) const;
  void LogOut(const HttpRequest& request, const Respond& respond);
  void ChangePassword(const HttpRequest& request, const Respond& respond);
  void OwnSessions(const HttpRequest& request, const Respond& respond);
  // One of the user's other sessions by its "id", all of them without one.
  void EndOwnSessions(const HttpRequest& request, const Respond& respond);
  Json Described(const Login& login) const;
  bool EndLogin(const std::string& id, std::string_view text);
  void EndOthers(const std::string& user, const std::string& id, const std::string& text);

  ServerOptions options_;
  Log& log_;
  ServerDatabase database_;
  HttpFiles files_;
  HttpGuard guard_;
  UploadSpace uploads_;
  Logins logins_;
  // The active users, as the desk has last seen them.
  std::map<std::string, Standing> standings_;
  HttpResponse companies_;
  Instant companies_until_{};
  bool stopping_ = false;
  // When the sums were folded last.
  Instant folded_{};
  HttpServer network_;
  // What works for the network goes before it.
  PasswordChecks checks_;
  Workers jobs_, folds_;
  ServerSessions sessions_;
  std::unique_ptr<ServerControl> control_;
  std::thread thread_;
};

}  // namespace orv
