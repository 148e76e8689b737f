// Payables, receivables, their settlements, and cheques.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> TitleTables() {
  return {
      {"PAGTO",
       {Payable("NUM_AP"), Entity("CODCRE"),      Document("DOCTO"),    Text("DUPLI", 12),
        Day("DT_EMI"),     Day("DT_VEN"),         Day("DT_ATUAL"),      Day("DT_DIGITA"),
        Day("DATA_ORIG"),  Class("NUM_OS"),       Bank("BANCO"),        Text("NRBANCO", 5),
        Money("VALOR"),    Money("VAL_NOTA"),     Money("VALOR_ORIG"),  Money("VAL_PAG"),
        Money("VAL_DEV"),  Money("JUROS"),        Money("DESCONTO"),    Double("ICM"),
        Double("IPI"),     Money("VAL_ICM"),      Money("VAL_IPI"),     Text("STATUS", 2, "'N'"),
        Flag("BLOQUEIO"),  Situation("SITUACAO"), History("HISTORICO"), Text("OBS", 250),
        Text("LOTE", 6)},
       {"NUM_AP"},
       {{{"CODCRE"}},
        {{"DT_VEN"}},
        {{"DT_EMI"}},
        {{"DOCTO"}},
        // Of what is open: the settled ones, which are nearly all, cost nothing.
        {{}, "CASE WHEN (VALOR + JUROS) > (VAL_PAG + DESCONTO) THEN DT_VEN END"}}},

      {"PAGTO1",
       {Payable("NUM_AP"), Movement("LANCAMENTO"), Document("DOCTO"), Day("DT_LAN"), Class("CLASSE"),
        History("HISTORICO"), Money("VAL_PAG"), Money("JURO"), Money("VAL_DEV"), Money("DESCONTO"),
        Text("OBS", 100)},
       {},
       {{{"NUM_AP"}}, {{"LANCAMENTO"}}, {{"DT_LAN"}}}},

      // SITUACAO is never null: the reports leave one situation out by "<>", which drops nulls.
      {"RECEBER",
       {Receivable("NUMERO"), Entity("CODCLI"),         Entity("CODREP"),
        Double("COM1"),       Day("DT_EMISSAO"),        Day("DT_VENCTO"),
        Day("DT_PREVISAO"),   Money("VALOR"),           Money("VALOR2"),
        Money("VALOR_PAGO"),  Money("VAL_DEV"),         Money("JUROS"),
        Money("DESCONTO"),    Class("CLASSE"),          Bank("BANCO"),
        Text("BORDERO", 6),   Text("STATUS", 2, "'N'"), Situation("SITUACAO", "''"),
        Text("NUMERO_CH", 8), Account("CONTA_CH"),      Text("AGENCIA_CH", 7),
        Bank("BANCO_CH"),     Text("EMISSOR_CH", 50),   Document("FATURA"),
        Order("PEDIDO"),      Sale("NRO_CUPOM"),        History("HISTORICO"),
        Text("OBS", 250)},
       {"NUMERO"},
       {{{"CODCLI"}},
        {{"DT_VENCTO"}},
        {{"DT_EMISSAO"}},
        {{"PEDIDO"}},
        {{"NRO_CUPOM"}},
        {{"NUMERO_CH"}},
        {{}, "CASE WHEN (VALOR2 + JUROS) > (VALOR_PAGO + DESCONTO + VAL_DEV) THEN DT_VENCTO END"}}},

      {"RECEBERB",
       {Receivable("NUMERO"), Movement("LANCAMENTO"), Money("VALOR2"), Day("DT_PAGTO"), Day("DT_CONT"),
        History("HISTORICO"), Money("VALOR_PAGO"), Money("JUROS"), Money("VAL_DEV"), Double("QT_DEV"),
        Money("DESCONTO"), Money("DESCONTO2"), Money("DESCONTO3"), Document("DOCTO"), Text("OBS", 100),
        Text("COMISSAO", 1), Entity("PORTADOR")},
       {},
       {{{"NUMERO"}}, {{"LANCAMENTO"}}, {{"DT_PAGTO"}}, {{"DT_CONT"}}}},

      // CHAVE is not enforced: a cheque handed over by another company brings that company's number.
      // The state of such a cheque is this table's default.
      {"CHEQUE_PRE",
       {Movement("CHAVE"),       Bank("BANCO"),     Text("AGENCIA", 7),       Account("CONTA"),
        Text("NUMERO", 8),       Money("VALOR"),    Day("EMISSAO"),           Day("VENCIMENTO"),
        Day("DT_BAIXA"),         Text("TIPO", 1),   Text("STATUS", 1, "'P'"), Text("EMISSOR", 50),
        Text("CNPJ_EMI", 18),    Entity("CLIENTE"), Entity("FORNECEDOR"),     Entity("REPRESENTANTE"),
        Receivable("DUPLICATA"), Text("LOTE", 12),  Text("BARRA", 34),        Text("OBS", 50)},
       {},
       {{{"CHAVE"}}, {{"NUMERO"}}, {{"CONTA", "BANCO"}}, {{"EMISSAO"}}, {{"VENCIMENTO"}}}},

      {"CHEQUE_DUP",
       {Bank("BANCO"), Account("CONTA"), Text("NUMERO", 8), Text("DUPLI", 12), Movement("CHAVE"),
        Money("JUROS"), Money("VALOR")},
       {},
       {{{"NUMERO", "CONTA"}}, {{"DUPLI"}}}},

      // NUMERO is text, as PAGTO.LOTE and RECEBER.BORDERO are: those may be blank.
      {"BORDERO",
       {Text("NUMERO", 6), Text("TIPO", 1), Account("CONTA"), Day("DATA")},
       {"NUMERO", "TIPO"},
       {{{"TIPO"}}}},
  };
}

}  // namespace orv::schema_parts
