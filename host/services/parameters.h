// The parameters by which a company sets up the screens.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/services/audit.h"
#include "toolkit/database.h"

namespace orv {

struct Parameter {
  std::string company;  // a suffix, "" for all companies
  std::string group;
  int number = 0;
  std::string value;
};

class Parameters {
 public:
  Parameters(TOrvDatabase& db, Audit& audit) : db_(db), audit_(audit) {}

  // The company's own, or else the one for all companies, or else "". The group ignores case.
  std::string Get(std::string_view company, std::string_view group, int number);
  // The caller commits. Raises UserError for a blank group or a value that is too long.
  void Set(const Parameter& parameter);
  // False when it wasn't set.
  bool Remove(std::string_view company, std::string_view group, int number);
  std::vector<Parameter> List();

 private:
  TOrvDatabase& db_;
  Audit& audit_;
};

}  // namespace orv
