// A day without time, and a day with time.
#pragma once

#include <compare>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace orv {

class Date {
 public:
  // The empty date. Before every other one.
  constexpr Date() = default;
  // Raises RangeError for a day that isn't in the calendar (years 1 to 9999).
  Date(int year, int month, int day);
  static bool Exists(int year, int month, int day);
  // Days since 1970-01-01.
  static constexpr Date FromDays(int32_t days) {
    Date d;
    d.days_ = days;
    return d;
  }
  // The day that the module writes for an empty date, 1899-12-30; reading it back gives the empty date.
  static constexpr int32_t kZeroDays = -25569;

  // "dd/mm/yyyy", strict; the empty text is the empty date. Raises ConversionError.
  static Date ParseBrazil(std::string_view text);
  // The same, `fallback` for what isn't a date.
  static Date ParseBrazilOr(std::string_view text, Date fallback);
  // "yyyy-mm-dd". Raises ConversionError.
  static Date ParseNeutral(std::string_view text);

  constexpr bool Empty() const { return days_ == kEmpty; }
  constexpr int32_t Days() const { return days_; }
  int Year() const;
  int Month() const;
  int Day() const;
  // 0 Sunday to 6 Saturday.
  int WeekDay() const;

  // "dd/mm/yyyy", or "" for the empty date.
  std::string Brazil() const;
  // "MM/DD/YYYY", the form of a date in SQL; the zero date for the empty one.
  std::string Sql() const;
  // "yyyy-mm-dd", or "".
  std::string Neutral() const;

  // Adding to the empty date gives the empty date.
  Date AddDays(int days) const;
  // The same day of another month, or that month's last.
  Date AddMonths(int months) const;
  Date FirstOfMonth() const;
  Date LastOfMonth() const;

  friend constexpr auto operator<=>(Date a, Date b) = default;
  // Days from `b` to `a`; neither is empty.
  friend int operator-(Date a, Date b);

 private:
  static constexpr int32_t kEmpty = std::numeric_limits<int32_t>::min();
  int32_t days_ = kEmpty;
};

// Days of a month, 28 to 31.
int DaysInMonth(int year, int month);

// A day with time, in seconds since 1970-01-01 00:00 local time.
class DateTime {
 public:
  constexpr DateTime() = default;
  static constexpr DateTime FromSeconds(int64_t seconds) {
    DateTime t;
    t.seconds_ = seconds;
    return t;
  }
  DateTime(Date date, int hour, int minute, int second);
  constexpr int64_t Seconds() const { return seconds_; }
  Date Day() const;
  // "dd/mm/yyyy hh:mm:ss".
  std::string Brazil() const;
  // "yyyy-mm-dd hh:mm:ss".
  std::string Neutral() const;
  friend constexpr auto operator<=>(DateTime a, DateTime b) = default;

 private:
  int64_t seconds_ = 0;
};

// What the desk takes for now; a fixed day stands in for today where one is given.
class Clock {
 public:
  Clock() = default;
  explicit Clock(Date fixed) : fixed_(fixed) {}
  Date Today() const;
  DateTime Now() const;

 private:
  Date fixed_;
};

}  // namespace orv
