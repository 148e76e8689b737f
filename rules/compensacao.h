// What a clearing posted.
#pragma once

#include <string>

#include "frame/services.h"

namespace orv {

// Removes the entries and the apportionment posted under a clearing's number, "" of none. Where a movement
// bears that number as its own, what stands under it is that movement's: the two are numbered apart and can
// meet.
void ApagaPartidasDaCompensacao(const IFuncoes& funcoes, IContabil& contabil, ITabela& tabela,
                                const std::string& numero);

}  // namespace orv
