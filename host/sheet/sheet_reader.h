// Reads spreadsheets (.xlsx) row by row.
#pragma once

#include <string_view>

#include "frame/sheet.h"

namespace orv {

class SheetReader : public ISheets {
 public:
  void Read(const InputFile& file, SheetSink& rows) override;
  void Read(std::string_view bytes, SheetSink& rows) override;
};

}  // namespace orv
