#include "host/schema/check.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/data/attachment.h"
#include "host/schema/balances.h"
#include "host/schema/check_rules.h"
#include "host/schema/sharing.h"
#include "host/schema/tables.h"
#include "toolkit/text.h"

namespace orv {

namespace {

constexpr std::size_t kMost = 20;
// The greatest amount that a report's columns hold.
constexpr const char* kGreatest = "999999999999.99";
// Of a number as it is drawn.
constexpr std::size_t kDigits = 6;

using Row = std::vector<Value>;

// The statements for one company.
class Statements {
 public:
  Statements(const Sharing& sharing, std::string company) : sharing_(sharing), company_(std::move(company)) {}

  std::string Table(std::string_view table) const { return sharing_.Physical(table, company_); }
  // Whether it is this company that keeps the table.
  bool Keeps(std::string_view table) const { return sharing_.SuffixOf(table, company_) == company_; }

  std::string Of(std::string_view text) const {
    return Localize(Repeat(Repeat(text, "{*", "*}", " OR "), "{+", "+}", " + "), company_);
  }

 private:
  std::string Localize(std::string_view text, std::string_view company) const {
    std::string sql;
    for (std::size_t open; (open = text.find('{')) != std::string_view::npos;) {
      const std::size_t close = text.find('}', open);
      sql.append(text.substr(0, open))
          .append(sharing_.Physical(text.substr(open + 1, close - open - 1), company));
      text.remove_prefix(close + 1);
    }
    return sql.append(text);
  }

  // A clause that stands once for each company; over tables that companies share, once.
  std::string Repeat(std::string_view text, std::string_view open, std::string_view close,
                     std::string_view between) const {
    std::string sql;
    for (std::size_t from; (from = text.find(open)) != std::string_view::npos;) {
      const std::size_t to = text.find(close, from);
      std::vector<std::string> clauses;
      for (const std::string& company : sharing_.Companies()) {
        std::string clause = Localize(text.substr(from + 2, to - from - 2), company);
        if (std::find(clauses.begin(), clauses.end(), clause) == clauses.end())
          clauses.push_back(std::move(clause));
      }
      sql.append(text.substr(0, from)).append(Join(clauses, between));
      text.remove_prefix(to + 2);
    }
    return sql.append(text);
  }

  const Sharing& sharing_;
  const std::string company_;
};

std::string Shown(const Value& value) {
  return value.Kind() == ValueKind::Currency ? value.AsCurrency().Brazil() : value.AsString();
}

std::string Fill(std::string_view line, const Row& row) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '%' && i + 1 < line.size())
      text += Shown(row.at(static_cast<std::size_t>(line[++i] - '1')));
    else
      text += line[i];
  }
  return text;
}

// Takes what fits into the report and stops the fetch there.
class FirstRows : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    rows.emplace_back(values.begin(), values.end());
    return rows.size() <= kMost;
  }
  std::vector<orv::Row> rows;
};

// The rows that break a demand, by the demand's number in the second column, with the value that breaks it.
class BrokenRows : public RowSink {
 public:
  explicit BrokenRows(std::size_t demands) : rows(demands) {}
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    const auto demand = static_cast<std::size_t>(values[1].AsInteger());
    if (rows[demand].size() <= kMost) rows[demand].push_back({values[0], values[2 + demand]});
    return true;
  }
  std::vector<std::vector<orv::Row>> rows;
};

// A company's lines, each kind of contradiction cut short.
class Report {
 public:
  Report(std::vector<std::string>& lines, std::string_view company)
      : lines_(lines), prefix_("Empresa " + std::string(company) + ", ") {}
  void Add(const std::string& line) { lines_.push_back(prefix_ + line); }
  template <class Line>
  void Add(const std::vector<Row>& rows, Line line) {
    for (std::size_t i = 0; i < rows.size() && i < kMost; ++i) Add(line(rows[i]));
    if (rows.size() > kMost) Add("e mais ocorrências como a anterior.");
  }

 private:
  std::vector<std::string>& lines_;
  const std::string prefix_;
};

std::string Broken(const Demand& demand) {
  const std::string column = demand.column;
  switch (demand.kind) {
    case Demand::OneOf:
      return column + " IS NULL OR " + column + " NOT IN (" + demand.codes + ")";
    case Demand::Amount:
      return column + " IS NULL OR " + column + " NOT BETWEEN 0 AND " + kGreatest;
    case Demand::AnyAmount:
      return "ABS(" + column + ") > " + kGreatest;
    case Demand::Day:
      return column + " IS NULL OR " + column + " <= '12/30/1899'";
    case Demand::Filled:
      return column + " IS NULL";
  }
  return {};
}

std::string Told(const RowRule& rule, const Demand& demand, const Row& row) {
  const std::string begin = rule.subject + row[0].AsString() + ": ";
  const Value& value = row[1];
  if (demand.kind == Demand::Day || value.IsNull()) return begin + "sem " + demand.name + ".";
  if (demand.kind == Demand::OneOf)
    return begin + demand.name + " \"" + value.AsString() + "\" desconhecida.";
  return begin + demand.name + " " + Shown(value) +
         (value.AsCurrency() < Currency() ? " negativo." : " além de 999.999.999.999,99.");
}

// All demands of a table at once: a look at a million rows takes its time.
void CheckRows(Attachment& db, const Statements& statements, const RowRule& rule, Report& report) {
  std::string columns, which;
  for (std::size_t i = 0; i < rule.demands.size(); ++i) {
    columns += std::string(", ") + rule.demands[i].column + " AS C" + std::to_string(i);
    which += " WHEN " + Broken(rule.demands[i]) + " THEN " + std::to_string(i);
  }
  BrokenRows found(rule.demands.size());
  db.Fetch("SELECT * FROM (SELECT " + std::string(rule.key) + ", CASE" + which + " END AS WHICH" + columns +
               " FROM " + statements.Table(rule.table) + ") WHERE WHICH IS NOT NULL",
           found);
  for (std::size_t i = 0; i < rule.demands.size(); ++i)
    report.Add(found.rows[i], [&](const Row& row) { return Told(rule, rule.demands[i], row); });
}

// A sequence behind a number that is in use would come to it. The texts above the sequence are found by their
// indexes: those of its own length, and all longer ones.
void CheckNumbers(Attachment& db, const Sharing& sharing, const std::string& company, const SequenceDef& kind,
                  Report& report) {
  const NumberPlace place = sharing.NumbersOf(kind, company);
  if (place.suffix != company) return;
  const int64_t last =
      db.Scalar("SELECT GEN_ID(" + SequenceName(kind.table, kind.column, company) + ", 0) FROM RDB$DATABASE")
          .AsInteger();
  std::string from = std::to_string(last);
  if (from.size() < kDigits) from.insert(0, kDigits - from.size(), '0');
  const auto width = static_cast<std::size_t>(FindTable(kind.table)->Find(kind.column)->width);
  std::vector<std::string> above;
  for (const ColumnRef& held : place.columns) {
    if (held.foreign) continue;
    std::string first = from;
    for (std::size_t length = from.size(); length <= width; ++length) {
      above.push_back("SELECT MAX(CAST(" + held.column + " AS BIGINT)) AS N FROM " + held.table + " WHERE " +
                      held.column + (length == from.size() ? " > " : " >= ") + Quote(first) +
                      " AND CHAR_LENGTH(" + held.column + ") = " + std::to_string(length) + " AND " +
                      held.column + " SIMILAR TO '[0-9]+'");
      first = "1" + std::string(length, '0');
    }
  }
  const Value greatest = db.Scalar("SELECT MAX(N) FROM (" + Join(above, " UNION ALL ") + ")");
  if (!greatest.IsNull())
    report.Add("numeração de " + kind.table + "." + kind.column + ": está em " + std::to_string(last) +
               ", mas já existe o número " + greatest.AsString() + ".");
}

void FetchSums(Attachment& db, const std::string& sql, const char* table, FirstRows& found, Report& report) {
  try {
    db.Fetch(sql, found);
  } catch (const DatabaseError& error) {
    // An amount beyond all bounds can be one too many for the engine's sum.
    if (error.Why() != DatabaseError::Kind::Constraint) throw;
    report.Add("os valores de " + std::string(table) + " são grandes demais para somar.");
  }
}

// The sums that the database keeps are what the rows come to.
void CheckSums(Attachment& db, const Statements& statements, const std::string& company, Report& report) {
  for (const KeptSums& kept : AllKeptSums()) {
    if (!statements.Keeps(kept.table)) continue;
    FirstRows found;
    FetchSums(db, SumsMissingSql(kept, company), kept.table, found, report);
    report.Add(found.rows, [&](const Row& row) {
      const std::vector<std::string> parts = Split(row[5].Text(), " ");
      const Currency missing = Currency::ParseNeutral(parts[0]) + Currency::ParseNeutral(parts[1]);
      const std::string month = row[2].IsNull() ? "sem data" : row[2].AsDate().Brazil().substr(3);
      return "saldos guardados de " + std::string(kept.table) + ": os da conta \"" + row[0].AsString() +
             "\", " + month + ", diferem em " + missing.Brazil() + " (registros: " + row[6].AsString() +
             "). Execute \"orvcc upgrade\".";
    });
  }
}

// Each change of the house leaves a line, the first user's making too.
void CheckAudit(Attachment& db, std::vector<std::string>& lines) {
  if (!db.Scalar("SELECT FIRST 1 1 FROM AUDITORIA").IsNull()) return;
  const int64_t written =
      db.Scalar("SELECT GEN_ID(" + SequenceName("AUDITORIA", "ID", "") + ", 0) FROM RDB$DATABASE")
          .AsInteger();
  if (written == 0 || db.Scalar("SELECT FIRST 1 1 FROM USUARIO").IsNull()) return;
  lines.push_back("Auditoria: está vazia, mas já teve " + std::to_string(written) + " linhas.");
}

}  // namespace

std::vector<std::string> CheckData(Attachment& db) {
  // What others commit meanwhile contradicts nothing.
  const bool alone = !db.HasPendingWrites();
  if (alone) db.StartSnapshot();
  std::vector<std::string> lines;
  CheckAudit(db, lines);
  const Sharing sharing(db);
  for (const std::string& company : sharing.Companies()) {
    const Statements statements(sharing, company);
    Report report(lines, company);
    for (const RowRule& rule : RowRules())
      if (statements.Keeps(rule.table)) CheckRows(db, statements, rule, report);
    for (const Rule& rule : Rules()) {
      if (!statements.Keeps(rule.table)) continue;
      FirstRows found;
      FetchSums(db, statements.Of(rule.sql), rule.table, found, report);
      report.Add(found.rows, [&](const Row& row) { return Fill(rule.line, row); });
    }
    CheckSums(db, statements, company, report);
    // Documents are typed by hand as well: anything can stand there.
    for (const SequenceDef& kind : Sequences())
      if (kind.column != "DOCTO") CheckNumbers(db, sharing, company, kind, report);
  }
  if (alone) db.Rollback();
  return lines;
}

}  // namespace orv
