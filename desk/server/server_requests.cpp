// What is asked of the desk on the network: which request means what, what the database answers to it, and
// the links of windows.
#include <array>

#include "desk/server/server_answers.h"
#include "desk/server/server_parts.h"
#include "desk/server/server_report.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::chrono::seconds kCompaniesFor{30};
constexpr std::string_view kReports = "/relatorio/", kAttachments = "/anexo/";
constexpr std::string_view kUpload = "/upload";

// "session" of "session=1f2e".
std::string SessionOf(const HttpRequest& request) {
  for (const std::string& part : Split(request.query, "&")) {
    if (part.starts_with("session=")) return part.substr(8);
  }
  return "";
}

}  // namespace

Asker Server::Parts::Identify(const HttpRequest& request) {
  return {guard_.NetworkOfAsker(request), LoginOf(request) != nullptr};
}

BodyPlan Server::Parts::Receive(const HttpRequest& request, std::optional<uint64_t> size) {
  if (request.path != kUpload || request.method != "POST") return {};
  const auto refused = [](HttpResponse response) { return BodyPlan{nullptr, std::move(response)}; };
  if (!guard_.HostAccepted(request)) return refused(Told(403, "Este nome não é o da mesa."));
  if (!ChangeAccepted(request)) return refused(Told(403, "O pedido não veio de uma página da mesa."));
  const Login* login = LoginOf(request);
  if (login == nullptr) return refused(NotLoggedIn());
  if (!size) return refused(Told(411, "O tamanho do arquivo não foi informado."));
  return sessions_.Receive(*login, SessionOf(request), *size);
}

void Server::Parts::Handle(const HttpRequest& request, Respond respond) {
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
  if (request.method == "GET" &&
      (request.path.starts_with(kReports) || request.path.starts_with(kAttachments))) {
    FetchFile(request, respond);
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

bool Server::Parts::ChangeAccepted(const HttpRequest& request) const {
  return request.Header("origin").empty() ? request.Header("sec-fetch-site").empty()
                                          : guard_.OriginAccepted(request);
}

const Login* Server::Parts::LoginOf(const HttpRequest& request) const {
  return logins_.Find(guard_.Token(request), options_.now());
}

const Login* Server::Parts::RequireLogin(const HttpRequest& request, const Respond& respond) const {
  const Login* login = LoginOf(request);
  if (login == nullptr) respond(NotLoggedIn());
  return login;
}

void Server::Parts::Job(const Respond& respond, std::function<HttpResponse()> work) {
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

void Server::Parts::JobOf(const Login& login, const Respond& respond, std::function<HttpResponse()> work) {
  Job(
      [this, respond, id = login.id](const HttpResponse& response) {
        if (response.status == 401) EndLogin(id, kCutOff);
        respond(response);
      },
      [this, user = login.user, seal = login.seal, work = std::move(work)] {
        const auto standings = database_.Standings();
        const auto found = standings.find(Lower(user));
        return found != standings.end() && seal->Holds(found->second.seal) ? work() : NotLoggedIn();
      });
}

std::optional<Json> Server::Parts::Body(const HttpRequest& request, const Respond& respond) const {
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

void Server::Parts::Companies(const HttpRequest&, const Respond& respond) {
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
      [this] { return Given(database_.Companies()); });
}

void Server::Parts::Me(const HttpRequest& request, const Respond& respond) {
  const Login* login = RequireLogin(request, respond);
  if (login == nullptr) return;
  JobOf(*login, respond, [this, user = login->user, company = login->company] {
    const auto me = database_.Me(user, company);
    return me ? Given(*me) : NotLoggedIn();
  });
}

void Server::Parts::Preferences(const HttpRequest& request, const Respond& respond) {
  const Login* login = RequireLogin(request, respond);
  if (login == nullptr) return;
  JobOf(*login, respond, [this, user = login->user] { return Given(database_.Preferences(user)); });
}

void Server::Parts::SetPreference(const HttpRequest& request, const Respond& respond) {
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
      database_.SetPreference(user, key, value);
    } catch (const DatabaseError&) {
      throw;
    } catch (const UserError& e) {
      return Told(400, e.what());
    }
    return Given(Json::Object());
  });
}

void Server::Parts::FetchFile(const HttpRequest& request, const Respond& respond) {
  const Login* login = RequireLogin(request, respond);
  if (login == nullptr) return;
  const bool attachment = request.path.starts_with(kAttachments);
  const std::string_view rest =
      std::string_view(request.path).substr((attachment ? kAttachments : kReports).size());
  const auto file = sessions_.FileOf(login->id, rest.substr(0, rest.find('/')));
  if (!file || file->attachment != attachment) {
    respond(Told(404, attachment ? "O anexo não está mais aqui. Peça-o de novo."
                                 : "O relatório não está mais aberto."));
    return;
  }
  JobOf(*login, respond, [file = *file] {
    return file.attachment ? AttachmentResponse(file.path, file.name) : ReportResponse(file.path, file.name);
  });
}

HttpResponse Server::Parts::Upgrade(const HttpRequest& request) {
  if (request.path != "/door") return Told(404, "Não encontrado.");
  if (!guard_.HostAccepted(request)) return Told(403, "Este nome não é o da mesa.");
  if (!guard_.OriginAccepted(request)) return Told(403, "O pedido não veio de uma página da mesa.");
  if (LoginOf(request) == nullptr) return NotLoggedIn();
  if (stopping_) return Told(503, "A mesa está sendo encerrada.");
  return {101, "", "", {}};
}

void Server::Parts::Opened(const std::shared_ptr<Link>& link, const HttpRequest& request) {
  const Login* login = LoginOf(request);
  if (login == nullptr || stopping_) {
    link->Close();
    return;
  }
  sessions_.Attach(*login, SessionOf(request), link);
}

void Server::Parts::Message(const std::shared_ptr<Link>& link, std::string text, std::function<void()> next) {
  sessions_.Message(link, std::move(text), std::move(next));
}

}  // namespace orv
