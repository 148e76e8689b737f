#include "host/services/sql_text.h"

#include <utility>

#include "toolkit/database.h"
#include "toolkit/text.h"

namespace orv {
namespace {

bool NameChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '$';
}

bool IsAggregate(std::string_view word) {
  return word == "SUM" || word == "COUNT" || word == "MAX" || word == "MIN" || word == "AVG" ||
         word == "LIST";
}

// The place after the quoted text that begins at `from`; a doubled quote belongs to it.
std::size_t QuotedEnd(std::string_view sql, std::size_t from) {
  const char quote = sql[from];
  for (std::size_t at = from + 1; at < sql.size(); ++at) {
    if (sql[at] != quote) continue;
    if (at + 1 < sql.size() && sql[at + 1] == quote) {
      ++at;
      continue;
    }
    return at + 1;
  }
  return sql.size();
}

// The place after the name in braces that begins at `from`, or `from` where there is none.
std::size_t MacroEnd(std::string_view sql, std::size_t from) {
  std::size_t at = from + 1;
  while (at < sql.size() && NameChar(sql[at])) ++at;
  return at > from + 1 && at < sql.size() && sql[at] == '}' ? at + 1 : from;
}

// True for 'a' and for 'a'||'b', and nothing else. `text` takes what they hold.
bool ReadLiteral(std::string_view piece, std::string& text) {
  text.clear();
  while (true) {
    piece = Trim(piece);
    if (piece.size() < 2 || piece[0] != '\'') return false;
    const std::size_t end = QuotedEnd(piece, 0);
    if (piece[end - 1] != '\'' || end < 2) return false;
    const std::string held = ReplaceAll(piece.substr(1, end - 2), "''", "'");
    if (Quote(held) != piece.substr(0, end)) return false;
    text += held;
    piece = Trim(piece.substr(end));
    if (piece.empty()) return true;
    if (!piece.starts_with("||")) return false;
    piece.remove_prefix(2);
  }
}

}  // namespace

std::string SqlLiteral(std::string_view text) { return text == "{}" ? "'{'||'}'" : Quote(text); }

std::vector<std::string> SplitSqlList(std::string_view list, char separator) {
  std::vector<std::string> pieces;
  std::size_t from = 0;
  for (std::size_t at = 0; at < list.size();) {
    if (list[at] == '\'') {
      at = QuotedEnd(list, at);
    } else if (list[at++] == separator) {
      pieces.emplace_back(Trim(list.substr(from, at - 1 - from)));
      from = at;
    }
  }
  pieces.emplace_back(Trim(list.substr(from)));
  return pieces;
}

std::string AsSqlLiteral(std::string_view piece) {
  std::string text;
  return ReadLiteral(piece, text) ? SqlLiteral(text) : SqlLiteral(Trim(piece));
}

std::string SqlCodeList(std::string_view list) {
  std::vector<std::string> literals;
  for (const std::string& piece : SplitSqlList(list, ',')) {
    if (!piece.empty()) literals.push_back(AsSqlLiteral(piece));
  }
  return Join(literals, ",");
}

std::string ReplaceMacros(std::string_view sql, const MacroNames& names) {
  std::string result;
  result.reserve(sql.size() + 64);
  for (std::size_t at = 0; at < sql.size();) {
    const char c = sql[at];
    if (c == '\'' || c == '"') {
      const std::size_t end = QuotedEnd(sql, at);
      const std::string_view quoted = sql.substr(at, end - at);
      result += quoted == "'{}'" ? std::string_view(names.suffix_literal) : quoted;
      at = end;
    } else if (const std::size_t end = c == '{' ? MacroEnd(sql, at) : at; end > at) {
      result += names.table(sql.substr(at + 1, end - at - 2));
      at = end;
    } else {
      result += c;
      ++at;
    }
  }
  return result;
}

std::vector<std::string> MacroTables(std::string_view sql) {
  std::vector<std::string> tables;
  ReplaceMacros(sql, {[&](std::string_view table) {
                        tables.emplace_back(table);
                        return std::string();
                      },
                      ""});
  return tables;
}

int CountContexts(std::string_view sql) {
  int contexts = 0;
  bool grouped = false;
  std::string previous;
  for (std::size_t at = 0; at < sql.size();) {
    const char c = sql[at];
    if (c == '\'' || c == '"') {
      at = QuotedEnd(sql, at);
      previous.clear();
    } else if (const std::size_t end = c == '{' ? MacroEnd(sql, at) : at; end > at) {
      ++contexts;
      at = end;
      previous.clear();
    } else if (NameChar(c)) {
      std::size_t end_of_word = at;
      while (end_of_word < sql.size() && NameChar(sql[end_of_word])) ++end_of_word;
      const std::string word = Upper(sql.substr(at, end_of_word - at));
      // A table that isn't a macro, a further branch of a union, and a select that groups or adds up take
      // one.
      if (previous == "FROM" || previous == "JOIN" || word == "UNION") ++contexts;
      if (word == "SELECT") grouped = false;
      if ((word == "GROUP" || IsAggregate(word)) && !std::exchange(grouped, true)) ++contexts;
      previous = word;
      at = end_of_word;
    } else {
      if (c != ' ' && c != '\n' && c != '\r' && c != '\t') previous.clear();
      ++at;
    }
  }
  return contexts;
}

}  // namespace orv
