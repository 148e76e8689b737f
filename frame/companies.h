// Work in the tables of another company than the session's.
#pragma once

#include <functional>
#include <string_view>

#include "frame/services.h"

namespace orv {

// Stands Tabela.tbEmpresa, by which all tables are named, on the company of that suffix, and the table of
// accounts with it; puts both back after the work, also when it fails. Raises UserError for an unknown
// company.
void NaEmpresa(ITabela& tabela, std::string_view sufixo, const std::function<void()>& trabalho);

}  // namespace orv
