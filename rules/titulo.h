// What is open of a title, payable or receivable.
#pragma once

#include <string>

#include "toolkit/currency.h"

namespace orv {

// What adds up to the open amount.
struct Titulo {
  Currency valor, juros, desconto, pago, devolvido;
  Currency EmAberto() const { return valor + juros - desconto - pago - devolvido; }
};

// The rows of which something is open, as a condition of a statement. A payable that was given back in whole
// counts as open: only who asks for what is overdue leaves it out.
constexpr const char* kReceberAberto =
    "((RECEBER.VALOR2 + RECEBER.JUROS) > (RECEBER.VALOR_PAGO + RECEBER.DESCONTO + RECEBER.VAL_DEV))";
constexpr const char* kPagarAberto = "((PAGTO.VALOR + PAGTO.JUROS) > (PAGTO.VAL_PAG + PAGTO.DESCONTO))";
constexpr const char* kPagarVencidoAberto =
    "((PAGTO.VALOR + PAGTO.JUROS) > (PAGTO.VAL_PAG + PAGTO.DESCONTO + PAGTO.VAL_DEV))";

// The day on which a row falls due where something of it is open, else null. The tables have an index over
// each of these expressions.
inline const std::string kReceberVenceAberto =
    std::string("CASE WHEN ") + kReceberAberto + " THEN RECEBER.DT_VENCTO END";
inline const std::string kPagarVenceAberto =
    std::string("CASE WHEN ") + kPagarAberto + " THEN PAGTO.DT_VEN END";

// Titles in a situation (TABSIT) of the cash flow, and receivables that aren't lost: conditions. A situation
// that isn't known isn't one of the cash flow.
constexpr const char* kNoFluxo = " AND TABSIT.IMP_FLUXO = 'S'";
constexpr const char* kForaP = " AND RECEBER.SITUACAO <> 'P'";

// Ordinary titles, and budget items where they are asked for: a condition that begins with " AND ".
inline std::string StatusDeTitulo(const std::string& tabela, bool orcamentos) {
  return " AND " + tabela + (orcamentos ? ".STATUS IN ('N','O')" : ".STATUS = 'N'");
}

// The open amount of a row of PAGTO or of RECEBER, for a statement; `de` is the table's name in it.
inline std::string EmAbertoPagar(const std::string& de = "PAGTO") {
  return "(" + de + ".VALOR + " + de + ".JUROS - " + de + ".VAL_PAG - " + de + ".VAL_DEV - " + de +
         ".DESCONTO)";
}
// The same for who counts what was given back of a payable as open.
inline std::string EmAbertoPagarComDevolvido(const std::string& de = "PAGTO") {
  return "(" + de + ".VALOR - " + de + ".DESCONTO + " + de + ".JUROS - " + de + ".VAL_PAG)";
}
inline std::string EmAbertoReceber(const std::string& de = "RECEBER") {
  return "(" + de + ".VALOR2 + " + de + ".JUROS - " + de + ".VALOR_PAGO - " + de + ".VAL_DEV - " + de +
         ".DESCONTO)";
}

}  // namespace orv
