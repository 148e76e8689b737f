#include "frame/registry.h"

#include <algorithm>
#include <mutex>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Sessions look classes up from their own threads while the program loads a module.
std::mutex registry_mutex;

}  // namespace

ClassRegistry& ClassRegistry::Instance() {
  static ClassRegistry registry;
  return registry;
}

void ClassRegistry::Register(const ScreenInfo& info) {
  const std::lock_guard lock(registry_mutex);
  for (const ScreenInfo& known : classes_) {
    if (SameText(known.class_name, info.class_name)) {
      throw UserError("A tela " + info.class_name + " já está registrada.");
    }
  }
  classes_.push_back(info);
}

void ClassRegistry::Unregister(std::string_view name) {
  const std::lock_guard lock(registry_mutex);
  std::erase_if(classes_, [&](const ScreenInfo& info) { return SameText(info.class_name, name); });
}

std::optional<ScreenInfo> ClassRegistry::Find(std::string_view name) const {
  const std::lock_guard lock(registry_mutex);
  for (const ScreenInfo& info : classes_) {
    if (SameText(info.class_name, name)) return info;
  }
  return std::nullopt;
}

std::vector<ScreenInfo> ClassRegistry::All() const {
  const std::lock_guard lock(registry_mutex);
  return classes_;
}

void UnitRegistration::Initialize() {
  if (counter_ == 0) ClassRegistry::Instance().Register(info_);
  --counter_;
}

void UnitRegistration::Finalize() {
  ORV_ASSERT(counter_ < 0);
  ++counter_;
  if (counter_ == 0) ClassRegistry::Instance().Unregister(info_.class_name);
}

}  // namespace orv
