// The account statement: a hundred thousand movements of one account with their people and the titles that
// they settled, beside the bare fetch of the same rows joined in one statement; memory; and how it grows.
// The reports of sums, each beside the bare statements of what it needs.
// Then the movements by what became of them, and the positions of titles, beside bare fetches of what they
// read.
#include <cstdlib>
#include <iostream>

#include "bench/statement_screen.h"
#include "frame/module.h"
#include "rules/soma.h"
#include "toolkit/database.h"
#include "toolkit/value.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 3;
constexpr int64_t kWanted = 100000;
const char* const kJoined =
    "SELECT M.BANCO, M.CONTA, B.NOME_BANCO, M.VALOR, M.DT_LAN, M.DT_VENCTO, M.DOCTO, M.LANCAMENTO, "
    "M.OBSERVACAO, "
    "M.GRUPO, M.PENDENTE, G.CODIGO, G.DESCRICAO, M.OPERACAO, M.HISTORICO, H.DESCRICAO, M.DT_CONT, A.EMPRESA, "
    "A.AGENCIA, M.TIPO, A.LIMITE, RB.VALOR_PAGO, RB.DESCONTO + RB.DESCONTO2 + RB.DESCONTO3, RB.JUROS, "
    "RB.VAL_DEV, "
    "RB.OBS, RB.DOCTO, R.NUMERO, R.CODCLI, R.DT_EMISSAO, R.DT_VENCTO, R.VALOR2, R.OBS, R.CLASSE, RE.NOME, "
    "RE.CNPJ, "
    "RE.CONTAC, RE.CONTAD, RG.DESCRICAO, PB.VAL_PAG, PB.VAL_DEV, PB.JURO, PB.DESCONTO, PB.OBS, PB.DOCTO, "
    "P.NUM_AP, "
    "P.DUPLI, P.CODCRE, P.HISTORICO, P.OBS, P.DT_VEN, P.DT_EMI, P.VALOR, P.NUM_OS, PE.NOME, PE.CNPJ, "
    "PE.CONTAC, "
    "PE.CONTAD, PG.DESCRICAO, PH.DESCRICAO FROM CONTACOR_001 M LEFT JOIN SUBGRUPO_001 G ON G.CODIGO = "
    "M.GRUPO LEFT "
    "JOIN CADBAN_001 B ON B.BANCO = M.BANCO LEFT JOIN HISTCP_001 H ON H.HISTORICO = M.HISTORICO INNER JOIN "
    "CADCONTA_001 A ON A.CONTA = M.CONTA LEFT JOIN RECEBERB_001 RB ON RB.LANCAMENTO = M.LANCAMENTO LEFT JOIN "
    "RECEBER_001 R ON R.NUMERO = RB.NUMERO LEFT JOIN ENTIDADE_001 RE ON RE.CODCLI = R.CODCLI LEFT JOIN "
    "SUBGRUPO_001 "
    "RG ON RG.CODIGO = R.CLASSE LEFT JOIN PAGTO1_001 PB ON PB.LANCAMENTO = M.LANCAMENTO LEFT JOIN PAGTO_001 "
    "P ON "
    "P.NUM_AP = PB.NUM_AP LEFT JOIN ENTIDADE_001 PE ON PE.CODCLI = P.CODCRE LEFT JOIN SUBGRUPO_001 PG ON "
    "PG.CODIGO = "
    "P.NUM_OS LEFT JOIN HISTCP_001 PH ON PH.HISTORICO = P.HISTORICO WHERE M.CONTA = ";

void OneAccount(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const std::string account =
      db->Scalar("SELECT FIRST 1 CONTA FROM CONTACOR_001 GROUP BY CONTA ORDER BY COUNT(*) DESC").AsString();
  const Date last = Date::ParseNeutral(kToday);
  const Date from = db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(kWanted) +
                               " DT_CONT FROM CONTACOR_001 WHERE CONTA = " + Quote(account) +
                               " AND DT_CONT <= '" + last.Sql() + "' ORDER BY DT_CONT DESC")
                        .AsDate();
  const std::string sql = kJoined + Quote(account) + " AND M.DT_CONT BETWEEN '" + from.Sql() + "' AND '" +
                          last.Sql() + "' ORDER BY 17, 8";
  Best bare, gathering;
  for (int i = 0; i < kRuns; ++i) {
    Nothing nothing;
    bare.Take(Measure([&] { db->Fetch(sql, nothing); }));
  }
  db->CommitRetaining();
  int64_t rows = 0, titles = 0;
  {
    StatementScreen statement(house, "TfmRelCC");
    statement.Set("RelConta", account);
    statement.Set("CbFinanceiro", "true");
    statement.Period(from, last);
    for (int i = 0; i < kRuns; ++i) gathering.Take(Measure([&] { statement.Gather(); }));
    rows = statement.Count("TbRelatorio");
    titles = statement.Count("TbFinan");
  }
  const std::string of =
      Number(static_cast<double>(rows)) + " movements, " + Number(static_cast<double>(titles)) + " titles";
  Print("bare fetch of an account's movements with titles", bare.Cpu(), "s", of);
  Print("the account statement of them (3 x bare)", gathering.Cpu(), Bound::AtMost, 3 * bare.Cpu(), "s",
        Number(gathering.Wall()) + " s by the clock");

  // The engine keeps what a statement took for the next ones, so another run of it comes first.
  StatementScreen statement(house, "TfmRelCC");
  statement.Set("RelConta", account);
  statement.Set("CbFinanceiro", "true");
  statement.Period(last, last);
  statement.Gather();
  statement.Period(from, last);
  // The titles' bytes count for the movements' rows.
  PrintMemory(statement, {"TbRelatorio", "TbFinan"});
  PrintPages(statement);
}

// All accounts of the cash flow, from ever earlier days.
void Growth(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const Date last = Date::ParseNeutral(kToday);
  StatementScreen statement(house, "TfmRelCC");
  statement.Set("RgTipo", "1");
  statement.Set("CbFinanceiro", "true");
  double each_of_many = 0;
  for (const int64_t wanted : {10'000, 30'000, 100'000, 300'000, 1'000'000}) {
    const Value day =
        db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(wanted) +
                   " DT_CONT FROM CONTACOR_001 WHERE DT_CONT <= '" + last.Sql() + "' ORDER BY DT_CONT DESC");
    db->CommitRetaining();
    statement.Period(day.IsNull() ? Date(2000, 1, 1) : day.AsDate(), last);
    Best best;
    for (int i = 0; i < (wanted > 100'000 ? 1 : 2); ++i) best.Take(Measure([&] { statement.Gather(); }));
    const auto rows = static_cast<double>(statement.Count("TbRelatorio"));
    const double each = best.Cpu() / rows * 1e6;
    const std::string what = "the statement of " + Number(rows) + " movements";
    const std::string clock = Number(best.Wall()) + " s by the clock";
    // The balance before a short period is of many movements, which a short report has to bear.
    if (each_of_many == 0) {
      Print(what, each, "us/row", clock);
    } else {
      Print(what + " (1.3 x above)", each, Bound::AtMost, 1.3 * each_of_many, "us/row", clock);
    }
    if (wanted >= 100'000) each_of_many = each;
  }
}

// A report, whose gathering may take half as much again as the bare statements.
void Sums(const std::filesystem::path& house, const char* name, const char* screen, const char* button,
          const std::vector<const char*>& options, const std::vector<std::string>& statements) {
  Best bare, gathering;
  {
    const auto db = Attachment::Open(house.string());
    for (int i = 0; i < kRuns; ++i) {
      Nothing nothing;
      bare.Take(Measure([&] {
        for (const std::string& sql : statements) db->Fetch(sql, nothing);
      }));
    }
    db->CommitRetaining();
  }
  StatementScreen report(house, screen);
  for (const char* option : options) report.Set(option, "true");
  for (int i = 0; i < kRuns; ++i)
    gathering.Take(Measure([&] { report.Do({{"do", "click"}, {"control", button}}); }));
  Print(std::string("bare statements of ") + name, bare.Cpu(), "s");
  Print(std::string(name) + " (1.5 x bare)", gathering.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s",
        Number(gathering.Wall()) + " s by the clock");
}

constexpr const char* kAberto = "VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO";

void ReportsOfSums(const std::filesystem::path& house) {
  const std::string sums = Soma(kAberto), from = " FROM RECEBER_001 ";
  Sums(house, "the coming days", "TfmRelCCDemo", "BitBtn29", {"CbComVen", "CbAnual", "CbPed", "CbLim"},
       {"SELECT DT_VENCTO, " + sums + from + "WHERE STATUS = 'N' GROUP BY 1",
        "SELECT DT_VEN, " + Soma("VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO") +
            " FROM PAGTO_001 WHERE STATUS = 'N' GROUP BY 1",
        "SELECT EXTRACT(MONTH FROM DT_EMISSAO), " + Soma("VALOR2") + ", " + Soma("VAL_DEV") + from +
            "WHERE DT_EMISSAO BETWEEN '01/01/2026' AND '12/31/2026' GROUP BY 1",
        "SELECT BANCO, " + sums + from + "GROUP BY 1",
        "SELECT EXTRACT(YEAR FROM O.DT_FATURA), EXTRACT(MONTH FROM O.DT_FATURA), SUM(I.PRECO * I.QTDE) FROM "
        "PEDIDO_001 O INNER JOIN PED_ITEN_001 I ON I.NUMERO = O.NUMERO GROUP BY 1, 2",
        "SELECT O.NUMERO, SUM(I.PRECO * I.QTDE) FROM PEDIDO_001 O INNER JOIN PED_ITEN_001 I ON I.NUMERO = "
        "O.NUMERO WHERE O.DT_FATURA BETWEEN '02/25/2024' AND '05/24/2027' GROUP BY 1",
        "SELECT O.NUMERO, SUM(I.PRECO * I.QTDE) FROM COMPRA_001 O INNER JOIN CO_ITEN_001 I ON I.NUMERO = "
        "O.NUMERO WHERE I.SITUACAO = 'A' GROUP BY 1"});
  const std::string balance =
      "SELECT A.CONTA, (SELECT " + Soma("CASE WHEN OPERACAO = '+' THEN VALOR END") + " || ' ' || " +
      Soma("CASE WHEN OPERACAO = '-' THEN VALOR END") +
      " FROM CONTACOR_001 M WHERE M.CONTA = A.CONTA AND M.PENDENTE = 'N' AND M.DT_CONT <= '12/31/2030') FROM "
      "CADCONTA_001 A";
  const std::string movements =
      " FROM CONTACOR_001 M INNER JOIN CADCONTA_001 A ON A.CONTA = M.CONTA AND A.IMP_FLUXO = 'S' LEFT JOIN "
      "SUBGRUPO_001 G ON G.CODIGO = M.GRUPO WHERE M.PENDENTE = 'N' AND M.DT_LAN BETWEEN '01/01/1980' AND "
      "'12/31/2030' ";
  Sums(house, "the settled cash movement by movement", "TfmRelSintatico", "BitBtn29", {},
       {balance, "SELECT M.GRUPO, G.DESCRICAO, M.OPERACAO, M.VALOR" + movements + "ORDER BY M.GRUPO"});
  Sums(house, "the settled cash by class", "TfmRelSintatico", "BitBtn29", {"CbSGrupo"},
       {balance,
        "SELECT M.GRUPO, MIN(M.LANCAMENTO || M.OPERACAO), " + Soma("M.VALOR") + movements + "GROUP BY 1"});
  Sums(
      house, "the months of a year", "TFmRelCCMes", "BtnExecutaSQL", {},
      {"SELECT DT_EMISSAO, DT_VENCTO, VALOR2, " + std::string(kAberto) + ", CLASSE" + from +
           "WHERE STATUS = 'N'",
       "SELECT DT_EMI, DT_VEN, VALOR, VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO FROM PAGTO_001 WHERE "
       "STATUS = 'N'",
       "SELECT B.DT_PAGTO, B.VALOR_PAGO FROM RECEBERB_001 B INNER JOIN RECEBER_001 R ON R.NUMERO = B.NUMERO "
       "WHERE R.STATUS = 'N'",
       "SELECT B.DT_LAN, B.VAL_PAG, P.NUM_OS FROM PAGTO1_001 B INNER JOIN PAGTO_001 P ON P.NUM_AP = B.NUM_AP "
       "WHERE P.STATUS = 'N' AND B.DT_LAN BETWEEN '01/01/2026' AND '12/31/2026'"});
}

// --- By what became of them.

const std::string kMovement =
    "SELECT M.BANCO, M.CONTA, B.NOME_BANCO, M.VALOR, M.DT_LAN, M.DT_VENCTO, M.DOCTO, M.LANCAMENTO, "
    "M.OBSERVACAO, G.DESCRICAO, M.OPERACAO, H.DESCRICAO, M.DT_CONT, A.EMPRESA, A.AGENCIA FROM CONTACOR_001 "
    "M "
    "LEFT JOIN CADCONTA_001 A ON A.CONTA = M.CONTA LEFT JOIN SUBGRUPO_001 G ON G.CODIGO = M.GRUPO LEFT "
    "JOIN "
    "CADBAN_001 B ON B.BANCO = M.BANCO LEFT JOIN HISTCP_001 H ON H.HISTORICO = M.HISTORICO WHERE ";
const std::string kPaid =
    "SELECT B.LANCAMENTO, E.NOME, E.CONTAC, E.CONTAD, B.VAL_PAG, B.VAL_DEV, B.JURO, B.DESCONTO, "
    "H.DESCRICAO, "
    "T.NUM_AP, T.DUPLI, T.CODCRE, T.HISTORICO, T.OBS, T.DT_VEN, T.DT_EMI, T.VALOR, B.OBS, T.NUM_OS, "
    "G.DESCRICAO FROM CONTACOR_001 M JOIN PAGTO1_001 B ON B.LANCAMENTO = M.LANCAMENTO JOIN PAGTO_001 T ON "
    "T.NUM_AP = B.NUM_AP LEFT JOIN ENTIDADE_001 E ON E.CODCLI = T.CODCRE LEFT JOIN HISTCP_001 H ON "
    "H.HISTORICO = T.HISTORICO LEFT JOIN SUBGRUPO_001 G ON G.CODIGO = T.NUM_OS WHERE ";
const std::string kReceived =
    "SELECT B.LANCAMENTO, E.NOME, E.CONTAC, E.CONTAD, B.VALOR_PAGO, B.VAL_DEV, B.JUROS, B.DESCONTO + "
    "B.DESCONTO2 + B.DESCONTO3, H.DESCRICAO, T.NUMERO, T.CODCLI, T.HISTORICO, T.OBS, T.DT_VENCTO, "
    "T.DT_EMISSAO, T.VALOR2, B.OBS, T.CLASSE, G.DESCRICAO FROM CONTACOR_001 M JOIN RECEBERB_001 B ON "
    "B.LANCAMENTO = M.LANCAMENTO JOIN RECEBER_001 T ON T.NUMERO = B.NUMERO LEFT JOIN ENTIDADE_001 E ON "
    "E.CODCLI = T.CODCLI LEFT JOIN HISTCP_001 H ON H.HISTORICO = T.HISTORICO LEFT JOIN SUBGRUPO_001 G ON "
    "G.CODIGO = T.CLASSE WHERE ";

// The bare fetch beside a gathering of the same, and what each row takes beside the gathering before.
void Beside(const std::string& what, StatementScreen& screen, Attachment& db, const char* button,
            const std::vector<std::string>& statements, const std::vector<const char*>& sets, double& each) {
  Best bare, gathering;
  for (int i = 0; i < kRuns; ++i) {
    Nothing nothing;
    bare.Take(Measure([&] {
      for (const std::string& sql : statements) db.Fetch(sql, nothing);
    }));
    db.CommitRetaining();
    gathering.Take(Measure([&] { screen.Do({{"do", "click"}, {"control", button}}); }));
  }
  double rows = 0;
  for (const char* set : sets) rows += static_cast<double>(screen.Count(set));
  Print("bare fetch for " + what, bare.Cpu(), "s", Number(rows) + " rows");
  Print(what + " (1.5 x bare)", gathering.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s",
        Number(gathering.Wall()) + " s by the clock");
  const double now = gathering.Cpu() / rows * 1e6;
  if (each == 0) {
    Print(what + ", each row", now, "us/row");
  } else {
    Print(what + ", each row (1.3 x above)", now, Bound::AtMost, 1.3 * each, "us/row");
  }
  each = now;
}

void Sections(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const Date last = Date::ParseNeutral(kToday);
  StatementScreen screen(house, "TfmRelVencto");
  screen.Set("CbPendCont", "true");
  screen.Set("CbFinanceiro", "true");
  double each = 0;
  for (const int64_t wanted : {kWanted, 3 * kWanted}) {
    const Date from =
        db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(wanted) +
                   " DT_LAN FROM CONTACOR_001 WHERE DT_LAN <= '" + last.Sql() + "' ORDER BY DT_LAN DESC")
            .AsDate();
    screen.Period(from, last);
    const std::string until = "'" + last.Sql() + "'";
    const std::string sections[] = {"M.PENDENTE = 'N' AND M.DT_LAN BETWEEN '" + from.Sql() + "' AND " + until,
                                    "M.PENDENTE = 'S' AND M.DT_LAN <= " + until, "M.DT_LAN > " + until,
                                    "M.DT_VENCTO <= " + until + " AND M.DT_LAN <= " + until +
                                        " AND (M.DT_CONT > " + until + " OR M.PENDENTE = 'S')"};
    std::vector<std::string> statements = {
        "SELECT SUM(CASE OPERACAO WHEN '+' THEN VALOR ELSE -VALOR END) FROM CONTACOR_001 WHERE PENDENTE <> "
        "'S' AND DT_LAN < '" +
        from.Sql() + "'"};
    std::string any;
    for (const std::string& section : sections) {
      statements.push_back(kMovement + section + " ORDER BY 5, 7, 8");
      any += (any.empty() ? "(" : " OR (") + section + ")";
    }
    statements.push_back(kPaid + any);
    statements.push_back(kReceived + any);
    Beside("the sections of movements with their titles", screen, *db, "BitBtn29", statements,
           {"TbRelatorio"}, each);
  }
}

// --- Positions of titles.

std::vector<std::string> PositionOf(const std::string& titles, const std::string& issued,
                                    const std::string& columns, const std::string& open,
                                    const std::string& joined, const std::string& settled,
                                    const std::string& amounts, const std::string& total, const Date& from,
                                    const Date& to) {
  const std::string first = "'" + from.Sql() + "'", within = " BETWEEN " + first + " AND '" + to.Sql() + "'";
  const std::string normal = " AND T.STATUS = 'N'";
  return {"SELECT SUM(" + open + ") FROM " + titles + " T WHERE " + issued + " < " + first + " AND " + open +
              " > 0" + normal,
          "SELECT SUM(" + total + ") FROM " + joined + " WHERE " + settled + " >= " + first + " AND " +
              issued + " < " + first + normal,
          "SELECT " + columns + ", " + issued + " FROM " + titles +
              " T LEFT JOIN ENTIDADE_001 E ON E.CODCLI = T.COD" + (titles[0] == 'P' ? "CRE" : "CLI") +
              " WHERE " + issued + within + normal,
          "SELECT " + columns + ", " + settled + ", " + amounts + " FROM " + joined +
              " LEFT JOIN ENTIDADE_001 E ON E.CODCLI = T.COD" + (titles[0] == 'P' ? "CRE" : "CLI") +
              " WHERE " + settled + within + normal};
}

void Positions(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const Date last = Date::ParseNeutral(kToday);
  StatementScreen screen(house, "TFmRelCCPosicao");
  double each = 0;
  for (const int months : {6, 18}) {
    const Date from = last.AddMonths(-months);
    screen.Set("EdtDataIni", from.Brazil());
    screen.Set("EdtDataFim", last.Brazil());
    std::vector<std::string> statements = PositionOf(
        "RECEBER_001", "T.DT_EMISSAO", "T.NUMERO, T.DT_VENCTO, T.CODCLI, T.FATURA, E.NOME, T.VALOR2",
        "T.VALOR2 + T.JUROS - T.VAL_DEV - T.DESCONTO - T.VALOR_PAGO",
        "RECEBERB_001 B JOIN RECEBER_001 T ON T.NUMERO = B.NUMERO", "B.DT_CONT",
        "B.VALOR_PAGO, B.VAL_DEV, B.JUROS, B.DESCONTO + B.DESCONTO2 + B.DESCONTO3",
        "B.VALOR_PAGO + B.VAL_DEV + B.DESCONTO + B.DESCONTO2 + B.DESCONTO3 - B.JUROS", from, last);
    for (std::string& sql : PositionOf(
             "PAGTO_001", "T.DT_DIGITA", "T.NUM_AP, T.DT_VEN, T.CODCRE, T.DOCTO, T.DUPLI, E.NOME, T.VALOR",
             "T.VALOR - T.DESCONTO - T.VAL_PAG - T.VAL_DEV",
             "PAGTO1_001 B JOIN PAGTO_001 T ON T.NUM_AP = B.NUM_AP", "B.DT_LAN",
             "B.VAL_PAG + B.VAL_DEV - B.JURO + B.DESCONTO, B.VAL_DEV, B.JURO, B.DESCONTO",
             "B.VAL_PAG + B.DESCONTO + B.VAL_DEV - B.JURO", from, last))
      statements.push_back(std::move(sql));
    Beside("the positions of titles", screen, *db, "BtnExecutaSQL", statements, {"TbReceber", "TbPagar"},
           each);
  }
}

int Run() {
  const Module module("orvCC");
  const auto house = House(260);
  OneAccount(house);
  Growth(house);
  ReportsOfSums(house);
  Sections(house);
  Positions(house);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
