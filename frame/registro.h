// The record that a screen has in front of its user, for what the desk offers beside it: who did what to it,
// and the files attached to it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orv {

// Audit lines of an area under a key; with `texto`, only those whose text holds it.
struct ChaveHistorico {
  std::string area, chave, texto{};
};

struct Registro {
  // How the user knows it: "Lançamento 006770".
  std::string titulo;
  // The logical table in which it stands: where companies share it, they all write its audit lines.
  std::string tabela;
  // The number of the movement to which files are attached, "" where none can be.
  std::string movimento;
  // What finds its audit lines; asked when they are to be shown, while the screen is there.
  std::function<std::vector<ChaveHistorico>()> chaves;
};

}  // namespace orv
