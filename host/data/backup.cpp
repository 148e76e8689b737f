#include "host/data/backup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "host/data/new_file.h"
#include "host/data/service.h"
#include "toolkit/database.h"
#include "toolkit/text.h"

namespace orv {
namespace {

using Kind = DatabaseError::Kind;

// Bytes kept of what the engine tells.
constexpr std::size_t kTold = 4000;

// `errno` still tells why the stream failed.
void CheckWritten(const std::ofstream& out, const std::string& file) {
  if (out) return;
  throw DatabaseError(errno == ENOSPC ? Kind::DiskFull : Kind::Other, errno,
                      "Não foi possível gravar o arquivo \"" + file + "\". Verifique o espaço em disco.",
                      file + ": " + std::strerror(errno));
}

// It is the backup that the engine refuses: by a code of its backup program, whose facility stands in it, or
// for a row that no database can have given.
bool OfBackup(const DatabaseError& error) {
  return ((error.Code() >> 16) & 0x1f) == 12 || error.Why() == Kind::Constraint;
}

// `in` is read to its end. What the engine tells meanwhile is what it makes of a damaged file: it would go on
// and leave a database in which rows are missing.
void RestoreTo(std::ifstream& in, const DatabaseAddress& address, const std::string& name) {
  fb::Service service(address);
  fb::ParameterBlock task;
  task.Tag(isc_action_svc_restore)
      .LongText(isc_spb_bkp_file, "stdin")
      .LongText(isc_spb_dbname, name)
      .Plain(isc_spb_options, isc_spb_res_create);
  service.Start(task);
  std::array<char, 32768> part;
  std::string told;
  service.Run(
      [&](std::string_view text) { told.append(text.substr(0, kTold - std::min(told.size(), kTold))); },
      [&](std::size_t wanted) {
        in.read(part.data(), static_cast<std::streamsize>(std::min(wanted, part.size())));
        return std::string_view(part.data(), static_cast<std::size_t>(in.gcount()));
      });
  if (!told.empty()) throw DatabaseError(Kind::Other, isc_gbak_read_error, "", CleanUtf8(told));
}

}  // namespace

void Backup(std::string_view database, const std::string& file) {
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  const std::string target = std::filesystem::absolute(file).lexically_normal().string();
  NewFile fresh(target);
  std::ofstream out(fresh.Path(), std::ios::binary);
  CheckWritten(out, target);
  fb::Service service(address);
  fb::ParameterBlock task;
  task.Tag(isc_action_svc_backup)
      .LongText(isc_spb_dbname, fb::NameAtServer(address))
      .LongText(isc_spb_bkp_file, "stdout")
      .Plain(isc_spb_options, isc_spb_bkp_no_garbage_collect);
  service.Start(task);
  service.Run([&](std::string_view part) {
    out.write(part.data(), static_cast<std::streamsize>(part.size()));
    CheckWritten(out, target);
  });
  out.close();
  CheckWritten(out, target);
  fresh.Keep();
}

void Restore(const std::string& file, std::string_view database) {
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  std::ifstream in(file, std::ios::binary);
  if (!in)
    throw DatabaseError(Kind::Other, errno, "Não foi possível ler o backup \"" + file + "\".",
                        file + ": " + std::strerror(errno));
  try {
    if (!address.Embedded()) return RestoreTo(in, address, fb::NameAtServer(address));
    NewFile fresh(address.name);
    RestoreTo(in, address, fresh.Path());
    fresh.Keep();
  } catch (const DatabaseError& error) {
    if (!OfBackup(error)) throw;
    if (error.Code() == isc_gbak_db_exists)
      throw DatabaseError(Kind::Other, error.Code(),
                          "O banco de dados \"" + address.name + "\" já existe e não é substituído.",
                          error.Detail());
    const std::string left = address.Embedded() ? "Nenhum banco foi criado."
                                                : "O servidor pode ter deixado o banco \"" + address.name +
                                                      "\" pela metade: apague-o antes de tentar de novo.";
    throw DatabaseError(
        Kind::Other, error.Code(),
        "O arquivo \"" + file +
            "\" não é um backup inteiro: está vazio, cortado, danificado ou é de outra versão. " + left +
            " Use outra cópia.",
        error.Detail());
  }
}

}  // namespace orv
