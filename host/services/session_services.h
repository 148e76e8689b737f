// All services of one session, wired together.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/application.h"

namespace orv {

class Anexos;
class Attachment;
class Audit;
class Calendar;
class Companies;
class Parameters;
class PeriodLocks;
class Preferences;
class Users;

class SessionServices {
 public:
  // Lends the services to the application and names the attachment's tables after the company of the session.
  // Raises UserError when the user doesn't exist or isn't active, or there is no such company.
  SessionServices(Application& application, Attachment& db, std::string_view login, std::string_view company);
  ~SessionServices();
  SessionServices(const SessionServices&) = delete;
  SessionServices& operator=(const SessionServices&) = delete;

  Services Get() const;

  // --- For the host's own commands and its menu.
  orv::Users& Users() const;
  orv::Parameters& Parameters() const;
  PeriodLocks& Locks() const;
  orv::Audit& Audit() const;
  orv::Calendar& Calendar() const;
  orv::Anexos& Anexos() const;
  orv::Preferences& Preferences() const;
  const orv::Companies& Companies() const;
  // The user's login as it was entered when the user was made, and the company's suffix.
  const std::string& Login() const;
  const std::string& Company() const;

  // After an action's writes were undone.
  void Undone();
  // What an action that was cut short may have left: the busy mark goes, tables stand where they stood.
  void AfterAction();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace orv
