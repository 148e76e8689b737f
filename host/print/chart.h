// A picture of a report as shapes, which each form draws with its own means.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/print/report.h"

namespace orv {

// The first two are for what is compared: they differ in lightness, too.
enum class Ink : uint8_t { Dark, Light, Text, Faint, Paper };

// Red, green, blue of an ink, "#rrggbb" as a number.
constexpr uint32_t ColourOf(Ink ink) {
  constexpr uint32_t kColours[] = {0x174a6e, 0xc9761b, 0x16212a, 0xdfe5e8, 0xffffff};
  return kColours[static_cast<std::size_t>(ink)];
}

struct Box {
  double x, y, width, height;
  Ink ink;
};
struct Stroke {
  std::vector<std::pair<double, double>> points;
  double width;
  Ink ink;
  bool dashed;
};
struct Dot {
  double x, y, radius;
  Ink ink;
};
// On its base line; `x` is its left end, its middle or its right end.
struct Caption {
  double x, y;
  std::string text;
  Align align;
};
using Shape = std::variant<Box, Stroke, Dot, Caption>;

// The shapes in the order in which they are drawn, y growing downwards, every text of the size `font`.
std::vector<Shape> Draw(const ReportPicture& picture, double width, double height, double font);

}  // namespace orv
