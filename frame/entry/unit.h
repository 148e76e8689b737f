// A unit of a module: its screen class, registered when the module is loaded.
#pragma once

#include <vector>

#include "frame/module.h"
#include "frame/registry.h"

namespace orv {

// Each unit holds one at namespace scope:
//
//   const Unit kUnit("Cc", {"TfmCC", "Movimento de Contas Correntes", ScreenKind::Child, "Contas Correntes",
//                           [](Application& a) { return std::make_unique<TfmCC>(a); }});
class Unit {
 public:
  Unit(const char* name, ScreenInfo info);
  const char* Name() const { return name_; }
  // The units of this module.
  static std::vector<const Unit*>& All();
  void Initialize() const { registration_.Initialize(); }
  void Finalize() const { registration_.Finalize(); }

 private:
  const char* name_;
  mutable UnitRegistration registration_;
};

}  // namespace orv
