#include "desk/server.h"

#include <sodium.h>

#include <array>
#include <future>
#include <thread>

#include "desk/folders.h"
#include "desk/http_files.h"
#include "desk/http_guard.h"
#include "desk/http_report.h"
#include "desk/http_server.h"
#include "desk/server_control.h"
#include "desk/server_house.h"
#include "desk/server_sessions.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::chrono::seconds kSweepEvery{5};
constexpr std::chrono::seconds kCompaniesFor{30};
// A hash takes 64 MB and half a second of a processor.
constexpr int kPasswordThreads = 2;
constexpr std::size_t kMostAttempts = 32;
constexpr std::size_t kMostJobs = 256;
constexpr std::string_view kReports = "/relatorio/";
constexpr std::string_view kUpload = "/upload";
constexpr std::size_t kMaxUser = 200, kMaxPassword = 1024;  // bytes

HttpResponse Told(int status, std::string_view text) {
  return {status, "application/json; charset=utf-8", Json{{"text", text}}.Text(), {}};
}

HttpResponse Given(const Json& json) { return {200, "application/json; charset=utf-8", json.Text(), {}}; }

HttpResponse NotLoggedIn() { return Told(401, "Entre com seu usuário e sua senha."); }

// A member that is a text of bounded length, nothing otherwise.
std::optional<std::string> Member(const Json& json, std::string_view name, std::size_t most) {
  const Json& member = json[name];
  if (!member.IsString() || member.String().size() > most || !ValidUtf8(member.String())) return std::nullopt;
  return member.String();
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
        passwords_(kPasswordThreads, kMostAttempts),
        jobs_(1, kMostJobs),
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
    network_.Post([this] { Tick(); });
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
    if (thread_.joinable()) OnNetwork([this] { SweepNow(); });
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
    static constexpr std::array<Route, 6> kRoutes{{
        {"POST", "/login", &Parts::LogIn},
        {"POST", "/logout", &Parts::LogOut},
        {"GET", "/companies", &Parts::Companies},
        {"GET", "/me", &Parts::Me},
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

  // Work for the database; its answer goes back over the network's thread.
  void Job(const Respond& respond, std::function<HttpResponse()> work) {
    const bool taken = jobs_.Do([this, respond, work = std::move(work)] {
      HttpResponse response;
      try {
        response = work();
      } catch (const std::exception& e) {
        log_.Write("request failed", {{"text", Masked(e.what())}});
        response = Told(503, "O banco de dados não responde. Tente de novo em instantes.");
      }
      network_.Post([respond, response = std::move(response)] { respond(response); });
    });
    if (!taken) respond(Told(503, "A mesa está muito ocupada. Tente de novo em instantes."));
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
    const std::string address = guard_.Asker(request);
    if (const auto wait = throttle_.Begin(*user, NetworkOf(address), options_.now())) {
      const std::string seconds = std::to_string(wait->count());
      HttpResponse response =
          Told(429, "Muitas tentativas. Espere " + seconds + (seconds == "1" ? " segundo" : " segundos") +
                        " e tente de novo.");
      response.headers.emplace_back("Retry-After", seconds);
      log_.Write("login slowed down", {{"address", address}});
      respond(std::move(response));
      return;
    }
    const bool taken = passwords_.Do([this, user = *user, password = *password, company = *company, address,
                                      respond, before = guard_.Token(request)] {
      std::optional<ServerHouse::Attempt> attempt;
      try {
        attempt = house_.TryLogin(user, password, company, address);
      } catch (const std::exception& e) {
        log_.Write("login failed", {{"address", address}, {"text", Masked(e.what())}});
      }
      network_.Post([=, this] { respond(LoggedIn(attempt, user, company, address, before)); });
    });
    if (!taken) respond(Told(503, "A mesa está muito ocupada. Tente de novo em instantes."));
  }

  HttpResponse LoggedIn(const std::optional<ServerHouse::Attempt>& attempt, const std::string& typed,
                        const std::string& company, const std::string& address, const std::string& before) {
    if (!attempt) return Told(503, "O banco de dados não responde. Tente de novo em instantes.");
    if (attempt->verdict == ServerHouse::Verdict::Refused) {
      log_.Write("login refused", {{"user", attempt->user}, {"address", address}});
      return Told(401, "Usuário ou senha inválidos.");
    }
    throttle_.Succeeded(typed, NetworkOf(address));
    if (attempt->verdict == ServerHouse::Verdict::NoCompany) return Told(400, "A empresa não existe.");
    if (stopping_) return Told(503, "A mesa está sendo encerrada.");

    if (const Login* old = logins_.Find(before, options_.now())) {
      EndLogin(std::string(old->id), "Foi feito outro login neste navegador.");
    }
    const Logins::Added added = logins_.Add(attempt->user, company, address, options_.now());
    if (!added.dropped.empty()) {
      sessions_.EndLogin(added.dropped, "A sessão deu lugar a outro login do mesmo usuário.");
    }
    log_.Write("login",
               {{"user", attempt->user}, {"company", company}, {"address", address}, {"id", added.id}});
    HttpResponse response = Given(Json::Object());
    response.headers.emplace_back("Set-Cookie", guard_.SetCookie(added.token));
    return response;
  }

  bool EndLogin(const std::string& id, const std::string& text) {
    if (!logins_.Remove(id)) return false;
    sessions_.EndLogin(id, text);
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
    const Login* login = LoginOf(request);
    if (login == nullptr) {
      respond(NotLoggedIn());
      return;
    }
    Job(
        [this, respond, id = login->id](const HttpResponse& response) {
          if (response.status == 401) EndLogin(id, "O usuário foi desativado.");
          respond(response);
        },
        [this, user = login->user, company = login->company] {
          const auto me = house_.Me(user, company);
          return me ? Given(*me) : NotLoggedIn();
        });
  }

  void Preferences(const HttpRequest& request, const Respond& respond) {
    const Login* login = LoginOf(request);
    if (login == nullptr) {
      respond(NotLoggedIn());
      return;
    }
    Job(respond, [this, user = login->user] { return Given(house_.Preferences(user)); });
  }

  void SetPreference(const HttpRequest& request, const Respond& respond) {
    const Login* login = LoginOf(request);
    if (login == nullptr) {
      respond(NotLoggedIn());
      return;
    }
    const auto body = Body(request, respond);
    if (!body) return;
    const auto key = Member(*body, "key", 400);
    const auto value = Member(*body, "value", 8000);
    if (!key || !value) {
      respond(Told(400, "Informe \"key\" e \"value\"."));
      return;
    }
    Job(respond, [this, user = login->user, key = *key, value = *value] {
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
    const Login* login = LoginOf(request);
    if (login == nullptr) {
      respond(NotLoggedIn());
      return;
    }
    const std::string_view rest = std::string_view(request.path).substr(kReports.size());
    const std::size_t slash = rest.find('/');
    const std::filesystem::path file = sessions_.ReportOf(login->id, rest.substr(0, slash));
    const std::string name(slash == std::string_view::npos ? "" : rest.substr(slash + 1));
    if (file.empty()) {
      respond(Told(404, "O relatório não está mais aberto."));
      return;
    }
    Job(respond, [file, name] { return ReportResponse(file, name); });
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

  Json Control(const Json& question) {
    return OnNetwork([&] { return Answer(question); });
  }

  Json Answer(const Json& question) {
    if (question["do"] == Json("list")) {
      const Instant now = options_.now();
      Json::Array sessions;
      for (const Login& login : logins_.All()) {
        sessions.push_back(Json{{"id", login.id},
                                {"user", login.user},
                                {"company", login.company},
                                {"address", login.address},
                                {"minutes", Minutes(now - login.since)},
                                {"idle", Minutes(now - login.used)},
                                {"windows", static_cast<int64_t>(sessions_.CountOf(login.id))}});
      }
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
  LoginThrottle throttle_;
  HttpResponse companies_;
  Instant companies_until_{};
  bool stopping_ = false;
  HttpServer network_;
  // What works for the network goes before it.
  Workers passwords_;
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
