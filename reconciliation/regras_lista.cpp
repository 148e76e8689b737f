#include "reconciliation/regras_lista.h"

#include "frame/entry/unit.h"
#include "toolkit/row_writer.h"
#include "toolkit/text.h"

namespace orv {

thread_local TFmRegrasExtrato* FmRegrasExtrato = nullptr;

namespace {

const Unit kUnit("Regrasextrato", {"TFmRegrasExtrato", "Regras do Extrato", ScreenKind::Dialog, "",
                                   [](Application& a) { return std::make_unique<TFmRegrasExtrato>(a); }});

}  // namespace

TFmRegrasExtrato::TFmRegrasExtrato(Application& application)
    : Dialog(application, "TFmRegrasExtrato", "FmRegrasExtrato", "Regras do Extrato") {
  FmRegrasExtrato = this;
  TbRegras.CreateDataSet();
  AddSet(TbRegras);
  Layout(R"(
    GridRegras /
    @form {
      EdtTexto:6 CbOper:2 EdtDe:2 EdtAte:2 /
      EdtConta PqConta EdtDescConta EdtTipo PqClasse EdtDesTipo /
      EdtHis PqHistorico EdtDescHist
    } /
    @actions { @primary BtGrava BtNova @danger BtExclui @apart BtFecha }
  )");
  Lookups({
      {&EdtConta, &PqConta, {{"EMPRESA", &EdtDescConta}}, "Conta inexistente.", true, nullptr},
      {&EdtTipo, &PqClasse, {{"DESCRICAO", &EdtDesTipo}}, "Classe gerencial inválida.", true, nullptr},
      {&EdtHis, &PqHistorico, {{"DESCRICAO", &EdtDescHist}}, "Histórico inválido.", true, nullptr},
  });
  TbRegras.AfterScroll = [this] {
    nova_ = false;
    const RegraExtrato* regra = Escolhida();
    Mostra(regra == nullptr ? RegraExtrato{} : *regra);
  };
  BtGrava.OnClick = [this] { BtGravaClick(); };
  BtExclui.OnClick = [this] { BtExcluiClick(); };
  BtNova.OnClick = [this] {
    Mostra({});
    nova_ = true;
    EdtTexto.SetFocus();
  };
  BtFecha.OnClick = [this] { Close(); };
  Carrega();
}

void TFmRegrasExtrato::Carrega() {
  regras_ = RegrasExtrato(Funcoes, Tabela).Todas();
  TbRegras.EmptyDataSet();
  RowWriter linha(TbRegras);
  for (const RegraExtrato& regra : regras_) {
    linha[TbRegras.Texto] = regra.texto;
    linha[TbRegras.Operacao] = regra.operacao;
    if (!regra.de.IsZero()) linha[TbRegras.De] = regra.de;
    if (!regra.ate.IsZero()) linha[TbRegras.Ate] = regra.ate;
    linha[TbRegras.Conta] = regra.conta;
    linha[TbRegras.Grupo] = regra.classe;
    linha[TbRegras.Historico] = regra.historico;
    linha.Append();
  }
  TbRegras.First();
  BtExclui.SetEnabled(!regras_.empty());
}

const RegraExtrato* TFmRegrasExtrato::Escolhida() const {
  const int64_t linha = TbRegras.RecNo();
  if (nova_ || linha < 1 || linha > static_cast<int64_t>(regras_.size())) return nullptr;
  return &regras_[static_cast<std::size_t>(linha - 1)];
}

void TFmRegrasExtrato::Mostra(const RegraExtrato& regra) {
  EdtTexto.SetText(regra.texto);
  CbOper.SetItemIndex(regra.operacao == "C" ? 1 : 0);
  const auto limite = [](MoneyEdit& campo, Currency valor) {
    if (valor.IsZero()) {
      campo.Clear();
    } else {
      campo.SetAmount(valor);
    }
  };
  limite(EdtDe, regra.de);
  limite(EdtAte, regra.ate);
  EdtConta.SetText(regra.conta);
  EdtTipo.SetText(regra.classe);
  EdtHis.SetText(regra.historico);
}

void TFmRegrasExtrato::BtGravaClick() {
  const RegraExtrato regra{.conta = EdtConta.Text(),
                           .operacao = CbOper.ItemIndex() == 1 ? "C" : "D",
                           .texto = std::string(Trim(EdtTexto.Text())),
                           .de = EdtDe.Amount(),
                           .ate = EdtAte.Amount(),
                           .classe = EdtTipo.Text(),
                           .historico = EdtHis.Text()};
  if (const std::string problema = regra.Problema(); !problema.empty()) {
    Recusa(problema, regra.texto.empty() ? EdtTexto : EdtAte);
    return;
  }
  if (!Funcoes.Existe("SUBGRUPO", {{"CODIGO", regra.classe}})) {
    Recusa("Classe gerencial inválida.", EdtTipo);
    return;
  }
  if (!Funcoes.Existe("HISTCP", {{"HISTORICO", regra.historico}})) {
    Recusa("Histórico inválido.", EdtHis);
    return;
  }
  RegrasExtrato regras(Funcoes, Tabela);
  // Its conditions may have become others.
  if (const RegraExtrato* antes = Escolhida()) regras.Exclui(*antes);
  regras.Grava(regra);
  Tabela.CommitRetaining();
  nova_ = false;
  Carrega();
  Stored("Regra gravada: " + regra.Nome() + ".");
}

void TFmRegrasExtrato::BtExcluiClick() {
  const RegraExtrato* regra = Escolhida();
  if (regra == nullptr || !Ask("Deseja eliminar a regra " + regra->Nome() + "?", true)) return;
  RegrasExtrato(Funcoes, Tabela).Exclui(*regra);
  Tabela.CommitRetaining();
  Carrega();
}

}  // namespace orv
