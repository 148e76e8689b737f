// How the screen of the cash-flow analysis is made, and what its reports ask.
#include "cashflow/rel_analise_fluxo.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelAnaliseFluxo* fmRelAnaliseFluxo = nullptr;

namespace {

const Unit kUnit("Relanalisefluxo",
                 {"TfmRelAnaliseFluxo", "Relatório de Análise de Fluxo de Caixa", ScreenKind::Child,
                  "Fluxo de Caixa", [](Application& a) { return std::make_unique<TfmRelAnaliseFluxo>(a); }});

constexpr int kDiasDaConsulta = 30;

std::vector<GridColumn> ColunasDeClasse(int dias) {
  std::vector<GridColumn> colunas{{"Classe", "Classe"}, {"Descricao", "Descrição", 30}, {"Conta", "Conta"}};
  for (int dia = 1; dia <= dias; ++dia)
    colunas.push_back(
        {.field = "Dia" + std::to_string(dia), .title = "Dia " + std::to_string(dia), .visible = false});
  colunas.push_back({"Total", "Total"});
  return colunas;
}

// The columns of the detail rows that tell who and what, from which account, at which bank.
constexpr const char* kPessoa[] = {"Cliente", "Nome", "CodSit", "Situacao", "Observacao"};
constexpr const char* kTitulo[] = {"Cliente", "Nome", "CodSit", "Situacao", "Observacao", "Nome_Rep"};
constexpr const char* kVenda[] = {"Cliente", "Nome", "CodSit", "Situacao", "Nome_Rep"};
constexpr const char* kCheque[] = {"Conta", "DescConta", "Observacao"};
constexpr const char* kConta[] = {"Conta", "DescConta", "Observacao", "Banco", "Nome_Banco"};
constexpr const char* kOficina[] = {"Cliente", "Nome", "Observacao"};

}  // namespace

using T = TfmRelAnaliseFluxo;
const std::array<T::Tipo, 13> T::kTipos{{
    {"Valor_Rec", "Valor_Rec", "Valor Receber", true, nullptr, &T::TotRec, kTitulo},
    {"Cheque_Rec", "Cheque_Rec", "Cheque Rec.", true, &T::CbCheRec, &T::TotRecChe, kPessoa},
    {"Valor_Venda", "Valor_Venda", "Valor Venda", true, &T::CbVendas, &T::TotVendas, kVenda},
    {"Pend_Rec", "Pend_Rec", "Crédito Pendente", true, &T::CbCredPend, &T::TotCreCC, kConta},
    {"Orca_Rec", "Orca_Rec", "Orça. Receber", true, &T::CbOrcaRec, nullptr, kPessoa},
    {"Valor_Pag", "Valor_Pag", "Valor Pagar", false, nullptr, &T::TotPag, kPessoa},
    {"Cheque_Pag", "Cheque_Pag", "Cheque Pag.", false, &T::CbChePag, &T::TotPagChe, kCheque},
    {"Valor_Compras", "Valor_Compra", "Valor Compras", false, &T::CbCompras, &T::TotCompras, kPessoa},
    {"Pend_Pag", "Pend_Pag", "Débito Pendente", false, &T::CbDebPend, &T::TotDebCC, kConta},
    {"Orca_Pag", "Orca_Pag", "Orça. Pagar", false, &T::CbOrcaPag, &T::TotOrcPag, kPessoa},
    {"Prev_Pag", "Prev_pag", "Previsão Pag.", false, &T::CbPrevPag, &T::TotPrevPag, kOficina},
    {"Nota_Entrada", nullptr, "Entrada", true, &T::CbSimula, &T::TotEntrada, {}},
    {"Nota_Saida", nullptr, "Saida", false, &T::CbSimula, &T::TotSaida, {}},
}};

TfmRelAnaliseFluxo::TfmRelAnaliseFluxo(Application& application)
    : ReportScreen(application, "TfmRelAnaliseFluxo", "fmRelAnaliseFluxo",
                   "Relatório de Análise de Fluxo de Caixa"),
      OrvDBGrid1(*this, "OrvDBGrid1", TbSaldo, GridColumns(kSaldo), false, "Contas"),
      GridMenor(*this, "GridMenor", TbMenor, GridColumns(kMenorSaldo), true, "Menor saldo de cada conta"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, GridColumns(kRelatorio), false, "Períodos"),
      DBGrid2(*this, "DBGrid2", TbDetalha, GridColumns(kDetalha), true, "Lançamentos"),
      DBGrid3(*this, "DBGrid3", TbClasseData, ColunasDeClasse(kDias), true, "Classes por dia") {
  Layout(R"(
    @bar {
      EdtDataDe edtDataAte RgGrupo
      @more {
        GbVisualizar {
          CbPagtoAtraso CbRecAtraso cbChequesDevol CbChePag CbCheRec CbPrevPag CbVendas CbCompras
          CbDebPend CbCredPend CbOrcaRec CbOrcaPag CbSimula
        } /
        GbOpcoes { CbEmp CbSaldoDoDia CbTodosDias CbDiasUteis CbContBanc CbClasse } /
        GbPedidos { CbBloq CBCond CbPedAtraso CbConsST CbDataItens CbMoedaEmiOC } /
        GbSituacao {
          EdtSit PqSituacaoRP btnClearSit EdtSitDesc PqSituacaoRec btnClearDescRec /
          EdtSitDescPag PqSituacaoPag btnClearDescPagar edtBanco pqBanco btnClearBancos
        }
      }
      @primary BitBtn29
    } /
    PageControl1 {
      TabSheet1 { OrvDBGrid1 / GridMenor }
      TabSheet2 {
        LbConsulta / LbOcultos / LbMenor / DBGrid1 /
        @sums {
          TotRec TotRecChe TotVendas TotCreCC TotEntrada TotSaida
          TotPag TotPagChe TotCompras TotDebCC TotOrcPag TotPrevPag
        }
      }
      TabSheet3 { LbDetalhe / DBGrid2 }
      TabSheet4 { LbClasse / DBGrid3 }
      TabSheet5 {
        SpeedButton1 SpeedButton4 CbCompara1 CbCompara2 BtAbrir BtExcluir BtGuardar /
        LbCompara / DBChart1 / GrafCompara
      }
    } /
    @actions { BitBtn33 BtComposicao TrackBar1 @apart BitBtn5 }
  )");
  for (TClientDataSet* set : {&TbSaldo, &TbRelatorio, &TbDetalha, &TbMenor, &TbClasseData, &TbAnaliseClasse,
                              &TbAnaliseClasseTotalDia, &TbGrafico, &TbCompara})
    AddSet(*set);
  Period(EdtDataDe, edtDataAte);
  EdtDataDe.SetDate(Today());
  edtDataAte.SetDate(Today().AddDays(kDiasDaConsulta));
  LayDown(TbSaldo, kSaldo);
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbDetalha, kDetalha);
  LayDown(TbMenor, kMenorSaldo);
  static constexpr ReportField kClasse[] = {{"Classe", FieldType::String, 6},
                                            {"Descricao", FieldType::String, 30},
                                            {"Operacao", FieldType::String, 1},
                                            {"Conta", FieldType::String, 20},
                                            {"Total", FieldType::Currency}};
  for (const ReportField& campo : kClasse) TbClasseData.FieldDefs.Add(campo.name, campo.type, campo.size);
  for (int dia = 1; dia <= kDias; ++dia)
    TbClasseData.FieldDefs.Add("Dia" + std::to_string(dia), FieldType::Currency);
  TbClasseData.CreateDataSet();
  TbGrafico.FieldDefs.Add("Periodo", FieldType::String, 35);
  for (const char* campo : {"Credito", "Debito", "Saldo"})
    TbGrafico.FieldDefs.Add(campo, FieldType::Currency);
  TbGrafico.CreateDataSet();
  TbCompara.FieldDefs.Add("Periodo", FieldType::String, 35);
  for (const char* campo : {"Saldo", "Saldo1", "Saldo2"}) TbCompara.FieldDefs.Add(campo, FieldType::Currency);
  TbCompara.CreateDataSet();
  Busca_Contas();
  fac80_ = Funcoes.BuscaParametro("FAC", 80);

  ListField(EdtSit, PqSituacaoRP, "CODIGO", Choice::Adds, btnClearSit);
  ListField(EdtSitDesc, PqSituacaoRec, "CODIGO", Choice::Adds, btnClearDescRec);
  ListField(EdtSitDescPag, PqSituacaoPag, "CODIGO", Choice::Adds, btnClearDescPagar);
  ListField(edtBanco, pqBanco, "BANCO", Choice::Adds, btnClearBancos);
  for (const Tipo& tipo : kTipos) {
    if (tipo.caixa != nullptr) (this->*tipo.caixa).OnChange = [this, &tipo] { ClicaTipo(tipo); };
    if (tipo.total != nullptr) (this->*tipo.total).SetReadOnly(true);
  }
  ZeraTotais();
  CbClasse.OnChange = [this] { CbClasseClick(); };
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  BtComposicao.OnClick = [this] { BtComposicaoClick(); };
  PageControl1.OnChange = [this] { PageControl1Change(); };
  TrackBar1.OnChange = [this] { TrackBar1Change(); };
  TbSaldo.AfterPost = [this] { TbSaldoAfterPost(); };
  TbSaldo.AfterDelete = [this] { TbSaldoAfterPost(); };
  OrvDBGrid1.OnExit = [this] { OrvDBGrid1Exit(); };
  OrvDBGrid1.OnDblClick = [this] { OrvDBGrid1DblClick(); };
  DBGrid1.SetRowsFixed(true);
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid1.OnKey = [this](KeyPress& key) { DBGrid1KeyDown(key); };
  DBGrid1.OnColExit = [this] { DBGrid1ColExit(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  DBGrid2.OnKey = [this](KeyPress& key) { DBGrid2KeyDown(key); };
  DBGrid2.OnTitleClick = [this](const std::string& coluna) { DBGrid2TitleClick(coluna); };
  DBGrid3.OnDblClick = [this] { DBGrid3DblClick(); };
  const auto folheia = [this](int paginas) {
    for (Chart* grafico : {&DBChart1, &GrafCompara}) grafico->SetPage(grafico->Page() + paginas);
  };
  SpeedButton1.OnClick = [folheia] { folheia(-1); };
  SpeedButton4.OnClick = [folheia] { folheia(1); };
  for (ComboBox* lista : {&CbCompara1, &CbCompara2}) lista->OnChange = [this] { Compara(); };
  BtGuardar.OnClick = [this] { BtGuardarClick(); };
  BtAbrir.OnClick = [this] { BtAbrirClick(); };
  BtExcluir.OnClick = [this] { BtExcluirClick(); };
  Answers["Filtra"] = {1, [this](auto dados) { return Filtra(dados[0].AsString()); }};
  Answers["NomeColuna"] = {1, [this](auto dados) { return Value(NomeColuna(dados[0].AsInteger())); }};
  Answers["Aviso"] = {
      0, [this](auto) {
        return Value(LbConsulta.Caption() + (LbOcultos.Caption().empty() ? "" : " " + LbOcultos.Caption()));
      }};
  CbClasseClick();
  TrackBar1Change();
  LeSimulacoes();
}

void TfmRelAnaliseFluxo::CbClasseClick() {
  if (!CbClasse.Checked() && PageControl1.ActivePage() == &TabSheet4) PageControl1.SetActivePage(TabSheet2);
  TabSheet4.SetVisible(CbClasse.Checked());
}

void TfmRelAnaliseFluxo::BitBtn33Click() {
  TbDetalha.SetFiltered(false);
  Funcoes.Chama_Relatorio(*this, "WCCAnaliseFluxo");
}

// Narrows the detail rows to what the report names, of the period on which the screen stands.
Value TfmRelAnaliseFluxo::Filtra(std::string_view texto) {
  TbDetalha.SetFiltered(false);
  TbDetalha.SetFilter(std::string(texto) +
                      " and Codper = " + Funcoes.Aspas(TbRelatorio["CodPer"].AsString()));
  TbDetalha.SetFiltered(true);
  return "";
}

// The title of a day of the table of classes, 0 for the first; "" for one without a column.
std::string TfmRelAnaliseFluxo::NomeColuna(int64_t n) const {
  const auto& colunas = DBGrid3.Columns();
  const auto primeira = std::find_if(colunas.begin(), colunas.end(), [](const GridColumn& coluna) {
    return coluna.field.find("Dia") != std::string::npos;
  });
  return n < 0 || n >= colunas.end() - primeira || !primeira[n].visible ? "" : primeira[n].title;
}

}  // namespace orv
