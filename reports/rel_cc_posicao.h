// Position of a customer or supplier: what was issued and what was settled on each day of a period, of
// receivables and of payables, from the position at its start; and the position day by day.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TFmRelCCPosicao : public ReportScreen {
 public:
  explicit TFmRelCCPosicao(Application& application);

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período"};
  DateEdit EdtDataIni{*this, "EdtDataIni", "De"};
  DateEdit EdtDataFim{*this, "EdtDataFim", "Até"};
  Edit EdtCodCli{*this, "EdtCodCli", "Cliente", 5};
  TPesquisa PqCliente{*this, "PqCliente", Entidades()};
  ReadOnlyEdit EdtNomeCli{*this, "EdtNomeCli"};
  CheckBox CbReceber{*this, "CbReceber", "Receber", true};
  CheckBox CbPagar{*this, "CbPagar", "Pagar", true};
  GroupBox GbFiltros{*this, "GbFiltros", "Títulos"};
  Edit EdtCodClasse{*this, "EdtCodClasse", "Classe", 6};
  TPesquisa PqClasse{*this, "PqClasse", Classes()};
  ReadOnlyEdit EdtDescClasse{*this, "EdtDescClasse"};
  ComboBox CbSituacao{*this, "CbSituacao", "Estas situações", {"Considerar", "Desconsiderar"}, 0};
  Edit EdtSituacao{*this, "EdtSituacao", "Situação"};
  TPesquisa PqSituacao{*this, "PqSituacao", Situacoes()};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Limpar"};
  CheckBox CbEmpresa{*this, "CbEmpresa", "Todas Empresas"};
  Button BtnExecutaSQL{*this, "BtnExecutaSQL", "Confirmar"};

  // The days of each side's titles. The sets and their fields are what the report reads by name; only
  // payables have a duplicate.
  static constexpr auto kReceber = std::to_array<ReportField>({
      {"Docto", FieldType::String, 15, {"Fatura", 10, 3}},
      {"Numero", FieldType::String, 12, {"Número", 0, 2}},
      {"Codcli", FieldType::String, 5, {"Código", 0, 4}},
      {"Nome", FieldType::String, 50, {"Cliente", 30, 5}},
      {"Dt_Vencto", FieldType::Date, 0, {"Vencimento", 0, 6}},
      {"Dt_Movto", FieldType::Date, 0, {"Dia", 0, 1}},
      {"Val_Emi", FieldType::Float, 0, {"Emitido", 14, 7}},
      {"Val_Pag", FieldType::Float, 0, {"Recebido", 14, 8}},
      {"Juros", FieldType::Float, 0, {"Juros", 12, 9}},
      {"Desconto", FieldType::Float, 0, {"Desconto", 12, 10}},
      {"Val_Dev", FieldType::Float, 0, {"Devolvido", 12, 11}},
      {"Saldo_Ini", FieldType::Float, 0, {"Posição Inicial", 16, 12}},
  });
  static constexpr auto kPagar = std::to_array<ReportField>({
      {"Docto", FieldType::String, 15, {"Documento", 10, 4}},
      {"Numero", FieldType::String, 12, {"Número", 0, 2}},
      {"Dupli", FieldType::String, 12, {"Duplicata", 0, 3}},
      {"Codcli", FieldType::String, 5, {"Código", 0, 5}},
      {"Nome", FieldType::String, 50, {"Fornecedor", 30, 6}},
      {"Dt_Vencto", FieldType::Date, 0, {"Vencimento", 0, 7}},
      {"Dt_Movto", FieldType::Date, 0, {"Dia", 0, 1}},
      {"Val_Emi", FieldType::Float, 0, {"Emitido", 14, 8}},
      {"Val_Pag", FieldType::Float, 0, {"Pago", 14, 9}},
      {"Juros", FieldType::Float, 0, {"Juros", 12, 10}},
      {"Desconto", FieldType::Float, 0, {"Desconto", 12, 11}},
      {"Val_Dev", FieldType::Float, 0, {"Devolvido", 12, 12}},
      {"Saldo_Ini", FieldType::Float, 0, {"Posição Inicial", 16, 13}},
  });
  TClientDataSet TbReceber{"TbReceber"};
  TClientDataSet TbPagar{"TbPagar"};

  // The position at the end of each day, or month of a long period, that moved it: what was issued, and what
  // was settled without interest.
  static constexpr auto kPosicao = std::to_array<ReportField>({
      {"Periodo", FieldType::String, 8, {"Fim de", 8, 1}},
      {"De", FieldType::Date},
      {"Ate", FieldType::Date},
      {"Emi_Receber", FieldType::Currency, 0, {"Emitido a Receber", 14, 4}},
      {"Bai_Receber", FieldType::Currency, 0, {"Baixado a Receber", 14, 5}},
      {"Receber", FieldType::Currency, 0, {"A Receber", 14, 2}},
      {"Emi_Pagar", FieldType::Currency, 0, {"Emitido a Pagar", 14, 6}},
      {"Bai_Pagar", FieldType::Currency, 0, {"Baixado a Pagar", 14, 7}},
      {"Pagar", FieldType::Currency, 0, {"A Pagar", 14, 3}},
  });
  TClientDataSet TbPosicao{"TbPosicao"};

  PageControl PageControl1{*this, "PageControl1", 0};
  TabSheet TsPosicao{*this, "TsPosicao", "Posição"};
  Chart Grafico;
  TOrvDBGrid DBGrid3;
  TabSheet TsReceber{*this, "TsReceber", "A Receber"};
  TOrvDBGrid DBGrid1;
  TabSheet TsPagar{*this, "TsPagar", "A Pagar"};
  TOrvDBGrid DBGrid2;
  Button BtnImprimir{*this, "BtnImprimir", "Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "Fechar"};

 private:
  // How a side's titles and their settlements say what is asked of both.
  struct Lado;
  static const Lado kLadoReceber, kLadoPagar;

  // A side as the latest gathering found it.
  struct Movimento {
    Currency emitido, baixado;
  };
  struct Posicao {
    bool pedida = false;
    Currency inicial;
    std::map<Date, Movimento> dias;
  };
  // What was asked for by the latest gathering.
  struct Consulta {
    Periodo periodo;
    bool todas = false;
    std::string cliente, classe;
    std::string situacao;  // a condition on titles with its leading AND
    std::string texto;     // in words
  };

  void BtnExecutaSQLClick();
  // --- The gathering (rel_cc_posicao_gather.cpp).
  void Monta(Gathering& gathering);
  Consulta LeFiltros() const;
  void BuscaReceber(Gathering& gathering);
  void BuscaPagar(Gathering& gathering);
  template <const auto& kFields>
  Posicao Busca(Gathering& gathering, const Lado& lado, TClientDataSet& conjunto);
  Currency ValorSaldo(const Lado& lado) const;
  // The lines of the position at the start, from FROM on: the day of issue, what is open now and what was
  // settled since, as DIA, ABERTO and BAIXADO.
  std::string LinhasDoSaldo(const Lado& lado) const;
  std::string Filtros(const Lado& lado) const;
  std::string PorEmpresa(std::string_view sql, const char* tabela, std::string_view ordem = "") const;
  void MontaPosicao();

  // --- From a figure to where it comes from.
  void MostraTitulo(const Lado& lado, const TOrvDBGrid& grade, TClientDataSet& conjunto);
  void MostraSaldo(const Lado& lado);
  void MostraDias();

  Consulta consulta_;
  Posicao receber_, pagar_;
  // Names that many rows bear.
  SharedTexts nomes_;
};

extern ORV_EXPORT thread_local TFmRelCCPosicao* FmRelCCPosicao;

}  // namespace orv
