#include "bench/measure.h"

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cstdio>

namespace orv::bench {
namespace {

double Clock(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

constexpr const char* kLine = "%-58s %14s %16s %7s  %-5s %s\n";

void Line(std::string_view what, const std::string& measured, const std::string& limit,
          const std::string& ratio, const char* verdict, std::string_view remark) {
  std::printf(kLine, std::string(what).c_str(), measured.c_str(), limit.c_str(), ratio.c_str(), verdict,
              std::string(remark).c_str());
  std::fflush(stdout);
}

}  // namespace

std::string Number(double number) {
  char text[32];
  const int places = number >= 1000 ? 0 : number >= 100 ? 1 : number >= 10 ? 2 : 3;
  std::snprintf(text, sizeof text, "%.*f", places, number);
  return text;
}

Seconds Now() { return {Clock(CLOCK_PROCESS_CPUTIME_ID), Clock(CLOCK_MONOTONIC)}; }

Seconds Measure(const std::function<void()>& work) {
  const Seconds before = Now();
  work();
  const Seconds after = Now();
  return {after.cpu - before.cpu, after.wall - before.wall};
}

void Best::Take(const Seconds& run) {
  least_.cpu = any_ ? std::min(least_.cpu, run.cpu) : run.cpu;
  least_.wall = any_ ? std::min(least_.wall, run.wall) : run.wall;
  any_ = true;
}

std::size_t HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void Print(std::string_view what, double measured, Bound bound, double limit, std::string_view unit,
           std::string_view remark) {
  const bool ok = bound == Bound::AtMost ? measured <= limit : measured >= limit;
  const std::string suffix = " " + std::string(unit);
  std::string sign = bound == Bound::AtMost ? "<= " : ">= ";
  Line(what, Number(measured) + suffix, sign.append(Number(limit)).append(suffix),
       limit > 0 ? Number(measured / limit) : "-", ok ? "ok" : "over", remark);
}

void Print(std::string_view what, double measured, std::string_view unit, std::string_view remark) {
  Line(what, Number(measured) + " " + std::string(unit), "-", "-", "", remark);
}

}  // namespace orv::bench
