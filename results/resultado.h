// The result by management classes and months: figures as they are gathered, and the titles that add up what
// stands beneath them in the structure of the classes.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>

#include "rules/periodo.h"
#include "toolkit/currency.h"

namespace orv {

// A class, by the side of its figures.
struct ClasseResultado {
  std::string classe;  // its place in the structure: what begins with it stands beneath it
  std::string codigo, descricao, operacao, tp_conta;
  bool Titulo() const { return tp_conta == "T"; }
};

enum class Quadro : uint8_t { Realizado, Orcado };

// A class's figures by months, 0 for January. A month without one is empty.
struct LinhaResultado : ClasseResultado {
  using Meses = std::array<std::optional<Currency>, kMeses>;
  std::array<Meses, 2> quadros;

  const Meses& Do(Quadro quadro) const { return quadros[static_cast<std::size_t>(quadro)]; }
  // Empty where all months are.
  std::optional<Currency> Total(Quadro quadro) const;
};

class Resultado {
 public:
  // Adds to a month, 1 to 12, of the class and side, which gets its row with its first figure.
  void Junta(const ClasseResultado& classe, Quadro quadro, int mes, Currency valor);
  // A title, after all figures. One that has figures of its own stands there already.
  void InsereTitulo(const ClasseResultado& titulo);
  // Each title gets the net of what stands beneath it: what is of its own side less what isn't. One without
  // anything beneath it stays empty.
  void SomaTitulos();
  // As they were added; after SomaTitulos in the order of their places and codes.
  const std::deque<LinhaResultado>& Linhas() const { return linhas_; }

 private:
  std::deque<LinhaResultado> linhas_;
  std::unordered_map<std::string, LinhaResultado*> por_codigo_;
};

}  // namespace orv
