// Controls bound to data sets: the grid, inputs over a field of the current row, and the chart.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/control.h"
#include "toolkit/dataset.h"

namespace orv {

// A code as people read it. `tone` is a colour by its meaning, as of `Control::SetColor`.
struct CodeWord {
  std::string code;
  std::string word;
  std::string tone = "";
};

// A column of a grid. `width` is in characters, 0 for what the field's size asks.
struct GridColumn {
  std::string field;
  std::string title;
  int width = 0;
  bool read_only = false;
  bool visible = true;
  // Set on a column that is shown as a check box: what is stored for ticked and for not ticked.
  std::string checked = "";
  std::string unchecked = "";
  // Decimals of an amount or a number, 2 to 4, as it is typed and shown; those beyond two only where they
  // aren't zeros.
  int decimals = 2;
  // Words for the codes that it holds; another code is shown as it is.
  std::vector<CodeWord> words = {};
};

class GridView;

class TOrvDBGrid : public Control {
 public:
  TOrvDBGrid(Form& form, std::string name, DataSet& set, std::vector<GridColumn> columns,
             bool read_only = true, std::string caption = "");
  ~TOrvDBGrid() override;

  DataSet& Set() const { return set_; }
  const std::vector<GridColumn>& Columns() const { return columns_; }
  GridColumn* FindColumn(std::string_view field);
  void SetColumnTitle(std::string_view field, std::string title);
  void SetColumnVisible(std::string_view field, bool visible);
  void SetColumnReadOnly(std::string_view field, bool read_only);
  bool ReadOnly() const { return read_only_; }
  void SetReadOnly(bool read_only);
  // The grid lets rows be added and removed where it isn't read-only.
  bool RowsFixed() const { return rows_fixed_; }
  void SetRowsFixed(bool fixed) { rows_fixed_ = fixed, Touch(); }
  // A column of amounts that are all zero isn't shown, for a grid whose rows are gathered at once.
  void SetDropZeros(bool drop) { drop_zeros_ = drop, zeros_version_ = ~uint64_t{0}, Touch(); }
  // Height of the letters in pixels, 0 for that of the page.
  void SetFontSize(int pixels) { font_size_ = pixels, Touch(); }
  // The columns as they are shown now.
  std::vector<const GridColumn*> ShownColumns() const;
  // The column in which the user stands.
  const std::string& SelectedField() const { return selected_; }
  // Puts the user into a column that is shown, of the current row. Fires nothing.
  void SetSelectedField(std::string_view field);

  // A cell as a display shows it: text in the Brazilian form, or the stored value of a check-box column.
  std::string CellText(int64_t row, const GridColumn& column) const;
  // A value of the column as a person reads it: also a code and a tick are words.
  static std::string ReadText(const GridColumn& column, const Field& field, const Value& value);
  // The rows as this display orders and narrows them.
  GridView& View() const { return *view_; }

  // --- What the user does. Raises UserError for what can't be done.
  // Reaches a row, and a column of it where one is named.
  void UserRow(int64_t row, std::string_view column = "");
  void UserCell(int64_t row, std::string_view column, std::string_view text);
  void UserAppend();
  void UserDelete(int64_t row);
  void UserDblClick(int64_t row, std::string_view column);
  void UserTitle(std::string_view column);
  void UserKeyAt(int64_t row, KeyPress& key);
  // Orders the display by a column that is shown, "" for as the set stands, and leaves what holds the words
  // of `find` in the texts of `among`, or of all columns shown. A row in edit is posted first. Neither the
  // set nor its current row is touched otherwise.
  void UserView(std::string_view sort, bool descending, std::string_view find,
                const std::vector<std::string>& among);

  std::string_view Kind() const override { return "grid"; }
  bool TakesFocus() const override { return true; }
  bool Leaving() override;
  void Describe(Properties& properties) const override;
  const DataSet* BoundSet() const override { return &set_; }

  std::function<void(const std::string& column)> OnTitleClick;
  // When the user leaves a cell for another column, row or control, once: `SelectedField` and the current row
  // are still the cell's, and what was typed stands in its field. The handler may change the row, append
  // others and say by `SetSelectedField` where the user goes on.
  std::function<void()> OnColExit;
  // After the user reached another column.
  std::function<void()> OnColEnter;

 private:
  void CheckRow(int64_t row) const;
  const GridColumn& Column(std::string_view field) const;
  void FindZeros() const;
  void Select(std::string_view column);
  // Somebody hears of the columns that the user reaches and leaves.
  bool Watched() const { return OnColExit != nullptr || OnColEnter != nullptr; }
  void LeaveCell();
  void GoTo(int64_t row);
  // The column behind the one in which the user stands, as they are shown; "" for the last one.
  std::string NextColumn() const;

  DataSet& set_;
  std::vector<GridColumn> columns_;
  bool read_only_;
  bool rows_fixed_ = false;
  bool drop_zeros_ = false;
  int font_size_ = 0;
  // Columns without an amount, in the version of the rows in which they were looked for.
  mutable std::vector<const GridColumn*> zeros_;
  mutable uint64_t zeros_version_ = ~uint64_t{0};
  const std::unique_ptr<GridView> view_;
  std::string selected_;
  // The user stands in a cell of that column, which he hasn't left yet.
  bool inside_ = false;
  // How often the program put the user into a column.
  int64_t placed_ = 0;
};

// An input over a field of the current row. What the user gives puts the row in edit.
class DBEdit : public Control {
 public:
  DBEdit(Form& form, std::string name, std::string caption, DataSet& set, std::string field)
      : Control(form, std::move(name), std::move(caption)), set_(set), field_(std::move(field)) {}
  DataSet& Set() const { return set_; }
  const std::string& FieldName() const { return field_; }
  // "" while the set is closed.
  std::string Text() const;
  bool ReadOnly() const { return read_only_; }
  void SetReadOnly(bool read_only) { read_only_ = read_only, Touch(); }

  std::string_view Kind() const override;
  bool TakesFocus() const override { return !read_only_; }
  bool TakesText() const override { return true; }
  void Describe(Properties& properties) const override;
  const DataSet* BoundSet() const override { return &set_; }
  void UserSet(std::string_view text) override;

  // After the user gave the field another value.
  std::function<void()> OnChange;

 private:
  DataSet& set_;
  std::string field_;
  bool read_only_ = false;
};

// Options over a field: each item stands for a value.
class DBRadioGroup : public Control {
 public:
  DBRadioGroup(Form& form, std::string name, std::string caption, DataSet& set, std::string field,
               std::vector<std::string> items, std::vector<std::string> values)
      : Control(form, std::move(name), std::move(caption)),
        set_(set),
        field_(std::move(field)),
        items_(std::move(items)),
        values_(std::move(values)) {}
  int ItemIndex() const;

  std::string_view Kind() const override { return "radio"; }
  bool TakesFocus() const override { return true; }
  void Describe(Properties& properties) const override;
  const DataSet* BoundSet() const override { return &set_; }
  void UserSet(std::string_view text) override;

  std::function<void()> OnChange;

 private:
  DataSet& set_;
  std::string field_;
  std::vector<std::string> items_;
  std::vector<std::string> values_;
};

// A series of a chart over a money or number field.
struct ChartSeries {
  std::string field;
  std::string title;
  bool line = false;
};

// Bars and lines over the rows of a set, so many points to a page.
class Chart : public Control {
 public:
  Chart(Form& form, std::string name, std::string caption, DataSet& set, std::string label_field,
        std::vector<ChartSeries> series, int page_size)
      : Control(form, std::move(name), std::move(caption)),
        set_(set),
        label_field_(std::move(label_field)),
        series_(std::move(series)),
        page_size_(page_size) {}
  DataSet& Set() const { return set_; }
  void SetSeriesTitle(std::string_view field, std::string title);
  int Page() const { return page_; }
  int PageCount() const;
  // Stays between the first page and the last.
  void SetPage(int page);

  std::string_view Kind() const override { return "chart"; }
  void DescribeFixed(Properties& properties) const override;
  void Describe(Properties& properties) const override;
  const DataSet* BoundSet() const override { return &set_; }

 private:
  DataSet& set_;
  std::string label_field_;
  std::vector<ChartSeries> series_;
  int page_size_;
  int page_ = 0;
};

}  // namespace orv
