// The ledger of the bank accounts, its accounting and its rules.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> LedgerTables() {
  return {
      // One number can stand on several rows, and a correction can repeat a row's whole identity: no key.
      {"CONTACOR",
       {Movement("LANCAMENTO"), Document("DOCTO"), Bank("BANCO"), Account("CONTA"), Day("DT_LAN"),
        Day("DT_CONT"), Day("DT_VENCTO"), Money("VALOR"), Text("OPERACAO", 1), Class("GRUPO"),
        History("HISTORICO"), Text("OBSERVACAO", 100), Text("TIPO", 2), Text("TIPO_DOC", 2),
        Text("PENDENTE", 1), Movement("LANC_CON")},
       {},
       {{{"LANCAMENTO"}},
        {{"DOCTO"}},
        {{"CONTA", "DT_CONT"}},
        {{"DT_LAN"}},
        {{"DT_VENCTO"}},
        {{"PENDENTE", "DT_VENCTO"}},
        {{"LANC_CON"}}}},

      // What the movements come to, kept by the database itself (balances.h).
      {"SALDO_CONTA",
       {Account("CONTA"), Text("DATA", 1), Day("MES"), Text("PENDENTE", 1), Text("OPERACAO", 1),
        Money("VALOR"), Integer("QUANTIDADE", "0")},
       {},
       {{{"DATA", "CONTA", "MES"}}}},

      // Files beside the movement of that number, whatever its rows.
      {"ANEXO",
       {Movement("LANCAMENTO"), SmallInt("NUMERO"), Text("NOME", 120), Text("TIPO", 4), Integer("TAMANHO"),
        Text("SHA256", 64), Text("LOGIN", 40), Moment("MOMENTO"), Bytes("CONTEUDO")},
       {"LANCAMENTO", "NUMERO"},
       {}},

      // Besides accounts of the chart, CONTA_C and CONTA_D take bank accounts and codes of entities.
      {"CONTABIL",
       {Movement("LANCAMENTO"), Text("DOCTO", 12), Text("DOCTO2", 12), Text("CONTA_C", 13),
        Text("CONTA_D", 13), Text("OPERACAO", 1), Text("ORIGEM", 2), Class("CLASSE"), History("HISTORICO"),
        Money("VALOR"), Day("DATA"), Text("CODIGO", 12), Text("OBSERVACAO", 200)},
       {},
       {{{"LANCAMENTO"}}, {{"DATA"}}}},

      {"CENTRO_RATEIO",
       {Movement("LANCAMENTO"), Integer("ORDEM"), LedgerAccount("CONTA"), Text("NUMERO", 12),
        CostCentre("CENTROCUSTO"), Text("TIPO", 2), Double("PERC_RAT"), Money("VALOR_RAT")},
       {},
       {{{"LANCAMENTO"}}, {{"NUMERO"}}}},

      {"CENTROCUSTO", {CostCentre("CODIGO"), Text("DESCRICAO", 50)}, {"CODIGO"}, {}},

      {"CONTA_CONT",
       {LedgerAccount("CODIGO"), Text("DESCRICAO", 50), Text("TP_CONTA", 1), Flag("CT_RESULT")},
       {"CODIGO"},
       {}},

      {"CLASSE_CONTA",
       {Entity("CODCLI"), Class("CLASSE"), History("HISTORICO"), Text("CARTEIRA", 3), Account("CONTA"),
        LedgerAccount("CONTA_CONT")},
       {},
       {{{"CONTA", "HISTORICO"}}, {{"HISTORICO"}}}},

      // Whether a movement of this account with this history starts pending, where that isn't what the
      // history says.
      {"HIST_CONTA", {Account("CONTA"), History("HISTORICO"), Flag("PENDENTE")}, {"CONTA", "HISTORICO"}, {}},

      {"CONT_RATEIO",
       {Class("CODIGO"), Text("TIPO", 1), Text("TIPO_VAL", 2), LedgerAccount("CONTA"), Double("PERC_CONTA"),
        CostCentre("CCUSTO"), Double("PERC_CCUSTO")},
       {},
       {{{"CODIGO"}}}},
  };
}

}  // namespace orv::schema_parts
