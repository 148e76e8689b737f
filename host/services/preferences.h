// What a user set for himself, by the path of its name; under no login what all of them have.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "toolkit/database.h"

namespace orv {

class Preferences {
 public:
  Preferences(TOrvDatabase& db, std::string login) : db_(db), login_(std::move(login)) {}

  // "" when it isn't set.
  std::string Get(std::string_view path);
  // What was ever set below a path's beginning, by the rest of the path; "" for what was taken back.
  std::vector<std::pair<std::string, std::string>> List(std::string_view beginning);
  // `fallback` also for a text that isn't a number.
  int GetNumber(std::string_view path, int fallback);
  // The caller commits. Raises UserError for a path or a value that is too long.
  void Set(std::string_view path, std::string_view value);

  // Takes back what was set under a path's beginning; the caller commits. False when there was nothing.
  bool Remove(std::string_view beginning);

  // The path of a setting in a section of a key: "Venda/Parametros/PortaImpCheque".
  static std::string Path(std::string_view key, std::string_view section, std::string_view name);

 private:
  TOrvDatabase& db_;
  std::string login_;
};

}  // namespace orv
