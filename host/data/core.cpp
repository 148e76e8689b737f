#include "host/data/core.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "toolkit/text.h"

namespace orv::fb {
namespace {

constexpr unsigned kDialect = 3;
constexpr std::chrono::milliseconds kConflictPause{50};
constexpr unsigned char kTransaction[] = {isc_tpb_version3, isc_tpb_write, isc_tpb_read_committed,
                                          isc_tpb_rec_version, isc_tpb_nowait};
constexpr unsigned char kSnapshot[] = {isc_tpb_version3, isc_tpb_write, isc_tpb_concurrency, isc_tpb_nowait};
constexpr unsigned char kReader[] = {isc_tpb_version3, isc_tpb_read, isc_tpb_read_committed,
                                     isc_tpb_rec_version, isc_tpb_nowait};

bool Changes(unsigned type) {
  return type == isc_info_sql_stmt_insert || type == isc_info_sql_stmt_update ||
         type == isc_info_sql_stmt_delete;
}

// A block of the engine's own language gives rows too, and may write.
bool BeginsAsQuery(std::string_view sql) {
  const std::string word = Upper(Trim(sql).substr(0, 6));
  return word == "SELECT" || word.starts_with("WITH");
}

// What would end the transaction, or change the schema, behind the session's back.
bool Forbidden(unsigned type) {
  return type == isc_info_sql_stmt_ddl || type == isc_info_sql_stmt_start_trans ||
         type == isc_info_sql_stmt_commit || type == isc_info_sql_stmt_rollback;
}

DatabaseError Misuse(const char* what, std::string_view sql) {
  return DatabaseError(DatabaseError::Kind::Other, 0,
                       "O sistema enviou um comando inválido ao banco de dados.",
                       std::string(what) + "\n" + CleanUtf8(CutChars(sql, 4000)));
}

}  // namespace

Prepared::Prepared(Firebird::IAttachment* attachment, Firebird::ITransaction* transaction,
                   std::string_view text)
    : sql(text) {
  // A length of 0 would make the engine look for a terminator, and find it: the empty statement stays one.
  Call call;
  handle = attachment->prepare(call(), transaction, static_cast<unsigned>(sql.size()), sql.c_str(), kDialect,
                               Firebird::IStatement::PREPARE_PREFETCH_METADATA);
  Check(call, sql);
  try {
    type = handle->getType(call());
    Check(call, sql);
    has_cursor = (handle->getFlags(call()) & Firebird::IStatement::FLAG_HAS_CURSOR) != 0;
    Check(call, sql);
    only_reads = has_cursor && type == isc_info_sql_stmt_select && BeginsAsQuery(sql);
    Ref<Firebird::IMessageMetadata> out(handle->getOutputMetadata(call()));
    Check(call, sql);
    if (out && out->getCount(call()) > 0) rows = std::make_unique<RowReader>(out.release());
    Ref<Firebird::IMessageMetadata> in(handle->getInputMetadata(call()));
    Check(call, sql);
    if (in) parameter_count = in->getCount(call());
    Check(call, sql);
  } catch (...) {
    handle->release();
    throw;
  }
}

Prepared::~Prepared() {
  Call call;
  handle->free(call());
  if (call.Failed()) handle->release();
}

ParameterSet& Prepared::Parameters() {
  if (!parameters_) {
    Call call;
    Ref<Firebird::IMessageMetadata> in(handle->getInputMetadata(call()));
    Check(call, sql);
    parameters_ = std::make_unique<ParameterSet>(in.release());
  }
  return *parameters_;
}

std::shared_ptr<Prepared> StatementCache::Find(std::string_view sql) {
  const auto found = by_text_.find(sql);
  if (found == by_text_.end() || (*found->second)->busy) return nullptr;
  if ((*found->second)->stuck) {
    const auto place = found->second;
    by_text_.erase(found);
    latest_.erase(place);
    return nullptr;
  }
  latest_.splice(latest_.begin(), latest_, found->second);
  return latest_.front();
}

void StatementCache::Keep(std::shared_ptr<Prepared> statement) {
  if (statement->sql.size() > kLongest || by_text_.contains(statement->sql)) return;
  latest_.push_front(std::move(statement));
  by_text_.emplace(latest_.front()->sql, latest_.begin());
  if (latest_.size() <= kStatements) return;
  by_text_.erase(latest_.back()->sql);
  latest_.pop_back();
}

void StatementCache::Clear() {
  by_text_.clear();
  latest_.clear();
}

Core::Running::Running(Core& core) : core_(core) {
  const std::lock_guard lock(core_.cancel_mutex_);
  if (core_.running_++ == 0) core_.cancelled_ = false;
}

Core::Running::~Running() {
  const std::lock_guard lock(core_.cancel_mutex_);
  if (--core_.running_ > 0 || !core_.cancelled_) return;
  // A request that came too late would end the next statement instead.
  Call call;
  core_.attachment_->cancelOperation(call(), fb_cancel_disable);
  core_.attachment_->cancelOperation(call(), fb_cancel_enable);
}

Core::Core(Firebird::IAttachment* attachment, std::string database)
    : attachment_(attachment), database_(std::move(database)) {
  // A server's address is no file here.
  struct stat found {};
  if (stat(database_.c_str(), &found) == 0 && S_ISREG(found.st_mode))
    file_.emplace(found.st_dev, found.st_ino);
}

void Core::RequireFile() const {
  if (!file_) return;
  struct stat found {};
  const bool there = stat(database_.c_str(), &found) == 0;
  if (there && *file_ == std::pair(found.st_dev, found.st_ino)) return;
  throw DatabaseError(
      DatabaseError::Kind::Connection, there ? EEXIST : errno,
      "O arquivo do banco de dados foi removido ou substituído durante o uso. Nada foi gravado. "
      "Encerre todas as sessões, recupere o arquivo e entre novamente.",
      "the file at " + database_ + " is no longer the one that was opened");
}

Core::~Core() {
  try {
    Call call;
    cache_.Clear();
    EndReader();
    if (transaction_) {
      transaction_->rollback(call());
      if (call.Failed()) transaction_->release();
    }
    attachment_->detach(call());
    if (call.Failed()) attachment_->release();
  } catch (...) {
    // Closing is the last resort already; whatever failed ends with the process.
  }
}

void Core::Start() { Start(kTransaction); }

void Core::Start(std::span<const unsigned char> kind) {
  if (transaction_) return;
  RequireFile();
  Call call;
  transaction_ = attachment_->startTransaction(call(), static_cast<unsigned>(kind.size()), kind.data());
  if (call.Failed()) transaction_ = nullptr;
  Check(call);
}

void Core::StartSnapshot() {
  ORV_ASSERT(!pending_ && open_cursors_ == 0);
  End(true);
  Start(kSnapshot);
}

Firebird::ITransaction* Core::Reader() {
  if (transaction_) return transaction_;
  if (!reader_) {
    Call call;
    reader_ = attachment_->startTransaction(call(), sizeof kReader, kReader);
    if (call.Failed()) reader_ = nullptr;
    Check(call);
  }
  return reader_;
}

void Core::EndReader() {
  if (!reader_) return;
  Call call;
  reader_->commit(call());
  // It fails only with the connection, and there is nothing in it to lose.
  if (call.Failed()) reader_->release();
  reader_ = nullptr;
}

std::shared_ptr<Prepared> Core::Prepare(std::string_view sql) {
  if (auto cached = cache_.Find(sql)) return cached;
  auto statement = std::make_shared<Prepared>(attachment_, Reader(), sql);
  if (!Forbidden(statement->type)) cache_.Keep(statement);
  return statement;
}

void Core::ThrowIfCancelled(std::string_view sql) const {
  if (cancelled_)
    throw DatabaseError(DatabaseError::Kind::Cancelled, isc_cancelled, "A consulta foi cancelada.",
                        "cancelled\n" + CleanUtf8(CutChars(sql, 4000)));
}

void Core::Retry(std::string_view sql, const std::function<void(Status*)>& attempt) {
  std::optional<std::chrono::steady_clock::time_point> until;
  Call call;
  for (;;) {
    attempt(call());
    if (!call.Failed()) return;
    if (!IsConflict(call.Get())) throw Fault(call.Get(), sql);
    const auto now = std::chrono::steady_clock::now();
    if (!until) until = now + conflict_time;
    if (now >= *until) throw Fault(call.Get(), sql);
    std::this_thread::sleep_for(kConflictPause);
    ThrowIfCancelled(sql);
  }
}

void Core::Fetch(Prepared& statement, std::span<const Value> values, RowSink& sink) {
  if (!statement.rows) throw Misuse("no rows come from it", statement.sql);
  if (statement.parameter_count != values.size()) throw Misuse("wrong number of parameters", statement.sql);
  if (!statement.only_reads) Start();
  Firebird::ITransaction* const transaction = Reader();
  RowReader& rows = *statement.rows;
  Firebird::IMessageMetadata* in = nullptr;
  void* in_buffer = nullptr;
  if (!values.empty()) {
    ParameterSet& parameters = statement.Parameters();
    parameters.Bind(values, {attachment_, transaction});
    in = parameters.Metadata();
    in_buffer = parameters.Buffer();
  }
  std::vector<Value> row(rows.Columns().size());

  if (!statement.has_cursor) {
    const Running running(*this);
    Retry(statement.sql, [&](Status* status) {
      statement.handle->execute(status, transaction, in, in_buffer, rows.Metadata(), rows.Buffer());
    });
    pending_ = true;
    sink.Columns(rows.Columns());
    rows.Read(row, {attachment_, transaction});
    sink.Row(row);
    return;
  }

  struct Cursor {
    Cursor(Prepared& s, int& open) : statement(s), count(open) { statement.busy = true, ++count; }
    ~Cursor() {
      Close();
      statement.busy = false, --count;
    }
    void Close() {
      if (!set) return;
      Call call;
      set->close(call());
      if (call.Failed()) {
        statement.stuck = true;
        set->release();
      }
      set = nullptr;
    }
    Prepared& statement;
    int& count;
    Firebird::IResultSet* set = nullptr;
  } cursor(statement, open_cursors_);
  // Ends before the cursor is closed, which must not be cancelled: the statement could never be opened again.
  const Running running(*this);

  // Until the first row has come, a conflict leaves nothing behind.
  int result = Firebird::IStatus::RESULT_NO_DATA;
  Retry(statement.sql, [&](Status* status) {
    cursor.Close();
    cursor.set = statement.handle->openCursor(status, transaction, in, in_buffer, rows.Metadata(), 0);
    if ((status->getState() & Firebird::IStatus::STATE_ERRORS) != 0)
      cursor.set = nullptr;
    else
      result = cursor.set->fetchNext(status, rows.Buffer());
  });
  if (!statement.only_reads) pending_ = true;
  sink.Columns(rows.Columns());
  Call call;
  while (result == Firebird::IStatus::RESULT_OK) {
    rows.Read(row, {attachment_, transaction});
    if (!sink.Row(row)) break;
    ThrowIfCancelled(statement.sql);
    result = cursor.set->fetchNext(call(), rows.Buffer());
    Check(call, statement.sql);
  }
}

int64_t Core::Execute(Prepared& statement, std::span<const Value> values, bool count) {
  if (Forbidden(statement.type)) throw Misuse("not allowed here", statement.sql);
  if (statement.has_cursor) throw Misuse("it gives rows that nobody takes", statement.sql);
  if (statement.parameter_count != values.size()) throw Misuse("wrong number of parameters", statement.sql);
  const Running running(*this);
  Start();
  Firebird::IMessageMetadata* in = nullptr;
  void* in_buffer = nullptr;
  if (!values.empty()) {
    ParameterSet& parameters = statement.Parameters();
    parameters.Bind(values, {attachment_, transaction_});
    in = parameters.Metadata();
    in_buffer = parameters.Buffer();
  }
  RowReader* const rows = statement.rows.get();
  Retry(statement.sql, [&](Status* status) {
    statement.handle->execute(status, transaction_, in, in_buffer, rows ? rows->Metadata() : nullptr,
                              rows ? rows->Buffer() : nullptr);
  });
  if (!count) {
    pending_ = true;
    return 0;
  }
  Call call;
  const auto touched = static_cast<int64_t>(statement.handle->getAffectedRecords(call()));
  Check(call, statement.sql);
  if (touched > 0 || !Changes(statement.type)) pending_ = true;
  return touched;
}

void Core::ExecuteDdl(std::string_view sql) {
  ORV_ASSERT(open_cursors_ == 0);
  Commit();
  cache_.Clear();
  try {
    Start();
    Prepared statement(attachment_, transaction_, sql);
    if (statement.type != isc_info_sql_stmt_ddl) throw Misuse("not a change of the schema", sql);
    Call call;
    statement.handle->execute(call(), transaction_, nullptr, nullptr, nullptr, nullptr);
    Check(call, sql);
    Commit();
  } catch (...) {
    End(false);
    throw;
  }
}

void Core::End(bool keep) {
  if (open_cursors_ == 0) EndReader();
  EndWriter(keep);
}

void Core::EndWriter(bool keep) {
  if (!transaction_) {
    pending_ = false;
    return;
  }
  if (keep && pending_) RequireFile();
  Call call;
  if (open_cursors_ > 0) {
    if (keep)
      transaction_->commitRetaining(call());
    else
      transaction_->rollbackRetaining(call());
    Check(call);
  } else {
    if (keep)
      transaction_->commit(call());
    else
      transaction_->rollback(call());
    // A commit that fails leaves the writes to be undone; a rollback fails only with the connection, and the
    // engine undoes what was open itself.
    if (!call.Failed() || !keep) {
      if (call.Failed()) transaction_->release();
      transaction_ = nullptr;
    }
  }
  if (!call.Failed() || !keep) pending_ = false;
  Check(call);
  std::fill(actions_.begin(), actions_.end(), false);
}

void Core::Commit() { End(true); }

void Core::Rollback() {
  std::fill(actions_.begin(), actions_.end(), false);
  End(false);
}

void Core::Savepoint(std::string_view verb, std::size_t depth) {
  const std::string sql = std::string(verb) + " ORV_ACTION_" + std::to_string(depth);
  const std::shared_ptr<Prepared> statement = Prepare(sql);
  const bool pending = pending_;
  Execute(*statement, {}, false);
  pending_ = pending;
}

void Core::BeginAction() {
  if (pending_) Savepoint("SAVEPOINT", actions_.size());
  actions_.push_back(pending_);
}

void Core::EndAction() {
  ORV_ASSERT(!actions_.empty());
  const bool savepoint = actions_.back();
  // An action that can't be ended is still there to be rolled back.
  if (savepoint) Savepoint("RELEASE SAVEPOINT", actions_.size() - 1);
  actions_.pop_back();
  if (!savepoint && actions_.empty()) LetGo();
}

void Core::LetGo() {
  if (!pending_ && open_cursors_ == 0) EndWriter(true);
}

void Core::RollbackAction() {
  ORV_ASSERT(!actions_.empty());
  const bool savepoint = actions_.back();
  actions_.pop_back();
  if (!savepoint) return Rollback();
  Savepoint("ROLLBACK TO SAVEPOINT", actions_.size());
  Savepoint("RELEASE SAVEPOINT", actions_.size());
}

void Core::Cancel() {
  const std::lock_guard lock(cancel_mutex_);
  if (running_ == 0) return;
  cancelled_ = true;
  Call call;
  // It may just have ended: then there is nothing left to refuse.
  attachment_->cancelOperation(call(), fb_cancel_raise);
}

}  // namespace orv::fb
