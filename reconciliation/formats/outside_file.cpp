#include "reconciliation/formats/outside_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kNotText = "O arquivo não é um texto: nenhuma linha foi lida.";
constexpr const char* kUtf16 =
    "O arquivo está em UTF-16. Grave-o como UTF-8 ou Windows-1252 e carregue-o de novo.";

// What a byte asks for.
enum : uint8_t { kPlain = 0, kHigh = 1, kControl = 2, kReturn = 4, kZero = 8 };

constexpr std::array<uint8_t, 256> kClasses = [] {
  std::array<uint8_t, 256> classes{};
  for (std::size_t c = 0; c < classes.size(); ++c) {
    if (c >= 0x80) classes[c] = kHigh;
    if (c < 0x20 || c == 0x7F) classes[c] = kControl;
  }
  classes['\n'] = kPlain;
  classes['\r'] = kReturn;
  classes[0] = kZero;
  return classes;
}();

// The code points of the bytes 0x80 to 0x9F in Windows-1252; the five that it leaves open are blanks.
constexpr std::array<uint16_t, 32> kWindows = {
    0x20AC, ' ',    0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, ' ',    0x017D, ' ',    ' ',    0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, ' ',    0x017E, 0x0178};

void AppendWindows(std::string& out, char c) {
  const auto byte = static_cast<unsigned char>(c);
  const uint32_t code = byte < 0x80 ? byte : byte < 0xA0 ? kWindows[byte - 0x80] : byte;
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// Length of a well-formed character of two bytes and more at `i`, 0 for any other byte.
std::size_t LongCharacter(std::string_view text, std::size_t i) {
  const auto lead = static_cast<unsigned char>(text[i]);
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  return length > 0 && i + length <= text.size() && ValidUtf8(text.substr(i, length)) ? length : 0;
}

// The first place from `i` on that isn't ASCII.
std::size_t AsciiEnd(std::string_view text, std::size_t i) {
  for (uint64_t eight = 0; i + sizeof eight <= text.size(); i += sizeof eight) {
    std::memcpy(&eight, text.data() + i, sizeof eight);
    if (eight & 0x8080808080808080U) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

// A text whose bytes beyond ASCII aren't all UTF-8. Where most are, a program cut a field in the midst of a
// character: only the strays are taken by themselves.
std::string FromMixed(std::string_view bytes) {
  std::size_t characters = 0, strays = 0;
  for (std::size_t i = AsciiEnd(bytes, 0); i < bytes.size(); i = AsciiEnd(bytes, i)) {
    const std::size_t length = LongCharacter(bytes, i);
    ++(length > 0 ? characters : strays);
    i += std::max<std::size_t>(length, 1);
  }
  const bool utf8 = characters > strays;
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t end = AsciiEnd(bytes, i);
    out.append(bytes.substr(i, end - i));
    if ((i = end) == bytes.size()) break;
    const std::size_t length = utf8 ? LongCharacter(bytes, i) : 0;
    if (length == 0) AppendWindows(out, bytes[i]);
    out.append(bytes.substr(i, length));
    i += std::max<std::size_t>(length, 1);
  }
  return out;
}

}  // namespace

std::string OutsideText(std::string bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) throw UserError(kUtf16);
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  // What old programs put behind the last line.
  while (!bytes.empty() && (bytes.back() == '\x1A' || bytes.back() == '\0')) bytes.pop_back();

  uint8_t found = kPlain;
  for (const char c : bytes) found |= kClasses[static_cast<unsigned char>(c)];
  if (found & kZero) throw UserError(kNotText);
  if (found & kControl) {
    for (char& c : bytes) {
      if (kClasses[static_cast<unsigned char>(c)] == kControl && c != '\t') c = ' ';
    }
  }
  if (found & kReturn) {
    char* const end = bytes.data() + bytes.size();
    for (char* at = bytes.data();
         (at = static_cast<char*>(std::memchr(at, '\r', static_cast<std::size_t>(end - at)))) != nullptr;) {
      if (++at == end || *at != '\n') at[-1] = '\n';
    }
  }
  return (found & kHigh) && !ValidUtf8(bytes) ? FromMixed(bytes) : bytes;
}

}  // namespace orv
