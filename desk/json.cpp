#include "desk/json.h"

#include <boost/json/src.hpp>

namespace orv {
namespace {

Json Convert(const boost::json::value& value) {
  switch (value.kind()) {
    case boost::json::kind::null:
      return nullptr;
    case boost::json::kind::bool_:
      return value.get_bool();
    case boost::json::kind::int64:
      return value.get_int64();
    case boost::json::kind::uint64:
      return static_cast<double>(value.get_uint64());
    case boost::json::kind::double_:
      return value.get_double();
    case boost::json::kind::string:
      return std::string(value.get_string());
    case boost::json::kind::array: {
      Json::Array items;
      for (const auto& item : value.get_array()) items.push_back(Convert(item));
      return items;
    }
    case boost::json::kind::object: {
      Json::Object members;
      for (const auto& member : value.get_object())
        members.emplace_back(member.key(), Convert(member.value()));
      return members;
    }
  }
  return nullptr;
}

[[noreturn]] void Wrong(const char* wanted) { throw JsonError(std::string("Esperava-se ") + wanted + "."); }

}  // namespace

Json Json::Parse(std::string_view text) {
  boost::json::error_code error;
  const boost::json::value value = boost::json::parse({text.data(), text.size()}, error);
  if (error) throw JsonError("O texto não é JSON.");
  return Convert(value);
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
  for (const Member& member : std::get<Object>(value_)) {
    if (member.first == name) return &member.second;
  }
  return nullptr;
}

const Json& Json::operator[](std::string_view name) const {
  static const Json kNull;
  const Json* found = Find(name);
  return found != nullptr ? *found : kNull;
}

void Json::Set(std::string_view name, Json value) {
  if (IsNull()) value_ = Object();
  Object& members = std::get<Object>(value_);
  for (Member& member : members) {
    if (member.first == name) {
      member.second = std::move(value);
      return;
    }
  }
  members.emplace_back(name, std::move(value));
}

void Json::Add(Json item) {
  if (IsNull()) value_ = Array();
  std::get<Array>(value_).push_back(std::move(item));
}

}  // namespace orv
