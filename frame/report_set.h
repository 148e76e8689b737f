// A report's set declared once: a table of its fields, by which the set is laid down, its grid's columns are
// made and the rows of statements find their fields.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "toolkit/client_dataset.h"
#include "toolkit/grid.h"

namespace orv {

// A column of a grid: as any other, one that takes no typing where the grid does, or a check box over "S" and
// "N".
enum class ColumnRole : uint8_t { Plain, Fixed, Tick };

// How the set's grid shows a field; without a title it doesn't. `place` orders the columns, 1 for the first,
// where they stand otherwise than the fields.
struct FieldColumn {
  const char* title = nullptr;
  int width = 0;
  int place = 0;
  ColumnRole role = ColumnRole::Plain;
};

struct ReportField {
  const char* name;
  FieldType type;
  int size = 0;
  FieldColumn column = {};
};

// Closes the set and creates it anew with these fields, in their order, without an order of its rows.
void LayDown(TClientDataSet& set, std::span<const ReportField> fields);
std::vector<GridColumn> GridColumns(std::span<const ReportField> fields);

// A row of the set that a table lays down. What is no field of it doesn't compile.
template <const auto& kFields>
class ReportRow {
 public:
  class Name {
   public:
    consteval Name(const char* name) {
      while (std::string_view(name) != kFields.at(place_).name) ++place_;
    }

   private:
    friend class ReportRow;
    std::size_t place_ = 0;
  };
  using Names = std::initializer_list<Name>;

  Value& operator[](Name field) { return values_[field.place_]; }
  const Value& operator[](Name field) const { return values_[field.place_]; }
  // All values, in the order of the fields.
  std::span<Value> Values() { return values_; }

 private:
  std::array<Value, kFields.size()> values_;
};

}  // namespace orv
