// The database of the house: made, extended by companies, brought to the present version.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

class Attachment;

// The version that this program works on.
constexpr int kSchemaVersion = 7;

struct Company {
  std::string emp_pat;  // "_" and three digits
  std::string name;
  std::string city;
};

// Makes functions, global tables, general parameters and the companies in an empty database, and commits.
// Raises UserError when the database already holds a schema, DatabaseError.
void CreateSchema(Attachment& db, const std::vector<Company>& companies);

// Makes a further company's tables and sequences and enters it in EMPRESA, and commits.
// Raises UserError for a suffix of another form or one that is taken, or a name that is blank or too long.
void AddCompany(Attachment& db, const Company& company);

// 0 for a database without a schema.
int SchemaVersion(Attachment& db);

// Runs the steps from the database's version to the present one, committing each; where there are none, only
// mends the sums that the database keeps (balances.h). Raises UserError for a database without a schema or
// one that is newer than the program.
void UpgradeSchema(Attachment& db);

// Raises UserError, telling the user what to do, unless the versions agree.
void RequireCurrentSchema(Attachment& db);

// The suffixes of all companies, in order.
std::vector<std::string> CompanySuffixes(Attachment& db);

}  // namespace orv
