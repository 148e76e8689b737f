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
constexpr const char* kColunas = "10250-1";
constexpr const char* kSeparado = "20418-7";
constexpr const char* kOfx = "33021-5";

class ExtratoTest : public DeskTest {
 protected:
  static void Page(Desk& desk, std::string_view page) {
    desk.Do({{"do", "page"}, {"control", "PageControl1"}, {"page", page}});
  }
  // A copy of a made file under another name, in the user's own folder; the path by which he names it.
  std::string File(const std::string& made, const std::string& name = "") {
    const std::string path = name.empty() ? made : name;
    std::filesystem::copy_file(ORV_FILES + made, folder_.Path() / path,
                               std::filesystem::copy_options::overwrite_existing);
    return path;
  }
  std::string Written(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_.Path() / name, std::ios::binary) << bytes;
    return name;
  }
  // An open screen on its page of files.
  static void Import(Desk& desk) {
    desk.Open("TFmCadExtrato");
    Page(desk, "TabSheet3");
  }
  // Loads a file for an account; what the desk said, the bank question answered by `answer`.
  static std::string Load(Desk& desk, const std::string& path, const std::string& conta,
                          std::string_view answer = "no") {
    desk.Set("EdtCam", path);
    desk.Set("EdtIConta", conta);
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
    desk.Click("BitBtn4");
    const std::string said = desk.Messages();
    if (desk.End() == "waiting answer") desk.Answer("ok");
    return said;
  }
  // The line that tells of the load.
  static std::string Told(Desk& desk) { return desk.Property("LbCarga", "caption").String(); }
  static std::string Stopped(Desk& desk) { return desk.Property("LbParada", "caption").String(); }
  // The rows that came with a file.
  std::string Stored(const std::string& arquivo) {
    return Sql(
        "SELECT BANCO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, CONCILIADO, DT_ARQ, LANC_CON "
        "FROM EXTRATO_001 WHERE ARQUIVO = '" +
        arquivo + "' ORDER BY LANCTO");
  }
  std::string Lines() { return Sql("SELECT COUNT(*) FROM EXTRATO_001"); }
  std::string Audit() {
    return Sql("SELECT TEXTO, OPERACAO, CHAVE FROM AUDITORIA WHERE AREA = 'CADEXTRATO' ORDER BY ID");
  }
};

}  // namespace orv::test
