// A grid as its display arranges it: windows of the view, sums of chosen rows, and the view as a file.
#include "desk/session/session.h"
#include "frame/screen.h"
#include "toolkit/grid.h"
#include "toolkit/grid_view.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// More than anybody chooses apart from each other.
constexpr std::size_t kMostRanges = 1000;
// Values of one file; some 32 bytes each.
constexpr std::size_t kMostValues = 8'000'000;

std::vector<std::string> Names(const Json& names) {
  std::vector<std::string> list;
  if (names.IsNull()) return list;
  for (const Json& name : names.Items()) list.push_back(name.String());
  return list;
}

bool IsDay(DateTime time) { return time == DateTime(time.Day(), 0, 0, 0); }

// A value as it is written into a spreadsheet: as it is read, but amounts and days as such.
Value Exported(const GridColumn& column, const Field& field, const Value& value) {
  if (value.IsNull() && column.checked.empty()) return value;
  if (!column.checked.empty() || !column.words.empty()) return TOrvDBGrid::ReadText(column, field, value);
  switch (field.Type()) {
    case FieldType::Currency:
      return column.decimals > 2 ? value : Value(value.AsCurrency().Round2());
    case FieldType::Float:
      return RoundFloat(value.AsFloat(), column.decimals);
    case FieldType::DateTime:
      return IsDay(value.AsDateTime()) ? Value(value.AsDate()) : value;
    default:
      return value;
  }
}

}  // namespace

TOrvDBGrid& Session::GridIn(const Json& in) const {
  Control& control = Reachable(in);
  auto* grid = dynamic_cast<TOrvDBGrid*>(&control);
  if (grid == nullptr) throw RequestError("O controle " + control.Name() + " não é uma grade.");
  return *grid;
}

void Session::Arrange(const Json& in) {
  TOrvDBGrid& grid = GridIn(in);
  const GridView& view = grid.View();
  const std::string sort = in.Has("sort") ? in["sort"].String() : view.Sort();
  const bool descending = in.Has("descending") ? in["descending"].Bool() : view.Descending();
  const std::string find = in.Has("find") ? in["find"].String() : view.Find();
  grid.UserView(sort, descending, find, Names(in["columns"]));
}

void Session::AddWindow(Json& out, const TOrvDBGrid& grid, const Json& in, int64_t from, int64_t count) {
  const GridView& view = grid.View();
  const bool arranged = in["view"] == Json(true);
  DataSet& set = grid.Set();
  const std::vector<const GridColumn*> shown = grid.ShownColumns();
  Json::Array cells, rows;
  const auto [first, last] = arranged ? Clamped(from, count, view.Count()) : RowsAsked(set, from, count);
  for (int64_t place = first; place < last; ++place) {
    const int64_t row = arranged ? view.RowAt(place) : place;
    Json::Array texts;
    for (const GridColumn* column : shown) texts.emplace_back(grid.CellText(row, *column));
    cells.emplace_back(std::move(texts));
    if (arranged) rows.emplace_back(row);
  }
  out.Set("cells", std::move(cells));
  out.Set("version", set.Version());
  if (arranged) out.Set("rows", std::move(rows));
  if (in.Has("sums")) out.Set("sums", Sums(grid, in["sums"]));
}

Json Session::Sums(const TOrvDBGrid& grid, const Json& ranges) {
  std::vector<GridView::Range> chosen;
  const int64_t all = grid.View().Count();
  int64_t next = 0;
  int64_t count = 0;
  for (const Json& range : ranges.Items()) {
    if (range.Items().size() != 2) throw RequestError("As linhas se escolhem de uma a outra.");
    const int64_t from = range.Items()[0].Integer();
    const int64_t to = range.Items()[1].Integer();
    if (from < next || to < from || to >= all || chosen.size() == kMostRanges)
      throw RequestError("As linhas escolhidas não existem mais.");
    chosen.emplace_back(from, to);
    next = to + 1;
    count += next - from;
  }
  Json columns{Json::Object{}};
  for (const auto& [field, sum] : grid.View().Sums(chosen)) columns.Set(field, sum.Brazil());
  return {{"count", count}, {"columns", std::move(columns)}};
}

void Session::Export(const Json& in) {
  const TOrvDBGrid& grid = GridIn(in);
  const std::string format = in["format"].IsString() ? in["format"].String() : "";
  if (format != "csv" && format != "xlsx")
    throw RequestError("Uma grade não tem o formato \"" + format + "\".");
  std::vector<const GridColumn*> columns = grid.ShownColumns();
  if (in.Has("columns")) {
    const std::vector<const GridColumn*> shown = std::exchange(columns, {});
    for (const std::string& name : Names(in["columns"])) {
      const auto found = std::find_if(shown.begin(), shown.end(),
                                      [&](const GridColumn* one) { return SameText(one->field, name); });
      if (found == shown.end() || std::find(columns.begin(), columns.end(), *found) != columns.end())
        throw RequestError("A coluna \"" + name + "\" não está na grade.");
      columns.push_back(*found);
    }
  }
  DataSet& set = grid.Set();
  std::erase_if(columns, [&](const GridColumn* one) { return set.FindField(one->field) == nullptr; });
  const int64_t count = grid.View().Count();
  if (static_cast<std::size_t>(count) * columns.size() > kMostValues)
    throw UserError("A grade tem linhas demais para um arquivo. Procure nela antes ou esconda colunas.");

  const std::string caption = TopScreen().Caption();
  ReportRows table;
  table.set = grid.Caption().empty() ? caption : grid.Caption();
  std::vector<const Field*> fields;
  for (const GridColumn* column : columns) {
    fields.push_back(&set.FieldByName(column->field));
    table.fields.push_back(column->title);
    table.types.push_back(fields.back()->Type());
    table.decimals.push_back(column->decimals);
  }
  table.rows.reserve(static_cast<std::size_t>(count));
  for (int64_t place = 0; place < count; ++place) {
    const int64_t row = grid.View().RowAt(place);
    std::vector<Value>& values = table.rows.emplace_back();
    values.reserve(columns.size());
    for (std::size_t at = 0; at < columns.size(); ++at)
      values.push_back(Exported(*columns[at], *fields[at], set.Cell(row, *fields[at])));
  }
  Report report;
  report.title = caption;
  report.when = options_.clock.Now();
  report.sets.push_back(std::move(table));
  // No report that was launched: its file alone is told.
  Send({{"on", "report"},
        {"id", 0},
        {"format", format},
        {"file",
         Written(report, FileText(caption) + "_" + ReplaceAll(report.when.Day().Neutral(), "-", ""), format)
             .string()}});
}

}  // namespace orv
