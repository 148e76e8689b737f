// Rows of the desk's tables, as the tests need them: what a test gives, and a sound rest.
//
//   Put(Movimento{.lancamento = "A1", .valor = "20.25", .pendente = "S"});  // into the first company
//   Put(Receber{.numero = "T9", .dt_vencto = Date(2026, 12, 1)}, "_002");    // into the second
//   Usual(Movimento{.valor = "150"});  // from here on, in every row of the test that doesn't say otherwise
//
// A cell is a text, a number or a Date, whatever the column's type, and is quoted when it is written; nullptr
// is SQL's null. A column that nobody speaks of is left to its table. Amounts are written with a point.
// Members stand in the order in which they must be named.
#pragma once

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "toolkit/date.h"

namespace orv::test {

// Accounts of the first demo company, of the banks 901 and 902, with accounting accounts 1.1.02.001
// and 1.1.02.002.
constexpr const char* kConta = "10250-1";
constexpr const char* kOutraConta = "20418-7";

struct Cell {
  Cell() = default;
  Cell(const char* text) : text(text), written(true), given(true) {}
  Cell(const std::string& text) : Cell(text.c_str()) {}
  Cell(Date day) : Cell(day.Sql()) {}
  Cell(std::nullptr_t) : written(true), given(true), null(true) {}
  template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
  Cell(Number number) : Cell(std::to_string(number)) {}

  std::string text;
  bool written = false, given = false, null = false;
};
// What stands there unless a row gives the cell.
inline Cell Else(Cell cell) {
  cell.given = false;
  return cell;
}

using Usuals = std::map<std::string, Cell>;  // by table and column
std::string InsertText(const char* table, const char* columns, const std::vector<const Cell*>& cells,
                       const std::string& company, const Usuals& usuals);
void Note(const char* table, const char* columns, const std::vector<const Cell*>& cells, Usuals& usuals);

// The statement that inserts a row.
template <class R>
std::string Insert(const R& row, const std::string& company = "_001", const Usuals& usuals = {}) {
  return InsertText(R::kTable, R::kColumns, row.Cells(), company, usuals);
}

template <class... C>
std::vector<const Cell*> CellsOf(const C&... cells) {
  return {&cells...};
}
// "{}" stands for the company's suffix.
#define ORV_ROW(table, ...)                             \
  static constexpr const char* kTable = table;          \
  static constexpr const char* kColumns = #__VA_ARGS__; \
  std::vector<const Cell*> Cells() const { return CellsOf(__VA_ARGS__); }

// --- The ledger.

// A settled debit of 100,00 posted on 10/11/2026 and due on the 12th.
struct Movimento {
  Cell lancamento = Else("000001"), docto = Else("1"), banco = Else("901"), conta = Else(kConta),
       dt_lan = Else("11/10/2026"), dt_cont = Else("11/10/2026"), dt_vencto = Else("11/12/2026"),
       valor = Else("100"), operacao = Else("-"), grupo = Else("3104"), historico = Else("019"),
       observacao = Else("OBS"), tipo = Else("L"), tipo_doc = Else(""), pendente = Else("N"),
       lanc_con = Else("");
  ORV_ROW("CONTACOR{}", lancamento, docto, banco, conta, dt_lan, dt_cont, dt_vencto, valor, operacao, grupo,
          historico, observacao, tipo, tipo_doc, pendente, lanc_con)
};

struct Partida {
  Cell lancamento, docto{}, conta_c = Else("1"), conta_d = Else("2"), valor = Else("100"), data{},
                            observacao{};
  ORV_ROW("CONTABIL{}", lancamento, docto, conta_c, conta_d, valor, data, observacao)
};

struct Rateio {
  Cell lancamento = Else(""), ordem = Else(1), conta = Else("4.1.04.001"), numero{},
       centrocusto = Else("0100"), tipo = Else("CC"), perc_rat = Else(100), valor_rat = Else(100);
  ORV_ROW("CENTRO_RATEIO{}", lancamento, ordem, conta, numero, centrocusto, tipo, perc_rat, valor_rat)
};

// A rule of a class: share of an account, a cost centre and its share.
struct RegraRateio {
  Cell codigo, conta = Else("4.1.04.001"), perc_conta = Else(100), ccusto = Else("0100"),
               perc_ccusto = Else(100), tipo = Else("C"), tipo_val = Else("VF");
  ORV_ROW("CONT_RATEIO{}", codigo, conta, perc_conta, ccusto, perc_ccusto, tipo, tipo_val)
};

// The accounting account of an account's class or history.
struct ClasseConta {
  Cell conta = Else(kConta), classe = Else("0"), historico = Else("0"), conta_cont{}, codcli{},
       carteira = Else("0");
  ORV_ROW("CLASSE_CONTA{}", conta, classe, historico, conta_cont, codcli, carteira)
};

struct Cadconta {
  Cell conta = Else(kConta), banco = Else("901"), descricao{}, imp_fluxo = Else("S");
  ORV_ROW("CADCONTA{}", conta, banco, descricao, imp_fluxo)
};

// --- Cheques and the statement.

// A received, pending cheque of 100,00 issued on 10/11/2026 for the 12th.
struct Cheque {
  Cell chave = Else("000001"), numero = Else("1"), banco = Else("901"), agencia{}, conta = Else(kConta),
       valor = Else("100"), emissao = Else("11/10/2026"), vencimento = Else("11/12/2026"), dt_baixa{},
       tipo = Else("R"), status = Else("P"), emissor{}, cnpj_emi{}, cliente{}, fornecedor{}, representante{},
       lote{}, barra{}, obs{};
  ORV_ROW("CHEQUE_PRE{}", chave, numero, banco, agencia, conta, valor, emissao, vencimento, dt_baixa, tipo,
          status, emissor, cnpj_emi, cliente, fornecedor, representante, lote, barra, obs)
};

// A title that a cheque pays.
struct ChequeDup {
  Cell banco = Else("901"), conta = Else(kConta), numero = Else("1"), dupli = Else("X"), chave{};
  ORV_ROW("CHEQUE_DUP{}", banco, conta, numero, dupli, chave)
};

// A debit of 100,00 on 11/11/2026 that isn't reconciled.
struct Extrato {
  Cell lancto = Else("E1"), banco = Else("901"), conta = Else(kConta), docto = Else("1"),
       dt_cont = Else("11/11/2026"), valor = Else("100"), operacao = Else("D"), observacao = Else("LINHA"),
       arquivo = Else("EXTRATO_2026.TXT"), conciliado = Else("N"), lanc_con = Else("");
  ORV_ROW("EXTRATO{}", lancto, banco, conta, docto, dt_cont, valor, operacao, observacao, arquivo, conciliado,
          lanc_con)
};

// --- Titles and trade.

struct Pagto {
  Cell num_ap = Else("000001"), codcre = Else("00003"), docto{}, dupli{}, dt_emi{}, dt_ven{},
       num_os = Else("3104"), valor = Else("100"), val_pag{}, val_dev{}, status{}, situacao = Else("0"),
       historico{}, lote = Else(""), dt_digita{};
  ORV_ROW("PAGTO{}", num_ap, codcre, docto, dupli, dt_emi, dt_ven, num_os, valor, val_pag, val_dev, status,
          situacao, historico, lote, dt_digita)
};

struct Pagto1 {
  Cell num_ap = Else("000001"), lancamento = Else("000001"), val_pag = Else("100"), juro{}, desconto{},
       dt_lan{}, val_dev{};
  ORV_ROW("PAGTO1{}", num_ap, lancamento, val_pag, juro, desconto, dt_lan, val_dev)
};

struct Receber {
  Cell numero = Else("T1"), codcli = Else("00002"), dt_emissao{}, dt_vencto{}, valor2 = Else("100"),
       valor_pago{}, val_dev{}, classe{}, banco{}, bordero{}, status{}, situacao = Else("0"), numero_ch{},
       conta_ch{}, agencia_ch{}, banco_ch{}, fatura{}, obs{}, codrep{}, emissor_ch{};
  ORV_ROW("RECEBER{}", numero, codcli, dt_emissao, dt_vencto, valor2, valor_pago, val_dev, classe, banco,
          bordero, status, situacao, numero_ch, conta_ch, agencia_ch, banco_ch, fatura, obs, codrep,
          emissor_ch)
};

struct Receberb {
  Cell numero = Else("T1"), lancamento = Else("000001"), dt_pagto{}, valor_pago{}, juros{}, val_dev{},
       desconto{}, desconto2{}, desconto3{}, portador{}, dt_cont{};
  ORV_ROW("RECEBERB{}", numero, lancamento, dt_pagto, valor_pago, juros, val_dev, desconto, desconto2,
          desconto3, portador, dt_cont)
};

// Titles that a bank or a program of payments has.
struct Bordero {
  Cell numero, tipo = Else("R"), conta = Else(kConta), data{};
  ORV_ROW("BORDERO{}", numero, tipo, conta, data)
};

struct Pedido {
  Cell numero, dt_fatura{}, codcli = Else("00002"), pgto{};
  ORV_ROW("PEDIDO{}", numero, dt_fatura, codcli, pgto)
};
struct PedItem {
  Cell numero, preco = Else("10"), qtde = Else("10");
  ORV_ROW("PED_ITEN{}", numero, preco, qtde)
};
struct Compra {
  Cell numero, dt_entrega{}, codfor = Else("00003"), condicao{};
  ORV_ROW("COMPRA{}", numero, dt_entrega, codfor, condicao)
};
// Ten of twelve are still to come, at 10,00 each.
struct CoItem {
  Cell numero, preco = Else("10"), qtde = Else("12"), qtde_b = Else("2"), situacao = Else("A");
  ORV_ROW("CO_ITEN{}", numero, preco, qtde, qtde_b, situacao)
};

// A card sale of the first day of November 2026, its instalments and what stands for one of them.
struct Venda {
  Cell codven = Else("V1"), data = Else("11/01/2026"), valor = Else("100");
  ORV_ROW("VENDA{}", codven, data, valor)
};
struct Condivenda {
  Cell cdcondivenda = Else(1), cdvenda = Else("V1");
  ORV_ROW("CONDIVENDA{}", cdcondivenda, cdvenda)
};
struct Itcondivenda {
  Cell cditcondivenda = Else(1), cdcondivenda = Else(1), cdmoeda = Else("3"), nrparcela = Else(1),
       valor = Else("100"), transacao{}, baixado = Else(0);
  ORV_ROW("ITCONDIVENDA{}", cditcondivenda, cdcondivenda, cdmoeda, nrparcela, valor, transacao, baixado)
};

// --- Of the house.

struct Parametro {
  Cell grupo = Else("FIN"), numero{}, valor = Else("S"), emp_pat = Else("_001");
  ORV_ROW("PARAMETRO", grupo, numero, valor, emp_pat)
};

// A period that is closed up to the tests' today.
struct Bloqueio {
  Cell tipo = Else("CX"), conta = Else(""), ate = Else("11/20/2026"), emp_pat = Else("_001");
  ORV_ROW("BLOQUEIO", tipo, conta, ate, emp_pat)
};

// What a user may do in a screen.
struct Direito {
  Cell login_busca = Else("leo"), classe{}, tipos = Else("");
  ORV_ROW("DIREITO", login_busca, classe, tipos)
};

// A table that companies share.
struct Compartilhada {
  Cell tabela, emp_pat = Else("_001");
  ORV_ROW("COMPARTILHADA", tabela, emp_pat)
};

}  // namespace orv::test
