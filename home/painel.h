// The desk's home: how the company stands today, each figure with the way to the screen that it comes from.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"
#include "rules/saldo.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TfmPainel : public ReportScreen {
 public:
  explicit TfmPainel(Application& application);

  // --- What the accounts of the cash flow have, and what they are expected to have.
  static constexpr auto kPosicao = std::to_array<ReportField>({
      {"Figura", FieldType::String, 40, {"Todas as contas", 26}},
      {"Valor", FieldType::Currency, 0, {"Valor", 15}},
      {"Dia", FieldType::Date, 0, {"Em"}},
  });
  TClientDataSet TbPosicao{"TbPosicao"};
  // A row a day. The balance as it was, up to today; from today on as it is expected.
  static constexpr auto kLinha = std::to_array<ReportField>({
      {"Dia", FieldType::Date},
      {"Saldo", FieldType::Currency},
      {"Previsto", FieldType::Currency},
  });
  TClientDataSet TbLinha{"TbLinha"};
  // Titles by when they fall due.
  static constexpr auto kPrazos = std::to_array<ReportField>({
      {"Prazo", FieldType::String, 40, {"Vencimento", 13}},
      {"QtdReceber", FieldType::String, 6, {"Qtde.", 5}},
      {"Receber", FieldType::Currency, 0, {"A receber", 13}},
      {"QtdPagar", FieldType::String, 6, {"Qtde.", 5}},
      {"Pagar", FieldType::Currency, 0, {"A pagar", 13}},
      {"De", FieldType::Date},
      {"Ate", FieldType::Date},
  });
  TClientDataSet TbPrazos{"TbPrazos"};
  static constexpr auto kSaldos = std::to_array<ReportField>({
      {"Conta", FieldType::String, 13, {"Conta", 12}},
      {"Descricao", FieldType::String, 50, {"Descrição", 22}},
      {"Saldo", FieldType::Currency, 0, {"Saldo", 15}},
  });
  TClientDataSet TbSaldos{"TbSaldos"};
  // Lines of the banks' statements that wait to be reconciled.
  static constexpr auto kLinhas = std::to_array<ReportField>({
      {"Conta", FieldType::String, 13, {"Conta", 12}},
      {"Descricao", FieldType::String, 50, {"Descrição", 20}},
      {"Linhas", FieldType::Integer, 0, {"A conciliar", 11}},
      {"Desde", FieldType::Date, 0, {"Desde"}},
      {"Ate", FieldType::Date},
  });
  TClientDataSet TbLinhas{"TbLinhas"};
  // Pending cheques by the days for which they are good.
  static constexpr auto kCheques = std::to_array<ReportField>({
      {"Prazo", FieldType::String, 40, {"Bons para", 13}},
      {"QtdRecebidos", FieldType::String, 6, {"Qtde.", 5}},
      {"Recebidos", FieldType::Currency, 0, {"Recebidos", 13}},
      {"QtdEmitidos", FieldType::String, 6, {"Qtde.", 5}},
      {"Emitidos", FieldType::Currency, 0, {"Emitidos", 13}},
      {"De", FieldType::Date},
      {"Ate", FieldType::Date},
  });
  TClientDataSet TbCheques{"TbCheques"};

  Aviso LbVazio{*this, "LbVazio"};
  Chart Grafico{*this,   "Grafico", "Saldo dos últimos 30 dias e o previsto para os próximos 30",
                TbLinha, "Dia",     {{"Saldo", "Saldo", true}, {"Previsto", "Previsto", true}},
                kPontos};
  Panel PnPrazos{*this, "PnPrazos"};
  TOrvDBGrid GridPosicao;
  TOrvDBGrid GridPrazos;
  TOrvDBGrid GridCheques;
  Panel PnContas{*this, "PnContas"};
  TOrvDBGrid GridSaldos;
  TOrvDBGrid GridLinhas;
  Button BtAtualiza{*this, "BtAtualiza", "A&tualizar"};

  // The figures anew: those of other screens may have changed.
  void Returned() override { Le(); }

 private:
  static constexpr int kDias = 30, kPontos = 2 * kDias + 1, kSemana = 7;

  // The days of issue that the cheques' report lets in.
  static const Periodo kEmissao;

  using PorDia = std::map<Date, Currency>;
  // Open titles of one side, by the day on which they fall due: how many and how much.
  using Abertos = std::map<Date, std::pair<int64_t, Currency>>;

  void Le();
  // --- Each part reads what its grids show.
  void LeSaldosDasContas();
  void LeFluxo();
  void LeLinhas();
  void LeCheques();

  Currency SaldoDeHoje() const;
  // What each of the latest days added to the balance.
  PorDia MovimentoPorDia() const;
  Abertos LeAbertos(const std::string& sql) const;
  void MostraPrazos(const Abertos& receber, const Abertos& pagar);
  void MostraPosicao(const Abertos& receber, const Abertos& pagar);

  // --- From a figure to the screen that it comes from.
  void AbreAnalise(Date de, Date ate, const char* periodo);
  void AbreConta();
  void AbreConciliacao();
  void AbreCheques();

  // What the accounts have, read once for the parts that show it.
  std::vector<SaldoConta> saldos_;
};

extern ORV_EXPORT thread_local TfmPainel* fmPainel;

}  // namespace orv
