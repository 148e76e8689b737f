// The host's accounting for the screens of one session.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "frame/application.h"
#include "frame/services.h"
#include "host/services/anexos.h"
#include "host/services/apportion.h"
#include "host/services/calendar.h"
#include "host/services/locks.h"
#include "host/services/tabela_service.h"

namespace orv {

class ContabilService : public IContabil {
 public:
  ContabilService(Application& application, TOrvDatabase& db, TabelaService& tabela, PeriodLocks& locks,
                  Calendar& calendar, Anexos& anexos)
      : application_(application),
        db_(db),
        tabela_(tabela),
        locks_(locks),
        calendar_(calendar),
        anexos_(anexos) {}

  std::unique_ptr<TContabil> Create() override;

  void LancaContaCorrente(const MovimentoConta& movimento) override;
  void DeletaContaCorrente(std::string_view lancamento) override;
  void DeletaAnexos(std::string_view lancamento) override { anexos_.ExcluiSemMovimento(lancamento); }
  void LancaContabilidade(const LinhaContabil& linha) override;
  void DeletaContabilidadeFinan(std::string_view lancamento) override;
  std::vector<RegraRateio> RegrasRateio(std::string_view classe, std::string_view tipo,
                                        std::string_view tipo_val) override;
  // The shares stand in CENTRO_RATEIO under NUMERO and TIPO, with an empty LANCAMENTO: those that hang from a
  // movement's entries are of another kind. What stood there before is replaced.
  bool SetRateioClasse(std::string_view numero, std::string_view classe, std::string_view origem,
                       Currency valor, std::string_view carteira, bool confirm, Date data,
                       bool store) override;
  bool PeriodoConciliado(Date date, std::string_view kind) override;
  Date PeriodoFechadoAte(std::string_view kind) override;
  Date DataContabilizacaoBancaria(Date date, std::string_view situacao, bool working_day) override;

  // --- For a posting.
  Application& App() const { return application_; }
  TOrvDatabase& Db() const { return db_; }
  // A company's table at this moment.
  std::string Local(std::string_view table) const;
  // The caption of the screen that the user works at.
  std::string Title() const;
  // Writes shares of one apportionment, numbered from `order`, or all under it where `one_order`.
  void WriteShares(std::string_view lancamento, std::string_view numero, std::string_view tipo, int order,
                   bool one_order, const std::vector<Share>& shares);

 private:
  // The account whose period is asked for: of "CT" that of the current row, "" else.
  std::string LockAccount(std::string_view kind);
  int FloatDays(std::string_view situacao, const std::string& company);
  // The shares of a class, by its rules or as the user gives them. False when he gives up.
  bool SharesOf(std::string_view classe, Currency total, bool confirm, std::vector<Share>& shares);

  Application& application_;
  TOrvDatabase& db_;
  TabelaService& tabela_;
  PeriodLocks& locks_;
  Calendar& calendar_;
  Anexos& anexos_;

  // What was asked for without being stored yet: the user isn't asked a second time.
  struct AskedShares {
    std::string company, numero, classe, origem;
    Currency total;
    std::vector<Share> shares;
    bool Of(const AskedShares& other) const {
      return company == other.company && numero == other.numero && classe == other.classe &&
             origem == other.origem && total == other.total;
    }
  };
  std::optional<AskedShares> asked_;

  // The float of each situation of a company, read once and again after a while.
  std::string float_company_;
  std::chrono::steady_clock::time_point float_read_at_;
  std::unordered_map<std::string, int> float_days_;
};

}  // namespace orv
