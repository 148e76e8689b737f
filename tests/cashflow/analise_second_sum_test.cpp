// The figures of the cash-flow analysis reckoned a second time, row by row from the bare tables.
#include "host/services/calendar.h"
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

const Date kDe(2026, 11, 16), kAte(2027, 1, 10), kHoje(2026, 11, 20);
const char* const kEntradas[] = {"Valor_Rec", "Cheque_Rec", "Valor_Venda", "Pend_Rec", "Orca_Rec"};
const char* const kSaidas[] = {"Valor_Pag", "Cheque_Pag", "Valor_Compra", "Pend_Pag", "Orca_Pag", "Prev_pag"};

// Ticked at first, but for the classes.
const std::set<std::string> kUsual{"CbChePag",  "CbCheRec",   "CbPrevPag", "CbVendas",  "CbCompras",
                                   "CbDebPend", "CbCredPend", "CbOrcaRec", "CbOrcaPag", "CbClasse"};

Date Working(Date day) {
  while (day.WeekDay() == 0 || day.WeekDay() == 6 || IsBankHoliday(day)) day = day.AddDays(1);
  return day;
}

class AnaliseSecondSumTest : public FluxoTest {
 protected:
  using Sums = std::map<std::string, Currency>;  // "01 2026-12-07 Valor_Pag 1101"

  bool On(const char* box) const { return on_.contains(box); }
  Date Credit(Date day, const std::string& situation) {
    day = Working(day);
    const std::string found =
        situation.empty() ? "" : Sql("SELECT DIAS_FLOAT FROM TABSIT_001 WHERE CODIGO = '" + situation + "'");
    for (int left = found.empty() ? 0 : std::stoi(found); left > 0; --left) day = Working(day.AddDays(1));
    return day;
  }
  enum Last { kUtil, kFloat };
  Date Moved(Date day, Last last, const std::string& situation = "") {
    const Date util = On("CbDiasUteis") ? Working(day) : day,
               flown = On("CbContBanc") ? Credit(day, situation) : day;
    if (!On("CbContBanc")) return util;
    return last == kFloat || !On("CbDiasUteis") ? flown : util;
  }
  void Take(const char* late, Date day, const std::string& field, const std::string& klass, Currency amount) {
    sums_[std::string(late) + " " + day.Neutral() + " " + field + " " + klass] += amount;
  }
  // What falls due in the period, read from three days before it, or before it where that is asked for.
  void Due(Date due, Date day, const char* overdue, const std::string& field, const std::string& late_field,
           const std::string& klass, Currency amount) {
    if (!field.empty() && due >= kDe.AddDays(-3) && due <= kAte && day >= kDe && day <= kAte)
      Take("", day, field, klass, amount);
    if (On(overdue) && due < kDe && day < kDe) Take("01", day, late_field, klass, amount);
  }
  // The rows of a statement whose tables are those of a company.
  std::vector<std::vector<Value>> Each(const std::string& company, const std::string& sql) {
    return Db().Rows(ReplaceAll(sql, "{}", company));
  }
  void Titles(const std::string& c) {
    for (const auto& r :
         Each(c, R"(SELECT DT_VENCTO, VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO, STATUS,
             SITUACAO, CLASSE FROM RECEBER{} WHERE SITUACAO <> 'P'
             AND SITUACAO IN (SELECT CODIGO FROM TABSIT{} WHERE IMP_FLUXO = 'S'))")) {
      const Currency open = r[1].AsCurrency();
      if (open <= Currency()) continue;
      const std::string status = r[2].AsString(), klass = r[4].AsString();
      const Date due = r[0].AsDate(), day = Moved(due, kFloat, r[3].AsString()), cheque = Moved(due, kUtil);
      if (status == "N") Due(due, day, "CbRecAtraso", "Valor_Rec", "Valor_Rec", klass, open);
      if (status == "O" && On("CbOrcaRec")) Due(due, day, "CbRecAtraso", "Orca_Rec", "Orca_Rec", klass, open);
      if (status == "CH" && On("CbCheRec")) Due(due, cheque, "", "Cheque_Rec", "", klass, open);
      if (status == "CH" || (status == "CD" && On("cbChequesDevol")))
        Due(due, Moved(due, kFloat), "CbRecAtraso", "", "Cheque_Rec", klass, open);
    }
    for (const auto& r : Each(c, R"(SELECT DT_VEN, VALOR + JUROS - VAL_PAG - DESCONTO, VAL_DEV, STATUS, NUM_OS
             FROM PAGTO{} WHERE STATUS IN ('N','O')
             AND SITUACAO IN (SELECT CODIGO FROM TABSIT{} WHERE IMP_FLUXO = 'S'))")) {
      const Currency left = r[1].AsCurrency(), open = left - r[2].AsCurrency();
      const std::string klass = r[4].AsString();
      const bool budget = r[3].AsString() == "O";
      const Date due = r[0].AsDate();
      if (budget && !On("CbOrcaPag")) continue;
      if (left > Currency() && due >= kDe && due <= kAte)
        Take("", On("CbDiasUteis") ? Working(due) : due, budget ? "Orca_Pag" : "Valor_Pag", klass, open);
      if (open > Currency() && due < kDe && On("CbPagtoAtraso")) Take("01", due, "Valor_Pag", klass, open);
    }
  }
  void Ledger(const std::string& c) {
    for (const auto& r : Each(c, R"(SELECT DT_VENCTO, VALOR, OPERACAO, TIPO_DOC, GRUPO, CONTA FROM CONTACOR{}
             WHERE PENDENTE = 'S' AND CONTA IN (SELECT CONTA FROM CADCONTA{}))")) {
      if (!balances_.contains(r[5].AsString())) continue;
      const bool credit = r[2].AsString() == "+", cheque = r[3].AsString() == "CH";
      const char* const field = credit ? "Pend_Rec" : "Pend_Pag";
      const char* const now = cheque ? (credit || !On("CbChePag") ? "" : "Cheque_Pag")
                              : On(credit ? "CbCredPend" : "CbDebPend") ? field
                                                                        : "";
      const Date due = r[0].AsDate(), day = Moved(due, kUtil);
      Due(due, day, credit ? "CbRecAtraso" : "CbPagtoAtraso", now, cheque && !credit ? "Cheque_Pag" : field,
          r[4].AsString(), r[1].AsCurrency());
    }
  }
  void Advances() {
    for (const auto& [box, field, sql] :
         {std::tuple{"CbCredPend", "Pend_Rec",
                     "VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO, NUM_OS FROM PAGTO"},
          std::tuple{"CbDebPend", "Pend_Pag",
                     "VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO, CLASSE FROM RECEBER"}})
      for (const auto& r : Each("_001", std::string("SELECT ") + sql + "{} WHERE STATUS = 'A'"))
        if (On(box) && r[0].AsCurrency() > Currency())
          Take("", kDe, field, r[1].AsString(), r[0].AsCurrency());
  }
  void Parts(Currency total, Date base, std::vector<int> days, const std::string& situation,
             const char* field, const char* klass) {
    if (!On("CBCond")) days = {0};
    Currency left = total;
    for (std::size_t i = 0; i < days.size(); ++i) {
      const Currency part = i + 1 == days.size() ? left : (total / static_cast<int>(days.size())).Round2();
      left -= part;
      Date day = base.AddDays(days[i]);
      if (On("CbContBanc")) day = Credit(day, situation);
      if (day <= kAte && (day >= kDe || On("CbPedAtraso")))
        Take(day < kDe ? "01" : "", day, field, klass, part);
    }
  }
  // As many instalments as slots that aren't blank; each reads its own slot.
  static std::vector<int> Slots(std::string text) {
    text.resize(60, ' ');
    std::vector<int> days;
    std::size_t count = 0;
    for (std::size_t at = 0; at < 60; at += 3) {
      const std::string slot = text.substr(at, 3);
      days.push_back(slot == "   " ? 0 : std::stoi(slot));
      count += slot == "   " ? 0 : 1;
    }
    days.resize(count);
    return days;
  }
  void Orders(const std::string& c) {
    for (const auto& r : Each(c, R"(SELECT P.DT_FATURA, P.PGTO, P.SIT_DUP, P.FINANCEIRO,
             CAST(SUM(I.PRECO * I.QTDE * (100 - P.PER_DESC) / 100) AS NUMERIC(18,4))
             FROM PEDIDO{} P, PED_ITEN{} I, TABSIT{} S WHERE P.NUMERO = I.NUMERO AND I.QTDE > 0
             AND P.BLOQUEIO = '1' AND S.CODIGO = P.SIT_DUP AND S.IMP_FLUXO <> 'N'
             GROUP BY P.NUMERO, 1, 2, 3, 4)"))
      if (r[0].AsDate() <= kAte && (On("CbBloq") || r[3].AsString() == "1"))
        Parts(r[4].AsCurrency(), r[0].AsDate(), Slots(r[1].AsString()), r[2].AsString(), "Valor_Venda",
              "VENDA");
    for (const auto& r :
         Each(c, R"(SELECT P.NUMERO, MIN(I.DT_ENTREGA), P.CONDICAO, P.MOEDA, P.DT_EMISSAO, P.FRETE,
             P.VAL_FRETE, SUM(I.PRECO * (I.QTDE - I.QTDE_B) * (100 + I.IPI) / 100), SUM(I.VALOR_ST), P.DOCTO,
             P.LIBERADO FROM COMPRA{} P, CO_ITEN{} I WHERE P.NUMERO = I.NUMERO AND I.SITUACAO = 'A'
             AND P.CLASSE IN (SELECT CODIGO FROM SUBGRUPO{} WHERE TIPO <> 'Transferencia')
             GROUP BY 1, 3, 4, 5, 6, 7, 10, 11)")) {
      if (r[10].AsString() == "N" || (!On("CbBloq") && r[10].AsString().empty())) continue;
      const Date base = r[1].AsDate(), rate_day = On("CbMoedaEmiOC") ? r[4].AsDate() : kHoje.AddDays(-1);
      const std::string found = Sql("SELECT VALOR FROM VALOR_MOEDA_001 WHERE MOEDA = '" + r[3].AsString() +
                                    "' AND DATA = '" + rate_day.Brazil() + "'");
      const double rate = found.empty() || std::stod(found) <= 0 ? 1 : std::stod(found);
      Currency total = Currency::FromDouble(r[7].AsFloat() * rate);
      for (const auto& p :
           Each(c, "SELECT VALOR FROM PAGTO{} WHERE STATUS = 'N' AND DOCTO = '" + r[9].AsString() + "'"))
        total -= p[0].AsCurrency();
      if (On("CbConsST")) total += Currency::FromDouble(r[8].AsFloat() * rate);
      if (r[5].AsString() == "2") total += r[6].AsCurrency();
      std::vector<int> days;
      for (const auto& p : Each(c, "SELECT DT_VENCTO FROM COND_PAGTO{} WHERE TIPO = 'C' AND NUMERO = '" +
                                       r[0].AsString() + "' ORDER BY 1"))
        days.push_back(p[0].AsDate() - base);
      Parts(total, base, days.empty() ? Slots(r[2].AsString()) : days, "", "Valor_Compra", "COMPRA");
    }
  }
  void Workshops(const std::string& c) {
    const std::pair<std::string, const char*> kinds[] = {
        {"FACCAO", R"(O.DT_LAN AS D, O.CODCLI AS E, O.UNITARIO * O.QUANT AS V FROM FACCAO3{} O, CADFLUXO{} F
             WHERE F.CODIGO = O.OP AND F.IMP_FLUXO = 'S' AND O.PAGO = 'N')"},
        {"TINTUR", R"(T.DATR AS D, T.TINTURARIA AS E, (I.PESO_BRUTO - I.PESO_RETORNO) * (I.CUSTO +
             I.CUSTO_FLUXO) AS V FROM TINTUR{} T, TINTUR_ITEN{} I WHERE T.NUMERO = I.NUMERO AND
             I.SITUACAO <> 'B')"},
        {"TECEL", R"(T.DT_INICIO AS D, T.MALHARIA AS E, (I.QTDE - I.QTDE_B) * C.CUSTO AS V FROM TECEL{} T,
             TECEL_ITEN{} I, CADCORTI{} C WHERE T.NUMERO = I.NUMERO AND I.BAIXADA <> 'S' AND
             C.CODCLI = T.MALHARIA AND C.CODIGO = I.CODIGO AND C.TIPO = 'C')"}};
    for (const auto& [klass, sql] : kinds)
      for (const auto& r : Each(c, std::string("SELECT O.D, O.V, E.CONDICAO FROM (SELECT ") + sql +
                                       ") O LEFT JOIN "
                                       "ENTIDADE{} E ON E.CODCLI = O.E WHERE O.V > 0 AND O.D > '" +
                                       kDe.AddDays(-60).Sql() + "'")) {
        const auto slots = Slots(r[2].AsString());
        const int first = slots.empty() ? 0 : slots[0];
        Date day = r[0].AsDate().AddDays(first);
        if (On("CbDiasUteis")) day = Working(day);
        // A workshop that sews is paid on a day of the month, where the month has it.
        const int month = first < kHoje.Day() ? 12 : 11;
        if (klass == "FACCAO" && first > 0 && Date::Exists(2026, month, first))
          day = Date(2026, month, first);
        if (day > kDe && day < kAte) Take("", day, "Prev_pag", klass, Currency::FromDouble(r[1].AsFloat()));
      }
  }
  void Balances(const std::string& c) {
    for (const auto& r :
         Each(c, R"(SELECT M.CONTA, SUM(IIF(M.OPERACAO = '+', M.VALOR, -M.VALOR)) FROM CONTACOR{} M,
             CADCONTA{} C WHERE C.CONTA = M.CONTA AND C.IMP_FLUXO = 'S' AND M.PENDENTE <> 'S'
             AND M.DT_CONT <= ')" +
                     (On("CbSaldoDoDia") ? kHoje : kDe).Sql() + "' GROUP BY 1"))
      balances_[r[0].AsString()] += r[1].AsCurrency();
  }

  void Compare(const std::set<std::string>& on, int group) {
    on_ = on;
    sums_.clear();
    balances_.clear();
    for (const std::string c : {"_001", "_002"}) {
      if (c == "_001" || On("CbEmp")) Balances(c), Titles(c), Ledger(c), Orders(c), Workshops(c);
    }
    Advances();
    Db().CommitRetaining();

    Desk desk(database_, At{"TfmRelAnaliseFluxo"});
    for (const auto* boxes : {&kUsual, &on})
      for (const std::string& box : *boxes) desk.Check(box, On(box.c_str()));
    desk.Set("RgGrupo", std::to_string(group));
    Fill(desk, kDe.Brazil(), kAte.Brazil());
    EXPECT_EQ(desk.Press("BitBtn29"), "");
    Sums gathered, periods, expected_periods;
    for (const Row& row : desk.Read("TbDetalha"))
      for (const auto* fields : {&kEntradas[0], &kSaidas[0]})
        for (std::size_t i = 0; i < (fields == kEntradas ? std::size(kEntradas) : std::size(kSaidas)); ++i)
          if (row.at(fields[i]) != "-")
            gathered[(row.at("CodPer") == "01" ? "01 " : " ") + row.at("Vencto") + " " + fields[i] + " " +
                     (row.at("Classe") == "-" ? "" : row.at("Classe"))] +=
                Currency::FromDouble(std::stod(row.at(fields[i])));
    EXPECT_EQ(Text(gathered), Text(sums_));

    // The periods, and the balance after the last of them.
    Currency balance;
    for (const auto& [account, amount] : balances_) balance += amount;
    Sums days;
    for (const auto& [key, amount] : sums_) {
      const bool late = key.starts_with("01");
      const std::string rest = key.substr(late ? 3 : 1), field = rest.substr(11, rest.find(' ', 11) - 11),
                        klass = rest.substr(rest.find(' ', 11) + 1);
      const Date day = Date::ParseNeutral(rest.substr(0, 10));
      const std::string week = group == 1 ? Sql("SELECT FIRST 1 PRAZO FROM TABPRZ_001 WHERE '" + day.Sql() +
                                                "' BETWEEN DT_INICIO AND DT_FIM")
                                          : "";
      const std::string code = late         ? "01"
                               : group == 1 ? week
                               : group == 2 ? ReplaceAll(rest.substr(0, 10), "-", "")
                                            : rest.substr(0, 4) + " / " + rest.substr(5, 2);
      expected_periods[code + " " +
                       (field == "Valor_Compra" ? "Valor_Compras"
                        : field == "Prev_pag"   ? "Prev_Pag"
                                                : field)] += amount;
      const Currency sign =
          std::find(std::begin(kEntradas), std::end(kEntradas), field) != std::end(kEntradas) ? amount
                                                                                              : -amount;
      if (code > "00") balance += sign;
      const Date moved = On("CbDiasUteis") ? Working(day) : On("CbContBanc") ? Credit(day, "") : day;
      if (field == "Prev_pag" || moved < kDe || moved - kDe > 30) continue;
      days[moved.Brazil() + " " + klass] += sign;
    }
    Db().CommitRetaining();
    Currency last;
    for (const Row& row : desk.Read("TbRelatorio")) {
      for (const auto& [field, text] : row)
        if (field != "CodPer" && field != "Periodo" && field != "Saldo" && text != "-")
          periods[row.at("CodPer") + " " + field] += Currency::FromDouble(std::stod(text));
      last = Currency::ParseNeutral(row.at("Saldo"));
    }
    EXPECT_EQ(Text(periods), Text(expected_periods));
    EXPECT_NEAR(last.ToDouble(), balance.ToDouble(), 0.005);
    if (!On("CbClasse")) return;
    Sums shown;
    const Json columns = desk.Property("DBGrid3", "columns");
    for (const Row& row : desk.Read("TbClasseData")) {
      const std::string klass = row.at("Classe") == "-" ? "" : row.at("Classe");
      for (const Json& column : columns.Items()) {
        const auto parts = Split(column.String(), "\t");
        if (parts[0].starts_with("Dia"))
          shown[parts[1] + " " + klass] += Currency::ParseNeutral(row.at(parts[0]));
      }
    }
    EXPECT_EQ(Text(shown), Text(days));
  }
  static std::string Text(const Sums& sums) {
    std::string text;
    for (const auto& [key, amount] : sums)
      if (!amount.Round2().IsZero()) text += key + " " + amount.Brazil() + "\n";
    return text;
  }
  void CompareAll() {
    Compare(kUsual, 0);
    auto all = kUsual;
    for (const char* box : {"CbPagtoAtraso", "CbRecAtraso", "cbChequesDevol", "CbEmp", "CbSaldoDoDia",
                            "CbBloq", "CBCond", "CbPedAtraso", "CbConsST", "CbMoedaEmiOC", "CbDiasUteis"})
      all.insert(box);
    Compare(all, 2);
    all.insert("CbContBanc");
    Compare(all, 1);
    for (const char* box : {"CbDiasUteis", "CbEmp", "CbOrcaPag", "CbChePag", "CbDebPend"}) all.erase(box);
    Compare(all, 0);
  }

  std::set<std::string> on_;
  Sums sums_, balances_;
};

TEST_F(AnaliseSecondSumTest, TheDemoAgrees) { CompareAll(); }

// A company whose rows take turns at every state, sign and day around the period.
TEST_F(AnaliseSecondSumTest, ARandomCompanyAgrees) {
  Clear();
  for (const std::string c : {"_001", "_002"})
    Run(ReplaceAll(R"(EXECUTE BLOCK AS DECLARE I INTEGER = 0; DECLARE R INTEGER = 4711; DECLARE D DATE;
      DECLARE N VARCHAR(6); BEGIN WHILE (I < 400) DO BEGIN
      R = MOD(R * 171 + 11213, 53125); N = 'X' || I; D = DATEADD(MOD(R, 90) - 20 DAY TO DATE '2026-11-20');
      INSERT INTO RECEBER{} (NUMERO, CODCLI, DT_VENCTO, VALOR2, VALOR_PAGO, VAL_DEV, JUROS, CLASSE, STATUS, SITUACAO)
        VALUES (:N, '00002', :D, MOD(:R, 977) + 0.37, MOD(:R, 5) * 100, MOD(:R, 3) * 50, MOD(:R, 7),
        DECODE(MOD(:R, 3), 0, '1101', 1, '1102', ''), DECODE(MOD(:R, 11), 0, 'O', 1, 'CH', 2, 'CD', 3, 'A', 'N'),
        DECODE(MOD(:I, 7), 0, '1', 1, '3', 2, 'P', 3, '4', 4, 'ZZ', '0'));
      INSERT INTO PAGTO{} (NUM_AP, CODCRE, DOCTO, DT_VEN, VALOR, VAL_PAG, VAL_DEV, DESCONTO, NUM_OS, STATUS, SITUACAO)
        VALUES (:N, '00003', 'PC' || MOD(:I, 40), :D, MOD(:R, 881) + 0.11, MOD(:R, 4) * 150, MOD(:R, 5) * 60,
        MOD(:R, 3), '2101', DECODE(MOD(:R, 9), 0, 'O', 1, 'A', 'N'), DECODE(MOD(:I, 5), 0, '3', '0'));
      INSERT INTO CONTACOR{} (LANCAMENTO, DOCTO, CONTA, DT_CONT, DT_VENCTO, VALOR, OPERACAO, GRUPO, TIPO_DOC, PENDENTE)
        VALUES (:N, :N, DECODE(MOD(:R, 4), 0, '10250-1', 1, '20418-7', '33021-5'), :D, :D, MOD(:R, 613) + 0.05,
        DECODE(MOD(:R, 3), 0, '+', '-'), '3104', DECODE(MOD(:R, 4), 0, 'CH', 1, NULL, ''),
        DECODE(MOD(:R, 5), 0, 'N', 1, 'C', 'S'));
      IF (MOD(I, 4) = 0) THEN BEGIN
        INSERT INTO PEDIDO{} (NUMERO, CODCLI, DT_FATURA, PER_DESC, PGTO, SIT_DUP, BLOQUEIO, FINANCEIRO)
          VALUES (:N, '00002', :D, MOD(:R, 9), DECODE(MOD(:R, 3), 0, '030060090', 1, '-05   015', ''),
          DECODE(MOD(:I, 3), 0, '1', 1, '3', '0'), DECODE(MOD(:R, 6), 0, '0', '1'), DECODE(MOD(:R, 5), 0, '0', '1'));
        INSERT INTO PED_ITEN{} (NUMERO, PRECO, QTDE) VALUES (:N, 3.333, MOD(:R, 31));
        INSERT INTO PED_ITEN{} (NUMERO, PRECO, QTDE) VALUES (:N, 7, 2);
        INSERT INTO COMPRA{} (NUMERO, CODFOR, CONDICAO, CLASSE, DOCTO, DT_EMISSAO, FRETE, VAL_FRETE, LIBERADO, MOEDA)
          VALUES (:N, '00003', '028056', DECODE(MOD(:R, 5), 0, '5101', 1, '', '2101'), 'PC' || :I,
          DATEADD(-9 DAY TO :D), DECODE(MOD(:R, 2), 0, '2', '1'), 33.3, DECODE(MOD(:R, 6), 0, 'N', 1, '', 'S'),
          DECODE(MOD(:R, 3), 0, '4', 1, '77', ''));
        INSERT INTO CO_ITEN{} (NUMERO, PRECO, QTDE, QTDE_B, IPI, VALOR_ST, DT_ENTREGA, SITUACAO)
          VALUES (:N, 11.1, MOD(:R, 60), 3, 5, 4.5, :D, 'A');
        INSERT INTO CO_ITEN{} (NUMERO, PRECO, QTDE, DT_ENTREGA, SITUACAO)
          VALUES (:N, 2, 9, DATEADD(2 DAY TO :D), DECODE(MOD(:R, 3), 0, 'B', 'A'));
        IF (MOD(R, 4) = 0) THEN INSERT INTO COND_PAGTO{} (NUMERO, TIPO, DT_VENCTO)
          VALUES (:N, 'C', DATEADD(MOD(:R, 50) - 5 DAY TO :D)); END
      I = I + 1; END END)",
                   "{}", c));
  CompareAll();
}

}  // namespace
}  // namespace orv::test
