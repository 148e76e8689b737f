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

bool Screen::Recusa(std::string_view message, Control& field) {
  Inform(message);
  field.SetFocus();
  return false;
}

// --- Lists to choose from.

LookupSettings Screen::ListOf(std::string table, std::string key,
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

LookupSettings Screen::Contas() const {
  return ListOf("CADCONTA", "CONTA",
                {{"CONTA", "Conta"}, {"BANCO", "Banco"}, {"EMPRESA", "Empresa"}, {"DESCRICAO", "Descrição"}});
}

LookupSettings Screen::Classes(std::string filter) const {
  return ListOf("SUBGRUPO", "CODIGO",
                {{"CODIGO", "Classe"}, {"DESCRICAO", "Descrição"}, {"OPERACAO", "Operação"}},
                std::move(filter));
}

LookupSettings Screen::Historicos() const {
  return ListOf("HISTCP", "HISTORICO", {{"HISTORICO", "Histórico"}, {"DESCRICAO", "Descrição"}});
}

LookupSettings Screen::Entidades() const {
  return ListOf("ENTIDADE", "CODCLI", {{"CODCLI", "Código"}, {"NOME", "Nome"}, {"CNPJ", "CNPJ/CPF"}});
}

LookupSettings Screen::Bancos() const {
  return ListOf("CADBAN", "BANCO", {{"BANCO", "Banco"}, {"NOME_BANCO", "Nome"}});
}

LookupSettings Screen::Situacoes() const {
  return ListOf("TABSIT", "CODIGO", {{"CODIGO", "Situação"}, {"DESCRICAO", "Descrição"}});
}

LookupSettings Screen::Representantes() const {
  return ListOf("REPRESEN", "CODREP", {{"CODREP", "Código"}, {"NOME", "Nome"}});
}

LookupSettings Screen::CentrosDeCusto() const {
  return ListOf("CENTROCUSTO", "CODIGO", {{"CODIGO", "Código"}, {"DESCRICAO", "Descrição"}});
}

LookupSettings Screen::ContasContabeis() const {
  return ListOf("CONTA_CONT", "CODIGO", {{"CODIGO", "Conta"}, {"DESCRICAO", "Descrição"}}, "TP_CONTA <> 'T'");
}

void Screen::Lookups(std::vector<LookupTrio> lookups) {
  for (LookupTrio& entry : lookups) {
    lookups_.push_back(std::make_unique<LookupTrio>(std::move(entry)));
    const LookupTrio& trio = *lookups_.back();
    trio.field->OnChange = [this, &trio] { LookupChange(trio); };
    if (!trio.message.empty()) trio.field->OnExit = [this, &trio] { LookupExit(trio); };
    trio.lookup->OnFechaPesquisa = [&trio] {
      trio.field->SetText(trio.lookup->RetornoPesquisa(trio.lookup->Settings().BuscaCampo));
    };
    // F4 in the field opens its list, as the button beside it does.
    trio.field->OnKey = [&trio](KeyPress& key) {
      if (key.key != "F4") return;
      key.handled = true;
      trio.lookup->AbrePesquisa();
    };
  }
}

void Screen::LookupChange(const LookupTrio& trio) {
  const LookupSettings& list = trio.lookup->Settings();
  for (const LookupShow& show : trio.shows) {
    show.into->SetText(
        Funcoes.Busca_Valor(list.BuscaTabela, {{list.BuscaCampo, trio.field->Text()}}, show.column));
  }
  if (trio.after_change) trio.after_change();
}

void Screen::LookupExit(const LookupTrio& trio) {
  if (trio.field->Empty()) {
    if (!trio.optional) trio.lookup->AbrePesquisa();
    return;
  }
  const LookupSettings& list = trio.lookup->Settings();
  if (Funcoes.Existe(list.BuscaTabela, {{list.BuscaCampo, trio.field->Text()}})) return;
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

// --- Conditions.

std::string Screen::Igual(std::string_view column, std::string_view text) const {
  return std::string(column) + " = " + Funcoes.Aspas(text);
}

std::string Screen::Where(std::string_view column, std::string_view sign, const Edit& field) const {
  if (field.Empty()) return "";
  return " AND " + std::string(column) + " " + std::string(sign) + " " + Funcoes.Aspas(field.Text());
}

std::string Screen::WhereIn(std::string_view column, const Edit& list, bool in) const {
  const std::string codes = Funcoes.ListaSQL(list.Text());
  if (codes.empty()) return "";
  return " AND " + std::string(column) + (in ? " IN (" : " NOT IN (") + codes + ")";
}

std::string Screen::WhereBetween(std::string_view column, Date first, Date last) const {
  return " AND " + std::string(column) + " BETWEEN " + Funcoes.AspasData(first) + " AND " +
         Funcoes.AspasData(last);
}

bool Screen::Ha(std::string_view table, const std::string& condition) const {
  return !Tabela.IBDatabase()
              .Rows("SELECT FIRST 1 1 FROM " + Funcoes.DBLocal(table, true) + " WHERE " + condition)
              .empty();
}

// --- Companies.

std::string Screen::ForCompanies(std::string_view sql, std::string_view main_table, bool all,
                                 std::string_view order) const {
  std::string text = all ? Funcoes.UnionTodasEmpresas(sql, main_table, true) : Funcoes.DBLocal_SQL(sql, "");
  if (!order.empty()) text.append("\n").append(order);
  return text;
}

std::string Screen::ForCompany(std::string_view sql, std::string_view suffix) const {
  return Funcoes.DBEmpresa_SQL(sql, suffix);
}

}  // namespace orv
