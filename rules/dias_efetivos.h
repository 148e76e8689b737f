// The days on which what falls due is paid.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "frame/services.h"
#include "toolkit/date.h"

namespace orv {

// Items that fall due this many days before a period may move into it.
constexpr int kDiasAntes = 3;

// Days on which due items move. What was asked for once is remembered, so an object serves one gathering.
class DiasEfetivos {
 public:
  DiasEfetivos(IFuncoes& funcoes, IContabil& contabil) : funcoes_(funcoes), contabil_(contabil) {}
  // That day or the next working day.
  Date DiaUtil(Date dia);
  // The day on which the bank credits a document of the situation.
  Date Credito(Date dia, std::string_view situacao);

 private:
  using Dias = std::unordered_map<int32_t, Date>;
  IFuncoes& funcoes_;
  IContabil& contabil_;
  Dias uteis_;
  std::unordered_map<std::string, Dias> creditos_;
};

}  // namespace orv
