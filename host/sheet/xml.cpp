#include "host/sheet/xml.h"

#include <expat.h>
#include <malloc.h>

#include <charconv>
#include <cstdlib>
#include <exception>
#include <memory>

#include "host/sheet/archive.h"
#include "host/sheet/faults.h"

namespace orv {
namespace {

constexpr int kMostDepth = 64;
// As many rows of 15 cells as a quarter of a million have.
constexpr int kMostElements = 8'000'000;
// A tag with its attributes, a comment.
constexpr std::size_t kMostTag = std::size_t{1} << 20;
// The parser keeps each name that it meets.
constexpr std::size_t kMostMemory = std::size_t{12} << 20;
// Parts a name from its namespace.
constexpr char kMark = '|';

constexpr std::string_view kOwn[] = {
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main",
    "http://purl.oclc.org/ooxml/spreadsheetml/main",
    "http://schemas.openxmlformats.org/package/2006/relationships",
};

// Of the parsers on this thread.
thread_local std::size_t memory = 0;

void* Allocate(std::size_t size) {
  if (size > kMostMemory || memory > kMostMemory - size) return nullptr;
  void* const block = std::malloc(size);
  if (block != nullptr) memory += ::malloc_usable_size(block);
  return block;
}

void Free(void* block) {
  if (block == nullptr) return;
  memory -= ::malloc_usable_size(block);
  std::free(block);
}

void* Reallocate(void* block, std::size_t size) {
  if (block == nullptr) return Allocate(size);
  if (size > kMostMemory || memory > kMostMemory - size) return nullptr;
  const std::size_t had = ::malloc_usable_size(block);
  void* const moved = std::realloc(block, size);
  if (moved != nullptr) memory += ::malloc_usable_size(moved) - had;
  return moved;
}

std::string_view LocalName(std::string_view name) {
  for (const std::string_view own : kOwn) {
    if (name.size() > own.size() && name[own.size()] == kMark && name.starts_with(own))
      return name.substr(own.size() + 1);
  }
  // Some write no namespace at all.
  return name.find(kMark) == std::string_view::npos ? name : std::string_view();
}

}  // namespace

// What the parser calls. Nothing may be thrown through it: an exception is kept and raised behind it.
struct XmlCalls {
  explicit XmlCalls(XmlReader& to) : reader(to) {
    const XML_Memory_Handling_Suite suite{Allocate, Reallocate, Free};
    const char separator[] = {kMark, '\0'};
    parser.reset(XML_ParserCreate_MM(nullptr, &suite, separator));
    if (parser == nullptr) throw UserError(kTooMuch);
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(
        parser.get(),
        [](void* self, const char* name, const char** attributes) {
          Call(self, [&](XmlCalls& calls) {
            if (++calls.depth > kMostDepth || ++calls.elements > kMostElements) throw UserError(kTooMuch);
            calls.reader.Start(LocalName(name), XmlAttributes(attributes));
          });
        },
        [](void* self, const char* name) {
          Call(self, [&](XmlCalls& calls) {
            --calls.depth;
            calls.reader.End(LocalName(name));
          });
        });
    XML_SetCharacterDataHandler(parser.get(), [](void* self, const char* text, int length) {
      Call(self, [&](XmlCalls& calls) { calls.reader.Text({text, static_cast<std::size_t>(length)}); });
    });
    XML_SetStartDoctypeDeclHandler(parser.get(), [](void* self, const char*, const char*, const char*, int) {
      Call(self, [](XmlCalls&) {
        throw UserError(
            "A planilha traz definições próprias (DOCTYPE), que não são aceitas. Abra-a no editor de "
            "planilhas e grave-a outra vez.");
      });
    });
  }

  template <class Work>
  static void Call(void* self, Work work) noexcept {
    XmlCalls& calls = *static_cast<XmlCalls*>(self);
    calls.silent = 0;
    // A stopped parser may still end an element.
    if (calls.kept != nullptr) return;
    try {
      work(calls);
    } catch (...) {
      calls.kept = std::current_exception();
      XML_StopParser(calls.parser.get(), XML_FALSE);
    }
  }

  void Parse(std::string_view piece, bool last) {
    silent += piece.size();
    const XML_Status status = XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), last);
    if (kept != nullptr) std::rethrow_exception(kept);
    if (status != XML_STATUS_OK)
      throw UserError(XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY ? kTooMuch : kDamaged);
    if (silent > kMostTag) throw UserError(kTooMuch);
  }

  XmlReader& reader;
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser{nullptr, XML_ParserFree};
  std::exception_ptr kept;
  int depth = 0, elements = 0;
  std::size_t silent = 0;  // bytes since the last call
};

std::optional<std::string_view> XmlAttributes::Find(std::string_view name) const {
  for (const char** pair = pairs_; *pair != nullptr; pair += 2) {
    const std::string_view key = *pair;
    if (key == name ||
        (key.size() > name.size() && key.ends_with(name) && key[key.size() - name.size() - 1] == kMark))
      return pair[1];
  }
  return std::nullopt;
}

void XmlReader::Read(Archive& archive, const std::string& part) {
  XmlCalls calls(*this);
  archive.Read(part, [&](std::string_view piece) { calls.Parse(piece, false); });
  calls.Parse({}, true);
}

std::optional<int> WholeNumber(std::string_view text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  if (text.empty() || text.size() > 9 || text[0] == '-' ||
      std::from_chars(text.data(), end, number).ptr != end)
    return std::nullopt;
  return number;
}

}  // namespace orv
