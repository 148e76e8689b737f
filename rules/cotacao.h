// Rates of currencies.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "frame/services.h"

namespace orv {

// The working day before today, whose rates count: Friday on a Monday.
Date VesperaDaCotacao(Date hoje);

// The rates that a gathering asks for, from the present company, read at once.
class Cotacoes {
 public:
  using Pedidas = std::set<std::pair<std::string, Date>>;
  Cotacoes(IFuncoes& funcoes, TOrvDatabase& db, const Pedidas& pedidas);
  // 1 where none is known that day, which is remembered; a currency of no name has no rate.
  double Taxa(const std::string& moeda, Date dia);
  // 0 where none is known.
  double Conhecida(const std::string& moeda, Date dia) const;
  // What counted as 1: a sentence, or "".
  std::string Faltam() const;

 private:
  std::map<std::pair<std::string, std::string>, double> taxas_;
  std::set<std::string> faltam_;
};

}  // namespace orv
