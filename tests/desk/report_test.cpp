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
