#include "cashflow/rel_fluxo.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelFluxo* fmRelFluxo = nullptr;

namespace {

const Unit kUnit("Relfluxo",
                 {"TfmRelFluxo", "Relatóro de Estatística de Caixa", ScreenKind::Child, "Fluxo de Caixa",
                  [](Application& a) { return std::make_unique<TfmRelFluxo>(a); }});

}  // namespace

TfmRelFluxo::TfmRelFluxo(Application& application)
    : ReportScreen(application, "TfmRelFluxo", "fmRelFluxo", "Relatóro de Estatística de Caixa"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, GridColumns(kRelatorio), true, "Lançamentos"),
      OrvDBGrid1(*this, "OrvDBGrid1", TbSaldo, GridColumns(kSaldo), false, "Saldos das contas") {
  Layout(R"(
    @bar {
      EdtDataDe edtDataAte EdtConta PqConta EdtEmp RgTipo
      @more {
        GbConta { dtSaldo CbSaldo EdtSaldo } GbBancos { edtBanco pqBanco SpeedButton4 } rgOrdem /
        GbOpcoes {
          CbEmp CbCheque CbVenCom CbOrcPagar CbOrcReceber CBCond CbContBanc CbProgramacao
        } /
        GbSituacao { EdtSit PqSituacaoRP SpeedButton1 }
        GbDesconsiderar {
          EdtSitDesc PqSituacaoRec SpeedButton2 EdtSitDescPag PqSituacaoPag SpeedButton3
        }
      }
      @primary BitBtn29
    } /
    @picture { GrafDia } / DBGrid1 @narrow OrvDBGrid1 /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  AddSet(TbRelatorio);
  AddSet(TbSaldo);
  AddSet(GrafDia.Rows);
  AbreTabelas({"TbCadConta", "TbSituacao"});
  dtSaldo.SetDate(Today());
  Cria_Tabela();
  Period(EdtDataDe, edtDataAte);
  EdtSaldo.SetVisible(false);

  Lookups({{&EdtConta, &PqConta, {{"EMPRESA", &EdtEmp}}, "Conta inválida.", true, nullptr, true}});
  ListField(EdtSit, PqSituacaoRP, "CODIGO", Choice::Adds, SpeedButton1);
  ListField(EdtSitDesc, PqSituacaoRec, "CODIGO", Choice::Adds, SpeedButton2);
  ListField(EdtSitDescPag, PqSituacaoPag, "CODIGO", Choice::Adds, SpeedButton3);
  ListField(edtBanco, pqBanco, "BANCO", Choice::Adds, SpeedButton4);
  for (CheckBox* box : {&CbSaldo, &CbEmp, &CbCheque}) box->OnChange = [this] { CbSaldoClick(); };
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  OrvDBGrid1.OnDblClick = [this] { OrvDBGrid1DblClick(); };
  // Which accounts count is chosen beside the rows.
  TbSaldo.AfterPost = [this] {
    if (inteira_) MostraGrafico();
  };
  OrvDBGrid1.SetRowsFixed(true);
  OrvDBGrid1.OnKey = [this](KeyPress& key) { OrvDBGrid1KeyDown(key); };
}

void TfmRelFluxo::CbSaldoClick() { EdtSaldo.SetVisible(CbSaldo.Checked()); }

void TfmRelFluxo::OrvDBGrid1KeyDown(KeyPress& key) {
  if (key.key == "Delete") key.handled = true;
}

void TfmRelFluxo::BitBtn33Click() {
  if (!inteira_) {
    Inform("A última consulta não terminou: faltam lançamentos. Consulte de novo antes de imprimir.");
    return;
  }
  // The layouts group by what is chosen now, and the rows follow.
  Ordena();
  const bool geral = RgTipo.ItemIndex() == 0;
  if (CbVenCom.Checked()) {
    Funcoes.Chama_Relatorio(*this, geral ? "WCCEstCompraVenda" : "WCCEstCompraVendaR");
  } else if (rgOrdem.ItemIndex() == 1) {
    Funcoes.Chama_Relatorio(*this, "WCCEstatistClasGer");
  } else {
    Funcoes.Chama_Relatorio(*this, geral ? "WCCEstatistica" : "TCCEstResum");
  }
}

}  // namespace orv
