// The cells of many rows, and orders of rows that take insertions anywhere.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "toolkit/value.h"

namespace orv {

// A row for as long as it lives; numbers of removed rows are used again.
using RowId = uint32_t;
constexpr RowId kNoRow = UINT32_MAX;

// Cells in slabs of rows: a row costs its cells and twelve bytes.
class RowStore {
 public:
  void Reset(std::size_t columns);
  std::size_t Columns() const { return columns_; }
  std::size_t Live() const { return live_; }
  // One more than the highest number in use.
  RowId Bound() const { return static_cast<RowId>(ranks_.size()); }

  // A new row of nulls behind all others.
  RowId Add();
  // A new row right before `after`; `before` is the row added just before that one, kNoRow when there is
  // none.
  RowId AddBetween(RowId before, RowId after);
  void Remove(RowId row);
  bool IsLive(RowId row) const { return ranks_[row] != kDead; }

  Value* Cells(RowId row) { return slabs_[row / kSlab].get() + row % kSlab * columns_; }
  const Value* Cells(RowId row) const { return slabs_[row / kSlab].get() + row % kSlab * columns_; }
  // Orders rows as they were added.
  int64_t Rank(RowId row) const { return ranks_[row]; }

 private:
  static constexpr std::size_t kSlab = 512;
  static constexpr int64_t kDead = INT64_MIN;
  // Room between neighbours for rows put between them.
  static constexpr int64_t kStep = int64_t{1} << 30;

  RowId Take(int64_t rank);
  void Renumber();

  std::size_t columns_ = 0;
  std::size_t live_ = 0;
  int64_t last_rank_ = 0;
  std::vector<std::unique_ptr<Value[]>> slabs_;
  std::vector<int64_t> ranks_;
  std::vector<RowId> free_;
};

// A list of rows in chunks, so that an insertion or removal moves no more than one chunk.
class RowSequence {
 public:
  std::size_t Size() const { return size_; }
  void Clear();
  void Assign(const std::vector<RowId>& rows);
  RowId At(std::size_t position) const;
  void Insert(std::size_t position, RowId row);
  void Erase(std::size_t position);
  // The first position whose row isn't before `row`, by a total order in which the list stands.
  template <class Less>
  std::size_t LowerBound(RowId row, const Less& less) const {
    // Most rows come at the end.
    if (size_ == 0 || less(chunks_.back().back(), row)) return size_;
    std::size_t low = 0, high = chunks_.size() - 1;
    while (low < high) {
      const std::size_t middle = low + (high - low) / 2;
      if (less(chunks_[middle].back(), row)) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    const std::vector<RowId>& chunk = chunks_[low];
    std::size_t from = 0, to = chunk.size();
    while (from < to) {
      const std::size_t middle = from + (to - from) / 2;
      if (less(chunk[middle], row)) {
        from = middle + 1;
      } else {
        to = middle;
      }
    }
    return starts_[low] + from;
  }

  // A walk from the front; the list doesn't change meanwhile.
  class Walk {
   public:
    explicit Walk(const RowSequence& sequence, std::size_t from = 0);
    // kNoRow at the end.
    RowId Next() {
      if (chunk_ == sequence_.chunks_.size()) return kNoRow;
      const std::vector<RowId>& chunk = sequence_.chunks_[chunk_];
      const RowId row = chunk[at_++];
      if (at_ == chunk.size()) ++chunk_, at_ = 0;
      return row;
    }

   private:
    const RowSequence& sequence_;
    std::size_t chunk_ = 0, at_ = 0;
  };

 private:
  static constexpr std::size_t kChunk = 2048;
  struct Place {
    std::size_t chunk, offset;
  };
  Place Find(std::size_t position) const;

  std::size_t size_ = 0;
  // None of them empty.
  std::vector<std::vector<RowId>> chunks_;
  std::vector<std::size_t> starts_;
};

// Rows by the values of some columns.
class RowIndex {
 public:
  RowIndex(const RowStore& store, std::vector<int> columns);
  const std::vector<int>& Columns() const { return columns_; }
  void Add(RowId row);
  void Remove(RowId row);
  // The rows whose columns equal the values, one after the other, in no order; kNoRow at the end.
  RowId First(std::span<const Value> values) const;
  RowId Next(RowId row, std::span<const Value> values) const {
    return Seek(links_[row].next, links_[row].hash, values);
  }
  bool Matches(RowId row, std::span<const Value> values) const;

 private:
  // A row's place in its chain. The hash spares a look at the cells of rows that only share the chain.
  struct Link {
    RowId next = kNoRow, previous = kNoRow;
    uint32_t hash = 0;
  };

  uint32_t HashRow(RowId row) const;
  RowId Seek(RowId row, uint32_t hash, std::span<const Value> values) const;
  void Grow();
  void Chain(RowId row);

  const RowStore& store_;
  std::vector<int> columns_;
  std::vector<RowId> heads_;
  std::vector<Link> links_;
  std::size_t size_ = 0;
};

}  // namespace orv
