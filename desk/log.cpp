#include "desk/log.h"

#include <cerrno>
#include <cstring>

#include "toolkit/date.h"

namespace orv {

std::string Masked(std::string_view text) {
  std::string masked;
  bool quoted = false;
  for (const char c : text) {
    if (c == '\'') {
      quoted = !quoted;
      masked += c;
    } else if (!quoted) {
      masked += c >= '0' && c <= '9' ? '#' : c;
    }
  }
  return masked;
}

Log::Log(const std::string& file) : file_(file.empty() ? stderr : std::fopen(file.c_str(), "ae")) {
  if (file_ == nullptr)
    throw UserError("O arquivo de log " + file + " não pôde ser aberto: " + std::strerror(errno) + ".");
}

Log::~Log() {
  if (file_ != stderr) std::fclose(file_);
}

void Log::Write(std::string_view event, Json::Object fields) {
  Json line{{"time", Clock().Now().Neutral()}, {"event", event}};
  for (Json::Member& field : fields) line.Set(field.first, std::move(field.second));
  const std::string text = line.Text() + "\n";
  const std::lock_guard lock(mutex_);
  std::fwrite(text.data(), 1, text.size(), file_);
  std::fflush(file_);
}

}  // namespace orv
