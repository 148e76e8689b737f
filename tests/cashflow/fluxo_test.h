// What the scenarios of the cash flow have in common: rows to gather and short ways to fill the screen.
#pragma once

#include <initializer_list>
#include <string>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

class FluxoTest : public DeskTest {
 protected:
  // Leaves the companies without anything to expect.
  void Clear() {
    for (const std::string company : {"_001", "_002"})
      Empty(ReplaceAll("CONTACOR* RECEBER* PAGTO* CHEQUE_PRE* PEDIDO* PED_ITEN* COMPRA* CO_ITEN* BORDERO*",
                       "*", company));
  }
  // Fills the screen; the dates last, since entering them overwrites what they hold.
  static void Fill(Desk& desk, const std::string& de, const std::string& ate, const Fields& fields = {}) {
    for (const auto& [name, value] : fields) {
      desk.Set(name, value);
      ASSERT_EQ(desk.Messages(), "") << name;
    }
    desk.Set({{"EdtDataDe", de}, {"edtDataAte", ate}});
  }
  static std::string Gathered(Desk& desk, const std::string& de, const std::string& ate, const Fields& fields,
                              std::initializer_list<const char*> shown) {
    Fill(desk, de, ate, fields);
    EXPECT_EQ(desk.Press("BitBtn29"), "");
    return desk.Read("TbRelatorio", shown);
  }
};

}  // namespace orv::test
