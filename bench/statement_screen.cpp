#include "bench/statement_screen.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <string_view>
#include <unordered_set>

namespace orv::bench {
namespace {

// Texts up to this length stand in the value itself.
constexpr std::size_t kInline = 14;

SessionOptions Of(const std::filesystem::path& house, const std::string& company) {
  SessionOptions options = Ana(house);
  options.company = company;
  return options;
}

// The greatest number of bytes on the heap while it lives.
class Peak {
 public:
  Peak()
      : watch_([this] {
          while (!done_) {
            const std::size_t now = HeapBytes();
            if (now > peak_) peak_ = now;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
          }
        }) {}
  std::size_t Bytes() {
    done_ = true;
    if (watch_.joinable()) watch_.join();
    return peak_;
  }
  ~Peak() { Bytes(); }

 private:
  std::atomic<bool> done_{false};
  std::atomic<std::size_t> peak_{0};
  std::thread watch_;
};

}  // namespace

StatementScreen::StatementScreen(const std::filesystem::path& house, const char* screen,
                                 const std::string& company, Buttons buttons)
    : log_("/dev/null"), client_(Of(house, company), log_), buttons_(buttons) {
  Do({{"do", "open"}, {"class", screen}});
}

std::vector<Json> StatementScreen::Do(Json in) {
  auto out = client_.Do(std::move(in));
  for (const Json& one : out) {
    if (one["on"] == Json("error")) throw UserError(one["text"].String());
  }
  return out;
}

void StatementScreen::Set(const char* control, const std::string& value) {
  Do({{"do", "set"}, {"control", control}, {"value", value}});
}

void StatementScreen::Period(Date first, Date last) {
  Set("EdtDataDe", first.Brazil());
  Set("edtDataAte", last.Brazil());
}

Json StatementScreen::Window(const char* set, int64_t from, int64_t count) {
  for (const Json& out : Do({{"do", "read"}, {"control", set}, {"from", from}, {"count", count}})) {
    if (out["on"] == Json("state")) return out["screens"].Items().back()["sets"][set];
  }
  throw UserError("The desk told no state.");
}

std::size_t StatementScreen::Texts(const std::vector<const char*>& sets) {
  std::size_t bytes = 0;
  std::unordered_set<std::string> known;
  for (const char* set : sets) {
    const int64_t count = Count(set);
    for (int64_t at = 0; at < count; at += 1000) {
      const Json window = Window(set, at, 1000);
      for (const Json& row : window["rows"].Items()) {
        for (const Json& cell : row.Items()) {
          if (cell.IsString() && cell.String().size() > kInline && known.insert(cell.String()).second)
            bytes += cell.String().size();
        }
      }
    }
  }
  return bytes;
}

int64_t StatementScreen::Pages() {
  Json id;
  for (const Json& out : Do({{"do", "click"}, {"control", buttons_.print}})) {
    if (out["on"] == Json("report")) id = out["id"];
  }
  std::string file;
  for (const Json& out : Do({{"do", "report"}, {"id", id}, {"format", "pdf"}})) {
    if (out["file"].IsString()) file = out["file"].String();
  }
  std::ifstream in(file, std::ios::binary);
  const std::string pdf{std::istreambuf_iterator<char>(in), {}};
  std::filesystem::remove(file);
  constexpr std::string_view kPages = "/Count ";
  const std::size_t at = pdf.rfind(kPages);
  if (at == std::string::npos) throw UserError("The PDF doesn't tell its pages.");
  return std::stoll(pdf.substr(at + kPages.size(), 12));
}

void PrintMemory(StatementScreen& statement, const std::vector<const char*>& sets) {
  const std::size_t before = HeapBytes();
  Peak peak;
  statement.Gather();
  const std::size_t most = peak.Bytes() - before;
  const auto rows = static_cast<double>(statement.Count(sets.front()));
  const auto texts = static_cast<double>(statement.Texts(sets));
  Print("memory while gathering, beyond the texts", (static_cast<double>(most) - texts) / rows, Bound::AtMost,
        600, "B/row", Number(texts / rows) + " B of texts, each once");
}

void PrintPages(StatementScreen& statement) {
  int64_t pages = 0;
  const Seconds taken = Measure([&] { pages = statement.Pages(); });
  Print("a PDF of the whole", static_cast<double>(pages) / taken.cpu, Bound::AtLeast, 200, "pages/s",
        Number(static_cast<double>(pages)) + " pages, " + Number(taken.wall) + " s by the clock");
}

}  // namespace orv::bench
