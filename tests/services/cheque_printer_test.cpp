// What goes to the cheque printer.
#include "host/chequeprinter/cheque_printer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/chequeprinter/cheque_page.h"
#include "host/services/extenso.h"
#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

ChequeText Text(int64_t cents) {
  return {Currency::FromCents(cents), AmountInWords(cents), "João d'Ávila & Cia", "São Bento do Sul",
          Date(2026, 3, 5)};
}

TEST(ChequePage, PutsEverythingInItsPlace) {
  EXPECT_EQ(ChequePage(GetChequeModel(1), Text(123456)),
            "\x1B@\r\n" + std::string(58, ' ') + "#1.234,56#\r\n\r\n" + std::string(12, ' ') +
                "(UM MIL DUZENTOS E TRINTA E QUATRO REAIS E CINQUENTA E SEIS***\r\n"
                "  CENTAVOS)" +
                std::string(63, '*') + "\r\n\r\n" + "    Jo\xC6o d'\xB5vila & Cia\r\n\r\n" +
                std::string(30, ' ') + "S\xC6o Bento do Sul, 5 de mar\x87o de 2026\r\n\f");
}

TEST(ChequePage, EveryModelHasRoomForEveryAmount) {
  for (int model = 1; model <= 4; ++model) {
    const ChequeModel& places = GetChequeModel(model);
    if (places.words_width + places.words2_width >= 180) {
      EXPECT_NO_THROW(ChequePage(places, Text(99'999'999'999'999))) << model;
    } else {
      EXPECT_EQ(ErrorOf([&] { ChequePage(places, Text(99'999'999'999'999)); }),
                "O valor por extenso não cabe no cheque.");
    }
    EXPECT_NO_THROW(ChequePage(places, Text(99'999'999))) << model;
    for (int other = 1; other < model; ++other) {
      EXPECT_NE(ChequePage(places, Text(100)), ChequePage(GetChequeModel(other), Text(100)));
    }
  }
}

TEST(ChequePage, ATextCannotCommandThePrinter) {
  EXPECT_EQ(ToCodePage850("a\x1B@\f\r\nb\x7F"), "a@b");
  EXPECT_EQ(ToCodePage850("ÇçÃãÕõÉéÍíÓóÚúÂâÊêÔôÀàÜüº\u20AC\u0160"),
            "\x80\x87\xC7\xC6\xE5\xE4\x90\x82\xD6\xA1\xE0\xA2\xE9\xA3\xB6\x83\xD2\x88\xE2\x93\xB7\x85\x9A\x81"
            "\xA7??");
  EXPECT_EQ(ToCodePage850("x\xC3"), "x?");
}

TEST(ChequePrinter, PrintsToThePortOrSaysWhyNot) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("orvcc-cheque-" + std::to_string(::getpid()));
  ::setenv("ORVCC_CHEQUE_PORT_COM3", file.c_str(), 1);
  ChequePrinter printer([](Currency amount) { return AmountInWords(amount.Cents()); }, SystemChequePort);
  printer.Porta = "COM3";
  printer.Cidade = "Joinville";
  printer.Valor = Currency(100);
  EXPECT_EQ(ErrorOf([&] { printer.ImprimirCheque(); }), "O cheque não tem data.");
  printer.Data = "31/02/2026";
  EXPECT_NE(ErrorOf([&] { printer.ImprimirCheque(); }), "");
  printer.Data = "05/03/2026";
  EXPECT_EQ(ErrorOf([&] { printer.ImprimirCheque(); }), "O cheque não tem favorecido.");
  printer.Nome = "Ana";
  printer.Valor = Currency();
  EXPECT_NE(ErrorOf([&] { printer.ImprimirCheque(); }), "");
  EXPECT_FALSE(std::filesystem::exists(file));

  printer.Valor = Currency(100);
  printer.SetModelo(3);
  printer.SetModelo(9);
  printer.ImprimirCheque();
  std::stringstream sent;
  sent << std::ifstream(file, std::ios::binary).rdbuf();
  EXPECT_EQ(sent.str(), ChequePage(GetChequeModel(3),
                                   {Currency(100), "cem reais", "Ana", "Joinville", Date(2026, 3, 5)}));
  std::filesystem::remove(file);
  ::unsetenv("ORVCC_CHEQUE_PORT_COM3");

  for (const char* port : {"", "COM", "COM0", "LPT1", "COM1/../../x", "COM123"}) {
    EXPECT_EQ(ErrorOf([&] { SystemChequePort(port); }), "A porta \"" + std::string(port) + "\" não existe.");
  }
  EXPECT_EQ(SystemChequePort(" com2 ").path, "/dev/ttyS1");
  EXPECT_NE(ErrorOf([] { SendToPort({"/nonexistent/port", false}, "x"); }), "");
  EXPECT_NE(ErrorOf([] { SendToPort({"/dev/null", false}, "x"); }), "");
}

}  // namespace
}  // namespace orv::test
