#include "host/services/rateio_dialog.h"

#include <cmath>

#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {

TfmRateio::TfmRateio(Application& application)
    : Dialog(application, "TfmRateio", "fmRateio", "Rateio por Centro de Custo") {
  EdtTotal.SetReadOnly(true);
  EdtDiferenca.SetReadOnly(true);
  TbRateio.CreateDataSet();
  AddSet(TbRateio);

  TbRateio.Codigo.OnChange = [this] { CodigoChange(); };
  TbRateio.Perc.OnChange = [this] { PercChange(); };
  TbRateio.Valor.OnChange = [this] { ValorChange(); };
  TbRateio.AfterPost = [this] { MostraDiferenca(); };
  TbRateio.AfterDelete = [this] { MostraDiferenca(); };
  PqCCusto.OnFechaPesquisa = [this] { PqCCustoFechaPesquisa(); };
  DbgRateio.OnKey = [this](KeyPress& key) {
    if (key.key != "F4" || !SameText(key.column, "Codigo")) return;
    key.handled = true;
    PqCCusto.AbrePesquisa();
  };
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { Close(); };

  Layout("EdtTotal EdtDiferenca / DbgRateio / PqCCusto / BitBtn1 BitBtn2");
}

void TfmRateio::Prepare(const std::vector<Share>& proposal, Currency total) {
  total_ = total;
  EdtTotal.SetAmount(total);
  for (const Share& share : proposal) {
    TbRateio.Append();
    TbRateio.Conta = Value(share.account);
    TbRateio.Codigo = Value(share.centre);
    {
      const ScopedValue following(following_, true);
      TbRateio.Perc = Value(share.percent);
      TbRateio.Valor = Value(share.amount);
    }
    TbRateio.Post();
  }
  TbRateio.First();
  MostraDiferenca();
}

void TfmRateio::CodigoChange() {
  TbRateio.CentroCusto =
      Value(Funcoes.Busca_Valor("CENTROCUSTO", {{"CODIGO", TbRateio.Codigo.AsString()}}, "DESCRICAO"));
}

void TfmRateio::PercChange() {
  if (following_) return;
  const ScopedValue following(following_, true);
  TbRateio.Valor = Value((total_ * (TbRateio.Perc.AsFloat() / 100)).Round2());
}

void TfmRateio::ValorChange() {
  if (following_) return;
  const ScopedValue following(following_, true);
  TbRateio.Perc = Value(RoundFloat(TbRateio.Valor.AsCurrency().ToDouble() / total_.ToDouble() * 100, 2));
}

void TfmRateio::PqCCustoFechaPesquisa() {
  if (TbRateio.IsEmpty() && !TbRateio.Editing()) {
    TbRateio.Append();
  } else {
    TbRateio.Edit();
  }
  TbRateio.Codigo = Value(PqCCusto.RetornoPesquisa("CODIGO"));
}

std::vector<Share> TfmRateio::Linhas() {
  std::vector<Share> rows;
  const ControlsHold hold(TbRateio);
  const int64_t stood = TbRateio.RecNo();
  for (TbRateio.First(); !TbRateio.Eof(); TbRateio.Next()) {
    Share share{TbRateio.Conta.AsString(), std::string(Trim(TbRateio.Codigo.AsString())),
                TbRateio.Perc.AsFloat(), TbRateio.Valor.AsCurrency().Round2()};
    if (share.centre.empty() && share.percent == 0 && share.amount.IsZero()) continue;
    rows.push_back(std::move(share));
  }
  if (stood > 0) TbRateio.SetRecNo(stood);
  return rows;
}

void TfmRateio::MostraDiferenca() {
  Currency left = total_;
  for (const Share& share : Linhas()) left -= share.amount;
  EdtDiferenca.SetAmount(left);
}

void TfmRateio::BitBtn1Click() {
  TbRateio.PostIfEditing();
  std::vector<Share> rows = Linhas();
  double percent = 0;
  Currency left = total_;
  for (const Share& share : rows) {
    if (!Funcoes.Existe("CENTROCUSTO", {{"CODIGO", share.centre}})) {
      Inform("Centro de Custo Inválido.");
      DbgRateio.SetFocus();
      return;
    }
    percent += share.percent;
    left -= share.amount;
  }
  if (!SharesAreWhole(rows)) {
    Inform("Diferença no percentual de Rateio de Centro de Custo de " +
           Currency::FromDouble(100 - percent).Brazil() + "%");
    DbgRateio.SetFocus();
    return;
  }
  if (!left.IsZero()) {
    Inform("Diferença no valor do Rateio de Centro de Custo de " + left.Brazil() + ".");
    DbgRateio.SetFocus();
    return;
  }
  shares_ = std::move(rows);
  confirmed_ = true;
  Close();
}

}  // namespace orv
