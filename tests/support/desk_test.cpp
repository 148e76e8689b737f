#include "tests/support/desk_test.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "host/schema/demo.h"
#include "host/services/audit.h"
#include "host/services/users.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

// The demo companies that each test copies: those made before for all programs, or this process's own.
const std::filesystem::path& Original() {
  static const TempFolder folder;
  static const std::filesystem::path path = [] {
    if (const char* made = std::getenv("ORV_DEMO")) return std::filesystem::path(made);
    const std::filesystem::path file = folder.Path() / "demo.fdb";
    MakeTestDemo(file);
    return file;
  }();
  return path;
}

std::string Joined(const std::vector<Value>& row) {
  std::string text;
  for (const Value& value : row) {
    if (&value != row.data()) text += "|";
    text += value.IsNull() ? "-" : value.Neutral();
  }
  return text;
}

}  // namespace

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvcc-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw UserError("A pasta temporária não pôde ser criada.");
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

std::string RowsText(Attachment& db, std::string_view sql) {
  std::string text;
  for (const auto& row : db.Rows(sql)) text += (text.empty() ? "" : ";") + Joined(row);
  return text;
}

std::string ErrorOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const UserError& error) {
    return error.what();
  }
  return "";
}

void MakeTestDemo(const std::filesystem::path& file) {
  const auto db = Attachment::Create(file.string());
  MakeDemo(*db, {1, Date::ParseNeutral(kToday), 2});
  Audit audit(*db, Clock(Date::ParseNeutral(kToday)), "", "");
  Users users(*db, audit, PasswordCost::Least());
  users.Add({"ana", "Ana Prado", true, true}, "mesa clara 2026");
  users.Add({"leo", "Leo Sales", false, true}, "mesa clara 2027");
  db->CommitRetaining();
}

std::filesystem::path CopyDemo(const std::filesystem::path& folder) {
  const std::filesystem::path copy = folder / "desk.fdb";
  std::filesystem::copy_file(Original(), copy);
  return copy;
}

Desk::Desk(const std::filesystem::path& database, const std::string& user, const std::string& company,
           const std::string& today)
    : log_((database.parent_path() / "desk.log").string()) {
  static const Module module("orvCC");
  SessionOptions options;
  options.database = database.string();
  options.user = user;
  options.company = company;
  options.clock = Clock(Date::ParseNeutral(today));
  options.folder = database.parent_path();
  options.scratch = database.parent_path() / "sessoes" / user;
  options.templates = database.parent_path() / "relatorios";
  client_ = std::make_unique<DoorClient>(std::move(options), log_);
}

const std::vector<Json>& Desk::Do(Json in) {
  latest_ = client_->Do(std::move(in));
  return latest_;
}

std::string Printed(Desk& desk, std::string_view button) {
  Json id, format = "txt";
  for (const Json& out : desk.Click(button)) {
    if (out["on"] != Json("report")) continue;
    id = out["id"];
    const auto& formats = out["formats"].Items();
    if (std::find(formats.begin(), formats.end(), format) == formats.end()) format = "html";
  }
  EXPECT_EQ(desk.Messages(), "");
  std::string text;
  for (const Json& out : desk.Do({{"do", "report"}, {"id", id}, {"format", format}})) {
    if (!out.Has("file")) continue;
    std::ifstream in(out["file"].String(), std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(in), {});
  }
  if (format == Json("txt")) return text.substr(text.find('\n') + 1);
  const std::size_t title = text.find("<h1>"), right = text.find("<div class=\"right\">"),
                    body = text.find("</header>");
  EXPECT_NE(body, std::string::npos);
  return text.substr(title, right - title) + "\n" + text.substr(body);
}

void ExpectFile(const std::string& made, const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string wanted{std::istreambuf_iterator<char>(in), {}};
  if (made != wanted) std::ofstream(file.filename(), std::ios::binary) << made;
  EXPECT_EQ(made, wanted);
}

std::string Desk::Messages() const {
  std::string text;
  for (const Json& out : latest_) {
    const bool message = out["on"] == Json("message"),
               note = out["on"] == Json("note") && !(out["kind"] == Json("stored"));
    if (!message && !note && !(out["on"] == Json("error"))) continue;
    if (!text.empty()) text += "\n";
    text += (message ? "" : note ? "note: " : "error: ") + out["text"].String();
  }
  return text;
}

std::string Desk::Cancelled(std::string_view control, std::string_view stage) {
  bool came = false;
  latest_ = client_->Do({{"do", "click"}, {"control", control}}, [&](const Json& out) -> std::optional<Json> {
    if (!(out["on"] == Json("progress")) || !(out["text"] == Json(stage)) || std::exchange(came, true))
      return std::nullopt;
    return Json{{"do", "answer"}, {"value", "cancel"}};
  });
  EXPECT_TRUE(came) << stage;
  return Messages();
}

std::string Desk::Told() {
  const std::string told = Messages();
  Answer("ok");
  return told;
}

std::string Desk::Refused(std::string_view control) {
  const std::string told = control.empty() ? Told() : Told(control);
  return told + " > " + FocusName();
}

void Desk::CloseAll() {
  while (!State()["screens"].Items().empty()) Close();
}

void Desk::Fill(const Fields& fields) {
  for (const auto& [control, value] : fields) {
    Set(control, value);
    CloseLists();
  }
}

void Desk::CloseLists() {
  while (End() == "waiting lookup") Do({{"do", "choose"}});
}

std::string Desk::Texts(std::initializer_list<const char*> controls) {
  std::string text;
  for (const char* control : controls) text += (control == *controls.begin() ? "" : "|") + Text(control);
  return text;
}

std::string Desk::EnabledOf(std::initializer_list<const char*> controls) {
  std::string text;
  for (const char* control : controls) text += Enabled(control) ? "1" : "0";
  return text;
}

std::string Desk::End() const {
  const Json& last = latest_.back();
  return last["on"].String() + (last["for"].IsNull() ? "" : " " + last["for"].String());
}

Json Desk::State(std::string_view control) {
  Json read{{"do", "read"}};
  if (!control.empty()) read.Set("control", control);
  // Reading doesn't count as the latest action.
  for (const Json& out : client_->Do(std::move(read))) {
    if (out["on"] == Json("state")) return out;
  }
  throw UserError("O estado não veio.");
}

std::string Desk::FocusName() { return State()["screens"].Items().back()["focus"].String(); }

Json Desk::Property(std::string_view control, std::string_view property) {
  return State(control)["screens"].Items().back()["controls"][control][property];
}

std::string Desk::Rows(std::string_view set) {
  std::string text;
  const Json state = State(set);
  for (const Json& row : state["screens"].Items().back()["sets"][set]["rows"].Items()) {
    for (const Json& value : row.Items()) {
      if (&value != row.Items().data()) text += "|";
      text += value.IsNull() ? "-" : value.String();
    }
    text += "\n";
  }
  return text;
}

std::vector<Row> Desk::Read(const std::string& set) {
  const Json state = State(set);
  const Json& read = state["screens"].Items().back()["sets"][set];
  const auto& fields = read["fields"].Items();
  std::vector<Row> rows;
  for (const Json& values : read["rows"].Items()) {
    Row row;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Json& value = values.Items()[i];
      row[fields[i].String()] = value.IsNull() ? "-" : value.String();
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string Desk::Column(const std::string& set, const char* field) {
  return std::string(Trim(ReplaceAll(Read(set, {field}), "\n", " ")));
}

std::string Desk::Read(const std::string& set, std::initializer_list<const char*> fields) {
  std::string text;
  for (const Row& row : Read(set)) {
    for (const char* field : fields) text += row.at(field) + (field == *(fields.end() - 1) ? "\n" : "|");
  }
  return text;
}

DeskTest::DeskTest() : database_(CopyDemo(folder_.Path())) {}

Attachment& DeskTest::Db() {
  if (!attachment_) attachment_ = Attachment::Open(database_.string());
  return *attachment_;
}

std::string DeskTest::Sql(std::string_view sql) {
  std::string text = RowsText(Db(), sql);
  Db().CommitRetaining();
  return text;
}

void DeskTest::Run(std::string_view sql) {
  Db().Execute(sql);
  Db().CommitRetaining();
}

void DeskTest::Empty(std::string_view tables) {
  for (const std::string& table : Split(tables, " ")) Db().Execute("DELETE FROM " + table);
  Db().CommitRetaining();
}

std::string DeskTest::Tables(std::string_view tables) {
  std::string text;
  for (const std::string& table : Split(tables, " ")) {
    std::vector<std::string> rows;
    for (const auto& row : Db().Rows("SELECT * FROM " + table)) rows.push_back(Joined(row));
    std::sort(rows.begin(), rows.end());
    text += table + ":\n" + Join(rows, "\n") + "\n";
  }
  Db().CommitRetaining();
  // What no reader could compare is told by a number.
  if (text.size() > 20000) text = std::to_string(std::hash<std::string>()(text));
  return text;
}

void DeskTest::Refuses(Desk& desk, const char* button, std::string_view tables,
                       const std::vector<Refusal>& rules) {
  const auto quiet = [&] {
    for (int told = 0; told < 5 && desk.End() != "idle"; ++told)
      desk.End() == "waiting lookup" ? desk.CloseLists() : void(desk.Answer("ok"));
    if (desk.End() != "idle") desk.Answer("no");
    EXPECT_EQ(desk.End(), "idle");
  };
  for (const Refusal& rule : rules) {
    SCOPED_TRACE(rule.message);
    if (!rule.sql.empty()) Run(rule.sql);
    if (rule.act) rule.act();
    desk.Fill(rule.right);
    const std::string before = Tables(tables);
    desk.Click(button);
    desk.CloseLists();
    EXPECT_EQ(desk.Messages(), rule.message);
    quiet();
    if (!rule.focus.empty()) {
      EXPECT_EQ(desk.FocusName(), rule.focus);
    }
    EXPECT_EQ(Tables(tables), before);
  }
}

void DeskTest::Closed(Desk& desk, const char* button, const std::string& tipo, const std::string& conta) {
  Put(Bloqueio{.tipo = tipo, .conta = conta});
  EXPECT_EQ(desk.Told(button), tipo == "CX" ? "Período do caixa fechado até 20/11/2026."
                                            : "Período fechado até 20/11/2026 para a conta " + conta + ".");
  Run("DELETE FROM BLOQUEIO WHERE TIPO = '" + tipo + "'");
}

void DeskTest::Stoppable(std::string_view tables) {
  Ddl("CREATE SEQUENCE G_PARADA");
  Ddl("CREATE TABLE PARADA (ALVO BIGINT)");
  Ddl("CREATE EXCEPTION E_PARADA 'stop here'");
  for (const std::string& table : Split(tables, " ")) {
    Ddl("CREATE TRIGGER T_" + table + " FOR " + table +
        " AFTER INSERT OR UPDATE OR DELETE AS BEGIN IF (GEN_ID(G_PARADA, 1) = (SELECT ALVO FROM PARADA)) "
        "THEN EXCEPTION E_PARADA; END");
  }
  Run("INSERT INTO PARADA (ALVO) VALUES (-1)");
}

void DeskTest::StopAt(int row) {
  Run("UPDATE PARADA SET ALVO = " + (row < 0 ? "-1" : "GEN_ID(G_PARADA, 0) + 1 + " + std::to_string(row)));
}

std::string DeskTest::Written(const std::string& name, const std::string& bytes) {
  std::ofstream(folder_.Path() / name, std::ios::binary) << bytes;
  return name;
}

void DeskTest::Ddl(std::string_view sql) { Db().ExecuteDdl(sql); }

}  // namespace orv::test
