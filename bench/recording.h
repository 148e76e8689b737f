// Notes the statements that connections of this process run, with their values and the commits between them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/data/attachment.h"
#include "toolkit/value.h"

namespace orv::bench {

struct Sent {
  enum class Kind { Fetch, Execute, Commit } kind;
  std::string sql;
  std::vector<Value> values;
};

// Noting starts with an empty list. Used while no other thread runs a statement.
void StartRecording();
std::vector<Sent> StopRecording();

// Called at the end of each fetch; null for nothing.
void WhenFetched(std::function<void()> told);

// Runs the same statements and commits, and nothing else.
void SendBare(Attachment& db, const std::vector<Sent>& statements);
// The fetches alone, whose rows are dropped; how many rows came.
int64_t FetchBare(Attachment& db, const std::vector<Sent>& statements);

}  // namespace orv::bench
