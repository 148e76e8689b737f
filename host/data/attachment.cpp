#include "host/data/attachment.h"

#include <utility>

#include "host/data/core.h"
#include "host/data/new_file.h"
#include "host/data/statement.h"

namespace orv {
namespace {

constexpr const char* kConfig = "DefaultDbCachePages=20000\nGCPolicy=cooperative\nDeadlockTimeout=1";

fb::ParameterBlock AttachParameters(const DatabaseAddress& address) {
  const Credentials credentials = CredentialsFor(address);
  fb::ParameterBlock parameters(isc_dpb_version1);
  parameters.Text(isc_dpb_utf8_filename, "")
      .Text(isc_dpb_lc_ctype, "UTF8")
      .Number(isc_dpb_sql_dialect, 3)
      .Text(isc_dpb_config, kConfig)
      .Text(isc_dpb_user_name, credentials.user);
  if (!credentials.password.empty()) parameters.Text(isc_dpb_password, credentials.password);
  return parameters;
}

Firebird::IAttachment* Attach(const DatabaseAddress& address, const std::string& name, bool create,
                              const fb::ParameterBlock& parameters) {
  fb::Ref<Firebird::IProvider> provider(fb::Master()->getDispatcher());
  fb::Call call;
  Firebird::IAttachment* attachment = nullptr;
  fb::KeepingSignals([&] {
    attachment = create
                     ? provider->createDatabase(call(), name.c_str(), parameters.Size(), parameters.Data())
                     : provider->attachDatabase(call(), name.c_str(), parameters.Size(), parameters.Data());
  });
  fb::Check(call, {}, address.name);
  return attachment;
}

fb::ParameterBlock CreateParameters(const DatabaseAddress& address, int page_size) {
  fb::ParameterBlock parameters = AttachParameters(address);
  return parameters.Number(isc_dpb_page_size, static_cast<unsigned>(page_size))
      .Text(isc_dpb_set_db_charset, "UTF8")
      .Number(isc_dpb_force_write, 1);
}

}  // namespace

Attachment::Attachment(std::string database, std::unique_ptr<fb::Core> core)
    : database_(std::move(database)), core_(std::move(core)) {}

Attachment::~Attachment() = default;

std::unique_ptr<Attachment> Attachment::Create(std::string_view database, int page_size) {
  ORV_ASSERT(page_size == 8192 || page_size == 16384);
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  const fb::ParameterBlock parameters = CreateParameters(address, page_size);
  if (address.Embedded()) {
    NewFile file(address.name);
    fb::Core(Attach(address, file.Path(), true, parameters), file.Path());
    file.Keep();
    return Open(address.name);
  }
  Firebird::IAttachment* const attachment = Attach(address, address.name, true, parameters);
  return std::unique_ptr<Attachment>(
      new Attachment(address.name, std::make_unique<fb::Core>(attachment, address.name)));
}

std::unique_ptr<Attachment> Attachment::Open(std::string_view database) {
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  Firebird::IAttachment* const attachment = Attach(address, address.name, false, AttachParameters(address));
  return std::unique_ptr<Attachment>(
      new Attachment(address.name, std::make_unique<fb::Core>(attachment, address.name)));
}

void Attachment::Fetch(std::string_view sql, RowSink& sink) {
  const std::shared_ptr<fb::Prepared> statement = core_->Prepare(sql);
  core_->Fetch(*statement, {}, sink);
}

int64_t Attachment::Execute(std::string_view sql) {
  const std::shared_ptr<fb::Prepared> statement = core_->Prepare(sql);
  return core_->Execute(*statement, {});
}

void Attachment::InsertRows(const std::string& table, const std::vector<std::string>& columns,
                            const RowSource& next) {
  BulkInsert insert(*this, table, columns);
  for (std::vector<Value> row(columns.size()); next(row);) insert.Add(row);
  insert.Finish();
}

void Attachment::ExecuteDdl(std::string_view sql) { core_->ExecuteDdl(sql); }
void Attachment::StartSnapshot() { core_->StartSnapshot(); }
void Attachment::CommitRetaining() { core_->Commit(); }
void Attachment::Rollback() { core_->Rollback(); }
bool Attachment::HasPendingWrites() const { return core_->Pending(); }
void Attachment::BeginAction() { core_->BeginAction(); }
void Attachment::EndAction() { core_->EndAction(); }
void Attachment::RollbackAction() { core_->RollbackAction(); }
void Attachment::LetGo() { core_->LetGo(); }
void Attachment::Cancel() { core_->Cancel(); }
void Attachment::SetConflictTime(std::chrono::milliseconds time) { core_->conflict_time = time; }
std::size_t Attachment::CachedStatements() const { return core_->Cache().Size(); }

void Attachment::SetLocalName(std::function<std::string(std::string_view)> local_name) {
  local_name_ = std::move(local_name);
}

std::string Attachment::LocalName(std::string_view table) const {
  return local_name_ ? local_name_(table) : std::string(table);
}

}  // namespace orv
