// Periods of days.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

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

// How many months a period has, at least one: a month ends the day before the one on which it began.
int QtdeMeses(const Periodo& periodo);
// The months of the calendar, 1 to 12, in the order in which a period comes to them; from January on where it
// comes to one of them a second time.
std::vector<int> MesesEmOrdem(const Periodo& periodo);
// Whether it does.
bool RepeteMes(const Periodo& periodo);

}  // namespace orv
