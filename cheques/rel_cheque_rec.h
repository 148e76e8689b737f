// Report of cheques beside the titles that they pay: those of the register, and those that exist only as
// receivables.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "toolkit/trans_dataset.h"

namespace orv {

class ORV_EXPORT TfmRelChequeRec : public ReportScreen {
 public:
  explicit TfmRelChequeRec(Application& application);

  GroupBox GbVencimento{*this, "GbVencimento", "Vencimento"};
  DateEdit edtDtVenIni{*this, "edtDtVenIni", "De"};
  DateEdit edtDtVenFim{*this, "edtDtVenFim", "Até"};
  RadioGroup RgSituacao{*this, "RgSituacao", "Situação", {"Pendentes", "Baixados", "Todos"}, 0};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Todos", "Emitidos", "Recebidos"}, 0};
  RadioGroup RgGrupo{*this, "RgGrupo", "Agrupar", {"Cheque", "Duplicata", "Vencimento"}, 0};
  CheckBox ckbResumido{*this, "ckbResumido", "Resumido"};
  CheckBox CbEmpresas{*this, "CbEmpresas", "Todas Empresas"};
  GroupBox GbEmissao{*this, "GbEmissao", "Emissão"};
  DateEdit edtDtEmiIni{*this, "edtDtEmiIni", "De"};
  DateEdit edtDtEmiFim{*this, "edtDtEmiFim", "Até"};
  GroupBox GbBaixas{*this, "GbBaixas", "Baixas"};
  DateEdit DtBaixaIni{*this, "DtBaixaIni", "De"};
  DateEdit DtBaixaFim{*this, "DtBaixaFim", "Até"};
  Edit EdtCliente{*this, "EdtCliente", "Cliente", 5};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  ReadOnlyEdit EDCliente{*this, "EDCliente"};
  Edit EdtCodFor{*this, "EdtCodFor", "Fornecedor", 5};
  TPesquisa PqForn{*this, "PqForn", Entidades()};
  ReadOnlyEdit EdtNomeFor{*this, "EdtNomeFor"};
  Edit EdtBanco{*this, "EdtBanco", "Banco", 3};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit Edit4{*this, "Edit4"};
  Edit edtCodRep{*this, "edtCodRep", "Representante", 5};
  TPesquisa PqRep{*this, "PqRep", Representantes()};
  ReadOnlyEdit edtDescRep{*this, "edtDescRep"};
  Edit Edtdupli{*this, "Edtdupli", "Duplicata", 12};
  Edit EdtSit{*this, "EdtSit", "Sit. Duplicata", 2};
  TPesquisa PqSituacao{*this, "PqSituacao", Situacoes()};
  ReadOnlyEdit EdtdesSit{*this, "EdtdesSit"};
  GroupBox GbDocumentos{*this, "GbDocumentos", "Documentos"};
  Edit edtDocto{*this, "edtDocto", "Cheque", 8};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Adicionar"};
  ListBox lbDocto{*this, "lbDocto", "Cheques"};
  SmallButton SpeedButton3{*this, "SpeedButton3", "Limpar lista"};
  Button BtnConfirma{*this, "BtnConfirma", "Confirmar"};

  // The set and its fields are what the report reads by name. A gathering lays it down anew as its first
  // statement brings it.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"ORIGEM", FieldType::String, 1, {"Origem", 10, 1}},
      {"TIPO_DOC", FieldType::String, 1, {"Tipo", 9, 2}},
      {"NUMERO", FieldType::String, 8, {"Número", 0, 3}},
      {"CONTA", FieldType::String, 13, {"Conta", 10, 19}},
      {"AGENCIA", FieldType::String, 7, {"Agência", 0, 18}},
      {"BANCO", FieldType::String, 3, {"Banco", 5, 16}},
      {"NOME_BANCO", FieldType::String, 40, {"Nome do Banco", 20, 17}},
      {"EMISSOR", FieldType::String, 50, {"Emissor", 22, 6}},
      {"VALOR", FieldType::Currency, 0, {"Valor", 14, 4}},
      {"VENCIMENTO", FieldType::Date, 0, {"Vencimento", 0, 5}},
      {"EMISSAO", FieldType::Date, 0, {"Emissão", 0, 20}},
      {"OBS", FieldType::String, 250, {"Observação", 30, 27}},
      {"CODREP", FieldType::String, 5, {"Representante", 12, 21}},
      {"NOME_REP", FieldType::String, 100, {"Nome do Representante", 26, 22}},
      {"NUM_REC", FieldType::String, 12, {"A Receber", 11, 7}},
      {"CODCLI", FieldType::String, 5, {"Cliente", 7, 23}},
      {"NOME_CLI", FieldType::String, 80, {"Nome do Cliente", 22, 8}},
      {"VAL_REC", FieldType::Currency, 0, {"Valor a Receber", 14, 9}},
      {"SITUACAO", FieldType::String, 2, {"Sit.", 5, 24}},
      {"DESC_SIT", FieldType::String, 30, {"Situação do Título", 20, 25}},
      {"STATUS", FieldType::String, 2, {"Situação", 10, 15}},
      {"NUM_PAG", FieldType::String, 6, {"A Pagar", 8, 10}},
      {"DUPLI", FieldType::String, 12, {"Duplicata", 11, 11}},
      {"CODCRE", FieldType::String, 5, {"Credor", 7, 26}},
      {"NOME_CRE", FieldType::String, 80, {"Nome do Credor", 22, 12}},
      {"VAL_PAG", FieldType::Currency, 0, {"Valor a Pagar", 14, 13}},
      {"DT_BAIXA", FieldType::Date, 0, {"Baixa", 0, 14}},
      {"OBS_PAG", FieldType::String, 100, {"Observação da Baixa", 30, 28}},
      // What tells the row's cheque from all others: the key in its table, and the suffix of its company.
      {"CHAVE", FieldType::String, 12},
      {"EMPRESA", FieldType::String, 4},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};
  TOrvDBGrid DBGrid1;
  Button Btnimprimir{*this, "Btnimprimir", "Imprimir"};
  Button BtnSaida{*this, "BtnSaida", "Fechar"};

 private:
  void LigaCampos();
  void SpeedButton1Click();
  void BtnConfirmaClick();
  void BtnimprimirClick();
  void DBGrid1DblClick();

  void Monta(Gathering& andamento);
  // Runs a statement that brings the set's columns.
  void BuscaDadosEmitidos(TOrvQuery& consulta) const;
  void BuscaDadosRecebidos(TOrvQuery& consulta) const;
  void Abre(TOrvQuery& consulta, const std::string& sql, const char* tabela) const;
  // Appends what it brought.
  void Transfere(TTransDataSet& transfere, const TOrvQuery& consulta, Gathering& andamento) const;
  std::string FiltroBaixa(const char* coluna) const;
  std::string FiltroLista(const char* coluna) const;
  void Ordena();
  // What the report asks: the sum of the set's cheques, each once, however many titles it pays.
  Value TotalDosCheques();

  // What the latest gathering asked for, as the report tells it.
  std::string consultado_;
};

extern ORV_EXPORT thread_local TfmRelChequeRec* fmRelChequeRec;

}  // namespace orv
