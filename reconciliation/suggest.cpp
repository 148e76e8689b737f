#include "reconciliation/suggest.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <functional>
#include <queue>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace orv {
namespace {

// A statement carries no more characters of a document.
constexpr std::size_t kDocument = 10;
// One against several: at most so many parts, of so many candidates, found among so many neighbours by day.
constexpr std::size_t kParts = 5;
constexpr std::size_t kCandidates = 16;
constexpr std::size_t kNeighbours = 256;
// Additions that are tried for one item and for all of them.
constexpr int64_t kStepsEach = 6000;
constexpr int64_t kStepsAll = 60'000'000;

using Indices = std::vector<uint32_t>;

// Banks fill documents with zeros and leave out signs. "" for one that names nothing.
std::string Normal(std::string_view document) {
  std::string normal;
  for (const char c : document.substr(0, kDocument)) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) continue;
    if (c == '0' && normal.empty()) continue;
    normal += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return normal;
}

struct Entry {
  int64_t amount = 0;
  int64_t day = 0;
  char side = 0;
  bool open = false;
  std::string document;
};

std::vector<Entry> Entries(std::span<const SuggestItem> items) {
  std::vector<Entry> entries(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const SuggestItem& item = items[i];
    // No amount that is beyond all measure, so that sums of many stay within their bounds.
    entries[i] = {static_cast<int64_t>(item.amount.Raw()), item.day.Days(), item.side,
                  item.amount > Currency() && item.amount.FitsField() && !item.day.Empty(),
                  Normal(item.document)};
  }
  return entries;
}

// What belongs together by its key: movements and lines, by their indexes.
struct Bucket {
  Indices movements, lines;
};

class Matcher {
 public:
  Matcher(std::span<const SuggestItem> movements, std::span<const SuggestItem> lines, int span)
      : movements_(Entries(movements)), lines_(Entries(lines)), span_(std::max(span, 0)) {}

  std::vector<Suggestion> Run() {
    Pair(true);
    Pair(false);
    Sum(movements_, lines_, false);
    Sum(lines_, movements_, true);
    return std::move(found_);
  }

 private:
  // Items of the same amount, side and, if asked for, document, the nearest by day first.
  void Pair(bool by_document) {
    using Key = std::tuple<int64_t, char, std::string_view>;
    struct Hash {
      std::size_t operator()(const Key& key) const {
        const auto amount = static_cast<std::size_t>(std::get<0>(key)) * 2 + (std::get<1>(key) == 'D');
        return std::hash<std::size_t>()(amount) * 1000003U ^ std::hash<std::string_view>()(std::get<2>(key));
      }
    };
    std::unordered_map<Key, uint32_t, Hash> places;
    std::vector<Bucket> buckets;
    const auto put = [&](const std::vector<Entry>& entries, Indices Bucket::*side) {
      for (uint32_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        if (!entry.open || (by_document && entry.document.empty())) continue;
        const auto [at, fresh] =
            places.try_emplace({entry.amount, entry.side, by_document ? entry.document : std::string_view()},
                               static_cast<uint32_t>(buckets.size()));
        if (fresh) buckets.emplace_back();
        (buckets[at->second].*side).push_back(i);
      }
    };
    put(movements_, &Bucket::movements);
    put(lines_, &Bucket::lines);
    for (const Bucket& bucket : buckets) {
      if (!bucket.movements.empty() && !bucket.lines.empty()) PairNearest(bucket, by_document);
    }
  }

  // Of what is open, the movement and the line that are nearest to one another always stand side by side in
  // the order of days: a queue of neighbours finds them without looking at every pair.
  void PairNearest(const Bucket& bucket, bool by_document) {
    struct Node {
      int64_t day;
      bool line;
      uint32_t index;
      uint32_t before = 0, after = 0;
      bool out = false;
    };
    std::vector<Node> nodes;
    nodes.reserve(bucket.movements.size() + bucket.lines.size());
    for (const uint32_t i : bucket.movements) nodes.push_back({movements_[i].day, false, i});
    for (const uint32_t i : bucket.lines) nodes.push_back({lines_[i].day, true, i});
    std::sort(nodes.begin(), nodes.end(), [](const Node& a, const Node& b) {
      return std::tie(a.day, a.line, a.index) < std::tie(b.day, b.line, b.index);
    });
    const auto count = static_cast<uint32_t>(nodes.size());
    // Distance, place of the earlier one, place of the later one.
    using Neighbours = std::tuple<int64_t, uint32_t, uint32_t>;
    std::priority_queue<Neighbours, std::vector<Neighbours>, std::greater<>> nearest;
    const auto meet = [&](uint32_t a, uint32_t b) {
      if (nodes[a].line == nodes[b].line) return;
      const int64_t distance = nodes[b].day - nodes[a].day;
      if (by_document || distance <= span_) nearest.emplace(distance, a, b);
    };
    for (uint32_t i = 0; i < count; ++i) {
      nodes[i].before = i - 1;
      nodes[i].after = i + 1;
      if (i + 1 < count) meet(i, i + 1);
    }
    while (!nearest.empty()) {
      const auto [distance, a, b] = nearest.top();
      nearest.pop();
      if (nodes[a].out || nodes[b].out) continue;
      nodes[a].out = nodes[b].out = true;
      const uint32_t movement = nodes[nodes[a].line ? b : a].index, line = nodes[nodes[a].line ? a : b].index;
      movements_[movement].open = lines_[line].open = false;
      found_.push_back({{movement},
                        {line},
                        by_document ? SuggestReason::Document : SuggestReason::Day,
                        static_cast<int>(distance)});
      const uint32_t before = nodes[a].before, after = nodes[b].after;
      if (before < count) nodes[before].after = after;
      if (after < count) nodes[after].before = before;
      if (before < count && after < count) meet(before, after);
    }
  }

  // One of `ones` against several of `parts`.
  void Sum(std::vector<Entry>& ones, std::vector<Entry>& parts, bool one_is_line) {
    std::array<Indices, 2> by_day;
    for (uint32_t i = 0; i < parts.size(); ++i) {
      if (parts[i].open) by_day[parts[i].side == 'D'].push_back(i);
    }
    for (Indices& side : by_day) {
      std::stable_sort(side.begin(), side.end(),
                       [&](uint32_t a, uint32_t b) { return parts[a].day < parts[b].day; });
    }
    for (uint32_t i = 0; i < ones.size() && steps_ < kStepsAll; ++i) {
      if (!ones[i].open) continue;
      Indices near = Near(ones[i], parts, by_day[ones[i].side == 'D']);
      // Parts of one document are surer than what merely adds up.
      Indices same;
      std::copy_if(near.begin(), near.end(), std::back_inserter(same), [&](uint32_t p) {
        return !parts[p].document.empty() && parts[p].document == ones[i].document;
      });
      Indices sum = AddUp(ones[i].amount, parts, std::move(same));
      if (sum.empty()) sum = AddUp(ones[i].amount, parts, std::move(near));
      if (sum.empty()) continue;
      ones[i].open = false;
      int64_t days = 0;
      for (const uint32_t p : sum) {
        parts[p].open = false;
        days = std::max(days, std::abs(parts[p].day - ones[i].day));
      }
      std::sort(sum.begin(), sum.end());
      Suggestion suggestion{{i}, std::move(sum), SuggestReason::Sum, static_cast<int>(days)};
      if (one_is_line) std::swap(suggestion.movements, suggestion.lines);
      found_.push_back(std::move(suggestion));
    }
  }

  // Open parts within the span that are smaller, those of the same document first, then the nearest by day.
  Indices Near(const Entry& one, const std::vector<Entry>& parts, const Indices& by_day) const {
    const auto middle = std::lower_bound(by_day.begin(), by_day.end(), one.day,
                                         [&](uint32_t p, int64_t day) { return parts[p].day < day; }) -
                        by_day.begin();
    auto up = static_cast<std::size_t>(middle), down = up;
    Indices near;
    for (std::size_t looked = 0; looked < kNeighbours; ++looked) {
      const int64_t above = up < by_day.size() ? parts[by_day[up]].day - one.day : INT64_MAX;
      const int64_t below = down > 0 ? one.day - parts[by_day[down - 1]].day : INT64_MAX;
      if (std::min(above, below) > span_) break;
      const uint32_t p = above <= below ? by_day[up++] : by_day[--down];
      if (parts[p].open && parts[p].amount < one.amount) near.push_back(p);
    }
    std::stable_partition(near.begin(), near.end(), [&](uint32_t p) {
      return !one.document.empty() && parts[p].document == one.document;
    });
    if (near.size() > kCandidates) near.resize(kCandidates);
    return near;
  }

  // The fewest of the parts that add up to the amount; none where there are none, or the effort ends.
  Indices AddUp(int64_t amount, const std::vector<Entry>& parts, Indices from) {
    if (from.size() < 2) return {};
    std::stable_sort(from.begin(), from.end(),
                     [&](uint32_t a, uint32_t b) { return parts[a].amount > parts[b].amount; });
    int64_t left = kStepsEach;
    Indices chosen;
    // `rest` is to be made of `count` parts from `at` on; the parts stand descending.
    const std::function<bool(std::size_t, int64_t, std::size_t)> choose = [&](std::size_t at, int64_t rest,
                                                                              std::size_t count) {
      for (; at + count <= from.size(); ++at) {
        if (--left < 0) return false;
        const int64_t part = parts[from[at]].amount;
        if (part > rest) continue;
        // Even the largest ones left over don't reach it.
        if (part < (rest + static_cast<int64_t>(count) - 1) / static_cast<int64_t>(count)) return false;
        chosen.push_back(from[at]);
        if (count == 1 ? part == rest : choose(at + 1, rest - part, count - 1)) return true;
        chosen.pop_back();
      }
      return false;
    };
    for (std::size_t count = 2; count <= std::min(kParts, from.size()); ++count) {
      chosen.clear();
      if (choose(0, amount, count)) break;
      chosen.clear();
    }
    steps_ += kStepsEach - std::max<int64_t>(left, 0);
    return chosen;
  }

  std::vector<Entry> movements_, lines_;
  int64_t span_;
  int64_t steps_ = 0;
  std::vector<Suggestion> found_;
};

}  // namespace

std::vector<Suggestion> Suggest(std::span<const SuggestItem> movements, std::span<const SuggestItem> lines,
                                int span) {
  return Matcher(movements, lines, span).Run();
}

}  // namespace orv
