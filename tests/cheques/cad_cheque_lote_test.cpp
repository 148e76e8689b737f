// A pile of received cheques, read with a bar reader, posted at one go.
#include "tests/cheques/cheque_desk.h"

namespace orv::test {
namespace {

// Bank 341, agency 1234, number 000777, account 005678.
constexpr const char* kBarra = "<34112345<0180007774>900000567890:8";

class LoteTest : public ChequeTest {
 protected:
  LoteTest() {
    desk_.Open("TfmChequePre");
    desk_.Click("BitBtn5");
    desk_.Fill({{"EdtConta", kConta}, {"EdtTipo", "1101"}, {"EdtHis", "005"}});
  }
  void At(const char* verb, int row, const char* column, const char* value) {
    desk_.Do({{"do", verb}, {"control", "DBGrid1"}, {"row", row}, {"column", column}, {"value", value}});
  }
  // What a reader types into the grid's last row, with its Enter; the amount by hand.
  void Read(int row, const std::string& line, const char* amount) {
    desk_.Do({{"do", "append"}, {"control", "DBGrid1"}});
    At("cell", row, "Numero", line.c_str());
    desk_.Do({{"do", "key"}, {"control", "DBGrid1"}, {"row", row}, {"column", "Numero"}, {"key", "Enter"}});
    At("cell", row, "Valor", amount);
  }
  std::string Batch() {
    return desk_.Read("TbCheque", {"Numero", "Banco", "Agencia", "Conta", "Emissao", "Vencto", "Valor"});
  }
  std::string Written() {
    return Sql(
        "SELECT C.NUMERO, C.BANCO, C.CONTA, C.TIPO, C.STATUS, C.CLIENTE, C.FORNECEDOR, C.REPRESENTANTE, "
        "C.OBS, D.DUPLI, D.VALOR, M.DOCTO, M.BANCO, M.CONTA, M.OPERACAO, M.TIPO, M.PENDENTE, M.VALOR, "
        "M.DT_LAN, M.DT_CONT FROM CHEQUE_PRE_001 C INNER JOIN CHEQUE_DUP_001 D ON D.NUMERO = C.NUMERO "
        "INNER JOIN CONTACOR_001 M ON M.LANCAMENTO = C.CHAVE ORDER BY C.CHAVE");
  }
  std::string Count() {
    return Sql(
        "SELECT (SELECT COUNT(*) FROM CHEQUE_PRE_001), (SELECT COUNT(*) FROM CHEQUE_DUP_001), (SELECT "
        "COUNT(*) FROM CONTACOR_001) FROM EMPRESA WHERE EMP_PAT = '_001'");
  }
  Desk desk_{database_};
};

TEST_F(LoteTest, ABarLineTellsAllButTheAmount) {
  const std::string barra(kBarra, 34);
  Read(0, barra, "10,50");
  EXPECT_EQ(desk_.Property("DBGrid1", "selected"), Json("Valor"));
  Read(1, barra + "9", "2");
  Read(2, barra.substr(1), "3");
  EXPECT_EQ(Batch(), "000777|341|1234|005678|2026-11-20|2026-11-20|10.5\n" + barra + "9|-|-|-|-|-|2\n" +
                         barra.substr(1) + "|-|-|-|-|-|3\n");
  desk_.Focus("BitBtn2");
  EXPECT_EQ(desk_.Text("EdtValCheque"), "15,50") << "the row in edit counts when the grid is left";
  desk_.Do({{"do", "delete"}, {"control", "DBGrid1"}, {"row", 1}});
  EXPECT_EQ(desk_.Text("EdtValCheque"), "13,50");
  desk_.Click("BitBtn2");
  EXPECT_EQ(Count(), "0|0|0");
}

TEST_F(LoteTest, AllAreWrittenOrNone) {
  Run("UPDATE HISTCP_001 SET SITUACAO = 'P' WHERE HISTORICO = '005'");
  const std::string barra(kBarra, 34);
  Read(0, barra, "10,50");
  Read(1, barra.substr(1), "3");
  struct Refusal {
    const char *column, *value, *message;
  };
  const auto refused = [&](const std::string& message) {
    desk_.Click("BitBtn1");
    EXPECT_EQ(desk_.Messages(), message);
    desk_.Answer("ok");
    EXPECT_EQ(desk_.Top(), "TFmCadChequeLote") << "what was typed stays";
    EXPECT_EQ(Count(), "0|0|0");
  };
  refused("O número do cheque tem mais de 8 caracteres: " + barra.substr(1) + ".");
  At("cell", 1, "Numero", "888");
  At("cell", 1, "Conta", "12345678901234");
  refused("A conta do cheque 888 tem mais de 13 caracteres.");
  At("cell", 1, "Conta", "77-1");
  At("cell", 1, "Emissao", "19/11/2026");
  refused("Informe a emissão e o vencimento do cheque 888.");
  At("cell", 1, "Vencto", "05/12/2026");
  At("cell", 1, "Valor", "-3");
  refused("O valor do cheque 888 é negativo.");
  At("cell", 1, "Valor", "3");
  Put(Bloqueio{.tipo = "CT", .conta = kConta});
  refused("Período fechado até 20/11/2026 para a conta 10250-1.");
  Run("DELETE FROM BLOQUEIO");
  desk_.Click("BitBtn1");
  EXPECT_EQ(desk_.Messages(), "");
  EXPECT_EQ(desk_.Top(), "TfmChequePre");
  const auto row = [](const char* cheque, const char* value, const char* docto, const char* dates) {
    return std::string(cheque) + "|R|P|00001|00001|0000|REF. LOTE DE CHEQUE.|LOTE|" + value + "|" + docto +
           "|901|10250-1|+|CH|P|" + value + "|" + dates;
  };
  EXPECT_EQ(Written(), row("000777|341|005678", "10.5000", "000777", "2026-11-20|2026-11-20") + ";" +
                           row("888||77-1", "3.0000", "888", "2026-11-19|2026-12-05"));
}

TEST_F(LoteTest, WithoutAnAccountItClosesAndWritesNothing) {
  Read(0, std::string(kBarra, 34), "1");
  desk_.Set("EdtConta", "");
  desk_.Click("BitBtn1");
  desk_.CloseLists();
  EXPECT_EQ(desk_.Messages(), "Conta inválida.");
  desk_.Answer("ok");
  EXPECT_EQ(desk_.Top(), "TfmChequePre");
  EXPECT_EQ(Count(), "0|0|0");
}

}  // namespace
}  // namespace orv::test
