// A fixture for scenarios: a database of its own in a temporary folder, sessions in process, and short forms
// of what a person does.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desk/session/door_client.h"
#include "frame/module.h"
#include "host/data/attachment.h"
#include "tests/support/rows.h"

namespace orv::test {

// A folder that is removed with everything in it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// An empty database of the test's own.
struct TempDatabase {
  Attachment& operator*() { return *db; }
  Attachment* operator->() { return db.get(); }
  TempFolder temp;
  std::filesystem::path folder = temp.Path();
  std::string file = folder / "empresa.fdb";
  std::unique_ptr<Attachment> db = Attachment::Create(file);
};

// Rows of a statement as text: values joined by "|", null as "-", rows by ";".
std::string RowsText(Attachment& db, std::string_view sql);

// The text of the UserError that `act` raises, "" without one.
std::string ErrorOf(const std::function<void()>& act);

// The day on which the demo companies of the tests end.
constexpr const char* kToday = "2026-11-20";

// Makes the demo database of the tests. Its users: "ana" (administrator) and "leo" (no rights).
void MakeTestDemo(const std::filesystem::path& file);
// A copy of it. The one that is copied is named by ORV_DEMO, or else made once a process.
std::filesystem::path CopyDemo(const std::filesystem::path& folder);

// Names with their values, of controls or columns.
using Fields = std::vector<std::pair<std::string, std::string>>;
// A row of a set: its values by their fields.
using Row = std::map<std::string, std::string>;

// A screen, and who opens it where.
struct At {
  const char* screen;
  const char *user = "ana", *company = "_001";
};

// A user at the desk, whose own folder is the one in which the database stands.
class Desk {
 public:
  Desk(const std::filesystem::path& database, const std::string& user = "ana",
       const std::string& company = "_001", const std::string& today = kToday);
  Desk(const std::filesystem::path& database, const At& at) : Desk(database, at.user, at.company) {
    Open(at.screen);
  }

  // Sends an object; keeps and gives what came back.
  const std::vector<Json>& Do(Json in);
  const std::vector<Json>& Click(std::string_view control) {
    return Do({{"do", "click"}, {"control", control}});
  }
  const std::vector<Json>& Set(std::string_view control, std::string_view value) {
    return Do({{"do", "set"}, {"control", control}, {"value", value}});
  }
  void Set(const Fields& fields) {
    for (const auto& [control, value] : fields) Set(control, value);
  }
  const std::vector<Json>& Focus(std::string_view control) {
    return Do({{"do", "focus"}, {"control", control}});
  }
  const std::vector<Json>& Answer(std::string_view value) { return Do({{"do", "answer"}, {"value", value}}); }
  const std::vector<Json>& Open(std::string_view screen_class) {
    return Do({{"do", "open"}, {"class", screen_class}});
  }
  void Close() { Do({{"do", "close"}}); }
  void CloseAll();
  void Page(std::string_view page, std::string_view pages = "PageControl1") {
    Do({{"do", "page"}, {"control", pages}, {"page", page}});
  }
  // Gives a control its value and goes on to the next.
  void Leave(std::string_view control, std::string_view value, std::string_view next) {
    Set(control, value);
    Focus(next);
  }
  void Check(std::string_view control, bool on) {
    Do({{"do", "check"}, {"control", control}, {"value", on}});
  }
  // In the list that is open: the row of a key, the first one.
  void Choose(std::string_view key) { Do({{"do", "choose"}, {"key", key}}); }
  void ChooseFirst() { Do({{"do", "choose"}, {"rows", Json::Array{0}}}); }
  // Gives the controls their values; lists that empty fields open on the way are closed.
  void Fill(const Fields& fields);
  void CloseLists();

  // --- Of a grid.
  void Stand(std::string_view grid, int row) { Do({{"do", "row"}, {"control", grid}, {"row", row}}); }
  void Cell(std::string_view grid, int row, std::string_view column, std::string_view value) {
    Do({{"do", "cell"}, {"control", grid}, {"row", row}, {"column", column}, {"value", value}});
  }
  void Key(std::string_view grid, int row, std::string_view column, std::string_view key) {
    Do({{"do", "key"}, {"control", grid}, {"row", row}, {"column", column}, {"key", key}});
  }
  void DoubleClick(std::string_view grid, int row, std::string_view column) {
    Do({{"do", "dblclick"}, {"control", grid}, {"row", row}, {"column", column}});
  }
  void Append(std::string_view grid) { Do({{"do", "append"}, {"control", grid}}); }
  void Delete(std::string_view grid, int row) { Do({{"do", "delete"}, {"control", grid}, {"row", row}}); }
  void Title(std::string_view grid, std::string_view column) {
    Do({{"do", "title"}, {"control", grid}, {"column", column}});
  }

  // --- With what comes of it.
  // Clicks; the messages that come.
  std::string Press(std::string_view control) { return Click(control), Messages(); }
  // Clicks, and cancels the gathering as soon as it tells of that stage; what was told.
  std::string Cancelled(std::string_view control, std::string_view stage);
  // Clicks and answers the question that comes.
  void Press(std::string_view control, std::string_view answer) { Click(control), Answer(answer); }
  // The messages, which are read and closed; with a control it is clicked before.
  std::string Told();
  std::string Told(std::string_view control) { return Click(control), Told(); }
  // The same, with where the focus is after it: "message > focus".
  std::string Refused() { return Refused(""); }
  std::string Refused(std::string_view control);

  // --- Of the latest answer.
  const std::vector<Json>& Latest() const { return latest_; }
  // Texts of the messages shown, one a line; errors as "error: ...", notes as "note: ...".
  std::string Messages() const;
  // "idle" or "waiting answer", "waiting lookup"...
  std::string End() const;

  // --- Of the present state.
  Json State(std::string_view control = "");
  // The top screen's focus.
  std::string FocusName();
  // A property of a control of the top screen.
  Json Property(std::string_view control, std::string_view property);
  std::string Text(std::string_view control) { return Property(control, "text").String(); }
  // Texts of several controls, joined by "|".
  std::string Texts(std::initializer_list<const char*> controls);
  bool Enabled(std::string_view control) { return Property(control, "enabled").Bool(); }
  // Of several controls: "1" where one can be used, "0" where not.
  std::string EnabledOf(std::initializer_list<const char*> controls);
  bool Visible(std::string_view control) { return Property(control, "visible").Bool(); }
  std::string Caption(std::string_view control) { return Property(control, "caption").String(); }
  // The class of the screen on top.
  std::string Top() { return State()["screens"].Items().back()["class"].String(); }
  // A set of the top screen: "fields", "rows", "row", "state".
  Json SetOf(std::string_view set) { return State(set)["screens"].Items().back()["sets"][set]; }
  // The rows of a set: values joined by "|", null as "-", one a line.
  std::string Rows(std::string_view set);
  // The same by the names of the fields.
  std::vector<Row> Read(const std::string& set);
  // Of one field of all rows, parted by blanks.
  std::string Column(const std::string& set, const char* field);
  // Of the rows these fields only, joined as above.
  std::string Read(const std::string& set, std::initializer_list<const char*> fields);

 private:
  Log log_;
  std::unique_ptr<DoorClient> client_;
  std::vector<Json> latest_;
};

// The report that a button prints, as text, or as a page where it has no text, without what tells the hour.
std::string Printed(Desk& desk, std::string_view button);

// Compares with a file of a test's folder. What was made instead stands beside the program, under its name.
void ExpectFile(const std::string& made, const std::filesystem::path& file);

class DeskTest : public ::testing::Test {
 protected:
  DeskTest();
  // Opens another attachment to the same database: what the desk committed.
  Attachment& Db();
  // Rows of a statement as text.
  std::string Sql(std::string_view sql);
  void Run(std::string_view sql);
  // Inserts a row (rows.h), and what stands in the rows to come.
  template <class R>
  void Put(const R& row, const std::string& company = "_001") {
    Run(Insert(row, company, usuals_));
  }
  template <class R>
  void Usual(const R& row) {
    Note(R::kTable, R::kColumns, row.Cells(), usuals_);
  }
  // Switches parameters of the group on; read when a screen opens.
  void Fin(std::initializer_list<int> numbers) {
    for (const int number : numbers) Put(Parametro{.numero = number});
  }
  // A change of the schema.
  void Ddl(std::string_view sql);

  // --- Of tables, named one after the other: "CONTACOR_001 EXTRATO_001".
  void Empty(std::string_view tables);
  // All their rows, in an order of their own: compared, it tells whether anything changed.
  std::string Tables(std::string_view tables);
  // How many rows there are, of all or where.
  std::string Count(const std::string& table, const std::string& where = "1 = 1") {
    return Sql("SELECT COUNT(*) FROM " + table + " WHERE " + where);
  }
  // The audit lines of an area: text, operation, key.
  std::string Audit(const std::string& area = "CONTACOR") {
    return Sql("SELECT TEXTO, OPERACAO, CHAVE FROM AUDITORIA WHERE AREA = '" + area + "' ORDER BY ID");
  }

  // --- Refusals.
  // A rule that refuses, in the order in which an action asks them. Before it the rule that refused last is
  // put in order: by values of controls, a statement, or more.
  struct Refusal {
    Fields right;
    std::string message;
    std::string focus = {};  // where the focus is after the message was read, if that matters
    std::string sql = {};
    std::function<void()> act{};
  };
  // Puts the rules in order one by one and presses `button` each time: it tells the next rule's message,
  // leaves the focus and nothing in the tables changes.
  void Refuses(Desk& desk, const char* button, std::string_view tables, const std::vector<Refusal>& rules);
  // Presses the button while a period is closed up to today, which the user is told.
  void Closed(Desk& desk, const char* button, const std::string& tipo, const std::string& conta = "");

  // --- Statements that fail.
  // From here on the database can refuse a row that is written into one of the tables.
  void Stoppable(std::string_view tables);
  // Refuses the row number `row` from now on, counted from 0; -1 for none.
  void StopAt(int row);
  // Writes a file into the user's own folder; the path by which he names it.
  std::string Written(const std::string& name, const std::string& bytes);
  // Closes the attachment of `Db`: an embedded file belongs to one process at a time.
  void LetGo() { attachment_.reset(); }

  TempFolder folder_;
  std::filesystem::path database_;

 private:
  std::unique_ptr<Attachment> attachment_;
  Usuals usuals_;
};

}  // namespace orv::test
