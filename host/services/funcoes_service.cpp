#include "host/services/funcoes_service.h"

#include "frame/registry.h"
#include "frame/screen.h"
#include "host/services/extenso.h"
#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// The module whose screens can be opened by name.
constexpr std::string_view kModule = "orvCC";

std::string ColumnList(std::string_view columns, char separator) {
  std::vector<std::string> names;
  for (const std::string& name : SplitSqlList(columns, separator)) names.push_back(name);
  return Join(names, ", ");
}

}  // namespace

// --- Text of SQL.

std::string FuncoesService::Aspas(std::string_view text) const { return SqlLiteral(text); }

std::string FuncoesService::AspasData(Date date) const { return SqlLiteral(date.Sql()); }

std::string FuncoesService::PermanecePonto(double number) const { return FloatText(number); }

std::string FuncoesService::PermanecePonto(Currency amount) const { return amount.Neutral(); }

std::string FuncoesService::ListaSQL(std::string_view list) const { return SqlCodeList(list); }

// --- Companies.

std::string FuncoesService::DBLocal(std::string_view table, bool local) const {
  if (!local) return std::string(table);
  return p_.tabela.GetCompanies().Physical(table, p_.tabela.CurrentCompany());
}

std::string FuncoesService::DBLocal_SQL(std::string_view sql, std::string_view) const {
  return p_.tabela.GetCompanies().ForCompany(sql, p_.tabela.CurrentCompany());
}

std::string FuncoesService::DBEmpresa_SQL(std::string_view sql, std::string_view suffix) const {
  return p_.tabela.GetCompanies().ForCompany(sql, suffix);
}

std::string FuncoesService::UnionTodasEmpresas(std::string_view sql, std::string_view table, bool all) const {
  return all ? p_.tabela.GetCompanies().ForAll(sql, table) : DBLocal_SQL(sql, table);
}

// --- Look-ups.

std::string FuncoesService::Condition(const std::vector<ChaveBusca>& keys) const {
  std::string condition;
  for (const ChaveBusca& key : keys) {
    condition.append(condition.empty() ? "" : " AND ").append(key.column).append(" = ") += Aspas(key.text);
  }
  return condition;
}

std::string FuncoesService::Busca_Valor(std::string_view table, const std::vector<ChaveBusca>& keys,
                                        std::string_view column) {
  const auto rows = p_.db.Rows("SELECT FIRST 1 " + ColumnList(column, ';') + " FROM " + DBLocal(table, true) +
                               " WHERE " + Condition(keys));
  if (rows.empty()) return "";
  std::vector<std::string> texts;
  for (const Value& value : rows[0]) texts.emplace_back(Trim(value.AsString()));
  return Join(texts, ";");
}

bool FuncoesService::Existe(std::string_view table, const std::vector<ChaveBusca>& keys) {
  return !p_.db.Rows("SELECT FIRST 1 1 FROM " + DBLocal(table, true) + " WHERE " + Condition(keys)).empty();
}

std::string FuncoesService::Proximo(std::string_view table, std::string_view column, int width, bool local) {
  return p_.numbering.Next(table, column, width, local ? p_.tabela.CurrentCompany() : "");
}

std::vector<std::string> FuncoesService::Proximos(std::string_view table, std::string_view column, int width,
                                                  bool local, std::size_t count) {
  return p_.numbering.Next(table, column, width, local ? p_.tabela.CurrentCompany() : "", count);
}

std::string FuncoesService::BuscaParametro(std::string_view group, int number) {
  return p_.parameters.Get(p_.company, group, number);
}

// --- The user.

std::string FuncoesService::CaptionOf(std::string_view screen_class) const {
  const auto& shown = p_.application.Shown();
  for (auto screen = shown.rbegin(); screen != shown.rend(); ++screen) {
    if (SameText((*screen)->ClassName(), screen_class)) return (*screen)->Caption();
  }
  if (const auto info = ClassRegistry::Instance().Find(screen_class)) return info->caption;
  return std::string(kModule);
}

bool FuncoesService::Acessa(std::string_view screen_class, char kind, std::string_view, std::string_view) {
  if (p_.users.May(p_.login, screen_class, kind)) return true;
  p_.application.User().Message(MessageKind::Information, CaptionOf(screen_class),
                                "Usuário sem permissão para esta operação.", Answer::Ok);
  return false;
}

void FuncoesService::Ocupado(bool on, Form&) {
  if (on) {
    if (busy_++ == 0) p_.application.User().Busy(true);
  } else if (busy_ > 0 && --busy_ == 0) {
    p_.application.User().Busy(false);
  }
}

void FuncoesService::EndBusy() {
  if (busy_ == 0) return;
  busy_ = 0;
  p_.application.User().Busy(false);
}

void FuncoesService::GeraLog(std::string_view area, std::string_view text, TOperacaoLog operation,
                             std::string_view key) {
  p_.audit.Write(area, text, operation, key);
}

bool FuncoesService::InputBoxData(std::string_view title, std::string_view prompt, Date& date) {
  std::string text = date.Brazil();
  while (const auto answer = p_.application.User().InputBox(title, prompt, text)) {
    if (ValidaData(*answer)) {
      date = Date::ParseBrazil(*answer);
      return true;
    }
    text = *answer;
    p_.application.User().Message(MessageKind::Information, title, "Data inválida.", Answer::Ok);
  }
  return false;
}

void FuncoesService::TelaDetalhamento(std::string_view title, DataSet& query) {
  p_.application.User().Detail(title, query);
}

bool FuncoesService::pSetFocus(Form& screen, char key) {
  if (key != '\r') return false;
  const Control* before = screen.Focus();
  screen.FocusNext();
  return screen.Focus() != before;
}

// --- Screens and reports.

Screen& FuncoesService::Carrega_Form(std::string_view module, std::string_view screen_class, std::string_view,
                                     bool modal, bool show) {
  if (!SameText(module, kModule))
    throw UserError("O módulo \"" + std::string(module) + "\" não está carregado.");
  Screen& screen = p_.application.CreateScreen(screen_class);
  if (modal && show) {
    screen.ShowModal();
  } else if (show) {
    p_.application.Show(screen);
  }
  return screen;
}

void FuncoesService::Launch(Form& screen, std::string_view identifier, bool graphic, bool text) {
  p_.application.User().LaunchReport({std::string(identifier), &screen, graphic, text});
}

void FuncoesService::Chama_Relatorio(Form& screen, std::string_view identifier) {
  Launch(screen, identifier, true, true);
}

void FuncoesService::Chama_RelatorioWin(Form& screen, std::string_view identifier) {
  Launch(screen, identifier, true, false);
}

void FuncoesService::Chama_RelatorioTxt(Form& screen, std::string_view identifier) {
  Launch(screen, identifier, false, true);
}

// --- Calendar and texts.

Date FuncoesService::VerificaDiaUtil(Date date, bool backwards) {
  return p_.calendar.WorkingDay(date, backwards, p_.company);
}

const std::array<std::string, 13>& FuncoesService::NomeMes() const {
  static const std::array<std::string, 13> names{"",        "Janeiro",  "Fevereiro", "Março",  "Abril",
                                                 "Maio",    "Junho",    "Julho",     "Agosto", "Setembro",
                                                 "Outubro", "Novembro", "Dezembro"};
  return names;
}

const std::array<int, 13>& FuncoesService::DiaDoMes() const {
  static constexpr std::array<int, 13> kDays{0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kDays;
}

std::string FuncoesService::Extenso(std::string_view amount) const {
  return AmountInWords(ParseAmountText(amount).Cents());
}

std::string FuncoesService::DeletaPonto(std::string_view text) const { return ReplaceAll(text, ".", ""); }

std::vector<std::string> FuncoesService::Explode(std::string_view text, std::string_view separator) const {
  if (separator.empty()) return {std::string(text)};
  return Split(text, separator);
}

bool FuncoesService::ValidaData(std::string_view text) const {
  return !Date::ParseBrazilOr(text, Date()).Empty();
}

std::vector<std::pair<std::string, std::string>> FuncoesService::LeTextos(std::string_view beginning) {
  return p_.preferences.List(beginning);
}

void FuncoesService::GravaTexto(std::string_view path, std::string_view text) {
  p_.preferences.Set(path, text);
}

int FuncoesService::LeConfiguracao(std::string_view key, std::string_view section, std::string_view name,
                                   int fallback) {
  return p_.preferences.GetNumber(Preferences::Path(key, section, name), fallback);
}

std::string FuncoesService::LancamentoPendente(std::string_view account, std::string_view history) {
  const std::string pair = Busca_Valor(
      "HIST_CONTA", {{"CONTA", std::string(account)}, {"HISTORICO", std::string(history)}}, "PENDENTE");
  if (!pair.empty()) return pair == "S" ? "S" : "N";
  return Busca_Valor("HISTCP", {{"HISTORICO", std::string(history)}}, "SITUACAO") == "P" ? "S" : "N";
}

}  // namespace orv
