// The reconciliation workbench: movements of the ledger are ticked against lines of the bank's statement and
// tied to them, cleared by a bank's return of cheques, or by the files of the card acquirers.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/screen.h"
#include "frame/ticks.h"
#include "reconciliation/formats/card_file.h"
#include "reconciliation/formats/cheque_return.h"
#include "rules/bloqueio.h"
#include "toolkit/client_dataset.h"

namespace orv {

struct Suggestion;

class ORV_EXPORT TFmConcilia : public Child {
 public:
  explicit TFmConcilia(Application& application);

  PageControl PageControl1{*this, "PageControl1", 0};

  // --- Conciliação de Extrato.
  TabSheet TabSheet1{*this, "TabSheet1", "Conciliação de Extrato"};

  DateEdit DtInicio{*this, "DtInicio", "De"};
  DateEdit DtFinal{*this, "DtFinal", "Até"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  RadioGroup RgBusca{*this, "RgBusca", "Status", {"Conciliados", "A conciliar", "Todos"}, 1};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Pagamentos", "Recebimentos", "Todos"}, 2};
  ReadOnlyEdit EdtCodBan{*this, "EdtCodBan", "Banco"};
  ReadOnlyEdit EdtBanco{*this, "EdtBanco"};
  Edit EdtDocto{*this, "EdtDocto", "Documento", 15};
  Edit EdtConcilia{*this, "EdtConcilia", "Conciliação", 10};
  Button BitBtn1{*this, "BitBtn1", "&Consultar"};

  // The movements, ticked by "N": no longer pending.
  struct MovSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Conciliar{*this, "Conciliar", FieldType::String, 1};
    Field Operacao{*this, "Operacao", FieldType::String, 1};
    Field Lancto{*this, "Lancto", FieldType::String, 7};
    Field Docto{*this, "Docto", FieldType::String, 15};
    Field DataLancto{*this, "Data_Lancto", FieldType::Date};
    Field Data{*this, "Data", FieldType::Date};
    Field DataVencto{*this, "Data_Vencto", FieldType::Date};
    Field Classe{*this, "Classe", FieldType::String, 6};
    Field DescClasse{*this, "DescClasse", FieldType::String, 30};
    Field Valor{*this, "Valor", FieldType::Currency};
    Field Historico{*this, "Historico", FieldType::String, 4};
    Field Observacao{*this, "Observacao", FieldType::String, 100};
    Field LancCon{*this, "Lanc_Con", FieldType::String, 7};
    Field SaldoIni{*this, "Saldo_Ini", FieldType::Currency};
  } TbMov{"TbMov"};

  // The lines of the statement, ticked by "S".
  struct ArqSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Concilia{*this, "Concilia", FieldType::String, 1};
    Field Operacao{*this, "Operacao", FieldType::String, 1};
    Field Lancto{*this, "Lancto", FieldType::String, 7};
    Field Docto{*this, "Docto", FieldType::String, 10};
    Field Data{*this, "Data", FieldType::Date};
    Field Classe{*this, "Classe", FieldType::String, 6};
    Field Valor{*this, "Valor", FieldType::Currency};
    Field Historico{*this, "Historico", FieldType::String, 4};
    Field Observacao{*this, "Observacao", FieldType::String, 100};
    Field Arquivo{*this, "Arquivo", FieldType::String, 8};
    Field LancCon{*this, "Lanc_Con", FieldType::String, 7};
    Field SaldoIni{*this, "Saldo_Ini", FieldType::Currency};
  } TbArq{"TbArq"};

  // What was proposed: a row for each movement and line that stand against one another.
  struct SugestaoSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Grupo{*this, "Grupo", FieldType::Integer};
    Field Lancto{*this, "Lancto", FieldType::String, 7};
    Field DoctoMov{*this, "Docto_Mov", FieldType::String, 15};
    Field DataMov{*this, "Data_Mov", FieldType::Date};
    Field ValorMov{*this, "Valor_Mov", FieldType::Currency};
    Field Linha{*this, "Linha", FieldType::String, 7};
    Field DoctoArq{*this, "Docto_Arq", FieldType::String, 10};
    Field DataArq{*this, "Data_Arq", FieldType::Date};
    Field ValorArq{*this, "Valor_Arq", FieldType::Currency};
    Field Motivo{*this, "Motivo", FieldType::String, 60};
    // Places in TbMov and TbArq, from 1.
    Field LugarMov{*this, "Lugar_Mov", FieldType::Integer};
    Field LugarArq{*this, "Lugar_Arq", FieldType::Integer};
  } TbSugestao{"TbSugestao"};

  GroupBox GbMov{*this, "GbMov", "Movimento"};
  TOrvDBGrid OrvDBGrid1{*this,
                        "OrvDBGrid1",
                        TbMov,
                        {{"Conciliar", "Conc.", 0, false, true, "N", "S"},
                         {"Data", "Data"},
                         {"Docto", "Documento", 12, true},
                         {"Operacao", "D/C", 0, true},
                         {"Valor", "Valor", 0, true},
                         {"Observacao", "Observação", 25, true},
                         {"Lancto", "Lançamento", 0, true},
                         {"Data_Lancto", "Data Lanç."},
                         {"Data_Vencto", "Vencimento"},
                         {"Historico", "Histórico", 0, true},
                         {"Classe", "Classe Ger.", 0, true},
                         {"DescClasse", "Descrição", 0, true},
                         {"Lanc_Con", "Conciliação", 0, true}},
                        false};
  MoneyEdit EdtTotMov{*this, "EdtTotMov", "Total"};
  MoneyEdit EdtSaldoMov{*this, "EdtSaldoMov", "Saldo"};
  MoneyEdit EdtSaldoMovCon{*this, "EdtSaldoMovCon", "Saldo Conciliado"};
  GroupBox GbArq{*this, "GbArq", "Extrato"};
  TOrvDBGrid OrvDBGrid2{*this,
                        "OrvDBGrid2",
                        TbArq,
                        {{"Concilia", "Conc.", 0, false, true, "S", "N"},
                         {"Data", "Data", 0, true},
                         {"Docto", "Documento", 12, true},
                         {"Operacao", "D/C", 0, true},
                         {"Valor", "Valor", 0, true},
                         {"Observacao", "Observação", 25, true},
                         {"Lancto", "Lançamento", 0, true},
                         {"Arquivo", "Arquivo", 0, true},
                         {"Lanc_Con", "Conciliação", 0, true}},
                        false};
  MoneyEdit EdtTotExt{*this, "EdtTotExt", "Total"};
  MoneyEdit EdtSaldoExt{*this, "EdtSaldoExt", "Saldo"};
  MoneyEdit EdtSaldoExtCon{*this, "EdtSaldoExtCon", "Saldo Conciliado"};

  // Its caption tells how many there are and why.
  GroupBox GbSugestao{*this, "GbSugestao", "Sugestões"};
  TOrvDBGrid GridSugestao{*this,
                          "GridSugestao",
                          TbSugestao,
                          {{"Grupo", "Nº", 5, true},
                           {"Motivo", "Motivo", 30, true},
                           {"Lancto", "Lançamento", 0, true},
                           {"Docto_Mov", "Documento", 12, true},
                           {"Data_Mov", "Data", 0, true},
                           {"Valor_Mov", "Valor", 0, true},
                           {"Linha", "Linha do Extrato", 0, true},
                           {"Docto_Arq", "Documento", 12, true},
                           {"Data_Arq", "Data", 0, true},
                           {"Valor_Arq", "Valor", 0, true}}};

  // What a reconciliation takes back when it is undone.
  Aviso LbVolta{*this, "LbVolta"};
  MoneyEdit EdtDif{*this, "EdtDif", "Diferença"};
  // What the difference means for who ticks.
  Label LbDif{*this, "LbDif"};
  // How many days a line may lie from the movement that it is proposed for.
  Edit EdtPrazo{*this, "EdtPrazo", "Prazo (dias)", 3};
  Button BtSugerir{*this, "BtSugerir", "Su&gerir"};
  Button BitBtn4{*this, "BitBtn4", "&Conciliar"};
  Button BitBtn7{*this, "BitBtn7", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Lançar Caixa"};
  Button BitBtn9{*this, "BitBtn9", "&Lançar Extrato"};
  Button BitBtn8{*this, "BitBtn8", "&Voltar Conciliação"};
  Button BitBtn3{*this, "BitBtn3", "&Fechar"};

  // --- Conciliação de Cheques.
  TabSheet TabSheet2{*this, "TabSheet2", "Conciliação de Cheques"};

  Edit EdtCam{*this, "EdtCam", "Caminho"};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Procurar..."};
  Edit EdtArq{*this, "EdtArq", "Arquivo", 15};
  DateEdit DtIniArq{*this, "DtIniArq", "De"};
  DateEdit DtFimArq{*this, "DtFimArq", "Até"};
  Edit EdtContaArq{*this, "EdtContaArq", "Conta", 13};
  TPesquisa PqContaArq{*this, "PqContaArq", Contas()};
  ReadOnlyEdit EdtDescContaArq{*this, "EdtDescContaArq"};
  ReadOnlyEdit EdtBancoArq{*this, "EdtBancoArq", "Banco"};
  CheckBox CbDias{*this, "CbDias", "Float Bancário"};
  Button BitBtn6{*this, "BitBtn6", "Ca&rregar"};

  // The pending movements of an account, ticked by "S" where the file names their cheque.
  struct ArquivoSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Compensar{*this, "Compensar", FieldType::String, 1};
    Field DtComp{*this, "Dt_Comp", FieldType::Date};
    Field Lancto{*this, "Lancto", FieldType::String, 7};
    Field Classe{*this, "Classe", FieldType::String, 5};
    Field DescClasse{*this, "DescClasse", FieldType::String, 30};
    Field Docto{*this, "Docto", FieldType::String, 15};
    Field DtLan{*this, "Dt_lan", FieldType::Date};
    Field Historico{*this, "Historico", FieldType::String, 4};
    Field DescHist{*this, "DescHist", FieldType::String, 30};
    Field Operacao{*this, "Operacao", FieldType::String, 1};
    Field Valor{*this, "Valor", FieldType::Currency};
  } TbArquivo{"TbArquivo"};

  TOrvDBGrid OrvDBGrid3{*this,
                        "OrvDBGrid3",
                        TbArquivo,
                        {{"Compensar", "Comp.", 0, false, true, "S", "N"},
                         {"Dt_Comp", "Compensação", 13},
                         {"Lancto", "Lançamento", 0, true},
                         {"Docto", "Documento", 0, true},
                         {"Dt_lan", "Data", 0, true},
                         {"Operacao", "Operação", 0, true},
                         {"Valor", "Valor", 0, true},
                         {"Historico", "Histórico", 0, true},
                         {"DescHist", "Descrição", 0, true},
                         {"Classe", "Classe Ger.", 0, true},
                         {"DescClasse", "Descrição", 0, true}},
                        false};
  // What was left out of the confirmation.
  Aviso LbRetorno{*this, "LbRetorno"};
  Button BitBtn10{*this, "BitBtn10", "&Confirmar"};
  Button BitBtn11{*this, "BitBtn11", "&Imprimir"};
  Button BitBtn12{*this, "BitBtn12", "&Fechar"};

  // --- Conciliação de Cartões.
  TabSheet TabSheet3{*this, "TabSheet3", "Conciliação de Cartões"};

  ComboBox cbCartao_Operadora{
      *this, "cbCartao_Operadora", "Operadora", {"Getnet", "Stone", "Cielo", "Pagar.me", "Yapay", "Rede"}};
  ComboBox CbCartao_TipoConcilia{
      *this, "CbCartao_TipoConcilia", "Tipo", {"Venda", "Conta Corrente", "Pedido"}};
  Edit EdCartao_Arquivo{*this, "EdCartao_Arquivo", "Arquivo"};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Procurar..."};
  Edit EdtCodBanco{*this, "EdtCodBanco", "Banco", 3};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit EdtDescBanco{*this, "EdtDescBanco"};
  DateEdit DtCartao_Ini{*this, "DtCartao_Ini", "De"};
  DateEdit DtCartao_Fim{*this, "DtCartao_Fim", "Até"};
  RadioGroup RgCartao_Busca{*this, "RgCartao_Busca", "Status", {"Conciliados", "A conciliar", "Todos"}, 1};
  Edit EdtContaMoeda{*this, "EdtContaMoeda", "Conta", 13};
  TPesquisa PqContaMoeda{*this, "PqContaMoeda", Contas()};
  ReadOnlyEdit EdtDescContaMoeda{*this, "EdtDescContaMoeda"};
  Edit EdCartao_Conciliacao{*this, "EdCartao_Conciliacao", "Transação", 40};
  CheckBox CbTodasEmpresas{*this, "CbTodasEmpresas", "Todas empresas"};
  Button BtCartao_Consultar{*this, "BtCartao_Consultar", "Consultar"};

  // The system's side: instalments of sales, movements or orders.
  struct VendasSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Sel{*this, "SEL", FieldType::String, 1};
    Field SelOrig{*this, "SEL_ORIG", FieldType::String, 1};
    Field Cditcondivenda{*this, "CDITCONDIVENDA", FieldType::Integer};
    Field Transacao{*this, "TRANSACAO", FieldType::String, 40};
    Field Codven{*this, "CODVEN", FieldType::String, 12};
    Field Data{*this, "DATA", FieldType::Date};
    Field Valor{*this, "VALOR", FieldType::Currency};
    Field ValorParcela{*this, "VALOR_PARCELA", FieldType::Currency};
    Field Parcela{*this, "PARCELA", FieldType::String, 5};
    Field Txoperadora{*this, "TXOPERADORA", FieldType::Float};
    Field StatusPag{*this, "STATUS_PAG", FieldType::String, 2};
    Field DataConc{*this, "DATA_CONC", FieldType::Date};
    Field Lancamento{*this, "LANCAMENTO", FieldType::String, 7};
    Field Emp{*this, "EMP", FieldType::String, 4};
    Field Conta{*this, "CONTA", FieldType::String, 13};
    Field Codcli{*this, "CODCLI", FieldType::String, 5};
    Field Titulo{*this, "TITULO", FieldType::String, 12};
    Field Pedcli{*this, "PEDCLI", FieldType::String, 30};
    // The rate agreed with the acquirer, of every kind of list; and "S" where the file has no such
    // transaction or charged it differently.
    Field TaxaContratada{*this, "TAXA_CONTRATADA", FieldType::Float};
    Field Difere{*this, "DIFERE", FieldType::String, 1};
  } TbVendas{"TbVendas"};

  // The acquirer's side: the lines of its file, whose fields each reader lays down.
  TClientDataSet TbCartao_Arq{"TbCartao_Arq"};

  TOrvDBGrid GridCC{*this,
                    "GridCC",
                    TbVendas,
                    {{"SEL", "Sel.", 0, false, true, "1", "0"},
                     {"TRANSACAO", "Nº Transação", 20, true},
                     {"CODVEN", "Venda", 0, true},
                     {"DATA", "Emissão", 0, true},
                     {"VALOR", "Valor Total", 0, true},
                     {"VALOR_PARCELA", "Valor Parcela", 0, true},
                     {"TXOPERADORA", "Taxa", 0, true},
                     {"PARCELA", "Parcela", 0, true},
                     {"EMP", "Empresa", 0, true},
                     {"CONTA", "Conta", 0, true}},
                    false,
                    "No sistema"};
  TOrvDBGrid GridArq{*this,
                     "GridArq",
                     TbCartao_Arq,
                     {{"SEL", "Sel.", 0, false, true, "1", "0"},
                      {"CARTAO", "Bandeira", 0, true},
                      {"MEIO_PAG", "Meio Pag.", 18, true, false},
                      {"DATA", "Data", 20, true},
                      {"COMPROVANTE_VENDA", "Nº Transação", 20, true},
                      {"VALOR_TOTAL", "Vl. Total", 0, true},
                      {"VALOR_BRUTO", "Vl. Bruto", 0, true, false},
                      {"PARCELA", "Nº Parcela", 0, true},
                      {"VALOR_PARCELA", "Vl. Parcela", 0, true},
                      {"VALOR_PARCELA_LIQ", "Vl. Parcela Líq.", 0, true, false},
                      {"VALOR_LIQ_PARCELA", "Vl. Liq. Parcela", 0, true, false},
                      {"VALOR_LIQ", "Vl. Liq.", 0, true, false},
                      {"TAXA", "Taxa", 0, true},
                      {"DESC_STATUS_PAG", "Status", 20, true, false},
                      {"EMPRESA", "Empresa", 0, true, false},
                      {"ID", "ID Oper.", 0, true, false}},
                     false,
                     "No arquivo"};
  // What the file says against what is listed.
  Label LbConferencia{*this, "LbConferencia"};
  // What was left out of what was written, and why.
  Aviso LbCartao{*this, "LbCartao"};
  // The comparison of file and list, and of both only what differs.
  CheckBox CbConferencia{*this, "CbConferencia", "Conferência"};
  CheckBox CbDiferencas{*this, "CbDiferencas", "Só diferenças"};
  Button BitBtn13{*this, "BitBtn13", "&Gravar"};
  Button BitBtn2{*this, "BitBtn2", "&Fechar"};

  // Of the side in which the user is: a movement, or a line of the statement.
  std::optional<Registro> RegistroAtual() override;

  // --- Marks (concilia_marks.cpp).
  // Fills TbMov and TbArq by the filters of the page.
  void CarregaMovimentos();
  // The totals of what is ticked. Posts what is in edit.
  void CalculaTotais();
  void MostraDiferenca();

 private:
  // --- Creation (concilia.cpp).
  void Desenha();
  void LigaExtrato();
  void LigaCheques();
  void LigaCartoes();
  void LigaGrades();
  void EdtCodBanChange();
  void BitBtn5Click();
  void BitBtn7Click();

  // --- Marks (concilia_marks.cpp).
  void EdtContaChange();
  void BitBtn1Click();
  // The filters of the page, in the terms of the ledger or of the statement.
  std::string Filtros(const char* operacao, const char* debito, const char* credito, const char* situacao,
                      const char* feito, const char* aberto) const;

  // --- Reconciliation (concilia_tie.cpp).
  // A ticked movement, as it was loaded.
  struct Movimento {
    std::string lancto, docto, operacao, historico, lanc_con;
    Currency valor;
    // In TbMov, from 0.
    int64_t lugar = 0;
    bool cheque = false;
  };
  // What is tied under one number.
  struct Conjunto {
    std::vector<Movimento> movimentos;
    // Places in TbArq, from 0.
    std::vector<int64_t> linhas;
    // Of the first line; empty without one.
    Date data;
    std::string numero;
  };
  void BitBtn4Click();
  void BitBtn8Click();
  std::vector<Movimento> Marcados();
  // Takes apart what is ticked: first what the user put together, then each proposal that still stands as it
  // was made. At least one.
  std::vector<Conjunto> Conjuntos(std::vector<Movimento> movimentos);
  // The day that a movement of the set gets, empty where it keeps its own.
  Date Dia(const Conjunto& conjunto) const { return fin110_ ? conjunto.data : Date(); }
  // True, after the user was told, when the account's balance in a closed period would change.
  bool Fechado(const std::vector<Conjunto>& conjuntos);
  // The same of a reconciliation that is taken back, in all accounts.
  bool VoltaFechado(const std::string& numero);
  // Tells what a reconciliation takes back.
  void MostraVolta(const std::string& numero);
  // Finds out which of them hold a cheque.
  void ProcuraCheques(std::vector<Movimento>& movimentos);
  // The accounting of a cheque, confirmed by the user; null where he refuses it.
  std::unique_ptr<TContabil> PartidaDoCheque(const Movimento& cheque, const std::string& numero);
  // The condition that finds a movement as it was loaded, or as the reconciliation `numero` has left it.
  std::string ComoCarregado(const Movimento& movimento, const std::string& numero) const;
  // Runs changes, many in one statement; how many rows they touched.
  int64_t Executa(const std::vector<std::string>& comandos);
  // Each raises UserError where a row is no longer as it was loaded.
  void ConciliaMovimentos(const std::vector<Conjunto>& conjuntos);
  void ConciliaLinhas(const std::vector<Conjunto>& conjuntos);

  // --- Cheques (concilia_cheques.cpp).
  void SpeedButton1Click();
  void BitBtn6Click();
  void BitBtn10Click();
  // A movement to be cleared, as it was loaded.
  struct Compensada {
    std::string lancto, docto, operacao;
    Currency valor;
    Date data;
  };
  // The numbers of those whose clearing would change a balance in a closed period.
  std::set<std::string> ComPeriodoFechado(const std::vector<Compensada>& linhas);
  void CarregaPendentes();
  void CarregaArquivo(const std::vector<ChequeReturn>& retornos);
  // The text of the return file; nothing where it is refused, after telling why.
  std::optional<std::vector<ChequeReturn>> LeArquivo();

  // --- Proposals (concilia_suggest.cpp).
  void BtSugerirClick();
  // A cheque is reconciled by itself: takes those out that would stand among others, and tells how many.
  std::size_t RetiraCheques(std::vector<Suggestion>& sugestoes, const std::vector<int64_t>& lugares);
  // Ticks what is proposed and lists it. The places are those of the open rows in their sets.
  void MostraSugestoes(const std::vector<Suggestion>& sugestoes, const std::vector<int64_t>& lugares_mov,
                       const std::vector<int64_t>& lugares_arq, std::size_t cheques);
  // The groups of which all is still ticked.
  std::set<int64_t> SugestoesInteiras();
  // Takes the ticks of what was proposed away, where the user hasn't changed them.
  void DesmarcaSugestoes();
  void EsqueceSugestoes();
  void TbSugestaoAfterScroll();

  // --- Cards (concilia_cartoes.cpp).
  enum Operadora { kGetnet, kStone, kCielo, kPagarMe, kYapay, kRede };
  enum TipoConcilia { kTipoVenda, kTipoContaCorrente, kTipoPedido };
  // The fields that TbCartao_Arq has.
  enum class Leiaute { Cielo, Separado, Stone, Pedidos };
  // What a file's name must have in it.
  struct ArquivoCartao {
    std::vector<std::string_view> nomes;
    bool maiusculas;  // in any case; the names are upper case
    const char* recusa;
  };
  // An acquirer: what is reconciled, and how.
  struct RegraOperadora {
    int tipo;      // the only kind that it has; -1 where the user chooses
    bool pedidos;  // it settles orders
    ArquivoCartao arquivo;
    void (TFmConcilia::*concilia)();
    void (TFmConcilia::*grava)();  // of sales and movements
  };
  static const RegraOperadora& Regra(int operadora);

  void cbCartao_OperadoraChange();
  void BtCartao_ConsultarClick();
  void BitBtn13Click();
  void ConciliaCielo();
  // And Rede's.
  void ConciliaGetnet();
  void ConciliaStone();
  // Stone's: a row that is ticked is of another amount than the file's line.
  bool ParcelasDivergem();
  std::string SQLVenda() const;
  std::string SQLContaCorrente() const;
  std::string SQLCartao(bool conta_corrente) const;
  // Fills TbVendas with the rows of a statement, which `linhas` appends, and puts them in order.
  void PreencheVendas(const std::string& sql, RowSink& linhas);
  void ListaVendas(const std::string& sql, bool taxa, bool lancamento);
  // Lays the fields of TbCartao_Arq down anew, and shows their columns; CriaTabelaArquivo those of orders.
  void CriaTabela(Leiaute leiaute);
  void CriaTabelaArquivo() { CriaTabela(Leiaute::Pedidos); }
  // The file that was chosen; nothing where there is none.
  std::optional<InputFile> Arquivo() const { return User().OpenPath(EdCartao_Arquivo.Text()); }
  // True, after the user was told, where the file's name has none of the endings.
  bool NomeRecusado(const ArquivoCartao& arquivo);
  // The column map of the bank; empty without one.
  ColumnMap Mapa() const;
  // Reads lines into TbCartao_Arq, in the order of the file. What the reader raises goes on; the lines before
  // it stand.
  void CarregaLinhas(const std::function<void(CardSink&)>& le);
  // File to list: each proof's first line ticks its rows.
  void CasaArquivo();
  // List to file: each transaction that the file has is ticked, and takes the file's date where `datas`.
  void CasaLista(bool datas);
  // A tick goes to all that belongs to the row's transaction.
  void TbVendasSELChange();
  // Puts values into a row without what follows a click.
  struct Celula {
    Field& campo;
    Value valor;
  };
  static void Altera(TClientDataSet& set, int64_t linha, std::initializer_list<Celula> celulas);
  // The rows that have these texts, in their order.
  static std::vector<int64_t> Com(TClientDataSet& set, std::initializer_list<Celula> celulas);
  // Of "2/3" the "2".
  static std::string NumeroDaParcela(std::string_view parcela);
  // The line that tells what the file says against what is listed, and the rows that differ, where they are
  // asked for. `Confere` reckons it, of sets without a filter, and marks those rows where `diferencas`.
  void MostraConferencia();
  void Confere(bool diferencas);

  // --- Cards, written (concilia_cartoes_grava.cpp).
  struct Compensado;
  struct GravacaoCartao;
  struct Ressalvas;
  // Of Cielo's movements only those that the file tells as paid.
  void GravaCielo();
  // And Rede's.
  void GravaGetnet();
  void GravaStone();
  // What fails ends the run, of which nothing is written, and is told on the page and in the audit.
  void GravaSemFalha(bool so_pagos);
  void ContaFalha(const std::string& motivo);
  void GravaCartoes(bool so_pagos);
  bool Marcada(int64_t linha) { return TbVendas.Cell(linha, TbVendas.Sel).Text() == "1"; }
  // The movements of rows of TbVendas by their number, as they stand.
  std::unordered_map<std::string, Compensado> BuscaInfoLancamento(const std::vector<int64_t>& linhas);
  // What is to be written in the company on which Tabela.tbEmpresa stands. That of movements asks for the
  // locks, and ends the action silently where one holds, and has the user confirm the accounting.
  void PlanejaVendas(GravacaoCartao& gravacao, const std::vector<int64_t>& linhas);
  void PlanejaLancamentos(GravacaoCartao& gravacao, const std::vector<int64_t>& linhas, Ressalvas& ressalvas);
  void EscreveCartoes(const GravacaoCartao& gravacao, Ressalvas& ressalvas);
  void MostraRessalvas(const Ressalvas& ressalvas);

  // --- Orders (concilia_pedidos.cpp).
  struct TituloPedido;
  struct BaixaPedido;
  struct BaixaAnterior;
  struct GravacaoPedidos;
  void ConciliaCieloPedido();
  void ConciliaPagarMe();
  void ConciliaYapay();
  template <class Planilha>
  void ConciliaPlanilha();
  void BuscaPedidos();
  // What stands between the order's number and the instalment's in a receivable's number.
  std::string SeparadorDuplicata() const;
  // Reads the file's orders by the bank's map, null without one, and ticks what matches.
  void CarregaPedidos(const std::function<void(CardSink&, const ColumnMap*)>& le);
  void SelecionaVendaTransacao();
  void GravaConciliacaoPedido();
  // What the ticks come to. Raises UserError where a receivable isn't as it was listed.
  void PlanejaPedidos(GravacaoPedidos& gravacao);
  void LeTitulos(GravacaoPedidos& gravacao);
  void LeBaixasAnteriores(GravacaoPedidos& gravacao);
  // These end the action silently, after the user was told, where a period is closed, or where what a former
  // run wrote can't be replaced.
  void TravaPedidos(GravacaoPedidos& gravacao);
  void LeMovimentosAnteriores(GravacaoPedidos& gravacao);
  // Tells which settlements of the movements that go aren't written again.
  void MostraSobras(const GravacaoPedidos& gravacao);
  void PreparaPartidas(GravacaoPedidos& gravacao);
  // Raises UserError where another user was there since the plan.
  void EscrevePedidos(const GravacaoPedidos& gravacao);
  void ApagaAnteriores(const GravacaoPedidos& gravacao);

  // What was open of each receivable when it was listed, or when this screen settled it since then.
  std::unordered_map<std::string, Currency> abertos_;
  // What TbVendas was listed for; -1 before.
  int operadora_ = -1, tipo_ = -1;
  // Ticks are set by the program.
  bool casando_ = false;

  Bloqueio bloqueio_{Contabil, Tabela};
  // Parameter: a reconciled movement takes the date of the statement.
  bool fin110_ = false;
  // The accounts of what TbMov and TbArquivo hold.
  std::string conta_, conta_arq_;
  // The file of cheques that was loaded.
  std::string caminho_arq_;
  // The days that were confirmed since that load, by the movement's number.
  std::map<std::string, Date> gravadas_;
  Ticks marcas_mov_{TbMov, TbMov.Conciliar, "N"}, marcas_arq_{TbArq, TbArq.Concilia, "S"};
  Currency tot_mov_, tot_ext_;
};

extern ORV_EXPORT thread_local TFmConcilia* FmConcilia;

}  // namespace orv
