// Cash-flow analysis: every movement that is expected, summed into periods with their running balance, on
// which the user simulates, hides kinds of items and opens figures.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/dias_efetivos.h"
#include "rules/fonte.h"
#include "rules/menor_saldo.h"
#include "rules/parcelas.h"
#include "rules/periodo.h"
#include "toolkit/client_dataset.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TfmRelAnaliseFluxo : public ReportScreen {
 public:
  explicit TfmRelAnaliseFluxo(Application& application);

  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  RadioGroup RgGrupo{*this, "RgGrupo", "Período", {"Mensal", "Semanal", "Diária"}, 0};
  GroupBox GbVisualizar{*this, "GbVisualizar", "Visualizar"};
  CheckBox CbPagtoAtraso{*this, "CbPagtoAtraso", "Pagamentos em atraso"};
  CheckBox CbRecAtraso{*this, "CbRecAtraso", "Recebimentos em atraso"};
  CheckBox cbChequesDevol{*this, "cbChequesDevol", "Cheques Devolvidos"};
  CheckBox CbChePag{*this, "CbChePag", "Cheques Pagar", true};
  CheckBox CbCheRec{*this, "CbCheRec", "Cheques Receber", true};
  CheckBox CbPrevPag{*this, "CbPrevPag", "Pagamentos Terceiros", true};
  CheckBox CbVendas{*this, "CbVendas", "Vendas Pendentes", true};
  CheckBox CbCompras{*this, "CbCompras", "Compras Pendentes", true};
  CheckBox CbDebPend{*this, "CbDebPend", "Débitos Pendentes", true};
  CheckBox CbCredPend{*this, "CbCredPend", "Créditos Pendentes", true};
  CheckBox CbOrcaRec{*this, "CbOrcaRec", "Orçamentos Receber", true};
  CheckBox CbOrcaPag{*this, "CbOrcaPag", "Orçamentos Pagar", true};
  CheckBox CbSimula{*this, "CbSimula", "Simulações", true};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbEmp{*this, "CbEmp", "Todas Empresas"};
  CheckBox CbSaldoDoDia{*this, "CbSaldoDoDia", "Saldo de Hoje"};
  CheckBox CbTodosDias{*this, "CbTodosDias", "Considerar Dias S/ Mov."};
  CheckBox CbDiasUteis{*this, "CbDiasUteis", "Considerar Dias Úteis "};
  CheckBox CbContBanc{*this, "CbContBanc", "Float Bancário"};
  CheckBox CbClasse{*this, "CbClasse", "Análise por Classe"};
  GroupBox GbPedidos{*this, "GbPedidos", "Pedidos"};
  CheckBox CbBloq{*this, "CbBloq", "Pedidos Bloqueados"};
  CheckBox CBCond{*this, "CBCond", "Condicões Pedido"};
  CheckBox CbPedAtraso{*this, "CbPedAtraso", "Pedidos em Atraso"};
  CheckBox CbConsST{*this, "CbConsST", "Subst. Tribut. Pedido"};
  CheckBox CbDataItens{*this, "CbDataItens", "Itens do Pedido"};
  CheckBox CbMoedaEmiOC{*this, "CbMoedaEmiOC", "Cotação na Emissão Ped."};
  GroupBox GbSituacao{*this, "GbSituacao", "Situações e Bancos"};
  Edit EdtSit{*this, "EdtSit", "Cons. Situação"};
  TPesquisa PqSituacaoRP{*this, "PqSituacaoRP", Situacoes()};
  SmallButton btnClearSit{*this, "btnClearSit", "Limpar"};
  Edit EdtSitDesc{*this, "EdtSitDesc", "Descons. Receber"};
  TPesquisa PqSituacaoRec{*this, "PqSituacaoRec", Situacoes()};
  SmallButton btnClearDescRec{*this, "btnClearDescRec", "Limpar"};
  Edit EdtSitDescPag{*this, "EdtSitDescPag", "Descons. Pagar"};
  TPesquisa PqSituacaoPag{*this, "PqSituacaoPag", Situacoes()};
  SmallButton btnClearDescPagar{*this, "btnClearDescPagar", "Limpar"};
  Edit edtBanco{*this, "edtBanco", "Bancos"};
  TPesquisa pqBanco{*this, "pqBanco", Bancos()};
  SmallButton btnClearBancos{*this, "btnClearBancos", "Limpar"};
  Button BitBtn29{*this, "BitBtn29", "Consultar"};

  static constexpr auto kSaldo = std::to_array<ReportField>({
      {"Seleciona", FieldType::String, 1, {"Sel", 4, 0, ColumnRole::Tick}},
      {"Conta", FieldType::String, 13, {"Conta"}},
      {"Descricao", FieldType::String, 50, {"Descrição", 30, 0, ColumnRole::Fixed}},
      {"Titular", FieldType::String, 50, {"Titular", 30}},
      {"Saldo", FieldType::Currency, 0, {"Saldo"}},
  });
  TClientDataSet TbSaldo{"TbSaldo"};
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"CodPer", FieldType::String, 10},
      {"Periodo", FieldType::String, 35, {"Período", 22, 0, ColumnRole::Fixed}},
      {"Valor_Rec", FieldType::Currency, 0, {"Valor Receber", 0, 0, ColumnRole::Fixed}},
      {"Cheque_Rec", FieldType::Currency, 0, {"Cheque Rec.", 0, 0, ColumnRole::Fixed}},
      {"Valor_Venda", FieldType::Currency, 0, {"Valor Venda", 0, 0, ColumnRole::Fixed}},
      {"Pend_Rec", FieldType::Currency, 0, {"Crédito Pendente", 0, 0, ColumnRole::Fixed}},
      {"Orca_Rec", FieldType::Currency, 0, {"Orça. Receber"}},
      {"Valor_Pag", FieldType::Currency, 0, {"Valor Pagar"}},
      {"Cheque_Pag", FieldType::Currency, 0, {"Cheque Pag.", 0, 0, ColumnRole::Fixed}},
      {"Valor_Compras", FieldType::Currency, 0, {"Valor Compras", 0, 0, ColumnRole::Fixed}},
      {"Pend_Pag", FieldType::Currency, 0, {"Débito Pendente", 0, 0, ColumnRole::Fixed}},
      {"Orca_Pag", FieldType::Currency, 0, {"Orça. Pagar"}},
      {"Prev_Pag", FieldType::Float, 0, {"Previsão Pag."}},
      {"Nota_Entrada", FieldType::Currency, 0, {"Entrada"}},
      {"Nota_Saida", FieldType::Currency, 0, {"Saida"}},
      {"Saldo", FieldType::Currency, 0, {"Saldo", 0, 0, ColumnRole::Fixed}},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};
  static constexpr auto kDetalha = std::to_array<ReportField>({
      {"Tipo", FieldType::String, 3, {"Tipo", 0, 1}},
      {"Numero", FieldType::String, 12, {"Número", 0, 2}},
      {"Docto", FieldType::String, 10, {"Documento", 0, 3}},
      {"Emissao", FieldType::Date, 0, {"Emissão", 0, 4}},
      {"Vencto", FieldType::Date, 0, {"Vencimento", 0, 5}},
      {"Cliente", FieldType::String, 5, {"Código", 0, 6}},
      {"Nome", FieldType::String, 50, {"Cliente/Fornecedor", 30, 7}},
      {"CodSit", FieldType::String, 2, {"Sit.", 0, 8}},
      {"Situacao", FieldType::String, 30, {"Situação", 18, 9}},
      {"Valor_Pag", FieldType::Currency, 0, {"Valor Pagar", 0, 13}},
      {"Valor_Rec", FieldType::Currency, 0, {"Valor Receber", 0, 14}},
      {"Cheque_Rec", FieldType::Currency, 0, {"Cheque Rec.", 0, 15}},
      {"Cheque_Pag", FieldType::Currency, 0, {"Cheque Pag.", 0, 16}},
      {"Valor_Compra", FieldType::Currency, 0, {"Valor Compra", 0, 17}},
      {"Valor_Venda", FieldType::Currency, 0, {"Valor Venda", 0, 18}},
      {"CodPer", FieldType::String, 10},
      {"Pend_Rec", FieldType::Currency, 0, {"Crédito Pendente", 0, 19}},
      {"Pend_Pag", FieldType::Currency, 0, {"Débito Pendente", 0, 20}},
      {"Orca_Pag", FieldType::Currency, 0, {"Orça. Pagar", 0, 21}},
      {"Orca_Rec", FieldType::Currency, 0, {"Orça. Receber", 0, 22}},
      {"Observacao", FieldType::String, 250, {"Observação", 40, 12}},
      {"Conta", FieldType::String, 13, {"Conta", 0, 10}},
      {"DescConta", FieldType::String, 30, {"Descrição da Conta", 24, 11}},
      {"Prev_pag", FieldType::Float, 0, {"Previsão Pag.", 0, 23}},
      {"Banco", FieldType::String, 3, {"Banco", 0, 24}},
      {"Nome_Banco", FieldType::String, 30, {"Nome do Banco", 20, 25}},
      {"Classe", FieldType::String, 6},
      {"Nome_Rep", FieldType::String, 30, {"Representante", 20, 26}},
  });
  TClientDataSet TbDetalha{"TbDetalha"};
  TClientDataSet TbMenor{"TbMenor"};
  // Classes by day, of which the table has so many; those that close up leave columns behind.
  static constexpr int kDias = 31;
  TClientDataSet TbClasseData{"TbClasseData"};
  TClientDataSet TbAnaliseClasse{"TbAnaliseClasse"};
  TClientDataSet TbAnaliseClasseTotalDia{"TbAnaliseClasseTotalDia"};
  TClientDataSet TbGrafico{"TbGrafico"};
  // The balances as they are and by two simulations that were kept.
  TClientDataSet TbCompara{"TbCompara"};

  PageControl PageControl1{*this, "PageControl1", 1};
  TabSheet TabSheet1{*this, "TabSheet1", "Contas"};
  TOrvDBGrid OrvDBGrid1;
  TOrvDBGrid GridMenor;
  TabSheet TabSheet2{*this, "TabSheet2", "Análise"};
  Aviso LbConsulta{*this, "LbConsulta"};
  Aviso LbOcultos{*this, "LbOcultos"};
  Label LbMenor{*this, "LbMenor"};
  TOrvDBGrid DBGrid1;
  MoneyEdit TotRec{*this, "TotRec", "Receber"};
  MoneyEdit TotRecChe{*this, "TotRecChe", "Cheque Rec."};
  MoneyEdit TotVendas{*this, "TotVendas", "Vendas"};
  MoneyEdit TotCreCC{*this, "TotCreCC", "Cred. CC"};
  MoneyEdit TotEntrada{*this, "TotEntrada", "Entradas"};
  MoneyEdit TotSaida{*this, "TotSaida", "Saídas"};
  MoneyEdit TotPag{*this, "TotPag", "Pagar"};
  MoneyEdit TotPagChe{*this, "TotPagChe", "Cheque Pag."};
  MoneyEdit TotCompras{*this, "TotCompras", "Compras"};
  MoneyEdit TotDebCC{*this, "TotDebCC", "Deb. CC"};
  MoneyEdit TotOrcPag{*this, "TotOrcPag", "Orç. Pagar"};
  MoneyEdit TotPrevPag{*this, "TotPrevPag", "Previsão Pag."};
  TabSheet TabSheet3{*this, "TabSheet3", "Detalhamento"};
  Label LbDetalhe{*this, "LbDetalhe"};
  TOrvDBGrid DBGrid2;
  TabSheet TabSheet4{*this, "TabSheet4", "Classe / Dia"};
  Aviso LbClasse{*this, "LbClasse"};
  TOrvDBGrid DBGrid3;
  TabSheet TabSheet5{*this, "TabSheet5", "Gráfico"};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Ant&erior"};
  SmallButton SpeedButton4{*this, "SpeedButton4", "Pró&xima"};
  ComboBox CbCompara1{*this, "CbCompara1", "Comparar com", {"(nenhuma)"}, 0};
  ComboBox CbCompara2{*this, "CbCompara2", "e com", {"(nenhuma)"}, 0};
  SmallButton BtAbrir{*this, "BtAbrir", "Abrir simulação"};
  SmallButton BtExcluir{*this, "BtExcluir", "Excluir simulação"};
  SmallButton BtGuardar{*this, "BtGuardar", "Guardar simulação"};
  Aviso LbCompara{*this, "LbCompara"};
  Chart DBChart1{
      *this,     "DBChart1", "Análise de Caixa",
      TbGrafico, "Periodo",  {{"Credito", "Credito"}, {"Debito", "Débito"}, {"Saldo", "Saldo", true}},
      15};
  Chart GrafCompara{
      *this,     "GrafCompara", "Saldos lado a lado",
      TbCompara, "Periodo",     {{"Saldo", "Como está", true}, {"Saldo1", "", true}, {"Saldo2", "", true}},
      15};
  Button BitBtn33{*this, "BitBtn33", "Imprimir"};
  Button BtComposicao{*this, "BtComposicao", "Composição do saldo"};
  TrackBar TrackBar1{*this, "TrackBar1", "Fonte", 2, 10, 5};
  Button BitBtn5{*this, "BitBtn5", "Fechar"};

 private:
  using Linha = ReportRow<kDetalha>;
  // A kind of money: a column of the periods, the field of the detail rows that it sums, its side, its title,
  // and what it has beside it on the page, where it has that.
  struct Tipo {
    const char *campo, *detalhe, *titulo;
    bool entrada;
    CheckBox TfmRelAnaliseFluxo::*caixa;
    MoneyEdit TfmRelAnaliseFluxo::*total;
    // The columns of a detail row that tell of it, beside its own and those of all kinds.
    std::span<const char* const> colunas;
  };
  // What is simulated has no detail rows.
  static const std::array<Tipo, 13> kTipos;
  static constexpr std::size_t kSomados = 11;

  // What a gathering remembers.
  struct Consulta {
    Gathering& andamento;
    Periodo periodo;
    DiasEfetivos dias;
    std::unordered_set<std::string> contas{};
  };

  // --- The gathering of titles, cheques, movements of the ledger and what is overdue.
  void BitBtn29Click();
  void Monta(Gathering& andamento);
  void Busca_Contas();
  void Busca_Saldos();
  std::unordered_set<std::string> ContasMarcadas();
  void BuscaAtraso(Consulta& consulta);
  void BuscaRecAtraso(Consulta& consulta);
  void GravaChequePagar(Consulta& consulta);
  void GravaChequeReceber(Consulta& consulta);
  void PendentesContaCorrente(Consulta& consulta);
  void AdiantamentosFornecedor(Consulta& consulta);
  void AdiantamentosCliente(Consulta& consulta);
  void Grava_Receber(Consulta& consulta);
  void Grava_Pagar(Consulta& consulta);

  // --- Orders, purchases and work that is outside.
  void BuscaPedidoPendente(Consulta& consulta);
  void BuscaCompraPendente(Consulta& consulta);
  void BuscaPrevisaoPagamentos(Consulta& consulta);
  struct Pendente {
    Fonte fonte;
    // Person and remark; of a sale the representative too.
    Linha linha;
    std::string numero, condicao, situacao, empresa;
    Currency valor;
    Date base;
  };
  struct Compra {
    Pendente pendente;
    Date emissao;
    std::string moeda;
    double valor, valor_st;
    Currency adiantado, frete;
  };
  std::vector<Compra> LeCompras(Consulta& consulta);
  // The due dates of purchases that have them, by company and number.
  using Vencimentos = std::unordered_map<std::string, std::vector<Date>>;
  Vencimentos LeVencimentos();
  std::string CondicaoDaCompra(const Compra& compra, const Vencimentos& vencimentos, bool& avisado);
  // Raises ConversionError for a slot of the condition that is no number.
  void Gera_Duplicatas(Consulta& consulta, const Pendente& pendente);
  // The next day of the month that the condition's first slot names; false where it names none.
  bool CalculaVencto(std::string_view condicao, Date& vencimento) const;
  // A workshop's date: so many days after the work went out as the first slot of its condition says.
  Date VenctoOficina(Consulta& consulta, Date saida, std::string_view condicao) const;
  // Work at a workshop, as a row.
  struct Oficina {
    Fonte fonte;
    std::string chave, empresa;
    Date vencimento;
    Currency valor;
    const char* classe;
    std::string observacao;
  };
  void AnexaOficina(Consulta& consulta, Linha& linha, const Oficina& oficina);
  void BuscaFaccoes(Consulta& consulta);
  void BuscaTinturarias(Consulta& consulta);
  void BuscaTecelagens(Consulta& consulta);
  // The orders at workshops of one kind; the order's number ends the remark of `oficina`.
  void PercorreOficinas(Consulta& consulta, const char* passo, const std::string& sql, const char* tabela,
                        const Oficina& oficina);

  // --- What the steps have in common.
  // In which order the two moves of a date are made: the later one decides.
  enum class Move : uint8_t { SoDiaUtil, FloatPorUltimo, DiaUtilPorUltimo };
  Date DiaEfetivo(Consulta& consulta, Move move, Date vencimento, std::string_view situacao = "") const;
  void Percorre(Consulta& consulta, const char* passo, std::string_view sql, std::string_view tabela,
                const std::function<void(Linha&, std::span<Value>)>& linha);
  std::string FiltroPeriodo(const char* coluna, const Consulta& consulta) const;
  std::string Antes(const char* coluna, const Consulta& consulta) const;
  std::string FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const;
  struct Movimento {
    Date vencimento;
    Currency valor;
    bool credito, cheque;
  };
  // Hands on the pending movements of the ledger that meet a condition and stand in marked accounts; true
  // appends the row.
  void PercorreMovimentos(Consulta& consulta, const char* passo, const std::string& condicao, bool com_banco,
                          const std::function<bool(Linha&, const Movimento&)>& movimento);
  void Anexa(Linha& linha, Fonte fonte, Value chave, std::string_view empresa);

  // --- Periods, balances, views.
  void Gera_Analise(Gathering& andamento);
  void AnexaPeriodo(const std::string& codigo, const std::string& nome,
                    const std::array<Currency, kSomados>& valores);
  void AdicionaDiasSemMov();
  void CalculaSaldo();
  void AnexaSaldoInicial();
  // The lowest balance in all and of each account. What is typed into a period counts on its first day.
  void MostraMenorSaldo();
  void MenorPorConta();
  Currency SomaSaldos();
  void TbSaldoAfterPost();
  void OrvDBGrid1Exit();
  void ClicaTipo(const Tipo& tipo);
  void ZeraTipo(const Tipo& tipo);
  void ZeraTotais();
  // The kinds that were hidden with what they took along: "Cheque Rec. 10,00, Valor Venda 5,00".
  std::string Ocultos() const;
  std::string OcultosQueContam();
  void MostraOcultos();
  void CbClasseClick();
  void DBGrid1DblClick();
  void DBGrid1KeyDown(KeyPress& key);
  void DBGrid1ColExit();
  void DBGrid2KeyDown(KeyPress& key);
  void DBGrid2TitleClick(const std::string& coluna);
  void PageControl1Change();
  void MostraDetalhe();
  void DescreveDetalhe(const Tipo* tipo);
  void GeraAnaliseClasseMes(Gathering& andamento);
  void CriaAnaliseClasse(Date de);
  void PassaClasses();
  // What the current detail row adds to its class.
  Currency ValorDaClasse();
  void GeraGrafico();
  void TrackBar1Change() { DBGrid1.SetFontSize(TrackBar1.Position() + 8); }
  void BitBtn33Click();
  Value Filtra(std::string_view texto);
  std::string NomeColuna(int64_t n) const;
  const Tipo* TipoSelecionado() const;

  // --- Simulations that the user keeps under names of his own: what was typed as entry and exit by the
  // period.
  struct Simulado {
    Currency entrada, saida;
  };
  using Simulacao = std::map<std::string, Simulado>;
  std::string CaminhoSimulacao() const;
  void LeSimulacoes();
  // The one that a list names, null for none.
  const Simulacao* Escolhida(const ComboBox& lista) const;
  void BtGuardarClick();
  void BtAbrirClick();
  void BtExcluirClick();
  void Compara();

  // --- From a figure to where it comes from.
  void OrvDBGrid1DblClick();
  void DBGrid2DblClick();
  void DBGrid3DblClick();
  void BtComposicaoClick();
  // The day on which a detail row counts in the table of classes.
  Date DiaDaClasse(DiasEfetivos& dias, Date vencimento) const;

  std::string fac80_;
  // Balances are changed by the program.
  bool montando_ = false;
  // The first day of the table of classes.
  Date base_classe_;
  // What the table of classes has no place for, told beside it.
  std::string fora_da_classe_;
  // What the latest gathering has to say.
  std::vector<std::string> avisos_;
  Origens origens_;
  SharedTexts nomes_;
  // The money of a day of a period by its kind, in the order of the days; and what is expected of an account.
  struct DiaSomado {
    Date dia;
    std::string codigo;
    std::array<Currency, kSomados> valores{};
  };
  std::vector<DiaSomado> dias_;
  struct DiaDaConta {
    Date dia;
    std::size_t tipo;
    Currency valor;
  };
  std::map<std::string, std::vector<DiaDaConta>> por_conta_;
  void SomaDia(const std::string& codigo, const std::array<const Field*, kSomados>& campos, Date dia,
               const std::string& conta);
  std::map<std::string, Simulacao> simulacoes_;
  // What hiding took out of the periods since they were gathered, by the column.
  std::map<std::string, Currency> ocultos_;
};

extern ORV_EXPORT thread_local TfmRelAnaliseFluxo* fmRelAnaliseFluxo;

}  // namespace orv
