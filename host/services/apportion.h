// Shares of an amount by percentages, to the cent.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "toolkit/currency.h"

namespace orv {

// A cost centre's share.
struct Share {
  std::string account;
  std::string centre;
  double percent = 0;
  Currency amount;
};

// Percentages that miss 100 by no more than this count as whole.
constexpr double kPercentTolerance = 0.01;

// True when the percentages of the shares add up to 100.
bool SharesAreWhole(const std::vector<Share>& shares);

// Gives each share its percentage of `total`, rounded to the cent, and the last one what is left, so that the
// amounts add up to `total`. Only for percentages that are whole.
void SetAmounts(std::vector<Share>& shares, Currency total);

// The shares of a whole amount: a row's share is the account's percentage of it times the centre's. Rows
// without a centre take no part.
std::vector<Share> SharesOfClass(const std::vector<RegraRateio>& rules);

// The shares of one account's amount.
std::vector<Share> SharesOfAccount(const std::vector<RegraRateio>& rules, std::string_view account);

}  // namespace orv
