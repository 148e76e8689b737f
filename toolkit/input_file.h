// A file that is open for reading: it stays the one that was opened, whatever becomes of its name.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace orv {

class InputFile {
 public:
  // Opens a regular file, `path` taken from an open folder (AT_FDCWD for the process's own). Nothing for
  // anything else: a folder, a pipe, a device, what may not be read, and a link unless `links`.
  static std::optional<InputFile> Open(int folder, const std::string& path, bool links);
  InputFile(InputFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  ~InputFile();

  // Raises UserError when it can't be read or is larger than `most` bytes.
  std::string Bytes(std::size_t most) const;

 private:
  explicit InputFile(int descriptor) : descriptor_(descriptor) {}

  int descriptor_;
};

}  // namespace orv
