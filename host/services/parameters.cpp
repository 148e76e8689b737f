#include "host/services/parameters.h"

#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kGroupWidth = 10;
constexpr std::size_t kValueWidth = 250;

std::string Key(std::string_view company, std::string_view group, int number) {
  return std::string(company) + " " + Upper(Trim(group)) + " " + std::to_string(number);
}

std::string Where(std::string_view group, int number) {
  return " WHERE GRUPO = " + SqlLiteral(Upper(Trim(group))) + " AND NUMERO = " + std::to_string(number);
}

}  // namespace

std::string Parameters::Get(std::string_view company, std::string_view group, int number) {
  std::string general;
  for (const auto& row : db_.Rows("SELECT EMP_PAT, VALOR FROM PARAMETRO" + Where(group, number) +
                                  " AND EMP_PAT IN ('', " + SqlLiteral(company) + ")")) {
    const std::string owner(Trim(row[0].AsString()));
    if (!owner.empty()) return row[1].AsString();
    general = row[1].AsString();
  }
  return general;
}

void Parameters::Set(const Parameter& parameter) {
  const std::string group = Upper(Trim(parameter.group));
  if (group.empty() || CharCount(group) > kGroupWidth) throw UserError("Grupo de parâmetros inválido.");
  if (CharCount(parameter.value) > kValueWidth) throw UserError("O valor do parâmetro é longo demais.");
  db_.Execute("UPDATE OR INSERT INTO PARAMETRO (EMP_PAT, GRUPO, NUMERO, VALOR) VALUES (" +
              SqlLiteral(parameter.company) + ", " + SqlLiteral(group) + ", " +
              std::to_string(parameter.number) + ", " + SqlLiteral(parameter.value) +
              ") MATCHING (EMP_PAT, GRUPO, NUMERO)");
  const std::string key = Key(parameter.company, group, parameter.number);
  audit_.Write("PARAMETRO", "PARAMETRO " + key + ": " + parameter.value, TOperacaoLog::Inclusao, key);
}

bool Parameters::Remove(std::string_view company, std::string_view group, int number) {
  const int64_t removed =
      db_.Execute("DELETE FROM PARAMETRO" + Where(group, number) + " AND EMP_PAT = " + SqlLiteral(company));
  if (removed == 0) return false;
  const std::string key = Key(company, group, number);
  audit_.Write("PARAMETRO", "EXCLUSAO DO PARAMETRO " + key, TOperacaoLog::Exclusao, key);
  return true;
}

std::vector<Parameter> Parameters::List() {
  std::vector<Parameter> parameters;
  for (const auto& row : db_.Rows("SELECT EMP_PAT, GRUPO, NUMERO, VALOR FROM PARAMETRO ORDER BY 2, 3, 1")) {
    parameters.push_back({std::string(Trim(row[0].AsString())), std::string(Trim(row[1].AsString())),
                          static_cast<int>(row[2].AsInteger()), row[3].AsString()});
  }
  return parameters;
}

}  // namespace orv
