// A statement's screen of a session, and what its gathering takes.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "bench/house.h"
#include "bench/measure.h"
#include "toolkit/database.h"

namespace orv::bench {

// The buttons by which a screen gathers and prints.
struct Buttons {
  const char *gather = "BitBtn29", *print = "BitBtn33";
};

// What the user's fields, buttons and sets of the screen's door do; an error of the desk is raised.
class StatementScreen {
 public:
  StatementScreen(const std::filesystem::path& house, const char* screen, const std::string& company = "_001",
                  Buttons buttons = {});
  std::vector<Json> Do(Json in);
  void Set(const char* control, const std::string& value);
  void Period(Date first, Date last);
  void Gather() { Do({{"do", "click"}, {"control", buttons_.gather}}); }
  Json Window(const char* set, int64_t from, int64_t count);
  int64_t Count(const char* set) { return Window(set, 0, 1)["count"].Integer(); }
  // Bytes of the texts that don't stand in their values, each text counted once.
  std::size_t Texts(const std::vector<const char*>& sets);
  // Prints the whole as a PDF; how many pages it has.
  int64_t Pages();

 private:
  Log log_;
  DoorClient client_;
  Buttons buttons_;
};

// Prints the memory that a gathering takes at most, by the rows of `set`, beyond the texts of all `sets`.
// What came before it in the session has to be of a few rows only.
void PrintMemory(StatementScreen& statement, const std::vector<const char*>& sets);
// Prints a PDF of what was gathered and how fast.
void PrintPages(StatementScreen& statement);

}  // namespace orv::bench
