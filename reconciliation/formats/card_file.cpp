#include "reconciliation/formats/card_file.h"

namespace orv {

int ColumnMap::PosCampo(const std::string& campo, bool base1) const {
  const auto found = campos.find(campo);
  if (base1) return found == campos.end() ? 1 : found->second;
  return found == campos.end() ? 0 : found->second - 1;
}

}  // namespace orv
