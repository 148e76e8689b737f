#include "tests/support/desk_test.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "host/schema/demo.h"
#include "host/services/audit.h"
#include "host/services/users.h"

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
  std::string text;
  for (const auto& row : Db().Rows(sql)) {
    if (!text.empty()) text += ";";
    text += Joined(row);
  }
  Db().CommitRetaining();
  return text;
}

void DeskTest::Run(std::string_view sql) {
  Db().Execute(sql);
  Db().CommitRetaining();
}

void DeskTest::Store(const std::string& table, const Fields& fields) {
  std::string names, values;
  for (const auto& [name, value] : Row(fields.rbegin(), fields.rend())) {
    names += (names.empty() ? "" : ", ") + name;
    values += (values.empty() ? "" : ", ") + (value == "null" ? value : Quote(value));
  }
  Run("INSERT INTO " + table + " (" + names + ") VALUES (" + values + ")");
}

void DeskTest::Ddl(std::string_view sql) { Db().ExecuteDdl(sql); }

}  // namespace orv::test
