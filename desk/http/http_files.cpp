#include "desk/http/http_files.h"

#include <sodium.h>

#include <array>
#include <fstream>
#include <sstream>

#include "toolkit/error.h"

namespace orv {
namespace {

constexpr std::size_t kMostBytes = 32 << 20;

constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kTypes{{
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".ico", "image/x-icon"},
    {".woff2", "font/woff2"},
    {".txt", "text/plain; charset=utf-8"},
}};

std::string_view TypeOf(const std::filesystem::path& path) {
  const std::string extension = path.extension().string();
  for (const auto& [known, type] : kTypes) {
    if (extension == known) return type;
  }
  return "";
}

std::string Content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  if (!in) throw UserError("O arquivo " + path.string() + " não pôde ser lido.");
  return std::move(out).str();
}

std::string Tag(const std::string& content) {
  std::array<unsigned char, 16> digest{};
  crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(content.data()),
                     content.size(), nullptr, 0);
  std::array<char, 33> hex{};
  sodium_bin2hex(hex.data(), hex.size(), digest.data(), digest.size());
  return "\"" + std::string(hex.data()) + "\"";
}

}  // namespace

HttpFiles::HttpFiles(const std::filesystem::path& folder) {
  std::size_t size = 0;
  std::error_code error;
  for (auto it = std::filesystem::recursive_directory_iterator(folder, error);
       !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
    const std::filesystem::path& path = it->path();
    if (it->is_symlink() || !it->is_regular_file() || TypeOf(path).empty()) continue;
    File file;
    file.type = TypeOf(path);
    file.body = Content(path);
    file.tag = Tag(file.body);
    const std::filesystem::path compressed = path.string() + ".gz";
    if (std::filesystem::is_regular_file(std::filesystem::symlink_status(compressed))) {
      file.compressed = Content(compressed);
    }
    size += file.body.size() + file.compressed.size();
    if (size > kMostBytes)
      throw UserError("A pasta " + folder.string() + " é grande demais para uma página.");
    files_.emplace("/" + path.lexically_relative(folder).generic_string(), std::move(file));
  }
  if (!files_.contains("/index.html")) {
    throw UserError("A página não está em " + folder.string() + ". Informe a pasta com --web.");
  }
}

HttpResponse HttpFiles::Get(const HttpRequest& request) const {
  const auto found = files_.find(request.path == "/" ? "/index.html" : std::string_view(request.path));
  if (found == files_.end()) return {404, "text/plain; charset=utf-8", "Não encontrado.\n", {}};
  const File& file = found->second;
  HttpResponse response{200, file.type, "", {{"ETag", file.tag}, {"Cache-Control", "no-cache"}}};
  if (request.Header("if-none-match") == file.tag) {
    response.status = 304;
    response.type.clear();
    return response;
  }
  const bool compressed =
      !file.compressed.empty() && request.Header("accept-encoding").find("gzip") != std::string_view::npos;
  if (!file.compressed.empty()) response.headers.emplace_back("Vary", "Accept-Encoding");
  if (compressed) response.headers.emplace_back("Content-Encoding", "gzip");
  response.body = compressed ? file.compressed : file.body;
  return response;
}

}  // namespace orv
