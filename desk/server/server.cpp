#include "desk/server/server.h"

#include <sodium.h>

#include <algorithm>

#include "desk/folders.h"
#include "desk/server/server_parts.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::chrono::seconds kSweepEvery{5};
// How soon a desk sees what was changed elsewhere in users and rights; an action looks for itself.
constexpr std::chrono::seconds kWatchEvery{2};
// How often the desk looks whether it can fold sums, how long nobody has worked then, and when it no longer
// waits for that.
constexpr std::chrono::seconds kFoldEvery{60}, kQuiet{20};
constexpr std::chrono::minutes kFoldAtLast{30};
constexpr std::size_t kMostJobs = 256;

}  // namespace

Server::Parts::Parts(ServerOptions options, Log& log)
    : options_((Prepare(options), std::move(options))),
      log_(log),
      database_(options_.database, options_.clock, options_.cost),
      files_(options_.web),
      guard_(!options_.certificate.empty(), options_.public_address, options_.proxy, options_.subdomains),
      uploads_(options_.max_uploads),
      logins_({options_.idle, options_.absolute, options_.windows}),
      network_(NetworkOptions(), *this),
      checks_(options_.data / "devices.key", Poster()),
      jobs_(1, kMostJobs, Poster()),
      folds_(1, 1, Poster()),
      sessions_({options_.grace, options_.windows, options_.messages_a_second},
                {[this](const Login& login) { return OptionsOf(login); },
                 [this](const std::string& login) { logins_.Touch(login, options_.now()); },
                 [this] { return options_.now(); }},
                log_, network_, jobs_),
      control_(std::make_unique<ServerControl>(options_.data,
                                               [this](const Json& question) { return Control(question); })) {
  // The folder is this desk's alone from here on: what stands there a desk that was killed has left.
  std::error_code error;
  std::filesystem::remove_all(ScratchFolder(options_.data), error);
  thread_ = std::thread([this] { network_.Run(); });
  network_.Post([this] {
    Tick();
    Watch();
    Fold();
  });
  log_.Write("serving", {{"address", Address()}});
}

std::string Server::Parts::Address() const {
  if (!options_.public_address.empty()) return options_.public_address;
  const bool six = options_.address.find(':') != std::string::npos;
  return std::string(options_.certificate.empty() ? "http://" : "https://") +
         (six ? "[" + options_.address + "]" : options_.address) + ":" + std::to_string(Port());
}

void Server::Parts::Sweep() {
  if (!thread_.joinable()) return;
  const auto before = OnNetwork([this] { return logins_.All(); });
  auto standings = database_.Standings();
  OnNetwork([&] {
    SweepNow();
    Watched(before, std::move(standings));
  });
}

void Server::Parts::Stop() {
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

void Server::Parts::Prepare(const ServerOptions& options) {
  if (sodium_init() < 0) throw UserError("A biblioteca de criptografia não pôde ser iniciada.");
  std::error_code error;
  if (std::filesystem::create_directories(options.data, error)) {
    std::filesystem::permissions(options.data, std::filesystem::perms::owner_all, error);
  }
  if (!std::filesystem::is_directory(options.data)) {
    throw UserError("A pasta de dados " + options.data.string() + " não pode ser usada.");
  }
}

Workers::Post Server::Parts::Poster() {
  return [this](std::function<void()> work) { network_.Post(std::move(work)); };
}

HttpServer::Options Server::Parts::NetworkOptions() const {
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

SessionOptions Server::Parts::OptionsOf(const Login& login) const {
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

void Server::Parts::Tick() {
  SweepNow();
  network_.After(kSweepEvery, [this] { Tick(); });
}

void Server::Parts::SweepNow() {
  for (const Login& login : logins_.TakeExpired(options_.now())) {
    log_.Write("login expired", {{"user", login.user}, {"id", login.id}});
    sessions_.EndLogin(login.id,
                       "A sessão terminou por falta de uso ou por ter chegado ao seu limite de tempo.");
  }
  sessions_.Sweep();
}

void Server::Parts::Watch() {
  const auto again = [this] { network_.After(kWatchEvery, [this] { Watch(); }); };
  const bool taken = jobs_.Do(
      [this] { return database_.Standings(); },
      [this, again, before = logins_.All()](std::optional<std::map<std::string, Standing>> standings) {
        // A database that doesn't answer lets nobody act either.
        if (standings) Watched(before, std::move(*standings));
        again();
      });
  if (!taken) again();
}

void Server::Parts::Watched(const std::vector<Login>& before, std::map<std::string, Standing> standings) {
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

void Server::Parts::Fold() {
  const auto again = [this] { network_.After(kFoldEvery, [this] { Fold(); }); };
  const Instant now = options_.now();
  const std::vector<Login> logins = logins_.All();
  const bool quiet = std::ranges::all_of(logins, [&](const Login& one) { return now - one.used >= kQuiet; });
  if (!quiet && now - folded_ < kFoldAtLast) return again();
  folded_ = now;
  const bool taken = folds_.Do([this] { return database_.FoldSums(), true; }, [again](auto) { again(); });
  if (!taken) again();
}

Json Server::Parts::Control(const Json& question) {
  return OnNetwork([&] { return Answer(question); });
}

Json Server::Parts::Answer(const Json& question) {
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

Server::Server(ServerOptions options, Log& log) : parts_(std::make_unique<Parts>(std::move(options), log)) {}
Server::~Server() = default;

int Server::Port() const { return parts_->Port(); }
std::string Server::Address() const { return parts_->Address(); }
void Server::Sweep() { parts_->Sweep(); }
void Server::Stop() { parts_->Stop(); }

}  // namespace orv
