#include "toolkit/filter.h"

#include <algorithm>

#include "toolkit/text.h"

namespace orv {

namespace {

bool NameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool DigitChar(char c) { return c >= '0' && c <= '9'; }

// Bytes of the character at the front.
std::size_t CharBytes(std::string_view text) { return CutChars(text, 1).size(); }

}  // namespace

bool MatchesLike(std::string_view text, std::string_view pattern) {
  // The latest % and where its match may still grow.
  std::string_view star, rest;
  bool starred = false;
  for (;;) {
    if (!pattern.empty() && pattern.front() == '%') {
      pattern.remove_prefix(1);
      star = pattern, rest = text, starred = true;
      continue;
    }
    if (text.empty() && pattern.empty()) return true;
    if (!text.empty() && !pattern.empty()) {
      const std::size_t size = CharBytes(text);
      if (pattern.front() == '_') {
        text.remove_prefix(size), pattern.remove_prefix(1);
        continue;
      }
      if (text.front() == pattern.front()) {
        text.remove_prefix(1), pattern.remove_prefix(1);
        continue;
      }
    }
    if (!starred || rest.empty()) return false;
    rest.remove_prefix(CharBytes(rest));
    text = rest, pattern = star;
  }
}

class FilterParser {
 public:
  FilterParser(const DataSet& set, std::string_view text, Filter& filter)
      : set_(set), text_(text), filter_(filter) {}

  void Parse() {
    Advance();
    filter_.root_ = Or();
    if (!word_.empty()) Fail();
    filter_.FindEqualities(filter_.root_);
  }

 private:
  // Deeper brackets than a person writes would exhaust the stack.
  static constexpr int kMaxDepth = 100;
  enum class Word : uint8_t { End, Name, Number, Text, Sign };

  [[noreturn]] void Fail() const { Fail(from_); }
  [[noreturn]] void Fail(std::size_t at) const {
    throw UserError("O filtro \"" + std::string(text_) + "\" não se entende na posição " +
                    std::to_string(CharCount(text_.substr(0, at)) + 1) + ".");
  }

  // Reads the next word into word_, kind_ and, for a quoted text, literal_.
  void Advance() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\n' || text_[at_] == '\r'))
      ++at_;
    from_ = at_;
    kind_ = Word::End;
    if (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '\'') {
        ReadText();
      } else if (DigitChar(c) ||
                 ((c == '-' || c == '.') && at_ + 1 < text_.size() && DigitChar(text_[at_ + 1]))) {
        kind_ = Word::Number;
        ++at_;
        while (at_ < text_.size() && (DigitChar(text_[at_]) || text_[at_] == '.')) ++at_;
      } else if (NameChar(c)) {
        kind_ = Word::Name;
        while (at_ < text_.size() && NameChar(text_[at_])) ++at_;
      } else {
        kind_ = Word::Sign;
        ++at_;
        const std::string_view two = text_.substr(from_, 2);
        if (two == "<>" || two == "<=" || two == ">=") ++at_;
      }
    }
    word_ = text_.substr(from_, at_ - from_);
  }

  void ReadText() {
    kind_ = Word::Text;
    literal_.clear();
    for (++at_;; ++at_) {
      if (at_ >= text_.size()) Fail();
      if (text_[at_] == '\'') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != '\'') break;
        ++at_;
      }
      literal_ += text_[at_];
    }
    ++at_;
  }

  bool Is(std::string_view word) const { return kind_ != Word::Text && SameText(word_, word); }
  bool Take(std::string_view word) {
    if (!Is(word)) return false;
    Advance();
    return true;
  }
  void Expect(std::string_view word) {
    if (!Take(word)) Fail();
  }

  int Add(Filter::Node node) {
    filter_.nodes_.push_back(std::move(node));
    return static_cast<int>(filter_.nodes_.size()) - 1;
  }
  int Join(Filter::Kind kind, std::vector<int> parts) {
    if (parts.size() == 1 && kind != Filter::Kind::Not) return parts[0];
    Filter::Node node;
    node.kind = kind, node.parts = std::move(parts);
    return Add(std::move(node));
  }

  int Or() {
    std::vector<int> parts{And()};
    while (Take("OR")) parts.push_back(And());
    return Join(Filter::Kind::Or, std::move(parts));
  }
  int And() {
    std::vector<int> parts{Not()};
    while (Take("AND")) parts.push_back(Not());
    return Join(Filter::Kind::And, std::move(parts));
  }
  int Not() {
    if (++depth_ > kMaxDepth) Fail();
    int node = -1;
    if (Take("NOT")) {
      node = Join(Filter::Kind::Not, {Not()});
    } else if (Take("(")) {
      node = Or();
      Expect(")");
    } else {
      node = Comparison();
    }
    --depth_;
    return node;
  }

  // A field's number, or -1 after a value was read into `raw`.
  struct Raw {
    int field = -1;
    std::size_t at = 0;
    std::string text;
  };
  Raw Operand() {
    Raw raw;
    raw.at = from_;
    if (kind_ == Word::Name) {
      const Field* field = set_.FindField(word_);
      if (field == nullptr) Fail();
      raw.field = field->Index();
    } else if (kind_ == Word::Text) {
      raw.text = literal_;
    } else if (kind_ == Word::Number) {
      raw.text = std::string(word_);
    } else {
      Fail();
    }
    Advance();
    return raw;
  }

  Raw Literal() {
    const Raw raw = Operand();
    if (raw.field >= 0) Fail(raw.at);
    return raw;
  }

  // A value as the field with which it is compared would hold it.
  Value Typed(const Raw& raw, int field) const {
    const FieldType type =
        field < 0 ? FieldType::String : set_.Fields()[static_cast<std::size_t>(field)]->Type();
    try {
      switch (type) {
        case FieldType::String:
          return Value(raw.text);
        case FieldType::Integer:
        case FieldType::Float:
          return Value(ParseFloat(raw.text));
        case FieldType::Currency:
          return Value(Currency::ParseNeutral(raw.text));
        case FieldType::Date:
        case FieldType::DateTime:
          return Value(Date::ParseBrazil(raw.text));
      }
    } catch (const UserError&) {
      Fail(raw.at);
    }
    return {};
  }
  Filter::Operand Finish(const Raw& raw, int other_field) const {
    Filter::Operand operand;
    operand.field = raw.field;
    if (raw.field < 0) operand.value = Typed(raw, other_field);
    return operand;
  }

  int Comparison() {
    const Raw left = Operand();
    Filter::Node node;
    if (Take("IS")) {
      const bool negated = Take("NOT");
      Expect("NULL");
      node.kind = Filter::Kind::Null;
      node.left = Finish(left, -1);
      const int null = Add(std::move(node));
      return negated ? Join(Filter::Kind::Not, {null}) : null;
    }
    const bool negated = Take("NOT");
    if (Take("IN")) {
      node.kind = Filter::Kind::In;
      node.left = Finish(left, -1);
      Expect("(");
      do {
        node.values.push_back(Typed(Literal(), left.field));
      } while (Take(","));
      Expect(")");
    } else if (Take("LIKE")) {
      node.kind = Filter::Kind::Like;
      node.left = Finish(left, -1);
      node.right.value = Value(Literal().text);
    } else {
      if (negated) Fail();
      node.kind = Sign();
      const Raw right = Operand();
      node.left = Finish(left, right.field);
      node.right = Finish(right, left.field);
    }
    const int test = Add(std::move(node));
    return negated ? Join(Filter::Kind::Not, {test}) : test;
  }

  Filter::Kind Sign() {
    using Kind = Filter::Kind;
    for (const auto& [sign, kind] : {std::pair{"=", Kind::Equal},
                                     {"<>", Kind::NotEqual},
                                     {"<", Kind::Less},
                                     {"<=", Kind::LessEqual},
                                     {">", Kind::Greater},
                                     {">=", Kind::GreaterEqual}}) {
      if (Take(sign)) return kind;
    }
    Fail();
  }

  const DataSet& set_;
  std::string_view text_;
  Filter& filter_;
  std::size_t at_ = 0, from_ = 0;
  Word kind_ = Word::End;
  std::string_view word_;
  std::string literal_;
  int depth_ = 0;
};

std::shared_ptr<const Filter> Filter::Parse(const DataSet& set, std::string_view text) {
  auto filter = std::make_shared<Filter>();
  if (!Trim(text).empty()) FilterParser(set, text, *filter).Parse();
  return filter;
}

bool Filter::Accepts(const Value* cells) const { return root_ < 0 || Test(root_, cells) == Truth::True; }

Filter::Truth Filter::Test(int index, const Value* cells) const {
  const Node& node = nodes_[static_cast<std::size_t>(index)];
  const auto value = [&](const Operand& operand) -> const Value& {
    return operand.field < 0 ? operand.value : cells[operand.field];
  };
  const auto truth = [](bool holds) { return holds ? Truth::True : Truth::False; };
  switch (node.kind) {
    case Kind::And: {
      Truth all = Truth::True;
      for (const int part : node.parts) {
        all = std::min(all, Test(part, cells));
        if (all == Truth::False) break;
      }
      return all;
    }
    case Kind::Or: {
      Truth any = Truth::False;
      for (const int part : node.parts) {
        any = std::max(any, Test(part, cells));
        if (any == Truth::True) break;
      }
      return any;
    }
    case Kind::Not: {
      const Truth inner = Test(node.parts[0], cells);
      return inner == Truth::Unknown ? inner : truth(inner == Truth::False);
    }
    case Kind::Null:
      return truth(value(node.left).IsNull());
    default:
      break;
  }
  const Value& left = value(node.left);
  if (left.IsNull()) return Truth::Unknown;
  if (node.kind == Kind::In) {
    return truth(std::find(node.values.begin(), node.values.end(), left) != node.values.end());
  }
  if (node.kind == Kind::Like) {
    return truth(left.IsText() ? MatchesLike(left.Text(), node.right.value.Text())
                               : MatchesLike(left.AsString(), node.right.value.Text()));
  }
  const Value& right = value(node.right);
  return right.IsNull() ? Truth::Unknown : truth(Holds(node.kind, left, right));
}

bool Filter::Holds(Kind kind, const Value& left, const Value& right) const {
  const std::strong_ordering order = Compare(left, right);
  switch (kind) {
    case Kind::Equal:
      return order == 0;
    case Kind::NotEqual:
      return order != 0;
    case Kind::Less:
      return order < 0;
    case Kind::LessEqual:
      return order <= 0;
    case Kind::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

void Filter::FindEqualities(int index) {
  const Node& node = nodes_[static_cast<std::size_t>(index)];
  if (node.kind == Kind::And) {
    for (const int part : node.parts) FindEqualities(part);
  } else if (node.kind == Kind::Equal && node.left.field >= 0 && node.right.field < 0) {
    equalities_.push_back({node.left.field, node.right.value});
  } else if (node.kind == Kind::Equal && node.left.field < 0 && node.right.field >= 0) {
    equalities_.push_back({node.right.field, node.left.value});
  }
}

}  // namespace orv
