#include "host/services/audit.h"

#include "host/services/sql_text.h"
#include "toolkit/text.h"

namespace orv {

Audit::Audit(TOrvDatabase& db, Clock clock, std::string login, std::string company)
    : db_(db), clock_(clock), login_(std::move(login)), company_(std::move(company)) {}

void Audit::Write(std::string_view area, std::string_view text, TOperacaoLog operation,
                  std::string_view key) {
  db_.Execute(
      "INSERT INTO AUDITORIA (ID, MOMENTO, LOGIN, EMP_PAT, AREA, TEXTO, OPERACAO, CHAVE) VALUES "
      "(NEXT VALUE FOR SQ_AUDITORIA_ID, " +
      SqlLiteral(clock_.Now().Neutral()) + ", " + SqlLiteral(CutChars(login_, 40)) + ", " +
      SqlLiteral(company_) + ", " + SqlLiteral(CutChars(area, 40)) + ", " + SqlLiteral(CutChars(text, 1000)) +
      ", " + std::to_string(static_cast<int>(operation)) + ", " + SqlLiteral(CutChars(key, 60)) + ")");
}

}  // namespace orv
