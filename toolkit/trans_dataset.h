// Copies the rows of one data set into a working set.
#pragma once

#include <functional>

#include "toolkit/client_dataset.h"

namespace orv {

class TTransDataSet {
 public:
  void SetTabelaOrigem(DataSet& source) { source_ = &source; }
  void SetTabelaDestino(TClientDataSet& target) { target_ = &target; }
  // Lays the source's fields down in the target, which is created anew and empty.
  void CriaCampos();
  // Appends the source's rows, by field name; the source's cursor stays where it was. Fields that only one
  // side has are left out.
  void TransfereDados();

  // After each row.
  std::function<void()> OnRow;

 private:
  DataSet* source_ = nullptr;
  TClientDataSet* target_ = nullptr;
};

}  // namespace orv
