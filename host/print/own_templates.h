// The templates that come with the desk. The build makes the table from the files in templates/.
#pragma once

#include <span>
#include <string_view>

namespace orv {

struct OwnTemplate {
  std::string_view identifier;
  std::string_view text;
};

extern const std::span<const OwnTemplate> kOwnTemplates;

}  // namespace orv
