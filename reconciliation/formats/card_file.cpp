#include "reconciliation/formats/card_file.h"

#include <algorithm>
#include <limits>

namespace orv {

int ColumnMap::PosCampo(const std::string& campo, bool base1) const {
  const auto found = campos.find(campo);
  if (base1) return found == campos.end() ? 1 : found->second;
  return found == campos.end() ? 0 : std::max(found->second, std::numeric_limits<int>::min() + 1) - 1;
}

}  // namespace orv
