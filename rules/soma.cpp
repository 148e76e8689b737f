#include "rules/soma.h"

#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {

std::string Soma(std::string_view valor) {
  const std::string v = "(" + std::string(valor) + ")", inteiro = "CAST(" + v + " AS BIGINT)";
  return "(SUM(" + inteiro + ") || ' ' || SUM(" + v + " - " + inteiro + "))";
}

Currency SomaDe(const Value& soma) {
  if (soma.IsNull()) return {};
  const auto partes = Split(soma.Text(), " ");
  ORV_ASSERT(partes.size() == 2);
  return Currency::ParseNeutral(partes[0]) + Currency::ParseNeutral(partes[1]);
}

const std::array<ReportField, 5> kSaldoPorMes{{{"Ano", FieldType::Integer},
                                               {"Mês", FieldType::Integer},
                                               {"Movimentos", FieldType::Integer},
                                               {"Créditos", FieldType::Currency},
                                               {"Débitos", FieldType::Currency}}};

void CompletaMes(std::span<Value> mes) {
  mes[3] = SomaDe(mes[3]);
  mes[4] = SomaDe(mes[4]);
}

std::string ForaDeMedida(const std::string& tabela, const std::string& chave) {
  return "SELECT FIRST 5 " + chave + ", VALOR FROM {" + tabela +
         "} WHERE VALOR > 999999999999.99 OR VALOR < -999999999999.99";
}

void ApontaForaDeMedida(UserInterface& user, TOrvDatabase& db, const std::string& sql) {
  std::vector<std::string> quais;
  for (const auto& registro : db.Rows(sql))
    quais.push_back(registro[0].AsString() + " (" + registro[1].AsCurrency().Brazil() + ")");
  if (quais.empty()) return;
  user.Note("As somas contêm valores grandes demais. Corrija ou exclua os lançamentos: " + Join(quais, "; ") +
            ".");
}

}  // namespace orv
