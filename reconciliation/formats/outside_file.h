// A file that came from outside, as text: its encoding found by its bytes, its lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

// The largest file that is read, in bytes.
constexpr std::size_t kMaxOutsideFile = std::size_t{64} << 20;

// The bytes as UTF-8 without its mark. Bytes that aren't UTF-8 are taken as Windows-1252, whose printed
// characters include those of ISO-8859-1, whatever the file says of itself. Lines end in LF or CR LF; other
// control characters are blanks, one for one. Raises UserError for what isn't text: UTF-16, or a zero byte.
std::string OutsideText(std::string bytes);

// The lines of a text, without their ends. An end of line at the end begins no further line.
class TextLines {
 public:
  explicit TextLines(std::string_view text) : rest_(text) {}
  // False at the end. The view is into the text.
  bool Next(std::string_view& line) {
    if (rest_.empty()) return false;
    const std::size_t end = rest_.find('\n');
    line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    ++number_;
    return true;
  }
  // Of the latest line, from 1.
  std::size_t Number() const { return number_; }

 private:
  std::string_view rest_;
  std::size_t number_ = 0;
};

}  // namespace orv
