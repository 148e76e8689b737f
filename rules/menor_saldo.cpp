#include "rules/menor_saldo.h"

namespace orv {

void MenorSaldo::Soma(Date dia, Currency valor) {
  if (dia != ate_ && Baixou()) menor_ = saldo_, dia_ = ate_;
  ate_ = dia;
  saldo_ += valor;
}

void MenorSaldo::Mostra(Label& linha, std::string_view ressalva) const {
  linha.SetCaption("Menor saldo: " + Valor().Brazil() + " em " + Dia().Brazil() + std::string(ressalva) +
                   ".");
  linha.SetColor(Valor() < Currency() ? "error" : "good");
}

const std::array<ReportField, 5> kMenorSaldo{{{"Conta", FieldType::String, 15, {"Conta"}},
                                              {"Descricao", FieldType::String, 50, {"Descrição", 30}},
                                              {"Saldo", FieldType::Currency, 0, {"Saldo"}},
                                              {"Menor", FieldType::Currency, 0, {"Menor saldo"}},
                                              {"Dia", FieldType::Date, 0, {"Em"}}}};

}  // namespace orv
