// An action that is killed ever later: what is left is the whole of it or nothing.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "tests/support/process.h"

namespace orv::test {

// How often an action is killed: ORV_KILLS, or as often as its test does usually.
inline int Kills(int usual) {
  const char* given = std::getenv("ORV_KILLS");
  return given != nullptr ? std::max(2, std::atoi(given)) : usual;
}

// `begin` gives a process that needs only `last`, over data as they were; `left` tells what stands there.
// Most of the kills fall within the time that the action takes here, the others shortly after it.
inline void ExpectAllOrNothing(int usual_kills, const Json& last,
                               const std::function<std::unique_ptr<DriveProcess>()>& begin,
                               const std::function<std::string()>& left) {
  using std::chrono::steady_clock;
  const int kills = Kills(usual_kills);
  begin()->Kill();
  const std::string none = left();
  auto desk = begin();
  const auto begun = steady_clock::now();
  desk->Do(last);
  const auto whole = steady_clock::now() - begun;
  desk->Kill();
  const std::string all = left();
  EXPECT_NE(all, none);
  int landed = 0;
  for (int kill = 0; kill < kills; ++kill) {
    desk = begin();
    const auto until = steady_clock::now() + whole * kill * 5 / (kills * 4);
    desk->Send(last);
    std::this_thread::sleep_until(until);
    desk->Kill();
    const std::string now = left();
    landed += now == all;
    EXPECT_TRUE(now == all || now == none) << now;
  }
  EXPECT_LT(landed, kills);
}

}  // namespace orv::test
