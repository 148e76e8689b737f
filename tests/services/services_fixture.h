// A house with two companies in a temporary folder, a user who answers as told, and the services of a
// session.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "frame/application.h"
#include "frame/screen.h"
#include "host/services/session_services.h"
#include "tests/support/desk_test.h"
#include "tests/support/person.h"

namespace orv::test {

class ScriptedUser : public Nobody {
 public:
  Answer Message(MessageKind, std::string_view title, std::string_view text, Answer initial) override {
    messages.push_back(std::string(title) + ": " + std::string(text));
    return initial;
  }
  std::optional<std::string> InputBox(std::string_view, std::string_view, std::string_view value) override {
    proposals.emplace_back(value);
    if (inputs.empty()) return std::nullopt;
    std::string input = inputs.front();
    inputs.pop_front();
    return input;
  }
  bool ConfirmPosting(std::string_view, const std::vector<PostingLine>& lines) override {
    posting = lines;
    ++confirmations;
    return confirms;
  }
  void Busy(bool on) override { busy += on ? "+" : "-"; }
  void RunModal(Form& form) override {
    ++modals;
    if (modal) modal(form);
    form.Close();
  }
  void LaunchReport(const ReportLaunch& report) override { reports.push_back(report); }

  std::vector<std::string> messages, proposals;
  std::deque<std::string> inputs;
  std::vector<PostingLine> posting;
  bool confirms = true;
  int confirmations = 0, modals = 0;
  std::string busy;
  std::function<void(Form&)> modal;
  std::vector<ReportLaunch> reports;
};

class ServicesTest : public ::testing::Test {
 protected:
  ServicesTest();

  // Another session over the same database.
  struct Session {
    Session(const std::filesystem::path& database, const std::string& user, const std::string& company);
    ScriptedUser user;
    std::unique_ptr<Attachment> db;
    Application application;
    std::unique_ptr<SessionServices> services;
  };
  std::unique_ptr<Session> NewSession(const std::string& user = "ana",
                                      const std::string& company = "_001") const;

  std::string Sql(std::string_view sql) { return RowsText(*main_->db, sql); }
  void Run(std::string_view sql) { main_->db->Execute(sql); }
  template <class R>
  void Put(const R& row, const std::string& company = "_001") {
    Run(Insert(row, company));
  }

  IFuncoes& Funcoes() { return main_->application.Funcoes(); }
  IContabil& Contabil() { return main_->application.Contabil(); }
  ITabela& Tabela() { return main_->application.Tabela(); }
  ScriptedUser& User() { return main_->user; }
  // The last message, which is forgotten; "" without one.
  std::string Said();
  // Starts the session anew, as after a login.
  void LoginAgain(const std::string& user = "ana", const std::string& company = "_001");

  TempFolder folder_;
  std::filesystem::path database_ = folder_.Path() / "house.fdb";
  std::unique_ptr<Session> main_;
};

}  // namespace orv::test
