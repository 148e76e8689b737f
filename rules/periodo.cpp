#include "rules/periodo.h"

#include <charconv>
#include <cmath>

#include "toolkit/text.h"

namespace orv {
namespace {

// How many turns of a month lie between the two days.
int Viradas(const Periodo& periodo) {
  return kMeses * (periodo.ate.Year() - periodo.de.Year()) + periodo.ate.Month() - periodo.de.Month();
}

}  // namespace

Periodo DiasDoAno(std::string_view ano) {
  const std::string_view digitos = Trim(ano);
  int numero = 0;
  const auto [fim, erro] = std::from_chars(digitos.data(), digitos.data() + digitos.size(), numero);
  if (erro != std::errc() || fim != digitos.data() + digitos.size() || !Date::Exists(numero, 1, 1)) return {};
  return {Date(numero, 1, 1), Date(numero, kMeses, 31)};
}

int QtdeMeses(const Periodo& periodo) {
  const double meses = Viradas(periodo) + (periodo.ate.Day() - periodo.de.Day()) / 32.0;
  return meses < 1 ? 1 : static_cast<int>(std::floor(meses)) + 1;
}

bool RepeteMes(const Periodo& periodo) { return Viradas(periodo) >= kMeses; }

std::vector<int> MesesEmOrdem(const Periodo& periodo) {
  const bool todos = RepeteMes(periodo);
  const int primeiro = todos ? 1 : periodo.de.Month(), quantos = todos ? kMeses : Viradas(periodo) + 1;
  std::vector<int> meses;
  for (int i = 0; i < quantos; ++i) meses.push_back((primeiro - 1 + i) % kMeses + 1);
  return meses;
}

}  // namespace orv
