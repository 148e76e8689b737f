#include "desk/server/server_database.h"

#include "frame/registry.h"
#include "host/data/attachment.h"
#include "host/schema/balances.h"
#include "host/schema/schema.h"
#include "host/services/audit.h"
#include "host/services/preferences.h"

namespace orv {
namespace {

constexpr const char* kPagePreferences = "Mesa/";
constexpr std::size_t kMostPreferences = 1000;

}  // namespace

ServerDatabase::ServerDatabase(std::string database, Clock clock, PasswordCost cost)
    : database_(std::move(database)), clock_(clock), cost_(cost), idle_(Attachment::Open(database_)) {
  RequireCurrentSchema(*idle_);
  // No transaction stays open behind it.
  idle_->CommitRetaining();
}

ServerDatabase::~ServerDatabase() = default;

ServerDatabase::Attempt ServerDatabase::TryLogin(const std::string& user, const std::string& password,
                                                 const std::string& company, const std::string& address) {
  const auto db = Attachment::Open(database_);
  Audit nobody(*db, clock_, "", "");
  Users users(*db, nobody, cost_);
  const auto known = users.Find(user);
  Attempt attempt;
  if (known) attempt.user = known->login;
  if (const auto seal = users.Verify(user, password)) {
    attempt.seal = *seal;
    const std::vector<std::string> suffixes = CompanySuffixes(*db);
    const bool there = std::find(suffixes.begin(), suffixes.end(), company) != suffixes.end();
    attempt.verdict = there ? Verdict::Accepted : Verdict::NoCompany;
    if (!there) return attempt;
  }
  const bool accepted = attempt.verdict == Verdict::Accepted;
  Audit audit(*db, clock_, attempt.user, accepted ? company : "");
  // What an unknown user typed may be a password that went into the wrong field.
  const std::string who = known ? "DE " + known->login : "DE USUARIO DESCONHECIDO";
  audit.Write("LOGIN", (accepted ? "LOGIN " : "LOGIN RECUSADO ") + who + " EM " + address,
              TOperacaoLog::Processo, attempt.user);
  db->CommitRetaining();
  return attempt;
}

std::map<std::string, Standing> ServerDatabase::Standings() {
  const std::lock_guard lock(watch_mutex_);
  try {
    if (watch_ == nullptr) watch_ = Attachment::Open(database_);
    Audit nobody(*watch_, clock_, "", "");
    auto standings = Users(*watch_, nobody).Standings();
    watch_->CommitRetaining();
    return standings;
  } catch (...) {
    watch_.reset();
    throw;
  }
}

std::optional<std::string> ServerDatabase::ChangePassword(const std::string& user, const std::string& company,
                                                          const std::string& address,
                                                          const std::string& present,
                                                          const std::string& fresh, LoginSeal& login) {
  const auto db = Attachment::Open(database_);
  Audit audit(*db, clock_, user, company);
  Users users(*db, audit, cost_);
  if (!users.Verify(user, present)) {
    audit.Write("USUARIO", "TROCA DA SENHA RECUSADA A " + user + " EM " + address, TOperacaoLog::Processo,
                user);
    db->CommitRetaining();
    return std::nullopt;
  }
  if (fresh == present) throw UserError("A senha nova é igual à atual.");
  users.SetPassword(user, fresh);
  std::string seal = users.Standing(user).value().seal;
  login.Add(seal);
  db->CommitRetaining();
  return seal;
}

void ServerDatabase::FoldSums() {
  const auto db = Attachment::Open(database_);
  orv::FoldSums(*db);
  for (const std::string& suffix : CompanySuffixes(*db))
    for (const KeptSums& kept : AllKeptSums()) db->Scalar("SELECT COUNT(*) FROM " + (kept.sums + suffix));
}

Json ServerDatabase::Companies() {
  const auto db = Attachment::Open(database_);
  Json::Array companies;
  for (const auto& row : db->Rows("SELECT EMP_PAT, EMP_NOME FROM EMPRESA ORDER BY EMP_PAT")) {
    companies.push_back(Json{{"suffix", row[0].AsString()}, {"name", row[1].AsString()}});
  }
  return companies;
}

std::optional<Json> ServerDatabase::Me(const std::string& user, const std::string& company) {
  const auto db = Attachment::Open(database_);
  Audit nobody(*db, clock_, "", "");
  Users users(*db, nobody, cost_);
  const auto known = users.Find(user);
  const auto standing = users.Standing(user);
  if (!known || !standing) return std::nullopt;
  Json::Array menu;
  std::string home;
  for (const ScreenInfo& screen : ClassRegistry::Instance().All()) {
    if (screen.IsHome()) home = screen.class_name;
    if (screen.group.empty() || !standing->MayOpen(screen.class_name)) continue;
    menu.push_back(Json{{"class", screen.class_name}, {"caption", screen.caption}, {"group", screen.group}});
  }
  const Value name = db->Scalar("SELECT EMP_NOME FROM EMPRESA WHERE EMP_PAT = " + Quote(company));
  return Json{{"user", known->login},
              {"name", known->name},
              {"company", company},
              {"companyName", name.IsNull() ? "" : name.AsString()},
              {"today", clock_.Today().Neutral()},
              {"home", home},
              {"menu", std::move(menu)}};
}

Json ServerDatabase::Preferences(const std::string& user) {
  const auto db = Attachment::Open(database_);
  Json::Object all;
  for (auto& [key, value] : orv::Preferences(*db, user).List(kPagePreferences)) {
    if (!value.empty()) all.emplace_back(key, value);
  }
  return all;
}

void ServerDatabase::SetPreference(const std::string& user, const std::string& key,
                                   const std::string& value) {
  const auto db = Attachment::Open(database_);
  orv::Preferences preferences(*db, user);
  const auto all = preferences.List(kPagePreferences);
  const bool there =
      std::any_of(all.begin(), all.end(), [&](const auto& entry) { return entry.first == key; });
  if (key.empty() || (!there && all.size() >= kMostPreferences)) {
    throw UserError("A configuração não pode ser guardada.");
  }
  preferences.Set(kPagePreferences + key, value);
  db->CommitRetaining();
}

}  // namespace orv
