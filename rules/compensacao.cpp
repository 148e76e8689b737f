#include "rules/compensacao.h"

#include "toolkit/text.h"

namespace orv {

void ApagaPartidasDaCompensacao(const IFuncoes& funcoes, IContabil& contabil, ITabela& tabela,
                                const std::string& numero) {
  if (Trim(numero).empty()) return;
  const std::string deste = " WHERE LANCAMENTO = " + funcoes.Aspas(numero);
  TOrvDatabase& db = tabela.IBDatabase();
  const bool alheio = !db.Rows("SELECT FIRST 1 1 FROM " + funcoes.DBLocal("CONTACOR", true) + deste).empty();
  if (alheio) {
    // Beside a movement's own entries those of a clearing are known by their text.
    db.Execute("DELETE FROM " + funcoes.DBLocal("CONTABIL", true) + deste +
               " AND OBSERVACAO STARTING WITH 'COMPENSA'");
    return;
  }
  contabil.DeletaContabilidadeFinan(numero);
  db.Execute("DELETE FROM " + funcoes.DBLocal("CENTRO_RATEIO", true) + deste);
}

}  // namespace orv
