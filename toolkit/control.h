// The controls of a form. No drawing: a control is its state, its events, and the properties that a display
// shows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "toolkit/form.h"

namespace orv {

// What a display is told of a control, by name: "text", "checked", "enabled" and so on.
using Property = std::variant<bool, int64_t, std::string, std::vector<std::string>>;
using Properties = std::vector<std::pair<std::string, Property>>;

// A key as the door names it: "Enter", "Tab", "F4", "Delete", "Escape" or a character.
struct KeyPress {
  std::string key;
  std::string column;    // of a grid
  bool handled = false;  // set by a handler that used the key up
};

class Control {
 public:
  Control(Form& form, std::string name, std::string caption = "");
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Form& Owner() const { return form_; }
  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);
  const std::string& Color() const { return color_; }
  // A colour by its meaning: "", "warning", "error", "good", "muted".
  void SetColor(std::string color);

  Control* Parent() const { return parent_; }
  // Its own switch; what the user meets is `Usable` and `Shown`, which ask the containers too.
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  bool Usable() const;
  bool Shown() const;

  // True when the tab order stops here.
  virtual bool TakesFocus() const { return false; }
  bool CanFocus() const { return TakesFocus() && Usable() && Shown(); }
  bool Focused() const { return form_.Focus() == this; }
  void SetFocus() { form_.SetFocus(*this); }

  // The name of the kind that a display draws: "edit", "money", "grid".
  virtual std::string_view Kind() const = 0;
  // Properties that never change: captions of columns, maximum length.
  virtual void DescribeFixed(Properties& properties) const;
  // Properties that change.
  virtual void Describe(Properties& properties) const;

  // --- What the user does; each raises UserError for what a person couldn't do here.
  virtual void UserSet(std::string_view text);
  virtual void UserClick();
  virtual void UserKey(KeyPress& key);
  // True when a typed character goes into the control's own text.
  virtual bool TakesText() const { return false; }
  // The check before the focus leaves: false keeps it, after telling the user why.
  virtual bool Leaving() { return true; }

  // --- Containers.
  virtual bool Container() const { return false; }
  // True when the child is on the page in front.
  virtual bool ShowsChild(const Control&) const { return true; }
  const std::vector<LayoutRow>& Rows() const { return rows_; }

  // The word that the layout has for it, "" for none, and how many of a form's twelve columns it takes, 0 for
  // as many as its content asks.
  const std::string& Role() const { return role_; }
  int Span() const { return span_; }

  // The set whose rows the control shows, null for one that isn't bound.
  virtual const DataSet* BoundSet() const { return nullptr; }
  // Collected by the session: true once after a change.
  bool TakeDirty() { return std::exchange(dirty_, false); }

  std::function<void()> OnEnter, OnExit, OnClick, OnDblClick;
  // While it says so the control has what it needs, and Tab and Enter go on to the next one. The way back and
  // a click reach it as ever.
  std::function<bool()> Passed;
  std::function<void(KeyPress&)> OnKey;

 protected:
  void Touch() { dirty_ = true; }
  // A change of a container concerns all that it holds.
  void TouchAll();
  // A part of the layout, which is no control of the form: it has no name and no state.
  explicit Control(Form& form) : form_(form) {}

 private:
  friend class Form;
  Form& form_;
  std::string name_;
  std::string caption_;
  std::string color_;
  Control* parent_ = nullptr;
  std::vector<LayoutRow> rows_;
  std::string role_;
  int span_ = 0;
  bool enabled_ = true;
  bool visible_ = true;
  bool dirty_ = true;
};

}  // namespace orv
