#include "host/services/session_services.h"

#include "frame/screen.h"
#include "host/chequeprinter/cheque_printer.h"
#include "host/data/attachment.h"
#include "host/services/contabil_service.h"
#include "host/services/extenso.h"
#include "host/services/funcoes_service.h"
#include "host/sheet/sheet_reader.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::string ActiveUser(TOrvDatabase& db, std::string_view login) {
  // No session's own yet: nothing is written by it.
  Audit audit(db, Clock(), "", "");
  const auto user = Users(db, audit).Find(login);
  if (!user) throw UserError("O usuário \"" + std::string(Trim(login)) + "\" não existe.");
  if (!user->active) throw UserError("O usuário \"" + user->login + "\" está desativado.");
  return user->login;
}

// A sequence is a change of schema, which would commit what the session has written so far: it is made on an
// attachment of its own.
void MakeSequence(const std::string& database, const std::string& ddl) {
  Attachment::Open(database)->ExecuteDdl(ddl);
}

}  // namespace

struct SessionServices::Parts {
  Parts(Application& application, Attachment& attachment, std::string_view login_text,
        std::string_view company_text)
      : db(attachment),
        login(ActiveUser(db, login_text)),
        company(Trim(company_text)),
        audit(db, application.GetClock(), login, company),
        users(db, audit),
        parameters(db, audit),
        locks(db, audit),
        preferences(db, login),
        calendar(db),
        tabela(db, company),
        numbering(db, tabela.GetCompanies(),
                  [database = db.Database()](const std::string& ddl) { MakeSequence(database, ddl); }),
        funcoes({application, db, tabela, users, parameters, preferences, audit, calendar, numbering, login,
                 company,
                 [] {
                   return std::make_unique<ChequePrinter>(
                       [](Currency amount) { return AmountInWords(amount.Cents()); }, SystemChequePort);
                 }}),
        anexos(db, audit, parameters, application.GetClock(), login, company,
               [this] {
                 return tabela.GetCompanies().GetSharing().SuffixOf("CONTACOR", tabela.CurrentCompany());
               }),
        contabil(application, db, tabela, locks, calendar, anexos) {
    db.SetLocalName([this](std::string_view table) {
      return tabela.GetCompanies().Physical(table, tabela.CurrentCompany());
    });
  }
  ~Parts() { db.SetLocalName(nullptr); }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  Attachment& db;
  std::string login;
  std::string company;
  orv::Audit audit;
  orv::Users users;
  orv::Parameters parameters;
  PeriodLocks locks;
  orv::Preferences preferences;
  orv::Calendar calendar;
  TabelaService tabela;
  Numbering numbering;
  FuncoesService funcoes;
  orv::Anexos anexos;
  ContabilService contabil;
  SheetReader sheets;
};

SessionServices::SessionServices(Application& application, Attachment& db, std::string_view login,
                                 std::string_view company)
    : parts_(std::make_unique<Parts>(application, db, login, company)) {
  application.SetServices(Get());
  application.SetRights([&parts = *parts_](const std::string& screen_class) {
    return parts.users.MayOpen(parts.login, screen_class);
  });
}

SessionServices::~SessionServices() = default;

Services SessionServices::Get() const {
  return {parts_->funcoes, parts_->contabil, parts_->tabela, parts_->sheets};
}

orv::Users& SessionServices::Users() const { return parts_->users; }
orv::Parameters& SessionServices::Parameters() const { return parts_->parameters; }
PeriodLocks& SessionServices::Locks() const { return parts_->locks; }
orv::Audit& SessionServices::Audit() const { return parts_->audit; }
orv::Calendar& SessionServices::Calendar() const { return parts_->calendar; }
orv::Anexos& SessionServices::Anexos() const { return parts_->anexos; }
orv::Preferences& SessionServices::Preferences() const { return parts_->preferences; }
const orv::Companies& SessionServices::Companies() const { return parts_->tabela.GetCompanies(); }
const std::string& SessionServices::Login() const { return parts_->login; }
const std::string& SessionServices::Company() const { return parts_->company; }

void SessionServices::Undone() { parts_->tabela.Reread(); }

void SessionServices::AfterAction() {
  parts_->funcoes.EndBusy();
  parts_->tabela.StandAtHome();
}

}  // namespace orv
