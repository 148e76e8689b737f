// What the reports of movements have in common: a movement as they show it, the titles that it settled, and
// where its figures come from.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "toolkit/controls.h"

namespace orv::lancamentos {

// What a movement fills of every report, for the select list of a statement over CONTACOR, CADCONTA and
// kDescricoes.
constexpr const char* kColunas =
    "CONTACOR.BANCO, CONTACOR.CONTA, BANCO.NOME_BANCO, CONTACOR.VALOR, CONTACOR.DT_LAN AS DTLANC, "
    "CONTACOR.DT_VENCTO AS DTVENCTO, CONTACOR.DOCTO AS NUMERO, CONTACOR.LANCAMENTO, "
    "CONTACOR.OBSERVACAO AS OBS, SUBGRUPO.DESCRICAO AS DESGRUPO, CONTACOR.OPERACAO, "
    "HISTORICO.DESCRICAO AS HISTORICO, CONTACOR.DT_CONT AS DTCONT, CADCONTA.EMPRESA, CADCONTA.AGENCIA";
constexpr const char* kDescricoes =
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (CONTACOR.GRUPO = SUBGRUPO.CODIGO)"
    " LEFT JOIN {CADBAN} BANCO ON (CONTACOR.BANCO = BANCO.BANCO)"
    " LEFT JOIN {HISTCP} HISTORICO ON (CONTACOR.HISTORICO = HISTORICO.HISTORICO)";

// The day that a report goes by: the column, its place in kColunas and the field that it fills.
struct Dia {
  const char *coluna, *lugar, *campo;
};
constexpr Dia kDias[] = {{"CONTACOR.DT_LAN", "5", "DtLanc"},
                         {"CONTACOR.DT_CONT", "13", "DtCont"},
                         {"CONTACOR.DT_VENCTO", "6", "DtVencto"}};
constexpr const char *kLugarDocumento = "7", *kLugarLancamento = "8";

// The chosen option, the first one where none is.
inline std::size_t Opcao(const RadioGroup& grupo) {
  return grupo.ItemIndex() < 0 ? 0 : static_cast<std::size_t>(grupo.ItemIndex());
}

// Settlements of one kind, which fill the report's titles.
struct Baixas {
  const char *tipo, *tabela, *colunas, *de;
};
extern const Baixas kPagas, kRecebidas;

// The titles that movements settled, by the movement's number as LANCTO. `movimentos` is a select of those
// numbers, each once; `desc_classe` the field of the class's name; `mais` and `juncao` further columns, with
// their comma, and what they are joined from. Of settlements that differ in nothing there is one, and the
// order of the columns says which comes first.
std::string Titulos(const Baixas& baixas, std::string_view movimentos, std::string_view desc_classe,
                    std::string_view mais, std::string_view juncao = "");

// Where a movement comes from: its rows, the titles that it settled and its accounting, statements of one
// form for a union.
struct Origem {
  std::string movimentos, recebidos, pagos, contabilizacao;
};
// Of the movement of that number, a literal.
Origem OrigemDe(const std::string& numero);

}  // namespace orv::lancamentos
