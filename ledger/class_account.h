// The accounting account that stands for a bank account, by the rows of CLASSE_CONTA.
#pragma once

#include <string>

#include "frame/services.h"

namespace orv {

// That of the account and this very history ("0" is the row of any history). "" without a row. Where several
// rows agree, those of any class and any entity go before.
std::string ContaDoHistorico(const IFuncoes& funcoes, ITabela& tabela, const std::string& conta,
                             const std::string& historico);

// That of the account and the history, or else of the account alone. "" without a row.
std::string ContaDoBanco(const IFuncoes& funcoes, ITabela& tabela, const std::string& conta,
                         const std::string& historico);

}  // namespace orv
