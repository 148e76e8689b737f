#include "desk/server/server.h"

#include <sodium.h>

#include <array>
#include <future>
#include <thread>

#include "desk/folders.h"
#include "desk/http/http_files.h"
#include "desk/http/http_guard.h"
#include "desk/http/http_server.h"
#include "desk/server/server_checks.h"
#include "desk/server/server_control.h"
#include "desk/server/server_house.h"
#include "desk/server/server_report.h"
#include "desk/server/server_sessions.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::chrono::seconds kSweepEvery{5};
constexpr std::chrono::seconds kCompaniesFor{30};
// How soon a desk sees what was changed elsewhere in users and rights; an action looks for itself.
constexpr std::chrono::seconds kWatchEvery{2};
constexpr std::string_view kCutOff = "Seu acesso foi retirado ou sua senha foi trocada. Entre de novo.";
constexpr std::size_t kMostJobs = 256;
constexpr std::string_view kReports = "/relatorio/";
constexpr std::string_view kUpload = "/upload";
constexpr std::size_t kMaxUser = 200, kMaxPassword = 1024;  // bytes

HttpResponse Told(int status, std::string_view text) {
  return {status, "application/json; charset=utf-8", Json{{"text", text}}.Text(), {}};
}

HttpResponse Given(const Json& json) { return {200, "application/json; charset=utf-8", json.Text(), {}}; }

HttpResponse TooBusy() { return Told(503, "A mesa está muito ocupada. Tente de novo em instantes."); }
HttpResponse NoDatabase() { return Told(503, "O banco de dados não responde. Tente de novo em instantes."); }
HttpResponse NotLoggedIn() { return Told(401, "Entre com seu usuário e sua senha."); }

// A member that is a text of bounded length, nothing otherwise.
std::optional<std::string> Member(const Json& json, std::string_view name, std::size_t most) {
  const Json& member = json[name];
  if (!member.IsString() || member.String().size() > most || !ValidUtf8(member.String())) return std::nullopt;
  return member.String();
}

HttpResponse SlowedDown(std::chrono::seconds wait) {
  const std::string seconds = std::to_string(wait.count());
  HttpResponse response = Told(429, "Muitas tentativas. Espere " + seconds +
                                        (seconds == "1" ? " segundo" : " segundos") + " e tente de novo.");
  response.headers.emplace_back("Retry-After", seconds);
  return response;
}

int64_t Minutes(std::chrono::steady_clock::duration time) {
  return std::chrono::duration_cast<std::chrono::minutes>(time).count();
}

// "session" of "session=1f2e".
std::string SessionOf(const HttpRequest& request) {
  for (const std::string& part : Split(request.query, "&")) {
    if (part.starts_with("session=")) return part.substr(8);
  }
  return "";
}

}  // namespace

class Server::Parts : private HttpHandler {
  // Runs it on the network's thread and waits.
  template <class Work>
  auto OnNetwork(Work work) {
    std::packaged_task<decltype(work())()> task(std::move(work));
    auto done = task.get_future();
    network_.Post([&task] { task(); });
    return done.get();
  }

 public:
  Parts(ServerOptions options, Log& log)
      : options_((Prepare(options), std::move(options))),
        log_(log),
        house_(options_.database, options_.clock, options_.cost),
        files_(options_.web),
        guard_(!options_.certificate.empty(), options_.public_address, options_.proxy, options_.subdomains),
        uploads_(options_.max_uploads),
        logins_({options_.idle, options_.absolute, options_.windows}),
        network_(NetworkOptions(), *this),
        checks_(options_.data / "devices.key", Poster()),
        jobs_(1, kMostJobs, Poster()),
        sessions_({options_.grace, options_.windows, options_.messages_a_second},
                  {[this](const Login& login) { return OptionsOf(login); },
                   [this](const std::string& login) { logins_.Touch(login, options_.now()); },
                   [this] { return options_.now(); }},
                  log_, network_, jobs_),
        control_(std::make_unique<ServerControl>(
            options_.data, [this](const Json& question) { return Control(question); })) {
    // The folder is this desk's alone from here on: what stands there a desk that was killed has left.
    std::error_code error;
    std::filesystem::remove_all(ScratchFolder(options_.data), error);
    thread_ = std::thread([this] { network_.Run(); });
    network_.Post([this] {
      Tick();
      Watch();
    });
    log_.Write("serving", {{"address", Address()}});
  }
  ~Parts() override { Stop(); }

  int Port() const { return network_.Port(); }
  std::string Address() const {
    if (!options_.public_address.empty()) return options_.public_address;
    const bool six = options_.address.find(':') != std::string::npos;
    return std::string(options_.certificate.empty() ? "http://" : "https://") +
           (six ? "[" + options_.address + "]" : options_.address) + ":" + std::to_string(Port());
  }

  void Sweep() {
    if (!thread_.joinable()) return;
    const auto before = OnNetwork([this] { return logins_.All(); });
    auto standings = house_.Standings();
    OnNetwork([&] {
      SweepNow();
      Watched(before, std::move(standings));
    });
  }

  void Stop() {
    if (!thread_.joinable()) return;
    control_.reset();
    network_.Post([this] {
      stopping_ = true;
      sessions_.OnGone([this] {
        if (sessions_.Count() == 0) network_.Stop();
      });
      if (sessions_.Count() == 0) network_.Stop();
      sessions_.EndAll("A mesa está sendo encerrada.");
    });
    thread_.join();
    log_.Write("stopped");
  }

 private:
  static void Prepare(const ServerOptions& options) {
    if (sodium_init() < 0) throw UserError("A biblioteca de criptografia não pôde ser iniciada.");
    std::error_code error;
    if (std::filesystem::create_directories(options.data, error)) {
      std::filesystem::permissions(options.data, std::filesystem::perms::owner_all, error);
    }
    if (!std::filesystem::is_directory(options.data)) {
      throw UserError("A pasta de dados " + options.data.string() + " não pode ser usada.");
    }
  }

  Workers::Post Poster() {
    return [this](std::function<void()> work) { network_.Post(std::move(work)); };
  }

  HttpServer::Options NetworkOptions() const {
    HttpServer::Options network;
    network.address = options_.address;
    network.port = options_.port;
    network.certificate = options_.certificate;
    network.key = options_.key;
    network.request_time = options_.request_time;
    network.max_of_one = options_.connections;
    network.max_unknown_of_one = std::max<std::size_t>(options_.connections / 8, 1);
    return network;
  }

  SessionOptions OptionsOf(const Login& login) const {
    SessionOptions session;
    session.database = options_.database;
    session.user = login.user;
    session.company = login.company;
    session.seal = login.seal;
    session.clock = options_.clock;
    session.folder = UserFolder(options_.data, login.user, login.company);
    session.scratch = ScratchFolder(options_.data);
    session.uploads = uploads_;
    session.templates = TemplatesFolder(options_.data);
    session.max_upload = options_.max_upload;
    session.max_rows = options_.max_rows;
    return session;
  }

  // --- Requests.

  void Finish(HttpResponse& response) override { guard_.Finish(response); }

  Asker Identify(const HttpRequest& request) override {
    return {guard_.AskersNetwork(request), LoginOf(request) != nullptr};
  }

  // The file that a window was asked for; any other body is small.
  BodyPlan Receive(const HttpRequest& request, std::optional<uint64_t> size) override {
    if (request.path != kUpload || request.method != "POST") return {};
    const auto refused = [](HttpResponse response) { return BodyPlan{nullptr, std::move(response)}; };
    if (!guard_.HostAccepted(request)) return refused(Told(403, "Este nome não é o da mesa."));
    if (!ChangeAccepted(request)) return refused(Told(403, "O pedido não veio de uma página da mesa."));
    const Login* login = LoginOf(request);
    if (login == nullptr) return refused(NotLoggedIn());
    if (!size) return refused(Told(411, "O tamanho do arquivo não foi informado."));
    return sessions_.Receive(*login, SessionOf(request), *size);
  }

  void Handle(const HttpRequest& request, Respond respond) override {
    if (!guard_.HostAccepted(request)) {
      respond(Told(403, "Este nome não é o da mesa."));
      return;
    }
    struct Route {
      std::string_view method, path;
      void (Parts::*handle)(const HttpRequest&, const Respond&);
    };
    static constexpr std::array<Route, 9> kRoutes{{
        {"POST", "/login", &Parts::LogIn},
        {"POST", "/logout", &Parts::LogOut},
        {"GET", "/companies", &Parts::Companies},
        {"GET", "/me", &Parts::Me},
        {"POST", "/password", &Parts::ChangePassword},
        {"GET", "/sessions", &Parts::OwnSessions},
        {"POST", "/sessions", &Parts::EndOwnSessions},
        {"GET", "/preferences", &Parts::Preferences},
        {"PUT", "/preferences", &Parts::SetPreference},
    }};
    std::string allowed;
    for (const Route& route : kRoutes) {
      if (route.path != request.path) continue;
      allowed += (allowed.empty() ? "" : ", ") + std::string(route.method);
      if (route.method != request.method) continue;
      if (route.method != "GET" && !ChangeAccepted(request)) {
        respond(Told(403, "O pedido não veio de uma página da mesa."));
      } else {
        (this->*route.handle)(request, respond);
      }
      return;
    }
    if (request.method == "GET" && request.path.starts_with(kReports)) {
      FetchReport(request, respond);
      return;
    }
    if (allowed.empty()) allowed = "GET, HEAD";
    const bool reads = request.method == "GET" || request.method == "HEAD";
    if (!reads || allowed != "GET, HEAD") {
      HttpResponse response = Told(405, "O pedido não existe.");
      response.headers.emplace_back("Allow", allowed);
      respond(std::move(response));
      return;
    }
    respond(files_.Get(request));
  }

  // A browser tells the origin of what changes something; other programs needn't.
  bool ChangeAccepted(const HttpRequest& request) const {
    return request.Header("origin").empty() ? request.Header("sec-fetch-site").empty()
                                            : guard_.OriginAccepted(request);
  }

  const Login* LoginOf(const HttpRequest& request) const {
    return logins_.Find(guard_.Token(request), options_.now());
  }

  // Null after the refusal was sent.
  const Login* RequireLogin(const HttpRequest& request, const Respond& respond) const {
    const Login* login = LoginOf(request);
    if (login == nullptr) respond(NotLoggedIn());
    return login;
  }

  // Work for the database, done on a worker.
  void Job(const Respond& respond, std::function<HttpResponse()> work) {
    const auto guarded = [this, work = std::move(work)] {
      try {
        return work();
      } catch (const std::exception& e) {
        log_.Write("request failed", {{"text", Masked(e.what())}});
        throw;
      }
    };
    const bool taken = jobs_.Do(guarded, [respond](std::optional<HttpResponse> response) {
      respond(response ? std::move(*response) : NoDatabase());
    });
    if (!taken) respond(TooBusy());
  }

  // The same for who is logged in, once the database knows him still.
  void JobOf(const Login& login, const Respond& respond, std::function<HttpResponse()> work) {
    Job(
        [this, respond, id = login.id](const HttpResponse& response) {
          if (response.status == 401) EndLogin(id, kCutOff);
          respond(response);
        },
        [this, user = login.user, seal = login.seal, work = std::move(work)] {
          const auto standings = house_.Standings();
          const auto found = standings.find(Lower(user));
          return found != standings.end() && seal->Holds(found->second.seal) ? work() : NotLoggedIn();
        });
  }

  // The body as an object, or nothing after the refusal was sent.
  std::optional<Json> Body(const HttpRequest& request, const Respond& respond) const {
    if (!request.Header("content-type").starts_with("application/json")) {
      respond(Told(415, "Esperava-se application/json."));
      return std::nullopt;
    }
    try {
      Json body = Json::Parse(request.body);
      if (body.IsObject()) return body;
    } catch (const JsonError&) {
    }
    respond(Told(400, "O pedido não foi entendido."));
    return std::nullopt;
  }

  // Nothing after the refusal was sent.
  std::optional<PasswordCheck> BeginCheck(const HttpRequest& request, const std::string& user,
                                          const Respond& respond) {
    const auto known = standings_.find(Lower(Trim(user)));
    const auto begun = checks_.Begin(user, guard_.Asker(request), guard_.DeviceNote(request, user),
                                     known == standings_.end() ? "" : known->second.seal,
                                     options_.clock.Today(), options_.now());
    if (const auto* check = std::get_if<PasswordCheck>(&begun)) return *check;
    log_.Write("login slowed down", {{"address", guard_.Asker(request)}});
    respond(SlowedDown(std::get<std::chrono::seconds>(begun)));
    return std::nullopt;
  }

  // Work with a password, in its turn; `done` makes the response of its result.
  template <class Work, class Done>
  void DoCheck(const PasswordCheck& check, const Respond& respond, Work work, Done done) {
    const auto guarded = [this, work = std::move(work), address = check.address] {
      try {
        return work();
      } catch (const std::exception& e) {
        log_.Write("login failed", {{"address", address}, {"text", Masked(e.what())}});
        throw;
      }
    };
    const bool taken = checks_.Do(check, guarded, [respond, done = std::move(done)](auto result) {
      respond(result ? done(*result) : NoDatabase());
    });
    if (!taken) respond(TooBusy());
  }

  void LogIn(const HttpRequest& request, const Respond& respond) {
    const auto body = Body(request, respond);
    if (!body) return;
    const auto user = Member(*body, "user", kMaxUser);
    const auto password = Member(*body, "password", kMaxPassword);
    const auto company = Member(*body, "company", 4);
    if (!user || !password || !company) {
      respond(Told(400, "Informe usuário, senha e empresa."));
      return;
    }
    if (company->empty()) {
      respond(Told(400, "Escolha a empresa."));
      return;
    }
    const auto check = BeginCheck(request, *user, respond);
    if (!check) return;
    DoCheck(
        *check, respond,
        [this, user = *user, password = *password, company = *company, address = check->address] {
          return house_.TryLogin(user, password, company, address);
        },
        [this, check = *check, company = *company, before = guard_.Token(request)](
            const ServerHouse::Attempt& attempt) { return LoggedIn(attempt, check, company, before); });
  }

  HttpResponse LoggedIn(const ServerHouse::Attempt& attempt, const PasswordCheck& check,
                        const std::string& company, const std::string& before) {
    if (attempt.verdict == ServerHouse::Verdict::Refused) {
      log_.Write("login refused", {{"user", attempt.user}, {"address", check.address}});
      return Told(401, "Usuário ou senha inválidos.");
    }
    checks_.Succeeded(check);
    if (attempt.verdict == ServerHouse::Verdict::NoCompany) return Told(400, "A empresa não existe.");
    if (stopping_) return Told(503, "A mesa está sendo encerrada.");

    if (const Login* old = logins_.Find(before, options_.now())) {
      EndLogin(std::string(old->id), "Foi feito outro login neste navegador.");
    }
    const Logins::Added added =
        logins_.Add(attempt.user, company, check.address, options_.now(), attempt.seal);
    if (!added.dropped.empty()) {
      sessions_.EndLogin(added.dropped, "A sessão deu lugar a outro login do mesmo usuário.");
    }
    log_.Write("login",
               {{"user", attempt.user}, {"company", company}, {"address", check.address}, {"id", added.id}});
    HttpResponse response = Given(Json::Object());
    response.headers.emplace_back("Set-Cookie", guard_.SetCookie(added.token));
    KnowDevice(response, attempt.user, attempt.seal);
    return response;
  }

  void KnowDevice(HttpResponse& response, const std::string& user, const std::string& seal) const {
    const std::string note = checks_.Devices().Note(user, seal, options_.clock.Today());
    response.headers.emplace_back("Set-Cookie", guard_.SetDeviceNote(user, note, KnownDevices::kDays));
  }

  // --- One's own password and sessions.

  void ChangePassword(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    const auto body = Body(request, respond);
    if (!body) return;
    const auto present = Member(*body, "present", kMaxPassword);
    const auto fresh = Member(*body, "new", kMaxPassword);
    if (!present || !fresh) {
      respond(Told(400, "Informe a senha atual e a nova."));
      return;
    }
    const auto check = BeginCheck(request, login->user, respond);
    if (!check) return;
    struct Outcome {
      std::optional<std::string> seal;
      std::string refusal;
    };
    DoCheck(
        *check, respond,
        [this, login = *login, address = check->address, present = *present, fresh = *fresh]() -> Outcome {
          try {
            return {house_.ChangePassword(login.user, login.company, address, present, fresh, *login.seal),
                    ""};
          } catch (const DatabaseError&) {
            throw;
          } catch (const UserError& e) {
            return {"", e.what()};
          }
        },
        [this, check = *check, id = login->id](const Outcome& outcome) {
          if (!outcome.seal) return Told(403, "A senha atual não confere.");
          checks_.Succeeded(check);
          if (!outcome.refusal.empty()) return Told(400, outcome.refusal);
          log_.Write("password changed", {{"user", check.user}, {"address", check.address}});
          EndOthers(check.user, id, "Sua senha foi trocada em outra sessão. Entre de novo.");
          HttpResponse response = Given(Json::Object());
          KnowDevice(response, check.user, *outcome.seal);
          return response;
        });
  }

  void EndOthers(const std::string& user, const std::string& id, const std::string& text) {
    for (const Login& login : logins_.All()) {
      if (SameText(login.user, user) && login.id != id) EndLogin(login.id, text);
    }
  }

  void OwnSessions(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    Json::Array sessions;
    for (const Login& one : logins_.All()) {
      if (!SameText(one.user, login->user)) continue;
      Json session = Described(one);
      session.Set("own", one.id == login->id);
      sessions.push_back(std::move(session));
    }
    respond(Given({{"sessions", std::move(sessions)}}));
  }

  // One of the user's other sessions by its "id", all of them without one.
  void EndOwnSessions(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    const auto body = Body(request, respond);
    if (!body) return;
    const std::string own = login->id, user = login->user;
    const std::string text = "A sessão foi encerrada pelo próprio usuário.";
    if (!body->Has("id")) {
      EndOthers(user, own, text);
    } else {
      const auto id = Member(*body, "id", 64);
      const Login* other = id && *id != own ? logins_.FindId(*id) : nullptr;
      // Somebody else's is none. One that has gone meanwhile is ended as was wished.
      if (other != nullptr && SameText(other->user, user)) EndLogin(*id, text);
    }
    log_.Write("own sessions ended", {{"user", user}, {"id", own}});
    respond(Given(Json::Object()));
  }

  Json Described(const Login& login) const {
    const Instant now = options_.now();
    return {{"id", login.id},
            {"user", login.user},
            {"company", login.company},
            {"address", login.address},
            {"minutes", Minutes(now - login.since)},
            {"idle", Minutes(now - login.used)},
            {"windows", static_cast<int64_t>(sessions_.CountOf(login.id))}};
  }

  bool EndLogin(const std::string& id, std::string_view text) {
    if (!logins_.Remove(id)) return false;
    sessions_.EndLogin(id, std::string(text));
    return true;
  }

  void LogOut(const HttpRequest& request, const Respond& respond) {
    if (const Login* login = LoginOf(request)) {
      log_.Write("logout", {{"user", login->user}, {"id", login->id}});
      EndLogin(std::string(login->id), "A sessão foi encerrada.");
    }
    HttpResponse response = Given(Json::Object());
    response.headers.emplace_back("Set-Cookie", guard_.ClearCookie());
    respond(std::move(response));
  }

  // Whoever stands before the login page may ask: the answer is kept for a while.
  void Companies(const HttpRequest&, const Respond& respond) {
    if (!companies_.body.empty() && options_.now() < companies_until_) {
      respond(companies_);
      return;
    }
    Job(
        [this, respond](const HttpResponse& response) {
          if (response.status == 200) {
            companies_ = response;
            companies_until_ = options_.now() + kCompaniesFor;
          }
          respond(response);
        },
        [this] { return Given(house_.Companies()); });
  }

  void Me(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    JobOf(*login, respond, [this, user = login->user, company = login->company] {
      const auto me = house_.Me(user, company);
      return me ? Given(*me) : NotLoggedIn();
    });
  }

  void Preferences(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    JobOf(*login, respond, [this, user = login->user] { return Given(house_.Preferences(user)); });
  }

  void SetPreference(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    const auto body = Body(request, respond);
    if (!body) return;
    const auto key = Member(*body, "key", 400);
    const auto value = Member(*body, "value", 8000);
    if (!key || !value) {
      respond(Told(400, "Informe \"key\" e \"value\"."));
      return;
    }
    JobOf(*login, respond, [this, user = login->user, key = *key, value = *value] {
      try {
        house_.SetPreference(user, key, value);
      } catch (const DatabaseError&) {
        throw;
      } catch (const UserError& e) {
        return Told(400, e.what());
      }
      return Given(Json::Object());
    });
  }

  void FetchReport(const HttpRequest& request, const Respond& respond) {
    const Login* login = RequireLogin(request, respond);
    if (login == nullptr) return;
    const std::string_view rest = std::string_view(request.path).substr(kReports.size());
    const std::size_t slash = rest.find('/');
    const std::filesystem::path file = sessions_.ReportOf(login->id, rest.substr(0, slash));
    const std::string name(slash == std::string_view::npos ? "" : rest.substr(slash + 1));
    if (file.empty()) {
      respond(Told(404, "O relatório não está mais aberto."));
      return;
    }
    JobOf(*login, respond, [file, name] { return ReportResponse(file, name); });
  }

  // --- The door.

  HttpResponse Upgrade(const HttpRequest& request) override {
    if (request.path != "/door") return Told(404, "Não encontrado.");
    if (!guard_.HostAccepted(request)) return Told(403, "Este nome não é o da mesa.");
    if (!guard_.OriginAccepted(request)) return Told(403, "O pedido não veio de uma página da mesa.");
    if (LoginOf(request) == nullptr) return NotLoggedIn();
    if (stopping_) return Told(503, "A mesa está sendo encerrada.");
    return {101, "", "", {}};
  }

  void Opened(const std::shared_ptr<Link>& link, const HttpRequest& request) override {
    const Login* login = LoginOf(request);
    if (login == nullptr || stopping_) {
      link->Close();
      return;
    }
    sessions_.Attach(*login, SessionOf(request), link);
  }

  void Message(const std::shared_ptr<Link>& link, std::string text, std::function<void()> next) override {
    sessions_.Message(link, std::move(text), std::move(next));
  }

  void Closed(const std::shared_ptr<Link>& link) override { sessions_.Detach(link); }

  // --- Time, and the administrator.

  void Tick() {
    SweepNow();
    network_.After(kSweepEvery, [this] { Tick(); });
  }

  void SweepNow() {
    for (const Login& login : logins_.TakeExpired(options_.now())) {
      log_.Write("login expired", {{"user", login.user}, {"id", login.id}});
      sessions_.EndLogin(login.id,
                         "A sessão terminou por falta de uso ou por ter chegado ao seu limite de tempo.");
    }
    sessions_.Sweep();
  }

  // Looks again and again at what other programs have changed in the database.
  void Watch() {
    const auto again = [this] { network_.After(kWatchEvery, [this] { Watch(); }); };
    const bool taken = jobs_.Do(
        [this] { return house_.Standings(); },
        [this, again, before = logins_.All()](std::optional<std::map<std::string, Standing>> standings) {
          // A database that doesn't answer lets nobody act either.
          if (standings) Watched(before, std::move(*standings));
          again();
        });
    if (!taken) again();
  }

  // `before` are the logins that were there when the database was asked: it may not have known the password
  // of a later one yet.
  void Watched(const std::vector<Login>& before, std::map<std::string, Standing> standings) {
    for (const Login& login : before) {
      const std::string user = Lower(login.user);
      const auto now = standings.find(user);
      if (now == standings.end() || !login.seal->Holds(now->second.seal)) {
        if (EndLogin(login.id, kCutOff)) {
          log_.Write("login cut off", {{"user", login.user}, {"id", login.id}});
        }
      } else if (const auto last = standings_.find(user);
                 last == standings_.end() || !(last->second == now->second)) {
        sessions_.Recheck(login.id);
      }
    }
    standings_ = std::move(standings);
  }

  Json Control(const Json& question) {
    return OnNetwork([&] { return Answer(question); });
  }

  Json Answer(const Json& question) {
    if (question["do"] == Json("list")) {
      Json::Array sessions;
      for (const Login& login : logins_.All()) sessions.push_back(Described(login));
      return {{"sessions", std::move(sessions)}};
    }
    if (question["do"] == Json("end") && question["id"].IsString()) {
      const bool ended = EndLogin(question["id"].String(), "A sessão foi encerrada pelo administrador.");
      if (ended) log_.Write("login ended by administrator", {{"id", question["id"]}});
      return {{"ended", ended}};
    }
    throw UserError("O pedido não existe.");
  }

  ServerOptions options_;
  Log& log_;
  ServerHouse house_;
  HttpFiles files_;
  HttpGuard guard_;
  UploadSpace uploads_;
  Logins logins_;
  // The active users, as the desk has last seen them.
  std::map<std::string, Standing> standings_;
  HttpResponse companies_;
  Instant companies_until_{};
  bool stopping_ = false;
  HttpServer network_;
  // What works for the network goes before it.
  PasswordChecks checks_;
  Workers jobs_;
  ServerSessions sessions_;
  std::unique_ptr<ServerControl> control_;
  std::thread thread_;
};

Server::Server(ServerOptions options, Log& log) : parts_(std::make_unique<Parts>(std::move(options), log)) {}
Server::~Server() = default;

int Server::Port() const { return parts_->Port(); }
std::string Server::Address() const { return parts_->Address(); }
void Server::Sweep() { parts_->Sweep(); }
void Server::Stop() { parts_->Stop(); }

}  // namespace orv
