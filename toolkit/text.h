// UTF-8 text as the desk needs it: counting and cutting by characters, case, trimming, splitting.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Number of characters (code points); an invalid byte counts as one.
std::size_t CharCount(std::string_view text);

// The first `count` characters.
std::string_view CutChars(std::string_view text, std::size_t count);

// True when the text is well-formed UTF-8 without NUL.
bool ValidUtf8(std::string_view text);

// The text with each malformed byte and each NUL replaced by U+FFFD.
std::string CleanUtf8(std::string_view text);

// Upper and lower case of ASCII and of the Latin letters with accents.
std::string Upper(std::string_view text);
std::string Lower(std::string_view text);

// Equal without regard to case. Names (fields, tables, classes) are compared so.
bool SameText(std::string_view a, std::string_view b);

// Lower case without accents: what a search types for what a list shows.
std::string Fold(std::string_view text);
void AppendFolded(std::string_view text, std::string& out);

std::string_view Trim(std::string_view text);
// Without trailing blanks, which the database takes for nothing where it compares codes.
std::string_view TrimCode(std::string_view text);

// The pieces between separators; an empty text gives one empty piece.
std::vector<std::string> Split(std::string_view text, std::string_view separator);

std::string Join(const std::vector<std::string>& parts, std::string_view separator);

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

// A hasher and an equality for maps keyed by names.
struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const;
};
struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return SameText(a, b); }
};

}  // namespace orv
