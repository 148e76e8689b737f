// The page "Conciliação de Cartões": orders paid on line, whose receivables the acquirer's file settles.
#include "reconciliation/concilia.h"

namespace orv {

void TFmConcilia::ConciliaCieloPedido() {}
void TFmConcilia::ConciliaPagarMe() {}
void TFmConcilia::ConciliaYapay() {}
void TFmConcilia::BuscaPedidos() {}
void TFmConcilia::SelecionaVendaTransacao() {}
void TFmConcilia::GravaConciliacaoPedido() {}
std::string TFmConcilia::SeparadorDuplicata() const { return "/"; }

}  // namespace orv
