#include "host/schema/check_rules.h"

namespace orv {
namespace {

constexpr Rule kRules[] = {
    // Movements.
    {"CONTACOR",
     R"(SELECT M.LANCAMENTO, M.CONTA FROM {CONTACOR} M WHERE NOT EXISTS (SELECT 1 FROM {CADCONTA} C WHERE
C.CONTA = M.CONTA))",
     R"(lançamento %1: a conta "%2" não existe.)"},
    {"CONTACOR",
     R"(SELECT M.LANCAMENTO, M.GRUPO, CASE WHEN S.CODIGO IS NULL THEN 'não existe' ELSE 'é do tipo título' END
FROM {CONTACOR} M LEFT JOIN {SUBGRUPO} S ON (S.CODIGO = M.GRUPO) WHERE S.CODIGO IS NULL OR S.TP_CONTA =
'T')",
     R"(lançamento %1: a classe "%2" %3.)"},
    {"CONTACOR",
     R"(SELECT M.LANCAMENTO, M.HISTORICO FROM {CONTACOR} M WHERE M.HISTORICO > '' AND NOT EXISTS (SELECT 1 FROM
{HISTCP} H WHERE H.HISTORICO = M.HISTORICO))",
     R"(lançamento %1: o histórico "%2" não existe.)"},
    {"CONTACOR",
     R"(SELECT LANCAMENTO, DOCTO, CONTA, OPERACAO, COUNT(*) FROM {CONTACOR} GROUP BY LANCAMENTO, DOCTO, CONTA,
OPERACAO HAVING COUNT(*) > 1)",
     R"(lançamento %1, documento "%2", conta "%3", operação "%4": gravado %5 vezes.)"},
    {"CONTACOR",
     R"(SELECT LANCAMENTO FROM {CONTACOR} WHERE TIPO = 'TR' GROUP BY LANCAMENTO HAVING SUM(CASE WHEN OPERACAO =
'+' THEN VALOR ELSE -VALOR END) <> 0)",
     "transferência %1: a saída e a entrada não se igualam."},

    // One number stands on two accounts for a transfer and for a cheque that is deposited. A quick entry that
    // takes an older one's place brings that one's account to zero.
    {"CONTACOR",
     R"(SELECT A.LANCAMENTO, MIN(A.CONTA), MAX(A.CONTA) FROM (SELECT LANCAMENTO, CONTA, MIN(COALESCE(TIPO, ''))
AS DE, MAX(COALESCE(TIPO, '')) AS ATE, SUM(CASE WHEN OPERACAO = '+' THEN VALOR ELSE -VALOR END) AS SALDO
FROM {CONTACOR} GROUP BY LANCAMENTO, CONTA) A WHERE A.SALDO <> 0 GROUP BY A.LANCAMENTO HAVING COUNT(*) >
1 AND (COUNT(*) > 2 OR MIN(A.DE) <> MAX(A.ATE) OR MIN(A.DE) NOT IN ('TR', 'P') OR SUM(A.SALDO) <> 0))",
     R"(lançamento %1: está na conta "%2" e na conta "%3" sem ser transferência nem depósito.)"},
    {"CONTACOR", R"(SELECT LANCAMENTO, LANC_CON FROM {CONTACOR} WHERE PENDENTE = 'S' AND LANC_CON > '')",
     "lançamento %1: pendente, mas com a conciliação %2."},

    {"CONTACOR",
     R"(SELECT DISTINCT A.LANCAMENTO FROM {ANEXO} A WHERE NOT EXISTS (SELECT 1 FROM {CONTACOR} M WHERE
M.LANCAMENTO = A.LANCAMENTO))",
     "anexo do lançamento %1: o lançamento não existe."},

    // Numbers. Movements and clearings draw theirs from one source.
    {"CONTACOR",
     R"(SELECT DISTINCT N.LANC_CON FROM {CONTACOR} N WHERE N.LANC_CON > '' AND EXISTS (SELECT 1 FROM {CONTACOR}
M WHERE M.LANCAMENTO = N.LANC_CON) UNION SELECT C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'C' AND
EXISTS (SELECT 1 FROM {CONTACOR} N WHERE N.LANC_CON = C.CHAVE))",
     "número %1: é de um lançamento ou cheque e também de uma compensação ou conciliação."},
    {"CONTACOR",
     R"(SELECT LANC_CON, MIN(CONTA), MAX(CONTA) FROM {CONTACOR} WHERE LANC_CON > '' GROUP BY LANC_CON HAVING
MIN(CONTA) <> MAX(CONTA) AND MIN(LANCAMENTO) <> MAX(LANCAMENTO))",
     R"(número %1: é de compensações ou conciliações diferentes, nas contas "%2" e "%3".)"},

    // Statement against ledger.
    {"EXTRATO",
     R"(SELECT E.LANCTO, E.CONTA FROM {EXTRATO} E WHERE NOT EXISTS (SELECT 1 FROM {CADCONTA} C WHERE C.CONTA =
E.CONTA))",
     R"(linha de extrato %1: a conta "%2" não existe.)"},
    {"EXTRATO",
     R"(SELECT E.LANCTO, E.CONTA FROM {EXTRATO} E WHERE E.CONCILIADO = 'S' AND COALESCE(E.LANC_CON, '') = '')",
     "linha de extrato %1 da conta %2: conciliada sem número de conciliação."},
    {"EXTRATO",
     R"(SELECT E.LANCTO, E.LANC_CON, E.CONTA FROM {EXTRATO} E WHERE E.CONCILIADO = 'S' AND E.LANC_CON > '' AND
NOT EXISTS (SELECT 1 FROM {CONTACOR} M WHERE M.LANC_CON = E.LANC_CON AND M.CONTA = E.CONTA))",
     "linha de extrato %1: nenhum lançamento da conta %3 tem a conciliação %2."},
    {"EXTRATO",
     R"(SELECT E.LANCTO, E.LANC_CON FROM {EXTRATO} E WHERE E.LANC_CON > '' AND (E.CONCILIADO <> 'S' OR
E.CONCILIADO IS NULL))",
     "linha de extrato %1: não conciliada, mas com a conciliação %2."},
    {"EXTRATO",
     R"(SELECT E.LANC_CON, E.CONTA, E.SOMA, M.SOMA FROM (SELECT LANC_CON, CONTA, SUM(CASE WHEN OPERACAO = 'D'
THEN -VALOR ELSE VALOR END) AS SOMA FROM {EXTRATO} WHERE CONCILIADO = 'S' AND LANC_CON > '' GROUP BY
LANC_CON, CONTA) E INNER JOIN (SELECT LANC_CON, CONTA, SUM(CASE WHEN OPERACAO = '-' THEN -VALOR ELSE
VALOR END) AS SOMA FROM {CONTACOR} WHERE LANC_CON > '' GROUP BY LANC_CON, CONTA) M ON (M.LANC_CON =
E.LANC_CON AND M.CONTA = E.CONTA) WHERE E.SOMA <> M.SOMA)",
     "conciliação %1 da conta %2: o extrato soma %3 e os lançamentos somam %4."},

    // Statement files. A bank can say the same twice in a file, but not all that the file says.
    {"EXTRATO",
     R"(SELECT E.ARQUIVO, E.CONTA FROM (SELECT MIN(LANCTO) AS LANCTO FROM {EXTRATO} WHERE ARQUIVO > '' GROUP BY
HASH(ARQUIVO), CONTA) F INNER JOIN {EXTRATO} E ON (E.LANCTO = F.LANCTO) WHERE EXISTS (SELECT 1 FROM
{EXTRATO} L WHERE L.ARQUIVO = E.ARQUIVO AND L.CONTA = E.CONTA AND L.LANCTO <> E.LANCTO AND L.VALOR =
E.VALOR AND L.DT_CONT = E.DT_CONT AND L.DOCTO IS NOT DISTINCT FROM E.DOCTO) AND EXISTS (SELECT 1 FROM
{EXTRATO} L WHERE L.ARQUIVO = E.ARQUIVO AND L.CONTA = E.CONTA AND (L.VALOR <> E.VALOR OR L.DT_CONT <>
E.DT_CONT OR L.DOCTO IS DISTINCT FROM E.DOCTO)) AND NOT EXISTS (SELECT 1 FROM {EXTRATO} L WHERE
L.ARQUIVO = E.ARQUIVO AND L.CONTA = E.CONTA GROUP BY L.DOCTO, L.DT_CONT, L.VALOR, L.OPERACAO,
L.OBSERVACAO HAVING COUNT(*) = 1))",
     R"(arquivo "%1" da conta %2: importado mais de uma vez.)"},
    {"EXTRATO",
     R"(SELECT D.ARQUIVO, A.ARQUIVO, D.CONTA FROM (SELECT MIN(F.LANCTO) AS DE, MAX(F.LANCTO) AS ATE FROM (SELECT
CONTA, MIN(LANCTO) AS LANCTO, COUNT(*) AS LINHAS, SUM(CASE WHEN OPERACAO = 'D' THEN -VALOR ELSE VALOR
END) AS SALDO, SUM(VALOR) AS SOMA, MIN(DT_CONT) AS DIA, MAX(DT_CONT) AS ULTIMO, MIN(DOCTO) AS MENOR,
MAX(DOCTO) AS MAIOR FROM {EXTRATO} WHERE ARQUIVO > '' GROUP BY HASH(ARQUIVO), CONTA) F WHERE F.LINHAS >
1 GROUP BY F.CONTA, F.LINHAS, F.SALDO, F.SOMA, F.DIA, F.ULTIMO, F.MENOR, F.MAIOR HAVING COUNT(*) > 1) P
INNER JOIN {EXTRATO} D ON (D.LANCTO = P.DE) INNER JOIN {EXTRATO} A ON (A.LANCTO = P.ATE))",
     R"(arquivos "%1" e "%2" da conta %3: são o mesmo extrato com dois nomes.)"},
    {"ARQUIVO_EXTRATO",
     R"(SELECT A.ARQUIVO, A.PARADA, A.CONTA FROM {ARQUIVO_EXTRATO} A WHERE A.PARADA > 0 AND EXISTS (SELECT 1
FROM {EXTRATO} E WHERE E.ARQUIVO = A.ARQUIVO AND E.CONTA = A.CONTA))",
     "arquivo %1: interrompido na linha %2, conta %3; falta carregar o resto."},

    // Receivables.
    {"RECEBER",
     R"(SELECT T.NUMERO, T.VALOR_PAGO, T.SOMA FROM (SELECT R.NUMERO, COALESCE(R.VALOR_PAGO, 0) AS VALOR_PAGO,
COALESCE((SELECT SUM(B.VALOR_PAGO) FROM {RECEBERB} B WHERE B.NUMERO = R.NUMERO), 0) AS SOMA FROM
{RECEBER} R) T WHERE T.VALOR_PAGO <> T.SOMA)",
     "título a receber %1: pago %2, mas as baixas somam %3."},
    {"RECEBER",
     R"(SELECT NUMERO, VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO FROM {RECEBER} WHERE VALOR2 + JUROS -
VALOR_PAGO - VAL_DEV - DESCONTO < 0)",
     "título a receber %1: baixado além do valor, saldo %2."},
    {"RECEBERB",
     R"(SELECT B.NUMERO, B.LANCAMENTO FROM {RECEBERB} B WHERE NOT EXISTS (SELECT 1 FROM {RECEBER} R WHERE
R.NUMERO = B.NUMERO))",
     "baixa do lançamento %2: o título a receber %1 não existe."},

    // A run that an acquirer's chargebacks bring to zero or less leaves no movement.
    {"RECEBERB",
     R"(SELECT B.NUMERO, B.LANCAMENTO FROM {RECEBERB} B WHERE B.VALOR_PAGO > 0 AND B.LANCAMENTO > '' AND NOT
({*EXISTS (SELECT 1 FROM {CONTACOR} M WHERE M.LANCAMENTO = B.LANCAMENTO)*}) AND NOT EXISTS (SELECT 1
FROM {RECEBERB} X WHERE X.LANCAMENTO = B.LANCAMENTO AND X.VALOR_PAGO = 0 AND X.JUROS > 0))",
     "baixa do título a receber %1: o lançamento %2 não existe."},
    {"RECEBER",
     R"(SELECT T.NUMERO, T.CLASSE FROM {RECEBER} T INNER JOIN {SUBGRUPO} S ON (S.CODIGO = T.CLASSE) WHERE
S.TP_CONTA = 'T')",
     R"(título a receber %1: a classe "%2" é do tipo título.)"},

    // Payables.
    {"PAGTO",
     R"(SELECT T.NUM_AP, T.VAL_PAG, T.SOMA FROM (SELECT P.NUM_AP, COALESCE(P.VAL_PAG, 0) AS VAL_PAG,
COALESCE((SELECT SUM(B.VAL_PAG) FROM {PAGTO1} B WHERE B.NUM_AP = P.NUM_AP), 0) AS SOMA FROM {PAGTO} P) T
WHERE T.VAL_PAG <> T.SOMA)",
     "título a pagar %1: pago %2, mas as baixas somam %3."},
    {"PAGTO",
     R"(SELECT NUM_AP, VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO FROM {PAGTO} WHERE VALOR + JUROS - VAL_PAG -
VAL_DEV - DESCONTO < 0)",
     "título a pagar %1: baixado além do valor, saldo %2."},
    {"PAGTO1",
     R"(SELECT B.NUM_AP, B.LANCAMENTO FROM {PAGTO1} B WHERE NOT EXISTS (SELECT 1 FROM {PAGTO} P WHERE P.NUM_AP =
B.NUM_AP))",
     "baixa do lançamento %2: o título a pagar %1 não existe."},
    {"PAGTO1",
     R"(SELECT B.NUM_AP, B.LANCAMENTO FROM {PAGTO1} B WHERE B.LANCAMENTO > '' AND NOT ({*EXISTS (SELECT 1 FROM
{CONTACOR} M WHERE M.LANCAMENTO = B.LANCAMENTO)*}))",
     "baixa do título a pagar %1: o lançamento %2 não existe."},
    {"PAGTO",
     R"(SELECT T.NUM_AP, T.NUM_OS FROM {PAGTO} T INNER JOIN {SUBGRUPO} S ON (S.CODIGO = T.NUM_OS) WHERE
S.TP_CONTA = 'T')",
     R"(título a pagar %1: a classe "%2" é do tipo título.)"},

    // Cheques. One handed over by another company has its movement there.
    {"CHEQUE_PRE",
     R"(SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS <> 'C' AND NOT ({*EXISTS (SELECT 1 FROM
{CONTACOR} M WHERE M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO)*}))",
     "cheque %1: o lançamento %2 não existe."},
    {"CHEQUE_PRE",
     R"(SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'C' AND EXISTS (SELECT 1 FROM {CONTACOR} M
WHERE M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO))",
     "cheque %1: cancelado, mas o lançamento %2 continua."},
    {"CHEQUE_PRE",
     R"(SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'B' AND EXISTS (SELECT 1 FROM {CONTACOR} M
WHERE M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO AND M.PENDENTE NOT IN ('N', 'C')))",
     "cheque %1: baixado, mas o lançamento %2 está pendente."},

    // A cheque can be issued on a movement that isn't pending. One that the bank returned and that is
    // presented again keeps the first clearing; the return stands under the cheque's number.
    {"CHEQUE_PRE",
     R"(SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'P' AND EXISTS (SELECT 1 FROM {CONTACOR} M
WHERE M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO AND M.PENDENTE IN ('N', 'C') AND (M.LANC_CON > '' OR
C.TIPO = 'R')) AND NOT (C.TIPO = 'R' AND EXISTS (SELECT 1 FROM {CONTACOR} D WHERE D.DOCTO = C.NUMERO AND
D.LANCAMENTO <> C.CHAVE AND D.TIPO = 'L')))",
     "cheque %1: pendente, mas o lançamento %2 está baixado."},
    {"CHEQUE_PRE",
     R"(SELECT NUMERO, CHAVE FROM {CHEQUE_PRE} WHERE STATUS = 'B' AND (DT_BAIXA IS NULL OR DT_BAIXA <=
'12/30/1899'))",
     "cheque %1, lançamento %2: baixado sem data de baixa."},
    {"CHEQUE_PRE",
     R"(SELECT C.NUMERO, C.VALOR, M.LANCAMENTO, M.VALOR FROM {CHEQUE_PRE} C INNER JOIN {CONTACOR} M ON
(M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO) WHERE C.STATUS <> 'C' AND M.VALOR <> C.VALOR)",
     "cheque %1 de %2: o lançamento %3 é de %4."},
    {"CHEQUE_PRE",
     R"(SELECT NUMERO, CONTA, BANCO, COUNT(*) FROM {CHEQUE_PRE} WHERE CONTA > '' AND (STATUS <> 'C' OR STATUS IS
NULL) GROUP BY BANCO, CONTA, NUMERO HAVING COUNT(*) > 1)",
     "cheque %1 da conta %2 do banco %3: gravado %4 vezes."},

    // Accounting, under the number of a movement, of a clearing, or of a run that left no movement.
    {"CONTABIL",
     R"(SELECT DISTINCT A.LANCAMENTO FROM {CONTABIL} A WHERE NOT EXISTS (SELECT 1 FROM {CONTACOR} M WHERE
M.LANCAMENTO = A.LANCAMENTO) AND NOT EXISTS (SELECT 1 FROM {CONTACOR} N WHERE N.LANC_CON = A.LANCAMENTO)
AND NOT EXISTS (SELECT 1 FROM {RECEBERB} B WHERE B.LANCAMENTO = A.LANCAMENTO))",
     "contabilização %1: não há lançamento nem conciliação com este número."},

    // An entry's account is one of the chart, a bank account or an entity, of whichever company; "0" is one
    // that is still to be told.
    {"CONTABIL",
     R"(SELECT A.LANCAMENTO, A.LADO, A.CONTA FROM (SELECT LANCAMENTO, 'crédito' AS LADO, CONTA_C AS CONTA FROM
{CONTABIL} UNION ALL SELECT LANCAMENTO, 'débito', CONTA_D FROM {CONTABIL}) A WHERE A.CONTA IS DISTINCT
FROM '0' AND NOT EXISTS (SELECT 1 FROM {CONTA_CONT} P WHERE P.CODIGO = A.CONTA) AND NOT EXISTS (SELECT 1
FROM {CADCONTA} B WHERE B.CONTA = A.CONTA) AND NOT ({*EXISTS (SELECT 1 FROM {ENTIDADE} E WHERE E.CODCLI
= A.CONTA)*}))",
     R"(contabilização %1: a conta de %2 "%3" não existe.)"},

    // What an acquirer keeps back never reaches the ledger, and a chargeback lowers the credit. A cheque can
    // be higher than what it pays. Of several entries each may be half a cent off.
    {"CONTABIL",
     R"(SELECT A.NUMERO, A.SOMA, A.VALOR FROM (SELECT E.NUMERO, E.SOMA, E.FOLGA, E.TITULOS, (SELECT MAX(M.VALOR)
FROM {CONTACOR} M WHERE M.LANCAMENTO = E.NUMERO) AS VALOR FROM (SELECT LANCAMENTO AS NUMERO, COUNT(*) *
0.01 AS FOLGA, MAX(CASE WHEN ORIGEM = 'PP' THEN 1 ELSE 0 END) AS TITULOS, SUM(CASE WHEN ORIGEM = 'RB'
THEN -VALOR WHEN ORIGEM IN ('RC', 'RA') THEN 0 ELSE VALOR END) AS SOMA FROM {CONTABIL} GROUP BY
LANCAMENTO) E) A WHERE A.SOMA - A.VALOR >= A.FOLGA OR (A.TITULOS = 0 AND A.VALOR - A.SOMA >= A.FOLGA))",
     "contabilização %1: soma %2, mas o lançamento é de %3."},
    {"CONTABIL",
     R"(SELECT A.NUMERO, A.SOMA, A.VALOR FROM (SELECT E.NUMERO, E.SOMA, E.FOLGA, (SELECT MAX(M.VALOR) FROM
{CONTACOR} M WHERE M.LANC_CON = E.NUMERO) AS VALOR, (SELECT SUM(M.VALOR) FROM {CONTACOR} M WHERE
M.LANC_CON = E.NUMERO) AS TOTAL FROM (SELECT LANCAMENTO AS NUMERO, COUNT(*) * 0.01 AS FOLGA, MAX(CASE
WHEN ORIGEM = 'PP' THEN 1 ELSE 0 END) AS TITULOS, SUM(CASE WHEN ORIGEM = 'RB' THEN -VALOR WHEN ORIGEM IN
('RC', 'RA') THEN 0 ELSE VALOR END) AS SOMA FROM {CONTABIL} GROUP BY LANCAMENTO) E WHERE NOT EXISTS
(SELECT 1 FROM {CONTACOR} M WHERE M.LANCAMENTO = E.NUMERO)) A WHERE ABS(A.SOMA - A.VALOR) >= A.FOLGA AND
ABS(A.SOMA - A.TOTAL) >= A.FOLGA)",
     "contabilização %1: soma %2, mas o lançamento compensado é de %3."},

    // The titles that a cheque pays can be another company's; that one's own movement can bear the same
    // number.
    {"CONTABIL",
     R"(SELECT A.NUMERO, A.SOMA, A.BAIXAS FROM (SELECT E.NUMERO, E.SOMA, ({+(SELECT COALESCE(SUM(B.VAL_PAG), 0)
FROM {PAGTO1} B WHERE B.LANCAMENTO = E.NUMERO AND SUBSTRING(B.DOCTO FROM 1 FOR 12) = E.DOCTO)+}) AS
TODAS, (SELECT COALESCE(SUM(B.VAL_PAG), 0) FROM {PAGTO1} B WHERE B.LANCAMENTO = E.NUMERO AND
SUBSTRING(B.DOCTO FROM 1 FOR 12) = E.DOCTO) AS BAIXAS FROM (SELECT LANCAMENTO AS NUMERO, MAX(DOCTO) AS
DOCTO, SUM(VALOR) AS SOMA FROM {CONTABIL} WHERE ORIGEM = 'PP' GROUP BY LANCAMENTO) E) A WHERE A.SOMA <>
A.BAIXAS AND A.SOMA <> A.TODAS AND EXISTS (SELECT 1 FROM {CONTACOR} M WHERE M.LANCAMENTO = A.NUMERO))",
     "contabilização %1: soma %2, mas as baixas do lançamento somam %3."},

    // Apportionment hangs from an entry, or under its class's rules from the movement whose number stands as
    // its document. Percentages that aren't whole share out their part only.
    {"CENTRO_RATEIO",
     R"(SELECT DISTINCT R.LANCAMENTO FROM {CENTRO_RATEIO} R WHERE R.LANCAMENTO > '' AND NOT EXISTS (SELECT 1
FROM {CONTABIL} A WHERE A.LANCAMENTO = R.LANCAMENTO))",
     "rateio %1: não há contabilização com este número."},
    {"CENTRO_RATEIO",
     R"(SELECT R.LANCAMENTO, R.ORDEM, R.SOMA FROM (SELECT LANCAMENTO, ORDEM, SUM(VALOR_RAT) AS SOMA, CASE WHEN
SUM(PERC_RAT) BETWEEN 99.985 AND 100.015 THEN 1 ELSE SUM(PERC_RAT) / 100 END AS PARTE FROM
{CENTRO_RATEIO} WHERE LANCAMENTO > '' GROUP BY LANCAMENTO, ORDEM) R WHERE EXISTS (SELECT 1 FROM
{CONTABIL} B WHERE B.LANCAMENTO = R.LANCAMENTO) AND NOT EXISTS (SELECT 1 FROM {CONTABIL} A WHERE
A.LANCAMENTO = R.LANCAMENTO AND ABS(A.VALOR * R.PARTE - R.SOMA) < 0.06))",
     "rateio %1, partida %2: soma %3, que não é o valor de nenhuma partida."},
    {"CENTRO_RATEIO",
     R"(SELECT R.NUMERO, R.SOMA, R.VALOR FROM (SELECT S.NUMERO, S.SOMA, (SELECT MAX(M.VALOR) FROM {CONTACOR} M
WHERE M.LANCAMENTO = S.NUMERO) AS VALOR FROM (SELECT NUMERO, SUM(VALOR_RAT) AS SOMA FROM {CENTRO_RATEIO}
WHERE TIPO = 'CC' AND (LANCAMENTO = '' OR LANCAMENTO IS NULL) GROUP BY NUMERO) S) R WHERE R.VALOR IS
NULL OR ABS(R.SOMA - R.VALOR) >= 0.01)",
     R"(rateio do lançamento %1: soma %2, mas o lançamento é de "%3".)"},
};

}  // namespace

std::span<const Rule> Rules() { return kRules; }

std::span<const RowRule> RowRules() {
  static const RowRule rules[] = {
      {"CONTACOR",
       "LANCAMENTO",
       "lançamento ",
       {{Demand::OneOf, "OPERACAO", "operação", "'+', '-'"},
        {Demand::OneOf, "PENDENTE", "situação", "'S', 'N', 'C', 'P'"},
        {Demand::Amount, "VALOR", "valor"},
        {Demand::Day, "DT_LAN", "data de lançamento"},
        {Demand::Day, "DT_CONT", "data de contabilização"},
        {Demand::Day, "DT_VENCTO", "data de vencimento"}}},
      {"EXTRATO",
       "LANCTO",
       "linha de extrato ",
       {{Demand::OneOf, "OPERACAO", "operação", "'C', 'D'"},
        {Demand::OneOf, "CONCILIADO", "situação", "'S', 'N'"},
        {Demand::Amount, "VALOR", "valor"},
        {Demand::Day, "DT_CONT", "data"}}},
      {"CHEQUE_PRE",
       "NUMERO",
       "cheque ",
       {{Demand::OneOf, "STATUS", "situação", "'P', 'B', 'C', 'D'"},
        {Demand::OneOf, "TIPO", "tipo", "'R', 'P'"},
        {Demand::Amount, "VALOR", "valor"},
        {Demand::Day, "EMISSAO", "data de emissão"},
        {Demand::Day, "VENCIMENTO", "data de vencimento"}}},
      // An acquirer's fee can come back.
      {"CONTABIL",
       "LANCAMENTO",
       "contabilização ",
       {{Demand::Amount, "CASE WHEN ORIGEM IN ('RC', 'RA') THEN ABS(VALOR) ELSE VALOR END", "valor"},
        {Demand::Day, "DATA", "data"}}},
      {"CENTRO_RATEIO", "LANCAMENTO", "rateio ", {{Demand::Amount, "VALOR_RAT", "valor"}}},
      {"RECEBER",
       "NUMERO",
       "título a receber ",
       {{Demand::Amount, "VALOR", "valor"},
        {Demand::Amount, "VALOR2", "valor em vigor"},
        {Demand::AnyAmount, "VALOR_PAGO", "valor pago"},
        {Demand::AnyAmount, "JUROS", "valor de juros"},
        {Demand::AnyAmount, "DESCONTO", "valor de desconto"},
        {Demand::AnyAmount, "VAL_DEV", "valor devolvido"},
        {Demand::Filled, "SITUACAO", "situação"},
        {Demand::Day, "DT_EMISSAO", "data de emissão"},
        {Demand::Day, "DT_VENCTO", "data de vencimento"}}},
      {"PAGTO",
       "NUM_AP",
       "título a pagar ",
       {{Demand::Amount, "VALOR", "valor"},
        {Demand::AnyAmount, "VAL_PAG", "valor pago"},
        {Demand::AnyAmount, "JUROS", "valor de juros"},
        {Demand::AnyAmount, "DESCONTO", "valor de desconto"},
        {Demand::AnyAmount, "VAL_DEV", "valor devolvido"},
        {Demand::Filled, "SITUACAO", "situação"},
        {Demand::Day, "DT_EMI", "data de emissão"},
        {Demand::Day, "DT_VEN", "data de vencimento"}}},
      {"RECEBERB",
       "NUMERO",
       "baixa do título a receber ",
       {{Demand::AnyAmount, "VALOR_PAGO", "valor"}, {Demand::Day, "DT_PAGTO", "data de pagamento"}}},
      {"PAGTO1",
       "NUM_AP",
       "baixa do título a pagar ",
       {{Demand::AnyAmount, "VAL_PAG", "valor"}, {Demand::Day, "DT_LAN", "data de pagamento"}}},
  };
  return rules;
}

}  // namespace orv
