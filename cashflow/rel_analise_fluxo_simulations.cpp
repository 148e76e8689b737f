// Simulations of the analysis that a user keeps under names, and their balances side by side.
#include "cashflow/rel_analise_fluxo.h"
#include "toolkit/place_hold.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// What the user's own settings hold of a name and of a text.
constexpr std::size_t kNome = 40, kTexto = 2000;

}  // namespace

// A user's simulations are of the company in which he made them.
std::string TfmRelAnaliseFluxo::CaminhoSimulacao() const {
  return "Simulacao/" + ClassName() + "/" + Funcoes.vEmpresa_Atual() + "/";
}

void TfmRelAnaliseFluxo::LeSimulacoes() {
  simulacoes_.clear();
  for (const auto& [nome, texto] : Funcoes.LeTextos(CaminhoSimulacao())) {
    if (texto.empty()) continue;
    Simulacao& simulacao = simulacoes_[nome];
    for (const std::string& linha : Split(texto, "\n")) {
      const auto partes = Split(linha, "\t");
      if (partes.size() == 3)
        simulacao[partes[0]] = {Currency::ParseNeutral(partes[1]), Currency::ParseNeutral(partes[2])};
    }
  }
  for (ComboBox* lista : {&CbCompara1, &CbCompara2}) {
    const std::string escolhida = lista->Text();
    std::vector<std::string> nomes{"(nenhuma)"};
    for (const auto& [nome, simulacao] : simulacoes_) nomes.push_back(nome);
    const auto lugar = std::find(nomes.begin(), nomes.end(), escolhida);
    const int indice = lugar == nomes.end() ? 0 : static_cast<int>(lugar - nomes.begin());
    lista->SetItems(std::move(nomes));
    lista->SetItemIndex(indice);
  }
  Compara();
}

const TfmRelAnaliseFluxo::Simulacao* TfmRelAnaliseFluxo::Escolhida(const ComboBox& lista) const {
  const auto achada = simulacoes_.find(lista.Text());
  return lista.ItemIndex() <= 0 || achada == simulacoes_.end() ? nullptr : &achada->second;
}

void TfmRelAnaliseFluxo::BtGuardarClick() {
  TbRelatorio.PostIfEditing();
  const auto valor = [this](int64_t linha, const char* campo) {
    return TbRelatorio.Cell(linha, TbRelatorio[campo]);
  };
  std::vector<std::string> linhas;
  for (int64_t i = 0, n = TbRelatorio.DisplayCount(); i < n; ++i) {
    const Currency entrada = valor(i, "Nota_Entrada").AsCurrency(),
                   saida = valor(i, "Nota_Saida").AsCurrency();
    if (!entrada.IsZero() || !saida.IsZero())
      linhas.push_back(Join({valor(i, "CodPer").AsString(), entrada.Neutral(), saida.Neutral()}, "\t"));
  }
  if (linhas.empty()) return Inform("Digite entradas ou saídas em Análise antes de guardar a simulação.");
  const std::string texto = Join(linhas, "\n");
  if (texto.size() > kTexto) return Inform("A simulação tem valores demais para ser guardada.");
  const auto nome =
      User().InputBox(Caption(), "Nome da simulação:", CbCompara1.ItemIndex() > 0 ? CbCompara1.Text() : "");
  if (!nome || Trim(*nome).empty()) return;
  const std::string curto(CutChars(Trim(*nome), kNome));
  Funcoes.GravaTexto(CaminhoSimulacao() + curto, texto);
  Tabela.CommitRetaining();
  Stored("Simulação " + curto + " guardada.");
  LeSimulacoes();
}

void TfmRelAnaliseFluxo::BtAbrirClick() {
  const Simulacao* const simulacao = Escolhida(CbCompara1);
  if (simulacao == nullptr) return Inform("Escolha em Comparar com a simulação que quer abrir.");
  CbSimula.SetChecked(true);
  {
    const PlaceHold lugar(TbRelatorio);
    for (TbRelatorio.First(); !TbRelatorio.Eof(); TbRelatorio.Next()) {
      const auto simulado = simulacao->find(TbRelatorio["CodPer"].AsString());
      TbRelatorio.Edit();
      TbRelatorio["Nota_Entrada"] = simulado == simulacao->end() ? Currency() : simulado->second.entrada;
      TbRelatorio["Nota_Saida"] = simulado == simulacao->end() ? Currency() : simulado->second.saida;
      TbRelatorio.Post();
    }
  }
  CalculaSaldo();
  GeraGrafico();
}

void TfmRelAnaliseFluxo::BtExcluirClick() {
  if (Escolhida(CbCompara1) == nullptr)
    return Inform("Escolha em Comparar com a simulação que quer excluir.");
  const std::string nome = CbCompara1.Text();
  if (!Ask("Excluir a simulação " + nome + "?", true)) return;
  Funcoes.GravaTexto(CaminhoSimulacao() + nome, "");
  Tabela.CommitRetaining();
  LeSimulacoes();
}

// The balances by the simulations that are chosen, each in the place of what is typed now.
void TfmRelAnaliseFluxo::Compara() {
  struct Lado {
    const ComboBox& lista;
    const Simulacao* escolhida;
    const char* campo;
    // What no period took yet, and how far the balance is from the present one.
    Simulacao resto{};
    Currency desvio{};
  };
  Lado lados[] = {{CbCompara1, Escolhida(CbCompara1), "Saldo1"},
                  {CbCompara2, Escolhida(CbCompara2), "Saldo2"}};
  const bool compara = lados[0].escolhida != nullptr || lados[1].escolhida != nullptr;
  DBChart1.SetVisible(!compara);
  GrafCompara.SetVisible(compara);
  for (Lado& lado : lados) {
    GrafCompara.SetSeriesTitle(lado.campo, lado.escolhida == nullptr ? "" : lado.lista.Text());
    if (lado.escolhida != nullptr) lado.resto = *lado.escolhida;
  }
  const ControlsHold hold(TbCompara);
  TbCompara.EmptyDataSet();
  for (int64_t i = 0, n = compara ? TbRelatorio.DisplayCount() : 0; i < n; ++i) {
    const auto valor = [&](const char* campo) { return TbRelatorio.Cell(i, TbRelatorio[campo]); };
    const std::string codigo = valor("CodPer").AsString();
    const Currency agora = valor("Nota_Entrada").AsCurrency() - valor("Nota_Saida").AsCurrency();
    Value linha[] = {valor("Periodo"), valor("Saldo"), Value(), Value()};
    for (std::size_t k = 0; k < std::size(lados); ++k) {
      Lado& lado = lados[k];
      if (lado.escolhida == nullptr) continue;
      // What stands in a period that no balance counts isn't counted here either.
      if (const auto simulado = lado.resto.extract(codigo); codigo > "00") {
        lado.desvio -= agora;
        if (!simulado.empty()) lado.desvio += simulado.mapped().entrada - simulado.mapped().saida;
      }
      linha[2 + k] = valor("Saldo").AsCurrency() + lado.desvio;
    }
    TbCompara.AppendRow(linha);
  }
  TbCompara.First();
  GrafCompara.SetPage(0);
  std::vector<std::string> fora;
  for (const Lado& lado : lados) {
    Currency soma;
    for (const auto& [codigo, simulado] : lado.resto) soma += simulado.entrada - simulado.saida;
    if (!lado.resto.empty())
      fora.push_back(lado.lista.Text() + " tem " + soma.Brazil() + " em períodos que não estão aqui.");
  }
  LbCompara.Mostra(Join(fora, " "));
}

}  // namespace orv
