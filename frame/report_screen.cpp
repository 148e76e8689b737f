#include "frame/report_screen.h"

#include <algorithm>
#include <vector>

#include "frame/filters.h"

namespace orv {
namespace {

// The user is told after so many steps; whoever shows it takes as many of them as he can.
constexpr int64_t kStepsATelling = 200;

// The period with which a report's screen opens.
const Date kFirst(1980, 1, 1), kLast(2030, 12, 31);

class EachRow : public RowSink {
 public:
  explicit EachRow(const std::function<void(std::span<Value>)>& row) : row_(row) {}
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    row_(values);
    return true;
  }

 private:
  const std::function<void(std::span<Value>)>& row_;
};

// Parts the columns of each row into those of a set and the others.
class EachParted : public RowSink {
 public:
  EachParted(std::span<const ReportField> fields, std::span<Value> row,
             const std::function<void(std::span<Value>)>& others)
      : fields_(fields), row_(row), others_(others) {}
  void Columns(const std::vector<Column>& columns) override {
    for (const Column& column : columns) {
      const auto field = std::find_if(fields_.begin(), fields_.end(), [&](const ReportField& one) {
        return SameText(one.name, column.name);
      });
      Value* const own =
          field == fields_.end() ? nullptr : &row_[static_cast<std::size_t>(field - fields_.begin())];
      ORV_ASSERT(own == nullptr || std::find(places_.begin(), places_.end(), own) == places_.end());
      places_.push_back(own);
    }
    rest_.resize(static_cast<std::size_t>(std::count(places_.begin(), places_.end(), nullptr)));
  }
  bool Row(std::span<Value> values) override {
    ORV_ASSERT(values.size() == places_.size());
    // Appended rows leave nothing behind.
    for (Value& value : row_) {
      if (!value.IsNull()) value = Value();
    }
    auto other = rest_.begin();
    for (std::size_t i = 0; i < values.size(); ++i)
      (places_[i] ? *places_[i] : *other++) = std::move(values[i]);
    others_(rest_);
    return true;
  }

 private:
  std::span<const ReportField> fields_;
  std::span<Value> row_;
  const std::function<void(std::span<Value>)>& others_;
  std::vector<Value*> places_;
  std::vector<Value> rest_;
};

}  // namespace

// --- Gathering.

void Gathering::Stage(std::string text, int64_t of) {
  text_ = std::move(text);
  done_ = told_ = 0;
  of_ = of;
  Tell();
}

void Gathering::Advance(int64_t steps) {
  done_ += steps;
  if (done_ - told_ < kStepsATelling) return;
  told_ = done_;
  Tell();
}

// Rows that others write meanwhile may make the steps more than was thought.
void Gathering::Tell() const { user_.Progress(of_ > 0 ? std::min(done_, of_) : done_, of_, text_); }

void ReportScreen::Gather(std::initializer_list<TClientDataSet*> sets,
                          const std::function<void(Gathering&)>& work, Half half) {
  asked_ = ReadFilters(*this);
  const BusyMark busy(Funcoes, *this);
  const ControlsHold hold({sets.begin(), sets.end()});
  Gathering gathering(User());
  try {
    work(gathering);
  } catch (...) {
    for (TClientDataSet* set : sets) {
      if (half == Half::Empties && set->Active()) set->EmptyDataSet();
    }
    throw;
  }
  for (TClientDataSet* set : sets) {
    if (set->Active()) set->First();
  }
  // What was gathered at once shows no column without a figure.
  for (Control* control : Controls()) {
    auto* grid = dynamic_cast<TOrvDBGrid*>(control);
    if (grid != nullptr && grid->ReadOnly()) grid->SetDropZeros(true);
  }
}

void ReportScreen::ForEach(std::string_view sql, const std::function<void(std::span<Value>)>& row) const {
  EachRow sink(row);
  Tabela.IBDatabase().Fetch(sql, sink);
}

void ReportScreen::ReadRows(std::string_view sql, std::span<const ReportField> fields, std::span<Value> row,
                            const std::function<void(std::span<Value>)>& others) const {
  EachParted sink(fields, row, others);
  Tabela.IBDatabase().Fetch(sql, sink);
}

// --- Fields.

void ReportScreen::Period(DateEdit& first, DateEdit& last) {
  first.SetDate(kFirst);
  last.SetDate(kLast);
  TodayOnEnter(first);
  SameOnEnter(last, first);
}

void ReportScreen::ListField(Edit& list, TPesquisa& lookup, const std::string& key, Choice choice,
                             Control& clear) {
  lookup.OnFechaPesquisa = [this, &list, &lookup, key, choice] {
    const std::string chosen = lookup.RetornoPesquisa(key);
    // Of several choices the lookup makes the literals itself.
    const std::string codes = lookup.Settings().MultiSelecao ? chosen : Funcoes.Aspas(chosen);
    const bool behind = choice == Choice::Adds && !list.Empty();
    list.SetText(behind ? list.Text() + "," + codes : codes);
  };
  list.OnKey = [&lookup](KeyPress& key_press) {
    if (key_press.key != "F4") return;
    key_press.handled = true;
    lookup.AbrePesquisa();
  };
  clear.OnClick = [&list] { list.Clear(); };
}

// --- From a figure to where it comes from.

void ReportScreen::ShowDetail(std::string_view title, std::string sql) {
  TOrvQuery rows(Tabela.IBDatabase());
  rows.SQL.SetText(std::move(sql));
  rows.Open();
  Funcoes.TelaDetalhamento(title, rows);
}

void ReportScreen::ShowDetail(std::string_view title, std::string_view sql,
                              std::span<const ReportField> fields,
                              const std::function<void(std::span<Value>)>& complete) {
  TClientDataSet rows("Detalhe");
  LayDown(rows, fields);
  ForEach(sql, [&](std::span<Value> values) {
    complete(values);
    rows.AppendRow(values.first(fields.size()));
  });
  rows.First();
  Funcoes.TelaDetalhamento(title, rows);
}

void ReportScreen::ShowDetail(std::string_view title, std::vector<std::vector<Value>> rows,
                              std::span<const ReportField> fields,
                              const std::function<void(std::span<Value>)>& complete) {
  TClientDataSet shown("Detalhe");
  LayDown(shown, fields);
  for (std::vector<Value>& row : rows) {
    complete(row);
    shown.AppendRow(std::span(row).first(fields.size()));
  }
  shown.First();
  Funcoes.TelaDetalhamento(title, shown);
}

}  // namespace orv
