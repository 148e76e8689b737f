// The rows of a grid as one display orders and narrows them. The set, its cursor and its order know nothing
// of it: a row goes by its number in the set, and has a place in the view.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/currency.h"

namespace orv {

class TOrvDBGrid;

class GridView {
 public:
  explicit GridView(const TOrvDBGrid& grid) : grid_(grid) {}

  // Ordered by a column as it is read, amounts and days by what they are, and rows that agree in it as they
  // stand in the set; left are the rows whose texts in these columns, or in all shown, hold each word of
  // `find`.
  void Arrange(std::string sort, bool descending, std::string find, std::vector<std::string> among);

  bool Active() const { return !sort_.empty() || !find_.empty(); }
  const std::string& Sort() const { return sort_; }
  bool Descending() const { return descending_; }
  const std::string& Find() const { return find_; }

  // The view follows the stored rows of its set, so that one in edit keeps its place; one in insertion stands
  // at the end until it is posted.

  // Another number for another arrangement of the rows, 0 while the view isn't active.
  int64_t Number() const;
  // How many rows it shows.
  int64_t Count() const;
  // The number in the set of the row at a place in the range [0, Count()).
  int64_t RowAt(int64_t place) const;
  // The place of a row of the set, -1 for one that isn't shown.
  int64_t PlaceOf(int64_t row) const;

  // The sums of the amounts that are shown over places of the view: ranges from one to another, both
  // included, ascending and apart from each other. By field. Raises RangeError.
  using Range = std::pair<int64_t, int64_t>;
  std::vector<std::pair<std::string, Currency>> Sums(const std::vector<Range>& ranges) const;

 private:
  // What the rows are ordered and looked through by, made anew where the set's rows are others.
  void Refresh() const;
  std::vector<uint32_t> Left() const;
  void SortBy(std::vector<uint32_t>& rows) const;

  const TOrvDBGrid& grid_;
  std::string sort_;
  bool descending_ = false;
  std::string find_;
  std::vector<std::string> among_;
  // The stored rows in the order of the view, and the place of each of them.
  mutable std::vector<uint32_t> rows_;
  mutable std::vector<int32_t> places_;
  mutable uint64_t version_ = 0;
  mutable bool stale_ = true;
  mutable int64_t number_ = 0;
};

}  // namespace orv
