// The host's general operations for the screens of one session.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "frame/application.h"
#include "frame/services.h"
#include "host/services/audit.h"
#include "host/services/calendar.h"
#include "host/services/numbering.h"
#include "host/services/parameters.h"
#include "host/services/preferences.h"
#include "host/services/tabela_service.h"
#include "host/services/users.h"

namespace orv {

// What the operations work with.
struct FuncoesParts {
  Application& application;
  TOrvDatabase& db;
  TabelaService& tabela;
  Users& users;
  Parameters& parameters;
  Preferences& preferences;
  Audit& audit;
  Calendar& calendar;
  Numbering& numbering;
  // Who is logged in and at which company.
  std::string login;
  std::string company;
  std::function<std::unique_ptr<TImpCheque>()> cheque_printer;
};

class FuncoesService : public IFuncoes {
 public:
  explicit FuncoesService(FuncoesParts parts) : p_(std::move(parts)) {}

  std::string Aspas(std::string_view text) const override;
  std::string AspasData(Date date) const override;
  std::string PermanecePonto(double number) const override;
  std::string PermanecePonto(Currency amount) const override;
  std::string ListaSQL(std::string_view list) const override;

  std::string vEmpresa_Atual() const override { return p_.company; }
  std::string DBLocal(std::string_view table, bool local) const override;
  std::string DBLocal_SQL(std::string_view sql, std::string_view table) const override;
  std::string DBEmpresa_SQL(std::string_view sql, std::string_view suffix) const override;
  std::string UnionTodasEmpresas(std::string_view sql, std::string_view table, bool all) const override;

  std::string Busca_Valor(std::string_view table, const std::vector<ChaveBusca>& keys,
                          std::string_view column) override;
  bool Existe(std::string_view table, const std::vector<ChaveBusca>& keys) override;
  std::string Proximo(std::string_view table, std::string_view column, int width, bool local) override;
  std::vector<std::string> Proximos(std::string_view table, std::string_view column, int width, bool local,
                                    std::size_t count) override;
  std::string BuscaParametro(std::string_view group, int number) override;

  bool Acessa(std::string_view screen_class, char kind, std::string_view option,
              std::string_view extra) override;
  void Ocupado(bool on, Form& screen) override;
  void GeraLog(std::string_view area, std::string_view text, TOperacaoLog operation,
               std::string_view key) override;
  bool InputBoxData(std::string_view title, std::string_view prompt, Date& date) override;
  void TelaDetalhamento(std::string_view title, DataSet& query) override;
  bool pSetFocus(Form& screen, char key) override;

  Screen& Carrega_Form(std::string_view module, std::string_view screen_class, std::string_view extra,
                       bool modal, bool show) override;
  void Chama_Relatorio(Form& screen, std::string_view identifier) override;
  void Chama_RelatorioWin(Form& screen, std::string_view identifier) override;
  void Chama_RelatorioTxt(Form& screen, std::string_view identifier) override;

  Date Hoje() const override { return p_.application.Today(); }
  Date VerificaDiaUtil(Date date, bool backwards) override;
  const std::array<std::string, 13>& NomeMes() const override;
  const std::array<int, 13>& DiaDoMes() const override;
  std::string Extenso(std::string_view amount) const override;
  std::string DeletaPonto(std::string_view text) const override;
  std::vector<std::string> Explode(std::string_view text, std::string_view separator) const override;
  bool ValidaData(std::string_view text) const override;

  int LeConfiguracao(std::string_view key, std::string_view section, std::string_view name,
                     int fallback) override;
  std::vector<std::pair<std::string, std::string>> LeTextos(std::string_view beginning) override;
  void GravaTexto(std::string_view path, std::string_view text) override;
  std::unique_ptr<TImpCheque> ImpCheque() override { return p_.cheque_printer(); }
  std::string LancamentoPendente(std::string_view account, std::string_view history) override;

  // Lifts a busy mark that an action left behind when it was cut short.
  void EndBusy();

 private:
  std::string Condition(const std::vector<ChaveBusca>& keys) const;
  void Launch(Form& screen, std::string_view identifier, bool graphic, bool text);
  std::string CaptionOf(std::string_view screen_class) const;

  FuncoesParts p_;
  int busy_ = 0;
};

}  // namespace orv
