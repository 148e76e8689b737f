// A screen that has one of each control and asks each kind of question, for trying the door itself.
#pragma once

#include "frame/screen.h"
#include "toolkit/client_dataset.h"

namespace orv::test {

struct TbLinhas : TClientDataSet {
  TbLinhas() : TClientDataSet("TbLinhas") {}
  Field Codigo{*this, "Codigo", FieldType::String, 5};
  Field Valor{*this, "Valor", FieldType::Currency};
  Field Marca{*this, "Marca", FieldType::String, 1};
};

// Can't be shown the next time.
struct Torto : Label {
  using Label::Label;
  void Describe(Properties& properties) const override;
  mutable bool falha = false;
};

class TfmAmostra : public Child {
 public:
  explicit TfmAmostra(Application& application);

  Edit EdtTexto{*this, "EdtTexto", "Texto", 10};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor"};
  CheckBox CbMarca{*this, "CbMarca", "&Marca"};
  ComboBox CbLista{*this, "CbLista", "Lista", {"um", "dois"}, 0};
  ListBox LbLista{*this, "LbLista", "Lista", {"um", "dois"}, 0};
  TrackBar TrPrazo{*this, "TrPrazo", "Prazo", 0, 30, 5};
  ProgressBar PbAnda{*this, "PbAnda", "Andamento"};
  Label LbSoma{*this, "LbSoma", "Soma"};
  Edit EdtBanco{*this, "EdtBanco", "Banco", 3};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit EdtNomeBanco{*this, "EdtNomeBanco"};
  TPesquisa PqVarios{*this, "PqVarios", Bancos()};
  TOrvDBGrid Grade{*this,
                   "Grade",
                   Linhas,
                   {{"Codigo", "Código"}, {"Valor", "Valor"}, {"Marca", "Marca", 0, false, true, "S", "N"}},
                   false};
  // A shared table as the database holds it.
  DBEdit DbeBanco{*this, "DbeBanco", "Banco", Tabela.tbBanco(), "BANCO"};
  DBEdit DbeCodigo{*this, "DbeCodigo", "Código", Linhas, "Codigo"};
  DBRadioGroup DbrMarca{*this, "DbrMarca", "Marca", Linhas, "Marca", {"Sim", "Não"}, {"S", "N"}};
  Chart Grafico{*this, "Grafico", "Gráfico", Linhas, "Codigo", {{"Valor", "Valor", false}}, 15};
  PopupMenu Menu{*this, "Menu"};
  MenuItem ItDetalhe{*this, "ItDetalhe", "Detalhe"};
  Button BtPergunta{*this, "BtPergunta", "&Pergunta"};
  Button BtData{*this, "BtData", "&Data"};
  Button BtArquivo{*this, "BtArquivo", "&Arquivo"};
  Button BtDialogo{*this, "BtDialogo", "D&iálogo"};
  Button BtConta{*this, "BtConta", "&Conta"};
  Button BtGrava{*this, "BtGrava", "&Grava"};
  Button BtFalha{*this, "BtFalha", "&Falha"};
  Button BtDesiste{*this, "BtDesiste", "De&siste"};
  Button BtLonga{*this, "BtLonga", "&Longa"};
  Torto LbTorto{*this, "LbTorto", "Torto"};
  Button BtErra{*this, "BtErra", "&Erra"};
  Button BtLivro{*this, "BtLivro", "&Livro"};
  Button BtRelatorio{*this, "BtRelatorio", "&Relatório"};
  SmallButton BtFecha{*this, "BtFecha", "Fechar"};

  TbLinhas Linhas;

  // The steps that the long gathering got through.
  int steps = 0;

 private:
  void Grava(const std::string& codigo);
  bool erra_ = false;
};

// A dialog that writes or fails inside the action that opened it.
class TfmDialogo : public Dialog {
 public:
  explicit TfmDialogo(Application& application);
  Button BtGrava{*this, "BtGrava", "&Grava"};
  Button BtFalha{*this, "BtFalha", "&Falha"};
  Button BtOk{*this, "BtOk", "&Ok"};
};

// Registers both for as long as it lives.
class SampleScreens {
 public:
  SampleScreens();
  ~SampleScreens();
};

}  // namespace orv::test
