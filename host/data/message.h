// The engine's messages: rows that come out, parameters that go in.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "host/data/api.h"
#include "toolkit/database.h"

namespace orv::fb {

// One field of a message, as the engine lays it out.
struct Field {
  unsigned type = 0;  // Without the null bit.
  int scale = 0;
  int subtype = 0;
  unsigned length = 0;
  unsigned charset = 0;
  unsigned offset = 0;
  unsigned null_offset = 0;
};

// Where a blob is read from and written to.
struct BlobSource {
  Firebird::IAttachment* attachment = nullptr;
  Firebird::ITransaction* transaction = nullptr;
};

// The rows of a statement.
class RowReader {
 public:
  explicit RowReader(Firebird::IMessageMetadata* metadata);
  const std::vector<Column>& Columns() const { return columns_; }
  Firebird::IMessageMetadata* Metadata() const { return metadata_.get(); }
  unsigned char* Buffer() { return buffer_.data(); }
  // Turns the row in the buffer into values. Raises DatabaseError for a text of more than 1 MiB or bytes of
  // more than 8, RangeError for an amount beyond `Currency`.
  void Read(std::span<Value> row, const BlobSource& blobs) const;

 private:
  Ref<Firebird::IMessageMetadata> metadata_;
  std::vector<Field> fields_;
  std::vector<Column> columns_;
  std::vector<unsigned char> buffer_;
};

// The parameters of a statement.
class ParameterSet {
 public:
  explicit ParameterSet(Firebird::IMessageMetadata* metadata);
  std::size_t Count() const { return fields_.size(); }
  Firebird::IMessageMetadata* Metadata() const { return metadata_.get(); }
  unsigned char* Buffer() { return buffer_.data(); }
  // Puts the values into the buffer, each converted to what its place takes. Raises ConversionError,
  // RangeError, or DatabaseError for a text longer than the field.
  void Bind(std::span<const Value> values, const BlobSource& blobs);

 private:
  Ref<Firebird::IMessageMetadata> metadata_;
  std::vector<Field> fields_;
  std::vector<unsigned char> buffer_;
};

}  // namespace orv::fb
