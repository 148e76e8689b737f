#include "desk/random.h"

#include <sodium.h>

#include <vector>

namespace orv {

std::string RandomHex(int bits) {
  std::vector<unsigned char> bytes(static_cast<std::size_t>(bits) / 8);
  randombytes_buf(bytes.data(), bytes.size());
  std::string hex(bytes.size() * 2 + 1, '\0');
  sodium_bin2hex(hex.data(), hex.size(), bytes.data(), bytes.size());
  hex.pop_back();
  return hex;
}

}  // namespace orv
