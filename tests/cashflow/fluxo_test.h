// What the scenarios of the cash flow have in common: rows to gather and short ways to fill the screen.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/desk_test.h"

namespace orv::test {

using Fields = std::vector<std::pair<std::string, std::string>>;
using Row = std::map<std::string, std::string>;

class FluxoTest : public DeskTest {
 protected:
  // Leaves the companies without anything to expect.
  void Clear() {
    for (const char* company : {"_001", "_002"}) {
      for (const char* table : {"CONTACOR", "RECEBER", "PAGTO", "CHEQUE_PRE", "PEDIDO", "PED_ITEN", "COMPRA",
                                "CO_ITEN", "BORDERO"})
        Db().Execute("DELETE FROM " + std::string(table) + company);
    }
    Db().CommitRetaining();
  }
  // Of a column that is named twice the later value counts.
  void Store(const std::string& table, const Fields& fields) {
    std::string names, values;
    for (const auto& [name, value] : Row(fields.rbegin(), fields.rend())) {
      names += (names.empty() ? "" : ", ") + name;
      values += (values.empty() ? "'" : ", '") + value + "'";
    }
    Run("INSERT INTO " + table + " (" + names + ") VALUES (" + values + ")");
  }

  // Fills the screen; the dates last, since entering them overwrites what they hold.
  static void Fill(Desk& desk, const std::string& de, const std::string& ate, const Fields& fields = {}) {
    for (const auto& [name, value] : fields) {
      desk.Set(name, value);
      ASSERT_EQ(desk.Messages(), "") << name;
    }
    desk.Set("EdtDataDe", de);
    desk.Set("edtDataAte", ate);
  }
  static std::vector<Row> Read(Desk& desk, const char* name = "TbRelatorio") {
    const Json state = desk.State(name);
    const Json& set = state["screens"].Items().back()["sets"][name];
    std::vector<Row> rows;
    for (const Json& values : set["rows"].Items()) {
      Row row;
      for (std::size_t i = 0; i < set["fields"].Items().size(); ++i) {
        const Json& value = values.Items()[i];
        const Json& field = set["fields"].Items()[i];
        row[field.String()] = value.IsNull() ? "-" : value.String();
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }
  // The rows' fields, joined.
  static std::string Text(const std::vector<Row>& rows, std::initializer_list<const char*> fields) {
    std::string text;
    for (const Row& row : rows) {
      for (const char* field : fields) text += row.at(field) + (field == *(fields.end() - 1) ? "" : "|");
      text += "\n";
    }
    return text;
  }
  static std::string Gathered(Desk& desk, const std::string& de, const std::string& ate, const Fields& fields,
                              std::initializer_list<const char*> shown) {
    Fill(desk, de, ate, fields);
    desk.Click("BitBtn29");
    EXPECT_EQ(desk.Messages(), "");
    return Text(Read(desk), shown);
  }
};

}  // namespace orv::test
