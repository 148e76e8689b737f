#include "frame/ticks.h"

namespace orv {

void Ticks::MoveOn(std::function<bool()> unless) {
  tick_.OnChange = [this, unless = std::move(unless)] {
    if (!set_.Editing() || set_.Tag != 0 || set_.ControlsDisabled() || (unless && unless())) return;
    set_.Next();
  };
}

bool Ticks::Any() const {
  for (int64_t row = 0, rows = set_.DisplayCount(); row < rows; ++row) {
    if (set_.Cell(row, tick_).Text() == on_) return true;
  }
  return false;
}

void Ticks::ForEach(const std::function<void(int64_t row)>& ticked) const {
  for (int64_t row = 0, rows = set_.DisplayCount(); row < rows; ++row) {
    if (set_.Cell(row, tick_).Text() == on_) ticked(row);
  }
}

Currency Ticks::Sum(const Field& amount) const {
  Currency sum;
  ForEach([&](int64_t row) { sum += set_.Cell(row, amount).AsCurrency(); });
  return sum;
}

Currency Ticks::Balance(const Field& amount, const Field& operation, std::string_view debit) const {
  Currency balance;
  ForEach([&](int64_t row) {
    const Currency part = set_.Cell(row, amount).AsCurrency();
    balance += set_.Cell(row, operation).Text() == debit ? -part : part;
  });
  return balance;
}

}  // namespace orv
