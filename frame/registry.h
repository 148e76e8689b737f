// The screens that can be opened by class name. The registry lives in the library that program and module
// share.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/screen_info.h"

namespace orv {

class ClassRegistry {
 public:
  // The one of the process.
  static ClassRegistry& Instance();

  // Raises UserError for a name that is there already.
  void Register(const ScreenInfo& info);
  void Unregister(std::string_view name);
  // Nothing for an unknown class.
  std::optional<ScreenInfo> Find(std::string_view name) const;
  // In order of registration.
  std::vector<ScreenInfo> All() const;

 private:
  std::vector<ScreenInfo> classes_;
};

// A unit's part in loading and unloading: its screen class is registered with the first initialization and
// unregistered with the last finalization, however they nest.
class UnitRegistration {
 public:
  explicit UnitRegistration(ScreenInfo info) : info_(std::move(info)) {}
  void Initialize();
  void Finalize();

 private:
  ScreenInfo info_;
  // 0 while nothing is loaded, one less for each initialization.
  int counter_ = 0;
};

}  // namespace orv
