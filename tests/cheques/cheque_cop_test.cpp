// Copies of cheques: typed, listed, printed in three ways.
#include <cstdlib>
#include <fstream>

#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

class ChequeCopTest : public DeskTest {
 protected:
  ChequeCopTest() { desk_.Open("TfmChequeCop"); }
  void Include(const char* number, const char* payee, const char* amount) {
    for (const auto& [field, value] : Fields{{"EdtCodBan", "901"},
                                             {"Edit4", number},
                                             {"EdtDesNom", payee},
                                             {"EdtValor", amount},
                                             {"Edit7", "05/03/2026"}})
      desk_.Set(field, value);
    desk_.Click("BitBtn2");
  }
  Desk desk_{database_};
};

TEST_F(ChequeCopTest, ListsWhatIsTypedAndStoresNothing) {
  desk_.Click("BitBtn2");
  EXPECT_EQ(desk_.Messages(), "Nº do cheque inválido.");
  desk_.Answer("ok");
  EXPECT_EQ(desk_.FocusName(), "Edit4");
  desk_.Focus("EdtDesNom");
  EXPECT_EQ(desk_.FocusName(), "Edit4") << "a blank number takes the focus back";
  EXPECT_EQ(desk_.Text("Edit7"), "20/11/2026");
  desk_.Focus("BitBtn9");
  EXPECT_EQ(desk_.FocusName(), "BitBtn9") << "unless the screen is to close";
  desk_.Set("Edit4", "1");
  desk_.Click("BitBtn2");
  EXPECT_EQ(desk_.Messages(), "Credor inválido.");
  desk_.Answer("ok");
  EXPECT_EQ(desk_.FocusName(), "EdtDesNom");
  Include("1", "Ana", "0");
  EXPECT_NE(desk_.Messages(), "") << "no cheque is of nothing";
  Include("12345678", "João", "1234,56");
  desk_.Set("RgTipo", "1");
  Include("7", "João", "1");
  EXPECT_EQ(desk_.Read("tbTemp1", {"NOME", "CHEQUE", "TOTAL", "DIA", "MES", "ANO", "CODBAN"}),
            "João|123456|1234.5600|05|MARCO|2026|901\n"
            "Malharia Serra Azul Ltda|7|1.0000|05|MARCO|2026|901\n");
  desk_.Click("BitBtn1");
  EXPECT_EQ(desk_.Read("tbTemp1", {"CHEQUE"}), "123456\n");
  desk_.Click("BitBtn1");
  desk_.Click("BitBtn1");
  EXPECT_EQ(desk_.Messages(), "") << "nothing is left to delete";
}

TEST_F(ChequeCopTest, PrintsOnPaperAndPrinter) {
  Include("77", "José d'Ávila & Cia", "777777777,77");
  const std::string text = Printed(desk_, "BitBtn8");
  ExpectFile(text, std::string(ORV_FILES) + "TCheque.txt");
  desk_.Set("TpImpressora", "1");
  ExpectFile(Printed(desk_, "BitBtn8"), std::string(ORV_FILES) + "WCheque.html");
  const auto port = folder_.Path() / "porta";
  setenv("ORVCC_CHEQUE_PORT_COM1", port.c_str(), 1);
  desk_.Set("TpImpressora", "2");
  desk_.Click("BitBtn8");
  EXPECT_EQ(desk_.Messages(), "Confirme a impressão do cheque.");
  desk_.Answer("ok");
  unsetenv("ORVCC_CHEQUE_PORT_COM1");
  std::ifstream in(port, std::ios::binary);
  const std::string sent((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(sent.find("#777.777.777,77#"), std::string::npos);
  EXPECT_EQ(desk_.Read("tbTemp1", {"CHEQUE"}), "77\n") << "the list stays";
}

}  // namespace
}  // namespace orv::test
