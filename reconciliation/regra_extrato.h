// Rules by which lines of the statement are posted that no movement stands for. They fill a posting's fields
// and never post.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "toolkit/currency.h"

namespace orv {

struct RegraExtrato {
  std::string conta;     // "" for any account
  std::string operacao;  // "C" or "D"
  std::string texto;     // what the line's text holds, in any case and with or without accents
  Currency de, ate;      // of the amount; zero for no bound
  std::string classe, historico;

  // As people read it: "TARIFA, de 10,00 a 20,00".
  std::string Nome() const;
  bool Vale(std::string_view conta_da_linha, std::string_view operacao_da_linha,
            std::string_view texto_da_linha, Currency valor) const;
  // What is wrong with it, "" for nothing.
  std::string Problema() const;
};

class RegrasExtrato {
 public:
  RegrasExtrato(IFuncoes& funcoes, ITabela& tabela) : funcoes_(funcoes), tabela_(tabela) {}

  // The most exact first: of an account before any account, the longer text, the narrower bounds.
  std::vector<RegraExtrato> Todas() const;
  // Takes the place of one with the same conditions. Raises UserError for one that isn't right. The caller
  // commits, here and below.
  void Grava(const RegraExtrato& regra);
  void Exclui(const RegraExtrato& regra);

 private:
  std::string Tabela() const { return funcoes_.DBLocal("REGRA_EXTRATO", true); }

  IFuncoes& funcoes_;
  ITabela& tabela_;
};

// The first that fits a line; null without one.
const RegraExtrato* RegraPara(const std::vector<RegraExtrato>& regras, std::string_view conta,
                              std::string_view operacao, std::string_view texto, Currency valor);

// The part of a line's text that will stand in the next such line too: without what is numbered.
std::string TextoDaRegra(std::string_view texto);

}  // namespace orv
