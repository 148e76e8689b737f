#include "reconciliation/formats/ofx.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr auto npos = std::string_view::npos;

enum class Tag { None, Begin, Posted, Amount, Check, Memo, End, Server, Bank, Account };

constexpr std::array<std::pair<std::string_view, Tag>, 9> kTags = {{
    {"<STMTTRN>", Tag::Begin},
    {"<DTPOSTED>", Tag::Posted},
    {"<TRNAMT>", Tag::Amount},
    {"<CHECKNUM>", Tag::Check},
    {"<MEMO>", Tag::Memo},
    {"</STMTTRN>", Tag::End},
    {"<DTSERVER>", Tag::Server},
    {"<BANKID>", Tag::Bank},
    {"<ACCTID>", Tag::Account},
}};
constexpr std::size_t kLongestName = 32;

// What can stand beside a text in a transaction.
constexpr std::array<std::string_view, 22> kElements = {
    "STMTTRN", "TRNTYPE",  "DTPOSTED",   "DTUSER",   "DTAVAIL",      "TRNAMT",       "FITID", "CORRECTFITID",
    "SRVRTID", "REFNUM",   "SIC",        "CHECKNUM", "PAYEEID",      "NAME",         "PAYEE", "EXTDNAME",
    "MEMO",    "CURRENCY", "BANKACCTTO", "CCACCTTO", "ORIGCURRENCY", "CORRECTACTION"};

// The tag that begins at the "<" at `at`, None for one that isn't read.
Tag TagAt(std::string_view line, std::size_t at, std::size_t& value) {
  const std::string_view rest = line.substr(at);
  for (const auto& [name, tag] : kTags) {
    if (rest.size() < name.size() || rest[1] != name[1] || !rest.starts_with(name)) continue;
    value = at + name.size();
    return tag;
  }
  return Tag::None;
}

// True when a tag of any name begins at the "<" at `at`, rather than a text that has that sign.
bool AnyTagAt(std::string_view line, std::size_t at) {
  const std::size_t end = std::min(line.size(), at + kLongestName);
  std::size_t i = at + 1;
  if (i < end && line[i] == '/') ++i;
  const std::size_t name = i;
  while (i < end && ((line[i] >= 'A' && line[i] <= 'Z') || (line[i] >= '0' && line[i] <= '9') ||
                     line[i] == '.' || line[i] == '_')) {
    ++i;
  }
  const bool closed = i < end && line[i] == '/';
  return i > name && i + closed < end && line[i + closed] == '>';
}

// The text from `from` to the next tag or the end of the line.
std::string_view UpToTag(std::string_view line, std::size_t from) {
  std::size_t end = line.find('<', from);
  while (end != npos && !AnyTagAt(line, end)) end = line.find('<', end + 1);
  return Trim(line.substr(from, end == npos ? npos : end - from));
}

// The text from `from` to the next closing tag, the next element of a transaction or the end of the line: a
// text may hold what looks like a tag.
std::string_view Memo(std::string_view line, std::size_t from) {
  const auto ends = [&](std::size_t at) {
    const std::string_view rest = line.substr(at + 1, kLongestName);
    const std::string_view name = rest.substr(0, rest.find('>'));
    return rest.starts_with('/') || (name.size() < rest.size() &&
                                     std::find(kElements.begin(), kElements.end(), name) != kElements.end());
  };
  std::size_t end = line.find('<', from);
  while (end != npos && !ends(end)) end = line.find('<', end + 1);
  return Trim(line.substr(from, end == npos ? npos : end - from));
}

// Hands on every tag of a line with its value.
template <class Take>
void Tags(std::string_view line, const Take& take) {
  for (std::size_t at = line.find('<'); at != npos; at = line.find('<', at + 1)) {
    std::size_t value = 0;
    const Tag tag = TagAt(line, at, value);
    if (tag != Tag::None) take(tag, tag == Tag::Memo ? Memo(line, value) : UpToTag(line, value));
  }
}

// The text with the five names of characters replaced; a "&" that begins none of them stays.
std::string_view Plain(std::string_view text, std::string& room) {
  static constexpr std::array<std::pair<std::string_view, char>, 5> kNames = {
      {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}}};
  if (text.find('&') == npos) return text;
  room.clear();
  for (std::size_t i = 0; i < text.size();) {
    char c = text[i];
    std::size_t length = 1;
    if (c == '&') {
      for (const auto& [name, character] : kNames) {
        if (text.substr(i).starts_with(name)) c = character, length = name.size();
      }
    }
    room += c;
    i += length;
  }
  return room;
}

// The day of "20261120120000[-3:BRT]"; the empty date for anything else.
Date Day(std::string_view text) {
  if (text.size() < 8) return {};
  int number[8];
  for (std::size_t i = 0; i < 8; ++i) {
    if (text[i] < '0' || text[i] > '9') return {};
    number[i] = text[i] - '0';
  }
  const int year = number[0] * 1000 + number[1] * 100 + number[2] * 10 + number[3];
  const int month = number[4] * 10 + number[5], day = number[6] * 10 + number[7];
  return Date::Exists(year, month, day) ? Date(year, month, day) : Date();
}

class Reader {
 public:
  Reader(const OfxEvents& events, OfxSummary& summary) : events_(events), summary_(summary) {}

  void Take(Tag tag, std::string_view value, std::size_t line) {
    switch (tag) {
      case Tag::Begin:
        summary_.unfinished += open_;
        open_ = true;
        date_ = docto_ = memo_ = {};
        amount_.reset();
        return;
      case Tag::Posted:
        date_ = value;
        return;
      case Tag::Amount:
        amount_ = value;
        return;
      case Tag::Check:
        docto_ = value;
        return;
      case Tag::Memo:
        memo_ = value;
        return;
      case Tag::End:
        // An end without a beginning has nothing of its own.
        if (std::exchange(open_, false)) {
          HandOn(line);
        } else {
          ++summary_.unbegun;
        }
        return;
      case Tag::Server:
        if (events_.server_date) events_.server_date(Day(value));
        return;
      case Tag::Account:
        // Inside a transaction it is the other party's.
        if (!open_ && !value.empty()) NoteAccount(value);
        return;
      case Tag::Bank:
      case Tag::None:
        return;
    }
  }

  void Finish() { summary_.unfinished += open_; }

 private:
  void HandOn(std::size_t line) {
    const std::string_view text = amount_.value_or("");
    const Date day = Day(date_);
    const std::optional<Currency> amount = OfxAmount(text);
    try {
      if (day.Empty()) throw ConversionError(std::string(CutChars(date_, 30)), "uma data válida");
      RequireLineAmount(amount.value_or(Currency()), CutChars(text, 40));
    } catch (const ConversionError& e) {
      throw UserError("Linha " + std::to_string(line) + " do arquivo: " + e.what());
    }
    if (!amount_) {
      ++summary_.no_amounts;
      return;
    }
    summary_.unread_amounts += !amount;
    ++summary_.lines;
    events_.line({"", Plain(docto_, docto_room_), day, amount.value_or(Currency()),
                  text.starts_with('-') ? "D" : "C", Plain(memo_, memo_room_), ""});
  }

  void NoteAccount(std::string_view account) {
    auto& accounts = summary_.accounts;
    account = CutChars(account, 30);
    if (!accounts.empty() && accounts.back() == account) return;
    if (std::find(accounts.begin(), accounts.end(), account) != accounts.end()) return;
    if (accounts.size() == OfxSummary::kAccounts) {
      summary_.more_accounts = true;
    } else {
      accounts.emplace_back(account);
    }
  }

  const OfxEvents& events_;
  OfxSummary& summary_;
  // The transaction that was begun.
  bool open_ = false;
  std::string_view date_, docto_, memo_;
  std::optional<std::string_view> amount_;
  std::string docto_room_, memo_room_;
};

}  // namespace

std::optional<std::string> OfxBank(std::string_view text) {
  std::optional<std::string> bank;
  TextLines lines(text);
  for (std::string_view line; !bank && lines.Next(line);) {
    if (line.find("<BANKID>") == npos) continue;
    Tags(Trim(line), [&](Tag tag, std::string_view value) {
      if (tag != Tag::Bank || bank) return;
      const std::size_t length = CharCount(value);
      bank = value.substr(CutChars(value, length - std::min<std::size_t>(length, 3)).size());
    });
  }
  return bank;
}

void ReadOfx(std::string_view text, const OfxEvents& events, OfxSummary& summary) {
  Reader reader(events, summary);
  TextLines lines(text);
  for (std::string_view line; lines.Next(line);) {
    summary.line = lines.Number();
    Tags(Trim(line), [&](Tag tag, std::string_view value) { reader.Take(tag, value, lines.Number()); });
  }
  reader.Finish();
}

std::optional<Currency> OfxAmount(std::string_view text) {
  text = Trim(text);
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  text = Trim(text);
  // The last sign of the two is the decimal one, unless it comes again: then it parts thousands.
  const std::size_t last = text.find_last_of(".,");
  const bool again = last != npos && text.find(text[last]) != last;
  const std::size_t point = again ? text.size() : std::min(last, text.size());
  if (again && text.find(text[last] == '.' ? ',' : '.') != npos) return std::nullopt;

  int64_t raw = 0;
  int digits = 0, decimals = 0;
  bool up = false, fits = true;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.' || c == ',') {
      // Thousands are groups of three.
      if (i < point && (point - i) % 4 != 0) return std::nullopt;
      if (i > point) return std::nullopt;
      continue;
    }
    if (c < '0' || c > '9') return std::nullopt;
    ++digits;
    if (i > point && ++decimals > 4) {
      if (decimals == 5) up = c >= '5';
      continue;
    }
    fits = fits && !__builtin_mul_overflow(raw, 10, &raw) && !__builtin_add_overflow(raw, c - '0', &raw);
  }
  if (digits == 0) return std::nullopt;
  for (int i = std::min(decimals, 4); i < 4; ++i) fits = fits && !__builtin_mul_overflow(raw, 10, &raw);
  fits = fits && !__builtin_add_overflow(raw, int64_t{up}, &raw);
  return Currency::FromRaw(fits ? raw : std::numeric_limits<int64_t>::max());
}

}  // namespace orv
