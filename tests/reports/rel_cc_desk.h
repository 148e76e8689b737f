// What the scenarios of the account statement have in common: rows to gather and short ways to fill the
// screen and to read it.
#pragma once

#include <initializer_list>
#include <string>

#include "tests/support/desk_test.h"

namespace orv::test {

class RelCcTest : public DeskTest {
 protected:
  RelCcTest() { Usual(Movimento{.dt_vencto = "11/10/2026", .valor = 10}); }
  // Leaves the companies without movements and settlements.
  void Clear() {
    Empty("CONTACOR_001 RECEBERB_001 PAGTO1_001 RECEBER_001 PAGTO_001 CONTABIL_001");
    Empty("CONTACOR_002 RECEBERB_002 PAGTO1_002 RECEBER_002 PAGTO_002 CONTABIL_002");
  }
  // A settled debit of 10,00 on 10/11/2026 but for what the test gives, with a document and a text of its
  // number.
  void Movement(Movimento m, const std::string& company = "_001") {
    if (!m.docto.given) m.docto = "D" + m.lancamento.text;
    if (!m.observacao.given) m.observacao = "OBS " + m.lancamento.text;
    Put(m, company);
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
  // A double click: the title of the detail that it opens, and how many rows there are.
  static std::string Detail(Desk& desk, const char* grid, int row, const char* column) {
    desk.DoubleClick(grid, row, column);
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (out["on"] == Json("detail"))
        text += out["title"].String() + " " + std::to_string(out["rows"].Items().size());
    }
    desk.Answer("ok");
    return text;
  }
};

}  // namespace orv::test
