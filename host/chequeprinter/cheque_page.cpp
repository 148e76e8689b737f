#include "host/chequeprinter/cheque_page.h"

#include <algorithm>
#include <array>
#include <vector>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Model 1 takes the sheet as it is; the others are told pitch and character set in ESC sequences: ESC @
// resets, ESC M and SI choose the pitch, ESC t 2 the code page 850.
constexpr std::array<ChequeModel, 4> kModels{{
    {"\x1B@", "\f", "\r\n", 1, 58, 3, 12, 62, 2, 72, 6, 4, 70, 8, 30, 44},
    {std::string_view("\x1B@\x1Bt\x02", 5), "\f", "\r\n", 0, 60, 2, 14, 60, 2, 72, 5, 4, 70, 7, 32, 42},
    {std::string_view("\x1B@\x1Bt\x02\x1BM", 7),
     "\x1B"
     "B\f",
     "\r\n", 1, 70, 3, 15, 74, 3, 86, 6, 5, 84, 8, 38, 50},
    {std::string_view("\x1B@\x1Bt\x02\x0F", 6), "\x12\f", "\n", 2, 78, 4, 18, 90, 4, 104, 7, 6, 100, 9, 46,
     60},
}};

// Code points from U+00A0 as code page 850.
constexpr std::array<unsigned char, 96> kUpperHalf{
    0xFF, 0xAD, 0xBD, 0x9C, 0xCF, 0xBE, 0xDD, 0xF5, 0xF9, 0xB8, 0xA6, 0xAE, 0xAA, 0xF0, 0xA9, 0xEE,
    0xF8, 0xF1, 0xFD, 0xFC, 0xEF, 0xE6, 0xF4, 0xFA, 0xF7, 0xFB, 0xA7, 0xAF, 0xAC, 0xAB, 0xF3, 0xA8,
    0xB7, 0xB5, 0xB6, 0xC7, 0x8E, 0x8F, 0x92, 0x80, 0xD4, 0x90, 0xD2, 0xD3, 0xDE, 0xD6, 0xD7, 0xD8,
    0xD1, 0xA5, 0xE3, 0xE0, 0xE2, 0xE5, 0x99, 0x9E, 0x9D, 0xEB, 0xE9, 0xEA, 0x9A, 0xED, 0xE8, 0xE1,
    0x85, 0xA0, 0x83, 0xC6, 0x84, 0x86, 0x91, 0x87, 0x8A, 0x82, 0x88, 0x89, 0x8D, 0xA1, 0x8C, 0x8B,
    0xD0, 0xA4, 0x95, 0xA2, 0x93, 0xE4, 0x94, 0xF6, 0x9B, 0x97, 0xA3, 0x96, 0x81, 0xEC, 0xE7, 0x98};

constexpr std::array<const char*, 13> kMonths{"",        "janeiro",  "fevereiro", "março",  "abril",
                                              "maio",    "junho",    "julho",     "agosto", "setembro",
                                              "outubro", "novembro", "dezembro"};

// Lines of one-byte characters that are written at places.
class Sheet {
 public:
  void Put(int line, int column, std::string_view bytes) {
    const auto row = static_cast<std::size_t>(line), from = static_cast<std::size_t>(column);
    if (lines_.size() <= row) lines_.resize(row + 1);
    std::string& text = lines_[row];
    if (text.size() < from + bytes.size()) text.resize(from + bytes.size(), ' ');
    text.replace(from, bytes.size(), bytes);
  }
  std::string Bytes(std::string_view line_end) const {
    std::string bytes;
    for (const std::string& line : lines_) bytes.append(line).append(line_end);
    return bytes;
  }

 private:
  std::vector<std::string> lines_;
};

std::string Cut(std::string_view text, int width) {
  return ToCodePage850(CutChars(Trim(text), static_cast<std::size_t>(width)));
}

// Asterisks to the end of the line: nothing can be added.
std::string Filled(std::string bytes, int width) {
  bytes.resize(std::max(bytes.size(), static_cast<std::size_t>(width)), '*');
  return bytes;
}

std::string DateInWords(Date date) {
  return std::to_string(date.Day()) + " de " + kMonths[static_cast<std::size_t>(date.Month())] + " de " +
         std::to_string(date.Year());
}

}  // namespace

const ChequeModel& GetChequeModel(int model) {
  ORV_ASSERT(model >= 1 && model <= 4);
  return kModels[static_cast<std::size_t>(model - 1)];
}

std::string ToCodePage850(std::string_view text) {
  std::string bytes;
  const std::string clean = CleanUtf8(text);
  for (std::size_t at = 0; at < clean.size();) {
    const auto first = static_cast<unsigned char>(clean[at]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 1) {
      if (first >= 0x20 && first != 0x7F) bytes += static_cast<char>(first);
    } else if (length == 2) {
      const unsigned code = (first & 0x1FU) << 6 | (static_cast<unsigned char>(clean[at + 1]) & 0x3FU);
      if (code >= 0xA0 && code <= 0xFF) {
        bytes += static_cast<char>(kUpperHalf[code - 0xA0]);
      } else if (code >= 0x100) {
        bytes += '?';
      }
    } else {
      bytes += '?';
    }
    at += length;
  }
  return bytes;
}

std::string ChequePage(const ChequeModel& model, const ChequeText& text) {
  // The words go on in the second line after the last blank that the first has room for.
  const std::string words = "(" + ToCodePage850(Upper(text.words)) + ")";
  const auto first_width = static_cast<std::size_t>(model.words_width);
  std::string first = words, second;
  if (words.size() > first_width) {
    std::size_t blank = words.rfind(' ', first_width);
    if (blank == std::string::npos) blank = first_width;
    first = words.substr(0, blank);
    second = Trim(std::string_view(words).substr(blank));
  }
  if (second.size() > static_cast<std::size_t>(model.words2_width)) {
    throw UserError("O valor por extenso não cabe no cheque.");
  }

  Sheet sheet;
  sheet.Put(model.amount_line, model.amount_column, "#" + text.amount.Brazil() + "#");
  sheet.Put(model.words_line, model.words_column, Filled(first, model.words_width));
  sheet.Put(model.words_line + 1, model.words2_column, Filled(second, model.words2_width));
  sheet.Put(model.payee_line, model.payee_column, Cut(text.payee, model.payee_width));
  sheet.Put(model.place_line, model.place_column,
            Cut(std::string(Trim(text.city)) + ", " + DateInWords(text.date), model.place_width));
  return std::string(model.start) + sheet.Bytes(model.line_end) + std::string(model.end);
}

}  // namespace orv
