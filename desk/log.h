// The desk's log: one line of JSON an event, without passwords and without the texts of amounts.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

#include "desk/json.h"

namespace orv {

// A text for the log in which digits and what stands in single quotes are taken out, so that no amount and no
// value of a statement is left.
std::string Masked(std::string_view text);

class Log {
 public:
  // Appends to a file; "" writes to standard error. Raises UserError when the file can't be opened.
  explicit Log(const std::string& file = "");
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  // `fields` are members beside "time" and "event".
  void Write(std::string_view event, Json::Object fields = {});

 private:
  std::mutex mutex_;
  std::FILE* file_;
};

}  // namespace orv
