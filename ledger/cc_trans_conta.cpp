#include "ledger/cc_trans_conta.h"

#include "frame/entry/unit.h"
#include "rules/bloqueio.h"
#include "rules/conta_contabil.h"
#include "toolkit/text.h"

namespace orv {

thread_local TFmCCTransConta* FmCCTransConta = nullptr;

namespace {

const Unit kUnit("Cctransconta", {"TFmCCTransConta", "Transferência de Contas", ScreenKind::Dialog, "",
                                  [](Application& a) { return std::make_unique<TFmCCTransConta>(a); }});

constexpr const char* kConta = "A conta informada é inválida.";
constexpr const char* kClasse = "A Classe informada é inválida.";
constexpr const char* kHistorico = "O histórico informado é inválido.";

// What the text of an accounting entry holds.
constexpr std::size_t kTexto = 200;

}  // namespace

TFmCCTransConta::TFmCCTransConta(Application& application)
    : Dialog(application, "TFmCCTransConta", "FmCCTransConta", "Transferência de Contas") {
  FmCCTransConta = this;
  Layout(R"(
    @form {
      EdtConta PqConta EdtDescConta /
      EdtContaDest PqContaDest EdtDescContaDest /
      EdtDocto:4 @amount EdtValor:4 DtLan:2 DtCont:2 /
      EdtClasseSai PqClasseSai EdtDesClaSai EdtHisSai pqHistSai EdtDescHistSai /
      EdtClasseEnt PqClasseEnt EdtDesClaEnt EdtHisEnt pqHistEnt EdtDescHistEnt /
      EdtObs:10 CbPendente:2
    } /
    @actions { @primary BitBtn1 @apart BitBtn2 }
  )");
  LigaPesquisas();
  TodayOnEnter(DtLan);
  TodayOnEnter(DtCont);
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { Close(); };
}

void TFmCCTransConta::LigaPesquisas() {
  const auto conta = [](Edit& field, TPesquisa& lookup, Edit& into) {
    return LookupTrio{&field, &lookup, {{"EMPRESA", &into}}, kConta, false, nullptr, true};
  };
  const auto classe = [](Edit& field, TPesquisa& lookup, Edit& into) {
    return LookupTrio{&field, &lookup, {{"DESCRICAO", &into}}, kClasse, false, nullptr, true};
  };
  const auto historico = [](Edit& field, TPesquisa& lookup, Edit& into, std::function<void()> change) {
    return LookupTrio{&field, &lookup, {{"DESCRICAO", &into}}, kHistorico, false, std::move(change), true};
  };
  Lookups({conta(EdtConta, PqConta, EdtDescConta), conta(EdtContaDest, PqContaDest, EdtDescContaDest),
           classe(EdtClasseSai, PqClasseSai, EdtDesClaSai), classe(EdtClasseEnt, PqClasseEnt, EdtDesClaEnt),
           historico(EdtHisSai, pqHistSai, EdtDescHistSai, nullptr),
           historico(EdtHisEnt, pqHistEnt, EdtDescHistEnt, [this] { EdtHisEntChange(); })});

  // Beside what the fields do by themselves.
  const auto tambem = [](std::function<void()>& action, std::function<void()> then) {
    action = [first = std::move(action), then = std::move(then)] {
      first();
      then();
    };
  };
  for (std::function<void()>* action :
       {&EdtConta.OnExit, &EdtContaDest.OnExit, &PqConta.OnFechaPesquisa, &PqContaDest.OnFechaPesquisa}) {
    tambem(*action, [this] { IncluiObservacao(); });
  }
  // The same history chosen again is no change of the field, but takes back what was ticked by hand.
  tambem(pqHistEnt.OnFechaPesquisa, [this] { EdtHisEntChange(); });
}

void TFmCCTransConta::EdtHisEntChange() {
  CbPendente.SetChecked(Funcoes.Busca_Valor("HISTCP", {{"HISTORICO", EdtHisEnt.Text()}}, "SITUACAO") == "P");
}

void TFmCCTransConta::IncluiObservacao() {
  if (EdtConta.Empty() || EdtContaDest.Empty() || !EdtObs.Empty()) return;
  EdtObs.SetText("Trf. cc - de " + EdtConta.Text() + " para " + EdtContaDest.Text());
}

void TFmCCTransConta::BitBtn1Click() {
  if (!ValidaCampos()) return;
  const std::string numero = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
  Bloqueio bloqueio(Contabil, Tabela);
  const std::vector<Date> datas = {DtCont.Date()};
  if (bloqueio.Conta(EdtConta.Text(), datas) || bloqueio.Conta(EdtContaDest.Text(), datas) ||
      bloqueio.Caixa(datas)) {
    return;
  }
  if (!LancaContabilidade(numero)) return;
  LancaMovimentos(numero);
  Funcoes.GeraLog("TRANSFERENCIA ENTRE CONTAS",
                  "LANCAMENTO:" + numero + " TRASFERENCIA DA CONTA:" + EdtConta.Text() +
                      " PARA CONTA:" + EdtContaDest.Text(),
                  TOperacaoLog::Processo, EdtConta.Text());
  Tabela.CommitRetaining();
  LimpaTela();
  Close();
}

bool TFmCCTransConta::ValidaCampos() {
  if (DtLan.Date().Empty()) return Recusa("A Data de Lançamento informada é inválida.", DtLan);
  if (DtCont.Date().Empty()) return Recusa("A Data de Contabilização informada é inválida.", DtCont);
  for (Edit* conta : {&EdtConta, &EdtContaDest}) {
    if (!Funcoes.Existe("CADCONTA", {{"CONTA", conta->Text()}})) return Recusa(kConta, *conta);
  }
  return true;
}

bool TFmCCTransConta::LancaContabilidade(const std::string& numero) {
  const std::string texto(CutChars(EdtDesClaSai.Text() + " - " + EdtObs.Text(), kTexto));
  const std::string destino = ContaContabil(
      Funcoes, Tabela,
      {{.conta = EdtContaDest.Text(), .historico = EdtHisEnt.Text()}, {.conta = EdtContaDest.Text()}});
  const std::string origem =
      ContaContabil(Funcoes, Tabela,
                    {{.conta = EdtConta.Text(), .historico = EdtHisSai.Text()}, {.conta = EdtConta.Text()}});
  const auto partida = Contabil.Create();
  partida->SetContabilidadeFinan({.lancamento = numero,
                                  .docto = EdtDocto.Text(),
                                  .docto2 = EdtDocto.Text(),
                                  .conta_c = origem,
                                  .conta_d = destino,
                                  .operacao = "-",
                                  .origem = "CC",
                                  .classe = EdtClasseSai.Text(),
                                  .historico = EdtHisSai.Text(),
                                  .valor = EdtValor.Amount(),
                                  .data = DtLan.Date(),
                                  .codigo = "000-00",
                                  .observacao = texto});
  if (!partida->ConfirmaDadosContabilidade(0)) return false;
  partida->GravaContabilidadeFinan();
  return true;
}

void TFmCCTransConta::LancaMovimentos(const std::string& numero) {
  const auto lanca = [&](const Edit& conta, const Edit& classe, const Edit& historico,
                         const std::string& pendente, const char* operacao) {
    Contabil.LancaContaCorrente({.lancamento = numero,
                                 .docto = EdtDocto.Text(),
                                 .conta = conta.Text(),
                                 .grupo = classe.Text(),
                                 .historico = historico.Text(),
                                 .tipo = "TR",
                                 .pendente = pendente,
                                 .operacao = operacao,
                                 .observacao = EdtObs.Text(),
                                 .valor = EdtValor.Amount(),
                                 .dt_lan = DtLan.Date(),
                                 .dt_vencto = DtCont.Date(),
                                 .dt_cont = DtCont.Date()});
  };
  lanca(EdtConta, EdtClasseSai, EdtHisSai, Funcoes.LancamentoPendente(EdtConta.Text(), EdtHisSai.Text()),
        "-");
  lanca(EdtContaDest, EdtClasseEnt, EdtHisEnt, CbPendente.Checked() ? "S" : "N", "+");
}

void TFmCCTransConta::LimpaTela() {
  for (Edit* campo :
       std::initializer_list<Edit*>{&EdtConta, &EdtContaDest, &EdtDocto, &EdtValor, &DtLan, &DtCont,
                                    &EdtClasseSai, &EdtHisSai, &EdtClasseEnt, &EdtHisEnt, &EdtObs}) {
    campo->Clear();
  }
  CbPendente.SetChecked(false);
}

}  // namespace orv
