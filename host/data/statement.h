// Statements with parameters, for the host's own work.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/data/attachment.h"

namespace orv {

namespace fb {
class Prepared;
}

// A statement whose `?` take values in their order. It is prepared when first run and kept among the
// attachment's prepared statements. Values are converted to what their place takes: a text into a number or a
// date in the Brazilian form. Raises DatabaseError, ConversionError, RangeError.
class Statement {
 public:
  Statement(Attachment& attachment, std::string sql) : attachment_(attachment), sql_(std::move(sql)) {}

  // The number of rows that it touched.
  int64_t Execute(std::span<const Value> values);
  int64_t Execute(std::initializer_list<Value> values) {
    return Execute(std::span(values.begin(), values.size()));
  }
  void Fetch(std::span<const Value> values, RowSink& sink);
  void Fetch(std::initializer_list<Value> values, RowSink& sink) {
    Fetch(std::span(values.begin(), values.size()), sink);
  }
  // The first column of the first row; null when there is none.
  Value Scalar(std::initializer_list<Value> values);

 private:
  Attachment& attachment_;
  const std::string sql_;
};

// Many rows into one table, in the attachment's transaction: the caller commits. Between the first row and
// the last no change of schema may run.
class BulkInsert {
 public:
  BulkInsert(Attachment& attachment, std::string_view table, const std::vector<std::string>& columns);
  ~BulkInsert();
  // A value for each column. The span is only read during the call.
  void Add(std::span<const Value> values);
  void Add(std::initializer_list<Value> values) { Add(std::span(values.begin(), values.size())); }
  // The number of rows added. All of them are in the table.
  int64_t Finish();

 private:
  Attachment& attachment_;
  std::shared_ptr<fb::Prepared> statement_;
  int64_t rows_ = 0;
};

}  // namespace orv
