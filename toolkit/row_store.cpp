#include "toolkit/row_store.h"

#include <algorithm>
#include <bit>

#include "toolkit/error.h"

namespace orv {

// --- RowStore.

void RowStore::Reset(std::size_t columns) {
  columns_ = columns;
  live_ = 0;
  last_rank_ = 0;
  slabs_.clear();
  slabs_.shrink_to_fit();
  ranks_.clear();
  ranks_.shrink_to_fit();
  free_.clear();
}

RowId RowStore::Take(int64_t rank) {
  ++live_;
  if (!free_.empty()) {
    const RowId row = free_.back();
    free_.pop_back();
    ranks_[row] = rank;
    return row;
  }
  const RowId row = Bound();
  ORV_ASSERT(row != kNoRow);
  if (row % kSlab == 0) slabs_.push_back(std::make_unique<Value[]>(kSlab * columns_));
  ranks_.push_back(rank);
  return row;
}

RowId RowStore::Add() {
  last_rank_ += kStep;
  return Take(last_rank_);
}

RowId RowStore::AddBetween(RowId before, RowId after) {
  if (after == kNoRow) return Add();
  const auto low = [&] { return before == kNoRow ? Rank(after) - kStep : Rank(before); };
  if (Rank(after) - low() < 2) Renumber();
  return Take(low() + (Rank(after) - low()) / 2);
}

void RowStore::Remove(RowId row) {
  Value* cells = Cells(row);
  for (std::size_t i = 0; i < columns_; ++i) cells[i] = Value();
  ranks_[row] = kDead;
  free_.push_back(row);
  --live_;
}

void RowStore::Renumber() {
  std::vector<RowId> rows;
  for (RowId row = 0; row < Bound(); ++row) {
    if (IsLive(row)) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end(), [&](RowId a, RowId b) { return ranks_[a] < ranks_[b]; });
  last_rank_ = 0;
  for (const RowId row : rows) ranks_[row] = last_rank_ += kStep;
}

// --- RowSequence.

void RowSequence::Clear() {
  size_ = 0;
  chunks_.clear();
  starts_.clear();
}

void RowSequence::Assign(const std::vector<RowId>& rows) {
  Clear();
  size_ = rows.size();
  // Chunks three quarters full leave room for insertions.
  constexpr std::size_t kFill = kChunk * 3 / 4;
  for (std::size_t from = 0; from < rows.size(); from += kFill) {
    const std::size_t to = std::min(rows.size(), from + kFill);
    std::vector<RowId> chunk;
    chunk.reserve(kChunk);
    chunk.assign(rows.begin() + static_cast<std::ptrdiff_t>(from),
                 rows.begin() + static_cast<std::ptrdiff_t>(to));
    chunks_.push_back(std::move(chunk));
    starts_.push_back(from);
  }
}

RowSequence::Place RowSequence::Find(std::size_t position) const {
  const auto chunk = std::upper_bound(starts_.begin(), starts_.end(), position) - starts_.begin() - 1;
  return {static_cast<std::size_t>(chunk), position - starts_[static_cast<std::size_t>(chunk)]};
}

RowId RowSequence::At(std::size_t position) const {
  ORV_ASSERT(position < size_);
  const Place place = Find(position);
  return chunks_[place.chunk][place.offset];
}

RowSequence::Walk::Walk(const RowSequence& sequence, std::size_t from) : sequence_(sequence) {
  if (from >= sequence.size_) {
    chunk_ = sequence.chunks_.size();
    return;
  }
  const Place place = sequence.Find(from);
  chunk_ = place.chunk, at_ = place.offset;
}

void RowSequence::Insert(std::size_t position, RowId row) {
  ORV_ASSERT(position <= size_);
  if (chunks_.empty()) {
    chunks_.emplace_back().reserve(kChunk);
    starts_.push_back(0);
  }
  // At the very end the last chunk takes it; a full one is left full, for rows appended one after the other.
  Place place = position == size_ ? Place{chunks_.size() - 1, chunks_.back().size()} : Find(position);
  if (chunks_[place.chunk].size() == kChunk) {
    const auto at = static_cast<std::ptrdiff_t>(place.chunk + 1);
    std::vector<RowId> upper;
    upper.reserve(kChunk);
    std::vector<RowId>& full = chunks_[place.chunk];
    const std::size_t keep = place.offset == kChunk ? kChunk : kChunk / 2;
    upper.assign(full.begin() + static_cast<std::ptrdiff_t>(keep), full.end());
    full.resize(keep);
    starts_.insert(starts_.begin() + at, starts_[place.chunk] + keep);
    chunks_.insert(chunks_.begin() + at, std::move(upper));
    if (place.offset >= keep) place = {place.chunk + 1, place.offset - keep};
  }
  std::vector<RowId>& chunk = chunks_[place.chunk];
  chunk.insert(chunk.begin() + static_cast<std::ptrdiff_t>(place.offset), row);
  ++size_;
  for (std::size_t i = place.chunk + 1; i < starts_.size(); ++i) ++starts_[i];
}

void RowSequence::Erase(std::size_t position) {
  ORV_ASSERT(position < size_);
  const Place place = Find(position);
  std::vector<RowId>& chunk = chunks_[place.chunk];
  chunk.erase(chunk.begin() + static_cast<std::ptrdiff_t>(place.offset));
  --size_;
  for (std::size_t i = place.chunk + 1; i < starts_.size(); ++i) --starts_[i];
  if (!chunk.empty()) return;
  chunks_.erase(chunks_.begin() + static_cast<std::ptrdiff_t>(place.chunk));
  starts_.erase(starts_.begin() + static_cast<std::ptrdiff_t>(place.chunk));
}

// --- RowIndex.

RowIndex::RowIndex(const RowStore& store, std::vector<int> columns)
    : store_(store), columns_(std::move(columns)) {
  heads_.assign(std::max<std::size_t>(16, std::size_t{1} << std::bit_width(store.Live())), kNoRow);
  links_.reserve(store.Bound());
  // Backwards, so that a chain gives the rows in the order in which they were added.
  for (RowId row = store.Bound(); row-- > 0;) {
    if (store.IsLive(row)) Add(row);
  }
}

namespace {

std::size_t Mix(std::size_t hash, std::size_t value) {
  hash ^= value + 0x9E3779B97F4A7C15ULL + (hash << 12) + (hash >> 4);
  return hash * 0xFF51AFD7ED558CCDULL;
}

uint32_t Spread(std::size_t hash) { return static_cast<uint32_t>(hash ^ (hash >> 32)); }

}  // namespace

uint32_t RowIndex::HashRow(RowId row) const {
  const Value* cells = store_.Cells(row);
  std::size_t hash = 0;
  for (const int column : columns_) hash = Mix(hash, cells[column].Hash());
  return Spread(hash);
}

void RowIndex::Chain(RowId row) {
  Link& link = links_[row];
  RowId& head = heads_[link.hash & (heads_.size() - 1)];
  link.next = head;
  link.previous = kNoRow;
  if (head != kNoRow) links_[head].previous = row;
  head = row;
}

void RowIndex::Add(RowId row) {
  if (row >= links_.size()) links_.resize(std::max<std::size_t>(store_.Bound(), row + 1));
  if (++size_ > heads_.size()) Grow();
  links_[row].hash = HashRow(row);
  Chain(row);
}

void RowIndex::Grow() {
  std::vector<RowId> rows;
  rows.reserve(size_);
  for (const RowId head : heads_) {
    for (RowId row = head; row != kNoRow; row = links_[row].next) rows.push_back(row);
  }
  heads_.assign(heads_.size() * 2, kNoRow);
  for (const RowId row : rows) Chain(row);
}

void RowIndex::Remove(RowId row) {
  --size_;
  const Link& link = links_[row];
  if (link.next != kNoRow) links_[link.next].previous = link.previous;
  if (link.previous != kNoRow) {
    links_[link.previous].next = link.next;
  } else {
    heads_[link.hash & (heads_.size() - 1)] = link.next;
  }
}

bool RowIndex::Matches(RowId row, std::span<const Value> values) const {
  const Value* cells = store_.Cells(row);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (!(cells[columns_[i]] == values[i])) return false;
  }
  return true;
}

RowId RowIndex::Seek(RowId row, uint32_t hash, std::span<const Value> values) const {
  while (row != kNoRow && !(links_[row].hash == hash && Matches(row, values))) row = links_[row].next;
  return row;
}

RowId RowIndex::First(std::span<const Value> values) const {
  std::size_t hash = 0;
  for (const Value& value : values) hash = Mix(hash, value.Hash());
  const uint32_t spread = Spread(hash);
  return Seek(heads_[spread & (heads_.size() - 1)], spread, values);
}

}  // namespace orv
