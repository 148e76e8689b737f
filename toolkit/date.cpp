#include "toolkit/date.h"

#include <array>
#include <charconv>
#include <ctime>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

struct Civil {
  int year, month, day;
};

// Proleptic Gregorian calendar, counted in eras of 400 years that begin on 1 March.
int32_t DaysFrom(int year, int month, int day) {
  year -= month <= 2;
  const int era = (year >= 0 ? year : year - 399) / 400;
  const auto of_era = static_cast<unsigned>(year - era * 400);
  const auto of_year = static_cast<unsigned>((153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1);
  const unsigned day_of_era = of_era * 365 + of_era / 4 - of_era / 100 + of_year;
  return era * 146097 + static_cast<int>(day_of_era) - 719468;
}

Civil CivilFrom(int32_t days) {
  days += 719468;
  const int era = (days >= 0 ? days : days - 146096) / 146097;
  const auto of_era = static_cast<unsigned>(days - era * 146097);
  const unsigned year_of_era = (of_era - of_era / 1460 + of_era / 36524 - of_era / 146096) / 365;
  const unsigned of_year = of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const unsigned shifted = (5 * of_year + 2) / 153;
  const int day = static_cast<int>(of_year - (153 * shifted + 2) / 5 + 1);
  const int month = static_cast<int>(shifted) + (shifted < 10 ? 3 : -9);
  return {static_cast<int>(year_of_era) + era * 400 + (month <= 2), month, day};
}

bool Leap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

std::string Padded(int number, std::size_t width) {
  std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

// Digits only, all of the text.
bool Digits(std::string_view text, int& number) {
  if (text.empty() || text.size() > 4) return false;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

bool TryBrazil(std::string_view text, Date& date) {
  text = Trim(text);
  if (text.empty()) {
    date = Date();
    return true;
  }
  const auto parts = Split(text, "/");
  int day = 0, month = 0, year = 0;
  if (parts.size() != 3 || parts[2].size() != 4 || parts[0].size() > 2 || parts[1].size() > 2) return false;
  if (!Digits(parts[0], day) || !Digits(parts[1], month) || !Digits(parts[2], year)) return false;
  if (!Date::Exists(year, month, day)) return false;
  date = Date(year, month, day);
  return true;
}

std::string TimeText(int64_t seconds) {
  const auto of_day = static_cast<int>(((seconds % 86400) + 86400) % 86400);
  return Padded(of_day / 3600, 2) + ":" + Padded(of_day / 60 % 60, 2) + ":" + Padded(of_day % 60, 2);
}

}  // namespace

int DaysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && Leap(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

bool Date::Exists(int year, int month, int day) {
  return year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
         day <= DaysInMonth(year, month);
}

Date::Date(int year, int month, int day) {
  if (!Exists(year, month, day)) {
    throw RangeError("A data " + Padded(day, 2) + "/" + Padded(month, 2) + "/" + Padded(year, 4) +
                     " não existe.");
  }
  days_ = DaysFrom(year, month, day);
}

Date Date::ParseBrazil(std::string_view text) {
  Date date;
  if (!TryBrazil(text, date)) throw ConversionError(std::string(text), "uma data válida");
  return date;
}

Date Date::ParseBrazilOr(std::string_view text, Date fallback) {
  Date date;
  return TryBrazil(text, date) ? date : fallback;
}

Date Date::ParseNeutral(std::string_view text) {
  const auto parts = Split(text, "-");
  int day = 0, month = 0, year = 0;
  if (parts.size() != 3 || !Digits(parts[0], year) || !Digits(parts[1], month) || !Digits(parts[2], day) ||
      !Exists(year, month, day)) {
    throw ConversionError(std::string(text), "uma data válida");
  }
  return Date(year, month, day);
}

int Date::Year() const { return Empty() ? 0 : CivilFrom(days_).year; }
int Date::Month() const { return Empty() ? 0 : CivilFrom(days_).month; }
int Date::Day() const { return Empty() ? 0 : CivilFrom(days_).day; }

int Date::WeekDay() const {
  ORV_ASSERT(!Empty());
  return ((days_ + 4) % 7 + 7) % 7;
}

std::string Date::Brazil() const {
  if (Empty()) return "";
  const Civil c = CivilFrom(days_);
  return Padded(c.day, 2) + "/" + Padded(c.month, 2) + "/" + Padded(c.year, 4);
}

std::string Date::Sql() const {
  const Civil c = CivilFrom(Empty() ? kZeroDays : days_);
  return Padded(c.month, 2) + "/" + Padded(c.day, 2) + "/" + Padded(c.year, 4);
}

std::string Date::Neutral() const {
  if (Empty()) return "";
  const Civil c = CivilFrom(days_);
  return Padded(c.year, 4) + "-" + Padded(c.month, 2) + "-" + Padded(c.day, 2);
}

Date Date::AddDays(int days) const { return Empty() ? *this : FromDays(days_ + days); }

Date Date::AddMonths(int months) const {
  if (Empty()) return *this;
  const Civil c = CivilFrom(days_);
  const int index = c.year * 12 + c.month - 1 + months;
  const int year = index / 12, month = index % 12 + 1;
  return Date(year, month, std::min(c.day, DaysInMonth(year, month)));
}

Date Date::FirstOfMonth() const { return Empty() ? *this : Date(Year(), Month(), 1); }
Date Date::LastOfMonth() const {
  return Empty() ? *this : Date(Year(), Month(), DaysInMonth(Year(), Month()));
}

int operator-(Date a, Date b) {
  ORV_ASSERT(!a.Empty() && !b.Empty());
  return a.days_ - b.days_;
}

DateTime::DateTime(Date date, int hour, int minute, int second)
    : seconds_(int64_t{date.Days()} * 86400 + hour * 3600 + minute * 60 + second) {}

Date DateTime::Day() const {
  const int64_t days = seconds_ >= 0 ? seconds_ / 86400 : -((-seconds_ + 86399) / 86400);
  return Date::FromDays(static_cast<int32_t>(days));
}

std::string DateTime::Brazil() const { return Day().Brazil() + " " + TimeText(seconds_); }
std::string DateTime::Neutral() const { return Day().Neutral() + " " + TimeText(seconds_); }

DateTime Clock::Now() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const Date today = fixed_.Empty() ? Date(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) : fixed_;
  return DateTime(today, local.tm_hour, local.tm_min, std::min(local.tm_sec, 59));
}

Date Clock::Today() const { return Now().Day(); }

}  // namespace orv
