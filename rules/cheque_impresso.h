// What a printed cheque says, and the printer that a user's cheques go to.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>

#include "frame/services.h"
#include "toolkit/report_answers.h"

namespace orv {

// A date as a cheque has it: two digits, the month in words ("MARCO" without cedilla), four digits. All are
// empty for the empty date.
struct DataPorExtenso {
  explicit DataPorExtenso(Date data);
  std::string dia, mes, ano;
};

// The amount in words with the letters a to z in upper case; accented ones stay as they are. Raises UserError
// for an amount that no cheque can have.
std::string ExtensoMaiusculo(const IFuncoes& funcoes, Currency valor);

// The same for the layouts: "Extenso(TbCheque.Total)".
ReportAnswer RespondeExtenso(const IFuncoes& funcoes);

// The printer on the port of the user's settings, set to their model where it is one of `modelos`; any other
// leaves the model as it is.
std::unique_ptr<TImpCheque> ImpressoraDeCheques(IFuncoes& funcoes, std::initializer_list<int> modelos);

}  // namespace orv
