// Inputs, buttons and containers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "toolkit/control.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// A text input. Fires `OnChange` whenever its text becomes another, by the user or the program.
class Edit : public Control {
 public:
  // `max_length` in characters, 0 for none but the desk's own bound.
  Edit(Form& form, std::string name, std::string caption = "", int max_length = 0)
      : Control(form, std::move(name), std::move(caption)), max_length_(max_length) {}

  const std::string& Text() const { return text_; }
  // Longer texts are cut to the maximum length.
  void SetText(std::string_view text);
  void Clear() { SetText(""); }
  bool Empty() const { return text_.empty(); }
  bool ReadOnly() const { return read_only_; }
  void SetReadOnly(bool read_only);
  int MaxLength() const { return max_length_; }

  std::string_view Kind() const override { return "edit"; }
  bool TakesFocus() const override { return !read_only_; }
  bool TakesText() const override { return true; }
  void DescribeFixed(Properties& properties) const override;
  void Describe(Properties& properties) const override;
  void UserSet(std::string_view text) override;

  std::function<void()> OnChange;

 protected:
  // The text as the control keeps it.
  virtual std::string Normal(std::string_view text) const;
  // The text has become another: what it says is read once, before `OnChange`.
  virtual void ReadText() {}

 private:
  std::string text_;
  int max_length_;
  bool read_only_ = false;
};

// A text that the program shows and nobody types into.
class ReadOnlyEdit : public Edit {
 public:
  ReadOnlyEdit(Form& form, std::string name, std::string caption = "")
      : Edit(form, std::move(name), std::move(caption)) {
    SetReadOnly(true);
  }
};

// An amount, shown as "1.234,56". Its text may be empty, which counts as zero.
class MoneyEdit : public Edit {
 public:
  using Edit::Edit;
  Currency Amount() const { return amount_; }
  void SetAmount(Currency amount) { SetText(amount.Brazil()); }

  std::string_view Kind() const override { return "money"; }
  // Raises UserError for a text that isn't an amount of two decimals, and for one that is too large.
  void UserSet(std::string_view text) override;

 protected:
  std::string Normal(std::string_view text) const override;
  void ReadText() override { amount_ = Currency::ParseBrazilOr(Text(), Currency()); }

 private:
  Currency amount_;
};

// A date, typed "dd/mm/yyyy"; the empty mask is the empty date. While typed it may hold what isn't a date;
// the focus doesn't leave it so.
class DateEdit : public Edit {
 public:
  DateEdit(Form& form, std::string name, std::string caption = "")
      : Edit(form, std::move(name), std::move(caption), 10) {}
  // The empty date for a text that isn't one.
  orv::Date Date() const { return date_; }
  void SetDate(orv::Date date) { SetText(date.Brazil()); }

  std::string_view Kind() const override { return "date"; }
  bool Leaving() override;

 protected:
  std::string Normal(std::string_view text) const override;
  void ReadText() override { date_ = orv::Date::ParseBrazilOr(Text(), orv::Date()); }

 private:
  orv::Date date_;
};

// A list of which one item is chosen, or none (-1).
class ListControl : public Control {
 public:
  ListControl(Form& form, std::string name, std::string caption, std::vector<std::string> items, int index)
      : Control(form, std::move(name), std::move(caption)), items_(std::move(items)), index_(index) {}

  const std::vector<std::string>& Items() const { return items_; }
  void SetItems(std::vector<std::string> items);
  int ItemIndex() const { return index_; }
  // An index outside the items becomes -1.
  void SetItemIndex(int index);
  // The chosen item, "" without one.
  std::string Text() const { return index_ < 0 ? "" : items_[static_cast<std::size_t>(index_)]; }

  bool TakesFocus() const override { return true; }
  void Describe(Properties& properties) const override;
  // An index or a caption.
  void UserSet(std::string_view text) override;

  std::function<void()> OnChange;

 private:
  std::vector<std::string> items_;
  int index_;
};

class ComboBox : public ListControl {
 public:
  ComboBox(Form& form, std::string name, std::string caption = "", std::vector<std::string> items = {},
           int index = -1)
      : ListControl(form, std::move(name), std::move(caption), std::move(items), index) {}
  std::string_view Kind() const override { return "combo"; }
};

class ListBox : public ListControl {
 public:
  ListBox(Form& form, std::string name, std::string caption = "", std::vector<std::string> items = {},
          int index = -1)
      : ListControl(form, std::move(name), std::move(caption), std::move(items), index) {}
  std::string_view Kind() const override { return "list"; }
};

class RadioGroup : public ListControl {
 public:
  RadioGroup(Form& form, std::string name, std::string caption, std::vector<std::string> items, int index = 0)
      : ListControl(form, std::move(name), std::move(caption), std::move(items), index) {}
  std::string_view Kind() const override { return "radio"; }
};

class CheckBox : public Control {
 public:
  CheckBox(Form& form, std::string name, std::string caption, bool checked = false)
      : Control(form, std::move(name), std::move(caption)), checked_(checked) {}
  bool Checked() const { return checked_; }
  void SetChecked(bool checked);

  std::string_view Kind() const override { return "check"; }
  bool TakesFocus() const override { return true; }
  void Describe(Properties& properties) const override;
  void UserSet(std::string_view text) override;
  void UserClick() override;

  std::function<void()> OnChange;

 private:
  bool checked_;
};

class Button : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "button"; }
  bool TakesFocus() const override { return true; }
  void UserClick() override;
};

// A button that leaves the focus where it is.
class SmallButton : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "smallButton"; }
  void UserClick() override;
};

class Label : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "label"; }
};

class Panel : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "panel"; }
  bool Container() const override { return true; }
};

class GroupBox : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "group"; }
  bool Container() const override { return true; }
};

class TabSheet : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "page"; }
  bool Container() const override { return true; }
  void Describe(Properties& properties) const override;
};

// Pages of which one is in front. The pages are the tab sheets that the layout puts into it.
class PageControl : public Control {
 public:
  PageControl(Form& form, std::string name, int active = 0)
      : Control(form, std::move(name)), active_(active) {}
  std::vector<TabSheet*> Pages() const;
  void SetActivePageIndex(int index);
  TabSheet* ActivePage() const;
  void SetActivePage(const TabSheet& page);
  // A page by name, as the user chooses it.
  void UserPage(std::string_view page);

  std::string_view Kind() const override { return "pages"; }
  bool Container() const override { return true; }
  bool ShowsChild(const Control& child) const override;
  void Describe(Properties& properties) const override;

  std::function<void()> OnChange;

 private:
  int active_;
};

// A number between bounds, by sliding.
class TrackBar : public Control {
 public:
  TrackBar(Form& form, std::string name, std::string caption, int minimum, int maximum, int position)
      : Control(form, std::move(name), std::move(caption)),
        minimum_(minimum),
        maximum_(maximum),
        position_(position) {}
  int Position() const { return position_; }
  // Outside the bounds it takes the nearer one.
  void SetPosition(int position);
  int Minimum() const { return minimum_; }
  int Maximum() const { return maximum_; }
  void SetBounds(int minimum, int maximum);

  std::string_view Kind() const override { return "track"; }
  bool TakesFocus() const override { return true; }
  void Describe(Properties& properties) const override;
  void UserSet(std::string_view text) override;

  std::function<void()> OnChange;

 private:
  int minimum_, maximum_, position_;
};

class ProgressBar : public Control {
 public:
  using Control::Control;
  int Position() const { return position_; }
  int Maximum() const { return maximum_; }
  // Also tells the user's display at once, and ends the action when the user cancelled.
  void SetPosition(int position);
  void SetMaximum(int maximum);

  std::string_view Kind() const override { return "progress"; }
  void Describe(Properties& properties) const override;

 private:
  int position_ = 0, maximum_ = 100;
};

// An item of a pop-up menu, and the menu. The menu's `OnPopup` decides what is enabled before a choice.
class MenuItem : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "menuItem"; }
  void UserClick() override;
};

class PopupMenu : public Control {
 public:
  using Control::Control;
  std::string_view Kind() const override { return "menu"; }
  bool Container() const override { return true; }
  std::function<void()> OnPopup;
};

}  // namespace orv
