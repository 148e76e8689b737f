// What the user is told of a file that can't be read as a spreadsheet.
#pragma once

#include "toolkit/error.h"

namespace orv {

inline constexpr const char* kDamaged =
    "A planilha está incompleta ou danificada. Baixe-a de novo, ou abra-a no editor de planilhas e grave-a "
    "outra vez.";
inline constexpr const char* kProtected =
    "A planilha está protegida por senha. Abra-a no editor de planilhas e grave-a sem senha.";
inline constexpr const char* kNotABook =
    "O arquivo não contém uma planilha .xlsx. Abra-o no editor de planilhas e grave-o como .xlsx.";
inline constexpr const char* kTooMuch =
    "A planilha contém mais do que pode ser lido. Abra-a no editor de planilhas e grave à parte a aba que "
    "interessa.";

}  // namespace orv
