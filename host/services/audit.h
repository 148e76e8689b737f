// The audit lines: who did what, when.
#pragma once

#include <string>
#include <string_view>

#include "frame/services.h"
#include "toolkit/database.h"
#include "toolkit/date.h"

namespace orv {

class Audit {
 public:
  // `login` and `company` stand on every line; both may be empty where nobody is logged in.
  Audit(TOrvDatabase& db, Clock clock, std::string login, std::string company);

  // Writes a line in the running transaction. Texts longer than their column are cut.
  void Write(std::string_view area, std::string_view text, TOperacaoLog operation, std::string_view key);

 private:
  TOrvDatabase& db_;
  Clock clock_;
  std::string login_;
  std::string company_;
};

}  // namespace orv
