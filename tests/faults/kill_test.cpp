// A desk that is killed in the midst of an action leaves all of it or nothing.
#include "tests/faults/ledger_actions.h"
#include "tests/support/kills.h"

namespace orv::test {
namespace {

TEST_F(ActionsTest, KilledActionsLeaveAllOrNothing) {
  constexpr int kMost = 10;
  for (const LedgerAction& action : Actions()) {
    SCOPED_TRACE(action.name);
    ExpectAllOrNothing(
        action.cheques ? kMost / 2 : kMost, action.last,
        [&] {
          Restore(action);
          LetGo();
          auto desk = std::make_unique<DriveProcess>(database_);
          for (const Json& in : action.before) desk->Do(in);
          return desk;
        },
        [&] { return Left(); });
  }
}

}  // namespace
}  // namespace orv::test
