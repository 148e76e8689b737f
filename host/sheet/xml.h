// A part of a book read as XML, event by event.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

class Archive;

class XmlAttributes {
 public:
  explicit XmlAttributes(const char** pairs) : pairs_(pairs) {}
  // By the name without its namespace; nothing when it isn't there.
  std::optional<std::string_view> Find(std::string_view name) const;
  std::string_view Get(std::string_view name) const { return Find(name).value_or(std::string_view()); }
  // "1" or "true".
  bool On(std::string_view name) const { return Get(name) == "1" || Get(name) == "true"; }

 private:
  const char** pairs_;
};

// Names come without their namespaces; elements of foreign ones come as "".
class XmlReader {
 public:
  virtual ~XmlReader() = default;
  // Reads the part to its end, or until one of the calls below raises what this then raises, too. Raises
  // UserError for what isn't well formed, has a DOCTYPE, or is beyond all measure.
  void Read(Archive& archive, const std::string& part);

 protected:
  virtual void Start(std::string_view name, const XmlAttributes& attributes) = 0;
  virtual void End(std::string_view) {}
  // A piece of a text, of which there may be several.
  virtual void Text(std::string_view) {}

 private:
  friend struct XmlCalls;
};

// A number without a sign; nothing for anything else and beyond 999,999,999.
std::optional<int> WholeNumber(std::string_view text);

}  // namespace orv
