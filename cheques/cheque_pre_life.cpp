// The page "Cadastro": a cheque is cancelled, returned by the bank, presented again.
#include <set>

#include "cheques/cheque_pre.h"
#include "ledger/cc_lanc_fluxo.h"
#include "rules/bloqueio.h"
#include "rules/historico.h"
#include "toolkit/text.h"

namespace orv {

void TfmChequePre::BitBtn3Click() {
  if (!Rele()) return;
  if (Texto("STATUS") != "P") return Inform("Cheque não pode ser Cancelado. Não está Pendente.");
  if (Texto("CLIENTE") != Trim(Funcoes.BuscaParametro("FAC", 80)))
    return Inform("Não é possível cancelar cheques de terceiros.");
  // Each row of a number goes.
  const std::string contacor = Funcoes.DBLocal("CONTACOR", true);
  if (Bloqueio(Contabil, Tabela)
          .Movimentos(contacor, "LANCAMENTO IN (SELECT CONTACOR.LANCAMENTO FROM " + contacor +
                                    " CONTACOR WHERE " + MovimentosDoCheque() + ")")) {
    return;
  }
  if (!Ask("Tem certeza que deseja cancelar o cheque?", true)) return;
  try {
    // Of two users only the one whose state stands undoes the settlements.
    MudaStatus("C");
    DesfazMovimentos();
    Tabela.CommitRetaining();
  } catch (...) {
    tbCheque_pre.Cancel();
    throw;
  }
  MostraGravado();
}

void TfmChequePre::BitBtn4Click() {
  if (!Rele()) return;
  if (Texto("STATUS") != "B" || Texto("TIPO") != "R") return Inform("Cheque não pode ser Devolvido.");
  LancaEvento("Tem certeza que deseja Devolver o cheque?", "DEVOLUCAO DO CHEQUE NR: " + Texto("NUMERO"), "D");
}

void TfmChequePre::BitBtn7Click() {
  if (!Rele()) return;
  if (Texto("TIPO") != "R") return Inform("É somente possível Reapresentar Cheques Recebidos.");
  if (Texto("STATUS") != "D") return Inform("É possível Reapresentar apenas cheques devolvidos.");
  LancaEvento("Tem certeza que deseja Reapresentar o cheque?",
              "REAPRESENTANCAO DO CHEQUE NR: " + Texto("NUMERO"), "P");
}

void TfmChequePre::LancaEvento(std::string_view pergunta, const std::string& observacao, const char* status) {
  try {
    if (Ask(pergunta, true)) LancaFluxo("", observacao, [this, status] { MudaStatus(status); });
    Tabela.CommitRetaining();
  } catch (...) {
    tbCheque_pre.Cancel();
    throw;
  }
  MostraGravado();
}

bool TfmChequePre::LancaFluxo(const std::string& lancamento, const std::string& observacao,
                              const std::function<void()>& grava) {
  auto& fluxo = static_cast<TFmCCLancFluxo&>(Owner().Adopt(std::make_unique<TFmCCLancFluxo>(Owner())));
  fluxo.EdtConta.Clear();
  fluxo.EdtObs.SetText(observacao);
  fluxo.EdtDocto.SetText(Texto("NUMERO"));
  fluxo.EdtValor.SetAmount(tbCheque_pre["VALOR"].AsCurrency());
  fluxo.DtLancto.SetDate(tbCheque_pre["EMISSAO"].AsDate());
  fluxo.DtCont.SetDate(tbCheque_pre["VENCIMENTO"].AsDate());
  fluxo.CbOper.SetItemIndex(1);
  fluxo.UsaRateioClasse = false;
  fluxo.Lancamento = lancamento;
  // The movement and the cheque are stored together or not at all.
  fluxo.AoGravar = [&fluxo, &grava] {
    if (fluxo.Tag == 0) grava();
  };
  fluxo.ShowModal();
  fluxo.AoGravar = nullptr;
  fluxo.Release();
  if (fluxo.Tag != 0) return false;
  // The dialog's tag is its whole answer: closed by its frame it counts as done.
  if (!fluxo.Gravado) grava();
  return true;
}

void TfmChequePre::MudaStatus(const char* status) {
  tbCheque_pre.Edit();
  try {
    AnotaMovimento(Funcoes, Texto("CHAVE"),
                   "CHEQUE " + Texto("NUMERO") + " DE " + Texto("STATUS") + " PARA " + status);
    tbCheque_pre["STATUS"] = status;
    tbCheque_pre.Store();
  } catch (...) {
    tbCheque_pre.Cancel();
    throw;
  }
}

std::string TfmChequePre::MovimentosDoCheque() {
  return "CONTACOR.DOCTO = " + Funcoes.Aspas(DBEDChequeNro.Text()) +
         " AND CONTACOR.CONTA = " + Funcoes.Aspas(DBEDConta.Text()) +
         " AND CONTACOR.BANCO = " + Funcoes.Aspas(DBEDCodBan.Text());
}

void TfmChequePre::DesfazMovimentos() {
  QryDup.Close();
  QryDup.SQL.Clear();
  QryDup.SQL.Add("SELECT CONTACOR.LANCAMENTO, PAGTO1.NUM_AP, PAGTO1.VAL_PAG ");
  QryDup.SQL.Add("FROM " + Funcoes.DBLocal("CONTACOR", true) + " CONTACOR");
  QryDup.SQL.Add("LEFT OUTER JOIN " + Funcoes.DBLocal("PAGTO1", true) + " PAGTO1");
  QryDup.SQL.Add("ON CONTACOR.LANCAMENTO = PAGTO1.LANCAMENTO");
  QryDup.SQL.Add("WHERE " + MovimentosDoCheque());
  QryDup.Open();
  const std::string pagto = Funcoes.DBLocal("PAGTO", true), pagto1 = Funcoes.DBLocal("PAGTO1", true);
  std::set<std::string> excluidos;
  for (; !QryDup.Eof(); QryDup.Next()) {
    const std::string lancamento = QryDup["LANCAMENTO"].AsString();
    const std::string titulo = Funcoes.Aspas(QryDup["NUM_AP"].AsString());
    // A movement that paid several titles goes once.
    if (excluidos.insert(lancamento).second) {
      Contabil.DeletaContaCorrente(lancamento);
      AnotaMovimento(Funcoes, lancamento, "EXCLUSAO DO LANCAMENTO, CANCELAMENTO DO CHEQUE " + Texto("NUMERO"),
                     TOperacaoLog::Exclusao);
    }
    Tabela.IBDatabase().Execute("DELETE FROM " + pagto1 + " WHERE LANCAMENTO = " + Funcoes.Aspas(lancamento) +
                                " AND NUM_AP = " + titulo);
    Tabela.IBDatabase().Execute("UPDATE " + pagto + " SET VAL_PAG = VAL_PAG - " +
                                Funcoes.PermanecePonto(QryDup["VAL_PAG"].AsCurrency()) +
                                " WHERE NUM_AP = " + titulo);
  }
}

}  // namespace orv
