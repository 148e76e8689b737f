// Loading the module registers its screens and does nothing else.
#include "frame/module.h"

#include <gtest/gtest.h>

#include <set>

#include "frame/registry.h"
#include "toolkit/error.h"

namespace orv::test {
namespace {

std::set<std::string> Registered() {
  std::set<std::string> names;
  for (const ScreenInfo& info : ClassRegistry::Instance().All()) names.insert(info.class_name);
  return names;
}

TEST(ModuleTest, LoadsNest) {
  EXPECT_TRUE(Registered().empty());
  for (int round = 0; round < 2; ++round) {
    auto first = std::make_unique<Module>("orvCC");
    const std::set<std::string> names = Registered();
    EXPECT_TRUE(names.count("TfmCC") == 1);
    {
      const Module second("orvCC"), third("orvCC");
      EXPECT_EQ(Registered(), names);
    }
    EXPECT_EQ(Registered(), names);
    // The order of the unloads doesn't count.
    auto second = std::make_unique<Module>("orvCC");
    first.reset();
    EXPECT_EQ(Registered(), names);
    second.reset();
    EXPECT_TRUE(Registered().empty());
  }
}

TEST(ModuleTest, TellsItsUnits) {
  const Module module("orvCC");
  EXPECT_STREQ(module.Info().name, "orvCC");
  std::set<std::string> units;
  for (const char* const* unit = module.Info().units; *unit != nullptr; ++unit)
    EXPECT_TRUE(units.insert(*unit).second) << *unit;
  EXPECT_EQ(units.count("Cc"), 1U);
  // A class a unit.
  EXPECT_EQ(units.size(), Registered().size());
}

TEST(ModuleTest, RefusesWhatIsNoModule) {
  for (const char* name : {"", "nope", "../orvCC", "orvCC.so", "/etc/passwd", "liborvFrame"}) {
    EXPECT_THROW(Module{name}, UserError) << name;
  }
  EXPECT_TRUE(Registered().empty());
}

}  // namespace
}  // namespace orv::test
