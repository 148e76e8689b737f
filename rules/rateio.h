// How a class is apportioned over accounts.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/services.h"

namespace orv {

// The accounts of the rules with their percentages, by account, each pair once.
std::vector<std::pair<std::string, double>> ContasDoRateio(const std::vector<RegraRateio>& regras);

}  // namespace orv
