// What the scenarios of the ledger's screen have in common: a movement's fields, short ways to fill and load.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

// Accounts of the first demo company, with their accounting accounts 1.1.02.001 and 1.1.02.002.
constexpr const char* kConta = "10250-1";
constexpr const char* kOutraConta = "20418-7";

class CcTest : public DeskTest {
 protected:
  // Switches parameters of the ledger on; read when the screen opens.
  void Fin(std::initializer_list<int> numbers) {
    for (const int number : numbers) {
      Run("INSERT INTO PARAMETRO (EMP_PAT, GRUPO, NUMERO, VALOR) VALUES ('_001', 'FIN', " +
          std::to_string(number) + ", 'S')");
    }
  }

  // A rule of a class: share of an account, a cost centre and its share.
  void Rule(std::string_view classe, std::string_view conta, std::string_view perc, std::string_view centre,
            std::string_view centre_perc) {
    Run("INSERT INTO CONT_RATEIO_001 (CODIGO, TIPO, TIPO_VAL, CONTA, PERC_CONTA, CCUSTO, PERC_CCUSTO) VALUES "
        "('" +
        std::string(classe) + "', 'C', 'VF', '" + std::string(conta) + "', " + std::string(perc) + ", '" +
        std::string(centre) + "', " + std::string(centre_perc) + ")");
  }

  struct Stored {
    std::string numero;
    std::string docto;
    std::string tipo = "L";
    std::string lanc_con = "";
    std::string conta = kConta;
    std::string operacao = "-";
    std::string classe = "3104";
    std::string dt_cont = "11/10/2026";
    std::string pendente = "N";
    std::string historico = "019";
    std::string tipo_doc = "DP";
    std::string valor = "150";
    std::string observacao = "COMO ESTAVA";
  };
  // A settled movement of 150,00 posted on 10/11/2026.
  void Store(const Stored& m) {
    Run("INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, "
        "OPERACAO, "
        "GRUPO, HISTORICO, OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON) VALUES ('" +
        m.numero + "', '" + m.docto + "', '" + (m.conta == kOutraConta ? "902" : "901") + "', '" + m.conta +
        "', '11/10/2026', '" + m.dt_cont + "', '11/12/2026', " + m.valor + ", '" + m.operacao + "', '" +
        m.classe + "', '" + m.historico + "', '" + ReplaceAll(m.observacao, "'", "''") + "', '" + m.tipo +
        "', '" + m.tipo_doc + "', '" + m.pendente + "', '" + m.lanc_con + "')");
  }

  // The stored rows of a number.
  std::string Movement(const std::string& numero) {
    return Sql(
        "SELECT DOCTO, BANCO, CONTA, DT_LAN, DT_VENCTO, DT_CONT, VALOR, OPERACAO, GRUPO, HISTORICO, "
        "OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON FROM CONTACOR_001 WHERE LANCAMENTO = '" +
        numero + "' ORDER BY CONTA");
  }
  std::string Count(const std::string& table, const std::string& where) {
    return Sql("SELECT COUNT(*) FROM " + table + " WHERE " + where);
  }
  std::string Audit(const std::string& area = "CONTACOR") {
    return Sql("SELECT TEXTO, OPERACAO, CHAVE FROM AUDITORIA WHERE AREA = '" + area + "' ORDER BY ID");
  }
  // A cheque behind a movement.
  void Cheque(const std::string& numero, const std::string& docto, const std::string& status) {
    Run("INSERT INTO CHEQUE_PRE_001 (CHAVE, NUMERO, BANCO, CONTA, VALOR, STATUS) VALUES ('" + numero +
        "', '" + docto + "', '901', '10250-1', 150, '" + status + "')");
  }
  // Puts a period lock up to the desk's today.
  void Lock(const std::string& kind, const std::string& account) {
    Run("UPDATE OR INSERT INTO BLOQUEIO (EMP_PAT, TIPO, CONTA, ATE) VALUES ('_001', '" + kind + "', '" +
        account + "', '11/20/2026') MATCHING (EMP_PAT, TIPO, CONTA)");
  }
  void Unlock(const std::string& kind) { Run("DELETE FROM BLOQUEIO WHERE TIPO = '" + kind + "'"); }
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

  // Gives the fields their values; lists that empty fields open on the way are closed.
  static void Fill(Desk& desk, const Fields& fields) {
    for (const auto& [control, value] : fields) {
      desk.Set(control, value);
      CloseLists(desk);
    }
  }
  static void CloseLists(Desk& desk) {
    while (desk.End() == "waiting lookup") desk.Do({{"do", "choose"}});
  }
  // Starts a new movement that every rule accepts, but for what the test gives; its number. The focus is on
  // Confirm, and the split is proposed.
  static std::string New(Desk& desk, const Fields& other = {}) {
    desk.Click("BitBtn1");
    Fields fields = {{"EdtConta", kConta},
                     {"EdtNumDoc", "NF 77"},
                     {"EdtTipo", "3104"},
                     {"EdtHis", "019"},
                     {"EdtValor", "100,00"}};
    for (const auto& [control, value] : other) {
      const auto same =
          std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return f.first == control; });
      if (same == fields.end()) {
        fields.emplace_back(control, value);
      } else {
        same->second = value;
      }
    }
    Fill(desk, fields);
    Fill(desk, {{"EdtObs", "PAPEL E TINTA"}});
    desk.Focus("SpeedButton2");
    return desk.Text("EdtLancto");
  }
  // Presses Confirm; the messages that come.
  static std::string Confirm(Desk& desk) {
    desk.Click("SpeedButton2");
    CloseLists(desk);
    return desk.Messages();
  }
  // Presses the button while a period is closed, which the user is told.
  void Closed(Desk& desk, const char* button, const std::string& kind, const std::string& account = "") {
    Lock(kind, account);
    desk.Click(button);
    EXPECT_EQ(desk.Messages(), kind == "CX" ? "Período do caixa fechado até 20/11/2026."
                                            : "Período fechado até 20/11/2026 para a conta " + account + ".");
    desk.Answer("ok");
    Unlock(kind);
  }
  // Loads a stored movement through the screen's own list; `row` among those of the number.
  static void Load(Desk& desk, std::string_view numero, int row = 0) {
    desk.Click("btnConsulta");
    desk.Do({{"do", "search"}, {"text", numero}});
    desk.Do({{"do", "choose"}, {"rows", Json::Array{row}}});
  }
  // Gives the filters of the inquiry their values and runs it; the numbers found, in order.
  static std::string Consult(Desk& desk, const Fields& fields = {}) {
    desk.Do({{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet1"}});
    for (const auto& [control, value] : fields) desk.Set(control, value);
    desk.Click("BitBtn5");
    return Found(desk);
  }
  static std::string Found(Desk& desk) {
    std::string numbers;
    for (const std::string& row : Split(desk.Rows("TbConsulta"), "\n")) {
      if (row.empty()) continue;
      numbers += (numbers.empty() ? "" : " ") + row.substr(0, row.find('|'));
    }
    return numbers;
  }
  // Selects a row of the inquiry.
  static void Select(Desk& desk, int row) {
    desk.Do({{"do", "row"}, {"control", "DBGridApagar"}, {"row", row}});
  }
  // The number on which the inquiry stands.
  static std::string Selected(Desk& desk) {
    const Json set = desk.State("TbConsulta")["screens"].Items().back()["sets"]["TbConsulta"];
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
  static void Cell(Desk& desk, std::string_view grid, int row, std::string_view column,
                   std::string_view value) {
    desk.Do({{"do", "cell"}, {"control", grid}, {"row", row}, {"column", column}, {"value", value}});
  }
  static void Key(Desk& desk, std::string_view grid, int row, std::string_view column, std::string_view key) {
    desk.Do({{"do", "key"}, {"control", grid}, {"row", row}, {"column", column}, {"key", key}});
  }
};

}  // namespace orv::test
