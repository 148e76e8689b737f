// The locks of closed periods, as every screen that writes asks for them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "toolkit/date.h"

namespace orv {

class Bloqueio {
 public:
  Bloqueio(IContabil& contabil, ITabela& tabela) : contabil_(contabil), tabela_(tabela) {}

  // True, after the service has told the user, when one of the dates lies in a closed period of the cash. An
  // empty date lies in none: whoever writes a date refuses an empty one before.
  bool Caixa(const std::vector<Date>& datas);
  // The same of the account's closed period. Tabela.TbCadConta then stands on it where the caller has that
  // table open. An account that doesn't exist has none: whoever writes one refuses it.
  bool Conta(std::string_view conta, const std::vector<Date>& datas);
  // The cash's and then the account's.
  bool Movimento(std::string_view conta, const std::vector<Date>& datas) {
    return Caixa(datas) || Conta(conta, datas);
  }
  // Of stored movements, those of `contacor` (the table's physical name) that a condition finds: the cash's
  // and the account's periods, by their accounting dates and by `tambem`, the dates that they are to have.
  bool Movimentos(const std::string& contacor, const std::string& condicao,
                  const std::vector<Date>& tambem = {});
  // Without telling the user: the last closed day of the cash or of the account, whichever is later; empty
  // without one.
  Date FechadoAte(std::string_view conta);

 private:
  bool Fechado(const std::vector<Date>& datas, std::string_view kind);
  IContabil& contabil_;
  ITabela& tabela_;
};

}  // namespace orv
