// The clearing of a movement, taken back.
#pragma once

#include <string_view>

#include "frame/services.h"

namespace orv {

// Removes what was posted under the number of a clearing (CONTACOR.LANC_CON), entries and apportionment. The
// entries of a movement that bears the same number stay. The caller commits.
void RetiraCompensacao(const IFuncoes& funcoes, ITabela& tabela, std::string_view numero);

}  // namespace orv
