// The monthly result: the figures of the demo companies, its titles by comparing every row with every title,
// what it refuses, what stands behind a figure, and the printed forms.
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
    for (const Row& row : rows)
      for (const auto& [field, cell] : row)
        if (row.at("TpConta") == "A" && (field.starts_with("Mes") || field.starts_with("Orc")) &&
            field != "Meses")
          sums[row.at("Codigo") + "|" + row.at("Operacao") + "|" + field] += Amount(cell);
    return sums;
  }
  // Every title against every row; how many have something beneath them.
  static int TitlesAgree(const std::vector<Row>& rows) {
    int full = 0;
    for (const Row& title : rows) {
      if (title.at("TpConta") != "T") continue;
      bool any = false;
      for (int i = 0; i < 24; ++i) {
        const std::string name = (i < 12 ? "Mes" : "Orc") + std::to_string(i % 12 + 1);
        Currency sum;
        for (const Row& row : rows) {
          const std::string &place = row.at("Classe"), &above = title.at("Classe");
          if (row.at("TpConta") == "T" || place == above || !place.starts_with(above)) continue;
          any = true;
          sum += row.at("Operacao") == title.at("Operacao") ? Amount(row.at(name)) : -Amount(row.at(name));
        }
        EXPECT_EQ(title.at(name) == "-", !any) << title.at("Classe");
        EXPECT_EQ(Amount(title.at(name)).Format2(), sum.Format2()) << title.at("Classe");
      }
      full += any ? 1 : 0;
    }
    return full;
  }
};

// What came in and went out in two years, regime by regime, company by company.
TEST_F(ResultTest, EveryFigureOfTheDemoCompanies) {
  Run("UPDATE RECEBER_001 SET STATUS = 'O' WHERE NUMERO LIKE '%7/1'");
  Run("UPDATE PAGTO_001 SET STATUS = DECODE(RIGHT(NUM_AP, 1), '3', 'O', '4', 'DV', STATUS)");
  struct Case {
    int regime;
    bool all, shop, returns;
    std::string prefix = "", account = "", day = "DT_LAN";
  };
  std::string figures;
  Desk desk(database_, At{"TfmRelResultMes"});
  desk.Check("CbOrca", true);
  for (const Case& c :
       {Case{0, false, false, false, "", "", "DT_CONT"}, Case{0, true, false, false, "", "10250-1"},
        Case{1, false, false, false, "3.0"}, Case{2, false, true, false}, Case{3, true, true, true},
        Case{3, false, false, true, "2"}, Case{4, false, false, false, "", "20418-7"},
        Case{4, false, false, false}}) {
    SCOPED_TRACE(c.regime);
    desk.Click("SpeedButton1");
    desk.Set("RgRegime", std::to_string(c.regime));
    if (!c.account.empty()) desk.Click("PqConta"), desk.Choose(c.account);
    if (c.regime > 0) desk.Check("CbLoja", c.shop), desk.Check("CbDevol", c.returns);
    if (c.regime == 0) desk.Set("RgData", c.day == "DT_CONT" ? "1" : "0");
    desk.Check("CbTodasEmp", c.all);
    const auto rows =
        Gathered(desk, {{"EdtClasse", c.prefix}, {"EdtDataDe", "15/12/2024"}, {"edtDataAte", "20/10/2026"}});
    figures += "##### " + std::to_string(c.regime) + (c.all ? " all" : "") + (c.shop ? " shop" : "") +
               (c.returns ? " returns" : "") + " " + c.prefix + c.account + " " + c.day + "\n" +
               Text(Figures(rows));
    EXPECT_GT(TitlesAgree(rows), 1);
  }
  ExpectFile(figures, ORV_FILES "result_figures.txt");
}

// Structures with branches of any depth, shared places and places that aren't parted by points.
TEST_F(ResultTest, TitlesOfRandomStructuresAgree) {
  std::mt19937 random(7);
  const auto below = [&](unsigned n) { return random() % n; };
  int full = 0;
  for (int tree = 0; tree < 6; ++tree) {
    Empty("SUBGRUPO_001 CONTACOR_001 RECEBER_001 PAGTO_001");
    std::string rows;
    for (int i = 100; i < 140; ++i) {
      const std::string code = std::to_string(i);
      std::string place;
      for (unsigned deep = below(5) + 1; deep > 0; --deep) place += "12._"[below(4)];
      const bool title = below(3) == 0;
      rows += "INSERT INTO SUBGRUPO_001 (CODIGO, OPERACAO, TP_CONTA, CONTA) VALUES ('" + code + "', '" +
              "+-"[below(2)] + "', '" + (title ? "T" : "A") + "', '" + place + "');";
      for (unsigned n = title ? 0 : below(4); n > 0; --n)
        rows += Insert(Movimento{.lancamento = code + std::to_string(n),
                                 .dt_lan = Date(2026, static_cast<int>(below(12)) + 1, 5),
                                 .valor = static_cast<int>(below(900)) + 1,
                                 .operacao = std::string(1, "+-"[below(2)]),
                                 .grupo = code}) +
                ";";
      if (!title && below(3) == 0)
        rows += Insert(Pagto{.num_ap = code, .dt_ven = "03/03/2026", .num_os = code, .status = "O"}) + ";";
    }
    Run("EXECUTE BLOCK AS BEGIN " + rows + " END");
    Desk desk(database_, At{"TfmRelResultMes"});
    full += TitlesAgree(Gathered(desk, {{"CbOrca", "true"}}));
  }
  EXPECT_GT(full, 20);
}

// What one may fill, what stops a gathering, and what stands at its edges.
TEST_F(ResultTest, EdgesAndRefusals) {
  for (const std::string company : {"_001", "_002"})
    Empty(ReplaceAll("CONTACOR* RECEBER* PAGTO* NOTA* NOTA_ENTRA* VENDA* ITVENDA* PA_MOV*", "*", company));
  Desk desk(database_, At{"TfmRelResultMes"});
  for (const char* account : {"10250-1", "20418-7"}) desk.Click("PqConta"), desk.Choose(account);
  std::string enabled;
  for (const char* regime : {"0", "4", "1", "2", "3"}) {
    desk.Set("RgRegime", regime);
    enabled += desk.EnabledOf({"RgData", "PqConta", "SpeedButton1", "CbLoja", "CbDevol"}) + " " +
               desk.Text("edtConta") + "\n";
  }
  EXPECT_EQ(enabled, "11100 '10250-1','20418-7'\n11111 '10250-1','20418-7'\n00011 \n00011 \n00011 \n");

  const std::string told = "Há lançamentos com classes do tipo Título.\n\rFavor corrigir os lançamentos.\n\r";
  Put(Receber{.numero = "B", .dt_emissao = "05/05/2026", .classe = "1101"});
  Put(Receber{.numero = "T", .dt_emissao = "05/05/2026", .classe = "12"});
  Put(Pagto{.num_ap = "T", .dt_emi = "05/05/2026", .dt_ven = "05/05/2026", .num_os = "31", .status = "O"});
  Put(Movimento{.lancamento = "T", .grupo = "2"});
  for (const auto& [regime, place] : {std::pair{"0", "2"}, std::pair{"2", "1.02"}, std::pair{"1", "3.01"}}) {
    desk.Set({{"RgRegime", regime}, {"CbOrca", "true"}});
    EXPECT_EQ(desk.Told("BitBtn29"), told + place + "...") << regime;
    EXPECT_EQ(desk.Rows("TbRelatorio"), "");
  }
  Run("DELETE FROM RECEBER_001 WHERE NUMERO = 'T'");
  Run("DELETE FROM PAGTO_001");

  // Of a sale every document counts, once for its dearest movement, and no other sale's; a cost without a
  // class stands alone, and one on a title is the title's own.
  const auto rows = [&](const char* table, std::initializer_list<const char*> all) {
    for (const char* one : all) Run(std::string("INSERT INTO ") + table + one + ")");
  };
  rows("VENDA_001 (DATA, CODVEN, DEVOLUCAO) VALUES ('05/05/2026', ", {"'7', 0", "'70', 0", "'8', 1"});
  rows("ITVENDA_001 (CODIGO, COR, DEPOSITO, LOTE, QUANTIDADE, CODVEN, TAM) VALUES ('P', '', '1', '1', 2, ",
       {"'7', 'M'", "'7', 'M'", "'7', 'G'", "'8', 'M'"});
  rows(
      "PA_MOV_001 (CODIGO, COR, DEPOSITO, LOTE, TP_MOV, NUM_DOCTO, TAMANHO, CUSTO, OPERACAO) VALUES ('P', "
      "'', "
      "'1', '1', 'LJ', ",
      {"'701', 'M', 5, 'S'", "'701', 'M', 4, 'S'", "'702', 'M ', 1, 'S'", "'7', 'M', 90, 'S'",
       "'7001', 'M', 90, 'S'", "'801', 'M', 3, 'E'"});
  desk.Set({{"RgRegime", "3"}, {"CbOrca", "false"}, {"CbLoja", "true"}});
  std::string costs;
  for (const char* classes : {"''", "'CPV' WHERE CODIGO = '22'"}) {
    Run(std::string("UPDATE SUBGRUPO_001 SET TIPO = ") + classes);
    for (const char* returns : {"false", "true"})
      for (const Row& row : Gathered(desk, {{"CbDevol", returns}}))
        if (row.at("Mes5") != "-" && row.at("Operacao") != "+")
          costs += row.at("Codigo") + row.at("TpConta") + row.at("Mes5") + " ";
  }
  EXPECT_EQ(costs, "24 18 2T24 22T24 2T18 22T18 ");

  // Another company's figures stand beside the title that has their code here, and its balance counts.
  Run("UPDATE SUBGRUPO_002 SET TP_CONTA = 'A', CONTA = '9' WHERE CODIGO = '2'");
  Put(Movimento{.lancamento = "T", .conta = "60117-3", .grupo = "2"}, "_002");
  Run("UPDATE CONTACOR_001 SET DT_LAN = NULL, DT_CONT = '01/01/1980', VALOR = 70.25, OPERACAO = '+'");
  Run("INSERT INTO CONTACOR_002 (CONTA, DT_CONT, VALOR, OPERACAO, PENDENTE) VALUES ('60117-3', '12/31/1979', "
      "30, '-', 'N')");
  std::string both;
  for (const Row& row : Gathered(desk, {{"RgRegime", "0"}, {"CbTodasEmp", "true"}}))
    if (row.at("Codigo") == "2")
      both += row.at("Classe") + row.at("TpConta") + row.at("Mes11") + " " + row.at("Saldo") + " ";
  EXPECT_EQ(both, "2T- 40.25 9A100 40.25 ");
  desk.Set({{"RgRegime", "3"}, {"CbTodasEmp", "false"}});

  // Behind a month stand its titles; a title, another column and another regime have nothing to show.
  Put(Receber{.numero = "O", .dt_emissao = "05/06/2026", .classe = "1101", .status = "O"});
  Put(Pagto{.num_ap = "A", .num_os = "1101"});
  Run("UPDATE PAGTO_001 SET DT_ATUAL = '05/31/2026'");
  Gathered(desk, {{"CbOrca", "true"}, {"EdtDataDe", "01/05/2026"}, {"edtDataAte", "31/05/2026"}});
  const auto detail = [&](int row, const char* column) {
    desk.DoubleClick("DBGrid1", row, column);
    std::string lines;
    for (const Json& out : desk.Latest())
      if (out["on"] == Json("detail"))
        for (const Json& line : (lines = "|", out["rows"].Items()))
          lines += line.Items()[0].String() + " " + line.Items()[1].String() + "|";
    if (!lines.empty()) desk.Answer("ok");
    return lines;
  };
  EXPECT_EQ(detail(2, "Mes5"), "|PAG. NORMAL A|REC. NORMAL B|REC. ORÇAMENTO O|");
  EXPECT_EQ(detail(0, "Mes5"), "|");
  EXPECT_EQ(detail(2, "Valor"), "");
  desk.Set("RgRegime", "2");
  EXPECT_EQ(detail(2, "Mes5") + (desk.Enabled("Detalhamento1") ? "on" : "off"), "off");

  std::string months;
  const char* const periods[][2] = {{"01/01/2026", "31/01/2026"},
                                    {"15/01/2026", "14/02/2026"},
                                    {"15/01/2026", "15/02/2026"},
                                    {"01/11/2025", "31/10/2026"}};
  for (const auto& [from, to] : periods) {
    months += Gathered(desk, {{"EdtDataDe", from}, {"edtDataAte", to}}).front().at("Meses") + " ";
    months += desk.Column("TbGrafico", "Mes") + "\n";
  }
  EXPECT_EQ(months, "1 Jan\n1 Jan Fev\n2 Jan Fev\n12 Nov Dez Jan Fev Mar Abr Mai Jun Jul Ago Set Out\n");
}

// Figures of three months over the turn of a year, with their budget, and how far they are from each other.
TEST_F(ResultTest, Printed) {
  Empty("CONTACOR_001 RECEBER_001 PAGTO_001");
  const char* const rows[][3] = {{"11/02/2025", "+1000.5", "1202"}, {"11/05/2025", "+1500.25", "1101"},
                                 {"12/05/2025", "+3000.5", "1101"}, {"01/05/2026", "+750.25", "1102"},
                                 {"11/30/2025", "-400", "3104"},    {"01/10/2026", "-600.75", "3104"},
                                 {"01/11/2026", "+100.25", "3104"}};
  for (const auto& r : rows)
    Put(Movimento{.dt_lan = r[0], .valor = r[1] + 1, .operacao = std::string(r[1], 1), .grupo = r[2]});
  Put(Receber{.numero = "1", .dt_vencto = "12/10/2025", .valor2 = 2500, .classe = "1101", .status = "O"});
  Put(Pagto{.num_ap = "1", .dt_ven = "01/10/2026", .valor = 900, .status = "O"});
  Desk desk(database_, At{"TfmRelResultMes"});
  Gathered(desk, {{"EdtDataDe", "01/11/2025"}, {"edtDataAte", "31/01/2026"}});
  std::string printed = test::Printed(desk, "BitBtn33");
  Gathered(desk, {{"CbOrca", "true"}});
  const std::string far =
      desk.Read("TbRelatorio", {"Codigo", "Var11", "Var12", "Var1", "VarOrc12", "VarOrc1"});
  EXPECT_TRUE(far.starts_with("1|-|19.98|-75|20.02|-\n11|-|100|-75|20.02|-\n1101|-|100|-100|20.02|-\n"))
      << far;
  EXPECT_NE(far.find("3104|-|-100|-|-|-33.25\n"), std::string::npos) << far;
  printed += "##### Com o orçamento\n" + test::Printed(desk, "BitBtn33");
  Gathered(desk, {{"EdtClasse", "9"}});
  printed += "##### Nada\n" + test::Printed(desk, "BitBtn33");
  EXPECT_EQ(printed.find("#ERRO"), std::string::npos);
  ExpectFile(printed, ORV_FILES "WResultMes.txt");
}

}  // namespace
}  // namespace orv::test
