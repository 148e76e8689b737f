// What a book keeps beside its sheets: which one comes first, the formats of its cells, their texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/sheet/archive.h"
#include "host/sheet/number_format.h"

namespace orv {

// Raises UserError for a text longer than a cell's may be, 32,767 characters.
void RequireCellText(std::size_t bytes);

// The text as meant: "_x000D_" stands for the character of that number.
void Unescape(std::string& text);

// Many short texts, each in one piece, at four bytes more than they have.
class TextPool {
 public:
  // Raises UserError when they become too many.
  void Add(std::string_view text);
  std::size_t Size() const { return places_.size(); }
  std::string_view operator[](std::size_t i) const;

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t used_ = 0;  // of the last block
  std::deque<uint32_t> places_;
};

struct Book {
  // Reads all but the sheet. Raises UserError.
  explicit Book(Archive& archive);
  // Of a cell's style, "General" for an unknown one.
  const NumberFormat& Format(std::size_t style) const {
    return formats[style < styles.size() ? styles[style] : 0];
  }

  std::string sheet;  // the part
  bool from1904 = false;
  std::vector<NumberFormat> formats;
  std::vector<uint32_t> styles;
  TextPool texts;
};

}  // namespace orv
