// The page "Importação": files loaded for review, confirmed, refused; what is left after a fault.
#include <sys/stat.h>

#include "host/schema/check.h"
#include "tests/reconciliation/extrato_desk.h"
#include "tests/support/kills.h"
#include "tests/support/steps.h"

namespace orv::test {
namespace {

constexpr const char* kLoaded = "Arquivo carregado com sucesso.";
constexpr const char* kStored = "Arquivo importado com sucesso.";
constexpr const char* kOtherBank = "Banco do Arquivo diferente do Selecionado. Continuar?";

TEST_F(ExtratoTest, LoadsReviewsAndConfirmsOfx) {
  Run("DELETE FROM EXTRATO_001 WHERE CONTA = '33021-5'");
  Put(Extrato{.lancto = "T00001",
              .banco = "903",
              .conta = "33021-5",
              .docto = "000123",
              .dt_cont = "11/18/2026",
              .valor = "10.50",
              .operacao = "D",
              .conciliado = "N"});
  Desk desk(database_);
  Import(desk);
  EXPECT_EQ(desk.Text("DtArq"), "20/11/2026");

  // Chosen as in a browser: the file is put in the user's own folder.
  desk.Click("BitBtn3");
  EXPECT_EQ(desk.End(), "waiting file");
  desk.Do({{"do", "file"}, {"name", "novo.ofx"}, {"content", "PE9GWD4="}});
  EXPECT_EQ(desk.Texts({"EdtArq", "EdtCam"}), "novo.ofx|");
  // It goes once its lines are stored, and its name still counts.
  const auto given = [&] {
    return std::distance(std::filesystem::directory_iterator(folder_.Path() / "sessoes/ana"), {});
  };
  EXPECT_EQ(given(), 1);
  for (const std::string& said :
       {std::string(kOtherBank) + "\n" + kLoaded, std::string("Arquivo Já Carregado.")}) {
    EXPECT_EQ(Load(desk, "", kOfx, "yes"), said);
    EXPECT_EQ(Confirm(desk), kStored);
    EXPECT_EQ(given(), 0);
    Run("UPDATE OR INSERT INTO EXTRATO_001 (LANCTO, ARQUIVO) VALUES ('T00002', 'novo.ofx') MATCHING "
        "(LANCTO)");
  }
  Run("DELETE FROM EXTRATO_001 WHERE LANCTO = 'T00002'");
  EXPECT_EQ(Load(desk, "", kOfx), "Arquivo não encontrado.");

  EXPECT_EQ(Load(desk, File("open_tags.ofx", "NOVEMBRO.OFX"), kOfx), kLoaded);
  EXPECT_EQ(desk.Texts({"EdtArq", "EdtCam", "DtArq"}), "NOVEMBRO.OFX||19/11/2026");
  EXPECT_EQ(desk.Rows("TbImporta"),
            "33021-5|000123|2026-11-18|10.5000|D|TARIFA|\n"
            "33021-5|000124|2026-11-19|1500.0000|C|DEPÓSITO EM DINHEIRO|\n");
  EXPECT_EQ(desk.Texts({"EdtISaldo", "EdtSaldoFinal"}), "-10,50|1.479,00");
  EXPECT_EQ(Told(desk),
            "2 linhas carregadas. 1 já está no extrato com a mesma conta, data, valor e documento.");

  // Only the text changes; rows go but don't come.
  const auto cell = [&](const char* column, const char* value) {
    desk.Cell("DBGrid3", 1, column, value);
    return desk.Messages();
  };
  for (const char* column : {"Docto", "Dt_Cont", "Valor", "Operacao"})
    EXPECT_EQ(cell(column, "1"), "error: Esta coluna é só de leitura.") << column;
  EXPECT_EQ(cell("Obs", "D'AGUA E UM TEXTO QUE PASSA DE CINQUENTA CARACTERES AO TODO"), "");
  desk.Append("DBGrid3");
  EXPECT_EQ(desk.Messages(), "error: Aqui não se incluem linhas.");
  desk.Delete("DBGrid3", 0);

  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(desk.Rows("TbImporta"), "");
  EXPECT_EQ(Stored("NOVEMBRO.OFX"),
            "903|33021-5|000124|2026-11-19|1500.0000|C|D'AGUA E UM TEXTO QUE PASSA DE CINQUENTA CARACTERE|N|"
            "2026-11-19|-");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM EXTRATO_001 WHERE ARQUIVO = 'NOVEMBRO.OFX' AND CHAVE = LANCTO"), "1");
  // A line's history tells the file that it came from.
  desk.Page("TabSheet2");
  desk.Click("SbConsulta");
  desk.Choose(Sql("SELECT LANCTO FROM EXTRATO_001 WHERE ARQUIVO = 'NOVEMBRO.OFX'"));
  desk.Do({{"do", "history"}});
  ASSERT_EQ(desk.Latest().front()["on"].String(), "detail") << desk.Messages();
  EXPECT_EQ(desk.Latest().front()["rows"].Items().at(0).Items().at(2).String(),
            "IMPORTACAO DO ARQUIVO NOVEMBRO.OFX, CONTA 33021-5: 1 LINHAS");
  desk.Answer("ok");
  desk.Page("TabSheet3");

  // The name counts, not the folder nor the contents; another name is loaded, and its lines are counted.
  std::filesystem::create_directory(folder_.Path() / "copia");
  EXPECT_EQ(Load(desk, File("closed_tags.ofx", "copia/NOVEMBRO.OFX"), kColunas), "Arquivo Já Carregado.");
  EXPECT_EQ(desk.Rows("TbImporta"), "");
  EXPECT_EQ(Load(desk, File("open_tags.ofx", "outro.ofx"), kOfx), kLoaded);
  EXPECT_EQ(Told(desk),
            "2 linhas carregadas. 2 já estão no extrato com a mesma conta, data, valor e documento.");
  EXPECT_EQ(desk.Text("EdtISaldo"), "1.489,50");
  // Also where the folder is typed with the name.
  desk.Set({{"EdtCam", "."}, {"EdtArq", "copia/NOVEMBRO.OFX"}});
  desk.Click("BitBtn6");
  EXPECT_EQ(desk.Messages() + desk.Text("EdtArq"), "Arquivo Já Carregado.NOVEMBRO.OFX");
  desk.Answer("ok");

  // Of two equal lines one stands there; what is no whole transaction is told.
  const std::string uma = "<STMTTRN>\n<DTPOSTED>20261118\n<TRNAMT>-10.50\n<CHECKNUM>000123\n";
  const std::string fim = "</STMTTRN>\n";
  EXPECT_EQ(Load(desk,
                 Written("dobro.ofx", "<BANKID>0903\n" + uma + fim + uma + fim + fim +
                                          "<STMTTRN>\n<DTPOSTED>20261118\n" + fim + uma),
                 kOfx),
            kLoaded);
  EXPECT_EQ(Told(desk),
            "2 linhas carregadas; 3 deixadas de fora (1 sem fim no arquivo, 1 sem início, 1 sem valor). 1 já "
            "está no extrato com a mesma conta, data, valor e documento.");
}

TEST_F(ExtratoTest, AsksBeforeAFileOfAnotherBank) {
  const std::string before = Lines();
  Desk desk(database_);
  Import(desk);
  for (const char* name : {"other_bank.ofx", "no_bank.ofx"}) {
    EXPECT_EQ(Load(desk, File(name), kOfx, "no"), kOtherBank) << name;
    EXPECT_EQ(desk.Rows("TbImporta"), "");
    EXPECT_EQ(Load(desk, File(name), kOfx, "yes"), std::string(kOtherBank) + "\n" + kLoaded) << name;
    EXPECT_EQ(desk.Rows("TbImporta"), "33021-5|000123|2026-11-18|10.5000|D|TARIFA|\n");
  }
  EXPECT_EQ(Load(desk, File("several_accounts.ofx"), kOfx), kLoaded);
  EXPECT_EQ(Told(desk),
            "2 linhas carregadas. O arquivo é de várias contas (330215, 998877): todas as linhas entram na "
            "conta 33021-5.");
  EXPECT_EQ(Load(desk, File("bad_server_date.ofx"), kOfx), kLoaded);
  EXPECT_EQ(desk.Text("DtArq"), "20/11/2026");
  EXPECT_EQ(Lines(), before);
}

TEST_F(ExtratoTest, LoadsTextByItsLayout) {
  Desk desk(database_);
  Import(desk);
  EXPECT_EQ(Load(desk, File("fixed_columns.ret"), kColunas), kLoaded);
  EXPECT_EQ(Told(desk),
            "3 linhas carregadas; 4 deixadas de fora (1 de outra conta, 3 sem chave ou marcadas para não "
            "importar).");
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(Stored("fixed_columns.ret"),
            "901|10250-1|DOC1|2026-11-18|123.4500|C|DEPOSITO. AGENCIA 12|N|2026-11-20|-;"
            "901|10250-1|DOC2|2026-11-18|0.9900|D|DEPOSITO. |N|2026-11-20|-;"
            "901|10250-1|DOC3|2026-11-18|123.4500|D|DEPOSITO. AGENCIA 12|N|2026-11-20|-");
  EXPECT_EQ(Sql("SELECT CHAVE FROM EXTRATO_001 WHERE ARQUIVO = 'fixed_columns.ret' ORDER BY LANCTO"),
            "CH00000001;CH00000002;CH3");

  EXPECT_EQ(Load(desk, File("separated_quote.txt"), kSeparado), kLoaded);
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(Stored("separated_quote.txt"),
            "902|20418-7|D'1|2026-11-18|1.0000|C|D'AGUA: ') DROP TABLE X --|N|2026-11-20|-");
  // Nothing to confirm is confirmed as well.
  EXPECT_EQ(Confirm(desk), kStored);

  // Of no account and of an account without a layout there are no lines.
  EXPECT_EQ(Load(desk, File("separated.txt"), ""), kLoaded);
  EXPECT_EQ(desk.Rows("TbImporta"), "");
  EXPECT_EQ(Load(desk, File("separated.txt"), kOfx), kLoaded);
  EXPECT_EQ(desk.Rows("TbImporta"), "");

  // A fault stops the load; what came before stays and can be confirmed.
  EXPECT_EQ(Load(desk, File("separated_bad_date.txt"), kSeparado),
            "error: Linha 3 do arquivo: \"99/13/2026\" não é uma data válida.");
  EXPECT_EQ(Told(desk), "1 linha carregada.");
  EXPECT_EQ(Stopped(desk), "Interrompido na linha 3");
  EXPECT_EQ(desk.Rows("TbImporta"), "20418-7|D1|2026-11-18|1.0000|C|X|\n");
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM EXTRATO_001 WHERE ARQUIVO = 'separated_bad_date.txt'"), "1");

  // The desk remembers, and takes the rest of that file in, once; a line is bounded in its amount.
  const auto told = [&] { return Join(CheckData(Db()), "\n"); };
  EXPECT_EQ(told(),
            "Empresa _001, arquivo separated_bad_date.txt: interrompido na linha 3, conta 20418-7; falta "
            "carregar o resto.");
  const auto again = [&](const std::string& third) {
    const std::string line = "20418-7;20261118;D1;X;100;C\n";
    return Load(desk, Written("separated_bad_date.txt", "h\n" + line + third + line), kSeparado);
  };
  EXPECT_EQ(again("20418-7;20261118;D3;X;100000000000000;C\n"),
            "error: Linha 3 do arquivo: \"1.000.000.000.000,00\" não é um valor até 999.999.999.999,99.");
  Confirm(desk);
  EXPECT_EQ(again("20418-7;20261118;D3;X;99999999999999;D\n"), kLoaded);
  EXPECT_EQ(Told(desk) + Stopped(desk),
            "2 linhas carregadas; 1 deixada de fora (1 de carga anterior). 1 já está no extrato com a mesma "
            "conta, data, valor e documento.");
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(told(), "");
  EXPECT_EQ(desk.Text("EdtISaldo"), desk.Text("EdtSaldoFinal"));
  EXPECT_EQ(
      Sql("SELECT DOCTO, VALOR FROM EXTRATO_001 WHERE ARQUIVO = 'separated_bad_date.txt' ORDER BY LANCTO"),
      "D1|1.0000;D3|999999999999.9900;D1|1.0000");
  EXPECT_EQ(again(""), "Arquivo Já Carregado.");
}

TEST_F(ExtratoTest, RefusesFilesThatAreNone) {
  const std::string before = Lines();
  Desk desk(database_);
  Import(desk);
  std::filesystem::create_directory(folder_.Path() / "pasta");
  std::filesystem::create_symlink("truncated.ofx", folder_.Path() / "elo.ofx");
  std::filesystem::create_symlink(folder_.Path(), folder_.Path() / "elo");
  ASSERT_EQ(mkfifo((folder_.Path() / "cano.ofx").c_str(), 0600), 0);
  Written("grande.ofx", "");
  std::filesystem::resize_file(folder_.Path() / "grande.ofx", std::uintmax_t{2} << 30);
  std::string hostile = "<STMTTRN>\n<DTPOSTED>20261118\n<MEMO>";
  hostile.append(1 << 20, '<').append("\n<TRNAMT>").append(1 << 20, '9').append("\n</STMTTRN>\n");
  const std::pair<std::string, std::string> cases[] = {
      {"falta.ofx", "Arquivo não encontrado."},
      {"pasta/", "Arquivo não encontrado."},
      // What isn't the user's own, by whatever way.
      {(folder_.Path() / File("truncated.ofx")).string(), "Arquivo não encontrado."},
      {"pasta/../truncated.ofx", "Arquivo não encontrado."},
      {"../" + folder_.Path().filename().string() + "/truncated.ofx", "Arquivo não encontrado."},
      {"elo.ofx", "Arquivo não encontrado."},
      {"elo/truncated.ofx", "Arquivo não encontrado."},
      {"cano.ofx", "Arquivo não encontrado."},
      {"/dev/zero", "Arquivo não encontrado."},
      {"grande.ofx", "O arquivo é grande demais: o limite é de 64 MB."},
      {File("a_picture.ofx"), "O arquivo não é um texto: nenhuma linha foi lida."},
      {File("utf16.ofx"),
       "O arquivo está em UTF-16. Grave-o como UTF-8 ou Windows-1252 e carregue-o de novo."},
      {File("empty.ofx"), kOtherBank},
      {File("truncated.ofx"), kLoaded},
      {File("no_date.ofx"), "error: Linha 41 do arquivo: \"\" não é uma data válida."},
      {Written("hostil.ofx", hostile), kOtherBank},
  };
  for (const auto& [path, said] : cases) {
    EXPECT_EQ(Load(desk, path, kOfx), said) << path;
    EXPECT_EQ(desk.End(), "idle");
  }
  EXPECT_TRUE(Load(desk, "hostil.ofx", kOfx, "yes").ends_with(" 999.999.999.999,99."));
  EXPECT_EQ(Lines(), before);

  desk.Leave("EdtIConta", "99999", "EdtCam");
  EXPECT_EQ(desk.Messages(), "Conta não cadastrada.");
}

// An OFX file of so many lines, each with its own document.
std::string Many(int lines) {
  std::string text = "<BANKID>0903\n";
  for (int i = 0; i < lines; ++i) {
    text += "<STMTTRN>\n<DTPOSTED>20261118\n<TRNAMT>-1.00\n<CHECKNUM>" + std::to_string(i) + "\n</STMTTRN>\n";
  }
  return text;
}

TEST_F(ExtratoTest, ManyLinesOneAfterTheOther) {
  // Numbers that are taken in the midst of the block are passed over.
  Run("INSERT INTO EXTRATO_001 (LANCTO, CONTA, VALOR, OPERACAO) SELECT LPAD(CAST(MAX(LANCTO) AS INTEGER) + "
      "400, 6, '0'), 'X', 1, 'C' FROM EXTRATO_001");
  Desk desk(database_);
  Import(desk);
  EXPECT_EQ(Load(desk, Written("muitas.ofx", Many(1203)), kOfx), kLoaded);
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT LANCTO), COUNT(DISTINCT DOCTO), MAX(CHAR_LENGTH(LANCTO)) "
                "FROM EXTRATO_001 WHERE ARQUIVO = 'muitas.ofx'"),
            "1203|1203|1203|6");
  // In the order of the file.
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM EXTRATO_001 A JOIN EXTRATO_001 B ON B.ARQUIVO = A.ARQUIVO AND B.DOCTO "
                "= CAST(CAST(A.DOCTO AS INTEGER) + 1 AS VARCHAR(12)) WHERE A.ARQUIVO = 'muitas.ofx' AND "
                "A.LANCTO > B.LANCTO"),
            "0");
}

TEST_F(ExtratoTest, AKilledConfirmationLeavesAllOrNone) {
  int file = 0;
  std::string name;
  ExpectAllOrNothing(
      12, {{"do", "click"}, {"control", "BitBtn4"}},
      [&] {
        name = "kill" + std::to_string(++file) + ".ofx";
        LetGo();
        auto desk = std::make_unique<DriveProcess>(database_);
        for (const Json& step : Steps("open TFmCadExtrato; page TabSheet3; EdtCam=" +
                                      (folder_.Path() / Written(name, Many(1000))).string() +
                                      "; EdtIConta=33021-5; click BitBtn6; ok"))
          desk->Do(step);
        return desk;
      },
      [&] { return Sql("SELECT COUNT(*) FROM EXTRATO_001 WHERE ARQUIVO = '" + name + "'"); });
}

// What the database refuses at the last line takes the others back.
TEST_F(ExtratoTest, AFailedConfirmationLeavesNone) {
  const std::string before = Lines();
  Ddl("ALTER TABLE EXTRATO_001 ADD CONSTRAINT C_REGRA CHECK (DOCTO <> '599')");
  Desk desk(database_);
  Import(desk);
  EXPECT_EQ(Load(desk, Written("falha.ofx", Many(600)), kOfx), kLoaded);
  EXPECT_EQ(Confirm(desk), "error: Um valor não obedece a uma regra da tabela. Nada foi gravado.");
  EXPECT_EQ(Lines(), before);
  // The lines are still there to be reviewed; without the refused one they go in.
  desk.Delete("DBGrid3", 599);
  EXPECT_EQ(Confirm(desk), kStored);
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM EXTRATO_001 WHERE ARQUIVO = 'falha.ofx'"), "599");
}

}  // namespace
}  // namespace orv::test
