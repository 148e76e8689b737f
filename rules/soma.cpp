#include "rules/soma.h"

#include "toolkit/text.h"

namespace orv {

std::string Soma(std::string_view valor) {
  const std::string v = "(" + std::string(valor) + ")", inteiro = "CAST(" + v + " AS BIGINT)";
  return "(SUM(" + inteiro + ") || ' ' || SUM(" + v + " - " + inteiro + "))";
}

Currency SomaDe(const Value& soma) {
  if (soma.IsNull()) return {};
  const auto partes = Split(soma.Text(), " ");
  ORV_ASSERT(partes.size() == 2);
  return Currency::ParseNeutral(partes[0]) + Currency::ParseNeutral(partes[1]);
}

}  // namespace orv
