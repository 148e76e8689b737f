// Balances: credits less debits, of the ledger's movements and of the lines of the banks' statements.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/report_set.h"
#include "rules/soma.h"
#include "toolkit/database.h"
#include "toolkit/user.h"

namespace orv {

// Rows with VALOR and OPERACAO, and by what they add to a balance or take from it; any other operation does
// neither.
struct Livro {
  const char* tabela;
  const char* chave;
  char credito, debito;
};
constexpr Livro kContaCorrente{"CONTACOR", "LANCAMENTO", '+', '-'}, kExtrato{"EXTRATO", "LANCTO", 'C', 'D'};

// Which movements are settled and which are pending: conditions.
constexpr const char* kBaixado = "PENDENTE IN ('N','C')";
constexpr const char* kPendente = "PENDENTE = 'S'";

// A row's part of each side and of the balance, for Soma. `alias` is the table's name in the statement, ""
// where it has only one; rows that don't meet the condition have no part.
std::string Creditos(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
std::string Debitos(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
std::string ComSinal(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
// The same of a movement where what isn't a credit is a debit. Never null.
std::string CreditoOuDebito(std::string_view alias);

// The total of a statement's first column, a sum by Soma: it has a row for each company.
Currency Total(TOrvDatabase& db, const std::string& sql);

// An account of the cash flow and the balance of those of its movements that a condition names.
struct SaldoConta {
  Value conta, titular, descricao;
  Currency valor;
};
// A row for each account that has such movements (CONTACOR); what isn't a credit is a debit. With a condition
// of CADCONTA that begins with " AND ", or "".
std::string SaldosDasContas(const std::string& movimentos, const std::string& contas = "");
// The balances of such a statement, made ready for its companies: what several of them have of an account is
// added up. In the order of the rows.
std::vector<SaldoConta> LeSaldos(TOrvDatabase& db, const std::string& sql);

// A balance by months, as a drill-down shows it: year, month, count and the sums of credits and of debits.
extern const std::array<ReportField, 5> kSaldoPorMes;
// Its statement, unordered: the column of the day, what a row adds to the credits and to the debits, and the
// rest from FROM on.
std::string SaldoPorMes(const std::string& data, const std::string& credito, const std::string& debito,
                        const std::string& de);
// Makes a row of the statement one of the balance.
void CompletaMes(std::span<Value> mes);

// The records whose amount no field takes, by their key, with the table as a macro.
std::string ForaDeMedida(const Livro& livro);
// Tells them to the user, who goes on meanwhile. `sql` is such a statement, made ready for its companies.
void ApontaForaDeMedida(UserInterface& user, TOrvDatabase& db, const std::string& sql);

}  // namespace orv
