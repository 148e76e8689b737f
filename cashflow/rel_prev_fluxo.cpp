// How the screen of the cash-flow forecast is made, and what it shows of a gathering.
#include "cashflow/rel_prev_fluxo.h"

#include "frame/entry/unit.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmRelPrevFluxo* fmRelPrevFluxo = nullptr;

namespace {

const Unit kUnit("Relprevfluxo", {"TfmRelPrevFluxo", "Projeção de Fluxo", ScreenKind::Child, "Fluxo de Caixa",
                                  [](Application& a) { return std::make_unique<TfmRelPrevFluxo>(a); }});

constexpr int kDiasBase = 700;

std::string Nome(const char* prefixo, std::size_t coluna) {
  return std::string(prefixo) + "_" + std::to_string(coluna);
}

// The set's own fields, and one of a kind for each column.
void Abre(TClientDataSet& set, std::span<const ReportField> campos, const char* prefixo, FieldType tipo,
          int tamanho = 0) {
  if (set.Active()) set.Close();
  set.FieldDefs.Clear();
  for (const ReportField& campo : campos) set.FieldDefs.Add(campo.name, campo.type, campo.size);
  for (std::size_t i = 1; i <= TfmRelPrevFluxo::kColunas; ++i)
    set.FieldDefs.Add(Nome(prefixo, i), tipo, tamanho);
  set.CreateDataSet();
}

// The columns of money stay hidden until they have a heading.
std::vector<GridColumn> Grade(std::span<const ReportField> campos, const char* prefixo) {
  std::vector<GridColumn> colunas = GridColumns(campos);
  for (std::size_t i = 1; i <= TfmRelPrevFluxo::kColunas; ++i)
    colunas.push_back({.field = Nome(prefixo, i), .title = "", .visible = false});
  return colunas;
}

// So that the columns of both sides stand under each other, the rate is the last one.
std::vector<GridColumn> GradePagar() {
  std::vector<GridColumn> colunas = Grade(TfmRelPrevFluxo::kReceber, "Val");
  colunas.push_back({.field = "Cotacao", .title = "Cotação", .width = 10, .decimals = 4});
  return colunas;
}

std::vector<GridColumn> GradeTotais() {
  std::vector<GridColumn> colunas = Grade(TfmRelPrevFluxo::kTotais, "Val");
  colunas.push_back({"Total", "Total"});
  return colunas;
}

}  // namespace

TfmRelPrevFluxo::TfmRelPrevFluxo(Application& application)
    : ReportScreen(application, "TfmRelPrevFluxo", "fmRelPrevFluxo", "Projeção de Fluxo"),
      DBGrid3(*this, "DBGrid3", TbReceber, Grade(kReceber, "Val"), true, "Entradas"),
      DBGrid5(*this, "DBGrid5", TbPagar, GradePagar(), true, "Saídas"),
      GridTotais(*this, "GridTotais", TbTotais, GradeTotais(), true, "Saldos"),
      OrvDBGrid1(*this, "OrvDBGrid1", TbConta, GridColumns(kConta), false, "Contas"),
      GridMenor(*this, "GridMenor", TbMenor, GridColumns(kMenorSaldo), true, "Menor saldo de cada conta"),
      DBGrid2(*this, "DBGrid2", TbDesconto, Grade(kDesconto, "Desc"), true, "Limites de desconto"),
      DBGrid4(*this, "DBGrid4", TbCond, GridColumns(kCond), true, "Emissões por prazo"),
      GridPrev(*this, "GridPrev", TbPrev, GridColumns(kPrev), true, "Emissões previstas") {
  Layout(R"(
    @bar {
      GbPeriodo { DtIni DtFin } RgTipo dtSaldo
      @more {
        GbConsiderar {
          CbSaldo CbVencRec CbVencPag CbPedVen CbPedCom CbOrcaPag CbAtraso CbOrcaRec CbEmpresa CbDataPrev
          CbLimDesc
        } /
        GbBase { DtAtualIni DtAtualFim } DtCotacao
        GbDuplicatas { EdtCodSit PqSituacao DtSitIni DtSitFim } /
        GbListas { EdtSitDesc PqSit SpeedButton2 EdtClasse PqClasse SpeedButton1 }
      }
      @primary BitBtn29
    } /
    PageControl1 {
      TabSheet1 { LbConsulta / LbMenor LbAtraso / DBGrid3 / DBGrid5 / GridTotais }
      TabSheet2 { OrvDBGrid1 / GridMenor }
      TabSheet3 { DBGrid2 }
      TabSheet4 { DBGrid4 GridPrev }
    } /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  for (TClientDataSet* set :
       {&TbReceber, &TbPagar, &TbTotais, &TbCabe, &TbConta, &TbMenor, &TbDesconto, &TbCond, &TbPrev})
    AddSet(*set);
  DtIni.SetDate(Date(1900, 1, 1));
  DtFin.SetDate(Date(2050, 1, 1));
  DtSitIni.SetDate(Date(1900, 1, 1));
  DtSitFim.SetDate(Date(2050, 1, 1));
  DtCotacao.SetDate(Date(1980, 1, 1));
  DtAtualIni.SetDate(Today().AddDays(-kDiasBase));
  DtAtualFim.SetDate(Today());
  dtSaldo.SetDate(Today());
  Cria_Tabelas();

  ListField(EdtSitDesc, PqSit, "CODIGO", Choice::Adds, SpeedButton2);
  ListField(EdtClasse, PqClasse, "CODIGO", Choice::Adds, SpeedButton1);
  Lookups({{&EdtCodSit, &PqSituacao, {}, "", true, nullptr}});
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  OrvDBGrid1.SetRowsFixed(true);
  TbConta.AfterPost = [this] {
    if (!montando_) CalculaSaldos();
  };
  DBGrid3.OnDblClick = [this] { AbreClasse(kRecebe, DBGrid3, TbReceber); };
  DBGrid5.OnDblClick = [this] { AbreClasse(kPaga, DBGrid5, TbPagar); };
  GridTotais.OnDblClick = [this] { GridTotaisDblClick(); };
  OrvDBGrid1.OnDblClick = [this] { OrvDBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  DBGrid4.OnDblClick = [this] { DBGrid4DblClick(); };
  GridPrev.OnDblClick = [this] { GridPrevDblClick(); };
  Answers["Coluna"] = {1, [this](auto dados) { return Value(Cabecalho(dados[0].AsInteger())); }};
  Answers["Aviso"] = {0, [this](auto) { return Value(LbConsulta.Caption()); }};
  Answers["MenorSaldo"] = {0, [this](auto) { return Value(LbMenor.Caption()); }};
}

void TfmRelPrevFluxo::BitBtn33Click() {
  TbConta.PostIfEditing();
  Funcoes.Chama_Relatorio(*this, "WRelPrevFluxo");
}

// --- The sets and the columns.

void TfmRelPrevFluxo::Cria_Tabelas() {
  Abre(TbReceber, kReceber, "Val", FieldType::Float);
  Abre(TbPagar, kPagar, "Val", FieldType::Float);
  Abre(TbTotais, kTotais, "Val", FieldType::Currency);
  Abre(TbCabe, {}, "Cabe", FieldType::String, 25);
  Abre(TbDesconto, kDesconto, "Desc", FieldType::String, 15);
  LayDown(TbConta, kConta);
  LayDown(TbMenor, kMenorSaldo);
  LayDown(TbCond, kCond);
  LayDown(TbPrev, kPrev);
  colunas_ = {};
  quadros_ = {};
  partes_.clear();
  dias_.clear();
  por_conta_.clear();
  avisos_.clear();
  fora_receber_ = fora_pagar_ = Currency();
}

std::size_t TfmRelPrevFluxo::Colunas::De(Date dia) {
  const auto [achada, nova] = achadas_.try_emplace(dia.Days());
  if (nova) {
    for (std::size_t i = 0; i < colunas_.size() && achada->second == 0; ++i)
      achada->second = colunas_[i].dias.Contem(dia) ? i + 1 : 0;
  }
  return achada->second;
}

void TfmRelPrevFluxo::MontaCabecalho() {
  // Of the terms one column less than of days stays free.
  constexpr int kMesesAdiante = 13, kPrazos = 29, kPasso = 31;
  const Date de = DtIni.Date();
  switch (RgTipo.ItemIndex()) {
    case 1:
      ForEach("SELECT FIRST " + std::to_string(kPrazos) + " DT_INICIO, DT_FIM FROM " +
                  Funcoes.DBLocal("TABPRZ", true) + " WHERE DT_INICIO >= " + Funcoes.AspasData(de) +
                  " AND DT_FIM <= " + Funcoes.AspasData(DtFin.Date()) + " ORDER BY PRAZO",
              [this](std::span<Value> v) {
                const Periodo dias{v[0].AsDate(), v[1].AsDate()};
                colunas_.Anexa(dias.de.Brazil() + " - " + dias.ate.Brazil(), dias);
              });
      break;
    case 2:
      for (int i = 0; i < kMesesAdiante; ++i) {
        const Date dia = de.AddDays(i * kPasso);
        if (!dia.Empty()) colunas_.Anexa(dia.Brazil().substr(3), {dia.FirstOfMonth(), dia.LastOfMonth()});
      }
      break;
    default:
      for (int i = 0; i < kColunas; ++i) {
        const Date dia = de.AddDays(i);
        if (!dia.Empty()) colunas_.Anexa(dia.Brazil(), {dia, dia});
      }
  }
  RowWriter cabe(TbCabe);
  for (std::size_t i = 1; i <= colunas_.Quantas(); ++i) cabe[TbCabe[Nome("Cabe", i)]] = colunas_.Cabecalho(i);
  cabe.Append();
}

void TfmRelPrevFluxo::MostraColunas() {
  for (std::size_t i = 1; i <= kColunas; ++i) {
    const bool tem = i <= colunas_.Quantas();
    for (TOrvDBGrid* grade : {&DBGrid3, &DBGrid5, &GridTotais}) {
      grade->SetColumnTitle(Nome("Val", i), Cabecalho(static_cast<int64_t>(i)));
      grade->SetColumnVisible(Nome("Val", i), tem);
    }
    const Date dia = DtIni.Date().AddDays(static_cast<int>(i) - 1);
    DBGrid2.SetColumnTitle(Nome("Desc", i), dia.Brazil());
    DBGrid2.SetColumnVisible(Nome("Desc", i), !TbDesconto.IsEmpty());
  }
}

// Of a term, whose heading has two dates, the years are left out.
std::string TfmRelPrevFluxo::Cabecalho(int64_t coluna) const {
  if (coluna < 1 || static_cast<std::size_t>(coluna) > colunas_.Quantas()) return "";
  const std::string& inteiro = colunas_.Cabecalho(static_cast<std::size_t>(coluna));
  return inteiro.size() > 10 ? inteiro.substr(0, 5) + " a " + inteiro.substr(13, 5) : inteiro;
}

void TfmRelPrevFluxo::PassaClasses(Lado lado, TClientDataSet& set) {
  RowWriter linha(set);
  std::array<const Field*, kColunas> campos{};
  for (std::size_t i = 0; i < kColunas; ++i) campos[i] = &set[Nome("Val", i + 1)];
  for (const Classe& classe : quadros_[lado].linhas) {
    linha[set["Classe"]] = classe.codigo;
    linha[set["Conta"]] = classe.conta;
    linha[set["Descricao"]] = classe.descricao;
    linha[set["Vencidas"]] = classe.vencidas;
    if (!classe.cotacao.IsZero()) linha[set["Cotacao"]] = classe.cotacao;
    for (std::size_t i = 0; i < kColunas; ++i) {
      if (classe.tem[i]) linha[*campos[i]] = classe.valores[i];
    }
    linha.Append();
  }
}

// --- What has no place, and the balances.

void TfmRelPrevFluxo::MostraFora(const Consulta& consulta) {
  const auto sem_linha = [this](const Vencidas& vencidas, Lado lado) {
    Currency soma;
    for (const auto& [classe, valor] : vencidas) soma += valor;
    for (const Classe& classe : quadros_[lado].linhas) soma -= classe.vencidas;
    // The discounted titles take off what stands in the rows of their classes.
    const auto desconto = quadros_[lado].onde.find("DESC");
    if (desconto != quadros_[lado].onde.end()) soma += quadros_[lado].linhas[desconto->second].vencidas;
    return soma;
  };
  const auto conta = [this](const char* de, Currency receber, Currency pagar) {
    if (receber.IsZero() && pagar.IsZero()) return;
    avisos_.push_back(std::string(de) + ": entradas " + receber.Brazil() + ", saídas " + pagar.Brazil() +
                      ".");
  };
  conta("Fora da projeção, sem coluna", fora_receber_, fora_pagar_);
  conta("Vencidas de classes que não estão na projeção", sem_linha(consulta.vencidas_receber, kRecebe),
        sem_linha(consulta.vencidas_pagar, kPaga));
  LbConsulta.Mostra(Join(avisos_, " "));
}

void TfmRelPrevFluxo::CalculaSaldos() {
  std::array<Currency, kColunas> colunas{};
  Currency vencidas, contas, movimento;
  for (const Lado lado : {kRecebe, kPaga}) {
    for (const Classe& classe : quadros_[lado].linhas) {
      // Percentages are no money.
      if (classe.codigo.Text() == "EMI") continue;
      const auto com_sinal = [lado](Currency valor) { return lado == kRecebe ? valor : -valor; };
      vencidas += com_sinal(classe.vencidas);
      for (std::size_t i = 0; i < kColunas; ++i) colunas[i] += com_sinal(classe.valores[i]);
    }
  }
  const Field& saldo = TbConta["Saldo"];
  for (int64_t i = 0, n = TbConta.DisplayCount(); i < n; ++i) contas += TbConta.Cell(i, saldo).AsCurrency();

  const ControlsHold hold(TbTotais);
  TbTotais.EmptyDataSet();
  RowWriter periodo(TbTotais), final_(TbTotais);
  periodo[TbTotais["Descricao"]] = "Saldo do Período";
  final_[TbTotais["Descricao"]] = "Saldo Final";
  periodo[TbTotais["Vencidas"]] = vencidas;
  final_[TbTotais["Vencidas"]] = vencidas + contas;
  for (std::size_t i = 0; i < colunas_.Quantas(); ++i) {
    movimento += colunas[i];
    periodo[TbTotais[Nome("Val", i + 1)]] = colunas[i];
    final_[TbTotais[Nome("Val", i + 1)]] = vencidas + contas + movimento;
  }
  periodo[TbTotais["Total"]] = vencidas + movimento;
  final_[TbTotais["Total"]] = vencidas + contas + movimento;
  periodo.Append();
  final_.Append();
  TbTotais.First();
  MostraMenor(vencidas + contas);
}

void TfmRelPrevFluxo::MostraMenor(Currency saldo) {
  const auto desde = [this](Currency inicial, const std::map<Date, Currency>& dias) {
    MenorSaldo menor(inicial, DtIni.Date());
    for (const auto& [dia, valor] : dias) menor.Soma(dia, valor);
    return menor;
  };
  MenorSaldo menor = desde(saldo, dias_);
  menor.Mostra(LbMenor);
  const ControlsHold hold(TbMenor);
  TbMenor.EmptyDataSet();
  static const std::map<Date, Currency> kNada;
  for (int64_t i = 0, n = TbConta.DisplayCount(); i < n; ++i) {
    const auto achada = por_conta_.find(TrimCode(TbConta.Cell(i, TbConta["Conta"]).Text()));
    MenorSaldo um = desde(TbConta.Cell(i, TbConta["Saldo"]).AsCurrency(),
                          achada == por_conta_.end() ? kNada : achada->second);
    Value linha[] = {TbConta.Cell(i, TbConta["Conta"]), TbConta.Cell(i, TbConta["Descricao"]),
                     TbConta.Cell(i, TbConta["Saldo"]), um.Valor(), um.Dia()};
    TbMenor.AppendRow(linha);
  }
  TbMenor.First();
}

}  // namespace orv
