// The monthly result: its figures reckoned a second time by plain sums, its titles by comparing every row
// with every title, what it refuses, what stands behind a figure, and the printed forms.
#include <cmath>
#include <random>

#include "tests/support/desk_test.h"
#include "toolkit/currency.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

class ResultTest : public DeskTest {
 protected:
  // "code|side|field" to an amount.
  using Sums = std::map<std::string, Currency>;

  static std::vector<Row> Gathered(Desk& desk, const Fields& fields) {
    desk.Set(fields);
    EXPECT_EQ(desk.Press("BitBtn29"), "");
    return desk.Read("TbRelatorio");
  }
  static std::string Text(const Sums& sums) {
    std::string text;
    for (const auto& [key, amount] : sums)
      if (!amount.Round2().IsZero()) text += key + " " + amount.Format2() + "\n";
    return text;
  }
  static Currency Amount(const std::string& cell) {
    return cell == "-" ? Currency() : Currency::FromDouble(std::stod(cell));
  }
  static Sums Figures(const std::vector<Row>& rows) {
    Sums sums;
    for (const Row& row : rows) {
      Currency total, budget;
      for (int month = 1; month <= 12; ++month) {
        for (const std::string field : {"Mes", "Orc"}) {
          const Currency amount = Amount(row.at(field + std::to_string(month)));
          (field == "Mes" ? total : budget) += amount;
          if (row.at("TpConta") == "A")
            sums[row.at("Codigo") + "|" + row.at("Operacao") + "|" + field + std::to_string(month)] += amount;
        }
      }
      EXPECT_EQ(Amount(row.at("Valor")).Format2(), total.Format2()) << row.at("Codigo");
      EXPECT_EQ(Amount(row.at("ValorOrc")).Format2(), budget.Format2()) << row.at("Codigo");
    }
    return sums;
  }
  // Each statement gives code, side, month and amount; "{}" is the company's suffix.
  void Add(Sums& sums, bool all, const char* field, std::string sql, const std::string& narrowed,
           int sign = 1) {
    for (const std::string company : {"_001", "_002"}) {
      if (company == "_002" && !all) continue;
      for (const auto& row : Db().Rows(ReplaceAll(sql + narrowed + " GROUP BY 1, 2, 3", "{}", company)))
        sums[row[0].AsString() + "|" + row[1].AsString() + "|" + field + row[2].AsString()] +=
            Currency::FromDouble(row[3].AsFloat() * sign);
    }
    Db().CommitRetaining();
  }
  // Every title against every row; how many have something beneath them.
  static int TitlesAgree(const std::vector<Row>& rows) {
    int full = 0;
    for (const Row& title : rows) {
      if (title.at("TpConta") != "T") continue;
      std::array<Currency, 24> sums;
      bool any = false;
      for (const Row& row : rows) {
        if (row.at("TpConta") == "T" || row.at("Classe") == title.at("Classe") ||
            !row.at("Classe").starts_with(title.at("Classe")))
          continue;
        any = true;
        for (int i = 0; i < 24; ++i) {
          const Currency amount = Amount(row.at((i < 12 ? "Mes" : "Orc") + std::to_string(i % 12 + 1)));
          sums[static_cast<std::size_t>(i)] += row.at("Operacao") == title.at("Operacao") ? amount : -amount;
        }
      }
      full += any ? 1 : 0;
      for (int i = 0; i < 24; ++i) {
        const std::string cell = title.at((i < 12 ? "Mes" : "Orc") + std::to_string(i % 12 + 1));
        EXPECT_EQ(cell == "-", !any) << title.at("Classe");
        EXPECT_EQ(Amount(cell).Format2(), sums[static_cast<std::size_t>(i)].Format2()) << title.at("Classe");
      }
    }
    return full;
  }
};

// What came in and went out in two years, regime by regime, company by company.
TEST_F(ResultTest, PlainSumsAgree) {
  Run("UPDATE RECEBER_001 SET STATUS = 'O' WHERE NUMERO LIKE '%7/1'");
  Run("UPDATE PAGTO_001 SET STATUS = 'O' WHERE NUM_AP LIKE '%3'");
  Run("UPDATE PAGTO_001 SET STATUS = 'DV' WHERE NUM_AP LIKE '%4'");
  const std::string days = " BETWEEN '12/15/2024' AND '10/20/2026'";
  const std::string s = " JOIN SUBGRUPO{} S ON S.CODIGO = ";
  struct Case {
    int regime;
    Fields fields;
    bool all, shop, returns;
    std::string prefix = {}, account = {};
    const char* ledger_day = "DT_LAN";
  };
  const Case cases[] = {
      {0, {{"RgData", "1"}}, false, false, false, {}, {}, "DT_CONT"},
      {0, {{"RgData", "0"}, {"CbTodasEmp", "true"}}, true, false, false, {}, "10250-1"},
      {1, {{"CbTodasEmp", "false"}}, false, false, false, "3.0"},
      {2, {{"CbLoja", "true"}}, false, true, false},
      {3, {{"CbDevol", "true"}, {"CbTodasEmp", "true"}}, true, true, true},
      {3, {{"CbLoja", "false"}, {"CbTodasEmp", "false"}}, false, false, true, "2"},
      {4, {{"CbDevol", "false"}}, false, false, false, {}, "20418-7"},
      {4, {}, false, false, false},
  };
  Desk desk(database_, At{"TfmRelResultMes"});
  desk.Check("CbOrca", true);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.regime);
    desk.Set("RgRegime", std::to_string(c.regime));
    desk.Click("SpeedButton1");
    if (!c.account.empty()) {
      desk.Click("PqConta");
      desk.Choose(c.account);
    }
    desk.Set({{"EdtClasse", c.prefix}, {"EdtDataDe", "15/12/2024"}, {"edtDataAte", "20/10/2026"}});
    const std::vector<Row> rows = Gathered(desk, c.fields);
    const std::string narrowed = " AND S.CONTA STARTING WITH '" + c.prefix + "'";
    const std::string kinds = std::string(" AND S.TIPO NOT IN ('Transferencia'") +
                              (c.shop ? "" : ", 'Loja'") + (c.regime == 3 ? ", 'Custo Producao')" : ")");
    Sums sums;
    if (c.regime == 0) {
      const std::string day = std::string("M.") + c.ledger_day;
      Add(sums, c.all, "Mes",
          "SELECT S.CODIGO, M.OPERACAO, EXTRACT(MONTH FROM " + day + "), SUM(M.VALOR) FROM CONTACOR{} M" + s +
              "M.GRUPO JOIN CADCONTA{} C ON C.CONTA = M.CONTA AND C.IMP_FLUXO = 'S' WHERE M.PENDENTE = 'N' "
              "AND " +
              day + days + (c.account.empty() ? "" : " AND M.CONTA = '" + c.account + "'"),
          narrowed + kinds);
    } else {
      const char* const columns[][6] = {
          {"T.DT_VENCTO", "T.VALOR2", "T.DT_VEN", "T.VALOR", "", ""},
          {"T.DT_EMISSAO", "T.VALOR2", "T.DT_EMI", "T.VALOR", "", ""},
          {"T.DT_EMISSAO", "T.VALOR2", "T.DT_ATUAL", "T.VALOR", "", ""},
          {"B.DT_CONT", "B.VALOR_PAGO", "B.DT_LAN", "B.VAL_PAG", " JOIN RECEBERB{} B ON B.NUMERO = T.NUMERO",
           " JOIN PAGTO1{} B ON B.NUM_AP = T.NUM_AP"}};
      const auto& k = columns[c.regime - 1];
      const std::string status = c.returns ? " AND T.STATUS IN ('N', 'DV')" : " AND T.STATUS = 'N'";
      const std::string of = c.account.empty() ? ""
                                               : " AND EXISTS (SELECT 1 FROM CONTACOR{} M WHERE M.LANCAMENTO "
                                                 "= B.LANCAMENTO AND M.CONTA = '" +
                                                     c.account + "')";
      for (const bool pay : {false, true}) {
        const std::string day = k[pay ? 2 : 0];
        Add(sums, c.all, "Mes",
            "SELECT S.CODIGO, S.OPERACAO, EXTRACT(MONTH FROM " + day + "), SUM(" + k[pay ? 3 : 1] +
                ") FROM " + (pay ? "PAGTO{} T" : "RECEBER{} T") + k[pay ? 5 : 4] + s +
                (pay ? "T.NUM_OS" : "T.CLASSE") + " WHERE " + (pay ? "1 = 1" : "T.SITUACAO <> 'P'") +
                " AND " + day + days + status + of,
            narrowed + kinds);
      }
    }
    if (c.regime == 3) {
      const std::string cost = "SELECT S.CODIGO, S.OPERACAO, EXTRACT(MONTH FROM N.DT_EMISSAO), ";
      const std::string notes = cost +
                                "SUM(I.CUSTO * I.QTDE) FROM NOTA{} N JOIN NOTAITEN{} I ON I.FATURA = "
                                "N.FATURA JOIN NATUREZA{} K ON K.NATUREZA = N.NATUREZA JOIN SUBGRUPO{} "
                                "S ON S.TIPO = 'CPV' WHERE N.IMPRESSO = 'S' AND N.DT_EMISSAO" +
                                days;
      Add(sums, c.all, "Mes", notes + " AND K.TIPO = 'V' AND K.DUPLI = 'S'", narrowed);
      Add(sums, c.all, "Mes", notes + " AND K.TIPO = 'D'", narrowed, -1);
      Add(sums, c.all, "Mes",
          cost +
              "SUM(I.VALOR * I.QTDE) FROM NOTA_ENTRA{} N JOIN NF_ENTRA_ITEN{} I ON I.NUMERO = N.NOTAFISCAL "
              "AND I.CODCRE = N.CREDOR AND I.SERIE = N.SERIE JOIN NATUREZA{} K ON K.NATUREZA = N.NATUREZA "
              "AND K.TIPO = 'D' JOIN SUBGRUPO{} S ON S.TIPO = 'CPV' WHERE N.DT_EMISSAO" +
              days,
          narrowed, -1);
      for (const int returned : {0, 1})
        if (c.shop)
          Add(sums, c.all, "Mes",
              "SELECT S.CODIGO, S.OPERACAO, EXTRACT(MONTH FROM V.DATA), SUM(I.QUANTIDADE * P.CUSTO) FROM "
              "VENDA{} V JOIN ITVENDA{} I ON I.CODVEN = V.CODVEN JOIN PA_MOV{} P ON P.NUM_DOCTO = V.CODVEN "
              "|| "
              "'01' JOIN SUBGRUPO{} S ON S.TIPO = 'CPV' WHERE V.DEVOLUCAO = " +
                  std::to_string(returned) + " AND P.OPERACAO = '" + (returned ? "E" : "S") + "' AND V.DATA" +
                  days,
              narrowed, returned ? -1 : 1);
    }
    const char* const budget[][2] = {{"T.DT_VENCTO", "T.DT_VEN"},
                                     {"T.DT_VENCTO", "T.DT_VEN"},
                                     {"T.DT_EMISSAO", "T.DT_EMI"},
                                     {"T.DT_EMISSAO", "T.DT_ATUAL"},
                                     {"T.DT_VENCTO", "T.DT_VEN"}};
    for (const bool pay : {false, true}) {
      const std::string day = budget[c.regime][pay ? 1 : 0];
      Add(sums, c.all, "Orc",
          std::string("SELECT S.CODIGO, '") + (pay ? "-" : "+") + "', EXTRACT(MONTH FROM " + day +
              "), SUM(T." + (pay ? "VALOR) FROM PAGTO{} T" : "VALOR2) FROM RECEBER{} T") + s +
              (pay ? "T.NUM_OS" : "T.CLASSE") + " WHERE T.STATUS = 'O' AND " + day + days,
          narrowed + " AND S.TIPO NOT IN ('Transferencia', 'Loja')");
    }
    EXPECT_EQ(Text(Figures(rows)), Text(sums));
    EXPECT_GT(TitlesAgree(rows), 1);
    // The sections, and the picture of them.
    Sums sections, picture;
    for (const auto& [key, amount] : sums) {
      const auto parts = Split(key, "|");
      if (parts[2].starts_with("Mes")) sections[parts[1]] += amount;
    }
    for (const Row& row : desk.Read("TbGrafico")) {
      picture["+"] += Currency::ParseNeutral(row.at("Recebimentos"));
      picture["-"] += Currency::ParseNeutral(row.at("Pagamentos"));
    }
    EXPECT_EQ(Text(picture), Text(sections));
    Currency opening;
    for (const std::string company : {"_001", "_002"})
      if (company == "_001" || c.all)
        opening += Db().Scalar("SELECT SUM(DECODE(M.OPERACAO, '+', M.VALOR, -M.VALOR)) FROM CONTACOR" +
                               company + " M JOIN CADCONTA" + company +
                               " C ON C.CONTA = M.CONTA WHERE C.IMP_FLUXO = 'S' AND M.PENDENTE = 'N' AND "
                               "M.DT_CONT <= '12/15/2024'")
                       .AsCurrency();
    Db().CommitRetaining();
    EXPECT_EQ(Amount(rows.front().at("Saldo")).Format2(), opening.Format2());
    EXPECT_EQ(rows.front().at("Meses"), "23");
  }
}

}  // namespace
}  // namespace orv::test
