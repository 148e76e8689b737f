// A file that somebody wants to attach: taken for one of four kinds or refused, and its name is fit to be
// shown.
#include <string>

#include "fuzz/require.h"
#include "host/services/anexo_conteudo.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  // What begins as a PDF is looked through.
  for (const std::string& file : {bytes, "%PDF-1.7\n" + bytes + "\n%%EOF"}) {
    try {
      const AnexoTipo& type = TipoDoAnexo(file);
      Require(FindAnexoTipo(type.nome) == &type && FindAnexoTipo(type.ending) == &type);
      Require(type.nome != "PDF" || file.find("/JavaScript ") == std::string::npos);
    } catch (const UserError& e) {
      Require(ValidUtf8(e.what()));
    }
  }
  const std::string name = NomeDoAnexo(bytes, *FindAnexoTipo("PDF"));
  Require(ValidUtf8(name) && CharCount(name) <= 120 && name.find_first_of("/\\\n\"") == std::string::npos);
  Require(Lower(name).ends_with(".pdf"));
  return 0;
}
