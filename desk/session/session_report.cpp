// Reports of a session: laid out when a screen launches them, written down in the form that is asked for.
#include <algorithm>

#include "desk/random.h"
#include "desk/session/session.h"
#include "host/print/writers.h"
#include "toolkit/controls.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostReports = 8;
// Values of all reports that are kept; some 32 bytes each.
constexpr std::size_t kMostValues = 8'000'000;
constexpr std::size_t kNotesTold = 5;

std::optional<Value> Held(const Control* control) {
  if (const auto* check = dynamic_cast<const CheckBox*>(control)) return Value(check->Checked() ? 1 : 0);
  if (const auto* list = dynamic_cast<const ListControl*>(control)) return Value(list->ItemIndex());
  if (const auto* money = dynamic_cast<const MoneyEdit*>(control)) return Value(money->Amount());
  if (const auto* date = dynamic_cast<const DateEdit*>(control)) return Value(date->Date());
  if (const auto* edit = dynamic_cast<const Edit*>(control)) return Value(edit->Text());
  return std::nullopt;
}

// What the screen says for a name: what it declares, else what a control of that name holds. A template may
// lead the name by the screen's own.
std::optional<ReportAnswer> Answered(const Form& screen, std::string_view name) {
  constexpr std::string_view kScreen = "FmSReport.Tela.";
  if (SameText(name.substr(0, kScreen.size()), kScreen)) name.remove_prefix(kScreen.size());
  if (const auto found = screen.Answers.find(name); found != screen.Answers.end()) return found->second;
  const auto held = Held(screen.Find(name));
  if (!held) return std::nullopt;
  return ReportAnswer{0, [value = *held](std::span<const Value>) { return value; }};
}

// An identifier is made with texts of the database; a file's name is not.
std::string FileName(const std::string& identifier) {
  std::string name(CutChars(identifier, 60));
  for (char& c : name) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (!plain) c = '_';
  }
  return name;
}

}  // namespace

void Session::LaunchReport(const ReportLaunch& launch) {
  const Form& screen = *launch.screen;
  const ReportTemplate form = FindTemplate(launch.identifier, options_.templates.string());
  ReportInput input;
  input.company =
      attachment_->Scalar("SELECT EMP_NOME FROM EMPRESA WHERE EMP_PAT = " + Quote(options_.company))
          .AsString();
  input.user = options_.user;
  input.now = options_.clock.Now();
  input.set = [&](std::string_view name) { return screen.FindSet(name); };
  input.answer = [&](std::string_view name) { return Answered(screen, name); };

  Launched launched{++last_report_, {}, LayOut(form, input)};
  if (launch.graphic) launched.formats = {"html", "pdf"};
  if (launch.text) launched.formats.emplace_back("txt");
  launched.formats.insert(launched.formats.end(), {"csv", "xlsx"});
  std::string missing;
  for (std::size_t at = 0; at < std::min(launched.report.notes.size(), kNotesTold); ++at) {
    missing += "\n" + launched.report.notes[at];
  }

  reports_.push_back(std::move(launched));
  const auto kept = [&] {
    std::size_t values = 0;
    for (const Launched& one : reports_) values += one.report.Size();
    return values;
  };
  while (reports_.size() > kMostReports || (reports_.size() > 1 && kept() > kMostValues))
    reports_.pop_front();

  const Launched& last = reports_.back();
  Json::Array formats(last.formats.begin(), last.formats.end());
  Send({{"on", "report"},
        {"id", last.id},
        {"identifier", launch.identifier},
        {"title", last.report.title},
        {"formats", std::move(formats)}});
  if (!missing.empty()) {
    Message(MessageKind::Warning, screen.Caption(), "O relatório saiu incompleto:" + missing, Answer::Ok);
  }
}

void Session::RenderReport(const Json& in) {
  const auto found = std::find_if(reports_.begin(), reports_.end(),
                                  [&](const Launched& one) { return in["id"] == Json(one.id); });
  if (found == reports_.end()) throw RequestError("O relatório não está mais aberto. Imprima-o de novo.");
  const std::string format = in["format"].IsString() ? in["format"].String() : "";
  if (std::find(found->formats.begin(), found->formats.end(), format) == found->formats.end()) {
    throw RequestError("O relatório não tem o formato \"" + format + "\".");
  }
  Send({{"on", "report"},
        {"id", found->id},
        {"format", format},
        {"file", Written(found->report, format).string()}});
}

std::filesystem::path Session::Written(const Report& report, const std::string& format) {
  const std::filesystem::path& folder = options_.scratch;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  // A link that stands there by accident leads nowhere else.
  if (std::filesystem::is_symlink(folder, error) || !std::filesystem::is_directory(folder, error)) {
    throw UserError("A pasta dos relatórios não pode ser usada.");
  }
  const std::filesystem::path file =
      folder / (FileName(report.identifier) + "-" + RandomHex(64) + "." + format);
  try {
    WriteReport(report, format, file);
  } catch (...) {
    std::filesystem::remove(file, error);
    throw;
  }
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                               error);
  return file;
}

}  // namespace orv
