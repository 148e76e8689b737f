#include "host/services/anexo_conteudo.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::array<AnexoTipo, 4> kTipos{{{"PDF", ".pdf", "application/pdf"},
                                           {"PNG", ".png", "image/png"},
                                           {"JPEG", ".jpg", "image/jpeg"},
                                           {"WEBP", ".webp", "image/webp"}}};
constexpr std::size_t kLongestName = 120;
// What all streams of a PDF may unpack to.
constexpr std::size_t kMostUnpacked = std::size_t{64} << 20;
// The streams of one; each costs something to look at.
constexpr int kMostStreams = 20000;
// How far before its stream an object's dictionary begins at most.
constexpr std::size_t kDictionary = 4096;

uint32_t Byte(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

// --- Pictures. Of each so much is read that it is one, from its beginning to its end.

bool IsPng(std::string_view bytes) {
  constexpr std::string_view kBegin("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), kEnd("IEND\xae\x42\x60\x82", 8);
  return bytes.starts_with(kBegin) && bytes.ends_with(kEnd);
}

bool IsJpeg(std::string_view bytes) {
  if (!bytes.starts_with("\xff\xd8\xff")) return false;
  bool frame = false;
  for (std::size_t at = 2; at + 4 <= bytes.size() && Byte(bytes, at) == 0xff;) {
    const uint32_t marker = Byte(bytes, at + 1);
    if (marker == 0xda) return frame && bytes.rfind("\xff\xd9") > at && bytes.rfind("\xff\xd9") != bytes.npos;
    frame = frame || (marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc);
    at += 2 + (Byte(bytes, at + 2) << 8 | Byte(bytes, at + 3));
  }
  return false;
}

bool IsWebp(std::string_view bytes) {
  if (bytes.size() < 20 || !bytes.starts_with("RIFF") || bytes.substr(8, 7) != "WEBPVP8") return false;
  const uint64_t size = Byte(bytes, 4) | Byte(bytes, 5) << 8 | Byte(bytes, 6) << 16 | Byte(bytes, 7) << 24;
  return size + 8 == bytes.size();
}

// --- PDF.

// Names that make it more than paper.
constexpr std::array<std::string_view, 9> kActive{"JavaScript",    "Launch",     "EmbeddedFile",
                                                  "EmbeddedFiles", "RichMedia",  "XFA",
                                                  "SubmitForm",    "ImportData", "GoToE"};

[[noreturn]] void Refuse(std::string_view why) {
  throw UserError("O PDF não pode ser anexado: " + std::string(why) +
                  " Imprima-o em um novo PDF e anexe este.");
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

bool EndsName(char c) {
  return std::string_view("()<>[]{}/%").find(c) != std::string_view::npos ||
         static_cast<unsigned char>(c) <= ' ';
}

// The name behind a slash, its letters written as numbers ("#4aavaScript") read.
std::string NameAt(std::string_view text, std::size_t at) {
  std::string name;
  constexpr std::size_t kLongest = 20;
  while (at < text.size() && !EndsName(text[at]) && name.size() < kLongest) {
    const bool number =
        text[at] == '#' && at + 2 < text.size() && HexDigit(text[at + 1]) >= 0 && HexDigit(text[at + 2]) >= 0;
    name += number ? static_cast<char>(HexDigit(text[at + 1]) * 16 + HexDigit(text[at + 2])) : text[at];
    at += number ? 3 : 1;
  }
  return name;
}

bool HasName(std::string_view text, std::string_view wanted) {
  for (std::size_t at = text.find('/'); at != text.npos; at = text.find('/', at + 1)) {
    if (NameAt(text, at + 1) == wanted) return true;
  }
  return false;
}

void RefuseActive(std::string_view text) {
  for (std::size_t at = text.find('/'); at != text.npos; at = text.find('/', at + 1)) {
    const std::string name = NameAt(text, at + 1);
    if (std::find(kActive.begin(), kActive.end(), name) != kActive.end())
      Refuse("traz conteúdo ativo ou outros arquivos (" + name + ").");
    if (name == "Encrypt") Refuse("está protegido por senha ou criptografado.");
  }
}

// Looks through what a stream unpacks to; false where it can't be to its end.
bool LookThrough(std::string_view packed, std::size_t& left) {
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return false;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  // A name can lie over the border of two parts.
  constexpr std::size_t kPart = 65536, kOver = 80;
  std::string text;
  int result = Z_OK;
  try {
    while (result == Z_OK && left > 0) {
      const std::size_t kept = std::min(text.size(), kOver);
      text.erase(0, text.size() - kept);
      const std::size_t room = std::min(kPart, left);
      text.resize(kept + room);
      stream.next_out = reinterpret_cast<Bytef*>(text.data() + kept);
      stream.avail_out = static_cast<uInt>(room);
      result = inflate(&stream, Z_NO_FLUSH);
      const std::size_t made = room - stream.avail_out;
      left -= made;
      text.resize(kept + made);
      RefuseActive(text);
      if (made == 0 && result == Z_OK) break;
    }
  } catch (...) {
    inflateEnd(&stream);
    throw;
  }
  inflateEnd(&stream);
  return result == Z_STREAM_END;
}

void RefuseActivePdf(std::string_view bytes) {
  if (bytes.substr(bytes.size() - std::min<std::size_t>(bytes.size(), 2048)).find("%%EOF") == bytes.npos)
    Refuse("não chega ao fim.");
  RefuseActive(bytes);
  std::size_t left = kMostUnpacked;
  int streams = 0;
  constexpr std::string_view kStream = "stream";
  for (std::size_t at = bytes.find(kStream); at != bytes.npos; at = bytes.find(kStream, at + 1)) {
    if (at >= 3 && bytes.substr(at - 3, 3) == "end") continue;
    if (++streams > kMostStreams) Refuse("tem partes demais.");
    std::size_t data = at + kStream.size();
    if (data < bytes.size() && bytes[data] == '\r') ++data;
    if (data < bytes.size() && bytes[data] == '\n') ++data;
    const bool whole = LookThrough(bytes.substr(data), left);
    if (whole) continue;
    // Objects can stand packed in a stream: these must have been seen. What isn't packed has been.
    const std::size_t from = at > kDictionary ? at - kDictionary : 0;
    const std::string_view before = bytes.substr(from, at - from);
    const std::size_t object = before.rfind("obj");
    const std::string_view dictionary = object == before.npos ? before : before.substr(object);
    if (HasName(dictionary, "ObjStm") && HasName(dictionary, "Filter"))
      Refuse("não foi possível examinar o seu conteúdo.");
  }
}

}  // namespace

const AnexoTipo& TipoDoAnexo(std::string_view bytes) {
  if (bytes.starts_with("%PDF-")) {
    RefuseActivePdf(bytes);
    return kTipos[0];
  }
  if (IsPng(bytes)) return kTipos[1];
  if (IsJpeg(bytes)) return kTipos[2];
  if (IsWebp(bytes)) return kTipos[3];
  throw UserError("O arquivo não é um PDF nem uma imagem PNG, JPEG ou WebP inteira. Anexe um destes.");
}

const AnexoTipo* FindAnexoTipo(std::string_view nome) {
  const auto found = std::find_if(kTipos.begin(), kTipos.end(), [&](const AnexoTipo& tipo) {
    return tipo.nome == nome || tipo.ending == nome;
  });
  return found == kTipos.end() ? nullptr : &*found;
}

std::string NomeDoAnexo(std::string_view name, const AnexoTipo& tipo) {
  std::string clean;
  for (const char c : name.substr(name.find_last_of("/\\") + 1)) {
    if (static_cast<unsigned char>(c) >= ' ' && c != 0x7f &&
        std::string_view("<>:\"|?*").find(c) == std::string_view::npos)
      clean += c;
  }
  clean = CleanUtf8(clean);
  // Marks that turn the direction: behind them "fdp.exe" reads as "exe.pdf".
  for (const char* mark : {"\u200e", "\u200f", "\u202a", "\u202b", "\u202c", "\u202d", "\u202e", "\u2066",
                           "\u2067", "\u2068", "\u2069"})
    clean = ReplaceAll(clean, mark, "");
  const std::size_t dot = clean.rfind('.');
  const std::string ending = dot == std::string::npos ? "" : Lower(clean.substr(dot));
  const bool fits = ending == tipo.ending || (tipo.nome == "JPEG" && ending == ".jpeg");
  std::string stem(Trim(fits ? clean.substr(0, dot) : clean));
  if (stem.empty()) stem = "anexo";
  return std::string(CutChars(stem, kLongestName - 5)) + (fits ? ending : std::string(tipo.ending));
}

}  // namespace orv
