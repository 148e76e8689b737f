// A database of its own in a temporary folder for each test.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/data/attachment.h"

namespace orv {

class DataTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "orv-data-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    file = (folder / "empresa.fdb").string();
    database = Attachment::Create(file, 8192);
  }
  void TearDown() override {
    database.reset();
    std::filesystem::remove_all(folder);
  }

  std::string Text(const std::string& sql) { return database->Scalar(sql).Neutral(); }
  int64_t Count(const std::string& table) {
    return database->Scalar("SELECT COUNT(*) FROM " + table).AsInteger();
  }

  std::filesystem::path folder;
  std::string file;
  std::unique_ptr<Attachment> database;
};

// The error that an action ends with; fails the test when it ends well.
template <class Action>
DatabaseError ErrorOf(Action action) {
  try {
    action();
  } catch (const DatabaseError& error) {
    return error;
  }
  ADD_FAILURE() << "no error";
  return DatabaseError(DatabaseError::Kind::Other, 0, "", "");
}

using Kind = DatabaseError::Kind;

}  // namespace orv
