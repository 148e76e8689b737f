#include "host/data/new_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "toolkit/database.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(int error, const std::string& path) {
  using Kind = DatabaseError::Kind;
  const std::string detail = path + ": " + std::strerror(error);
  switch (error) {
    case EEXIST:
      throw DatabaseError(Kind::Other, error,
                          "O arquivo \"" + path + "\" já existe e não é substituído. Escolha outro nome.",
                          detail);
    case ENOENT:
    case ENOTDIR:
      throw DatabaseError(Kind::Other, error, "A pasta do arquivo \"" + path + "\" não existe.", detail);
    case ENOSPC:
    case EDQUOT:
      throw DatabaseError(Kind::DiskFull, error, "O disco está cheio. Libere espaço e tente novamente.",
                          detail);
    default:
      throw DatabaseError(
          Kind::ReadOnly, error,
          "Não é permitido gravar o arquivo \"" + path + "\". Verifique as permissões da pasta.", detail);
  }
}

}  // namespace

NewFile::NewFile(std::string target) : target_(std::move(target)) {
  struct stat found {};
  if (lstat(target_.c_str(), &found) == 0) Refuse(EEXIST, target_);
  const fs::path wanted(target_);
  std::string pattern = (wanted.parent_path() / ".orvcc-XXXXXX").string();
  if (!mkdtemp(pattern.data())) Refuse(errno, target_);
  folder_ = pattern;
  path_ = (fs::path(folder_) / wanted.filename()).string();
}

NewFile::~NewFile() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void NewFile::Keep() {
  if (chmod(path_.c_str(), S_IRUSR | S_IWUSR) != 0) Refuse(errno, target_);
  if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) Refuse(errno, target_);
  // Not every file system can rename so; a second name never replaces a file either.
  if (link(path_.c_str(), target_.c_str()) != 0) Refuse(errno, target_);
}

}  // namespace orv
