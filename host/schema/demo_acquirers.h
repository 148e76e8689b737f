// The acquirers of cards: through which forms of payment the made-up companies sell, and how each acquirer
// numbers what it takes in. Two companies have no number in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv::demo {

enum class Acquirer { Cielo, Getnet, Rede, Stone, PagarMe, Yapay };
inline constexpr std::string_view kAcquirerNames[] = {"Cielo", "Getnet",   "Rede",
                                                      "Stone", "Pagar.me", "Yapay"};

enum class CardKind { Credit, Debit, Order };

// A row of MOEDA; `account` counts the company's accounts, `rate` is the percentage agreed with the acquirer.
struct PaymentForm {
  const char *code, *text;
  Acquirer acquirer;
  CardKind kind;
  std::size_t account;
  double rate;
};
inline constexpr PaymentForm kPaymentForms[] = {
    {"10", "CIELO CREDITO", Acquirer::Cielo, CardKind::Credit, 0, 2.49},
    {"11", "CIELO DEBITO", Acquirer::Cielo, CardKind::Debit, 0, 1.29},
    {"12", "GETNET CREDITO", Acquirer::Getnet, CardKind::Credit, 1, 2.39},
    {"13", "GETNET DEBITO", Acquirer::Getnet, CardKind::Debit, 1, 1.19},
    {"14", "REDE CREDITO", Acquirer::Rede, CardKind::Credit, 2, 2.69},
    {"15", "REDE DEBITO", Acquirer::Rede, CardKind::Debit, 2, 1.39},
    {"16", "STONE CREDITO", Acquirer::Stone, CardKind::Credit, 0, 2.19},
    {"17", "STONE DEBITO", Acquirer::Stone, CardKind::Debit, 0, 0.99},
    {"18", "CIELO PEDIDO", Acquirer::Cielo, CardKind::Order, 0, 3.49},
    {"19", "PAGAR.ME PEDIDO", Acquirer::PagarMe, CardKind::Order, 1, 3.49},
    {"20", "YAPAY PEDIDO", Acquirer::Yapay, CardKind::Order, 2, 3.49},
};

constexpr const PaymentForm& FormOf(Acquirer acquirer, CardKind kind) {
  for (const PaymentForm& form : kPaymentForms)
    if (form.acquirer == acquirer && form.kind == kind) return form;
  return kPaymentForms[0];
}

// "000042" for (42, 6); a longer number keeps its digits.
std::string Padded(int64_t number, int width);

// ITCONDIVENDA.TRANSACAO of a sale; `company` counts from 0 to 8, the sale stays below 100,000.
inline std::string SaleNumber(Acquirer acquirer, int company, int64_t sale) {
  switch (acquirer) {
    case Acquirer::Cielo:
      return Padded(100000 * (company + 1) + sale, 6);
    case Acquirer::Stone:
      return "04310" + std::to_string(company) + Padded(sale * 7, 8);
    default:
      return static_cast<char>('A' + company) + Padded(sale, 5) + "/" +
             Padded(1000000 * company + 500000 + sale, 7);
  }
}

// What stands before the eight digits of an order's own number.
constexpr std::string_view OrderPrefix(Acquirer acquirer) {
  return acquirer == Acquirer::PagarMe ? "21" : acquirer == Acquirer::Yapay ? "7" : "100699306900";
}

// PEDIDO.ID_TRANSACAO; the order stays below a million.
inline std::string OrderNumber(Acquirer acquirer, int company, int64_t order) {
  return std::string(OrderPrefix(acquirer)) + Padded(int64_t{company} * 1000000 + order, 8);
}

// The acquirer's operation that pays an instalment of an order.
inline std::string OperationNumber(int64_t order, int part) { return Padded(8000000 + order * 10 + part, 9); }

}  // namespace orv::demo
