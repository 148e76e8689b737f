// Filter texts: "ORDEM = 1 AND (CONTA = '3.1' OR CONTA IS NULL)", parsed once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/dataset.h"

namespace orv {

// A field that a filter wants equal to a value, whatever else it asks.
struct FilterEquality {
  int field = 0;
  Value value;
};

class Filter {
 public:
  // Comparisons (=, <>, <, <=, >, >=) of a field with a value or another field, LIKE with % and _, IS NULL,
  // IS NOT NULL, IN (...), joined by AND, OR, NOT and brackets. Names and words ignore case. Texts stand in
  // apostrophes, doubled inside; dates as 'dd/mm/yyyy'; numbers with a decimal point. As in SQL a comparison
  // with null is unknown, and so is its NOT: such a row isn't accepted. Raises UserError with the text and
  // the place of the fault, in characters from 1.
  static std::shared_ptr<const Filter> Parse(const DataSet& set, std::string_view text);

  bool Accepts(const Value* cells) const;
  // Fields that every accepted row has equal to these values.
  const std::vector<FilterEquality>& Equalities() const { return equalities_; }

 private:
  friend class FilterParser;
  enum class Kind : uint8_t {
    And,
    Or,
    Not,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Like,
    Null,
    In
  };
  // An operand is a field, or a value where `field` is negative.
  struct Operand {
    int field = -1;
    Value value;
  };
  struct Node {
    Kind kind = Kind::And;
    std::vector<int> parts;  // of And, Or and Not
    Operand left, right;
    std::vector<Value> values;
  };

  enum class Truth : uint8_t { False, Unknown, True };
  Truth Test(int node, const Value* cells) const;
  bool Holds(Kind kind, const Value& left, const Value& right) const;
  void FindEqualities(int node);

  std::vector<Node> nodes_;
  int root_ = -1;
  std::vector<FilterEquality> equalities_;
};

// True when the text is of the pattern, where % stands for any characters and _ for one.
bool MatchesLike(std::string_view text, std::string_view pattern);

}  // namespace orv
