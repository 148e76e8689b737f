#include "tests/services/services_fixture.h"

#include <unistd.h>

#include "host/schema/schema.h"
#include "host/services/audit.h"
#include "host/services/users.h"

namespace orv::test {
namespace {

std::filesystem::path NewFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvcc-services-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw UserError("no temporary folder");
  return pattern;
}

// Made once; the tests work on copies.
const std::filesystem::path& Original() {
  static const struct Made {
    Made() : folder(NewFolder()), file(folder / "house.fdb") {
      const auto db = Attachment::Create(file.string());
      CreateSchema(*db, {{"_001", "Malhas Serra", "Joinville"}, {"_002", "Malhas Vale", "Blumenau"}});
      Audit audit(*db, Clock(Date::ParseNeutral(kServicesToday)), "", "");
      Users users(*db, audit, PasswordCost::Least());
      users.Add({"ana", "Ana Prado", true, true}, "mesa clara 2026");
      users.Add({"Leo", "Leo Sales", false, true}, "mesa clara 2027");
      for (const char* sql : {
               "INSERT INTO CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('111-1', '001', 'Conta "
               "movimento')",
               "INSERT INTO CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('222-2', '237', 'Conta reserva')",
               "INSERT INTO CADCONTA_002 (CONTA, BANCO, DESCRICAO) VALUES ('333-3', '341', 'Conta do Vale')",
               "INSERT INTO CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0001', 'Tecelagem')",
               "INSERT INTO CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0002', 'Tinturaria')",
               "INSERT INTO CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0003', 'Corte')",
               "INSERT INTO CONTA_CONT_001 (CODIGO, DESCRICAO) VALUES ('1.01', 'Bancos')",
               "INSERT INTO CONTA_CONT_001 (CODIGO, DESCRICAO) VALUES ('4.01', 'Energia')",
               "INSERT INTO SUBGRUPO_001 (CODIGO, DESCRICAO) VALUES ('010101', 'Energia')",
               "INSERT INTO SUBGRUPO_001 (CODIGO, DESCRICAO, RATEIO) VALUES ('010102', 'Diversos', 'S')",
               "INSERT INTO HISTCP_001 (HISTORICO, DESCRICAO, SITUACAO) VALUES ('001', 'Cheque', 'P')",
               "INSERT INTO HISTCP_001 (HISTORICO, DESCRICAO, SITUACAO) VALUES ('002', 'Tarifa', 'N')",
               "INSERT INTO TABSIT_001 (CODIGO, DESCRICAO, DIAS_FLOAT) VALUES ('1', 'Carteira', 0)",
               "INSERT INTO TABSIT_001 (CODIGO, DESCRICAO, DIAS_FLOAT) VALUES ('2', 'Cobrança', 2)",
           }) {
        db->Execute(sql);
      }
      db->CommitRetaining();
    }
    ~Made() { std::filesystem::remove_all(folder); }
    std::filesystem::path folder, file;
  } made;
  return made.file;
}

}  // namespace

ServicesTest::ServicesTest() : folder_(NewFolder()), database_(folder_ / "house.fdb") {
  std::filesystem::copy_file(Original(), database_);
  main_ = NewSession();
}

ServicesTest::~ServicesTest() {
  main_.reset();
  std::filesystem::remove_all(folder_);
}

ServicesTest::Session::Session(const std::filesystem::path& database, const std::string& login,
                               const std::string& company)
    : db(Attachment::Open(database.string())),
      application(user, Clock(Date::ParseNeutral(kServicesToday))),
      services(std::make_unique<SessionServices>(application, *db, login, company)) {}

std::unique_ptr<ServicesTest::Session> ServicesTest::NewSession(const std::string& user,
                                                                const std::string& company) const {
  return std::make_unique<Session>(database_, user, company);
}

void ServicesTest::LoginAgain(const std::string& user, const std::string& company) {
  main_->db->CommitRetaining();
  main_.reset();
  main_ = NewSession(user, company);
}

std::string ServicesTest::SqlOf(Attachment& db, std::string_view sql) {
  std::string text;
  for (const auto& row : db.Rows(sql)) {
    if (!text.empty()) text += ";";
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) text += "|";
      text += row[i].IsNull() ? "-" : row[i].Neutral();
    }
  }
  return text;
}

std::string ServicesTest::Said() {
  std::string last = User().messages.empty() ? "" : User().messages.back();
  User().messages.clear();
  return last;
}

std::string ErrorOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const UserError& error) {
    return error.what();
  }
  return "";
}

}  // namespace orv::test
