// The engine's services: work on a whole database, in this process or at its server.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/data/api.h"
#include "host/data/engine.h"

namespace orv::fb {

// One task at a time.
class Service {
 public:
  explicit Service(const DatabaseAddress& address);
  ~Service();
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  void Start(const ParameterBlock& task);
  // Runs the task to its end. `output` takes what it writes; `input` gives up to so many bytes of what it
  // reads, none at the end.
  void Run(const std::function<void(std::string_view)>& output,
           const std::function<std::string_view(std::size_t)>& input = {});

 private:
  const std::string database_;
  Firebird::IService* service_ = nullptr;
};

// What the server calls the database: the address without the server.
std::string NameAtServer(const DatabaseAddress& address);

}  // namespace orv::fb
