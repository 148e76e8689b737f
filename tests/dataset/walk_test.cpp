// A working set against a plain model of what it does, over long walks of random operations.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "toolkit/client_dataset.h"
#include "toolkit/text.h"

namespace orv {
namespace {

using Cells = std::vector<Value>;

constexpr const char* kNames[] = {"Id", "Classe", "Valor", "Data", "Nome"};

struct FilterCase {
  const char* text;
  bool (*accepts)(const Cells&);
};

const FilterCase kFilters[] = {
    {"Classe = 'b'", [](const Cells& c) { return c[1] == Value("b"); }},
    {"Valor = 2", [](const Cells& c) { return c[2] == Value(2); }},
    {"Classe = 'a' and Valor > 0",
     [](const Cells& c) { return c[1] == Value("a") && !c[2].IsNull() && c[2].AsFloat() > 0; }},
    {"Valor >= 1 or Classe is null",
     [](const Cells& c) { return (!c[2].IsNull() && c[2].AsFloat() >= 1) || c[1].IsNull(); }},
    {"Classe = 'z'", [](const Cells&) { return false; }},
    {"Valor = 0 and Data = '02/01/2026'",
     [](const Cells& c) { return !c[2].IsNull() && c[2].AsFloat() == 0 && c[3] == Value(Date(2026, 1, 2)); }},
};

constexpr const char* kOrders[] = {"", "Valor", "Classe;Valor", "data;CLASSE", "Nome", "Id"};

// Everything by looking at every row.
struct Model {
  std::vector<Cells> rows;  // as added
  std::vector<int> order;
  const FilterCase* filter = nullptr;
  int64_t current = -1;  // Id

  std::vector<const Cells*> View() const {
    std::vector<const Cells*> view;
    for (const Cells& row : rows) {
      if (filter == nullptr || filter->accepts(row)) view.push_back(&row);
    }
    std::stable_sort(view.begin(), view.end(), [&](const Cells* a, const Cells* b) {
      for (const int column : order) {
        const auto way =
            Compare((*a)[static_cast<std::size_t>(column)], (*b)[static_cast<std::size_t>(column)]);
        if (way != 0) return way < 0;
      }
      return false;
    });
    return view;
  }
  int64_t Position() const {
    const auto view = View();
    for (std::size_t i = 0; i < view.size(); ++i) {
      if ((*view[i])[0].AsInteger() == current) return static_cast<int64_t>(i);
    }
    return -1;
  }
  void StandOn(int64_t place) {
    const auto view = View();
    const int64_t last = static_cast<int64_t>(view.size()) - 1;
    current =
        last < 0 ? -1 : (*view[static_cast<std::size_t>(std::clamp<int64_t>(place, 0, last))])[0].AsInteger();
  }
  std::size_t Stored() const {
    return static_cast<std::size_t>(
        std::find_if(rows.begin(), rows.end(), [&](const Cells& c) { return c[0].AsInteger() == current; }) -
        rows.begin());
  }
  void Put(Cells cells, bool append) {
    const int64_t place = append ? static_cast<int64_t>(View().size()) : Position();
    const bool before = !append && order.empty() && current >= 0;
    const std::size_t at = before ? Stored() : rows.size();
    const int64_t id = cells[0].AsInteger();
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at), std::move(cells));
    current = id;
    if (Position() < 0) StandOn(std::max<int64_t>(place, 0));
  }
  void Change(Cells cells) {
    const int64_t place = Position();
    rows[Stored()] = std::move(cells);
    if (Position() < 0) StandOn(place);
  }
  void Remove() {
    const int64_t place = Position();
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(Stored()));
    StandOn(place);
  }
};

class Walk {
 public:
  explicit Walk(unsigned seed) : random_(seed) {
    const FieldType types[] = {FieldType::Integer, FieldType::String, FieldType::Float, FieldType::Date,
                               FieldType::String};
    for (int i = 0; i < 5; ++i) set_.FieldDefs.Add(kNames[i], types[i], 30);
    set_.CreateDataSet();
  }

  void Bulk(int count) {
    for (int i = 0; i < count; ++i) {
      Cells cells = Random();
      model_.rows.push_back(cells);
      if (model_.current < 0) model_.StandOn(0);
      set_.AppendRow(cells);
    }
  }

  // One operation on both; its name.
  std::string Step() {
    const unsigned what = random_() % 16;
    const bool empty = model_.View().empty();
    if (what < 5) {
      const bool append = random_() % 2 == 0;
      const Cells cells = Random();
      append ? set_.Append() : set_.Insert();
      Fill(cells);
      model_.Put(cells, append);
      return append ? "append" : "insert";
    }
    if (what < 8 && !empty) {
      Cells cells = model_.rows[model_.Stored()];
      set_.Edit();
      for (std::size_t i = 1; i < 5; ++i) {
        if (random_() % 3 != 0) continue;
        cells[i] = RandomCell(i);
        set_.FieldByName(kNames[i]) = cells[i];
      }
      if (random_() % 5 == 0) {
        set_.Cancel();
        return "cancel";
      }
      set_.Post();
      model_.Change(cells);
      return "edit";
    }
    if (what < 10 && !empty) {
      set_.Delete();
      model_.Remove();
      return "delete";
    }
    if (what == 10) {
      const char* order = kOrders[random_() % std::size(kOrders)];
      set_.SetIndexFieldNames(order);
      model_.order.clear();
      for (const Field* field : set_.FieldList(order)) model_.order.push_back(field->Index());
      return std::string("order ") + order;
    }
    if (what == 11) {
      const bool off = random_() % 3 == 0;
      model_.filter = off ? nullptr : &kFilters[random_() % std::size(kFilters)];
      if (!off) set_.SetFilter(model_.filter->text);
      set_.SetFiltered(!off);
      if (model_.Position() < 0) model_.StandOn(0);
      return off ? "filter off" : model_.filter->text;
    }
    if (what < 14) return Locate();
    if (what == 14) {
      // More or fewer than those that are there.
      set_.PostIfEditing();
      Bulk(random_() % 2 == 0 ? 1 : 40);
      return "bulk";
    }
    const auto distance = static_cast<int64_t>(random_() % 7) - 3;
    const int64_t from = model_.Position();
    const int64_t moved = set_.MoveBy(distance);
    if (!empty) model_.StandOn(from + distance);
    EXPECT_EQ(moved, model_.Position() - from);
    return "move";
  }

  // The cursor, and every row.
  bool Agrees(bool whole) {
    const auto view = model_.View();
    EXPECT_EQ(set_.RecordCount(), static_cast<int64_t>(view.size()));
    EXPECT_EQ(set_.RecNo(), model_.Position() + 1);
    EXPECT_EQ(set_.FieldByName("Id").AsInteger(), std::max<int64_t>(model_.current, 0));
    for (std::size_t row = 0; whole && row < view.size(); ++row) {
      for (const Field* field : set_.Fields()) {
        EXPECT_EQ(set_.Cell(static_cast<int64_t>(row), *field).Neutral(),
                  (*view[row])[static_cast<std::size_t>(field->Index())].Neutral())
            << "row " << row;
      }
      if (testing::Test::HasFailure()) return false;
    }
    return !testing::Test::HasFailure();
  }

 private:
  std::string Locate() {
    const std::string names[] = {"Id", "Classe", "valor;classe", "Data", "Nome", "Classe;Valor"};
    // The same search again and again is a case of its own.
    const bool again = random_() % 2 == 0 && !searched_.empty();
    const std::string fields = again ? searched_ : names[random_() % std::size(names)];
    Cells wanted;
    std::vector<std::size_t> columns;
    for (const Field* field : set_.FieldList(fields)) {
      columns.push_back(static_cast<std::size_t>(field->Index()));
      wanted.push_back(columns.back() == 0 ? Value(static_cast<int64_t>(random_() % (next_id_ + 2)))
                                           : RandomCell(columns.back()));
      // A number of another kind is the same number.
      if (columns.back() == 2 && !wanted.back().IsNull() && random_() % 2 == 0)
        wanted.back() = wanted.back().As(ValueKind::Currency);
    }
    if (again) wanted = wanted_;
    searched_ = fields, wanted_ = wanted;
    const bool found = set_.Locate(fields, wanted);
    bool expected = false;
    for (const Cells* row : model_.View()) {
      bool equal = true;
      for (std::size_t i = 0; i < columns.size(); ++i) equal = equal && (*row)[columns[i]] == wanted[i];
      if (!equal) continue;
      model_.current = (*row)[0].AsInteger();
      expected = true;
      break;
    }
    EXPECT_EQ(found, expected);
    return "locate " + fields;
  }

  Value RandomCell(std::size_t column) {
    const unsigned n = random_() % 6;
    if (n == 5) return {};
    switch (column) {
      case 1:
        return Value(std::string(1, "abBcd"[n]));
      case 2:
        return n == 4 ? Value(-0.0) : Value((static_cast<double>(n) - 1) * (random_() % 4 == 0 ? 0.1 : 1.0));
      case 3:
        return Value(Date(2026, 1, static_cast<int>(n) + 1));
      default:
        // Texts that begin alike and differ late, some kept outside the value.
        return Value("conta corrente nº " + std::to_string(n) + (random_() % 2 == 0 ? "" : "\x7f"));
    }
  }
  Cells Random() {
    Cells cells{Value(static_cast<int64_t>(++next_id_))};
    for (std::size_t i = 1; i < 5; ++i) cells.push_back(RandomCell(i));
    return cells;
  }
  void Fill(const Cells& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) set_.FieldByName(kNames[i]) = cells[i];
    set_.Post();
  }

  std::mt19937 random_;
  unsigned next_id_ = 0;
  std::string searched_;
  Cells wanted_;
  TClientDataSet set_{"Tb"};
  Model model_;
};

TEST(RandomWalk, AgreesWithThePlainModel) {
  for (unsigned seed = 1; seed <= 120; ++seed) {
    Walk walk(seed);
    std::vector<std::string> steps;
    for (int i = 0; i < 250; ++i) {
      steps.push_back(walk.Step());
      ASSERT_TRUE(walk.Agrees(true)) << "seed " << seed << ": " << Join(steps, ", ");
    }
  }
}

// Long enough for lists of several chunks, which split and empty.
TEST(RandomWalk, AgreesOnManyRows) {
  Walk walk(7);
  walk.Bulk(3500);
  for (int i = 0; i < 200; ++i) {
    const std::string step = walk.Step();
    ASSERT_TRUE(walk.Agrees(i % 40 == 0)) << "step " << i << ": " << step;
  }
}

// Rows put one before the other use up the room between two places many times over.
TEST(Insertions, AtOnePlaceKeepTheirOrder) {
  TClientDataSet set("Tb");
  set.FieldDefs.Add("N", FieldType::Integer);
  set.CreateDataSet();
  Value first[] = {Value(-1)}, last[] = {Value(-2)};
  set.AppendRow(first);
  set.AppendRow(last);
  set.SetRecNo(2);
  for (int i = 0; i < 5000; ++i) {
    set.Insert();
    set["N"] = i;
    set.Post();
  }
  // Ordered and back again, the rows stand as they were put.
  set.SetIndexFieldNames("N");
  EXPECT_EQ(set.RecNo(), 5002);
  set.SetIndexFieldNames("");
  set.First();
  for (int i = 4999; i >= 0; --i) {
    set.Next();
    ASSERT_EQ(set["N"].AsInteger(), i);
  }
}

}  // namespace
}  // namespace orv
