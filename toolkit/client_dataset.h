// The working set: a table in memory that a screen fills, changes, orders and filters.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/memory_dataset.h"

namespace orv {

class TClientDataSet;

// Fields that are laid down at run time, before the set is created.
class FieldDefs {
 public:
  explicit FieldDefs(TClientDataSet& set) : set_(set) {}
  // Raises UserError for a name that is there already, or while the set is open.
  void Add(std::string name, FieldType type, int size = 0);
  // Drops all fields laid down at run time.
  void Clear();

 private:
  TClientDataSet& set_;
};

// Fixed fields are members of a subclass:
//
//   struct TbContas : TClientDataSet {
//     using TClientDataSet::TClientDataSet;
//     Field Contas{*this, "Contas", FieldType::String, 15};
//   };
class TClientDataSet : public MemoryDataSet {
 public:
  explicit TClientDataSet(std::string name) : MemoryDataSet(std::move(name)) {}

  orv::FieldDefs FieldDefs{*this};
  // Makes the set ready for rows, empty; raises UserError for a set without fields.
  void CreateDataSet();
  // The same as CreateDataSet for a set that was closed.
  void Open() override { CreateDataSet(); }
  // Drops all rows; the set stays open with its order and filter.
  void EmptyDataSet();
  bool CanModify() const override { return true; }

 private:
  friend class orv::FieldDefs;
};

}  // namespace orv
