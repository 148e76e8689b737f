#include "reconciliation/regra_extrato.h"

#include <algorithm>
#include <tuple>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {

std::string RegraExtrato::Nome() const {
  std::string nome = texto;
  if (!de.IsZero()) nome += ", de " + de.Brazil();
  if (!ate.IsZero()) nome += (de.IsZero() ? ", até " : " a ") + ate.Brazil();
  return nome;
}

bool RegraExtrato::Vale(std::string_view conta_da_linha, std::string_view operacao_da_linha,
                        std::string_view texto_da_linha, Currency valor) const {
  if (!conta.empty() && conta != conta_da_linha) return false;
  if (operacao != operacao_da_linha || valor < de || (!ate.IsZero() && valor > ate)) return false;
  return Fold(texto_da_linha).find(Fold(texto)) != std::string::npos;
}

std::string RegraExtrato::Problema() const {
  if (Trim(texto).empty()) return "Informe um trecho do texto da linha.";
  if (de < Currency() || ate < Currency()) return "Os limites de valor não podem ser negativos.";
  if (!ate.IsZero() && ate < de) return "O valor final da regra deve ser maior que o inicial.";
  return "";
}

std::vector<RegraExtrato> RegrasExtrato::Todas() const {
  std::vector<RegraExtrato> regras;
  for (const auto& linha : tabela_.IBDatabase().Rows(
           "SELECT CONTA, OPERACAO, TEXTO, VALOR_DE, VALOR_ATE, GRUPO, HISTORICO FROM " + Tabela() +
           " ORDER BY TEXTO, CONTA, OPERACAO, VALOR_DE, VALOR_ATE")) {
    regras.push_back({.conta = linha[0].AsString(),
                      .operacao = linha[1].AsString(),
                      .texto = linha[2].AsString(),
                      .de = linha[3].AsCurrency(),
                      .ate = linha[4].AsCurrency(),
                      .classe = linha[5].AsString(),
                      .historico = linha[6].AsString()});
  }
  const auto exata = [](const RegraExtrato& regra) {
    const bool aberta = regra.ate.IsZero();
    return std::tuple(regra.conta.empty(), -static_cast<int>(CharCount(regra.texto)), aberta,
                      aberta ? -regra.de : regra.ate - regra.de);
  };
  std::stable_sort(regras.begin(), regras.end(),
                   [&](const RegraExtrato& a, const RegraExtrato& b) { return exata(a) < exata(b); });
  return regras;
}

void RegrasExtrato::Grava(const RegraExtrato& regra) {
  if (const std::string problema = regra.Problema(); !problema.empty()) throw UserError(problema);
  const auto aspas = [&](std::string_view texto) { return funcoes_.Aspas(texto); };
  tabela_.IBDatabase().Execute("UPDATE OR INSERT INTO " + Tabela() +
                               " (CONTA, OPERACAO, TEXTO, VALOR_DE, VALOR_ATE, GRUPO, HISTORICO) VALUES (" +
                               Join({aspas(regra.conta), aspas(regra.operacao), aspas(Trim(regra.texto)),
                                     funcoes_.PermanecePonto(regra.de), funcoes_.PermanecePonto(regra.ate),
                                     aspas(regra.classe), aspas(regra.historico)},
                                    ", ") +
                               ") MATCHING (CONTA, OPERACAO, TEXTO, VALOR_DE, VALOR_ATE)");
}

void RegrasExtrato::Exclui(const RegraExtrato& regra) {
  tabela_.IBDatabase().Execute("DELETE FROM " + Tabela() + " WHERE CONTA = " + funcoes_.Aspas(regra.conta) +
                               " AND OPERACAO = " + funcoes_.Aspas(regra.operacao) +
                               " AND TEXTO = " + funcoes_.Aspas(regra.texto) +
                               " AND VALOR_DE = " + funcoes_.PermanecePonto(regra.de) +
                               " AND VALOR_ATE = " + funcoes_.PermanecePonto(regra.ate));
}

const RegraExtrato* RegraPara(const std::vector<RegraExtrato>& regras, std::string_view conta,
                              std::string_view operacao, std::string_view texto, Currency valor) {
  const auto regra = std::find_if(regras.begin(), regras.end(), [&](const RegraExtrato& uma) {
    return uma.Vale(conta, operacao, texto, valor);
  });
  return regra == regras.end() ? nullptr : &*regra;
}

std::string TextoDaRegra(std::string_view texto) {
  const std::string_view inteiro = Trim(texto);
  const std::string_view antes = Trim(inteiro.substr(0, inteiro.find_first_of("0123456789")));
  return std::string(CutChars(antes.size() < 3 ? inteiro : antes, 50));
}

}  // namespace orv
