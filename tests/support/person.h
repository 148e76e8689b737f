// Who answers what a screen asks: nothing, with what was proposed. Tests override what they look at.
#pragma once

#include "toolkit/user.h"

namespace orv::test {

class Nobody : public UserInterface {
 public:
  Answer Message(MessageKind, std::string_view, std::string_view, Answer initial) override { return initial; }
  void Note(NoteKind, std::string_view) override {}
  std::optional<std::string> InputBox(std::string_view, std::string_view, std::string_view) override {
    return {};
  }
  LookupChoice Choose(TPesquisa&) override { return {}; }
  std::optional<std::string> OpenFile(std::string_view, std::string_view) override { return {}; }
  bool ConfirmPosting(std::string_view, const std::vector<PostingLine>&) override { return false; }
  void Detail(std::string_view, DataSet&) override {}
  void Progress(int64_t, int64_t, std::string_view) override {}
  void Busy(bool) override {}
  void RunModal(Form&) override {}
  void LaunchReport(const ReportLaunch&) override {}
};

}  // namespace orv::test
