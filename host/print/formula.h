// Formulas of reports: arithmetic, comparisons, joined texts and a few functions over fields, values and what
// the screen answers.
//
//   iif(TbSaldo.Sel = "S", TbSaldo.Valor, 0)      copy(Nome, 1, 10) + "…"      (a + b) * 2 <> c e nao d
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/error.h"
#include "toolkit/value.h"

namespace orv {

// A formula that can't be read or worked out. The text says why, without the place.
class FormulaError : public UserError {
 public:
  using UserError::UserError;
};

class Formula {
 public:
  // What the names of a formula stand for at the moment.
  class Scope {
   public:
    virtual ~Scope() = default;
    // `name` counts in Names(). Raises FormulaError for a name that is nothing here.
    virtual Value Name(std::size_t name) const = 0;
    // A function that formulas don't have themselves. Raises FormulaError for one that is nothing here.
    virtual Value Call(const std::string& function, std::span<const Value> arguments) const;
  };

  // Raises FormulaError.
  static Formula Parse(std::string_view text);
  Formula(Formula&&) noexcept;
  Formula& operator=(Formula&&) noexcept;
  ~Formula();

  // The names in it, each once, as they are written first: "TbSaldo.Valor", "vTotal".
  const std::vector<std::string>& Names() const { return names_; }
  // Null counts as zero and as the empty text. Money added and taken away stays exact; a product with a float
  // is a float. Raises FormulaError, also for a division by zero.
  Value Work(const Scope& scope) const;

  struct Node;

 private:
  Formula();
  std::unique_ptr<Node> root_;
  std::vector<std::string> names_;
};

// Raises FormulaError unless `given` parameters are as many as `wanted`.
void RequireParameters(const std::string& name, std::size_t wanted, std::size_t given);

// Whether a value counts as true: a number other than zero, "S", "true".
bool IsTrue(const Value& value);

}  // namespace orv
