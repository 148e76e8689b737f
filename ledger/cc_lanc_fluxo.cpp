#include "ledger/cc_lanc_fluxo.h"

#include "frame/entry/unit.h"
#include "rules/bloqueio.h"
#include "rules/conta_contabil.h"
#include "rules/rateio.h"

namespace orv {

thread_local TFmCCLancFluxo* FmCCLancFluxo = nullptr;

namespace {

const Unit kUnit("Cclancfluxo", {"TFmCCLancFluxo", "Lancamento de Fluxo", ScreenKind::Dialog, "",
                                 [](Application& a) { return std::make_unique<TFmCCLancFluxo>(a); }});

constexpr const char* kConta = "Conta inválida.";
constexpr const char* kClasse = "Classe gerencial inválida.";
constexpr const char* kHistorico = "Histórico inválido.";

enum Oper { kDebito = 0, kCredito = 1 };

}  // namespace

TFmCCLancFluxo::TFmCCLancFluxo(Application& application)
    : Dialog(application, "TFmCCLancFluxo", "FmCCLancFluxo", "Lancamento de Fluxo") {
  FmCCLancFluxo = this;
  AbreTabelas({"TbCadConta"});
  HideOnClose();
  Layout(R"(
    @form {
      EdtConta PqConta EdtDescConta EdtDocto:4 /
      EdtTipo wwTipo EdtDesTipo EdtHis pqHistorico EdtDescHist /
      CbOper:2 @amount EdtValor:4 DtLancto:3 DtCont:3 /
      EdtObs:12
    } /
    LbRegra /
    GbRegra { @form { CbRegra:3 EdtRegraTexto:5 EdtRegraDe:2 EdtRegraAte:2 } } /
    @actions { @primary BitBtn1 @apart BitBtn2 }
  )");
  Lookups({
      {&EdtConta, &PqConta, {{"EMPRESA", &EdtDescConta}}, kConta, false, nullptr},
      {&EdtTipo, &wwTipo, {{"DESCRICAO", &EdtDesTipo}}, kClasse, false, [this] { EdtTipoChange(); }},
      {&EdtHis, &pqHistorico, {{"DESCRICAO", &EdtDescHist}}, kHistorico, false, nullptr},
  });
  TodayOnEnter(DtLancto);
  TodayOnEnter(DtCont);
  GbRegra.SetVisible(false);
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
}

void TFmCCLancFluxo::Fixa() {
  for (Control* control : std::initializer_list<Control*>{&EdtConta, &PqConta, &CbOper, &EdtValor})
    control->SetEnabled(false);
  // Entered, they would take today.
  for (DateEdit* data : {&DtLancto, &DtCont}) data->Passed = [] { return true; };
  for (Edit* campo : {&EdtDocto, &EdtTipo, &EdtHis}) {
    if (campo->Empty()) return campo->SetFocus();
  }
  BitBtn1.SetFocus();
}

void TFmCCLancFluxo::OfereceRegra(const std::string& texto, bool marcada) {
  GbRegra.SetVisible(true);
  EdtRegraTexto.SetText(texto);
  CbRegra.SetChecked(marcada);
}

void TFmCCLancFluxo::EdtTipoChange() {
  if (!CbOper.Enabled()) return;
  const std::string operacao = Funcoes.Busca_Valor("SUBGRUPO", {{"CODIGO", EdtTipo.Text()}}, "OPERACAO");
  CbOper.SetItemIndex(operacao == "+" ? kCredito : kDebito);
}

void TFmCCLancFluxo::BitBtn1Click() {
  // The locks of closed periods would let an empty date pass. Of an unknown account there is no period; that
  // it is missing is told below.
  if (!ValidaDatas()) return;
  Bloqueio bloqueio(Contabil, Tabela);
  if (bloqueio.Conta(EdtConta.Text(), {DtLancto.Date(), DtCont.Date()}) || bloqueio.Caixa({DtCont.Date()}))
    return;
  if (!ValidaCampos()) return;
  const std::string antiga = ContaAntiga();
  if (!antiga.empty() && bloqueio.Conta(antiga, {DtCont.Date()})) return;
  if (Lancamento.empty()) Lancamento = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);

  // All questions come before the first write.
  RateiaClasse(false);
  const auto partidas = Partidas();
  RateiaClasse(true);
  partidas->GravaContabilidadeFinan();
  LancaMovimento(antiga);
  Funcoes.GeraLog("CONTA CORRENTE", "INCLUSÃO DO LANCAMENTO " + Lancamento, TOperacaoLog::Processo,
                  Lancamento);
  if (AoGravar) AoGravar();
  Tabela.CommitRetaining();
  Gravado = true;
  Close();
}

void TFmCCLancFluxo::BitBtn2Click() {
  Tag = 1;
  Close();
}

bool TFmCCLancFluxo::ValidaDatas() {
  if (DtLancto.Date().Empty()) return Recusa("Data de lançamento inválida.", DtLancto);
  if (DtCont.Date().Empty()) return Recusa("Data de contabilização inválida.", DtCont);
  return true;
}

bool TFmCCLancFluxo::ValidaCampos() {
  if (EdtValor.Amount() <= Currency()) return Recusa("Valor inválido.", EdtValor);
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}})) return Recusa(kConta, EdtConta);
  if (!Funcoes.Existe("HISTCP", {{"HISTORICO", EdtHis.Text()}})) return Recusa(kHistorico, EdtHis);
  if (!Funcoes.Existe("SUBGRUPO", {{"CODIGO", EdtTipo.Text()}})) return Recusa(kClasse, EdtTipo);
  if (CbOper.ItemIndex() < 0) return Recusa("Operação inválida.", CbOper);
  if (EdtDocto.Empty()) return Recusa("Documento inválido.", EdtDocto);
  return true;
}

std::string TFmCCLancFluxo::Operacao(bool oposta) const {
  return (CbOper.ItemIndex() == kDebito) != oposta ? "-" : "+";
}

void TFmCCLancFluxo::RateiaClasse(bool grava) {
  if (!UsaRateioClasse) return;
  if (!Contabil.SetRateioClasse(Lancamento, EdtTipo.Text(), "CC", EdtValor.Amount(), "0", true, Date(),
                                grava)) {
    Abort();
  }
}

std::string TFmCCLancFluxo::ContaDoBanco() {
  // From the row that is most exact to the general one.
  const auto chave = [this](const std::string& classe, const std::string& historico) {
    return ChaveContabil{.conta = EdtConta.Text(),
                         .historico = historico,
                         .classe = classe,
                         .carteira = "0",
                         .codcli = CodCliente};
  };
  return ContaContabil(Funcoes, Tabela,
                       {chave(EdtTipo.Text(), EdtHis.Text()), chave(EdtTipo.Text(), "0"), chave("0", "0")});
}

std::unique_ptr<TContabil> TFmCCLancFluxo::Partidas() {
  auto partidas = Contabil.Create();
  const auto linha = [&](const std::string& credita, const std::string& debita, Currency valor) {
    partidas->SetContabilidadeFinan({.lancamento = Lancamento,
                                     .docto = EdtDocto.Text(),
                                     .docto2 = EdtDocto.Text(),
                                     .conta_c = credita,
                                     .conta_d = debita,
                                     .operacao = Operacao(),
                                     .origem = "CC",
                                     .classe = EdtTipo.Text(),
                                     .historico = EdtHis.Text(),
                                     .valor = valor,
                                     .data = DtCont.Date(),
                                     .codigo = "000-00"});
  };
  const auto contas = ContasDoRateio(Contabil.RegrasRateio(EdtTipo.Text(), "C", ""));
  if (contas.empty()) linha("0", "0", EdtValor.Amount());
  const std::string banco = contas.empty() ? "" : ContaDoBanco();
  for (const auto& [conta, percentual] : contas) {
    const Currency valor = EdtValor.Amount() * (percentual / 100);
    linha(banco, conta, valor);
    partidas->GravaRaterioCentroCusto(conta, EdtTipo.Text(), "C", "VF", valor);
  }
  if (!partidas->ConfirmaDadosContabilidade(0)) {
    Tag = 1;
    Abort();
  }
  return partidas;
}

std::string TFmCCLancFluxo::ContaAntiga() {
  if (Lancamento.empty()) return "";
  const auto antigos = Tabela.IBDatabase().Rows("SELECT CONTA FROM " + Funcoes.DBLocal("CONTACOR", true) +
                                                " WHERE LANCAMENTO = " + Funcoes.Aspas(Lancamento) +
                                                " AND DOCTO = " + Funcoes.Aspas(EdtDocto.Text()) +
                                                " AND OPERACAO = " + Funcoes.Aspas(Operacao()));
  return antigos.empty() ? "" : antigos.back()[0].AsString();
}

void TFmCCLancFluxo::LancaMovimento(const std::string& antiga) {
  const auto lanca = [this](const std::string& conta, const std::string& operacao) {
    Contabil.LancaContaCorrente({.lancamento = Lancamento,
                                 .docto = EdtDocto.Text(),
                                 .conta = conta,
                                 .grupo = EdtTipo.Text(),
                                 .historico = EdtHis.Text(),
                                 .tipo = "L",
                                 .pendente = "S",
                                 .operacao = operacao,
                                 .observacao = EdtObs.Text(),
                                 .valor = EdtValor.Amount(),
                                 .dt_lan = DtLancto.Date(),
                                 .dt_vencto = DtCont.Date(),
                                 .dt_cont = DtCont.Date()});
  };
  lanca(EdtConta.Text(), Operacao());
  if (antiga.empty()) return;
  Tabela.TbCadConta().Locate("CONTA", antiga);
  lanca(antiga, Operacao(true));
}

}  // namespace orv
