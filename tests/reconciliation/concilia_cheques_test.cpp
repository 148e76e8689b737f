// The workbench: a bank's return file of cheques.
#include <filesystem>

#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

class ReturnTest : public ConciliaTest {
 protected:
  ReturnTest() { Run("DELETE FROM RECEBERB_001"); }

  // A pending movement that a title held as a cheque brought about.
  void Title(const std::string& lancto, const std::string& cheque, const std::string& banco = "341") {
    Put(Movimento{.lancamento = lancto, .operacao = "+"});
    Put(Receber{.numero = "T" + lancto,
                .numero_ch = cheque,
                .conta_ch = "12345-6",
                .agencia_ch = "0012",
                .banco_ch = banco});
    Settle(lancto, lancto);
  }
  void Settle(const std::string& title, const std::string& lancto) {
    Put(Receberb{.numero = "T" + title, .lancamento = lancto});
  }
  // A line in the columns that POSICAO gives to bank 901.
  static std::string Cleared(const std::string& cheque, const std::string& data,
                             const std::string& banco = "341") {
    return "1" + banco + "0012" + "12345-6   " + cheque + data + " anything else\r\n";
  }
  static std::string File(const std::string& lines) { return "0HEADER\r\n" + lines + "9TRAILER\r\n"; }

  // Loads a file; what the desk said.
  std::string Load(Desk& desk, const std::string& bytes) {
    desk.Set({{"EdtCam", Written("cheques.ret", bytes)}, {"EdtArq", ""}});
    const std::string said = desk.Press("BitBtn6");
    while (desk.End() == "waiting answer") desk.Answer("ok");
    return said;
  }
  // What is ticked, with its day.
  static std::string Matched(Desk& desk) {
    return desk.Column("TbArquivo", "Lancto") + " / " + desk.Column("TbArquivo", "Dt_Comp");
  }
  static void Begin(Desk& desk) {
    desk.Open("TFmConcilia");
    desk.Page("TabSheet2");
    desk.Set("EdtContaArq", kConta);
  }
};

constexpr const char* kLoaded = "Arquivo Carregado Com Sucesso.";

TEST_F(ReturnTest, MarksWhatTheFileNames) {
  Title("A1", "000101");
  Title("A2", "000102");
  Title("A3", "000103");
  Title("A4", "000104");
  Title("A5", "000101", "237");
  // Of a title's settlements the first one counts, also where its movement isn't pending here.
  Run("DELETE FROM RECEBERB_001 WHERE NUMERO = 'TA4'");
  Settle("A4", "ZZ");
  Settle("A4", "A4");
  Put(Movimento{.lancamento = "B1", .operacao = "+"});
  Desk desk(database_);
  Begin(desk);
  EXPECT_NE(desk.Text("EdtDescContaArq"), "");
  EXPECT_EQ(desk.Text("EdtBancoArq"), "901");
  const std::string file =
      File(Cleared("000101", "20261120") + Cleared("000102", "20261121") + Cleared("000104", "20261120") +
           Cleared("000999", "not read") + "\r\n1\r\n" + Cleared("000103", "20261122"));
  EXPECT_EQ(Load(desk, file), kLoaded);
  EXPECT_EQ(Matched(desk), "A1 A2 A3 / 2026-11-20 2026-11-21 2026-11-22");
  desk.Set("CbDias", "true");
  EXPECT_EQ(Load(desk, file), kLoaded);
  // A Friday, a Saturday, a Sunday.
  EXPECT_EQ(Matched(desk), "A1 A2 A3 / 2026-11-23 2026-11-23 2026-11-23");
  // The first line and the last are never read.
  EXPECT_EQ(Load(desk, Cleared("000101", "20261120") + Cleared("000102", "20261120")), kLoaded);
  EXPECT_EQ(Load(desk, ""), kLoaded);
  EXPECT_EQ(Matched(desk), " / ");
  // Out of the period nothing is pending.
  desk.Set({{"DtIniArq", "10/11/2026"}, {"DtFimArq", "11/11/2026"}});
  EXPECT_EQ(Load(desk, file), kLoaded);
  EXPECT_EQ(Matched(desk), " / ");
}

TEST_F(ReturnTest, ConfirmsWhatIsTicked) {
  Title("A1", "000101");
  Title("A2", "000102");
  Title("A3", "000103");
  Put(Cheque{.chave = "A1", .numero = "101"});
  // The number stands on two accounts.
  Put(Movimento{.lancamento = "A1", .conta = kOutraConta});
  Desk desk(database_);
  Begin(desk);
  const std::string file =
      File(Cleared("000101", "20261118") + Cleared("000102", "20261118") + Cleared("000103", "20261118"));
  Load(desk, file);
  desk.Cell("OrvDBGrid3", 1, "Compensar", "false");
  desk.Cell("OrvDBGrid3", 0, "Dt_Comp", "");
  const std::string before = All();
  // What another account's closed period holds is left, and told on the page.
  Put(Bloqueio{.tipo = "CT", .conta = kOutraConta, .ate = "11/10/2026", .emp_pat = "_001"});
  EXPECT_EQ(desk.Told("BitBtn10"), "Informe a data de compensação do lançamento A1.");
  EXPECT_EQ(All(), before);
  desk.Cell("OrvDBGrid3", 0, "Dt_Comp", "19/11/2026");
  const auto confirmed = [&] {
    EXPECT_EQ(desk.Told("BitBtn10"), "Conciliação concluída com sucesso!");
    return desk.Caption("LbRetorno");
  };
  EXPECT_EQ(confirmed(), "Não compensados, pois mudariam um período fechado: A1.");
  EXPECT_EQ(Movements(), "A1|S||2026-11-10;A1|S||2026-11-10;A2|S||2026-11-10;A3|N||2026-11-18");
  Run("DELETE FROM BLOQUEIO");
  EXPECT_EQ(confirmed(), "");
  const std::string left = "A1|N||2026-11-19;A1|N||2026-11-19;A2|S||2026-11-10;A3|N||2026-11-18/";
  EXPECT_EQ(All(), left + "/A1|P|-//");
  // Once more changes nothing, closed or not.
  Put(Bloqueio{.tipo = "CX", .conta = "", .ate = "11/30/2026", .emp_pat = "_001"});
  EXPECT_EQ(confirmed(), "");
  Run("DELETE FROM BLOQUEIO");
  EXPECT_EQ(All(), left + "/A1|P|-//");
  // A day that was wrong is put right.
  desk.Cell("OrvDBGrid3", 0, "Dt_Comp", "20/11/2026");
  EXPECT_EQ(confirmed(), "");
  EXPECT_TRUE(All().starts_with("A1|N||2026-11-20;A1|N||2026-11-20;A2|S|")) << All();

  // Another user was faster.
  Run("UPDATE CONTACOR_001 SET PENDENTE = 'S'");
  Load(desk, file);
  Run("UPDATE CONTACOR_001 SET PENDENTE = 'N', LANC_CON = '000007' WHERE LANCAMENTO = 'A3'");
  const std::string theirs = All();
  desk.Click("BitBtn10");
  EXPECT_EQ(desk.Messages(),
            "error: Outro usuário alterou ou conciliou o lançamento A3 depois da carga. Nada foi gravado, e "
            "as marcações continuam na tela.");
  EXPECT_EQ(All(), theirs);
  EXPECT_TRUE(Matched(desk).starts_with("A1 A2 A3 /"));
}

TEST_F(ReturnTest, HostileFiles) {
  Title("A1", "000101");
  Title("A2", "000102");
  Desk desk(database_, At{"TFmConcilia"});
  desk.Page("TabSheet2");
  // What isn't the user's own is as what isn't there.
  Written("outro.ret", File(""));
  for (const auto& [folder, file] : {std::pair<std::string, const char*>{"/no/such/", "file"},
                                     {folder_.Path().string() + "/", "outro.ret"},
                                     {folder_.Path().string(), ""},
                                     {".", ""},
                                     {"/etc/", "passwd"}}) {
    desk.Set({{"EdtCam", folder}, {"EdtArq", file}});
    EXPECT_EQ(desk.Press("BitBtn6"), "Arquivo não encontrado.") << folder << file;
    desk.Answer("ok");
  }
  EXPECT_EQ(Load(desk, ""), "Conta não encontrada.");
  desk.Set("EdtContaArq", kConta);

  struct Case {
    std::string bytes;
    std::string said;
    std::string matched;
  };
  const std::string first = Cleared("000101", "20261118");
  const auto date = [&](const char* text) {
    return Case{File(first + Cleared("000102", text)),
                "error: \"" + std::string(Trim(text)) + "\" não é uma data no formato AAAAMMDD.",
                "A1 A2 / 2026-11-18 -"};
  };
  const Case cases[] = {
      {File(first), kLoaded, "A1 / 2026-11-18"},
      date("20261131"),
      date("2026111 "),
      date("DDMMAAAA"),
      date("00010101"),
      date("        "),
      {std::string("0\n\0\n9\n", 6), "O arquivo não é um texto: nenhuma linha foi lida.", ""},
      {"\xFF\xFE" + File(first),
       "O arquivo está em UTF-16. Grave-o como UTF-8 ou Windows-1252 e carregue-o de novo.", ""},
      {File(Cleared("'; --x", "20261118") + first + Cleared("\xE7\xE3\xF5\xFF\xC3\xC3", "20261118")), kLoaded,
       "A1 / 2026-11-18"},
      {File(std::string(200'001, '\n')), "O arquivo tem linhas demais: o limite é de 200.000.", ""},
      {File(first + std::string(1 << 20, 'X') + "\n" + first), kLoaded, "A1 / 2026-11-18"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.said);
    const std::string before = Matched(desk);
    EXPECT_EQ(Load(desk, c.bytes), c.said);
    // A file that isn't read leaves the list as it was.
    EXPECT_EQ(Matched(desk), c.matched.empty() ? before : c.matched);
  }
  // A file too large isn't read at all.
  std::filesystem::resize_file(folder_.Path() / "cheques.ret", std::uintmax_t{65} << 20);
  EXPECT_EQ(desk.Told("BitBtn6"), "O arquivo é grande demais: o limite é de 64 MB.");
  EXPECT_EQ(Movements(), "A1|S||2026-11-10;A2|S||2026-11-10");
}

}  // namespace
}  // namespace orv::test
