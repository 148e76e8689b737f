#include "rules/rateio.h"

#include <algorithm>

namespace orv {

std::vector<std::pair<std::string, double>> ContasDoRateio(const std::vector<RegraRateio>& regras) {
  std::vector<std::pair<std::string, double>> contas;
  for (const RegraRateio& regra : regras) contas.emplace_back(regra.conta, regra.perc_conta);
  std::sort(contas.begin(), contas.end());
  contas.erase(std::unique(contas.begin(), contas.end()), contas.end());
  return contas;
}

}  // namespace orv
