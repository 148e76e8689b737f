#include "rules/menor_saldo.h"

namespace orv {

void MenorSaldo::Soma(Date dia, Currency valor) {
  if (dia != ate_) Fecha();
  ate_ = dia;
  corrente_ += valor;
}

void MenorSaldo::Fecha() {
  if (corrente_ < menor_) menor_ = corrente_, dia_ = ate_;
}

void MostraMenorSaldo(Label& linha, MenorSaldo& menor) {
  linha.SetCaption("Menor saldo: " + menor.Valor().Brazil() + " em " + menor.Dia().Brazil() + ".");
  linha.SetColor(menor.Valor() < Currency() ? "error" : "good");
}

const std::array<ReportField, 5> kMenorSaldo{{{"Conta", FieldType::String, 15, {"Conta"}},
                                              {"Descricao", FieldType::String, 50, {"Descrição", 30}},
                                              {"Saldo", FieldType::Currency, 0, {"Saldo"}},
                                              {"Menor", FieldType::Currency, 0, {"Menor saldo"}},
                                              {"Dia", FieldType::Date, 0, {"Em"}}}};

}  // namespace orv
