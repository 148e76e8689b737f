#include "rules/periodo.h"

#include <charconv>

#include "toolkit/text.h"

namespace orv {

Periodo DiasDoAno(std::string_view ano) {
  const std::string_view digitos = Trim(ano);
  int numero = 0;
  const auto [fim, erro] = std::from_chars(digitos.data(), digitos.data() + digitos.size(), numero);
  if (erro != std::errc() || fim != digitos.data() + digitos.size() || !Date::Exists(numero, 1, 1)) return {};
  return {Date(numero, 1, 1), Date(numero, kMeses, 31)};
}

}  // namespace orv
