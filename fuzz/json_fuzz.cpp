// What comes through the door: read and written back the same, or refused.
#include <cstdlib>
#include <string_view>

#include "desk/json.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  try {
    const orv::Json json = orv::Json::Parse({reinterpret_cast<const char*>(data), size});
    const std::string text = json.Text();
    if (orv::Json::Parse(text).Text() != text) std::abort();
  } catch (const orv::JsonError&) {
  }
  return 0;
}
