#include "host/data/statement.h"

#include <algorithm>
#include <utility>

#include "host/data/core.h"
#include "toolkit/text.h"

namespace orv {
namespace {

class FirstValue : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    value = std::move(values[0]);
    return false;
  }
  Value value;
};

// A name that needs no quotes. Tables and columns are ours: another one is a mistake of this program.
const std::string& Plain(const std::string& name) {
  ORV_ASSERT(!name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '$';
  }));
  return name;
}

std::string InsertText(const std::string& table, const std::vector<std::string>& columns) {
  std::string names, places;
  for (const std::string& column : columns) {
    names += (names.empty() ? "" : ", ") + Plain(column);
    places += places.empty() ? "?" : ", ?";
  }
  return "INSERT INTO " + Plain(table) + " (" + names + ") VALUES (" + places + ")";
}

}  // namespace

int64_t Statement::Execute(std::span<const Value> values) {
  const std::shared_ptr<fb::Prepared> statement = attachment_.core_->Prepare(sql_);
  return attachment_.core_->Execute(*statement, values);
}

void Statement::Fetch(std::span<const Value> values, RowSink& sink) {
  const std::shared_ptr<fb::Prepared> statement = attachment_.core_->Prepare(sql_);
  attachment_.core_->Fetch(*statement, values, sink);
}

Value Statement::Scalar(std::initializer_list<Value> values) {
  FirstValue first;
  Fetch(values, first);
  return std::move(first.value);
}

BulkInsert::BulkInsert(Attachment& attachment, std::string_view table,
                       const std::vector<std::string>& columns)
    : attachment_(attachment),
      statement_(attachment.core_->Prepare(InsertText(std::string(table), columns))) {}

BulkInsert::~BulkInsert() = default;

void BulkInsert::Add(std::span<const Value> values) {
  attachment_.core_->Execute(*statement_, values, false);
  ++rows_;
}

int64_t BulkInsert::Finish() { return std::exchange(rows_, 0); }

}  // namespace orv
