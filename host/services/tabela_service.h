// The shared data module: tables that screens open by name and that stand where the screens leave them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "host/services/companies.h"
#include "toolkit/database.h"

namespace orv {

class TabelaService : public ITabela {
 public:
  // Opens tbEmpresa and stands it on the company with this suffix. Raises UserError when there is no such
  // company.
  TabelaService(TOrvDatabase& db, std::string_view company);
  ~TabelaService() override;

  void AbreTabela(std::string_view name, bool reread) override;
  void FechaTabela(std::string_view name) override;
  void SoltaTabela(std::string_view name) noexcept override;
  TOrvDatabase& IBDatabase() override { return db_; }
  void CommitRetaining() override { db_.CommitRetaining(); }
  TOrvTable& Table(std::string_view name) override;
  const std::vector<std::string>& TabelasCompartilhadas() override { return companies_->Shared(); }

  const Companies& GetCompanies() const { return *companies_; }
  // The suffix of the company on which tbEmpresa stands.
  std::string CurrentCompany();
  // Puts tbEmpresa back on the session's company, wherever an action that was cut short left it.
  void StandAtHome();
  // Reads the open tables anew after writes were undone, save one in which the user is typing.
  void Reread();

 private:
  struct Shared;
  Shared& Find(std::string_view name);
  // Counts a close; true when it was the last one.
  bool Closes(Shared& shared) const;

  TOrvDatabase& db_;
  std::vector<std::unique_ptr<Shared>> tables_;
  std::string company_;
  std::unique_ptr<Companies> companies_;
};

}  // namespace orv
