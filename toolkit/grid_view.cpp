#include "toolkit/grid_view.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

#include "toolkit/grid.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// What is looked for: words in lower case without accents. One that is a number is also looked for in numbers
// written without points, so that 1234,5 finds 1.234,50.
struct Word {
  std::string text;
  std::string number;  // "" for one that isn't a number
};

std::vector<Word> WordsOf(std::string_view find) {
  std::vector<Word> words;
  for (std::string& text : Split(Fold(find), " ")) {
    if (text.empty()) continue;
    const bool number = text.find_first_not_of("0123456789.,-") == std::string::npos;
    std::string bare = number ? ReplaceAll(text, ".", "") : "";
    words.push_back({std::move(text), std::move(bare)});
  }
  return words;
}

// An amount as it is shown, without its points.
void AppendBare(const GridColumn& column, const Field& field, const Value& value, std::string& out) {
  constexpr int64_t kMost = int64_t{1} << 60;
  const Int128 raw = value.Kind() == ValueKind::Currency ? value.AsCurrency().Raw() : Int128{kMost};
  if (column.decimals != 2 || raw <= -kMost || raw >= kMost) {
    out += ReplaceAll(TOrvDBGrid::ReadText(column, field, value), ".", "");
    return;
  }
  constexpr int64_t kCent = Currency::kScale / 100;
  const auto amount = static_cast<int64_t>(raw);
  const int64_t cents = ((amount < 0 ? -amount : amount) + kCent / 2) / kCent;
  if (amount < 0 && cents != 0) out += '-';
  out += std::to_string(cents / 100);
  out += ',';
  out += static_cast<char>('0' + cents / 10 % 10);
  out += static_cast<char>('0' + cents % 10);
}

bool IsNumber(FieldType type) {
  return type == FieldType::Currency || type == FieldType::Float || type == FieldType::Integer;
}

// A column with its field, and the folded word of each code.
struct Searched {
  const GridColumn* column;
  const Field* field;
  std::unordered_map<std::string, std::string> words;

  Searched(const GridColumn& of, const Field& in) : column(&of), field(&in) {
    for (const CodeWord& code : of.words) words.emplace(code.code, Fold(code.word));
  }
  // Nothing but what the field holds.
  bool Plain() const { return words.empty() && column->checked.empty(); }

  void Append(const Value& value, std::string& out) const {
    if (!words.empty()) {
      const auto found = words.find(value.AsString());
      if (found != words.end()) {
        out += found->second;
        return;
      }
    }
    if (Plain() && value.IsText()) {
      AppendFolded(value.Text(), out);
    } else {
      AppendFolded(TOrvDBGrid::ReadText(*column, *field, value), out);
    }
  }
};

}  // namespace

void GridView::Arrange(std::string sort, bool descending, std::string find, std::vector<std::string> among) {
  if (Trim(find).empty()) find.clear();
  if (sort == sort_ && descending == descending_ && find == find_ && among == among_) return;
  sort_ = std::move(sort);
  descending_ = descending && !sort_.empty();
  find_ = std::move(find);
  among_ = std::move(among);
  stale_ = true;
  if (Active()) return;
  rows_ = {};
  places_ = {};
}

int64_t GridView::Number() const {
  if (!Active()) return 0;
  Refresh();
  return number_;
}

int64_t GridView::Count() const {
  const DataSet& set = grid_.Set();
  if (!Active()) return set.Active() ? grid_.Set().DisplayCount() : 0;
  Refresh();
  return static_cast<int64_t>(rows_.size()) + (set.State() == DataSetState::Insert ? 1 : 0);
}

int64_t GridView::RowAt(int64_t place) const {
  if (!Active()) return place;
  Refresh();
  const int64_t inserted = grid_.Set().State() == DataSetState::Insert ? grid_.Set().DisplayRow() : INT64_MAX;
  if (place >= static_cast<int64_t>(rows_.size())) return inserted;
  const int64_t row = rows_[static_cast<std::size_t>(place)];
  return row < inserted ? row : row + 1;
}

int64_t GridView::PlaceOf(int64_t row) const {
  if (!Active()) return row;
  Refresh();
  if (grid_.Set().State() == DataSetState::Insert) {
    const int64_t inserted = grid_.Set().DisplayRow();
    if (row == inserted) return static_cast<int64_t>(rows_.size());
    if (row > inserted) --row;
  }
  return row < 0 || row >= std::ssize(places_) ? -1 : places_[static_cast<std::size_t>(row)];
}

void GridView::Refresh() const {
  const DataSet& set = grid_.Set();
  if (!stale_ && version_ == set.RowsVersion()) return;
  stale_ = false;
  version_ = set.RowsVersion();
  ++number_;
  rows_.clear();
  places_.clear();
  if (!set.Active()) return;
  rows_ = Left();
  SortBy(rows_);
  places_.assign(static_cast<std::size_t>(set.RecordCount()), -1);
  for (std::size_t place = 0; place < rows_.size(); ++place)
    places_[rows_[place]] = static_cast<int32_t>(place);
}

// The rows that hold the words, in the order of the set.
std::vector<uint32_t> GridView::Left() const {
  DataSet& set = grid_.Set();
  const std::vector<Word> words = WordsOf(find_);
  if (words.empty()) {
    std::vector<uint32_t> all(static_cast<std::size_t>(set.RecordCount()));
    std::iota(all.begin(), all.end(), 0U);
    return all;
  }
  const bool numbers =
      std::any_of(words.begin(), words.end(), [](const Word& one) { return !one.number.empty(); });
  std::vector<Searched> searched;
  std::vector<const Field*> fields;
  for (const GridColumn* column : grid_.ShownColumns()) {
    const Field* field = set.FindField(column->field);
    const bool asked =
        among_.empty() || std::find(among_.begin(), among_.end(), column->field) != among_.end();
    if (field == nullptr || !asked) continue;
    Searched one(*column, *field);
    // No letter is in a number.
    if (one.Plain() && IsNumber(field->Type()) && !numbers) continue;
    searched.push_back(std::move(one));
    fields.push_back(field);
  }
  std::vector<uint32_t> left;
  std::string text, bare;
  uint32_t row = 0;
  set.Walk(fields, [&](std::span<const Value* const> cells) {
    text.clear();
    bare.clear();
    for (std::size_t at = 0; at < cells.size(); ++at) {
      if (cells[at]->IsNull() && searched[at].Plain()) continue;
      if (searched[at].Plain() && IsNumber(fields[at]->Type())) {
        AppendBare(*searched[at].column, *fields[at], *cells[at], bare);
        bare += '\n';
      } else {
        searched[at].Append(*cells[at], text);
        text += '\n';
      }
    }
    const bool holds = std::all_of(words.begin(), words.end(), [&](const Word& word) {
      return text.find(word.text) != std::string::npos ||
             (!word.number.empty() && bare.find(word.number) != std::string::npos);
    });
    if (holds) left.push_back(row);
    ++row;
  });
  return left;
}

void GridView::SortBy(std::vector<uint32_t>& rows) const {
  DataSet& set = grid_.Set();
  const auto shown = grid_.ShownColumns();
  const auto column =
      std::find_if(shown.begin(), shown.end(), [this](const GridColumn* one) { return one->field == sort_; });
  const Field* field = column == shown.end() ? nullptr : set.FindField(sort_);
  if (field == nullptr) return;
  const Searched by(**column, *field);
  const bool text = !by.Plain() || field->Type() == FieldType::String;
  std::vector<Value> values;
  values.reserve(static_cast<std::size_t>(set.RecordCount()));
  std::string folded;
  set.Walk(std::span(&field, 1), [&](std::span<const Value* const> cells) {
    if (!text) {
      values.push_back(*cells[0]);
      return;
    }
    folded.clear();
    by.Append(*cells[0], folded);
    values.emplace_back(folded);
  });
  struct Keyed {
    uint64_t prefix;
    uint32_t row;
  };
  std::vector<Keyed> keyed;
  keyed.reserve(rows.size());
  for (const uint32_t row : rows) keyed.push_back({SortPrefix(values[row]), row});
  const auto before = [&](const Keyed& a, const Keyed& b) {
    if (a.prefix != b.prefix) return (a.prefix < b.prefix) != descending_;
    const std::strong_ordering order = Compare(values[a.row], values[b.row]);
    if (order != 0) return (order < 0) != descending_;
    return a.row < b.row;
  };
  std::sort(keyed.begin(), keyed.end(), before);
  for (std::size_t at = 0; at < rows.size(); ++at) rows[at] = keyed[at].row;
}

std::vector<std::pair<std::string, Currency>> GridView::Sums(const std::vector<Range>& ranges) const {
  DataSet& set = grid_.Set();
  std::vector<std::pair<std::string, Currency>> sums;
  for (const GridColumn* column : grid_.ShownColumns()) {
    const Field* field = set.FindField(column->field);
    // A number of two decimals is an amount, one of more a rate or a price.
    const bool amount = field != nullptr && (field->Type() == FieldType::Currency ||
                                             (field->Type() == FieldType::Float && column->decimals == 2));
    if (!amount || !column->checked.empty()) continue;
    Currency sum;
    for (const auto& [from, to] : ranges) {
      for (int64_t place = from; place <= to; ++place) sum += set.Cell(RowAt(place), *field).AsCurrency();
    }
    sums.emplace_back(column->field, sum);
  }
  return sums;
}

}  // namespace orv
