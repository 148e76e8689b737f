// Rows that the user ticks in a working set.
#pragma once

#include <functional>
#include <string>

#include "toolkit/client_dataset.h"

namespace orv {

class Ticks {
 public:
  // `on` is what the field holds in a ticked row.
  Ticks(TClientDataSet& set, Field& tick, std::string on) : set_(set), tick_(tick), on_(std::move(on)) {}
  Ticks(const Ticks&) = delete;
  Ticks& operator=(const Ticks&) = delete;

  // From now on a tick of the user's goes on to the next row, which posts it. Nothing moves while the program
  // ticks: with the set's displays held still, with a Tag other than 0, or where `unless` holds.
  void MoveOn(std::function<bool()> unless = nullptr);

  bool Any() const;
  // The display rows that are ticked, the row in edit as it stands.
  void ForEach(const std::function<void(int64_t row)>& ticked) const;
  Currency Sum(const Field& amount) const;
  // The same, where rows whose operation is `debit` are taken away.
  Currency Balance(const Field& amount, const Field& operation, std::string_view debit) const;

 private:
  TClientDataSet& set_;
  Field& tick_;
  std::string on_;
};

}  // namespace orv
