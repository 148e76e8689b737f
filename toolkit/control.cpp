#include "toolkit/control.h"

#include "toolkit/error.h"

namespace orv {

Control::Control(Form& form, std::string name, std::string caption)
    : form_(form), name_(std::move(name)), caption_(std::move(caption)) {
  form_.AddControl(*this);
}

void Control::SetCaption(std::string caption) {
  if (caption == caption_) return;
  caption_ = std::move(caption);
  Touch();
}

void Control::SetColor(std::string color) {
  if (color == color_) return;
  color_ = std::move(color);
  Touch();
}

void Control::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  TouchAll();
}

void Control::SetVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  TouchAll();
}

bool Control::Usable() const { return enabled_ && (parent_ == nullptr || parent_->Usable()); }

bool Control::Shown() const {
  return visible_ && (parent_ == nullptr || (parent_->ShowsChild(*this) && parent_->Shown()));
}

void Control::DescribeFixed(Properties&) const {}

void Control::Describe(Properties& properties) const {
  properties.emplace_back("caption", caption_);
  properties.emplace_back("enabled", Usable());
  properties.emplace_back("visible", Shown());
  properties.emplace_back("color", color_);
}

void Control::UserSet(std::string_view) { throw UserError("Este campo não recebe um valor."); }

void Control::UserClick() { throw UserError("Este campo não é um botão."); }

void Control::UserKey(KeyPress& key) {
  if (OnKey) OnKey(key);
}

void Control::TouchAll() {
  Touch();
  for (const LayoutRow& row : rows_) {
    for (Control* child : row) child->TouchAll();
  }
}

}  // namespace orv
