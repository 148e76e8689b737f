#include "host/schema/functions.h"

namespace orv {

const std::vector<std::string>& FunctionSql() {
  // Texts stay short: the engine carries a result at its declared width through every grouping.
  static const std::vector<std::string> functions = {
      "CREATE OR ALTER FUNCTION UDF_NVL (X DOUBLE PRECISION) RETURNS DOUBLE PRECISION DETERMINISTIC AS\n"
      "BEGIN RETURN COALESCE(X, 0); END",

      "CREATE OR ALTER FUNCTION UDF_MONTH (D DATE) RETURNS INTEGER DETERMINISTIC AS\n"
      "BEGIN RETURN EXTRACT(MONTH FROM D); END",

      "CREATE OR ALTER FUNCTION UDF_YEAR (D DATE) RETURNS INTEGER DETERMINISTIC AS\n"
      "BEGIN RETURN EXTRACT(YEAR FROM D); END",

      "CREATE OR ALTER FUNCTION UDF_DAY (D DATE) RETURNS INTEGER DETERMINISTIC AS\n"
      "BEGIN RETURN EXTRACT(DAY FROM D); END",

      // Days from EARLIER to LATER, negative when they stand the other way round.
      "CREATE OR ALTER FUNCTION UDF_DAYSBETWEEN (LATER DATE, EARLIER DATE) RETURNS INTEGER DETERMINISTIC AS\n"
      "BEGIN RETURN DATEDIFF(DAY FROM EARLIER TO LATER); END",

      // QUANTITY characters from the one at START, the first being 1.
      "CREATE OR ALTER FUNCTION UDF_COPY (T VARCHAR(250), START_AT INTEGER, QUANTITY INTEGER)\n"
      "RETURNS VARCHAR(60) DETERMINISTIC AS\n"
      "BEGIN\n"
      "  IF (T IS NULL OR START_AT IS NULL OR QUANTITY IS NULL) THEN RETURN NULL;\n"
      "  RETURN SUBSTRING(T FROM MAXVALUE(START_AT, 1) FOR MINVALUE(MAXVALUE(QUANTITY, 0), 60));\n"
      "END",
  };
  return functions;
}

}  // namespace orv
