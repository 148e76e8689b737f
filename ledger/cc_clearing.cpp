// The page "Acesso": the selected movement is cleared, or its clearing reversed.
#include "ledger/cc.h"
#include "rules/bloqueio.h"
#include "rules/como_lido.h"
#include "rules/compensacao.h"
#include "rules/conta_contabil.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kNenhum = "Nenhum lançamento selecionado.";
constexpr const char* kCompensado = "Lançamento já compensado.";
constexpr const char* kAlterado =
    "Outro usuário alterou este lançamento depois da consulta. Nada foi gravado.";
constexpr const char* kIdentidade = "LANCAMENTO;DOCTO;CONTA;OPERACAO";

// The kind of the histories that are cleared with accounting, as cheques are.
constexpr const char* kTipoCheque = "08";

bool Compensado(const std::string& pendente) { return pendente == "N" || pendente == "C"; }

}  // namespace

void TfmCC::SpeedButton8Click() {
  if (!Funcoes.ValidaData(DtBaixaComp.Text())) {
    Recusa("Data de Compensação inválida.", DtBaixaComp);
    Abort();
  }
  if (TbConsulta.IsEmpty()) return Inform(kNenhum);
  Bloqueio bloqueio(Contabil, Tabela);
  if (bloqueio.Conta(TbConsulta.Conta.AsString(), {DtBaixaComp.Date()})) return;
  if (Compensado(TbConsulta.Pendente.AsString())) return Inform(kCompensado);
  const std::string lancamento = TbConsulta.Lancamento.AsString(), docto = TbConsulta.Docto.AsString();
  const std::vector<Value> proxima = ProximaConsultada();

  // The user isn't asked about what another one has done already.
  if (!Ha("CONTACOR", LinhaConsultada())) return AvisaMudanca();
  // All that is cleared along leaves its day and comes to the clearing's.
  const std::string contacor = Funcoes.DBLocal("CONTACOR", true);
  if (bloqueio.Movimentos(contacor, DaConsultada(), {DtBaixaComp.Date()})) return;
  const std::string numero = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
  const auto partida = PartidaDaCompensacao(numero);
  if (partida && !partida->ConfirmaDadosContabilidade(0)) return;

  const std::string data = Funcoes.AspasData(DtBaixaComp.Date());
  const auto anteriores =
      Tabela.IBDatabase().Rows("SELECT DISTINCT LANC_CON FROM " + contacor + " WHERE " + DaConsultada());
  if (!AtualizaConsultada("PENDENTE = 'N', DT_CONT = " + data + ", LANC_CON = " + Funcoes.Aspas(numero)))
    return AvisaMudanca();
  // What was cleared along under another number is now cleared under this one alone.
  for (const auto& anterior : anteriores)
    ApagaPartidasDaCompensacao(Funcoes, Contabil, Tabela, anterior[0].AsString());
  if (partida) partida->GravaContabilidadeFinan();
  // A cheque behind the movement is settled with it, whether the clearing has accounting or not.
  Tabela.IBDatabase().Execute(
      "UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'B', DT_BAIXA = " + data + " WHERE " +
      Igual("CHAVE", lancamento) + " AND " + Igual("NUMERO", docto) + " AND STATUS = 'P'");
  Funcoes.GeraLog("CONTA CORRENTE", "COMPENSAÇÃO DO LANCAMENTO " + lancamento, TOperacaoLog::Processo,
                  lancamento);
  Tabela.CommitRetaining();
  BitBtn5Click();
  TbConsulta.Locate(kIdentidade, proxima);
}

void TfmCC::SpeedButton6Click() {
  if (TbConsulta.IsEmpty()) return Inform(kNenhum);
  const std::string lancamento = TbConsulta.Lancamento.AsString(), docto = TbConsulta.Docto.AsString(),
                    compensacao(Trim(TbConsulta.LancCon.AsString()));
  if (!compensacao.empty() && Funcoes.Existe("EXTRATO", {{"LANC_CON", compensacao}, {"CONCILIADO", "S"}})) {
    return Inform("Lançamento conciliado com o extrato. Impossível continuar.");
  }
  if (!ValidaLancamento(lancamento, TbConsulta.DtCont.AsDate(), TbConsulta.DtLan.AsDate(), false)) return;

  if (!AtualizaConsultada("PENDENTE = 'S', LANC_CON = ''")) return AvisaMudanca();
  Tabela.IBDatabase().Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'P' WHERE " +
                              Igual("CHAVE", lancamento) + " AND " + Igual("NUMERO", docto) +
                              " AND STATUS = 'B'");
  ApagaPartidasDaCompensacao(Funcoes, Contabil, Tabela, compensacao);
  Funcoes.GeraLog("CONTA CORRENTE", "ESTORNO DE COMPENSAÇÃO LANC. " + lancamento, TOperacaoLog::Processo,
                  lancamento);
  Tabela.CommitRetaining();
  BitBtn5Click();
}

std::unique_ptr<TContabil> TfmCC::PartidaDaCompensacao(const std::string& numero) {
  const std::string docto = TbConsulta.Docto.AsString(), conta = TbConsulta.Conta.AsString(),
                    operacao = TbConsulta.Operacao.AsString();
  std::string historico = TbConsulta.Historico.AsString();
  if (historico.empty()) historico = "0";
  const bool cheque = TbConsulta.TipoDoc.AsString() == "CH";
  if (!cheque && Funcoes.Busca_Valor("HISTCP", {{"HISTORICO", historico}}, "TIPO") != kTipoCheque) {
    return nullptr;
  }

  const std::string banco = ContaContabil(Funcoes, Tabela, {{.conta = conta, .historico = "0"}});
  const std::string contrapartida =
      ContaContabil(Funcoes, Tabela, {{.conta = conta, .historico = historico}});
  const bool saida = cheque && operacao == "-";
  auto partida = Contabil.Create();
  partida->SetContabilidadeFinan({.lancamento = numero,
                                  .docto = docto,
                                  .docto2 = docto,
                                  .conta_c = saida ? banco : contrapartida,
                                  .conta_d = saida ? contrapartida : banco,
                                  .operacao = operacao,
                                  .origem = "CC",
                                  .historico = TbConsulta.Historico.AsString(),
                                  .valor = TbConsulta.Valor.AsCurrency(),
                                  .data = DtBaixaComp.Date(),
                                  .codigo = "000",
                                  .observacao = "COMPENSAÇÃO DOCTO NR: " + docto + "."});
  return partida;
}

// --- The selected row and its neighbour.

std::vector<Value> TfmCC::ProximaConsultada() {
  // Of the last row it is the row itself.
  const ControlsHold hold(TbConsulta);
  const int64_t linha = TbConsulta.RecNo();
  const bool ha = TbConsulta.MoveBy(1) == 1;
  std::vector<Value> proxima{TbConsulta.Lancamento.Get(), TbConsulta.Docto.Get(), TbConsulta.Conta.Get(),
                             TbConsulta.Operacao.Get()};
  if (ha) TbConsulta.SetRecNo(linha);
  return proxima;
}

std::string TfmCC::LinhaConsultada() const {
  // All that the inquiry showed of what decides, so that nothing is cleared that the user hasn't seen.
  ComoLido linha(Funcoes);
  for (const Field* campo :
       {&TbConsulta.Lancamento, &TbConsulta.Docto, &TbConsulta.Conta, &TbConsulta.Operacao})
    linha.Chave(campo->Name(), campo->AsString());
  for (const Field* campo :
       {&TbConsulta.Pendente, &TbConsulta.LancCon, &TbConsulta.Historico, &TbConsulta.TipoDoc})
    linha.Texto(campo->Name(), campo->AsString());
  return linha.Valor("VALOR", TbConsulta.Valor.AsCurrency()).Condicao();
}

std::string TfmCC::DaConsultada() const {
  return Igual("LANCAMENTO", TbConsulta.Lancamento.AsString()) + " AND " +
         Igual("DOCTO", TbConsulta.Docto.AsString());
}

bool TfmCC::AtualizaConsultada(const std::string& valores) {
  const std::string altera = "UPDATE " + Funcoes.DBLocal("CONTACOR", true) + " SET " + valores + " WHERE ";
  // One statement both looks and changes the row, so that of two users only the first one does.
  if (Tabela.IBDatabase().Execute(altera + LinhaConsultada()) == 0) return false;
  Tabela.IBDatabase().Execute(altera + DaConsultada());
  return true;
}

void TfmCC::AvisaMudanca() {
  const std::string pendente =
      Tabela.IBDatabase()
          .Scalar("SELECT PENDENTE FROM " + Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
                  Identidade(TbConsulta.Lancamento.AsString(), TbConsulta.Docto.AsString(),
                             TbConsulta.Conta.AsString(), TbConsulta.Operacao.AsString())
                      .Condicao())
          .AsString();
  Inform(!Compensado(TbConsulta.Pendente.AsString()) && Compensado(pendente) ? kCompensado : kAlterado);
  BitBtn5Click();
}

}  // namespace orv
