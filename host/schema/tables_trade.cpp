// Orders, purchases, invoices and stock, which the module only reads.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> TradeTables() {
  return {
      {"PEDIDO",
       {Order("NUMERO"), Entity("CODCLI"), Entity("CODREP"), Day("DT_EMISSAO"), Day("DT_FATURA"),
        Day("ENTREGA"), Text("PED_CLI", 30), Double("PER_DESC"), Terms("PGTO"), Situation("SIT_DUP"),
        Text("BLOQUEIO", 1, "'1'"), Text("FINANCEIRO", 1, "'1'"), Text("ID_TRANSACAO", 40)},
       {"NUMERO"},
       {{{"DT_FATURA"}}, {{"CODCLI"}}, {{"ID_TRANSACAO"}}}},

      {"PED_ITEN", {Order("NUMERO"), Double("PRECO"), Double("QTDE"), Day("DT_ENTREGA")}, {}, {{{"NUMERO"}}}},

      {"COMPRA",
       {Order("NUMERO"), Entity("CODFOR"), Terms("CONDICAO"), Class("CLASSE"), Document("DOCTO"),
        Day("DT_EMISSAO"), Day("DT_ENTREGA"), Text("FRETE", 1), Money("VAL_FRETE"), Text("LIBERADO", 1),
        CurrencyCode("MOEDA"), Text("OBS", 1000), Integer("PARCELAS", "0")},
       {"NUMERO"},
       {{{"DT_ENTREGA"}}, {{"CODFOR"}}, {{"DOCTO"}}}},

      {"CO_ITEN",
       {Order("NUMERO"), Double("PRECO"), Double("QTDE"), Double("QTDE_B"), Double("IPI"), Money("VALOR_ST"),
        Day("DT_ENTREGA"), Day("DT_FATURA"), Text("SITUACAO", 1, "'A'")},
       {},
       {{{"NUMERO"}}}},

      // Due dates of an order or purchase that its slots of days can't tell. TIPO "C" for a purchase.
      {"COND_PAGTO", {Order("NUMERO"), Text("TIPO", 1), Day("DT_VENCTO")}, {}, {{{"NUMERO"}}}},

      {"NOTA",
       {Document("FATURA"), Day("DT_EMISSAO"), Text("NATUREZA", 6), Flag("IMPRESSO")},
       {"FATURA"},
       {{{"DT_EMISSAO"}}}},

      {"NOTAITEN", {Document("FATURA"), Double("CUSTO"), Double("QTDE")}, {}, {{{"FATURA"}}}},

      // TIPO "V" sale, "D" return; DUPLI "S" when titles are made of it.
      {"NATUREZA",
       {Text("NATUREZA", 6), Text("DESCRICAO", 50), Text("TIPO", 1), Flag("DUPLI")},
       {"NATUREZA"},
       {}},

      {"NOTA_ENTRA",
       {Document("NOTAFISCAL"), Entity("CREDOR"), Text("SERIE", 3), Day("DT_EMISSAO"), Text("NATUREZA", 6)},
       {"NOTAFISCAL", "CREDOR", "SERIE"},
       {{{"DT_EMISSAO"}}}},

      {"NF_ENTRA_ITEN",
       {Document("NUMERO"), Entity("CODCRE"), Text("SERIE", 3), Double("VALOR"), Double("QTDE")},
       {},
       {{{"NUMERO", "CODCRE", "SERIE"}}}},

      {"PA_MOV",
       {Text("NUM_DOCTO", 12), Text("CODIGO", 15), Text("TAMANHO", 5), Text("COR", 6), Text("DEPOSITO", 4),
        Text("LOTE", 10), Text("OPERACAO", 1), Text("TP_MOV", 2), Day("DT_MVTO"), Double("CUSTO")},
       {},
       {{{"NUM_DOCTO"}}, {{"CODIGO"}}}},
  };
}

}  // namespace orv::schema_parts
