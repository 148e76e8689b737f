// From a figure to where it comes from: a title's settlements, what a cheque pays, a movement's titles and
// accounting, an order's items.
#include "cashflow/rel_fluxo.h"
#include "rules/saldo.h"

namespace orv {
namespace {

// One line of a drill-down: kind, number, document, day, text and the amounts, each of one type in all lines.
std::string Linhas(const char* tipo, const char* numero, const char* documento, const char* data,
                   const char* texto, const char* valores, const char* de) {
  const auto texto_de = [](const char* coluna, const char* tamanho, const char* nome) {
    return std::string(", CAST(") + coluna + " AS VARCHAR(" + tamanho + ")) AS \"" + nome + "\"";
  };
  return std::string("SELECT CAST('") + tipo + "' AS VARCHAR(20)) AS \"Tipo\"" +
         texto_de(numero, "12", "Número") + texto_de(documento, "15", "Documento") + ", CAST(" + data +
         " AS DATE) AS \"Data\"" + texto_de(texto, "250", "Descrição") + ", " + valores + " FROM " + de;
}

// The amounts of a line that has only one.
std::string Valor(const char* coluna) {
  return std::string("CAST(") + coluna +
         " AS NUMERIC(18,4)) AS \"Valor\", CAST(NULL AS NUMERIC(18,4)) AS \"Pago\", "
         "CAST(NULL AS NUMERIC(18,4)) AS \"Juros\", CAST(NULL AS NUMERIC(18,4)) AS \"Desconto\", "
         "CAST(NULL AS NUMERIC(18,4)) AS \"Devolvido\"";
}

std::string Valores(const char* valor, const char* pago, const char* juros, const char* desconto,
                    const char* devolvido) {
  std::string text;
  const char* nomes[] = {"Valor", "Pago", "Juros", "Desconto", "Devolvido"};
  const char* colunas[] = {valor, pago, juros, desconto, devolvido};
  for (int i = 0; i < 5; ++i) {
    if (i > 0) text += ", ";
    text += std::string("CAST(") + colunas[i] + " AS NUMERIC(18,4)) AS \"" + nomes[i] + "\"";
  }
  return text;
}

constexpr const char* kUniao = " UNION ALL ";

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

std::string Cheques(const std::string& chave) {
  return Linhas("Cheque", "Q.NUMERO", "Q.CHAVE", "Q.VENCIMENTO",
                "Q.BANCO || ' ' || Q.CONTA || ' ' || COALESCE(Q.OBS, '')", Valor("Q.VALOR").c_str(),
                "{CHEQUE_PRE} Q") +
         " WHERE Q.CHAVE = " + chave + kUniao +
         // A cheque's title is one to pay or one to receive: its number tells.
         Pagar("NUM_AP IN (SELECT D.DUPLI FROM {CHEQUE_DUP} D WHERE D.CHAVE = " + chave + ")") + kUniao +
         Receber("NUMERO IN (SELECT D.DUPLI FROM {CHEQUE_DUP} D WHERE D.CHAVE = " + chave + ")");
}

// What a line of an order says in figures: its discount, or a quantity and a price. Null is none.
std::string Figuras(const char* desconto, const char* quantidade, const char* preco) {
  const auto como = [](const char* coluna, const char* nome) {
    return std::string(", CAST(") + coluna + " AS DOUBLE PRECISION) AS " + nome;
  };
  return como(desconto, "PER_DESC") + como(quantidade, "QTDE") + como(preco, "PRECO");
}

std::string Itens(const char* tipo, const char* data, const char* quantidade, const char* tabela,
                  const std::string& numero) {
  const std::string valor =
      Valor((std::string("I.PRECO * ") + quantidade).c_str()) + Figuras("NULL", quantidade, "I.PRECO");
  return Linhas(tipo, "I.NUMERO", "NULL", data, "''", valor.c_str(), tabela) + " WHERE I.NUMERO = " + numero;
}

constexpr ReportField kItens[] = {{"Tipo", FieldType::String, 20},       {"Número", FieldType::String, 12},
                                  {"Documento", FieldType::String, 15},  {"Data", FieldType::Date},
                                  {"Descrição", FieldType::String, 250}, {"Valor", FieldType::Currency},
                                  {"Pago", FieldType::Currency},         {"Juros", FieldType::Currency},
                                  {"Desconto", FieldType::Currency},     {"Devolvido", FieldType::Currency}};

// The figures become a part of the description.
void DescreveItem(std::span<Value> linha) {
  Value& descricao = linha[4];
  const Value &desconto = linha[10], &quantidade = linha[11], &preco = linha[12];
  if (!desconto.IsNull())
    descricao = descricao.AsString() + " desconto " + desconto.AsCurrency().Brazil() + "%";
  if (preco.IsNull()) return;
  const Currency valor = preco.AsCurrency();
  descricao = quantidade.AsCurrency().Brazil(3) + " x " + valor.Brazil(valor == valor.Round2() ? 2 : 4);
}

std::string Pedido(const std::string& numero) {
  return Linhas("Pedido", "O.NUMERO", "O.PED_CLI", "O.DT_FATURA", "COALESCE(E.NOME, '')",
                (Valor("(SELECT SUM(X.PRECO * X.QTDE) FROM {PED_ITEN} X WHERE X.NUMERO = O.NUMERO)") +
                 Figuras("COALESCE(O.PER_DESC, 0)", "NULL", "NULL"))
                    .c_str(),
                "{PEDIDO} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODCLI") +
         " WHERE O.NUMERO = " + numero + kUniao +
         Itens("Item", "I.DT_ENTREGA", "I.QTDE", "{PED_ITEN} I", numero);
}

std::string Compra(const std::string& numero) {
  return Linhas("Compra", "O.NUMERO", "O.DOCTO", "O.DT_ENTREGA",
                "COALESCE(E.NOME, '') || ' ' || COALESCE(SUBSTRING(O.OBS FROM 1 FOR 160), '')",
                (Valor("(SELECT SUM(X.PRECO * (X.QTDE - X.QTDE_B)) FROM {CO_ITEN} X "
                       "WHERE X.NUMERO = O.NUMERO AND X.SITUACAO = 'A')") +
                 Figuras("NULL", "NULL", "NULL"))
                    .c_str(),
                "{COMPRA} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODFOR") +
         " WHERE O.NUMERO = " + numero + kUniao +
         Itens("Item em aberto", "I.DT_ENTREGA", "(I.QTDE - I.QTDE_B)", "{CO_ITEN} I", numero) +
         " AND I.SITUACAO = 'A'";
}

}  // namespace

void TfmRelFluxo::DBGrid1DblClick() {
  if (!TbRelatorio.Active() || TbRelatorio.IsEmpty()) return;
  const Origem& origem = origens_.at(TbRelatorio.CurrentRow());
  const std::string chave = Funcoes.Aspas(origem.chave.Text());
  std::string titulo, sql;
  switch (origem.fonte) {
    case Fonte::Receber:
      titulo = "Título a receber ";
      sql = Receber("NUMERO = " + chave) + kUniao + BaixasReceber("NUMERO = " + chave);
      break;
    case Fonte::Pagar:
      titulo = "Título a pagar ";
      sql = Pagar("NUM_AP = " + chave) + kUniao + BaixasPagar("NUM_AP = " + chave);
      break;
    case Fonte::Cheque:
      titulo = "Cheque ";
      sql = Cheques(chave) + kUniao + Movimentos("LANCAMENTO = " + chave);
      break;
    case Fonte::Movimento:
      titulo = "Movimento ";
      sql = Movimentos("LANCAMENTO = " + chave) + kUniao +
            Receber("NUMERO IN (SELECT X.NUMERO FROM {RECEBERB} X WHERE X.LANCAMENTO = " + chave + ")") +
            kUniao + Pagar("NUM_AP IN (SELECT X.NUM_AP FROM {PAGTO1} X WHERE X.LANCAMENTO = " + chave + ")") +
            kUniao + Contabilizacao("LANCAMENTO = " + chave);
      break;
    case Fonte::Pedido:
      titulo = "Pedido ";
      sql = Pedido(chave);
      break;
    case Fonte::Compra:
      titulo = "Ordem de compra ";
      sql = Compra(chave);
      break;
  }
  titulo += origem.chave.Text();
  const std::string pronto = ForCompany(sql, empresas_.at(origem.empresa));
  if (origem.fonte == Fonte::Pedido || origem.fonte == Fonte::Compra) {
    ShowDetail(titulo, pronto, kItens, DescreveItem);
  } else {
    ShowDetail(titulo, pronto);
  }
}

// A balance is too many movements to list one by one: it is shown month by month.
void TfmRelFluxo::OrvDBGrid1DblClick() {
  if (!TbSaldo.Active() || TbSaldo.IsEmpty()) return;
  const std::string conta = TbSaldo["Conta"].AsString();
  const std::string sql =
      SaldoPorMes("DT_CONT", Creditos(kContaCorrente), "CASE WHEN OPERACAO = '+' THEN 0 ELSE VALOR END",
                  " FROM {CONTACOR} CONTACOR WHERE PENDENTE = 'N' AND CONTA = " + Funcoes.Aspas(conta) +
                      " AND DT_CONT <= " + Funcoes.AspasData(dtSaldo.Date()));
  ShowDetail("Saldo da conta " + conta, ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1, 2"),
             kSaldoPorMes, CompletaMes);
}

}  // namespace orv
