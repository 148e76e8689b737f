// Who may be at the desk: logging in and out, one's own password, one's own sessions.
#include "desk/server/server_answers.h"
#include "desk/server/server_parts.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMaxUser = 200, kMaxPassword = 1024;  // bytes

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

}  // namespace

std::optional<PasswordCheck> Server::Parts::BeginCheck(const HttpRequest& request, const std::string& user,
                                                       const Respond& respond) {
  const auto known = standings_.find(Lower(Trim(user)));
  const auto begun = checks_.Begin(user, guard_.AddressOfAsker(request), guard_.DeviceNote(request, user),
                                   known == standings_.end() ? "" : known->second.seal,
                                   options_.clock.Today(), options_.now());
  if (const auto* check = std::get_if<PasswordCheck>(&begun)) return *check;
  log_.Write("login slowed down", {{"address", guard_.AddressOfAsker(request)}});
  respond(SlowedDown(std::get<std::chrono::seconds>(begun)));
  return std::nullopt;
}

template <class Work, class Done>
void Server::Parts::DoCheck(const PasswordCheck& check, const Respond& respond, Work work, Done done) {
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

void Server::Parts::LogIn(const HttpRequest& request, const Respond& respond) {
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
        return database_.TryLogin(user, password, company, address);
      },
      [this, check = *check, company = *company, before = guard_.Token(request)](
          const ServerDatabase::Attempt& attempt) { return LoggedIn(attempt, check, company, before); });
}

HttpResponse Server::Parts::LoggedIn(const ServerDatabase::Attempt& attempt, const PasswordCheck& check,
                                     const std::string& company, const std::string& before) {
  if (attempt.verdict == ServerDatabase::Verdict::Refused) {
    log_.Write("login refused", {{"user", attempt.user}, {"address", check.address}});
    return Told(401, "Usuário ou senha inválidos.");
  }
  checks_.Succeeded(check);
  if (attempt.verdict == ServerDatabase::Verdict::NoCompany) return Told(400, "A empresa não existe.");
  if (stopping_) return Told(503, "A mesa está sendo encerrada.");

  if (const Login* old = logins_.Find(before, options_.now())) {
    EndLogin(std::string(old->id), "Foi feito outro login neste navegador.");
  }
  const Logins::Added added = logins_.Add(attempt.user, company, check.address, options_.now(), attempt.seal);
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

void Server::Parts::KnowDevice(HttpResponse& response, const std::string& user,
                               const std::string& seal) const {
  const std::string note = checks_.Devices().Note(user, seal, options_.clock.Today());
  response.headers.emplace_back("Set-Cookie", guard_.SetDeviceNote(user, note, KnownDevices::kDays));
}

void Server::Parts::LogOut(const HttpRequest& request, const Respond& respond) {
  if (const Login* login = LoginOf(request)) {
    log_.Write("logout", {{"user", login->user}, {"id", login->id}});
    EndLogin(std::string(login->id), "A sessão foi encerrada.");
  }
  HttpResponse response = Given(Json::Object());
  response.headers.emplace_back("Set-Cookie", guard_.ClearCookie());
  respond(std::move(response));
}

void Server::Parts::ChangePassword(const HttpRequest& request, const Respond& respond) {
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
          return {database_.ChangePassword(login.user, login.company, address, present, fresh, *login.seal),
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

void Server::Parts::OwnSessions(const HttpRequest& request, const Respond& respond) {
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

void Server::Parts::EndOwnSessions(const HttpRequest& request, const Respond& respond) {
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

Json Server::Parts::Described(const Login& login) const {
  const Instant now = options_.now();
  return {{"id", login.id},
          {"user", login.user},
          {"company", login.company},
          {"address", login.address},
          {"minutes", Minutes(now - login.since)},
          {"idle", Minutes(now - login.used)},
          {"windows", static_cast<int64_t>(sessions_.CountOf(login.id))}};
}

bool Server::Parts::EndLogin(const std::string& id, std::string_view text) {
  if (!logins_.Remove(id)) return false;
  sessions_.EndLogin(id, std::string(text));
  return true;
}

void Server::Parts::EndOthers(const std::string& user, const std::string& id, const std::string& text) {
  for (const Login& login : logins_.All()) {
    if (SameText(login.user, user) && login.id != id) EndLogin(login.id, text);
  }
}

}  // namespace orv
