// What a file is that somebody wants to attach, by its content alone.
#pragma once

#include <string>
#include <string_view>

namespace orv {

// What may be attached, with the ending and the type by which it is handed out.
struct AnexoTipo {
  std::string_view nome;  // "PDF", "PNG", "JPEG", "WEBP"
  std::string_view ending, media;
};

// Raises UserError for anything else, for a picture that breaks off, and for a PDF that is encrypted, could
// run or open something, carries other files, or can't be looked through within bounds.
const AnexoTipo& TipoDoAnexo(std::string_view bytes);
// By its name or ending. Null for another text.
const AnexoTipo* FindAnexoTipo(std::string_view nome);

// The last part of a file's name as a user gave it, without what isn't printable or turns the direction of
// writing, with the ending of its type, at most 120 characters.
std::string NomeDoAnexo(std::string_view name, const AnexoTipo& tipo);

}  // namespace orv
