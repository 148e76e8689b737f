// What comes in and goes out by day and the balance after it, as a chart beside a report's rows. Of many days
// each point is a month, of many months a year.
#pragma once

#include <map>
#include <string>

#include "toolkit/client_dataset.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"
#include "toolkit/grid.h"

namespace orv {

class DailyChart {
 public:
  // The screen places `Picture` in its layout and adds `Rows` to its sets, under the name "Tb" + `name`.
  DailyChart(Form& form, const std::string& name, std::string caption);

  void Clear();
  // Amounts of a row, both without a sign. A row without a day isn't counted.
  void Add(Date day, Currency in, Currency out);
  // Draws what was added, after this balance.
  void Show(Currency before);

  TClientDataSet Rows;
  Chart Picture;

 private:
  struct Sums {
    Currency in, out;
  };
  std::map<Date, Sums> days_;
};

}  // namespace orv
