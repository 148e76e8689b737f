// The base of the screens: shared tables, parameters, lookups with their fields, dates with their defaults.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/application.h"
#include "frame/registro.h"
#include "frame/screen_info.h"
#include "toolkit/controls.h"
#include "toolkit/grid.h"
#include "toolkit/lookup.h"
#include "toolkit/query.h"

namespace orv {

// A description that follows a code: a column of the row of the code, into a read-only field.
struct LookupShow {
  std::string column;
  Edit* into = nullptr;
};

// An input field that holds the code of a row of the lookup's table, with the lookup and its description.
struct LookupTrio {
  Edit* field = nullptr;
  TPesquisa* lookup = nullptr;
  std::vector<LookupShow> shows{};
  // Told when the code isn't there; "" for a field that isn't tested on exit.
  std::string message{};
  // An optional filter does nothing when empty, and clears itself where the code isn't there.
  bool optional = false;
  // Done after the description follows a change of the code.
  std::function<void()> after_change{};
  // Whether the user is back in the field when he is told, not after that.
  bool back_first = false;
};

class Screen : public Form {
 public:
  Screen(Application& application, std::string class_name, std::string name, std::string caption,
         ScreenKind kind);
  ~Screen() override;

  const std::string& ClassName() const { return class_name_; }
  ScreenKind Kind() const { return kind_; }
  Application& Owner() const { return application_; }
  // A screen that is freed on close; a dialog may only hide.
  bool FreeOnClose() const { return free_on_close_; }
  // Of a dialog that hides when it is closed: its caller has read it, and it is freed after the action.
  void Release() { free_on_close_ = true; }
  // What stands stored in front of the user, if anything does. Asked after each action: it tells what the
  // screen holds and asks nobody.
  virtual std::optional<Registro> RegistroAtual() { return std::nullopt; }

 protected:
  IFuncoes& Funcoes;
  IContabil& Contabil;
  ITabela& Tabela;

  Date Today() const { return application_.Today(); }

  // Opens shared tables until the screen is freed.
  void AbreTabelas(std::initializer_list<const char*> names);
  // Hears of a shared table beside whoever else does, until the screen closes.
  void Listen(Event& event, std::function<void()> handler);
  void StopListening() { listening_.clear(); }
  // Wires the change, the exit and the choice of each field.
  void Lookups(std::vector<LookupTrio> lookups);
  // The field takes today when it is entered.
  void TodayOnEnter(DateEdit& field);
  // The last date of a range takes the first when it is entered.
  void SameOnEnter(DateEdit& field, const DateEdit& first);
  // Enter moves on; with `preview` also inside an input field.
  void EnterMovesOn(bool preview);
  void HideOnClose() { free_on_close_ = false; }

  // Tells what is wrong and brings the user there. Always false.
  bool Recusa(std::string_view message, Control& field);

  // --- Lists to choose from, each over a table of the company; `filter` is a condition.
  LookupSettings ListOf(std::string table, std::string key,
                        std::vector<std::pair<std::string, std::string>> columns,
                        std::string filter = "") const;
  LookupSettings Contas() const;
  LookupSettings Classes(std::string filter = "") const;
  LookupSettings Historicos() const;
  LookupSettings Entidades() const;
  LookupSettings Bancos() const;
  LookupSettings Situacoes() const;
  LookupSettings Representantes() const;
  LookupSettings CentrosDeCusto() const;
  LookupSettings ContasContabeis() const;

  // --- Conditions.
  // "COLUMN = 'text'".
  std::string Igual(std::string_view column, std::string_view text) const;
  // These begin with " AND ", and are "" where the field is empty.
  std::string Where(std::string_view column, std::string_view sign, const Edit& field) const;
  std::string WhereIn(std::string_view column, const Edit& list, bool in = true) const;
  std::string WhereBetween(std::string_view column, Date first, Date last) const;
  // True when a row of the company's table meets the condition.
  bool Ha(std::string_view table, const std::string& condition) const;

  // --- Companies.
  // The statement for the current company or for all; `order` ("ORDER BY 1") is of the whole result.
  std::string ForCompanies(std::string_view sql, std::string_view main_table, bool all,
                           std::string_view order = "") const;
  // The statement, or a part of one, for the company of that suffix.
  std::string ForCompany(std::string_view sql, std::string_view suffix) const;

  void FormClose() override;

 private:
  void LookupChange(const LookupTrio& trio);
  void LookupExit(const LookupTrio& trio);

  Application& application_;
  std::string class_name_;
  ScreenKind kind_;
  bool free_on_close_ = true;
  std::vector<std::string> tables_;
  std::vector<std::shared_ptr<const void>> listening_;
  std::vector<std::unique_ptr<LookupTrio>> lookups_;
};

// A screen that fills the main frame.
class Child : public Screen {
 public:
  Child(Application& application, std::string class_name, std::string name, std::string caption)
      : Screen(application, std::move(class_name), std::move(name), std::move(caption), ScreenKind::Child) {}
};

// A screen that is shown over the others until it is closed.
class Dialog : public Screen {
 public:
  Dialog(Application& application, std::string class_name, std::string name, std::string caption)
      : Screen(application, std::move(class_name), std::move(name), std::move(caption), ScreenKind::Dialog) {}
};

// Marks the screen busy for a block.
class BusyMark {
 public:
  BusyMark(IFuncoes& funcoes, Form& screen) : funcoes_(funcoes), screen_(screen) {
    funcoes_.Ocupado(true, screen_);
  }
  ~BusyMark() { funcoes_.Ocupado(false, screen_); }
  BusyMark(const BusyMark&) = delete;
  BusyMark& operator=(const BusyMark&) = delete;

 private:
  IFuncoes& funcoes_;
  Form& screen_;
};

}  // namespace orv
