// What the scenarios of the workbench have in common: movements, lines of the statement, ticks.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

using Entries = std::vector<std::pair<std::string, std::string>>;

class ConciliaTest : public DeskTest {
 protected:
  // The account on which everything is done, unless a row says another.
  static constexpr const char* kConta = "10250-1";
  static constexpr const char* kOutra = "20418-7";

  ConciliaTest() {
    for (const char* table : {"CONTACOR_001", "EXTRATO_001", "CHEQUE_PRE_001", "CONTABIL_001", "AUDITORIA"})
      Run("DELETE FROM " + std::string(table));
  }

  struct Mov {
    std::string numero;
    std::string docto = "1";
    std::string valor = "100";
    std::string operacao = "-";
    std::string dt_cont = "11/10/2026";
    std::string pendente = "S";
    std::string lanc_con = "";
    std::string historico = "019";
    std::string conta = kConta;
    std::string grupo = "3104";
  };
  void Store(const Mov& m) {
    Run("INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, "
        "OPERACAO, GRUPO, HISTORICO, OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON) VALUES ('" +
        m.numero + "', '" + ReplaceAll(m.docto, "'", "''") + "', '901', '" + m.conta + "', '11/09/2026', '" +
        m.dt_cont + "', '11/12/2026', " + m.valor + ", '" + m.operacao + "', '" + m.grupo + "', '" +
        m.historico + "', 'OBS', 'L', '', '" + m.pendente + "', '" + m.lanc_con + "')");
  }
  struct Line {
    std::string lancto;
    std::string docto = "1";
    std::string valor = "100";
    std::string operacao = "D";
    std::string dt_cont = "11/11/2026";
    std::string conciliado = "N";
    std::string lanc_con = "";
    std::string conta = kConta;
  };
  void Store(const Line& l) {
    Run("INSERT INTO EXTRATO_001 (LANCTO, BANCO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, "
        "ARQUIVO, "
        "CONCILIADO, LANC_CON) VALUES ('" +
        l.lancto + "', '901', '" + l.conta + "', '" + ReplaceAll(l.docto, "'", "''") + "', '" + l.dt_cont +
        "', " + l.valor + ", '" + l.operacao + "', 'LINHA', 'EXTRATO_2026.TXT', '" + l.conciliado + "', '" +
        l.lanc_con + "')");
  }
  // A cheque behind a movement.
  void Cheque(const std::string& numero, const std::string& docto, const std::string& status = "P") {
    Run("INSERT INTO CHEQUE_PRE_001 (CHAVE, NUMERO, BANCO, CONTA, VALOR, STATUS) VALUES ('" + numero +
        "', '" + docto + "', '901', '10250-1', 100, '" + status + "')");
  }
  void Fin110() {
    Run("INSERT INTO PARAMETRO (EMP_PAT, GRUPO, NUMERO, VALOR) VALUES ('_001', 'FIN', 110, 'S')");
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
  std::string Audit() {
    return Sql("SELECT TEXTO, OPERACAO, CHAVE FROM AUDITORIA WHERE AREA = 'CONCILIACAO' ORDER BY ID");
  }
  std::string All() { return Movements() + "/" + Lines() + "/" + Cheques() + "/" + Posted() + "/" + Audit(); }

  static void Open(Desk& desk) {
    desk.Open("TFmConcilia");
    desk.Set("EdtConta", kConta);
  }
  // Sets the filters and consults; the numbers of both sides.
  static std::string Consult(Desk& desk, const Entries& fields = {}) {
    for (const auto& [control, value] : fields) desk.Set(control, value);
    desk.Click("BitBtn1");
    return Listed(desk);
  }
  // A field of all rows of a set.
  static std::string Column(Desk& desk, std::string_view set, std::size_t field) {
    std::string text;
    for (const std::string& row : Split(desk.Rows(set), "\n")) {
      if (!row.empty()) text += (text.empty() ? "" : " ") + Split(row, "|")[field];
    }
    return text;
  }
  static std::string Listed(Desk& desk) {
    return Column(desk, "TbMov", 2) + " / " + Column(desk, "TbArq", 2);
  }
  // The numbers of what is ticked on both sides.
  static std::string Ticked(Desk& desk) {
    const auto side = [&](std::string_view set, std::string_view mark) {
      std::string text;
      for (const std::string& row : Split(desk.Rows(set), "\n")) {
        const auto parts = Split(row, "|");
        if (parts[0] == mark) text += (text.empty() ? "" : " ") + parts[2];
      }
      return text;
    };
    return side("TbMov", "N") + " / " + side("TbArq", "S");
  }
  static void TickMov(Desk& desk, int row, bool on = true) { Cell(desk, "OrvDBGrid1", row, "Conciliar", on); }
  static void TickArq(Desk& desk, int row, bool on = true) { Cell(desk, "OrvDBGrid2", row, "Concilia", on); }
  static void Cell(Desk& desk, std::string_view grid, int row, std::string_view column, bool on) {
    desk.Do({{"do", "cell"},
             {"control", grid},
             {"row", row},
             {"column", column},
             {"value", on ? "true" : "false"}});
  }
  static std::string Totals(Desk& desk) {
    return desk.Text("EdtTotMov") + " " + desk.Text("EdtTotExt") + " " + desk.Text("EdtDif");
  }
  static int64_t RowOf(Desk& desk, std::string_view set) {
    return desk.State(set)["screens"].Items().back()["sets"][set]["row"].Integer();
  }
  static void Page(Desk& desk, std::string_view page) {
    desk.Do({{"do", "page"}, {"control", "PageControl1"}, {"page", page}});
  }
  // A file in the user's own folder; the path by which he names it.
  std::string Written(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_.Path() / name, std::ios::binary) << bytes;
    return name;
  }
};

}  // namespace orv::test
