#include "host/services/apportion.h"

#include <cmath>

#include "toolkit/error.h"

namespace orv {

bool SharesAreWhole(const std::vector<Share>& shares) {
  double sum = 0;
  for (const Share& share : shares) sum += share.percent;
  return !shares.empty() && std::abs(sum - 100) <= kPercentTolerance + 1e-9;
}

void SetAmounts(std::vector<Share>& shares, Currency total) {
  ORV_ASSERT(!shares.empty());
  Currency left = total;
  for (Share& share : shares) {
    share.amount = (total * (share.percent / 100)).Round2();
    left -= share.amount;
  }
  shares.back().amount += left;
}

std::vector<Share> SharesOfClass(const std::vector<RegraRateio>& rules) {
  std::vector<Share> shares;
  for (const RegraRateio& rule : rules) {
    if (rule.centro.empty()) continue;
    shares.push_back({rule.conta, rule.centro, rule.perc_conta * rule.perc_centro / 100, {}});
  }
  return shares;
}

std::vector<Share> SharesOfAccount(const std::vector<RegraRateio>& rules, std::string_view account) {
  std::vector<Share> shares;
  for (const RegraRateio& rule : rules) {
    if (rule.centro.empty() || rule.conta != account) continue;
    shares.push_back({rule.conta, rule.centro, rule.perc_centro, {}});
  }
  return shares;
}

}  // namespace orv
