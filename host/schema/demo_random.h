// Random numbers that are the same on every machine and in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "toolkit/currency.h"

namespace orv::demo {

class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t Next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  // From `low` to `high`, both included.
  int Between(int low, int high) {
    return low + static_cast<int>(Next() % static_cast<uint64_t>(high - low + 1));
  }

  bool Chance(int percent) { return Between(1, 100) <= percent; }

  template <class List>
  const auto& Pick(const List& list) {
    return list[static_cast<std::size_t>(Next() % std::size(list))];
  }

  // Small amounts are more frequent than large ones. In whole cents: no float takes part, so that no
  // machine rounds in its own way.
  Currency Amount(int low, int high) {
    const int64_t span = (int64_t{high} - low) * 100;
    const int64_t a = static_cast<int64_t>(Next() % static_cast<uint64_t>(span));
    const int64_t b = static_cast<int64_t>(Next() % static_cast<uint64_t>(span));
    return Currency::FromCents(int64_t{low} * 100 + (a < b ? a : b));
  }

 private:
  uint64_t state_;
};

}  // namespace orv::demo
