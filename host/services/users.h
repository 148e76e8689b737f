// The users of the house, their passwords and their rights.
#pragma once

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
};

class Users {
 public:
  Users(TOrvDatabase& db, Audit& audit, PasswordCost cost = {}) : db_(db), audit_(audit), cost_(cost) {}

  std::vector<User> List();
  // Logins ignore case.
  std::optional<User> Find(std::string_view login);
  // True for an active user's password. An unknown user takes as long as a wrong password.
  bool Verify(std::string_view login, std::string_view password);

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
  // True for an active administrator and for who holds the kind on the class or on all.
  bool May(std::string_view login, std::string_view screen_class, char kind);
  // True for an active administrator and for who holds any right on the class or on all.
  bool MayOpen(std::string_view login, std::string_view screen_class);

 private:
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
