// A screen that does with others what a test says, as screens of the module do with one another.
#pragma once

#include <functional>

#include "frame/registry.h"
#include "frame/screen.h"

namespace orv::test {

// What the button does, on the session's thread.
inline std::function<void(Screen&)> on_call;

class TfmChamador : public Child {
 public:
  explicit TfmChamador(Application& application)
      : Child(application, "TfmChamador", "fmChamador", "Chamador") {
    Layout("BtChama EdtTag");
    BtChama.OnClick = [this] { on_call(*this); };
  }
  Button BtChama{*this, "BtChama", "Chama"};
  ReadOnlyEdit EdtTag{*this, "EdtTag"};
};

// Can be opened while this lives.
class CallerScreens {
 public:
  CallerScreens() {
    ClassRegistry::Instance().Register({"TfmChamador", "Chamador", ScreenKind::Child, "Testes",
                                        [](Application& a) { return std::make_unique<TfmChamador>(a); }});
  }
  ~CallerScreens() { ClassRegistry::Instance().Unregister("TfmChamador"); }
  CallerScreens(const CallerScreens&) = delete;
  CallerScreens& operator=(const CallerScreens&) = delete;
};

}  // namespace orv::test
