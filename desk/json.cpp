#include "desk/json.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/src.hpp>

namespace orv {
namespace {

[[noreturn]] void Wrong(const char* wanted) { throw JsonError(std::string("Esperava-se ") + wanted + "."); }

}  // namespace

// Takes what the reader finds, piece by piece.
struct Json::Builder {
  using View = boost::json::string_view;
  using Error = boost::json::error_code;

  static constexpr std::size_t max_object_size = boost::json::object::max_size();
  static constexpr std::size_t max_array_size = boost::json::array::max_size();
  static constexpr std::size_t max_key_size = boost::json::string::max_size();
  static constexpr std::size_t max_string_size = boost::json::string::max_size();

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return Begin(Object()); }
  bool on_object_end(std::size_t, Error&) { return End(); }
  bool on_array_begin(Error&) { return Begin(Array()); }
  bool on_array_end(std::size_t, Error&) { return End(); }
  bool on_key_part(View part, std::size_t, Error&) { return Append(part); }
  bool on_key(View part, std::size_t, Error&) {
    Append(part);
    std::get<Object>(open.back().value_).emplace_back(std::exchange(text, {}), nullptr);
    return true;
  }
  bool on_string_part(View part, std::size_t, Error&) { return Append(part); }
  bool on_string(View part, std::size_t, Error&) {
    Append(part);
    return Put(std::exchange(text, {}));
  }
  bool on_number_part(View, Error&) { return true; }
  bool on_int64(int64_t number, View, Error&) { return Put(number); }
  bool on_uint64(uint64_t number, View, Error&) { return Put(static_cast<double>(number)); }
  bool on_double(double number, View, Error&) { return Put(number); }
  bool on_bool(bool value, Error&) { return Put(value); }
  bool on_null(Error&) { return Put(nullptr); }
  bool on_comment_part(View, Error&) { return true; }
  bool on_comment(View, Error&) { return true; }

  bool Append(View part) {
    text.append(part.data(), part.size());
    return true;
  }
  bool Begin(Json empty) {
    open.push_back(std::move(empty));
    return true;
  }
  bool End() {
    Json whole = std::move(open.back());
    open.pop_back();
    return Put(std::move(whole));
  }
  bool Put(Json value) {
    if (open.empty()) {
      root = std::move(value);
    } else if (Array* items = std::get_if<Array>(&open.back().value_)) {
      items->push_back(std::move(value));
    } else {
      std::get<Object>(open.back().value_).back().second = std::move(value);
    }
    return true;
  }

  Json root;
  std::vector<Json> open;  // from the outermost on
  std::string text;        // of the key or the string under way
};

Json Json::Parse(std::string_view text) {
  boost::json::basic_parser<Builder> parser{boost::json::parse_options()};
  boost::json::error_code error;
  const std::size_t read = parser.write_some(false, text.data(), text.size(), error);
  if (error || read < text.size()) throw JsonError("O texto não é JSON.");
  return std::move(parser.handler().root);
}

std::string Json::Text() const {
  std::string out;
  Write(out);
  return out;
}

void Json::Write(std::string& out) const {
  if (IsNull()) {
    out += "null";
  } else if (const bool* b = std::get_if<bool>(&value_)) {
    out += *b ? "true" : "false";
  } else if (const int64_t* n = std::get_if<int64_t>(&value_)) {
    out += std::to_string(*n);
  } else if (const double* d = std::get_if<double>(&value_)) {
    out += boost::json::serialize(boost::json::value(*d));
  } else if (const std::string* s = std::get_if<std::string>(&value_)) {
    out += boost::json::serialize(boost::json::string_view(*s));
  } else if (const Array* items = std::get_if<Array>(&value_)) {
    out += '[';
    for (const Json& item : *items) {
      if (&item != items->data()) out += ',';
      item.Write(out);
    }
    out += ']';
  } else {
    const Object& members = std::get<Object>(value_);
    out += '{';
    for (const Member& member : members) {
      if (&member != members.data()) out += ',';
      out += boost::json::serialize(boost::json::string_view(member.first));
      out += ':';
      member.second.Write(out);
    }
    out += '}';
  }
}

const std::string& Json::String() const {
  if (!IsString()) Wrong("um texto");
  return std::get<std::string>(value_);
}

int64_t Json::Integer() const {
  if (!std::holds_alternative<int64_t>(value_)) Wrong("um número inteiro");
  return std::get<int64_t>(value_);
}

bool Json::Bool() const {
  if (!IsBool()) Wrong("true ou false");
  return std::get<bool>(value_);
}

const Json::Array& Json::Items() const {
  if (!IsArray()) Wrong("uma lista");
  return std::get<Array>(value_);
}

const Json::Object& Json::Members() const {
  if (!IsObject()) Wrong("um objeto");
  return std::get<Object>(value_);
}

const Json* Json::Find(std::string_view name) const {
  if (!IsObject()) return nullptr;
  // Of members of one name the last counts.
  const Object& members = std::get<Object>(value_);
  const auto found =
      std::find_if(members.rbegin(), members.rend(), [&](const Member& one) { return one.first == name; });
  return found == members.rend() ? nullptr : &found->second;
}

const Json& Json::operator[](std::string_view name) const {
  static const Json kNull;
  const Json* found = Find(name);
  return found != nullptr ? *found : kNull;
}

void Json::Set(std::string_view name, Json value) {
  if (IsNull()) value_ = Object();
  if (const Json* found = Find(name)) {
    *const_cast<Json*>(found) = std::move(value);
    return;
  }
  std::get<Object>(value_).emplace_back(name, std::move(value));
}

void Json::Add(Json item) {
  if (IsNull()) value_ = Array();
  std::get<Array>(value_).push_back(std::move(item));
}

}  // namespace orv
