// The company's rules for lines of the statement, to be looked at, changed and deleted.
#pragma once

#include <vector>

#include "frame/module.h"
#include "frame/screen.h"
#include "reconciliation/regra_extrato.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TFmRegrasExtrato : public Dialog {
 public:
  explicit TFmRegrasExtrato(Application& application);

  struct RegrasSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Texto{*this, "TEXTO", FieldType::String, 50};
    Field Operacao{*this, "OPERACAO", FieldType::String, 1};
    Field De{*this, "VALOR_DE", FieldType::Currency};
    Field Ate{*this, "VALOR_ATE", FieldType::Currency};
    Field Conta{*this, "CONTA", FieldType::String, 13};
    Field Grupo{*this, "GRUPO", FieldType::String, 6};
    Field Historico{*this, "HISTORICO", FieldType::String, 5};
  } TbRegras{"TbRegras"};

  TOrvDBGrid GridRegras{*this,
                        "GridRegras",
                        TbRegras,
                        {{"TEXTO", "Texto contém", 30},
                         {"OPERACAO", "D/C"},
                         {"VALOR_DE", "Valor de"},
                         {"VALOR_ATE", "Até"},
                         {"CONTA", "Conta"},
                         {"GRUPO", "Classe Ger."},
                         {"HISTORICO", "Histórico"}}};
  Edit EdtTexto{*this, "EdtTexto", "Texto contém", 50};
  ComboBox CbOper{*this, "CbOper", "Operação", {"Débito", "Crédito"}, 0};
  MoneyEdit EdtDe{*this, "EdtDe", "Valor de"};
  MoneyEdit EdtAte{*this, "EdtAte", "Até"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  Edit EdtTipo{*this, "EdtTipo", "Classe Ger.", 6};
  TPesquisa PqClasse{*this, "PqClasse", Classes()};
  ReadOnlyEdit EdtDesTipo{*this, "EdtDesTipo"};
  Edit EdtHis{*this, "EdtHis", "Histórico", 5};
  TPesquisa PqHistorico{*this, "PqHistorico", Historicos()};
  ReadOnlyEdit EdtDescHist{*this, "EdtDescHist"};
  Button BtGrava{*this, "BtGrava", "&Gravar"};
  Button BtNova{*this, "BtNova", "&Nova"};
  Button BtExclui{*this, "BtExclui", "&Excluir"};
  Button BtFecha{*this, "BtFecha", "&Fechar"};

 private:
  void Carrega();
  // The rule on which the list stands goes into the fields, or none.
  void Mostra(const RegraExtrato& regra);
  void BtGravaClick();
  void BtExcluiClick();
  // The rule of the list's row; null on none, and while a new one is typed.
  const RegraExtrato* Escolhida() const;

  std::vector<RegraExtrato> regras_;
  bool nova_ = false;
};

extern ORV_EXPORT thread_local TFmRegrasExtrato* FmRegrasExtrato;

}  // namespace orv
