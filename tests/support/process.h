// The program orvcc as a process of its own, for what can only be seen from outside.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "desk/json.h"

namespace orv::test {

struct RunOptions {
  std::string in;                          // standard input
  std::map<std::string, std::string> env;  // beside the test's own; ORVCC_DATABASE is only what stands here
  int64_t file_limit = -1;                 // no file may grow beyond this many bytes, as on a full disk
  bool unprivileged = false;               // as a user whom file permissions bind
};

struct Finished {
  int status = 0;  // the exit status, or the signal's number negated
  std::string out, err;
};

// Runs orvcc to its end.
Finished RunOrvcc(const std::vector<std::string>& arguments, const RunOptions& options = {});

// A running "orvcc drive".
class DriveProcess {
 public:
  explicit DriveProcess(const std::filesystem::path& database);
  ~DriveProcess();
  DriveProcess(const DriveProcess&) = delete;
  DriveProcess& operator=(const DriveProcess&) = delete;

  // Sends an object and waits for the "idle" or "waiting" that ends its answer; all that came.
  std::vector<Json> Do(const Json& in);
  // Sends an object and doesn't wait.
  void Send(const Json& in);
  // Ends the process at once, and waits until it is gone.
  void Kill();

 private:
  pid_t pid_ = -1;
  int to_ = -1;
  int from_ = -1;
  std::string buffer_;
};

}  // namespace orv::test
