#include "tests/services/services_fixture.h"

#include "host/schema/schema.h"
#include "host/services/audit.h"
#include "host/services/users.h"

namespace orv::test {
namespace {

// Made once; the tests work on copies.
const std::filesystem::path& Original() {
  static const struct Made {
    Made() {
      const auto db = Attachment::Create(file.string());
      CreateSchema(*db, {{"_001", "Malhas Serra", "Joinville"}, {"_002", "Malhas Vale", "Blumenau"}});
      Audit audit(*db, Clock(Date::ParseNeutral(kToday)), "", "");
      Users users(*db, audit, PasswordCost::Least());
      users.Add({"ana", "Ana Prado", true, true}, "mesa clara 2026");
      users.Add({"Leo", "Leo Sales", false, true}, "mesa clara 2027");
      for (const std::string row : {
               "CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('111-1', '001', 'Conta movimento')",
               "CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('222-2', '237', 'Conta reserva')",
               "CADCONTA_002 (CONTA, BANCO, DESCRICAO) VALUES ('333-3', '341', 'Conta do Vale')",
               "CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0001', 'Tecelagem')",
               "CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0002', 'Tinturaria')",
               "CENTROCUSTO_001 (CODIGO, DESCRICAO) VALUES ('0003', 'Corte')",
               "CONTA_CONT_001 (CODIGO, DESCRICAO) VALUES ('1.01', 'Bancos')",
               "CONTA_CONT_001 (CODIGO, DESCRICAO) VALUES ('4.01', 'Energia')",
               "SUBGRUPO_001 (CODIGO, DESCRICAO) VALUES ('010101', 'Energia')",
               "SUBGRUPO_001 (CODIGO, DESCRICAO, RATEIO) VALUES ('010102', 'Diversos', 'S')",
               "HISTCP_001 (HISTORICO, DESCRICAO, SITUACAO) VALUES ('001', 'Cheque', 'P')",
               "HISTCP_001 (HISTORICO, DESCRICAO, SITUACAO) VALUES ('002', 'Tarifa', 'N')",
               "TABSIT_001 (CODIGO, DESCRICAO, DIAS_FLOAT) VALUES ('1', 'Carteira', 0)",
               "TABSIT_001 (CODIGO, DESCRICAO, DIAS_FLOAT) VALUES ('2', 'Cobrança', 2)",
           }) {
        db->Execute("INSERT INTO " + row);
      }
      db->CommitRetaining();
    }
    TempFolder folder;
    std::filesystem::path file = folder.Path() / "house.fdb";
  } made;
  return made.file;
}

}  // namespace

ServicesTest::ServicesTest() {
  std::filesystem::copy_file(Original(), database_);
  main_ = NewSession();
}

ServicesTest::Session::Session(const std::filesystem::path& database, const std::string& login,
                               const std::string& company)
    : db(Attachment::Open(database.string())),
      application(user, Clock(Date::ParseNeutral(kToday))),
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

std::string ServicesTest::Said() {
  std::string last = User().messages.empty() ? "" : User().messages.back();
  User().messages.clear();
  return last;
}

}  // namespace orv::test
