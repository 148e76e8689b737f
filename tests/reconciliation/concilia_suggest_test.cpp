// Proposals of matches: the function by itself, and the ticks that the workbench makes of it.
#include <chrono>
#include <random>

#include "reconciliation/suggest.h"
#include "tests/reconciliation/concilia_desk.h"
#include "tests/support/table.h"

namespace orv::test {
namespace {

SuggestItem Item(char side, int64_t cents, std::string_view document, int day) {
  return {side, Currency::FromCents(cents), document, Date(2026, 11, 1).AddDays(day)};
}

// "0-1,2 Sum 3": movements, lines, why, days.
std::string Text(const std::vector<Suggestion>& suggestions) {
  const auto list = [](const std::vector<uint32_t>& indexes) {
    std::string text;
    for (const uint32_t i : indexes) text += (text.empty() ? "" : ",") + std::to_string(i);
    return text;
  };
  constexpr const char* kWhy[] = {"doc", "day", "sum"};
  std::string text;
  for (const Suggestion& s : suggestions) {
    text += (text.empty() ? "" : "; ") + list(s.movements) + "-" + list(s.lines) + " " +
            kWhy[static_cast<std::size_t>(s.reason)] + " " + std::to_string(s.days);
  }
  return text;
}

TEST(SuggestTest, SurestFirst) {
  // "C100:7@1": side, cents, document, day.
  const auto items = [](const std::string& text) {
    std::vector<SuggestItem> all;
    for (std::size_t begin = 0, end; begin < text.size(); begin = end + 1) {
      end = std::min(text.find(' ', begin), text.size());
      const std::string_view one = std::string_view(text).substr(begin, end - begin);
      const std::size_t colon = one.find(':'), at = one.find('@');
      all.push_back(Item(one[0], std::stoi(std::string(one.substr(1))), one.substr(colon + 1, at - colon - 1),
                         std::stoi(std::string(one.substr(at + 1)))));
    }
    return all;
  };
  for (const auto& c : Table(ORV_FILES "suggest.txt", 4))
    EXPECT_EQ(Text(Suggest(items(c[1]), items(c[2]), 3)), c[3]) << c[0];
  EXPECT_EQ(Text(Suggest({}, {}, 3)), "");
  const std::vector<SuggestItem> no_day = {{'D', Currency(1), "7", Date()}};
  EXPECT_EQ(Text(Suggest(no_day, no_day, 3)), "");
}

// Whatever the items: sums agree, sides agree, nothing is used twice, days lie in the span.
TEST(SuggestTest, WhatIsProposedAddsUp) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::vector<SuggestItem> sides[2];
    const auto draw = [&](unsigned below) { return static_cast<int>(random() % below); };
    constexpr std::string_view kDocuments[] = {"", "1", "22", "0"};
    for (auto& items : sides) {
      for (int i = draw(40); i > 0; --i)
        items.push_back(Item(draw(2) == 0 ? 'C' : 'D', draw(60), kDocuments[draw(4)], draw(20)));
    }
    const auto found = Suggest(sides[0], sides[1], 4);
    EXPECT_EQ(Text(found), Text(Suggest(sides[0], sides[1], 4)));
    std::vector<int> used[2] = {std::vector<int>(sides[0].size()), std::vector<int>(sides[1].size())};
    for (const Suggestion& s : found) {
      Currency sums[2];
      const std::vector<uint32_t>* indexes[] = {&s.movements, &s.lines};
      EXPECT_EQ(std::min(s.movements.size(), s.lines.size()), 1U);
      for (int side = 0; side < 2; ++side) {
        for (const uint32_t i : *indexes[side]) {
          const SuggestItem& item = sides[side][i];
          sums[side] += item.amount;
          EXPECT_EQ(++used[side][i], 1);
          EXPECT_EQ(item.side, sides[0][s.movements[0]].side);
        }
      }
      EXPECT_EQ(sums[0], sums[1]);
      EXPECT_TRUE(s.reason == SuggestReason::Document || s.days <= 4);
    }
  }
}

// The worst that there can be: all alike, and all alike but never adding up.
TEST(SuggestTest, LargeListsEnd) {
  constexpr int kMany = 4000;
  for (const int odd : {0, 1}) {
    std::vector<SuggestItem> movements, lines;
    for (int i = 0; i < kMany; ++i) {
      movements.push_back(Item('D', 1000 + odd, "", i % 3));
      lines.push_back(Item('D', odd == 0 ? 1000 : 2 * (i % 250 + 1), "", i % 3));
    }
    EXPECT_EQ(Suggest(movements, lines, 3).size(), odd == 0 ? kMany : 0U);
  }
}

TEST_F(ConciliaTest, ProposesAndTellsWhy) {
  Put(Movimento{.lancamento = "A1", .docto = "71", .valor = "10"});
  Put(Movimento{.lancamento = "A2", .docto = "72", .valor = "20"});
  Put(Movimento{.lancamento = "A3", .docto = "73", .valor = "30"});
  Put(Movimento{.lancamento = "A4", .docto = "74", .valor = "40"});
  Put(Movimento{.lancamento = "A5", .docto = "75", .valor = "50"});
  Put(Movimento{.lancamento = "A6", .docto = "76", .valor = "60", .lanc_con = "000001"});
  Put(Cheque{.chave = "A4", .numero = "74"});
  Put(Extrato{.lancto = "E1", .docto = "71", .dt_cont = "12/20/2026", .valor = "10"});
  Put(Extrato{.lancto = "E2", .docto = "", .dt_cont = "11/13/2026", .valor = "20"});
  Put(Extrato{.lancto = "E3", .docto = "", .valor = "12"});
  Put(Extrato{.lancto = "E4", .docto = "", .valor = "18"});
  Put(Extrato{.lancto = "E5", .docto = "74", .valor = "40"});
  Put(Extrato{.lancto = "E6", .docto = "75", .valor = "50"});
  Put(Extrato{.lancto = "E7", .docto = "76", .valor = "60"});
  Desk desk(database_);
  EXPECT_EQ(Consult(Open(desk), {{"DtFinal", "31/12/2026"}}), "A1 A2 A3 A4 A5 A6 / E1 E2 E3 E4 E5 E6 E7");
  EXPECT_FALSE(desk.Visible("GbSugestao"));
  EXPECT_EQ(Ticked(desk), " / ");
  const std::string before = All();
  // What the user ticked himself isn't used.
  Tick(desk, {4}, {5});
  for (const char* days : {"", "-1", "91", "x", "99999"}) {
    desk.Set("EdtPrazo", days);
    EXPECT_EQ(desk.Refused("BtSugerir"), "Prazo inválido: informe de 0 a 90 dias. > EdtPrazo");
  }
  desk.Set("EdtPrazo", "3");
  EXPECT_EQ(desk.Press("BtSugerir"), "");
  EXPECT_EQ(Ticked(desk), "A1 A2 A3 A5 / E1 E2 E3 E4 E6");
  EXPECT_EQ(Totals(desk), "-110,00 -110,00 0,00");
  EXPECT_EQ(desk.Column("TbSugestao", "Grupo") + "/" + desk.Column("TbSugestao", "Lancto") + "/" +
                desk.Column("TbSugestao", "Linha"),
            "1 2 3 3/A1 A2 A3 A3/E1 E2 E3 E4");
  EXPECT_EQ(desk.Column("TbSugestao", "Motivo"),
            "Mesmo valor e documento Mesmo valor, 3 dias Soma de 2 linhas, 1 dia Soma de 2 linhas, 1 dia");
  EXPECT_EQ(desk.Caption("GbSugestao"),
            "3 sugestões marcadas: 1 por valor e documento, 1 por valor e data, 1 por soma. Confira antes de "
            "conciliar. 1 cheque ficou de fora: cada um é conciliado sozinho.");
  // The pair that is looked at comes into sight.
  desk.Stand("GridSugestao", 3);
  EXPECT_EQ(RowOf(desk, "TbMov"), 2);
  EXPECT_EQ(RowOf(desk, "TbArq"), 3);
  // A tick works as before, and nothing was written.
  TickMov(desk, 0, false);
  EXPECT_EQ(RowOf(desk, "TbMov"), 1);
  EXPECT_EQ(All(), before);
  TickMov(desk, 0);
  EXPECT_EQ(desk.Press("BitBtn4"), "");
  EXPECT_EQ(Listed(desk), "A4 A6 / E5 E7");
  EXPECT_FALSE(desk.Visible("GbSugestao"));
  EXPECT_EQ(desk.Rows("TbSugestao"), "");
  // A cheque alone is proposed.
  desk.Click("BtSugerir");
  EXPECT_EQ(Ticked(desk), "A4 / E5");
  TickMov(desk, 0, false);
  TickArq(desk, 0, false);
  Run("DELETE FROM EXTRATO_001");
  Consult(desk);
  EXPECT_EQ(desk.Press("BtSugerir"), "Nenhuma correspondência encontrada no prazo de 3 dias.");
}

TEST_F(ConciliaTest, ManyAreTiedAtOnce) {
  Run("EXECUTE BLOCK AS DECLARE I INTEGER = 0; BEGIN WHILE (I < 300) DO BEGIN I = I + 1; INSERT INTO "
      "CONTACOR_001 (LANCAMENTO, DOCTO, CONTA, DT_CONT, VALOR, OPERACAO, PENDENTE) VALUES ('M' || :I, 'D' || "
      ":I, '10250-1', '11/10/2026', :I, '-', 'S'); INSERT INTO EXTRATO_001 (LANCTO, DOCTO, CONTA, DT_CONT, "
      "VALOR, OPERACAO, CONCILIADO) VALUES ('L' || :I, 'D' || :I, '10250-1', DATEADD(MOD(:I, 7) DAY TO DATE "
      "'11/10/2026'), :I, 'D', 'N'); END END");
  Fin({110});
  Desk desk(database_);
  Consult(Open(desk));
  desk.Click("BtSugerir");
  // Once more proposes the same; what the user changes of it is his own, 1 and 2 against 3.
  desk.Click("BtSugerir");
  const auto row = [&](const char* set, const char* number) {
    const auto all = Split(desk.Column(set, "Lancto"), " ");
    return static_cast<int>(std::find(all.begin(), all.end(), number) - all.begin());
  };
  TickMov(desk, row("TbMov", "M3"), false);
  TickArq(desk, row("TbArq", "L1"), false);
  TickArq(desk, row("TbArq", "L2"), false);
  EXPECT_EQ(desk.Press("BitBtn4"), "");
  EXPECT_EQ(Listed(desk), "M3 / L1 L2");
  EXPECT_EQ(
      Sql("SELECT COUNT(DISTINCT M.LANC_CON), COUNT(*) FROM CONTACOR_001 M JOIN EXTRATO_001 E ON E.LANC_CON "
          "= M.LANC_CON AND E.DT_CONT = M.DT_CONT AND (E.DOCTO = M.DOCTO OR E.DOCTO = 'D3')"),
      "298|299");
  TickMov(desk, 0);
  for (const int line : {0, 1}) TickArq(desk, line);
  desk.Click("BitBtn4");
  EXPECT_EQ(Listed(desk), " / ");
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT LANC_CON) FROM CONTACOR_001 WHERE PENDENTE = 'N'") +
                Sql("SELECT COUNT(*), COUNT(DISTINCT LANC_CON) FROM EXTRATO_001 WHERE CONCILIADO = 'S'"),
            "300|299300|299");
}

}  // namespace
}  // namespace orv::test
