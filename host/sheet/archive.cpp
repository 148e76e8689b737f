#include "host/sheet/archive.h"

#include <zip.h>

#include <algorithm>
#include <vector>

#include "host/sheet/faults.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostParts = 2000;
// What all parts that are read may hold.
constexpr uint64_t kMostInflated = uint64_t{256} << 20;
// A part that holds more than `kFreely` is a sheet's worth of rows only up to so many times its size in the
// file.
constexpr uint64_t kMostRatio = 100, kFreely = uint64_t{8} << 20;
constexpr std::size_t kPiece = std::size_t{64} << 10;

constexpr std::string_view kOle = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
// As that container names its streams, in UTF-16.
constexpr std::string_view kEncrypted("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32);

std::string PartName(std::string_view name) {
  std::string part(name.substr(std::min(name.find_first_not_of("/\\"), name.size())));
  for (char& c : part) {
    if (c == '\\') c = '/';
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return part;
}

// What can be said of a file without taking it apart.
void RequireArchive(std::string_view bytes) {
  if (bytes.empty()) throw UserError("O arquivo está vazio. Escolha outro ou baixe-o de novo.");
  if (bytes.size() > kMaxSheetFile) {
    throw UserError("O arquivo é grande demais: o limite é de " + std::to_string(kMaxSheetFile >> 20) +
                    " MB.");
  }
  if (bytes.starts_with(kOle)) {
    throw UserError(
        bytes.find(kEncrypted) != std::string_view::npos
            ? kProtected
            : "O arquivo é uma planilha no formato antigo (.xls). Abra-o no editor de planilhas e "
              "grave-o como .xlsx.");
  }
  if (!bytes.starts_with("PK")) {
    throw UserError(
        "O arquivo não é uma planilha .xlsx, embora o nome diga que é. Abra-o no editor de planilhas e "
        "grave-o "
        "como .xlsx.");
  }
  std::size_t parts = 0;
  for (std::size_t at = 0; (at = bytes.find("PK\1\2", at)) != std::string_view::npos; at += 4) ++parts;
  if (parts > kMostParts) throw UserError(kTooMuch);
}

}  // namespace

Archive::Archive(std::string_view bytes) : zip_(nullptr, zip_discard), left_(kMostInflated) {
  RequireArchive(bytes);
  zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
  if (source == nullptr) throw UserError(kDamaged);
  zip_.reset(zip_open_from_source(source, ZIP_RDONLY, nullptr));
  if (zip_ == nullptr) {
    zip_source_free(source);
    throw UserError(kDamaged);
  }
  for (zip_int64_t i = 0; i < zip_get_num_entries(zip_.get(), 0); ++i) {
    const char* const name = zip_get_name(zip_.get(), static_cast<zip_uint64_t>(i), ZIP_FL_ENC_RAW);
    if (name != nullptr) parts_.emplace(PartName(name), i);
  }
}

bool Archive::Has(const std::string& part) const { return parts_.contains(PartName(part)); }

void Archive::Read(const std::string& part, const std::function<void(std::string_view)>& piece) {
  const auto found = parts_.find(PartName(part));
  if (found == parts_.end()) throw UserError(kDamaged);
  zip_stat_t info;
  constexpr zip_uint64_t kAsked =
      ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE | ZIP_STAT_COMP_METHOD | ZIP_STAT_ENCRYPTION_METHOD;
  if (zip_stat_index(zip_.get(), found->second, 0, &info) != 0 || (info.valid & kAsked) != kAsked)
    throw UserError(kDamaged);
  if (info.encryption_method != ZIP_EM_NONE) throw UserError(kProtected);
  // What other methods ask for isn't bounded, and no book has them.
  if (info.comp_method != ZIP_CM_STORE && info.comp_method != ZIP_CM_DEFLATE) throw UserError(kDamaged);
  if (info.size > left_ || (info.size > kFreely && info.size / kMostRatio > info.comp_size))
    throw UserError(kTooMuch);

  const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(zip_fopen_index(zip_.get(), found->second, 0),
                                                               zip_fclose);
  if (file == nullptr) throw UserError(kDamaged);
  std::vector<char> buffer(kPiece);
  uint64_t had = 0;
  for (;;) {
    const zip_int64_t got = zip_fread(file.get(), buffer.data(), buffer.size());
    if (got < 0) throw UserError(kDamaged);
    if (got == 0) break;
    had += static_cast<uint64_t>(got);
    if (had > info.size) throw UserError(kDamaged);
    piece({buffer.data(), static_cast<std::size_t>(got)});
  }
  if (had != info.size) throw UserError(kDamaged);
  left_ -= had;
}

}  // namespace orv
