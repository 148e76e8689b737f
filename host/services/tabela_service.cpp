#include "host/services/tabela_service.h"

#include <array>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

struct Definition {
  const char* name;
  const char* table;
  const char* key;
  bool of_company;
};

constexpr std::array<Definition, 10> kDefinitions{{
    {"tbEmpresa", "EMPRESA", "EMP_PAT", false},
    {"TbCadConta", "CADCONTA", "CONTA", true},
    {"tbBanco", "CADBAN", "BANCO", true},
    {"tbHistorico", "HISTCP", "HISTORICO", true},
    {"tbsubGrupo", "SUBGRUPO", "CODIGO", true},
    {"tbEntidade", "ENTIDADE", "CODCLI", true},
    {"tbRepresentante", "REPRESEN", "CODREP", true},
    {"TbSituacao", "TABSIT", "CODIGO", true},
    {"tbContaCor", "CONTACOR", "LANCAMENTO;DOCTO;CONTA;OPERACAO", true},
    // A cheque handed over by another company brings that company's number.
    {"tbCheque_pre", "CHEQUE_PRE", "CHAVE;BANCO;CONTA;NUMERO", true},
}};

}  // namespace

struct TabelaService::Shared {
  Shared(TOrvDatabase& db, const Definition& definition)
      : table(db, definition.name, definition.table, definition.of_company) {
    table.SetKey(definition.key);
  }
  TOrvTable table;
  int opened = 0;
};

TabelaService::TabelaService(TOrvDatabase& db, std::string_view company) : db_(db), company_(company) {
  for (const Definition& definition : kDefinitions)
    tables_.push_back(std::make_unique<Shared>(db, definition));
  AbreTabela("tbEmpresa", false);
  if (company.empty() || !tbEmpresa().Locate("EMP_PAT", Value(company))) {
    throw UserError("A empresa \"" + company_ + "\" não existe.");
  }
  companies_ = std::make_unique<Companies>(db, [this] { return CurrentCompany(); });
}

TabelaService::~TabelaService() = default;

TabelaService::Shared& TabelaService::Find(std::string_view name) {
  for (const auto& shared : tables_) {
    if (SameText(shared->table.Name(), name)) return *shared;
  }
  throw UserError("A tabela \"" + std::string(name) + "\" não existe.");
}

std::string TabelaService::CurrentCompany() {
  TOrvTable& companies = tables_.front()->table;
  // Between its opening and its first row the session's own company holds.
  if (!companies.Active() || companies.IsEmpty()) return company_;
  return std::string(Trim(companies.FieldByName("EMP_PAT").AsString()));
}

void TabelaService::StandAtHome() {
  if (CurrentCompany() != company_) tbEmpresa().Locate("EMP_PAT", Value(company_));
}

void TabelaService::Reread() {
  for (const auto& shared : tables_) {
    if (shared->table.Active() && !shared->table.Editing()) shared->table.Refresh();
  }
}

void TabelaService::AbreTabela(std::string_view name, bool reread) {
  Shared& shared = Find(name);
  if (shared.opened++ == 0) {
    shared.table.Open();
  } else if (reread) {
    shared.table.Close();
    shared.table.Open();
    if (&shared == tables_.front().get()) StandAtHome();
  }
}

void TabelaService::FechaTabela(std::string_view name) {
  Shared& shared = Find(name);
  if (Closes(shared)) shared.table.Close();
}

void TabelaService::SoltaTabela(std::string_view name) noexcept {
  Shared& shared = Find(name);
  if (Closes(shared)) shared.table.Abandon();
}

bool TabelaService::Closes(Shared& shared) const {
  // A close too many, and any close of the companies: those stay open for the session.
  if (shared.opened == 0 || (shared.opened == 1 && &shared == tables_.front().get())) return false;
  return --shared.opened == 0;
}

TOrvTable& TabelaService::Table(std::string_view name) { return Find(name).table; }

}  // namespace orv
