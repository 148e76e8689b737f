// How a class is apportioned over accounts, and a movement over cost centres.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/services.h"

namespace orv {

// The accounts of the rules with their percentages, by account, each pair once.
std::vector<std::pair<std::string, double>> ContasDoRateio(const std::vector<RegraRateio>& regras);

// Removes the apportionment of a movement: that of its entries, and the one by class, which names no movement
// and stands under the movement's number as its document. Another movement's document can be the same text.
void ApagaRateioDoMovimento(const IFuncoes& funcoes, ITabela& tabela, const std::string& lancamento);

}  // namespace orv
