#include "ledger/class_account.h"

namespace orv {
namespace {

std::string Busca(const IFuncoes& funcoes, ITabela& tabela, const std::string& condicao,
                  const std::string& ordem) {
  return tabela.IBDatabase()
      .Scalar("SELECT FIRST 1 CONTA_CONT FROM " + funcoes.DBLocal("CLASSE_CONTA", true) + " WHERE " +
              condicao + " ORDER BY " + ordem +
              "CASE WHEN CLASSE = '0' THEN 0 ELSE 1 END, CASE WHEN CODCLI > '' THEN 1 ELSE 0 END, "
              "CASE WHEN CARTEIRA = '0' THEN 0 ELSE 1 END")
      .AsString();
}

}  // namespace

std::string ContaDoHistorico(const IFuncoes& funcoes, ITabela& tabela, const std::string& conta,
                             const std::string& historico) {
  return Busca(funcoes, tabela,
               "CONTA = " + funcoes.Aspas(conta) + " AND HISTORICO = " + funcoes.Aspas(historico), "");
}

std::string ContaDoBanco(const IFuncoes& funcoes, ITabela& tabela, const std::string& conta,
                         const std::string& historico) {
  return Busca(funcoes, tabela, "CONTA = " + funcoes.Aspas(conta),
               "CASE WHEN HISTORICO = " + funcoes.Aspas(historico) +
                   " THEN 0 WHEN HISTORICO = '0' THEN 1 ELSE 2 END, ");
}

}  // namespace orv
