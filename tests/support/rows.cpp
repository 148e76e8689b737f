#include "tests/support/rows.h"

#include "toolkit/text.h"

namespace orv::test {

std::string InsertText(const char* table, const char* columns, const std::vector<const Cell*>& cells,
                       const std::string& company, const Usuals& usuals) {
  std::string names, values;
  std::size_t at = 0;
  for (const std::string& column : Split(columns, ", ")) {
    const Cell* cell = cells[at++];
    const auto usual = usuals.find(table + column);
    if (!cell->given && usual != usuals.end()) cell = &usual->second;
    if (!cell->written) continue;
    names += (names.empty() ? "" : ", ") + column;
    values += (values.empty() ? "" : ", ") + (cell->null ? "NULL" : Quote(cell->text));
  }
  return "INSERT INTO " + ReplaceAll(table, "{}", company) + " (" + names + ") VALUES (" + values + ")";
}

void Note(const char* table, const char* columns, const std::vector<const Cell*>& cells, Usuals& usuals) {
  std::size_t at = 0;
  for (const std::string& column : Split(columns, ", ")) {
    const Cell& cell = *cells[at++];
    if (cell.given) usuals[table + column] = cell;
  }
}

}  // namespace orv::test
