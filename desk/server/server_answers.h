// What the desk answers to a request, and what it takes out of one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "desk/http/http_types.h"
#include "desk/json.h"

namespace orv {

// An object with "text".
HttpResponse Told(int status, std::string_view text);
HttpResponse Given(const Json& json);

HttpResponse TooBusy();
HttpResponse NoDatabase();
HttpResponse NotLoggedIn();

// A member that is a text of so many bytes at most, nothing otherwise.
std::optional<std::string> Member(const Json& json, std::string_view name, std::size_t most);

}  // namespace orv
