// The monthly result in a house of a million movements and 200,000 titles, regime by regime, beside the bare
// fetch of the rows that it adds up; how the cost of the shops' sales grows; and a structure of 2,000
// classes.
#include <cstdlib>
#include <iostream>

#include "bench/statement_screen.h"
#include "frame/module.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 3;
constexpr int kClasses = 2000;
const Date kFirst(2000, 1, 1), kLast(2030, 12, 31);

// The rows that a regime adds up.
struct RegimeRead {
  const char* name;
  std::vector<const char*> sql;
};

const RegimeRead kRegimes[] = {
    {"Caixa",
     {"SELECT M.GRUPO, M.OPERACAO, M.DT_LAN, M.VALOR FROM CONTACOR_001 M INNER JOIN CADCONTA_001 C ON "
      "C.CONTA "
      "= M.CONTA WHERE C.IMP_FLUXO = 'S' AND M.PENDENTE = 'N' AND M.DT_LAN BETWEEN '01/01/2000' AND "
      "'12/31/2030'"}},
    {"Vencimento",
     {"SELECT CLASSE, DT_VENCTO, VALOR2 FROM RECEBER_001 WHERE STATUS = 'N' AND SITUACAO <> 'P' AND "
      "DT_VENCTO "
      "BETWEEN '01/01/2000' AND '12/31/2030'",
      "SELECT NUM_OS, DT_VEN, VALOR FROM PAGTO_001 WHERE STATUS = 'N' AND DT_VEN BETWEEN '01/01/2000' AND "
      "'12/31/2030'"}},
    {"Emissão",
     {"SELECT CLASSE, DT_EMISSAO, VALOR2 FROM RECEBER_001 WHERE STATUS = 'N' AND SITUACAO <> 'P' AND "
      "DT_EMISSAO BETWEEN '01/01/2000' AND '12/31/2030'",
      "SELECT NUM_OS, DT_EMI, VALOR FROM PAGTO_001 WHERE STATUS = 'N' AND DT_EMI BETWEEN '01/01/2000' AND "
      "'12/31/2030'"}},
    {"Competência",
     {"SELECT CLASSE, DT_EMISSAO, VALOR2 FROM RECEBER_001 WHERE STATUS IN ('N', 'DV') AND SITUACAO <> 'P' "
      "AND "
      "DT_EMISSAO BETWEEN '01/01/2000' AND '12/31/2030'",
      "SELECT NUM_OS, DT_ATUAL, VALOR FROM PAGTO_001 WHERE STATUS IN ('N', 'DV') AND DT_ATUAL BETWEEN "
      "'01/01/2000' AND '12/31/2030'",
      "SELECT N.DT_EMISSAO, I.CUSTO, I.QTDE FROM NOTA_001 N INNER JOIN NOTAITEN_001 I ON I.FATURA = N.FATURA "
      "INNER JOIN NATUREZA_001 K ON K.NATUREZA = N.NATUREZA WHERE N.IMPRESSO = 'S' AND N.DT_EMISSAO BETWEEN "
      "'01/01/2000' AND '12/31/2030'",
      "SELECT V.DATA, V.CODVEN, I.CODIGO, I.TAM, I.COR, I.DEPOSITO, I.LOTE, I.QUANTIDADE FROM VENDA_001 V "
      "INNER JOIN ITVENDA_001 I ON I.CODVEN = V.CODVEN WHERE V.DATA BETWEEN '01/01/2000' AND '12/31/2030'",
      // Sold and returned goods are looked for one after the other.
      "SELECT NUM_DOCTO, CODIGO, TAMANHO, COR, DEPOSITO, LOTE, DT_MVTO, CUSTO FROM PA_MOV_001 WHERE TP_MOV = "
      "'LJ'"}},
    {"Pagamento",
     {"SELECT T.CLASSE, B.DT_CONT, B.VALOR_PAGO FROM RECEBER_001 T INNER JOIN RECEBERB_001 B ON B.NUMERO = "
      "T.NUMERO WHERE T.STATUS = 'N' AND T.SITUACAO <> 'P' AND B.DT_CONT BETWEEN '01/01/2000' AND "
      "'12/31/2030'",
      "SELECT T.NUM_OS, B.DT_LAN, B.VAL_PAG FROM PAGTO_001 T INNER JOIN PAGTO1_001 B ON B.NUM_AP = T.NUM_AP "
      "WHERE T.STATUS = 'N' AND B.DT_LAN BETWEEN '01/01/2000' AND '12/31/2030'"}},
};

void Regimes(const std::filesystem::path& house) {
  StatementScreen screen(house, "TfmRelResultMes");
  const auto db = Attachment::Open(house.string());
  for (std::size_t regime = 0; regime < std::size(kRegimes); ++regime) {
    const RegimeRead& read = kRegimes[regime];
    screen.Set("RgRegime", std::to_string(regime));
    if (regime == 3) screen.Set("CbLoja", "true"), screen.Set("CbDevol", "true");
    if (regime == 4) screen.Set("CbLoja", "false"), screen.Set("CbDevol", "false");
    screen.Period(kFirst, kLast);
    Best bare, gathering;
    int64_t rows = 0;
    for (int i = 0; i < kRuns; ++i) {
      Nothing nothing;
      bare.Take(Measure([&] {
        for (const char* sql : read.sql) db->Fetch(sql, nothing);
      }));
      db->CommitRetaining();
      rows = nothing.rows;
      gathering.Take(Measure([&] { screen.Gather(); }));
    }
    Print(std::string("bare fetch of ") + read.name, bare.Cpu(), "s",
          Number(static_cast<double>(rows)) + " rows");
    Print(std::string("the result by ") + read.name + " (1.5 x bare)", gathering.Cpu(), Bound::AtMost,
          1.5 * bare.Cpu(), "s", Number(gathering.Wall()) + " s by the clock");
  }
}

// Sales of ever more days, with their movements of stock.
void Shops(const std::filesystem::path& house) {
  const Copy copy(house, "results-shops.fdb");
  double each_of_few = 0;
  for (const int sales : {2'000, 20'000, 200'000}) {
    {
      const auto db = Attachment::Open(copy.Path().string());
      for (const char* table :
           {"VENDA_001", "ITVENDA_001", "PA_MOV_001", "RECEBER_001", "PAGTO_001", "NOTA_001"})
        db->Execute(std::string("DELETE FROM ") + table);
      db->Execute(
          "EXECUTE BLOCK AS DECLARE I INTEGER = 0; DECLARE N VARCHAR(8); BEGIN WHILE (I < " +
          std::to_string(sales) +
          ") DO BEGIN N = CAST(I AS VARCHAR(8)); INSERT INTO VENDA_001 (CODVEN, DATA, FECHADA) VALUES (:N, "
          "DATEADD(MOD(:I, 360) DAY TO DATE '2026-01-01'), 1); INSERT INTO ITVENDA_001 (CODVEN, CODIGO, TAM, "
          "COR, DEPOSITO, LOTE, QUANTIDADE) VALUES (:N, 'P', 'M', '1', '1', '1', 2); INSERT INTO PA_MOV_001 "
          "(NUM_DOCTO, CODIGO, TAMANHO, COR, DEPOSITO, LOTE, OPERACAO, TP_MOV, CUSTO) VALUES (:N || '01', "
          "'P', 'M', '1', '1', '1', 'S', 'LJ', 3.5); I = I + 1; END END");
      db->CommitRetaining();
      for (const char* table : {"VENDA_001", "ITVENDA_001", "PA_MOV_001"})
        db->Scalar(std::string("SELECT COUNT(*) FROM ") + table);
      db->CommitRetaining();
    }
    StatementScreen screen(copy.Path(), "TfmRelResultMes");
    screen.Set("RgRegime", "3");
    screen.Set("CbLoja", "true");
    screen.Period(kFirst, kLast);
    Best best;
    for (int i = 0; i < kRuns; ++i) best.Take(Measure([&] { screen.Gather(); }));
    const double each = best.Cpu() / sales * 1e6;
    const std::string what = "the cost of " + Number(sales) + " sales";
    const std::string clock = Number(best.Wall()) + " s by the clock";
    if (each_of_few == 0) {
      Print(what, each, "us/sale", clock);
      each_of_few = each;
    } else {
      Print(what + " (1.3 x the first)", each, Bound::AtMost, 1.3 * each_of_few, "us/sale", clock);
    }
  }
}

// Ten titles of ten titles of twenty classes, each with one movement.
void Structure(const std::filesystem::path& house) {
  const Copy copy(house, "results-classes.fdb");
  {
    const auto db = Attachment::Open(copy.Path().string());
    for (const char* table : {"SUBGRUPO_001", "CONTACOR_001"})
      db->Execute(std::string("DELETE FROM ") + table);
    db->Execute(
        "EXECUTE BLOCK AS DECLARE I INTEGER = 0; DECLARE C VARCHAR(20); DECLARE N VARCHAR(6); BEGIN WHILE (I "
        "< " +
        std::to_string(kClasses) +
        ") DO BEGIN N = LPAD(:I, 6, '0'); C = (I / 200) || '.' || (CASE WHEN MOD(I, 200) = 0 THEN '' ELSE "
        "LPAD(MOD(I, 200) / 20, 2, '0') || '.' || (CASE WHEN MOD(I, 20) = 0 THEN '' ELSE LPAD(MOD(I, 20), 2, "
        "'0') END) END); INSERT INTO SUBGRUPO_001 (CODIGO, DESCRICAO, OPERACAO, TP_CONTA, CONTA) VALUES (:N, "
        "'CLASSE ' || :I, '-', CASE WHEN MOD(:I, 20) = 0 THEN 'T' ELSE 'A' END, :C); IF (MOD(I, 20) > 0) "
        "THEN "
        "INSERT INTO CONTACOR_001 (LANCAMENTO, CONTA, DT_LAN, DT_CONT, VALOR, OPERACAO, GRUPO, PENDENTE) "
        "VALUES "
        "(:N, (SELECT FIRST 1 CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S'), '01/15/2026', '01/15/2026', "
        "10, "
        "'-', :N, 'N'); I = I + 1; END END");
    db->CommitRetaining();
  }
  StatementScreen screen(copy.Path(), "TfmRelResultMes");
  screen.Period(kFirst, kLast);
  Best gathering;
  for (int i = 0; i < 5 * kRuns; ++i) gathering.Take(Measure([&] { screen.Gather(); }));
  Print("the whole result of a structure of 2,000 classes", gathering.Cpu() * 1000, Bound::AtMost, 50, "ms",
        Number(static_cast<double>(screen.Count("TbRelatorio"))) + " rows");
}

int Run() {
  const Module module("orvCC");
  Regimes(House(260));
  Shops(House(1));
  Structure(House(1));
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
