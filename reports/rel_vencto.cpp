#include "reports/rel_vencto.h"

#include "frame/entry/unit.h"
#include "reports/lancamentos.h"
#include "rules/origem.h"
#include "rules/saldo.h"

namespace orv {

thread_local TfmRelVencto* fmRelVencto = nullptr;

namespace {

const Unit kUnit("Relvencto",
                 {"TfmRelVencto", "Relatório de Lançamentos", ScreenKind::Child, "Vencimentos e pendências",
                  [](Application& a) { return std::make_unique<TfmRelVencto>(a); }});

// The row that only holds the opening balance, and the kinds of titles.
std::vector<GridColumn> Colunas(std::vector<GridColumn> colunas, std::string_view campo,
                                std::vector<CodeWord> palavras) {
  for (GridColumn& coluna : colunas) {
    if (coluna.field == campo) coluna.words = palavras;
  }
  return colunas;
}

}  // namespace

TfmRelVencto::TfmRelVencto(Application& application)
    : ReportScreen(application, "TfmRelVencto", "fmRelVencto", "Relatório de Lançamentos"),
      DBGrid1(*this, "DBGrid1", TbRelatorio,
              Colunas(GridColumns(kRelatorio), "Situacao", {{"A", "CAIXA sem lançamentos"}}), true,
              "Lançamentos"),
      DBGrid2(*this, "DBGrid2", TbFinan,
              Colunas(GridColumns(kFinan), "Tipo", {{"P", "A pagar"}, {"R", "A receber"}}), true,
              "Financeiro do lançamento") {
  Layout(R"(
    @bar {
      GbPeriodo { EdtDataDe edtDataAte } RgData EdtConta PqConta SpeedButton1
      @more {
        GbFiltros { EdtClasse PqClasses SpeedButton2 EdtHistHistorico PqHist EdtDesHistorico EdtObs } /
        GbOpcoes { CbPend CbPredata CbPendCont CbFinanceiro }
      }
      @primary BitBtn29
    } /
    DBGrid1 / @low DBGrid2 /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  AddSet(TbRelatorio);
  AddSet(TbFinan);
  AbreTabelas({"tbCadConta", "tbContaCor", "tbHistorico"});
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbFinan, kFinan);
  Period(EdtDataDe, edtDataAte);

  Lookups({{&EdtHistHistorico, &PqHist, {{"DESCRICAO", &EdtDesHistorico}}, "", false, nullptr}});
  for (TPesquisa* lista : {&PqConta, &PqClasses}) lista->Settings().MultiSelecao = true;
  ListField(EdtConta, PqConta, "CONTA", Choice::Replaces, SpeedButton1);
  ListField(EdtClasse, PqClasses, "CODIGO", Choice::Replaces, SpeedButton2);
  EnterMovesOn(false);
  TbRelatorio.AfterScroll = [this] { FiltraTitulos(); };
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  Answers["Consultado"] = {0, [this](auto) { return Value(consulta_.texto); }};
  Answers["DiaConsiderado"] = {0, [this](auto) { return Value(static_cast<int64_t>(consulta_.dia)); }};
}

void TfmRelVencto::BitBtn29Click() {
  Gather({&TbRelatorio, &TbFinan}, [this](Gathering& gathering) { Monta(gathering); });
}

// The grid of titles shows those of the row in focus.
void TfmRelVencto::FiltraTitulos() {
  if (!TbFinan.Active()) return;
  TbFinan.SetFilter("lancto = " + Funcoes.Aspas(TbRelatorio["Lancamento"].AsString()));
  TbFinan.SetFiltered(true);
}

// The titles of all rows are printed.
void TfmRelVencto::BitBtn33Click() {
  TbFinan.SetFiltered(false);
  try {
    Funcoes.Chama_Relatorio(*this, "WCCVencto");
  } catch (...) {
    FiltraTitulos();
    throw;
  }
  FiltraTitulos();
}

// --- From a figure to where it comes from.

void TfmRelVencto::DBGrid1DblClick() {
  if (!TbRelatorio.Active() || TbRelatorio.IsEmpty()) return;
  const std::string lancamento = TbRelatorio["Lancamento"].AsString();
  if (!lancamento.empty() && DBGrid1.SelectedField() != "SaldoIni") {
    MostraLancamento(lancamento);
    return;
  }
  // A balance is too many movements to list one by one.
  const std::string sql = SaldoPorMes(Coluna(), Creditos(kContaCorrente, "CONTACOR"),
                                      Debitos(kContaCorrente, "CONTACOR"), Anteriores());
  ShowDetail("Saldo anterior a " + consulta_.de,
             LinhasDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", false, "ORDER BY 1, 2")),
             kSaldoPorMes, CompletaMes);
}

void TfmRelVencto::DBGrid2DblClick() {
  if (!TbFinan.IsEmpty()) MostraLancamento(TbFinan["lancto"].AsString());
}

void TfmRelVencto::MostraLancamento(const std::string& lancamento) {
  const lancamentos::Origem dele = lancamentos::OrigemDe(Funcoes.Aspas(lancamento));
  ShowDetail("Lançamento " + lancamento,
             ForCompanies(dele.movimentos + origem::kUniao + dele.recebidos + origem::kUniao + dele.pagos +
                              origem::kUniao + dele.contabilizacao,
                          "CONTACOR", false));
}

}  // namespace orv
