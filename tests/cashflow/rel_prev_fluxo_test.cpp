// The cash-flow forecast: its figures reckoned a second time, edges, what it writes, the report.
#include "host/services/calendar.h"
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

const Date kHoje(2026, 11, 20);  // a Friday

Date Working(Date day) {
  while (day.WeekDay() == 0 || day.WeekDay() == 6 || IsBankHoliday(day)) day = day.AddDays(1);
  return day;
}

class PrevisaoTest : public FluxoTest {
 protected:
  using Sums = std::map<std::string, Currency>;  // "R 1101 Val_3"

  // Gathers; what was told.
  static std::string Gather(Desk& desk, const std::string& de, const std::string& ate,
                            const Fields& fields = {}) {
    desk.Set({{"DtIni", de}, {"DtFin", ate}});
    desk.Set(fields);
    return desk.Press("BitBtn29");
  }
  static std::string Text(const Sums& sums) {
    std::string text;
    for (const auto& [key, amount] : sums)
      if (!amount.Round2().IsZero()) text += key + " " + amount.Brazil() + "\n";
    return text;
  }
  // The figures of both sides as they are shown.
  static Sums Shown(Desk& desk) {
    Sums shown;
    for (const auto& [set, side] : {std::pair{"TbReceber", "R "}, {"TbPagar", "P "}})
      for (const Row& row : desk.Read(set))
        for (const auto& [field, text] : row)
          if ((field.starts_with("Val_") || field == "Vencidas") && text != "-")
            shown[side + (row.at("Classe") == "-" ? "" : row.at("Classe")) + " " + field] +=
                Currency::FromDouble(std::stod(text));
    return shown;
  }

  // --- The second sum: each source from the bare table, day by day.
  struct Options {
    std::string de, ate;
    int kind;
    bool all, delay, expected, overdue;
    const char* discounted;
  };
  void Take(const std::string& key, Date day, Currency amount, bool within = true) {
    if (within && (day < de_ || day > ate_)) return;
    std::string wanted = day.Brazil();
    if (kind_ == 2) wanted = wanted.substr(3);
    if (kind_ == 1)
      wanted =
          Sql("SELECT FIRST 1 UDF_DAY(DT_INICIO) || '/' || UDF_MONTH(DT_INICIO) FROM TABPRZ_001 WHERE '" +
              day.Sql() + "' BETWEEN DT_INICIO AND DT_FIM");
    const auto found = std::find(heads_.begin(), heads_.end(), wanted);
    if (found != heads_.end() && !wanted.empty())
      sums_[key + " Val_" + std::to_string(found - heads_.begin() + 1)] += amount;
  }
  void Heads(const Options& o) {
    de_ = Date::ParseBrazil(o.de), ate_ = Date::ParseBrazil(o.ate), kind_ = o.kind;
    heads_.clear();
    for (Date day = de_; kind_ == 0 && heads_.size() < 31; day = day.AddDays(1))
      heads_.push_back(day.Brazil());
    for (Date day = de_; kind_ == 2 && heads_.size() < 13; day = day.AddDays(31))
      heads_.push_back(day.Brazil().substr(3));
    if (kind_ == 1)
      for (const auto& r :
           Db().Rows("SELECT UDF_DAY(DT_INICIO) || '/' || UDF_MONTH(DT_INICIO) FROM TABPRZ_001 "
                     "WHERE DT_INICIO >= '" +
                     de_.Sql() + "' AND DT_FIM <= '" + ate_.Sql() + "' ORDER BY PRAZO"))
        heads_.push_back(r[0].AsString());
  }
  void Titles(const Options& o, const std::string& c) {
    const std::string date = o.expected ? "DT_PREVISAO" : "DT_VENCTO";
    for (const auto& r : Db().Rows(
             "SELECT CLASSE, STATUS, VALOR2 + JUROS - DESCONTO - VALOR_PAGO - VAL_DEV, " + date +
             ", DT_VENCTO, BORDERO, COALESCE((SELECT ATRASO_MEDIO FROM ENTIDADE" + c +
             " E WHERE E.CODCLI = R.CODCLI), 0), SITUACAO FROM RECEBER" + c + " R WHERE SITUACAO <> 'P'")) {
      const std::string key = "R " + r[0].AsString(), status = r[1].AsString(), border = r[5].AsString();
      const Currency open = r[2].AsCurrency();
      const Date due = r[3].AsDate();
      int days = static_cast<int>(r[6].AsInteger());
      if (!o.delay) {
        const std::string account =
            Sql("SELECT CONTA FROM BORDERO_001 WHERE TIPO = 'R' AND NUMERO = '" + border + "'");
        days =
            border.empty() || account.empty()
                ? 0
                : std::stoi(Sql("SELECT COALESCE(MAX(DIAS_COMP), 0) - 1 FROM CADCONTA_001 WHERE CONTA = '" +
                                account + "'"));
      }
      const bool in = !due.Empty() && due >= de_ && due <= ate_;
      if (in && open > Currency() && (status == "N" || status == "CH"))
        Take(key, Working(due.AddDays(days)), open);
      if (status == "A" && open > Currency() && r[4].AsDate() >= de_) Take(key, r[4].AsDate(), -open);
      if (in && status == "N" && o.discounted[0] != '\0' && r[7].AsString() == o.discounted)
        Take("R DESC", Working(due), -open);
      if (o.overdue && status == "N" && open > Currency() && r[4].AsDate() < de_) late_[key] += open;
    }
    for (const auto& r :
         Db().Rows("SELECT NUM_OS, STATUS, VALOR + JUROS - DESCONTO - VAL_PAG - VAL_DEV, DT_VEN "
                   "FROM PAGTO" +
                   c)) {
      const std::string key = "P " + r[0].AsString(), status = r[1].AsString();
      const Date due = r[3].AsDate();
      const Currency open = r[2].AsCurrency();
      if (due >= de_ && due <= ate_ && (status == "N" || status == "O" || status == "A"))
        Take(key, Working(due), status == "A" ? -open : open, false);
      if (o.overdue && status == "N" && open > Currency() && due < de_) late_[key] += open;
    }
  }
  void Parts(const std::string& key, Currency total, Date base, std::string slots, int delay, int parts = 0) {
    slots.resize(60, ' ');
    std::vector<int> days;
    for (std::size_t at = 0; at < 60; at += 3)
      if (slots.substr(at, 3) != "   ") days.push_back(std::stoi(slots.substr(at, 3)));
    // So many of one slot, each from the one before it.
    for (int i = 0; i < parts; ++i) days.push_back(i == 0 ? days.at(0) : days.back() + days.at(0));
    if (parts > 0) days.erase(days.begin(), days.end() - parts);
    if (base <= kHoje) base = kHoje.AddDays(1);
    Currency left = total;
    for (std::size_t i = 0; i < days.size(); ++i) {
      const Currency part = i + 1 == days.size() ? left : (total / static_cast<int>(days.size())).Round2();
      left -= part;
      const Date day = base.AddDays(days[i]), late = day.AddDays(delay);
      if (day >= de_ && day <= ate_ && late >= de_ && late <= ate_) Take(key, Working(late), part, false);
    }
  }
  void Orders(const Options& o) {
    for (const auto& r :
         Db().Rows("SELECT P.DT_FATURA, P.PGTO, CAST(SUM(I.PRECO * I.QTDE * (100 - P.PER_DESC) / 100) AS "
                   "NUMERIC(18,4)), E.ATRASO_MEDIO FROM PEDIDO_001 P, PED_ITEN_001 I, ENTIDADE_001 E WHERE "
                   "I.NUMERO = "
                   "P.NUMERO AND E.CODCLI = P.CODCLI AND P.ENTREGA <= '" +
                   ate_.Sql() + "' GROUP BY P.NUMERO, 1, 2, 4 HAVING SUM(I.QTDE) > 0"))
      Parts("R VEN", r[2].AsCurrency(), r[0].AsDate(), r[1].AsString(),
            o.delay ? static_cast<int>(r[3].AsInteger()) : 0);
    for (const auto& r :
         Db().Rows("SELECT P.DT_ENTREGA, P.CONDICAO, SUM(I.PRECO * (I.QTDE - I.QTDE_B)), (SELECT VALOR FROM "
                   "VALOR_MOEDA_001 V WHERE V.MOEDA = P.MOEDA AND V.DATA = '19/11/2026'), P.PARCELAS FROM "
                   "COMPRA_001 P, "
                   "CO_ITEN_001 I WHERE I.NUMERO = P.NUMERO AND I.SITUACAO = 'A' AND "
                   "P.DT_ENTREGA "
                   "<= '" +
                   ate_.Sql() + "' GROUP BY P.NUMERO, 1, 2, P.MOEDA, P.PARCELAS"))
      Parts("P COM", Currency::FromDouble(r[2].AsFloat() * (r[3].IsNull() ? 1 : r[3].AsFloat())),
            r[0].AsDate(), r[1].AsString(), 0, static_cast<int>(r[4].AsInteger()));
  }
  void Forecast(const std::vector<std::string>& companies) {
    double total = 0;
    std::vector<std::pair<int, double>> shares;
    std::map<int, Currency> days;
    std::map<std::pair<std::string, Date>, double> budgets;
    const std::string base = " WHERE STATUS = 'N' AND SITUACAO <> 'P' AND DT_EMISSAO BETWEEN '" +
                             kHoje.AddDays(-700).Sql() + "' AND '" + kHoje.Sql() + "'";
    for (const auto& c : companies) total += std::stod(Sql("SELECT SUM(VALOR2) FROM RECEBER" + c + base));
    for (const auto& c : companies) {
      for (const auto& r :
           Db().Rows("SELECT DT_VENCTO - DT_EMISSAO, SUM(VALOR2) FROM RECEBER" + c + base + " GROUP BY 1"))
        shares.emplace_back(static_cast<int>(r[0].AsInteger()), r[1].AsFloat() * 100 / total);
      for (const auto& r : Db().Rows("SELECT EXTRACT(DAY FROM DT_EMISSAO), SUM(VALOR2) FROM RECEBER" + c +
                                     base + " GROUP BY 1")) {
        Currency& day = days[static_cast<int>(r[0].AsInteger())];
        day = (day + Currency::FromDouble(r[1].AsFloat() * 100 / total)).Round2();
      }
      for (const auto& r : Db().Rows("SELECT DT_EMISSAO, VALOR2 FROM RECEBER" + c +
                                     " WHERE STATUS = 'O' AND SITUACAO <> 'P'"))
        budgets[{c, r[0].AsDate().FirstOfMonth()}] += r[1].AsFloat();
    }
    for (const auto& [day, share] : days) sums_["R EMI Val_" + std::to_string(day)] = share;
    for (const auto& [whose, amount] : budgets)
      for (const auto& [day, share] : days) {
        const Date month = whose.second;
        if (day > (month.Month() == 2 ? 29 : month.LastOfMonth().Day())) continue;
        const Date issued = month.AddDays(std::min(day, month.LastOfMonth().Day()) - 1);
        for (const auto& [term, perc] : shares) {
          const Date due = issued.AddDays(std::max(term, 0));
          if (due >= de_ && due <= ate_)
            Take("R PREV", due, Currency::FromDouble(perc * share.ToDouble() * amount / 10000));
        }
      }
  }
  void Compare(const Options& o) {
    const std::vector<std::string> companies =
        o.all ? std::vector<std::string>{"_001", "_002"} : std::vector<std::string>{"_001"};
    Desk desk(database_, At{"TfmRelPrevFluxo"});
    std::string others;
    for (const auto& r :
         Db().Rows("SELECT TRIM(RDB$RELATION_NAME) FROM RDB$RELATIONS WHERE RDB$SYSTEM_FLAG = 0 "
                   "AND RDB$VIEW_BLR IS NULL AND RDB$RELATION_NAME NOT LIKE 'ENTIDADE%'"))
      others += (others.empty() ? "" : " ") + r[0].AsString();
    const std::string before = Tables(others),
                      people =
                          "SELECT CODCLI, NOME, CNPJ, CONTAC, CONTAD, CONDICAO, "
                          "CREDITO FROM ENTIDADE_001 ORDER BY 1",
                      before_people = Sql(people), other_company = Tables("ENTIDADE_002");
    for (const auto& [box, on] : {std::pair{"CbEmpresa", o.all},
                                  {"CbAtraso", o.delay},
                                  {"CbDataPrev", o.expected},
                                  {"CbVencRec", o.overdue},
                                  {"CbVencPag", o.overdue}})
      desk.Check(box, on);
    const std::string list = o.discounted[0] == '\0' ? "" : "'" + std::string(o.discounted) + "'";
    EXPECT_EQ(Gather(desk, o.de, o.ate, {{"RgTipo", std::to_string(o.kind)}, {"EdtSitDesc", list}}), "");
    // Nothing is written but the delays of the company.
    EXPECT_TRUE(Tables(others) == before && Sql(people) == before_people &&
                Tables("ENTIDADE_002") == other_company);
    sums_.clear(), late_.clear();
    Heads(o);
    for (const auto& r : Db().Rows(
             "SELECT E.CODCLI, E.ATRASO_MEDIO, T.V FROM ENTIDADE_001 E JOIN (SELECT CODCLI, "
             "TRUNC(SUM(V * IIF(P > D, P - D, 0)) / NULLIF(SUM(V), 0)) V FROM (SELECT R.CODCLI, R.VALOR2 V, "
             "R.DT_VENCTO D, MAX(B.DT_PAGTO) P FROM RECEBER_001 R LEFT JOIN RECEBERB_001 B ON B.NUMERO = "
             "R.NUMERO WHERE R.STATUS = 'N' AND R.SITUACAO <> 'P' AND R.VALOR + R.JUROS - R.DESCONTO - "
             "R.VAL_DEV "
             "- R.VALOR_PAGO <= 0 AND R.DT_VENCTO BETWEEN '" +
             kHoje.AddDays(-700).Sql() + "' AND '" + kHoje.Sql() +
             "' GROUP BY 1, 2, 3) GROUP BY 1) T ON T.CODCLI "
             "= E.CODCLI WHERE T.V IS NOT NULL"))
      EXPECT_EQ(r[1].AsInteger(), static_cast<int64_t>(r[2].AsFloat())) << r[0].AsString();
    for (const auto& c : companies) Titles(o, c);
    Orders(o);
    Forecast(companies);
    const Sums shown = Shown(desk);
    // What is overdue stands with the classes that have a row; of those with advances only it doesn't.
    for (const auto& [key, amount] : late_)
      if (shown.contains(key + " Vencidas") && !shown.at(key + " Vencidas").IsZero())
        sums_[key + " Vencidas"] = amount;
    Sums without = shown;
    without.erase("R DESC Vencidas");
    EXPECT_EQ(Text(without), Text(sums_));
    // The last balance: accounts, overdue, and all columns.
    Currency balance;
    for (const Row& row : desk.Read("TbConta")) {
      const std::string sql =
          "SELECT SUM(IIF(OPERACAO = '+', VALOR, -VALOR)) FROM CONTACOR_001 WHERE PENDENTE = "
          "'N' AND DT_CONT <= '" +
          kHoje.Sql() + "' AND CONTA = '" + row.at("Conta") + "'";
      EXPECT_EQ(Currency::ParseNeutral(row.at("Saldo")), Db().Scalar(sql).AsCurrency());
      balance += Currency::ParseNeutral(row.at("Saldo"));
    }
    for (const auto& [key, amount] : shown)
      if (!key.starts_with("R EMI")) balance += key[0] == 'R' ? amount : -amount;
    EXPECT_NEAR(Currency::ParseNeutral(desk.Read("TbTotais").at(1).at("Total")).ToDouble(),
                balance.ToDouble(), 0.005);
    for (const Row& row : desk.Read("TbDesconto"))
      for (int i = 1; i <= 31; ++i) {
        const std::string left = Sql(
            "SELECT MAX(C.VAL_CONTRATO) - SUM(R.VALOR2 + R.JUROS - R.DESCONTO - R.VALOR_PAGO - R.VAL_DEV) "
            "FROM "
            "RECEBER_001 R JOIN CADBAN_001 C ON C.BANCO = R.BANCO WHERE R.VALOR2 + R.JUROS - R.DESCONTO - "
            "R.VALOR_PAGO - R.VAL_DEV > 0 AND R.DT_VENCTO < '" +
            de_.AddDays(i).Sql() + "' AND R.BANCO = '" + row.at("Banco") + "'");
        EXPECT_EQ(row.at("Desc_" + std::to_string(i)),
                  left.empty() ? "-" : Currency::FromDouble(std::stod(left)).Brazil());
      }
    Db().CommitRetaining();
  }

  Date de_, ate_;
  int kind_ = 0;
  std::vector<std::string> heads_;
  Sums sums_, late_;
};

TEST_F(PrevisaoTest, TheDemoAgrees) {
  Compare({"16/11/2026", "31/12/2026", 0, false, true, true, true, ""});
  Compare({"20/11/2026", "20/03/2027", 1, true, true, false, true, "1"});
  Compare({"20/11/2026", "20/11/2027", 2, true, false, false, true, ""});
  Compare({"01/12/2026", "10/01/2027", 0, false, false, false, false, "2"});
}

// A house of few rows; the period begins on a Friday, its columns end on a Sunday.
class PrevisaoEdgesTest : public PrevisaoTest {
 protected:
  PrevisaoEdgesTest() {
    Clear();
    Empty("VALOR_MOEDA_001");
    Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'N' WHERE CONTA NOT IN ('10250-1', '20418-7')");
    Run("INSERT INTO CADCONTA_001 (CONTA, IMP_FLUXO, EMPRESA, DIAS_COMP) VALUES ('1234567890-12', 'S', "
        "'TREZE', "
        "4)");
    Usual(Receber{.classe = "1101"});
    Put(Movimento{.valor = 1000, .operacao = "+"});
    Put(Movimento{.conta = "1234567890-12", .valor = 5, .operacao = "+", .pendente = "S"});
    Put(Movimento{.conta = "20418-7", .valor = 40});
    Put(Bordero{.numero = "7", .conta = "1234567890-12"});
    Put(Bordero{.numero = "9", .tipo = "P", .conta = "1234567890-12"});
  }
  static std::string Cells(Desk& desk, const char* set) {
    std::string text;
    for (const Row& row : desk.Read(set)) {
      text += row.at(row.contains("Classe") ? "Classe" : "Descricao");
      for (const auto& [field, value] : row)
        if ((field.starts_with("Val_") || field == "Vencidas") && value != "-" && value != "0")
          text += " " + field + "=" + value;
      text += "\n";
    }
    return text;
  }
  static std::string Opened(Desk& desk, const char* grid, int row, const char* column) {
    desk.DoubleClick(grid, row, column);
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      text += out["title"].String() + ":";
      for (const Json& line : out["rows"].Items()) {
        for (const Json& cell : line.Items()) text += cell.IsNull() ? "" : " " + cell.String();
        text += ";";
      }
    }
    desk.Answer("ok");
    return text;
  }
};

TEST_F(PrevisaoEdgesTest, WhatHasAColumnAndWhatHasNone) {
  Put(Pagto{.num_ap = "P1", .dt_ven = "12/19/2026"});  // a Saturday: Monday has no column
  Put(Pagto{.num_ap = "P2", .dt_ven = "12/05/2026", .valor = 170, .lote = "0009"});
  Put(Pagto{.num_ap = "P3", .dt_ven = "11/02/2026", .valor = 33});
  Put(Pagto{.num_ap = "A1", .dt_ven = "12/07/2026", .num_os = "2101", .valor = 8, .status = "A"});
  Put(Pagto{.num_ap = "A2", .dt_ven = "11/02/2026", .num_os = "2101", .valor = 9});
  Put(Receber{.numero = "R1",
              .dt_vencto = "11/25/2026",
              .classe = "9999",
              .banco = "901",
              .bordero = "7",
              .situacao = "ZZ"});
  Put(Receber{.numero = "R2", .dt_vencto = "11/25/2026", .situacao = nullptr});
  Put(Receber{.numero = "R3", .dt_vencto = "11/24/2026", .valor2 = 25, .classe = "1102", .situacao = "1"});
  Put(Receber{.numero = "R4", .dt_vencto = "11/02/2026", .valor2 = 11, .classe = "1102", .situacao = "1"});
  Put(Pedido{.numero = "77", .dt_fatura = "11/19/2026", .pgto = "000"});
  Put(PedItem{.numero = "77", .qtde = 1});
  for (const char* numero : {"1", "2", "3"}) {
    Put(Compra{.numero = numero, .dt_entrega = "11/25/2026", .condicao = numero[0] == '3' ? "0X0" : "005"});
    Put(CoItem{.numero = numero, .qtde = 5});
  }
  Run("UPDATE PEDIDO_001 SET ENTREGA = '11/20/2026'");
  Run("UPDATE COMPRA_001 SET MOEDA = '4', PARCELAS = 2 WHERE NUMERO = '1'");
  Run("UPDATE COMPRA_001 SET MOEDA = '77' WHERE NUMERO = '2'");
  Run("INSERT INTO VALOR_MOEDA_001 VALUES ('4', '20/11/2026', 5.1)");
  Run("INSERT INTO VALOR_MOEDA_001 VALUES ('77', '20/11/2026', 0)");
  Run("INSERT INTO VALOR_MOEDA_001 VALUES ('4', '01/11/2026', 5.5)");
  Desk desk(database_, "ana", "_001", "2026-11-23");  // a Monday, whose rate is Friday's
  desk.Open("TfmRelPrevFluxo");
  EXPECT_EQ(desk.Texts({"DtIni", "DtFin", "dtSaldo", "DtCotacao", "DtAtualIni", "DtAtualFim", "DtSitFim"}),
            "01/01/1900|01/01/2050|23/11/2026|01/01/1980|23/12/2024|23/11/2026|01/01/2050");
  for (const char* box : {"CbEmpresa", "CbDataPrev", "CbAtraso"}) desk.Check(box, false);
  const Fields fields{{"EdtSitDesc", "'1'"}, {"DtCotacao", "01/11/2026"}, {"EdtCodSit", "1"}};
  EXPECT_EQ(Gather(desk, "20/11/2026", "31/12/2026", fields), "");
  EXPECT_EQ(Cells(desk, "TbReceber"),
            "1102 Val_5=25 Vencidas=11\n9999 Val_11=100\nDESC Val_5=-25 Vencidas=-11\nVEN Val_5=10\n");
  EXPECT_EQ(Cells(desk, "TbPagar"),
            "3104 Val_18=170 Vencidas=33\n2101 Val_18=-8\nCOM Val_11=106.5 Val_18=76.5\n");
  EXPECT_EQ(desk.Column("TbPagar", "Cotacao"), "- - 5.5");
  EXPECT_EQ(desk.Read("TbConta", {"Imprimir", "Conta", "Saldo", "Val_Sit", "Pendente"}),
            "S|10250-1|1000.0000|-|-\nS|1234567890-12|0.0000|-|5.0000\nS|20418-7|-40.0000|36.0000|-\n");
  EXPECT_EQ(desk.Read("TbMenor", {"Conta", "Menor", "Dia"}),
            "10250-1|1000.0000|2026-11-20\n1234567890-12|-70.0000|2026-12-07\n20418-7|-40.0000|2026-11-20\n");
  EXPECT_EQ(desk.Caption("LbConsulta"),
            "Compras sem cotação, contadas a 1,00: moeda 77 em 20/11/2026. Compras de fora, pela condição de "
            "pagamento: 3. Fora da projeção, sem coluna: entradas 0,00, saídas 100,00. Vencidas de classes "
            "que não estão na projeção: entradas 0,00, saídas 9,00.");
  EXPECT_EQ(desk.Caption("LbMenor") + desk.Caption("LbAtraso"),
            "Menor saldo: 692,00 em 07/12/2026.Atraso médio: nenhum cliente mudou.");
  EXPECT_EQ(Opened(desk, "DBGrid5", 0, "Val_18"),
            "Classe 3104 em 07/12/2026: 170,00: Título P2 AURORA TECIDOS 002 LTDA 001 2026-12-05 2026-12-07 "
            "170.0000;");
  EXPECT_EQ(
      Opened(desk, "DBGrid3", 2, "Vencidas"),
      "Vencidas da classe 1102: Título R4 IPE AMARELO MODAS 001 EIRELI 001 2026-11-02 2026-11-02 11.0000;");
  EXPECT_EQ(Opened(desk, "GridTotais", 1, "Val_5"),
            "Saldo Final em 24/11/2026: Saldo anterior 927.0000; Classe 1102 VENDA DE CONFECCOES 25.0000; "
            "Classe DESC DUPLICATAS DESCONTADAS -25.0000; Classe VEN PEDIDO DE VENDAS 10.0000;");
  desk.Page("TabSheet2");
  desk.Cell("OrvDBGrid1", 0, "Saldo", "-500");
  desk.Stand("OrvDBGrid1", 1);
  EXPECT_EQ(desk.Caption("LbMenor"), "Menor saldo: -808,00 em 07/12/2026.");
  desk.Page("TabSheet3");
  EXPECT_EQ(Opened(desk, "DBGrid2", 0, "Desc_6"),
            "Títulos no banco 901 até 25/11/2026, limite 250.000,00: 2026-11-25 1 100.0000;");

  // A sales order that can't be read ends the gathering.
  Run("UPDATE PEDIDO_001 SET PGTO = '0A0'");
  EXPECT_EQ(desk.Press("BitBtn29"), "error: \"0A0\" não é um número inteiro válido.");
  EXPECT_EQ(desk.Caption("LbConsulta") + desk.Rows("TbReceber") + desk.Rows("TbConta"),
            "A última consulta não terminou: nada foi projetado.");
}

TEST_F(PrevisaoEdgesTest, HeldOrCancelledNothingHalfIsLeft) {
  for (const auto& [numero, cliente, pago] :
       {std::tuple{"B1", "00002", "11/12/2026"}, std::tuple{"B2", "00003", "11/22/2026"}}) {
    Put(Receber{.numero = numero, .codcli = cliente, .dt_vencto = "11/02/2026", .valor_pago = 100});
    Put(Receberb{.numero = numero, .dt_pagto = pago});
  }
  Put(Receber{.numero = "R1", .dt_vencto = "11/25/2026"});
  Run("UPDATE ENTIDADE_001 SET ATRASO_MEDIO = 0, CONTAC = ''");
  const auto delays = [&] {
    return Sql("SELECT CODCLI, ATRASO_MEDIO, CONTAC FROM ENTIDADE_001 WHERE CODCLI IN ('00002', '00003')");
  };
  Desk desk(database_, At{"TfmRelPrevFluxo"});
  const auto shown = [&] {
    return desk.Rows("TbReceber") + desk.Rows("TbConta") + desk.Rows("TbMenor") + desk.Caption("LbMenor") +
           desk.Caption("LbAtraso") + desk.Caption("LbConsulta");
  };
  const std::string ended = "A última consulta não terminou: nada foi projetado.", before = delays();
  EXPECT_EQ(Gather(desk, "20/11/2026", "31/12/2026"), "");
  const std::string whole = shown(), written = delays();
  EXPECT_EQ(written, "00002|10|;00003|20|");
  Run("UPDATE ENTIDADE_001 SET ATRASO_MEDIO = 0");
  // Cancelled before the delays it writes none of them.
  EXPECT_EQ(desk.Cancelled("BitBtn29", "Saldos das contas"), "error: Operação cancelada.");
  EXPECT_EQ(shown(), ended);
  EXPECT_EQ(delays(), before);
  // Somebody else is changing the second customer: neither delay is written, and his change is his.
  Db().Execute("UPDATE ENTIDADE_001 SET CONTAC = '7' WHERE CODCLI = '00003'");
  EXPECT_EQ(desk.Press("BitBtn29"),
            "error: Outro usuário está alterando o mesmo registro. Aguarde um instante e tente novamente.");
  EXPECT_EQ(shown(), ended);
  EXPECT_EQ(delays(), "00002|0|;00003|0|7");
  // Cancelled after them they stand, whole.
  EXPECT_EQ(desk.Cancelled("BitBtn29", "Ordens de compra"), "error: Operação cancelada.");
  EXPECT_EQ(shown(), "Atraso médio: 2 clientes mudaram." + ended);
  EXPECT_EQ(delays(), "00002|10|;00003|20|7");
  Run("UPDATE ENTIDADE_001 SET ATRASO_MEDIO = 0");
  EXPECT_EQ(desk.Press("BitBtn29"), "");
  EXPECT_EQ(shown(), whole);
}

TEST_F(PrevisaoEdgesTest, Printed) {
  Put(Receber{.numero = "R1", .dt_vencto = "11/25/2026"});
  Put(Receber{.numero = "R2", .dt_vencto = "12/16/2026", .valor2 = 2500, .classe = "1102"});
  Put(Receber{.numero = "R3", .dt_emissao = "11/16/2026", .dt_vencto = "11/02/2026", .valor2 = 60});
  Put(Receber{.numero = "O1", .dt_emissao = "12/01/2026", .valor2 = 900, .status = "O"});
  Put(Pagto{.num_ap = "P1", .dt_ven = "11/30/2026", .valor = 4000});
  Put(Pagto{.num_ap = "P2", .dt_ven = "12/08/2026", .valor = 330});
  Desk desk(database_, At{"TfmRelPrevFluxo"});
  desk.Check("CbDataPrev", false);
  std::string printed;
  for (const char* tipo : {"0", "1", "2"}) {
    EXPECT_EQ(Gather(desk, "20/11/2026", "31/12/2026", {{"RgTipo", tipo}}), "");
    desk.Page("TabSheet2");
    if (tipo[0] == '2') desk.Cell("OrvDBGrid1", 1, "Imprimir", "false");
    std::string one = test::Printed(desk, "BitBtn33");
    // Above each page stands the time.
    for (std::size_t at = 0; (at = one.find('\f', at)) != std::string::npos;)
      one.replace(at, one.find('\n', at) - at, "-----");
    printed += one;
  }
  EXPECT_EQ(printed.find("#ERRO"), std::string::npos);
  ExpectFile(printed, ORV_FILES "WRelPrevFluxo.txt");
}

}  // namespace
}  // namespace orv::test
