// How the home is made, which parts of it the user sees, and the ways from its figures.
#include "home/painel.h"

#include "frame/entry/unit.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmPainel* fmPainel = nullptr;

namespace {

// Everybody comes here: it stands in no group of the menu, and each part asks for the right of its source.
const Unit kUnit("Painel", {"TfmPainel", "Hoje", ScreenKind::Child, "",
                            [](Application& a) { return std::make_unique<TfmPainel>(a); }});

constexpr const char *kAnalise = "TfmRelAnaliseFluxo", *kRegistro = "TfmRegistroConta",
                     *kConcilia = "TFmConcilia", *kCheque = "TfmRelContCheq";

}  // namespace

TfmPainel::TfmPainel(Application& application)
    : ReportScreen(application, "TfmPainel", "fmPainel", "Hoje"),
      GridPosicao(*this, "GridPosicao", TbPosicao, GridColumns(kPosicao), true, "Posição"),
      GridPrazos(*this, "GridPrazos", TbPrazos, GridColumns(kPrazos), true,
                 "Títulos em aberto: vencidos e em 7 dias"),
      GridCheques(*this, "GridCheques", TbCheques, GridColumns(kCheques), true,
                  "Cheques pendentes: bons hoje e na semana"),
      GridSaldos(*this, "GridSaldos", TbSaldos, GridColumns(kSaldos), true, "Saldos de hoje"),
      GridLinhas(*this, "GridLinhas", TbLinhas, GridColumns(kLinhas), true, "Extrato a conciliar") {
  Layout(R"(
    LbVazio /
    Grafico /
    @sides { PnPrazos { GridPosicao / GridPrazos / GridCheques } PnContas { GridSaldos / GridLinhas } } /
    @actions { BtAtualiza }
  )");
  for (TClientDataSet* set : {&TbPosicao, &TbLinha, &TbPrazos, &TbSaldos, &TbLinhas, &TbCheques})
    AddSet(*set);
  LayDown(TbPosicao, kPosicao);
  LayDown(TbLinha, kLinha);
  LayDown(TbPrazos, kPrazos);
  LayDown(TbSaldos, kSaldos);
  LayDown(TbLinhas, kLinhas);
  LayDown(TbCheques, kCheques);

  BtAtualiza.OnClick = [this] { Le(); };
  GridPosicao.OnDblClick = [this] { AbreAnalise(Today(), Today().AddDays(kDias), "Diária"); };
  GridPrazos.OnDblClick = [this] {
    if (!TbPrazos.IsEmpty()) AbreAnalise(TbPrazos["De"].AsDate(), TbPrazos["Ate"].AsDate(), "Diária");
  };
  GridSaldos.OnDblClick = [this] { AbreConta(); };
  GridLinhas.OnDblClick = [this] { AbreConciliacao(); };
  GridCheques.OnDblClick = [this] { AbreCheques(); };
  Le();
}

void TfmPainel::Le() {
  const auto ve = [this](const char* tela, std::initializer_list<Control*> partes) {
    const bool pode = Owner().MayOpen(tela);
    for (Control* parte : partes) parte->SetVisible(pode);
    return pode;
  };
  const bool analise = ve(kAnalise, {&Grafico, &GridPosicao, &GridPrazos});
  const bool registro = ve(kRegistro, {&GridSaldos});
  const bool concilia = ve(kConcilia, {&GridLinhas}), cheques = ve(kCheque, {&GridCheques});
  Gather({&TbPosicao, &TbLinha, &TbPrazos, &TbSaldos, &TbLinhas, &TbCheques}, [&](Gathering&) {
    for (TClientDataSet* set : {&TbPosicao, &TbLinha, &TbPrazos, &TbSaldos, &TbLinhas, &TbCheques})
      set->EmptyDataSet();
    if (analise || registro) LeSaldosDasContas();
    if (analise) LeFluxo();
    if (concilia) LeLinhas();
    if (cheques) LeCheques();
  });
  LbVazio.Mostra(analise || registro || concilia || cheques
                     ? ""
                     : "Nenhuma das telas de onde vêm estas figuras está entre os seus direitos. Peça-os ao "
                       "administrador.");
}

// --- From a figure to the screen that it comes from, whatever was typed there before.

void TfmPainel::AbreAnalise(Date de, Date ate, const char* periodo) {
  FieldTexts campos{{"EdtDataDe", de.Brazil()},
                    {"edtDataAte", ate.Brazil()},
                    {"RgGrupo", periodo},
                    {"CbSaldoDoDia", "true"},
                    {"EdtSit", ""},
                    {"EdtSitDesc", ""},
                    {"EdtSitDescPag", ""},
                    {"edtBanco", ""}};
  // What is expected here are the ordinary titles, on the days on which they fall due.
  for (const char* caixa :
       {"CbPagtoAtraso", "CbRecAtraso", "cbChequesDevol", "CbChePag", "CbCheRec", "CbPrevPag", "CbVendas",
        "CbCompras", "CbDebPend", "CbCredPend", "CbOrcaRec", "CbOrcaPag", "CbSimula", "CbEmp", "CbTodosDias",
        "CbDiasUteis", "CbContBanc", "CbClasse"})
    campos.emplace_back(caixa, "false");
  Owner().OpenFilled(kAnalise, campos, "BitBtn29");
}

void TfmPainel::AbreConta() {
  if (!TbSaldos.IsEmpty())
    Owner().OpenFilled(kRegistro, {{"EdtConta", TbSaldos["Conta"].AsString()}, {"EdtProcura", ""}},
                       "BtConsulta");
}

void TfmPainel::AbreConciliacao() {
  if (TbLinhas.IsEmpty()) return;
  Owner().OpenFilled(kConcilia,
                     {{"PageControl1", "TabSheet1"},
                      {"DtInicio", TbLinhas["Desde"].AsDate().Brazil()},
                      {"DtFinal", TbLinhas["Ate"].AsDate().Brazil()},
                      {"EdtConta", TbLinhas["Conta"].AsString()},
                      {"RgBusca", "A conciliar"},
                      {"RgTipo", "Todos"},
                      {"EdtDocto", ""},
                      {"EdtConcilia", ""}},
                     "BitBtn1");
}

void TfmPainel::AbreCheques() {
  if (TbCheques.IsEmpty()) return;
  const std::string coluna = GridCheques.SelectedField();
  const char* tipo = coluna.ends_with("Recebidos")  ? "Recebidos"
                     : coluna.ends_with("Emitidos") ? "Emitidos"
                                                    : "Todos";
  FieldTexts campos{{"edtDtVenIni", TbCheques["De"].AsDate().Brazil()},
                    {"edtDtVenFim", TbCheques["Ate"].AsDate().Brazil()},
                    {"RgBusca", "Pendentes"},
                    {"RgTipo", tipo},
                    {"CbEmpresa", "false"},
                    {"edtDtEmiIni", kEmissao.de.Brazil()},
                    {"edtDtEmiFim", kEmissao.ate.Brazil()},
                    {"DtBaixaIni", "01/01/1200"},
                    {"DtBaixaFim", "31/12/2050"}};
  for (const char* campo :
       {"EdtBordero", "EdtCliente", "EdtRepresen", "Edit1", "Edit3", "EdtObs", "EdtConta", "EdtCheque"})
    campos.emplace_back(campo, "");
  // What the report's list holds from before, and the cheques chosen one by one, go first.
  for (const char* limpa : {"BitBtn1", "SpeedButton1"}) Owner().OpenFilled(kCheque, {}, limpa);
  Owner().OpenFilled(kCheque, campos, "BtnConfirma");
}

}  // namespace orv
