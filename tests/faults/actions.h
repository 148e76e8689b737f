// Actions as far as the object that carries each of them out, and what no fault may do to them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/desk_test.h"
#include "tests/support/kills.h"
#include "tests/support/steps.h"

namespace orv::test {

struct Action {
  // What a person does, of which the last step confirms.
  Action(const char* name, const std::string& steps, bool special = false, int again = 1)
      : name(name), before(Steps(steps)), last(before.back()), special(special), again(again) {
    before.pop_back();
  }
  const char* name;
  std::vector<Json> before;
  Json last;
  // Of a kind that a fixture tells apart.
  bool special;
  // How many of the steps before lead to the question that `last` answers.
  int again;
};

template <class Base>
class Actions : public Base {
 protected:
  // Puts the rows there on which an action works.
  virtual void Restore(const Action& action) = 0;
  // All rows that the actions write, without the numbers that are drawn.
  virtual std::string Left() = 0;
  // What the screen must keep where an action fails.
  virtual std::string Kept(const Action&, Desk&) { return ""; }

  // Whatever row of `tables` can't be written, nothing of an action stays, the screen keeps what was entered,
  // and the same step goes through once nothing stands in its way.
  void EveryRowCanFail(const std::vector<Action>& actions, std::string_view tables) {
    this->Stoppable(tables);
    for (const Action& action : actions) {
      SCOPED_TRACE(action.name);
      Desk desk(this->database_);
      int rows = 0;
      for (bool whole = false; !whole && rows < 40; ++rows) {
        this->StopAt(-1);
        Restore(action);
        const std::string before = Left();
        for (const Json& in : action.before) desk.Do(in);
        const std::string kept = Kept(action, desk);
        this->StopAt(rows);
        desk.Do(action.last);
        whole = !desk.Messages().starts_with("error");
        if (!whole) {
          EXPECT_EQ(desk.End() + desk.Messages(),
                    "idleerror: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte.");
          EXPECT_EQ(Left(), before) << rows;
          EXPECT_EQ(Kept(action, desk), kept);
          this->StopAt(-1);
          if (action.last["do"] == Json("answer")) {
            for (auto in = action.before.end() - action.again; in != action.before.end(); ++in) desk.Do(*in);
          }
          desk.Do(action.last);
        }
        // What tells of a success tells it after the commit.
        if (desk.End() != "idle") desk.Answer("ok");
        EXPECT_EQ(desk.End(), "idle");
        EXPECT_NE(Left(), before) << rows;
        desk.CloseAll();
      }
      EXPECT_GT(rows, 2);
      EXPECT_LT(rows, 40);
    }
  }

  // Killed in its midst, a desk leaves all of an action or nothing.
  void KilledAnywhere(const std::vector<Action>& actions, int kills) {
    for (const Action& action : actions) {
      SCOPED_TRACE(action.name);
      ExpectAllOrNothing(
          action.special ? kills / 2 : kills, action.last,
          [&] {
            Restore(action);
            this->LetGo();
            auto desk = std::make_unique<DriveProcess>(this->database_);
            for (const Json& in : action.before) desk->Do(in);
            return desk;
          },
          [&] { return Left(); });
    }
  }

  // A row that another user is just changing is waited for; then the user is told, and may try again.
  void AnOpenChangeIsTold(Desk& desk, const std::string& change, const std::function<void()>& confirm) {
    const std::string before = Left();
    this->Db().Execute(change);
    confirm();
    EXPECT_EQ(desk.Messages(),
              "error: Outro usuário está alterando o mesmo registro. Aguarde um instante e tente novamente.");
    this->Db().Rollback();
    EXPECT_EQ(Left(), before);
    confirm();
    EXPECT_EQ(desk.End() + desk.Messages(), "idle");
    EXPECT_NE(Left(), before);
  }
};

}  // namespace orv::test
