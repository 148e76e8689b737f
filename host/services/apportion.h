// Shares of an amount by percentages, to the cent.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "toolkit/currency.h"
#include "toolkit/database.h"

namespace orv {

// A cost centre's share.
struct Share {
  std::string account;
  std::string centre;
  double percent = 0;
  Currency amount;
};

// A row of the rules of a class.
struct ShareRule {
  std::string account;
  double account_percent = 0;
  std::string centre;
  double centre_percent = 0;
};

// Percentages that miss 100 by no more than this count as whole.
constexpr double kPercentTolerance = 0.01;

// True when the percentages of the shares add up to 100.
bool SharesAreWhole(const std::vector<Share>& shares);

// Gives each share its percentage of `total`, rounded to the cent, and the last one what is left, so that the
// amounts add up to `total`. Only for percentages that are whole.
void SetAmounts(std::vector<Share>& shares, Currency total);

// The rules of a class for cost centres (`tipo` "C", `tipo_val` "VF"), in the order in which they stand.
// `table` is the physical name of CONT_RATEIO.
std::vector<ShareRule> ReadShareRules(TOrvDatabase& db, std::string_view table, std::string_view share_class,
                                      std::string_view tipo, std::string_view tipo_val);

// The shares of a whole amount: a row's share is the account's percentage of it times the centre's. Rows
// without a centre take no part.
std::vector<Share> SharesOfClass(const std::vector<ShareRule>& rules);

// The shares of one account's amount.
std::vector<Share> SharesOfAccount(const std::vector<ShareRule>& rules, std::string_view account);

}  // namespace orv
