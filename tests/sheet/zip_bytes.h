// A zip file of parts, made in memory.
#pragma once

#include <zip.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orv::test {

using Parts = std::vector<std::pair<std::string, std::string>>;

inline std::string ZipBytes(const Parts& parts, int method = ZIP_CM_DEFLATE, const char* password = nullptr) {
  zip_source_t* const source = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_source_keep(source);
  zip_t* const zip = zip_open_from_source(source, ZIP_TRUNCATE, nullptr);
  for (const auto& [name, text] : parts) {
    zip_source_t* const part = zip_source_buffer(zip, text.data(), text.size(), 0);
    const auto index = static_cast<zip_uint64_t>(zip_file_add(zip, name.c_str(), part, 0));
    zip_set_file_compression(zip, index, method, 0);
    if (password != nullptr) zip_file_set_encryption(zip, index, ZIP_EM_TRAD_PKWARE, password);
  }
  zip_stat_t info;
  if (zip_close(zip) != 0 || zip_source_open(source) != 0 || zip_source_stat(source, &info) != 0)
    throw std::runtime_error("The zip file can't be made.");
  std::string bytes(info.size, '\0');
  zip_source_read(source, bytes.data(), bytes.size());
  zip_source_close(source);
  zip_source_free(source);
  return bytes;
}

// The same file with the size of its part number `part` told as another.
inline std::string TellSize(std::string bytes, int part, uint32_t size) {
  std::size_t at = bytes.find("PK\1\2");
  for (; part > 0; --part) at = bytes.find("PK\1\2", at + 4);
  for (std::size_t i = 0; i < 4; ++i) bytes[at + 24 + i] = static_cast<char>(size >> (8 * i));
  return bytes;
}

}  // namespace orv::test
