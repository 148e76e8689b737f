// A working set without its filter, for a block.
#pragma once

#include <cstdint>

#include "toolkit/client_dataset.h"

namespace orv {

// A set is whole for a block, whatever part of it is shown; after it the user is back at his row.
class Inteiro {
 public:
  explicit Inteiro(TClientDataSet& set) : set_(set), filtrado_(!set.FilterText().empty()) {
    set_.SetFiltered(false);
    Volta(set_.RecNo());
  }
  ~Inteiro() {
    set_.SetRecNo(volta_);
    set_.SetFiltered(filtrado_);
  }
  Inteiro(const Inteiro&) = delete;
  Inteiro& operator=(const Inteiro&) = delete;
  // Another row to come back to, from 1.
  void Volta(int64_t linha) { volta_ = linha; }

 private:
  TClientDataSet& set_;
  const ControlsHold hold_{set_};
  bool filtrado_;
  int64_t volta_ = 0;
};

}  // namespace orv
