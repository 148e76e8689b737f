// The files of a session's user: what he gave to the desk, what stands in his own folder, and how much of the
// disk his uploads may take.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/input_file.h"

namespace orv {

// What each user's uploads may take. From any thread; outlived by the shares that it gave.
class UploadSpace {
 public:
  // Given back when the last copy goes.
  using Share = std::shared_ptr<void>;

  explicit UploadSpace(std::size_t most);
  // Raises UserError when so many bytes more are too much.
  Share Take(const std::string& user, std::size_t bytes) const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

// A file given to the desk, on the disk under a name that says nothing. It goes with this object.
class Upload {
 public:
  // Raises UserError when it can't be made.
  Upload(const std::filesystem::path& folder, UploadSpace::Share share);
  Upload(Upload&& other) noexcept;
  Upload& operator=(Upload&& other) noexcept;
  ~Upload();

  // Adds to it. Raises UserError when that can't be.
  void Write(std::string_view piece);
  std::optional<InputFile> Open() const;

 private:
  void Remove();

  std::string path_;
  int descriptor_;
  UploadSpace::Share share_;
};

class UserFiles {
 public:
  // `folder` is the user's own, which need not be there. With `machine` a path from the root on reaches the
  // machine's files, too.
  UserFiles(std::filesystem::path folder, bool machine) : folder_(std::move(folder)), machine_(machine) {}

  // Takes a file in under the name that the user gave it, in place of an earlier one of that name; the path
  // by which it is opened. Raises UserError for a name that is none.
  std::string Keep(const std::string& name, Upload upload);
  // --- By a path as typed. There is nothing but what was given and, without links and "..", what is below
  // the own folder.
  std::optional<InputFile> Open(std::string_view path) const;
  bool IsFolder(std::string_view path) const;
  // Removes what was given under that path, and nothing else.
  void Forget(std::string_view path);

 private:
  std::filesystem::path folder_;
  bool machine_;
  std::map<std::string, Upload, std::less<>> given_;
};

}  // namespace orv
