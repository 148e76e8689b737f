// Sums of amounts in statements, and the records that spoil them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "frame/report_screen.h"
#include "toolkit/currency.h"
#include "toolkit/database.h"
#include "toolkit/user.h"

namespace orv {

// The sum of an expression, for a select list. It is exact and of any size, which the engine's own, of 64
// bits, isn't.
std::string Soma(std::string_view valor);
// What such a column holds; zero for null.
Currency SomaDe(const Value& soma);

// A balance by months, as a drill-down shows it: year, month, count and the sums of credits and of debits,
// which the statement gives by `Soma`.
extern const std::array<ReportField, 5> kSaldoPorMes;
void CompletaMes(std::span<Value> mes);

// The records of a table, by their key, whose amount no field takes, with the table as a macro.
std::string ForaDeMedida(const std::string& tabela, const std::string& chave);
// Tells them to the user, who goes on meanwhile. `sql` is such a statement, made ready for its companies.
void ApontaForaDeMedida(UserInterface& user, TOrvDatabase& db, const std::string& sql);

}  // namespace orv
