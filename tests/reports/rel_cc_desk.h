// What the scenarios of the account statement have in common: rows to gather and short ways to fill the
// screen and to read it.
#pragma once

#include <initializer_list>
#include <string>

#include "tests/support/desk_test.h"

namespace orv::test {

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
    desk.Set({{"EdtDataDe", from}, {"edtDataAte", to}});
  }
  static std::string Gathered(Desk& desk, const Fields& fields, std::initializer_list<const char*> shown) {
    Fill(desk, fields);
    EXPECT_EQ(desk.Press("BitBtn29"), "");
    return desk.Read("TbRelatorio", shown);
  }
};

}  // namespace orv::test
