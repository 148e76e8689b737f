// The sums that the database keeps beside movements and lines of bank statements, so that a balance costs the
// same after many years: by account, month, situation and operation, in SALDO_CONTA and SALDO_EXTRATO.
//
// MES is the first day of the month; movements without a date, and those of the day that stands for an empty
// one, have their own. DATA tells the date by which a row counts: "L" DT_LAN, "C" DT_CONT, "V" DT_VENCTO. A
// sum is all rows of its account, month, situation and operation together: whatever changes a movement,
// triggers append what that adds and takes away, so that nobody ever waits for another's row, and the desk
// folds them into one when it is quiet.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

class Attachment;

// Rows of which sums are kept.
struct KeptSums {
  const char *table, *sums;
  // The column of the situation, in both.
  const char* situation;
  struct Day {
    const char *column, *kind;
  };
  std::vector<Day> days;
};
const std::vector<KeptSums>& AllKeptSums();

// The triggers of the company with this suffix; on the physical tables, whoever shares them.
std::string SumTriggerName(const KeptSums& kept, std::string_view emp_pat);
std::vector<std::string> SumTriggersSql(std::string_view emp_pat);

// For each account, date, month, situation and operation of which the sums kept aren't what the rows come to:
// these, then what is missing in the sums, as a whole and a fraction, "12 -0.5000", and of how many rows.
std::string SumsMissingSql(const KeptSums& kept, std::string_view emp_pat);

// --- Both work in a snapshot, beside whoever else writes, and commit. Nothing may be uncommitted.
// Appends what is missing in the sums of all companies.
void MendSums(Attachment& db);
// Leaves one row of each sum, and none where nothing is left of it. Who reads sums meanwhile sees by
// SALDO_DOBRA that they were folded. False, with nothing done, when another one has folded meanwhile.
bool FoldSums(Attachment& db);

}  // namespace orv
