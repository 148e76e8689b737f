// How the workbench is made, and what its pages open.
#include "reconciliation/concilia.h"

#include "frame/entry/unit.h"
#include "ledger/cc_lanc_fluxo.h"
#include "rules/historico.h"
#include "toolkit/error.h"
#include "toolkit/scoped.h"

namespace orv {

thread_local TFmConcilia* FmConcilia = nullptr;

namespace {

const Unit kUnit("Concilia", {"TFmConcilia", "Conciliação", ScreenKind::Child, "Conciliação",
                              [](Application& a) { return std::make_unique<TFmConcilia>(a); }});

constexpr const char* kRelatorio = "WCCExtConc";
constexpr const char* kPrazo = "3";

// Narrows a set for a block.
auto Filtrado(TClientDataSet& set, std::string_view filtro) {
  set.SetFilter(filtro);
  set.SetFiltered(true);
  return AtEnd([&set] {
    set.SetFiltered(false);
    set.SetFilter("");
  });
}

}  // namespace

TFmConcilia::TFmConcilia(Application& application)
    : Child(application, "TFmConcilia", "FmConcilia", "Conciliação") {
  AbreTabelas({"TbCadConta"});
  fin110_ = Funcoes.BuscaParametro("FIN", 110) == "S";
  for (TClientDataSet* set :
       std::initializer_list<TClientDataSet*>{&TbMov, &TbArq, &TbArquivo, &TbVendas, &TbSugestao}) {
    set->CreateDataSet();
    AddSet(*set);
  }
  AddSet(TbCartao_Arq);
  Desenha();
  LigaExtrato();
  LigaCheques();
  LigaCartoes();
  LigaGrades();
  EdtConta.SetFocus();
}

std::optional<Registro> TFmConcilia::RegistroAtual() {
  const TabSheet* pagina = PageControl1.ActivePage();
  if (pagina == &TabSheet1 && Focus() == &OrvDBGrid2 && !TbArq.IsEmpty())
    return RegistroDaLinha(Funcoes, Tabela, TbArq.Lancto.AsString());
  const bool cheques = pagina == &TabSheet2;
  if (pagina == &TabSheet3 || (cheques ? TbArquivo.IsEmpty() : TbMov.IsEmpty())) return std::nullopt;
  const std::string numero = (cheques ? TbArquivo.Lancto : TbMov.Lancto).AsString();
  return RegistroDoLancamento(Funcoes, Tabela, "Lançamento " + numero, numero);
}

void TFmConcilia::Desenha() {
  Layout(R"(
    PageControl1 {
      TabSheet1 {
        @bar {
          DtInicio DtFinal EdtConta PqConta EdtDescConta RgBusca
          @more { RgTipo EdtCodBan EdtBanco EdtDocto EdtConcilia }
          @primary BitBtn1
        } /
        @sides {
          GbMov { OrvDBGrid1 / @sums { EdtTotMov EdtSaldoMov EdtSaldoMovCon } }
          GbArq { OrvDBGrid2 / @sums { EdtTotExt EdtSaldoExt EdtSaldoExtCon } }
        } /
        GbSugestao { GridSugestao } /
        LbVolta /
        @actions {
          EdtDif LbDif EdtPrazo BtSugerir @primary BitBtn4 BitBtn7 BitBtn5 BitBtn9 @danger BitBtn8 @apart BitBtn3
        }
      }
      TabSheet2 {
        @bar { EdtCam SpeedButton1 EdtArq } /
        @bar {
          DtIniArq DtFimArq EdtContaArq PqContaArq EdtDescContaArq EdtBancoArq CbDias @primary BitBtn6
        } /
        OrvDBGrid3 /
        LbRetorno /
        @actions { @primary BitBtn10 BitBtn11 @apart BitBtn12 }
      }
      TabSheet3 {
        @bar {
          cbCartao_Operadora CbCartao_TipoConcilia EdCartao_Arquivo SpeedButton2
          EdtCodBanco PqBanco EdtDescBanco
        } /
        @bar {
          DtCartao_Ini DtCartao_Fim RgCartao_Busca
          @more { EdtContaMoeda PqContaMoeda EdtDescContaMoeda EdCartao_Conciliacao CbTodasEmpresas }
          @primary BtCartao_Consultar
        } /
        GridCC /
        GridArq /
        LbConferencia /
        LbCartao /
        @actions { CbConferencia CbDiferencas @primary BitBtn13 @apart BitBtn2 }
      }
    })");

  for (MoneyEdit* total :
       {&EdtTotMov, &EdtSaldoMov, &EdtSaldoMovCon, &EdtTotExt, &EdtSaldoExt, &EdtSaldoExtCon, &EdtDif}) {
    total->SetAmount(Currency());
    total->SetReadOnly(true);
  }
  GbSugestao.SetVisible(false);
}

void TFmConcilia::LigaExtrato() {
  DtInicio.SetDate(Date(2000, 1, 1));
  DtFinal.SetDate(Today());
  TodayOnEnter(DtInicio);
  SameOnEnter(DtFinal, DtInicio);
  EdtPrazo.SetText(kPrazo);
  Lookups({{&EdtConta, &PqConta, {}, "", false, [this] { EdtContaChange(); }}});
  EdtCodBan.OnChange = [this] { EdtCodBanChange(); };

  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn4.OnClick = [this] { BitBtn4Click(); };
  BitBtn8.OnClick = [this] { BitBtn8Click(); };
  BitBtn7.OnClick = [this] { BitBtn7Click(); };
  BitBtn5.OnClick = [this] { BitBtn5Click(); };
  BitBtn9.OnClick = [this] { Funcoes.Carrega_Form("orvCC", "TFmCadExtrato", "", false, true); };
  BitBtn3.OnClick = [this] { Close(); };
  BtSugerir.OnClick = [this] { BtSugerirClick(); };
}

void TFmConcilia::LigaCheques() {
  DtIniArq.SetDate(Date(2000, 1, 1));
  DtFimArq.SetDate(Today());
  TodayOnEnter(DtIniArq);
  SameOnEnter(DtFimArq, DtIniArq);
  Lookups({{&EdtContaArq,
            &PqContaArq,
            {{"DESCRICAO", &EdtDescContaArq}, {"BANCO", &EdtBancoArq}},
            "",
            false,
            nullptr}});
  EdtBancoArq.OnChange = [this] { EdtCodBanChange(); };

  SpeedButton1.OnClick = [this] { SpeedButton1Click(); };
  BitBtn6.OnClick = [this] { BitBtn6Click(); };
  BitBtn10.OnClick = [this] { BitBtn10Click(); };
  BitBtn11.OnClick = [this] { Funcoes.Chama_Relatorio(*this, kRelatorio); };
  BitBtn12.OnClick = [this] { Close(); };
}

void TFmConcilia::LigaGrades() {
  struct Lado {
    TOrvDBGrid& grade;
    TClientDataSet& set;
    Ticks& marcas;
  };
  for (const Lado& lado : {Lado{OrvDBGrid1, TbMov, marcas_mov_}, Lado{OrvDBGrid2, TbArq, marcas_arq_}}) {
    TClientDataSet& set = lado.set;
    lado.marcas.MoveOn();
    set.AfterPost = [this, &set] {
      if (set.Tag < 2) CalculaTotais();
    };
    // A click on a title and a click on a cell.
    lado.grade.OnTitleClick = [&set](const std::string&) {
      set.PostIfEditing();
      set.Tag = 1;
    };
    set.BeforeEdit = [&set] {
      if (set.Tag == 1) set.Tag = 0;
    };
  }
  TbArquivo.AfterPost = [this] {
    if (TbArq.Tag < 2) CalculaTotais();
  };
  TbSugestao.AfterScroll = [this] { TbSugestaoAfterScroll(); };
  for (TOrvDBGrid* grade : {&OrvDBGrid1, &OrvDBGrid2, &OrvDBGrid3}) {
    grade->OnExit = [set = &grade->Set()] { set->PostIfEditing(); };
  }
  for (TOrvDBGrid* grade : {&OrvDBGrid1, &OrvDBGrid2, &OrvDBGrid3, &GridCC, &GridArq})
    grade->SetRowsFixed(true);
}

void TFmConcilia::EdtCodBanChange() {
  const std::vector<ChaveBusca> banco{{"BANCO", EdtCodBan.Text()}};
  EdtBanco.SetText(Funcoes.Busca_Valor("CADBAN", banco, "NOME_BANCO"));
  EdtArq.SetText(Funcoes.Busca_Valor("CADBAN", banco, "ENTRADA"));
}

void TFmConcilia::BitBtn5Click() {
  auto& fluxo = static_cast<TFmCCLancFluxo&>(Owner().Adopt(std::make_unique<TFmCCLancFluxo>(Owner())));
  fluxo.EdtConta.SetText(EdtConta.Text());
  fluxo.ShowModal();
  fluxo.Release();
  BitBtn1Click();
}

void TFmConcilia::BitBtn7Click() {
  const auto movimentos = Filtrado(TbMov, "Conciliar = 'N'");
  const auto linhas = Filtrado(TbArq, "Concilia = 'S'");
  Funcoes.Chama_Relatorio(*this, kRelatorio);
}

}  // namespace orv
