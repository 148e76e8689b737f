// A template of a posting gets its name and, where it recurs, its day.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/screen.h"
#include "ledger/modelo_lanc.h"

namespace orv {

// The caller gives the posting's fields in `Modelo`, under the name of the template from which they came, if
// any, and shows it modally.
class ORV_EXPORT TFmCCModelo : public Dialog {
 public:
  explicit TFmCCModelo(Application& application);

  ModeloLanc Modelo;
  // Shows what `Modelo` has of name and recurrence.
  void Mostra();

  Label LbModelo{*this, "LbModelo"};
  Edit EdtNome{*this, "EdtNome", "Nome", 40};
  Edit EdtMeses{*this, "EdtMeses", "Repete a cada (meses)", 2};
  DateEdit EdtProximo{*this, "EdtProximo", "Próxima vez"};
  Button BitBtn1{*this, "BitBtn1", "&Gravar"};
  Button BtExclui{*this, "BtExclui", "E&xcluir"};
  Button BitBtn2{*this, "BitBtn2", "&Cancelar"};

 private:
  void BitBtn1Click();
  void BtExcluiClick();
  void EdtMesesExit();
};

extern ORV_EXPORT thread_local TFmCCModelo* FmCCModelo;

}  // namespace orv
