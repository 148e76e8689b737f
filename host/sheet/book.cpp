#include "host/sheet/book.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>

#include "host/sheet/faults.h"
#include "host/sheet/xml.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostCellText = std::size_t{4} * 32767;
constexpr std::size_t kBlock = std::size_t{1} << 20;
// Of all texts together, with the places where they stand.
constexpr std::size_t kMostTexts = std::size_t{28} << 20;
constexpr std::size_t kMostStyles = 100'000, kMostCodes = std::size_t{256} << 10;
constexpr std::size_t kMostSheets = 1000;

struct Relation {
  std::string id, type, target;
};

bool Is(const Relation& relation, std::string_view type) {
  return relation.type.ends_with(type) && relation.type.size() > type.size() &&
         relation.type[relation.type.size() - type.size() - 1] == '/';
}

std::string_view FolderOf(std::string_view part) {
  const std::size_t slash = part.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : part.substr(0, slash + 1);
}

// A target as written in a part of that folder.
std::string Resolve(std::string_view folder, std::string_view target) {
  std::string path = target.starts_with('/') ? "" : std::string(folder);
  path += target;
  std::vector<std::string> steps;
  for (std::string& step : Split(path, "/")) {
    if (step == "..") {
      if (!steps.empty()) steps.pop_back();
    } else if (!step.empty() && step != ".") {
      steps.push_back(std::move(step));
    }
  }
  return Join(steps, "/");
}

class Relations : public XmlReader {
 public:
  // Those of a part; "" stands for the book itself.
  Relations(Archive& archive, std::string_view part) : folder_(FolderOf(part)) {
    const std::string file = folder_ + "_rels/" + std::string(part.substr(folder_.size())) + ".rels";
    if (archive.Has(file)) Read(archive, file);
  }
  // The target of the first one of that type, `otherwise` without one.
  std::string Target(std::string_view type, std::string_view otherwise) const {
    for (const Relation& relation : relations_) {
      if (Is(relation, type)) return relation.target;
    }
    return std::string(otherwise);
  }
  const Relation* Find(std::string_view id) const {
    const auto found = std::find_if(relations_.begin(), relations_.end(),
                                    [&](const Relation& relation) { return relation.id == id; });
    return found == relations_.end() ? nullptr : &*found;
  }

 private:
  void Start(std::string_view name, const XmlAttributes& attributes) override {
    if (name != "Relationship" || attributes.Get("TargetMode") == "External") return;
    if (relations_.size() == kMostSheets * 2) throw UserError(kTooMuch);
    relations_.push_back({std::string(attributes.Get("Id")), std::string(attributes.Get("Type")),
                          Resolve(folder_, attributes.Get("Target"))});
  }

  std::string folder_;
  std::vector<Relation> relations_;
};

struct Workbook : XmlReader {
  void Start(std::string_view name, const XmlAttributes& attributes) override {
    if (name == "workbookPr") from1904 = attributes.On("date1904");
    if (name != "sheet") return;
    if (++sheets > kMostSheets) throw UserError(kTooMuch);
    const std::string_view state = attributes.Get("state");
    if (state != "hidden" && state != "veryHidden") visible.emplace_back(attributes.Get("id"));
  }

  bool from1904 = false;
  std::size_t sheets = 0;
  std::vector<std::string> visible;  // relations of the tabs
};

class Styles : public XmlReader {
 public:
  void Into(Book& book) {
    std::map<int, uint32_t> places;
    for (const int named : cells_) {
      // One that neither the file nor the format knows is none.
      const int id = codes_.contains(named) || named < 100 ? named : 0;
      const auto [place, added] = places.try_emplace(id, static_cast<uint32_t>(book.formats.size()));
      if (added) {
        const auto code = codes_.find(id);
        // These two follow the user's country, whatever the file says of them.
        const bool country = id == 14 || id == 22;
        book.formats.emplace_back(code == codes_.end() || country ? NumberFormat::BuiltIn(id) : code->second);
      }
      book.styles.push_back(place->second);
    }
  }

 private:
  void Start(std::string_view name, const XmlAttributes& attributes) override {
    if (name == "numFmt") {
      const std::string_view code = attributes.Get("formatCode");
      size_ += code.size() + sizeof(NumberFormat);
      if (size_ > kMostCodes) throw UserError(kTooMuch);
      if (const auto id = WholeNumber(attributes.Get("numFmtId"))) codes_.emplace(*id, code);
    } else if (name == "cellXfs") {
      inside_ = true;
    } else if (name == "xf" && inside_) {
      if (cells_.size() == kMostStyles) throw UserError(kTooMuch);
      cells_.push_back(WholeNumber(attributes.Get("numFmtId")).value_or(0));
    }
  }
  void End(std::string_view name) override {
    if (name == "cellXfs") inside_ = false;
  }

  bool inside_ = false;
  std::size_t size_ = 0;
  std::map<int, std::string> codes_;
  std::vector<int> cells_;
};

class Texts : public XmlReader {
 public:
  explicit Texts(TextPool& pool) : pool_(pool) {}

 private:
  void Start(std::string_view name, const XmlAttributes&) override {
    if (name == "si") text_.clear();
    if (name == "rPh") phonetic_ = true;
    inside_ = name == "t" && !phonetic_;
  }
  void End(std::string_view name) override {
    inside_ = false;
    if (name == "rPh") phonetic_ = false;
    if (name != "si") return;
    Unescape(text_);
    pool_.Add(text_);
  }
  void Text(std::string_view piece) override {
    if (!inside_) return;
    RequireCellText(text_.size() + piece.size());
    text_ += piece;
  }

  TextPool& pool_;
  bool inside_ = false, phonetic_ = false;
  std::string text_;
};

}  // namespace

void RequireCellText(std::size_t bytes) {
  if (bytes > kMostCellText) throw UserError(kTooMuch);
}

void Unescape(std::string& text) {
  std::size_t at = text.find("_x");
  if (at == std::string::npos) return;
  std::string meant(text, 0, at);
  while (at < text.size()) {
    unsigned code = 0;
    const char* const digits = text.data() + at + 2;
    const bool escape = at + 7 <= text.size() && text[at] == '_' && text[at + 1] == 'x' &&
                        text[at + 6] == '_' &&
                        std::from_chars(digits, digits + 4, code, 16).ptr == digits + 4;
    if (!escape) {
      meant += text[at++];
      continue;
    }
    at += 7;
    // A half of a character beyond 16 bits, and the zero, can't stand in a text.
    if (code == 0 || (code >= 0xD800 && code <= 0xDFFF)) code = 0xFFFD;
    if (code < 0x80) {
      meant += static_cast<char>(code);
    } else if (code < 0x800) {
      meant += static_cast<char>(0xC0 | (code >> 6));
      meant += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      meant += static_cast<char>(0xE0 | (code >> 12));
      meant += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      meant += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  text = std::move(meant);
}

void TextPool::Add(std::string_view text) {
  const auto length = static_cast<uint32_t>(text.size());
  const std::size_t size = sizeof length + text.size();
  if (blocks_.empty() || used_ + size > kBlock) {
    if (blocks_.size() * kBlock + places_.size() * sizeof(uint32_t) > kMostTexts) throw UserError(kTooMuch);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(kBlock));
    used_ = 0;
  }
  char* const place = blocks_.back().get() + used_;
  std::memcpy(place, &length, sizeof length);
  std::memcpy(place + sizeof length, text.data(), text.size());
  places_.push_back(static_cast<uint32_t>((blocks_.size() - 1) * kBlock + used_));
  used_ += size;
}

std::string_view TextPool::operator[](std::size_t i) const {
  const uint32_t place = places_[i];
  const char* const at = blocks_[place / kBlock].get() + place % kBlock;
  uint32_t length = 0;
  std::memcpy(&length, at, sizeof length);
  return {at + sizeof length, length};
}

Book::Book(Archive& archive) {
  const std::string part = Relations(archive, "").Target("officeDocument", "xl/workbook.xml");
  if (!archive.Has(part) || !part.ends_with(".xml")) throw UserError(kNotABook);
  Workbook workbook;
  workbook.Read(archive, part);
  from1904 = workbook.from1904;

  const Relations relations(archive, part);
  for (const std::string& id : workbook.visible) {
    // A tab may be a chart.
    const Relation* const relation = relations.Find(id);
    if (relation == nullptr || !Is(*relation, "worksheet")) continue;
    sheet = relation->target;
    break;
  }
  if (sheet.empty()) {
    throw UserError(
        workbook.sheets == 0
            ? kNotABook
            : "Nenhuma aba da planilha está visível. Abra-a no editor de planilhas, reexiba a aba e "
              "grave-a outra vez.");
  }

  const std::string folder(FolderOf(part));
  formats.emplace_back("General");
  if (const std::string file = relations.Target("styles", folder + "styles.xml"); archive.Has(file)) {
    Styles read;
    read.Read(archive, file);
    read.Into(*this);
  }
  if (const std::string file = relations.Target("sharedStrings", folder + "sharedStrings.xml");
      archive.Has(file))
    Texts(texts).Read(archive, file);
}

}  // namespace orv
