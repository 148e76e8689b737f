// What the scenarios of the ledger's screen have in common: short ways to load, ask and tell what stands
// there.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

// What the ledger's actions write.
constexpr const char* kWritten =
    "CONTACOR_001 CONTABIL_001 CENTRO_RATEIO_001 CHEQUE_PRE_001 EXTRATO_001 AUDITORIA";

class CcTest : public DeskTest {
 protected:
  CcTest() { Usual(Movimento{.valor = "150", .observacao = "COMO ESTAVA", .tipo_doc = "DP"}); }

  // The stored rows of a number.
  std::string Movement(const std::string& numero) {
    return Sql(
        "SELECT DOCTO, BANCO, CONTA, DT_LAN, DT_VENCTO, DT_CONT, VALOR, OPERACAO, GRUPO, HISTORICO, "
        "OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON FROM CONTACOR_001 WHERE LANCAMENTO = '" +
        numero + "' ORDER BY CONTA");
  }
  std::string Entries(const std::string& numero) {
    return Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 WHERE LANCAMENTO = '" + numero +
               "' ORDER BY 3 DESC");
  }
  std::string Shares(const std::string& numero) {
    return Sql(
        "SELECT ORDEM, CONTA, NUMERO, CENTROCUSTO, TIPO, PERC_RAT, VALOR_RAT FROM CENTRO_RATEIO_001 WHERE "
        "LANCAMENTO = '" +
        numero + "' ORDER BY 1, 4");
  }
  void Unlock(const std::string& tipo) { Run("DELETE FROM BLOQUEIO WHERE TIPO = '" + tipo + "'"); }

  // Starts a new movement that every rule accepts, but for what the test gives; its number. The focus is on
  // Confirm, and the split is proposed.
  static std::string New(Desk& desk, const Fields& other = {}) {
    Fields fields = {{"EdtConta", kConta},
                     {"EdtNumDoc", "NF 77"},
                     {"EdtTipo", "3104"},
                     {"EdtHis", "019"},
                     {"EdtValor", "100,00"}};
    for (const auto& [control, value] : other) {
      std::erase_if(fields, [&](const auto& f) { return f.first == control; });
      fields.emplace_back(control, value);
    }
    desk.Click("BitBtn1");
    desk.Fill(fields);
    desk.Fill({{"EdtObs", "PAPEL E TINTA"}});
    desk.Focus("SpeedButton2");
    return desk.Text("EdtLancto");
  }
  // Presses Confirm; the messages that come.
  static std::string Confirm(Desk& desk) {
    desk.Click("SpeedButton2");
    desk.CloseLists();
    return desk.Messages();
  }
  // Loads a stored movement through the screen's own list; `row` among those of the number.
  static void Load(Desk& desk, std::string_view numero, int row = 0) {
    desk.Click("btnConsulta");
    desk.Do({{"do", "search"}, {"text", numero}});
    desk.Do({{"do", "choose"}, {"rows", Json::Array{row}}});
  }
  // Gives the filters of the inquiry their values and runs it; the numbers found, in order.
  static std::string Consult(Desk& desk, const Fields& fields = {}) {
    desk.Page("TabSheet1");
    desk.Set(fields);
    desk.Click("BitBtn5");
    return Found(desk);
  }
  static std::string Found(Desk& desk) { return desk.Column("TbConsulta", "LANCAMENTO"); }
  // The number on which the inquiry stands.
  static std::string Selected(Desk& desk) {
    const Json set = desk.SetOf("TbConsulta");
    return set["rows"].Items().at(static_cast<std::size_t>(set["row"].Integer())).Items()[0].String();
  }
  // The lines of the open accounting confirmation: credit, debit, amount, text.
  static std::string Posting(const Desk& desk) {
    std::string lines;
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("confirm"))) continue;
      for (const Json& line : out["lines"].Items()) {
        lines += (lines.empty() ? "" : ";") + line["credit"].String() + "|" + line["debit"].String() + "|" +
                 line["amount"].String() + "|" + line["note"].String();
      }
    }
    return lines;
  }
};

}  // namespace orv::test
