// What the scenarios of the account statement have in common: rows to gather and short ways to fill the
// screen and to read it.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/desk_test.h"

namespace orv::test {

using Fields = std::vector<std::pair<std::string, std::string>>;
using Row = std::map<std::string, std::string>;

// Accounts of both demo companies.
constexpr const char* kConta = "10250-1";
constexpr const char* kOutraConta = "20418-7";

class RelCcTest : public DeskTest {
 protected:
  // Leaves the companies without movements and settlements.
  void Clear() {
    for (const char* company : {"_001", "_002"}) {
      for (const char* table : {"CONTACOR", "RECEBERB", "PAGTO1", "RECEBER", "PAGTO", "CONTABIL"})
        Run("DELETE FROM " + std::string(table) + company);
    }
  }
  // Of a column that is named twice the later value counts.
  void Store(const std::string& table, const Fields& fields) {
    std::string names, values;
    for (const auto& [name, value] : Row(fields.rbegin(), fields.rend())) {
      names += (names.empty() ? "" : ", ") + name;
      values += (values.empty() ? "" : ", ") + (value == "null" ? value : Quote(value));
    }
    Run("INSERT INTO " + table + " (" + names + ") VALUES (" + values + ")");
  }
  // A settled debit of 10,00 on 10/11/2026, but for what the test gives.
  void Movement(const std::string& number, const Fields& more = {}, const std::string& company = "_001") {
    Fields fields{{"LANCAMENTO", number},
                  {"DOCTO", "D" + number},
                  {"BANCO", "901"},
                  {"CONTA", kConta},
                  {"DT_LAN", "11/10/2026"},
                  {"DT_CONT", "11/10/2026"},
                  {"DT_VENCTO", "11/10/2026"},
                  {"VALOR", "10"},
                  {"OPERACAO", "-"},
                  {"GRUPO", "3104"},
                  {"HISTORICO", "019"},
                  {"OBSERVACAO", "OBS " + number},
                  {"TIPO", "L"},
                  {"PENDENTE", "N"}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("CONTACOR" + company, fields);
  }

  static void Fill(Desk& desk, const Fields& fields) {
    for (const auto& [name, value] : fields) {
      desk.Set(name, value);
      ASSERT_EQ(desk.Messages(), "") << name;
    }
  }
  // Opens the screen on the account, for the whole of November unless `fields` say otherwise; the dates come
  // last, since entering one overwrites it.
  static void Open(Desk& desk, const Fields& fields = {}) {
    desk.Open("TfmRelCC");
    Fill(desk, {{"RelConta", kConta}});
    Fill(desk, fields);
    Period(desk, "01/11/2026", "30/11/2026");
  }
  static void Period(Desk& desk, const std::string& from, const std::string& to) {
    desk.Set("EdtDataDe", from);
    desk.Set("edtDataAte", to);
  }
  static std::vector<Row> Read(Desk& desk, const char* name = "TbRelatorio") {
    const Json state = desk.State(name);
    const Json& set = state["screens"].Items().back()["sets"][name];
    std::vector<Row> rows;
    for (const Json& values : set["rows"].Items()) {
      Row row;
      for (std::size_t i = 0; i < set["fields"].Items().size(); ++i) {
        const Json& value = values.Items()[i];
        row[set["fields"].Items()[i].String()] = value.IsNull() ? "-" : value.String();
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }
  // The rows' fields joined by "|", one row a line.
  static std::string Shown(Desk& desk, std::initializer_list<const char*> fields,
                           const char* set = "TbRelatorio") {
    std::string text;
    for (const Row& row : Read(desk, set)) {
      std::string line;
      for (const char* field : fields) line += (line.empty() ? "" : "|") + row.at(field);
      text += line + "\n";
    }
    return text;
  }
  static std::string Gathered(Desk& desk, const Fields& fields, std::initializer_list<const char*> shown) {
    Fill(desk, fields);
    desk.Click("BitBtn29");
    EXPECT_EQ(desk.Messages(), "");
    return Shown(desk, shown);
  }
};

}  // namespace orv::test
