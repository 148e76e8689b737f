#include "rules/origem.h"

#include <utility>

namespace orv::origem {

namespace {

std::string Valores(const char* valor, const char* pago, const char* juros, const char* desconto,
                    const char* devolvido) {
  const std::pair<const char*, const char*> colunas[] = {
      {valor, "Valor"}, {pago, "Pago"}, {juros, "Juros"}, {desconto, "Desconto"}, {devolvido, "Devolvido"}};
  std::string text;
  for (const auto& [coluna, nome] : colunas) {
    if (!text.empty()) text += ", ";
    text += std::string("CAST(") + coluna + " AS NUMERIC(18,4)) AS \"" + nome + "\"";
  }
  return text;
}

}  // namespace

std::string Linhas(const char* tipo, const char* numero, const char* documento, const char* data,
                   const char* texto, const char* valores, const char* de) {
  const auto texto_de = [](const char* coluna, const char* tamanho, const char* nome) {
    return std::string(", CAST(") + coluna + " AS VARCHAR(" + tamanho + ")) AS \"" + nome + "\"";
  };
  return std::string("SELECT CAST('") + tipo + "' AS VARCHAR(20)) AS \"Tipo\"" +
         texto_de(numero, "12", "Número") + texto_de(documento, "15", "Documento") + ", CAST(" + data +
         " AS DATE) AS \"Data\"" + texto_de(texto, "250", "Descrição") + ", " + valores + " FROM " + de;
}

std::string Valor(const char* coluna) { return Valores(coluna, "NULL", "NULL", "NULL", "NULL"); }

std::string Receber(const std::string& condicao) {
  return Linhas("Título a receber", "R.NUMERO", "R.FATURA", "R.DT_VENCTO",
                "COALESCE(E.NOME, '') || ' ' || COALESCE(R.OBS, '')",
                Valores("R.VALOR2", "R.VALOR_PAGO", "R.JUROS", "R.DESCONTO", "R.VAL_DEV").c_str(),
                "{RECEBER} R LEFT JOIN {ENTIDADE} E ON E.CODCLI = R.CODCLI") +
         " WHERE R." + condicao;
}

std::string Pagar(const std::string& condicao) {
  return Linhas("Título a pagar", "P.DUPLI", "P.DOCTO", "P.DT_VEN",
                "COALESCE(E.NOME, '') || ' ' || COALESCE(P.OBS, '')",
                Valores("P.VALOR", "P.VAL_PAG", "P.JUROS", "P.DESCONTO", "P.VAL_DEV").c_str(),
                "{PAGTO} P LEFT JOIN {ENTIDADE} E ON E.CODCLI = P.CODCRE") +
         " WHERE P." + condicao;
}

std::string BaixasReceber(const std::string& condicao) {
  return Linhas("Recebimento", "B.LANCAMENTO", "B.DOCTO", "B.DT_PAGTO",
                "COALESCE(H.DESCRICAO, '') || ' ' || COALESCE(B.OBS, '')",
                Valores("NULL", "B.VALOR_PAGO", "B.JUROS", "B.DESCONTO", "B.VAL_DEV").c_str(),
                "{RECEBERB} B LEFT JOIN {HISTCP} H ON H.HISTORICO = B.HISTORICO") +
         " WHERE B." + condicao;
}

std::string BaixasPagar(const std::string& condicao) {
  return Linhas("Pagamento", "B.LANCAMENTO", "B.DOCTO", "B.DT_LAN",
                "COALESCE(H.DESCRICAO, '') || ' ' || COALESCE(B.OBS, '')",
                Valores("NULL", "B.VAL_PAG", "B.JURO", "B.DESCONTO", "B.VAL_DEV").c_str(),
                "{PAGTO1} B LEFT JOIN {HISTCP} H ON H.HISTORICO = B.HISTORICO") +
         " WHERE B." + condicao;
}

std::string Movimentos(const std::string& condicao) {
  return Linhas("Movimento", "M.LANCAMENTO", "M.DOCTO", "M.DT_CONT",
                "M.CONTA || ' ' || M.OPERACAO || ' ' || COALESCE(M.OBSERVACAO, '')", Valor("M.VALOR").c_str(),
                "{CONTACOR} M") +
         " WHERE M." + condicao;
}

std::string Contabilizacao(const std::string& condicao) {
  return Linhas("Contabilização", "C.LANCAMENTO", "C.DOCTO", "C.DATA",
                "'D ' || COALESCE(C.CONTA_D, '') || ' C ' || COALESCE(C.CONTA_C, '') || ' ' || "
                "COALESCE(C.OBSERVACAO, '')",
                Valor("C.VALOR").c_str(), "{CONTABIL} C") +
         " WHERE C." + condicao;
}

std::string Cheques(const std::string& condicao) {
  const std::string titulos =
      " IN (SELECT D.DUPLI FROM {CHEQUE_PRE} Q INNER JOIN {CHEQUE_DUP} D ON D.BANCO = Q.BANCO AND "
      "D.CONTA = Q.CONTA AND D.NUMERO = Q.NUMERO WHERE Q." +
      condicao + ")";
  return Linhas("Cheque", "Q.NUMERO", "Q.CHAVE", "Q.VENCIMENTO",
                "Q.BANCO || ' ' || Q.CONTA || ' ' || COALESCE(Q.OBS, '')", Valor("Q.VALOR").c_str(),
                "{CHEQUE_PRE} Q") +
         " WHERE Q." + condicao + kUniao +
         // A cheque's title is one to pay or one to receive: its number tells.
         Pagar("NUM_AP" + titulos) + kUniao + Receber("NUMERO" + titulos);
}

}  // namespace orv::origem
