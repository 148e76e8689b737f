#include "rules/historico.h"

#include <utility>
#include <vector>

#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kAreaImportacao = "IMPORTACAO EXTRATO";
// Movements of one reconciliation whose lines are looked for.
constexpr int kConciliados = 20;

std::string NaConta(std::string_view conta) { return "CONTA " + std::string(conta) + ":"; }

std::vector<ChaveHistorico> ChavesDoLancamento(IFuncoes& funcoes, ITabela& tabela,
                                               const std::string& numero) {
  std::vector<ChaveHistorico> chaves = {{kAreaMovimento, numero},
                                        {"ANEXOS", numero},
                                        {"CONTA CORRENTE", numero},
                                        {"EMISSAO DE CHEQUES", numero},
                                        // Orders stand in these two areas under numbers of their own.
                                        {"CONCILIACAO", numero, "DO LANCAMENTO " + numero},
                                        {"CONTACOR", numero, "LANCTO. " + numero}};
  TOrvDatabase& db = tabela.IBDatabase();
  const std::string deste = " WHERE LANCAMENTO = " + funcoes.Aspas(numero);
  const std::string contacor = funcoes.DBLocal("CONTACOR", true);
  // What is posted is told by its document, a transfer by the account that it leaves.
  for (const auto& linha : db.Rows("SELECT DISTINCT DOCTO FROM " + contacor + deste)) {
    const std::string docto = linha[0].AsString();
    chaves.push_back({"CONTACOR", docto, "LANCTO: " + numero + " "});
    chaves.push_back({"CONTACOR", docto, "LANCTO. " + numero});
  }
  for (const auto& linha : db.Rows("SELECT DISTINCT CONTA FROM " + contacor + deste + " AND TIPO = 'TR'"))
    chaves.push_back({"TRANSFERENCIA ENTRE CONTAS", linha[0].AsString(), "LANCAMENTO:" + numero + " "});
  const std::string cheques = funcoes.DBLocal("CHEQUE_PRE", true);
  for (const auto& linha : db.Rows("SELECT NUMERO, BANCO, (SELECT COUNT(*) FROM " + cheques +
                                   " O WHERE O.NUMERO = C.NUMERO) FROM " + cheques +
                                   " C WHERE CHAVE = " + funcoes.Aspas(numero))) {
    const std::string cheque = linha[0].AsString();
    chaves.push_back({"EMISSAO CHEQUE", cheque, "NUMERO:" + cheque + " BANCO:" + linha[1].AsString() + " "});
    // These lines name the cheque's number alone, which cheques of several banks can bear.
    if (linha[2].AsInteger() == 1) chaves.push_back({"CONTACOR", cheque, "CHEQUE PRE NR.: "});
  }
  return chaves;
}

std::vector<ChaveHistorico> ChavesDaLinha(IFuncoes& funcoes, ITabela& tabela, const std::string& lancto) {
  std::vector<ChaveHistorico> chaves = {{kAreaLinha, lancto}, {"CADEXTRATO", lancto}};
  TOrvDatabase& db = tabela.IBDatabase();
  for (const auto& linha :
       db.Rows("SELECT CONTA, COALESCE(ARQUIVO, ''), COALESCE(LANC_CON, '') FROM " +
               funcoes.DBLocal("EXTRATO", true) + " WHERE LANCTO = " + funcoes.Aspas(lancto))) {
    const std::string arquivo = linha[1].AsString(), conciliacao(Trim(linha[2].Text()));
    if (!arquivo.empty()) chaves.push_back({kAreaImportacao, arquivo, NaConta(linha[0].AsString())});
    if (conciliacao.empty()) continue;
    for (const auto& movimento :
         db.Rows("SELECT FIRST " + std::to_string(kConciliados) + " DISTINCT LANCAMENTO FROM " +
                 funcoes.DBLocal("CONTACOR", true) + " WHERE LANC_CON = " + funcoes.Aspas(conciliacao))) {
      const std::string numero = movimento[0].AsString();
      chaves.push_back({"CONCILIACAO", numero, "DO LANCAMENTO " + numero});
    }
  }
  return chaves;
}

}  // namespace

Registro RegistroDoLancamento(IFuncoes& funcoes, ITabela& tabela, std::string titulo, std::string numero) {
  return {std::move(titulo), "CONTACOR", numero,
          [&funcoes, &tabela, numero] { return ChavesDoLancamento(funcoes, tabela, numero); }};
}

Registro RegistroDaLinha(IFuncoes& funcoes, ITabela& tabela, std::string lancto) {
  return {"Linha " + lancto + " do extrato", "EXTRATO", "",
          [&funcoes, &tabela, lancto] { return ChavesDaLinha(funcoes, tabela, lancto); }};
}

void AnotaMovimento(IFuncoes& funcoes, std::string_view numero, std::string_view texto,
                    TOperacaoLog operacao) {
  funcoes.GeraLog(kAreaMovimento, texto, operacao, numero);
}

void AnotaLinha(IFuncoes& funcoes, std::string_view lancto, std::string_view texto) {
  funcoes.GeraLog(kAreaLinha, texto, TOperacaoLog::Processo, lancto);
}

void AnotaImportacao(IFuncoes& funcoes, std::string_view arquivo, std::string_view conta,
                     std::size_t linhas) {
  funcoes.GeraLog(kAreaImportacao,
                  "IMPORTACAO DO ARQUIVO " + std::string(arquivo) + ", " + NaConta(conta) + " " +
                      std::to_string(linhas) + " LINHAS",
                  TOperacaoLog::Inclusao, arquivo);
}

}  // namespace orv
