// Who did what to a movement, a cheque or a line of a statement: under which keys the audit lines tell it.
#pragma once

#include <string>
#include <string_view>

#include "frame/registro.h"
#include "frame/services.h"

namespace orv {

// Areas of the lines that tell by the record's own number what no other line tells under it.
constexpr const char* kAreaMovimento = "MOVIMENTO";
constexpr const char* kAreaLinha = "LINHA EXTRATO";

// The movement of that number, or the cheque that has it as its key: what was done to either is told of both.
Registro RegistroDoLancamento(IFuncoes& funcoes, ITabela& tabela, std::string titulo, std::string numero);
// The line of a statement of that number.
Registro RegistroDaLinha(IFuncoes& funcoes, ITabela& tabela, std::string lancto);

// Audit lines of these areas.
void AnotaMovimento(IFuncoes& funcoes, std::string_view numero, std::string_view texto,
                    TOperacaoLog operacao = TOperacaoLog::Processo);
void AnotaLinha(IFuncoes& funcoes, std::string_view lancto, std::string_view texto);
// That lines of a bank's file were taken in.
void AnotaImportacao(IFuncoes& funcoes, std::string_view arquivo, std::string_view conta, std::size_t linhas);

}  // namespace orv
