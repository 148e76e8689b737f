// Reports: formulas, formats, the templates' language, the layout and the forms in which it is written down.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/print/format.h"
#include "host/print/writers.h"
#include "toolkit/client_dataset.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

struct Lancamentos : TClientDataSet {
  Lancamentos() : TClientDataSet("TbRelatorio") { CreateDataSet(); }
  Field Dia{*this, "Dia", FieldType::Date};
  Field Nome{*this, "Nome", FieldType::String, 40};
  Field Valor{*this, "Valor", FieldType::Currency};
  Field Taxa{*this, "Taxa", FieldType::Float};
  void Add(int day, const std::string& name, int64_t cents, double rate = 0) {
    Append();
    Dia = Value(Date(2026, 11, day));
    Nome = Value(name);
    Valor = Value(Currency::FromCents(cents));
    Taxa = Value(rate);
    Post();
  }
};

struct Contas : TClientDataSet {
  Contas() : TClientDataSet("TbSaldo") { CreateDataSet(); }
  Field Sel{*this, "Sel", FieldType::String, 1};
  Field Valor{*this, "Valor", FieldType::Float};
  void Add(const std::string& sel, double amount) {
    Append();
    Sel = Value(sel);
    Valor = Value(amount);
    Post();
  }
};

class PrintTest : public testing::Test {
 protected:
  PrintTest() {
    input_.company = "Malharia & Cia";
    input_.user = "ana";
    input_.now = DateTime(Date(2026, 11, 23), 9, 5, 0);
    input_.set = [this](std::string_view name) -> DataSet* {
      if (name == "TbRelatorio") return &rows_;
      return name == "TbSaldo" ? &accounts_ : nullptr;
    };
    input_.answer = [this](std::string_view name) {
      const auto found = answers_.find(name);
      return found == answers_.end() ? std::nullopt : std::optional(found->second);
    };
    folder_ = std::filesystem::path(testing::TempDir()) / ("orv-print-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_);
  }
  ~PrintTest() override { std::filesystem::remove_all(folder_); }

  Report Make(const std::string& text) { return LayOut(ReportTemplate::Parse("WTeste", text), input_); }
  std::string Written(const Report& report, const std::string& format) {
    const auto file = folder_ / ("x." + format);
    WriteReport(report, format, file);
    std::ifstream in(file, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
  }

  Lancamentos rows_;
  Contas accounts_;
  ReportAnswers answers_{{"CbSaldo", {0, [](std::span<const Value>) { return Value(0); }}}};
  ReportInput input_;
  std::filesystem::path folder_;
};

class NoNames : public Formula::Scope {
 public:
  Value Name(std::size_t) const override { throw FormulaError("sem nomes"); }
};

std::string Worked(const std::string& text) {
  try {
    return Formula::Parse(text).Work(NoNames()).AsString();
  } catch (const FormulaError& e) {
    return std::string("! ") + e.what();
  }
}

TEST(FormulaTest, WorksOut) {
  const std::pair<const char*, const char*> cases[] = {
      {"1 + 2 * 3", "7"},
      {"(1 + 2) * -3", "-9"},
      {"7 / 2", "3,5"},
      {"1 / (2 - 2)", "! divisão por zero"},
      {"\"a\" + \"b\" & 'c'", "abc"},
      {"copy(\"Conciliação\", 8, 4)", "ação"},
      {"copy(\"abc\", 9, 4)", ""},
      {"iif(1 > 2, 1 / 0, \"não\")", "não"},
      {"iif(\"a\" = \"a\" e nao (1 <> 1), 'S', 'N')", "S"},
      {"1 < 2 ou 1 / 0", "1"},
      {"round(2.345, 2)", "2,35"},
      {"round(1.005, 2) + round(-2.675, 2) * 1000", "-2678,99"},
      {"abs(-3) + length(trim(\" é \"))", "4"},
      {"\"x\" * 2", "! \"x\" não é um número"},
      {"nada", "! sem nomes"},
      {"1 +", "! a fórmula está incompleta"},
      {"(1", "! esperava-se \")\""},
      {"1 2", "! não se esperava \"2\""},
      {"copy(1)", "! copy quer 3 parâmetros"},
      {"soma(1)", "! a função soma não existe"},
      {"iif(1, \"sem\", soma(1))", "sem"},
      {"\"aberta", "! falta fechar as aspas"},
      {"9223372036854775807 + 1", "! o resultado é grande demais"},
      {"-9223372036854775807 - 2", "! o resultado é grande demais"},
      {"round(1, 9)", "! round arredonda de 0 a 8 casas"},
  };
  for (const auto& [text, result] : cases) EXPECT_EQ(Worked(text), result) << text;
  EXPECT_NE(Worked(std::string(100, '(') + "1").find("níveis demais"), std::string::npos);
  EXPECT_NE(Worked(std::string(3000, '-') + "1").find("níveis demais"), std::string::npos);
  std::string chain = "1";
  for (int i = 0; i < 1500; ++i) chain += "+1";
  EXPECT_NE(Worked(chain).find("níveis demais"), std::string::npos);
  const std::string huge(308, '9');
  EXPECT_EQ(Worked(huge + ".0 * " + huge + ".0"), "! o resultado é grande demais");
}

TEST(FormatTest, PrintsAsBrazilReads) {
  const Value amount(Currency::FromCents(-123456789));
  EXPECT_EQ(FormatValue(amount, "#,##0.00"), "-1.234.567,89");
  EXPECT_EQ(FormatValue(amount, "0.0"), "-1234567,9");
  EXPECT_EQ(FormatValue(Value(0.005), "#,##0.00"), "0,01");
  EXPECT_EQ(FormatValue(Value(-0.004), "#,##0.00"), "0,00");
  EXPECT_EQ(FormatValue(Value(1.000000005), "0.00000000"), "1,00000001");
  EXPECT_EQ(FormatValue(Value(1e15), "#,##0.00"), "1.000.000.000.000.000,00");
  EXPECT_EQ(FormatValue(Value(1234), "#,##0"), "1.234");
  EXPECT_EQ(FormatValue(Value(Date(2026, 3, 7)), "dd/mm/yy - dddd"), "07/03/26 - sábado");
  EXPECT_EQ(FormatValue(Value(Date(2026, 3, 7)), "mmmm/yyyy"), "março/2026");
  EXPECT_EQ(FormatValue(Value(DateTime(Date(2026, 3, 7), 8, 4, 0)), "dd/mm/yyyy hh:nn"), "07/03/2026 08:04");
  EXPECT_EQ(FormatValue(Value("texto"), "#,##0.00"), "texto");
  EXPECT_EQ(FormatValue(Value(), "#,##0.00"), "");
}

constexpr const char* kByDay = R"(
relatorio Caixa por dia
subtitulo Saldo anterior: [:<#,##0.00>vInicial] [iif(CbSaldo, "digitado", "das contas")]
dados TbRelatorio
coluna 12 Dia
coluna 16 Nome
coluna 12 direita Valor
coluna 12 direita Saldo
grupo gDia = TbRelatorio.Dia
valor vInicial de TbSaldo = iif(TbSaldo.Sel="S",TbSaldo.Valor,0)
valor vDia por gDia = TbRelatorio.Valor
valor vGeral = TbRelatorio.Valor
cabecalho gDia estilo negrito
| [:<dd/mm/yy - dddd>TbRelatorio.Dia] | < |
detalhe estilo TbRelatorio.Valor < 0 ? alerta : normal
|| [copy(TbRelatorio.Nome, 1, 10)] | [:<#,##0.00>TbRelatorio.Valor] | [:<#,##0.00>vGeral + vInicial] |
rodape gDia se vDia <> 0
| Total do dia | [:<dd/mm>TbRelatorio.Dia] | [:<#,##0.00>vDia] |
rodape estilo negrito+linha
| Total | < | [:<#,##0.00>vGeral] | [:<#,##0.00>vGeral + vInicial] |
)";

TEST_F(PrintTest, GroupsSumsAndStyles) {
  rows_.Add(20, "Fornecedor de fios", -10005);
  rows_.Add(20, "Cliente A", 20010);
  rows_.Add(23, "Estorno", 500);
  rows_.Add(23, "Estornado", -500);
  accounts_.Add("S", 1000.10);
  accounts_.Add("N", 5000);
  rows_.Last();
  const int64_t stands = rows_.RecNo();
  const Report report = Make(kByDay);
  EXPECT_EQ(rows_.RecNo(), stands) << "the screen's cursor stays";
  EXPECT_TRUE(report.notes.empty()) << report.notes[0];
  EXPECT_EQ(ReportText66(report),
            "Malharia & Cia                              23/11/2026 09:05\n"
            "Caixa por dia                                  Página 1 de 1\n"
            "Saldo anterior: 1.000,10 das contas\n"
            "============================================================\n"
            "Dia          Nome                    Valor        Saldo\n"
            "------------------------------------------------------------\n"
            "20/11/26 - sexta-feira\n"
            "             Fornecedor            -100,05       900,05\n"
            "             Cliente A              200,10     1.100,15\n"
            "Total do dia 20/11                  100,05\n"
            "23/11/26 - segunda-feira\n"
            "             Estorno                  5,00     1.105,15\n"
            "             Estornado               -5,00     1.100,15\n"
            "------------------------------------------------------------\n"
            "Total                               100,05     1.100,15\n");
  EXPECT_EQ(report.lines[1].style, kAlert);
  EXPECT_EQ(report.lines[2].style, kPlain);
}

TEST_F(PrintTest, PrintsWhatItCanAndTellsTheRest) {
  rows_.Add(20, "A", 100);
  const Report report = Make(R"(relatorio Falhas
dados TbRelatorio
coluna 20 Um
coluna 10 direita Dois
colunas 3
valor vRuim = TbRelatorio.Nome * 2
detalhe
| [TbRelatorio.Nada] e [TbRelatorio.Nome] | [1 / 0] |
| [:<0.00>TbOutro.Valor] | [(1] |
detalhe se Quem
| sempre |
)");
  const std::string text = ReportText66(report);
  EXPECT_NE(text.find("#ERRO e A"), std::string::npos) << text;
  EXPECT_NE(text.find("sempre"), std::string::npos) << "what can't be asked hides nothing";
  const std::string notes = [&] {
    std::string all;
    for (const std::string& note : report.notes) all += note + "\n";
    return all;
  }();
  for (const char* told :
       {"modelo WTeste, linha 5: não se conhece \"colunas\".", "linha 9: esperava-se \")\".",
        "linha 6: \"A\" não é um número.", "linha 8: o campo Nada não existe em TbRelatorio.",
        "linha 8: divisão por zero.", "linha 10: Quem não é um valor nem um campo da tela."}) {
    EXPECT_NE(notes.find(told), std::string::npos) << told << "\n" << notes;
  }
  EXPECT_NE(text.find("* modelo WTeste, linha 5"), std::string::npos) << "told on paper, too";
  EXPECT_THROW(Make("isto não é um modelo"), UserError);
  EXPECT_THROW(Make("dados \xff"), UserError);
  EXPECT_NE(ReportText66(Make("dados TbOutro\ncoluna 10 X\n")).find("TbOutro não existe"), std::string::npos);
}

TEST_F(PrintTest, WhatATemplateAsksForIsBounded) {
  rows_.Add(20, std::string(40, 'n'), 100);
  std::string form =
      "dados TbRelatorio\ncoluna 201 Larga\ncoluna 99999999999 X\ncoluna 200 Nome\ncoluna 9 direita D\n";
  form += "detalhe\n| [TbRelatorio.Nome][TbRelatorio.Nome] | [TbRelatorio.Dia + 99999999] |\n";
  form += "| [:<" + std::string(5000, 'h') + ">agora] |\n";
  form += "| " + std::string(20000, 'x') + " |\n";
  std::string many = "|";
  for (int i = 0; i < 300; ++i) many += "[TbRelatorio.Nome]";
  form += many + " |\n";
  for (int i = 0; i < 70; ++i) form += "coluna 5 C\n";
  const Report report = Make(form);
  std::string notes;
  for (const std::string& note : report.notes) notes += note + "\n";
  for (const char* told : {"linha 2: a largura da coluna vai de 1 a 200", "linha 3: a largura",
                           "linha 7: o resultado é grande demais", "linha 8: o formato é longo demais",
                           "linha 9: a linha é longa demais", "há colunas demais"}) {
    EXPECT_NE(notes.find(told), std::string::npos) << told << "\n" << notes;
  }
  ASSERT_EQ(report.lines.size(), 2U);
  EXPECT_EQ(report.lines[0].cells[0].text, std::string(80, 'n'));
  EXPECT_EQ(report.lines[1].cells[0].text.size(), 2000U);
  for (const char* format : {"html", "txt", "csv", "xlsx", "pdf"})
    EXPECT_FALSE(Written(report, format).empty());
}

TEST_F(PrintTest, HostileValuesStayTexts) {
  rows_.Add(20, "<script>alert(1)</script>\n\"&'", 100, 0.125);
  rows_.Add(20, "=CMD|'/c calc'!A0", -100);
  rows_.Add(20, "-", 100);
  rows_.Add(20, "-1.234,56", 100);
  rows_.Add(20, "-1+1", 100);
  const Report report = Make(
      "dados TbRelatorio\ncoluna 60 Nome\ncoluna 3 direita Valor\ndetalhe\n| [TbRelatorio.Nome] | "
      "[:<#,##0.00>TbRelatorio.Valor * 1000] |\n");
  const std::string html = ReportHtml(report);
  EXPECT_EQ(html.find("<script"), std::string::npos);
  EXPECT_NE(html.find("&lt;script&gt;alert(1)&lt;/script&gt; &quot;&amp;&#39;"), std::string::npos);
  EXPECT_EQ(TableCsv(report.sets.at(0)),
            "\xEF\xBB\xBFNome;Valor\r\n\"<script>alert(1)</script>\n\"\"&'\";1,00\r\n"
            "'=CMD|'/c calc'!A0;-1,00\r\n-;1,00\r\n-1.234,56;1,00\r\n'-1+1;1,00\r\n");
  EXPECT_NE(ReportText66(report).find(" ###"), std::string::npos) << "an amount is never cut";
  EXPECT_EQ(Written(report, "xlsx").substr(0, 2), "PK");
  EXPECT_THROW(FindTemplate("../../etc/passwd", folder_.string()), UserError);
}

TEST_F(PrintTest, PagesAreWhole) {
  for (int i = 0; i < 3000; ++i) rows_.Add(1 + i % 28, "Linha " + std::to_string(i), i);
  const Report report = Make(
      "pagina paisagem\ndados TbRelatorio\ncoluna 30 Nome\ncoluna 15 direita Valor\n"
      "valor v = TbRelatorio.Valor\ndetalhe\n| [TbRelatorio.Nome] | [:<#,##0.00>v] |\n");
  std::size_t lines = 0;
  for (const auto& page : Pages(report, 40)) {
    EXPECT_LE(page.size(), 40U);
    EXPECT_EQ(page[0].kind, PageLine::Kind::Titles);
    lines += page.size() - 1;
  }
  EXPECT_EQ(lines, 3000U);
  EXPECT_EQ(report.lines.back().cells[1].text, "44.985,00");
  const std::string pdf = Written(report, "pdf");
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  EXPECT_NE(pdf.find("%%EOF"), std::string::npos);
  EXPECT_GT(pdf.size(), 50000U);
}

TEST_F(PrintTest, SumsAndHeadsStandWithTheirLines) {
  // Groups of three rows, with a head, a sum, and a last sum: six lines, which never fit a page evenly.
  for (int i = 0; i < 300; ++i) rows_.Add(1, "Grupo " + std::to_string(i / 3), i);
  const Report report = Make(
      "dados TbRelatorio\ncoluna 30 Nome\ncoluna 15 direita Valor\ngrupo g = TbRelatorio.Nome\n"
      "valor v de TbRelatorio por g = TbRelatorio.Valor\ncabecalho g\n| [TbRelatorio.Nome] | |\n"
      "detalhe\n| | [TbRelatorio.Valor] |\nrodape g\n| Total | [v] |\n"
      "rodape\n| Fim | |\n");
  std::size_t lines = 0;
  for (const std::size_t fits : {12U, 13U, 14U, 15U, 16U}) {
    for (const bool apart : {false, true}) {
      lines = 0;
      for (const auto& page : Pages(report, fits, 0, apart)) {
        EXPECT_LE(page.size(), fits);
        for (std::size_t at = 1; at < page.size(); ++at) {
          const bool blank = page[at].kind == PageLine::Kind::Blank;
          if (!blank) {
            EXPECT_EQ(page[at].index, lines++);
          }
          const bool head = !blank && at > 1 && report.lines[page[at].index].lead;
          EXPECT_EQ(head && apart, page[at - 1].kind == PageLine::Kind::Blank) << fits;
        }
        EXPECT_FALSE(report.lines[page[1].index].sum) << fits;
        EXPECT_EQ(page.back().kind, PageLine::Kind::Line);
        EXPECT_FALSE(report.lines[page.back().index].lead) << fits;
      }
      EXPECT_EQ(lines, 501U);
    }
  }
}

TEST_F(PrintTest, TablesAndFiltersAreThoseThatAPersonKnows) {
  rows_.Add(20, "A", 123456, 0.1255);
  accounts_.Add("S", 2);
  input_.captions = [this](const DataSet& set) {
    return &set == &rows_ ? SetCaptions{"Lançamentos", {{"Taxa", "Taxa %", 4}, {"Dia", "Dia", 2}}}
                          : SetCaptions{};
  };
  input_.filters = {"Período: 01/11/2026 a 30/11/2026", "Conta: 001-X", "Situação: Pendente"};
  const Report report = Make(
      "subtitulo De 01/11/26 até 30/11/26\nvalor vSel de TbSaldo = TbSaldo.Valor\ndados TbRelatorio\n"
      "coluna 20 Cliente\ncoluna 9 direita Valor\ndetalhe\n| [TbRelatorio.Nome] | [TbRelatorio.Valor] |\n");
  // What is summed beforehand is the program's own; the days stand in the subtitle.
  ASSERT_EQ(report.sets.size(), 1U);
  EXPECT_EQ(report.sets[0].set, "Lançamentos");
  EXPECT_EQ(TableCsv(report.sets[0]),
            "\xEF\xBB\xBFTaxa %;Dia;Cliente;Valor\r\n0,1255;20/11/2026;A;1234,56\r\n");
  EXPECT_EQ(Join(report.filters, "|"), "Conta: 001-X|Situação: Pendente");
  EXPECT_NE(ReportHtml(report).find("<span>Conta: 001-X</span>"), std::string::npos);
}

TEST_F(PrintTest, TheScreenAnswersWhatTheReportDoesNotKnow) {
  rows_.Add(20, "A", 1000);
  rows_.Add(21, "B", 2050);
  int asked = 0;
  answers_ = {{"Periodo", {0, [&](auto) { return Value("novembro " + std::to_string(++asked)); }}},
              {"Tela.Conta", {0, [](auto) { return Value("10250-1"); }}},
              {"Dobro", {1, [](auto given) { return Value(given[0].AsCurrency() * 2.0); }}},
              {"Falha", {0, [](auto) -> Value { throw UserError("sem saldo"); }}}};
  const Report report = Make(R"(subtitulo [PERIODO] da conta [Tela.Conta]
dados TbRelatorio
coluna 20 Um
coluna 20 Dois
valor v = dobro(TbRelatorio.Valor)
detalhe
| [:<0.00>Dobro(TbRelatorio.Valor) + 1] | [Periodo] |
rodape
| [v] [Falha] | [Nada(1)] |
| [Dobro] | [Dobro(1, 2)] |
)");
  const std::string text = ReportText66(report);
  for (const char* line :
       {"novembro 1 da conta 10250-1\n", "\n21,00                novembro 1\n",
        "\n42,00                novembro 1\n", "\n61,00 #ERRO          #ERRO\n", "linha 9: sem saldo.",
        "linha 9: a função Nada não existe.", "linha 10: Dobro quer 1 parâmetro."}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
  }
}

struct Titulos : TClientDataSet {
  explicit Titulos(const std::string& name) : TClientDataSet(name) { CreateDataSet(); }
  Field De{*this, "De", FieldType::String, 10};
  Field Numero{*this, "Numero", FieldType::String, 10};
  Field Valor{*this, "Valor", FieldType::Currency};
  void Add(const std::string& of, const std::string& number, int64_t cents) {
    Append();
    De = Value(of);
    Numero = Value(number);
    Valor = Value(Currency::FromCents(cents));
    Post();
  }
};

// Three levels, sums of each, feet where there is something to add up, looks of cells, on a lying sheet.
TEST_F(PrintTest, RowsUnderRows) {
  Titulos titles("TbTitulo"), payments("TbBaixa");
  rows_.Add(20, "A", 300);
  rows_.Add(20, "B", -100);
  rows_.Add(21, "", 50);
  titles.Add("A", "T1", 100);
  titles.Add("B", "T2", 100);
  titles.Add("A", "T3", 200);
  titles.Add(" ", "T4", 50);
  titles.Add("X", "T5", 999);
  for (const auto& [number, cents] : {std::pair("T3", 150), {"T1", 100}, {"T3", 50}, {"T5", 999}})
    payments.Add(number, number, cents);
  input_.set = [&](std::string_view name) -> DataSet* {
    return name == "TbRelatorio" ? static_cast<DataSet*>(&rows_)
           : name == "TbTitulo"  ? &titles
           : name == "TbBaixa"   ? &payments
                                 : nullptr;
  };
  const Report report = Make(R"(relatorio Títulos
pagina paisagem
dados TbRelatorio
coluna 12 Nome
coluna 10 direita Valor
subdados TbTitulo onde TbTitulo.De = TbRelatorio.Nome
subdados TbBaixa em TbTitulo onde TbBaixa.De = TbTitulo.Numero
subdados TbBaixa onde TbBaixa.De = TbTitulo.Numero
subdados TbNada onde TbNada.De = TbRelatorio.Nome
grupo gDia = TbRelatorio.Dia
valor vTit de TbTitulo por TbTitulo = TbTitulo.Valor
valor vBaixa de TbBaixa por TbBaixa = TbBaixa.Valor
valor vDia de TbBaixa por gDia = TbBaixa.Valor
valor vTudo de TbBaixa = TbBaixa.Valor
detalhe
| {TbRelatorio.Nome = "?" ? negrito : TbRelatorio.Valor < 0 ? alerta : apagado+destaque} [TbRelatorio.Nome] | {linha}[TbRelatorio.Valor] |
cabecalho TbTitulo
| {{títulos} | |
detalhe TbTitulo
| - [TbTitulo.Numero] | {nada ? aviso : normal} [TbTitulo.Valor] |
detalhe TbBaixa
| -- baixa | {aviso} [iif(TbBaixa.Valor > 0, TbBaixa.Valor, "")] |
rodape TbBaixa varias
| -- baixas | [vBaixa] |
rodape TbTitulo varias
| - soma | [vTit] |
rodape gDia varias
| baixas do dia | [vDia] |
rodape
| baixas | [vTudo] |
)");
  const std::string text = ReportText66(report);
  EXPECT_EQ(text.find('\n'), 132U);
  EXPECT_EQ(text.substr(text.rfind("--\n") + 3, text.find("\n\n") - text.rfind("--\n") - 2),
            "A                  3,00\n"
            "{títulos}\n"
            "- T1               1,00\n"
            "-- baixa           1,00\n"
            "- T3               2,00\n"
            "-- baixa           1,50\n"
            "-- baixa           0,50\n"
            "-- baixas          2,00\n"
            "- soma             3,00\n"
            "B                 -1,00\n"
            "{títulos}\n"
            "- T2               1,00\n"
            "baixas do di       3,00\n"
            "                   0,50\n"
            "{títulos}\n"
            "- T4               0,50\n"
            "baixas             3,00\n");
  for (const char* told : {"linha 8: o conjunto TbBaixa já está na seção.",
                           "linha 9: o conjunto TbNada não existe", "linha 20: nada não é um valor"}) {
    EXPECT_NE(text.find(told), std::string::npos) << told << "\n" << text;
  }
  const std::string html = ReportHtml(report);
  EXPECT_NE(html.find("<body class=\"lying\">"), std::string::npos);
  EXPECT_NE(html.find("<td class=\"m h n\">A</td><td class=\"r d\">3,00</td>"), std::string::npos) << html;
  EXPECT_NE(html.find("<td class=\"a n\">B</td>"), std::string::npos) << html;
  ASSERT_EQ(report.sets.size(), 3U);
  const ReportRows &outer = report.sets[0], &inner = report.sets[2];
  EXPECT_EQ(outer.looks.at(0 * 2 + 0), kMuted | kMark) << "the field that the cell names, of its row";
  EXPECT_EQ(outer.looks.at(1 * 2 + 0), kAlert);
  EXPECT_EQ(inner.looks.size(), 3U) << "of the rows that are printed";
  EXPECT_TRUE(report.sets[1].looks.empty());
  EXPECT_EQ(Written(report, "xlsx").substr(0, 2), "PK");
  EXPECT_EQ(Written(report, "pdf").substr(0, 5), "%PDF-");
}

TEST_F(PrintTest, PicturesOfFifteenPoints) {
  for (int i = 0; i < 31; ++i)
    rows_.Add(1 + i % 28, i == 4 ? "<b>" : "Dia", i * 100000 - 1000000, i == 2 ? 1e300 : i);
  const Report report = Make(R"(dados TbRelatorio Caixa
grafico [TbRelatorio.Nome] [:<dd>TbRelatorio.Dia]
barras Valor = TbRelatorio.Valor
curva Saldo = vSaldo
curva Taxa = iif(TbRelatorio.Taxa = 3, "", TbRelatorio.Taxa)
curva Demais = 1
valor vSaldo = TbRelatorio.Valor
)");
  ASSERT_EQ(report.pictures.size(), 3U);
  EXPECT_EQ(report.pictures[2].labels, std::vector<std::string>{"Dia 03"});
  EXPECT_EQ(report.pictures[2].part, "Pontos 31 a 31 de 31");
  EXPECT_EQ(report.pictures[0].high, report.pictures[2].high) << "one scale";
  EXPECT_EQ(report.pictures[0].low, -55000) << "the lowest running sum";
  EXPECT_EQ(report.pictures[0].series[2].values[1], 1.0);
  for (const std::size_t none : {2U, 3U}) EXPECT_FALSE(report.pictures[0].series[2].values[none]) << none;
  EXPECT_NE(report.notes.at(0).find("linha 6: há séries demais"), std::string::npos);
  const std::string text = ReportText66(report), html = ReportHtml(report);
  EXPECT_NE(
      text.find(
          "\nDia 02                                  -9.000,00         -19.000,00               1,00\n"),
      std::string::npos)
      << text;
  std::size_t drawn = 0;
  for (std::size_t at = 0; (at = html.find("<svg", at)) != std::string::npos; ++at) ++drawn;
  EXPECT_EQ(drawn, 3U);
  EXPECT_NE(html.find("&lt;b&gt;"), std::string::npos);
  EXPECT_EQ(html.find("<b>"), std::string::npos);
  for (const std::size_t fits : {20U, 26U, 45U}) {
    std::size_t lines = 0, pictures = 0;
    for (const auto& page : Pages(report, fits, 12)) {
      EXPECT_LE(page.size(), fits);
      for (std::size_t at = 0; at < page.size(); ++at) {
        lines += page[at].kind == PageLine::Kind::Line ? 1 : 0;
        if (page[at].kind != PageLine::Kind::Picture) continue;
        EXPECT_EQ(page[at].index, pictures++);
        EXPECT_LE(at + 12, page.size()) << "whole";
      }
    }
    EXPECT_EQ(lines, 31U);
    EXPECT_EQ(pictures, 3U);
  }
  EXPECT_EQ(Written(report, "pdf").substr(0, 5), "%PDF-");
}

TEST_F(PrintTest, TheDesksOwnTemplatesAreWhole) {
  ASSERT_FALSE(OwnTemplates().empty());
  for (const std::string& identifier : OwnTemplates()) {
    const ReportTemplate form = FindTemplate(identifier, "");
    EXPECT_TRUE(form.errors.empty()) << form.errors[0];
  }
  // A company's own takes precedence.
  std::ofstream(folder_ / "WCCSaldoConta.rel") << "relatorio Nosso\ndados TbContas\n";
  EXPECT_EQ(FindTemplate("WCCSaldoConta", folder_.string()).title, "Nosso");
  EXPECT_NE(FindTemplate("WCCSaldoConta", "").title, "Nosso");
  // A bank's own, else that of every bank, which a company may have, too.
  EXPECT_EQ(FindTemplate("WChequeEmi_341", folder_.string()).sheet_width, 175);
  std::ofstream(folder_ / "WChequeEmi_.rel") << "folha 150 70\ndados TbCheque\n";
  EXPECT_EQ(FindTemplate("WChequeEmi_341", folder_.string()).sheet_width, 150);
  EXPECT_THROW(FindTemplate("Nada341", folder_.string()), UserError);
}

TEST_F(PrintTest, SheetsHaveTextsAtPlaces) {
  rows_.Add(20, "MIL DUZENTOS E TRINTA E QUATRO REAIS", 123456);
  rows_.Add(21, "UM REAL <b>", 100);
  accounts_.Add("S", 1);
  accounts_.Add("N", 2);
  accounts_.Add("S", 3);
  const Report report = Make(
      "folha 120 30\ndados TbRelatorio\n"
      "campo 80 5 40 direita: [:<#,##0.00>TbRelatorio.Valor]\n"
      "campo 3 9 60 linhas 2 4.3: [TbRelatorio.Nome]\n"
      "lista TbSaldo 3 18 40 4.3 2: [TbSaldo.Sel] [:<0>TbSaldo.Valor]\n"
      "campo 3 9: sem largura\ncampo 3 999 10: fora");
  EXPECT_EQ(report.notes.size(), 2U) << "what can't be read is told";
  const std::string text = ReportText66(report);
  EXPECT_EQ(text.substr(0, text.find('*')),
            "\n                                       1.234,56\n MIL DUZENTOS E TRINTA E\n"
            " QUATRO REAIS\n S 1\n N 2\n\n\f"
            "\n                                           1,00\n UM REAL <b>\n\n S 1\n N 2\n\n");
  const std::string html = ReportHtml(report);
  EXPECT_NE(html.find("viewBox=\"0 0 120.0 30.0\""), std::string::npos);
  EXPECT_NE(html.find("UM REAL &lt;b&gt;"), std::string::npos);
  EXPECT_EQ(html.find("<table"), std::string::npos);
  WriteReport(report, "pdf", folder_ / "cheque.pdf");
  std::ifstream in(folder_ / "cheque.pdf", std::ios::binary);
  const std::string pdf((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(pdf.find("/MediaBox [ 0 0 340.15"), std::string::npos) << "the page is the sheet";
  EXPECT_NE(pdf.find("/Count 3"), std::string::npos) << "two sheets, and what couldn't be read";
}

}  // namespace
}  // namespace orv::test
