// Periods of days.
#pragma once

#include <algorithm>
#include <string_view>

#include "toolkit/date.h"

namespace orv {

// From a first day to a last one, both within.
struct Periodo {
  Date de, ate;
  // The days that both have.
  Periodo Comum(const Periodo& outro) const { return {std::max(de, outro.de), std::min(ate, outro.ate)}; }
  bool Contem(Date dia) const { return !dia.Empty() && de <= dia && dia <= ate; }
};

constexpr int kMeses = 12;

// The days of a year as typed ("2026"); none where the text isn't a year.
Periodo DiasDoAno(std::string_view ano);

}  // namespace orv
