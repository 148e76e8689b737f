// A session's application: it owns the open screens and knows the services lent by the host.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "toolkit/date.h"
#include "toolkit/user.h"

namespace orv {

class Screen;

// The services that a session's screens work with.
struct Services {
  IFuncoes& funcoes;
  IContabil& contabil;
  ITabela& tabela;
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

  IFuncoes& Funcoes() const { return services_->funcoes; }
  IContabil& Contabil() const { return services_->contabil; }
  ITabela& Tabela() const { return services_->tabela; }
  UserInterface& User() const { return user_; }
  Date Today() const { return clock_.Today(); }
  const Clock& GetClock() const { return clock_; }

  // Creates a screen of a registered class and owns it. Raises UserError for an unknown class.
  Screen& CreateScreen(std::string_view screen_class);
  // Takes over a screen that its caller constructed.
  Screen& Adopt(std::unique_ptr<Screen> screen);
  // Shows a screen: a child over the main frame, a dialog modally.
  void Show(Screen& screen);
  // Puts a shown child screen in front of the others.
  void BringToFront(Screen& screen);

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
  UserInterface& user_;
  Clock clock_;
  std::unique_ptr<Services> services_;
  ApplicationObserver* observer_ = nullptr;
  std::vector<std::unique_ptr<Screen>> owned_;
  std::vector<Screen*> shown_;
};

}  // namespace orv
