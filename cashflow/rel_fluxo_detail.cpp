// From a figure to where it comes from: a title's settlements, what a cheque pays, a movement's titles and
// accounting, an order's items.
#include "cashflow/rel_fluxo.h"
#include "rules/origem.h"
#include "rules/saldo.h"

namespace orv {

using namespace origem;

namespace {

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
      sql = Cheques("CHAVE = " + chave) + kUniao + Movimentos("LANCAMENTO = " + chave);
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
