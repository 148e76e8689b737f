// The door on standard input and standard output.
#include <iostream>

#include "desk/commands/commands.h"
#include "desk/folders.h"
#include "desk/session/door_client.h"
#include "frame/module.h"

namespace orv::commands {
namespace {

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
  session.folder = UserFolder(DataFolder(options.data), options.user, options.company);
  session.machine_paths = true;
  session.templates = TemplatesFolder(DataFolder(options.data));
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
