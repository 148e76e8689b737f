// Where templates are found: in the company's folder, else among the desk's own.
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/print/own_templates.h"
#include "host/print/report_template.h"

namespace orv {

namespace {

std::optional<ReportTemplate> Find(const std::string& identifier, const std::string& folder) {
  // An identifier is made with texts from the database: it names a file of the folder and nothing else.
  const bool plain = !identifier.empty() && identifier.find_first_of("/\\") == std::string::npos &&
                     identifier[0] != '.' && identifier.find('\0') == std::string::npos;
  if (plain && !folder.empty()) {
    std::ifstream in(std::filesystem::path(folder) / (identifier + ".rel"), std::ios::binary);
    if (in) {
      // No more than tells that it is too large.
      std::string text(kLongestTemplate + 1, '\0');
      in.read(text.data(), static_cast<std::streamsize>(text.size()));
      text.resize(static_cast<std::size_t>(in.gcount()));
      return ReportTemplate::Parse(identifier, text);
    }
  }
  for (const OwnTemplate& own : kOwnTemplates) {
    if (own.identifier == identifier) return ReportTemplate::Parse(identifier, own.text);
  }
  return std::nullopt;
}

}  // namespace

ReportTemplate FindTemplate(const std::string& identifier, const std::string& folder) {
  if (auto found = Find(identifier, folder)) return *std::move(found);
  // "WCheque341" without one of its own is printed as every bank's.
  const std::string family = identifier.substr(0, identifier.find_last_not_of("0123456789") + 1);
  if (auto found = family == identifier ? std::nullopt : Find(family, folder)) return *std::move(found);
  throw UserError("O relatório \"" + identifier + "\" não está instalado.");
}

std::vector<std::string> OwnTemplates() {
  std::vector<std::string> identifiers;
  for (const OwnTemplate& own : kOwnTemplates) identifiers.emplace_back(own.identifier);
  return identifiers;
}

}  // namespace orv
