#include "desk/server/server_sessions.h"

#include <algorithm>
#include <deque>

#include "desk/random.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A message that is read off the network's thread.
constexpr std::size_t kLongMessage = 64 << 10;
// Objects that a link may send ahead of their answers.
constexpr int kMostUnanswered = 32;
// Files of reports and attachments that a window keeps.
constexpr std::size_t kMostFiles = 20;

Json ParseOrNull(const std::string& text) {
  try {
    return Json::Parse(text);
  } catch (const std::exception&) {
    // The session refuses what isn't an object, in its turn.
    return {};
  }
}

}  // namespace

// An object of a session, as far as it matters here.
struct ServerSessions::Said {
  explicit Said(const Json& out)
      : kind(out["on"].String()), file(out["for"] == Json("file")), text(out.Text()) {
    if ((kind == "report" || kind == "attachment") && out["file"].IsString()) handed = out;
  }

  std::string kind;
  bool file;
  std::string text;
  // What was written to a file, a report or an attachment; the display is told an address instead.
  Json handed;
};

struct ServerSessions::Window {
  explicit Window(double messages) : rate(messages, 2 * messages) {}

  std::string id, login, user;
  std::unique_ptr<Session> session;
  std::shared_ptr<Link> link;
  Instant away_since{};
  // The number that the display gave the latest object taken.
  int64_t received = 0;
  int unanswered = 0;
  // A display that has come back is told nothing but progress until all is sent anew.
  int refreshing = 0;
  std::function<void()> next;  // reads on, once fewer are unanswered
  RateLimit rate;
  bool ending = false;
  // A file is asked for.
  bool file = false;
  std::string end_text;
  // The files that may be fetched, by the secret part of their address; the oldest goes first.
  std::deque<std::pair<std::string, HandedFile>> files;

  ~Window() {
    for (const auto& [secret, file] : files) Remove(file.path);
  }
  static void Remove(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::remove(file, error);
  }
};

// Writes a file off the network's thread, and hands it to the window's session.
class ServerSessions::Receiver : public BodySink, public std::enable_shared_from_this<Receiver> {
 public:
  Receiver(const WindowPointer& window, Upload upload, Workers& workers)
      : window_(window), upload_(std::move(upload)), workers_(workers) {}

  void Take(std::string piece, std::function<void(bool)> next) override {
    const bool taken = workers_.Do(
        [this, piece = std::move(piece)] {
          upload_.Write(piece);
          return true;
        },
        [self = shared_from_this(), next](std::optional<bool> kept) { next(kept.has_value()); });
    if (!taken) next(false);
  }

  HttpResponse Whole() override {
    const WindowPointer window = window_.lock();
    if (window == nullptr || window->ending || !window->file) return NotAsked();
    HttpResponse response;
    response.body = Json{{"upload", window->session->Give(std::move(upload_))}}.Text();
    return response;
  }

  static HttpResponse NotAsked() { return Refused(409, "Nenhum arquivo foi pedido."); }
  static HttpResponse Refused(int status, std::string_view text) {
    HttpResponse response;
    response.status = status;
    response.body = Json{{"text", text}}.Text();
    return response;
  }

 private:
  std::weak_ptr<Window> window_;
  Upload upload_;
  Workers& workers_;
};

ServerSessions::ServerSessions(Limits limits, Hooks hooks, Log& log, HttpServer& network, Workers& workers)
    : limits_(limits), hooks_(std::move(hooks)), log_(log), network_(network), workers_(workers) {}

ServerSessions::~ServerSessions() = default;

std::size_t ServerSessions::CountOf(const std::string& login) const {
  return static_cast<std::size_t>(std::count_if(windows_.begin(), windows_.end(), [&](const auto& entry) {
    return entry.second->login == login && !entry.second->ending;
  }));
}

ServerSessions::WindowPointer ServerSessions::Of(const std::shared_ptr<Link>& link) const {
  for (const auto& [id, window] : windows_) {
    if (window->link == link) return window;
  }
  return nullptr;
}

void ServerSessions::Attach(const Login& login, const std::string& session,
                            const std::shared_ptr<Link>& link) {
  const auto found = windows_.find(session);
  // Somebody else's session is none.
  if (found != windows_.end() && found->second->login == login.id && !found->second->ending) {
    Connect(found->second, link);
  } else {
    Begin(login, link);
  }
}

void ServerSessions::Begin(const Login& login, const std::shared_ptr<Link>& link) {
  const auto refuse = [&](const std::string& text) {
    link->Send(Json{{"on", "ended"}, {"text", text}}.Text());
    link->Close();
  };
  if (!MakeRoom(login.user)) {
    refuse("Já há " + std::to_string(limits_.per_user) +
           " janelas abertas. Feche uma delas e entre de novo.");
    return;
  }
  auto window = std::make_shared<Window>(limits_.messages_a_second);
  window->id = RandomHex(64);
  window->login = login.id;
  window->user = login.user;
  try {
    window->session =
        std::make_unique<Session>(hooks_.options(login), log_, [this, id = window->id](const Json& out) {
          auto said = std::make_shared<Said>(out);
          network_.Post([this, id, said] { Out(id, std::move(*said)); });
        });
  } catch (const UserError& e) {
    refuse(e.what());
    return;
  }
  windows_.emplace(window->id, window);
  window->link = link;
  link->Send(Json{{"on", "hello"}, {"session", window->id}, {"received", 0}}.Text());
}

void ServerSessions::Connect(const WindowPointer& window, const std::shared_ptr<Link>& link) {
  // The link that is replaced is no longer listened to, so that what was received is certain.
  if (window->link != nullptr) window->link->Close();
  window->link = link;
  window->next = nullptr;
  link->Send(Json{{"on", "hello"}, {"session", window->id}, {"received", window->received}}.Text());
  if (window->session->Refresh()) ++window->refreshing;
}

bool ServerSessions::MakeRoom(const std::string& user) {
  std::size_t count = 0;
  WindowPointer longest_away;
  for (const auto& [id, window] : windows_) {
    if (!SameText(window->user, user) || window->ending) continue;
    ++count;
    if (window->link == nullptr &&
        (longest_away == nullptr || window->away_since < longest_away->away_since)) {
      longest_away = window;
    }
  }
  if (count < limits_.per_user) return true;
  if (longest_away == nullptr) return false;
  End(*longest_away, "A sessão deu lugar a outra janela.");
  return true;
}

void ServerSessions::Detach(const std::shared_ptr<Link>& link) {
  const WindowPointer window = Of(link);
  if (window == nullptr) return;
  window->link = nullptr;
  window->next = nullptr;
  window->away_since = hooks_.now();
}

BodyPlan ServerSessions::Receive(const Login& login, const std::string& session, uint64_t size) {
  const auto found = windows_.find(session);
  const bool own = found != windows_.end() && found->second->login == login.id && !found->second->ending;
  if (!own || !found->second->file) return {nullptr, Receiver::NotAsked()};
  hooks_.used(login.id);
  try {
    Upload upload = found->second->session->NewUpload(size);
    return {std::make_shared<Receiver>(found->second, std::move(upload), workers_), {}};
  } catch (const UserError& e) {
    return {nullptr, Receiver::Refused(413, e.what())};
  }
}

void ServerSessions::Message(const std::shared_ptr<Link>& link, std::string text,
                             std::function<void()> next) {
  const WindowPointer window = Of(link);
  if (window == nullptr || window->ending) return;
  hooks_.used(window->login);
  if (text.size() <= kLongMessage) {
    Take(window, link, ParseOrNull(text), std::move(next));
    return;
  }
  const bool taken = workers_.Do([text = std::move(text)] { return ParseOrNull(text); },
                                 [this, window, link, next](std::optional<Json> in) {
                                   Take(window, link, in ? std::move(*in) : Json(), next);
                                 });
  // The display sends it again when it comes back.
  if (!taken) link->Close();
}

void ServerSessions::Take(const WindowPointer& window, const std::shared_ptr<Link>& link, Json in,
                          std::function<void()> next) {
  if (window->link != link || window->ending) return;
  if (in["n"].IsInteger()) window->received = in["n"].Integer();
  ++window->unanswered;
  window->session->Post(std::move(in));

  const auto wait = window->rate.Take(std::chrono::steady_clock::now());
  if (wait.count() > 0) {
    network_.After(wait, std::move(next));
  } else if (window->unanswered >= kMostUnanswered) {
    window->next = std::move(next);
  } else {
    next();
  }
}

void ServerSessions::Out(const std::string& id, Said said) {
  const auto found = windows_.find(id);
  if (found == windows_.end()) return;
  const WindowPointer window = found->second;
  const std::string& kind = said.kind;

  if (kind == "refresh") {
    --window->refreshing;
    // Its own answer comes on top of those of the objects taken.
    ++window->unanswered;
    return;
  }
  if (kind == "ended") {
    if (!window->end_text.empty()) said.text = Json{{"on", "ended"}, {"text", window->end_text}}.Text();
    // What is sent may be too much for the link, which then leaves the window.
    if (const auto link = window->link) {
      link->Send(std::move(said.text));
      link->Close();
    }
    windows_.erase(id);
    log_.Write("session ended", {{"user", window->user}, {"session", id.substr(0, 8)}});
    if (gone_) gone_();
    return;
  }
  if (said.handed.IsObject()) said.text = Addressed(*window, said.handed).Text();
  if (kind == "idle" || kind == "waiting") {
    if (window->unanswered > 0) --window->unanswered;
    window->file = said.file;
  }
  if (window->link != nullptr && (window->refreshing == 0 || kind == "progress"))
    window->link->Send(std::move(said.text));
  if (window->next && window->unanswered < kMostUnanswered) std::exchange(window->next, nullptr)();
}

Json ServerSessions::Addressed(Window& window, const Json& handed) {
  const std::filesystem::path file = handed["file"].String();
  const bool attachment = handed["on"] == Json("attachment");
  const std::string secret = RandomHex(128);
  // Under the name that the user keeps it by.
  const std::string stem = file.stem().string();
  const std::string name =
      attachment ? handed["name"].String() : stem.substr(0, stem.rfind('-')) + file.extension().string();
  window.files.emplace_back(secret, HandedFile{file, name, attachment});
  if (window.files.size() > kMostFiles) {
    Window::Remove(window.files.front().second.path);
    window.files.pop_front();
  }
  if (attachment) return {{"on", "attachment"}, {"name", name}, {"address", "/anexo/" + secret}};
  return {{"on", "report"},
          {"id", handed["id"]},
          {"format", handed["format"]},
          {"address", "/relatorio/" + secret + "/" + name}};
}

std::optional<HandedFile> ServerSessions::FileOf(const std::string& login, std::string_view secret) const {
  for (const auto& [id, window] : windows_) {
    if (window->login != login) continue;
    for (const auto& [known, file] : window->files) {
      if (known == secret) return file;
    }
  }
  return std::nullopt;
}

void ServerSessions::End(Window& window, const std::string& text) {
  if (window.ending) return;
  window.ending = true;
  window.end_text = text;
  window.session->End();
}

void ServerSessions::EndLogin(const std::string& login, const std::string& text) {
  for (const auto& [id, window] : windows_) {
    if (window->login == login) End(*window, text);
  }
}

void ServerSessions::EndAll(const std::string& text) {
  for (const auto& [id, window] : windows_) End(*window, text);
}

void ServerSessions::Recheck(const std::string& login) {
  for (const auto& [id, window] : windows_) {
    if (window->login == login) window->session->Recheck();
  }
}

void ServerSessions::Sweep() {
  const Instant now = hooks_.now();
  for (const auto& [id, window] : windows_) {
    if (window->link == nullptr && now - window->away_since >= limits_.grace) End(*window, "");
  }
}

}  // namespace orv
