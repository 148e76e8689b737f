// Proposals of what belongs together between the movements of an account and the lines of its statement.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// A movement or a line of the statement that is still open.
struct SuggestItem {
  // "C" or "D".
  char side = 'C';
  Currency amount;
  std::string_view document;
  Date day;
};

// Why: the same amount and document; the same amount and a day within the span; amounts that add up.
enum class SuggestReason : uint8_t { Document, Day, Sum };

// Indexes of movements and of lines whose amounts are equal in sum; on one side there is only one.
struct Suggestion {
  std::vector<uint32_t> movements, lines;
  SuggestReason reason = SuggestReason::Document;
  // Between the days that lie farthest apart.
  int days = 0;
};

// The surest first. Only items of one side are put together, and each is used once. Same amounts are paired
// by document first, whatever their days, then by the nearest day within `span` days; what is left over is
// tried as one against several, within the span and with a bounded effort. The same items always give the
// same.
std::vector<Suggestion> Suggest(std::span<const SuggestItem> movements, std::span<const SuggestItem> lines,
                                int span);

}  // namespace orv
