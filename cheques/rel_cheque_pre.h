// Report of the register of cheques: received and issued ones with their parties, under a grouping that the
// user chooses.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "frame/module.h"
#include "frame/report_screen.h"

namespace orv {

class ORV_EXPORT TfmRelContCheq : public ReportScreen {
 public:
  explicit TfmRelContCheq(Application& application);

  GroupBox GbVencimento{*this, "GbVencimento", "Vencimento"};
  DateEdit edtDtVenIni{*this, "edtDtVenIni", "De"};
  DateEdit edtDtVenFim{*this, "edtDtVenFim", "Até"};
  RadioGroup RgBusca{
      *this, "RgBusca", "Buscar", {"Todos", "Pendentes", "Baixados", "Cancelados", "Devolvidos"}, 1};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Todos", "Recebidos", "Emitidos"}, 0};
  RadioGroup rgAgrupar{
      *this,
      "rgAgrupar",
      "Agrupar por",
      {"Banco", "Cliente", "Vencimento", "Data Baixa", "Nenhum", "Conta Corrente", "Fornecedor"},
      1};
  CheckBox cbTotal{*this, "cbTotal", "Total Grupo", true};
  CheckBox CbEmpresa{*this, "CbEmpresa", "Todas Empresas"};
  GroupBox GbEmissao{*this, "GbEmissao", "Emissão"};
  DateEdit edtDtEmiIni{*this, "edtDtEmiIni", "De"};
  DateEdit edtDtEmiFim{*this, "edtDtEmiFim", "Até"};
  GroupBox GbBaixa{*this, "GbBaixa", "Baixa"};
  DateEdit DtBaixaIni{*this, "DtBaixaIni", "De"};
  DateEdit DtBaixaFim{*this, "DtBaixaFim", "Até"};
  Edit EdtBordero{*this, "EdtBordero", "Borderô", 12};
  Edit EdtCliente{*this, "EdtCliente", "Cliente", 5};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  ReadOnlyEdit EDCliente{*this, "EDCliente"};
  Edit EdtRepresen{*this, "EdtRepresen", "Representante", 5};
  TPesquisa PqRepresentante{*this, "PqRepresentante", Representantes()};
  ReadOnlyEdit EDRepresentante{*this, "EDRepresentante"};
  Edit Edit1{*this, "Edit1", "Fornecedor", 5};
  TPesquisa PqFornecedor{*this, "PqFornecedor", Entidades()};
  ReadOnlyEdit Edit2{*this, "Edit2"};
  Edit Edit3{*this, "Edit3", "Banco", 3};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit Edit4{*this, "Edit4"};
  Edit EdtObs{*this, "EdtObs", "Observação", 50};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtNomeConta{*this, "EdtNomeConta"};
  GroupBox GbLista{*this, "GbLista", "Lista"};
  Edit EdtCheque{*this, "EdtCheque", "Cheque", 8};
  TPesquisa PqCheque{*this, "PqCheque",
                     ListOf("CHEQUE_PRE", "CHAVE;BANCO;CONTA;NUMERO",
                            {{"NUMERO", "Número"},
                             {"BANCO", "Banco"},
                             {"CONTA", "Conta"},
                             {"EMISSOR", "Emissor"},
                             {"CHAVE", "Chave"}})};
  ListBox LbCheque{*this, "LbCheque", "Cheques"};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar lista"};
  Button BtnConfirma{*this, "BtnConfirma", "Confirmar"};

  // The set and its fields are what the report reads by name.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"AGENCIA", FieldType::String, 7, {"Agência", 0, 13}},
      {"BANCO", FieldType::String, 3, {"Banco", 5, 11}},
      {"CHAVE", FieldType::String, 7, {"Chave", 0, 22}},
      {"CNPJ_EMI", FieldType::String, 18, {"CNPJ/CPF Emissor", 18, 17}},
      {"CLIENTE", FieldType::String, 5, {"Cliente", 7, 5}},
      {"CONTA", FieldType::String, 13, {"Conta", 10, 14}},
      {"DT_BAIXA", FieldType::Date, 0, {"Baixa", 0, 10}},
      {"DUPLICATA", FieldType::String, 12, {"Borderô", 0, 18}},
      {"EMISSAO", FieldType::Date, 0, {"Emissão", 0, 9}},
      {"FORNECEDOR", FieldType::String, 5, {"Fornecedor", 10, 7}},
      {"EMISSOR", FieldType::String, 50, {"Emissor", 26, 4}},
      {"NUMERO", FieldType::String, 8, {"Número", 0, 2}},
      {"REPRESENTANTE", FieldType::String, 5, {"Representante", 12, 15}},
      {"VALOR", FieldType::Currency, 0, {"Valor", 14, 3}},
      {"VENCIMENTO", FieldType::Date, 0, {"Vencimento", 0, 1}},
      {"OBS", FieldType::String, 50, {"Observação", 30, 19}},
      {"NOMECLI", FieldType::String, 80, {"Nome do Cliente", 28, 6}},
      {"NOMEREP", FieldType::String, 100, {"Nome do Representante", 26, 16}},
      {"NOME_BANCO", FieldType::String, 40, {"Nome do Banco", 20, 12}},
      {"FORNOME", FieldType::String, 80, {"Nome do Fornecedor", 28, 8}},
      {"BARRA", FieldType::String, 34, {"Código de Barras", 30, 21}},
      {"CREDITO", FieldType::Currency, 0, {"Limite de Crédito", 16, 20}},
      // How the report groups the row: "B" bank, "C" customer, "V" due date, "N" or nothing not at all; then
      // whether a group has a total, "S" or "N".
      {"OPCOES", FieldType::String, 2},
      // The suffix of the row's company.
      {"EMPRESA", FieldType::String, 4},
  });
  TClientDataSet QryRelatorio{"QryRelatorio"};
  TOrvDBGrid DBGrid1;
  Button Btnimprimir{*this, "Btnimprimir", "Imprimir"};
  Button BitBtn1{*this, "BitBtn1", "Limpar"};
  Button BitBtn2{*this, "BitBtn2", "Excluir"};
  Button BtnSaida{*this, "BtnSaida", "Fechar"};

 private:
  using Linha = ReportRow<kRelatorio>;

  void LigaCampos();
  void EdtChequeExit();
  void JuntaCheque();
  void rgAgruparClick();
  void BtnConfirmaClick();
  void BitBtn2Click();
  void DBGrid1DblClick();

  void Monta(Gathering& andamento);
  std::string AddCodigoSQL() const;
  std::string Filtros() const;
  std::string Opcoes() const;
  // What was asked for, in words.
  std::string Consultado() const;

  // The numbers in LbCheque as literals, separated by commas.
  std::string ListaCheques;
  // What the gatherings whose rows are there asked for, as the report tells it.
  std::string consultado_;
};

extern ORV_EXPORT thread_local TfmRelContCheq* fmRelContCheq;

}  // namespace orv
