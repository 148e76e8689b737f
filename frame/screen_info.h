// What is known of a screen class before one is created.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace orv {

class Application;
class Screen;

enum class ScreenKind : uint8_t { Child, Dialog };

struct ScreenInfo {
  std::string class_name;
  std::string caption;
  ScreenKind kind = ScreenKind::Child;
  // The group of the menu in which it stands, "" for a dialog, which only others open, and for the home.
  std::string group;
  std::function<std::unique_ptr<Screen>(Application&)> create;

  // The screen at which everybody is when no other is in front. It needs no right.
  bool IsHome() const { return kind == ScreenKind::Child && group.empty(); }
};

}  // namespace orv
