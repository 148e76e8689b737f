#include "bench/recording.h"

#include <utility>

#include "bench/measure.h"
#include "host/data/core.h"
#include "host/data/statement.h"

namespace orv::bench {
namespace {

bool recording = false;
std::vector<Sent> sent;
std::function<void()> fetched;

void Note(Sent::Kind kind, std::string_view sql, std::span<const Value> values) {
  if (recording) sent.push_back({kind, std::string(sql), {values.begin(), values.end()}});
}

}  // namespace

void StartRecording() {
  sent.clear();
  recording = true;
}

std::vector<Sent> StopRecording() {
  recording = false;
  return std::exchange(sent, {});
}

void WhenFetched(std::function<void()> told) { fetched = std::move(told); }

void SendBare(Attachment& db, const std::vector<Sent>& statements) {
  Nothing nothing;
  for (const Sent& sent : statements) {
    if (sent.kind == Sent::Kind::Commit) {
      db.CommitRetaining();
    } else if (sent.kind == Sent::Kind::Fetch) {
      Statement(db, sent.sql).Fetch(sent.values, nothing);
    } else {
      Statement(db, sent.sql).Execute(sent.values);
    }
  }
}

int64_t FetchBare(Attachment& db, const std::vector<Sent>& statements) {
  Nothing nothing;
  for (const Sent& sent : statements) {
    if (sent.kind == Sent::Kind::Fetch) Statement(db, sent.sql).Fetch(sent.values, nothing);
  }
  db.CommitRetaining();
  return nothing.rows;
}

// The linker leads calls of these members of Core here (--wrap), and back by the second name of each. The
// names are those of the members for the linker.
#define FETCH "_ZN3orv2fb4Core5FetchERNS0_8PreparedESt4spanIKNS_5ValueELm18446744073709551615EERNS_7RowSinkE"
#define EXECUTE "_ZN3orv2fb4Core7ExecuteERNS0_8PreparedESt4spanIKNS_5ValueELm18446744073709551615EEb"
#define COMMIT "_ZN3orv2fb4Core6CommitEv"

void RealFetch(fb::Core*, fb::Prepared&, std::span<const Value>, RowSink&) __asm__("__real_" FETCH);
int64_t RealExecute(fb::Core*, fb::Prepared&, std::span<const Value>, bool) __asm__("__real_" EXECUTE);
void RealCommit(fb::Core*) __asm__("__real_" COMMIT);

void NotedFetch(fb::Core*, fb::Prepared&, std::span<const Value>, RowSink&) __asm__("__wrap_" FETCH);
int64_t NotedExecute(fb::Core*, fb::Prepared&, std::span<const Value>, bool) __asm__("__wrap_" EXECUTE);
void NotedCommit(fb::Core*) __asm__("__wrap_" COMMIT);

void NotedFetch(fb::Core* core, fb::Prepared& statement, std::span<const Value> values, RowSink& sink) {
  Note(Sent::Kind::Fetch, statement.sql, values);
  RealFetch(core, statement, values, sink);
  if (fetched) fetched();
}

int64_t NotedExecute(fb::Core* core, fb::Prepared& statement, std::span<const Value> values, bool count) {
  Note(Sent::Kind::Execute, statement.sql, values);
  return RealExecute(core, statement, values, count);
}

void NotedCommit(fb::Core* core) {
  Note(Sent::Kind::Commit, "", {});
  RealCommit(core);
}

}  // namespace orv::bench
