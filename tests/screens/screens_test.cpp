// What holds for every screen that is registered.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>

#include "frame/registry.h"
#include "frame/screen.h"
#include "host/services/session_services.h"
#include "tests/support/desk_test.h"
#include "tests/support/person.h"
#include "toolkit/lookup.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

// Answers what a screen asks while it is made and looked at: nothing, with no.
class Looker : public Nobody {
 public:
  Answer Message(MessageKind kind, std::string_view, std::string_view, Answer) override {
    return kind == MessageKind::Question ? Answer::No : Answer::Ok;
  }
  LookupChoice Choose(TPesquisa& lookup) override {
    if (on_list) on_list(lookup);
    return {};
  }
  // A dialog is looked at as if it stood open.
  void RunModal(Form& form) override {
    auto& screen = dynamic_cast<Screen&>(form);
    screen.Owner().HandleShown(screen);
  }
  std::function<void(TPesquisa&)> on_list;
};

constexpr const char* kShared[] = {"TbCadConta", "tbBanco",    "tbHistorico",
                                   "tbsubGrupo", "tbEntidade", "tbRepresentante",
                                   "TbSituacao", "tbContaCor", "tbCheque_pre"};

class ScreensTest : public DeskTest {
 protected:
  // Makes each registered screen, hands it over, and closes it again.
  template <class Look>
  void ForEach(Look look) {
    const Module module("orvCC");
    const auto all = ClassRegistry::Instance().All();
    ASSERT_FALSE(all.empty());
    Application application(user_, Clock(Date::ParseNeutral(kToday)));
    SessionServices services(application, Db(), "ana", "_001");
    for (const ScreenInfo& info : all) {
      SCOPED_TRACE(info.class_name);
      Screen& screen = application.CreateScreen(info.class_name);
      application.Show(screen);
      look(info, screen);
      screen.Close();
      application.HandleClosed(screen);
      application.FreeClosed();
      EXPECT_TRUE(application.Shown().empty());
      // Only what its caller still reads is hidden rather than freed.
      const Screen* left = application.FindComponent(info.class_name.substr(1));
      if (left != nullptr) {
        EXPECT_TRUE(left->Closed() && !left->FreeOnClose());
      }
      for (const char* table : kShared) EXPECT_FALSE(application.Tabela().Table(table).Active()) << table;
      EXPECT_FALSE(Db().HasPendingWrites());
    }
  }

  // The controls as a reader meets them: row by row, what a container holds after itself.
  static void Flatten(const std::vector<LayoutRow>& rows, std::vector<const Control*>& out) {
    for (const LayoutRow& row : rows) {
      for (const Control* control : row) {
        // A part of the layout has no name.
        if (!control->Name().empty()) out.push_back(control);
        Flatten(control->Rows(), out);
      }
    }
  }

  Looker user_;
};

// A name as a programmer gives it: "Edit1", "BitBtn12".
bool RawName(const Control& control) {
  return !control.Caption().empty() && SameText(ReplaceAll(control.Caption(), "&", ""), control.Name());
}

TEST_F(ScreensTest, ClassAndCaptionAgreeWithTheRegistry) {
  std::set<std::string> names;
  ForEach([&](const ScreenInfo& info, Screen& screen) {
    EXPECT_EQ(screen.ClassName(), info.class_name);
    EXPECT_EQ(screen.Caption(), info.caption);
    EXPECT_EQ(screen.Kind(), info.kind);
    EXPECT_FALSE(info.caption.empty());
    // The component is named as the class without its T, whatever the case.
    EXPECT_TRUE(SameText(screen.Name(), info.class_name.substr(1))) << screen.Name();
    EXPECT_TRUE(names.insert(Upper(info.class_name)).second);
  });
}

// At the end of a session a screen may go while its statements fail: a handler that it ran then would take
// the whole desk with it.
TEST_F(ScreensTest, AScreenThatGoesUnclosedRunsNothing) {
  const Module module("orvCC");
  auto application = std::make_unique<Application>(user_, Clock(Date::ParseNeutral(kToday)));
  SessionServices services(*application, Db(), "ana", "_001");
  TOrvTable& cheques = application->Tabela().tbCheque_pre();
  application->CreateScreen("TfmChequePre");
  cheques.Append();
  cheques.AfterCancel = [] { throw UserError("A consulta foi cancelada."); };
  application.reset();
  EXPECT_FALSE(cheques.Active());
}

TEST_F(ScreensTest, EveryControlHasItsPlace) {
  ForEach([&](const ScreenInfo&, Screen& screen) {
    std::set<std::string> names;
    for (const Control* control : screen.Controls())
      EXPECT_TRUE(names.insert(Upper(control->Name())).second) << control->Name();
    for (const DataSet* set : screen.Sets())
      EXPECT_TRUE(names.insert(Upper(set->Name())).second) << set->Name();

    // In the layout once, in the order of the declarations, which is the tab order.
    std::vector<const Control*> placed;
    Flatten(screen.Rows(), placed);
    const auto& declared = screen.Controls();
    EXPECT_EQ(placed.size(), declared.size());
    for (std::size_t i = 0; i < std::min(placed.size(), declared.size()); ++i) {
      ASSERT_EQ(placed[i]->Name(), declared[i]->Name()) << "at place " << i;
    }
    for (const Control* control : declared)
      EXPECT_NE(std::find(placed.begin(), placed.end(), control), placed.end()) << control->Name();
  });
}

TEST_F(ScreensTest, EveryControlSaysWhatItIs) {
  ForEach([&](const ScreenInfo&, Screen& screen) {
    for (const Control* control : screen.Controls()) {
      SCOPED_TRACE(control->Name());
      EXPECT_FALSE(RawName(*control));
      const std::string_view kind = control->Kind();
      const auto* edit = dynamic_cast<const Edit*>(control);
      const bool wants = kind == "button" || kind == "smallButton" || kind == "check" || kind == "combo" ||
                         kind == "radio" || kind == "page" || kind == "menuItem" || kind == "group" ||
                         (edit != nullptr && !edit->ReadOnly());
      if (wants) {
        EXPECT_FALSE(Trim(control->Caption()).empty());
      }
      if (const auto* grid = dynamic_cast<const TOrvDBGrid*>(control)) {
        EXPECT_FALSE(grid->Columns().empty());
        for (const GridColumn& column : grid->Columns()) {
          EXPECT_FALSE(column.visible && column.title.empty());
          // A query's fields are known when it runs.
          if (dynamic_cast<const TOrvQuery*>(&grid->Set()) == nullptr) {
            // A column that isn't shown is of another layout of the set.
            EXPECT_TRUE(!column.visible || grid->Set().FindField(column.field) != nullptr) << column.field;
          }
        }
        EXPECT_NE(screen.FindSet(grid->Set().Name()), nullptr);
      }
    }
  });
}

TEST_F(ScreensTest, EveryButtonDoesSomething) {
  ForEach([&](const ScreenInfo&, Screen& screen) {
    for (const Control* control : screen.Controls()) {
      const std::string_view kind = control->Kind();
      if (kind != "button" && kind != "smallButton" && kind != "menuItem") continue;
      EXPECT_TRUE(control->OnClick || !control->Enabled()) << control->Name();
    }
  });
}

TEST_F(ScreensTest, EveryLookupLists) {
  Run("INSERT INTO MODELO_LANC_001 (NOME, CONTA) VALUES ('ALUGUEL', '10250-1')");
  ForEach([&](const ScreenInfo&, Screen& screen) {
    for (Control* control : screen.Controls()) {
      auto* lookup = dynamic_cast<TPesquisa*>(control);
      if (lookup == nullptr) continue;
      SCOPED_TRACE(lookup->Name());
      EXPECT_TRUE(lookup->OnFechaPesquisa);
      bool listed = false;
      user_.on_list = [&](TPesquisa& list) {
        listed = true;
        DataSet& rows = *list.Rows();
        EXPECT_GT(rows.DisplayCount(), 0);
        for (const auto& [column, title] : list.Settings().Colunas) {
          EXPECT_NE(rows.FindField(column), nullptr) << column;
          EXPECT_FALSE(title.empty());
        }
        for (const std::string& key : Split(list.Settings().BuscaCampo, ";"))
          EXPECT_NE(rows.FindField(key), nullptr) << key;
        for (const char* text : {"A", "'; --", "%", "{}"}) list.Search(text);
        list.Search("");
        EXPECT_GT(rows.DisplayCount(), 0);
      };
      lookup->AbrePesquisa();
      EXPECT_TRUE(listed);
      user_.on_list = nullptr;
    }
  });
}

TEST_F(ScreensTest, TabWalksInOrder) {
  ForEach([&](const ScreenInfo&, Screen& screen) {
    std::vector<std::string> reachable;
    for (const Control* control : screen.Controls()) {
      if (control->CanFocus()) reachable.push_back(control->Name());
    }
    ASSERT_FALSE(reachable.empty());
    ASSERT_NE(screen.Focus(), nullptr);
    EXPECT_TRUE(screen.Focus()->CanFocus());
    const auto start = std::find(reachable.begin(), reachable.end(), screen.Focus()->Name());
    ASSERT_NE(start, reachable.end());
    std::rotate(reachable.begin(), start, reachable.end());
    for (const std::string& name : reachable) {
      EXPECT_EQ(screen.Focus()->Name(), name);
      Control* here = screen.Focus();
      screen.FocusNext();
      // A field that isn't left empty.
      if (auto* edit = dynamic_cast<Edit*>(here); screen.Focus() == here && edit != nullptr) {
        edit->SetText("1");
        screen.FocusNext();
      }
    }
  });
}

// What stands between two marks of a text, as often as they come.
std::set<std::string> Marked(const std::string& text, const std::string& mark) {
  std::set<std::string> found;
  const auto parts = Split(text, mark);
  for (std::size_t i = 1; i < parts.size(); i += 2) found.emplace(parts[i]);
  return found;
}

std::string HelpText(const std::string& name) {
  std::ifstream in(std::string(ORV_HELP) + name + ".md");
  return {std::istreambuf_iterator<char>(in), {}};
}

// Every screen has a text; what it prints bold stands on the screen, and its keys are keys of the desk.
TEST_F(ScreensTest, TheHelpNamesEveryScreenAndOnlyWhatIsThere) {
  const std::set<std::string> keys = Marked(HelpText("teclas"), "`");
  ASSERT_GT(keys.size(), 10U);
  std::set<std::string> screens;
  for (const char* page : {"inicio", "primeiro-lancamento"})
    for (const std::string& key : Marked(HelpText(page), "`"))
      EXPECT_TRUE(keys.contains(key) || Lower(key) == key) << page << ": " << key;
  ForEach([&](const ScreenInfo& info, Screen&) { screens.insert(info.caption); });
  ForEach([&](const ScreenInfo& info, Screen& screen) {
    const std::string text = HelpText(info.class_name);
    EXPECT_TRUE(text.starts_with("# " + info.caption + "\n"));
    std::set<std::string> there = screens;
    const auto add = [&](const std::string& caption) { there.emplace(Trim(ReplaceAll(caption, "&", ""))); };
    for (const Control* control : screen.Controls()) {
      add(control->Caption());
      if (const auto* list = dynamic_cast<const ListControl*>(control)) {
        for (const std::string& item : list->Items()) add(item);
      }
    }
    for (const std::string& name : Marked(text, "**")) EXPECT_TRUE(there.contains(name)) << name;
    for (const std::string& key : Marked(text, "`")) EXPECT_TRUE(keys.contains(key)) << key;
  });
  // The walk through a first posting waits for what the screen has.
  const std::string walk = HelpText("primeiro-lancamento");
  ForEach([&](const ScreenInfo& info, Screen& screen) {
    if (walk.find("tela " + info.class_name + " ") == std::string::npos) return;
    for (const std::string& step : Split(walk, "<!-- campo "))
      if (const auto end = step.find(" -->"); end != std::string::npos && step.front() != '#') {
        EXPECT_NE(dynamic_cast<Edit*>(screen.Find(step.substr(0, end))), nullptr) << step;
      }
  });
}

// As a user meets it: through the door, in both companies, opened twice, closed by its frame.
TEST_F(ScreensTest, OpensAndClosesThroughTheDoor) {
  for (const char* company : {"_001", "_002"}) {
    Desk desk(database_, "ana", company);
    for (const ScreenInfo& info : ClassRegistry::Instance().All()) {
      SCOPED_TRACE(info.class_name);
      for (int round = 0; round < 2; ++round) {
        desk.Open(info.class_name);
        EXPECT_EQ(desk.Messages(), "");
        const Json state = desk.State();
        ASSERT_EQ(state["screens"].Items().size(), 1U);
        EXPECT_EQ(state["screens"].Items()[0]["class"].String(), info.class_name);
        EXPECT_NE(desk.FocusName(), "");
        // Opened again it is the same one.
        if (info.kind == ScreenKind::Child) {
          desk.Open(info.class_name);
          EXPECT_EQ(desk.State()["screens"].Items().size(), 1U);
        }
        desk.Do({{"do", "close"}});
        EXPECT_EQ(desk.End(), "idle");
        EXPECT_TRUE(desk.State()["screens"].Items().empty());
      }
    }
  }
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE AREA = 'CONTACOR'"), "0");
}

}  // namespace
}  // namespace orv::test
