// A session's connection to the company's database.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "toolkit/database.h"

namespace orv {

namespace fb {
class Core;
}

// One attachment with one transaction: read committed with record versions, started when first needed. What
// only reads before the first write does so in one that can't write and holds no versions back. One
// thread at a time; only `Cancel` may come from another. A row that another attachment is changing is tried
// again for a while (`SetConflictTime`), then DatabaseError of kind Conflict.
//
// The engine keeps a file's cache while somebody is attached: a program holds one idle Attachment for as long
// as it runs, so that the others open in a millisecond.
class Attachment : public TOrvDatabase {
 public:
  // Makes an empty database (UTF-8, dialect 3, forced writes), at a file readable by its owner only or at a
  // server, and opens it. `page_size` in bytes, 8192 or 16384. Refuses an existing file.
  static std::unique_ptr<Attachment> Create(std::string_view database, int page_size = 16384);
  // Opens a file ("/data/x.fdb") or a server's database ("host:alias").
  static std::unique_ptr<Attachment> Open(std::string_view database);
  // What isn't committed is undone.
  ~Attachment() override;

  void Fetch(std::string_view sql, RowSink& sink) override;
  // Refuses a change of schema and statements that end a transaction.
  int64_t Execute(std::string_view sql) override;
  // By one prepared statement.
  void InsertRows(const std::string& table, const std::vector<std::string>& columns,
                  const RowSource& next) override;
  // A change of schema: commits what was written, runs the statement, commits it. Prepared statements are
  // forgotten.
  void ExecuteDdl(std::string_view sql);

  // Until the next commit or rollback all statements see the database as it is now, beside what they write
  // themselves; a row that another one has changed since can't be changed. Nothing may be uncommitted.
  void StartSnapshot();
  void CommitRetaining() override;
  // Undoes everything since the last commit.
  void Rollback();
  // Something was written since the last commit.
  bool HasPendingWrites() const;

  // From here on `RollbackAction` undoes: all writes since, but none that a commit inside the action has made
  // final. Actions nest; each ends by `EndAction` or `RollbackAction`.
  void BeginAction();
  // Ends an action whose writes stay as they are, committed or not. The outermost one lets go of a
  // transaction without writes.
  void EndAction();
  void RollbackAction();
  // Ends a transaction that was to write and hasn't, also amid an action that waits for its user: kept open
  // it would hold old versions of rows back.
  void LetGo();

  // From any thread: the statement that is running, a wait for another user's row included, fails with
  // DatabaseError of kind Cancelled. Nothing happens when none is running.
  void Cancel();

  void SetConflictTime(std::chrono::milliseconds time);
  // Who answers `LocalName`; without it a table's name is its own.
  void SetLocalName(std::function<std::string(std::string_view)> local_name);
  std::string LocalName(std::string_view table) const override;

  // The address as given, a file's path absolute.
  const std::string& Database() const { return database_; }
  // Statements kept prepared.
  std::size_t CachedStatements() const;

 private:
  friend class Statement;
  friend class BulkInsert;
  Attachment(std::string database, std::unique_ptr<fb::Core> core);

  std::string database_;
  std::unique_ptr<fb::Core> core_;
  std::function<std::string(std::string_view)> local_name_;
};

}  // namespace orv
