#include "host/services/numbering.h"

#include <algorithm>
#include <cstdint>

#include "host/schema/tables.h"
#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMaxName = 31;
// Digits of a number that is looked at as one; longer texts aren't numbers of ours.
constexpr int kMaxDigits = 12;

// The name that the schema gives the sequence, or one made of a hash where that would be too long.
std::string NameOf(const std::string& table, const std::string& column, const std::string& suffix) {
  if (4 + table.size() + column.size() + suffix.size() <= kMaxName)
    return SequenceName(table, column, suffix);
  uint64_t hash = 14695981039346656037ULL;
  for (const char c : table + "_" + column) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  return "SQ_H" + std::to_string(hash) + suffix;
}

std::string Padded(int64_t number, int width) {
  std::string digits = std::to_string(number);
  const auto wide = static_cast<std::size_t>(width);
  return digits.size() < wide ? std::string(wide - digits.size(), '0') + digits : digits;
}

int64_t PowerOfTen(int digits) {
  int64_t power = 1;
  for (; digits > 0; --digits) power *= 10;
  return power;
}

}  // namespace

int64_t Numbering::Draw(const std::string& sequence, int64_t step) {
  return db_.Scalar("SELECT GEN_ID(" + sequence + ", " + std::to_string(step) + ") FROM RDB$DATABASE")
      .AsInteger();
}

void Numbering::NeedSequence(const std::string& sequence) {
  if (known_.contains(sequence)) return;
  const std::string exists =
      "SELECT COUNT(*) FROM RDB$GENERATORS WHERE RDB$GENERATOR_NAME = " + SqlLiteral(sequence);
  if (db_.Scalar(exists).AsInteger() == 0) {
    try {
      make_sequence_("CREATE SEQUENCE " + sequence);
    } catch (const DatabaseError&) {
      // Another session made it in between.
      if (db_.Scalar(exists).AsInteger() == 0) throw;
    }
  }
  known_.insert(sequence);
}

Numbering::Place Numbering::Find(std::string_view table, std::string_view column, int width,
                                 std::string_view company) const {
  const SequenceDef kind = SequenceOf(table, column);
  const std::string numbers = "A numeração de " + Upper(table) + "." + Upper(column);
  std::size_t room = kMaxDigits;
  for (const ColumnRef& held : kind.Columns()) {
    const TableDef* def = FindTable(held.table);
    const ColumnDef* column_def = def ? def->Find(held.column) : nullptr;
    if (column_def == nullptr || column_def->type != ColumnType::Text || width < 1 || width > kMaxDigits)
      throw UserError(numbers + " não existe.");
    room = std::min(room, static_cast<std::size_t>(column_def->width));
  }
  NumberPlace place = companies_.GetSharing().NumbersOf(kind, company);
  return {std::move(place.columns), NameOf(kind.table, kind.column, place.suffix),
          numbers + " chegou ao fim.", room};
}

bool Numbering::Taken(const Place& place, const std::string& number) {
  std::vector<std::string> holders;
  for (const ColumnRef& held : place.columns)
    holders.push_back("EXISTS (SELECT 1 FROM " + held.table + " WHERE " + held.column + " = " +
                      SqlLiteral(number) + ")");
  return !db_.Rows("SELECT 1 FROM RDB$DATABASE WHERE " + Join(holders, " OR ")).empty();
}

std::string Numbering::Next(std::string_view table, std::string_view column, int width,
                            std::string_view company) {
  const Place place = Find(table, column, width, company);
  NeedSequence(place.sequence);

  int64_t number = Draw(place.sequence, 1);
  // A sequence that was never used starts above the rows that came in by other means.
  if (number == 1)
    if (const int64_t top = TopNumber(db_, place.columns, width); top > 0)
      number = std::max(number, Draw(place.sequence, top));
  // Ever longer steps leave a block of taken numbers behind without looking at each.
  for (int64_t step = 1;; step *= 2) {
    std::string text = Padded(number, width);
    if (text.size() > place.width) throw UserError(place.end);
    if (!Taken(place, text)) return text;
    number = Draw(place.sequence, step);
  }
}

std::vector<std::string> Numbering::Next(std::string_view table, std::string_view column, int width,
                                         std::string_view company, std::size_t count) {
  std::vector<std::string> numbers;
  if (count == 0) return numbers;
  numbers.reserve(count);
  // The first one finds where a sequence that was never used begins.
  numbers.push_back(Next(table, column, width, company));
  const Place place = Find(table, column, width, company);
  while (numbers.size() < count) {
    const auto missing = static_cast<int64_t>(count - numbers.size());
    const int64_t last = Draw(place.sequence, missing);
    // Numbers of one length stand as texts in their own order.
    for (int64_t from = last - missing + 1; from <= last;) {
      const std::string first = Padded(from, width);
      const int64_t to = std::min(last, PowerOfTen(static_cast<int>(first.size())) - 1);
      if (first.size() > place.width) throw UserError(place.end);
      std::unordered_set<std::string> taken;
      const std::string range = " BETWEEN " + SqlLiteral(first) + " AND " + SqlLiteral(Padded(to, width));
      for (const ColumnRef& held : place.columns)
        for (const auto& row :
             db_.Rows("SELECT " + held.column + " FROM " + held.table + " WHERE " + held.column + range))
          taken.insert(row[0].AsString());
      for (; from <= to; ++from) {
        std::string text = Padded(from, width);
        if (!taken.contains(text)) numbers.push_back(std::move(text));
      }
    }
  }
  return numbers;
}

}  // namespace orv
