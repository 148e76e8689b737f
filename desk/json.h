// JSON as the door speaks it: objects keep the order of their members.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "toolkit/error.h"

namespace orv {

// A text that isn't JSON.
class JsonError : public UserError {
 public:
  using UserError::UserError;
};

class Json {
 public:
  using Array = std::vector<Json>;
  using Member = std::pair<std::string, Json>;
  using Object = std::vector<Member>;

  Json() = default;
  Json(std::nullptr_t) {}
  Json(bool b) : value_(b) {}
  Json(int n) : value_(int64_t{n}) {}
  Json(int64_t n) : value_(n) {}
  Json(uint64_t n) : value_(static_cast<int64_t>(n)) {}
  Json(double n) : value_(n) {}
  Json(const char* s) : value_(std::string(s)) {}
  Json(std::string_view s) : value_(std::string(s)) {}
  Json(std::string s) : value_(std::move(s)) {}
  Json(Array a) : value_(std::move(a)) {}
  Json(Object o) : value_(std::move(o)) {}
  // {{"do", "click"}, {"control", "BitBtn1"}} is an object.
  Json(std::initializer_list<Member> members) : value_(Object(members)) {}

  // Raises JsonError. Nesting and size are bounded by the reader.
  static Json Parse(std::string_view text);
  std::string Text() const;

  bool IsNull() const { return std::holds_alternative<std::nullptr_t>(value_); }
  bool IsObject() const { return std::holds_alternative<Object>(value_); }
  bool IsArray() const { return std::holds_alternative<Array>(value_); }
  bool IsString() const { return std::holds_alternative<std::string>(value_); }
  bool IsBool() const { return std::holds_alternative<bool>(value_); }
  bool IsInteger() const { return std::holds_alternative<int64_t>(value_); }
  bool IsNumber() const {
    return std::holds_alternative<int64_t>(value_) || std::holds_alternative<double>(value_);
  }

  // Each raises JsonError when the value is of another kind.
  const std::string& String() const;
  int64_t Integer() const;
  bool Bool() const;
  const Array& Items() const;
  const Object& Members() const;

  // The member of an object, null when it isn't there.
  const Json& operator[](std::string_view name) const;
  bool Has(std::string_view name) const { return Find(name) != nullptr; }
  // Adds or replaces a member; makes an object of null.
  void Set(std::string_view name, Json value);
  // Adds an item; makes an array of null.
  void Add(Json item);

  friend bool operator==(const Json& a, const Json& b) { return a.value_ == b.value_; }

 private:
  struct Builder;
  const Json* Find(std::string_view name) const;
  void Write(std::string& out) const;

  std::variant<std::nullptr_t, bool, int64_t, double, std::string, Array, Object> value_ = nullptr;
};

}  // namespace orv
