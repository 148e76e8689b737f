#include "host/data/validation.h"

#include <cstddef>
#include <utility>

#include "host/data/service.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMost = 20;

// How the engine's words begin, and what they speak of.
constexpr std::pair<std::string_view, const char*> kParts[] = {
    {"Index", "um índice está danificado"},
    {"Record", "um registro está danificado"},
    {"Chain for record", "um registro está danificado"},
    {"Blob", "um texto longo está danificado"},
    {"Page", "uma página está danificada"},
    {"Data page", "uma página está danificada"},
    {"Pointer page", "uma página está danificada"},
};

// Takes the engine's report line by line.
class Reader {
 public:
  void Take(std::string_view text) {
    rest_ += text;
    std::size_t from = 0;
    for (std::size_t end; (end = rest_.find('\n', from)) != std::string::npos; from = end + 1)
      Line(std::string_view(rest_).substr(from, end - from));
    rest_.erase(0, from);
  }
  Validation found;

 private:
  void Line(std::string_view line) {
    // The hour stands before.
    if (const std::size_t blank = line.find(' '); blank != std::string_view::npos && line.find(':') < blank)
      line.remove_prefix(blank + 1);
    constexpr std::string_view kRelation = "Relation ", kError = "Error: ";
    if (line.starts_with(kRelation)) {
      const std::size_t open = line.find('('), close = line.find(')', open);
      if (close != std::string_view::npos) table_ = line.substr(open + 1, close - open - 1);
    }
    if (line.find("lock failed") != std::string_view::npos)
      return Tell(found.unexamined, "está em uso e não foi examinada", "");
    if (!line.starts_with(kError)) return;
    line.remove_prefix(kError.size());
    const char* what = "a estrutura está danificada";
    for (const auto& [begin, sentence] : kParts)
      if (line.starts_with(begin)) what = sentence;
    // Where in the engine's source it was found says nothing to anybody here.
    Tell(found.damage, what, Trim(line.substr(0, line.find(" File: "))));
  }
  void Tell(std::vector<std::string>& lines, std::string_view what, std::string_view words) {
    if (lines.size() == kMost) lines.emplace_back("E mais ocorrências como a anterior.");
    if (lines.size() > kMost) return;
    std::string line = "Tabela " + table_ + ": ";
    line.append(what);
    if (!words.empty()) line.append(" (").append(CleanUtf8(words)).append(")");
    lines.push_back(line + ".");
  }

  std::string rest_, table_;
};

}  // namespace

Validation Validate(std::string_view database) {
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  fb::Service service(address);
  fb::ParameterBlock task;
  task.Tag(isc_action_svc_validate).LongText(isc_spb_dbname, fb::NameAtServer(address));
  service.Start(task);
  Reader reader;
  service.Run([&](std::string_view text) { reader.Take(text); });
  return std::move(reader.found);
}

}  // namespace orv
