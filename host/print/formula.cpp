#include "host/print/formula.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kLongest = 4000;  // bytes
constexpr int kDeepest = 60;
constexpr int kTallest = 400;  // nodes one above the other

enum class Op : uint8_t {
  Constant,
  Name,
  Negative,
  Not,
  Add,
  Subtract,
  Multiply,
  Divide,
  Compare,
  And,
  Or,
  Call,
  Ask
};
enum class Function : uint8_t { Iif, Copy, Abs, Round, Upper, Trim, Length };

struct Signature {
  std::string_view name;
  Function function;
  std::size_t parameters;
};

constexpr std::array<Signature, 7> kFunctions{{{"iif", Function::Iif, 3},
                                               {"copy", Function::Copy, 3},
                                               {"abs", Function::Abs, 1},
                                               {"round", Function::Round, 2},
                                               {"upper", Function::Upper, 1},
                                               {"trim", Function::Trim, 1},
                                               {"length", Function::Length, 1}}};

bool IsNumber(const Value& value) {
  return value.IsNull() || value.Kind() == ValueKind::Integer || value.Kind() == ValueKind::Float ||
         value.Kind() == ValueKind::Currency;
}

bool IsDay(const Value& value) { return value.Kind() == ValueKind::Date; }

void RequireNumber(const Value& value) {
  if (!IsNumber(value)) throw FormulaError("\"" + value.AsString() + "\" não é um número");
}

bool Exact(const Value& value) {
  return value.IsNull() || value.Kind() == ValueKind::Integer || value.Kind() == ValueKind::Currency;
}

[[noreturn]] void TooLarge() { throw FormulaError("o resultado é grande demais"); }

Value Finite(double number) {
  if (!std::isfinite(number)) TooLarge();
  return Value(number);
}

int64_t Whole(int64_t a, int64_t b, bool subtract) {
  int64_t result = 0;
  const bool over = subtract ? __builtin_sub_overflow(a, b, &result) : __builtin_add_overflow(a, b, &result);
  if (over) TooLarge();
  return result;
}

Date Moved(Date day, int64_t days) {
  if (day.Empty()) return day;
  if (days < Date(1, 1, 1) - day || days > Date(9999, 12, 31) - day) TooLarge();
  return day.AddDays(static_cast<int>(days));
}

Value Sum(const Value& a, const Value& b, bool subtract) {
  if (IsDay(a) && IsDay(b) && subtract) return Value(int64_t{a.AsDate() - b.AsDate()});
  if (IsDay(a) && IsNumber(b)) return Value(Moved(a.AsDate(), Whole(0, b.AsInteger(), subtract)));
  if (!subtract && (a.IsText() || b.IsText())) return Value(a.AsString() + b.AsString());
  RequireNumber(a);
  RequireNumber(b);
  if (a.Kind() == ValueKind::Currency || b.Kind() == ValueKind::Currency) {
    if (Exact(a) && Exact(b))
      return Value(subtract ? a.AsCurrency() - b.AsCurrency() : a.AsCurrency() + b.AsCurrency());
  } else if (Exact(a) && Exact(b)) {
    return Value(Whole(a.AsInteger(), b.AsInteger(), subtract));
  }
  return Finite(subtract ? a.AsFloat() - b.AsFloat() : a.AsFloat() + b.AsFloat());
}

Value Product(const Value& a, const Value& b) {
  RequireNumber(a);
  RequireNumber(b);
  const bool whole_a = a.Kind() == ValueKind::Integer, whole_b = b.Kind() == ValueKind::Integer;
  if (whole_a && whole_b) return Finite(a.AsFloat() * b.AsFloat());
  // So many times an amount is an amount.
  if (whole_a && b.Kind() == ValueKind::Currency) return Value(b.AsCurrency() * a.AsFloat());
  if (whole_b && a.Kind() == ValueKind::Currency) return Value(a.AsCurrency() * b.AsFloat());
  return Finite(a.AsFloat() * b.AsFloat());
}

Value Quotient(const Value& a, const Value& b) {
  RequireNumber(a);
  RequireNumber(b);
  if (b.AsFloat() == 0) throw FormulaError("divisão por zero");
  return Finite(a.AsFloat() / b.AsFloat());
}

// Null is what it is compared with: zero among numbers, "" among texts.
std::strong_ordering Order(const Value& a, const Value& b) {
  if (a.IsNull() && b.IsText()) return Compare(Value(""), b);
  if (b.IsNull() && a.IsText()) return Compare(a, Value(""));
  if (a.IsNull() && IsNumber(b)) return Compare(Value(0), b);
  if (b.IsNull() && IsNumber(a)) return Compare(a, Value(0));
  return Compare(a, b);
}

bool Holds(const std::string& comparison, std::strong_ordering order) {
  if (comparison == "=") return order == 0;
  if (comparison == "<>") return order != 0;
  if (comparison == "<") return order < 0;
  if (comparison == ">") return order > 0;
  return comparison == "<=" ? order <= 0 : order >= 0;
}

Value Rounded(const Value& value, int64_t decimals) {
  RequireNumber(value);
  if (decimals < 0 || decimals > 8) throw FormulaError("round arredonda de 0 a 8 casas");
  if (decimals == 2 && value.Kind() == ValueKind::Currency) return Value(value.AsCurrency().Round2());
  return Value(RoundFloat(value.AsFloat(), static_cast<int>(decimals)));
}

// From the `from`-th character, counted from 1, `count` of them.
std::string Part(const std::string& text, int64_t from, int64_t count) {
  if (count <= 0) return "";
  const auto skipped = static_cast<std::size_t>(std::max<int64_t>(from, 1) - 1);
  const std::string_view rest = std::string_view(text).substr(CutChars(text, skipped).size());
  return std::string(CutChars(rest, static_cast<std::size_t>(count)));
}

}  // namespace

struct Formula::Node {
  Op op = Op::Constant;
  Value constant;
  std::size_t name = 0;
  // The sign of a comparison, the name of a function that is asked.
  std::string word;
  Function function = Function::Iif;
  std::vector<std::unique_ptr<Node>> parts;
  int height = 1;

  // A long chain is as tall as a deep nesting, and both are worked out by descending.
  void Take(std::unique_ptr<Node> part) {
    height = std::max(height, part->height + 1);
    if (height > kTallest) throw FormulaError("a fórmula tem níveis demais");
    parts.push_back(std::move(part));
  }
};

namespace {

using Node = Formula::Node;
using NodePointer = std::unique_ptr<Node>;

class Parser {
 public:
  Parser(std::string_view text, std::vector<std::string>& names) : rest_(text), names_(names) {
    if (text.size() > kLongest) throw FormulaError("a fórmula é longa demais");
    Next();
  }

  NodePointer All() {
    NodePointer root = Either();
    if (kind_ != Kind::End) throw FormulaError("não se esperava \"" + token_ + "\"");
    return root;
  }

 private:
  enum class Kind : uint8_t { End, Name, Number, Text, Sign };

  static bool Letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
  }
  static bool Digit(char c) { return c >= '0' && c <= '9'; }

  void Next() {
    while (!rest_.empty() && (rest_[0] == ' ' || rest_[0] == '\t')) rest_.remove_prefix(1);
    token_.clear();
    if (rest_.empty()) {
      kind_ = Kind::End;
      return;
    }
    std::size_t size = 1;
    if (Letter(rest_[0])) {
      kind_ = Kind::Name;
      while (size < rest_.size() && (Letter(rest_[size]) || Digit(rest_[size]) || rest_[size] == '.')) ++size;
    } else if (Digit(rest_[0])) {
      kind_ = Kind::Number;
      while (size < rest_.size() && (Digit(rest_[size]) || rest_[size] == '.')) ++size;
    } else if (rest_[0] == '"' || rest_[0] == '\'') {
      kind_ = Kind::Text;
      const std::size_t end = rest_.find(rest_[0], 1);
      if (end == std::string_view::npos) throw FormulaError("falta fechar as aspas");
      token_ = rest_.substr(1, end - 1);
      rest_.remove_prefix(end + 1);
      return;
    } else {
      kind_ = Kind::Sign;
      const std::string_view two = rest_.substr(0, 2);
      if (two == "<>" || two == "<=" || two == ">=") size = 2;
    }
    token_ = rest_.substr(0, size);
    rest_.remove_prefix(size);
  }

  bool Take(std::string_view sign) {
    if (kind_ != Kind::Sign || token_ != sign) return false;
    Next();
    return true;
  }
  bool TakeWord(std::string_view word, std::string_view other) {
    if (kind_ != Kind::Name || (!SameText(token_, word) && !SameText(token_, other))) return false;
    Next();
    return true;
  }
  void Expect(std::string_view sign) {
    if (!Take(sign)) throw FormulaError("esperava-se \"" + std::string(sign) + "\"");
  }

  static NodePointer Make(Op op, NodePointer a, NodePointer b = nullptr) {
    auto node = std::make_unique<Node>();
    node->op = op;
    node->Take(std::move(a));
    if (b != nullptr) node->Take(std::move(b));
    return node;
  }

  NodePointer Either() {
    const auto depth = Deeper();
    NodePointer left = Both();
    while (TakeWord("ou", "or")) left = Make(Op::Or, std::move(left), Both());
    return left;
  }
  NodePointer Both() {
    NodePointer left = Compared();
    while (TakeWord("e", "and")) left = Make(Op::And, std::move(left), Compared());
    return left;
  }
  NodePointer Compared() {
    NodePointer left = Sums();
    static constexpr std::array<std::string_view, 6> kSigns{"=", "<>", "<=", ">=", "<", ">"};
    for (const std::string_view sign : kSigns) {
      if (!Take(sign)) continue;
      left = Make(Op::Compare, std::move(left), Sums());
      left->word = sign;
      break;
    }
    return left;
  }
  NodePointer Sums() {
    NodePointer left = Products();
    for (;;) {
      if (Take("+") || Take("&")) {
        left = Make(Op::Add, std::move(left), Products());
      } else if (Take("-")) {
        left = Make(Op::Subtract, std::move(left), Products());
      } else {
        return left;
      }
    }
  }
  NodePointer Products() {
    NodePointer left = Signed();
    for (;;) {
      if (Take("*")) {
        left = Make(Op::Multiply, std::move(left), Signed());
      } else if (Take("/")) {
        left = Make(Op::Divide, std::move(left), Signed());
      } else {
        return left;
      }
    }
  }
  NodePointer Signed() {
    const auto depth = Deeper();
    if (Take("-")) return Make(Op::Negative, Signed());
    if (TakeWord("nao", "not") || TakeWord("não", "não")) return Make(Op::Not, Signed());
    return Single();
  }

  NodePointer Single() {
    auto node = std::make_unique<Node>();
    if (Take("(")) {
      NodePointer inner = Either();
      Expect(")");
      return inner;
    }
    if (kind_ == Kind::Text) {
      node->constant = Value(token_);
    } else if (kind_ == Kind::Number) {
      node->constant = Number();
    } else if (kind_ == Kind::Name) {
      const std::string name = token_;
      Next();
      if (Take("(")) return Call(name);
      node->op = Op::Name;
      node->name = Known(name);
      return node;
    } else {
      throw FormulaError(kind_ == Kind::End ? "a fórmula está incompleta"
                                            : "não se esperava \"" + token_ + "\"");
    }
    Next();
    return node;
  }

  Value Number() const {
    if (token_.find('.') == std::string::npos) {
      int64_t whole = 0;
      const auto read = std::from_chars(token_.data(), token_.data() + token_.size(), whole);
      if (read.ec == std::errc()) return Value(whole);
    }
    double number = 0;
    const auto read = std::from_chars(token_.data(), token_.data() + token_.size(), number);
    if (read.ec != std::errc() || read.ptr != token_.data() + token_.size()) {
      throw FormulaError("\"" + token_ + "\" não é um número");
    }
    return Value(number);
  }

  NodePointer Call(const std::string& name) {
    const auto found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                    [&](const Signature& one) { return SameText(one.name, name); });
    const bool own = found != kFunctions.end();
    auto node = std::make_unique<Node>();
    node->op = own ? Op::Call : Op::Ask;
    if (own) node->function = found->function;
    node->word = name;
    if (!Take(")")) {
      do {
        node->Take(Either());
      } while (Take(",") || Take(";"));
      Expect(")");
    }
    if (own) RequireParameters(name, found->parameters, node->parts.size());
    return node;
  }

  std::size_t Known(const std::string& name) {
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [&](const std::string& one) { return SameText(one, name); });
    const auto at = static_cast<std::size_t>(found - names_.begin());
    if (found == names_.end()) names_.push_back(name);
    return at;
  }

  // Refuses what is nested so deep that working it out could exhaust the stack.
  ScopedValue<int> Deeper() {
    if (depth_ == kDeepest) throw FormulaError("a fórmula tem níveis demais");
    return {depth_, depth_ + 1};
  }

  std::string_view rest_;
  std::vector<std::string>& names_;
  Kind kind_ = Kind::End;
  std::string token_;
  int depth_ = 0;
};

Value WorkNode(const Node& node, const Formula::Scope& scope) {
  const auto part = [&](std::size_t at) { return WorkNode(*node.parts[at], scope); };
  switch (node.op) {
    case Op::Constant:
      return node.constant;
    case Op::Name:
      return scope.Name(node.name);
    case Op::Negative:
      return Sum(Value(0), part(0), true);
    case Op::Not:
      return Value(IsTrue(part(0)) ? 0 : 1);
    case Op::Add:
      return Sum(part(0), part(1), false);
    case Op::Subtract:
      return Sum(part(0), part(1), true);
    case Op::Multiply:
      return Product(part(0), part(1));
    case Op::Divide:
      return Quotient(part(0), part(1));
    case Op::Compare:
      return Value(Holds(node.word, Order(part(0), part(1))) ? 1 : 0);
    case Op::And:
      return Value(IsTrue(part(0)) && IsTrue(part(1)) ? 1 : 0);
    case Op::Or:
      return Value(IsTrue(part(0)) || IsTrue(part(1)) ? 1 : 0);
    case Op::Ask: {
      std::vector<Value> arguments;
      for (std::size_t at = 0; at < node.parts.size(); ++at) arguments.push_back(part(at));
      return scope.Call(node.word, arguments);
    }
    case Op::Call:
      break;
  }
  switch (node.function) {
    case Function::Iif:
      return part(IsTrue(part(0)) ? 1 : 2);
    case Function::Copy:
      return Value(Part(part(0).AsString(), part(1).AsInteger(), part(2).AsInteger()));
    case Function::Abs: {
      const Value value = part(0);
      return IsTrue(Value(Order(value, Value(0)) < 0 ? 1 : 0)) ? Sum(Value(0), value, true) : value;
    }
    case Function::Round:
      return Rounded(part(0), part(1).AsInteger());
    case Function::Upper:
      return Value(Upper(part(0).AsString()));
    case Function::Trim:
      return Value(Trim(part(0).AsString()));
    case Function::Length:
      return Value(static_cast<int64_t>(CharCount(part(0).AsString())));
  }
  return {};
}

}  // namespace

Formula::Formula() = default;
Formula::Formula(Formula&&) noexcept = default;
Formula& Formula::operator=(Formula&&) noexcept = default;
Formula::~Formula() = default;

Formula Formula::Parse(std::string_view text) {
  Formula formula;
  formula.root_ = Parser(text, formula.names_).All();
  return formula;
}

Value Formula::Scope::Call(const std::string& function, std::span<const Value>) const {
  throw FormulaError("a função " + function + " não existe");
}

Value Formula::Work(const Scope& scope) const {
  try {
    return WorkNode(*root_, scope);
  } catch (const FormulaError&) {
    throw;
  } catch (const std::exception& e) {
    // A number out of its bounds, a text that is none.
    throw FormulaError(e.what());
  }
}

void RequireParameters(const std::string& name, std::size_t wanted, std::size_t given) {
  if (given == wanted) return;
  throw FormulaError(name + " quer " + std::to_string(wanted) + (wanted == 1 ? " parâmetro" : " parâmetros"));
}

bool IsTrue(const Value& value) {
  if (value.IsText()) return value.Text() == "S" || value.Text() == "true";
  return IsNumber(value) && value.AsFloat() != 0;
}

}  // namespace orv
