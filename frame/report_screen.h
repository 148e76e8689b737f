// What the screens of reports have in common: the period, fields that list codes, a gathering that tells how
// far it is and can be cancelled, and the way from a figure to where it comes from.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "frame/report_set.h"
#include "frame/screen.h"

namespace orv {

// How far a gathering is. The user may cancel it whenever it tells, which raises UserError.
class Gathering {
 public:
  explicit Gathering(UserInterface& user) : user_(user) {}
  // Begins a stage of so many steps, 0 where nobody knows how many.
  void Stage(std::string text, int64_t of = 0);
  // So many steps of the stage are done. Cheap enough for every row.
  void Advance(int64_t steps = 1);

 private:
  void Tell() const;

  UserInterface& user_;
  std::string text_;
  int64_t done_ = 0, of_ = 0, told_ = 0;
};

class ReportScreen : public Child {
 public:
  using Child::Child;

  // The filters (frame/filters.h) as they stood when the latest gathering began; nothing before the first
  // one.
  const FieldTexts& Asked() const { return asked_; }

 protected:
  // --- Fields.
  // A period, open on all days at first; then entering the first date takes today and entering the last one
  // takes the first.
  void Period(DateEdit& first, DateEdit& last);
  // What a choice does to a field that lists codes: it comes behind those that are there, or takes their
  // place.
  enum class Choice : uint8_t { Adds, Replaces };
  // A field that holds quoted codes: the lookup's choice puts them there, F4 opens it, `clear` empties the
  // field.
  void ListField(Edit& list, TPesquisa& lookup, const std::string& key, Choice choice, Control& clear);

  // --- Gathering.
  // What becomes of the rows of a gathering that failed or was cancelled: half of a report isn't taken for a
  // whole one, unless the screen says that they stay.
  enum class Half : uint8_t { Empties, Stays };
  // Does the work under the busy mark while the displays of the sets hold still; in the end the sets stand on
  // their first rows, and the grids that take no typing leave out columns of zeros.
  void Gather(std::initializer_list<TClientDataSet*> sets, const std::function<void(Gathering&)>& work,
              Half half = Half::Empties);
  // Runs a statement and hands on each row, whose values may be moved out. Nothing is kept.
  void ForEach(std::string_view sql, const std::function<void(std::span<Value>)>& row) const;
  // The same, each row as one of the set of `kFields`: the columns that are named as fields stand in it, and
  // the others are handed on beside it, in their order.
  template <const auto& kFields>
  void ForEachRow(std::string_view sql,
                  const std::function<void(ReportRow<kFields>&, std::span<Value>)>& each) const {
    ReportRow<kFields> row;
    ReadRows(sql, kFields, row.Values(), [&](std::span<Value> others) { each(row, others); });
  }

  // --- From a figure to where it comes from: shows the rows of the statement.
  void ShowDetail(std::string_view title, std::string sql);
  // The same, each row completed before it is shown; what stands behind the fields serves that alone.
  void ShowDetail(std::string_view title, std::string_view sql, std::span<const ReportField> fields,
                  const std::function<void(std::span<Value>)>& complete);
  // The same of rows that were read already.
  void ShowDetail(std::string_view title, std::vector<std::vector<Value>> rows,
                  std::span<const ReportField> fields, const std::function<void(std::span<Value>)>& complete);

 private:
  void ReadRows(std::string_view sql, std::span<const ReportField> fields, std::span<Value> row,
                const std::function<void(std::span<Value>)>& others) const;

  FieldTexts asked_;
};

}  // namespace orv
