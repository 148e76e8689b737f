// A made-up house for trying the desk out: companies with two years of life, the same on every run.
#pragma once

#include <string>
#include <vector>

#include "toolkit/date.h"

namespace orv {

class Attachment;

struct DemoOptions {
  int scale = 1;      // 1 gives about 4,000 movements and 800 titles in the first company
  Date date;          // the day on which the two years end
  int companies = 2;  // 1 to 9; all but the first are a fifth of its size
  // Of the companies, as many as there are; without them "_001" and up.
  std::vector<std::string> suffixes = {};
};

// Makes the schema and fills it, in an empty database. Every rule that CheckData knows holds afterwards.
// Raises UserError for options out of range and for a database that isn't empty.
void MakeDemo(Attachment& db, const DemoOptions& options);

}  // namespace orv
