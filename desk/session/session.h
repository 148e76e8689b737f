// A session: one user's login. It owns a thread, an attachment, the services and the open screens, and speaks
// the door: an object in, objects out, the last of them "idle" or "waiting".
#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "desk/json.h"
#include "desk/log.h"
#include "desk/login_seal.h"
#include "desk/session/user_files.h"
#include "frame/application.h"
#include "frame/registro.h"
#include "host/data/attachment.h"
#include "host/print/report.h"
#include "host/services/kept_filters.h"
#include "host/services/session_services.h"
#include "host/services/users.h"
#include "toolkit/control.h"

namespace orv {

class TOrvDBGrid;
struct Anexo;

struct SessionOptions {
  std::string database;
  std::string user;
  std::string company;  // "_001"
  // What the login holds by; without one, the password as it is when the session begins.
  std::shared_ptr<LoginSeal> seal;
  Clock clock;
  // The user's own folder: the paths that he types lead to what is below it, and nowhere else.
  std::filesystem::path folder;
  // A path from the root on is taken as it stands: for someone who has the machine's files at hand anyway.
  bool machine_paths = false;
  // Where the desk keeps reports, and what is given to it for the session's time; "" for a folder in the
  // user's own.
  std::filesystem::path scratch;
  // Templates of reports that take precedence over the desk's own.
  std::filesystem::path templates;
  // The largest file that may be given, in bytes.
  std::size_t max_upload = std::size_t{64} << 20;
  // What all uploads of the user may take.
  UploadSpace uploads{std::size_t{256} << 20};
  // The rows of each set that one read gives at most; none for all.
  std::optional<int64_t> max_rows;
};

class Session : private UserInterface, private ApplicationObserver {
 public:
  // Called on the session's thread with each object out.
  using Sink = std::function<void(const Json&)>;

  // Starts the thread, which attaches to the database and answers with a first "idle", or with "error" and
  // "ended".
  Session(SessionOptions options, Log& log, Sink sink);
  // Ends the session and waits for its thread.
  ~Session() override;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // From any thread: queues an object in. "cancel" during a long gathering ends that action.
  void Post(Json in);
  // From any thread, for a display that comes back: after the objects queued so far, sends "refresh", then
  // all that is open as if it were new: the screens from the bottom with their sets and focus, the question,
  // and the "idle" or "waiting" that stands. False if that is to come already, with nothing queued behind it.
  bool Refresh();
  // From any thread: a session that waits for its user looks whether he may still be here.
  void Recheck();
  // From any thread: the session ends as soon as it waits for the next object, and a statement that runs is
  // cancelled; an open action is unwound and rolled back.
  void End();
  bool Ended() const { return ended_; }

  // --- A file that comes beside the door, from any thread.
  // Where a file of so many bytes is written. Raises UserError where it is too large.
  Upload NewUpload(std::size_t size) const;
  // Hands it over; the "upload" by which `file` names it, while a file is asked for.
  std::string Give(Upload upload);

 private:
  // Thrown where the session's thread waits, when the session ends. Not an exception that anyone catches.
  struct SessionEnd {};
  // A request that a person couldn't make: answered with "error", and nothing runs.
  class RequestError : public UserError {
   public:
    using UserError::UserError;
  };
  struct Shown {
    int64_t id = 0;
    std::map<const Control*, Properties> sent;
    std::map<const DataSet*, std::string> sets;  // what was told of them, as text
    std::string focus;
    std::string badge;
    FieldTexts began;    // the filters with which it opened
    std::string record;  // the one in front, as text
    // How many files are attached to the movement in front; looked up again when `movement` is another.
    std::string movement;
    int64_t attachments = 0;
    std::string rights;   // what the user may do on it, as of the latest action
    bool behind = false;  // looking at it was cut short: all of it is looked at again
  };

  struct Entry {
    Json in;
    bool refresh = false;
    bool recheck = false;
    // A cancel of the gathering that ran when it came: it answers no question asked since.
    bool cancels = false;
  };

  static void* ThreadMain(void* self);
  void Run();
  void Serve();
  // Waits for the next object.
  Entry Take();
  void Send(const Json& out) { sink_(out); }
  // Sends the "idle" or "waiting" that ends an answer.
  void Settle(Json out);
  void SendScreen(Screen& screen, Shown& shown);
  void SendAll();
  void SendError(std::string_view text);
  // Ends the session of a user who has lost his access, or a right on a screen that is open: what he has
  // begun there must not be finished. Raises DatabaseError.
  void RequireStanding();

  // --- Working on an object (session_actions.cpp).
  void Handle(const Json& in);
  // Runs it as an action: what fails is undone, logged under `verb` and told. False when it failed.
  bool Guarded(const Json& verb, const std::function<void()>& work);
  // What is under way from here on is no gathering, until one tells of itself.
  void EndGathering();
  // Takes back what the action has written, also from what the shared tables hold.
  void Undo();
  // Logs it under `verb` and tells the user.
  void ToldFailure(const Json& verb, const std::exception& e);
  void LogFailure(const Json& verb, const std::exception& e);
  void Act(const Json& in);
  // Takes the screens that closed off the desk.
  void ReleaseClosed();
  void Open(const Json& in);
  void Key(const Json& in);
  void GridAction(const std::string& verb, const Json& in);
  Screen& TopScreen() const;
  // The id of the screen on top, 0 without one.
  int64_t TopId() const;
  // The control named in the object, which the user can reach.
  Control& Reachable(const Json& in, const char* member = "control") const;
  // Moves the focus as the user does. False when the field left keeps it.
  bool Reach(Control& control);

  // --- What is shown (session_state.cpp).
  // Amid an action, which may be at work in another company, the record in front isn't looked at.
  void Collect(bool ended);
  void CollectScreen(Screen& screen, Shown& shown, bool ended);
  Json Tree(const Form& form) const;
  Json ControlNode(const Control& control) const;
  Json State(const Json& in) const;
  static Json Rows(DataSet& set, int64_t from, int64_t count);
  // The rows [first, last) of a window of so many rows, all with a negative count.
  static std::pair<int64_t, int64_t> Clamped(int64_t from, int64_t count, int64_t all);
  // The same of a set, made ready to be read.
  static std::pair<int64_t, int64_t> RowsAsked(DataSet& set, int64_t from, int64_t count);

  // --- Grids as their display arranges them (session_grid.cpp).
  TOrvDBGrid& GridIn(const Json& in) const;
  void Arrange(const Json& in);
  // Adds the texts of a window of rows and what else was asked for with it.
  static void AddWindow(Json& out, const TOrvDBGrid& grid, const Json& in, int64_t from, int64_t count);
  static Json Sums(const TOrvDBGrid& grid, const Json& ranges);
  void Export(const Json& in);

  // --- Beside the record in front (session_record.cpp).
  // False for a verb of another kind.
  bool RecordAction(const std::string& verb, const Json& in);
  // What is told of it; null without one.
  Json RecordOf(Screen& screen, Shown& shown);
  void ShowHistory();
  // That of the screen on top, with a movement; and one whose attachments the user may change.
  Registro AttachableRecord() const;
  Registro ChangeableRecord() const;
  void SendAttachments(const Registro& record);
  // Commits, and tells what there is now.
  void AttachmentsChanged(const Registro& record);
  void Attach();
  void Detach(const Json& in);
  void Download(const Json& in);
  Anexo AttachmentNamed(const Registro& record, const Json& in);

  // --- What screens ask (session_user.cpp).
  Answer Message(MessageKind kind, std::string_view title, std::string_view text, Answer initial) override;
  void Note(NoteKind kind, std::string_view text) override;
  std::optional<std::string> InputBox(std::string_view title, std::string_view prompt,
                                      std::string_view value) override;
  LookupChoice Choose(TPesquisa& lookup) override;
  std::optional<std::string> OpenFile(std::string_view control, std::string_view filters) override;
  std::optional<InputFile> OpenPath(std::string_view path) override { return files_.Open(path); }
  bool IsFolder(std::string_view path) override { return files_.IsFolder(path); }
  void TakenIn(std::string_view path) override { files_.Forget(path); }
  bool ConfirmPosting(std::string_view title, const std::vector<PostingLine>& lines) override;
  void Detail(std::string_view title, DataSet& rows) override;
  void Progress(int64_t value, int64_t of, std::string_view text) override;
  void Busy(bool on) override;
  void RunModal(Form& form) override;
  // --- Reports (session_report.cpp).
  void LaunchReport(const ReportLaunch& launch) override;
  void RenderReport(const Json& in);
  // The file into which the report was written, under that name and what makes it the only one; of "csv" one
  // of its tables.
  std::filesystem::path Written(const Report& report, const std::string& name, const std::string& format,
                                std::size_t table = 0);
  // A title as part of a file's name, in plain letters and figures: whoever writes templates makes titles.
  static std::string FileText(std::string_view title);

  // --- Kept filters and favourite reports (session_filters.cpp).
  void FiltersAct(const Json& in);
  void FavouritesAct(const Json& in);
  void SendFilters(const Screen& screen, Json::Array left = {});
  void SendFavourites();
  void RunFavourite(const Json& in);
  // The class of a screen and the button of its bar, under which its filters are kept; raises RequestError
  // where there is no such bar.
  static std::string BarName(const Screen& screen);
  // Sets them, and goes to the button that asks. The captions of those that couldn't be set.
  Json::Array GiveFilters(Screen& screen, const FieldTexts& filters);
  // A screen that was opened from the menu begins with the latest filters, where its user wants that; which
  // are kept as he asks for rows.
  void BeginWithLatest(Screen& screen);
  void KeepLatest(const Json& in);
  KeptFilters Kept();
  // Where a file for the display is written; `what` names it to the user where that can't be.
  std::filesystem::path ScratchFolder(const char* what) const;

  // Sends a question and waits until `answer` takes an object as its answer; other objects are refused.
  void Wait(const char* what, const Json& question, const std::function<bool(const Json&)>& answer);
  Upload TakeUpload(const Json& in);

  void ScreenShown(Screen& screen) override;
  void ScreenClosed(Screen& screen) override;

  SessionOptions options_;
  UserFiles files_;
  Log& log_;
  Sink sink_;

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Entry> queue_;
  // What came beside the door and isn't asked for yet, by what names it.
  std::map<std::string, Upload> uploads_;
  bool ending_ = false;
  std::atomic<bool> ended_{false};
  // A gathering has told how far it is, and nothing was asked since; a cancel has come meanwhile, which its
  // next telling takes. Both under the mutex.
  bool gathering_ = false;
  bool cancel_ = false;
  std::chrono::steady_clock::time_point last_progress_{};

  // Guarded by the mutex where it comes and goes, since End cancels what runs on it.
  std::unique_ptr<Attachment> attachment_;
  std::unique_ptr<Application> application_;
  std::unique_ptr<SessionServices> services_;
  std::map<const Screen*, Shown> shown_;
  int64_t next_id_ = 1;
  // The latest reports, each in the forms in which it can be had.
  struct Launched {
    int64_t id = 0;
    std::vector<std::string> formats;
    Report report;
    std::string file;     // its name, without what makes it the only one
    Favourite favourite;  // how it is made again; without `print` where it can't be
  };
  std::deque<Launched> reports_;
  int64_t last_report_ = 0;
  // What the user has pressed in this action, and on which screen.
  const Screen* pressed_on_ = nullptr;
  std::string pressed_;
  // The screen that the display takes to be on top; another one is told.
  int64_t front_ = 0;
  // What the latest action left was put in order; false where that failed, and the next one does it first.
  bool in_order_ = true;
  // What a display that comes back must be told: the open question, what ended the latest answer, the busy
  // mark.
  Json question_;
  Json settled_;
  bool busy_ = false;
  // As of the latest action.
  Standing standing_;
  // Why the session has ended by itself, for its user.
  std::string end_text_;
  pthread_t thread_{};
};

}  // namespace orv
