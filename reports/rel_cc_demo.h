// Demonstrative of the coming days: receivables and payables by horizons of days, with orders and purchases
// in their instalments; and, on request, the billing of a year, the orders by month and the use of the banks'
// limits.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"

namespace orv {

class ORV_EXPORT TfmRelCCDemo : public ReportScreen {
 public:
  explicit TfmRelCCDemo(Application& application);

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período de Vencimento"};
  DateEdit DtIni{*this, "DtIni", "De"};
  DateEdit DtFin{*this, "DtFin", "Até"};
  Edit EdtDias{*this, "EdtDias", "Interv. Dias"};
  CheckBox CbEmp{*this, "CbEmp", "Todas Empresas"};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Incluir"};
  CheckBox CbComVen{*this, "CbComVen", "Compras/Vendas"};
  CheckBox CbAnual{*this, "CbAnual", "Faturamento Anual"};
  CheckBox CbPed{*this, "CbPed", "Pedidos Pendentes"};
  CheckBox CbLim{*this, "CbLim", "Limite Bancário"};
  GroupBox GbAno{*this, "GbAno", "Faturamento"};
  Edit EdtAno{*this, "EdtAno", "Ano", 4};
  GroupBox GbReceber{*this, "GbReceber", "Títulos a receber"};
  Edit EdtSitDup{*this, "EdtSitDup", "Sit. Receber"};
  TPesquisa PqSitDup{*this, "PqSitDup", Situacoes()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  GroupBox GbLimites{*this, "GbLimites", "Limites dos bancos"};
  Edit EdtSit{*this, "EdtSit", "Sit. Descontada"};
  TPesquisa PqSituacao{*this, "PqSituacao", Situacoes()};
  SmallButton SpeedButton{*this, "SpeedButton", "Limpar"};
  Button BitBtn29{*this, "BitBtn29", "&Confirmar"};

  // Laid down anew by each gathering. The sets and their fields are what the report reads by name.
  static constexpr auto kRelPer = std::to_array<ReportField>({
      {"Sel", FieldType::String, 1},
      // Wide enough for any number of days.
      {"Grupo_Dias", FieldType::String, 30, {"Vencimento", 20}},
      {"Data", FieldType::DateTime},
      {"Vlr_receb", FieldType::Currency, 0, {"A Receber", 18}},
      {"Vlr_pagar", FieldType::Currency, 0, {"A Pagar", 18}},
      {"Vlr_Compra", FieldType::Currency, 0, {"Compras", 18}},
      {"Vlr_Venda", FieldType::Currency, 0, {"Vendas", 18}},
      {"Vlr_Ped", FieldType::Currency, 0, {"Pedidos", 18}},
  });
  TClientDataSet TbRelPer{"TbRelPer"};
  static constexpr auto kBanco = std::to_array<ReportField>({
      {"Banco", FieldType::String, 3, {"Banco", 6}},
      {"Nome", FieldType::String, 30, {"Nome", 30}},
      {"Limite", FieldType::Float, 0, {"Limite", 16}},
      {"Valor", FieldType::Float, 0, {"Em Uso", 16}},
  });
  TClientDataSet TbBanco{"TbBanco"};
  static constexpr auto kAnual = std::to_array<ReportField>({
      {"Mes", FieldType::String, 2},
      {"DescMes", FieldType::String, 20, {"Mês", 20}},
      {"Valor", FieldType::Float, 0, {"Faturado", 18}},
      {"Val_Dev", FieldType::Float, 0, {"Devolvido", 18}},
  });
  TClientDataSet tbAnual{"tbAnual"};
  static constexpr auto kPed = std::to_array<ReportField>({
      {"Mes", FieldType::String, 2},
      {"Ano", FieldType::String, 4, {"Ano", 6}},
      {"Valor", FieldType::Float, 0, {"Valor", 18, 1}},
      {"DescMes", FieldType::String, 15, {"Mês", 15}},
  });
  TClientDataSet TbPed{"TbPed"};

  PageControl PageControl1{*this, "PageControl1"};
  TabSheet TsVencimentos{*this, "TsVencimentos", "Vencimentos"};
  TOrvDBGrid DBGrid1;
  TabSheet TsGrafico{*this, "TsGrafico", "Gráfico"};
  Chart ChVencimentos;
  TabSheet TsFaturamento{*this, "TsFaturamento", "Faturamento Anual"};
  Chart ChAnual;
  TOrvDBGrid DBGrid2;
  TabSheet TsPedidos{*this, "TsPedidos", "Pedidos e Limites"};
  TOrvDBGrid DBGrid3;
  TOrvDBGrid DBGrid4;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  // The days of a row, on which titles are due and on which orders count.
  struct Faixa {
    Periodo titulos, encomendas;
  };
  // Amounts by day.
  class PorDia {
   public:
    void Junta(Date dia, Currency valor) { dias_[dia] += valor; }
    Currency Entre(const Periodo& dias) const;

   private:
    std::map<Date, Currency> dias_;
  };
  // An order or a purchase, whose instalments are counted from the base date.
  struct Encomenda {
    Value numero, pessoa;
    Date base;
    std::string condicao;
    int vagas;
    Currency valor;
  };
  enum class Qual : uint8_t { Compra, Venda, Pedido };
  // What the latest gathering asked for, as its drill-downs need it.
  struct Consulta {
    Periodo periodo;
    std::vector<std::string> dias;
    Periodo ano;
    std::string receber, limites;  // conditions on the situation, each with its leading AND
    bool compras_vendas = false, empresas = false;
  };

  void BitBtn29Click();
  void Monta(Gathering& andamento);
  Consulta LeFiltros() const;
  void CriaTabelas();
  std::vector<std::string> PreencheListaDias() const;
  void GeraExtratoFluxo(Gathering& andamento);
  void FaturamentoAnual();
  void PedidosPendentes();
  void LimiteBancario();

  std::string PorEmpresa(const std::string& sql, const char* tabela) const;
  // Conditions on the titles of these days.
  std::string Receber(const Periodo& dias) const;
  std::string Pagar(const Periodo& dias) const;
  PorDia Titulos(const std::string& sql, const char* tabela) const;
  // Hands on the orders whose instalments, or who themselves, may fall on these days.
  void Encomendas(Qual qual, const Periodo& dias, bool com_nomes,
                  const std::function<void(const Encomenda&)>& cada) const;
  // Hands on each day with its part of the order, and the part's number.
  static void Parcelas(Qual qual, const Encomenda& encomenda,
                       const std::function<void(Date dia, int numero, Currency valor)>& cada);

  // --- From a figure to where it comes from (rel_cc_demo_detail.cpp).
  void DBGrid1DblClick();
  void DBGrid2DblClick();
  void DBGrid3DblClick();
  void DBGrid4DblClick();
  void MostraEncomendas(const std::string& titulo, Qual qual, const Periodo& dias);

  Consulta consulta_;
  std::vector<Faixa> faixas_;             // by row of TbRelPer
  std::vector<Periodo> anual_, pedidos_;  // by row of tbAnual and of TbPed
};

extern ORV_EXPORT thread_local TfmRelCCDemo* fmRelCCDemo;

}  // namespace orv
