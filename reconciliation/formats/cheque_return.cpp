#include "reconciliation/formats/cheque_return.h"

#include <algorithm>

#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A return file of cheques has a line for each cheque.
constexpr std::ptrdiff_t kMaxLinhas = 200'000;
constexpr const char* kMuitasLinhas = "O arquivo tem linhas demais: o limite é de 200.000.";

constexpr std::array<const char*, 4> kCamposCheque{"BANCO_CH", "AGENCIA_CH", "CONTA_CH", "NUMERO_CH"};

}  // namespace

std::vector<ChequeReturn> ReadChequeReturn(std::string_view text, const PositionLayout& layout) {
  if (std::count(text.begin(), text.end(), '\n') > kMaxLinhas) throw UserError(kMuitasLinhas);
  std::vector<std::string_view> linhas;
  TextLines todas(text);
  for (std::string_view linha; todas.Next(linha);) linhas.push_back(linha);
  std::vector<ChequeReturn> retornos;
  for (std::size_t i = 1; i + 1 < linhas.size(); ++i) {
    const auto campo = [&](const char* nome) { return std::string(FixedText(linhas[i], layout.Find(nome))); };
    ChequeReturn retorno;
    for (std::size_t c = 0; c < kCamposCheque.size(); ++c) retorno.cheque[c] = campo(kCamposCheque[c]);
    retorno.data = campo("DATA_CONT");
    retornos.push_back(std::move(retorno));
  }
  return retornos;
}

Date ChequeReturnDay(const std::string& text) {
  const auto recusa = [&] {
    return ConversionError(std::string(CutChars(text, 20)), "uma data no formato AAAAMMDD");
  };
  if (text.size() != 8) throw recusa();
  Date data;
  try {
    data = DateByMask(text, "AAAAMMDD");
  } catch (const UserError&) {
    throw recusa();
  }
  if (data.Year() < 1900 || data.Year() > 2100) throw recusa();
  return data;
}

}  // namespace orv
