// The commands of the program beside the desk itself. Each prints its result on standard output and raises
// UserError with a sentence for the person at the machine.
#pragma once

#include <string>
#include <vector>

#include "toolkit/date.h"

namespace orv::commands {

struct Init {
  std::string database;
  bool demo = false;
  int scale = 1;
  std::string companies = "_001";  // "_001,_002"
  std::string date;                // "yyyy-mm-dd", today by default
};
void RunInit(const Init& options);

struct DemoFiles {
  std::string database, company = "_001", folder;
};
// Each file with the acquirer, the kind and the bank for which it is, its lines, and which of them match.
void WriteFiles(const DemoFiles& options);

struct Drive {
  std::string database, user, company = "_001", today, data;
};
// The exit status: 0 when every line was understood.
int RunDrive(const Drive& options);

// How a favourite report ended, as the exit status says it.
enum class ReportStatus { Made = 0, Failed = 1, Unknown = 2, NoRows = 3, NoFile = 4, NoRight = 5 };
struct FavouriteReport {
  Drive door;
  std::string name, format = "pdf", out;
  bool list = false;
};
// Makes it and writes it to a file that isn't there yet, whole or not at all; with `list` prints their names.
int RunReport(const FavouriteReport& options);

struct Serve {
  std::string database, listen = "127.0.0.1:8080", data, certificate, key, log, web, address, proxy, today;
  int idle = 30, absolute = 12, grace = 10;     // minutes, hours, minutes
  int windows = 8, upload = 64, uploads = 256;  // of one user, megabytes
  int connections = 512;                        // of one address
  bool subdomains = false;
};
// Serves until SIGTERM or SIGINT.
void RunServe(const Serve& options);
// Who is logged in at the desk that runs on this data folder.
void SessionList(const std::string& data);
void SessionEnd(const std::string& data, const std::string& id);

struct User {
  std::string database, name, screen_class, kinds;
  bool admin = false;
};
void UserAdd(const User& options);
void UserPassword(const User& options);
void UserGrant(const User& options);
void UserRevoke(const User& options);
void UserList(const User& options);
void UserRemove(const User& options);

struct Param {
  std::string database, group, value, company;
  int number = 0;
};
void ParamGet(const Param& options);
void ParamSet(const Param& options);
void ParamList(const Param& options);

struct Lock {
  std::string database, company = "_001", account, until;
  bool cash = false;
};
void LockSet(const Lock& options);
void LockClear(const Lock& options);
void LockList(const Lock& options);

void HolidayAdd(const std::string& database, const std::string& date, const std::string& name,
                const std::string& company);
void CompanyAdd(const std::string& database, const std::string& suffix, const std::string& name);
// The number of contradictions found; each is printed.
std::size_t Check(const std::string& database);
void Upgrade(const std::string& database);
void RunBackup(const std::string& database, const std::string& file);
void RunRestore(const std::string& database, const std::string& file);
// The latest lines of the audit table, the oldest first.
void AuditTail(const std::string& database, int count);

}  // namespace orv::commands
