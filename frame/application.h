// A session's application: it owns the open screens and knows the services lent by the host.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/fill.h"
#include "frame/services.h"
#include "toolkit/date.h"
#include "toolkit/user.h"

namespace orv {

class ISheets;
class Screen;
struct ScreenInfo;

// The services that a session's screens work with.
struct Services {
  IFuncoes& funcoes;
  IContabil& contabil;
  ITabela& tabela;
  ISheets& sheets;
};

// Told of the screens that come and go.
class ApplicationObserver {
 public:
  virtual ~ApplicationObserver() = default;
  virtual void ScreenShown(Screen& screen) = 0;
  virtual void ScreenClosed(Screen& screen) = 0;
};

class Application {
 public:
  // `user` answers what screens ask; `clock` says what day it is.
  Application(UserInterface& user, Clock clock);
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // Before the first screen; the services need the application themselves.
  void SetServices(Services services) { services_ = std::make_unique<Services>(services); }
  void SetObserver(ApplicationObserver* observer) { observer_ = observer; }
  // Says whether the user may open the screen class; without it everything may be opened.
  void SetRights(std::function<bool(const std::string& screen_class)> may_open) {
    may_open_ = std::move(may_open);
  }

  IFuncoes& Funcoes() const { return services_->funcoes; }
  IContabil& Contabil() const { return services_->contabil; }
  ITabela& Tabela() const { return services_->tabela; }
  // Of a file that the user gave: `Owner().Sheets().Read(*User().OpenPath(path), rows)` (frame/sheet.h).
  ISheets& Sheets() const { return services_->sheets; }
  UserInterface& User() const { return user_; }
  Date Today() const { return clock_.Today(); }
  const Clock& GetClock() const { return clock_; }

  bool MayOpen(const std::string& screen_class) const { return !may_open_ || may_open_(screen_class); }

  // Creates a screen of a registered class and owns it. Raises UserError for an unknown class, and for a
  // screen of the menu that the user may not open, whoever asks for it. A dialog has no right of its own: it
  // belongs to the screen that opens it.
  Screen& CreateScreen(std::string_view screen_class);
  // Takes over a screen that its caller constructed.
  Screen& Adopt(std::unique_ptr<Screen> screen);
  // Shows a screen: a child over the main frame, a dialog modally.
  void Show(Screen& screen);
  // Puts a shown child screen in front of the others.
  void BringToFront(Screen& screen);
  // Shows a child screen of a class, the open one where there is one. Raises UserError as CreateScreen does,
  // and while a dialog stands over it.
  Screen& Open(std::string_view screen_class);
  // The same, then fills its fields (frame/fill.h) and presses `button`, "" for none: the way from a figure
  // to the screen that it comes from. What the user sees is told by that screen.
  Screen& OpenFilled(std::string_view screen_class, const FieldTexts& fields, std::string_view button);

  // The open screens, the lowest first, the one that the user works at last.
  const std::vector<Screen*>& Shown() const { return shown_; }
  Screen* Top() const { return shown_.empty() ? nullptr : shown_.back(); }
  // The component of that name, null when there is none. Of several the latest.
  Screen* FindComponent(std::string_view name) const;

  // Called by a form that closes and by one that is shown modally.
  void HandleShown(Screen& screen);
  void HandleClosed(Screen& screen);
  // Destroys the screens that closed and are to be freed. Between actions only.
  void FreeClosed();
  // Closes all screens, the top one first, without asking.
  void CloseAll();

 private:
  // Raises UserError for a screen of the menu that the user may not open.
  void RequireRight(const ScreenInfo& info) const;

  UserInterface& user_;
  Clock clock_;
  std::unique_ptr<Services> services_;
  ApplicationObserver* observer_ = nullptr;
  std::function<bool(const std::string&)> may_open_;
  std::vector<std::unique_ptr<Screen>> owned_;
  std::vector<Screen*> shown_;
};

}  // namespace orv
