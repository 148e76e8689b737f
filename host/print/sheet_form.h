// Printed forms: texts at places of a sheet, as on a bank's cheque.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/print/report.h"

namespace orv {

// A text as it stands on the sheet: its lines, and by how much they are smaller than asked for, 1 for not.
struct FittedText {
  std::vector<std::string> lines;
  double scale = 1;
};

// Parts a text at its blanks into at most its lines. Where it is too long for them it becomes smaller, down
// to half; what is longer still stands in the last line. `width` tells that of a text, in millimetres.
FittedText Fit(const PlacedText& placed, const std::function<double(std::string_view)>& width);

// The sheets as a browser and a line printer of 10 characters and 6 lines an inch show them.
std::string SheetsHtml(const Report& report);
std::string SheetsText(const Report& report);

}  // namespace orv
