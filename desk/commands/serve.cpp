// The desk on the network, as a process: its options, its signals, and what an administrator asks of it.
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>

#include <iostream>

#include "desk/commands/commands.h"
#include "desk/folders.h"
#include "desk/server/server.h"
#include "desk/server/server_control.h"
#include "frame/module.h"
#include "toolkit/text.h"

namespace orv::commands {
namespace {

// The signals that end the desk. Blocked before any thread begins, so that all of them leave these to the
// one that waits.
sigset_t BlockSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  signal(SIGPIPE, SIG_IGN);
  return signals;
}

// "127.0.0.1:8080", "[::1]:8080".
void ReadListen(const std::string& text, ServerOptions& options) {
  const std::size_t colon = text.rfind(':');
  options.address = colon == std::string::npos ? "" : text.substr(0, colon);
  if (options.address.size() > 2 && options.address.front() == '[') {
    options.address = options.address.substr(1, options.address.size() - 2);
  }
  const std::string port = colon == std::string::npos ? "" : text.substr(colon + 1);
  const bool digits =
      !port.empty() && port.size() <= 5 && port.find_first_not_of("0123456789") == std::string::npos;
  options.port = digits ? std::stoi(port) : -1;
  if (options.address.empty() || options.port < 0 || options.port > 65535) {
    throw UserError("\"" + text + "\" não é um endereço com porta, como 127.0.0.1:8080.");
  }
}

// The page beside the program: installed in share/orvcc/web, or in the folder where it was built.
std::filesystem::path WebFolder(const std::string& given) {
  if (!given.empty()) return given;
  std::error_code error;
  std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (int up = 0; up < 5 && folder.has_relative_path(); ++up, folder = folder.parent_path()) {
    for (const char* place : {"web/dist", "share/orvcc/web"}) {
      if (std::filesystem::exists(folder / place / "index.html", error)) return folder / place;
    }
  }
  throw UserError("A página não foi encontrada junto do programa. Informe a pasta com --web.");
}

std::string Spell(int64_t minutes) {
  return minutes < 60 ? std::to_string(minutes) + " min"
                      : std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

}  // namespace

void RunServe(const Serve& options) {
  const sigset_t signals = BlockSignals();
  umask(077);
  Log log(options.log);
  const Module module("orvCC");
  ServerOptions server_options;
  ReadListen(options.listen, server_options);
  server_options.database = options.database;
  server_options.data = DataFolder(options.data);
  server_options.web = WebFolder(options.web);
  server_options.certificate = options.certificate;
  server_options.key = options.key;
  server_options.public_address = options.address;
  server_options.proxy = options.proxy;
  server_options.idle = std::chrono::minutes(options.idle);
  server_options.absolute = std::chrono::hours(options.absolute);
  server_options.grace = std::chrono::minutes(options.grace);
  server_options.windows = static_cast<std::size_t>(options.windows);
  server_options.max_upload = static_cast<std::size_t>(options.upload) << 20;
  server_options.max_uploads = static_cast<std::size_t>(options.uploads) << 20;
  server_options.connections = static_cast<std::size_t>(options.connections);
  server_options.subdomains = options.subdomains;
  if (!options.today.empty()) server_options.clock = Clock(Date::ParseNeutral(options.today));

  Server server(std::move(server_options), log);
  std::cout << "A mesa está em " << server.Address() << " (Ctrl+C encerra)." << std::endl;
  int signal = 0;
  sigwait(&signals, &signal);
  server.Stop();
  std::cout << "A mesa foi encerrada." << std::endl;
}

void SessionList(const std::string& data) {
  const Json answer = AskDesk(DataFolder(data), {{"do", "list"}});
  for (const Json& session : answer["sessions"].Items()) {
    const int64_t windows = session["windows"].Integer();
    std::cout << session["id"].String() << "\t" << session["user"].String() << "\t"
              << session["company"].String() << "\t" << session["address"].String() << "\thá "
              << Spell(session["minutes"].Integer()) << "\tsem uso há " << Spell(session["idle"].Integer())
              << "\t" << windows << (windows == 1 ? " janela" : " janelas") << "\n";
  }
}

void SessionEnd(const std::string& data, const std::string& id) {
  if (!AskDesk(DataFolder(data), {{"do", "end"}, {"id", id}})["ended"].Bool()) {
    throw UserError("A sessão " + id + " não existe.");
  }
  std::cout << "Sessão " << id << " encerrada.\n";
}

}  // namespace orv::commands
