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
#include "toolkit/date.h"
#include "toolkit/user.h"

namespace orv {

// Rows with VALOR and OPERACAO, and by what they add to a balance or take from it; any other operation does
// neither. `saldos` holds what they come to month by month, as the database itself keeps it, by account,
// `situacao` and operation.
struct Livro {
  const char *tabela, *chave, *saldos, *situacao;
  char credito, debito;
};
constexpr Livro kContaCorrente{"CONTACOR", "LANCAMENTO", "SALDO_CONTA", "PENDENTE", '+', '-'},
    kExtrato{"EXTRATO", "LANCTO", "SALDO_EXTRATO", "CONCILIADO", 'C', 'D'};

// Which movements are settled and which are pending: conditions.
constexpr const char* kBaixado = "PENDENTE IN ('N','C')";
constexpr const char* kPendente = "PENDENTE = 'S'";

// --- What a balance is read from: an item of FROM under the name of the ledger's table, with the columns
// CONTA, PENDENTE or CONCILIADO, OPERACAO, VALOR, QUANTIDADE and that of the date. `coluna` is the date's
// column, "DT_CONT" or with a table's name before it.
//
// Whole months come as they are kept, the days of the broken month row by row. So a row is any number of
// movements, QUANTIDADE, and can take away what another one has too much: a sum is one of movements where its
// sum of QUANTIDADE isn't 0, and only sums of both mean anything. `hoje` is the desk's day, after which there
// are few.
std::string SaldosAte(const Livro& livro, std::string_view coluna, Date dia, Date hoje);
std::string SaldosApos(const Livro& livro, std::string_view coluna, Date dia, Date hoje);
// Of all days, and of none.
std::string SaldosDeSempre(const Livro& livro);
// The same movement by movement, each with all its columns, for conditions that name others.
std::string MovimentosAte(const Livro& livro, std::string_view coluna, Date dia);

// The rows of a statement that reads them. Months that are folded into one row just then never count twice.
std::vector<std::vector<Value>> LinhasDeSaldo(TOrvDatabase& db, const std::string& sql);
// Its first column, a sum by Soma, added up: it has a row for each company.
Currency TotalDeSaldo(TOrvDatabase& db, const std::string& sql);

// --- Parts of a statement.

// A row's part of each side and of the balance, for Soma. `alias` is the table's name in the statement, ""
// where it has only one; rows that don't meet the condition have no part.
std::string Creditos(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
std::string Debitos(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
std::string ComSinal(const Livro& livro, std::string_view alias = "", std::string_view condicao = "");
// The same of a movement where what isn't a credit is a debit. Never null.
std::string CreditoOuDebito(std::string_view alias);
// The sum of what meets a condition, null where no movement does.
std::string SomaSe(std::string_view condicao);

// The total of a statement's first column, a sum by Soma: it has a row for each company.
Currency Total(TOrvDatabase& db, const std::string& sql);

// --- All accounts.

// An account of the cash flow and the balance of those of its movements that a condition names.
struct SaldoConta {
  Value conta, titular, descricao;
  Currency valor;
};
// A row for each account of the cash flow: with a condition of the movements, such as kBaixado, by DT_CONT up
// to and including `ate`. What isn't a credit is a debit. With a condition of CADCONTA that begins with
// " AND ", or "".
std::string SaldosDasContas(const std::string& movimentos, Date ate, Date hoje,
                            const std::string& contas = "");
// The balances of such a statement, made ready for its companies: what several of them have of an account is
// added up. In the order of the rows, without accounts that have no such movements.
std::vector<SaldoConta> LeSaldos(TOrvDatabase& db, const std::string& sql);

// --- Month by month.

// A balance by months, as a drill-down shows it: year, month, count and the sums of credits and of debits.
extern const std::array<ReportField, 5> kSaldoPorMes;
// Its statement, unordered: the column of the day, what a row adds to the credits and to the debits, the rest
// from FROM on, and how many rows a row stands for.
std::string SaldoPorMes(const std::string& data, const std::string& credito, const std::string& debito,
                        const std::string& de, const std::string& quantidade = "QUANTIDADE");
// Makes a row of the statement one of the balance.
void CompletaMes(std::span<Value> mes);

// The records whose amount no field takes, by their key, with the table as a macro.
std::string ForaDeMedida(const Livro& livro);
// Tells them to the user, who goes on meanwhile. `sql` is such a statement, made ready for its companies.
void ApontaForaDeMedida(UserInterface& user, TOrvDatabase& db, const std::string& sql);

}  // namespace orv
