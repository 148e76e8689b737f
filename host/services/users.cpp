#include "host/services/users.h"

#include <sodium.h>

#include <algorithm>
#include <array>

#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kLoginWidth = 40;
constexpr std::size_t kClassWidth = 60;

std::string SearchKey(std::string_view login) { return SqlLiteral(Lower(Trim(login))); }

std::string OfLogin(std::string_view login) { return " WHERE LOGIN_BUSCA = " + SearchKey(login); }

User ReadUser(const std::vector<Value>& row) {
  return {row[0].AsString(), row[1].AsString(), row[2].Text() == "S", row[3].Text() == "S"};
}

constexpr const char* kUserColumns = "SELECT LOGIN, NOME, ADMINISTRADOR, ATIVO FROM USUARIO";

// The kept password holds a salt, so that no two are the same, even of one password.
std::string SealOf(std::string_view kept) {
  std::array<unsigned char, crypto_generichash_BYTES> digest{};
  crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(kept.data()),
                     kept.size(), nullptr, 0);
  return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

bool Grants(const Right& right, std::string_view screen_class) {
  return right.screen_class == "*" || SameText(right.screen_class, screen_class);
}

void CheckLogin(std::string_view login) {
  const bool plain = std::all_of(login.begin(), login.end(),
                                 [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7F; });
  if (login.empty() || CharCount(login) > kLoginWidth || !plain || !ValidUtf8(login)) {
    throw UserError("O nome de usuário deve ter de 1 a 40 caracteres, sem espaços.");
  }
}

}  // namespace

std::vector<User> Users::List() {
  std::vector<User> users;
  for (const auto& row : db_.Rows(std::string(kUserColumns) + " ORDER BY LOGIN_BUSCA")) {
    users.push_back(ReadUser(row));
  }
  return users;
}

std::optional<User> Users::Find(std::string_view login) {
  const auto rows = db_.Rows(kUserColumns + OfLogin(login));
  if (rows.empty()) return std::nullopt;
  return ReadUser(rows[0]);
}

bool Standing::May(std::string_view screen_class, char kind) const {
  return administrator || std::any_of(rights.begin(), rights.end(), [&](const Right& right) {
           return Grants(right, screen_class) &&
                  (right.kinds.find(kind) != std::string::npos || right.kinds.find('*') != std::string::npos);
         });
}

bool Standing::MayOpen(std::string_view screen_class) const {
  return administrator || std::any_of(rights.begin(), rights.end(),
                                      [&](const Right& right) { return Grants(right, screen_class); });
}

std::optional<std::string> Users::Verify(std::string_view login, std::string_view password) {
  const auto rows = db_.Rows("SELECT SENHA, ATIVO FROM USUARIO" + OfLogin(login));
  if (rows.empty()) {
    HashPassword(password, cost_);
    return std::nullopt;
  }
  const std::string kept(rows[0][0].Text());
  if (!VerifyPassword(kept, password) || rows[0][1].Text() != "S") return std::nullopt;
  return SealOf(kept);
}

User Users::Known(std::string_view login) {
  auto user = Find(login);
  if (!user) throw UserError("O usuário \"" + std::string(Trim(login)) + "\" não existe.");
  return *user;
}

void Users::Change(std::string_view login, std::string_view assignment) {
  db_.Execute("UPDATE USUARIO SET " + std::string(assignment) + OfLogin(login));
}

void Users::KeepAnAdministrator(const User& user) {
  if (!user.administrator || !user.active) return;
  const int64_t others =
      db_.Scalar(
             "SELECT COUNT(*) FROM USUARIO WHERE ADMINISTRADOR = 'S' AND ATIVO = 'S' AND LOGIN_BUSCA <> " +
             SearchKey(user.login))
          .AsInteger();
  if (others == 0) throw UserError("É preciso que haja pelo menos um administrador ativo.");
}

void Users::Note(std::string_view text, std::string_view login, TOperacaoLog operation) {
  audit_.Write("USUARIO", text, operation, login);
}

void Users::Add(const User& user, std::string_view password) {
  const std::string login(Trim(user.login));
  CheckLogin(login);
  if (Find(login)) throw UserError("O usuário \"" + login + "\" já existe.");
  CheckNewPassword(login, password);
  db_.Execute("INSERT INTO USUARIO (LOGIN, LOGIN_BUSCA, NOME, SENHA, ADMINISTRADOR, ATIVO) VALUES (" +
              SqlLiteral(login) + ", " + SearchKey(login) + ", " + SqlLiteral(CutChars(user.name, 80)) +
              ", " + SqlLiteral(HashPassword(password, cost_)) + (user.administrator ? ", 'S'" : ", 'N'") +
              (user.active ? ", 'S')" : ", 'N')"));
  Note("INCLUSAO DO USUARIO " + login + (user.administrator ? " (ADMINISTRADOR)" : ""), login,
       TOperacaoLog::Inclusao);
}

void Users::Remove(std::string_view login) {
  const User user = Known(login);
  KeepAnAdministrator(user);
  db_.Execute("DELETE FROM DIREITO" + OfLogin(login));
  db_.Execute("DELETE FROM PREFERENCIA" + OfLogin(login));
  db_.Execute("DELETE FROM USUARIO" + OfLogin(login));
  Note("EXCLUSAO DO USUARIO " + user.login, user.login, TOperacaoLog::Exclusao);
}

void Users::SetPassword(std::string_view login, std::string_view password) {
  const User user = Known(login);
  CheckNewPassword(user.login, password);
  Change(login, "SENHA = " + SqlLiteral(HashPassword(password, cost_)));
  Note("TROCA DA SENHA DO USUARIO " + user.login, user.login, TOperacaoLog::Inclusao);
}

void Users::SetActive(std::string_view login, bool active) {
  const User user = Known(login);
  if (!active) KeepAnAdministrator(user);
  Change(login, active ? "ATIVO = 'S'" : "ATIVO = 'N'");
  Note((active ? "ATIVACAO DO USUARIO " : "DESATIVACAO DO USUARIO ") + user.login, user.login,
       TOperacaoLog::Inclusao);
}

void Users::SetAdministrator(std::string_view login, bool administrator) {
  const User user = Known(login);
  if (!administrator) KeepAnAdministrator(user);
  Change(login, administrator ? "ADMINISTRADOR = 'S'" : "ADMINISTRADOR = 'N'");
  Note("USUARIO " + user.login + (administrator ? " PASSA A ADMINISTRADOR" : " DEIXA DE SER ADMINISTRADOR"),
       user.login, TOperacaoLog::Inclusao);
}

std::vector<Right> Users::Rights(std::string_view login) {
  std::vector<Right> rights;
  for (const auto& row : db_.Rows("SELECT CLASSE, TIPOS FROM DIREITO" + OfLogin(login) + " ORDER BY 1")) {
    rights.push_back({row[0].AsString(), row[1].AsString()});
  }
  return rights;
}

void Users::Grant(std::string_view login, const Right& right) {
  const User user = Known(login);
  const std::string screen_class(Trim(right.screen_class));
  const std::string kinds = Upper(Trim(right.kinds));
  if (screen_class.empty() || CharCount(screen_class) > kClassWidth)
    throw UserError("Classe de tela inválida.");
  if (kinds.empty() || kinds.size() > 10 || kinds.find_first_not_of("AE*") != std::string::npos) {
    throw UserError("Os tipos de direito são A (incluir e alterar), E (excluir) e * (todos).");
  }
  db_.Execute("DELETE FROM DIREITO" + OfLogin(login) +
              " AND UPPER(CLASSE) = " + SqlLiteral(Upper(screen_class)));
  db_.Execute("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES (" + SearchKey(login) + ", " +
              SqlLiteral(screen_class) + ", " + SqlLiteral(kinds) + ")");
  Note("DIREITO " + kinds + " EM " + screen_class + " PARA " + user.login, user.login,
       TOperacaoLog::Inclusao);
}

bool Users::Revoke(std::string_view login, std::string_view screen_class) {
  const User user = Known(login);
  const int64_t removed = db_.Execute("DELETE FROM DIREITO" + OfLogin(login) +
                                      " AND UPPER(CLASSE) = " + SqlLiteral(Upper(Trim(screen_class))));
  if (removed == 0) return false;
  Note("RETIRADO O DIREITO EM " + std::string(Trim(screen_class)) + " DE " + user.login, user.login,
       TOperacaoLog::Exclusao);
  return true;
}

std::map<std::string, Standing> Users::ReadStandings(std::string_view condition) {
  std::map<std::string, orv::Standing> standings;
  for (const auto& row : db_.Rows("SELECT U.LOGIN_BUSCA, U.SENHA, U.ADMINISTRADOR, D.CLASSE, D.TIPOS FROM "
                                  "USUARIO U LEFT JOIN DIREITO D "
                                  "ON D.LOGIN_BUSCA = U.LOGIN_BUSCA WHERE U.ATIVO = 'S'" +
                                  std::string(condition) + " ORDER BY U.LOGIN_BUSCA, D.CLASSE")) {
    orv::Standing& standing = standings[row[0].AsString()];
    standing.seal = SealOf(row[1].Text());
    standing.administrator = row[2].Text() == "S";
    if (!row[3].IsNull()) standing.rights.push_back({row[3].AsString(), row[4].AsString()});
  }
  return standings;
}

bool Users::May(std::string_view login, std::string_view screen_class, char kind) {
  const auto standing = Standing(login);
  return standing && standing->May(screen_class, kind);
}

bool Users::MayOpen(std::string_view login, std::string_view screen_class) {
  const auto standing = Standing(login);
  return standing && standing->MayOpen(screen_class);
}

std::optional<Standing> Users::Standing(std::string_view login) {
  auto standings = ReadStandings(" AND U.LOGIN_BUSCA = " + SearchKey(login));
  if (standings.empty()) return std::nullopt;
  return std::move(standings.begin()->second);
}

}  // namespace orv
