// From a figure to where it comes from: a movement's rows, the titles that it settled, its accounting
// entries; a balance before the period month by month.
#include <iterator>

#include "reports/rel_cc.h"
#include "rules/saldo.h"

namespace orv {
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

constexpr const char* kUniao = "\nUNION ALL\n";

}  // namespace

void TfmRelCC::DBGrid1DblClick() {
  if (!TbRelatorio.Active() || TbRelatorio.IsEmpty()) return;
  const std::string lancamento = TbRelatorio["Lancamento"].AsString();
  if (lancamento.empty()) {
    MostraSaldoAnterior();
  } else {
    MostraLancamento(lancamento, empresa_da_linha_.at(TbRelatorio.CurrentRow()));
  }
}

void TfmRelCC::DBGrid2DblClick() {
  if (TbFinan.IsEmpty()) return;
  MostraLancamento(TbFinan["Lancto"].AsString(), empresa_do_titulo_.at(TbFinan.CurrentRow()));
}

void TfmRelCC::MostraLancamento(const std::string& lancamento, uint16_t empresa) {
  const std::string numero = Funcoes.Aspas(lancamento);
  const std::string& sufixo = empresas_.at(empresa);
  // The titles are those that the report shows: of any company where all were asked for.
  const auto titulos = [&](const std::string& sql, const char* tabela) {
    return consulta_.tipo == Tipo::TodasEmpresas ? PorEmpresa(sql, tabela) : ForCompany(sql, sufixo);
  };
  const std::string recebidos = Selecao(kRecebido) +
                                " FROM {RECEBERB} B INNER JOIN {RECEBER} R ON R.NUMERO = B.NUMERO"
                                " LEFT JOIN {ENTIDADE} E ON E.CODCLI = R.CODCLI WHERE B.LANCAMENTO = " +
                                numero;
  const std::string pagos = Selecao(kPago) +
                            " FROM {PAGTO1} B INNER JOIN {PAGTO} P ON P.NUM_AP = B.NUM_AP"
                            " LEFT JOIN {ENTIDADE} E ON E.CODCLI = P.CODCRE WHERE B.LANCAMENTO = " +
                            numero;
  // A cleared movement has entries under the number of its clearing, too.
  const std::string contabil =
      Selecao(kContabil) + " FROM {CONTABIL} C WHERE C.LANCAMENTO = " + numero +
      " OR C.LANCAMENTO IN (SELECT X.LANC_CON FROM {CONTACOR} X WHERE X.LANC_CON <> '' AND X.LANCAMENTO = " +
      numero + ")";
  const std::string movimentos = Selecao(kMovimento) + " FROM {CONTACOR} M WHERE M.LANCAMENTO = " + numero;
  ShowDetail("Lançamento " + lancamento,
             ForCompany(movimentos, sufixo) + kUniao + titulos(recebidos, "RECEBERB") + kUniao +
                 titulos(pagos, "PAGTO1") + kUniao + ForCompany(contabil, sufixo));
}

// A balance is too many movements to list one by one.
void TfmRelCC::MostraSaldoAnterior() {
  const std::string sql = SaldoPorMes(
      consulta_.data, Creditos(kContaCorrente, "CONTACOR"), Debitos(kContaCorrente, "CONTACOR"),
      " FROM {CADCONTA} CADCONTA INNER JOIN {CONTACOR} CONTACOR ON (CONTACOR.CONTA = CADCONTA.CONTA) "
      "WHERE 1 = 1 " +
          consulta_.filtro + " AND " + consulta_.data + " < " + Funcoes.AspasData(consulta_.periodo.de));
  ShowDetail("Saldo anterior da conta " + TbRelatorio["Conta"].AsString(),
             PorEmpresa(sql, "CONTACOR", "ORDER BY 1, 2"), kSaldoPorMes, CompletaMes);
}

}  // namespace orv
