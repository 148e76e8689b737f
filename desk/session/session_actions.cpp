// What the user does at the desk, object by object.
#include "desk/session/session.h"
#include "frame/registry.h"
#include "frame/screen.h"
#include "toolkit/controls.h"
#include "toolkit/grid.h"
#include "toolkit/lookup.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::string Name(const Json& in, const char* member) {
  return in[member].IsNull() ? "" : in[member].String();
}

// A value given as JSON, as the text that a person would have typed.
std::string Typed(const Json& value) {
  if (value.IsString()) return value.String();
  if (value.IsBool()) return value.Bool() ? "true" : "false";
  if (value.IsNull()) return "";
  return std::to_string(value.Integer());
}

}  // namespace

void Session::Handle(const Json& in) {
  EndGathering();
  Guarded(in["do"], [&] {
    if (!in_order_) services_->AfterAction();
    in_order_ = true;
    RequireStanding();
    pressed_on_ = application_->Top();
    pressed_ = in["control"].IsString() ? in["control"].String() : "";
    Act(in);
    KeepLatest(in);
    ReleaseClosed();
    if (Screen* top = application_->Top()) top->RepairFocus();
  });
}

bool Session::Guarded(const Json& verb, const std::function<void()>& work) {
  attachment_->BeginAction();
  try {
    work();
    attachment_->EndAction();
    return true;
  } catch (const SilentAbort&) {
    Undo();
  } catch (const RequestError& e) {
    Undo();
    SendError(e.what());
  } catch (const std::exception& e) {
    Undo();
    ToldFailure(verb, e);
  }
  return false;
}

void Session::ToldFailure(const Json& verb, const std::exception& e) {
  LogFailure(verb, e);
  SendError(e.what());
}

void Session::EndGathering() {
  const std::lock_guard lock(mutex_);
  gathering_ = cancel_ = false;
}

void Session::LogFailure(const Json& verb, const std::exception& e) {
  // What the user may read can hold what he typed: the log takes the engine's detail and our own faults.
  Json::Object line{{"user", options_.user}, {"do", verb.IsString() ? verb : Json()}};
  if (const auto* database = dynamic_cast<const DatabaseError*>(&e); database != nullptr) {
    line.emplace_back("code", int64_t{database->Code()});
    line.emplace_back("detail", Masked(database->Detail()));
  } else if (dynamic_cast<const UserError*>(&e) == nullptr) {
    line.emplace_back("text", Masked(e.what()));
  }
  log_.Write("action failed", std::move(line));
}

void Session::Undo() {
  const bool wrote = attachment_->HasPendingWrites();
  attachment_->RollbackAction();
  if (!wrote) return;
  try {
    services_->Undone();
  } catch (const std::exception& e) {
    // The user is told of the failure itself.
    LogFailure("reread", e);
  }
}

void Session::ReleaseClosed() {
  const std::vector<Screen*> shown = application_->Shown();
  for (Screen* screen : shown) {
    if (screen->Closed()) application_->HandleClosed(*screen);
  }
}

void Session::Act(const Json& in) {
  if (!in.IsObject()) throw RequestError("Esperava-se um objeto.");
  const std::string verb = in["do"].IsNull() ? "" : in["do"].String();
  // What was meant for another screen than the one that is on top now does nothing to this one.
  if (in.Has("screen") && !(in["screen"] == Json(TopId())))
    throw RequestError("A tela não está mais à frente.");

  if (verb == "read") {
    Send(State(in));
  } else if (verb == "open") {
    Open(in);
  } else if (verb == "close") {
    TopScreen().Close();
  } else if (verb == "focus") {
    Control& control = Reachable(in);
    if (!control.TakesFocus()) throw RequestError("O controle " + control.Name() + " não recebe o foco.");
    Reach(control);
  } else if (verb == "set") {
    Control& control = Reachable(in);
    if (!in.Has("value")) throw RequestError("Falta \"value\".");
    if (!control.TakesFocus()) throw RequestError("O controle " + control.Name() + " é só de leitura.");
    if (Reach(control)) control.UserSet(Typed(in["value"]));
  } else if (verb == "check") {
    Control& control = Reachable(in);
    if (dynamic_cast<CheckBox*>(&control) == nullptr) {
      throw RequestError("O controle " + control.Name() + " não é uma caixa de marcação.");
    }
    if (!control.TakesFocus() || Reach(control)) control.UserSet(Typed(in["value"]));
  } else if (verb == "click") {
    Control& control = Reachable(in);
    if (dynamic_cast<MenuItem*>(&control) != nullptr)
      throw RequestError("Um item de menu se escolhe com \"menu\".");
    if (!control.TakesFocus() || Reach(control)) control.UserClick();
  } else if (verb == "page") {
    auto* pages = dynamic_cast<PageControl*>(&Reachable(in));
    if (pages == nullptr) throw RequestError("O controle " + Name(in, "control") + " não tem páginas.");
    pages->UserPage(in["page"].String());
  } else if (verb == "menu") {
    auto* item = dynamic_cast<MenuItem*>(TopScreen().Find(in["control"].String()));
    if (item == nullptr) throw RequestError("O item de menu " + Name(in, "control") + " não existe.");
    if (const auto* menu = dynamic_cast<PopupMenu*>(item->Parent()); menu != nullptr && menu->OnPopup)
      menu->OnPopup();
    Reachable(in).UserClick();
  } else if (verb == "key") {
    Key(in);
  } else if (verb == "row" || verb == "cell" || verb == "append" || verb == "delete" || verb == "dblclick" ||
             verb == "title") {
    GridAction(verb, in);
  } else if (verb == "view") {
    Arrange(in);
  } else if (verb == "export") {
    Export(in);
  } else if (verb == "answer") {
    // A cancel that arrived when the gathering had just ended.
    if (!(in["value"] == Json("cancel"))) throw RequestError("Nada espera uma resposta.");
  } else if (verb == "choose" || verb == "search") {
    throw RequestError("Nenhuma pesquisa está aberta.");
  } else if (verb == "file") {
    throw RequestError("Nenhum arquivo foi pedido.");
  } else if (verb == "report") {
    RenderReport(in);
  } else if (verb == "filters") {
    FiltersAct(in);
  } else if (verb == "favourites") {
    FavouritesAct(in);
  } else if (!RecordAction(verb, in)) {
    throw RequestError("O pedido \"" + verb + "\" não existe.");
  }
}

int64_t Session::TopId() const {
  const Screen* top = application_->Top();
  return top == nullptr ? 0 : shown_.at(top).id;
}

Screen& Session::TopScreen() const {
  Screen* top = application_->Top();
  if (top == nullptr) throw RequestError("Nenhuma tela está aberta.");
  return *top;
}

Control& Session::Reachable(const Json& in, const char* member) const {
  if (!in[member].IsString()) throw RequestError(std::string("Falta \"") + member + "\".");
  Control* control = TopScreen().Find(in[member].String());
  if (control == nullptr) throw RequestError("O controle " + in[member].String() + " não existe.");
  if (!control->Shown()) throw RequestError("O controle " + control->Name() + " não está visível.");
  if (!control->Usable()) throw RequestError("O controle " + control->Name() + " não está disponível.");
  return *control;
}

bool Session::Reach(Control& control) { return control.Owner().SetFocus(control); }

void Session::Open(const Json& in) {
  const std::string name = in["class"].String();
  if (const Screen* top = application_->Top(); top != nullptr && top->Kind() == ScreenKind::Dialog) {
    throw RequestError("Feche primeiro a janela \"" + top->Caption() + "\".");
  }
  const auto info = ClassRegistry::Instance().Find(name);
  if (!info || !application_->MayOpen(info->class_name))
    throw RequestError("A tela \"" + name + "\" não está disponível.");
  const auto is_open = [&](const Screen* one) { return SameText(one->ClassName(), name) && !one->Closed(); };
  const bool there = std::ranges::any_of(application_->Shown(), is_open);
  Screen& screen = application_->Open(name);
  if (!there) BeginWithLatest(screen);
}

void Session::Key(const Json& in) {
  Control& control = Reachable(in);
  KeyPress key;
  key.key = in["key"].String();
  key.column = Name(in, "column");
  if (control.TakesFocus() && !Reach(control)) return;

  if (auto* grid = dynamic_cast<TOrvDBGrid*>(&control)) {
    grid->UserKeyAt(in["row"].IsNull() ? std::max<int64_t>(grid->Set().DisplayRow(), 0) : in["row"].Integer(),
                    key);
    return;
  }
  const bool button = dynamic_cast<Button*>(&control) != nullptr;
  const bool character = CharCount(key.key) == 1;
  if (button && (key.key == "Enter" || key.key == " ")) {
    control.UserClick();
    return;
  }
  Screen& screen = TopScreen();
  // Every typed character passes the screen first where it previews the keyboard.
  const bool taken = control.TakesText() && character;
  if (screen.OnKeyPress && (screen.KeyPreview || !taken)) {
    if (key.key == "Enter") screen.OnKeyPress('\r');
    if (character && key.key.size() == 1) screen.OnKeyPress(key.key[0]);
  }
  if (key.key == "Tab") {
    screen.FocusNext();
    return;
  }
  control.UserKey(key);
  if (key.handled) return;
  if (taken) {
    Properties properties;
    control.Describe(properties);
    for (const auto& [name, value] : properties) {
      if (name == "text") control.UserSet(std::get<std::string>(value) + key.key);
    }
  } else if (auto* check = dynamic_cast<CheckBox*>(&control); check != nullptr && key.key == " ") {
    check->UserClick();
  }
}

void Session::GridAction(const std::string& verb, const Json& in) {
  TOrvDBGrid& grid = GridIn(in);
  if (!Reach(grid)) return;
  if (verb == "row") {
    grid.UserRow(in["row"].Integer(), Name(in, "column"));
  } else if (verb == "cell") {
    grid.UserCell(in["row"].Integer(), in["column"].String(), Typed(in["value"]));
  } else if (verb == "append") {
    grid.UserAppend();
  } else if (verb == "delete") {
    grid.UserDelete(in["row"].Integer());
  } else if (verb == "dblclick") {
    grid.UserDblClick(in["row"].Integer(), Name(in, "column"));
  } else {
    grid.UserTitle(in["column"].String());
  }
}

}  // namespace orv
