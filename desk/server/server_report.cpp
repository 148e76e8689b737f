#include "desk/server/server_report.h"

#include <sodium.h>

#include <array>
#include <fstream>
#include <sstream>

#include "host/print/writers.h"

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

}  // namespace

HttpResponse ReportResponse(const std::filesystem::path& file, const std::string& name) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  if (!in) return {404, "text/plain; charset=utf-8", "O relatório não está mais aberto.\n", {}};
  for (const Form& form : kForms) {
    if (file.extension() != form.extension) continue;
    // The name is the address's; the header holds nothing of it that isn't plain.
    std::string plain;
    for (const char c : name) {
      const bool kept =
          (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '.';
      plain += kept ? c : '_';
    }
    return {200,
            std::string(form.type),
            std::move(content).str(),
            {{"Content-Security-Policy", Policy()},
             {"Content-Disposition", std::string(form.shown ? "inline" : "attachment") + "; filename=\"" +
                                         plain.substr(0, 100) + "\""}}};
  }
  return {404, "text/plain; charset=utf-8", "O relatório não está mais aberto.\n", {}};
}

}  // namespace orv
