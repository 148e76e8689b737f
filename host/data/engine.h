// The database engine inside this process: its folder, its settings, its client interfaces.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orv {

// Makes the engine's private root (settings, the installed engine, lock and temporary folders) below
// `folder`, or below a temporary folder of this process that goes at exit, and points the environment there.
// Every way to a database calls it; a program calls it itself, before it starts threads, to choose the
// folder. The first call decides, later ones do nothing. Raises DatabaseError where the engine isn't
// installed or the folder can't be made.
void PrepareEngine(const std::filesystem::path& folder = {});

// Where a database is: a file of this machine, opened by the engine in this process, or an alias or path at a
// server ("host:alias", "host/port:alias", "inet://host/alias").
struct DatabaseAddress {
  // Absolute for a file, as written for a server.
  std::string name;
  // "host" or "host/port", with the colon; empty for a file.
  std::string server;
  bool Embedded() const { return server.empty(); }
};
DatabaseAddress ParseAddress(std::string_view database);

// User and password for a server: ORVCC_DB_USER (SYSDBA without it) and ORVCC_DB_PASSWORD.
struct Credentials {
  std::string user;
  std::string password;
};
Credentials CredentialsFor(const DatabaseAddress& address);

}  // namespace orv
