// The lookup control: a button beside a field that lets the user choose rows of a table.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/control.h"
#include "toolkit/database.h"
#include "toolkit/table.h"

namespace orv {

// How a lookup searches what is typed into its list.
enum class SearchType : uint8_t { Contains, Starts };

struct LookupSettings {
  TOrvDatabase* BaseDados = nullptr;
  // The table, by its logical name; physical where it isn't a table of one company.
  std::string BuscaTabela;
  // The key column.
  std::string BuscaCampo;
  // The shown columns with their titles; the key is the first.
  std::vector<std::pair<std::string, std::string>> Colunas;
  bool TabelaEmpresa = true;
  // A shared table that follows the choice.
  TOrvTable* BuscaTable = nullptr;
  // A condition in SQL.
  std::string Filtro;
  // The columns by which the rows stand, "" for the key, and whether the last comes first.
  std::string Ordem;
  bool Decrescente = false;
  // Width of the list in pixels, 0 for what the columns ask.
  int LarguraTela = 0;
  SearchType BuscaTipo = SearchType::Contains;
  bool MultiSelecao = false;
};

class TPesquisa : public Control {
 public:
  TPesquisa(Form& form, std::string name, LookupSettings settings)
      : Control(form, std::move(name)), settings_(std::move(settings)) {}

  LookupSettings& Settings() { return settings_; }
  const LookupSettings& Settings() const { return settings_; }

  // Opens the list and waits for the choice; `OnFechaPesquisa` fires on one. True when there was a choice.
  bool AbrePesquisa();
  // A column of the chosen row; with multiple selection the chosen values as a list of SQL literals,
  // "'01','02'". "" before a choice.
  std::string RetornoPesquisa(std::string_view column) const;

  // --- The open list, for the display.
  DataSet* Rows() const { return table_.get(); }
  // Narrows the list to rows of which a shown column holds (or begins with) the text; one of amounts or of
  // dates, to those in which it is the amount or the date.
  void Search(std::string_view text);
  // The row of a key, -1 when it isn't in the list.
  int64_t RowOfKey(std::string_view key);

  std::string_view Kind() const override { return "lookup"; }
  void UserClick() override;

  std::function<void()> OnFechaPesquisa;

 private:
  std::string Condition(std::string_view search) const;

  LookupSettings settings_;
  std::unique_ptr<TOrvTable> table_;
  std::vector<std::pair<std::string, std::vector<std::string>>> chosen_;
};

}  // namespace orv
