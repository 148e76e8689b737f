#include "frame/report_set.h"

#include <algorithm>

namespace orv {

void LayDown(TClientDataSet& set, std::span<const ReportField> fields) {
  if (set.Active()) set.Close();
  // Rows are put in order once all are there.
  set.SetIndexFieldNames("");
  set.FieldDefs.Clear();
  for (const ReportField& field : fields) set.FieldDefs.Add(field.name, field.type, field.size);
  set.CreateDataSet();
}

std::vector<GridColumn> GridColumns(std::span<const ReportField> fields) {
  std::vector<const ReportField*> shown;
  for (const ReportField& field : fields) {
    if (field.column.title != nullptr) shown.push_back(&field);
  }
  std::stable_sort(shown.begin(), shown.end(), [](const ReportField* a, const ReportField* b) {
    return a->column.place < b->column.place;
  });
  std::vector<GridColumn> columns;
  for (const ReportField* field : shown) {
    const auto& [title, width, place, role] = field->column;
    GridColumn& column = columns.emplace_back(GridColumn{
        .field = field->name, .title = title, .width = width, .read_only = role == ColumnRole::Fixed});
    if (role == ColumnRole::Tick) column.checked = "S", column.unchecked = "N";
  }
  return columns;
}

}  // namespace orv
