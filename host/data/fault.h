// What the engine's refusals mean to the user.
#pragma once

#include <string_view>

#include "host/data/api.h"
#include "toolkit/database.h"

namespace orv::fb {

// The error for a failed call. `sql` is the statement that ran, if one did; `database` the one being opened
// or saved, if it was that.
DatabaseError Fault(const Status& status, std::string_view sql, std::string_view database = {});

// The engine refused because another transaction holds the row, a passing state.
bool IsConflict(const Status& status);

// Raises Fault when the call failed.
void Check(const Call& call, std::string_view sql = {}, std::string_view database = {});

}  // namespace orv::fb
