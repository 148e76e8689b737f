#include "desk/session/user_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <utility>
#include <vector>

#include "desk/random.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kNotStored = "O arquivo não pôde ser gravado. Verifique o espaço em disco.";
// What the smallest file takes, so that their number has a bound, too.
constexpr std::size_t kLeastShare = 4096;
constexpr std::size_t kLongestName = 200;  // bytes

constexpr int kFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;

// The names on the way, nothing for a way that begins elsewhere or goes up.
std::optional<std::vector<std::string>> Steps(std::string_view path) {
  if (path.starts_with('/') || path.find('\0') != std::string_view::npos) return std::nullopt;
  std::vector<std::string> steps;
  for (std::string& step : Split(std::string(path), "/")) {
    if (step == "..") return std::nullopt;
    if (!step.empty() && step != ".") steps.push_back(std::move(step));
  }
  return steps;
}

// The folder at the end of so many steps, -1 for none. Each is opened from the one before, so that what is
// put in the way meanwhile leads nowhere.
int OpenFolder(const std::filesystem::path& own, const std::vector<std::string>& steps, std::size_t count) {
  int folder = ::open(own.c_str(), kFolder);
  for (std::size_t i = 0; i < count && folder >= 0; ++i) {
    const int next = ::openat(folder, steps[i].c_str(), kFolder | O_NOFOLLOW);
    ::close(folder);
    folder = next;
  }
  return folder;
}

}  // namespace

// --- The room for uploads.

struct UploadSpace::State {
  std::mutex mutex;
  std::size_t most = 0;
  std::map<std::string, std::size_t> taken;
};

UploadSpace::UploadSpace(std::size_t most) : state_(std::make_shared<State>()) { state_->most = most; }

UploadSpace::Share UploadSpace::Take(const std::string& user, std::size_t bytes) const {
  const std::size_t size = std::max(bytes, kLeastShare);
  const std::string who = Lower(user);
  {
    const std::lock_guard lock(state_->mutex);
    std::size_t& taken = state_->taken[who];
    if (size > state_->most - taken) {
      throw UserError("Os arquivos que você enviou já ocupam o limite de " +
                      std::to_string(state_->most >> 20) +
                      " MB. Confirme os que estão carregados ou feche janelas, e envie de novo.");
    }
    taken += size;
  }
  return {nullptr, [state = state_, who, size](void*) {
            const std::lock_guard lock(state->mutex);
            const auto found = state->taken.find(who);
            if ((found->second -= size) == 0) state->taken.erase(found);
          }};
}

// --- One upload.

Upload::Upload(const std::filesystem::path& folder, UploadSpace::Share share)
    : path_((folder / ("envio-" + RandomHex(128))).string()), share_(std::move(share)) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (descriptor_ < 0) throw UserError(kNotStored);
}

Upload::Upload(Upload&& other) noexcept
    : path_(std::exchange(other.path_, "")),
      descriptor_(std::exchange(other.descriptor_, -1)),
      share_(std::move(other.share_)) {}

Upload& Upload::operator=(Upload&& other) noexcept {
  if (this == &other) return *this;
  Remove();
  path_ = std::exchange(other.path_, "");
  descriptor_ = std::exchange(other.descriptor_, -1);
  share_ = std::move(other.share_);
  return *this;
}

Upload::~Upload() { Remove(); }

void Upload::Remove() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!path_.empty()) ::unlink(path_.c_str());
}

void Upload::Write(std::string_view piece) {
  while (!piece.empty()) {
    const ssize_t size = ::write(descriptor_, piece.data(), piece.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) throw UserError(kNotStored);
    piece.remove_prefix(static_cast<std::size_t>(size));
  }
}

std::optional<InputFile> Upload::Open() const { return InputFile::Open(AT_FDCWD, path_, false); }

// --- What the user may name.

std::string UserFiles::Keep(const std::string& name, Upload upload) {
  // One file's name: no path, nothing that a display would show as something else.
  const bool bad = name.empty() || name.size() > kLongestName || name[0] == '.' || !ValidUtf8(name) ||
                   name.find_first_of("/\\:*?\"<>|") != std::string::npos ||
                   std::any_of(name.begin(), name.end(),
                               [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; });
  if (bad) throw UserError("O nome do arquivo não é aceito.");
  given_.insert_or_assign(name, std::move(upload));
  return name;
}

std::optional<InputFile> UserFiles::Open(std::string_view path) const {
  if (machine_ && path.starts_with('/') && path.find('\0') == std::string_view::npos)
    return InputFile::Open(AT_FDCWD, std::string(path), true);
  const auto steps = Steps(path);
  // A name before a slash is a folder's.
  if (!steps || steps->empty() || path.ends_with('/')) return std::nullopt;
  if (steps->size() == 1) {
    const auto given = given_.find(steps->front());
    if (given != given_.end()) return given->second.Open();
  }
  const int folder = OpenFolder(folder_, *steps, steps->size() - 1);
  if (folder < 0) return std::nullopt;
  auto file = InputFile::Open(folder, steps->back(), false);
  ::close(folder);
  return file;
}

bool UserFiles::IsFolder(std::string_view path) const {
  if (machine_ && path.starts_with('/')) {
    std::error_code error;
    return std::filesystem::is_directory(std::filesystem::path(path), error);
  }
  const auto steps = Steps(path);
  const int folder = steps ? OpenFolder(folder_, *steps, steps->size()) : -1;
  if (folder < 0) return false;
  ::close(folder);
  return true;
}

void UserFiles::Forget(std::string_view path) {
  const auto steps = Steps(path);
  if (!steps || steps->size() != 1) return;
  const auto given = given_.find(steps->front());
  if (given != given_.end()) given_.erase(given);
}

}  // namespace orv
