#include "frame/fill.h"

#include <algorithm>

#include "frame/filters.h"
#include "toolkit/control.h"
#include "toolkit/controls.h"
#include "toolkit/error.h"
#include "toolkit/form.h"
#include "toolkit/text.h"

namespace orv {

std::vector<std::string> Fill(Form& form, const FieldTexts& fields) {
  std::vector<std::string> left;
  const auto known = [&](const auto& field) { return form.Find(field.first) != nullptr; };
  for (const auto& field : fields) {
    if (!known(field)) left.push_back(field.first);
  }
  for (Control* control : form.Controls()) {
    const auto field = std::find_if(fields.begin(), fields.end(),
                                    [&](const auto& one) { return SameText(one.first, control->Name()); });
    // What already says so isn't touched.
    if (field == fields.end() || FieldText(*control) == field->second) continue;
    try {
      if (auto* pages = dynamic_cast<PageControl*>(control); pages != nullptr && pages->Usable()) {
        pages->UserPage(field->second);
        continue;
      }
      if (control->CanFocus() && form.SetFocus(*control)) {
        control->UserSet(field->second);
        continue;
      }
    } catch (const UserError&) {
      // A list that has lost the item, a text that is no date any more.
    }
    left.push_back(field->first);
  }
  return left;
}

}  // namespace orv
