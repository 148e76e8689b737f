// The page "Manutenção": what a posting begins with, so that little of it is typed. The account and the date
// of the one before, all of it, or a template; what recurs is proposed on its day.
#include "ledger/cc.h"
#include "ledger/cc_modelo.h"

namespace orv {
namespace {

constexpr const char* kManter = "TfmCC/Manter";

}  // namespace

void TfmCC::LigaRapido() {
  const auto textos = Funcoes.LeTextos(kManter);
  CbManter.SetChecked(!textos.empty() && textos.front().second == "S");
  CbManter.OnChange = [this] { CbManterChange(); };
  BtRepete.SetEnabled(false);
  BtRepete.OnClick = [this] { BtRepeteClick(); };
  BtModelos.OnClick = [this] { PqModelos.AbrePesquisa(); };
  PqModelos.OnFechaPesquisa = [this] { PqModelosFecha(); };
  BtGuarda.OnClick = [this] { BtGuardaClick(); };
  BtVence.OnClick = [this] { BtVenceClick(); };
  BtPassa.OnClick = [this] { BtPassaClick(); };

  // Who went back to a date goes through all of them.
  for (DateEdit* data : {&EdtDtLanc, &EdtDtVencto, &EdtDtCont}) {
    data->OnEnter = [this] { datas_ = true; };
    data->Passed = [this, data] { return nova_ && !datas_ && !data->Date().Empty(); };
  }
  // Nor does the list of a class that is still to be typed stand in his way.
  EdtTipo.OnExit = [this, sai = EdtTipo.OnExit] {
    const Control* const para = FocusTarget();
    if (nova_ && EdtTipo.Empty() && (para == &EdtDtLanc || para == &EdtDtVencto || para == &EdtDtCont))
      return;
    sai();
  };
  // The class has set the side.
  CbOper.Passed = [this] { return nova_ && !EdtDesTipo.Empty(); };
  // The split follows the amount until the user touches it.
  EdtValor.OnExit = [this] {
    if (preenchida_ && !mexida_) PartidaContabil();
  };
}

void TfmCC::CbManterChange() {
  Funcoes.GravaTexto(kManter, CbManter.Checked() ? "S" : "");
  Tabela.CommitRetaining();
}

bool TfmCC::Mantem() {
  if (!CbManter.Checked() || !ultima_) return false;
  EdtConta.SetText(ultima_->campos.conta);
  for (DateEdit* data : {&EdtDtLanc, &EdtDtVencto, &EdtDtCont}) data->SetDate(ultima_->dt_lan);
  return true;
}

ModeloLanc TfmCC::Preenchido() const {
  return {.nome = "",
          .conta = EdtConta.Text(),
          .docto = EdtNumDoc.Text(),
          .classe = EdtTipo.Text(),
          .historico = EdtHis.Text(),
          .operacao = CbOper.Text(),
          .pendente = Letra(RgSituacao.ItemIndex()),
          .valor = EdtValor.Amount(),
          .observacao = EdtObs.Text()};
}

void TfmCC::Preenche(const ModeloLanc& modelo) {
  EdtConta.SetText(modelo.conta);
  EdtNumDoc.SetText(modelo.docto);
  // A code that is gone since then is to be typed anew: nobody leaves these fields, which would tell it.
  const auto codigo = [this](Edit& campo, const char* tabela, const char* coluna, const std::string& valor) {
    campo.SetText(Funcoes.Existe(tabela, {{coluna, valor}}) ? valor : "");
  };
  codigo(EdtTipo, "SUBGRUPO", "CODIGO", modelo.classe);
  codigo(EdtHis, "HISTCP", "HISTORICO", modelo.historico);
  // Behind the class and the history, which propose them.
  CbOper.SetItemIndex(modelo.operacao == "-" ? 1 : 0);
  RgSituacao.SetItemIndex(SituacaoDe(modelo.pendente));
  if (!modelo.valor.IsZero()) EdtValor.SetAmount(modelo.valor);
  EdtObs.SetText(modelo.observacao);
  preenchida_ = true;
  PartidaContabil();
  EdtValor.SetFocus();
}

void TfmCC::BtRepeteClick() {
  if (!Comeca()) return;
  EdtDtLanc.SetDate(ultima_->dt_lan);
  EdtDtVencto.SetDate(ultima_->dt_vencto);
  EdtDtCont.SetDate(ultima_->dt_cont);
  Preenche(ultima_->campos);
}

void TfmCC::PqModelosFecha() {
  const auto modelo = ModelosLanc(Funcoes, Tabela).Le(PqModelos.RetornoPesquisa("NOME"));
  if (modelo) UsaModelo(*modelo);
}

void TfmCC::UsaModelo(const ModeloLanc& modelo) {
  if (!Comeca()) return;
  modelo_ = modelo;
  if (modelo.Vencido(Today())) EdtDtVencto.SetDate(modelo.proximo);
  Preenche(modelo);
}

void TfmCC::BtGuardaClick() {
  auto& dialogo = static_cast<TFmCCModelo&>(Owner().Adopt(std::make_unique<TFmCCModelo>(Owner())));
  dialogo.Modelo = Preenchido();
  if (modelo_) {
    dialogo.Modelo.nome = modelo_->nome;
    dialogo.Modelo.meses = modelo_->meses;
    dialogo.Modelo.dia = modelo_->dia;
    dialogo.Modelo.proximo = modelo_->proximo;
  }
  dialogo.Mostra();
  dialogo.ShowModal();
  if (modelo_) modelo_ = ModelosLanc(Funcoes, Tabela).Le(modelo_->nome);
}

void TfmCC::BtVenceClick() {
  // Somebody else may have posted it since the page was shown.
  if (proposto_ && ModelosLanc(Funcoes, Tabela).Aberto(*proposto_)) return UsaModelo(*proposto_);
  MostraVencidos();
}

void TfmCC::BtPassaClick() {
  if (!proposto_) return;
  const ModeloLanc passado = *proposto_;
  const bool avancou = ModelosLanc(Funcoes, Tabela).Avanca(passado);
  MostraVencidos();
  Tabela.CommitRetaining();
  if (avancou) {
    User().Note(NoteKind::Changed,
                "Modelo " + passado.nome + " deixado para " + passado.Seguinte().Brazil() + ".");
  }
}

void TfmCC::MostraVencidos() {
  const auto vencidos = ModelosLanc(Funcoes, Tabela).Vencidos(Today());
  PanelVence.SetVisible(!vencidos.empty());
  BtRepete.SetEnabled(ultima_.has_value());
  proposto_.reset();
  if (vencidos.empty()) return LbVence.Mostra("");
  proposto_ = vencidos.front();
  LbVence.Mostra((vencidos.size() == 1 ? "1 modelo vence hoje"
                                       : std::to_string(vencidos.size()) + " modelos vencem hoje") +
                 ". Próximo: " + proposto_->nome + ", de " + proposto_->proximo.Brazil() +
                 (proposto_->valor.IsZero() ? "" : ", " + proposto_->valor.Brazil()) + ".");
}

}  // namespace orv
