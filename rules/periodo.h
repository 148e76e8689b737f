// Periods of days.
#pragma once

#include "toolkit/date.h"

namespace orv {

// From a first day to a last one, both within.
struct Periodo {
  Date de, ate;
  bool Contem(Date dia) const { return !dia.Empty() && de <= dia && dia <= ate; }
};

}  // namespace orv
