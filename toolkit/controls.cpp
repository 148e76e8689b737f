#include "toolkit/controls.h"

#include <algorithm>
#include <charconv>

#include "toolkit/error.h"
#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {
namespace {

// No field of the database is longer; what is more is a mistake or an attack.
constexpr std::size_t kMaxText = 32000;

// The item that a text names: its index, its caption, or its caption without the mark of the access key.
int ItemOf(const std::vector<std::string>& items, std::string_view text) {
  int index = -1;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), index);
  if (result.ec == std::errc() && result.ptr == text.data() + text.size()) {
    if (index >= -1 && index < static_cast<int>(items.size())) return index;
  }
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i] == text || ReplaceAll(items[i], "&", "") == text) return static_cast<int>(i);
  }
  throw UserError("\"" + std::string(text) + "\" não está na lista.");
}

}  // namespace

// --- Edit.

std::string Edit::Normal(std::string_view text) const {
  const std::string clean = CleanUtf8(CutChars(text, kMaxText));
  return max_length_ > 0 ? std::string(CutChars(clean, static_cast<std::size_t>(max_length_))) : clean;
}

void Edit::SetText(std::string_view text) {
  std::string normal = Normal(text);
  if (normal == text_) return;
  text_ = std::move(normal);
  ReadText();
  Touch();
  if (OnChange) OnChange();
}

void Edit::SetReadOnly(bool read_only) {
  if (read_only == read_only_) return;
  read_only_ = read_only;
  Touch();
}

void Edit::DescribeFixed(Properties& properties) const {
  if (max_length_ > 0) properties.emplace_back("maxLength", int64_t{max_length_});
}

void Edit::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("text", text_);
  properties.emplace_back("readOnly", read_only_);
}

void Edit::UserSet(std::string_view text) {
  if (read_only_) throw UserError("Este campo é só de leitura.");
  SetText(text);
  // What the display shows may differ from what the desk keeps.
  Touch();
}

// --- MoneyEdit.

std::string MoneyEdit::Normal(std::string_view text) const {
  return Trim(text).empty() ? "" : Currency::ParseBrazil(text).Brazil();
}

void MoneyEdit::UserSet(std::string_view text) {
  if (!Trim(text).empty()) Currency::ParseTyped(text);
  Edit::UserSet(text);
}

// --- DateEdit.

std::string DateEdit::Normal(std::string_view text) const {
  // The mask without digits is an empty date.
  const bool digits = std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  return digits ? Edit::Normal(Trim(text)) : "";
}

bool DateEdit::Leaving() {
  if (Empty() || ReadOnly() || !Date().Empty()) return true;
  Owner().Inform("Data inválida.");
  return false;
}

// --- ListControl.

void ListControl::SetItems(std::vector<std::string> items) {
  items_ = std::move(items);
  Touch();
  if (index_ >= static_cast<int>(items_.size())) SetItemIndex(-1);
}

void ListControl::SetItemIndex(int index) {
  if (index < 0 || index >= static_cast<int>(items_.size())) index = -1;
  if (index == index_) return;
  index_ = index;
  Touch();
  if (OnChange) OnChange();
}

void ListControl::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("items", items_);
  properties.emplace_back("index", int64_t{index_});
  properties.emplace_back("text", Text());
}

void ListControl::UserSet(std::string_view text) {
  SetItemIndex(ItemOf(items_, text));
  Touch();
}

// --- CheckBox.

void CheckBox::SetChecked(bool checked) {
  if (checked == checked_) return;
  checked_ = checked;
  Touch();
  if (OnChange) OnChange();
}

void CheckBox::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("checked", checked_);
}

void CheckBox::UserSet(std::string_view text) {
  if (text != "true" && text != "false")
    throw UserError("\"" + std::string(text) + "\" não é true nem false.");
  SetChecked(text == "true");
  Touch();
}

void CheckBox::UserClick() { SetChecked(!checked_); }

// --- Buttons.

void Button::UserClick() {
  if (OnClick) OnClick();
}

void SmallButton::UserClick() {
  if (OnClick) OnClick();
}

void MenuItem::UserClick() {
  if (OnClick) OnClick();
}

// --- PageControl.

void TabSheet::Describe(Properties& properties) const {
  Control::Describe(properties);
  // A page behind another one is not visible, but has a tab to press.
  properties.emplace_back("tab", Visible());
}

std::vector<TabSheet*> PageControl::Pages() const {
  std::vector<TabSheet*> pages;
  for (const LayoutRow& row : Rows()) {
    for (Control* child : row) {
      auto* page = dynamic_cast<TabSheet*>(child);
      ORV_ASSERT(page != nullptr);
      pages.push_back(page);
    }
  }
  return pages;
}

TabSheet* PageControl::ActivePage() const {
  const auto pages = Pages();
  return active_ >= 0 && active_ < static_cast<int>(pages.size()) ? pages[static_cast<std::size_t>(active_)]
                                                                  : nullptr;
}

void PageControl::SetActivePageIndex(int index) {
  if (index == active_ || index < 0 || index >= static_cast<int>(Pages().size())) return;
  active_ = index;
  TouchAll();
  if (OnChange) OnChange();
}

void PageControl::SetActivePage(const TabSheet& page) {
  const auto pages = Pages();
  SetActivePageIndex(static_cast<int>(std::find(pages.begin(), pages.end(), &page) - pages.begin()));
}

void PageControl::UserPage(std::string_view name) {
  for (TabSheet* page : Pages()) {
    if (!SameText(page->Name(), name)) continue;
    // A hidden page has no tab to press; the page in front says nothing of the others.
    if (!page->Visible() || !page->Usable()) throw UserError("Esta página não está disponível.");
    SetActivePage(*page);
    return;
  }
  throw UserError("A página \"" + std::string(name) + "\" não existe.");
}

bool PageControl::ShowsChild(const Control& child) const { return ActivePage() == &child; }

void PageControl::Describe(Properties& properties) const {
  Control::Describe(properties);
  const TabSheet* page = ActivePage();
  properties.emplace_back("page", page ? page->Name() : std::string());
  properties.emplace_back("index", int64_t{active_});
}

// --- TrackBar and ProgressBar.

void TrackBar::SetPosition(int position) {
  position = std::clamp(position, minimum_, maximum_);
  if (position == position_) return;
  position_ = position;
  Touch();
  if (OnChange) OnChange();
}

void TrackBar::SetBounds(int minimum, int maximum) {
  minimum_ = minimum;
  maximum_ = std::max(minimum, maximum);
  Touch();
  SetPosition(position_);
}

void TrackBar::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("minimum", int64_t{minimum_});
  properties.emplace_back("maximum", int64_t{maximum_});
  properties.emplace_back("position", int64_t{position_});
}

void TrackBar::UserSet(std::string_view text) {
  const int64_t wanted = ParseInteger(Trim(text));
  SetPosition(static_cast<int>(std::clamp<int64_t>(wanted, minimum_, maximum_)));
  Touch();
}

void ProgressBar::SetPosition(int position) {
  position_ = std::clamp(position, 0, maximum_);
  Touch();
  Owner().User().Progress(position_, maximum_, Caption());
}

void ProgressBar::SetMaximum(int maximum) {
  maximum_ = std::max(0, maximum);
  position_ = std::min(position_, maximum_);
  Touch();
}

void ProgressBar::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("position", int64_t{position_});
  properties.emplace_back("maximum", int64_t{maximum_});
}

}  // namespace orv
