// Measured numbers, each printed beside its limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/database.h"

namespace orv::bench {

// Seconds of a piece of work: of this process on its processors, all threads together, and by the clock.
struct Seconds {
  double cpu = 0;
  double wall = 0;
};

// What was taken so far.
Seconds Now();
Seconds Measure(const std::function<void()>& work);

// The least of several runs, which is the one that other programs disturbed least. The first one counts.
class Best {
 public:
  void Take(const Seconds& run);
  double Cpu() const { return least_.cpu; }
  double Wall() const { return least_.wall; }

 private:
  bool any_ = false;
  Seconds least_;
};

// Bytes in use on the heap.
std::size_t HeapBytes();

// Keeps nothing of what comes: what a bare fetch brings.
class Nothing : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value>) override {
    ++rows;
    return true;
  }
  int64_t rows = 0;
};

enum class Bound { AtMost, AtLeast };

// Prints a line of the table: what, measured, limit, their ratio, "ok" or "over".
void Print(std::string_view what, double measured, Bound bound, double limit, std::string_view unit,
           std::string_view remark = "");
// A number without a limit, for comparison.
void Print(std::string_view what, double measured, std::string_view unit, std::string_view remark = "");
// A number with four digits or more, without an exponent.
std::string Number(double number);

}  // namespace orv::bench
