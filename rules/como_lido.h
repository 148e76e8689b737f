// Rows that are changed only as they were read.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/services.h"
#include "toolkit/currency.h"

namespace orv {

// The condition that finds a row while what was read of it still stands: the statement that changes the row
// looks by it, so that of two users only the first one does.
class ComoLido {
 public:
  explicit ComoLido(const IFuncoes& funcoes) : funcoes_(funcoes) {}

  // A column that finds the row, by its index.
  ComoLido& Chave(std::string_view coluna, std::string_view texto);
  // Columns where null is the same as "" or as zero.
  ComoLido& Texto(std::string_view coluna, std::string_view texto);
  ComoLido& Valor(std::string_view coluna, Currency valor);
  // The engine's number of the row's latest change (RDB$RECORD_VERSION): all columns at once.
  ComoLido& Versao(int64_t versao);
  // One condition or the other.
  ComoLido& Ou(const ComoLido& um, const ComoLido& outro);

  const std::string& Condicao() const { return condicao_; }

 private:
  ComoLido& E(std::string condicao);

  const IFuncoes& funcoes_;
  std::string condicao_;
};

}  // namespace orv
