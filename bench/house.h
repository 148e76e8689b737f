// The databases on which the programs measure: demo houses, made once and kept in a folder.
#pragma once

#include <filesystem>

#include "desk/session/door_client.h"

namespace orv::bench {

// The last day of the demo houses.
constexpr const char* kToday = "2026-11-20";

// A house with about 4,000 times `scale` movements in its first company and a user "ana" who may everything.
// It is made at first use, in the folder that ORVCC_BENCH_DIR names ("build/bench-data" without it).
std::filesystem::path House(int scale);

// A copy of a house for programs that write into it, removed at the end.
class Copy {
 public:
  Copy(const std::filesystem::path& house, const std::string& name);
  ~Copy();
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// What it takes to open a session of "ana".
SessionOptions Ana(const std::filesystem::path& database);

}  // namespace orv::bench
