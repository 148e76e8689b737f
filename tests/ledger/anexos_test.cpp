// What stands beside a movement: who did what to it, and its receipts.
#include "host/data/backup.h"
#include "host/services/anexo_conteudo.h"
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

using namespace std::string_literals;

const std::string kPdf = "%PDF-1.4\n1 0 obj <</Type/Catalog>> endobj\n%%EOF\n";
const std::string kPng = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1"s + "IEND\xae\x42\x60\x82";

std::string Base64(const std::string& bytes) {
  constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    uint32_t three = 0;
    for (std::size_t i = 0; i < 3; ++i)
      three = three << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0);
    for (std::size_t i = 0; i < 4; ++i)
      text += at + i > bytes.size() ? '=' : kDigits[three >> (18 - 6 * i) & 63];
  }
  return text;
}

class AnexosTest : public CcTest {
 protected:
  static std::string Attach(Desk& desk, const std::string& name, const std::string& bytes) {
    desk.Do({{"do", "attach"}});
    if (desk.End() == "waiting file") desk.Do({{"do", "file"}, {"name", name}, {"content", Base64(bytes)}});
    return desk.Messages();
  }
  // The names that the latest list told, parted by blanks.
  static std::string Listed(Desk& desk) {
    std::string names;
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("attachments"))) continue;
      for (const Json& row : out["rows"].Items()) names += row["name"].String() + " ";
    }
    return names;
  }
  static Json Of(const char* verb, const char* record, int id) {
    return {{"do", verb}, {"record", record}, {"id", id}};
  }
  std::string Attached() {
    return Sql("SELECT LANCAMENTO, NUMERO, NOME, TIPO, LOGIN FROM ANEXO_001 ORDER BY 1, 2");
  }
};

TEST_F(AnexosTest, ReceiptsStandBesideTheMovementAndGoWithIt) {
  // Both legs of a transfer stand under one number.
  Put(Movimento{.lancamento = "A1", .operacao = "-", .tipo = "TR"});
  Put(Movimento{.lancamento = "A1", .conta = kOutraConta, .operacao = "+", .tipo = "TR"});
  Put(Movimento{.lancamento = "A2", .docto = "2"});
  Put(Direito{.classe = "TfmCC", .tipos = "E"});
  Desk ana(database_, At{"TfmCC"}), leo(database_, At{"TfmCC", "leo"});
  EXPECT_EQ(Attach(ana, "x.pdf", kPdf), "error: Escolha primeiro um lançamento.");
  Load(ana, "A1");
  EXPECT_EQ(Attach(ana, "Recibo nº 1.exe", kPdf), "");
  EXPECT_EQ(Listed(ana), "Recibo nº 1.exe.pdf ");
  EXPECT_EQ(Attach(ana, "foto.PNG", kPng), "");
  EXPECT_EQ(Attached(), "A1|1|Recibo nº 1.exe.pdf|PDF|ana;A1|2|foto.png|PNG|ana");

  // What is refused leaves nothing.
  EXPECT_EQ(Attach(ana, "outra.png", kPng), "error: Este arquivo já está anexado ao lançamento.");
  EXPECT_NE(Attach(ana, "nota.pdf", "<html><script>alert(1)</script>").find("não é um PDF"),
            std::string::npos);
  EXPECT_NE(Attach(ana, "g.pdf", kPdf + std::string(std::size_t{5} << 20, ' ')).find("error: "),
            std::string::npos);
  Put(Parametro{.grupo = "ANEXO", .numero = 10, .valor = "0"});
  EXPECT_NE(Attach(ana, "b.pdf", kPdf + "b%%EOF").find("todo o espaço de 0 MB"), std::string::npos);
  Run("DELETE FROM PARAMETRO WHERE GRUPO = 'ANEXO'");
  EXPECT_EQ(Attach(ana, "c.pdf", kPdf + "c%%EOF"), "");
  EXPECT_EQ(Attach(ana, "d.pdf", kPdf + "d%%EOF"), "");
  EXPECT_NE(Attach(ana, "e.pdf", kPdf + "e%%EOF").find("já tem 4 anexos"), std::string::npos);

  // Who may only delete reads them, and changes none.
  Load(leo, "A1", 1);
  leo.Do({{"do", "attachments"}});
  EXPECT_EQ(Listed(leo), "Recibo nº 1.exe.pdf foto.png c.pdf d.pdf ");
  leo.Do(Of("download", "A1", 2));
  EXPECT_EQ(leo.Latest().front()["name"].String(), "foto.png");
  EXPECT_NE(Attach(leo, "l.pdf", kPdf + "l%%EOF").find("não tem o direito"), std::string::npos);
  leo.Do(Of("detach", "A1", 2));
  EXPECT_NE(leo.Messages().find("não tem o direito"), std::string::npos);
  leo.Do(Of("download", "A2", 1));
  EXPECT_EQ(leo.Messages(), "error: O registro à frente é outro.");

  ana.Do(Of("detach", "A1", 4));
  ana.Answer("no");
  ana.Do(Of("detach", "A1", 4));
  ana.Answer("yes");
  EXPECT_EQ(Listed(ana), "Recibo nº 1.exe.pdf foto.png c.pdf ");
  // A movement that is altered, cleared and taken back keeps them.
  ana.Click("BitBtn2");
  ana.Fill({{"EdtObs", "OUTRA"}});
  Confirm(ana);
  Consult(ana, {{"EdtConsLanc", "A1"}, {"RgBusca", "0"}});
  EXPECT_EQ(ana.Press("SpeedButton6"), "");
  EXPECT_EQ(Count("ANEXO_001"), "3");

  // They are in the backup, byte by byte.
  const std::string copy = (folder_.Path() / "copia.fdb").string(),
                    file = (folder_.Path() / "copia.fbk").string();
  Backup(database_.string(), file);
  Restore(file, copy);
  EXPECT_EQ(
      Attachment::Open(copy)->Scalar("SELECT CONTEUDO FROM ANEXO_001 WHERE NOME = 'foto.png'").AsString(),
      kPng);

  // The movement takes them with it, and the audit tells it.
  leo.CloseAll();
  leo.Open("TfmCC");
  Load(leo, "A1");
  leo.Press("BitBtn3", "yes");
  EXPECT_EQ(Attached(), "");
  EXPECT_EQ(Count("AUDITORIA", "AREA = 'ANEXOS' AND CHAVE = 'A1' AND OPERACAO = 2 AND LOGIN = 'leo'"), "3");
  ana.Page("TabSheet1");
  EXPECT_EQ(Attach(ana, "tarde.pdf", kPdf), "error: O lançamento A1 não existe mais. Nada foi anexado.");
}

TEST_F(AnexosTest, TheHistoryTellsWhatWasDoneToTheRecordInFrontAndToNoOther) {
  Put(Movimento{.lancamento = "A7", .docto = "NF 7"});
  Desk ana(database_, At{"TfmCC"});
  const std::string number = New(ana, {{"EdtNumDoc", "NF 7"}});
  ana.Do({{"do", "history"}});
  EXPECT_EQ(ana.Messages(), "error: Escolha primeiro um registro.") << "not stored yet";
  Confirm(ana);
  for (const char* area_company : {"'CADEXTRATO', '_001'", "'CONCILIACAO', '_002'"}) {
    Run("INSERT INTO AUDITORIA (ID, LOGIN, AREA, EMP_PAT, TEXTO, OPERACAO, CHAVE) VALUES (NEXT VALUE FOR "
        "SQ_AUDITORIA_ID, 'x', " +
        std::string(area_company) + ", 'CONCILIACAO DO LANCAMENTO " + number + "', 3, '" + number + "')");
  }
  Consult(ana, {{"EdtConsLanc", number}, {"RgBusca", "0"}});
  EXPECT_EQ(ana.Press("SpeedButton6"), "");
  EXPECT_EQ(ana.Press("SpeedButton8"), "");
  if (ana.End() != "idle") ana.Answer("yes");
  ana.Do({{"do", "history"}});
  ASSERT_EQ(ana.End(), "waiting answer");
  std::string told;
  for (const Json& out : ana.Latest()) {
    if (!(out["on"] == Json("detail"))) continue;
    EXPECT_EQ(out["title"].String(), "Histórico: Lançamento " + number);
    for (const Json& row : out["rows"].Items())
      told += row.Items()[1].String() + ": " + row.Items()[2].String() + "\n";
  }
  EXPECT_EQ(told, "ana: COMPENSAÇÃO DO LANCAMENTO " + number + "\nana: ESTORNO DE COMPENSAÇÃO LANC. " +
                      number + "\nana: INC. ALT. DOCTO: NF 7 LANCTO: " + number + " VALOR: 100,00\n");
}

TEST(AnexoConteudo, OnlyPaperAndPicturesByTheirContent) {
  const std::string stream = "%PDF-1.5\n1 0 obj <</Type/Obj#53tm /Filter/FlateDecode>> stream\n";
  struct {
    std::string bytes;
    const char* type;  // "" for what is refused
  } const cases[] = {
      {kPdf, "PDF"},
      {kPng, "PNG"},
      {"\xff\xd8\xff\xe0\0\4ab\xff\xc0\0\4ab\xff\xda\0\2x\xff\xd9"s, "JPEG"},
      {"RIFF\14\0\0\0WEBPVP8 abcd"s, "WEBP"},
      {"", ""},
      {"\xff\xd8\xff\xe0\0\4ab\xff\xda\0\2x\xff\xd9"s, ""},
      {kPng.substr(0, kPng.size() - 3), ""},
      {"RIFF\377\0\0\0WEBPVP8 abcd"s, ""},
      {"<svg xmlns='http://www.w3.org/2000/svg'/>", ""},
      {"MZ\x90\0"s, ""},
      {" " + kPdf, ""},
      {"%PDF-1.4\nsem fim", ""},
      {kPdf + "<</S/JavaScript>>%%EOF", ""},
      {kPdf + "<</S /J#61vaScript>>%%EOF", ""},
      {kPdf + "<</Launch<<>>>>%%EOF", ""},
      {kPdf + "/EmbeddedFiles 3 0 R%%EOF", ""},
      {kPdf + "/Encrypt 3 0 R%%EOF", ""},
      {stream +
           "\x78\x9c\x33\x54\x30\x50\xb0\xb1\xd1\x0f\xa9\x2c\x48\xd5\x0f\x48\x4c\x4f\xb5\xb3\x03\x00\x2b\x0d"
           "\x05\x13"s +
           "\nendstream %%EOF",
       "PDF"},
      {stream +
           "\x78\x9c\x33\x54\x30\x50\xb0\xb1\xd1\x0f\xd6\xf7\x4a\x2c\x4b\x0c\x4e\x2e\xca\x2c\x28\xd1\xf7\x0a"
           "\xd6\xa8\xd0"
           "\xb4\xb3\x03\x00\x66\x77\x07\xd3"s +
           "\nendstream %%EOF",
       ""},
      {stream + "assim não se lê\nendstream %%EOF", ""},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    std::string type;
    const std::string error = ErrorOf([&] { type = TipoDoAnexo(cases[i].bytes).nome; });
    EXPECT_EQ(type, cases[i].type) << i << ": " << error;
    EXPECT_EQ(error.empty(), *cases[i].type != '\0') << i;
  }
  EXPECT_EQ(NomeDoAnexo("c:\\x\\fdp.\u202Eexe\n", TipoDoAnexo(kPdf)), "fdp.exe.pdf");
}

}  // namespace
}  // namespace orv::test
