#include "frame/module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

#include "toolkit/error.h"

namespace orv {
namespace {

// The folder of this very library: the module stands beside it.
std::filesystem::path OwnFolder() {
  Dl_info info{};
  static const int anchor = 0;
  if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) return ".";
  return std::filesystem::absolute(info.dli_fname).parent_path();
}

}  // namespace

Module::Module(std::string_view name) {
  // A name is a file's name, never a path.
  if (name.empty() || name.find_first_of("/\\.") != std::string_view::npos) {
    throw UserError("\"" + std::string(name) + "\" não é o nome de um módulo.");
  }
  const char* folder = std::getenv("ORVCC_MODULES");
  const std::filesystem::path file =
      (folder != nullptr ? std::filesystem::path(folder) : OwnFolder()) / (std::string(name) + ".so");
  handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* why = dlerror();
    throw UserError("O módulo " + std::string(name) +
                    " não pôde ser carregado: " + (why ? why : file.string()));
  }
  const auto initialize = reinterpret_cast<void (*)()>(dlsym(handle_, "Initialize"));
  const auto table = reinterpret_cast<const PackageInfo* (*)()>(dlsym(handle_, "GetPackageInfoTable"));
  finalize_ = reinterpret_cast<void (*)()>(dlsym(handle_, "Finalize"));
  if (initialize == nullptr || finalize_ == nullptr || table == nullptr) {
    dlclose(handle_);
    throw UserError("O arquivo " + file.string() + " não é um módulo de telas.");
  }
  info_ = table();
  initialize();
}

Module::~Module() {
  finalize_();
  // The library itself stays mapped: each session's variables of the screens live in its thread.
}

}  // namespace orv
