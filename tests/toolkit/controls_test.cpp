// The focus, the events and the layout of a form without a desk around it.
#include "toolkit/controls.h"

#include <gtest/gtest.h>

#include "tests/support/person.h"
#include "toolkit/error.h"

namespace orv {
namespace {

// Notes what a form asks.
class Person : public test::Nobody {
 public:
  Answer Message(MessageKind, std::string_view, std::string_view text, Answer) override {
    told.emplace_back(text);
    return Answer::Ok;
  }
  std::vector<std::string> told;
};

class Sample : public Form {
 public:
  explicit Sample(UserInterface& user) : Form(user, "Sample", "Amostra") {
    Layout("Pages { First { EdtA EdtB / Group { DtC CbD } } Second { EdtE } } / Ok Small");
    for (Control* control : Controls()) {
      control->OnEnter = [this, control] { trace += "+" + control->Name() + " "; };
      control->OnExit = [this, control] { trace += "-" + control->Name() + " "; };
    }
    EdtA.OnChange = [this] { trace += "A=" + EdtA.Text() + " "; };
  }
  std::string Trace() { return std::exchange(trace, ""); }

  PageControl Pages{*this, "Pages"};
  TabSheet First{*this, "First", "Um"};
  Edit EdtA{*this, "EdtA", "A", 4};
  ReadOnlyEdit EdtB{*this, "EdtB"};
  GroupBox Group{*this, "Group"};
  DateEdit DtC{*this, "DtC", "C"};
  CheckBox CbD{*this, "CbD", "D"};
  TabSheet Second{*this, "Second", "Dois"};
  MoneyEdit EdtE{*this, "EdtE", "E"};
  Button Ok{*this, "Ok", "&Ok"};
  SmallButton Small{*this, "Small", "Pequeno"};
  std::string trace;
};

TEST(FormTest, ExitComesBeforeEnterAndMaySendTheFocusElsewhere) {
  Person person;
  Sample form(person);
  EXPECT_TRUE(form.SetFocus(form.EdtA));
  EXPECT_TRUE(form.SetFocus(form.DtC));
  EXPECT_EQ(form.Trace(), "+EdtA -EdtA +DtC ");

  // Pulled back: the exit runs once, nobody is entered.
  form.DtC.OnExit = [&] {
    form.trace += "back ";
    form.DtC.SetFocus();
  };
  EXPECT_FALSE(form.SetFocus(form.Ok));
  EXPECT_EQ(form.Trace(), "back ");
  EXPECT_EQ(form.Focus(), &form.DtC);

  // Sent on to a third control.
  form.DtC.OnExit = [&] { form.CbD.SetFocus(); };
  EXPECT_FALSE(form.SetFocus(form.Ok));
  EXPECT_EQ(form.Trace(), "+CbD ");

  // An exit that disables where the focus was going leaves it where it was.
  form.CbD.OnExit = [&] { form.Ok.SetEnabled(false); };
  EXPECT_FALSE(form.SetFocus(form.Ok));
  EXPECT_EQ(form.Focus(), &form.CbD);
}

TEST(FormTest, TabSkipsWhatTakesNoFocusAndTheFocusLeavesWhatIsSwitchedOff) {
  Person person;
  Sample form(person);
  std::string order;
  form.SetFocus(form.EdtA);
  for (int i = 0; i < 4; ++i) form.FocusNext(), order += form.Focus()->Name() + " ";
  EXPECT_EQ(order, "DtC CbD Ok EdtA ");
  form.FocusNext(false);
  EXPECT_EQ(form.Focus(), &form.Ok);

  form.SetFocus(form.CbD);
  form.Group.SetEnabled(false);
  EXPECT_FALSE(form.CbD.Usable());
  form.RepairFocus();
  EXPECT_EQ(form.Focus(), &form.Ok);
  EXPECT_FALSE(form.SetFocus(form.EdtE));  // on the page behind
  form.Pages.UserPage("second");
  EXPECT_TRUE(form.SetFocus(form.EdtE));
  form.Second.SetEnabled(false);
  EXPECT_THROW(form.Pages.UserPage("Second"), UserError);
  EXPECT_THROW(form.Pages.UserPage("Third"), UserError);
}

TEST(FormTest, InputsKeepWhatTheyCanHold) {
  Person person;
  Sample form(person);
  form.EdtA.UserSet("açaí é");
  form.EdtA.SetText("açaí");
  EXPECT_EQ(form.Trace(), "A=açaí ") << "the same text is no change";
  EXPECT_THROW(form.EdtB.UserSet("x"), UserError);

  form.EdtE.UserSet("1234,5");
  EXPECT_EQ(form.EdtE.Text(), "1.234,50");
  EXPECT_THROW(form.EdtE.UserSet("12a"), ConversionError);
  EXPECT_THROW(form.EdtE.UserSet("900000000000000,00"), RangeError);
  EXPECT_EQ(form.EdtE.Amount(), Currency::ParseNeutral("1234.50"));
  form.EdtE.UserSet(" ");
  EXPECT_TRUE(form.EdtE.Empty());

  form.SetFocus(form.DtC);
  form.DtC.UserSet("31/02/2026");
  EXPECT_TRUE(form.DtC.Date().Empty());
  EXPECT_FALSE(form.SetFocus(form.EdtA));
  EXPECT_EQ(person.told, std::vector<std::string>{"Data inválida."});
  form.DtC.UserSet("  /  /    ");
  EXPECT_EQ(form.DtC.Text(), "");
  EXPECT_TRUE(form.SetFocus(form.EdtA));

  form.CbD.UserSet("true");
  EXPECT_TRUE(form.CbD.Checked());
  EXPECT_THROW(form.CbD.UserSet("S"), UserError);
}

TEST(ListTest, ItemsByIndexAndCaptionWithOneChangeEach) {
  Person person;
  Sample form(person);
  RadioGroup group(form, "Rg", "Situação", {"&Pendente", "Baixado", "0"});
  int changes = 0;
  group.OnChange = [&] { ++changes; };
  group.UserSet("Pendente");
  EXPECT_EQ(changes, 0);
  group.UserSet("Baixado");
  group.UserSet("2");
  EXPECT_EQ(group.Text(), "0");
  EXPECT_THROW(group.UserSet("3"), UserError);
  EXPECT_THROW(group.UserSet("baixado"), UserError);
  group.SetItems({"só um"});
  EXPECT_EQ(group.ItemIndex(), -1);
  EXPECT_EQ(changes, 3);

  TrackBar bar(form, "Bar", "", 0, 10, 5);
  bar.UserSet("99999999999");
  EXPECT_EQ(bar.Position(), 10);
  bar.SetBounds(0, 3);
  EXPECT_EQ(bar.Position(), 3);
}

}  // namespace
}  // namespace orv
