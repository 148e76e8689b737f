// Monthly result: what came in and went out by management class and month, from the ledger as it happened or
// from the titles by one of their days, with the budget beside it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "results/resultado.h"
#include "rules/periodo.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TfmRelResultMes : public ReportScreen {
 public:
  explicit TfmRelResultMes(Application& application);

  GroupBox GbPeriodo{*this, "GbPeriodo", "Data Lançamento"};
  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  RadioGroup RgRegime{
      *this, "RgRegime", "Regime", {"Caixa", "Vencimento", "Emissão", "Competência", "Pagamento"}, 0};
  CheckBox CbOrca{*this, "CbOrca", "Orçamento"};
  GroupBox GbFiltros{*this, "GbFiltros", "Filtros"};
  Edit EdtClasse{*this, "EdtClasse", "Classe Gerencial", 20};
  TPesquisa PqClasse{
      *this, "PqClasse",
      ListOf("SUBGRUPO", "CONTA", {{"CONTA", "Conta"}, {"CODIGO", "Classe"}, {"DESCRICAO", "Descrição"}})};
  ReadOnlyEdit EdtDescClasse{*this, "EdtDescClasse"};
  ReadOnlyEdit edtConta{*this, "edtConta", "Conta Corrente"};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  RadioGroup RgData{*this, "RgData", "Considerar Data", {"Lançamento", "Contabilização"}, 0};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbTodasEmp{*this, "CbTodasEmp", "Todas Empresas"};
  CheckBox CbLoja{*this, "CbLoja", "Loja (Varejo)"};
  CheckBox CbDevol{*this, "CbDevol", "Devoluções"};
  CheckBox CbVar{*this, "CbVar", "Variações"};
  Button BitBtn29{*this, "BitBtn29", "&Consultar"};

  // In the grid each month has its budget beside it, and how far it is from the month before and from the
  // budget, in percent.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"Classe", FieldType::String, 20, {"Conta", 10, 1}},
      {"Codigo", FieldType::String, 6, {"Classe", 6, 2}},
      {"Descricao", FieldType::String, 50, {"Descrição", 30, 3}},
      {"Operacao", FieldType::String, 1, {"Op.", 0, 4}},
      {"TpConta", FieldType::String, 1, {"Tipo", 8, 5}},
      {"Data_ini", FieldType::String, 12},
      {"Data_fim", FieldType::String, 12},
      {"Nivel", FieldType::Integer},
      {"Opcao", FieldType::String, 5},
      {"Saldo", FieldType::Float, 0, {"Saldo Inicial", 14, 90}},
      {"Mes1", FieldType::Float, 0, {"Janeiro", 13, 10}},
      {"Mes2", FieldType::Float, 0, {"Fevereiro", 13, 14}},
      {"Mes3", FieldType::Float, 0, {"Março", 13, 18}},
      {"Mes4", FieldType::Float, 0, {"Abril", 13, 22}},
      {"Mes5", FieldType::Float, 0, {"Maio", 13, 26}},
      {"Mes6", FieldType::Float, 0, {"Junho", 13, 30}},
      {"Mes7", FieldType::Float, 0, {"Julho", 13, 34}},
      {"Mes8", FieldType::Float, 0, {"Agosto", 13, 38}},
      {"Mes9", FieldType::Float, 0, {"Setembro", 13, 42}},
      {"Mes10", FieldType::Float, 0, {"Outubro", 13, 46}},
      {"Mes11", FieldType::Float, 0, {"Novembro", 13, 50}},
      {"Mes12", FieldType::Float, 0, {"Dezembro", 13, 54}},
      {"Valor", FieldType::Currency, 0, {"Total", 14, 60}},
      {"Orc1", FieldType::Float, 0, {"Orç. Jan", 13, 11}},
      {"Orc2", FieldType::Float, 0, {"Orç. Fev", 13, 15}},
      {"Orc3", FieldType::Float, 0, {"Orç. Mar", 13, 19}},
      {"Orc4", FieldType::Float, 0, {"Orç. Abr", 13, 23}},
      {"Orc5", FieldType::Float, 0, {"Orç. Mai", 13, 27}},
      {"Orc6", FieldType::Float, 0, {"Orç. Jun", 13, 31}},
      {"Orc7", FieldType::Float, 0, {"Orç. Jul", 13, 35}},
      {"Orc8", FieldType::Float, 0, {"Orç. Ago", 13, 39}},
      {"Orc9", FieldType::Float, 0, {"Orç. Set", 13, 43}},
      {"Orc10", FieldType::Float, 0, {"Orç. Out", 13, 47}},
      {"Orc11", FieldType::Float, 0, {"Orç. Nov", 13, 51}},
      {"Orc12", FieldType::Float, 0, {"Orç. Dez", 13, 55}},
      {"ValorOrc", FieldType::Currency, 0, {"Orç. Total", 14, 61}},
      {"Meses", FieldType::Integer},
      {"Var1", FieldType::Float, 0, {"Var. Jan %", 10, 12}},
      {"Var2", FieldType::Float, 0, {"Var. Fev %", 10, 16}},
      {"Var3", FieldType::Float, 0, {"Var. Mar %", 10, 20}},
      {"Var4", FieldType::Float, 0, {"Var. Abr %", 10, 24}},
      {"Var5", FieldType::Float, 0, {"Var. Mai %", 10, 28}},
      {"Var6", FieldType::Float, 0, {"Var. Jun %", 10, 32}},
      {"Var7", FieldType::Float, 0, {"Var. Jul %", 10, 36}},
      {"Var8", FieldType::Float, 0, {"Var. Ago %", 10, 40}},
      {"Var9", FieldType::Float, 0, {"Var. Set %", 10, 44}},
      {"Var10", FieldType::Float, 0, {"Var. Out %", 10, 48}},
      {"Var11", FieldType::Float, 0, {"Var. Nov %", 10, 52}},
      {"Var12", FieldType::Float, 0, {"Var. Dez %", 10, 56}},
      {"VarOrc1", FieldType::Float, 0, {"Var. Orç. Jan %", 13, 13}},
      {"VarOrc2", FieldType::Float, 0, {"Var. Orç. Fev %", 13, 17}},
      {"VarOrc3", FieldType::Float, 0, {"Var. Orç. Mar %", 13, 21}},
      {"VarOrc4", FieldType::Float, 0, {"Var. Orç. Abr %", 13, 25}},
      {"VarOrc5", FieldType::Float, 0, {"Var. Orç. Mai %", 13, 29}},
      {"VarOrc6", FieldType::Float, 0, {"Var. Orç. Jun %", 13, 33}},
      {"VarOrc7", FieldType::Float, 0, {"Var. Orç. Jul %", 13, 37}},
      {"VarOrc8", FieldType::Float, 0, {"Var. Orç. Ago %", 13, 41}},
      {"VarOrc9", FieldType::Float, 0, {"Var. Orç. Set %", 13, 45}},
      {"VarOrc10", FieldType::Float, 0, {"Var. Orç. Out %", 13, 49}},
      {"VarOrc11", FieldType::Float, 0, {"Var. Orç. Nov %", 13, 53}},
      {"VarOrc12", FieldType::Float, 0, {"Var. Orç. Dez %", 13, 57}},
      {"VarOrcTotal", FieldType::Float, 0, {"Var. Orç. Total %", 13, 62}},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};
  // The picture: the months of the period, in their order.
  static constexpr auto kGrafico = std::to_array<ReportField>({
      {"Mes", FieldType::String, 10, {"Mês", 12}},
      {"Recebimentos", FieldType::Currency, 0, {"Recebimentos", 18}},
      {"Pagamentos", FieldType::Currency, 0, {"Pagamentos", 18}},
      {"Resultado", FieldType::Currency, 0, {"Resultado Líquido", 18}},
  });
  TClientDataSet TbGrafico{"TbGrafico"};

  PageControl PageControl1{*this, "PageControl1"};
  TabSheet TabSheet1{*this, "TabSheet1", "Resultado"};
  TOrvDBGrid DBGrid1;
  TabSheet TabSheet2{*this, "TabSheet2", "Gráfico"};
  Chart Grafico{*this,
                "Grafico",
                "Resultado por mês",
                TbGrafico,
                "Mes",
                {{"Recebimentos", "Recebimentos", false},
                 {"Pagamentos", "Pagamentos", false},
                 {"Resultado", "Resultado Líquido", true}},
                kMeses};
  TOrvDBGrid DBGrid2;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  PopupMenu PopupMenu1{*this, "PopupMenu1"};
  MenuItem Detalhamento1{*this, "Detalhamento1", "Detalhamento"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  enum class Regime : uint8_t { Caixa, Vencimento, Emissao, Competencia, Pagamento };
  using Linha = ReportRow<kRelatorio>;
  // Of the statements: the columns of the titles that a regime reads.
  struct Colunas {
    const char *dia_receber, *valor_receber, *dia_pagar, *valor_pagar;
  };
  // A gathering at work.
  struct Consulta {
    Gathering& andamento;
    Regime regime;
    Periodo periodo;
    Resultado resultado;
    // The place of the row to which an amount was added last.
    std::string ultima{};
  };
  // Where the rows of a statement go.
  struct Destino {
    Quadro quadro = Quadro::Realizado;
    // A class that is a title ends the gathering.
    bool recusa_titulo = true;
    // What comes back is taken out.
    bool devolucao = false;
  };

  Regime RegimeEscolhido() const { return static_cast<Regime>(std::max(RgRegime.ItemIndex(), 0)); }

  void RgRegimeClick();
  // The budget and the variations stand in the grid as they are asked for.
  void MostraColunas();
  void BitBtn29Click();
  void BitBtn33Click();
  void PopupMenu1Popup();
  std::string Filtros() const;

  // --- The gathering (rel_result_mes_gather.cpp).
  void CriaTabela();
  void Monta(Gathering& andamento);
  Currency BuscaSaldoContas();
  void BuscaDados(Consulta& consulta);
  void BuscaDadosFinan(Consulta& consulta);
  void BuscaDadosOrca(Consulta& consulta);
  void GeraContaTitulo(Consulta& consulta);
  void Preenche(const Consulta& consulta, Currency saldo);
  void PreencheGrafico(const Consulta& consulta);
  // Sums by class of what a statement reads from its FROM on, each with its class.
  std::string PorClasse(const char* classe, const char* operacao, const char* dia, const std::string& valor,
                        const std::string& de, const std::string& tipos) const;
  void Percorre(Consulta& consulta, const char* passo, const std::string& sql, const char* tabela,
                const Destino& destino);
  void Junta(Consulta& consulta, const ClasseResultado& classe, int mes, Currency valor,
             const Destino& destino);
  // " AND ", and the classes that are asked for.
  std::string FiltroClasse() const;
  std::string FiltroStatus(const char* tabela) const;

  // --- The cost of what was sold (rel_result_mes_cost.cpp).
  void BuscaCPV(Consulta& consulta);
  void BuscaCPVDevolucao(Consulta& consulta);
  // What left or came back at the shops' counters.
  void BuscaCPVLoja(Consulta& consulta, bool devolucao);

  // The titles behind the month in which the user stands.
  void BuscaDetalhamento();

  // The month of the column in which the user stands, 0 elsewhere.
  int MesEscolhido() const;
};

extern ORV_EXPORT thread_local TfmRelResultMes* fmRelResultMes;

}  // namespace orv
