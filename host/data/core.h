// An attachment's inside: its transaction, its prepared statements, the way statements run.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/data/engine.h"
#include "host/data/fault.h"
#include "host/data/message.h"

namespace orv::fb {

// A prepared statement with the buffers of its rows and parameters.
class Prepared {
 public:
  Prepared(Firebird::IAttachment* attachment, Firebird::ITransaction* transaction, std::string_view sql);
  ~Prepared();
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;

  const std::string sql;
  Firebird::IStatement* handle = nullptr;
  // isc_info_sql_stmt_...
  unsigned type = 0;
  bool has_cursor = false;
  // It certainly writes nothing.
  bool only_reads = false;
  // A cursor of it is open: it can't run again until that ends.
  bool busy = false;
  // Its cursor could not be closed: it never runs again.
  bool stuck = false;
  // Columns that come out; none for a statement that gives nothing.
  std::unique_ptr<RowReader> rows;
  std::size_t parameter_count = 0;
  // Made when values are first given.
  ParameterSet& Parameters();

 private:
  std::unique_ptr<ParameterSet> parameters_;
};

// The latest statements by their exact text.
class StatementCache {
 public:
  static constexpr std::size_t kStatements = 300;
  std::shared_ptr<Prepared> Find(std::string_view sql);
  void Keep(std::shared_ptr<Prepared> statement);
  void Clear();
  std::size_t Size() const { return latest_.size(); }

 private:
  // A longer text is seldom sent twice, and keeps much memory.
  static constexpr std::size_t kLongest = 65536;
  std::list<std::shared_ptr<Prepared>> latest_;
  std::unordered_map<std::string_view, std::list<std::shared_ptr<Prepared>>::iterator> by_text_;
};

class Core {
 public:
  // Takes the attachment over.
  Core(Firebird::IAttachment* attachment, std::string database);
  ~Core();
  Core(const Core&) = delete;
  Core& operator=(const Core&) = delete;

  std::shared_ptr<Prepared> Prepare(std::string_view sql);
  void Fetch(Prepared& statement, std::span<const Value> values, RowSink& sink);
  // With `count` false, the number of rows is not asked for and 0 comes back.
  int64_t Execute(Prepared& statement, std::span<const Value> values, bool count = true);
  void ExecuteDdl(std::string_view sql);

  void StartSnapshot();
  void Commit();
  void Rollback();
  void BeginAction();
  void EndAction();
  void RollbackAction();
  void LetGo();
  void Cancel();

  bool Pending() const { return pending_; }
  StatementCache& Cache() { return cache_; }
  std::chrono::milliseconds conflict_time{4000};
  Firebird::IAttachment* Handle() { return attachment_; }

 private:
  // Marks the time in which `Cancel` reaches a running statement.
  class Running {
   public:
    explicit Running(Core& core);
    ~Running();

   private:
    Core& core_;
  };

  void Start();
  void Start(std::span<const unsigned char> kind);
  // Where a statement that only reads runs: in the transaction that has writes, once there is one.
  Firebird::ITransaction* Reader();
  void EndReader();
  // The engine goes on writing into a file that has lost its name: what it keeps would be nowhere.
  void RequireFile() const;
  // Ends the transaction that writes, or only what it wrote where a cursor is open.
  void EndWriter(bool keep);
  void End(bool keep);
  void Savepoint(std::string_view verb, std::size_t depth);
  void Retry(std::string_view sql, const std::function<void(Status*)>& attempt);
  void ThrowIfCancelled(std::string_view sql) const;

  Firebird::IAttachment* attachment_;
  const std::string database_;
  // An embedded database's file, as its device and its number there tell it.
  std::optional<std::pair<dev_t, ino_t>> file_;
  Firebird::ITransaction* transaction_ = nullptr;
  // A transaction for reading only holds no old versions back, so that it may stay open, and each start of
  // one writes to the disk.
  Firebird::ITransaction* reader_ = nullptr;
  StatementCache cache_;
  bool pending_ = false;
  int open_cursors_ = 0;
  // An entry for each action that is open: whether a savepoint stands at its beginning. Without one its
  // beginning is the transaction's.
  std::vector<bool> actions_;

  std::mutex cancel_mutex_;
  int running_ = 0;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace orv::fb
