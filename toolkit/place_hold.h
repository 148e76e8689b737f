// A walk through a set that leaves the user where he stood.
#pragma once

#include "toolkit/dataset.h"

namespace orv {

// Keeps a set's cursor at its place for a block, as far as there are rows; its displays hold still.
class PlaceHold {
 public:
  explicit PlaceHold(DataSet& set) : set_(set), hold_(set) {
    set.PostIfEditing();
    place_ = set.RecNo();
  }
  ~PlaceHold() {
    if (place_ > 0 && place_ <= set_.RecordCount()) set_.SetRecNo(place_);
  }
  PlaceHold(const PlaceHold&) = delete;
  PlaceHold& operator=(const PlaceHold&) = delete;

 private:
  DataSet& set_;
  ControlsHold hold_;
  int64_t place_ = 0;
};

}  // namespace orv
