// Lines of text laid out by the rows of POSICAO: what the readers of such files share.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// A row of POSICAO. `inicio` is a column from 1, `tamanho` a length, both in characters.
struct PositionField {
  std::string campo;
  int inicio = 0;
  int tamanho = 0;
  std::string mascara;
};

// A file kind of a bank: its fields by `inicio`. A blank separator stands for fixed columns.
struct PositionLayout {
  std::string separador;
  std::vector<PositionField> campos;

  bool Separated() const { return separador.find_first_not_of(' ') != std::string::npos; }
  // Null without a row of that name.
  const PositionField* Find(std::string_view campo) const;
};

// The trimmed text of a field of a line in fixed columns; "" for a null field.
std::string_view FixedText(std::string_view line, const PositionField* field);

// A date by its mask of D, M and A ("DDMMAAAA", "AAAAMMDD", "DD/MM/AA"); a blank mask is "AAAAMMDD". A year
// of two digits lies between 1980 and 2079. Raises ConversionError.
Date DateByMask(std::string_view text, std::string_view mask);

// An amount whose last two digits are the decimals, "000000012345"; a comma before them may stand there
// already. Raises ConversionError.
Currency ImpliedAmount(std::string_view text);

// The accounts of CADCONTA, in the order of the table.
class AccountBook {
 public:
  explicit AccountBook(std::span<const std::string> accounts);
  // The account that a bank's account text means, "" for none: the first one that holds the text's digits,
  // without leading zeros and less as many from the right as it takes, but no fewer than three.
  std::string Resolve(std::string_view text) const;

 private:
  // Every run of three digits and more in an account, with the first account that holds it.
  std::unordered_map<std::string, std::string> runs_;
};

}  // namespace orv
