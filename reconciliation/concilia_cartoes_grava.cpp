#include "reconciliation/concilia.h"

namespace orv {
void TFmConcilia::GravaCielo() {}
void TFmConcilia::GravaGetnet() {}
void TFmConcilia::GravaStone() {}
}  // namespace orv
