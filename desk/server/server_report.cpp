#include "desk/server/server_report.h"

#include <sodium.h>

#include <array>
#include <cctype>
#include <fstream>
#include <optional>
#include <sstream>

#include "host/print/writers.h"
#include "host/services/anexo_conteudo.h"

namespace orv {
namespace {

struct Form {
  std::string_view extension, type;
  bool shown;
};

constexpr std::array<Form, 5> kForms{
    {{".html", "text/html; charset=utf-8", true},
     {".pdf", "application/pdf", true},
     {".txt", "text/plain; charset=utf-8", true},
     {".csv", "text/csv; charset=utf-8", false},
     {".xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", false}}};

// The page's one style, allowed by what it holds.
std::string Policy() {
  const std::string_view style = ReportHtmlStyle();
  std::array<unsigned char, crypto_hash_sha256_BYTES> digest{};
  crypto_hash_sha256(digest.data(), reinterpret_cast<const unsigned char*>(style.data()), style.size());
  std::array<char, sodium_base64_ENCODED_LEN(crypto_hash_sha256_BYTES, sodium_base64_VARIANT_ORIGINAL)>
      text{};
  sodium_bin2base64(text.data(), text.size(), digest.data(), digest.size(), sodium_base64_VARIANT_ORIGINAL);
  return "default-src 'none'; style-src 'sha256-" + std::string(text.data()) +
         "'; base-uri 'none'; form-action 'none'; frame-ancestors 'self'";
}

// Nothing when it is gone.
std::optional<std::string> ContentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return in ? std::optional(std::move(content).str()) : std::nullopt;
}

// The name without what isn't plain.
std::string Plain(const std::string& name) {
  std::string plain;
  for (const char c : name) {
    const bool kept =
        (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '.';
    plain += kept ? c : '_';
  }
  return plain;
}

}  // namespace

HttpResponse AttachmentResponse(const std::filesystem::path& file, const std::string& name) {
  const AnexoTipo* type = FindAnexoTipo(file.extension().string());
  auto content = ContentOf(file);
  if (!content || type == nullptr)
    return {404, "text/plain; charset=utf-8", "O anexo não está mais aqui.\n", {}};
  // A browser that reads the second name takes it; the first is for one that doesn't.
  std::string encoded;
  for (const char c : name) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    const bool kept = byte < 0x80 && (std::isalnum(byte) != 0 || c == '.' || c == '-' || c == '_');
    encoded += kept ? std::string(1, c) : std::string{'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return {
      200,
      std::string(type->media),
      std::move(*content),
      {{"Content-Security-Policy", "default-src 'none'; sandbox"},
       {"Content-Disposition", "attachment; filename=\"" + Plain(name) + "\"; filename*=UTF-8''" + encoded}}};
}

HttpResponse ReportResponse(const std::filesystem::path& file, const std::string& name) {
  auto content = ContentOf(file);
  if (!content) return {404, "text/plain; charset=utf-8", "O relatório não está mais aberto.\n", {}};
  for (const Form& form : kForms) {
    if (file.extension() != form.extension) continue;
    return {200,
            std::string(form.type),
            std::move(*content),
            {{"Content-Security-Policy", Policy()},
             {"Content-Disposition", std::string(form.shown ? "inline" : "attachment") + "; filename=\"" +
                                         Plain(name).substr(0, 100) + "\""}}};
  }
  return {404, "text/plain; charset=utf-8", "O relatório não está mais aberto.\n", {}};
}

}  // namespace orv
