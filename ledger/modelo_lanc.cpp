#include "ledger/modelo_lanc.h"

#include <algorithm>

#include "toolkit/text.h"

namespace orv {

Date ModeloLanc::Seguinte() const {
  const Date mes = proximo.FirstOfMonth().AddMonths(meses);
  return mes.AddDays(std::min(dia, DaysInMonth(mes.Year(), mes.Month())) - 1);
}

std::vector<ModeloLanc> ModelosLanc::Linhas(const std::string& condicao) const {
  std::vector<ModeloLanc> modelos;
  for (const auto& linha : tabela_.IBDatabase().Rows(
           "SELECT NOME, CONTA, DOCTO, GRUPO, HISTORICO, OPERACAO, PENDENTE, VALOR, OBSERVACAO, MESES, DIA, "
           "PROXIMO FROM " +
           Tabela() + " WHERE " + condicao + " ORDER BY PROXIMO, NOME")) {
    const auto texto = [&](std::size_t i) { return linha[i].AsString(); };
    modelos.push_back({.nome = texto(0),
                       .conta = texto(1),
                       .docto = texto(2),
                       .classe = texto(3),
                       .historico = texto(4),
                       .operacao = texto(5),
                       .pendente = texto(6),
                       .valor = linha[7].AsCurrency(),
                       .observacao = texto(8),
                       .meses = static_cast<int>(linha[9].AsInteger()),
                       .dia = static_cast<int>(linha[10].AsInteger()),
                       .proximo = linha[11].AsDate()});
  }
  return modelos;
}

std::optional<ModeloLanc> ModelosLanc::Le(std::string_view nome) const {
  std::vector<ModeloLanc> modelos = Linhas(Chave(nome));
  if (modelos.empty()) return std::nullopt;
  return std::move(modelos.front());
}

std::vector<ModeloLanc> ModelosLanc::Vencidos(Date hoje) const {
  return Linhas("MESES > 0 AND PROXIMO <= " + funcoes_.AspasData(hoje));
}

void ModelosLanc::Grava(const ModeloLanc& modelo) {
  const auto aspas = [&](const std::string& texto) { return funcoes_.Aspas(texto); };
  const std::string valores =
      Join({aspas(modelo.nome), aspas(modelo.conta), aspas(modelo.docto), aspas(modelo.classe),
            aspas(modelo.historico), aspas(modelo.operacao), aspas(modelo.pendente),
            funcoes_.PermanecePonto(modelo.valor), aspas(modelo.observacao), std::to_string(modelo.meses),
            std::to_string(modelo.dia), modelo.meses > 0 ? funcoes_.AspasData(modelo.proximo) : "NULL"},
           ", ");
  tabela_.IBDatabase().Execute("UPDATE OR INSERT INTO " + Tabela() +
                               " (NOME, CONTA, DOCTO, GRUPO, HISTORICO, OPERACAO, PENDENTE, VALOR, "
                               "OBSERVACAO, MESES, DIA, PROXIMO) VALUES (" +
                               valores + ") MATCHING (NOME)");
}

void ModelosLanc::Exclui(std::string_view nome) {
  tabela_.IBDatabase().Execute("DELETE FROM " + Tabela() + " WHERE " + Chave(nome));
}

std::string ModelosLanc::NesteDia(const ModeloLanc& modelo) const {
  return " WHERE " + Chave(modelo.nome) +
         " AND MESES > 0 AND PROXIMO = " + funcoes_.AspasData(modelo.proximo);
}

bool ModelosLanc::Aberto(const ModeloLanc& modelo) const {
  return !tabela_.IBDatabase().Rows("SELECT 1 FROM " + Tabela() + NesteDia(modelo)).empty();
}

bool ModelosLanc::Avanca(const ModeloLanc& modelo) {
  return tabela_.IBDatabase().Execute("UPDATE " + Tabela() + " SET PROXIMO = " +
                                      funcoes_.AspasData(modelo.Seguinte()) + NesteDia(modelo)) > 0;
}

}  // namespace orv
