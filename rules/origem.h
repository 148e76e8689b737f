// Where a figure comes from: statements that list titles, their settlements, cheques, movements and
// accounting entries in lines of one form, for drill-downs that put several of them together by kUniao.
#pragma once

#include <string>

namespace orv::origem {

constexpr const char* kUniao = " UNION ALL ";

// One kind of line: its name, number, document, day, text and amounts, each of one type in all lines, and
// where they are read from.
std::string Linhas(const char* tipo, const char* numero, const char* documento, const char* data,
                   const char* texto, const char* valores, const char* de);
// The amounts of a line that has only one.
std::string Valor(const char* coluna);

// The lines of a table whose rows meet a condition that begins with one of its columns.
std::string Receber(const std::string& condicao);
std::string Pagar(const std::string& condicao);
std::string BaixasReceber(const std::string& condicao);
std::string BaixasPagar(const std::string& condicao);
std::string Movimentos(const std::string& condicao);
std::string Contabilizacao(const std::string& condicao);
// Cheques of the register, and the titles that they pay.
std::string Cheques(const std::string& condicao);

}  // namespace orv::origem
