// Cash-flow forecast: what is expected, by class and by day, week or month.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/cotacao.h"
#include "rules/dias_efetivos.h"
#include "rules/menor_saldo.h"
#include "rules/periodo.h"
#include "toolkit/client_dataset.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TfmRelPrevFluxo : public ReportScreen {
 public:
  explicit TfmRelPrevFluxo(Application& application);

  // The columns of money, Val_1 and on.
  static constexpr int kColunas = 31;

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período"};
  DateEdit DtIni{*this, "DtIni", "De"};
  DateEdit DtFin{*this, "DtFin", "Até"};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Dia", "Semana", "Mês"}, 0};
  DateEdit dtSaldo{*this, "dtSaldo", "Saldo Até"};
  GroupBox GbConsiderar{*this, "GbConsiderar", "Considerar"};
  CheckBox CbSaldo{*this, "CbSaldo", "Saldo Inicial", true};
  CheckBox CbVencRec{*this, "CbVencRec", "Vencidas Receber", true};
  CheckBox CbVencPag{*this, "CbVencPag", "Vencidas Pagar", true};
  CheckBox CbPedVen{*this, "CbPedVen", "Pedidos de Venda", true};
  CheckBox CbPedCom{*this, "CbPedCom", "Ordens de Compra", true};
  CheckBox CbOrcaPag{*this, "CbOrcaPag", "Orçamentos Pagar", true};
  CheckBox CbAtraso{*this, "CbAtraso", "Atraso Médio Cliente", true};
  CheckBox CbOrcaRec{*this, "CbOrcaRec", "Orçamentos Receber", true};
  CheckBox CbEmpresa{*this, "CbEmpresa", "Todas Empresas", true};
  CheckBox CbDataPrev{*this, "CbDataPrev", "Data Prev. Recebimento", true};
  CheckBox CbLimDesc{*this, "CbLimDesc", "Limites de Desconto", true};
  GroupBox GbBase{*this, "GbBase", "Período Base"};
  DateEdit DtAtualIni{*this, "DtAtualIni", "De"};
  DateEdit DtAtualFim{*this, "DtAtualFim", "Até"};
  DateEdit DtCotacao{*this, "DtCotacao", "Cotação"};
  GroupBox GbDuplicatas{*this, "GbDuplicatas", "Duplicatas por Situação"};
  Edit EdtCodSit{*this, "EdtCodSit", "Situação", 2};
  TPesquisa PqSituacao{*this, "PqSituacao", Situacoes()};
  DateEdit DtSitIni{*this, "DtSitIni", "De"};
  DateEdit DtSitFim{*this, "DtSitFim", "Até"};
  GroupBox GbListas{*this, "GbListas", "Situações e Classes"};
  Edit EdtSitDesc{*this, "EdtSitDesc", "Descontar"};
  TPesquisa PqSit{*this, "PqSit", Situacoes()};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Limpar"};
  Edit EdtClasse{*this, "EdtClasse", "Clas. Compra"};
  TPesquisa PqClasse{*this, "PqClasse", Classes()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  Button BitBtn29{*this, "BitBtn29", "&Consultar"};

  // Laid down anew by each gathering. The first three have a field for each column beside those that are
  // named here.
  static constexpr auto kReceber = std::to_array<ReportField>({
      {"Classe", FieldType::String, 6, {"Classe"}},
      {"Conta", FieldType::String, 20, {"Conta", 12}},
      {"Descricao", FieldType::String, 30, {"Descrição", 24}},
      {"Vencidas", FieldType::Float, 0, {"Vencidas"}},
  });
  TClientDataSet TbReceber{"TbReceber"};
  static constexpr auto kPagar = std::to_array<ReportField>({
      {"Classe", FieldType::String, 6},
      {"Conta", FieldType::String, 20},
      {"Descricao", FieldType::String, 30},
      {"Vencidas", FieldType::Float},
      {"Cotacao", FieldType::Float},
  });
  TClientDataSet TbPagar{"TbPagar"};
  // The balance that each column leaves, and the one that is then reached.
  static constexpr auto kTotais = std::to_array<ReportField>({
      {"Descricao", FieldType::String, 20, {"Saldo", 42}},
      {"Vencidas", FieldType::Currency, 0, {"Vencidas"}},
      {"Total", FieldType::Currency},
  });
  TClientDataSet TbTotais{"TbTotais"};
  TClientDataSet TbCabe{"TbCabe"};
  static constexpr auto kConta = std::to_array<ReportField>({
      {"Imprimir", FieldType::String, 1, {"Imprimir", 8, 0, ColumnRole::Tick}},
      {"Conta", FieldType::String, 15, {"Conta", 0, 0, ColumnRole::Fixed}},
      {"Descricao", FieldType::String, 50, {"Descrição", 30, 0, ColumnRole::Fixed}},
      {"Saldo", FieldType::Currency, 0, {"Saldo_Conc."}},
      {"Limite", FieldType::Currency, 0, {"Limite"}},
      {"Val_Sit", FieldType::Currency, 0, {"Tít. Negociáveis"}},
      {"Pendente", FieldType::Currency, 0, {"Pendente"}},
  });
  TClientDataSet TbConta{"TbConta"};
  TClientDataSet TbMenor{"TbMenor"};
  static constexpr auto kDesconto = std::to_array<ReportField>({
      {"Banco", FieldType::String, 3, {"Banco"}},
      {"Nome_Banco", FieldType::String, 30, {"Nome do Banco", 24}},
      {"Limite", FieldType::Float, 0, {"Limite"}},
  });
  TClientDataSet TbDesconto{"TbDesconto"};
  static constexpr auto kCond = std::to_array<ReportField>({
      {"Dia", FieldType::Integer, 0, {"Dia"}},
      {"Perc", FieldType::Float, 0, {"Perc"}},
      {"Total", FieldType::Float, 0, {"Total"}},
  });
  TClientDataSet TbCond{"TbCond"};
  static constexpr auto kPrev = std::to_array<ReportField>({
      {"Emissao", FieldType::Date, 0, {"Emissão"}},
      {"Vencto", FieldType::Date},
      {"Valor", FieldType::Float, 0, {"Valor"}},
  });
  TClientDataSet TbPrev{"TbPrev"};

  PageControl PageControl1{*this, "PageControl1", 0};
  TabSheet TabSheet1{*this, "TabSheet1", "Projeção"};
  Aviso LbConsulta{*this, "LbConsulta"};
  Label LbMenor{*this, "LbMenor"};
  Label LbAtraso{*this, "LbAtraso"};
  TOrvDBGrid DBGrid3;
  TOrvDBGrid DBGrid5;
  TOrvDBGrid GridTotais;
  TabSheet TabSheet2{*this, "TabSheet2", "Contas"};
  TOrvDBGrid OrvDBGrid1;
  TOrvDBGrid GridMenor;
  TabSheet TabSheet3{*this, "TabSheet3", "Limites de Desconto"};
  TOrvDBGrid DBGrid2;
  TabSheet TabSheet4{*this, "TabSheet4", "Previsão de Receita"};
  TOrvDBGrid DBGrid4;
  TOrvDBGrid GridPrev;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  enum Lado : uint8_t { kRecebe, kPaga };
  // The columns of a gathering, by their headings.
  class Colunas {
   public:
    void Anexa(std::string cabecalho, Periodo dias) { colunas_.push_back({std::move(cabecalho), dias}); }
    std::size_t Quantas() const { return colunas_.size(); }
    const std::string& Cabecalho(std::size_t coluna) const { return colunas_.at(coluna - 1).cabecalho; }
    // From 1 on, 0 where the day has none. Of several the first one counts.
    std::size_t De(Date dia);

   private:
    struct Coluna {
      std::string cabecalho;
      Periodo dias;
    };
    std::vector<Coluna> colunas_;
    std::unordered_map<int32_t, std::size_t> achadas_;
  };
  // A class on a side.
  struct Classe {
    Value codigo, descricao, conta;
    Currency vencidas, cotacao;
    // The class whose overdue titles they are.
    std::string vencidas_de;
    std::array<Currency, kColunas> valores{};
    std::bitset<kColunas> tem{};
  };
  // The classes of a side in the order in which they were made.
  struct Quadro {
    std::vector<Classe> linhas;
    std::unordered_map<std::string, std::size_t> onde;
  };
  // What a figure is made of: a title, an instalment, or a share of a month's budget.
  enum class Tipo : uint8_t { Titulo, Adiantamento, Orcamento, Desconto, Pedido, Compra, Previsao };
  struct Parte {
    Tipo tipo;
    Value numero, nome, empresa;
    Date vencimento;
    Currency valor;
    std::string_view conta = {};
    // Where it counts.
    Date dia = {};
    Lado lado = kRecebe;
    uint8_t coluna = 0;
    uint32_t linha = 0;
  };
  struct Bordero {
    std::string conta;
    int dias = 0;
  };
  using Vencidas = std::map<std::string, Currency, std::less<>>;
  // What a gathering remembers.
  struct Consulta {
    Gathering& andamento;
    Periodo periodo;
    DiasEfetivos dias;
    Vencidas vencidas_receber{}, vencidas_pagar{};
  };
  // A title as the statements read it, and what the step does with it.
  struct Lido {
    std::string classe, classe_do_titulo;
    Value descricao, conta;
    Parte parte;
    int atraso = 0;
    std::string bordero{};
  };

  void BitBtn29Click();
  void BitBtn33Click();
  void Monta(Gathering& andamento);

  // --- The gathering.
  void Cria_Tabelas();
  void MontaCabecalho();
  std::size_t ColunaValor(Date dia) { return colunas_.De(dia); }
  void BuscaSaldoContas();
  Currency ValorSituacao();
  void AtualizaDiasAtrazo(Consulta& consulta);
  // The customers' average delays, of those who have one.
  std::map<std::string, int64_t> AtrasosMedios();
  void LeBorderos();
  // Days that the account of a receivable's bordereau takes; 0 of none.
  int DiasCompensacaoConta(const std::string& bordero) const;
  void LeVencidas(Consulta& consulta);
  Currency ValorVencidasReceber(const Consulta& consulta, const std::string& classe) const;
  Currency ValorVencidasPagar(const Consulta& consulta, const std::string& classe) const;
  void BuscaReceber(Consulta& consulta);
  void BuscaPagar(Consulta& consulta);
  void BuscaAntPagar(Consulta& consulta);
  void BuscaAntReceber(Consulta& consulta);
  void BuscaDuplicatasDescontadas(Consulta& consulta);
  void BuscaPedidoPendente(Consulta& consulta);
  void BuscaCompraPendente(Consulta& consulta);
  void BuscaOrcamentoPagar(Consulta& consulta);
  void GeraPercentualFaturamento(Consulta& consulta);
  void LimiteDescontoBancario(Consulta& consulta);

  // An order or a purchase that is to be parted into its instalments.
  struct Pendente {
    Tipo tipo;
    Value numero, nome, empresa;
    std::string condicao;
    Currency valor;
    Date base;
    int parcelas = 0, atraso = 0;
    double cotacao = 0;
  };
  // Raises ConversionError for a slot of the condition that is no number: nothing of it was added then.
  void Gera_Duplicatas(Consulta& consulta, const Pendente& pendente);
  struct Compra {
    Pendente pendente;
    std::string moeda;
    double valor;
  };
  std::vector<Compra> LeCompras(Consulta& consulta);

  // The steps of the revenue forecast. Past invoicing, and its parts company by company: by the days to the
  // due date, where it has one, and by the day of the month.
  struct Faturado {
    Currency total;
    std::map<std::pair<std::optional<int>, std::string>, Currency> por_prazo;
    std::map<std::pair<int, std::string>, Currency> por_dia;
  };
  struct Orcamento {
    int mes, ano;
    Currency valor;
  };
  std::string FiltroBase() const;
  Faturado LeFaturado();
  void DistribuiPorPrazo(const Faturado& faturado);
  // The shares of the days of the month.
  const Classe& DistribuiPorDia(const Faturado& faturado);
  std::vector<Orcamento> LeOrcamentos();
  void PreveEmissoes(const std::vector<Orcamento>& orcamentos, const Classe& percentuais);
  void PreveRecebimentos(Consulta& consulta);

  // --- What the steps have in common.
  std::string SelectReceber(const std::string& data, const std::string& onde) const;
  std::string SelectPagar(const std::string& onde) const;
  std::string NoPeriodo(const std::string& data) const {
    return WhereBetween(data, DtIni.Date(), DtFin.Date());
  }
  const char* DataReceber() const {
    return CbDataPrev.Checked() ? "RECEBER.DT_PREVISAO" : "RECEBER.DT_VENCTO";
  }
  void Percorre(Consulta& consulta, const char* passo, const std::string& sql, bool todas,
                const std::function<void(std::span<Value>)>& linha, std::string_view ordem = "");
  void PercorreTitulos(Consulta& consulta, const char* passo, const std::string& sql, Tipo tipo,
                       const std::function<void(Lido&)>& lido);
  // The row of a class, made by `nova` where it isn't there yet.
  std::size_t Linha(Lado lado, const std::string& classe, const std::function<void(Classe&)>& nova);
  // Adds what counts in a column to a row.
  void SomaNaClasse(Lado lado, std::size_t linha, std::size_t coluna, Date dia, Parte parte);
  // Adding to a class: what has a column goes to its row, what has none is told.
  void AdicionaClasse(Lado lado, Lido& lido, std::size_t coluna, Date dia, Currency vencidas);
  void SemColuna(Lado lado, Currency valor) { (lado == kRecebe ? fora_receber_ : fora_pagar_) += valor; }

  // --- What the gathering shows.
  void PassaClasses(Lado lado, TClientDataSet& set);
  void MostraColunas();
  void MostraFora(const Consulta& consulta);
  void CalculaSaldos();
  void MostraMenor(Currency saldo);
  // The heading of a column as a narrow place takes it, "" of none.
  std::string Cabecalho(int64_t coluna) const;

  // --- From a figure to where it comes from.
  void AbreClasse(Lado lado, const TOrvDBGrid& grade, TClientDataSet& set);
  void AbreVencidas(Lado lado, const Classe& classe);
  // Titles to receive that meet a condition, summed by a day of theirs.
  void AbrePorDia(const std::string& titulo, const std::string& dia, const std::string& onde, bool todas);
  // Titles one by one; `sql` reads them as SelectReceber does.
  void AbreTitulos(const std::string& titulo, const std::string& sql, bool todas);
  void DBGrid2DblClick();
  void DBGrid4DblClick();
  void GridPrevDblClick();
  void GridTotaisDblClick();
  void OrvDBGrid1DblClick();

  // Balances are gathered, not typed.
  bool montando_ = false;
  Colunas colunas_;
  std::array<Quadro, 2> quadros_;
  std::vector<Parte> partes_;
  // Bordereaux of receivables by number, programs of payments by number without leading zeros.
  std::unordered_map<std::string, Bordero> borderos_;
  std::unordered_map<int64_t, std::string> programas_;
  // What has no column.
  Currency fora_receber_, fora_pagar_;
  std::vector<std::string> avisos_;
  SharedTexts nomes_;
  // The money of the columns by day, in all and of each account.
  std::map<Date, Currency> dias_;
  std::map<std::string, std::map<Date, Currency>, std::less<>> por_conta_;
};

extern ORV_EXPORT thread_local TfmRelPrevFluxo* fmRelPrevFluxo;

}  // namespace orv
