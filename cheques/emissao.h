// The company's own cheques: one page writes them, with what each pays, and prints them; the other finds
// those that were issued, to be printed again, deleted or cancelled.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "frame/module.h"
#include "frame/screen.h"
#include "frame/ticks.h"
#include "rules/cheque.h"

namespace orv {

class ORV_EXPORT TfmEmissao : public Child {
 public:
  explicit TfmEmissao(Application& application);

  PageControl PageControl1{*this, "PageControl1", 1};

  // --- Acesso.
  TabSheet TabSheet1{*this, "TabSheet1", "Acesso"};

  GroupBox GbCEmissao{*this, "GbCEmissao", "Emissão"};
  DateEdit DtCIni{*this, "DtCIni", "De"};
  DateEdit DtCFim{*this, "DtCFim", "Até"};
  Edit EdtCConta{*this, "EdtCConta", "Conta", 13};
  TPesquisa PqCConta{*this, "PqCConta", Contas()};
  ReadOnlyEdit edtCNomeConta{*this, "edtCNomeConta"};
  Edit EdtCCheque{*this, "EdtCCheque", "Cheque", 8};
  RadioGroup RgCStatus{*this, "RgCStatus", "Situação", {"Todos", "Ativos", "Cancelados"}, 1};
  Edit EdtCCodBan{*this, "EdtCCodBan", "Banco", 3};
  TPesquisa PqCBanco{*this, "PqCBanco", Bancos()};
  ReadOnlyEdit EdtCNomeBan{*this, "EdtCNomeBan"};
  Edit EdtCCodFor{*this, "EdtCCodFor", "Fornecedor", 5};
  TPesquisa PqCFornec{*this, "PqCFornec", Entidades()};
  ReadOnlyEdit EdtCNomeFor{*this, "EdtCNomeFor"};
  Button BitBtn3{*this, "BitBtn3", "&Consultar"};

  TOrvQuery QryConsulta{Tabela.IBDatabase(), "QryConsulta"};
  TOrvDBGrid DBGrid1{*this,
                     "DBGrid1",
                     QryConsulta,
                     {{"NUMERO", "Número"},
                      {"EMISSAO", "Emissão"},
                      {"VENCIMENTO", "Vencimento"},
                      {"VALOR", "Valor"},
                      {"BANCO", "Banco", 5},
                      {"AGENCIA", "Agência"},
                      {"CONTA", "Conta", 10},
                      {"FORNECEDOR", "Fornecedor", 10},
                      {"NOME", "Nome do Fornecedor", 30},
                      {"CHAVE", "Lançamento", 10},
                      {"CNPJ", "CNPJ/CPF", 18},
                      {"OBS", "Observação", 40}}};

  // --- Emissão.
  TabSheet TabSheet2{*this, "TabSheet2", "Emissão"};

  // The cheque.
  Panel PainelCheque{*this, "PainelCheque"};
  RadioGroup RgTipo{*this,
                    "RgTipo",
                    "Pagamento",
                    {"Pagto de AP", "Pagto Antecipado", "Pagto Simples", "Valor p/ Depósito"}};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa wwBuscaConta{*this, "wwBuscaConta", Contas()};
  ReadOnlyEdit EdtBanco{*this, "EdtBanco"};
  Edit EdtDocto{*this, "EdtDocto", "Nº do Cheque", 8};
  Edit EdtHist{*this, "EdtHist", "Histórico", 5};
  TPesquisa PqHist{*this, "PqHist", Historicos()};
  ReadOnlyEdit EdtDescHist{*this, "EdtDescHist"};
  Edit EdtCodClasse{*this, "EdtCodClasse", "Classe", 6};
  TPesquisa PqClasse{*this, "PqClasse", Classes("TP_CONTA <> 'T'")};
  ReadOnlyEdit EdtDescClasse{*this, "EdtDescClasse"};
  ReadOnlyEdit EdtOpera{*this, "EdtOpera"};
  CheckBox CbPendente{*this, "CbPendente", "Pendente"};
  Edit EdtDesNom{*this, "EdtDesNom", "Credor", 50};
  TPesquisa PqForAnt{*this, "PqForAnt", Entidades()};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor"};
  DateEdit DtEmissao{*this, "DtEmissao", "Emissão"};
  DateEdit DtVencto{*this, "DtVencto", "Vencimento"};
  Edit EdtObs{*this, "EdtObs", "Observação", 100};
  Panel Panel5{*this, "Panel5"};
  Edit EdtHistAnt{*this, "EdtHistAnt", "Histórico da Antecipação", 5};
  TPesquisa PqHistAnt{*this, "PqHistAnt", Historicos()};
  ReadOnlyEdit EdtDescHistAnt{*this, "EdtDescHistAnt"};
  Panel Panel6{*this, "Panel6"};
  Edit EdtContaDep{*this, "EdtContaDep", "Conta de Depósito", 13};
  TPesquisa PqContaDeposito{*this, "PqContaDeposito", Contas()};
  DateEdit DtDeposito{*this, "DtDeposito", "Data do Depósito"};

  // What waits to be printed.
  GroupBox GbFila{*this, "GbFila", "Fila de Impressão"};
  struct ChequeSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Lacto{*this, "Lacto", FieldType::String, 7};
    Field Numero{*this, "Numero", FieldType::String, 8};
    Field Total{*this, "Total", FieldType::Float};
    Field Descricao{*this, "Descricao", FieldType::String, 100};
    Field Nome{*this, "Nome", FieldType::String, 50};
    Field CNPJ{*this, "CNPJ", FieldType::String, 20};
    Field Banco{*this, "Banco", FieldType::String, 3};
    Field Agencia{*this, "Agencia", FieldType::String, 7};
    Field Conta{*this, "Conta", FieldType::String, 13};
    Field Cidade{*this, "Cidade", FieldType::String, 30};
    Field Classe{*this, "Classe", FieldType::String, 6};
    Field Historico{*this, "Historico", FieldType::String, 4};
    Field Dia{*this, "Dia", FieldType::String, 2};
    Field Mes{*this, "Mes", FieldType::String, 10};
    Field Ano{*this, "Ano", FieldType::String, 4};
    Field Data{*this, "Data", FieldType::Date};
    Field Dt_Ven{*this, "Dt_Ven", FieldType::Date};
    Field Obs{*this, "Obs", FieldType::String, 100};
  } TbCheque{"TbCheque"};
  TOrvDBGrid DBGrid2{*this,
                     "DBGrid2",
                     TbCheque,
                     {{"Numero", "Cheque"},
                      {"Nome", "Nome", 30},
                      {"Total", "Valor"},
                      {"Data", "Emissão"},
                      {"Banco", "Banco", 5},
                      {"Conta", "Conta", 10},
                      {"Lacto", "Lançamento", 10}}};

  // The payables from which a cheque pays.
  GroupBox GbPagar{*this, "GbPagar", "Contas a Pagar"};
  Edit edtCodCliente{*this, "edtCodCliente", "Fornecedor", 5};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  ReadOnlyEdit edtNomeCliente{*this, "edtNomeCliente"};
  Edit EdtAP{*this, "EdtAP", "AP", 7};
  GroupBox GbEmissao{*this, "GbEmissao", "Emissão"};
  DateEdit edtEmiIni{*this, "edtEmiIni", "De"};
  DateEdit edtEmiFim{*this, "edtEmiFim", "Até"};
  GroupBox GbVencimento{*this, "GbVencimento", "Vencimento"};
  DateEdit edtVenIni{*this, "edtVenIni", "De"};
  DateEdit edtVenFim{*this, "edtVenFim", "Até"};
  Edit EdtHist1{*this, "EdtHist1", "Histórico", 5};
  TPesquisa PqHist1{*this, "PqHist1", Historicos()};
  ReadOnlyEdit EdtDescHist1{*this, "EdtDescHist1"};
  CheckBox CbEmpresa{*this, "CbEmpresa", "Todas Empresas"};
  Button BitBtn5{*this, "BitBtn5", "&Consultar"};

  // Tag is 1 while the set is filled. Numero and Historico are as wide as what they name.
  struct PagtoSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Baixar{*this, "Baixar", FieldType::String, 1};
    Field Numero{*this, "Numero", FieldType::String, 7};
    Field Empresa{*this, "Empresa", FieldType::String, 4};
    Field CodCre{*this, "CodCre", FieldType::String, 5};
    Field Nome{*this, "Nome", FieldType::String, 50};
    Field Dt_Vencto{*this, "Dt_Vencto", FieldType::Date};
    Field Dt_Emissao{*this, "Dt_Emissao", FieldType::Date};
    // What is to be paid, of the open balance.
    Field Valor{*this, "Valor", FieldType::Float};
    Field Valor_Pago{*this, "Valor_Pago", FieldType::Currency};
    // Of that, what the cheques on view paid.
    Field Val_Pag_Cheque{*this, "Val_Pag_Cheque", FieldType::Currency};
    Field NF{*this, "NF", FieldType::String, 7};
    Field Dupli{*this, "Dupli", FieldType::String, 10};
    Field Classe{*this, "Classe", FieldType::String, 6};
    Field Historico{*this, "Historico", FieldType::String, 5};
    Field Saldo{*this, "Saldo", FieldType::Currency};
  } TbPagto{"TbPagto"};
  TOrvDBGrid wwDBGrid1{*this,
                       "wwDBGrid1",
                       TbPagto,
                       {{.field = "Baixar", .title = "Baixar", .width = 6, .checked = "S", .unchecked = "N"},
                        {.field = "Numero", .title = "AP", .read_only = true},
                        {.field = "Nome", .title = "Fornecedor", .width = 26, .read_only = true},
                        {.field = "Dt_Vencto", .title = "Vencimento", .read_only = true},
                        {.field = "Valor", .title = "Valor"},
                        {.field = "Saldo", .title = "Saldo", .read_only = true},
                        {.field = "Valor_Pago", .title = "Pago", .read_only = true},
                        {.field = "Val_Pag_Cheque", .title = "Pago no Cheque", .read_only = true},
                        {.field = "Dt_Emissao", .title = "Emissão", .read_only = true},
                        {.field = "NF", .title = "NF", .read_only = true},
                        {.field = "Dupli", .title = "Duplicata", .read_only = true},
                        {.field = "Classe", .title = "Classe", .read_only = true},
                        {.field = "Historico", .title = "Histórico", .width = 9, .read_only = true},
                        {.field = "CodCre", .title = "Código", .width = 7, .read_only = true},
                        {.field = "Empresa", .title = "Empresa", .width = 8, .read_only = true}},
                       false};

  MoneyEdit EdtTotal{*this, "EdtTotal", "Selecionado"};
  Button BitBtn8{*this, "BitBtn8", "&Incluir"};
  Button BitBtn4{*this, "BitBtn4", "&Gerar Cheques"};
  RadioGroup RgTpImpressora{*this, "RgTpImpressora", "Impressora", {"Comum", "Cheque"}};
  Button BtnImprimir{*this, "BtnImprimir", "&Cheque"};
  Button BitBtn6{*this, "BitBtn6", "&Recibo"};
  Button BitBtn1{*this, "BitBtn1", "&Limpar"};
  Button BitBtn2{*this, "BitBtn2", "&Excluir"};
  Button BitBtn7{*this, "BitBtn7", "Ca&ncelar"};
  Button BitBtn9{*this, "BitBtn9", "&Fechar"};

  // The titles of the cheque that is printed or picked.
  TOrvQuery QryDup{Tabela.IBDatabase(), "QryDup"};

  std::optional<Registro> RegistroAtual() override;

 private:
  // The items of RgTipo.
  enum Tipo { kTitulos, kAntecipado, kSimples, kDeposito };
  // A selected payable, as its row stands, and what of the cheque goes to it.
  struct Titulo {
    std::string numero, empresa, dupli, codcre, nome, classe, historico;
    Currency valor, parte;
  };
  // What differs from one payment to another.
  struct Pagamento;
  // The accounting accounts of a line.
  struct Lados {
    std::string credito, debito;
  };

  // --- Creation, fields, numbering (emissao.cpp).
  void Desenha();
  void LigaAcesso();
  void LigaTitulos();
  void LigaCheque();
  void LigaAcoes();
  void EdtDoctoEnter();
  void EdtDoctoExit();
  void RgTipoClick();
  void BitBtn1Click();
  // The number after the latest cheque of the account that none of its cheques has.
  std::string ProximoCheque();
  NumeroCheque Numero() const { return {EdtBanco.Text(), EdtConta.Text(), EdtDocto.Text()}; }

  // --- Confirmation and register (emissao_confirma.cpp).
  void BitBtn8Click();
  bool Valida();
  bool ValidaDatasEContas();
  // False when another user gave the number to a cheque meanwhile: nothing is written then.
  bool Emite();
  // The register's keys of the cheques that bear the number, in order.
  std::string Registrado();
  void NotaRegistrado() { registrado_ = Registrado(); }
  // From here to the commit nobody else numbers a cheque of the account.
  void TravaConta();
  // Puts the cheque in the place of whatever bore its number.
  void GravaCheque(const std::string& chave, const std::string& duplicata,
                   const std::vector<TituloDoCheque>& titulos);

  // --- Payables (emissao_titulos.cpp).
  void BitBtn5Click();
  void TbPagtoBeforePost();
  void TbPagtoAfterPost();
  // The payables that meet a condition, with a further join.
  std::string SqlTitulos(const std::string& juncao, const std::string& filtro) const;
  // Rows of a statement that aren't in the set yet go behind it; how many these are.
  int64_t IncluiTitulos(const std::string& sql);
  void SoSelecionados();
  void EsvaziaTitulos();
  // Those selected to be paid, in the order of the grid; what was picked for a reprint isn't.
  std::vector<Titulo> Selecionados();
  // Of these the ones that an amount reaches, with their parts of it.
  static std::vector<Titulo> Partes(const std::vector<Titulo>& titulos, Currency total);

  // --- The four payments (emissao_pagamento.cpp).
  static const Pagamento& PagamentoDe(int item);
  // Carries out the payment of the chosen kind. False as of `Emite`.
  bool Paga(const std::vector<Titulo>& selecionados);
  std::vector<LinhaContabil> Partidas(const Pagamento& pagamento, const std::vector<Titulo>& partes,
                                      const std::string& antecipacao);
  Lados ContasAntecipacao();
  Lados ContasSimples();
  Lados ContasDeposito();
  bool RateiaAntecipacao(const std::string& antecipacao, bool grava);
  bool RateiaSimples(bool grava);
  // Raises UserError when so much isn't open of it any more.
  void BaixaTitulo(const Titulo& titulo, const std::string& lancamento, const std::string& chave_log);
  void IncluiAntecipacao(const std::string& numero);
  MovimentoConta Movimento() const;

  // --- One cheque for each payable (emissao_automatica.cpp).
  void BitBtn4Click();
  void GeraCheque(const Titulo& titulo);
  void AtualizaTitulo(const Titulo& titulo, Currency saldo);

  // --- Issued cheques (emissao_consulta.cpp).
  void BitBtn3Click();
  void DBGrid1DblClick();
  // Selects a payable that a cheque paid.
  void BuscaAPCheque(const std::string& lancamento, const std::string& numero);
  Currency PagoPelaFila(const std::string& numero);
  void BitBtn2Click();
  void BitBtn7Click();
  // True, after telling the user, when the cheque's movement is tied to a statement, or with `periodo` lies
  // in a closed period.
  bool Preso(const std::string& lancamento, bool periodo);
  // Gives back on screen what a deleted cheque paid.
  void DevolveTitulo(const std::string& numero, Currency valor);

  // --- Queue and printing (emissao_impressao.cpp).
  void Imprime_cheque();
  void PoeNaFila(const Cheque& cheque, const std::string& nome, const std::string& cnpj,
                 const std::string& classe, const std::string& historico);
  void TiraDaFila(const std::string& lancamento);
  void BtnImprimirClick();
  void ImprimeNaImpressora();

  // Of the cheque in progress: its movement, which is also its key in the register.
  std::string Lancamento;
  std::string CodFornecedor;
  const std::string CodEmpresa;
  const bool ParamRateio, ParamRateioCredito;
  // What bore the number in the fields when it came to stand there.
  std::string registrado_;
  // Payables that were selected by picking a cheque.
  std::unordered_set<std::string> apanhados_;
  Ticks marcas_{TbPagto, TbPagto.Baixar, "S"};
};

extern ORV_EXPORT thread_local TfmEmissao* fmEmissao;

}  // namespace orv
