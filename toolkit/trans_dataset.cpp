#include "toolkit/trans_dataset.h"

#include "toolkit/row_writer.h"

namespace orv {

void TTransDataSet::CriaCampos() {
  ORV_ASSERT(source_ != nullptr && target_ != nullptr);
  target_->Close();
  target_->FieldDefs.Clear();
  for (const Field* field : source_->Fields()) {
    if (target_->FindField(field->Name()) == nullptr)
      target_->FieldDefs.Add(field->Name(), field->Type(), field->Size());
  }
  target_->CreateDataSet();
}

void TTransDataSet::TransfereDados() {
  ORV_ASSERT(source_ != nullptr && target_ != nullptr);
  const ControlsHold hold(*target_);
  target_->PostIfEditing();
  std::vector<const Field*> from;
  for (const Field* field : target_->Fields()) from.push_back(source_->FindField(field->Name()));
  RowWriter copy(*target_);
  const int64_t count = source_->DisplayCount();
  for (int64_t row = 0; row < count; ++row) {
    for (std::size_t i = 0; i < from.size(); ++i) {
      if (from[i] != nullptr) copy[*target_->Fields()[i]] = source_->Cell(row, *from[i]);
    }
    copy.Append();
    if (OnRow) OnRow();
  }
  if (count > 0) target_->First();
}

}  // namespace orv
