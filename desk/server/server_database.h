// What the server itself asks of the database, outside the users' sessions. Each call has an attachment of
// its own and may come from any thread.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "desk/json.h"
#include "desk/login_seal.h"
#include "host/services/passwords.h"
#include "host/services/users.h"
#include "toolkit/date.h"

namespace orv {

class Attachment;

class ServerDatabase {
 public:
  enum class Verdict { Accepted, Refused, NoCompany };
  struct Attempt {
    Verdict verdict = Verdict::Refused;
    std::string user;  // as it was entered when the user was made; "" for an unknown one
    std::string seal;  // of the password that was right
  };

  // Raises UserError for a database that can't be used.
  ServerDatabase(std::string database, Clock clock, PasswordCost cost);
  ~ServerDatabase();

  // --- All raise UserError when the database doesn't answer.
  // Leaves an audit line.
  Attempt TryLogin(const std::string& user, const std::string& password, const std::string& company,
                   const std::string& address);
  // Of all active users, by their logins in lower case.
  std::map<std::string, Standing> Standings();
  // Commits the new password once the login's seal knows it, and gives its seal; nothing when `present` isn't
  // the password. Raises UserError for a new one that won't do.
  std::optional<std::string> ChangePassword(const std::string& user, const std::string& company,
                                            const std::string& address, const std::string& present,
                                            const std::string& fresh, LoginSeal& login);
  // Folds the sums that the database keeps (host/schema/balances.h), and leaves nothing of it for others to
  // clear away.
  void FoldSums();
  // [{"suffix", "name"}]
  Json Companies();
  // The user, the company and the screens that the user may open. Nothing for a user who is active no more.
  std::optional<Json> Me(const std::string& user, const std::string& company);
  // What the page keeps for the user, key to value.
  Json Preferences(const std::string& user);
  // Raises UserError for a key or a value that won't do, or too many of them.
  void SetPreference(const std::string& user, const std::string& key, const std::string& value);

 private:
  std::string database_;
  Clock clock_;
  PasswordCost cost_;
  // Keeps the engine's cache while nobody is at the desk.
  std::unique_ptr<Attachment> idle_;
  // Asked again and again for the standings; null until the next time when it has failed.
  std::mutex watch_mutex_;
  std::unique_ptr<Attachment> watch_;
};

}  // namespace orv
