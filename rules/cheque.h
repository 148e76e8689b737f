// Cheques as they stand in the register, and the titles that they pay.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/services.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// What tells a cheque from all others.
struct NumeroCheque {
  std::string banco, conta, numero;
};

// A row of CHEQUE_PRE. Texts are cut to their columns; what isn't given is left to the table.
struct Cheque {
  std::string chave;
  NumeroCheque numero;
  std::string agencia;
  Currency valor;
  Date emissao, vencimento;
  std::string tipo{};
  std::optional<Date> dt_baixa{};
  std::optional<std::string> status{}, emissor{}, cnpj_emi{}, cliente{}, fornecedor{}, representante{};
  std::optional<std::string> duplicata{}, lote{}, barra{}, obs{};
};

// A row of CHEQUE_DUP: a title that the cheque pays, or for which it came. The same of texts.
struct TituloDoCheque {
  NumeroCheque cheque;
  std::string dupli;
  std::optional<std::string> chave{};
  Currency juros{};
  Currency valor;
};

// The caller commits.
class Cheques {
 public:
  Cheques(const IFuncoes& funcoes, ITabela& tabela) : funcoes_(funcoes), tabela_(tabela) {}

  // The condition that finds a cheque and the titles of it.
  std::string Condicao(const NumeroCheque& cheque) const;
  // Into the table of the company of that suffix, "" for the current one.
  void Grava(const Cheque& cheque, std::string_view empresa = "");
  void Grava(const TituloDoCheque& titulo);
  // The cheque's row of the register, where it has one.
  void Apaga(const NumeroCheque& cheque);
  void ApagaTitulos(const NumeroCheque& cheque);

 private:
  const IFuncoes& funcoes_;
  ITabela& tabela_;
};

}  // namespace orv
