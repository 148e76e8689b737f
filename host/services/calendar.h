// Working days: weekends, the national and bank holidays, and the holidays that a company adds.
#pragma once

#include <chrono>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "toolkit/database.h"
#include "toolkit/date.h"

namespace orv {

// Easter Sunday of a year in the Gregorian calendar.
Date Easter(int year);

// A holiday of the whole country, or a day on which no bank works.
bool IsBankHoliday(Date date);

// A holiday of the house; `company` is a suffix, "" for all companies.
struct Holiday {
  Date date;
  std::string company;
  std::string name;
};

// The calendar of a session. What the database adds is read once and again after a while, since it hardly
// ever changes and is asked for in every row of a gathering.
class Calendar {
 public:
  explicit Calendar(TOrvDatabase& db) : db_(db) {}

  bool IsWorkingDay(Date date, std::string_view company);
  // That day or the next working day, the one before where `backwards`. The empty date stays empty.
  Date WorkingDay(Date date, bool backwards, std::string_view company);
  // The working day that lies `days` working days after `date`.
  Date AddWorkingDays(Date date, int days, std::string_view company);

  // --- The house's own holidays. The caller commits.
  std::vector<Holiday> List();
  // Replaces the name of a day that is there already. Raises UserError for an empty date.
  void Add(const Holiday& holiday);
  // False when there was none.
  bool Remove(Date date, std::string_view company);
  // Reads the holidays anew at the next question.
  void Refresh() { read_ = false; }

 private:
  void Read();

  TOrvDatabase& db_;
  bool read_ = false;
  std::chrono::steady_clock::time_point read_at_;
  std::unordered_set<int32_t> general_;
  std::unordered_map<std::string, std::unordered_set<int32_t>> of_company_;
};

}  // namespace orv
