#include "ledger/cc_lanc_fluxo.h"

#include "frame/entry/unit.h"
#include "rules/bloqueio.h"

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
    @actions { @primary BitBtn1 @apart BitBtn2 }
  )");
  Lookups({
      {&EdtConta, &PqConta, "CADCONTA", "CONTA", {{"EMPRESA", &EdtDescConta}}, kConta, false, nullptr},
      {&EdtTipo,
       &wwTipo,
       "SUBGRUPO",
       "CODIGO",
       {{"DESCRICAO", &EdtDesTipo}},
       kClasse,
       false,
       [this] { EdtTipoChange(); }},
      {&EdtHis,
       &pqHistorico,
       "HISTCP",
       "HISTORICO",
       {{"DESCRICAO", &EdtDescHist}},
       kHistorico,
       false,
       nullptr},
  });
  TodayOnEnter(DtLancto);
  TodayOnEnter(DtCont);
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
}

void TFmCCLancFluxo::EdtTipoChange() {
  const std::string operacao =
      Funcoes.Busca_Valor("SUBGRUPO", "CODIGO", "OPERACAO", Funcoes.Aspas(EdtTipo.Text()), true, true);
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

bool TFmCCLancFluxo::Recusa(std::string_view message, Control& field) {
  Inform(message);
  field.SetFocus();
  return false;
}

bool TFmCCLancFluxo::Existe(std::string_view tabela, std::string_view chave, const Edit& campo) {
  return Funcoes.Existe(tabela, chave, Funcoes.Aspas(campo.Text()));
}

bool TFmCCLancFluxo::ValidaDatas() {
  if (DtLancto.Date().Empty()) return Recusa("Data de lançamento inválida.", DtLancto);
  if (DtCont.Date().Empty()) return Recusa("Data de contabilização inválida.", DtCont);
  return true;
}

bool TFmCCLancFluxo::ValidaCampos() {
  if (EdtValor.Amount() <= Currency()) return Recusa("Valor inválido.", EdtValor);
  if (!Existe("CADCONTA", "CONTA", EdtConta)) return Recusa(kConta, EdtConta);
  if (!Existe("HISTCP", "HISTORICO", EdtHis)) return Recusa(kHistorico, EdtHis);
  if (!Existe("SUBGRUPO", "CODIGO", EdtTipo)) return Recusa(kClasse, EdtTipo);
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

std::string TFmCCLancFluxo::ContaContabil() {
  // From the general row to the one that is most exact.
  const std::pair<std::string, std::string> tentativas[] = {
      {"0", "0"}, {EdtTipo.Text(), "0"}, {EdtTipo.Text(), EdtHis.Text()}};
  std::string conta;
  for (const auto& [classe, historico] : tentativas) {
    const auto linhas = Tabela.IBDatabase().Rows(
        "SELECT FIRST 1 CONTA_CONT FROM " + Funcoes.DBLocal("CLASSE_CONTA", true) +
        " WHERE CODCLI = " + Funcoes.Aspas(CodCliente) + " AND CLASSE = " + Funcoes.Aspas(classe) +
        " AND HISTORICO = " + Funcoes.Aspas(historico) +
        " AND CARTEIRA = '0' AND CONTA = " + Funcoes.Aspas(EdtConta.Text()));
    if (!linhas.empty()) conta = linhas[0][0].AsString();
  }
  return conta;
}

std::unique_ptr<TContabil> TFmCCLancFluxo::Partidas() {
  auto partidas = Contabil.Create();
  const auto linha = [&](const std::string& credita, const std::string& debita, Currency valor) {
    partidas->SetContabilidadeFinan(Lancamento, EdtDocto.Text(), EdtDocto.Text(), credita, debita, Operacao(),
                                    "CC", EdtTipo.Text(), EdtHis.Text(), valor, DtCont.Date(), "000-00", "");
  };
  const auto regras = Tabela.IBDatabase().Rows(
      "SELECT DISTINCT CONTA, PERC_CONTA FROM " + Funcoes.DBLocal("CONT_RATEIO", true) +
      " WHERE CODIGO = " + Funcoes.Aspas(EdtTipo.Text()) + " AND TIPO = 'C'");
  if (regras.empty()) linha("0", "0", EdtValor.Amount());
  const std::string banco = regras.empty() ? "" : ContaContabil();
  for (const auto& regra : regras) {
    const std::string conta = regra[0].AsString();
    const Currency valor = EdtValor.Amount() * (regra[1].AsFloat() / 100);
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
    Contabil.LancaContaCorrente(Lancamento, EdtDocto.Text(), "", conta, EdtTipo.Text(), EdtHis.Text(), "L",
                                "S", operacao, EdtObs.Text(), EdtValor.Amount(), DtLancto.Date(),
                                DtCont.Date(), DtCont.Date(), "");
  };
  lanca(EdtConta.Text(), Operacao());
  if (antiga.empty()) return;
  Tabela.TbCadConta().Locate("CONTA", antiga);
  lanca(antiga, Operacao(true));
}

}  // namespace orv
