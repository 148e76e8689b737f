#include "toolkit/text.h"

#include <array>
#include <cstdint>

namespace orv {
namespace {

// Length of the well-formed sequence at `i`, 0 when malformed.
std::size_t SequenceLength(std::string_view text, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byte(i);
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  uint32_t code = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, code = lead & 0x07;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    code = (code << 6) | (byte(i + k) & 0x3F);
  }
  if (length == 3 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF))) return 0;
  if (length == 4 && (code < 0x10000 || code > 0x10FFFF)) return 0;
  return length;
}

std::size_t StepLength(std::string_view text, std::size_t i) {
  const std::size_t length = SequenceLength(text, i);
  return length == 0 ? 1 : length;
}

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// The Latin-1 letters U+00C0 to U+00FE are two bytes, 0xC3 and 0x80 to 0xBE; upper and lower case lie 0x20
// apart, but for the two signs of multiplication and division.
bool LatinUpper(unsigned char second) { return second >= 0x80 && second <= 0x9E && second != 0x97; }
bool LatinLower(unsigned char second) { return second >= 0xA0 && second <= 0xBE && second != 0xB7; }

}  // namespace

std::size_t CharCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i += StepLength(text, i)) ++count;
  return count;
}

std::string_view CutChars(std::string_view text, std::size_t count) {
  if (text.size() <= count) return text;
  std::size_t i = 0;
  while (i < text.size() && count > 0) i += StepLength(text, i), --count;
  return text.substr(0, i);
}

bool ValidUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = SequenceLength(text, i);
    if (length == 0 || text[i] == '\0') return false;
    i += length;
  }
  return true;
}

std::string CleanUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = SequenceLength(text, i);
    if (length == 0 || text[i] == '\0') {
      out += "\xEF\xBF\xBD";
      ++i;
    } else {
      out.append(text.substr(i, length));
      i += length;
    }
  }
  return out;
}

std::string Upper(std::string_view text) {
  std::string out(text);
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = UpperAscii(out[i]);
    if (out[i] == '\xC3' && i + 1 < out.size() && LatinLower(static_cast<unsigned char>(out[i + 1]))) {
      ++i;
      out[i] = static_cast<char>(out[i] - 0x20);
    }
  }
  return out;
}

std::string Lower(std::string_view text) {
  std::string out(text);
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = LowerAscii(out[i]);
    if (out[i] == '\xC3' && i + 1 < out.size() && LatinUpper(static_cast<unsigned char>(out[i + 1]))) {
      ++i;
      out[i] = static_cast<char>(out[i] + 0x20);
    }
  }
  return out;
}

bool SameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (LowerAscii(a[i]) == LowerAscii(b[i])) continue;
    // A byte after 0xC3 may differ by case alone.
    if (i > 0 && a[i - 1] == '\xC3' && Lower(a.substr(i - 1, 2)) == Lower(b.substr(i - 1, 2))) continue;
    return false;
  }
  return true;
}

std::string Fold(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  AppendFolded(text, out);
  return out;
}

void AppendFolded(std::string_view text, std::string& out) {
  // Base letters of U+00E0 to U+00FE.
  static constexpr std::string_view kBase = "aaaaaaaceeeeiiiidnooooo/ouuuuyty";
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\xC3' && i + 1 < text.size()) {
      auto second = static_cast<unsigned char>(text[i + 1]);
      if (LatinUpper(second)) second += 0x20;
      if (second >= 0xA0 && second < 0xBF) {
        out += kBase[second - 0xA0];
        ++i;
        continue;
      }
    }
    out += LowerAscii(text[i]);
  }
}

std::string_view TrimCode(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

std::string_view Trim(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  if (separator.empty()) {
    parts.emplace_back(text);
    return parts;
  }
  for (;;) {
    const std::size_t at = text.find(separator);
    parts.emplace_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + separator.size());
  }
}

std::string Join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string out;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) out += separator;
    out += parts[i];
  }
  return out;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  return from.empty() ? std::string(text) : Join(Split(text, from), to);
}

std::size_t NameHash::operator()(std::string_view name) const {
  // FNV-1a over the lower-case bytes. The accented letters fold by clearing the case bit of the second byte.
  uint64_t hash = 14695981039346656037ULL;
  for (std::size_t i = 0; i < name.size(); ++i) {
    auto byte = static_cast<unsigned char>(LowerAscii(name[i]));
    if (i > 0 && name[i - 1] == '\xC3') byte |= 0x20;
    hash = (hash ^ byte) * 1099511628211ULL;
  }
  return hash;
}

}  // namespace orv
