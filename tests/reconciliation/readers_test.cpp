// The readers of bank statements over the files in files/, each named after what is odd in it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "reconciliation/formats/bank_text.h"
#include "reconciliation/formats/ofx.h"
#include "reconciliation/formats/outside_file.h"
#include "tests/support/desk_test.h"
#include "toolkit/error.h"
#include "toolkit/input_file.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

// Collects the lines as texts: day, amount, side, document, text.
struct Taken {
  std::string text;
  StatementSink Sink() {
    return [this](const StatementLine& s) {
      text += s.dt_cont.Neutral() + "|" + s.valor.Format2() + "|" + std::string(s.operacao) + "|" +
              std::string(s.docto) + "|" + std::string(s.obs) + (s.chave.empty() ? "" : "|") +
              std::string(s.chave) + "\n";
      EXPECT_TRUE(ValidUtf8(s.obs));
    };
  }
};

std::string Read(const std::string& name) {
  return OutsideText(InputFile::Open(AT_FDCWD, ORV_FILES + name, false)->Bytes(kMaxOutsideFile));
}

struct OfxRead {
  std::string lines;
  OfxSummary summary;
  Date server;
};

OfxRead ReadOfxFile(const std::string& name) {
  OfxRead read;
  Taken taken;
  try {
    ReadOfx(Read(name), {taken.Sink(), [&](Date day) { read.server = day; }}, read.summary);
  } catch (const UserError& e) {
    taken.text += std::string("! ") + e.what() + "\n";
  }
  read.lines = taken.text;
  return read;
}

TEST(OfxTest, ReadsWhatBanksWrite) {
  const std::string tarifa = "2026-11-18|10.50|D|000123|TARIFA\n";
  const std::string two = tarifa + "2026-11-19|1500.00|C|000124|DEPÓSITO EM DINHEIRO\n";
  const std::pair<const char*, std::string> cases[] = {
      {"open_tags.ofx", two},
      {"closed_tags.ofx", two},
      {"utf8_declared_1252.ofx", two},
      {"utf8_mark.ofx", two},
      {"latin1.ofx", two},
      {"carriage_returns_only.ofx", two},
      {"1252_declared_utf8.ofx", "2026-11-18|10.50|D|000123|AÇÃO – “FIM” €\n"},
      {"utf8_cut_in_a_letter.ofx",
       "2026-11-18|10.50|D|000123|TRANSFERÊNCIA À VISTA É\n2026-11-18|10.50|D|000123|PAGAMENTO DE AÇÃ\n"},
      {"comma_amounts.ofx", tarifa +
                                "2026-11-18|1234.56|C|000123|TARIFA\n2026-11-18|1234.56|C|000123|TARIFA\n"
                                "2026-11-18|1234567.80|D|000123|TARIFA\n"},
      {"blanks_around.ofx", tarifa + "2026-11-18|7.25|D|5|TARIFA\n"},
      {"amount_unreadable.ofx", "2026-11-18|0.00|C|000123|TARIFA\n2026-11-18|1.00|D|000123|TARIFA\n"},
      {"raw_ampersand.ofx",
       "2026-11-18|10.50|D|000123|SILVA & FILHOS\n2026-11-18|10.50|D|000123|SILVA & FILHOS\n"
       "2026-11-18|10.50|D|000123|A&B;C <X>\n"},
      {"no_checknum.ofx", "2026-11-18|10.50|D||TARIFA\n"},
      {"no_memo.ofx", "2026-11-18|10.50|D|000123|PRIMEIRA\n2026-11-18|10.50|D|000123|\n"},
      {"one_line_a_transaction.ofx", tarifa + "2026-11-19|1500.00|C|000124|DOIS\n"},
      {"all_in_one_line.ofx", tarifa + "2026-11-19|1500.00|C|000124|DOIS < TRES\n"},
      {"type_and_date_in_one_line.ofx", tarifa + "2026-11-18|5.00|C|000123|TARIFA\n"},
      {"tag_in_the_memo.ofx", "2026-11-18|10.50|D|000123|VER <NOTA> ANEXA\n"},
      {"memo_among_tags.ofx", tarifa + "2026-11-18|10.50|D|000123|VER <NOTA> ANEXA\n"},
      {"several_accounts.ofx", tarifa + "2026-11-18|3.00|C|000123|TARIFA\n"},
      {"truncated.ofx", tarifa},
      {"no_date.ofx", tarifa + "! Linha 41 do arquivo: \"\" não é uma data válida.\n"},
      {"bad_date.ofx", tarifa + "! Linha 42 do arquivo: \"20261318\" não é uma data válida.\n"},
      {"bad_server_date.ofx", tarifa},
      {"stray_end.ofx", tarifa + "2026-11-18|2.00|C|000123|TARIFA\n"},
      {"empty.ofx", ""},
  };
  for (const auto& [name, lines] : cases) EXPECT_EQ(ReadOfxFile(name).lines, lines) << name;
}

TEST(OfxTest, TellsWhatElseTheFileHeld) {
  EXPECT_EQ(ReadOfxFile("open_tags.ofx").server, Date(2026, 11, 19));
  EXPECT_TRUE(ReadOfxFile("bad_server_date.ofx").server.Empty());
  EXPECT_EQ(ReadOfxFile("truncated.ofx").summary.unfinished, 1U);
  EXPECT_EQ(ReadOfxFile("stray_end.ofx").summary.unfinished, 1U);
  EXPECT_EQ(ReadOfxFile("stray_end.ofx").summary.unbegun, 1U);
  EXPECT_EQ(ReadOfxFile("amount_unreadable.ofx").summary.unread_amounts, 1U);
  // The other party's account in a transfer isn't the statement's.
  EXPECT_EQ(ReadOfxFile("several_accounts.ofx").summary.accounts,
            (std::vector<std::string>{"330215", "998877"}));
  for (const auto& [name, bank] : {std::pair{"open_tags.ofx", "903"},
                                   {"all_in_one_line.ofx", "903"},
                                   {"blanks_around.ofx", "903"},
                                   {"other_bank.ofx", "341"}}) {
    EXPECT_EQ(OfxBank(Read(name)), bank) << name;
  }
  EXPECT_FALSE(OfxBank(Read("no_bank.ofx")));
}

TEST(OfxTest, AmountsInAnyHand) {
  const std::pair<const char*, const char*> good[] = {
      {"10", "10.0000"},       {"-10.5", "10.5000"},
      {"+.5", "0.5000"},       {"1.234", "1.2340"},
      {"1.2345678", "1.2346"}, {"1.234.567", "1234567.0000"},
      {" -  3,00 ", "3.0000"}, {"99999999999999999999", "922337203685477.5807"},
  };
  for (const auto& [text, amount] : good) EXPECT_EQ(OfxAmount(text).value().Neutral(), amount) << text;
  for (const char* text :
       {"", "-", ".", "1.2.3", "1,23,456.00", "1.234,5.6", "1e5", "--1", "12a", "99999999999999999999x"}) {
    EXPECT_FALSE(OfxAmount(text)) << text;
  }
}

// Fixed columns as bank 901 of the demo has them, separated fields as bank 902.
PositionLayout Fixed() {
  return {"",
          {{"CONTA", 1, 10, ""},
           {"DIG_CONTA", 11, 1, ""},
           {"CHAVE", 12, 10, ""},
           {"IMPORTA", 22, 1, ""},
           {"DOCTO", 23, 10, ""},
           {"DT_CONT", 33, 8, "DDMMAAAA"},
           {"VALOR", 41, 12, ""},
           {"OPERACAO", 53, 1, ""},
           {"OBSERVACAO", 54, 25, ""},
           {"OBSERVACAO2", 79, 20, ""}}};
}
PositionLayout Separated() {
  return {";",
          {{"CONTA", 1, 0, ""},
           {"DT_CONT", 2, 0, "AAAAMMDD"},
           {"DOCTO", 3, 0, ""},
           {"OBSERVACAO", 4, 0, ""},
           {"VALOR", 5, 0, ""},
           {"OPERACAO", 6, 0, ""}}};
}

const std::vector<std::string> kContas = {"10250-1", "20418-7", "33021-5"};

std::string ReadTextFile(const std::string& name, const PositionLayout& layout, const std::string& account) {
  Taken taken;
  BankTextSummary summary;
  try {
    ReadBankText(Read(name), layout, kContas, account, taken.Sink(), summary);
  } catch (const UserError& e) {
    taken.text += std::string("! ") + e.what() + "\n";
  }
  return taken.text + std::to_string(summary.lines) + " of " + std::to_string(summary.read) + ", " +
         std::to_string(summary.other_account) + " of others, " + std::to_string(summary.refused) +
         " refused";
}

TEST(BankTextTest, ReadsLaidOutLines) {
  const std::string deposit = "2026-11-18|123.45|C|DOC1|DEPOSITO. AGENCIA 12|CH00000001\n";
  const std::string accents = "2026-11-18|123.45|C|DOC1|DEPÓSITO À VISTA. AÇÃO|CH00000001\n";
  const std::string one = "1 of 1, 0 of others, 0 refused";
  struct Case {
    const char* file;
    std::string read;
  };
  const Case fixed[] = {
      {"fixed_columns.ret", deposit + "2026-11-18|0.99|D|DOC2|DEPOSITO. |CH00000002\n"
                                      "2026-11-18|123.45|D|DOC3|DEPOSITO. AGENCIA 12|CH3\n"
                                      "3 of 7, 1 of others, 3 refused"},
      {"fixed_1252.ret", accents + one},
      {"fixed_utf8.ret", accents + one},
      {"fixed_end_mark.ret", deposit + one},
      {"fixed_bad_date.ret",
       deposit +
           "! Linha 3 do arquivo: \"31/02/2026\" não é uma data válida.\n1 of 2, 0 of others, 0 refused"},
      {"fixed_bad_amount.ret", deposit + "! Linha 3 do arquivo: \"00000001A3,45\" não é um valor válido.\n"
                                         "1 of 2, 0 of others, 0 refused"},
      {"fixed_short_amount.ret",
       "2026-11-18|0.50|C|DOC1|DEPOSITO. AGENCIA 12|CH00000001\n"
       "! Linha 3 do arquivo: \"1.2,34\" não é um valor válido.\n1 of 2, 0 of others, 0 refused"},
      {"one_line.ret", "0 of 0, 0 of others, 0 refused"},
      {"empty.ofx", "0 of 0, 0 of others, 0 refused"},
  };
  for (const Case& c : fixed) EXPECT_EQ(ReadTextFile(c.file, Fixed(), "10250-1"), c.read) << c.file;

  const Case separated[] = {
      {"separated.txt",
       "2026-11-18|1234.56|D|D1|TARIFA MENSAL\n2026-11-19|1500.00|C|D2|DEPOSITO\n"
       "2026-11-19|0.50|C|D4|SEM CENTAVOS\n3 of 4, 1 of others, 0 refused"},
      {"separated_comma.txt", "2026-11-18|1234.56|C|D1|X\n" + one},
      // What follows the last field goes to it again.
      {"separated_ends_with_separator.txt", "2026-11-18|1.00||D1|X\n" + one},
      {"separated_and_a_plain_line.txt", "2026-11-18|1.00|C|D1|X\n1 of 2, 0 of others, 1 refused"},
      {"separated_bad_date.txt",
       "2026-11-18|1.00|C|D1|X\n! Linha 3 do arquivo: \"99/13/2026\" não é uma data válida.\n"
       "1 of 2, 0 of others, 0 refused"},
      // The date is read before the account is looked for.
      {"separated_bad_date_elsewhere.txt",
       "2026-11-18|1.00|C|D1|X\n! Linha 3 do arquivo: \"99/13/2026\" não é uma data válida.\n"
       "1 of 2, 0 of others, 0 refused"},
  };
  for (const Case& c : separated) EXPECT_EQ(ReadTextFile(c.file, Separated(), "20418-7"), c.read) << c.file;

  // Nothing is of no account, and without a key no line in fixed columns counts.
  EXPECT_TRUE(ReadTextFile("separated.txt", Separated(), "").starts_with("0 of 4"));
  PositionLayout keyless = Fixed();
  keyless.campos.erase(keyless.campos.begin() + 2);
  EXPECT_EQ(ReadTextFile("fixed_columns.ret", keyless, "10250-1"), "0 of 7, 0 of others, 7 refused");
  EXPECT_EQ(ReadTextFile("fixed_columns.ret", {}, "10250-1"), "0 of 7, 0 of others, 7 refused");
}

TEST(BankTextTest, EveryRowTakesOneToken) {
  // An unknown field takes its token; the account's digit and the second text join what stands before.
  const PositionLayout layout{"|",
                              {{"CONTA", 1, 0, ""},
                               {"DIG_CONTA", 2, 0, ""},
                               {"AGENCIA_CH", 3, 0, ""},
                               {"IMPORTA", 4, 0, ""},
                               {"DT_CONT", 5, 0, "DD/MM/AA"},
                               {"VALOR", 6, 0, ""},
                               {"OPERACAO", 7, 0, ""},
                               {"OBSERVACAO", 8, 0, ""},
                               {"OBSERVACAO2", 9, 0, ""}}};
  Taken taken;
  BankTextSummary summary;
  ReadBankText("h\n\"20.418\"|7|AG|*|18/11/26|\" 10.00 \"|+|UM|DOIS|TRES\n", layout, kContas, "20418-7",
               taken.Sink(), summary);
  EXPECT_EQ(taken.text, "2026-11-18|10.00|+||UM. DOIS. TRES\n");
}

TEST(BankTextTest, AccountsAndMasks) {
  const std::vector<std::string> accounts = {"00123-4", "12345-6", "99123-4", "777"};
  const std::pair<const char*, const char*> resolved[] = {
      {"0012345-6", "12345-6"},
      {"123", "00123-4"},
      {"99.123.4", "99123-4"},
      {"77", ""},
      {"7771", "777"},
      {"", ""},
      {"12X45", ""},
      {"555", ""},
      {" 777 ", "777"},
      {"99999999999999999999999999", ""},
  };
  for (const auto& [text, account] : resolved)
    EXPECT_EQ(AccountBook(accounts).Resolve(text), account) << text;

  struct Mask {
    const char *text, *mask, *day;
  };
  for (const Mask& m : {Mask{"20261118", "", "2026-11-18"}, Mask{"181126", "DDMMAA", "2026-11-18"},
                        Mask{"181199", "DDMMAA", "1999-11-18"}, Mask{"18112026", "DDMMAAAA", "2026-11-18"},
                        Mask{"11/18/2026", "MM/DD/AAAA", "2026-11-18"}}) {
    EXPECT_EQ(DateByMask(m.text, m.mask).Neutral(), m.day) << m.text;
  }
  for (const Mask& m : {Mask{"", "", ""}, Mask{"18112026", "XX", ""}, Mask{"1811", "DDMMAAAA", ""},
                        Mask{"1811026", "DDMMAAA", ""}}) {
    EXPECT_THROW(DateByMask(m.text, m.mask), ConversionError) << m.text;
  }
}

TEST(OutsideFileTest, RefusesWhatIsNoText) {
  for (const char* name : {"utf16.ofx", "a_picture.ofx"}) EXPECT_THROW(Read(name), UserError) << name;
  EXPECT_EQ(OutsideText(std::string("A\x01"
                                    "B\fC\tD\r\nE\x1A\0\0",
                                    13)),
            "A B C\tD\r\nE");

  // A file of two gigabytes is refused by its size; a pipe and a folder aren't opened.
  const TempFolder folder;
  const std::string large = folder.Path() / "large.ofx", pipe = folder.Path() / "pipe.ofx";
  std::ofstream(large).close();
  std::filesystem::resize_file(large, std::uintmax_t{2} << 30);
  EXPECT_THROW(InputFile::Open(AT_FDCWD, large, false)->Bytes(kMaxOutsideFile), UserError);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {pipe, folder.Path().string(), std::string("/dev/zero"), std::string()}) {
    EXPECT_FALSE(InputFile::Open(AT_FDCWD, path, true)) << path;
  }
}

}  // namespace
}  // namespace orv::test
