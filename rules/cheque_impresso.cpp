#include "rules/cheque_impresso.h"

#include <algorithm>

namespace orv {
namespace {

constexpr const char* kMeses[] = {"JANEIRO", "FEVEREIRO", "MARCO",    "ABRIL",   "MAIO",     "JUNHO",
                                  "JULHO",   "AGOSTO",    "SETEMBRO", "OUTUBRO", "NOVEMBRO", "DEZEMBRO"};

}  // namespace

DataPorExtenso::DataPorExtenso(Date data) {
  if (data.Empty()) return;
  const std::string texto = data.Brazil();
  dia = texto.substr(0, 2);
  mes = kMeses[data.Month() - 1];
  ano = texto.substr(6, 4);
}

std::string ExtensoMaiusculo(const IFuncoes& funcoes, Currency valor) {
  std::string texto = funcoes.Extenso(valor.Brazil());
  std::transform(texto.begin(), texto.end(), texto.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return texto;
}

ReportAnswer RespondeExtenso(const IFuncoes& funcoes) {
  return {1, [&funcoes](std::span<const Value> valor) {
            return Value(ExtensoMaiusculo(funcoes, valor[0].AsCurrency()));
          }};
}

std::unique_ptr<TImpCheque> ImpressoraDeCheques(IFuncoes& funcoes, std::initializer_list<int> modelos) {
  auto impressora = funcoes.ImpCheque();
  const int porta = funcoes.LeConfiguracao("Venda", "Parametros", "PortaImpCheque", 0);
  const int modelo = funcoes.LeConfiguracao("Venda", "Parametros", "TpImpCheque", 0);
  impressora->Porta = "COM" + std::to_string(porta + 1);
  if (std::find(modelos.begin(), modelos.end(), modelo) != modelos.end()) impressora->SetModelo(modelo);
  return impressora;
}

}  // namespace orv
