// What the scenarios of the workbench have in common: movements, lines of the statement, ticks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

class ConciliaTest : public DeskTest {
 protected:
  ConciliaTest() {
    Empty("CONTACOR_001 EXTRATO_001 CHEQUE_PRE_001 CONTABIL_001 AUDITORIA");
    Usual(Movimento{.dt_lan = "11/09/2026", .pendente = "S"});
  }

  std::string Movements() {
    return Sql(
        "SELECT LANCAMENTO, PENDENTE, LANC_CON, DT_CONT FROM CONTACOR_001 ORDER BY 1, CONTA, OPERACAO");
  }
  std::string Lines() { return Sql("SELECT LANCTO, CONCILIADO, LANC_CON FROM EXTRATO_001 ORDER BY 1"); }
  std::string Cheques() { return Sql("SELECT CHAVE, STATUS, DT_BAIXA FROM CHEQUE_PRE_001 ORDER BY 1"); }
  std::string Posted() {
    return Sql(
        "SELECT LANCAMENTO, DOCTO, CONTA_C, CONTA_D, OPERACAO, ORIGEM, HISTORICO, VALOR, DATA, CODIGO, "
        "OBSERVACAO FROM CONTABIL_001 ORDER BY 1");
  }
  std::string All() {
    return Movements() + "/" + Lines() + "/" + Cheques() + "/" + Posted() + "/" + Audit("CONCILIACAO");
  }

  static Desk& Open(Desk& desk) {
    desk.Open("TFmConcilia");
    desk.Set("EdtConta", kConta);
    return desk;
  }
  // Sets the filters and consults; the numbers of both sides.
  static std::string Consult(Desk& desk, const Fields& fields = {}) {
    desk.Set(fields);
    desk.Click("BitBtn1");
    return Listed(desk);
  }
  static std::string Listed(Desk& desk) {
    return desk.Column("TbMov", "Lancto") + " / " + desk.Column("TbArq", "Lancto");
  }
  // The numbers of what is ticked on both sides.
  static std::string Ticked(Desk& desk) {
    const auto side = [&](const char* set, const char* field, const char* mark) {
      std::string text;
      for (const auto& row : desk.Read(set))
        if (row.at(field) == mark) text += (text.empty() ? "" : " ") + row.at("Lancto");
      return text;
    };
    return side("TbMov", "Conciliar", "N") + " / " + side("TbArq", "Concilia", "S");
  }
  static void TickMov(Desk& desk, int row, bool on = true) {
    desk.Cell("OrvDBGrid1", row, "Conciliar", on ? "true" : "false");
  }
  static void TickArq(Desk& desk, int row, bool on = true) {
    desk.Cell("OrvDBGrid2", row, "Concilia", on ? "true" : "false");
  }
  // Ticks rows of the movements, then of the statement.
  static void Tick(Desk& desk, const std::vector<int>& movs, const std::vector<int>& arqs) {
    for (const int row : movs) TickMov(desk, row);
    for (const int row : arqs) TickArq(desk, row);
  }
  static std::string Totals(Desk& desk) {
    return ReplaceAll(desk.Texts({"EdtTotMov", "EdtTotExt", "EdtDif"}), "|", " ");
  }
  static int64_t RowOf(Desk& desk, std::string_view set) { return desk.SetOf(set)["row"].Integer(); }
};

}  // namespace orv::test
