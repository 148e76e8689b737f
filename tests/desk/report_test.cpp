// Reports at the door: launched from a screen, kept as they stood, written down in each form.
#include <filesystem>
#include <fstream>

#include "tests/desk/sample_screen.h"
#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

constexpr const char* kTemplate = R"(relatorio Amostra
dados TbLinhas
coluna 8 Código
coluna 12 direita Valor
valor vTotal = TbLinhas.Valor
detalhe
| [TbLinhas.Codigo] | [:<#,##0.00>TbLinhas.Valor] |
rodape
| [iif(CbMarca, "sim", "não")] | [:<#,##0.00>vTotal] |
)";

class ReportTest : public DeskTest {
 protected:
  ReportTest() {
    Template("Amostra", kTemplate);
    desk_.Open("TfmAmostra");
  }
  void Template(const std::string& identifier, const std::string& text) {
    std::filesystem::create_directories(folder_.Path() / "relatorios");
    std::ofstream(folder_.Path() / "relatorios" / (identifier + ".rel")) << text;
  }
  void Row(const char* code, const char* amount) {
    const auto row = static_cast<int>(rows_++);
    desk_.Do({{"do", "append"}, {"control", "Grade"}});
    for (const auto& [column, value] : {std::pair("Codigo", code), std::pair("Valor", amount)}) {
      desk_.Do({{"do", "cell"}, {"control", "Grade"}, {"row", row}, {"column", column}, {"value", value}});
    }
  }
  // What the desk tells of a report, null for nothing.
  Json Told() {
    for (const Json& out : desk_.Latest()) {
      if (out["on"] == Json("report")) return out;
    }
    return {};
  }
  Json Launch(const char* identifier) {
    desk_.Set("EdtTexto", identifier);
    desk_.Click("BtRelatorio");
    return Told();
  }
  std::string Written(const Json& id, const char* format) {
    desk_.Do({{"do", "report"}, {"id", id}, {"format", format}});
    const Json told = Told();
    if (told.IsNull()) return desk_.Messages();
    const std::filesystem::path file = told["file"].String();
    EXPECT_EQ(file.parent_path(), folder_.Path() / "sessoes" / "ana");
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  SampleScreens screens_;
  Desk desk_{database_};
  std::size_t rows_ = 0;
};

TEST_F(ReportTest, IsKeptAsItStoodAndWrittenInEachForm) {
  Row("A", "1.000,10");
  desk_.Do({{"do", "check"}, {"control", "CbMarca"}, {"value", true}});
  const Json told = Launch("Amostra");
  EXPECT_EQ(told["identifier"], Json("Amostra"));
  EXPECT_EQ(told["title"], Json("Amostra"));
  EXPECT_EQ(told["formats"].Text(), R"(["html","pdf","txt","csv","xlsx"])");
  Row("B", "7");
  const std::string text = Written(told["id"], "txt");
  EXPECT_NE(text.find("A            1.000,10\n"), std::string::npos) << text;
  EXPECT_NE(text.find("sim          1.000,10\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("7,00"), std::string::npos) << text;
  EXPECT_NE(Written(told["id"], "csv").find("A;1000,10"), std::string::npos);
  EXPECT_NE(Written(told["id"], "html").find(">1.000,10<"), std::string::npos);
  EXPECT_EQ(Written(told["id"], "pdf").substr(0, 5), "%PDF-");
  std::ofstream(folder_.Path() / "livro.xlsx", std::ios::binary) << Written(told["id"], "xlsx");
  desk_.Set("EdtTexto", "livro.xlsx");
  desk_.Click("BtLivro");
  const std::string book = desk_.Property("LbSoma", "caption").String();
  EXPECT_NE(book.find("A|1.000,10|"), std::string::npos) << book << desk_.Messages();

  EXPECT_EQ(Written(told["id"], "exe"), "error: O relatório não tem o formato \"exe\".");
  EXPECT_EQ(Written(Json("1"), "pdf"), "error: O relatório não está mais aberto. Imprima-o de novo.");
  // The latest eight stay.
  for (int i = 0; i < 8; ++i) Launch("Amostra");
  EXPECT_EQ(Written(told["id"], "txt").substr(0, 7), "error: ");
  EXPECT_NE(Written(Json(told["id"].Integer() + 1), "txt").find("7,00"), std::string::npos);
}

TEST_F(ReportTest, IsIncompleteRatherThanMissing) {
  Row("A", "5");
  Template("Torto",
           "relatorio Torto\ndados TbLinhas\ncoluna 8 Código\ncoluna doze\nvalor v = 1 +\ndetalhe\n"
           "| [TbLinhas.Codigo] |\n| [TbLinhas.Outro] |\n| [TbLinhas.Valor / 0] |\n");
  const Json told = Launch("Torto");
  const std::string message = desk_.Messages();
  for (const char* fault :
       {"O relatório saiu incompleto:", "modelo Torto, linha 4: ", "modelo Torto, linha 5: ",
        "modelo Torto, linha 8: ", "modelo Torto, linha 9: divisão por zero"}) {
    EXPECT_NE(message.find(fault), std::string::npos) << fault << " in " << message;
  }
  desk_.Answer("ok");
  EXPECT_EQ(desk_.End(), "idle");
  const std::string text = Written(told["id"], "txt");
  EXPECT_NE(text.find("\nA\n"), std::string::npos) << text;
  EXPECT_NE(text.find("#ERRO"), std::string::npos) << text;

  for (const char* none : {"Nada", "../x", ""}) {
    EXPECT_TRUE(Launch(none).IsNull()) << none;
    EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ") << none;
  }
}

// What came of an act on kept filters: names with what they say, or what the desk told.
std::string Kept(const std::vector<Json>& answer) {
  std::string text;
  for (const Json& out : answer) {
    if (out["on"] == Json("error")) return out["text"].String();
    if (out["on"] != Json("filters")) continue;
    for (const Json& one : out["list"].Items()) {
      text += one["name"].String() + (one["shared"].Bool() ? "*" : "") + ":";
      for (const Json& told : one["told"].Items()) text += " " + told.String() + ";";
      text += "\n";
    }
    for (const Json& left : out["left"].Items()) text += "left " + left.String() + "\n";
  }
  return text;
}

TEST_F(ReportTest, FiltersAndFavouritesFollowTheDay) {
  Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmRelVencto', '*')");
  const auto filters = [](Desk& desk, const char* act, const char* name, bool shared = false) {
    return Kept(
        desk.Do({{"do", "filters"}, {"act", act}, {"name", name}, {"shared", shared}, {"value", true}}));
  };
  EXPECT_EQ(filters(desk_, "save", "x"), "A tela não tem filtros para guardar.");
  desk_.Open("TfmRelVencto");
  desk_.Set({{"EdtDataDe", "01/11/2026"}, {"edtDataAte", "30/11/2026"}, {"RgData", "Contabilização"}});
  desk_.Check("CbPend", false);
  const std::string told = " Período: este mês; Considerar Data: Contabilização; Buscar Pendentes: não;\n";
  EXPECT_EQ(filters(desk_, "save", "Meu"), "Meu:" + told);
  EXPECT_EQ(filters(desk_, "save", "Todos", true), "Meu:" + told + "Todos*:" + told);
  for (const char* wrong : {"", "a/b", "12345678901234567890123456789012345678901"})
    EXPECT_NE(filters(desk_, "save", wrong).find(" nome"), std::string::npos) << wrong;
  // Longer than a value may be.
  desk_.Set("EdtClasse", std::string(5000, '9'));
  EXPECT_NE(filters(desk_, "save", "Longo").find(std::string(5000, '9')), std::string::npos);
  filters(desk_, "delete", "Longo");
  desk_.Set("EdtClasse", "");

  desk_.Click("BitBtn29");
  desk_.Set("EdtObs", "depois da consulta");
  const auto launched = desk_.Click("BitBtn33");
  const Json report = Told();
  ASSERT_TRUE(report["favourite"].Bool()) << desk_.Messages();
  // The head tells what was asked for, not what stands there since.
  const std::string html = Written(report["id"], "html");
  EXPECT_NE(html.find("<span>Considerar Data: Contabilização</span>"), std::string::npos);
  EXPECT_EQ(html.find("depois da consulta"), std::string::npos);
  EXPECT_EQ(Written(report["id"], "csv").substr(3, 10), "Situação");
  EXPECT_NE(Told()["file"].String().find("_20261101_20261130_lancamentos-"), std::string::npos)
      << Told()["file"].String();
  desk_.Do({{"do", "favourites"},
            {"act", "save"},
            {"name", "Do mês"},
            {"report", report["id"]},
            {"shared", true}});

  Desk leo(database_, "leo", "_001", "2027-02-10");
  leo.Open("TfmRelVencto");
  EXPECT_EQ(leo.Text("EdtDataDe"), "01/01/1980") << "a screen begins as it always did";
  EXPECT_EQ(filters(leo, "use", "todos", true), "Todos*:" + told);
  EXPECT_EQ(leo.Texts({"EdtDataDe", "edtDataAte"}), "01/02/2027|28/02/2027");
  EXPECT_FALSE(leo.Property("CbPend", "checked").Bool());
  EXPECT_EQ(leo.FocusName(), "BitBtn29");
  for (const char* act : {"save", "delete"})
    EXPECT_EQ(filters(leo, act, "Todos", true).substr(0, 20), "Só um administrador");
  EXPECT_EQ(filters(leo, "use", "Meu"), "Não há filtros com o nome \"Meu\".");
  filters(leo, "latest", "");
  leo.Click("BitBtn29");
  leo.Close();
  leo.Open("TfmRelVencto");
  EXPECT_EQ(leo.Text("edtDataAte"), "28/02/2027") << "the latest ones, as he wants it";
  leo.Close();
  const auto run = [&](const char* name) {
    leo.Do({{"do", "favourites"}, {"act", "run"}, {"name", name}});
    return leo.Messages();
  };
  EXPECT_EQ(run("do MÊS"), "");
  EXPECT_EQ(leo.Top(), "TfmRelVencto");
  EXPECT_EQ(leo.Texts({"EdtDataDe", "edtDataAte"}), "01/02/2027|28/02/2027");
  EXPECT_EQ(run("Nenhum"), "error: Não há relatório favorito com o nome \"Nenhum\".");
}

TEST_F(ReportTest, IsWrittenNowhereElse) {
  const Json told = Launch("Amostra");
  std::filesystem::create_directories(folder_.Path() / "sessoes");
  std::filesystem::create_directories(folder_.Path() / "fora");
  std::filesystem::create_directory_symlink(folder_.Path() / "fora", folder_.Path() / "sessoes" / "ana");
  EXPECT_EQ(Written(told["id"], "txt"), "error: A pasta dos relatórios não pode ser usada.");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "fora"));
}

}  // namespace
}  // namespace orv::test
