// The figures of a year: each reckoned a second time in the database, and what is printed.
#include <numeric>
#include <set>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

class MesTest : public DeskTest {
 protected:
  // What a statement gives: values in hundredths by their keys.
  using Sums = std::map<std::string, std::string>;
  void Add(Sums& sums, const std::string& field, const std::string& sql) {
    for (const auto& row : Db().Rows(sql)) {
      std::string key = field;
      for (std::size_t at = 0; at + 1 < row.size(); ++at) key += row[at].AsString();
      if (!row.back().AsCurrency().Round2().IsZero()) sums[key] = row.back().AsCurrency().Format2();
    }
    Db().CommitRetaining();
  }
  // The fields of a row that aren't zero.
  static void Read(Sums& sums, const Row& row, const std::string& prefix = "") {
    for (const auto& [field, value] : row) {
      if (field == "Ano" || value == "-" || field == "Codigo" || field == "Descricao" || field == "Tipo")
        continue;
      const std::string text = Currency::FromDouble(std::stod(value)).Format2();
      if (text != "0.00") sums[prefix + field] = text;
    }
  }
};

TEST_F(MesTest, EveryFigureAgreesWithPlainSums) {
  // Titles of a situation, open and closed; without a class; without a due date; of another status.
  Run("UPDATE RECEBER_001 SET CLASSE = '0' WHERE NUMERO LIKE '%1'");
  Run("UPDATE RECEBER_001 SET STATUS = 'O' WHERE NUMERO LIKE '%77%'");
  Run("UPDATE PAGTO_001 SET NUM_OS = NULL WHERE NUM_AP LIKE '%5'");
  Desk desk(database_, At{"TFmRelCCMes"});
  struct Question {
    Fields fields;
    std::string year, emi, rec, ven, customers, classes;
  };
  const std::string always = " BETWEEN '01/01/1900' AND '01/01/2050'";
  const Question questions[] = {{{}, "2026", always, always, always, "", ""},
                                {{{"EdtAno", "2025"},
                                  {"EdtEmiIni", "10/02/2025"},
                                  {"EdtEmiFim", "20/10/2026"},
                                  {"EdtRecIni", "15/03/2025"},
                                  {"EdtRecFim", "30/11/2025"},
                                  {"EdtVenIni", "05/01/2025"},
                                  {"EdtVenFim", "15/12/2025"},
                                  {"EdtCliente", "'00002','00004'"},
                                  {"CbClientes", "1"},
                                  {"EdtClasse", "'2101','3104'"}},
                                 "2025",
                                 " BETWEEN '02/10/2025' AND '10/20/2026'",
                                 " BETWEEN '03/15/2025' AND '11/30/2025'",
                                 " BETWEEN '01/05/2025' AND '12/15/2025'",
                                 " AND R.CODCLI IN ('00002','00004')",
                                 " AND P.NUM_OS NOT IN ('2101','3104')"}};
  for (const Question& q : questions) {
    for (const auto& [name, value] : q.fields) desk.Set(name, value);
    ASSERT_EQ(desk.Press("BtnExecutaSQL"), "");
    Sums wanted, found;
    const std::string receber = " FROM RECEBER_001 R WHERE R.STATUS = 'N'" + q.customers,
                      pagar = " FROM PAGTO_001 P WHERE P.STATUS = 'N'" + q.classes,
                      open = " AND (R.VALOR2 + R.JUROS) > (R.VALOR_PAGO + R.DESCONTO + R.VAL_DEV)",
                      left = "R.VALOR2 + R.JUROS - R.VALOR_PAGO - R.DESCONTO - R.VAL_DEV",
                      baixas =
                          " FROM RECEBERB_001 B JOIN RECEBER_001 R ON R.NUMERO = B.NUMERO WHERE R.STATUS "
                          "= 'N' AND B.DT_PAGTO" +
                          q.rec + q.customers,
                      pagos =
                          " FROM PAGTO1_001 B JOIN PAGTO_001 P ON P.NUM_AP = B.NUM_AP LEFT JOIN "
                          "SUBGRUPO_001 G ON G.CODIGO = P.NUM_OS WHERE P.STATUS = 'N' AND B.DT_LAN" +
                          q.rec + q.classes;
    const auto of_year = [&](const char* day) {
      return std::string(" AND UDF_YEAR(") + day + ") = " + q.year;
    };
    const auto month = [](const std::string& day, const std::string& sum) {
      return "SELECT UDF_MONTH(" + day + "), SUM(" + sum + ")";
    };
    Add(wanted, "EmiPer", "SELECT SUM(R.VALOR2)" + receber + " AND R.DT_EMISSAO" + q.emi);
    Add(wanted, "RecPer", "SELECT SUM(B.VALOR_PAGO)" + baixas);
    Add(wanted, "VenPer", "SELECT SUM(R.VALOR2)" + receber + open + " AND R.DT_VENCTO" + q.ven);
    const auto term = [](const std::string& later, const std::string& earlier, const std::string& amount) {
      return "CAST(SUM(CAST(UDF_DAYSBETWEEN(" + later + ", " + earlier + ") AS DOUBLE PRECISION) * " +
             amount + ") / SUM(" + amount + ") AS NUMERIC(18,4))";
    };
    const std::string sale = term("R.DT_VENCTO", "R.DT_EMISSAO", "R.VALOR2"),
                      buy = term("P.DT_VEN", "P.DT_EMI", "P.VALOR");
    Add(wanted, "PrazoMedFat", "SELECT ROUND(" + sale + ", 0)" + receber + " AND R.DT_EMISSAO" + q.emi);
    Add(wanted, "PrazoMedCom", "SELECT ROUND(" + buy + ", 0)" + pagar + " AND P.DT_EMI" + q.emi);
    Add(wanted, "PrazoMedVMes", "SELECT UDF_MONTH(R.DT_EMISSAO), " + sale + receber + " GROUP BY 1");
    Add(wanted, "PrazoMedCMes", "SELECT UDF_MONTH(P.DT_EMI), " + buy + pagar + " GROUP BY 1");
    Add(wanted, "EmiMes",
        month("R.DT_EMISSAO", "R.VALOR2") + receber + of_year("R.DT_EMISSAO") + " AND R.DT_EMISSAO" + q.emi +
            " GROUP BY 1");
    Add(wanted, "RecMes",
        month("B.DT_PAGTO", "B.VALOR_PAGO") + baixas + of_year("B.DT_PAGTO") + " GROUP BY 1");
    const std::string due = receber + of_year("R.DT_VENCTO") + " AND R.DT_VENCTO" + q.ven;
    Add(wanted, "VenMes", month("R.DT_VENCTO", "R.VALOR2") + due + " GROUP BY 1");
    Add(wanted, "PenMes", month("R.DT_VENCTO", left) + due + open + " GROUP BY 1");
    Add(wanted, "PagMes", month("B.DT_LAN", "B.VAL_PAG") + pagos + of_year("B.DT_LAN") + " GROUP BY 1");
    Add(wanted, "PagPenMes",
        month("P.DT_VEN", "P.VALOR + P.JUROS - P.DESCONTO - P.VAL_DEV - P.VAL_PAG") + pagar +
            of_year("P.DT_VEN") + " AND P.DT_VEN" + q.ven + " GROUP BY 1");
    Add(wanted, "PedMes",
        "SELECT UDF_MONTH(O.DT_FATURA), CAST(SUM(I.PRECO * I.QTDE) AS NUMERIC(18,4)) FROM PEDIDO_001 O JOIN "
        "PED_ITEN_001 I ON I.NUMERO = O.NUMERO WHERE O.DT_FATURA" +
            q.emi + of_year("O.DT_FATURA") + " GROUP BY 1");
    Add(wanted, "R",
        "SELECT COALESCE(S.CODIGO, ''), 'PenMes' || UDF_MONTH(R.DT_VENCTO), SUM(" + left + ")" +
            ReplaceAll(due + open, "R WHERE", "R LEFT JOIN TABSIT_001 S ON S.CODIGO = R.CLASSE WHERE") +
            " GROUP BY 1, 2");
    Add(wanted, "P",
        "SELECT COALESCE(G.CODIGO, ''), 'PagMes' || UDF_MONTH(B.DT_LAN), SUM(B.VAL_PAG)" + pagos +
            of_year("B.DT_LAN") + " GROUP BY 1, 2");
    const std::string days = "UDF_DAYSBETWEEN(R.DT_VENCTO, R.DT_EMISSAO)";
    Add(wanted, "Val_",
        "SELECT CASE WHEN " + days + " <= 0 THEN '00Dia' WHEN " + days + " > 90 THEN 'Maior' ELSE ((14 + " +
            days + ") / 15 * 15) || 'Dia' END, SUM(R.VALOR2)" + receber + " AND R.DT_EMISSAO" + q.emi +
            " GROUP BY 1");
    Add(wanted, "Val_",
        "SELECT ((UDF_DAY(R.DT_EMISSAO) + 6) / 7) || 'Sem', SUM(R.VALOR2)" + receber + " AND R.DT_EMISSAO" +
            q.emi + " GROUP BY 1");

    for (const char* set : {"TbRel", "TbVencto", "TbEmi"}) {
      const auto rows = desk.Read(set);
      ASSERT_EQ(rows.size(), 1U);
      Read(found, rows[0]);
    }
    for (const Row& row : desk.Read("TbGrupo"))
      Read(found, row, row.at("Tipo") + (row.at("Codigo") == "-" ? "" : row.at("Codigo")));
    EXPECT_GT(wanted.size(), 80U);
    EXPECT_EQ(found, wanted);
  }
  // What isn't a year leaves the months empty, and the periods as they are.
  const std::string kept = desk.Read("TbRel", {"EmiPer", "PrazoMedVMes5"});
  desk.Set("EdtAno", "ano");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  EXPECT_EQ(desk.Read("TbRel", {"EmiPer", "PrazoMedVMes5"}) + desk.Read("TbRel", {"EmiMes5"}), kept + "0\n");
  EXPECT_EQ(desk.Rows("TbGrupo"), "");
}

TEST_F(MesTest, BanksLookUpsAndWhatIsPrinted) {
  Empty("RECEBER_001 RECEBERB_001 PAGTO_001 PAGTO1_001 PEDIDO_001 PED_ITEN_001");
  const char* const titles[][6] = {{"T1", "01/05/2026", "01/05/2026", "100", "100", "901"},
                                   {"T2", "02/10/2026", "03/12/2026", "250.50", "50", "901"},
                                   {"T3", "02/28/2026", "06/30/2026", "80", "0", "902"},
                                   {"T4", "12/31/2025", "01/15/2026", "7", "0", "901"}};
  for (const auto& t : titles)
    Put(Receber{.numero = t[0],
                .dt_emissao = t[1],
                .dt_vencto = t[2],
                .valor2 = t[3],
                .valor_pago = t[4],
                .classe = t[0][1] == '2' ? "0" : "1101",
                .banco = t[5]});
  Put(Receberb{.numero = "T1", .dt_pagto = "01/05/2026", .valor_pago = "100"});
  Put(Receberb{.numero = "T2", .dt_pagto = "04/01/2026", .valor_pago = "50"});
  Put(Pagto{.num_ap = "1", .dt_emi = "01/02/2026", .dt_ven = "02/01/2026", .valor = "60", .val_pag = "60"});
  Put(Pagto{.num_ap = "2", .dt_emi = "01/31/2026", .dt_ven = "12/01/2026", .num_os = "", .valor = "90"});
  Put(Pagto1{.num_ap = "1", .val_pag = "60"});
  Run("UPDATE PAGTO1_001 SET DT_LAN = '02/01/2026'");
  Put(Pedido{.numero = "P1", .dt_fatura = "12/24/2026"});
  Put(PedItem{.numero = "P1"});

  Desk desk(database_, At{"TFmRelCCMes"});
  // A bank is chosen from its list, which types nothing.
  desk.Set("EdtBanco", "901");
  EXPECT_EQ(desk.Text("EdtBanco"), "");
  desk.Click("PqBanco");
  desk.Choose("901");
  EXPECT_EQ(desk.Text("EdtBanco"), "'901'");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  // It narrows the months of receivables, not the totals nor the terms.
  EXPECT_EQ(desk.Read("TbRel", {"EmiMes2", "PenMes6", "EmiPer", "PedMes12", "PagMes2"}),
            "250.5|0|437.5|100|60\n");
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  EXPECT_EQ(desk.Read("TbRel", {"EmiMes2", "PenMes6"}), "330.5|80\n");
  ExpectFile(Printed(desk, "BtnImprimir"), ORV_FILES "WCCMes.txt");
  // A figure opens its rows.
  const char* const figures[][5] = {
      {"TsMeses", "DBGrid1", "1", "Faturado", "T2 T3 "}, {"TsMeses", "DBGrid1", "0", "Vencido", "T1 T4 "},
      {"TsMeses", "DBGrid1", "1", "Pagos", "000001 "},   {"TsGrupos", "DBGrid2", "0", "Mes6", "T3 "},
      {"TsGrupos", "DBGrid2", "1", "Total", "T2 "},      {"TsPeriodo", "DBGrid3", "0", "VenPer", "T2 T3 T4 "},
      {"TsPeriodo", "DBGrid4", "0", "Val_30Dia", "T2 "}, {"TsPeriodo", "DBGrid4", "0", "Val_Maior", "T3 "},
      {"TsPeriodo", "DBGrid4", "0", "Val_00Dia", "T1 "}, {"TsPeriodo", "DBGrid5", "0", "Val_5Sem", "T4 "}};
  for (const auto& [page, grid, row, column, rows] : figures) {
    desk.Page(page);
    desk.DoubleClick(grid, std::stoi(row), column);
    std::set<std::string> numbers;
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      for (const Json& line : out["rows"].Items()) numbers.insert(line.Items()[1].String() + " ");
    }
    EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), std::string()), rows) << column;
    desk.Answer("ok");
  }
}

}  // namespace
}  // namespace orv::test
