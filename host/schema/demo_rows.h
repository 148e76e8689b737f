// Writes a company's rows table by table on the fast path.
#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "toolkit/value.h"

namespace orv {

class Attachment;

namespace demo {

struct Field {
  const char* column;
  Value value;
};

class Rows {
 public:
  Rows(Attachment& db, std::string emp_pat);
  ~Rows();
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  // A row of the company's table. All rows of one table name the same columns in the same order.
  void Add(const char* table, std::initializer_list<Field> fields);

  // Writes what is still held back.
  void Close();

 private:
  struct Table;
  Attachment& db_;
  std::string emp_pat_;
  std::map<std::string_view, std::unique_ptr<Table>> tables_;
};

}  // namespace demo
}  // namespace orv
