#include "toolkit/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "toolkit/error.h"

namespace orv {
namespace {

constexpr const char* kUnreadable = "O arquivo não pôde ser lido.";

std::string TooLarge(std::size_t most) {
  return "O arquivo é grande demais: o limite é de " + std::to_string(most >> 20) + " MB.";
}

}  // namespace

std::optional<InputFile> InputFile::Open(int folder, const std::string& path, bool links) {
  // A pipe in the file's place must not hold the session.
  const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (links ? 0 : O_NOFOLLOW);
  InputFile file(::openat(folder, path.c_str(), flags));
  struct stat info {};
  if (file.descriptor_ < 0 || ::fstat(file.descriptor_, &info) != 0 || !S_ISREG(info.st_mode))
    return std::nullopt;
  return file;
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::string InputFile::Bytes(std::size_t most) const {
  struct stat info {};
  if (::fstat(descriptor_, &info) != 0) throw UserError(kUnreadable);
  if (info.st_size > static_cast<off_t>(most)) throw UserError(TooLarge(most));

  // One byte more than it had shows a file that grows.
  std::string bytes(static_cast<std::size_t>(info.st_size) + 1, '\0');
  std::size_t have = 0;
  while (have < bytes.size()) {
    const ssize_t got =
        ::pread(descriptor_, bytes.data() + have, bytes.size() - have, static_cast<off_t>(have));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw UserError(kUnreadable);
    if (got == 0) break;
    have += static_cast<std::size_t>(got);
  }
  bytes.resize(have < bytes.size() ? have : bytes.size() - 1);
  return bytes;
}

}  // namespace orv
