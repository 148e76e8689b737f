// A line on the page in the warning's look, which is there only while it says something.
#pragma once

#include <string>
#include <utility>

#include "toolkit/controls.h"

namespace orv {

class Aviso : public Label {
 public:
  Aviso(Form& form, std::string name) : Label(form, std::move(name)) {
    SetColor("warning");
    SetVisible(false);
  }
  // "" takes it away.
  void Mostra(std::string texto) {
    SetVisible(!texto.empty());
    SetCaption(std::move(texto));
  }
};

}  // namespace orv
