// What a clearing posted.
#pragma once

#include <string>

#include "frame/services.h"

namespace orv {

// Removes the entries and the apportionment posted under a clearing's number, "" of none. In a database of
// before both were numbered together a movement can bear that number as its own: what is that movement's
// stays.
void ApagaPartidasDaCompensacao(const IFuncoes& funcoes, IContabil& contabil, ITabela& tabela,
                                const std::string& numero);

}  // namespace orv
