#include "rules/conta_contabil.h"

#include <utility>

#include "toolkit/text.h"

namespace orv {

std::string ContaContabil(const IFuncoes& funcoes, ITabela& tabela,
                          std::initializer_list<ChaveContabil> chaves) {
  for (const ChaveContabil& chave : chaves) {
    std::string sql = "SELECT FIRST 1 CONTA_CONT FROM " + funcoes.DBLocal("CLASSE_CONTA", true);
    const char* liga = " WHERE ";
    const std::pair<const char*, const std::optional<std::string>&> colunas[] = {
        {"CONTA", chave.conta},
        {"HISTORICO", chave.historico},
        {"CLASSE", chave.classe},
        {"CARTEIRA", chave.carteira},
        {"CODCLI", chave.codcli}};
    for (const auto& [coluna, texto] : colunas) {
      if (!texto) continue;
      sql.append(std::exchange(liga, " AND ")).append(coluna).append(" = ") += funcoes.Aspas(*texto);
    }
    sql +=
        " ORDER BY CASE WHEN HISTORICO = '0' THEN 0 ELSE 1 END, CASE WHEN CLASSE = '0' THEN 0 ELSE 1 END, "
        "CASE WHEN CODCLI > '' THEN 1 ELSE 0 END, CASE WHEN CARTEIRA = '0' THEN 0 ELSE 1 END";
    const auto linhas = tabela.IBDatabase().Rows(sql);
    if (!linhas.empty()) return std::string(Trim(linhas[0][0].AsString()));
  }
  return "";
}

}  // namespace orv
