// The readers of bank statements over the files in files/, each named after what is odd in it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <set>

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

// Of every file: its lines, and what else it tells.
TEST(OfxTest, ReadsWhatBanksWrite) {
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_FILES))
    if (entry.path().extension() == ".ofx") files.insert(entry.path().filename());
  std::string all;
  for (const std::string name : files) {
    Taken taken;
    OfxSummary summary;
    all += "##### " + name;
    try {
      const std::string text = Read(name);
      all += ", bank " + OfxBank(text).value_or("none") + "\n";
      ReadOfx(text, {taken.Sink(), [&](Date day) { all += "made " + day.Neutral() + "\n"; }}, summary);
    } catch (const UserError& e) {
      taken.text += std::string("! ") + e.what() + "\n";
    }
    all += taken.text;
    if (const auto odd = summary.unfinished + summary.unbegun + summary.unread_amounts; odd > 0)
      all += std::to_string(summary.unfinished) + " unfinished, " + std::to_string(summary.unbegun) +
             " unbegun, " + std::to_string(summary.unread_amounts) + " amounts unread\n";
    // The other party's account in a transfer isn't the statement's.
    for (const std::string& account : summary.accounts) all += "account " + account + "\n";
  }
  ExpectFile(all, ORV_FILES "ofx_read.txt");
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
  std::string all;
  for (const char* name :
       {"fixed_columns.ret", "fixed_1252.ret", "fixed_utf8.ret", "fixed_end_mark.ret", "fixed_bad_date.ret",
        "fixed_bad_amount.ret", "fixed_short_amount.ret", "one_line.ret", "empty.ofx"})
    all += "##### " + std::string(name) + "\n" + ReadTextFile(name, Fixed(), "10250-1") + "\n";
  // What follows the last field goes to it again; the date is read before the account is looked for.
  for (const char* name :
       {"separated.txt", "separated_comma.txt", "separated_ends_with_separator.txt",
        "separated_and_a_plain_line.txt", "separated_bad_date.txt", "separated_bad_date_elsewhere.txt"})
    all += "##### " + std::string(name) + "\n" + ReadTextFile(name, Separated(), "20418-7") + "\n";
  ExpectFile(all, ORV_FILES "text_read.txt");

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
