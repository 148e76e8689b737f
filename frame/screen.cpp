#include "frame/screen.h"

#include "toolkit/error.h"

namespace orv {

Screen::Screen(Application& application, std::string class_name, std::string name, std::string caption,
               ScreenKind kind)
    : Form(application.User(), std::move(name), std::move(caption)),
      Funcoes(application.Funcoes()),
      Contabil(application.Contabil()),
      Tabela(application.Tabela()),
      application_(application),
      class_name_(std::move(class_name)),
      kind_(kind) {}

Screen::~Screen() {
  // A screen that goes without a close, as at the end of a session, leaves no table open. It may be going
  // because a statement failed: none runs here, and nobody's handler.
  StopListening();
  for (const std::string& name : tables_) Tabela.SoltaTabela(name);
}

void Screen::Listen(Event& event, std::function<void()> handler) {
  listening_.push_back(event.Listen(std::move(handler)));
}

void Screen::AbreTabelas(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    Tabela.AbreTabela(name, false);
    tables_.emplace_back(name);
  }
}

void Screen::FormClose() {
  StopListening();
  for (const std::string& name : tables_) Tabela.FechaTabela(name);
  tables_.clear();
  for (DataSet* set : Sets()) {
    // A shared table is closed by its count, above.
    if (set->Active() && dynamic_cast<TOrvTable*>(set) == nullptr) set->Close();
  }
}

LookupSettings Screen::Search(std::string table, std::string key,
                              std::vector<std::pair<std::string, std::string>> columns,
                              std::string filter) const {
  LookupSettings settings;
  settings.BaseDados = &Tabela.IBDatabase();
  settings.BuscaTabela = std::move(table);
  settings.BuscaCampo = std::move(key);
  settings.Colunas = std::move(columns);
  settings.Filtro = std::move(filter);
  return settings;
}

void Screen::Lookups(std::vector<LookupTrio> lookups) {
  for (LookupTrio& entry : lookups) {
    lookups_.push_back(std::make_unique<LookupTrio>(std::move(entry)));
    const LookupTrio& trio = *lookups_.back();
    trio.field->OnChange = [this, &trio] { LookupChange(trio); };
    if (!trio.message.empty()) trio.field->OnExit = [this, &trio] { LookupExit(trio); };
    trio.lookup->OnFechaPesquisa = [&trio] { trio.field->SetText(trio.lookup->RetornoPesquisa(trio.key)); };
    // F4 in the field opens its list, as the button beside it does.
    trio.field->OnKey = [&trio](KeyPress& key) {
      if (key.key != "F4") return;
      key.handled = true;
      trio.lookup->AbrePesquisa();
    };
  }
}

void Screen::LookupChange(const LookupTrio& trio) {
  for (const LookupShow& show : trio.shows) {
    show.into->SetText(Funcoes.Busca_Valor(trio.table, trio.key, show.column,
                                           Funcoes.Aspas(trio.field->Text()), true, true));
  }
  if (trio.after_change) trio.after_change();
}

void Screen::LookupExit(const LookupTrio& trio) {
  if (trio.field->Empty()) {
    if (!trio.optional) trio.lookup->AbrePesquisa();
    return;
  }
  if (Funcoes.Existe(trio.table, trio.key, Funcoes.Aspas(trio.field->Text()))) return;
  if (trio.back_first) trio.field->SetFocus();
  Inform(trio.message);
  if (trio.optional) {
    trio.field->Clear();
  } else if (!trio.back_first) {
    trio.field->SetFocus();
  }
}

void Screen::TodayOnEnter(DateEdit& field) {
  field.OnEnter = [this, &field] { field.SetDate(Today()); };
}

void Screen::SameOnEnter(DateEdit& field, const DateEdit& first) {
  field.OnEnter = [&field, &first] { field.SetText(first.Text()); };
}

void Screen::EnterMovesOn(bool preview) {
  KeyPreview = preview;
  OnKeyPress = [this](char key) { Funcoes.pSetFocus(*this, key); };
}

}  // namespace orv
