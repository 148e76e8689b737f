// Transfer between accounts: one accounting entry and two movements under one number.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/screen.h"

namespace orv {

class ORV_EXPORT TFmCCTransConta : public Dialog {
 public:
  explicit TFmCCTransConta(Application& application);

  Edit EdtConta{*this, "EdtConta", "Conta Origem", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  Edit EdtContaDest{*this, "EdtContaDest", "Conta Destino", 13};
  TPesquisa PqContaDest{*this, "PqContaDest", Contas()};
  ReadOnlyEdit EdtDescContaDest{*this, "EdtDescContaDest"};
  Edit EdtDocto{*this, "EdtDocto", "Documento", 12};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor"};
  DateEdit DtLan{*this, "DtLan", "Data Lançamento"};
  DateEdit DtCont{*this, "DtCont", "Data Contabilização"};
  Edit EdtClasseSai{*this, "EdtClasseSai", "Classe Saída", 6};
  TPesquisa PqClasseSai{*this, "PqClasseSai", Classes()};
  ReadOnlyEdit EdtDesClaSai{*this, "EdtDesClaSai"};
  Edit EdtHisSai{*this, "EdtHisSai", "Histórico Saída", 5};
  TPesquisa pqHistSai{*this, "pqHistSai", Historicos()};
  ReadOnlyEdit EdtDescHistSai{*this, "EdtDescHistSai"};
  Edit EdtClasseEnt{*this, "EdtClasseEnt", "Classe Entrada", 6};
  TPesquisa PqClasseEnt{*this, "PqClasseEnt", Classes()};
  ReadOnlyEdit EdtDesClaEnt{*this, "EdtDesClaEnt"};
  Edit EdtHisEnt{*this, "EdtHisEnt", "Histórico Entrada", 5};
  TPesquisa pqHistEnt{*this, "pqHistEnt", Historicos()};
  ReadOnlyEdit EdtDescHistEnt{*this, "EdtDescHistEnt"};
  Edit EdtObs{*this, "EdtObs", "Observação", 100};
  // The movement of the target starts pending.
  CheckBox CbPendente{*this, "CbPendente", "Pendente"};
  Button BitBtn1{*this, "BitBtn1", "Confirmar"};
  // Leaves the focus where it is: giving up opens no lookup of an empty field.
  SmallButton BitBtn2{*this, "BitBtn2", "Cancelar"};

 private:
  void LigaPesquisas();

  void BitBtn1Click();
  void EdtHisEntChange();
  void IncluiObservacao();

  // False, after telling the user, with an empty date or without both accounts: of these there is no closed
  // period that could hold the transfer.
  bool ValidaCampos();
  // False when the user refuses the entry, which then isn't written.
  bool LancaContabilidade(const std::string& numero);
  void LancaMovimentos(const std::string& numero);
  void LimpaTela();
};

extern ORV_EXPORT thread_local TFmCCTransConta* FmCCTransConta;

}  // namespace orv
