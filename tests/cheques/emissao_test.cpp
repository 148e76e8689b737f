// Cheques that the company issues: what each payment writes, what its undoing leaves, and what is refused.
#include <thread>

#include "tests/cheques/emissao_desk.h"

namespace orv::test {
namespace {

const std::string kMove =
                      "L|000001|901|10250-1|-|120.0000|2026-11-20|2026-11-30|2026-11-30|2103|004|FIO "
                      "D'ALGODAO|P|CH|S",
                  kOpen = "1|000001|N|0.0000;1|000002|N|0.0000;2|000001|N|0.0000";
std::string Register(const std::string& duplicata, const std::string& end) {
  return "L|901|10250-1|000001|1200|120.0000|Malharia Serra Azul Ltda|00001|P|00060|2026-11-20|2026-11-30|" +
         duplicata + "|" + end;
}

TEST_F(EmissaoTest, EveryPaymentAndItsUndoings) {
  const std::string line = "|-|CC|2103|004|120.0000|2026-11-20|000";
  struct Payment {
    char tipo;
    // As `Left` tells them: movements, accounting, payables, settlements, register, titles, apportionment.
    std::vector<std::string> rows;
  };
  const Payment payments[] = {
      // The cheque is lower than what is selected: the second is paid in part.
      {'0',
       {kMove,
        "L|000001|000001/1|10250-1|00060|+|PP|2103|004|100.0000|2026-11-20|000|FIO D'ALGODAO;"
        "L|000001|000002/1|10250-1|00069|+|PP|2103|004|20.0000|2026-11-20|000|FIO D'ALGODAO",
        "1|000001|N|100.0000;1|000002|N|20.0000;2|000001|N|0.0000",
        "1|000001|L|000001|2026-11-20|2103|004|100.0000;1|000002|L|000001|2026-11-20|2103|004|20.0000",
        Register("000001", "P|FIO D'ALGODAO"),
        "10250-1|000001|000001|L|0.0000|100.0000;10250-1|000001|000002|L|0.0000|50.0000", ""}},
      {'1',
       {kMove, "L|000001|A|2.1.02.001||+|AP|2103|004|120.0000|2026-11-20|000|FIO D'ALGODAO",
        "1|000001|N|0.0000;1|000002|N|0.0000;1|A|A|0.0000;2|000001|N|0.0000", "",
        Register("", "P|FIO D'ALGODAO"), "", "A|CP|120.0000"}},
      {'2',
       {kMove, "L|000001|000001|2.1.02.001|2.1.01.001" + line + "-00|", kOpen, "",
        Register("", "P|FIO D'ALGODAO"), "", "L|CC|120.0000"}},
      {'3',
       {"L|000001|901|20418-7|+|120.0000|2026-11-20|2026-11-25|2026-11-25|2103|004|FIO D'ALGODAO|P|CH|N;" +
            kMove,
        "L|000001|000001|2.1.02.001|2.1.02.001" + line + "|EMISSÃO DE CHEQUE NR: 000001.(DEPOSITO).", kOpen,
        "", Register("", "P|FIO D'ALGODAO"), "", ""}},
  };
  for (const Payment& payment : payments) {
    for (const char* undoing : {"BitBtn2", "BitBtn7"}) {
      SCOPED_TRACE(std::string(1, payment.tipo) + undoing);
      Restore();
      const std::vector<std::string> before = Left();
      Desk desk(database_);
      Prepare(desk, payment.tipo);
      EXPECT_EQ(desk.Text("EdtDocto"), "000001");
      const std::string numero = Issue(desk);
      const std::string advance = Sql("SELECT NUM_AP FROM PAGTO_001 WHERE STATUS = 'A'");
      const auto left = [&] {
        std::vector<std::string> rows = Left(numero);
        if (!advance.empty()) {
          for (std::string& row : rows) row = ReplaceAll(row, advance, "A");
        }
        return rows;
      };
      EXPECT_EQ(left(), payment.rows);
      EXPECT_EQ(desk.FocusName() + desk.Text("EdtDocto") + desk.Text("EdtHist") + desk.Text("EdtDesNom"),
                "EdtDocto000002004");
      EXPECT_EQ(Audit("EMISSAO CHEQUE"), "CHEQUE EMITIDO NUMERO:000001 BANCO:901 VALOR:120.00|0|000001");
      EXPECT_EQ(Audit("BAIXA PAGAR"),
                payment.tipo == '0' ? "EMISSAO CHEQUE BAIXA A.P.  NR.: 000001|3|000001;EMISSAO CHEQUE BAIXA "
                                      "A.P.  NR.: 000002|3|000002"
                                    : "");

      // Tied to a statement it stays; then it goes, but for what outlives it: the advance, the titles and, of
      // a cancelled one, the register.
      const std::vector<std::string> issued = Left();
      Run("UPDATE CONTACOR_001 SET LANC_CON = '900000' WHERE OPERACAO = '-'");
      desk.Click(undoing);
      EXPECT_TRUE(desk.Messages().ends_with("Desfaça primeiro a conciliação."));
      desk.Answer("ok");
      EXPECT_EQ(Left(), issued);
      Run("UPDATE CONTACOR_001 SET LANC_CON = ''");
      desk.Click(undoing);
      desk.Answer("yes");
      if (desk.End() != "idle") desk.Answer("FOLHA MANCHADA NA DOBRA E RASGADA NO CANTO DE CIMA");
      std::vector<std::string> after = before;
      for (const std::size_t kept : {2U, 5U, 6U}) {
        if (kept == 5 || payment.tipo == '1') after[kept] = payment.rows[kept];
      }
      if (*std::string_view(undoing).rbegin() == '7')
        after[4] = Register(payment.tipo == '0' ? "000001" : "",
                            "C|FIO D'ALGODAO / FOLHA MANCHADA NA DOBRA E RASGADA ");
      EXPECT_EQ(left(), after);
      EXPECT_EQ(desk.Rows("TbCheque"), "");
      desk.Click(undoing);
      EXPECT_EQ(desk.End() + desk.Messages(), "idle");
    }
  }
}

TEST_F(EmissaoTest, APayableOfAnotherCompany) {
  for (const char* undoing : {"BitBtn2", "BitBtn7"}) {
    Restore();
    const std::vector<std::string> before = Left();
    Desk desk(database_);
    Prepare(desk, '0', {2});
    const std::string numero = Issue(desk);
    std::vector<std::string> left = Left(numero);
    const std::string paid = "1|000001|N|0.0000;1|000002|N|0.0000;2|000001|N|30.0000",
                      settled = "2|000001|L|000001|2026-11-20|2103|004|30.0000";
    EXPECT_EQ(left[2] + "/" + left[3], paid + "/" + settled);
    EXPECT_EQ(left[0], kMove);
    desk.Click(undoing);
    desk.Answer("yes");
    if (desk.End() != "idle") desk.Answer("ERRO");
    // A cancellation seeks the settlements in its own company only.
    left = Left(numero);
    EXPECT_EQ(left[2] + "/" + left[3],
              *undoing != 0 && undoing[6] == '2' ? before[2] + "/" : paid + "/" + settled);
    EXPECT_EQ(left[0] + left[1], "");
  }
}

TEST_F(EmissaoTest, ConfirmRefusesInOrder) {
  Desk desk(database_);
  desk.Open("TfmEmissao");
  Run("INSERT INTO SUBGRUPO_001 (CODIGO, TP_CONTA) VALUES ('9999', 'T')");
  const auto closed = [this](const char* tipo, const char* conta) {
    return [this, tipo, conta] { Put(Bloqueio{.tipo = tipo, .conta = conta}); };
  };
  const auto open = [this](const char* tipo) { return [this, tipo] { Unlock(tipo); }; };
  const char* kDeposito = "Conta de Depósito não Encontrada. Operação Cancelada.";
  Refuses(
      desk, "BitBtn8", "CONTACOR_001 CHEQUE_PRE_001 CONTABIL_001 AUDITORIA",
      {{.right = {{"DtEmissao", "18/11/2026"}, {"DtVencto", ""}},
        .message = "Período do caixa fechado até 20/11/2026.",
        .act = closed("CX", "")},
       {{{"DtEmissao", ""}, {"DtVencto", ""}}, "Vencimento inválido.", "DtVencto", "", open("CX")},
       {{{"DtVencto", "30/11/2026"}}, "Conta Inválida.", "EdtConta"},
       {{{"EdtConta", kConta}}, "Nº do Cheque Inválido.", "EdtDocto"},
       {{{"EdtDocto", "000009"}}, "Classe Gerencial Inválida.", "EdtCodClasse"},
       {{{"EdtCodClasse", "9999"}},
        "Classe Inválida. Não é possível lançar com classe do tipo Título.",
        "EdtCodClasse"},
       {{{"EdtCodClasse", "2103"}}, "Histórico Inválido.", "EdtHist"},
       {{{"EdtHist", "004"}}, "Credor Inválido.", "EdtDesNom"},
       {{{"EdtDesNom", "NINGUEM"}}, "O Valor deve ser maior que Zero.", "EdtValor"},
       {{{"EdtValor", "10,00"}}, "Para Fazer Pagamento de AP é necessário selecionar ao menos uma AP."},
       {{{"RgTipo", "1"}}, "Para Fazer Pagamento de Antecipação é necessário Selecionar um Fornecedor F4."},
       {{{"EdtDesNom", "FIOS IPE AMARELO 009 ME"}}, "Histórico de Antecipação Inválido.", "EdtHistAnt"},
       {{{"RgTipo", "3"}}, kDeposito},
       {{{"EdtContaDep", "NADA"}}, kDeposito},
       {{{"EdtContaDep", kOutraConta}}, "Emissão inválida.", "DtEmissao"},
       {{{"DtEmissao", "18/11/2026"}, {"DtDeposito", ""}}, "Data do Depósito inválida.", "DtDeposito"},
       {.right = {{"DtDeposito", "30/11/2026"}},
        .message = "Período fechado até 20/11/2026 para a conta 10250-1.",
        .act = closed("CT", kConta)},
       {.right = {}, .message = "Período fechado até 20/11/2026 para a conta 20418-7.", .act = [&] {
          open("CT")(), closed("CT", kOutraConta)();
        }}});
  Unlock("CT");
  desk.Click("BitBtn8");
  EXPECT_NE(Posting(desk), "");
  // Refused accounting empties the queue, silently.
  desk.Answer("no");
  EXPECT_EQ(desk.End() + desk.Messages() + desk.Rows("TbCheque") + Left()[0] + Left()[4], "idle");
}

TEST_F(EmissaoTest, EightClerksNumberOneAccount) {
  constexpr int kClerks = 8;
  std::vector<std::unique_ptr<Desk>> desks;
  std::vector<std::thread> threads;
  std::vector<int> told(kClerks);
  for (int i = 0; i < kClerks; ++i) {
    desks.push_back(std::make_unique<Desk>(database_));
    Prepare(*desks.back(), '2');
    EXPECT_EQ(desks.back()->Text("EdtDocto"), "000001");
  }
  for (int i = 0; i < kClerks; ++i) {
    threads.emplace_back(
        [&desk = *desks[static_cast<std::size_t>(i)], &lost = told[static_cast<std::size_t>(i)]] {
          for (bool issued = false; !issued && lost < 100;) {
            const int number = std::stoi(desk.Text("EdtDocto"));
            desk.Click("BitBtn8");
            // Taken before the field was left it is told there already.
            if (desk.Messages().empty()) desk.Answer("yes");
            issued = desk.Messages().starts_with("Concluído.");
            if (!issued) {
              EXPECT_EQ(desk.Messages(), "Cheque já Gerado.");
              EXPECT_EQ(desk.Rows("TbCheque"), "");
              ++lost;
            }
            desk.Answer("ok");
            EXPECT_EQ(desk.FocusName(), "EdtDocto");
            if (desk.Text("EdtDocto").empty()) desk.Set("EdtDocto", "00000" + std::to_string(number + 1));
          }
        });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT NUMERO), MAX(NUMERO) FROM CHEQUE_PRE_001"), "8|8|000008");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO BETWEEN '000001' AND '000008'"), "8");
  EXPECT_EQ(std::count(told.begin(), told.end(), 0), 1);
}

TEST_F(EmissaoTest, AutomaticRunPickingAndReprint) {
  Desk desk(database_);
  Prepare(desk, '0', {0, 1, 2});
  // More than the balance is brought back to it, and the total follows.
  desk.Cell("wwDBGrid1", 1, "Valor", "70,00");
  desk.Focus("EdtConta");
  EXPECT_EQ(desk.Messages(), "O valor do Cheque não pode ser maior que o Saldo da Duplicata.");
  desk.Answer("ok");
  desk.Cell("wwDBGrid1", 1, "Valor", "20,00");
  desk.Focus("EdtObs");
  EXPECT_EQ(desk.Text("EdtTotal") + "/" + desk.Text("EdtValor"), "150,00/150,00");
  desk.Set("EdtConta", "");
  desk.CloseLists();
  desk.Click("BitBtn4");
  desk.CloseLists();
  desk.Answer("yes");
  EXPECT_EQ(desk.Messages() + Left()[4], "Conta Inválida.");
  desk.Answer("ok");
  desk.Set("EdtConta", kConta);
  desk.Click("BitBtn4");
  desk.Answer("yes");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_EQ(
      desk.Read("TbPagto", {"Numero", "Empresa", "Valor", "Valor_Pago", "Val_Pag_Cheque"}),
      "000001|_001|0|100.0000|100.0000\n000002|_001|30|20.0000|20.0000\n000001|_002|0|30.0000|30.0000\n");
  EXPECT_EQ(Sql("SELECT C.NUMERO, C.VALOR, C.DUPLICATA, D.CHAVE, D.VALOR, M.VALOR, M.HISTORICO, M.PENDENTE, "
                "A.OPERACAO, A.CLASSE, A.CODIGO FROM CHEQUE_PRE_001 C JOIN CHEQUE_DUP_001 D ON D.NUMERO = "
                "C.NUMERO JOIN CONTACOR_001 M ON M.LANCAMENTO = C.CHAVE JOIN CONTABIL_001 A ON A.LANCAMENTO "
                "= C.CHAVE ORDER BY 1"),
            "000001|100.0000|000001|-|100.0000|100.0000|003|N|-|2101|000-00;"
            "000002|20.0000|000002|-|20.0000|20.0000|003|N|-|2101|000-00;"
            "000003|30.0000|000001|-|30.0000|30.0000|003|N|-|2101|000-00");
  EXPECT_EQ(desk.Read("TbCheque", {"Numero", "Total"}), "000001|100\n000002|20\n000003|30\n");

  // Run again it pays what was left; a payable that another user paid meanwhile stops it, and what was
  // written before stays.
  Run("UPDATE PAGTO_001 SET VAL_PAG = VAL_PAG + 5 WHERE NUM_AP = '000002'");
  const std::vector<std::string> before = Left();
  desk.Click("BitBtn4");
  desk.Answer("yes");
  EXPECT_TRUE(desk.Messages().starts_with("error: Outro usuário alterou a AP 000002"));
  EXPECT_EQ(Left(), before);
  EXPECT_EQ(desk.Read("TbCheque", {"Numero"}), "000001\n000002\n000003\n");
  Printed(desk, "BtnImprimir");
  EXPECT_EQ(desk.Rows("TbCheque") + desk.Rows("TbPagto"), "");

  // Picked for a reprint, a cheque shows what it paid, and pays nothing of the next one.
  desk.Page("TabSheet1");
  desk.Set("EdtCCheque", "000002");
  desk.Click("BitBtn3");
  EXPECT_EQ(desk.Read("QryConsulta", {"NUMERO", "VALOR", "OBS"}), "000002|20.0000|FIO D'ALGODAO\n");
  for (const char* message : {"", "Cheque já selecionado."}) {
    desk.DoubleClick("DBGrid1", 0, "NUMERO");
    if (*message != 0) {
      EXPECT_EQ(desk.Messages(), message);
      desk.Answer("ok");
    }
    EXPECT_EQ(desk.Read("TbCheque", {"Numero", "Nome", "Dia", "Mes", "Ano"}),
              "000002|FIO D'ALGODAO|20|NOVEMBRO|2026\n");
    EXPECT_EQ(desk.Read("TbPagto", {"Baixar", "Numero", "Empresa", "Valor", "Val_Pag_Cheque"}),
              "S|000002|_001|25|20.0000\n");
  }
  desk.Page("TabSheet2");
  desk.Click("BitBtn4");
  desk.Answer("yes");
  desk.Focus("EdtDocto");
  desk.Set("EdtValor", "10,00");
  desk.Click("BitBtn8");
  EXPECT_EQ(desk.Messages(), "Para Fazer Pagamento de AP é necessário selecionar ao menos uma AP.");
  desk.Answer("ok");
  EXPECT_EQ(Left(), before);
}

TEST_F(EmissaoTest, NumbersPrintingAndReplacement) {
  Desk desk(database_);
  for (const auto& [former, next] :
       Fields{{"", "000001"}, {"A12", "000001"}, {"1234567", "1234568"}, {"7", "000009"}}) {
    Run("DELETE FROM CHEQUE_PRE_001");
    const auto keep = [&](const char* chave, const std::string& numero) {
      Put(Cheque{.chave = chave, .numero = numero, .banco = "901", .conta = kConta});
    };
    keep("000001", former);
    if (former == "7") keep("0", "000008");
    Prepare(desk, '2');
    EXPECT_EQ(desk.Text("EdtDocto"), next) << former;
    desk.Close();
  }
  Restore();
  Put(Cheque{.numero = "000001", .banco = "902", .conta = kOutraConta});
  Prepare(desk, '2');
  desk.Set("EdtDocto", "000001");
  // Another account chosen afterwards: its cheque of this number goes.
  desk.Fill({{"EdtConta", kOutraConta}});
  const std::string numero = Issue(desk);
  EXPECT_EQ(Sql("SELECT CHAVE, CONTA, NUMERO FROM CHEQUE_PRE_001"), numero + "|20418-7|000001");
  desk.Set("EdtDocto", "000001");
  desk.Focus("EdtDesNom");
  EXPECT_EQ(desk.Messages(), "Cheque já Gerado.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName() + desk.Text("EdtDocto"), "EdtDocto");
  desk.Set("EdtDocto", "000777");
  desk.Set("RgTipo", "0");
  desk.Click("BitBtn5");
  for (const int row : {0, 1}) desk.Cell("wwDBGrid1", row, "Baixar", "S");
  desk.Fill({{"EdtDesNom", "joão d'ávila"}, {"EdtValor", "777.777.777,77"}});
  desk.Fill({{"EdtConta", kConta}});
  Issue(desk);
  ExpectFile(Printed(desk, "BitBtn6"), std::string(ORV_FILES) + "WEmiRecCheque.txt");
  desk.Stand("DBGrid2", 1);
  ExpectFile(Printed(desk, "BtnImprimir"), std::string(ORV_FILES) + "WChequeEmi_.txt");
}

}  // namespace
}  // namespace orv::test
