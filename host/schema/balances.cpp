#include "host/schema/balances.h"

#include <algorithm>

#include "host/data/attachment.h"
#include "host/schema/schema.h"
#include "toolkit/currency.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// In whole units, what a folded row may hold, far within its column.
constexpr const char* kMostFolded = "100000000000000";
// The column of what is missing, before that of how many.
constexpr std::size_t kMissing = 5;
const Currency kMostAppended = Currency::FromCents(10000000000000000);

std::string MonthOf(const std::string& day) { return day + " - EXTRACT(DAY FROM " + day + ") + 1"; }

// The condition that both rows agree in a column.
std::string Same(const std::string& column) {
  return "NEW." + column + " IS NOT DISTINCT FROM OLD." + column;
}

std::string TriggerSql(const KeptSums& kept, std::string_view emp_pat) {
  const std::string suffix(emp_pat), situation = kept.situation;
  const auto append = [&](const char* kind, const std::string& row, const char* month, const char* sign) {
    return "INSERT INTO " + (kept.sums + suffix) + " (CONTA, DATA, MES, " + situation +
           ", OPERACAO, VALOR, QUANTIDADE) VALUES (" + row + ".CONTA, '" + kind + "', " + month + ", " + row +
           "." + situation + ", " + row + ".OPERACAO, " + sign + "COALESCE(" + row + ".VALOR, 0), " + sign +
           "1);\n";
  };
  std::string sql = "CREATE OR ALTER TRIGGER " + SumTriggerName(kept, emp_pat) + " FOR " +
                    (kept.table + suffix) +
                    " AFTER INSERT OR UPDATE OR DELETE AS\n"
                    "DECLARE SO_DATA BOOLEAN = FALSE;\nDECLARE ANTES DATE;\nDECLARE DEPOIS DATE;\nBEGIN\n"
                    "IF (UPDATING) THEN SO_DATA = " +
                    Same("CONTA") + " AND " + Same(situation) + " AND " + Same("OPERACAO") + " AND " +
                    Same("VALOR") + ";\n";
  for (const KeptSums::Day& day : kept.days) {
    const std::string column = day.column;
    sql += "ANTES = " + MonthOf("OLD." + column) + ";\nDEPOIS = " + MonthOf("NEW." + column) +
           ";\nIF (NOT SO_DATA OR ANTES IS DISTINCT FROM DEPOIS) THEN BEGIN\nIF (NOT INSERTING) THEN " +
           append(day.kind, "OLD", ":ANTES", "-") + "IF (NOT DELETING) THEN " +
           append(day.kind, "NEW", ":DEPOIS", "") + "END\n";
  }
  return sql + "END";
}

// Folds one table's sums and gives how many, as a block for the engine.
std::string FoldSql(const KeptSums& kept, const std::string& suffix) {
  const std::string sums = kept.sums + suffix, situation = kept.situation;
  const std::string columns[] = {"CONTA", "DATA", "MES", situation, "OPERACAO"};
  const auto type = [&](const std::string& name, const std::string& column) {
    return "DECLARE " + name + " TYPE OF COLUMN " + sums + "." + column + ";\n";
  };
  std::string declared, listed, into, same;
  for (const std::string& column : columns) {
    declared += type("G_" + column, column);
    listed += column + ", ";
    into += ":G_" + column + ", ";
    same += (same.empty() ? "" : " AND ") + column + " IS NOT DISTINCT FROM :G_" + column;
  }
  const std::string whole = "SUM(CAST(VALOR AS BIGINT))";
  return "EXECUTE BLOCK RETURNS (N INTEGER) AS\n" + declared + type("V", "VALOR") + type("Q", "QUANTIDADE") +
         "BEGIN\nN = 0;\nFOR SELECT " + listed + whole + " + SUM(VALOR - CAST(VALOR AS BIGINT)), " +
         "SUM(QUANTIDADE) FROM " + sums + " GROUP BY 1, 2, 3, 4, 5 HAVING COUNT(*) > 1 AND ABS(" + whole +
         ") < " + kMostFolded + " INTO " + into + ":V, :Q DO BEGIN\nDELETE FROM " + sums + " WHERE " + same +
         ";\nIF (V <> 0 OR Q <> 0) THEN INSERT INTO " + sums + " (" + listed + "VALOR, QUANTIDADE) VALUES (" +
         into + ":V, :Q);\nN = N + 1;\nEND\nSUSPEND;\nEND";
}

// Runs work in a snapshot and commits it.
template <class Work>
void InSnapshot(Attachment& db, Work work) {
  db.StartSnapshot();
  try {
    work();
    db.CommitRetaining();
  } catch (...) {
    db.Rollback();
    throw;
  }
}

}  // namespace

const std::vector<KeptSums>& AllKeptSums() {
  static const std::vector<KeptSums> all = {
      {"CONTACOR", "SALDO_CONTA", "PENDENTE", {{"DT_LAN", "L"}, {"DT_CONT", "C"}, {"DT_VENCTO", "V"}}},
      {"EXTRATO", "SALDO_EXTRATO", "CONCILIADO", {{"DT_CONT", "C"}}},
  };
  return all;
}

std::string SumTriggerName(const KeptSums& kept, std::string_view emp_pat) {
  return "TG_SALDO_" + std::string(kept.table).append(emp_pat);
}

std::vector<std::string> SumTriggersSql(std::string_view emp_pat) {
  std::vector<std::string> ddl;
  for (const KeptSums& kept : AllKeptSums()) ddl.push_back(TriggerSql(kept, emp_pat));
  return ddl;
}

std::string SumsMissingSql(const KeptSums& kept, std::string_view emp_pat) {
  const std::string suffix(emp_pat);
  const auto part = [&](const std::string& kind, const std::string& month, const char* sign,
                        const std::string& count, const std::string& from) {
    const std::string value = "COALESCE(VALOR, 0)";
    return "SELECT CONTA, " + kind + " AS DATA, " + month + " AS MES, " + kept.situation +
           " AS SITUACAO, OPERACAO, " + sign + "SUM(CAST(" + value + " AS BIGINT)) AS INTEIRO, " + sign +
           "SUM(" + value + " - CAST(" + value + " AS BIGINT)) AS FRACAO, " + sign + count +
           " AS QUANTOS FROM " + from + suffix + " GROUP BY 1, 2, 3, 4, 5";
  };
  std::string parts = part("DATA", "MES", "-", "SUM(QUANTIDADE)", kept.sums);
  for (const KeptSums::Day& day : kept.days)
    parts += " UNION ALL " +
             part("'" + std::string(day.kind) + "'", MonthOf(day.column), "", "COUNT(*)", kept.table);
  // What differs by so much isn't made up for by fractions, and compared with them it would be too wide.
  return "SELECT CONTA, DATA, MES, SITUACAO, OPERACAO, SUM(INTEIRO) || ' ' || SUM(FRACAO), SUM(QUANTOS) "
         "FROM (" +
         parts +
         ") GROUP BY 1, 2, 3, 4, 5 HAVING CASE WHEN ABS(SUM(INTEIRO)) > 1000000000000 THEN 1 WHEN "
         "SUM(INTEIRO) <> -SUM(FRACAO) THEN 1 ELSE SUM(QUANTOS) END <> 0";
}

void MendSums(Attachment& db) {
  InSnapshot(db, [&] {
    for (const std::string& suffix : CompanySuffixes(db)) {
      for (const KeptSums& kept : AllKeptSums()) {
        std::vector<std::vector<Value>> rows;
        for (auto& missing : db.Rows(SumsMissingSql(kept, suffix))) {
          const std::vector<std::string> parts = Split(missing[kMissing].Text(), " ");
          Currency value = Currency::ParseNeutral(parts[0]) + Currency::ParseNeutral(parts[1]);
          // A sum can be wider than its column: it is appended in parts.
          do {
            missing[kMissing] = std::clamp(value, -kMostAppended, kMostAppended);
            value -= missing[kMissing].AsCurrency();
            rows.push_back(missing);
            missing[kMissing + 1] = int64_t{0};
          } while (!value.IsZero());
        }
        db.InsertRows(kept.sums + suffix,
                      {"CONTA", "DATA", "MES", kept.situation, "OPERACAO", "VALOR", "QUANTIDADE"},
                      [&, at = rows.begin()](std::span<Value> row) mutable {
                        if (at == rows.end()) return false;
                        std::move(at->begin(), at->end(), row.begin());
                        return ++at, true;
                      });
      }
    }
  });
}

bool FoldSums(Attachment& db) {
  try {
    InSnapshot(db, [&] {
      int64_t folded = 0;
      db.Execute("UPDATE SALDO_DOBRA SET VEZES = VEZES + 1");
      for (const std::string& suffix : CompanySuffixes(db))
        for (const KeptSums& kept : AllKeptSums()) folded += db.Scalar(FoldSql(kept, suffix)).AsInteger();
      if (folded == 0) db.Rollback();
    });
  } catch (const DatabaseError& error) {
    if (error.Why() != DatabaseError::Kind::Conflict) throw;
    return false;
  }
  return true;
}

}  // namespace orv
