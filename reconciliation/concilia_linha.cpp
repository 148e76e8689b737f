// The page "Conciliação de Extrato": a line that no movement stands for is posted by the quick entry and tied
// to what it posted; rules fill its fields.
#include "ledger/cc_lanc_fluxo.h"
#include "reconciliation/concilia.h"
#include "reconciliation/regra_extrato.h"
#include "reconciliation/regras_lista.h"
#include "toolkit/error.h"

namespace orv {
namespace {

enum Oper { kDebito = 0, kCredito = 1 };

}  // namespace

void TFmConcilia::BtLancaLinhaClick() {
  TbArq.PostIfEditing();
  if (TbArq.IsEmpty()) return Inform("Nenhuma linha do extrato está selecionada.");
  const int64_t lugar = TbArq.RecNo() - 1;
  const auto texto = [&](const Field& campo) { return TbArq.Cell(lugar, campo).AsString(); };
  const std::string linha = texto(TbArq.Lancto), observacao = texto(TbArq.Observacao),
                    operacao = texto(TbArq.Operacao);
  const Currency valor = TbArq.Cell(lugar, TbArq.Valor).AsCurrency();
  const Date data = TbArq.Cell(lugar, TbArq.Data).AsDate();
  if (!texto(TbArq.LancCon).empty()) return Inform("A linha " + linha + " do extrato já está conciliada.");

  auto& fluxo = static_cast<TFmCCLancFluxo&>(Owner().Adopt(std::make_unique<TFmCCLancFluxo>(Owner())));
  fluxo.EdtConta.SetText(conta_);
  fluxo.EdtDocto.SetText(texto(TbArq.Docto).empty() ? "EXT " + linha : texto(TbArq.Docto));
  fluxo.CbOper.SetItemIndex(operacao == "C" ? kCredito : kDebito);
  fluxo.EdtValor.SetAmount(valor);
  fluxo.DtLancto.SetDate(data);
  fluxo.DtCont.SetDate(data);
  fluxo.EdtObs.SetText(observacao);
  const auto regras = RegrasExtrato(Funcoes, Tabela).Todas();
  const RegraExtrato* regra = RegraPara(regras, conta_, operacao, observacao, valor);
  fluxo.OfereceRegra(TextoDaRegra(observacao), regra == nullptr && !observacao.empty());
  if (regra != nullptr) {
    fluxo.EdtTipo.SetText(regra->classe);
    fluxo.EdtHis.SetText(regra->historico);
    fluxo.MostraRegra(regra->Nome());
  }
  // Behind the class, which would set the side.
  fluxo.CbOper.SetItemIndex(operacao == "C" ? kCredito : kDebito);
  fluxo.Fixa();

  std::string numero;
  fluxo.AoGravar = [&] {
    if (fluxo.CbRegra.Checked()) {
      RegrasExtrato(Funcoes, Tabela)
          .Grava({.conta = conta_,
                  .operacao = operacao,
                  .texto = fluxo.EdtRegraTexto.Text(),
                  .de = fluxo.EdtRegraDe.Amount(),
                  .ate = fluxo.EdtRegraAte.Amount(),
                  .classe = fluxo.EdtTipo.Text(),
                  .historico = fluxo.EdtHis.Text()});
    }
    Conjunto conjunto;
    conjunto.movimentos.push_back({fluxo.Lancamento, fluxo.EdtDocto.Text(), operacao == "C" ? "+" : "-",
                                   fluxo.EdtHis.Text(), "", valor});
    conjunto.linhas = {lugar};
    conjunto.data = data;
    conjunto.numero = numero = Funcoes.Proximo("CONTACOR", "LANC_CON", 6, true);
    const std::vector<Conjunto> conjuntos{conjunto};
    if (Fechado(conjuntos)) Abort();
    ConciliaMovimentos(conjuntos);
    ConciliaLinhas(conjuntos);
  };
  fluxo.ShowModal();
  const bool gravado = fluxo.Gravado;
  const std::string lancamento = fluxo.Lancamento;
  fluxo.Release();
  if (!gravado) return;
  CarregaMovimentos();
  CalculaTotais();
  EdtContaChange();
  // The next line stands where this one stood.
  TbArq.SetRecNo(lugar + 1);
  Stored("Lançamento " + lancamento + " gravado e conciliado com a linha " + linha + " sob o número " +
         numero + ".");
}

void TFmConcilia::BtRegrasClick() {
  static_cast<TFmRegrasExtrato&>(Owner().Adopt(std::make_unique<TFmRegrasExtrato>(Owner()))).ShowModal();
}

std::vector<TFmConcilia::LinhaComRegra> TFmConcilia::LinhasComRegra(const std::set<int64_t>& lugares) {
  std::vector<LinhaComRegra> achadas;
  const auto regras = RegrasExtrato(Funcoes, Tabela).Todas();
  if (regras.empty()) return achadas;
  for (const int64_t lugar : lugares) {
    const auto texto = [&](const Field& campo) { return TbArq.Cell(lugar, campo).AsString(); };
    const RegraExtrato* regra = RegraPara(regras, conta_, texto(TbArq.Operacao), texto(TbArq.Observacao),
                                          TbArq.Cell(lugar, TbArq.Valor).AsCurrency());
    if (regra != nullptr) achadas.push_back({lugar, regra->Nome()});
  }
  return achadas;
}

}  // namespace orv
