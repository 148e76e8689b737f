// What the scenarios of the statement screen have in common.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {

// Accounts of the first demo company: of a bank with fixed columns, with separated fields, with OFX.
constexpr const char* kColunas = kConta;
constexpr const char* kSeparado = kOutraConta;
constexpr const char* kOfx = "33021-5";

class ExtratoTest : public DeskTest {
 protected:
  // A copy of a made file under another name, in the user's own folder; the path by which he names it.
  std::string File(const std::string& made, const std::string& name = "") {
    const std::string path = name.empty() ? made : name;
    std::filesystem::copy_file(ORV_FILES + made, folder_.Path() / path,
                               std::filesystem::copy_options::overwrite_existing);
    return path;
  }
  // An open screen on its page of files.
  static void Import(Desk& desk) {
    desk.Open("TFmCadExtrato");
    desk.Page("TabSheet3");
  }
  // Loads a file for an account; what the desk said, the bank question answered by `answer`.
  static std::string Load(Desk& desk, const std::string& path, const std::string& conta,
                          std::string_view answer = "no") {
    desk.Set({{"EdtCam", path}, {"EdtIConta", conta}});
    desk.Click("BitBtn6");
    std::string said = desk.Messages();
    while (desk.End() == "waiting answer") {
      desk.Answer(said.ends_with('?') ? answer : "ok");
      if (!desk.Messages().empty()) said += "\n" + desk.Messages();
    }
    return said;
  }
  // Confirms what was loaded; what the desk said.
  static std::string Confirm(Desk& desk) {
    const std::string said = desk.Press("BitBtn4");
    if (desk.End() == "waiting answer") desk.Answer("ok");
    return said;
  }
  // The line that tells of the load.
  static std::string Told(Desk& desk) { return desk.Caption("LbCarga"); }
  static std::string Stopped(Desk& desk) { return desk.Caption("LbParada"); }
  // The rows that came with a file.
  std::string Stored(const std::string& arquivo) {
    return Sql(
        "SELECT BANCO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, CONCILIADO, DT_ARQ, LANC_CON FROM "
        "EXTRATO_001 WHERE ARQUIVO = '" +
        arquivo + "' ORDER BY LANCTO");
  }
  std::string Lines() { return Count("EXTRATO_001"); }
};

}  // namespace orv::test
