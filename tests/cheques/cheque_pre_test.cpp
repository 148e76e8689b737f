// The screen of the cheques: capture, alteration, deletion, and the way from state to state.
#include "tests/cheques/cheque_desk.h"

namespace orv::test {
namespace {

const Fields kNew = {{"DBEDCodBan", "903"},     {"DBEDAgencia", "0001"},   {"DBEDConta", "77-1"},
                     {"DBEDChequeNro", "4711"}, {"DBEDValor", "1.250,40"}, {"EdtObs", "D'URGENCIA"}};

TEST_F(ChequeTest, CapturePostsItsMovement) {
  Desk desk(database_, At{"TfmChequePre"});
  EXPECT_EQ(desk.Property("PageControl1", "page").String() + desk.FocusName() + Mode(desk),
            "TabSheet2Btincluirbrowse");
  EXPECT_FALSE(desk.Enabled("PainelDados"));
  desk.Click("Btincluir");
  EXPECT_EQ(desk.FocusName() + " " + Mode(desk), "DBEDCodBan insert confirm");
  EXPECT_FALSE(desk.Enabled("DBGrid1"));
  const std::string chave = desk.Text("EDChave");
  EXPECT_EQ(chave.size(), 6U);
  EXPECT_EQ(desk.Text("DBEDT_DtEmissao") + desk.Text("DBEDT_DtVencto") + desk.Text("RgTipo") +
                desk.Text("RgSituacao"),
            "20/11/202620/11/2026RecebidoPendente");
  for (const char* shown : {"EDChave", "RgSituacao", "DBEDT_DtDevolucao"}) {
    desk.Set(shown, "1");
    EXPECT_TRUE(desk.Messages().starts_with("error: ")) << shown;
  }
  desk.Fill(kNew);
  desk.Fill({{"DBEDT_DtEmissao", "18/11/2026"}, {"DBEDT_DtVencto", "15/12/2026"}});
  EXPECT_NE(desk.Text("EDNomeBanco"), "");

  // Given up twice, in either way, the record waits.
  for (const char* way : {"cancel", "refuse"}) {
    desk.Click("BtnConfirmar");
    EXPECT_EQ(desk.Top(), "TFmCCLancFluxo");
    if (way == std::string("refuse")) Post(desk, "no");
    GiveUp(desk);
    EXPECT_EQ(desk.Top() + " " + Mode(desk), "TfmChequePre insert confirm") << way;
    EXPECT_EQ(Cheques() + Movements() + Audit(), "");
  }
  desk.Click("BtnConfirmar");
  EXPECT_EQ(desk.Text("EdtConta") + "|" + desk.Text("EdtObs") + "|" + desk.Text("EdtDocto") + "|" +
                desk.Text("EdtValor") + "|" + desk.Text("DtLancto") + "|" + desk.Text("DtCont") + "|" +
                desk.Text("CbOper"),
            "||4711|1.250,40|18/11/2026|15/12/2026|Crédito");
  Post(desk);
  EXPECT_EQ(desk.Messages(), "");
  EXPECT_EQ(desk.Top() + " " + Mode(desk), "TfmChequePre browse");
  EXPECT_TRUE(desk.Enabled("DBGrid1"));
  EXPECT_EQ(desk.Text("EDChave"), chave);
  EXPECT_EQ(Sql("SELECT CHAVE, BANCO, AGENCIA, CONTA, NUMERO, VALOR, EMISSAO, VENCIMENTO, DT_BAIXA, TIPO, "
                "STATUS, CLIENTE, REPRESENTANTE, FORNECEDOR, OBS FROM CHEQUE_PRE_001"),
            chave + "|903|0001|77-1|4711|1250.4000|2026-11-18|2026-12-15|-|R|P|00000|0000|-|D'URGENCIA");
  EXPECT_EQ(Sql("SELECT LANCAMENTO FROM CONTACOR_001"), chave);
  EXPECT_EQ(Movements(), "4711|10250-1|+|1250.4000|2026-11-18|2026-12-15|2026-12-15|1101|005||L|S");
  EXPECT_EQ(Audit(), "CHEQUE PRE NR.: 4711|3|4711");
  EXPECT_EQ(Audit("CONTA CORRENTE"), "INCLUSÃO DO LANCAMENTO " + chave + "|3|" + chave);
}

TEST_F(ChequeTest, TheEntrysTagIsItsWholeAnswer) {
  Desk desk(database_, At{"TfmChequePre"});
  // Closed by its frame it counts as done.
  desk.Click("Btincluir");
  desk.Fill(kNew);
  desk.Click("BtnConfirmar");
  desk.Close();
  EXPECT_EQ(Mode(desk) + Movements(), "browse");
  EXPECT_EQ(Sql("SELECT NUMERO, STATUS FROM CHEQUE_PRE_001"), "4711|P");
  EXPECT_EQ(Audit(), "CHEQUE PRE NR.: 4711|3|4711");
  // Refused once it stays given up, although the movement is posted in the end.
  desk.Click("Btincluir");
  desk.Fill(kNew);
  desk.Fill({{"DBEDChequeNro", "4712"}});
  desk.Click("BtnConfirmar");
  Post(desk, "no");
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(desk.Top() + " " + Mode(desk), "TfmChequePre insert confirm");
  EXPECT_EQ(Sql("SELECT NUMERO FROM CHEQUE_PRE_001"), "4711");
  EXPECT_EQ(Sql("SELECT DOCTO FROM CONTACOR_001"), "4712");
}

TEST_F(ChequeTest, ConfirmRefusesInOrder) {
  Desk desk(database_, At{"TfmChequePre"});
  desk.Click("Btincluir");
  desk.Fill({{"DBEDT_DtEmissao", "25/11/2026"}, {"DBEDT_DtVencto", "24/11/2026"}, {"DBEDConta", "1"}});
  const std::string dates = "A data de Vencimento não pode ser menor que a data de Emissão.",
                    issue = "É necessário informar uma Data de Emissão válida para o Cheque.";
  Refuses(desk, "BtnConfirmar", kWritten,
          {{{}, dates, "DBEDCodBan"},
           {{{"DBEDT_DtVencto", ""}}, dates, "DBEDCodBan"},
           {{{"DBEDT_DtVencto", "25/11/2026"}},
            "O Código do Banco não pode ser vazio, por favor informe um Banco.",
            "DBEDCodBan"},
           // A bank that isn't there is taken.
           {{{"DBEDCodBan", "ZZZ"}}, "É necessário informar um Nro. Cheque.", "DBEDChequeNro"},
           {{{"DBEDChequeNro", "9"}}, "É necessário informar um Valor para o Cheque.", "DBEDValor"},
           {{{"DBEDValor", "0,00"}}, issue, "DBEDT_DtEmissao"},
           {{{"DBEDT_DtEmissao", ""}}, issue, "DBEDT_DtEmissao"},
           {{{"DBEDT_DtEmissao", "20/11/2026"}}, "", "EdtConta"}});
}

// Each state with each action: what is told or asked, and what the cheque becomes.
TEST_F(ChequeTest, EveryStateAndEveryAction) {
  const std::string no_cancel = "Cheque não pode ser Cancelado. Não está Pendente.",
                    third = "Não é possível cancelar cheques de terceiros.",
                    no_return = "Cheque não pode ser Devolvido.",
                    issued = "É somente possível Reapresentar Cheques Recebidos.",
                    not_returned = "É possível Reapresentar apenas cheques devolvidos.",
                    cancel = "Tem certeza que deseja cancelar o cheque?",
                    give_back = "Tem certeza que deseja Devolver o cheque?",
                    again = "Tem certeza que deseja Reapresentar o cheque?",
                    remove = "Deseja eliminar este Registro?",
                    tied = "Cheque relacionado a Duplicatas. Impossível Excluir.";
  Desk desk(database_);
  for (const char* tipo : {"R", "P"}) {
    for (const char* status : {"P", "B", "C", "D"}) {
      for (const char* cliente : {"00050", "00001"}) {
        for (const char* movement : {"", "L", "P"}) {
          const bool received = *tipo == 'R', own = cliente == std::string("00001");
          const struct {
            const char* button;
            std::string message;
            const char* becomes;  // "" when the row goes
          } cases[] = {
              {"BitBtn3",
               *status != 'P' ? no_cancel
               : own          ? cancel
                              : third,
               "C"},
              {"BitBtn4", *status == 'B' && received ? give_back : no_return, "D"},
              {"BitBtn7",
               !received        ? issued
               : *status == 'D' ? again
                                : not_returned,
               "P"},
              {"BtExcluir", *movement == 'P' ? tied : remove, ""},
          };
          for (const auto& c : cases) {
            // The movement counts for the deletion only, which asks nothing of the cheque.
            const bool deletion = c.button == std::string("BtExcluir");
            if (deletion ? own : *movement != 0) continue;
            SCOPED_TRACE(std::string(c.button) + " " + tipo + status + cliente + movement);
            Empty("CHEQUE_PRE_001 CONTACOR_001");
            Keep({.chave = "C1", .tipo = tipo, .status = status, .cliente = cliente});
            if (*movement != 0) Move("C1", movement);
            desk.Open("TfmChequePre");
            const std::string before = Cheques();
            EXPECT_EQ(desk.Press(c.button), c.message);
            const bool asks = c.message.ends_with("?");
            desk.Answer(asks ? "no" : "ok");
            EXPECT_EQ(desk.End() + desk.Messages() + Cheques(), "idle" + before);
            if (asks) {
              desk.Press(c.button, "yes");
              if (desk.Top() == "TFmCCLancFluxo") {
                GiveUp(desk);
                EXPECT_EQ(Cheques(), before);
                desk.Press(c.button, "yes");
                Post(desk);
              }
              EXPECT_EQ(Cheques(), *c.becomes != 0 ? std::string("C1|") + c.becomes : "");
            }
            EXPECT_EQ(Mode(desk), "browse");
            // What was typed into the ledger stays there.
            if (*movement != 0) {
              EXPECT_EQ(Count("CONTACOR_001", "LANCAMENTO = 'C1'"), "1");
            }
            desk.Close();
          }
        }
      }
    }
  }
  EXPECT_EQ(Audit(), "");
}

TEST_F(ChequeTest, ReturnAndRepresentationPostTheirMovements) {
  Keep({.chave = "C1", .dt_baixa = "11/12/2026", .status = "B"});
  Keep({.chave = "C2"});
  Desk desk(database_, At{"TfmChequePre"});
  desk.Click("BitBtn4");
  // No is what Enter says.
  for (const Json& out : desk.Latest()) {
    if (out["on"] == Json("message")) {
      EXPECT_EQ(out["default"].String(), "no");
    }
  }
  desk.Answer("yes");
  EXPECT_EQ(desk.Text("EdtObs") + desk.Text("EdtDocto") + desk.Text("CbOper"),
            "DEVOLUCAO DO CHEQUE NR: C1C1Crédito");
  desk.Fill({{"EdtConta", kConta}, {"EdtTipo", "3104"}, {"EdtHis", "018"}});
  EXPECT_EQ(desk.Text("CbOper"), "Débito");
  desk.Press("BitBtn1", "yes");
  EXPECT_EQ(Cheques(), "C1|D;C2|P");
  EXPECT_EQ(desk.Text("EDChave") + desk.Text("RgSituacao"), "C1Devolvido");
  desk.Press("BitBtn7", "yes");
  EXPECT_EQ(desk.Text("EdtObs"), "REAPRESENTANCAO DO CHEQUE NR: C1");
  Post(desk);
  EXPECT_EQ(Cheques(), "C1|P;C2|P");
  EXPECT_EQ(
      Movements(),
      "C1|10250-1|-|150.0000|2026-11-10|2026-11-12|2026-11-12|3104|018|DEVOLUCAO DO CHEQUE NR: C1|L|S;"
      "C1|10250-1|+|150.0000|2026-11-10|2026-11-12|2026-11-12|1101|005|REAPRESENTANCAO DO CHEQUE NR: C1|L|S");
  EXPECT_EQ(Sql("SELECT COUNT(DISTINCT LANCAMENTO) FROM CONTACOR_001 WHERE LANCAMENTO <> 'C1'"), "2");
  EXPECT_EQ(Audit("MOVIMENTO"), "CHEQUE C1 DE B PARA D|3|C1;CHEQUE C1 DE D PARA P|3|C1");
}

TEST_F(ChequeTest, CancellationUndoesSettlements) {
  // One cheque paid two bills, one paid none, one has no movement.
  for (const char* chave : {"C1", "C2", "C3"}) Keep({.chave = chave, .tipo = "P", .cliente = "00001"});
  for (const char* chave : {"C1", "C2"}) Move(chave, "P");
  // Another cheque of that number, on another account.
  Put(Movimento{.lancamento = "X1", .docto = "C1", .banco = "903"});
  for (const char* bill : {"Z1", "Z2"}) {
    Put(Pagto{.num_ap = bill, .valor = "100", .val_pag = "60"});
    for (const char* number : {"C1", "X1"}) {
      Put(Pagto1{.num_ap = bill, .lancamento = number, .val_pag = bill[1] == '1' ? "40.25" : "10"});
    }
  }
  Desk desk(database_, At{"TfmChequePre"});
  Closed(desk, "BitBtn3", "CX");
  EXPECT_EQ(desk.End() + Cheques(), "idleC1|P;C2|P;C3|P");
  for (int row = 0; row < 3; ++row) {
    desk.Stand("DBGrid1", row);
    desk.Press("BitBtn3", "yes");
    EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  }
  EXPECT_EQ(Cheques(), "C1|C;C2|C;C3|C");
  EXPECT_EQ(Sql("SELECT LANCAMENTO FROM CONTACOR_001"), "X1");
  EXPECT_EQ(Sql("SELECT NUM_AP, VAL_PAG FROM PAGTO_001 WHERE NUM_AP STARTING WITH 'Z' ORDER BY 1"),
            "Z1|19.7500;Z2|50.0000");
  EXPECT_EQ(Sql("SELECT TEXTO FROM AUDITORIA WHERE AREA = 'MOVIMENTO' AND CHAVE = 'C1' ORDER BY ID"),
            "CHEQUE C1 DE P PARA C;EXCLUSAO DO LANCAMENTO, CANCELAMENTO DO CHEQUE C1");
  EXPECT_EQ(Sql("SELECT NUM_AP, LANCAMENTO FROM PAGTO1_001 ORDER BY 1"), "Z1|X1;Z2|X1");
  EXPECT_EQ(desk.Text("EDChave"), "C3");
}

TEST_F(ChequeTest, DeletionTakesTheTitlesAlong) {
  Keep({.chave = "C1"});
  Keep({.chave = "C2"});
  for (const char* number : {"C1", "C2"}) Put(ChequeDup{.banco = "903", .conta = "77-1", .numero = number});
  Desk desk(database_, At{"TfmChequePre"});
  desk.Press("BtExcluir", "yes");
  EXPECT_EQ(Cheques() + Sql("SELECT NUMERO FROM CHEQUE_DUP_001"), "C2|PC2");
  EXPECT_EQ(desk.Text("EDChave"), "C2");
  desk.Press("BtExcluir", "yes");
  // Nothing is left to act on.
  for (const char* button : {"BtnAltera", "BtExcluir", "BitBtn2", "BitBtn3", "BitBtn4", "BitBtn7"}) {
    EXPECT_EQ(desk.Press(button), "Nenhum cheque selecionado.") << button;
    desk.Answer("ok");
    EXPECT_EQ(Mode(desk), "browse") << button;
  }
}

TEST_F(ChequeTest, Alteration) {
  Keep({.chave = "C1"});
  Keep({.chave = "C2", .dt_baixa = "11/16/2026", .status = "B"});
  Move("C2", "L");
  Desk desk(database_, At{"TfmChequePre"});
  desk.Stand("DBGrid1", 1);
  desk.Click("BtnAltera");
  EXPECT_EQ(Mode(desk) + " " + desk.FocusName(), "edit confirm DBEDCodBan");
  EXPECT_EQ(desk.EnabledOf({"DBGrid1", "EDChave", "DBEDT_DtEmissao", "RgTipo"}), "0000");
  // Passing it on changes neither its state nor its movement's amount.
  desk.Fill({{"EdtCodFor", "00060"}, {"EdtObs", "PASSADO"}});
  // The list on the other page waits.
  desk.Page("TabSheet1");
  desk.Click("BitBtn6");
  desk.DoubleClick("DBGrid2", 0, "CHAVE");
  EXPECT_EQ(desk.Told(), "Confirme ou desista primeiro do cheque em edição.");
  Closed(desk, "BtnConfirmar", "CX");
  EXPECT_EQ(desk.End() + Mode(desk), "idleedit confirm");
  desk.Click("BtnConfirmar");
  EXPECT_EQ(desk.Messages() + Mode(desk), "browse");
  EXPECT_EQ(desk.EnabledOf({"DBGrid1"}), "1");
  EXPECT_EQ(Sql("SELECT FORNECEDOR, OBS, STATUS FROM CHEQUE_PRE_001 WHERE CHAVE = 'C2'"), "00060|PASSADO|B");
  EXPECT_EQ(Sql("SELECT DT_CONT, PENDENTE FROM CONTACOR_001"), "2026-11-16|N");
  EXPECT_EQ(Audit(), "CHEQUE PRE NR.: C2|3|C2");
  EXPECT_EQ(desk.Text("EDChave"), "C2");

  // Giving up goes a cheque back, and leaves the date of issue closed to the next confirmation.
  desk.Click("BtnAltera");
  desk.Fill({{"DBEDChequeNro", "OUTRO"}});
  desk.Set("DBEDCodBan", "");
  desk.Click("BtnDesistir");
  EXPECT_EQ(desk.End() + " " + Mode(desk) + " " + desk.Text("EDChave"), "idle browse C1");
  EXPECT_EQ(Count("CHEQUE_PRE_001", "NUMERO = 'OUTRO'"), "0");
  desk.Click("Btincluir");
  EXPECT_EQ(desk.EnabledOf({"DBEDT_DtEmissao", "RgTipo"}), "01");
  desk.Click("BtnDesistir");
  desk.Click("BtnAltera");
  desk.Click("BtnConfirmar");
  desk.CloseLists();
  desk.Click("Btincluir");
  EXPECT_TRUE(desk.Enabled("DBEDT_DtEmissao"));
  // A close leaves nothing half typed for the next one.
  desk.Close();
  desk.Open("TfmChequePre");
  EXPECT_EQ(Mode(desk), "browse");
}

TEST_F(ChequeTest, FieldsFollowTheirCodes) {
  Put(Receber{.numero = "T-1"});
  Desk desk(database_, At{"TfmChequePre"});
  desk.Click("Btincluir");
  const auto leave = [&](const char* field, const char* to) {
    desk.Focus(field);
    desk.Focus(to);
    return desk.End();
  };
  EXPECT_EQ(leave("DBEDCodBan", "EdtObs"), "waiting lookup");
  desk.Choose("902");
  EXPECT_EQ(desk.Text("DBEDCodBan") + " " + desk.FocusName(), "902 DBEDAgencia");
  EXPECT_NE(desk.Text("EDNomeBanco"), "");
  desk.Fill({{"DBEDCodBan", "ZZZ"}});
  EXPECT_EQ(desk.Text("EDNomeBanco"), "");
  const std::string nome = Sql("SELECT NOME, CNPJ FROM ENTIDADE_001 WHERE CODCLI = '00050'");
  EXPECT_EQ(leave("DBEDTCodCli", "EdtObs"), "waiting lookup");
  desk.Choose("00050");
  EXPECT_EQ(desk.Text("EDCliente") + "|" + desk.Text("EdtCpf"), nome);
  for (const char* field : {"DBEDCodRep", "EdtCodFor"}) {
    EXPECT_EQ(leave(field, "EdtObs"), "waiting lookup") << field;
    desk.ChooseFirst();
    EXPECT_NE(desk.Text(field), "") << field;
  }
  EXPECT_NE(desk.Text("EDRepresentante") + desk.Text("EdtNomeFor"), "");
  // The title is looked for on leaving either field.
  for (const char* field : {"EdtDup", "EdtBarra"}) {
    desk.Set("EdtDup", "NENHUM");
    desk.Focus(field);
    if (desk.End() == "idle") desk.Focus("EdtObs");
    EXPECT_EQ(desk.Messages(), "Duplicata Inexistente.") << field;
    desk.Answer("ok");
    EXPECT_EQ(desk.FocusName() + desk.Text("EdtDup"), "EdtDup") << field;
  }
  desk.Leave("EdtDup", "T-1", "EdtObs");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
}

TEST_F(ChequeTest, TransferToAnotherCompany) {
  Keep({.chave = "C1", .dt_baixa = "11/16/2026", .status = "D"});
  Keep({.chave = "C2"});
  Run("UPDATE CHEQUE_PRE_001 SET LOTE = 'L''1', FORNECEDOR = '00060' WHERE CHAVE = 'C2'");
  Move("C2", "L");
  Desk desk(database_, At{"TfmChequePre"});
  desk.Stand("DBGrid1", 1);
  desk.Click("BitBtn2");
  EXPECT_EQ(Mode(desk) + " " + desk.FocusName(), "browse confirm company CBEmpresa");
  // Given up.
  desk.Click("BtnDesistir");
  EXPECT_EQ(Mode(desk) + desk.Text("EDChave"), "browseC1");
  desk.Stand("DBGrid1", 1);
  desk.Click("BitBtn2");
  desk.Set("EdtObs", "TROCADA");
  EXPECT_EQ(desk.Messages(), "error: Durante a transferência o cheque não pode ser alterado.");
  desk.CloseLists();
  desk.Click("BtnConfirmar");
  desk.CloseLists();
  EXPECT_EQ(desk.Messages(), "error: Escolha a empresa para a qual o cheque vai.");
  EXPECT_EQ(Cheques() + Audit() + " " + Mode(desk), "C1|D;C2|P browse confirm company");
  Run("UPDATE CHEQUE_PRE_001 SET VENCIMENTO = NULL WHERE CHAVE = 'C2'");
  const char* refusals[] = {"O cheque já está nesta empresa. Escolha outra empresa.",
                            "É necessário informar uma Data de Vencimento válida para o Cheque."};
  for (const char* company : {"0", "1"}) {
    desk.Set("CBEmpresa", company);
    EXPECT_EQ(desk.Told("BtnConfirmar"), refusals[*company - '0']);
    EXPECT_EQ(Cheques() + " " + Mode(desk), "C1|D;C2|P browse confirm company");
  }
  Run("UPDATE CHEQUE_PRE_001 SET VENCIMENTO = '11/12/2026' WHERE CHAVE = 'C2'");
  desk.Click("BtnConfirmar");
  EXPECT_EQ(desk.Messages() + Mode(desk) + desk.Text("EDChave"), "browseC1");
  const std::string columns =
      "SELECT AGENCIA, BANCO, CHAVE, CLIENTE, CONTA, CAST(DT_BAIXA AS VARCHAR(10)), DUPLICATA, LOTE, "
      "EMISSAO, TIPO, FORNECEDOR, NUMERO, REPRESENTANTE, VALOR, VENCIMENTO, OBS, STATUS, EMISSOR, CNPJ_EMI, "
      "BARRA FROM CHEQUE_PRE_002 WHERE CHAVE STARTING WITH 'C'";
  EXPECT_EQ(Sql(columns),
            "0001|903|C2|00050|77-1|1899-12-30||L'1|2026-11-10|R|00060|C2|0000|150.0000|"
            "2026-11-12|OBS|P|-|-|-");
  EXPECT_EQ(Cheques(), "C1|D");
  EXPECT_EQ(Count("CONTACOR_001", "LANCAMENTO = 'C2'") + Audit(), "1CHEQUE PRE NR.: C2|3|C2");

  // The other company works on with it.
  Run("DELETE FROM CHEQUE_PRE_002 WHERE CHAVE <> 'C2'");
  Desk other(database_, "ana", "_002");
  other.Open("TfmChequePre");
  EXPECT_EQ(other.Text("EDChave") + other.Text("DBEDT_DtDevolucao"), "C2");
  other.Click("BtnAltera");
  other.Fill({{"EdtObs", "CHEGOU"}});
  other.Click("BtnConfirmar");
  EXPECT_EQ(other.Messages() + Sql("SELECT OBS FROM CHEQUE_PRE_002"), "CHEGOU");
  other.Press("BtExcluir", "yes");
  EXPECT_EQ(other.Messages() + Sql("SELECT OBS FROM CHEQUE_PRE_002"), "");
}

TEST_F(ChequeTest, QueryNarrows) {
  Keep({.chave = "C1"});
  Keep({.chave = "C2", .status = "B", .cliente = "00051"});
  Keep({.chave = "C3", .status = "C"});
  Keep({.chave = "C4", .status = "D"});
  Run("UPDATE CHEQUE_PRE_001 SET FORNECEDOR = '00060', BANCO = '904' WHERE CHAVE = 'C4'");
  Run("UPDATE CHEQUE_PRE_001 SET EMISSAO = '12/31/1999' WHERE CHAVE = 'C3'");
  Desk desk(database_, At{"TfmChequePre"});
  desk.Page("TabSheet1");
  EXPECT_EQ(desk.Text("dtAEmiIni") + desk.Text("dtAVencFim"), "01/01/200031/12/2050");
  const auto found = [&](const Fields& fields) {
    for (const auto& [control, value] : fields) desk.Set(control, value);
    desk.Click("BitBtn6");
    std::vector<std::string> keys;
    for (const std::string& row : Split(desk.Rows("qryConsulta"), "\n"))
      if (!row.empty()) keys.push_back(row.substr(row.rfind('|') + 1));
    std::sort(keys.begin(), keys.end());
    return Join(keys, " ");
  };
  struct Case {
    Fields fields;
    const char* found;
  };
  const Case cases[] = {
      {{}, "C1 C2 C4"},
      {{{"dtAEmiIni", "31/12/1999"}}, "C1 C2 C3 C4"},
      {{{"rgASituacao", "Pendente"}}, "C1"},
      {{{"rgASituacao", "Baixado"}}, "C2"},
      {{{"rgASituacao", "Cancelado"}}, "C3"},
      {{{"rgASituacao", "Devolvido"}}, "C4"},
      {{{"rgASituacao", "Todos"}, {"edtACliente", "00051"}}, "C2"},
      {{{"edtACliente", "' OR '1'='1"}}, ""},
      {{{"edtACliente", ""}, {"edtAFornec", "00060"}}, "C4"},
      {{{"edtABanco", "903"}}, ""},
      {{{"edtAFornec", ""}}, "C1 C2 C3"},
      {{{"dtAVencIni", "13/11/2026"}}, ""},
      {{{"dtAVencIni", "12/11/2026"}, {"dtAVencFim", "12/11/2026"}}, "C1 C2 C3"},
      {{{"edtABanco", ""}, {"dtAEmiFim", "10/11/2026"}, {"rgASituacao", "Devolvido"}}, "C4"},
  };
  for (const Case& c : cases) EXPECT_EQ(found(c.fields), c.found);
  EXPECT_NE(desk.Text("EdtANomeCli") + desk.Rows("qryConsulta"), "");
  desk.DoubleClick("DBGrid2", 0, "CHAVE");
  EXPECT_EQ(desk.Text("EDChave"), "C4");
  EXPECT_EQ(desk.FocusName(), "BtnAltera");
}

// A cheque from another company brings a number that may stand here already.
TEST_F(ChequeTest, TwoChequesOfOneNumber) {
  Keep({.chave = "C1"});
  Keep({.chave = "C1"});
  Run("UPDATE CHEQUE_PRE_001 SET NUMERO = 'ALHEIO' WHERE NUMERO = 'C1' ROWS 1");
  Desk desk(database_, At{"TfmChequePre"});
  desk.Page("TabSheet1");
  desk.Click("BitBtn6");
  for (int row = 0; row < 2; ++row) {
    desk.Page("TabSheet1");
    desk.DoubleClick("DBGrid2", row, "CHAVE");
    const std::string numero = desk.Text("DBEDChequeNro");
    desk.Click("BtnAltera");
    desk.Fill({{"EdtObs", "DE " + numero}});
    desk.Click("BtnConfirmar");
    EXPECT_EQ(desk.Messages() + desk.Text("DBEDChequeNro"), numero);
  }
  EXPECT_EQ(Sql("SELECT NUMERO, OBS FROM CHEQUE_PRE_001 ORDER BY 1"), "ALHEIO|DE ALHEIO;C1|DE C1");
}

TEST_F(ChequeTest, RightsAreAskedFor) {
  Keep({.chave = "C1"});
  Put(Direito{.classe = "TfmChequePre"});
  for (const char* given : {"", "A", "E"}) {
    Run("UPDATE DIREITO SET TIPOS = '" + std::string(given) + "' WHERE LOGIN_BUSCA = 'leo'");
    Desk desk(database_, At{"TfmChequePre", "leo"});
    for (const char* button : {"Btincluir", "BtnAltera", "BtExcluir"}) {
      const bool may = *given == (button == std::string("BtExcluir") ? 'E' : 'A');
      desk.Click(button);
      if (desk.End() != "idle") {
        EXPECT_EQ(desk.Messages() == "Deseja eliminar este Registro?", may) << given << button;
        desk.Answer(may ? "no" : "ok");
        EXPECT_EQ(Mode(desk), "browse");
      } else {
        EXPECT_TRUE(may) << given << button;
        desk.Click("BtnDesistir");
      }
    }
  }
}

// --- Two users.

TEST_F(ChequeTest, OneOfTwoDoesIt) {
  struct Case {
    const char *name, *status, *button, *becomes;
  };
  const Case cases[] = {{"cancel", "P", "BitBtn3", "C"},  {"return", "B", "BitBtn4", "D"},
                        {"again", "D", "BitBtn7", "P"},   {"delete", "P", "BtExcluir", ""},
                        {"transfer", "P", "BitBtn2", ""}, {"alter", "P", "BtnAltera", "P"}};
  Desk first(database_), second(database_);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Empty("CHEQUE_PRE_001 CONTACOR_001 AUDITORIA");
    Run("DELETE FROM CHEQUE_PRE_002 WHERE CHAVE = 'C1'");
    Keep({.chave = "C1", .status = c.status, .cliente = c.status == std::string("P") ? "00001" : "00050"});
    const bool entry = c.name == std::string("return") || c.name == std::string("again");
    // Both stand at the last step.
    for (Desk* desk : {&first, &second}) {
      desk->Open("TfmChequePre");
      desk->Click(c.button);
      if (desk->End() == "waiting answer" && entry) desk->Answer("yes");
      if (entry) {
        desk->Fill({{"EdtConta", kConta}, {"EdtTipo", "1101"}, {"EdtHis", "005"}});
        desk->Click("BitBtn1");
      }
      if (c.name == std::string("transfer")) desk->Set("CBEmpresa", "1");
      if (c.name == std::string("alter")) desk->Fill({{"EdtObs", "MEU"}});
    }
    // Nobody holds the row.
    Run("UPDATE CHEQUE_PRE_001 SET AGENCIA = '0001' WHERE CHAVE = 'C1'");
    const auto finish = [&](Desk& desk) {
      if (desk.End() == "waiting answer") {
        desk.Answer("yes");
      } else {
        desk.Click("BtnConfirmar");
      }
      return desk.Messages();
    };
    EXPECT_EQ(finish(first), "");
    const auto left = [&] {
      return Cheques() + "/" + Movements() + "/" + Sql("SELECT COUNT(*) FROM AUDITORIA") + "/" +
             Count("CHEQUE_PRE_002", "CHAVE = 'C1'");
    };
    const std::string done = left();
    EXPECT_TRUE(done.starts_with(*c.becomes != 0 ? std::string("C1|") + c.becomes + "/" : "/")) << done;
    const std::string told = finish(second);
    EXPECT_TRUE(told.starts_with("error: Outro usuário")) << told;
    EXPECT_EQ(left(), done);
    second.CloseAll();
    first.Close();
  }
}

// What changed since the row was shown decides, before the user is asked anything.
TEST_F(ChequeTest, GuardsSeeTheRowAsItIs) {
  Keep({.chave = "C1", .status = "B"});
  Keep({.chave = "C2", .status = "B"});
  Desk desk(database_, At{"TfmChequePre"});
  EXPECT_EQ(desk.Text("RgSituacao"), "Baixado");
  Run("UPDATE CHEQUE_PRE_001 SET STATUS = 'D' WHERE CHAVE = 'C1'");
  EXPECT_EQ(desk.Told("BitBtn4"), "Cheque não pode ser Devolvido.");
  EXPECT_EQ(desk.Text("RgSituacao"), "Devolvido");
  // Never the neighbour in its place.
  Run("DELETE FROM CHEQUE_PRE_001 WHERE CHAVE = 'C1'");
  EXPECT_EQ(desk.Press("BitBtn4"),
            "error: Outro usuário alterou ou excluiu este cheque. Consulte-o novamente.");
  EXPECT_EQ(desk.Text("EDChave") + Cheques(), "C2C2|B");
  // An alteration that types nothing doesn't clear a movement whose clearing was undone meanwhile.
  Move("C2", "L");
  desk.Click("BtnAltera");
  Run("UPDATE CHEQUE_PRE_001 SET STATUS = 'P' WHERE CHAVE = 'C2'");
  EXPECT_TRUE(desk.Press("BtnConfirmar").starts_with("error: Outro usuário")) << desk.Messages();
  EXPECT_EQ(Sql("SELECT PENDENTE FROM CONTACOR_001"), "S");
  EXPECT_EQ(Mode(desk), "edit confirm");
  desk.Click("BtnDesistir");
  EXPECT_EQ(desk.Text("RgSituacao"), "Pendente");
}

}  // namespace
}  // namespace orv::test
