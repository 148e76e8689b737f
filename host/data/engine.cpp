#include "host/data/engine.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <vector>

#include "host/data/api.h"
#include "toolkit/database.h"
#include "toolkit/scoped.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>

extern "C" __attribute__((weak)) const char* __lsan_default_options();
extern "C" __attribute__((weak)) const char* __lsan_default_options() {
  return "print_suppressions=0:use_tls=0";
}
// What the engine and the libraries under it keep for the life of the process; and what the test library
// keeps by thread, which isn't looked at.
extern "C" __attribute__((weak)) const char* __lsan_default_suppressions();
extern "C" __attribute__((weak)) const char* __lsan_default_suppressions() {
  return "leak:libfbclient\nleak:libEngine12\nleak:libicu\nleak:libfbintl\nleak:testing::internal::"
         "ThreadLocal\n";
}
#endif

namespace orv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSettings =
    "Providers = Remote,Engine12\n"
    "ServerMode = Super\n"
    "DefaultDbCachePages = 20000\n"
    "GCPolicy = cooperative\n"
    "DeadlockTimeout = 1\n"
    "ConnectionTimeout = 20\n"
    "UdfAccess = None\n"
    "ExternalFileAccess = None\n";

[[noreturn]] void Refuse(const std::string& message, const std::string& detail) {
  throw DatabaseError(DatabaseError::Kind::Connection, 0, message, detail);
}

// The folder of the installed engine: it stands beside the client library.
fs::path InstalledEngine() {
  std::vector<fs::path> candidates;
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&Firebird::fb_get_master_interface), &info) != 0 && info.dli_fname) {
    std::error_code ignored;
    const fs::path library = fs::canonical(info.dli_fname, ignored);
    if (!library.empty()) candidates.push_back(library.parent_path() / "firebird/3.0");
  }
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/usr/lib", ignored))
    candidates.push_back(entry.path() / "firebird/3.0");
  for (const fs::path& candidate : candidates)
    if (fs::exists(candidate / "plugins/libEngine12.so", ignored)) return candidate;
  Refuse("O motor do banco de dados não está instalado. Instale o pacote firebird3.0-server-core.",
         "plugins/libEngine12.so not found beside libfbclient.so.2 nor below /usr/lib/*/firebird/3.0");
}

void Link(const fs::path& target, const fs::path& link) {
  if (!fs::exists(target))
    Refuse("A instalação do motor do banco de dados está incompleta: falta \"" + target.string() + "\".",
           "missing engine file " + target.string());
  std::error_code ignored;
  if (fs::read_symlink(link, ignored) == target) return;
  fs::path fresh = link;
  fresh += "." + std::to_string(getpid());
  fs::remove(fresh, ignored);
  fs::create_symlink(target, fresh);
  fs::rename(fresh, link);
}

// Another process may prepare the same folder: the file changes in one step.
void Write(const fs::path& file, std::string_view text) {
  fs::path fresh = file;
  fresh += "." + std::to_string(getpid());
  std::ofstream(fresh) << text;
  fs::rename(fresh, file);
}

// The library of character sets, as a file of our own: reached by a link, the engine loads it and then
// doesn't recognise it ("CHARACTER SET WIN1252 is not installed").
void CopyCharacterSets(const fs::path& installed, const fs::path& folder) {
  const fs::path library = installed / "libfbintl.so";
  if (!fs::exists(library))
    Refuse("A instalação do motor do banco de dados está incompleta: falta \"" + library.string() + "\".",
           "missing engine file " + library.string());
  fs::path fresh = folder / "libfbintl.so";
  fresh += "." + std::to_string(getpid());
  fs::copy_file(library, fresh, fs::copy_options::overwrite_existing);
  fs::rename(fresh, folder / "libfbintl.so");
}

fs::path temporary_root;
pid_t temporary_owner = 0;

// What processes that were killed have left: a folder that nobody holds any more.
void SweepTemporaryRoots() {
  // Some at a time: nobody waits for the rest.
  int most = 20;
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::temp_directory_path(), ignored)) {
    if (!entry.path().filename().string().starts_with("orvcc-engine-")) continue;
    const int folder = open(entry.path().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) continue;
    struct stat about {};
    // Whoever has just made one may not hold it yet.
    const bool left = fstat(folder, &about) == 0 && about.st_uid == geteuid() &&
                      time(nullptr) - about.st_mtime > 60 && flock(folder, LOCK_EX | LOCK_NB) == 0;
    if (left) fs::remove_all(entry.path(), ignored);
    close(folder);
    if (left && --most == 0) return;
  }
}

fs::path TemporaryRoot() {
  SweepTemporaryRoots();
  std::string pattern = (fs::temp_directory_path() / "orvcc-engine-XXXXXX").string();
  if (!mkdtemp(pattern.data()))
    Refuse("Não foi possível criar a pasta temporária do banco de dados em \"" +
               fs::temp_directory_path().string() + "\".",
           "mkdtemp " + pattern);
  temporary_root = pattern;
  temporary_owner = getpid();
  // Held for the life of the process.
  flock(open(pattern.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), LOCK_SH | LOCK_NB);
  std::atexit([] {
    std::error_code ignored;
    if (getpid() == temporary_owner) fs::remove_all(temporary_root, ignored);
  });
  return pattern;
}

void MakeRoot(const fs::path& folder) {
  const fs::path installed = InstalledEngine();
  try {
    const fs::path root = folder.empty() ? TemporaryRoot() : fs::absolute(folder);
    for (const char* part : {"", "intl", "lock", "tmp"}) {
      fs::create_directories(root / part);
      fs::permissions(root / part, fs::perms::owner_all);
    }
    for (const char* part : {"plugins", "plugins.conf", "firebird.msg"}) Link(installed / part, root / part);
    Write(root / "firebird.conf", kSettings);
    CopyCharacterSets(installed / "intl", root / "intl");
    setenv("FIREBIRD", root.c_str(), 1);
    setenv("FIREBIRD_LOCK", (root / "lock").c_str(), 1);
    setenv("FIREBIRD_TMP", (root / "tmp").c_str(), 1);
  } catch (const fs::filesystem_error& error) {
    Refuse("Não foi possível preparar a pasta do banco de dados \"" + folder.string() +
               "\". Verifique o espaço em disco e as permissões.",
           error.what());
  }
}

constexpr std::array kSignals = {SIGTERM, SIGINT};

// Keeps the engine for the life of the process. Its code, since the thread of a finished task may still be on
// its way out when the client library takes the engine away; and a use of it, since a minute after the last
// one the client library shuts it down, and what stays in memory never starts again.
void KeepEngine() {
  const char* root = std::getenv("FIREBIRD");
  if (root == nullptr) return;
  // The handle is kept for good. Where the engine isn't in use, at a server, there is none.
  if (dlopen((fs::path(root) / "plugins/libEngine12.so").c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE) ==
      nullptr) {
    return;
  }
  static Firebird::IPluginSet* use = nullptr;
  fb::Call call;
  use = fb::Master()->getPluginManager()->getPlugins(call(), Firebird::IPluginManager::TYPE_PROVIDER,
                                                     "Engine12", nullptr);
  // The client library, which goes after this, waits at its end for whoever still uses the engine.
  if (use == nullptr) return;
  std::atexit([] {
#ifdef __SANITIZE_ADDRESS__
    // Leaks are looked for while the engine's threads stand still: they end with it.
    __lsan_do_leak_check();
#endif
    use->release();
  });
}

bool HostName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
    return std::isalnum(c) || c == '.' || c == '-' || c == '_';
  });
}

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

void PrepareEngine(const fs::path& folder) {
  static std::mutex mutex;
  static bool prepared = false;
  const std::lock_guard lock(mutex);
  if (prepared) return;
  MakeRoot(folder);
  prepared = true;
}

DatabaseAddress ParseAddress(std::string_view database) {
  for (const std::string_view scheme : {"inet://", "inet4://", "inet6://"}) {
    if (!database.starts_with(scheme)) continue;
    const std::string_view rest = database.substr(scheme.size());
    const std::size_t slash = rest.find('/');
    if (slash == std::string_view::npos || slash == 0) break;
    return {std::string(database), std::string(scheme) + std::string(rest.substr(0, slash)) + "/"};
  }
  std::error_code ignored;
  if (!database.starts_with('/') && !database.starts_with('.') && !fs::exists(database, ignored)) {
    std::size_t colon = database.find(':');
    std::string_view host = database.substr(0, colon);
    if (database.starts_with('[')) {  // An IPv6 address has colons of its own.
      const std::size_t bracket = database.find(']');
      colon = bracket == std::string_view::npos ? bracket : database.find(':', bracket);
      host = "ipv6";
    }
    if (const std::size_t slash = host.find('/'); slash != std::string_view::npos) {
      if (!HostName(host.substr(slash + 1))) colon = std::string_view::npos;
      host = host.substr(0, slash);
    }
    if (colon != std::string_view::npos && colon + 1 < database.size() && HostName(host))
      return {std::string(database), std::string(database.substr(0, colon + 1))};
  }
  return {fs::absolute(database).lexically_normal().string(), ""};
}

Credentials CredentialsFor(const DatabaseAddress& address) {
  if (address.Embedded()) return {"SYSDBA", ""};
  Credentials credentials{FromEnvironment("ORVCC_DB_USER"), FromEnvironment("ORVCC_DB_PASSWORD")};
  if (credentials.user.empty()) credentials.user = "SYSDBA";
  return credentials;
}

namespace fb {

Firebird::IMaster* Master() {
  static Firebird::IMaster* const master = [] {
    PrepareEngine();
    return Firebird::fb_get_master_interface();
  }();
  return master;
}

void KeepingSignals(const std::function<void()>& attach) {
  static std::mutex mutex;
  static std::atomic<bool> installed = false;
  if (installed) return attach();
  const std::lock_guard lock(mutex);
  std::array<struct sigaction, kSignals.size()> before{};
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], nullptr, &before[i]);
  const AtEnd restore([&before] {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before[i], nullptr);
  });
  attach();
  KeepEngine();
  installed = true;
}

ParameterBlock& ParameterBlock::Tag(unsigned char tag) {
  bytes_ += static_cast<char>(tag);
  return *this;
}

ParameterBlock& ParameterBlock::Text(unsigned char tag, std::string_view text) {
  if (text.size() > 255)
    throw DatabaseError(DatabaseError::Kind::Limit, 0,
                        "Usuário, senha ou endereço do banco de dados longo demais.", "");
  bytes_ += static_cast<char>(tag);
  bytes_ += static_cast<char>(text.size());
  bytes_ += text;
  return *this;
}

ParameterBlock& ParameterBlock::LongText(unsigned char tag, std::string_view text) {
  if (text.size() > 65535)
    throw DatabaseError(DatabaseError::Kind::Limit, 0, "Nome do banco de dados longo demais.", "");
  bytes_ += static_cast<char>(tag);
  bytes_ += static_cast<char>(text.size() & 0xff);
  bytes_ += static_cast<char>(text.size() >> 8);
  bytes_ += text;
  return *this;
}

ParameterBlock& ParameterBlock::Number(unsigned char tag, unsigned number) {
  bytes_ += static_cast<char>(tag);
  bytes_ += '\4';
  for (int shift = 0; shift < 32; shift += 8) bytes_ += static_cast<char>(number >> shift);
  return *this;
}

ParameterBlock& ParameterBlock::Plain(unsigned char tag, unsigned number) {
  bytes_ += static_cast<char>(tag);
  for (int shift = 0; shift < 32; shift += 8) bytes_ += static_cast<char>(number >> shift);
  return *this;
}

}  // namespace fb
}  // namespace orv
