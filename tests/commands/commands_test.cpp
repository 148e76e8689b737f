// The program's commands as a person types them: exit status, standard output, standard error.
#include <array>
#include <fstream>

#include "host/data/backup.h"
#include "host/schema/schema.h"
#include "tests/support/desk_test.h"
#include "tests/support/process.h"
#include "tests/support/table.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class CommandsTest : public DeskTest {
 protected:
  // Runs orvcc on the test's database.
  Finished Run(const Words& words, const std::string& in = "") {
    LetGo();
    RunOptions options;
    options.in = in;
    options.env["ORVCC_DATABASE"] = database_.string();
    return RunOrvcc(words, options);
  }
  // Its output, when it succeeds and says nothing on standard error.
  std::string Good(const Words& words, const std::string& in = "") {
    const Finished finished = Run(words, in);
    EXPECT_EQ(finished.status, 0) << words[0] << " " << (words.size() > 1 ? words[1] : "");
    EXPECT_EQ(finished.err, "");
    return finished.out;
  }
  // What it tells on standard error, when it fails and prints nothing.
  std::string Bad(const Words& words, const std::string& in = "") {
    const Finished finished = Run(words, in);
    EXPECT_GT(finished.status, 0) << words[0] << " " << (words.size() > 1 ? words[1] : "");
    EXPECT_EQ(finished.out, "");
    // The desk's own log may stand before; what is wrong with the words is followed by where help is.
    const std::size_t begin = finished.err.find("orvcc: ");
    EXPECT_NE(begin, std::string::npos) << finished.err;
    if (begin == std::string::npos) return "";
    return finished.err.substr(begin + 7, finished.err.find('\n', begin) - begin - 7);
  }
  // The messages and errors that a script at the door brings.
  std::string Drive(const std::string& script, const std::string& user = "ana", int status = 0) {
    const Finished finished = Run({"drive", "--user", user, "--today", kToday, "--data", Files()}, script);
    EXPECT_EQ(finished.status, status) << finished.err;
    std::string texts;
    std::size_t from = 0;
    for (std::size_t end = 0; (end = finished.out.find('\n', from)) != std::string::npos; from = end + 1) {
      const Json out = Json::Parse(std::string_view(finished.out).substr(from, end - from));
      if (out["on"] == Json("message") || out["on"] == Json("error")) texts += out["text"].String() + "\n";
    }
    return texts;
  }
  std::string Files() const { return (folder_.Path() / "files").string(); }
};

TEST_F(CommandsTest, HelpIsInPortuguese) {
  for (const std::string& command :
       Split("|init|demo|demo files|drive|user|user add|user password|user grant|user revoke|user list|user "
             "remove|param|param get|param set|param list|lock|lock set|lock clear|lock list|holiday "
             "add|company add|check|upgrade|backup|restore|audit|report",
             "|")) {
    Words words = command.empty() ? Words() : Split(command, " ");
    words.push_back("--help");
    const Finished finished = RunOrvcc(words);
    SCOPED_TRACE(command);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.err, "");
    EXPECT_NE(finished.out.find("Uso: "), std::string::npos) << finished.out;
    EXPECT_NE(finished.out.find("Mostra esta ajuda"), std::string::npos);
    for (const char* english : {"Usage", "Option", "OPTION", "Positional", "ubcommand", "SUBCOMMAND",
                                "REQUIRED", "TEXT ", "INT ", "Env:", "Excludes", "Print", "range", " in ["}) {
      EXPECT_EQ(finished.out.find(english), std::string::npos) << english << "\n" << finished.out;
    }
  }
}

TEST_F(CommandsTest, WrongWordsAreRefusedInPortuguese) {
  for (const auto& c : Table(ORV_FILES "wrong_words.txt", 2))
    EXPECT_EQ(Bad(c[0].empty() ? Words() : Split(c[0], " ")), c[1]);
  // What is typed goes before the environment, whichever command it is given to.
  for (const Words& words : {Words{"check"}, Words{"upgrade"}, Words{"user", "list"}, Words{"param", "list"},
                             Words{"lock", "list"}, Words{"audit"}, Words{"drive", "--user", "ana"}}) {
    Words other = words;
    other.insert(other.end(), {"--database", (folder_.Path() / "other.fdb").string()});
    EXPECT_TRUE(Bad(other).starts_with("O banco de dados não existe.")) << words[0];
  }
  // Without a database there is nothing to work on.
  const Finished finished = RunOrvcc({"check"});
  EXPECT_GT(finished.status, 0);
  EXPECT_NE(finished.err.find("Falta --database."), std::string::npos) << finished.err;
}

TEST_F(CommandsTest, InitMakesADatabaseOnce) {
  const fs::path file = folder_.Path() / "new.fdb";
  const Words init = {"init", "--database", file.string()};
  Words two = init;
  two.insert(two.end(), {"--companies", "_001, _007"});
  EXPECT_EQ(Good(two), "Banco criado em " + file.string() + ".\n");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  {
    const auto db = Attachment::Open(file.string());
    EXPECT_EQ(CompanySuffixes(*db), (std::vector<std::string>{"_001", "_007"}));
    EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM CONTACOR_007").AsInteger(), 0);
  }
  // It exists: not a byte of it changes.
  const auto written = fs::last_write_time(file);
  const auto size = fs::file_size(file);
  EXPECT_NE(Bad(init).find("já existe e não é substituído"), std::string::npos);
  Words demo = init;
  demo.push_back("--demo");
  EXPECT_NE(Bad(demo).find("já existe e não é substituído"), std::string::npos);
  EXPECT_EQ(fs::last_write_time(file), written);
  EXPECT_EQ(fs::file_size(file), size);

  // What goes wrong half-way leaves no file.
  struct Case {
    Words words;
    const char* message;
  };
  const fs::path other = folder_.Path() / "other.fdb";
  const Case cases[] = {
      {{"--companies", "001"}, "O sufixo da empresa deve ser"},
      {{"--companies", "_001,"}, "O sufixo da empresa deve ser"},
      {{"--companies", "_001,_001"}, "já existe"},
      {{"--companies", "_00'"}, "O sufixo da empresa deve ser"},
      {{"--demo", "--date", "30/02/2026"}, "não é"},
      {{"--demo", "--date", "ontem"}, "não é"},
  };
  for (const Case& c : cases) {
    Words words = {"init", "--database", other.string()};
    words.insert(words.end(), c.words.begin(), c.words.end());
    EXPECT_NE(Bad(words).find(c.message), std::string::npos) << c.words.back();
    EXPECT_FALSE(fs::exists(other)) << c.words.back();
  }
  EXPECT_NE(
      Bad({"init", "--database", (folder_.Path() / "no" / "x.fdb").string()}).find("A pasta do arquivo"),
      std::string::npos);
}

TEST_F(CommandsTest, DemoEndsOnItsDateForItsCompanies) {
  const fs::path file = folder_.Path() / "demo.fdb";
  Good({"init", "--demo", "--date", "2025-03-31", "--companies", "_005,_006", "--database", file.string()});
  const auto db = Attachment::Open(file.string());
  EXPECT_EQ(CompanySuffixes(*db), (std::vector<std::string>{"_005", "_006"}));
  EXPECT_EQ(db->Scalar("SELECT MAX(DT_LAN) FROM CONTACOR_005").AsDate().Neutral().substr(0, 7), "2025-03");
  EXPECT_GT(db->Scalar("SELECT COUNT(*) FROM CONTACOR_006").AsInteger(), 100);
}

TEST_F(CommandsTest, DemoFilesReplaceNone) {
  const fs::path folder = folder_.Path() / "cartoes";
  fs::create_directory(folder);
  const auto files = [&](const fs::path& where, const std::string& company) {
    return Words{"demo", "files", where.string(), "--company", company};
  };
  const std::string told = Good(files(folder, "_001"));
  EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 14);
  EXPECT_NE(told.find("\nGETNET_PAGTOS.csv\tGetnet\tConta Corrente\tbanco 953\t"), std::string::npos) << told;
  EXPECT_NE(told.find("\nSTONE.xlsx\tStone\tVenda\tsem banco\t"), std::string::npos) << told;

  Good({"company", "add", "_003", "Sem vendas"});
  const fs::path other = folder_.Path() / "outra", taken = other / "YAPAY.xlsx";
  fs::create_directory(other);
  std::ofstream(taken) << "meu";
  struct Case {
    fs::path where;
    const char *company, *message;
  };
  const Case cases[] = {
      {folder, "_002", "CIELO_EDI_VENDAS.txt\" já existe e não é substituído."},
      {other, "_001", "YAPAY.xlsx\" já existe e não é substituído."},
      {taken, "_001", "não existe."},
      {folder_.Path() / "no", "_001", "A pasta do arquivo \""},
      {other, "_003", "A empresa _003 não tem vendas ou pedidos da Cielo."},
      {other, "_009", "A empresa _009 não existe."},
  };
  for (const Case& c : cases) {
    EXPECT_NE(Bad(files(c.where, c.company)).find(c.message), std::string::npos) << c.message;
    EXPECT_EQ(std::distance(fs::directory_iterator(other), {}), 1) << c.message;
    EXPECT_EQ(fs::file_size(taken), 3u);
  }
}

TEST_F(CommandsTest, UsersAndRights) {
  EXPECT_EQ(Good({"user", "add", "Bia"}, "mesa escura 2026\n"), "Usuário Bia criado.\n");
  EXPECT_NE(Bad({"user", "add", "BIA"}, "mesa escura 2026\n").find("já existe"), std::string::npos);
  EXPECT_NE(Bad({"user", "add", "rui"}, "curta\n"), "");
  EXPECT_NE(Bad({"user", "add", "rui"}, ""), "");
  EXPECT_NE(Bad({"user", "add", ""}, "mesa escura 2026\n"), "");
  EXPECT_EQ(Good({"user", "password", "bia"}, "outra mesa 2026\n"), "Senha trocada.\n");
  EXPECT_NE(Bad({"user", "password", "ninguem"}, "outra mesa 2026\n").find("não existe"), std::string::npos);

  // Without the right neither opens; each kind lets its own buttons work.
  const std::string open = "{\"do\":\"open\",\"class\":\"TfmCC\"}\n";
  const std::string add =
      open + "{\"do\":\"click\",\"control\":\"BitBtn1\"}\n{\"do\":\"answer\",\"value\":\"ok\"}\n";
  EXPECT_EQ(Drive(open, "bia"), "A tela \"TfmCC\" não está disponível.\n");
  EXPECT_EQ(Good({"user", "grant", "bia", "TfmCC", "E"}), "Direito dado.\n");
  EXPECT_EQ(Drive(add, "bia"), "Usuário sem permissão para esta operação.\n");
  EXPECT_EQ(Good({"user", "grant", "bia", "TfmCC", "AE"}), "Direito dado.\n");
  EXPECT_EQ(Drive(open + "{\"do\":\"click\",\"control\":\"BitBtn1\"}\n", "bia"), "");
  EXPECT_NE(Good({"user", "list"}).find("Bia\tBia\tusuário\tativo\tTfmCC:AE\n"), std::string::npos)
      << Good({"user", "list"});
  EXPECT_NE(Bad({"user", "grant", "bia", "TfmCC", "Z"}), "");
  EXPECT_NE(Bad({"user", "grant", "ninguem", "TfmCC", "A"}).find("não existe"), std::string::npos);
  EXPECT_EQ(Good({"user", "revoke", "bia", "TfmCC"}), "Direito retirado.\n");
  EXPECT_NE(Bad({"user", "revoke", "bia", "TfmCC"}).find("não tem direitos"), std::string::npos);
  EXPECT_EQ(Good({"user", "grant", "bia", "*", "*"}), "Direito dado.\n");
  EXPECT_EQ(Drive(open, "bia"), "");

  EXPECT_EQ(Good({"user", "remove", "bia"}), "Usuário bia removido.\n");
  EXPECT_NE(Bad({"user", "remove", "bia"}).find("não existe"), std::string::npos);
  EXPECT_NE(Bad({"drive", "--user", "bia"}).find("não existe"), std::string::npos);
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE TEXTO CONTAINING 'mesa'"), "0");
}

TEST_F(CommandsTest, Parameters) {
  EXPECT_EQ(Good({"param", "get", "FIN", "30"}), "N\n");
  EXPECT_EQ(Good({"param", "set", "FIN", "30", "S", "--company", "_002"}), "");
  EXPECT_EQ(Good({"param", "get", "FIN", "30"}), "N\n");
  EXPECT_EQ(Good({"param", "get", "FIN", "30", "--company", "_002"}), "S\n");
  EXPECT_EQ(Good({"param", "get", "FIN", "30", "--company", "_001"}), "N\n");
  EXPECT_EQ(Good({"param", "set", "FIN", "77", "O'Brien {}"}), "");
  const std::string list = Good({"param", "list"});
  EXPECT_NE(list.find("todas\tFIN\t77\tO'Brien {}\n"), std::string::npos) << list;
  EXPECT_NE(list.find("_002\tFIN\t30\tS\n"), std::string::npos);
  EXPECT_EQ(Good({"param", "list", "--company", "_002"}).find("todas"), std::string::npos);
  EXPECT_EQ(Bad({"param", "set", "FIN", "30", "S", "--company", "_009"}), "A empresa _009 não existe.");
  EXPECT_NE(Bad({"param", "set", std::string(100, 'G'), "30", "S"}), "");
  EXPECT_NE(Bad({"param", "set", "FIN", "30", std::string(5000, 'V')}), "");
}

TEST_F(CommandsTest, ClosedPeriodsHoldAtTheDoor) {
  const std::string post =
      "{\"do\":\"open\",\"class\":\"TfmCC\"}\n{\"do\":\"click\",\"control\":\"BitBtn1\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtConta\",\"value\":\"10250-1\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtNumDoc\",\"value\":\"FECHADO\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtTipo\",\"value\":\"3104\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtHis\",\"value\":\"019\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtValor\",\"value\":\"1,00\"}\n"
      "{\"do\":\"click\",\"control\":\"SpeedButton2\"}\n";
  EXPECT_EQ(Good({"lock", "set", "--account", "10250-1", "--until", "30/11/2026"}), "");
  EXPECT_EQ(Good({"lock", "set", "--cash", "--until", "2026-10-31"}), "");
  EXPECT_EQ(Good({"lock", "list"}), "_001\tconta 10250-1\taté 30/11/2026\n_001\tcaixa\taté 31/10/2026\n");
  EXPECT_EQ(Good({"lock", "list", "--company", "_002"}), "");
  EXPECT_EQ(Drive(post), "Período fechado até 30/11/2026 para a conta 10250-1.\n");
  EXPECT_EQ(Good({"lock", "clear", "--account", "10250-1"}), "");
  EXPECT_EQ(Drive(post), "");
  EXPECT_EQ(Good({"lock", "set", "--cash", "--until", "20/11/2026"}), "");
  EXPECT_EQ(Drive(post), "Período do caixa fechado até 20/11/2026.\n");
  EXPECT_EQ(Good({"lock", "clear", "--cash"}), "");
  EXPECT_EQ(Bad({"lock", "clear", "--cash"}), "Não há período fechado.");

  EXPECT_EQ(Bad({"lock", "set", "--until", "20/11/2026"}), "Informe --account CONTA ou --cash.");
  EXPECT_EQ(Bad({"lock", "set", "--account", "x'y", "--until", "20/11/2026"}), "A conta x'y não existe.");
  for (const char* date : {"31/02/2026", "2026-13-01", "amanhã", ""})
    EXPECT_NE(Bad({"lock", "set", "--cash", "--until", date}), "") << date;
  EXPECT_EQ(Bad({"lock", "set", "--cash", "--until", "20/11/2026", "--company", "_9"}),
            "A empresa _9 não existe.");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CONTACOR_001 WHERE DOCTO = 'FECHADO'"), "1");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE AREA = 'BLOQUEIO'"), "5");
}

TEST_F(CommandsTest, HolidaysAndCompanies) {
  EXPECT_EQ(Good({"holiday", "add", "24/06/2026", "São João"}), "");
  EXPECT_EQ(Good({"holiday", "add", "2026-06-25", "Padroeira", "--company", "_002"}), "");
  EXPECT_EQ(Sql("SELECT EMP_PAT, DATA, NOME FROM FERIADO WHERE EXTRACT(MONTH FROM DATA) = 6 ORDER BY DATA"),
            "|2026-06-24|São João;_002|2026-06-25|Padroeira");
  EXPECT_NE(Bad({"holiday", "add", "31/06/2026", "Nenhum"}), "");
  EXPECT_NE(Bad({"holiday", "add", "24/06/2026", ""}), "");
  EXPECT_EQ(Bad({"holiday", "add", "24/06/2026", "X", "--company", "_009"}), "A empresa _009 não existe.");

  EXPECT_EQ(Good({"company", "add", "_003", "Terceira D'Oeste"}), "Empresa _003 criada.\n");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CONTACOR_003"), "0");
  EXPECT_NE(Bad({"company", "add", "_003", "Outra"}).find("já existe"), std::string::npos);
  for (const char* suffix : {"003", "_3", "_0031", "_a01", "", "_00'"})
    EXPECT_NE(Bad({"company", "add", suffix, "Outra"}).find("O sufixo da empresa"), std::string::npos)
        << suffix;
  EXPECT_NE(Bad({"company", "add", "_004", " "}).find("Informe o nome"), std::string::npos);
  EXPECT_NE(Bad({"company", "add", "_004", std::string(41, 'X')}).find("40 caracteres"), std::string::npos);
  const Finished drive = Run({"drive", "--user", "ana", "--company", "_003", "--data", Files()},
                             "{\"do\":\"open\",\"class\":\"TfmCC\"}\n");
  EXPECT_EQ(drive.status, 0) << drive.err;
  EXPECT_NE(drive.out.find("\"on\":\"screen\""), std::string::npos);
  const std::string other = Bad({"drive", "--user", "ana", "--company", "_009"});
  EXPECT_NE(other.find("A empresa \"_009\" não existe."), std::string::npos) << other;
}

TEST_F(CommandsTest, CheckTellsContradictionsAndChangesNothing) {
  EXPECT_EQ(Good({"check"}), "Nenhuma contradição.\n");
  DeskTest::Run(
      "UPDATE CONTACOR_002 SET CONTA = 'SUMIDA' WHERE LANCAMENTO = (SELECT MIN(LANCAMENTO) FROM "
      "CONTACOR_002)");
  const std::string before = Sql("SELECT COUNT(*), SUM(VALOR) FROM CONTACOR_002");
  const Finished finished = Run({"check"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.err, "");
  EXPECT_TRUE(finished.out.starts_with("Empresa _002, ")) << finished.out;
  EXPECT_NE(finished.out.find("SUMIDA"), std::string::npos);
  EXPECT_EQ(Sql("SELECT COUNT(*), SUM(VALOR) FROM CONTACOR_002"), before);
  EXPECT_EQ(Run({"check"}).out, finished.out);

  // The engine's own structure comes first: a data page of the table that says that it is something else.
  const int64_t table =
      std::stoll(Sql("SELECT RDB$RELATION_ID FROM RDB$RELATIONS WHERE RDB$RELATION_NAME = 'CONTACOR_002'"));
  LetGo();
  constexpr std::streamoff kPage = 16384, kTable = 20;
  constexpr char kData = 5, kIndex = 7;
  std::fstream file(database_, std::ios::in | std::ios::out | std::ios::binary);
  for (std::streamoff at = 0;; at += kPage) {
    std::array<unsigned char, kTable + 2> head;
    ASSERT_TRUE(file.seekg(at).read(reinterpret_cast<char*>(head.data()), head.size()));
    if (head[0] != kData || head[kTable] + 256 * head[kTable + 1] != table) continue;
    file.seekp(at).put(kIndex);
    break;
  }
  file.close();
  const Finished damaged = Run({"check"});
  EXPECT_EQ(damaged.status, 2) << damaged.err;
  EXPECT_TRUE(damaged.out.starts_with("Tabela CONTACOR_002: uma página está danificada (Page "))
      << damaged.out;
  EXPECT_NE(damaged.out.find("Os dados não foram conferidos."), std::string::npos) << damaged.out;
}

TEST_F(CommandsTest, UpgradeBringsAnOlderOneUp) {
  EXPECT_EQ(Good({"upgrade"}), "O banco já está na versão " + std::to_string(kSchemaVersion) + ".\n");
  for (const char* table : {"PREFERENCIA", "ARQUIVO_EXTRATO_001", "ARQUIVO_EXTRATO_002"})
    Ddl("DROP TABLE " + std::string(table));
  DeskTest::Run("UPDATE VERSAO_ESQUEMA SET VERSAO = 1");
  EXPECT_NE(Bad({"check"}).find("Execute \"orvcc upgrade\"."), std::string::npos);
  EXPECT_NE(Bad({"drive", "--user", "ana"}).find("Execute \"orvcc upgrade\"."), std::string::npos);
  EXPECT_EQ(Good({"upgrade"}), "O banco está agora na versão " + std::to_string(kSchemaVersion) + ".\n");
  EXPECT_EQ(Drive("{\"do\":\"open\",\"class\":\"TfmCC\"}\n"), "");
  EXPECT_NE(Bad({"upgrade", "--database", (folder_.Path() / "no.fdb").string()}).find("não existe"),
            std::string::npos);
}

TEST_F(CommandsTest, FavouriteReportsAreWrittenWhole) {
  const std::string made = Drive(
      "{\"do\":\"open\",\"class\":\"TfmRelCC\"}\n"
      "{\"do\":\"set\",\"control\":\"RelConta\",\"value\":\"10250-1\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtDataDe\",\"value\":\"01/11/2026\"}\n"
      "{\"do\":\"set\",\"control\":\"edtDataAte\",\"value\":\"30/11/2026\"}\n"
      "{\"do\":\"click\",\"control\":\"BitBtn29\"}\n{\"do\":\"click\",\"control\":\"BitBtn33\"}\n"
      "{\"do\":\"favourites\",\"act\":\"save\",\"report\":1,\"name\":\"Mês\",\"shared\":true}\n");
  ASSERT_EQ(made, "");
  const auto report = [&](Words more, const std::string& user = "ana", const char* today = kToday) {
    Words words{"report", "--user", user, "--today", today, "--data", Files()};
    words.insert(words.end(), more.begin(), more.end());
    return Run(words);
  };
  EXPECT_EQ(report({"--list"}).out.substr(0, 5), "Mês\t");
  const fs::path folder = folder_.Path() / "out";
  fs::create_directory(folder);
  const auto to = [&](const char* name) { return (folder / name).string(); };
  const std::pair<const char*, const char*> forms[] = {{"pdf", "%PDF-"},
                                                       {"html", "<!doctype"},
                                                       {"csv", "\xEF\xBB\xBFLan"},
                                                       {"xlsx", "PK"},
                                                       {"txt", "Empresa"}};
  for (const auto& [format, begins] : forms) {
    const Finished finished = report({"mês", "--format", format, "--out", to(format)});
    EXPECT_EQ(finished.status, 0) << finished.err;
    std::ifstream in(to(format), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    EXPECT_TRUE(bytes.starts_with(begins) || format == std::string("txt")) << bytes.substr(0, 40);
    EXPECT_GT(bytes.size(), 1000U) << format;
  }
  // The days are those of the day of the run.
  EXPECT_NE(report({"Mês", "--format", "html", "--out", to("outubro")}, "ana", "2026-10-15").status, 1);
  std::ifstream in(to("outubro"));
  EXPECT_NE(std::string(std::istreambuf_iterator<char>(in), {}).find("31/10/2026"), std::string::npos);

  struct Case {
    Words words;
    int status;
    const char* text;
    const char *user = "ana", *today = kToday;
  };
  const Case cases[] = {
      {{"Nenhum", "--out", to("x")}, 2, "Não há relatório favorito com o nome \"Nenhum\"."},
      {{"Mês", "--format", "doc", "--out", to("x")}, 2, "O formato \"doc\" não existe."},
      {{"Mês", "--out", to("x")}, 3, "não tem linhas", "ana", "2031-05-05"},
      {{"Mês", "--out", to("pdf")}, 4, "já existe e não é substituído"},
      {{"Mês", "--out", to("nada/x")}, 4, "não existe"},
      {{"Mês", "--out", to("x")}, 5, "O usuário leo não pode abrir a tela", "leo"},
  };
  const auto before = std::distance(fs::directory_iterator(folder), {});
  for (const Case& one : cases) {
    const Finished finished = report(one.words, one.user, one.today);
    EXPECT_EQ(finished.status, one.status) << finished.err;
    EXPECT_NE(finished.err.find(one.text), std::string::npos) << finished.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), before) << one.text;
  }
  EXPECT_EQ(Run({"report", "--user", "ana"}).err.substr(0, 19), "orvcc: Falta nome.\n");
}

TEST_F(CommandsTest, BackupComesBackWhole) {
  const fs::path copy = folder_.Path() / "copy.fbk";
  EXPECT_EQ(Good({"backup", copy.string()}), "Cópia gravada em " + copy.string() + ".\n");
  EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_NE(Bad({"backup", copy.string()}).find("já existe e não é substituído"), std::string::npos);
  EXPECT_NE(Bad({"backup", (folder_.Path() / "no" / "x.fbk").string()}), "");
  const fs::path restored = folder_.Path() / "restored.fdb";
  const Words restore = {"restore", copy.string(), "--database", restored.string()};
  EXPECT_EQ(Good(restore), "Banco criado em " + restored.string() + ".\n");
  EXPECT_NE(Bad(restore).find("já existe"), std::string::npos);
  // What is cut short or is no backup ends, and leaves nothing.
  std::ifstream in(copy, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(in), {});
  const fs::path folder = folder_.Path() / "cut";
  fs::create_directory(folder);
  const std::string cuts[] = {"", bytes.substr(0, bytes.size() / 2), bytes.substr(0, bytes.size() - 600),
                              std::string(3000, 'x')};
  for (const std::string& cut : cuts) {
    std::ofstream(folder / "cut.fbk", std::ios::binary) << cut;
    EXPECT_NE(Bad({"restore", (folder / "cut.fbk").string(), "--database", (folder / "cut.fdb").string()})
                  .find("não é um backup inteiro"),
              std::string::npos)
        << cut.size();
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << cut.size();
  }
  const std::string rows = Sql("SELECT COUNT(*), SUM(VALOR) FROM CONTACOR_001");
  LetGo();
  database_ = restored;
  EXPECT_EQ(Sql("SELECT COUNT(*), SUM(VALOR) FROM CONTACOR_001"), rows);
  EXPECT_EQ(Drive("{\"do\":\"open\",\"class\":\"TfmCC\"}\n"), "");
  // A desk at work in this process holds the file: the other program is told what to do.
  Desk desk(database_);
  RunOptions options;
  options.env["ORVCC_DATABASE"] = database_.string();
  const Finished held = RunOrvcc({"backup", (folder_.Path() / "second.fbk").string()}, options);
  EXPECT_GT(held.status, 0);
  EXPECT_NE(held.err.find("em uso por outro programa"), std::string::npos) << held.err;
  EXPECT_FALSE(fs::exists(folder_.Path() / "second.fbk"));
  // In the desk's own process a backup runs beside the sessions.
  Backup(database_.string(), (folder_.Path() / "third.fbk").string());
  EXPECT_TRUE(fs::exists(folder_.Path() / "third.fbk"));
}

TEST_F(CommandsTest, DriveGoesOnAfterABadLine) {
  const std::string script =
      "not json\n"
      "{\"do\":\"open\",\"class\":\"TfmCC\"}\n"
      "{\"do\":\"set\",\"control\":\"EdtObs\",\"value\":\"\xFF\"}\n"
      "\n"
      "{\"do\":\"click\",\"control\":\"btnConsulta\"}\n"
      "[1,\n"
      "{\"do\":\"choose\"}\n"
      "{\"do\":\"close\"}";
  const Finished finished = Run({"drive", "--user", "ana", "--data", Files()}, script);
  EXPECT_EQ(finished.status, 1);
  // Each line but the empty one has one end of its own, which tells how the desk stands.
  std::string ends;
  std::size_t from = 0;
  for (std::size_t end = 0; (end = finished.out.find('\n', from)) != std::string::npos; from = end + 1) {
    const Json out = Json::Parse(std::string_view(finished.out).substr(from, end - from));
    const std::string on = out["on"].String();
    if (on == "idle" || on == "error") ends += on + " ";
    if (on == "waiting") ends += on + "-" + out["for"].String() + " ";
  }
  EXPECT_EQ(ends, "error idle idle error idle waiting-lookup error waiting-lookup idle idle ");

  EXPECT_EQ(Run({"drive", "--user", "ana", "--data", Files()}, "").status, 0);
  EXPECT_NE(Bad({"drive"}).find("Falta --user."), std::string::npos);
  for (const char* today : {"20/11/2026", "2026-02-30", "x"})
    EXPECT_NE(Bad({"drive", "--user", "ana", "--today", today}), "") << today;
  // Messages that were left open are no failure; what they waited for is undone.
  EXPECT_EQ(Drive("{\"do\":\"open\",\"class\":\"TfmCC\"}\n{\"do\":\"click\",\"control\":\"btnConsulta\"}\n"),
            "");
}

TEST_F(CommandsTest, AuditShowsTheLatestLines) {
  Good({"lock", "set", "--cash", "--until", "31/01/2026"});
  Good({"lock", "clear", "--cash"});
  const std::string last = Good({"audit", "--last", "1"});
  EXPECT_EQ(std::count(last.begin(), last.end(), '\n'), 1);
  EXPECT_NE(last.find("PERIODO ABERTO CAIXA"), std::string::npos) << last;
  const std::string both = Good({"audit", "--last", "2"});
  EXPECT_LT(both.find("PERIODO FECHADO ATE 31/01/2026 CAIXA"), both.find("PERIODO ABERTO CAIXA"));
}

}  // namespace
}  // namespace orv::test
