#include "toolkit/client_dataset.h"

namespace orv {

void FieldDefs::Add(std::string name, FieldType type, int size) {
  if (set_.Active()) throw UserError("Os campos de \"" + set_.Name() + "\" não mudam com a tabela aberta.");
  if (set_.FindField(name) != nullptr)
    throw UserError("O campo \"" + name + "\" já existe em \"" + set_.Name() + "\".");
  set_.AddField(std::move(name), type, size);
}

void FieldDefs::Clear() {
  if (set_.Active()) throw UserError("Os campos de \"" + set_.Name() + "\" não mudam com a tabela aberta.");
  set_.ClearRunTimeFields();
  // An order or a filter names fields that may not come back.
  set_.SetIndexFieldNames("");
  set_.SetFiltered(false);
}

void TClientDataSet::CreateDataSet() {
  if (Active()) return;
  if (Fields().empty()) throw UserError("A tabela \"" + Name() + "\" não tem campos.");
  OpenRows();
  Opened();
}

void TClientDataSet::EmptyDataSet() {
  CheckActive();
  if (Editing()) Cancel();
  DropRows();
  SetEnds(true, true);
  Scrolled();
}

}  // namespace orv
