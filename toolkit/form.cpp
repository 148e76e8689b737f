#include "toolkit/form.h"

#include <algorithm>
#include <span>

#include "toolkit/control.h"
#include "toolkit/dataset.h"
#include "toolkit/error.h"
#include "toolkit/scoped.h"
#include "toolkit/value.h"

namespace orv {
namespace {

// Reads the words of a layout: names, "{", "}" and "/".
class LayoutReader {
 public:
  explicit LayoutReader(std::string_view text) : text_(text) {}
  // "" at the end.
  std::string_view Next() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n')) ++at_;
    const std::size_t from = at_;
    while (at_ < text_.size() && text_[at_] != ' ' && text_[at_] != '\n') ++at_;
    return text_.substr(from, at_ - from);
  }
  std::string_view Peek() {
    const std::size_t from = at_;
    const std::string_view word = Next();
    at_ = from;
    return word;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

// A part of a screen between the form and its controls.
class LayoutPart : public Control {
 public:
  LayoutPart(Form& form, std::string_view kind) : Control(form), kind_(kind) {}
  std::string_view Kind() const override { return kind_; }
  bool Container() const override { return true; }

 private:
  const std::string kind_;
};

constexpr std::string_view kParts[] = {"bar", "more", "picture", "form", "sides", "sums", "actions"};
constexpr std::string_view kRoles[] = {"primary", "danger",  "apart",  "nav",
                                       "amount",  "compact", "narrow", "low"};

bool Among(std::span<const std::string_view> words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

Form::Form(UserInterface& user, std::string name, std::string caption)
    : user_(user), name_(std::move(name)), caption_(std::move(caption)) {}

Form::~Form() = default;

Control* Form::Find(std::string_view name) const {
  const auto found = by_name_.find(name);
  return found == by_name_.end() ? nullptr : found->second;
}

DataSet* Form::FindSet(std::string_view name) const {
  for (DataSet* set : sets_) {
    if (SameText(set->Name(), name)) return set;
  }
  return nullptr;
}

void Form::AddControl(Control& control) {
  controls_.push_back(&control);
  ORV_ASSERT(by_name_.emplace(control.Name(), &control).second);
}

void Form::Layout(std::string_view text) {
  LayoutReader reader(text);
  // `parent` is null for the form itself.
  const std::function<void(Control*)> read = [&](Control* parent) {
    auto& rows = parent ? parent->rows_ : rows_;
    ORV_ASSERT(rows.empty());
    LayoutRow row;
    std::string_view role;
    const auto end_row = [&] {
      if (!row.empty()) rows.push_back(std::move(row));
      row.clear();
    };
    for (std::string_view word = reader.Next(); !word.empty() && word != "}"; word = reader.Next()) {
      if (word == "/") {
        end_row();
        continue;
      }
      if (word[0] == '@' && Among(kRoles, word.substr(1))) {
        role = word.substr(1);
        continue;
      }
      Control* control = nullptr;
      if (word[0] == '@') {
        ORV_ASSERT(Among(kParts, word.substr(1)));
        control = parts_.emplace_back(std::make_unique<LayoutPart>(*this, word.substr(1))).get();
      } else {
        const std::size_t colon = word.find(':');
        control = Find(word.substr(0, colon));
        ORV_ASSERT(control != nullptr && control->parent_ == nullptr);
        if (colon != std::string_view::npos)
          control->span_ = static_cast<int>(ParseInteger(word.substr(colon + 1)));
      }
      control->parent_ = parent;
      control->role_ = role;
      role = "";
      row.push_back(control);
      if (reader.Peek() == "{") {
        ORV_ASSERT(control->Container());
        reader.Next();
        read(control);
      }
    }
    end_row();
  };
  read(nullptr);
}

bool Form::SetFocus(Control& control) {
  if (exiting_) {
    // An exit decides where the focus goes; it isn't left a second time.
    redirect_ = &control;
    return true;
  }
  if (focus_ == &control) return true;
  if (!control.CanFocus()) return false;

  Control* target = &control;
  if (focus_ != nullptr) {
    redirect_ = nullptr;
    target_ = target;
    bool stays = false;
    {
      const ScopedValue exiting(exiting_, true);
      stays = !focus_->Leaving();
      if (!stays && focus_->OnExit) focus_->OnExit();
    }
    if (stays) return false;
    if (redirect_ != nullptr && (redirect_ == focus_ || redirect_->CanFocus())) target = redirect_;
    if (target == focus_) return false;
    if (!target->CanFocus()) return false;
  }
  focus_ = target;
  if (target->OnEnter) target->OnEnter();
  return focus_ == &control;
}

void Form::FocusNext(bool forward) {
  if (controls_.empty()) return;
  const auto count = controls_.size();
  std::size_t at = forward ? count - 1 : 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (controls_[i] == focus_) at = i;
  }
  for (std::size_t step = 1; step <= count; ++step) {
    Control* next = controls_[(forward ? at + step : at + count - step) % count];
    if (!next->CanFocus() || (forward && next->Passed && next->Passed())) continue;
    SetFocus(*next);
    return;
  }
}

Control* Form::Primary() const {
  for (auto control = controls_.rbegin(); control != controls_.rend(); ++control) {
    if ((*control)->Role() == "primary" && (*control)->Shown() && (*control)->Usable()) return *control;
  }
  return nullptr;
}

void Form::RepairFocus() {
  if (focus_ != nullptr && focus_->CanFocus()) return;
  if (focus_ == nullptr && closed_) return;
  const auto count = controls_.size();
  std::size_t at = count - 1;
  for (std::size_t i = 0; i < count; ++i) {
    if (controls_[i] == focus_) at = i;
  }
  focus_ = nullptr;
  // A date may be overwritten when it is entered: who comes to it must have meant to.
  for (const bool dates : {false, true}) {
    for (std::size_t step = 1; step <= count; ++step) {
      Control* next = controls_[(at + step) % count];
      if (!next->CanFocus() || (next->Kind() == "date" && !dates)) continue;
      focus_ = next;
      if (next->OnEnter) next->OnEnter();
      return;
    }
  }
}

bool Form::Close() {
  if (closed_) return true;
  FormClose();
  closed_ = true;
  return true;
}

void Form::ShowModal() { user_.RunModal(*this); }

void Form::Inform(std::string_view text) const {
  user_.Message(MessageKind::Information, caption_, text, Answer::Ok);
}

void Form::Stored(std::string_view text) const { user_.Note(NoteKind::Stored, text); }

void Form::Warn(std::string_view text) const {
  user_.Message(MessageKind::Warning, caption_, text, Answer::Ok);
}

bool Form::Ask(std::string_view text, bool no_is_default) const {
  return user_.Message(MessageKind::Question, caption_, text, no_is_default ? Answer::No : Answer::Yes) ==
         Answer::Yes;
}

}  // namespace orv
