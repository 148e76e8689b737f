// A fixture for scenarios: a database of its own in a temporary folder, sessions in process, and short forms
// of what a person does.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
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

// A user at the desk, whose own folder is the one in which the database stands.
class Desk {
 public:
  Desk(const std::filesystem::path& database, const std::string& user = "ana",
       const std::string& company = "_001", const std::string& today = kToday);

  // Sends an object; keeps and gives what came back.
  const std::vector<Json>& Do(Json in);
  const std::vector<Json>& Click(std::string_view control) {
    return Do({{"do", "click"}, {"control", control}});
  }
  const std::vector<Json>& Set(std::string_view control, std::string_view value) {
    return Do({{"do", "set"}, {"control", control}, {"value", value}});
  }
  const std::vector<Json>& Focus(std::string_view control) {
    return Do({{"do", "focus"}, {"control", control}});
  }
  const std::vector<Json>& Answer(std::string_view value) { return Do({{"do", "answer"}, {"value", value}}); }
  const std::vector<Json>& Open(std::string_view screen_class) {
    return Do({{"do", "open"}, {"class", screen_class}});
  }

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
  bool Enabled(std::string_view control) { return Property(control, "enabled").Bool(); }
  // The rows of a set: values joined by "|", null as "-", one a line.
  std::string Rows(std::string_view set);
  // The same by the names of the fields.
  std::vector<Row> Read(const std::string& set);
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
  // Rows of a statement as text: values joined by "|", null as "-", rows by ";".
  std::string Sql(std::string_view sql);
  void Run(std::string_view sql);
  // Inserts a row. Of a column that is named twice the later value counts; "null" is none.
  void Store(const std::string& table, const Fields& fields);
  // A change of the schema.
  void Ddl(std::string_view sql);
  // Closes the attachment of `Db`: an embedded file belongs to one process at a time.
  void LetGo() { attachment_.reset(); }

  TempFolder folder_;
  std::filesystem::path database_;

 private:
  std::unique_ptr<Attachment> attachment_;
};

}  // namespace orv::test
