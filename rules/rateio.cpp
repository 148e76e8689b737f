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

void ApagaRateioDoMovimento(const IFuncoes& funcoes, ITabela& tabela, const std::string& lancamento) {
  const std::string numero = funcoes.Aspas(lancamento);
  tabela.IBDatabase().Execute("DELETE FROM " + funcoes.DBLocal("CENTRO_RATEIO", true) +
                              " WHERE LANCAMENTO = " + numero + " OR (NUMERO = " + numero +
                              " AND TIPO = 'CC' AND (LANCAMENTO = '' OR LANCAMENTO IS NULL))");
}

}  // namespace orv
