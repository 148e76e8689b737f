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

}  // namespace
}  // namespace orv::test
