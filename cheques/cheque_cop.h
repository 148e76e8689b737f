// Cheques and copies of cheques printed from what is typed alone: nothing of them is stored.
#pragma once

#include "frame/module.h"
#include "frame/screen.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TfmChequeCop : public Child {
 public:
  explicit TfmChequeCop(Application& application);

  Panel PainelDados{*this, "PainelDados"};
  Edit EdtCodBan{*this, "EdtCodBan", "Banco", 3};
  TPesquisa pqBanco{*this, "pqBanco", Bancos()};
  ReadOnlyEdit Edit6{*this, "Edit6"};
  Edit Edit4{*this, "Edit4", "Nr. Cheque", 8};
  Edit EdtDesNom{*this, "EdtDesNom", "Nominal", 50};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor Total"};
  DateEdit Edit7{*this, "Edit7", "Data"};
  RadioGroup RgTipo{*this, "RgTipo", "Cheque", {"Próprio", "Cliente"}, 0};
  RadioGroup TpImpressora{*this, "TpImpressora", "Impressora", {"Texto", "Gráfico", "Serial"}, 0};

  // The cheques to print.
  struct TempSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Total{*this, "TOTAL", FieldType::Currency};
    Field Descricao{*this, "DESCRICAO", FieldType::String, 100};
    Field Nome{*this, "NOME", FieldType::String, 50};
    Field Cidade{*this, "CIDADE", FieldType::String, 50};
    Field Dia{*this, "DIA", FieldType::String, 2};
    Field Mes{*this, "MES", FieldType::String, 10};
    Field Ano{*this, "ANO", FieldType::String, 4};
    Field Banco{*this, "BANCO", FieldType::String, 20};
    Field Cheque{*this, "CHEQUE", FieldType::String, 6};
    Field Data{*this, "DATA", FieldType::Date};
    Field CodBan{*this, "CODBAN", FieldType::String, 3};
  } tbTemp1{"tbTemp1"};

  TOrvDBGrid DBGrid1{*this,
                     "DBGrid1",
                     tbTemp1,
                     {{"BANCO", "Banco"},
                      {"CHEQUE", "Cheque"},
                      {"DATA", "Data"},
                      {"NOME", "Nominal"},
                      {"TOTAL", "Valor"},
                      {"DESCRICAO", "Por Extenso"},
                      {"CIDADE", "Cidade"}},
                     true,
                     "Cheques a imprimir"};
  Button BitBtn2{*this, "BitBtn2", "&Incluir"};
  Button BitBtn8{*this, "BitBtn8", "I&mprimir"};
  Button BitBtn1{*this, "BitBtn1", "&Excluir"};
  Button BitBtn9{*this, "BitBtn9", "Fechar"};

 private:
  void Cria_Tabela();
  void Edit4Exit();
  void BitBtn1Click();
  void BitBtn2Click();
  void BitBtn8Click();
  void Imprime_cheque();
  void ImprimeSerial();
};

extern ORV_EXPORT thread_local TfmChequeCop* fmChequeCop;

}  // namespace orv
