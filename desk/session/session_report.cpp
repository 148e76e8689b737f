// Reports of a session: laid out when a screen launches them, written down in the form that is asked for.
#include <algorithm>

#include "desk/random.h"
#include "desk/session/session.h"
#include "frame/filters.h"
#include "frame/report_screen.h"
#include "host/print/writers.h"
#include "toolkit/controls.h"
#include "toolkit/grid.h"
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

std::string FileName(std::string name, const std::optional<std::pair<Date, Date>>& period) {
  if (name.empty()) name = "relatorio";
  if (period) {
    for (const Date day : {period->first, period->second}) name += "_" + ReplaceAll(day.Neutral(), "-", "");
  }
  return name;
}

// What stands over a control: its own caption, else that of the page or box around it.
std::string CaptionOver(const Control& control) {
  const Control* at = &control;
  while (at != nullptr && at->Caption().empty()) at = at->Parent();
  return at == nullptr ? "" : ReplaceAll(at->Caption(), "&", "");
}

// As the screen's grids show it.
SetCaptions CaptionsOf(const Form& screen, const DataSet& set) {
  SetCaptions captions;
  for (const Control* control : screen.Controls()) {
    const auto* grid = dynamic_cast<const TOrvDBGrid*>(control);
    if (grid == nullptr || &grid->Set() != &set) continue;
    if (captions.name.empty()) captions.name = CaptionOver(*grid);
    for (const GridColumn& column : grid->Columns()) {
      if (column.visible) captions.columns.push_back({column.field, column.title, column.decimals});
    }
  }
  return captions;
}

}  // namespace

std::string Session::FileText(std::string_view title) {
  std::string name;
  for (const char c : Fold(CutChars(title, 60))) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z');
    if (plain) {
      name += c;
    } else if (!name.empty() && name.back() != '_') {
      name += '_';
    }
  }
  while (name.ends_with('_')) name.pop_back();
  return name;
}

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

  input.captions = [&](const DataSet& set) { return CaptionsOf(screen, set); };
  const auto* reporting = dynamic_cast<const ReportScreen*>(&screen);
  const FieldTexts asked =
      reporting != nullptr && !reporting->Asked().empty() ? reporting->Asked() : ReadFilters(screen);
  const auto* shown_screen = dynamic_cast<const Screen*>(&screen);
  const auto shown = shown_.find(shown_screen);
  const FieldTexts began = shown == shown_.end() ? FieldTexts() : shown->second.began;
  input.filters = ToldFilters(screen, asked, began);

  Launched launched{++last_report_, {}, LayOut(form, input), "", {}};
  launched.file = FileName(FileText(launched.report.title), PeriodOf(screen, asked, began));
  if (const auto bar = FilterBarOf(screen); bar && shown_screen != nullptr && shown_screen == pressed_on_ &&
                                            shown_screen->Kind() == ScreenKind::Child) {
    launched.favourite = {"",
                          false,
                          shown_screen->ClassName(),
                          bar->query->Name(),
                          pressed_,
                          launch.identifier,
                          launched.report.title,
                          WithRelativeDays(screen, asked, application_->Today())};
  }
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
  Json::Array tables;
  for (const ReportRows& table : last.report.sets) tables.emplace_back(table.set);
  Send({{"on", "report"},
        {"id", last.id},
        {"identifier", launch.identifier},
        {"title", last.report.title},
        {"formats", std::move(formats)},
        {"tables", std::move(tables)},
        {"rows", last.report.walked},
        {"favourite", !last.favourite.print.empty()}});
  if (!missing.empty()) {
    Message(MessageKind::Warning, screen.Caption(), "O relatório saiu incompleto:" + missing, Answer::Ok);
  }
}

std::filesystem::path Session::ScratchFolder(const char* what) const {
  const std::filesystem::path& folder = options_.scratch;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  // A link that stands there by accident leads nowhere else.
  if (std::filesystem::is_symlink(folder, error) || !std::filesystem::is_directory(folder, error))
    throw UserError("A pasta " + std::string(what) + " não pode ser usada.");
  return folder;
}

void Session::RenderReport(const Json& in) {
  const auto found = std::find_if(reports_.begin(), reports_.end(),
                                  [&](const Launched& one) { return in["id"] == Json(one.id); });
  if (found == reports_.end()) throw RequestError("O relatório não está mais aberto. Imprima-o de novo.");
  const std::string format = in["format"].IsString() ? in["format"].String() : "";
  if (std::find(found->formats.begin(), found->formats.end(), format) == found->formats.end()) {
    throw RequestError("O relatório não tem o formato \"" + format + "\".");
  }
  const auto table = static_cast<std::size_t>(in["table"].IsNull() ? 0 : in["table"].Integer());
  if (format == "csv" && table >= std::max<std::size_t>(found->report.sets.size(), 1))
    throw RequestError("O relatório não tem essa tabela.");
  const std::string part =
      format == "csv" && found->report.sets.size() > 1 ? "_" + FileText(found->report.sets[table].set) : "";
  const std::filesystem::path file = Written(found->report, found->file + part, format, table);
  Send({{"on", "report"}, {"id", found->id}, {"format", format}, {"file", file.string()}});
}

std::filesystem::path Session::Written(const Report& report, const std::string& name,
                                       const std::string& format, std::size_t table) {
  std::error_code error;
  const std::filesystem::path file =
      ScratchFolder("dos relatórios") / (name + "-" + RandomHex(64) + "." + format);
  try {
    WriteReport(report, format, file, table);
  } catch (...) {
    std::filesystem::remove(file, error);
    throw;
  }
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                               error);
  return file;
}

}  // namespace orv
