#include "cashflow/rel_fluxo_banco.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelFluxoBanco* fmRelFluxoBanco = nullptr;

namespace {

constexpr const char* kCaption = "Relatóro de Estatística de Caixa\\Banco";

const Unit kUnit("Relfluxobanco", {"TfmRelFluxoBanco", kCaption, ScreenKind::Child, "Fluxo de Caixa",
                                   [](Application& a) { return std::make_unique<TfmRelFluxoBanco>(a); }});

const Date kUltimoCheque(2050, 12, 31);

const std::vector<GridColumn> kPagar{{"DT_VEN", "Vencimento"}, {"NUM_AP", "Número"},   {"DUPLI", "Duplicata"},
                                     {"CODCRE", "Código"},     {"NOME", "Fornecedor"}, {"DT_EMI", "Emissão"},
                                     {"VALOR", "Em aberto"}};
const std::vector<GridColumn> kReceber{
    {"DT_VENCTO", "Vencimento"}, {"NUMERO", "Número"},      {"FATURA", "Fatura"},  {"CODCLI", "Código"},
    {"NOME", "Cliente"},         {"DT_EMISSAO", "Emissão"}, {"VALOR", "Em aberto"}};

}  // namespace

TfmRelFluxoBanco::TfmRelFluxoBanco(Application& application)
    : ReportScreen(application, "TfmRelFluxoBanco", "fmRelFluxoBanco", kCaption),
      GridContas(*this, "GridContas", TbContas, GridColumns(kContas), true, "Contas"),
      DBGrid2(*this, "DBGrid2", TbSaldo, GridColumns(kSaldo), true, "Movimentos anteriores ao período"),
      GridPagar(*this, "GridPagar", QryPagar, kPagar, true, "Títulos a pagar no período"),
      GridReceber(*this, "GridReceber", QryReceber, kReceber, true, "Títulos a receber no período") {
  Layout(R"(
    @bar {
      GbData { EdtDataDe edtDataAte } EdtDtCheque EdtConta PqConta EdtEmp
      @more { EdtSit PqSituacao SpeedButton CbEmpresa CbTotDia }
      @primary btnConfirma
    } /
    LbMenor / LbConsulta / @picture { GrafContas } /
    PageControl1 {
      TabSheet1 { GridContas }
      TabSheet2 { DBGrid2 }
      TabSheet3 { GridPagar }
      TabSheet4 { GridReceber }
    } /
    @actions { BtnImprime BtFora @apart btnFechar }
  )");
  for (DataSet* set : std::initializer_list<DataSet*>{&TbSaldo, &TbChequePendente, &tbDebitosCreditos,
                                                      &TbContas, &QryPagar, &QryReceber})
    AddSet(*set);
  AbreTabelas({"TbCadConta", "TbSituacao"});
  Cria_Tabela();
  Period(EdtDataDe, edtDataAte);
  EdtDataDe.SetDate(Today());
  EdtDtCheque.SetDate(kUltimoCheque);
  TodayOnEnter(EdtDtCheque);
  BtFora.SetVisible(false);

  Lookups({{&EdtConta, &PqConta, {{"EMPRESA", &EdtEmp}}, "Conta inválida.", true, nullptr, true}});
  ListField(EdtSit, PqSituacao, "CODIGO", Choice::Adds, SpeedButton);
  btnConfirma.OnClick = [this] { btnConfirmaClick(); };
  BtnImprime.OnClick = [this] { BtnImprimeClick(); };
  btnFechar.OnClick = [this] { Close(); };
  BtFora.OnClick = [this] { BtForaClick(); };
  GridContas.OnDblClick = [this] { GridContasDblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  GridPagar.OnDblClick = [this] { AbreTitulo(QryPagar, Fonte::Pagar, "NUM_AP"); };
  GridReceber.OnDblClick = [this] { AbreTitulo(QryReceber, Fonte::Receber, "NUMERO"); };
  Answers["Periodo"] = {0, [this](auto) { return Value(consulta_.texto); }};
  Answers["TodasEmpresas"] = {0, [this](auto) { return Value(int64_t{consulta_.todas}); }};
  Answers["PorDia"] = {0, [this](auto) { return Value(int64_t{consulta_.por_dia}); }};
  Answers["Menor"] = {0, [this](auto) { return Value(LbMenor.Caption()); }};
  Answers["Aviso"] = {0, [this](auto) { return Value(LbConsulta.Caption()); }};
}

// What wasn't gathered yet, or not to its end, is gathered first.
void TfmRelFluxoBanco::BtnImprimeClick() {
  if (!QryReceber.Active()) btnConfirmaClick();
  Funcoes.Chama_RelatorioWin(*this, "WCCEst_Banco");
}

}  // namespace orv
