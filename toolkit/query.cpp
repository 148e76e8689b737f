#include "toolkit/query.h"

#include "toolkit/text.h"

namespace orv {

std::string SqlLines::Text() const { return Join(lines_, "\n"); }

FieldType FieldTypeOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::Integer:
      return FieldType::Integer;
    case ValueKind::Float:
      return FieldType::Float;
    case ValueKind::Currency:
      return FieldType::Currency;
    case ValueKind::Date:
      return FieldType::Date;
    case ValueKind::DateTime:
      return FieldType::DateTime;
    default:
      return FieldType::String;
  }
}

void TOrvQuery::Open() {
  class Sink : public RowSink {
   public:
    explicit Sink(TOrvQuery& query) : query_(query) {}
    void Columns(const std::vector<Column>& columns) override {
      for (const Column& column : columns) {
        // Two columns of one name: the second is reached as NAME_1.
        std::string name = column.name;
        for (int i = 1; query_.FindField(name) != nullptr; ++i) name = column.name + "_" + std::to_string(i);
        query_.AddField(std::move(name), FieldTypeOf(column.kind), column.size);
      }
      query_.OpenRows();
    }
    bool Row(std::span<Value> values) override {
      query_.TakeRow(values);
      return true;
    }

   private:
    TOrvQuery& query_;
  };

  Close();
  ClearRunTimeFields();
  Sink sink(*this);
  try {
    database_.Fetch(SQL.Text(), sink);
  } catch (...) {
    // It was never open: nobody is told that it closes.
    DropRows();
    SetState(DataSetState::Inactive);
    throw;
  }
  Opened();
}

int64_t TOrvQuery::ExecSQL() {
  Close();
  return database_.Execute(SQL.Text());
}

}  // namespace orv
