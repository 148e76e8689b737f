#include "host/services/calendar.h"

#include <algorithm>
#include <array>
#include <utility>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// How long another session's change of the holidays may stay unseen.
constexpr std::chrono::seconds kFresh{30};

// Law 14.759 of 2023 made 20 November a holiday of the whole country.
constexpr int kFirstConscienceYear = 2024;

bool Weekend(Date date) { return date.WeekDay() == 0 || date.WeekDay() == 6; }

}  // namespace

// The anonymous Gregorian computus.
Date Easter(int year) {
  const int a = year % 19, b = year / 100, c = year % 100;
  const int d = b / 4, e = b % 4, f = (b + 8) / 25, g = (b - f + 1) / 3;
  const int h = (19 * a + b - d - g + 15) % 30;
  const int i = c / 4, k = c % 4, l = (32 + 2 * e + 2 * i - h - k) % 7;
  const int m = (a + 11 * h + 22 * l) / 451;
  const int month = (h + l - 7 * m + 114) / 31;
  const int day = (h + l - 7 * m + 114) % 31 + 1;
  return Date(year, month, day);
}

bool IsBankHoliday(Date date) {
  if (date.Empty()) return false;
  static constexpr std::array<std::pair<int, int>, 8> kFixed{
      {{1, 1}, {4, 21}, {5, 1}, {9, 7}, {10, 12}, {11, 2}, {11, 15}, {12, 25}}};
  const std::pair<int, int> day{date.Month(), date.Day()};
  if (std::find(kFixed.begin(), kFixed.end(), day) != kFixed.end()) return true;
  if (day == std::pair{11, 20} && date.Year() >= kFirstConscienceYear) return true;
  // Carnival Monday and Tuesday, Good Friday, Corpus Christi.
  static constexpr std::array<int, 4> kFromEaster{-48, -47, -2, 60};
  const int distance = date - Easter(date.Year());
  return std::find(kFromEaster.begin(), kFromEaster.end(), distance) != kFromEaster.end();
}

void Calendar::Read() {
  const auto now = std::chrono::steady_clock::now();
  if (read_ && now - read_at_ < kFresh) return;
  general_.clear();
  of_company_.clear();
  for (const Holiday& holiday : List()) {
    auto& days = holiday.company.empty() ? general_ : of_company_[holiday.company];
    days.insert(holiday.date.Days());
  }
  read_ = true;
  read_at_ = now;
}

bool Calendar::IsWorkingDay(Date date, std::string_view company) {
  if (Weekend(date) || IsBankHoliday(date)) return false;
  Read();
  if (general_.contains(date.Days())) return false;
  const auto own = of_company_.find(std::string(company));
  return own == of_company_.end() || !own->second.contains(date.Days());
}

Date Calendar::WorkingDay(Date date, bool backwards, std::string_view company) {
  if (date.Empty()) return date;
  while (!IsWorkingDay(date, company)) date = date.AddDays(backwards ? -1 : 1);
  return date;
}

Date Calendar::AddWorkingDays(Date date, int days, std::string_view company) {
  if (date.Empty()) return date;
  for (; days > 0; --days) date = WorkingDay(date.AddDays(1), false, company);
  return date;
}

std::vector<Holiday> Calendar::List() {
  std::vector<Holiday> holidays;
  for (auto& row : db_.Rows("SELECT DATA, EMP_PAT, NOME FROM FERIADO ORDER BY 1, 2")) {
    holidays.push_back({row[0].AsDate(), std::string(Trim(row[1].AsString())), row[2].AsString()});
  }
  return holidays;
}

void Calendar::Add(const Holiday& holiday) {
  if (holiday.date.Empty()) throw UserError("Informe a data do feriado.");
  if (Trim(holiday.name).empty()) throw UserError("Informe o nome do feriado.");
  db_.Execute("UPDATE OR INSERT INTO FERIADO (DATA, EMP_PAT, NOME) VALUES (" + Quote(holiday.date.Sql()) +
              ", " + Quote(holiday.company) + ", " + Quote(CutChars(holiday.name, 60)) +
              ") MATCHING (DATA, EMP_PAT)");
  Refresh();
}

bool Calendar::Remove(Date date, std::string_view company) {
  Refresh();
  return db_.Execute("DELETE FROM FERIADO WHERE DATA = " + Quote(date.Sql()) +
                     " AND EMP_PAT = " + Quote(company)) > 0;
}

}  // namespace orv
