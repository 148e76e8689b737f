// Figures of a year month by month: what was billed, received, fell due and stays open, orders, payments,
// average terms; billing by term and by week of the month; what is open and paid by group.
#pragma once

#include <array>
#include <string>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"

namespace orv {

class ORV_EXPORT TFmRelCCMes : public ReportScreen {
 public:
  explicit TFmRelCCMes(Application& application);

  Edit EdtAno{*this, "EdtAno", "Ano", 4};
  GroupBox GbEmissao{*this, "GbEmissao", "Período de Emissão/Faturamento"};
  DateEdit EdtEmiIni{*this, "EdtEmiIni", "De"};
  DateEdit EdtEmiFim{*this, "EdtEmiFim", "Até"};
  GroupBox GbRecebimento{*this, "GbRecebimento", "Período de Recebimento"};
  DateEdit EdtRecIni{*this, "EdtRecIni", "De"};
  DateEdit EdtRecFim{*this, "EdtRecFim", "Até"};
  GroupBox GbVencimento{*this, "GbVencimento", "Período de Vencimento"};
  DateEdit EdtVenIni{*this, "EdtVenIni", "De"};
  DateEdit EdtVenFim{*this, "EdtVenFim", "Até"};
  GroupBox GbBancos{*this, "GbBancos", "Bancos"};
  Edit EdtBanco{*this, "EdtBanco", "Banco"};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  GroupBox GbClientes{*this, "GbClientes", "Clientes"};
  ComboBox CbClientes{*this, "CbClientes", "Como", {"Desconsiderar Clientes", "Considerar Clientes"}, 0};
  Edit EdtCliente{*this, "EdtCliente", "Códigos"};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Limpar"};
  GroupBox GbClasses{*this, "GbClasses", "Classes a pagar"};
  ComboBox CbClassePag{*this, "CbClassePag", "Como", {"Desconsiderar Classes", "Considerar Classes"}, 0};
  Edit EdtClasse{*this, "EdtClasse", "Códigos"};
  TPesquisa PqClasse{*this, "PqClasse", Classes()};
  SmallButton SpeedButton3{*this, "SpeedButton3", "Limpar"};
  Button BtnExecutaSQL{*this, "BtnExecutaSQL", "Confirmar"};

  // Laid down anew by each gathering. The sets and their fields are what the report reads by name.
#define ORV_MESES(campo)                                                                           \
  {campo "1", FieldType::Float}, {campo "2", FieldType::Float}, {campo "3", FieldType::Float},     \
      {campo "4", FieldType::Float}, {campo "5", FieldType::Float}, {campo "6", FieldType::Float}, \
      {campo "7", FieldType::Float}, {campo "8", FieldType::Float}, {campo "9", FieldType::Float}, \
      {campo "10", FieldType::Float}, {campo "11", FieldType::Float}, {                            \
    campo "12", FieldType::Float                                                                   \
  }
  static constexpr auto kRel = std::to_array<ReportField>({
      {"Ano", FieldType::String, 4, {"Ano", 6}},
      {"EmiPer", FieldType::Float, 0, {"Emitido no Período", 20}},
      {"RecPer", FieldType::Float, 0, {"Recebido no Período", 20}},
      {"VenPer", FieldType::Float, 0, {"A Vencer no Período", 20}},
      {"PrazoMedFat", FieldType::Integer, 0, {"Prazo Médio Faturamento", 24}},
      {"PrazoMedCom", FieldType::Integer, 0, {"Prazo Médio Compras", 24}},
      {"PrazoMedFatAno", FieldType::Integer},
      {"PrazoMedComAno", FieldType::Integer},
      ORV_MESES("EmiMes"),
      ORV_MESES("RecMes"),
      ORV_MESES("PenMes"),
      ORV_MESES("VenMes"),
      ORV_MESES("PedMes"),
      ORV_MESES("PagMes"),
      ORV_MESES("PagPenMes"),
      ORV_MESES("PrazoMedCMes"),
      ORV_MESES("PrazoMedVMes"),
  });
  TClientDataSet TbRel{"TbRel"};
  static constexpr auto kGrupo = std::to_array<ReportField>({
      {"Codigo", FieldType::String, 6},
      {"Descricao", FieldType::String, 50},
      {"Tipo", FieldType::String, 3},
      ORV_MESES("PagMes"),
      ORV_MESES("PenMes"),
  });
#undef ORV_MESES
  TClientDataSet TbGrupo{"TbGrupo"};
  static constexpr auto kVencto = std::to_array<ReportField>({
      {"Val_00Dia", FieldType::Float, 0, {"A Vista", 16}},
      {"Val_15Dia", FieldType::Float, 0, {"15 Dias", 16}},
      {"Val_30Dia", FieldType::Float, 0, {"30 Dias", 16}},
      {"Val_45Dia", FieldType::Float, 0, {"45 Dias", 16}},
      {"Val_60Dia", FieldType::Float, 0, {"60 Dias", 16}},
      {"Val_75Dia", FieldType::Float, 0, {"75 Dias", 16}},
      {"Val_90Dia", FieldType::Float, 0, {"90 Dias", 16}},
      {"Val_Maior", FieldType::Float, 0, {"Mais de 90 Dias", 18}},
  });
  TClientDataSet TbVencto{"TbVencto"};
  static constexpr auto kEmi = std::to_array<ReportField>({
      {"Val_1Sem", FieldType::Float, 0, {"1ª Semana", 18}},
      {"Val_2Sem", FieldType::Float, 0, {"2ª Semana", 18}},
      {"Val_3Sem", FieldType::Float, 0, {"3ª Semana", 18}},
      {"Val_4Sem", FieldType::Float, 0, {"4ª Semana", 18}},
      {"Val_5Sem", FieldType::Float, 0, {"5ª Semana", 18}},
  });
  TClientDataSet TbEmi{"TbEmi"};
  // For the eye: the months of TbRel a row each, and the groups with the one amount that their kind has.
  static constexpr auto kPorMes = std::to_array<ReportField>({
      {"Mes", FieldType::String, 10, {"Mês", 11}},
      {"Faturado", FieldType::Float, 0, {"Faturado", 14}},
      {"Recebido", FieldType::Float, 0, {"Recebido", 14}},
      {"Pendentes", FieldType::Float, 0, {"Pendentes", 14}},
      {"Vencido", FieldType::Float, 0, {"Vencido", 14}},
      {"Pedidos", FieldType::Float, 0, {"Pedidos", 14}},
      {"Pagos", FieldType::Float, 0, {"Pagos", 14}},
      {"APagar", FieldType::Float, 0, {"A Pagar", 14}},
      {"PrazoCompras", FieldType::Float, 0, {"Prazo Compras", 12}},
      {"PrazoFat", FieldType::Float, 0, {"Prazo Fat.", 12}},
  });
  TClientDataSet TbMeses{"TbMeses"};
  static constexpr auto kPorGrupo = std::to_array<ReportField>({
      {"Tipo", FieldType::String, 3, {"Tipo", 9}},
      {"Codigo", FieldType::String, 6, {"Código", 8}},
      {"Descricao", FieldType::String, 50, {"Descrição", 24}},
      {"Mes1", FieldType::Float, 0, {"Janeiro", 11}},
      {"Mes2", FieldType::Float, 0, {"Fevereiro", 11}},
      {"Mes3", FieldType::Float, 0, {"Março", 11}},
      {"Mes4", FieldType::Float, 0, {"Abril", 11}},
      {"Mes5", FieldType::Float, 0, {"Maio", 11}},
      {"Mes6", FieldType::Float, 0, {"Junho", 11}},
      {"Mes7", FieldType::Float, 0, {"Julho", 11}},
      {"Mes8", FieldType::Float, 0, {"Agosto", 11}},
      {"Mes9", FieldType::Float, 0, {"Setembro", 11}},
      {"Mes10", FieldType::Float, 0, {"Outubro", 11}},
      {"Mes11", FieldType::Float, 0, {"Novembro", 11}},
      {"Mes12", FieldType::Float, 0, {"Dezembro", 11}},
      {"Total", FieldType::Float, 0, {"Total", 14}},
  });
  TClientDataSet TbGrupos{"TbGrupos"};

  PageControl PageControl1{*this, "PageControl1"};
  TabSheet TsMeses{*this, "TsMeses", "Meses"};
  TOrvDBGrid DBGrid1;
  TabSheet TsGrafico{*this, "TsGrafico", "Gráfico"};
  Chart ChMeses;
  TabSheet TsGrupos{*this, "TsGrupos", "Grupos"};
  TOrvDBGrid DBGrid2;
  TabSheet TsPeriodo{*this, "TsPeriodo", "Período"};
  TOrvDBGrid DBGrid3;
  TOrvDBGrid DBGrid4;
  TOrvDBGrid DBGrid5;
  Button BtnImprimir{*this, "BtnImprimir", "Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "Fechar"};

 private:
  // The series of TbRel, in the order of its fields.
  enum Serie : uint8_t { Emi, Rec, Pen, Ven, Ped, Pag, PagPen, PrazoC, PrazoV, kSeries };
  // What the latest gathering asked for: periods, and conditions on receivables (R) and payables (P), each
  // with its leading AND.
  struct Consulta {
    Periodo ano, emissao, recebimento, vencimento;
    std::string bancos, clientes, classes;
  };
  // An average of days, each weighted by its amount.
  struct Prazo {
    Currency valor, pesado;
    void Junta(Currency quanto, int dias);
    double Medio() const;
  };
  struct Contas;

  void BtnExecutaSQLClick();
  void CriaTabela();
  Consulta LeFiltros() const;
  // Each reads its table once, whatever asks for its rows.
  void LeReceber(Contas& contas, Gathering& andamento);
  void LePagar(Contas& contas, Gathering& andamento);
  void LeRecebimentos(Contas& contas, Gathering& andamento);
  void LePagamentos(Contas& contas, Gathering& andamento);
  void LePedidos(Contas& contas);
  // 1 where a receivable is of the banks asked for, else 0: they narrow some of the figures only.
  std::string DoBanco() const;
  void GeraRelatorioMes(const Contas& contas);
  void GeraRelatorioVenctoQuinzena(const Contas& contas);
  void GeraRelatorioEmisssaoSemana(const Contas& contas);
  void GeraValoresGrupo(const Contas& contas);

  // --- From a figure to where it comes from (rel_cc_mes_detail.cpp).
  void DBGrid1DblClick();
  void DBGrid2DblClick();
  void DBGrid3DblClick();
  void DBGrid4DblClick();
  void DBGrid5DblClick();
  void Mostra(const std::string& titulo, const std::string& sql);
  // Conditions of what counts, and of what was billed in the period of emission.
  std::string Titulos() const { return "STATUS = 'N'" + consulta_.clientes; }
  std::string Faturados() const;
  // Settlements of what counts and meets more, on these days.
  std::string Recebimentos(const Periodo& dias, const std::string& mais) const;
  std::string Pagamentos(const Periodo& mes, const std::string& mais = "") const;

  Consulta consulta_;
};

extern ORV_EXPORT thread_local TFmRelCCMes* FmRelCCMes;

}  // namespace orv
