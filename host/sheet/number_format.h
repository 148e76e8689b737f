// How a book's number formats show a cell, in the Brazilian form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Milliseconds since 1970-01-01 of a count of days as a sheet stores it, from 1900 or from 1904 on. Nothing
// for what no sheet shows as a day: before its first one, or after the year 9999.
std::optional<int64_t> SerialTime(double serial, bool from1904);

class NumberFormat {
 public:
  static constexpr std::size_t kMostCode = 1024;

  // A code as files hold it, whatever the country: "#,##0.00;[Red]-#,##0.00", "dd/mm/yyyy hh:mm", "General".
  // One of more than `kMostCode` bytes counts as "General".
  explicit NumberFormat(std::string_view code);
  // The code of a format that files name by its number alone, "General" for any other number.
  static std::string_view BuiltIn(int id);

  // The number is a day or a time.
  bool ShowsTime() const { return !sections_.empty() && sections_[0].time; }
  // It says how texts are shown, too.
  bool ShowsText() const { return numbers_ < sections_.size(); }
  // --- Each adds the text to `out`: a few kilobytes at most, beside the cell's own text.
  // The number is finite.
  void Number(double number, std::string& out) const;
  // `milliseconds` as of `SerialTime`; `serial` is what hours beyond 24 are counted from.
  void Time(int64_t milliseconds, double serial, std::string& out) const;
  void Text(std::string_view text, std::string& out) const;

 private:
  enum class Kind : uint8_t {
    Literal,
    Digit,
    Point,
    Exponent,
    General,
    Text,
    Year,
    Month,
    Day,
    Hour,
    Minute,
    Second,
    Fraction,
    AmPm,
    Hours,
    Minutes,
    Seconds
  };
  struct Token {
    Kind kind;
    char mark;       // the digit's; '+' for an exponent that shows it
    uint16_t at;     // the literal's place in the code
    uint16_t count;  // its bytes; of any other, how often its letter stands there
  };
  struct Section {
    std::vector<Token> tokens;
    bool time = false;
    bool text = false;
    bool plain = false;  // a form that is shown as "General": fractions
    bool grouped = false;
    bool exponent = false;
    int whole = 0, decimals = 0;  // places for digits
    int scale = 0;                // powers of ten
    char condition = 0;           // '<', 'l' for "<=", '>', 'g' for ">=", '=', '!' for "<>"
    double bound = 0;
  };
  struct Decimal;

  std::size_t Bracket(std::size_t at, Section& section);
  std::size_t Next(std::size_t at, Section& section);
  void Add(Section& section, Kind kind, std::size_t at, std::size_t count, char mark = 0);
  static void Finish(Section& section);
  const Section* Choose(double number, bool& minus) const;
  void Write(const Section& section, Decimal decimal, bool minus, std::string& out) const;

  std::string code_;
  std::vector<Section> sections_;
  std::size_t numbers_ = 0;  // sections for numbers; one behind them is for texts
};

}  // namespace orv
