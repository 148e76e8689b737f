#include "rules/compensacao.h"

#include <string>

namespace orv {

void RetiraCompensacao(const IFuncoes& funcoes, ITabela& tabela, std::string_view numero) {
  const std::string deste = "LANCAMENTO = " + funcoes.Aspas(numero);
  const std::string livre =
      "NOT EXISTS (SELECT 1 FROM " + funcoes.DBLocal("CONTACOR", true) + " WHERE " + deste + ")";
  const auto retira = [&](const char* tabela_local, const std::string& condicao) {
    tabela.IBDatabase().Execute("DELETE FROM " + funcoes.DBLocal(tabela_local, true) + " WHERE " + deste +
                                " AND (" + condicao + ")");
  };
  // Beside a movement's entries those of a clearing are known by their text.
  retira("CONTABIL", "OBSERVACAO STARTING WITH 'COMPENSA' OR " + livre);
  retira("CENTRO_RATEIO", livre);
}

}  // namespace orv
