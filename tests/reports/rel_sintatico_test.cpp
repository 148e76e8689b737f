// The settled cash on one page: the sums of the demo companies, its edges, what it prints.
#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

class SintaticoTest : public DeskTest {
 protected:
  static void Gather(Desk& desk, const Fields& fields) {
    for (const auto& [name, value] : fields) desk.Set(name, value);
    ASSERT_EQ(desk.Press("BitBtn29"), "");
  }
};

TEST_F(SintaticoTest, EverySumOfTheDemoCompanies) {
  // An account that rests in the period.
  Run("UPDATE CONTACOR_001 SET DT_CONT = '09/30/2026' WHERE CONTA = '33021-5' AND DT_CONT BETWEEN "
      "'10/01/2026' AND '10/31/2026'");
  Desk desk(database_, At{"TfmRelSintatico"});
  Gather(desk, {{"EdtDataDe", "01/10/2026"}, {"edtDataAte", "31/10/2026"}});
  std::string figures;
  for (const auto& [all, zeroed, account] :
       {std::tuple("true", "true", ""), {"false", "false", ""}, {"false", "true", kConta}}) {
    for (const char* classes : {"false", "true"}) {
      Gather(desk, {{"CbEmpresas", all}, {"cbContas", zeroed}, {"EdtConta", account}, {"CbSGrupo", classes}});
      for (const auto& [set, key] :
           {std::pair("TbSaldo", "Conta"), {"TbTotal", "Conta"}, {"Tbrelatorio", "Codigo"}})
        if (set[2] == 'r' || *classes == 'f')
          figures += std::string("##### ") + set + "\n" +
                     (set[2] == 'r' ? desk.Read(set, {key, "Operacao", "Valor"})
                                    : desk.Read(set, {key, "Empresa", "Operacao", "Valor"}));
    }
  }
  ExpectFile(figures, ORV_FILES "sintatico_figures.txt");
}

TEST_F(SintaticoTest, EdgesAndWhatIsPrinted) {
  Empty("CONTACOR_001 VENDA_001 CONDIVENDA_001 RECEBER_001");
  const char* const movements[][7] = {
      // number, posted, accounted, class, amount with its sign, state, account
      {"1", "10/31/2026", "11/20/2026", "1101", "+100.10", "N", kConta},
      {"2", "11/10/2026", "11/11/2026", "3104", "-30", "N", kConta},
      {"3", "11/11/2026", "12/01/2026", "3104", "+5", "N", kConta},
      {"4", "11/11/2026", "10/15/2026", "310499", "-2.25", "N", "1234567890123"},
      {"5", "11/12/2026", "11/12/2026", "1101", "+70", "S", kConta},
      {"6", "11/13/2026", "11/13/2026", "1101", "+1", "N", kConta}};
  Run("INSERT INTO CADCONTA_001 (CONTA, EMPRESA, IMP_FLUXO) VALUES ('1234567890123', 'FILIAL', 'S')");
  Run("INSERT INTO SUBGRUPO_001 (CODIGO, DESCRICAO) VALUES ('310499', 'LONGA')");
  for (const auto& m : movements)
    Put(Movimento{.lancamento = m[0],
                  .conta = m[6],
                  .dt_lan = m[1],
                  .dt_cont = m[2],
                  .valor = m[4] + 1,
                  .operacao = std::string(m[4], 1),
                  .grupo = m[3],
                  .pendente = m[5]});
  // Sales that count, one cancelled, one exchanged, one of another day.
  for (const auto& [sale, columns] :
       {std::pair("V1", "'11/10/2026', 50, 0, 0"), std::pair("V2", "'11/11/2026', 20, 0, 0"),
        std::pair("V3", "'11/11/2026', 7, 1, 0"), std::pair("V4", "'11/11/2026', 8, 0, 1"),
        std::pair("V5", "'12/11/2026', 9, 0, 0")}) {
    const std::string number = sale;
    Run("INSERT INTO VENDA_001 (CODVEN, CODREP, DATA, VALOR, CANCELADA, TROCA) SELECT '" + number +
        "', MIN(CODREP), " + columns + " FROM REPRESEN_001");
    Run("INSERT INTO CONDIVENDA_001 (CDCONDIVENDA, CDVENDA, CDCONDICAO, CDMOEDA, VLVENDA) SELECT " +
        number.substr(1) + ", CODVEN, '01', '2', VALOR FROM VENDA_001 WHERE CODVEN = '" + number + "'");
  }
  Desk desk(database_, At{"TfmRelSintatico"});
  desk.Leave("EdtConta", "NADA", "BitBtn29");
  EXPECT_EQ(desk.Messages(), "Conta inválida.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName() + desk.Text("EdtConta"), "EdtConta");
  // The first date keeps what it holds, the last one takes it.
  desk.Set("EdtDataDe", "01/11/2026");
  desk.Focus("EdtDataDe");
  desk.Focus("edtDataAte");
  EXPECT_EQ(desk.Texts({"EdtDataDe", "edtDataAte"}), "01/11/2026|01/11/2026");

  Gather(desk, {{"edtDataAte", "30/11/2026"}, {"CbRep", "true"}, {"CbCond", "true"}, {"CbMoeda", "true"}});
  EXPECT_EQ(desk.Read("Tbrelatorio", {"Codigo", "Operacao", "Valor", "Classe", "Data_fim", "Opcao"}),
            "1101|+|1.0000|RECEITAS|30/11/2026|SSSN\n3104|-|30.0000|DESPESAS|30/11/2026|SSSN\n"
            "3104|+|5.0000|DESPESAS|30/11/2026|SSSN\n310499|-|2.2500|DESPESAS|30/11/2026|SSSN\n");
  std::string printed = test::Printed(desk, "BitBtn33");
  // A figure opens its rows.
  for (const auto& [page, grid, title] :
       {std::tuple("TsCaixa", "DBGrid1", "Saldo da conta 10250-1 1"),
        std::tuple("TsCaixa", "DBGrid2", "Movimentos da classe 1101 1"),
        std::tuple("TsVendas", "DBGrid3", "Vendas: 01 SERRA 2"),
        std::tuple("TsVendas", "DBGrid4", "Vendas: 01 A VISTA 2"),
        std::tuple("TsVendas", "DBGrid5", "Vendas: 2 CARTAO DE CREDITO 2")}) {
    desk.Page(page);
    desk.DoubleClick(grid, 0, std::string(grid) == "DBGrid1" ? "Final" : "Valor");
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      EXPECT_EQ(out["title"].String() + " " + std::to_string(out["rows"].Items().size()), title);
    }
    EXPECT_EQ(desk.End(), "waiting answer");
    desk.Answer("ok");
  }
  // Debits and credits of a class go by the first movement's operation.
  Gather(desk, {{"CbSGrupo", "true"}, {"CbMoeda", "false"}});
  EXPECT_EQ(desk.Read("Tbrelatorio", {"Codigo", "Operacao", "Valor"}),
            "1101|+|1.0000\n3104|-|35.0000\n310499|-|2.2500\n");
  printed += "##### Por classe\n" + test::Printed(desk, "BitBtn33");
  Gather(desk, {{"CbEmpresas", "true"}, {"EdtConta", "1234567890123"}});
  printed += "##### Uma conta de todas as empresas\n" + test::Printed(desk, "BitBtn33");
  Gather(desk,
         {{"CbEmpresas", "false"}, {"CbRep", "false"}, {"CbCond", "false"}, {"edtDataAte", "01/11/2026"}});
  EXPECT_EQ(desk.Read("Tbrelatorio", {"Codigo", "Valor", "Opcao"}), "-|-|NNNS\n");
  printed += "##### Sem movimentos\n" + test::Printed(desk, "BitBtn33");
  ExpectFile(printed, ORV_FILES "WCCSistatico.txt");
}

}  // namespace
}  // namespace orv::test
