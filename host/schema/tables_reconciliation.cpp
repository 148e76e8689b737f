// Bank statements, layouts of outside files, and card sales.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> ReconciliationTables() {
  return {
      {"EXTRATO",
       {Movement("LANCTO"), Bank("BANCO"), Account("CONTA"), Text("DOCTO", 12), Day("DT_CONT"), Day("DT_ARQ"),
        Money("VALOR"), Text("OPERACAO", 1), Text("OBSERVACAO", 50), Text("ARQUIVO", 50), Text("CHAVE", 20),
        Flag("CONCILIADO"), Movement("LANC_CON")},
       {"LANCTO"},
       {{{"CONTA", "DT_CONT"}},
        {{"DT_CONT"}},
        {{"ARQUIVO"}},
        {{"LANC_CON"}},
        {{}, "CASE WHEN CONCILIADO = 'N' THEN CONTA END"}}},

      // As SALDO_CONTA, of the lines.
      {"SALDO_EXTRATO",
       {Account("CONTA"), Text("DATA", 1), Day("MES"), Text("CONCILIADO", 1), Text("OPERACAO", 1),
        Money("VALOR"), Integer("QUANTIDADE", "0")},
       {},
       {{{"CONTA", "DATA", "MES"}}}},

      // How each file of a bank ended when its lines were confirmed: PARADA is the line of the file at which
      // the load stopped, 0 where it came to the end. LINHAS were taken in.
      {"ARQUIVO_EXTRATO",
       {Text("ARQUIVO", 50), Account("CONTA"), Integer("LINHAS"), Integer("PARADA")},
       {"ARQUIVO", "CONTA"},
       {}},

      // How lines of the statement that no movement stands for are posted: of an account, "" for any, whose
      // text holds TEXTO and whose amount lies in the bounds, 0 for no upper one.
      {"REGRA_EXTRATO",
       {Account("CONTA"), Text("OPERACAO", 1), Text("TEXTO", 50), Money("VALOR_DE"), Money("VALOR_ATE"),
        Class("GRUPO"), History("HISTORICO")},
       {"CONTA", "OPERACAO", "TEXTO", "VALOR_DE", "VALOR_ATE"},
       {}},

      {"POSICAO",
       {Bank("BANCO"), Text("TIPO", 2), Text("CAMPO", 20), Integer("INICIO"), Integer("TAMANHO"),
        Text("MASCARA", 10), Text("SEPARADOR", 5), Integer("LINHA")},
       {},
       {{{"BANCO", "TIPO"}}}},

      {"VENDA",
       {Sale("CODVEN"), Entity("CODREP"), Day("DATA"), Money("VALOR"), SmallInt("CANCELADA"),
        SmallInt("DEVOLUCAO"), SmallInt("FECHADA", "1"), SmallInt("TROCA")},
       {"CODVEN"},
       {{{"DATA"}}}},

      {"ITVENDA",
       {Sale("CODVEN"), Text("CODIGO", 15), Text("TAM", 5), Text("COR", 6), Text("DEPOSITO", 4),
        Text("LOTE", 10), Double("QUANTIDADE")},
       {},
       {{{"CODVEN"}}}},

      {"CONDIVENDA",
       {Integer("CDCONDIVENDA"), Sale("CDVENDA"), Text("CDCONDICAO", 5), CurrencyCode("CDMOEDA"),
        Money("VLVENDA")},
       {"CDCONDIVENDA"},
       {{{"CDVENDA"}}}},

      {"ITCONDIVENDA",
       {Integer("CDITCONDIVENDA"), Integer("CDCONDIVENDA"), CurrencyCode("CDMOEDA"), SmallInt("NRPARCELA"),
        Money("VALOR"), Text("TRANSACAO", 40), SmallInt("BAIXADO")},
       {"CDITCONDIVENDA"},
       {{{"CDCONDIVENDA"}}, {{"TRANSACAO"}}}},
  };
}

}  // namespace orv::schema_parts
