#include "desk/session/session.h"

#include "frame/filters.h"
#include "frame/screen.h"
#include "host/schema/schema.h"

namespace orv {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kStack = 8 << 20;
#else
constexpr std::size_t kStack = 1 << 20;
#endif

// More objects than a person can leave unanswered.
constexpr std::size_t kMaxQueue = 10000;

// What the user may do on a screen, a letter each.
std::string RightsOn(const Standing& standing, const std::string& screen_class) {
  std::string rights;
  if (standing.MayOpen(screen_class)) rights += 'O';
  for (const char kind : {'A', 'E'}) {
    if (standing.May(screen_class, kind)) rights += kind;
  }
  return rights;
}

}  // namespace

Session::Session(SessionOptions options, Log& log, Sink sink)
    : options_(std::move(options)),
      files_(options_.folder, options_.machine_paths),
      log_(log),
      sink_(std::move(sink)) {
  if (options_.scratch.empty()) options_.scratch = options_.folder / "relatorios";
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kStack);
  const int failed = pthread_create(&thread_, &attributes, &Session::ThreadMain, this);
  pthread_attr_destroy(&attributes);
  if (failed != 0) throw UserError("Não há recursos para mais uma sessão.");
}

Session::~Session() {
  End();
  pthread_join(thread_, nullptr);
}

void Session::Post(Json in) {
  const bool cancel = in["do"] == Json("answer") && in["value"] == Json("cancel");
  {
    const std::lock_guard lock(mutex_);
    if (queue_.size() >= kMaxQueue) return;
    queue_.push_back({.in = std::move(in), .cancels = cancel && gathering_});
    if (cancel && gathering_) cancel_ = true;
  }
  arrived_.notify_one();
}

bool Session::Refresh() {
  {
    const std::lock_guard lock(mutex_);
    if (!queue_.empty() && queue_.back().refresh) return false;
    queue_.push_back({.in = Json(), .refresh = true});
  }
  arrived_.notify_one();
  return true;
}

void Session::Recheck() {
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back({.in = Json(), .recheck = true});
  }
  arrived_.notify_one();
}

void Session::End() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    if (attachment_ != nullptr) attachment_->Cancel();
  }
  arrived_.notify_one();
}

void* Session::ThreadMain(void* self) {
  static_cast<Session*>(self)->Run();
  return nullptr;
}

void Session::Run() {
  try {
    auto attachment = Attachment::Open(options_.database);
    {
      const std::lock_guard lock(mutex_);
      attachment_ = std::move(attachment);
    }
    RequireCurrentSchema(*attachment_);
    application_ = std::make_unique<Application>(static_cast<UserInterface&>(*this), options_.clock);
    services_ =
        std::make_unique<SessionServices>(*application_, *attachment_, options_.user, options_.company);
    application_->SetObserver(this);
    RequireStanding();
    log_.Write("session", {{"user", options_.user}, {"company", options_.company}});
    try {
      Serve();
    } catch (const SessionEnd&) {
      attachment_->Rollback();
    }
    // The user hears that the session has ended, not that he closed his screens.
    application_->SetObserver(nullptr);
    application_->CloseAll();
    attachment_->Rollback();
  } catch (const SessionEnd&) {
    // A screen that asked while it was closed for good.
  } catch (const SilentAbort&) {
    // One whose closing gave up.
  } catch (const std::exception& e) {
    log_.Write("session failed", {{"user", options_.user}, {"text", Masked(e.what())}});
    SendError(e.what());
  }
  application_.reset();
  services_.reset();
  std::unique_ptr<Attachment> attachment;
  {
    const std::lock_guard lock(mutex_);
    attachment = std::move(attachment_);
  }
  attachment.reset();
  ended_ = true;
  Json end{{"on", "ended"}};
  if (!end_text_.empty()) end.Set("text", end_text_);
  Send(end);
}

void Session::Serve() {
  Settle({{"on", "idle"}});
  for (;;) {
    Handle(Take().in);
    application_->FreeClosed();
    in_order_ = Guarded("order", [this] { services_->AfterAction(); });
    Collect(true);
    Settle({{"on", "idle"}});
  }
}

Session::Entry Session::Take() {
  for (;;) {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [&] { return ending_ || !queue_.empty(); });
    if (ending_) throw SessionEnd{};
    Entry entry = std::move(queue_.front());
    queue_.pop_front();
    if (!entry.refresh && !entry.recheck) return entry;
    lock.unlock();
    if (entry.refresh) {
      SendAll();
      continue;
    }
    try {
      RequireStanding();
    } catch (const DatabaseError&) {
      // The next action meets it again, and tells.
    }
  }
}

void Session::RequireStanding() {
  const auto standing = services_->Users().Standing(services_->Login());
  if (standing && options_.seal == nullptr) options_.seal = std::make_shared<LoginSeal>(standing->seal);
  if (!standing || !options_.seal->Holds(standing->seal)) {
    end_text_ = kCutOff;
    throw SessionEnd{};
  }
  for (auto& [screen, shown] : shown_) {
    std::string now = RightsOn(*standing, screen->ClassName());
    if (shown.rights.find_first_not_of(now) != std::string::npos) {
      end_text_ = "Um direito seu foi retirado. O que não estava confirmado foi desfeito. Entre de novo.";
      throw SessionEnd{};
    }
    shown.rights = std::move(now);
  }
  standing_ = *standing;
}

void Session::Settle(Json out) {
  settled_ = std::move(out);
  Send(settled_);
}

void Session::SendAll() {
  Send({{"on", "refresh"}});
  for (Screen* screen : application_->Shown()) {
    try {
      SendScreen(*screen, shown_[screen]);
    } catch (const std::exception& e) {
      ToldFailure("refresh", e);
    }
  }
  Collect(true);
  if (busy_) Send({{"on", "busy"}, {"value", true}});
  if (!question_.IsNull()) Send(question_);
  Send(settled_);
}

void Session::SendError(std::string_view text) { Send({{"on", "error"}, {"text", text}}); }

void Session::ScreenShown(Screen& screen) {
  Shown& shown = shown_[&screen];
  shown = Shown{};
  shown.id = next_id_++;
  shown.rights = RightsOn(standing_, screen.ClassName());
  shown.began = ReadFilters(screen);
  SendScreen(screen, shown);
}

void Session::SendScreen(Screen& screen, Shown& shown) {
  shown.sent.clear();
  shown.sets.clear();
  shown.focus.clear();
  shown.record.clear();
  shown.badge = screen.Badge();
  Send({{"on", "screen"},
        {"id", shown.id},
        {"class", screen.ClassName()},
        {"caption", screen.Caption()},
        {"kind", screen.Kind() == ScreenKind::Dialog ? "dialog" : "child"},
        {"badge", screen.Badge()},
        {"tree", Tree(screen)}});
  // What the tree told is no change any more.
  for (Control* control : screen.Controls()) {
    control->TakeDirty();
    control->Describe(shown.sent[control]);
  }
}

void Session::ScreenClosed(Screen& screen) {
  const auto found = shown_.find(&screen);
  if (found == shown_.end()) return;
  Send({{"on", "closed"}, {"screen", found->second.id}});
  shown_.erase(found);
  front_ = TopId();
}

}  // namespace orv
