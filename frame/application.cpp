#include "frame/application.h"

#include <algorithm>

#include "frame/registry.h"
#include "frame/screen.h"
#include "toolkit/text.h"

namespace orv {

Application::Application(UserInterface& user, Clock clock) : user_(user), clock_(clock) {}

Application::~Application() {
  // The latest first: a dialog may hold what stands beneath it.
  while (!owned_.empty()) owned_.pop_back();
}

Screen& Application::CreateScreen(std::string_view screen_class) {
  const auto info = ClassRegistry::Instance().Find(screen_class);
  if (!info) throw UserError("A tela \"" + std::string(screen_class) + "\" não existe.");
  RequireRight(*info);
  return Adopt(info->create(*this));
}

void Application::RequireRight(const ScreenInfo& info) const {
  if (info.kind == ScreenKind::Dialog || info.group.empty() || MayOpen(info.class_name)) return;
  throw UserError("Usuário sem permissão para abrir a tela \"" + info.caption + "\".");
}

Screen& Application::Adopt(std::unique_ptr<Screen> screen) {
  owned_.push_back(std::move(screen));
  return *owned_.back();
}

void Application::Show(Screen& screen) {
  if (screen.Kind() == ScreenKind::Dialog) {
    screen.ShowModal();
  } else {
    HandleShown(screen);
  }
}

void Application::BringToFront(Screen& screen) {
  const auto found = std::find(shown_.begin(), shown_.end(), &screen);
  if (found == shown_.end()) return;
  std::rotate(found, found + 1, shown_.end());
}

Screen& Application::Open(std::string_view screen_class) {
  if (Top() != nullptr && Top()->Kind() == ScreenKind::Dialog)
    throw UserError("Feche primeiro a janela \"" + Top()->Caption() + "\".");
  for (Screen* screen : shown_) {
    if (screen->Closed() || !SameText(screen->ClassName(), screen_class)) continue;
    BringToFront(*screen);
    return *screen;
  }
  Screen& screen = CreateScreen(screen_class);
  Show(screen);
  return screen;
}

Screen& Application::OpenFilled(std::string_view screen_class, const FieldTexts& fields,
                                std::string_view button) {
  Screen& screen = Open(screen_class);
  Fill(screen, fields);
  Control* press = screen.Find(button);
  if (press != nullptr && press->Usable() && press->Shown() &&
      (!press->CanFocus() || screen.SetFocus(*press)))
    press->UserClick();
  return screen;
}

Screen* Application::FindComponent(std::string_view name) const {
  for (auto it = owned_.rbegin(); it != owned_.rend(); ++it) {
    if (SameText((*it)->Name(), name)) return it->get();
  }
  return nullptr;
}

void Application::HandleShown(Screen& screen) {
  if (std::find(shown_.begin(), shown_.end(), &screen) != shown_.end()) return;
  // Also of one that its opener constructed himself.
  if (const auto info = ClassRegistry::Instance().Find(screen.ClassName())) RequireRight(*info);
  if (screen.Closed()) screen.Reopen();
  shown_.push_back(&screen);
  if (observer_ != nullptr) observer_->ScreenShown(screen);
  screen.RepairFocus();
}

void Application::HandleClosed(Screen& screen) {
  const auto found = std::find(shown_.begin(), shown_.end(), &screen);
  if (found == shown_.end()) return;
  shown_.erase(found);
  if (observer_ != nullptr) observer_->ScreenClosed(screen);
}

void Application::FreeClosed() {
  std::erase_if(owned_, [](const auto& screen) { return screen->Closed() && screen->FreeOnClose(); });
}

void Application::CloseAll() {
  while (!shown_.empty()) {
    Screen& top = *shown_.back();
    top.Close();
    HandleClosed(top);
  }
  owned_.clear();
}

}  // namespace orv
