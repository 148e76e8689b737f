#include "host/services/preferences.h"

#include <limits>

#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {

std::string Preferences::Path(std::string_view key, std::string_view section, std::string_view name) {
  return std::string(key) + "/" + std::string(section) + "/" + std::string(name);
}

std::string Preferences::Get(std::string_view path) {
  return db_
      .Scalar("SELECT VALOR FROM PREFERENCIA WHERE LOGIN_BUSCA = " + SqlLiteral(Lower(login_)) +
              " AND CHAVE = " + SqlLiteral(path))
      .AsString();
}

std::vector<std::pair<std::string, std::string>> Preferences::List(std::string_view beginning) {
  std::vector<std::pair<std::string, std::string>> found;
  for (const auto& row :
       db_.Rows("SELECT CHAVE, VALOR FROM PREFERENCIA WHERE LOGIN_BUSCA = " + SqlLiteral(Lower(login_)) +
                " AND CHAVE STARTING WITH " + SqlLiteral(beginning) + " ORDER BY CHAVE")) {
    found.emplace_back(row[0].AsString().substr(beginning.size()), row[1].AsString());
  }
  return found;
}

int Preferences::GetNumber(std::string_view path, int fallback) {
  const std::string text = Get(path);
  try {
    if (Trim(text).empty()) return fallback;
    const int64_t number = ParseInteger(Trim(text));
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) return fallback;
    return static_cast<int>(number);
  } catch (const UserError&) {
    return fallback;
  }
}

void Preferences::Set(std::string_view path, std::string_view value) {
  if (path.empty() || CharCount(path) > 120 || CharCount(value) > 2000) {
    throw UserError("A configuração não pode ser guardada.");
  }
  db_.Execute("UPDATE OR INSERT INTO PREFERENCIA (LOGIN_BUSCA, CHAVE, VALOR) VALUES (" +
              SqlLiteral(Lower(login_)) + ", " + SqlLiteral(path) + ", " + SqlLiteral(value) +
              ") MATCHING (LOGIN_BUSCA, CHAVE)");
}

bool Preferences::Remove(std::string_view beginning) {
  const std::string where = " WHERE LOGIN_BUSCA = " + SqlLiteral(Lower(login_)) +
                            " AND CHAVE STARTING WITH " + SqlLiteral(beginning);
  if (db_.Scalar("SELECT FIRST 1 CHAVE FROM PREFERENCIA" + where).IsNull()) return false;
  db_.Execute("DELETE FROM PREFERENCIA" + where);
  return true;
}

}  // namespace orv
