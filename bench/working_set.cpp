// A working set as a screen uses it: appends, an order, Locates, filters, with a million and 100,000 rows.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <unordered_map>

#include "bench/measure.h"
#include "tests/support/person.h"
#include "toolkit/client_dataset.h"
#include "toolkit/form.h"
#include "toolkit/grid.h"
#include "toolkit/grid_view.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kMillion = 1'000'000;

struct Movements : TClientDataSet {
  using TClientDataSet::TClientDataSet;
  Field Lancamento{*this, "Lancamento", FieldType::String, 6};
  Field Docto{*this, "Docto", FieldType::String, 12};
  Field Conta{*this, "Conta", FieldType::String, 15};
  Field Data{*this, "Data", FieldType::Date};
  Field Valor{*this, "Valor", FieldType::Currency};
  Field Operacao{*this, "Operacao", FieldType::String, 1};
  Field Historico{*this, "Historico", FieldType::String, 3};
  Field Observacao{*this, "Observacao", FieldType::String, 100};
};

struct Row {
  std::string lancamento, docto, conta, observacao;
  Date data;
  Currency valor;
};

// Numbers in no order, 20 accounts, 730 days.
std::vector<Row> MakeRows(int count) {
  std::mt19937 random(1);
  std::vector<int> numbers(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) numbers[static_cast<std::size_t>(i)] = i;
  std::shuffle(numbers.begin(), numbers.end(), random);
  const Date first(2024, 11, 21);
  std::vector<Row> rows;
  rows.reserve(numbers.size());
  for (const int number : numbers) {
    std::string digits = std::to_string(number);
    digits.insert(0, 6 - std::min<std::size_t>(6, digits.size()), '0');
    rows.push_back({digits, "NF " + std::to_string(number % 99991),
                    "10" + std::to_string(250 + number % 20) + "-1",
                    "PAGAMENTO " + std::to_string(number) + " DA SEMANA",
                    Date::FromDays(first.Days() + number % 730), Currency::FromRaw(int64_t{number} * 10100)});
  }
  return rows;
}

void Append(Movements& set, const Row& row) {
  set.Append();
  set.Lancamento = row.lancamento;
  set.Docto = row.docto;
  set.Conta = row.conta;
  set.Data = row.data;
  set.Valor = row.valor;
  set.Operacao = "-";
  set.Historico = "019";
  set.Observacao = row.observacao;
  set.Post();
}

void Appends(const std::vector<Row>& rows) {
  Best vectors, sets;
  double bytes = 0;
  for (int run = 0; run < 3; ++run) {
    vectors.Take(Measure([&] {
      std::vector<std::vector<Value>> plain;
      for (const Row& row : rows) {
        plain.push_back(
            {row.lancamento, row.docto, row.conta, row.data, row.valor, "-", "019", row.observacao});
      }
    }));
    const std::size_t before = HeapBytes();
    Movements set("TbMovimentos");
    sets.Take(Measure([&] {
      set.CreateDataSet();
      for (const Row& row : rows) Append(set, row);
    }));
    bytes = static_cast<double>(HeapBytes() - before) / kMillion;
  }
  Print("a million rows into vectors of values", vectors.Cpu(), "s");
  Print("a million appends, field by field", sets.Cpu(), "s", Number(bytes) + " B a row of 8 fields");
}

// As a gathering fills a set, as the rows come or in an order.
void BulkAppends(const std::vector<Row>& rows) {
  for (const char* order : {"", "Data;Conta"}) {
    Best best;
    for (int run = 0; run < 3; ++run) {
      Movements set("TbMovimentos");
      set.SetIndexFieldNames(order);
      set.CreateDataSet();
      best.Take(Measure([&] {
        for (const Row& row : rows) {
          Value values[] = {row.lancamento, row.docto, row.conta, row.data,
                            row.valor,      "-",       "019",     row.observacao};
          set.AppendRow(values);
        }
        set.First();
      }));
    }
    Print(std::string("a million appends in bulk") + (*order == 0 ? "" : ", in an order"), best.Cpu(), "s");
  }
}

void Orders(Movements& set, const std::vector<Row>& rows) {
  Best plain, order;
  for (int run = 0; run < 3; ++run) {
    std::vector<const Row*> pointers;
    for (const Row& row : rows) pointers.push_back(&row);
    plain.Take(Measure([&] {
      std::stable_sort(pointers.begin(), pointers.end(), [](const Row* a, const Row* b) {
        return a->data != b->data ? a->data < b->data : a->conta < b->conta;
      });
    }));
    set.SetIndexFieldNames("");
    order.Take(Measure([&] { set.SetIndexFieldNames("Data;Conta"); }));
    set.SetRecNo(kMillion / 2);
    if (set.Lancamento.AsString() != pointers[kMillion / 2 - 1]->lancamento)
      throw UserError("The order isn't that of a sort.");
  }
  Print("a million rows sorted by the library on two fields", plain.Cpu(), "s");
  Print("an order of a million rows on two fields", order.Cpu(), "s");
}

void Locates(Movements& set, const std::vector<Row>& rows) {
  struct Key {
    std::string lancamento, conta;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Key& key) const {
      const std::hash<std::string> hash;
      return hash(key.lancamento) * 31 + hash(key.conta);
    }
  };
  std::unordered_map<Key, uint32_t, Hash> map;
  for (const Row& row : rows) map.emplace(Key{row.lancamento, row.conta}, static_cast<uint32_t>(map.size()));
  std::vector<const Row*> wanted;
  for (const Row& row : rows) wanted.push_back(&row);
  std::shuffle(wanted.begin(), wanted.end(), std::mt19937(2));

  Best looks, locates;
  for (int run = 0; run < 3; ++run) {
    uint64_t found = 0;
    looks.Take(Measure([&] {
      for (const Row* row : wanted) found += map.find(Key{row->lancamento, row->conta})->second;
    }));
    uint64_t reached = 0;
    locates.Take(Measure([&] {
      for (const Row* row : wanted) reached += set.Locate("Lancamento;Conta", {row->lancamento, row->conta});
    }));
    if (found == 0 || reached != kMillion) throw UserError("Not every row was found.");
  }
  Print("a million look-ups in a standard hash map", looks.Cpu(), "s");
  Print("a million Locates on two fields (5 x the map)", locates.Cpu(), Bound::AtMost, 5 * looks.Cpu(), "s");
}

// As many filters as rows, each on another row's number: the time of one must not grow with the rows, but for
// what the processor's caches no longer hold.
void Filters(const std::vector<Row>& all) {
  double smallest = 0;
  for (int count = 10'000; count <= 100'000; count += 10'000) {
    const std::vector<Row> rows(all.begin(), all.begin() + count);
    Best best;
    for (int run = 0; run < 3; ++run) {
      Movements set("TbMovimentos");
      set.CreateDataSet();
      for (const Row& row : rows) Append(set, row);
      int64_t found = 0;
      best.Take(Measure([&] {
        set.SetFiltered(true);
        for (const Row& row : rows) {
          set.SetFilter("Lancamento = '" + row.lancamento + "'");
          found += set.RecordCount();
        }
      }));
      if (found != count) throw UserError("A filter doesn't show its row.");
    }
    const double each = best.Cpu() / count * 1e6;
    const std::string what = std::to_string(count) + " equality filters over as many rows, each";
    if (smallest == 0) {
      smallest = each;
      Print(what, each, "us");
    } else {
      Print(what, each, Bound::AtMost, 3 * smallest, "us", Number(best.Cpu()) + " s in all");
    }
  }
}

// A grid of 100,000 rows as its display orders and narrows it, beside a bare walk of what it shows.
void Views(const std::vector<Row>& all) {
  Movements set("TbMovimentos");
  set.CreateDataSet();
  for (int at = 0; at < 100'000; ++at) Append(set, all[static_cast<std::size_t>(at)]);
  test::Nobody nobody;
  Form form(nobody, "Form", "Form");
  std::vector<GridColumn> columns;
  for (const Field* field : set.Fields()) columns.push_back({field->Name(), field->Name()});
  columns[5].words = {{"-", "Saída"}, {"+", "Entrada"}};
  const TOrvDBGrid grid(form, "Grade", set, columns);
  GridView& view = grid.View();
  const std::vector<const Field*> fields(set.Fields().begin(), set.Fields().end());

  Best walk;
  for (int run = 0; run < 5; ++run) {
    uint64_t sum = 0;
    walk.Take(Measure([&] {
      set.Walk(fields, [&](std::span<const Value* const> cells) {
        for (const Value* cell : cells) sum += cell->IsText() ? cell->Text().size() : 1;
      });
    }));
    if (sum == 0) throw UserError("Nothing was walked.");
  }
  Print("a bare walk of 100,000 rows of 8 cells", walk.Cpu() * 1e3, "ms");
  const auto measure = [&](const char* what, double limit, const char* sort, const char* find) {
    Best best;
    for (int run = 0; run < 3; ++run) {
      view.Arrange("", false, "", {});
      view.Arrange(sort, true, find, {});
      best.Take(Measure([&] { view.Count(); }));
    }
    Print(what, best.Cpu() * 1e3, Bound::AtMost, limit, "ms",
          Number(best.Cpu() / walk.Cpu()) + " x the walk");
  };
  measure("a grid of them sorted by an amount", 150, "Valor", "");
  measure("a grid of them sorted by a text", 150, "Observacao", "");
  measure("a grid of them sorted by a code's word", 150, "Operacao", "");
  measure("a grid of them searched for a word", 100, "", "pagamento 77");
  measure("a grid of them searched for a number", 100, "", "1.234,5");
  std::vector<std::pair<std::string, Currency>> sums;
  view.Arrange("Valor", false, "", {});
  const double all_rows = Measure([&] { sums = view.Sums({{0, view.Count() - 1}}); }).cpu;
  Print("their amounts added up in the order of the view", all_rows * 1e3, Bound::AtMost, 100, "ms");
}

int Run() {
  const std::vector<Row> rows = MakeRows(kMillion);
  Appends(rows);
  BulkAppends(rows);
  {
    Movements set("TbMovimentos");
    set.CreateDataSet();
    for (const Row& row : rows) Append(set, row);
    Locates(set, rows);
    Orders(set, rows);
  }
  Filters(rows);
  Views(rows);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
