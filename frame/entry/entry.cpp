// The three entry points of the module. This source is part of the module itself, not of the frame's library.
#include "frame/entry/unit.h"
#include "frame/module.h"

namespace orv {

Unit::Unit(const char* name, ScreenInfo info) : name_(name), registration_(std::move(info)) {
  All().push_back(this);
}

std::vector<const Unit*>& Unit::All() {
  static std::vector<const Unit*> units;
  return units;
}

}  // namespace orv

extern "C" {

ORV_EXPORT void Initialize() {
  for (const orv::Unit* unit : orv::Unit::All()) unit->Initialize();
}

ORV_EXPORT void Finalize() {
  for (const orv::Unit* unit : orv::Unit::All()) unit->Finalize();
}

ORV_EXPORT const orv::PackageInfo* GetPackageInfoTable() {
  static const std::vector<const char*> names = [] {
    std::vector<const char*> all;
    for (const orv::Unit* unit : orv::Unit::All()) all.push_back(unit->Name());
    all.push_back(nullptr);
    return all;
  }();
  static const orv::PackageInfo info{"orvCC", "Tesouraria", names.data()};
  return &info;
}
}
