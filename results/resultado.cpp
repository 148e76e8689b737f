#include "results/resultado.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace orv {
namespace {

constexpr std::size_t kFiguras = 2 * kMeses;
using Figuras = std::array<Currency, kFiguras>;

// What stands at a place or beneath it, by sides: what is neither a credit nor a debit is against both.
struct Lados {
  Figuras mais, menos, outras;
  bool alguma = false;

  void Junta(const LinhaResultado& linha) {
    alguma = true;
    Figuras& lado = linha.operacao == "+" ? mais : linha.operacao == "-" ? menos : outras;
    for (std::size_t i = 0; i < kFiguras; ++i)
      lado[i] += linha.quadros[i / kMeses][i % kMeses].value_or(Currency());
  }
  void Junta(const Lados& que) {
    alguma = alguma || que.alguma;
    for (const auto& [meu, dele] :
         {std::pair{&mais, &que.mais}, std::pair{&menos, &que.menos}, std::pair{&outras, &que.outras}})
      for (std::size_t i = 0; i < kFiguras; ++i) (*meu)[i] += (*dele)[i];
  }
  // As a title of the side sees it.
  Currency De(const std::string& operacao, std::size_t i) const {
    const Currency proprio = operacao == "+" ? mais[i] : operacao == "-" ? menos[i] : outras[i];
    return proprio + proprio - (mais[i] + menos[i] + outras[i]);
  }
};

// A place on the way from the root to the row at hand.
struct Lugar {
  std::string_view classe;
  Lados aqui, abaixo;
  std::vector<LinhaResultado*> titulos;
};

// Its titles get what is beneath it, and the place above it gets all.
void Fecha(std::vector<Lugar>& caminho) {
  Lugar& lugar = caminho.back();
  for (LinhaResultado* titulo : lugar.titulos) {
    if (!lugar.abaixo.alguma) continue;
    for (std::size_t i = 0; i < kFiguras; ++i) {
      auto& figura = titulo->quadros[i / kMeses][i % kMeses];
      figura = figura.value_or(Currency()) + lugar.abaixo.De(titulo->operacao, i);
    }
  }
  if (caminho.size() > 1) {
    Lados& acima = caminho[caminho.size() - 2].abaixo;
    acima.Junta(lugar.aqui);
    acima.Junta(lugar.abaixo);
  }
  caminho.pop_back();
}

}  // namespace

std::optional<Currency> LinhaResultado::Total(Quadro quadro) const {
  std::optional<Currency> total;
  for (const auto& mes : Do(quadro))
    if (mes) total = total.value_or(Currency()) + *mes;
  return total;
}

void Resultado::Junta(const ClasseResultado& classe, Quadro quadro, int mes, Currency valor) {
  auto [linha, nova] = por_codigo_.try_emplace(classe.codigo + '\n' + classe.operacao);
  if (nova) linha->second = &linhas_.emplace_back(LinhaResultado{classe, {}});
  auto& figura =
      linha->second->quadros[static_cast<std::size_t>(quadro)].at(static_cast<std::size_t>(mes - 1));
  figura = figura.value_or(Currency()) + valor;
}

void Resultado::InsereTitulo(const ClasseResultado& titulo) {
  const auto achada = por_codigo_.find(titulo.codigo + '\n' + titulo.operacao);
  if (achada == por_codigo_.end() || !achada->second->Titulo()) linhas_.push_back({titulo, {}});
}

// Rows beneath a place follow it without a gap, so that one walk along the way from the root is enough. Rows
// that share a place aren't beneath one another.
void Resultado::SomaTitulos() {
  por_codigo_.clear();
  std::sort(linhas_.begin(), linhas_.end(), [](const LinhaResultado& a, const LinhaResultado& b) {
    return std::tie(a.classe, a.codigo, a.operacao) < std::tie(b.classe, b.codigo, b.operacao);
  });
  std::vector<Lugar> caminho;
  for (LinhaResultado& linha : linhas_) {
    while (!caminho.empty() && !linha.classe.starts_with(caminho.back().classe)) Fecha(caminho);
    if (caminho.empty() || caminho.back().classe != linha.classe)
      caminho.push_back({linha.classe, {}, {}, {}});
    Lugar& lugar = caminho.back();
    const bool tem = linha.Total(Quadro::Realizado) || linha.Total(Quadro::Orcado);
    // The cost of sales may stand on a title: there it is the title's own.
    if (tem) lugar.aqui.Junta(linha);
    if (linha.Titulo()) lugar.titulos.push_back(&linha);
  }
  while (!caminho.empty()) Fecha(caminho);
}

}  // namespace orv
