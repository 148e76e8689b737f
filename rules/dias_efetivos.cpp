#include "rules/dias_efetivos.h"

namespace orv {

Date DiasEfetivos::DiaUtil(Date dia) {
  const auto [found, added] = uteis_.try_emplace(dia.Days());
  if (added) found->second = funcoes_.VerificaDiaUtil(dia, false);
  return found->second;
}

Date DiasEfetivos::Credito(Date dia, std::string_view situacao) {
  const auto [found, added] = creditos_[std::string(situacao)].try_emplace(dia.Days());
  if (added) found->second = contabil_.DataContabilizacaoBancaria(dia, situacao, true);
  return found->second;
}

}  // namespace orv
