// The quick entry: one movement with its accounting, posted from within another screen.
//
// The caller builds the dialog, fills its fields, shows it modally and reads `Tag`: 1 after a cancel or an
// accounting that the user refused, else 0. It is hidden on close and stays with the application.
#pragma once

#include <functional>
#include <string>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/screen.h"

namespace orv {

class ORV_EXPORT TFmCCLancFluxo : public Dialog {
 public:
  explicit TFmCCLancFluxo(Application& application);

  // The movement's number; empty draws a new one at the confirmation. Under the number of a movement on
  // another account, that one is undone there.
  std::string Lancamento;
  // The customer or supplier for whom an accounting account is looked for.
  std::string CodCliente;
  // The class is apportioned to cost centres at the confirmation.
  bool UsaRateioClasse = true;
  // What the caller writes along with the movement, last before the commit that both share. It may run again
  // after a failure.
  std::function<void()> AoGravar;
  // The movement is posted and committed.
  bool Gravado = false;
  // The movement stands for something that happened on a day, on a side, for an amount: these keep what the
  // caller put into them, and the one who types begins where something is missing.
  void Fixa();
  // Offers to keep a rule for what is alike; what becomes of it is the caller's.
  void OfereceRegra(const std::string& texto, bool marcada);
  // Tells what the fields were filled by.
  void MostraRegra(const std::string& nome) { LbRegra.Mostra("Preenchido pela regra " + nome + "."); }

  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  Edit EdtDocto{*this, "EdtDocto", "Documento", 15};
  Edit EdtTipo{*this, "EdtTipo", "Classe Ger.", 6};
  TPesquisa wwTipo{*this, "wwTipo", Classes()};
  ReadOnlyEdit EdtDesTipo{*this, "EdtDesTipo"};
  Edit EdtHis{*this, "EdtHis", "Histórico", 5};
  TPesquisa pqHistorico{*this, "pqHistorico", Historicos()};
  ReadOnlyEdit EdtDescHist{*this, "EdtDescHist"};
  ComboBox CbOper{*this, "CbOper", "Operação", {"Débito", "Crédito"}};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor"};
  DateEdit DtLancto{*this, "DtLancto", "Data Lancto"};
  DateEdit DtCont{*this, "DtCont", "Data Cont."};
  Edit EdtObs{*this, "EdtObs", "Observação", 100};
  Aviso LbRegra{*this, "LbRegra"};
  GroupBox GbRegra{*this, "GbRegra", "Linhas como esta"};
  CheckBox CbRegra{*this, "CbRegra", "Guardar como regra"};
  Edit EdtRegraTexto{*this, "EdtRegraTexto", "Texto contém", 50};
  MoneyEdit EdtRegraDe{*this, "EdtRegraDe", "Valor de"};
  MoneyEdit EdtRegraAte{*this, "EdtRegraAte", "Até"};
  Button BitBtn1{*this, "BitBtn1", "Confirmar"};
  Button BitBtn2{*this, "BitBtn2", "Cancelar"};

 private:
  void BitBtn1Click();
  void BitBtn2Click();
  void EdtTipoChange();

  bool ValidaDatas();
  bool ValidaCampos();
  // "-" or "+", and the other one.
  std::string Operacao(bool oposta = false) const;
  // The apportionment by class; without `grava` only what it asks the user. Ends the action where it is
  // refused.
  void RateiaClasse(bool grava);
  std::string ContaDoBanco();
  // The entries, confirmed by the user. Ends the action where he refuses them.
  std::unique_ptr<TContabil> Partidas();
  // The account of the movement that this one replaces, "" where there is none under its number.
  std::string ContaAntiga();
  // Posts the movement, and undoes the replaced one on its account.
  void LancaMovimento(const std::string& antiga);
};

extern ORV_EXPORT thread_local TFmCCLancFluxo* FmCCLancFluxo;

}  // namespace orv
