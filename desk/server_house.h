// What the server itself asks of the database, outside the users' sessions. Each call has an attachment of
// its own and may come from any thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desk/json.h"
#include "host/services/passwords.h"
#include "toolkit/date.h"

namespace orv {

class Attachment;

class ServerHouse {
 public:
  enum class Verdict { Accepted, Refused, NoCompany };
  struct Attempt {
    Verdict verdict = Verdict::Refused;
    std::string user;  // as it was entered when the user was made; "" for an unknown one
  };

  // Raises UserError for a database that can't be used.
  ServerHouse(std::string database, Clock clock, PasswordCost cost);
  ~ServerHouse();

  // --- All raise UserError when the database doesn't answer.
  // Leaves an audit line.
  Attempt TryLogin(const std::string& user, const std::string& password, const std::string& company,
                   const std::string& address);
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
};

}  // namespace orv
