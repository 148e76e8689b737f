// The accounting account that stands for a bank account or an entity, by the rows of CLASSE_CONTA.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>

#include "frame/services.h"

namespace orv {

// What a row is looked for by; what isn't given may be anything. "0" is the row of any.
struct ChaveContabil {
  std::optional<std::string> conta{}, historico{}, classe{}, carteira{}, codcli{};
};

// The account of the first of the keys that has a row, "" without one: the order of the keys is that of the
// fallbacks. Where several rows have one key, those of any history go before, then those of any class,
// without an entity, of any portfolio.
std::string ContaContabil(const IFuncoes& funcoes, ITabela& tabela,
                          std::initializer_list<ChaveContabil> chaves);

}  // namespace orv
