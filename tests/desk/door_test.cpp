// The door, verb by verb, on a sample screen over a real database.
#include <array>

#include "host/services/audit.h"
#include "host/services/users.h"
#include "tests/desk/sample_screen.h"
#include "tests/support/desk_test.h"
#include "tests/support/table.h"

namespace orv::test {
namespace {

class DoorTest : public DeskTest {
 protected:
  void SetUp() override { desk_.Open("TfmAmostra"); }
  std::string Label() { return desk_.Property("LbSoma", "caption").String(); }
  std::string Banks(const std::string& codes) {
    return Sql("SELECT BANCO FROM CADBAN_001 WHERE BANCO IN (" + codes + ") ORDER BY 1");
  }

  SampleScreens screens_;
  Desk desk_{database_};
};

Json Key(std::string_view control, std::string_view key) {
  return {{"do", "key"}, {"control", control}, {"key", key}};
}

TEST_F(DoorTest, EachObjectIsAnsweredOnceAndWhatCannotBeDoneRunsNothing) {
  for (const auto& line : Table(ORV_FILES "refused.txt", 1)) {
    const std::string& text = line[0];
    SCOPED_TRACE(text);
    const auto& out = desk_.Do(Json::Parse(text));
    EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ");
    EXPECT_EQ(desk_.End(), "idle");
    int ends = 0;
    for (const Json& one : out) ends += one["on"] == Json("idle") || one["on"] == Json("waiting");
    EXPECT_EQ(ends, 1);
  }
  EXPECT_EQ(desk_.Text("EdtTexto"), "");
}

TEST_F(DoorTest, ControlsTakeWhatAPersonGives) {
  desk_.Set("EdtTexto", "açaí na tigela");
  EXPECT_EQ(desk_.Text("EdtTexto"), "açaí na ti");
  desk_.Do(Key("EdtTexto", "Enter"));
  desk_.Set("EdtTexto", "ab");
  desk_.Do(Key("EdtTexto", "ç"));
  EXPECT_EQ(desk_.Text("EdtTexto"), "abç");
  desk_.Set("EdtValor", "1234,5");
  EXPECT_EQ(desk_.Text("EdtValor"), "1.234,50");
  desk_.Check("CbMarca", true);
  desk_.Do(Key("CbMarca", " "));
  EXPECT_FALSE(desk_.Property("CbMarca", "checked").Bool());
  desk_.Set("CbLista", "dois");
  desk_.Do({{"do", "set"}, {"control", "LbLista"}, {"value", 1}});
  EXPECT_EQ(desk_.Text("CbLista") + desk_.Text("LbLista"), "doisdois");
  desk_.Set("TrPrazo", "99");
  EXPECT_EQ(desk_.Property("TrPrazo", "position").Integer(), 30);
  desk_.Do(Key("TrPrazo", "Tab"));
  EXPECT_EQ(desk_.FocusName(), "EdtBanco");
}

TEST_F(DoorTest, ALookupIsSearchedChosenAndGivenUp) {
  desk_.Set("EdtBanco", "90");
  desk_.Focus("EdtTexto");
  EXPECT_EQ(desk_.Messages(), "Banco inexistente.");
  desk_.Answer("ok");
  EXPECT_EQ(desk_.FocusName(), "EdtBanco");
  desk_.Do(Key("EdtBanco", "F4"));
  EXPECT_EQ(desk_.End(), "waiting lookup");
  desk_.Click("BtFecha");
  EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ");
  EXPECT_EQ(desk_.End(), "waiting lookup") << "the list stays open";
  desk_.Do({{"do", "choose"}, {"key", "999"}});
  EXPECT_EQ(desk_.End(), "waiting lookup");
  desk_.Do({{"do", "search"}, {"text", "da serra"}});
  EXPECT_EQ(desk_.Rows("PqBanco").substr(0, 17), "901|BANCO DA SERR");
  desk_.Do({{"do", "choose"}, {"rows", Json::Array{0}}});
  EXPECT_EQ(desk_.End(), "idle");
  EXPECT_EQ(desk_.Text("EdtNomeBanco"), "BANCO DA SERRA");

  // An empty field opens its list on exit; giving up lets the focus go on.
  desk_.Set("EdtBanco", "");
  desk_.Focus("EdtTexto");
  EXPECT_EQ(desk_.End(), "waiting lookup");
  desk_.Do({{"do", "choose"}});
  EXPECT_EQ(desk_.FocusName(), "EdtTexto");

  desk_.Click("PqVarios");
  desk_.Do({{"do", "search"}, {"text", "'; DROP TABLE CADBAN_001; --"}});
  EXPECT_EQ(desk_.Rows("PqVarios"), "");
  desk_.Do({{"do", "choose"}, {"keys", Json::Array{"901"}}});
  EXPECT_EQ(desk_.End(), "waiting lookup") << "what the search left out can't be chosen";
  desk_.Do({{"do", "search"}, {"text", ""}});
  desk_.Do({{"do", "choose"}, {"keys", Json::Array{"901", "903"}}});
  EXPECT_EQ(desk_.Text("EdtTexto"), "'901','903");
}

TEST_F(DoorTest, AGridIsFilledChangedOrderedAndEmptied) {
  for (const char* code : {"B", "A"}) {
    desk_.Append("Grade");
    const int row = code[0] == 'B' ? 0 : 1;
    desk_.Cell("Grade", row, "Codigo", code);
    desk_.Cell("Grade", row, "Valor", "1.000,10");
    desk_.Cell("Grade", row, "Marca", "true");
  }
  desk_.Stand("Grade", 0);
  EXPECT_EQ(desk_.Rows("TbLinhas"), "B|1000.1000|S\nA|1000.1000|S\n");
  for (const auto& [typed, told] :
       {std::pair("12a3", "não é um valor. Escreva como 1.234,56."),
        std::pair("12,345", "não é um valor. Escreva como 1.234,56."),
        std::pair("900000000000000,00", "é grande demais. O maior valor é 999.999.999.999,99.")}) {
    desk_.Cell("Grade", 0, "Valor", typed);
    EXPECT_EQ(desk_.Messages(), "error: \"" + std::string(typed) + "\" " + told);
  }
  desk_.Title("Grade", "Codigo");
  EXPECT_EQ(desk_.Rows("TbLinhas"), "A|1000.1000|S\nB|1000.1000|S\n");
  desk_.DoubleClick("Grade", 0, "Codigo");
  EXPECT_EQ(Label(), "duplo A");
  desk_.Key("Grade", 1, "Valor", "F4");
  EXPECT_EQ(Label(), "Valor F4");
  EXPECT_EQ(desk_.Text("DbeCodigo"), "B");
  desk_.Set("DbeCodigo", "C");
  desk_.Set("DbrMarca", "Não");
  desk_.Stand("Grade", 0);
  EXPECT_EQ(desk_.Rows("TbLinhas"), "A|1000.1000|S\nC|1000.1000|N\n");
  desk_.Do({{"do", "menu"}, {"control", "ItDetalhe"}});
  EXPECT_EQ(desk_.End(), "waiting answer");
  desk_.Answer("ok");
  desk_.Delete("Grade", 0);
  EXPECT_EQ(desk_.Rows("TbLinhas"), "C|1000.1000|N\n");
}

// Whichever way a typed cell is left, it is told once, with the row still current; a bar reader's Enter leads
// to the next row, where it goes on.
TEST_F(DoorTest, ACellIsLeftOnce) {
  desk_.Append("Grade");
  std::string rows;
  for (int row = 0; row < 2; ++row) {
    desk_.Cell("Grade", row, "Codigo", "BARRA");
    EXPECT_EQ(desk_.Rows("TbLinhas"), rows + "BARRA|-|-\n");
    desk_.Key("Grade", row, "Codigo", "Enter");
    rows += "BARRA|1.0000|-\n";
    EXPECT_EQ(desk_.Rows("TbLinhas"), rows + "-|-|-\n");
    EXPECT_EQ(desk_.Property("Grade", "selected"), Json("Codigo"));
    EXPECT_EQ(desk_.Property("Grade", "placed"), Json(row + 1));
  }
  const auto reach = [&](const char* column) {
    desk_.Do({{"do", "row"}, {"control", "Grade"}, {"row", 2}, {"column", column}});
  };
  const std::function<void()> ways[] = {
      [&] { desk_.Key("Grade", 2, "Codigo", "Tab"); }, [&] { reach("Valor"); },
      [&] { desk_.Cell("Grade", 2, "Marca", "true"); }, [&] { desk_.Stand("Grade", 1); },
      [&] { desk_.Set("EdtTexto", "x"); }};
  for (std::size_t i = 0; i < std::size(ways); ++i) {
    desk_.Cell("Grade", 2, "Codigo", "C" + std::to_string(i));
    ways[i]();
    reach("Marca");
    EXPECT_EQ(desk_.Rows("TbLinhas"), rows + "C" + std::to_string(i) + "|" + std::to_string(i + 1) +
                                          ".0000|" + (i < 2 ? "-" : "S") + "\n")
        << i;
  }
}

TEST_F(DoorTest, QuestionsWaitForTheirOwnAnswers) {
  desk_.Click("BtPergunta");
  EXPECT_EQ(desk_.End(), "waiting answer");
  desk_.Answer("ok");
  EXPECT_EQ(desk_.End(), "waiting answer");
  desk_.Answer("yes");
  EXPECT_EQ(Label(), "sim");
  desk_.Click("BtPergunta");
  desk_.Answer("cancel");
  EXPECT_EQ(desk_.Messages() + Label(), "não") << "a no, which ends no gathering";
  desk_.Click("BtData");
  desk_.Answer("31/02/2026");
  EXPECT_EQ(desk_.End(), "waiting answer");
  desk_.Answer("ok");
  desk_.Answer("05/03/2026");
  EXPECT_EQ(Label(), "05/03/2026");
  desk_.Click("BtData");
  desk_.Answer("cancel");
  EXPECT_EQ(Label(), "desistiu");
  const auto& out = desk_.Click("BtConta");
  const auto confirm =
      std::find_if(out.begin(), out.end(), [](const Json& o) { return o["on"] == Json("confirm"); });
  ASSERT_NE(confirm, out.end());
  EXPECT_TRUE((*confirm)["lines"].Items()[0]["unknown"].Bool());
  desk_.Answer("no");
  EXPECT_EQ(Label(), "recusado");
}

TEST_F(DoorTest, AFileIsKeptUnderNoNameOfTheUsers) {
  for (const char* name : {"../fora.txt", "/etc/passwd", "a/b.txt", ".oculto", "", "x\ny"}) {
    desk_.Click("BtArquivo");
    desk_.Do({{"do", "file"}, {"name", name}, {"content", "b2k="}});
    EXPECT_EQ(desk_.End(), "waiting file") << name;
    desk_.Answer("cancel");
  }
  desk_.Click("BtArquivo");
  desk_.Do({{"do", "file"}, {"name", "a.txt"}, {"content", "não é base64"}});
  EXPECT_EQ(desk_.End(), "waiting file");
  // The name is the user's; on the disk the file has another, and what stands under the name stays as it is.
  const std::filesystem::path folder = folder_.Path() / "sessoes" / "ana";
  std::filesystem::create_symlink(folder_.Path() / "alvo.txt", folder_.Path() / "extrato março.txt");
  for (int times = 0; times < 2; ++times) {
    if (times > 0) desk_.Click("BtArquivo");
    desk_.Do({{"do", "file"}, {"name", "extrato março.txt"}, {"content", "b2k="}});
    EXPECT_EQ(Label(), "extrato março.txt");
    ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
    EXPECT_EQ(std::filesystem::file_size(std::filesystem::directory_iterator(folder)->path()), 2U);
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "alvo.txt")) << "a link isn't followed";
}

TEST_F(DoorTest, WhatFailsIsUndoneToWhereItsActionBegan) {
  desk_.Set("EdtTexto", "A01");
  desk_.Click("BtGrava");
  desk_.Click("BtFalha");
  EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ");
  desk_.Click("BtDesiste");
  EXPECT_EQ(desk_.Messages(), "");
  EXPECT_EQ(Banks("'A01','F01','D01'"), "A01");
  EXPECT_NE(desk_.Text("DbeBanco"), "D01") << "the table shows a row that isn't there";

  // In a dialog: its failed action goes alone, what stands around it is kept until the end.
  desk_.Click("BtDialogo");
  EXPECT_EQ(desk_.End(), "idle");
  desk_.Open("TfmAmostra");
  EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ") << "a dialog is modal";
  desk_.Click("BtFalha");
  EXPECT_EQ(desk_.Messages(), "error: Falha no diálogo.");
  const Json dialog = desk_.State()["screens"].Items().back()["id"];
  desk_.Do({{"do", "click"}, {"control", "BtOk"}, {"screen", dialog}});
  EXPECT_EQ(Label(), "voltou 0");
  // The second of two clicks was meant for the dialog, whose button has a namesake beneath.
  desk_.Set("EdtTexto", "G02");
  desk_.Do({{"do", "click"}, {"control", "BtGrava"}, {"screen", dialog}});
  EXPECT_EQ(desk_.Messages(), "error: A tela não está mais à frente.");
  EXPECT_EQ(Banks("'X01','H01','G02'"), "X01");

  // The opening action fails after its dialog wrote: all of it goes.
  Run("DELETE FROM CADBAN_001 WHERE BANCO = 'X01'");
  desk_.Click("BtDialogo");
  desk_.Click("BtGrava");
  desk_.Do({{"do", "close"}});
  EXPECT_EQ(desk_.Messages(), "error: Falha depois do diálogo.");
  EXPECT_EQ(Banks("'X01','G01'"), "");
  desk_.Set("EdtTexto", "Z01");
  desk_.Click("BtGrava");
  EXPECT_EQ(Banks("'Z01'"), "Z01") << "the screen stays usable";

  // So does what fails while the desk is put in order and looked at after an action: it is told later.
  desk_.Click("BtErra");
  EXPECT_EQ(desk_.Messages(), "error: Falha ao arrumar.\nerror: Falha ao mostrar.");
  EXPECT_EQ(desk_.End(), "idle");
  desk_.Set("EdtTexto", "N01");
  EXPECT_EQ(desk_.Latest()[0]["controls"]["LbSoma"]["caption"], Json("errou"));
  desk_.Click("BtGrava");
  EXPECT_EQ(Banks("'M01','N01'"), "N01");
}

TEST_F(DoorTest, ALongGatheringIsCancelledAndNothingElse) {
  // The cancel is sent when the first sign of progress arrives, as a person would. A question that was asked
  // meanwhile isn't answered by it.
  for (const char* button : {"BtLonga", "BtPergunta"}) {
    SessionOptions options;
    options.database = database_.string();
    options.user = "ana";
    options.company = "_001";
    options.folder = folder_.Path();
    Log log((folder_.Path() / "long.log").string());
    std::mutex mutex;
    std::condition_variable arrived;
    int settled = 0;
    std::string error, last;
    Session* session = nullptr;
    const auto one = std::make_unique<Session>(options, log, [&](const Json& out) {
      const std::lock_guard lock(mutex);
      if (out["on"] == Json("progress") && session != nullptr) {
        session->Post({{"do", "answer"}, {"value", "cancel"}});
        session = nullptr;
      }
      if (out["on"] == Json("error")) error = out["text"].String();
      last = out["on"].String();
      settled += last == "idle" || last == "waiting";
      arrived.notify_one();
    });
    {
      const std::lock_guard lock(mutex);
      session = one.get();
    }
    one->Post({{"do", "open"}, {"class", "TfmAmostra"}});
    one->Post({{"do", "click"}, {"control", button}});
    std::unique_lock lock(mutex);
    arrived.wait(lock, [&] { return settled == 4; });
    EXPECT_EQ(error + last, std::string(button) == "BtLonga" ? "Operação cancelada.idle" : "waiting");
  }
}

TEST_F(DoorTest, ASessionThatEndsInAQuestionLeavesNothingBehind) {
  {
    Desk other(database_);
    other.Open("TfmAmostra");
    other.Click("BtDialogo");  // has written, and waits in the dialog
  }
  EXPECT_EQ(Banks("'X01'"), "");
}

TEST_F(DoorTest, OnlyWhatTheUserMayOpenOpens) {
  Desk leo(database_, "leo");
  leo.Open("TfmAmostra");
  EXPECT_EQ(leo.Messages(), "error: A tela \"TfmAmostra\" não está disponível.");
  orv::Audit audit(Db(), Clock(), "", "");
  for (const auto& [screen, page, button, other] :
       {std::array{"TFmConcilia", "TabSheet1", "BitBtn9", "Cadastro de Extrato Bancário"},
        std::array{"TFmCadExtrato", "TabSheet2", "BitBtn2", "Conciliação"}}) {
    Users(Db(), audit).Grant("leo", {screen, "*"});
    Db().CommitRetaining();
    Desk one(database_, "leo");
    one.Open(screen);
    one.Do({{"do", "page"}, {"control", "PageControl1"}, {"page", page}});
    one.Click(button);
    EXPECT_EQ(one.Messages(),
              std::string("error: Usuário sem permissão para abrir a tela \"") + other + "\".");
    EXPECT_EQ(one.State()["screens"].Items().size(), 1U);
    Users(Db(), audit).Revoke("leo", screen);
  }
  EXPECT_THROW(Desk(database_, "ninguém"), UserError);
  EXPECT_THROW(Desk(database_, "ana", "_009"), UserError);
}

}  // namespace
}  // namespace orv::test
