// A pile of received cheques, typed or read with a bar reader, posted to one account at one go.
#pragma once

#include "frame/module.h"
#include "frame/screen.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TFmCadChequeLote : public Dialog {
 public:
  explicit TFmCadChequeLote(Application& application);

  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  Edit EdtTipo{*this, "EdtTipo", "Classe Ger.", 6};
  TPesquisa PqClasse{*this, "PqClasse", Classes()};
  ReadOnlyEdit EdtDesTipo{*this, "EdtDesTipo"};
  Edit EdtHis{*this, "EdtHis", "Histórico", 5};
  TPesquisa pqHistorico{*this, "pqHistorico", Historicos()};
  ReadOnlyEdit EdtDescHist{*this, "EdtDescHist"};

  struct ChequeSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Numero{*this, "Numero", FieldType::String, 35};  // takes a whole bar line
    Field Banco{*this, "Banco", FieldType::String, 3};
    Field Conta{*this, "Conta", FieldType::String, 15};
    Field Agencia{*this, "Agencia", FieldType::String, 6};
    Field Emissao{*this, "Emissao", FieldType::Date};
    Field Vencto{*this, "Vencto", FieldType::Date};
    Field Valor{*this, "Valor", FieldType::Float};
    Field Emissor{*this, "Emissor", FieldType::String, 50};
    Field ValPag{*this, "Val_Pag", FieldType::Float};
    Field CnpjEmi{*this, "CNPJ_Emi", FieldType::String, 18};
    Field Barra{*this, "Barra", FieldType::String, 34};
  } TbCheque{"TbCheque"};

  TOrvDBGrid DBGrid1{*this,
                     "DBGrid1",
                     TbCheque,
                     {{"Numero", "Número"},
                      {"Banco", "Banco"},
                      {"Conta", "Conta"},
                      {"Agencia", "Agência"},
                      {"Emissao", "Emissão"},
                      {"Vencto", "Vencimento"},
                      {"Valor", "Valor"},
                      {"Emissor", "Emissor"},
                      {"CNPJ_Emi", "CNPJ/CPF"},
                      {"Barra", "Código de Barras"}},
                     false,
                     "Cheques do lote"};
  MoneyEdit EdtValCheque{*this, "EdtValCheque", "Valor dos Cheques"};
  Button BitBtn1{*this, "BitBtn1", "&Confirmar"};
  Button BitBtn2{*this, "BitBtn2", "C&ancelar"};

 private:
  void BitBtn1Click();
  void DBGrid1ColExit();
  void TbChequeAfterPost();
  void TbChequeBeforeDelete();
  // False, after telling the user and bringing him there, where a cheque of the batch can't be stored as it
  // is.
  bool Valida();
  bool GravaCheque();

  std::string CodEmpresa;
};

extern ORV_EXPORT thread_local TFmCadChequeLote* FmCadChequeLote;

}  // namespace orv
