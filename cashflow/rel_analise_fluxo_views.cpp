// What the analysis makes of its detail rows: periods, their balance, the chart; and how the user moves
// between them.
#include "cashflow/rel_analise_fluxo.h"
#include "rules/menor_saldo.h"
#include "toolkit/place_hold.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// The periods before all others: the opening balance, and what is overdue.
constexpr const char* kSaldoInicial = "00";
constexpr const char* kAtraso = "01";

enum Grupo { kMensal, kSemanal, kDiaria };

// A period of the table: its key, by which it stands, and its name.
struct NomePeriodo {
  std::string codigo, nome;
};

NomePeriodo DiaDe(Date dia) {
  static constexpr const char* kDias[] = {"Domingo", "Segunda", "Terça", "Quarta",
                                          "Quinta",  "Sexta",   "Sabado"};
  std::string codigo = ReplaceAll(dia.Neutral(), "-", "");
  return {std::move(codigo), dia.Empty() ? "" : dia.Brazil() + " - " + kDias[dia.WeekDay()]};
}

std::string DuasCasas(int numero) { return (numero < 10 ? "0" : "") + std::to_string(numero); }

// The periods of days, each asked for once.
class Periodos {
 public:
  struct Semana {
    std::string codigo;
    Date de, ate;
  };
  Periodos(int grupo, const IFuncoes& funcoes, std::vector<Semana> semanas)
      : grupo_(grupo), funcoes_(funcoes), semanas_(std::move(semanas)) {}

  const NomePeriodo& De(Date dia) {
    const auto [achado, novo] = nomes_.try_emplace(dia.Days());
    if (novo) achado->second = Nome(dia);
    return achado->second;
  }

 private:
  NomePeriodo Nome(Date dia) const {
    if (grupo_ == kDiaria || dia.Empty()) return DiaDe(dia);
    if (grupo_ == kMensal) {
      const std::string ano = std::to_string(dia.Year());
      return {ano + " / " + DuasCasas(dia.Month()),
              funcoes_.NomeMes()[static_cast<std::size_t>(dia.Month())] + " / " + ano};
    }
    for (const Semana& semana : semanas_) {
      if (semana.de <= dia && dia <= semana.ate)
        return {semana.codigo, " " + semana.de.Brazil() + " / " + semana.ate.Brazil()};
    }
    return {"", "Sem prazo cadastrado"};
  }

  int grupo_;
  const IFuncoes& funcoes_;
  std::vector<Semana> semanas_;
  std::unordered_map<int32_t, NomePeriodo> nomes_;
};

std::vector<Periodos::Semana> LeSemanas(IFuncoes& funcoes, TOrvDatabase& db, const Periodo& dias) {
  std::vector<Periodos::Semana> semanas;
  for (const auto& linha :
       db.Rows("SELECT PRAZO, DESCRICAO, DT_INICIO, DT_FIM FROM " + funcoes.DBLocal("TABPRZ", true) +
               " WHERE DT_INICIO <= " + funcoes.AspasData(dias.ate) +
               " AND DT_FIM >= " + funcoes.AspasData(dias.de)))
    semanas.push_back({linha[0].AsString(), linha[2].AsDate(), linha[3].AsDate()});
  return semanas;
}

}  // namespace

const TfmRelAnaliseFluxo::Tipo* TfmRelAnaliseFluxo::TipoSelecionado() const {
  const auto fim = kTipos.begin() + kSomados;
  const auto tipo = std::find_if(kTipos.begin(), fim,
                                 [this](const Tipo& um) { return DBGrid1.SelectedField() == um.campo; });
  return tipo == fim ? nullptr : &*tipo;
}

// --- Periods.

void TfmRelAnaliseFluxo::Gera_Analise(Gathering& andamento) {
  andamento.Stage("Períodos", TbDetalha.RecordCount());
  Field& codigo = TbDetalha["CodPer"];
  const Field &vencto = TbDetalha["Vencto"], &conta = TbDetalha["Conta"];
  std::array<const Field*, kSomados> campos{};
  for (std::size_t i = 0; i < kSomados; ++i) campos[i] = &TbDetalha[kTipos[i].detalhe];

  std::vector<Periodos::Semana> semanas;
  if (RgGrupo.ItemIndex() == kSemanal && !TbDetalha.IsEmpty()) {
    TbDetalha.Last();
    const Date ate = vencto.AsDate();
    TbDetalha.First();
    semanas = LeSemanas(Funcoes, Tabela.IBDatabase(), {vencto.AsDate(), ate});
  }
  Periodos periodos(RgGrupo.ItemIndex(), Funcoes, std::move(semanas));
  const NomePeriodo atraso{kAtraso, "Atraso"};

  struct Soma {
    const NomePeriodo* periodo;
    std::array<Currency, kSomados> valores{};
  };
  std::vector<Soma> somas;
  std::unordered_map<std::string_view, std::size_t> onde;
  for (TbDetalha.First(); !TbDetalha.Eof(); TbDetalha.Next()) {
    const NomePeriodo& periodo = codigo.Get().Text() == kAtraso ? atraso : periodos.De(vencto.AsDate());
    if (&periodo != &atraso) {
      TbDetalha.Edit();
      codigo = periodo.codigo;
      TbDetalha.Post();
    }
    const auto [achada, nova] = onde.try_emplace(periodo.codigo, somas.size());
    if (nova) somas.push_back({&periodo});
    auto& valores = somas[achada->second].valores;
    for (std::size_t i = 0; i < kSomados; ++i) {
      const Value& valor = campos[i]->Get();
      if (!valor.IsNull()) valores[i] += valor.AsCurrency();
    }
    // What is overdue may come any day: it counts on the first.
    SomaDia(periodo.codigo, campos, &periodo == &atraso ? EdtDataDe.Date() : vencto.AsDate(),
            conta.AsString());
    andamento.Advance();
  }
  for (const Soma& soma : somas) AnexaPeriodo(soma.periodo->codigo, soma.periodo->nome, soma.valores);
  TbDetalha.First();
}

void TfmRelAnaliseFluxo::AnexaPeriodo(const std::string& codigo, const std::string& nome,
                                      const std::array<Currency, kSomados>& valores) {
  ReportRow<kRelatorio> linha;
  linha["CodPer"] = codigo;
  linha["Periodo"] = nome;
  linha["Nota_Entrada"] = linha["Nota_Saida"] = Currency();
  for (std::size_t i = 0; i < kSomados; ++i)
    linha.Values()[static_cast<std::size_t>(TbRelatorio[kTipos[i].campo].Index())] = valores[i];
  TbRelatorio.AppendRow(linha.Values());
}

void TfmRelAnaliseFluxo::AdicionaDiasSemMov() {
  if (RgGrupo.ItemIndex() != kDiaria || !CbTodosDias.Checked()) return;
  for (Date dia = EdtDataDe.Date(); !dia.Empty() && dia <= edtDataAte.Date(); dia = dia.AddDays(1)) {
    const auto [codigo, nome] = DiaDe(dia);
    if (TbRelatorio.Locate("CodPer", codigo)) continue;
    AnexaPeriodo(codigo, nome, {});
    dias_.push_back({dia, codigo});
  }
  std::stable_sort(dias_.begin(), dias_.end(),
                   [](const DiaSomado& a, const DiaSomado& b) { return a.dia < b.dia; });
}

// --- Balances.

Currency TfmRelAnaliseFluxo::SomaSaldos() {
  const Field &seleciona = TbSaldo["Seleciona"], &saldo = TbSaldo["Saldo"];
  Currency soma;
  for (int64_t i = 0, n = TbSaldo.DisplayCount(); i < n; ++i) {
    if (TbSaldo.Cell(i, seleciona).Text() == "S") soma += TbSaldo.Cell(i, saldo).AsCurrency();
  }
  return soma;
}

void TfmRelAnaliseFluxo::AnexaSaldoInicial() {
  ReportRow<kRelatorio> linha;
  linha["CodPer"] = kSaldoInicial;
  linha["Periodo"] = "Saldo Inicial.";
  linha["Saldo"] = SomaSaldos();
  TbRelatorio.AppendRow(linha.Values());
}

void TfmRelAnaliseFluxo::CalculaSaldo() {
  if (TbRelatorio.IsEmpty()) return;
  const PlaceHold lugar(TbRelatorio);
  const Field& codigo = TbRelatorio["CodPer"];
  Field& saldo = TbRelatorio["Saldo"];
  std::array<const Field*, kTipos.size()> campos{};
  for (std::size_t i = 0; i < kTipos.size(); ++i) campos[i] = &TbRelatorio[kTipos[i].campo];

  Currency corrente;
  std::array<Currency, kTipos.size()> totais{};
  for (TbRelatorio.First(); !TbRelatorio.Eof(); TbRelatorio.Next()) {
    if (codigo.Get().Text() == kSaldoInicial) corrente = saldo.AsCurrency();
    if (codigo.Get().Text() <= kSaldoInicial) continue;
    for (std::size_t i = 0; i < kTipos.size(); ++i) {
      const Currency valor = campos[i]->AsCurrency();
      totais[i] += valor;
      corrente += kTipos[i].entrada ? valor : -valor;
    }
    TbRelatorio.Edit();
    saldo = corrente;
    TbRelatorio.Post();
  }
  for (std::size_t i = 0; i < kTipos.size(); ++i) {
    if (kTipos[i].total != nullptr) (this->*kTipos[i].total).SetAmount(totais[i]);
  }
  MostraMenorSaldo();
  MenorPorConta();
}

// --- The lowest balance.

void TfmRelAnaliseFluxo::SomaDia(const std::string& codigo, const std::array<const Field*, kSomados>& campos,
                                 Date dia, const std::string& conta) {
  if (dias_.empty() || dias_.back().dia != dia || dias_.back().codigo != codigo)
    dias_.push_back({dia, codigo});
  for (std::size_t i = 0; i < kSomados; ++i) {
    const Value& valor = campos[i]->Get();
    if (valor.IsNull()) continue;
    dias_.back().valores[i] += valor.AsCurrency();
    if (!conta.empty()) por_conta_[conta].push_back({dia, i, valor.AsCurrency()});
  }
}

void TfmRelAnaliseFluxo::MostraMenorSaldo() {
  // What the days add to the balance; the periods' rows tell what was typed beyond them.
  const auto do_dia = [this](const DiaSomado& dia) {
    Currency soma;
    for (std::size_t i = 0; i < kSomados; ++i) {
      if (!ocultos_.contains(kTipos[i].campo)) soma += kTipos[i].entrada ? dia.valores[i] : -dia.valores[i];
    }
    return soma;
  };
  std::unordered_map<std::string, Currency> digitado;
  Currency saldo;
  for (int64_t i = 0, n = TbRelatorio.DisplayCount(); i < n; ++i) {
    const std::string codigo = TbRelatorio.Cell(i, TbRelatorio["CodPer"]).AsString();
    if (codigo == kSaldoInicial) saldo = TbRelatorio.Cell(i, TbRelatorio["Saldo"]).AsCurrency();
    for (const Tipo& tipo : kTipos) {
      const Currency valor = TbRelatorio.Cell(i, TbRelatorio[tipo.campo]).AsCurrency();
      digitado[codigo] += tipo.entrada ? valor : -valor;
    }
  }
  for (const DiaSomado& um : dias_) digitado[um.codigo] -= do_dia(um);
  MenorSaldo menor(saldo, EdtDataDe.Date());
  for (const DiaSomado& um : dias_) {
    if (um.codigo <= kSaldoInicial) continue;
    menor.Soma(um.dia, std::exchange(digitado[um.codigo], Currency()) + do_dia(um));
  }
  menor.Mostra(LbMenor);
}

void TfmRelAnaliseFluxo::MenorPorConta() {
  const ControlsHold hold(TbMenor);
  TbMenor.EmptyDataSet();
  const Field &seleciona = TbSaldo["Seleciona"], &conta = TbSaldo["Conta"], &descricao = TbSaldo["Descricao"],
              &saldo = TbSaldo["Saldo"];
  for (int64_t i = 0, n = TbSaldo.DisplayCount(); i < n; ++i) {
    if (TbSaldo.Cell(i, seleciona).Text() != "S") continue;
    MenorSaldo menor(TbSaldo.Cell(i, saldo).AsCurrency(), EdtDataDe.Date());
    const auto achada = por_conta_.find(TbSaldo.Cell(i, conta).AsString());
    if (achada != por_conta_.end()) {
      for (const DiaDaConta& um : achada->second) {
        if (!ocultos_.contains(kTipos[um.tipo].campo))
          menor.Soma(um.dia, kTipos[um.tipo].entrada ? um.valor : -um.valor);
      }
    }
    Value linha[] = {TbSaldo.Cell(i, conta), TbSaldo.Cell(i, descricao), TbSaldo.Cell(i, saldo),
                     menor.Valor(), menor.Dia()};
    TbMenor.AppendRow(linha);
  }
  TbMenor.First();
}

// An account that was marked, left out or retyped moves every balance.
void TfmRelAnaliseFluxo::TbSaldoAfterPost() {
  if (montando_) return;
  if (TbRelatorio.Active()) {
    const PlaceHold lugar(TbRelatorio);
    if (TbRelatorio.Locate("CodPer", kSaldoInicial)) {
      TbRelatorio.Edit();
      TbRelatorio["Saldo"] = SomaSaldos();
      TbRelatorio.Post();
    }
  }
  CalculaSaldo();
}

void TfmRelAnaliseFluxo::OrvDBGrid1Exit() {
  TbSaldo.PostIfEditing();
  const PlaceHold lugar(TbRelatorio);
  const bool tem = TbRelatorio.Locate("CodPer", kSaldoInicial);
  const bool marcada = !ContasMarcadas().empty();
  if (tem && !marcada) TbRelatorio.Delete();
  if (!tem && marcada) AnexaSaldoInicial();
  if (tem != marcada) CalculaSaldo();
}

// --- Simulation and kinds that are hidden.

void TfmRelAnaliseFluxo::DBGrid1KeyDown(KeyPress& key) {
  const std::string& coluna = DBGrid1.SelectedField();
  if (key.key == "Tab" && (coluna == "Nota_Entrada" || coluna == "Nota_Saida")) {
    TbRelatorio.PostIfEditing();
    CalculaSaldo();
  } else if (key.key == "F4") {
    key.handled = true;
    DBGrid1DblClick();
  }
}

// Whoever leaves a simulated amount otherwise than by Tab sees the balances follow too.
void TfmRelAnaliseFluxo::DBGrid1ColExit() {
  const std::string& coluna = DBGrid1.SelectedField();
  if ((coluna != "Nota_Entrada" && coluna != "Nota_Saida") || !TbRelatorio.Editing()) return;
  TbRelatorio.Post();
  CalculaSaldo();
}

void TfmRelAnaliseFluxo::ClicaTipo(const Tipo& tipo) {
  // One box may stand for several columns.
  for (const Tipo& um : kTipos) {
    if (um.caixa != tipo.caixa) continue;
    const bool mostra = (this->*um.caixa).Checked();
    DBGrid1.SetColumnVisible(um.campo, mostra);
    if (!mostra) ZeraTipo(um);
  }
  TbRelatorio.First();
  CalculaSaldo();
  MostraOcultos();
}

void TfmRelAnaliseFluxo::ZeraTipo(const Tipo& tipo) {
  const ControlsHold hold(TbRelatorio);
  Field& campo = TbRelatorio[tipo.campo];
  for (TbRelatorio.First(); !TbRelatorio.Eof(); TbRelatorio.Next()) {
    const Currency valor = campo.AsCurrency();
    if (valor <= Currency()) continue;
    if (tipo.detalhe != nullptr) ocultos_[tipo.campo] += valor;
    TbRelatorio.Edit();
    campo = Currency();
    TbRelatorio.Post();
  }
}

void TfmRelAnaliseFluxo::ZeraTotais() {
  for (const Tipo& tipo : kTipos) {
    if (tipo.total != nullptr) (this->*tipo.total).SetAmount(Currency());
  }
}

std::string TfmRelAnaliseFluxo::Ocultos() const {
  std::vector<std::string> ditos;
  for (const Tipo& tipo : kTipos) {
    const auto oculto = ocultos_.find(tipo.campo);
    if (oculto != ocultos_.end()) ditos.push_back(std::string(tipo.titulo) + " " + oculto->second.Brazil());
  }
  return Join(ditos, ", ");
}

// Hiding takes out what is above zero; the rest of a hidden column is still in the balances.
std::string TfmRelAnaliseFluxo::OcultosQueContam() {
  std::vector<std::string> ditos;
  for (const Tipo& tipo : kTipos) {
    if (tipo.caixa == nullptr || (this->*tipo.caixa).Checked()) continue;
    Currency soma;
    for (int64_t i = 0, n = TbRelatorio.DisplayCount(); i < n; ++i)
      soma += TbRelatorio.Cell(i, TbRelatorio[tipo.campo]).AsCurrency();
    if (soma < Currency()) ditos.push_back(std::string(tipo.titulo) + " " + soma.Brazil());
  }
  return Join(ditos, ", ");
}

void TfmRelAnaliseFluxo::MostraOcultos() {
  const std::string ocultos = Ocultos();
  std::string texto;
  if (!ocultos.empty())
    texto = "Os saldos não contam o que foi ocultado: " + ocultos +
            ". Para contar, marque o tipo e consulte de novo.";
  if (const std::string contam = OcultosQueContam(); !contam.empty())
    texto += (texto.empty() ? "" : " ") + ("Contam, embora ocultos, valores negativos: " + contam + ".");
  LbOcultos.Mostra(std::move(texto));
  // The classes stay as they were gathered.
  std::string classes = fora_da_classe_;
  if (!ocultos.empty())
    classes += (classes.empty() ? "" : " ") + ("Conta o que foi ocultado em Análise: " + ocultos + ".");
  LbClasse.Mostra(std::move(classes));
}

// --- From tab to tab.

void TfmRelAnaliseFluxo::DBGrid1DblClick() { PageControl1.SetActivePage(TabSheet3); }

void TfmRelAnaliseFluxo::DBGrid2KeyDown(KeyPress& key) {
  if (key.key != "F4") return;
  key.handled = true;
  PageControl1.SetActivePage(TabSheet2);
}

void TfmRelAnaliseFluxo::DBGrid2TitleClick(const std::string& coluna) {
  TbDetalha.SetIndexFieldNames(coluna);
}

void TfmRelAnaliseFluxo::PageControl1Change() {
  if (OrvDBGrid1.Focused()) OrvDBGrid1Exit();
  if (PageControl1.ActivePage() == &TabSheet5) GeraGrafico();
  const std::string& coluna = DBGrid1.SelectedField();
  if (coluna == "Nota_Entrada" || coluna == "Nota_Saida" || coluna == "Saldo")
    PageControl1.SetActivePage(TabSheet2);
  if (PageControl1.ActivePage() == &TabSheet3) MostraDetalhe();
}

// The rows that make up the figure on which the user stands.
void TfmRelAnaliseFluxo::MostraDetalhe() {
  static constexpr const char* kSempre[] = {"Tipo", "Numero", "Docto", "Emissao", "Vencto"};
  const Tipo* const tipo = TipoSelecionado();
  const auto contem = [](std::span<const char* const> nomes, std::string_view nome) {
    return std::find(nomes.begin(), nomes.end(), nome) != nomes.end();
  };
  for (const GridColumn& coluna : DBGrid2.Columns()) {
    const bool mostra =
        contem(kSempre, coluna.field) ||
        (tipo != nullptr && (coluna.field == tipo->detalhe || contem(tipo->colunas, coluna.field)));
    DBGrid2.SetColumnVisible(coluna.field, mostra);
  }
  if (tipo != nullptr) {
    TbDetalha.SetFilter("CodPer = " + Funcoes.Aspas(TbRelatorio["CodPer"].AsString()) + " and " +
                        tipo->detalhe + " > 0 ");
    TbDetalha.SetFiltered(true);
    TbDetalha.First();
  }
  DescreveDetalhe(tipo);
}

// What the rows add up to, and why that isn't the figure from which the user came, where it isn't.
void TfmRelAnaliseFluxo::DescreveDetalhe(const Tipo* tipo) {
  if (tipo == nullptr || TbRelatorio.IsEmpty()) {
    LbDetalhe.SetCaption("Escolha um valor na página Análise para ver os lançamentos que o formam.");
    return;
  }
  const Field& valor = TbDetalha[tipo->detalhe];
  Currency soma;
  const int64_t linhas = TbDetalha.DisplayCount();
  for (int64_t i = 0; i < linhas; ++i) soma += TbDetalha.Cell(i, valor).AsCurrency();
  std::string texto = std::string(Trim(TbRelatorio["Periodo"].AsString())) + ", " + tipo->titulo + ": " +
                      std::to_string(linhas) + (linhas == 1 ? " lançamento, " : " lançamentos, ") +
                      soma.Brazil() + ".";
  const Currency figura = TbRelatorio[tipo->campo].AsCurrency();
  if (figura != soma) {
    texto += " Em Análise está " + figura.Brazil();
    if (ocultos_.contains(tipo->campo)) {
      texto += ": o tipo foi ocultado e volta com nova consulta.";
    } else {
      texto += figura < soma ? ": há valores negativos ou o valor foi digitado." : ": o valor foi digitado.";
    }
  }
  LbDetalhe.SetCaption(std::move(texto));
}

// --- The chart.

void TfmRelAnaliseFluxo::GeraGrafico() {
  const PlaceHold lugar(TbRelatorio);
  const ControlsHold hold(TbGrafico);
  TbGrafico.EmptyDataSet();
  for (TbRelatorio.First(); !TbRelatorio.Eof(); TbRelatorio.Next()) {
    Currency credito, debito;
    for (const Tipo& tipo : kTipos) (tipo.entrada ? credito : debito) += TbRelatorio[tipo.campo].AsCurrency();
    Value linha[] = {TbRelatorio["Periodo"].Get(), credito, -debito, TbRelatorio["Saldo"].Get()};
    TbGrafico.AppendRow(linha);
  }
  TbGrafico.First();
  DBChart1.SetPage(0);
  Compara();
}

}  // namespace orv
