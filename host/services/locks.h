// Closed periods: of a bank account ("CT") and of the cash ("CX").
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/services/audit.h"
#include "toolkit/database.h"
#include "toolkit/date.h"

namespace orv {

struct PeriodLock {
  std::string company;
  std::string kind;     // "CT" or "CX"
  std::string account;  // of "CT": the account, "" for all accounts of the company
  Date until;           // the last closed day
};

class PeriodLocks {
 public:
  PeriodLocks(TOrvDatabase& db, Audit& audit) : db_(db), audit_(audit) {}

  // The last closed day, the empty date where nothing is closed. Of a lock for all accounts and one of the
  // account the later counts.
  Date ClosedUntil(std::string_view company, std::string_view kind, std::string_view account);

  // --- The caller commits.
  // Raises UserError for another kind, an account with "CX", or an empty date.
  void Set(const PeriodLock& lock);
  // False when there was none.
  bool Clear(std::string_view company, std::string_view kind, std::string_view account);
  std::vector<PeriodLock> List(std::string_view company);

 private:
  TOrvDatabase& db_;
  Audit& audit_;
};

}  // namespace orv
