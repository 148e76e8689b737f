// A database of its own in a temporary folder for each test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/desk_test.h"

namespace orv {

class DataTest : public testing::Test {
 protected:
  std::string Text(const std::string& sql) { return database->Scalar(sql).Neutral(); }
  int64_t Count(const std::string& table) {
    return database->Scalar("SELECT COUNT(*) FROM " + table).AsInteger();
  }

  test::TempDatabase temp;
  const std::filesystem::path& folder = temp.folder;
  const std::string& file = temp.file;
  std::unique_ptr<Attachment>& database = temp.db;
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
