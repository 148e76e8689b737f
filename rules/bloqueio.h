// The locks of closed periods, as every screen that writes asks for them.
#pragma once

#include <initializer_list>
#include <string_view>

#include "frame/services.h"
#include "toolkit/date.h"

namespace orv {

class Bloqueio {
 public:
  Bloqueio(IContabil& contabil, ITabela& tabela) : contabil_(contabil), tabela_(tabela) {}

  // True, after the service has told the user, when one of the dates lies in a closed period of the cash. An
  // empty date lies in none: whoever writes a date refuses an empty one before.
  bool Caixa(std::initializer_list<Date> datas);
  // The same of the account's closed period, on which Tabela.TbCadConta then stands. An account that doesn't
  // exist has none.
  bool Conta(std::string_view conta, std::initializer_list<Date> datas);
  // The cash's and then the account's.
  bool Movimento(std::string_view conta, std::initializer_list<Date> datas) {
    return Caixa(datas) || Conta(conta, datas);
  }
  // Without telling the user: the last closed day of the cash or of the account, whichever is later; empty
  // without one.
  Date FechadoAte(std::string_view conta);

 private:
  bool Fechado(std::initializer_list<Date> datas, std::string_view kind);
  IContabil& contabil_;
  ITabela& tabela_;
};

}  // namespace orv
