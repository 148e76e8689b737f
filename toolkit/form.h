// A form: its controls in the order of the page, the focus, the layout and the data sets that it owns.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "toolkit/report_answers.h"
#include "toolkit/text.h"
#include "toolkit/user.h"

namespace orv {

class Control;
class DataSet;

// A row of a container's layout.
using LayoutRow = std::vector<Control*>;

class Form {
 public:
  Form(UserInterface& user, std::string name, std::string caption);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  UserInterface& User() const { return user_; }

  // In order of declaration, which is the tab order.
  const std::vector<Control*>& Controls() const { return controls_; }
  // Names ignore case; null for an unknown one.
  Control* Find(std::string_view name) const;
  const std::vector<DataSet*>& Sets() const { return sets_; }
  DataSet* FindSet(std::string_view name) const;
  const std::vector<LayoutRow>& Rows() const { return rows_; }

  // What the form is about, beside its caption: "Incluindo 006770". "" while nothing is at stake.
  const std::string& Badge() const { return badge_; }
  void SetBadge(std::string badge) { badge_ = std::move(badge); }

  // --- Focus.
  Control* Focus() const { return focus_; }
  // Where the focus is going while the focused control is left, null else.
  Control* FocusTarget() const { return exiting_ ? target_ : nullptr; }
  // Leaves the focused control and enters `control`: exit, then enter. An exit that sets the focus elsewhere
  // decides where it goes. True when `control` has the focus in the end. A control that can't take the focus
  // leaves everything as it is.
  bool SetFocus(Control& control);
  // The next control in tab order that takes the focus and isn't passed by, or the one before it.
  void FocusNext(bool forward = true);
  // After an action: a focus on a control that became disabled or hidden moves to the next one that isn't,
  // past dates where there is another.
  void RepairFocus();

  // The button that the form is for, as things stand: of several that can be pressed the last, which stands
  // at the foot. Null where none can.
  Control* Primary() const;

  // --- Life.
  // Fires the close action; false when that refused.
  bool Close();
  bool Closed() const { return closed_; }
  // Opens the form again after it was hidden by a close.
  void Reopen() { closed_ = false; }
  // Shows the form over the others and returns when it is closed.
  void ShowModal();

  // A free number for the owner's use.
  int Tag = 0;

  // --- Messages under the form's caption.
  void Inform(std::string_view text) const;
  void Warn(std::string_view text) const;
  // Tells what was stored, without waiting and without a word in the way of the next key.
  void Stored(std::string_view text) const;
  // True for Yes.
  bool Ask(std::string_view text, bool no_is_default = false) const;

  // --- Events.
  // Every typed character before the focused control gets it, where `KeyPreview` is set; else only what no
  // input field takes. '\r' is Enter.
  std::function<void(char)> OnKeyPress;
  bool KeyPreview = false;

  // What the form's reports may ask by name, beside what its controls hold.
  ReportAnswers Answers;

 protected:
  // Names the controls of each container, in rows: "PageControl1 { TabSheet1 { EdtA PqA / EdtB } TabSheet2 {}
  // }".
  // "/" begins a new row. Every control stands in it once; a name that isn't there is an assertion.
  //
  // Parts of a screen hold controls as containers do, and have no name: "@bar { ... @more { ... } }" the
  // filters and, folded, those that are seldom set; "@form { ... }" the fields of an entry on twelve columns;
  // "@sides { ... }" what stands side by side, in equal shares; "@sums { ... }" what a grid adds up to;
  // "@actions { ... }" the buttons at the foot.
  // A word before a control says what it is: "@primary" the button that is pressed most, "@danger" one that
  // destroys, "@apart" one at the far right, "@nav" a step through rows, "@amount" the field that matters
  // most, "@compact" a group that is small while its grid has no rows, "@narrow" the lesser of two grids,
  // "@low" a grid of a few rows beneath another.
  // "EdtA:4" takes four of a form's columns.
  void Layout(std::string_view text);
  // Makes a data set part of the form under its name.
  void AddSet(DataSet& set) { sets_.push_back(&set); }
  // What a close does; the default only closes.
  virtual void FormClose() {}

 private:
  friend class Control;
  void AddControl(Control& control);

  UserInterface& user_;
  std::string name_;
  std::string caption_;
  std::vector<Control*> controls_;
  std::unordered_map<std::string, Control*, NameHash, NameEqual> by_name_;
  std::vector<DataSet*> sets_;
  std::vector<LayoutRow> rows_;
  std::vector<std::unique_ptr<Control>> parts_;
  std::string badge_;
  Control* focus_ = nullptr;
  Control* redirect_ = nullptr;
  Control* target_ = nullptr;
  bool exiting_ = false;
  bool closed_ = false;
};

}  // namespace orv
