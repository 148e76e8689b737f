// What comes through the door: refused, or read and written as a text that is read again.
#include <string_view>

#include "desk/json.h"
#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  try {
    const orv::Json json = orv::Json::Parse({reinterpret_cast<const char*>(data), size});
    // Floats may lose their last digit on the way; what kind of value it is stays.
    const orv::Json again = orv::Json::Parse(json.Text());
    Require(again.IsObject() == json.IsObject() && again.IsArray() == json.IsArray());
  } catch (const orv::JsonError&) {
  }
  return 0;
}
