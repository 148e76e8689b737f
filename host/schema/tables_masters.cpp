// What the other tables name by code.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> MasterTables() {
  return {
      {"CADCONTA",
       {Account("CONTA"), Bank("BANCO"), Text("AGENCIA", 7), Text("EMPRESA", 30), Text("DESCRICAO", 50),
        Flag("IMP_FLUXO"), Money("LIMITE"), Money("SALDO"), Text("CNPJ", 18), Text("INSCRICAO", 14),
        Text("MENSAGEM_1", 40), Text("MENSAGEM_2", 40), Integer("CONTADOR"), Text("LOTE_SERVICO", 10),
        Text("OUTROS", 40), Integer("DIAS_COMP"), Text("CODIGO", 3), Text("TIPO", 1)},
       {"CONTA"},
       {}},

      {"CADBAN",
       {Bank("BANCO"), Text("NOME_BANCO", 40), Money("VAL_CONTRATO"), Text("ENTRADA", 50)},
       {"BANCO"},
       {}},

      {"HISTCP",
       {History("HISTORICO"), Text("DESCRICAO", 30), Text("SITUACAO", 1), Text("TIPO", 2)},
       {"HISTORICO"},
       {}},

      // TIPO is never null: the reports exclude kinds by "<>", which drops nulls. RATEIO "S": a movement of
      // the class must be apportioned to cost centres even where the class has no rules.
      {"SUBGRUPO",
       {Class("CODIGO"), Text("DESCRICAO", 50), Text("OPERACAO", 1), Text("TP_CONTA", 1, "'A'"),
        Text("CONTA", 20), Text("TIPO", 20, "''"), Flag("RATEIO")},
       {"CODIGO"},
       {{{"CONTA"}}}},

      {"ENTIDADE",
       {Entity("CODCLI"), Text("NOME", 80), Text("CNPJ", 18), LedgerAccount("CONTAC"),
        LedgerAccount("CONTAD"), Terms("CONDICAO"), Money("CREDITO"), Integer("ATRASO_MEDIO", "0")},
       {"CODCLI"},
       {{{"NOME"}}}},

      // DIAS_FLOAT: working days that the bank takes to credit a document of the situation.
      {"TABSIT",
       {Situation("CODIGO"), Text("DESCRICAO", 30), Flag("IMP_FLUXO", "'S'"), Integer("DIAS_FLOAT", "0")},
       {"CODIGO"},
       {}},

      {"REPRESEN", {Entity("CODREP"), Text("NOME", 100), Text("REGIAO", 5)}, {"CODREP"}, {}},

      {"REGIAO", {Text("REGIAO", 5), Text("DESCRICAO", 40)}, {"REGIAO"}, {}},

      {"MOEDA",
       {CurrencyCode("CODMOE"), Text("DESCRICAO", 30), Account("CONTA"), Double("TXOPERADORA")},
       {"CODMOE"},
       {}},

      // DATA is text in the form "DD/MM/YYYY": that is how rates are looked up.
      {"VALOR_MOEDA", {CurrencyCode("MOEDA"), Text("DATA", 10), Double("VALOR")}, {"MOEDA", "DATA"}, {}},

      {"TABPRZ",
       {Text("PRAZO", 10), Text("DESCRICAO", 40), Day("DT_INICIO"), Day("DT_FIM")},
       {"PRAZO"},
       {{{"DT_INICIO"}}}},

      {"CONDICAO", {Text("CODCOND", 5), Text("DESCRICAO", 40)}, {"CODCOND"}, {}},
  };
}

}  // namespace orv::schema_parts
