#include "reports/lancamentos.h"

#include <iterator>

namespace orv::lancamentos {

const Baixas kPagas = {
    "P", "PAGTO1",
    "ENTIDADE.NOME, ENTIDADE.CONTAC, ENTIDADE.CONTAD, PAGTO1.VAL_PAG, PAGTO1.VAL_DEV, PAGTO1.JURO AS JUROS, "
    "PAGTO1.DESCONTO, HISTCP.DESCRICAO AS DESCHIST, PAGTO.NUM_AP AS NUMERO, PAGTO.DUPLI, "
    "PAGTO.CODCRE AS CODCLI, PAGTO.HISTORICO AS CODHIST, PAGTO.OBS, PAGTO.DT_VEN AS DT_VENCTO, "
    "PAGTO.DT_EMI AS DT_EMISSAO, PAGTO.VALOR, PAGTO1.OBS AS OBS_BAIXA, PAGTO.NUM_OS AS CLASSE",
    " INNER JOIN {PAGTO1} PAGTO1 ON (PAGTO1.LANCAMENTO = M.LANCAMENTO)"
    " INNER JOIN {PAGTO} PAGTO ON (PAGTO.NUM_AP = PAGTO1.NUM_AP)"
    " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = PAGTO.CODCRE)"
    " LEFT JOIN {HISTCP} HISTCP ON (HISTCP.HISTORICO = PAGTO.HISTORICO)"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (SUBGRUPO.CODIGO = PAGTO.NUM_OS)"};
const Baixas kRecebidas = {
    "R", "RECEBERB",
    "ENTIDADE.NOME, ENTIDADE.CONTAC, ENTIDADE.CONTAD, RECEBERB.VALOR_PAGO AS VAL_PAG, "
    "(RECEBERB.DESCONTO + RECEBERB.DESCONTO2 + RECEBERB.DESCONTO3) AS DESCONTO, RECEBERB.JUROS, "
    "RECEBERB.VAL_DEV, RECEBER.NUMERO, RECEBER.NUMERO AS DUPLI, RECEBER.CODCLI, RECEBER.DT_EMISSAO, "
    "RECEBER.DT_VENCTO, RECEBER.VALOR2 AS VALOR, RECEBER.OBS, RECEBERB.OBS AS OBS_BAIXA, RECEBER.CLASSE",
    " INNER JOIN {RECEBERB} RECEBERB ON (RECEBERB.LANCAMENTO = M.LANCAMENTO)"
    " INNER JOIN {RECEBER} RECEBER ON (RECEBER.NUMERO = RECEBERB.NUMERO)"
    " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = RECEBER.CODCLI)"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (SUBGRUPO.CODIGO = RECEBER.CLASSE)"};

std::string Titulos(const Baixas& baixas, std::string_view movimentos, std::string_view desc_classe,
                    std::string_view mais, std::string_view juncao) {
  return std::string("SELECT DISTINCT M.LANCAMENTO AS LANCTO, '")
      .append(baixas.tipo)
      .append("' AS TIPO, ")
      .append(baixas.colunas)
      .append(", SUBGRUPO.DESCRICAO AS ")
      .append(desc_classe)
      .append(mais)
      .append(" FROM (")
      .append(movimentos)
      .append(") M")
      .append(baixas.de)
      .append(juncao);
}

namespace {

struct Linha {
  const char *origem, *numero, *documento, *data, *texto;
  const char *debito = "NULL", *credito = "NULL";
  const char* valores[5];  // amount, paid or received, interest, discount, returned
};

// One kind of line; each column is of one type in all of them.
std::string Selecao(const Linha& linha) {
  const auto como = [](std::string_view expressao, const char* tipo, const char* nome) {
    return "CAST(" + std::string(expressao) + " AS " + tipo + ") AS \"" + nome + "\"";
  };
  std::string sql =
      "SELECT CAST('" + std::string(linha.origem) + "' AS VARCHAR(20)) AS \"Origem\", " +
      como(linha.numero, "VARCHAR(12)", "Número") + ", " + como(linha.documento, "VARCHAR(15)", "Documento") +
      ", " + como(linha.data, "DATE", "Data") + ", " +
      como("SUBSTRING(" + std::string(linha.texto) + " FROM 1 FOR 150)", "VARCHAR(150)", "Descrição") + ", " +
      como(linha.debito, "VARCHAR(13)", "Debita") + ", " + como(linha.credito, "VARCHAR(13)", "Credita");
  constexpr const char* kNomes[] = {"Valor", "Baixado", "Juros", "Desconto", "Devolvido"};
  for (std::size_t i = 0; i < std::size(kNomes); ++i)
    sql += ", " + como(linha.valores[i], "NUMERIC(18,4)", kNomes[i]);
  return sql;
}

constexpr Linha kMovimento = {"Movimento",
                              "M.LANCAMENTO",
                              "M.DOCTO",
                              "M.DT_CONT",
                              "M.CONTA || ' ' || M.OPERACAO || ' ' || COALESCE(M.OBSERVACAO, '')",
                              "NULL",
                              "NULL",
                              {"M.VALOR", "NULL", "NULL", "NULL", "NULL"}};
constexpr Linha kRecebido = {
    "Título recebido",
    "R.NUMERO",
    "B.DOCTO",
    "R.DT_VENCTO",
    "COALESCE(E.NOME, '') || ' ' || COALESCE(NULLIF(B.OBS, ''), R.OBS, '')",
    "NULL",
    "NULL",
    {"R.VALOR2", "B.VALOR_PAGO", "B.JUROS", "B.DESCONTO + B.DESCONTO2 + B.DESCONTO3", "B.VAL_DEV"}};
constexpr Linha kPago = {"Título pago",
                         "P.NUM_AP",
                         "B.DOCTO",
                         "P.DT_VEN",
                         "COALESCE(E.NOME, '') || ' ' || COALESCE(NULLIF(B.OBS, ''), P.OBS, '')",
                         "NULL",
                         "NULL",
                         {"P.VALOR", "B.VAL_PAG", "B.JURO", "B.DESCONTO", "B.VAL_DEV"}};
constexpr Linha kContabil = {"Contabilização",
                             "C.LANCAMENTO",
                             "C.DOCTO",
                             "C.DATA",
                             "COALESCE(C.OBSERVACAO, '')",
                             "C.CONTA_D",
                             "C.CONTA_C",
                             {"C.VALOR", "NULL", "NULL", "NULL", "NULL"}};

}  // namespace

Origem OrigemDe(const std::string& numero) {
  return {Selecao(kMovimento) + " FROM {CONTACOR} M WHERE M.LANCAMENTO = " + numero,
          Selecao(kRecebido) +
              " FROM {RECEBERB} B INNER JOIN {RECEBER} R ON R.NUMERO = B.NUMERO"
              " LEFT JOIN {ENTIDADE} E ON E.CODCLI = R.CODCLI WHERE B.LANCAMENTO = " +
              numero,
          Selecao(kPago) +
              " FROM {PAGTO1} B INNER JOIN {PAGTO} P ON P.NUM_AP = B.NUM_AP"
              " LEFT JOIN {ENTIDADE} E ON E.CODCLI = P.CODCRE WHERE B.LANCAMENTO = " +
              numero,
          // A cleared movement has entries under the number of its clearing, too.
          Selecao(kContabil) + " FROM {CONTABIL} C WHERE C.LANCAMENTO = " + numero +
              " OR C.LANCAMENTO IN (SELECT X.LANC_CON FROM {CONTACOR} X WHERE X.LANC_CON <> '' AND "
              "X.LANCAMENTO = " +
              numero + ")"};
}

}  // namespace orv::lancamentos
