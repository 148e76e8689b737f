// The door on standard input and standard output.
#include <cstdlib>
#include <iostream>

#include "desk/client.h"
#include "desk/commands.h"
#include "frame/module.h"

namespace orv::commands {
namespace {

// Folders of users' files: --data, or $XDG_DATA_HOME/orvcc, or ~/.local/share/orvcc.
std::filesystem::path DataFolder(const std::string& given) {
  if (!given.empty()) return given;
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg != '\0') {
    return std::filesystem::path(xdg) / "orvcc";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home != nullptr ? home : "/tmp") / ".local/share/orvcc";
}

void Print(const Json& out) { std::cout << out.Text() << "\n"; }

}  // namespace

int RunDrive(const Drive& options) {
  Log log;
  const Module module("orvCC");
  SessionOptions session;
  session.database = options.database;
  session.user = options.user;
  session.company = options.company;
  if (!options.today.empty()) session.clock = Clock(Date::ParseNeutral(options.today));
  session.folder = DataFolder(options.data) / options.user;
  DoorClient client(std::move(session), log);

  int status = 0;
  std::string line;
  // What a driver waits for comes after a line that isn't JSON too: the desk stands where it stood.
  Json end{{"on", "idle"}};
  while (!client.Ended() && std::getline(std::cin, line)) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      const std::vector<Json> answer = client.Do(Json::Parse(line));
      for (const Json& out : answer) Print(out);
      end = answer.back();
    } catch (const JsonError& e) {
      status = 1;
      Print({{"on", "error"}, {"text", e.what()}});
      Print(end);
    }
    std::cout.flush();
  }
  return status;
}

}  // namespace orv::commands
