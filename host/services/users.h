// The users of the house, their passwords and their rights.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/services/audit.h"
#include "host/services/passwords.h"
#include "toolkit/database.h"

namespace orv {

struct User {
  std::string login;
  std::string name;
  bool administrator = false;
  bool active = true;
};

// A right on a screen class, or on all of them with "*". `kinds` holds 'A' for inserting and altering, 'E'
// for deleting, '*' for everything.
struct Right {
  std::string screen_class;
  std::string kinds;
  friend bool operator==(const Right&, const Right&) = default;
};

// What an active user's session goes on by.
struct Standing {
  // Another one with each new password; tells nothing of it.
  std::string seal;
  bool administrator = false;
  std::vector<Right> rights;
  friend bool operator==(const Standing&, const Standing&) = default;

  // True for an administrator and for who holds the kind on the class or on all.
  bool May(std::string_view screen_class, char kind) const;
  // True for an administrator and for who holds any right on the class or on all.
  bool MayOpen(std::string_view screen_class) const;
};

class Users {
 public:
  Users(TOrvDatabase& db, Audit& audit, PasswordCost cost = {}) : db_(db), audit_(audit), cost_(cost) {}

  std::vector<User> List();
  // Logins ignore case.
  std::optional<User> Find(std::string_view login);
  // The seal of an active user's standing, when this is the password. An unknown user takes as long as a
  // wrong password.
  std::optional<std::string> Verify(std::string_view login, std::string_view password);

  // --- Every change leaves an audit line; the caller commits. Raises UserError for an unknown user, and for
  // a change that would leave no active administrator. Raises UserError for a login that is taken or
  // malformed, and for a password that won't do.
  void Add(const User& user, std::string_view password);
  void Remove(std::string_view login);
  void SetPassword(std::string_view login, std::string_view password);
  void SetActive(std::string_view login, bool active);
  void SetAdministrator(std::string_view login, bool administrator);

  // --- Rights.
  std::vector<Right> Rights(std::string_view login);
  // Replaces what the user had on that class. Raises UserError for other kinds.
  void Grant(std::string_view login, const Right& right);
  // False when there was none.
  bool Revoke(std::string_view login, std::string_view screen_class);
  bool May(std::string_view login, std::string_view screen_class, char kind);
  bool MayOpen(std::string_view login, std::string_view screen_class);
  // As the database has it now, nothing for who is unknown or inactive.
  std::optional<orv::Standing> Standing(std::string_view login);
  // Of all active users, by their logins in lower case.
  std::map<std::string, orv::Standing> Standings() { return ReadStandings(""); }

 private:
  std::map<std::string, orv::Standing> ReadStandings(std::string_view condition);
  User Known(std::string_view login);
  void Change(std::string_view login, std::string_view assignment);
  // Refuses when nobody but this user is an active administrator.
  void KeepAnAdministrator(const User& user);
  void Note(std::string_view text, std::string_view login, TOperacaoLog operation);

  TOrvDatabase& db_;
  Audit& audit_;
  PasswordCost cost_;
};

}  // namespace orv
