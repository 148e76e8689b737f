// What the rows of a cash flow come from, and how each shows it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/report_set.h"
#include "frame/services.h"

namespace orv {

// `CompraCompleta` is a purchase with its taxes, its freight and what was paid in advance.
enum class Fonte : uint8_t {
  Receber,
  Pagar,
  Cheque,
  Movimento,
  Pedido,
  Compra,
  CompraCompleta,
  Faccao,
  Tinturaria,
  Tecelagem
};

// The title of a drill-down, its statement with the tables as macros, and the company whose rows it reads.
struct DetalheDeOrigem {
  std::string titulo, sql, empresa;
};
// The lines of such a statement; what stands behind them serves CompletaOrigem.
extern const std::array<ReportField, 10> kLinhasDeOrigem;
void CompletaOrigem(std::span<Value> linha);

// What a row of a source is made of, by the key of its table and the company's suffix. Work at a workshop
// that sews is named by its number, sector and part, parted by tabs.
DetalheDeOrigem DetalheDaFonte(const IFuncoes& funcoes, Fonte fonte, std::string_view chave,
                               std::string_view empresa);

// The sources of the rows of a set, noted as the rows are appended.
class Origens {
 public:
  void Anota(Fonte fonte, Value chave, std::string_view empresa);
  void Limpa();
  // Of a row, 0 for the first one noted.
  DetalheDeOrigem Detalhe(const IFuncoes& funcoes, std::size_t linha) const;

 private:
  struct Origem {
    Value chave;
    uint16_t empresa;
    Fonte fonte;
  };
  std::deque<Origem> origens_;
  std::vector<std::string> empresas_;
};

}  // namespace orv
