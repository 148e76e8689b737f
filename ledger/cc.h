// The ledger of the bank accounts: one page posts, alters and deletes a movement with its accounting split,
// the other finds movements and clears them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/screen.h"
#include "ledger/modelo_lanc.h"
#include "rules/como_lido.h"
#include "toolkit/client_dataset.h"

namespace orv {

// How the situation of a movement is shown.
inline const std::vector<CodeWord> kSituacoes = {{"S", "Pendente", "warning"},
                                                 {"P", "Pendente", "warning"},
                                                 {"N", "Baixado", ""},
                                                 {"C", "Conciliado", "good"}};

class ORV_EXPORT TfmCC : public Child {
 public:
  explicit TfmCC(Application& application);

  PageControl PageControl1{*this, "PageControl1", 1};

  // --- Acesso.
  TabSheet TabSheet1{*this, "TabSheet1", "Acesso"};

  GroupBox GbConsLanc{*this, "GbConsLanc", "Lançamento"};
  DateEdit dtInicio{*this, "dtInicio", "De"};
  DateEdit dtFim{*this, "dtFim", "Até"};
  Edit EdtConsConta{*this, "EdtConsConta", "Conta", 12};
  TPesquisa PqConsConta{*this, "PqConsConta", Contas()};
  ReadOnlyEdit EdtConsEmp{*this, "EdtConsEmp"};
  RadioGroup RgBusca{*this, "RgBusca", "Buscar", {"Todos", "Pendentes", "Baixados", "Compensados"}, 1};
  // Seldom set.
  Edit EdtCodGrupo{*this, "EdtCodGrupo", "Classe Ger.", 6};
  TPesquisa PqConsClasse{*this, "PqConsClasse", Classes()};
  ReadOnlyEdit EdtNomeGrupo{*this, "EdtNomeGrupo"};
  Edit edtCodHist{*this, "edtCodHist", "Histórico", 5};
  TPesquisa PqHist{*this, "PqHist", Historicos()};
  ReadOnlyEdit edtDescHist{*this, "edtDescHist"};
  Edit EdtConsLanc{*this, "EdtConsLanc", "Lançamento", 10};
  Edit EdtDocto{*this, "EdtDocto", "Documento", 10};
  Edit EdtAObs{*this, "EdtAObs", "Observação", 50};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Todos", "Duplicatas", "Cheques"}, 0};
  GroupBox GbConsValor{*this, "GbConsValor", "Valor"};
  MoneyEdit EdtValorDe{*this, "EdtValorDe", "De"};
  MoneyEdit EdtValorAte{*this, "EdtValorAte", "Até"};
  GroupBox GbConsVenc{*this, "GbConsVenc", "Vencimento"};
  DateEdit dtVencIni{*this, "dtVencIni", "De"};
  DateEdit dtVencFim{*this, "dtVencFim", "Até"};
  GroupBox GbConsCont{*this, "GbConsCont", "Contabilização"};
  DateEdit dtContIni{*this, "dtContIni", "De"};
  DateEdit dtContFim{*this, "dtContFim", "Até"};
  Button BitBtn5{*this, "BitBtn5", "&Consultar"};

  // The movements found.
  struct ConsultaSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Lancamento{*this, "LANCAMENTO", FieldType::String, 7};
    Field Docto{*this, "DOCTO", FieldType::String, 15};
    Field Banco{*this, "BANCO", FieldType::String, 3};
    Field Conta{*this, "CONTA", FieldType::String, 13};
    Field DtCont{*this, "DT_CONT", FieldType::Date};
    Field DtLan{*this, "DT_LAN", FieldType::Date};
    Field DtVencto{*this, "DT_VENCTO", FieldType::Date};
    Field Valor{*this, "VALOR", FieldType::Float};
    Field Operacao{*this, "OPERACAO", FieldType::String, 1};
    Field Pendente{*this, "PENDENTE", FieldType::String, 1};
    Field Observacao{*this, "OBSERVACAO", FieldType::String, 100};
    Field Historico{*this, "HISTORICO", FieldType::String, 5};
    Field Grupo{*this, "GRUPO", FieldType::String, 6};
    Field LancCon{*this, "LANC_CON", FieldType::String, 7};
    Field TipoDoc{*this, "TIPO_DOC", FieldType::String, 2};
    Field Tipo{*this, "TIPO", FieldType::String, 2};
    Field DescGrupo{*this, "DESC_GRUPO", FieldType::String, 50};
  } TbConsulta{"TbConsulta"};

  TOrvDBGrid DBGridApagar{*this,
                          "DBGridApagar",
                          TbConsulta,
                          {{"LANCAMENTO", "Lançamento"},
                           {"DOCTO", "Documento"},
                           {"BANCO", "Banco"},
                           {"CONTA", "Conta"},
                           {"DT_LAN", "Data Lançamento"},
                           {"DT_VENCTO", "Vencimento"},
                           {"DT_CONT", "Contabilização"},
                           {"OPERACAO", "Operação"},
                           {"VALOR", "Valor"},
                           {.field = "PENDENTE", .title = "Situação", .words = kSituacoes},
                           {"HISTORICO", "Histórico"},
                           {"GRUPO", "Classe Ger."},
                           {"DESC_GRUPO", "Descrição"},
                           {"OBSERVACAO", "Observação"},
                           {"TIPO", "Tipo"},
                           {"TIPO_DOC", "Tipo Docto"},
                           {"LANC_CON", "Lanc. Conciliação"}}};
  MoneyEdit EdtDebito{*this, "EdtDebito", "Débito"};
  MoneyEdit EdtCredito{*this, "EdtCredito", "Crédito"};
  MoneyEdit EdtSaldo{*this, "EdtSaldo", "Saldo"};
  DateEdit DtBaixaComp{*this, "DtBaixaComp", "Compensação"};
  SmallButton SpeedButton8{*this, "SpeedButton8", "Compensar"};
  SmallButton SpeedButton6{*this, "SpeedButton6", "Estornar"};
  SmallButton BtRegistro{*this, "BtRegistro", "Registro da conta"};
  Button BitBtn6{*this, "BitBtn6", "&Fechar"};

  // --- Manutenção.
  TabSheet TabSheet2{*this, "TabSheet2", "Manutenção"};

  // What recurs and is to be posted now.
  Panel PanelVence{*this, "PanelVence"};
  Aviso LbVence{*this, "LbVence"};
  Button BtVence{*this, "BtVence", "&Usar o próximo"};
  Button BtPassa{*this, "BtPassa", "Dei&xar passar"};

  Panel Panel4{*this, "Panel4"};
  ReadOnlyEdit EdtLancto{*this, "EdtLancto", "Lançamento"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtCodBan{*this, "EdtCodBan", "Banco"};
  ReadOnlyEdit EdtDesBan{*this, "EdtDesBan"};
  Edit EdtNumDoc{*this, "EdtNumDoc", "Documento", 15};
  ReadOnlyEdit EdtTipoDocto{*this, "EdtTipoDocto"};
  DateEdit EdtDtLanc{*this, "EdtDtLanc", "Lançamento"};
  DateEdit EdtDtVencto{*this, "EdtDtVencto", "Vencimento"};
  DateEdit EdtDtCont{*this, "EdtDtCont", "Contabilização"};
  Edit EdtTipo{*this, "EdtTipo", "Classe Ger.", 6};
  TPesquisa PqClasse{*this, "PqClasse", Classes("TP_CONTA <> 'T'")};
  ReadOnlyEdit EdtDesTipo{*this, "EdtDesTipo"};
  Edit EdtHis{*this, "EdtHis", "Histórico", 5};
  TPesquisa pqHistorico{*this, "pqHistorico", Historicos()};
  ReadOnlyEdit EdtDescHis{*this, "EdtDescHis"};
  ComboBox CbOper{*this, "CbOper", "Operação", {"+", "-"}, 0};
  MoneyEdit EdtValor{*this, "EdtValor", "Valor"};
  MoneyEdit EdtValDoc{*this, "EdtValDoc", "Valor do Documento"};
  RadioGroup RgSituacao{*this, "RgSituacao", "Situação", {"Pendente", "Baixado", "Conciliado"}, 0};
  Edit EdtObs{*this, "EdtObs", "Observação", 100};
  ReadOnlyEdit EdtTipoLan{*this, "EdtTipoLan", "Tipo"};
  ReadOnlyEdit EdtLancConc{*this, "EdtLancConc", "Lanc. Conciliação"};

  // What belongs to the movement: the titles that it settled, its entries, the cost centres of the entry in
  // focus.
  struct ContabilSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Credita{*this, "Credita", FieldType::String, 12};
    Field DescC{*this, "Desc_C", FieldType::String, 50};
    Field Debita{*this, "Debita", FieldType::String, 12};
    Field DescD{*this, "Desc_D", FieldType::String, 50};
    Field Valor{*this, "Valor", FieldType::Float};
    // The result account from which cost centres hang; empty for an entry between balance-sheet accounts.
    Field ContaRat{*this, "ContaRat", FieldType::String, 12};
  } TbContabil{"TbContabil"};

  struct CCustoSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    // The entry: its record number and its result account.
    Field Ordem{*this, "Ordem", FieldType::String, 2};
    Field Conta{*this, "Conta", FieldType::String, 12};
    Field Codigo{*this, "Codigo", FieldType::String, 4};
    Field CentroCusto{*this, "CentroCusto", FieldType::String, 50};
    Field Perc{*this, "Perc", FieldType::Float};
    Field Valor{*this, "Valor", FieldType::Currency};
  } TbCCusto{"TbCCusto"};

  TOrvQuery QryFinan{Tabela.IBDatabase(), "QryFinan"};

  GroupBox GroupBox1{*this, "GroupBox1", "Financeiro"};
  CheckBox CbEmpFinan{*this, "CbEmpFinan", "Todas Empresas"};
  TOrvDBGrid DbgFinanceiro{*this,
                           "DbgFinanceiro",
                           QryFinan,
                           {{"NUMERO", "Número"},
                            {"CODIGO", "Código"},
                            {"NOME", "Nome"},
                            {"EMISSAO", "Emissão"},
                            {"VENCTO", "Vencimento"},
                            {"DESCONTO", "Desconto"},
                            {"JUROS", "Juros"},
                            {"VALOR", "Valor"},
                            {"EMPRESA", "Empresa"}}};

  Panel PanelCont{*this, "PanelCont"};
  GroupBox GroupBox2{*this, "GroupBox2", "Contabilidade"};
  TOrvDBGrid DbgContabilidade{*this,
                              "DbgContabilidade",
                              TbContabil,
                              {{"Credita", "Credita"},
                               {"Desc_C", "Descrição", 0, true},
                               {"Debita", "Debita"},
                               {"Desc_D", "Descrição", 0, true},
                               {"Valor", "Valor"}}};
  TPesquisa PqContaC{*this, "PqContaC", ContasContabeis()};
  TPesquisa PqContaD{*this, "PqContaD", ContasContabeis()};
  GroupBox GroupBox3{*this, "GroupBox3", "Centro de Custo"};
  TOrvDBGrid DbgRateioCC{*this,
                         "DbgRateioCC",
                         TbCCusto,
                         {{"Codigo", "Código"},
                          {"CentroCusto", "Centro de Custo", 0, true},
                          {.field = "Perc", .title = "Percentual", .decimals = 4},
                          {"Valor", "Valor"}}};
  TPesquisa PqCCusto{*this, "PqCCusto", CentrosDeCusto()};

  Panel Panel5{*this, "Panel5"};
  Button SpeedButton2{*this, "SpeedButton2", "C&onfirmar"};
  // Leaves the focus where it is: giving up opens no lookup of an empty field.
  SmallButton SpeedButton1{*this, "SpeedButton1", "&Cancelar"};
  SmallButton BtGuarda{*this, "BtGuarda", "Sal&var modelo"};
  CheckBox CbManter{*this, "CbManter", "Ma&nter conta e data"};

  Panel Panel6{*this, "Panel6"};
  Button BitBtn1{*this, "BitBtn1", "&Incluir"};
  Button BtRepete{*this, "BtRepete", "Re&petir último"};
  Button BtModelos{*this, "BtModelos", "Mo&delos"};
  TPesquisa PqModelos{*this, "PqModelos",
                      ListOf("MODELO_LANC", "NOME",
                             {{"NOME", "Nome"},
                              {"CONTA", "Conta"},
                              {"DOCTO", "Documento"},
                              {"GRUPO", "Classe Ger."},
                              {"VALOR", "Valor"},
                              {"PROXIMO", "Próxima vez"}})};
  Button BitBtn2{*this, "BitBtn2", "&Alterar"};
  Button btnConsulta{*this, "btnConsulta", "&Consultar"};
  TPesquisa PqFluxo{*this, "PqFluxo",
                    ListOf("CONTACOR", "LANCAMENTO;DOCTO;CONTA;OPERACAO",
                           {{"LANCAMENTO", "Lançamento"},
                            {"DT_LAN", "Data"},
                            {"DOCTO", "Documento"},
                            {"VALOR", "Valor"},
                            {"OPERACAO", "Operação"},
                            {"CONTA", "Conta"},
                            {"OBSERVACAO", "Observação"}})};
  Button BitBtn7{*this, "BitBtn7", "&Transferência"};
  Button BitBtn8{*this, "BitBtn8", "&Saldos"};
  Button BitBtn3{*this, "BitBtn3", "&Excluir"};
  Button BitBtn4{*this, "BitBtn4", "&Fechar"};

  // The accounts of the balances report.
  struct ContasSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Contas{*this, "Contas", FieldType::String, 15};
    Field Descricao{*this, "Descricao", FieldType::String, 50};
    Field Empresa{*this, "Empresa", FieldType::String, 50};
    Field Banco{*this, "Banco", FieldType::String, 3};
    Field Saldo{*this, "Saldo", FieldType::Float};
    Field Pendente{*this, "Pendente", FieldType::Float};
    Field Previsao{*this, "Previsao", FieldType::Float};
    Field Codigo{*this, "Codigo", FieldType::String, 3};
    Field Tipo{*this, "Tipo", FieldType::String, 1};
  } TbContas{"TbContas"};

  // --- Inquiry and balances (cc_inquiry.cpp).
  // Fills TbConsulta and the totals by the filters of the page.
  void ConsultaLancamentos();
  // Of the account on which Tabela.TbCadConta stands, over all companies unless they share the ledger:
  // settled until today, pending until today, and all that is dated later.
  Currency ValorSaldoConta();
  Currency ValorPendenteConta();
  Currency ValorPrevisaoConta();

  std::optional<Registro> RegistroAtual() override;

 private:
  // --- Creation (cc.cpp).
  void LeParametros();
  void Desenha();
  void LigaAcesso();
  void LigaManutencao();
  void LigaGrades();

  // The items of RgSituacao, and their letters in the ledger.
  enum Situacao { kSitPendente, kSitBaixado, kSitConciliado };
  static const char* Letra(int situacao) {
    return situacao == kSitConciliado ? "C" : situacao == kSitPendente ? "S" : "N";
  }
  static Situacao SituacaoDe(std::string_view letra) {
    return letra == "C" ? kSitConciliado : letra == "S" ? kSitPendente : kSitBaixado;
  }

  // --- A movement (cc_entry.cpp).
  void BitBtn1Click();
  void BitBtn2Click();
  void BitBtn3Click();
  void SpeedButton1Click();
  void SpeedButton2Click();
  void PqFluxoFechaPesquisa();

  void EdtLanctoChange();
  void EdtTipoChange();
  void EdtHisChange();
  void EdtDtLancExit();
  void EdtDtContExit();
  void EdtObsExit();
  void ValorDocumento();

  void BuscaLancamento(const std::string& lancamento, const std::string& docto, const std::string& conta,
                       const std::string& operacao);
  // False when the movement may not change, after telling why: its number's rows, by the two dates and by the
  // accounting date of each.
  bool ValidaLancamento(const std::string& lancamento, Date data1, Date data2, bool verificaConciliado);
  // A cheque behind a deleted movement is cancelled. False when there is none.
  bool CancelaCheque(const std::string& numero, const std::string& docto);
  // False, after telling the user, with an empty date: the locks of closed periods would let it pass.
  bool ValidaDatas();
  bool ValidaCampos();
  // The apportionment by class; without `grava` only what it asks the user. False where he refuses it.
  bool RateiaClasse(bool grava);
  void GravaLancamento();
  // Raises UserError when another user has changed or deleted the loaded row since.
  void ExigeInalterado() const;
  // Takes the loaded row out of the table, by its identity and as it was loaded. Raises as above.
  void RetiraLancamento();
  void LimpaTela();
  void ModoEdicao(bool edicao);
  // True when the number on the screen is that of a stored movement.
  bool EstaGravado() const;
  // The condition that finds a movement's one row.
  ComoLido Identidade(const std::string& lancamento, const std::string& docto, const std::string& conta,
                      const std::string& operacao) const;
  // The row on the screen, as it was loaded.
  std::string LinhaGravada() const;

  // --- What a posting begins with (cc_rapido.cpp).
  // The fields that follow from what stands before them are gone by on the way forward.
  void LigaRapido();
  // A new posting: its number, today's dates. False where the user may not.
  bool Comeca();
  // The account and the date of the last one, where the user keeps them. False without one.
  bool Mantem();
  void Preenche(const ModeloLanc& modelo);
  // The posting on the screen.
  ModeloLanc Preenchido() const;
  void BtRepeteClick();
  void PqModelosFecha();
  void BtGuardaClick();
  void BtVenceClick();
  void BtPassaClick();
  void CbManterChange();
  // A new posting with the fields of the template.
  void UsaModelo(const ModeloLanc& modelo);
  // Tells what is to be posted now.
  void MostraVencidos();

  // --- The split (cc_split.cpp).
  void PartidaContabil();
  // Reads the stored split. The grids hang all cost centres on the last entry; `como_gravado`, each on its
  // own.
  void BuscaContabil(bool como_gravado = false);
  void GravaContabilidade();
  // The stored entries take what the movement's fields have changed of them.
  void AcompanhaContabilidade();
  void GravaCentroCusto();
  void BuscaFinanceiro();

  // The accounting account of the bank account, "" without one.
  std::string ContaDoBanco();
  // What a code of the chart or of the cost centres is called.
  std::string DescricaoDe(std::string_view tabela, const std::string& codigo);
  void IncluiPartida(const std::string& banco, const std::string& conta, Currency valor);
  void FiltraCCusto();
  bool ValidaCentroCusto();
  bool ValidaContabilidade();
  bool ValidaRateio();
  void ArredondaRateio();
  void EsvaziaRateio();

  void TbContabilBeforePost();
  void TbContabilAfterInsert();
  void TbContabilBeforeDelete();
  void TbCCustoNewRecord();
  void DbgContabilidadeKey(KeyPress& key);
  void DbgRateioCCKey(KeyPress& key);

  // --- Inquiry and balances (cc_inquiry.cpp).
  void BitBtn5Click();
  void BitBtn7Click();
  void BitBtn8Click();
  void DBGridApagarDblClick();
  // The statement of the inquiry, without its order and what it reads of other tables; "" where a filter can
  // match nothing.
  std::string SqlConsulta() const;
  void ConsultaContas();
  // Where the balances up to today are read, and after it.
  std::string AteHoje() const;
  std::string AposHoje() const;
  Currency ValorConta(const std::string& saldos, const std::string& condicao);
  // A statement over the ledger as it is kept: by each company, or by one for all.
  std::string SqlDoMovimento(const std::string& sql);

  // --- Clearing (cc_clearing.cpp).
  void SpeedButton8Click();
  void SpeedButton6Click();
  // The condition that finds the selected row as the inquiry found it.
  std::string LinhaConsultada() const;
  // The identity of the row that follows the selected one, of the last row its own.
  std::vector<Value> ProximaConsultada();
  // The condition that finds all that is cleared along with the selected row.
  std::string DaConsultada() const;
  // Changes the selected row and all of its number and document. False, with nothing changed, when the row
  // is no longer as the inquiry found it.
  bool AtualizaConsultada(const std::string& valores);
  // Tells what has become of the selected row meanwhile, and shows the rows as they are.
  void AvisaMudanca();
  // The accounting of a clearing; null where it has none.
  std::unique_ptr<TContabil> PartidaDaCompensacao(const std::string& numero);

  // Parameters: entries, cost centres, apportionment by class, that also for credits.
  bool fin30_ = false, fin50_ = false, fin80_ = false, fin100_ = false;
  // The program fills the fields: what they propose to one another keeps out.
  bool preenche_ = false;
  // The loaded row as it is stored: its version, which each change of it renews, and what its entries have
  // of it. Nothing for a movement not yet stored.
  struct Gravada {
    int64_t versao;
    Date dt_cont;
    std::string classe, historico, observacao;
  };
  std::optional<Gravada> gravada_;
  // The user has changed the split since it was loaded.
  bool mexida_ = false;
  // The movement on the screen is being made, and of that: its fields came filled, the user came to a date.
  bool nova_ = false, preenchida_ = false, datas_ = false;
  // The template from which it was filled.
  std::optional<ModeloLanc> modelo_;
  // What was posted last, since the screen was opened.
  struct Ultima {
    ModeloLanc campos;
    Date dt_lan, dt_vencto, dt_cont;
  };
  std::optional<Ultima> ultima_;
  // The template that the page proposes.
  std::optional<ModeloLanc> proposto_;
};

extern ORV_EXPORT thread_local TfmCC* fmCC;

}  // namespace orv
