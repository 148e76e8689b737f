// A file that comes into being whole, for its owner only, and never over another one.
#pragma once

#include <string>

namespace orv {

// Gives a path in a private folder beside `target` to write to. `Keep` moves the finished file to its place;
// without it everything goes.
class NewFile {
 public:
  // Raises DatabaseError when `target` exists or its folder can't be written.
  explicit NewFile(std::string target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  const std::string& Path() const { return path_; }
  // Raises DatabaseError when `target` has appeared meanwhile.
  void Keep();

 private:
  std::string target_;
  std::string folder_;
  std::string path_;
};

}  // namespace orv
