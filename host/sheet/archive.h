// The parts of a book's file: what it is, and each part's bytes within bounds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct zip;

namespace orv {

// The largest file that is read, in bytes.
constexpr std::size_t kMaxSheetFile = std::size_t{16} << 20;

class Archive {
 public:
  // The bytes outlive it. Raises UserError, which says what the file is, for any that isn't of this kind.
  explicit Archive(std::string_view bytes);

  // Parts go by their names without regard to case, "xl/workbook.xml".
  bool Has(const std::string& part) const;
  // Hands on a part piece by piece. Raises UserError when it isn't there, is damaged or protected, or holds
  // more than it says or than a book may.
  void Read(const std::string& part, const std::function<void(std::string_view)>& piece);

 private:
  std::unique_ptr<zip, void (*)(zip*)> zip_;
  std::unordered_map<std::string, uint64_t> parts_;
  uint64_t left_;  // bytes that may still come out of it
};

}  // namespace orv
