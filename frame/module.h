// The entry points of a module of screens, a shared library that is found and loaded by name.
#pragma once

#include <string>
#include <string_view>

namespace orv {

// What a module tells of itself.
struct PackageInfo {
  const char* name;
  const char* description;
  const char* const* units;  // names of its units, ended by a null pointer
};

// A loaded module. Loading runs `Initialize`, which registers the screen classes and nothing else; unloading
// runs `Finalize`. Loads of the same module nest.
class Module {
 public:
  // Finds "name.so" beside the library of the frame or in `ORVCC_MODULES`. Raises UserError when it isn't
  // there or lacks an entry point.
  explicit Module(std::string_view name);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  const PackageInfo& Info() const { return *info_; }

 private:
  void* handle_ = nullptr;
  void (*finalize_)() = nullptr;
  const PackageInfo* info_ = nullptr;
};

}  // namespace orv

// Marks what a module lets others see.
#define ORV_EXPORT __attribute__((visibility("default")))
