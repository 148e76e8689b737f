// Reports: formulas, formats, the templates' language, the layout and the forms in which it is written down.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/print/format.h"
#include "host/print/writers.h"
#include "toolkit/client_dataset.h"

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
    input_.control = [](std::string_view name) {
      return name == "CbSaldo" ? std::optional<Value>(Value(0)) : std::nullopt;
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
  const std::string csv = ReportCsv(report);
  EXPECT_NE(csv.find("20/11/2026;'=CMD|'/c calc'!A0;-1,00;"), std::string::npos) << csv;
  EXPECT_NE(csv.find("\"<script>alert(1)</script>\n\"\"&'\";1,00;0,125"), std::string::npos) << csv;
  EXPECT_NE(csv.find("\r\n20/11/2026;-;1,00;"), std::string::npos) << csv;
  EXPECT_NE(csv.find(";-1.234,56;1,00;"), std::string::npos) << csv;
  EXPECT_NE(csv.find(";'-1+1;1,00;"), std::string::npos) << csv;
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
    lines = 0;
    for (const auto& page : Pages(report, fits)) {
      EXPECT_LE(page.size(), fits);
      for (std::size_t at = 1; at < page.size(); ++at) EXPECT_EQ(page[at].index, lines++);
      EXPECT_FALSE(report.lines[page[1].index].sum) << fits;
      EXPECT_FALSE(report.lines[page.back().index].lead) << fits;
    }
    EXPECT_EQ(lines, 501U);
  }
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
}

}  // namespace
}  // namespace orv::test
