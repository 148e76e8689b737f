#include "reconciliation/formats/position.h"

#include <algorithm>
#include <iterator>

#include "toolkit/error.h"
#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {
namespace {

// `count` characters from the place of the first `letter` of the mask; "" without one.
std::string_view Masked(std::string_view text, std::string_view mask, char letter, std::size_t count) {
  const std::size_t at = mask.find(letter);
  return at == std::string_view::npos || at >= text.size() ? std::string_view() : text.substr(at, count);
}

std::string Without(std::string_view text, std::string_view signs) {
  std::string out;
  std::copy_if(text.begin(), text.end(), std::back_inserter(out),
               [&](char c) { return signs.find(c) == std::string_view::npos; });
  return out;
}

}  // namespace

const PositionField* PositionLayout::Find(std::string_view campo) const {
  const auto found =
      std::find_if(campos.begin(), campos.end(), [&](const PositionField& f) { return f.campo == campo; });
  return found == campos.end() ? nullptr : &*found;
}

std::string_view FixedText(std::string_view line, const PositionField* field) {
  if (field == nullptr || field->tamanho <= 0) return {};
  line.remove_prefix(CutChars(line, static_cast<std::size_t>(std::max(field->inicio, 1) - 1)).size());
  return Trim(CutChars(line, static_cast<std::size_t>(field->tamanho)));
}

Date DateByMask(std::string_view text, std::string_view mask) {
  if (Trim(mask).empty()) mask = "AAAAMMDD";
  const auto letters = static_cast<std::size_t>(std::count(mask.begin(), mask.end(), 'A'));
  std::string year(Trim(Masked(text, mask, 'A', letters)));
  if (year.size() == 2) year.insert(0, year < "80" ? "20" : "19");
  const std::string day(Masked(text, mask, 'D', 2)), month(Masked(text, mask, 'M', 2));
  return Date::ParseBrazil(day + "/" + month + "/" + year);
}

Currency ImpliedAmount(std::string_view text) {
  // What a message can show.
  text = CutChars(text, 40);
  std::string amount(text);
  const std::size_t decimals = std::min<std::size_t>(amount.size(), 2);
  const bool there = amount.size() > 2 && amount[amount.size() - 3] == ',';
  if (!there) amount.insert(amount.size() - decimals, ",");
  return Currency::ParseBrazil(amount);
}

AccountBook::AccountBook(std::span<const std::string> accounts) {
  for (const std::string& account : accounts) {
    for (std::size_t from = 0; from < account.size(); ++from) {
      for (std::size_t end = from; end < account.size() && account[end] >= '0' && account[end] <= '9';
           ++end) {
        if (end + 1 - from > 2) runs_.try_emplace(account.substr(from, end + 1 - from), account);
      }
    }
  }
}

std::string AccountBook::Resolve(std::string_view text) const {
  // No number is longer, however many zeros and signs stand around it.
  std::string digits = Without(text.substr(0, 4096), "-.");
  try {
    digits = std::to_string(ParseInteger(Trim(digits)));
  } catch (const ConversionError&) {
    return "";
  }
  for (; digits.size() > 2; digits.pop_back()) {
    if (const auto found = runs_.find(digits); found != runs_.end()) return found->second;
  }
  return "";
}

}  // namespace orv
