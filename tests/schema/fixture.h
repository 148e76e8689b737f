// A database of the test's own in a temporary folder.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "host/data/attachment.h"

namespace orv::test {

class TempDatabase {
 public:
  TempDatabase() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orv_schema_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    db_ = Attachment::Create((folder_ / "house.fdb").string());
  }
  ~TempDatabase() {
    db_.reset();
    std::filesystem::remove_all(folder_);
  }
  TempDatabase(const TempDatabase&) = delete;
  TempDatabase& operator=(const TempDatabase&) = delete;

  Attachment& operator*() { return *db_; }
  Attachment* operator->() { return db_.get(); }

 private:
  std::filesystem::path folder_;
  std::unique_ptr<Attachment> db_;
};

// The text of the UserError that `action` raises, empty when it raises none.
template <class Action>
std::string Refusal(Action action) {
  try {
    action();
  } catch (const UserError& error) {
    return error.what();
  }
  return {};
}

}  // namespace orv::test
