#include "host/services/kept_filters.h"

#include <algorithm>
#include <map>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A content takes as many values as it needs, each as long as a value may be.
constexpr std::size_t kLongestValue = 1900;
constexpr std::size_t kMostValues = 20;
constexpr std::size_t kLongestName = 40;
constexpr std::size_t kMostNames = 100;

constexpr const char *kFilters = "Filtros/", *kFavourites = "Favoritos/";
constexpr const char *kLatest = "/ultimos/", *kBegins = "/inicio";

std::string Line(std::string_view name, std::string_view text) {
  // What parts names from texts and lines from lines stands in none of them.
  std::string line = std::string(name) + "\t";
  for (const char c : text) line += c == '\t' || c == '\n' ? ' ' : c;
  return line;
}

std::vector<std::string> Lines(const FieldTexts& fields) {
  std::vector<std::string> lines;
  for (const auto& [name, text] : fields) lines.push_back(Line(name, text));
  return lines;
}

std::pair<std::string, std::string> Parted(const std::string& line) {
  const std::size_t tab = line.find('\t');
  return tab == std::string::npos ? std::pair(line, std::string())
                                  : std::pair(line.substr(0, tab), line.substr(tab + 1));
}

FieldTexts FieldsOf(const std::vector<std::string>& lines) {
  FieldTexts fields;
  for (const std::string& line : lines) fields.push_back(Parted(line));
  return fields;
}

std::string PlainName(const std::string& name) {
  std::string plain(Trim(name));
  const bool odd = std::ranges::any_of(plain, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
  if (plain.empty()) throw UserError("Informe o nome.");
  if (odd || plain.find('/') != std::string::npos) throw UserError("O nome não pode ter barras.");
  if (CharCount(plain) > kLongestName)
    throw UserError("O nome tem mais de " + std::to_string(kLongestName) + " letras. Escolha um mais curto.");
  return plain;
}

void WriteValues(Preferences& preferences, const std::string& path, const std::vector<std::string>& lines) {
  const std::string whole = Join(lines, "\n");
  std::vector<std::string> values;
  std::string_view rest = whole;
  do {
    values.emplace_back(CutChars(rest, kLongestValue));
    rest.remove_prefix(values.back().size());
  } while (!rest.empty());
  if (values.size() > kMostValues) throw UserError("Os filtros são longos demais para serem guardados.");
  preferences.Remove(path);
  for (std::size_t at = 0; at < values.size(); ++at)
    preferences.Set(path + std::to_string(100 + at), values[at]);
}

}  // namespace

Preferences& KeptFilters::Of(bool shared) {
  if (shared && !may_share_)
    throw UserError("Só um administrador muda o que é de todos. Guarde com outro nome, só para você.");
  return shared ? common_ : own_;
}

std::vector<KeptFilters::Entry> KeptFilters::Read(const std::string& folder) {
  std::vector<Entry> entries;
  for (const bool shared : {false, true}) {
    // The values of a name follow one another.
    std::map<std::string, std::string> contents;
    for (const auto& [rest, value] : (shared ? common_ : own_).List(folder)) {
      const std::size_t slash = rest.rfind('/');
      if (slash != std::string::npos) contents[rest.substr(0, slash)] += value;
    }
    for (const auto& [name, content] : contents) entries.push_back({name, shared, Split(content, "\n")});
  }
  return entries;
}

void KeptFilters::Write(const std::string& folder, const Entry& entry) {
  const std::string name = PlainName(entry.name);
  Preferences& preferences = Of(entry.shared);
  std::string known = name;
  std::size_t count = 0;
  for (const Entry& one : Read(folder)) {
    if (one.shared != entry.shared) continue;
    ++count;
    // A name in other letters is the same one.
    if (SameText(one.name, name)) known = one.name;
  }
  if (count >= kMostNames) throw UserError("Já há nomes demais. Exclua um que não se usa mais.");
  if (known != name) preferences.Remove(folder + known + "/");
  WriteValues(preferences, folder + name + "/", entry.lines);
}

bool KeptFilters::Erase(const std::string& folder, const std::string& name, bool shared) {
  Preferences& preferences = Of(shared);
  for (const Entry& one : Read(folder)) {
    if (one.shared == shared && SameText(one.name, Trim(name)))
      return preferences.Remove(folder + one.name + "/");
  }
  return false;
}

std::vector<KeptFilter> KeptFilters::Filters(const std::string& bar) {
  std::vector<KeptFilter> filters;
  for (Entry& entry : Read(kFilters + bar + "/nomes/"))
    filters.push_back({std::move(entry.name), entry.shared, FieldsOf(entry.lines)});
  return filters;
}

void KeptFilters::Save(const std::string& bar, const KeptFilter& filter) {
  Write(kFilters + bar + "/nomes/", {filter.name, filter.shared, Lines(filter.fields)});
}

bool KeptFilters::Remove(const std::string& bar, const std::string& name, bool shared) {
  return Erase(kFilters + bar + "/nomes/", name, shared);
}

bool KeptFilters::BeginsWithLatest(const std::string& bar) {
  return own_.Get(kFilters + bar + kBegins) == "S";
}

void KeptFilters::SetBeginsWithLatest(const std::string& bar, bool on) {
  if (on) {
    own_.Set(kFilters + bar + kBegins, "S");
  } else {
    own_.Remove(kFilters + bar + kBegins);
    own_.Remove(kFilters + bar + kLatest);
  }
}

FieldTexts KeptFilters::Latest(const std::string& bar) {
  std::string content;
  for (const auto& [rest, value] : own_.List(kFilters + bar + kLatest)) content += value;
  return content.empty() ? FieldTexts() : FieldsOf(Split(content, "\n"));
}

void KeptFilters::SaveLatest(const std::string& bar, const FieldTexts& fields) {
  WriteValues(own_, kFilters + bar + kLatest, Lines(fields));
}

std::vector<Favourite> KeptFilters::Favourites() {
  std::vector<Favourite> favourites;
  for (const Entry& entry : Read(kFavourites)) {
    Favourite found{entry.name, entry.shared, "", "", "", "", "", {}};
    for (const std::string& line : entry.lines) {
      const auto [name, text] = Parted(line);
      // A control has no blank in its name, and what isn't one begins with it.
      if (name == " tela")
        found.screen_class = text;
      else if (name == " consulta")
        found.query = text;
      else if (name == " imprime")
        found.print = text;
      else if (name == " relatorio")
        found.report = text;
      else if (name == " titulo")
        found.title = text;
      else
        found.fields.emplace_back(name, text);
    }
    favourites.push_back(std::move(found));
  }
  return favourites;
}

std::optional<Favourite> KeptFilters::FindFavourite(std::string_view name, std::optional<bool> shared) {
  std::vector<Favourite> all = Favourites();
  const auto found = std::ranges::find_if(all, [&](const Favourite& one) {
    return SameText(one.name, Trim(name)) && one.shared == shared.value_or(one.shared);
  });
  return found == all.end() ? std::nullopt : std::optional(std::move(*found));
}

void KeptFilters::Save(const Favourite& favourite) {
  Entry entry{favourite.name, favourite.shared, Lines(favourite.fields)};
  for (const auto& [name, text] :
       {std::pair(" tela", &favourite.screen_class), std::pair(" consulta", &favourite.query),
        std::pair(" imprime", &favourite.print), std::pair(" relatorio", &favourite.report),
        std::pair(" titulo", &favourite.title)})
    entry.lines.push_back(Line(name, *text));
  Write(kFavourites, entry);
}

bool KeptFilters::RemoveFavourite(const std::string& name, bool shared) {
  return Erase(kFavourites, name, shared);
}

}  // namespace orv
