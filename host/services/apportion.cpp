#include "host/services/apportion.h"

#include <cmath>

#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

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

std::vector<ShareRule> ReadShareRules(TOrvDatabase& db, std::string_view table, std::string_view share_class,
                                      std::string_view tipo, std::string_view tipo_val) {
  std::string sql = "SELECT CONTA, PERC_CONTA, CCUSTO, PERC_CCUSTO FROM ";
  sql.append(table).append(" WHERE CODIGO = ").append(SqlLiteral(share_class));
  sql.append(" AND TIPO = ").append(SqlLiteral(tipo)).append(" AND TIPO_VAL = ").append(SqlLiteral(tipo_val));
  std::vector<ShareRule> rules;
  for (const auto& row : db.Rows(sql)) {
    rules.push_back({std::string(Trim(row[0].AsString())), row[1].AsFloat(),
                     std::string(Trim(row[2].AsString())), row[3].AsFloat()});
  }
  return rules;
}

std::vector<Share> SharesOfClass(const std::vector<ShareRule>& rules) {
  std::vector<Share> shares;
  for (const ShareRule& rule : rules) {
    if (rule.centre.empty()) continue;
    shares.push_back({rule.account, rule.centre, rule.account_percent * rule.centre_percent / 100, {}});
  }
  return shares;
}

std::vector<Share> SharesOfAccount(const std::vector<ShareRule>& rules, std::string_view account) {
  std::vector<Share> shares;
  for (const ShareRule& rule : rules) {
    if (rule.centre.empty() || rule.account != account) continue;
    shares.push_back({rule.account, rule.centre, rule.centre_percent, {}});
  }
  return shares;
}

}  // namespace orv
