#include "host/services/extenso.h"

#include <array>
#include <vector>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kMaxCents = 99'999'999'999'999;

// Below a thousand: "cento e vinte e três".
std::string GroupInWords(int group) {
  static constexpr std::array<const char*, 20> kUnits{
      "",    "um",   "dois", "três",  "quatro",   "cinco",  "seis",      "sete",      "oito",    "nove",
      "dez", "onze", "doze", "treze", "quatorze", "quinze", "dezesseis", "dezessete", "dezoito", "dezenove"};
  static constexpr std::array<const char*, 10> kTens{
      "", "", "vinte", "trinta", "quarenta", "cinquenta", "sessenta", "setenta", "oitenta", "noventa"};
  static constexpr std::array<const char*, 10> kHundreds{
      "",           "cento",      "duzentos",   "trezentos",  "quatrocentos",
      "quinhentos", "seiscentos", "setecentos", "oitocentos", "novecentos"};
  if (group == 100) return "cem";
  std::vector<std::string> parts;
  if (group >= 100) parts.emplace_back(kHundreds[static_cast<std::size_t>(group / 100)]);
  const int rest = group % 100;
  if (rest >= 20) {
    parts.emplace_back(kTens[static_cast<std::size_t>(rest / 10)]);
    if (rest % 10 != 0) parts.emplace_back(kUnits[static_cast<std::size_t>(rest % 10)]);
  } else if (rest > 0) {
    parts.emplace_back(kUnits[static_cast<std::size_t>(rest)]);
  }
  return Join(parts, " e ");
}

std::string ScaleInWords(int group, int scale, ThousandForm form) {
  switch (scale) {
    case 1:
      return group == 1 && form == ThousandForm::Plain ? "mil" : GroupInWords(group) + " mil";
    case 2:
      return GroupInWords(group) + (group == 1 ? " milhão" : " milhões");
    case 3:
      return GroupInWords(group) + (group == 1 ? " bilhão" : " bilhões");
    default:
      return GroupInWords(group);
  }
}

// Between groups of three digits there is no "e", except before the last one where it is a bare hundred or
// less: "um mil e duzentos", "um mil duzentos e trinta".
std::string WholeInWords(int64_t number, ThousandForm form) {
  std::array<int, 4> groups{};
  for (int& group : groups) {
    group = static_cast<int>(number % 1000);
    number /= 1000;
  }
  int last = 0;
  while (groups[static_cast<std::size_t>(last)] == 0) ++last;
  std::string words;
  for (int scale = 3; scale >= last; --scale) {
    const int group = groups[static_cast<std::size_t>(scale)];
    if (group == 0) continue;
    if (!words.empty()) words += scale == last && (group <= 100 || group % 100 == 0) ? " e " : " ";
    words += ScaleInWords(group, scale, form);
  }
  return words;
}

}  // namespace

std::string AmountInWords(int64_t cents, ThousandForm form) {
  if (cents < 1 || cents > kMaxCents) {
    throw UserError("O valor por extenso vai de 0,01 a 999.999.999.999,99.");
  }
  const int64_t whole = cents / 100;
  const int rest = static_cast<int>(cents % 100);
  std::string words;
  if (whole > 0) {
    words = WholeInWords(whole, form);
    words += whole == 1 ? " real" : whole % 1'000'000 == 0 ? " de reais" : " reais";
  }
  if (rest > 0) {
    if (whole > 0) words += " e ";
    words += GroupInWords(rest) + (rest == 1 ? " centavo" : " centavos");
  }
  return words;
}

Currency ParseAmountText(std::string_view text) {
  const std::string_view amount = Trim(text);
  const std::size_t point = amount.find('.');
  const bool decimal_point = point != std::string_view::npos && amount.find(',') == std::string_view::npos &&
                             amount.find('.', point + 1) == std::string_view::npos &&
                             amount.size() - point - 1 != 3;
  return decimal_point ? Currency::ParseNeutral(amount) : Currency::ParseBrazil(amount);
}

}  // namespace orv
