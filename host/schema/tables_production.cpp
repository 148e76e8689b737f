// Work placed with outside workshops, dye houses and weaving mills, which the module only reads.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> ProductionTables() {
  return {
      {"FACCAO3",
       {Order("NUMERO"), Text("OP", 5), Entity("CODCLI"), Day("DT_LAN"), Text("PARTE", 20), Double("QUANT"),
        Double("UNITARIO"), Flag("PAGO")},
       {},
       {{{"DT_LAN"}}}},

      // The sectors through which an order of work goes.
      {"CADFLUXO", {Text("CODIGO", 5), Text("DESCRICAO", 40), Flag("IMP_FLUXO", "'S'")}, {"CODIGO"}, {}},

      {"TINTUR", {Order("NUMERO"), Entity("TINTURARIA"), Day("DATR")}, {"NUMERO"}, {{{"DATR"}}}},

      {"TINTUR_ITEN",
       {Order("NUMERO"), Double("PESO_BRUTO"), Double("PESO_RETORNO"), Double("CUSTO"), Double("CUSTO_FLUXO"),
        Text("SITUACAO", 1, "'A'")},
       {},
       {{{"NUMERO"}}}},

      {"TECEL", {Order("NUMERO"), Entity("MALHARIA"), Day("DT_INICIO")}, {"NUMERO"}, {{{"DT_INICIO"}}}},

      {"TECEL_ITEN",
       {Order("NUMERO"), Text("CODIGO", 15), Double("QTDE"), Double("QTDE_B"), Flag("BAIXADA")},
       {},
       {{{"NUMERO"}}}},

      {"CADCORTI",
       {Entity("CODCLI"), Text("CODIGO", 15), Text("TIPO", 1), Double("CUSTO")},
       {},
       {{{"CODCLI", "CODIGO"}}}},
  };
}

}  // namespace orv::schema_parts
