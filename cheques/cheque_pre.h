// The register of cheques, received and issued: one page finds them, the other takes a cheque through its
// life by hand.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/module.h"
#include "frame/screen.h"

namespace orv {

// How a cheque's state and kind are shown.
inline const std::vector<CodeWord> kEstados = {{"P", "Pendente", "warning"},
                                               {"B", "Baixado", ""},
                                               {"C", "Cancelado", "muted"},
                                               {"D", "Devolvido", "error"}};
inline const std::vector<CodeWord> kTipos = {{"R", "Recebido", "muted"}, {"P", "Emitido", "muted"}};

class ORV_EXPORT TfmChequePre : public Child {
 public:
  explicit TfmChequePre(Application& application);

  // The cheques themselves, shared with whoever else has them open.
  TOrvTable& tbCheque_pre = Tabela.tbCheque_pre();

  PageControl PageControl1{*this, "PageControl1", 1};

  // --- Acesso.
  TabSheet TabSheet1{*this, "TabSheet1", "Acesso"};

  GroupBox GbAVencimento{*this, "GbAVencimento", "Vencimento"};
  DateEdit dtAVencIni{*this, "dtAVencIni", "De"};
  DateEdit dtAVencFim{*this, "dtAVencFim", "Até"};
  Edit edtACliente{*this, "edtACliente", "Cliente", 5};
  TPesquisa PqACliente{*this, "PqACliente", Entidades()};
  ReadOnlyEdit EdtANomeCli{*this, "EdtANomeCli"};
  RadioGroup rgASituacao{
      *this, "rgASituacao", "Situação", {"Pendente", "Baixado", "Cancelado", "Devolvido", "Todos"}, 4};
  Edit edtAFornec{*this, "edtAFornec", "Fornecedor", 5};
  TPesquisa PqAFornec{*this, "PqAFornec", Entidades()};
  ReadOnlyEdit edtANomeFor{*this, "edtANomeFor"};
  Edit edtABanco{*this, "edtABanco", "Banco", 3};
  TPesquisa PqABanco{*this, "PqABanco", Bancos()};
  ReadOnlyEdit EdtANomeBanco{*this, "EdtANomeBanco"};
  GroupBox GbAEmissao{*this, "GbAEmissao", "Emissão"};
  DateEdit dtAEmiIni{*this, "dtAEmiIni", "De"};
  DateEdit dtAEmiFim{*this, "dtAEmiFim", "Até"};
  Button BitBtn6{*this, "BitBtn6", "&Consultar"};

  TOrvQuery qryConsulta{Tabela.IBDatabase(), "qryConsulta"};
  TOrvDBGrid DBGrid2{*this,
                     "DBGrid2",
                     qryConsulta,
                     {{"CHAVE", "Chave"},
                      {"BANCO", "Banco", 5},
                      {"AGENCIA", "Agência"},
                      {"CONTA", "Conta", 10},
                      {"NUMERO", "Número"},
                      {"VALOR", "Valor"},
                      {"EMISSAO", "Emissão"},
                      {"VENCIMENTO", "Vencimento"},
                      {"DT_BAIXA", "Baixa"},
                      {.field = "STATUS", .title = "Situação", .width = 9, .words = kEstados},
                      {.field = "TIPO", .title = "Tipo", .width = 8, .words = kTipos},
                      {"CLIENTE", "Cliente", 7},
                      {"NOME", "Nome do Cliente", 30},
                      {"FORNECEDOR", "Fornecedor", 10},
                      {"NOME_FORNEC", "Nome do Fornecedor", 30},
                      {"DUPLICATA", "Duplicata"},
                      {"EMISSOR", "Emissor", 30},
                      {"LOTE", "Lote"},
                      {"REPRESENTANTE", "Representante", 12},
                      {"OBS", "Observação", 30}}};
  Button BitBtn9{*this, "BitBtn9", "&Fechar"};

  // --- Cadastro.
  TabSheet TabSheet2{*this, "TabSheet2", "Cadastro"};

  Panel PainelDados{*this, "PainelDados"};
  DBEdit EDChave{*this, "EDChave", "Chave", tbCheque_pre, "CHAVE"};
  DBEdit DBEDCodBan{*this, "DBEDCodBan", "Banco", tbCheque_pre, "BANCO"};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit EDNomeBanco{*this, "EDNomeBanco"};
  // Shows the state; only the actions change it.
  DBRadioGroup RgSituacao{*this,
                          "RgSituacao",
                          "Situação",
                          tbCheque_pre,
                          "STATUS",
                          {"Pendente", "Baixado", "Cancelado", "Devolvido"},
                          {"P", "B", "C", "D"}};
  DBEdit DBEDAgencia{*this, "DBEDAgencia", "Agência", tbCheque_pre, "AGENCIA"};
  DBEdit DBEDConta{*this, "DBEDConta", "Conta", tbCheque_pre, "CONTA"};
  DBEdit DBEDChequeNro{*this, "DBEDChequeNro", "Nro. Cheque", tbCheque_pre, "NUMERO"};
  DBEdit DBEDValor{*this, "DBEDValor", "Valor", tbCheque_pre, "VALOR"};
  DBEdit DBEDT_DtEmissao{*this, "DBEDT_DtEmissao", "Emissão", tbCheque_pre, "EMISSAO"};
  DBEdit DBEDT_DtVencto{*this, "DBEDT_DtVencto", "Vencimento", tbCheque_pre, "VENCIMENTO"};
  // Written when the cheque's movement is cleared.
  DBEdit DBEDT_DtDevolucao{*this, "DBEDT_DtDevolucao", "Data da Baixa", tbCheque_pre, "DT_BAIXA"};
  Label Label12{*this, "Label12", "Informada na compensação"};
  DBEdit DBEDTCodCli{*this, "DBEDTCodCli", "Cliente", tbCheque_pre, "CLIENTE"};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  ReadOnlyEdit EDCliente{*this, "EDCliente"};
  ReadOnlyEdit EdtCpf{*this, "EdtCpf"};
  DBEdit DBEDCodRep{*this, "DBEDCodRep", "Representante", tbCheque_pre, "REPRESENTANTE"};
  TPesquisa PqRepresentante{*this, "PqRepresentante", Representantes()};
  ReadOnlyEdit EDRepresentante{*this, "EDRepresentante"};
  DBEdit EdtCodFor{*this, "EdtCodFor", "Fornecedor", tbCheque_pre, "FORNECEDOR"};
  TPesquisa PqForneced{*this, "PqForneced", Entidades()};
  ReadOnlyEdit EdtNomeFor{*this, "EdtNomeFor"};
  DBEdit EdtObs{*this, "EdtObs", "Observação", tbCheque_pre, "OBS"};
  DBRadioGroup RgTipo{*this, "RgTipo", "Tipo", tbCheque_pre, "TIPO", {"Recebido", "Emitido"}, {"R", "P"}};
  DBEdit EdtDup{*this, "EdtDup", "Lote", tbCheque_pre, "LOTE"};
  DBEdit EdtEmissor{*this, "EdtEmissor", "Emissor", tbCheque_pre, "EMISSOR"};
  DBEdit EdtCnpjEmi{*this, "EdtCnpjEmi", "CNPJ/CPF Emissor", tbCheque_pre, "CNPJ_EMI"};
  DBEdit EdtBarra{*this, "EdtBarra", "Código de Barras", tbCheque_pre, "BARRA"};

  TOrvDBGrid DBGrid1{*this,
                     "DBGrid1",
                     tbCheque_pre,
                     {{"CHAVE", "Chave"},
                      {"BANCO", "Banco", 5},
                      {"AGENCIA", "Agência"},
                      {"CONTA", "Conta", 10},
                      {"NUMERO", "Número"},
                      {"VALOR", "Valor"},
                      {"EMISSAO", "Emissão"},
                      {"VENCIMENTO", "Vencimento"},
                      {"DT_BAIXA", "Baixa"},
                      {.field = "STATUS", .title = "Situação", .width = 9, .words = kEstados},
                      {.field = "TIPO", .title = "Tipo", .width = 8, .words = kTipos},
                      {"CLIENTE", "Cliente", 7},
                      {"FORNECEDOR", "Fornecedor", 10},
                      {"EMISSOR", "Emissor", 30},
                      {"LOTE", "Lote"},
                      {"OBS", "Observação", 30}}};

  Panel PainelConfirma{*this, "PainelConfirma"};
  Label Label15{*this, "Label15", "Transferir o cheque para:"};
  ComboBox CBEmpresa{*this, "CBEmpresa", "Empresa"};
  Button BtnConfirmar{*this, "BtnConfirmar", "Confirmar"};
  // Leaves the focus where it is: giving up opens no lookup of an empty field.
  SmallButton BtnDesistir{*this, "BtnDesistir", "Desistir"};

  Panel PainelControle{*this, "PainelControle"};
  SmallButton sbPrimeiro{*this, "sbPrimeiro", "Primeiro"};
  SmallButton sbAnterior{*this, "sbAnterior", "Anterior"};
  SmallButton sbProximo{*this, "sbProximo", "Próximo"};
  SmallButton sbUltimo{*this, "sbUltimo", "Último"};
  Button Btincluir{*this, "Btincluir", "&Incluir"};
  Button BtnAltera{*this, "BtnAltera", "&Alterar"};
  Button BtnConsulta{*this, "BtnConsulta", "Con&sultar"};
  TPesquisa PqConsulta{*this, "PqConsulta",
                       ListOf("CHEQUE_PRE", "CHAVE;BANCO;CONTA;NUMERO",
                              {{"CHAVE", "Chave"},
                               {"BANCO", "Banco"},
                               {"CONTA", "Conta"},
                               {"NUMERO", "Número"},
                               {"EMISSOR", "Emissor"}})};
  Button BitBtn4{*this, "BitBtn4", "&Devolver"};
  Button BitBtn7{*this, "BitBtn7", "&Reapresentar"};
  Button BitBtn2{*this, "BitBtn2", "&Transferir"};
  Button BitBtn5{*this, "BitBtn5", "Cad. &Lote"};
  Button BitBtn3{*this, "BitBtn3", "&Cancelar"};
  Button BtExcluir{*this, "BtExcluir", "&Excluir"};
  Button BtSaida{*this, "BtSaida", "Fechar"};

  // The companies to which a cheque can go, in the order of CBEmpresa.
  TOrvQuery QryEmp{Tabela.IBDatabase(), "QryEmp"};
  TOrvQuery QryDup{Tabela.IBDatabase(), "QryDup"};

  std::optional<Registro> RegistroAtual() override;

 protected:
  void FormClose() override;

 private:
  // --- Creation, fields and the query (cheque_pre.cpp).
  void Desenha();
  void LigaAcesso();
  void LigaCampos();
  void LigaAcoes();
  // A field with its lookup, whose list opens when an empty field is left while `abre` holds.
  void LigaPesquisa(DBEdit& campo, TPesquisa& pesquisa, const char* chave, std::function<bool()> abre);
  // The names that go with the codes of the current cheque.
  void MostraNomes();
  void EdtDupExit();
  void BitBtn6Click();
  void DBGrid2DblClick();

  // --- The record (cheque_pre_record.cpp).
  void BtincluirClick();
  void BtnAlteraClick();
  void BtExcluirClick();
  void BtnConfirmarClick();
  void BtnDesistirClick();
  void BitBtn2Click();
  void PqConsultaFechaPesquisa();

  void Bar_Confirma(bool confirma);
  bool Valida();
  // Writes the row in edit with its audit line.
  void GravaCheque();
  // The condition that finds the movement of a cleared cheque where it isn't as the clearing left it; "" of a
  // cheque that isn't cleared.
  std::string MovimentoABaixar();
  void BaixaMovimento(const std::string& movimento);
  // True when the movement and the cheque are written.
  bool LancaCheque();
  // False, after telling the user, when the cheque can't go to the chosen company.
  bool ValidaTransferencia();
  void Transfere();
  void ListaEmpresas();
  // The form after a confirmation that the database has.
  void Conclui();

  std::string Texto(const char* campo) { return tbCheque_pre[campo].AsString(); }
  bool Vazio(const char* campo);
  // What tells the current cheque from all others.
  std::vector<Value> Identidade();
  bool Localiza(const std::vector<Value>& identidade);
  // Shows the current cheque as it is stored now. False, after telling the user, without one; raises
  // UserError when another user took it away.
  bool Rele();
  // Leaves the edit and shows what the commit has made of the row.
  void MostraGravado();
  bool Transferindo() const { return CBEmpresa.Visible(); }

  // --- Its life (cheque_pre_life.cpp).
  void BitBtn3Click();
  void BitBtn4Click();
  void BitBtn7Click();

  // Posts a movement of the cheque through the quick entry; `grava` is done within the same commit. False
  // when the user gave up.
  bool LancaFluxo(const std::string& lancamento, const std::string& observacao,
                  const std::function<void()>& grava);
  // Asks, posts a movement, and moves the cheque on to `status`.
  void LancaEvento(std::string_view pergunta, const std::string& observacao, const char* status);
  void MudaStatus(const char* status);
  // The condition that finds the movements under the cheque's number.
  std::string MovimentosDoCheque();
  void DesfazMovimentos();
};

extern ORV_EXPORT thread_local TfmChequePre* fmChequePre;

}  // namespace orv
