// Asks how an amount is shared among cost centres, where the rules of its class don't say it all.
#pragma once

#include <vector>

#include "frame/screen.h"
#include "host/services/apportion.h"
#include "toolkit/client_dataset.h"

namespace orv {

class TfmRateio : public Dialog {
 public:
  explicit TfmRateio(Application& application);

  // Before it is shown: what the rules propose, and the amount to share.
  void Prepare(const std::vector<Share>& proposal, Currency total);
  // After it was closed: true when the user confirmed, and the shares, which add up to the amount.
  bool Confirmed() const { return confirmed_; }
  const std::vector<Share>& Shares() const { return shares_; }

  MoneyEdit EdtTotal{*this, "EdtTotal", "Valor"};
  MoneyEdit EdtDiferenca{*this, "EdtDiferenca", "Diferença"};

  struct RateioSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Codigo{*this, "Codigo", FieldType::String, 4};
    Field CentroCusto{*this, "CentroCusto", FieldType::String, 50};
    Field Perc{*this, "Perc", FieldType::Float};
    Field Valor{*this, "Valor", FieldType::Currency};
    // The account of the rule that proposed the row.
    Field Conta{*this, "Conta", FieldType::String, 12};
  } TbRateio{"TbRateio"};

  TOrvDBGrid DbgRateio{*this,
                       "DbgRateio",
                       TbRateio,
                       {{"Codigo", "Código"},
                        {"CentroCusto", "Centro de Custo", 0, true},
                        {.field = "Perc", .title = "Percentual", .decimals = 4},
                        {"Valor", "Valor"}},
                       false};
  TPesquisa PqCCusto{*this, "PqCCusto", CentrosDeCusto()};

  Button BitBtn1{*this, "BitBtn1", "&Confirmar"};
  Button BitBtn2{*this, "BitBtn2", "C&ancelar"};

 private:
  void BitBtn1Click();
  void CodigoChange();
  void PercChange();
  void ValorChange();
  void PqCCustoFechaPesquisa();
  void MostraDiferenca();
  // The rows as they stand, without blank ones.
  std::vector<Share> Linhas();

  Currency total_;
  std::vector<Share> shares_;
  bool confirmed_ = false;
  // A percentage is setting its amount, or the other way round.
  bool following_ = false;
};

}  // namespace orv
