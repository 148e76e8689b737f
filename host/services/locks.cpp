#include "host/services/locks.h"

#include <algorithm>

#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::string Which(std::string_view company, std::string_view kind) {
  return " WHERE EMP_PAT = " + SqlLiteral(company) + " AND TIPO = " + SqlLiteral(kind);
}

std::string Describe(std::string_view kind, std::string_view account) {
  return kind == "CX" ? "CAIXA" : account.empty() ? "TODAS AS CONTAS" : "CONTA " + std::string(account);
}

}  // namespace

Date PeriodLocks::ClosedUntil(std::string_view company, std::string_view kind, std::string_view account) {
  std::string accounts = "''";
  if (kind == "CT" && !account.empty()) accounts += ", " + SqlLiteral(account);
  return db_
      .Scalar("SELECT MAX(ATE) FROM BLOQUEIO" + Which(company, kind) + " AND CONTA IN (" + accounts + ")")
      .AsDate();
}

void PeriodLocks::Set(const PeriodLock& lock) {
  if (lock.kind != "CT" && lock.kind != "CX") throw UserError("O bloqueio é de conta (CT) ou de caixa (CX).");
  if (lock.kind == "CX" && !lock.account.empty()) throw UserError("O bloqueio do caixa não tem conta.");
  if (lock.until.Empty()) throw UserError("Informe a data até a qual o período está fechado.");
  db_.Execute("UPDATE OR INSERT INTO BLOQUEIO (EMP_PAT, TIPO, CONTA, ATE) VALUES (" +
              SqlLiteral(lock.company) + ", " + SqlLiteral(lock.kind) + ", " + SqlLiteral(lock.account) +
              ", " + SqlLiteral(lock.until.Sql()) + ") MATCHING (EMP_PAT, TIPO, CONTA)");
  audit_.Write("BLOQUEIO",
               "PERIODO FECHADO ATE " + lock.until.Brazil() + " " + Describe(lock.kind, lock.account) + " " +
                   lock.company,
               TOperacaoLog::Inclusao, lock.account);
}

bool PeriodLocks::Clear(std::string_view company, std::string_view kind, std::string_view account) {
  const int64_t cleared =
      db_.Execute("DELETE FROM BLOQUEIO" + Which(company, kind) + " AND CONTA = " + SqlLiteral(account));
  if (cleared == 0) return false;
  audit_.Write("BLOQUEIO", "PERIODO ABERTO " + Describe(kind, account) + " " + std::string(company),
               TOperacaoLog::Exclusao, account);
  return true;
}

std::vector<PeriodLock> PeriodLocks::List(std::string_view company) {
  std::vector<PeriodLock> locks;
  for (const auto& row : db_.Rows("SELECT EMP_PAT, TIPO, CONTA, ATE FROM BLOQUEIO WHERE EMP_PAT = " +
                                  SqlLiteral(company) + " ORDER BY 2, 3")) {
    locks.push_back({std::string(Trim(row[0].AsString())), std::string(Trim(row[1].AsString())),
                     std::string(Trim(row[2].AsString())), row[3].AsDate()});
  }
  return locks;
}

}  // namespace orv
