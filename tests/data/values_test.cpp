#include <limits>

#include "host/data/statement.h"
#include "tests/data/fixture.h"
#include "toolkit/text.h"

namespace orv {
namespace {

class Keep : public RowSink {
 public:
  void Columns(const std::vector<Column>& given) override { columns = given; }
  bool Row(std::span<Value> values) override {
    rows.emplace_back(values.begin(), values.end());
    return rows.size() < limit;
  }
  std::vector<Column> columns;
  std::vector<std::vector<Value>> rows;
  std::size_t limit = std::numeric_limits<std::size_t>::max();
};

// Each column through a parameter and back.
TEST_F(DataTest, ValuesComeBackAsTheyWentIn) {
  database->ExecuteDdl(
      "CREATE TABLE T (ID BIGINT, PEQUENO SMALLINT, NOME VARCHAR(40), COD CHAR(6), VALOR NUMERIC(18,4),"
      " CENTAVOS NUMERIC(9,2), TAXA DOUBLE PRECISION, MEDIA FLOAT, DIA DATE, HORA TIMESTAMP, OBS BLOB "
      "SUB_TYPE TEXT,"
      " RELOGIO TIME, SIM BOOLEAN)");
  Statement insert(*database, "INSERT INTO T VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)");
  const std::string large = std::to_string(std::numeric_limits<int64_t>::max());
  const Value minimum(Currency::FromRaw(std::numeric_limits<int64_t>::min()));
  const std::string long_note = std::string(40000, 'x') + "ção" + std::string(40000, 'y');
  const std::vector<std::vector<Value>> rows = {
      {int64_t{std::numeric_limits<int64_t>::max()}, -32768, "D'Ávila \"x\" 😀", "AB",
       Currency::FromRaw(-12345), Currency::FromCents(-123456789), 0.1, 2.5, Date(2026, 11, 22),
       DateTime(Date(1960, 2, 29), 23, 59, 58), long_note, "13:14:15", 1},
      {0, 0, "", " A", minimum, Currency(0), -1e300, 0.0, Date(1, 1, 1),
       DateTime(Date(9999, 12, 31), 0, 0, 0), "", "00:00:00", 0},
      std::vector<Value>(13)};
  for (const auto& row : rows) EXPECT_EQ(insert.Execute(row), 1);
  Keep read;
  database->Fetch("SELECT T.*, VALOR AS \"Meu Valor\", COUNT(*) OVER () AS QTD FROM T", read);
  ASSERT_EQ(read.rows.size(), 3u);
  const std::vector<ValueKind> kinds = {
      ValueKind::Integer,  ValueKind::Integer, ValueKind::Text,    ValueKind::Text,     ValueKind::Currency,
      ValueKind::Currency, ValueKind::Float,   ValueKind::Float,   ValueKind::Date,     ValueKind::DateTime,
      ValueKind::Text,     ValueKind::Text,    ValueKind::Integer, ValueKind::Currency, ValueKind::Integer};
  for (std::size_t c = 0; c < kinds.size(); ++c) EXPECT_EQ(read.columns[c].kind, kinds[c]) << c;
  for (std::size_t r = 0; r < 3; ++r)
    for (std::size_t c = 0; c < 13; ++c) {
      EXPECT_EQ(read.rows[r][c], rows[r][c]) << r << " " << read.columns[c].name;
      if (r < 2) {
        EXPECT_EQ(read.rows[r][c].Kind(), kinds[c]) << r << " " << c;
      }
    }
  EXPECT_EQ(read.columns[2].size, 40);
  EXPECT_EQ(read.columns[3].size, 6);
  EXPECT_EQ(read.columns[13].name, "Meu Valor");
  EXPECT_EQ(read.columns[14].name, "QTD");
  EXPECT_EQ(Text("SELECT ID FROM T WHERE PEQUENO = -32768"), large);
}

TEST_F(DataTest, ScalesAndZeroDates) {
  EXPECT_EQ(Text("SELECT CAST(1.5 AS NUMERIC(9,1)) FROM RDB$DATABASE"), "1.5000");
  EXPECT_EQ(Text("SELECT CAST(-7.123 AS NUMERIC(4,3)) FROM RDB$DATABASE"), "-7.1230");
  EXPECT_EQ(Text("SELECT CAST(2.5 AS NUMERIC(9,4)) * CAST(1.5 AS NUMERIC(9,4)) FROM RDB$DATABASE"), "3.75");
  EXPECT_EQ(Text("SELECT CAST(12 AS NUMERIC(9,0)) FROM RDB$DATABASE"), "12");
  EXPECT_EQ(Text("SELECT CAST(922337203685477580.7 AS NUMERIC(18,1)) FROM RDB$DATABASE"),
            "922337203685477580.7000");
  EXPECT_TRUE(database->Scalar("SELECT DATE '1899-12-30' FROM RDB$DATABASE").IsNull());
  EXPECT_EQ(Text("SELECT DATE '1899-12-31' FROM RDB$DATABASE"), "1899-12-31");

  database->ExecuteDdl("CREATE TABLE N (A NUMERIC(9,2), B SMALLINT, C INTEGER)");
  Statement insert(*database, "INSERT INTO N VALUES (?, ?, ?)");
  insert.Execute({Currency::FromRaw(12350), 2.5, Currency::FromRaw(-25000)});
  insert.Execute({Currency::FromRaw(-12350), "1.234", "-7"});
  EXPECT_EQ(Text("SELECT LIST(A || '/' || B || '/' || C, ' ') FROM N"), "1.24/3/-3 -1.24/1234/-7");
  EXPECT_THROW(insert.Execute({1, 40000, 1}), RangeError);
  EXPECT_THROW(insert.Execute({30000000, 1, 1}), RangeError);
  EXPECT_THROW(insert.Execute({"abc", 1, 1}), ConversionError);
  EXPECT_EQ(Count("N"), 2);
}

TEST_F(DataTest, TextsKeepEveryCharacter) {
  database->ExecuteDdl(
      "CREATE TABLE T (ID INTEGER, NOME VARCHAR(8000), NOTA BLOB SUB_TYPE TEXT, CURTO VARCHAR(3))");
  std::string ten_thousand;
  for (int i = 0; i < 2500; ++i) ten_thousand += "é'\"😀";
  ASSERT_EQ(CharCount(ten_thousand), 10000u);
  const std::string accents(CutChars(ten_thousand, 7999));
  database->Execute("INSERT INTO T (ID, NOME, NOTA) VALUES (1, " + Quote(accents) + ", " +
                    Quote(ten_thousand) + ")");
  Statement(*database, "INSERT INTO T (ID, NOME, NOTA) VALUES (2, ?, ?)").Execute({accents, ten_thousand});
  const auto rows = database->Rows("SELECT NOME, NOTA FROM T ORDER BY ID");
  ASSERT_EQ(rows.size(), 2u);
  for (const auto& row : rows) {
    EXPECT_EQ(row[0].Text(), accents);
    EXPECT_EQ(row[1].Text(), ten_thousand);
  }
  // Characters count, not bytes.
  Statement shorter(*database, "INSERT INTO T (ID, CURTO) VALUES (3, ?)");
  EXPECT_EQ(shorter.Execute({"😀😀😀"}), 1);
  EXPECT_EQ(ErrorOf([&] { shorter.Execute({"abcd"}); }).Why(), Kind::Constraint);
  EXPECT_EQ(ErrorOf([&] { shorter.Execute({std::string(100, 'a')}); }).Why(), Kind::Constraint);
  EXPECT_EQ(ErrorOf([&] { shorter.Execute({"\xff"}); }).Why(), Kind::Constraint);
  const std::string too_large((1 << 20) + 1, 'a');
  Statement(*database, "INSERT INTO T (ID, NOTA) VALUES (4, ?)").Execute({too_large});
  EXPECT_EQ(ErrorOf([&] { Text("SELECT NOTA FROM T WHERE ID = 4"); }).Why(), Kind::Limit);
  // Another character set, and one that says nothing of its bytes.
  database->ExecuteDdl(
      "CREATE TABLE W (S VARCHAR(10) CHARACTER SET WIN1252, B BLOB SUB_TYPE TEXT CHARACTER SET WIN1252,"
      " N VARCHAR(10) CHARACTER SET NONE)");
  database->Execute("INSERT INTO W VALUES ('ação', 'ação', x'41FF')");
  EXPECT_EQ(Text("SELECT S FROM W"), "ação");
  EXPECT_EQ(Text("SELECT B FROM W"), "ação");
  EXPECT_EQ(Text("SELECT N FROM W"), "A\uFFFD");
}

TEST_F(DataTest, AFetchStopsAndTakesOtherWorkInBetween) {
  database->ExecuteDdl("CREATE TABLE T (ID INTEGER NOT NULL PRIMARY KEY)");
  BulkInsert bulk(*database, "T", {"ID"});
  for (int i = 0; i < 100; ++i) bulk.Add({i});
  EXPECT_EQ(bulk.Finish(), 100);
  database->CommitRetaining();

  Keep few;
  few.limit = 3;
  database->Fetch("SELECT ID FROM T ORDER BY ID", few);
  EXPECT_EQ(few.rows.size(), 3u);
  Keep none;
  database->Fetch("SELECT ID FROM T WHERE ID < 0", none);
  EXPECT_EQ(none.columns.size(), 1u);

  // The same text inside itself, writes and commits between the rows of a walk.
  struct Walk : RowSink {
    explicit Walk(Attachment& a) : database(a) {}
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> values) override {
      const int64_t id = values[0].AsInteger();
      inner += database.Scalar("SELECT ID FROM T WHERE ID < 50 ORDER BY ID").AsInteger() == 0;
      database.Execute("UPDATE T SET ID = " + std::to_string(1000 + id) +
                       " WHERE ID = " + std::to_string(id));
      id % 2 ? database.CommitRetaining() : database.Rollback();
      ++walked;
      return true;
    }
    Attachment& database;
    int inner = 0, walked = 0;
  } walk(*database);
  database->Fetch("SELECT ID FROM T WHERE ID < 50 ORDER BY ID", walk);
  EXPECT_EQ(walk.walked, 50);
  EXPECT_EQ(walk.inner, 50);
  database->Rollback();
  EXPECT_EQ(Text("SELECT COUNT(*) FROM T WHERE ID >= 1000"), "25");
}

TEST_F(DataTest, StatementsSurviveAChangeOfSchema) {
  database->ExecuteDdl("CREATE TABLE T (A INTEGER)");
  database->Execute("INSERT INTO T VALUES (1)");
  EXPECT_EQ(database->Rows("SELECT * FROM T").at(0).size(), 1u);
  EXPECT_GT(database->CachedStatements(), 0u);
  database->ExecuteDdl("ALTER TABLE T ADD B VARCHAR(5) DEFAULT 'x' NOT NULL");
  EXPECT_EQ(database->CachedStatements(), 0u);
  EXPECT_EQ(database->Rows("SELECT * FROM T").at(0).size(), 2u);
  for (int i = 0; i < 400; ++i)
    EXPECT_EQ(Text("SELECT A + " + std::to_string(i) + " FROM T"), std::to_string(i + 1));
  EXPECT_LE(database->CachedStatements(), 300u);

  for (const char* refused : {"DROP TABLE T", "COMMIT", "ROLLBACK", "SET TRANSACTION", "SELECT * FROM T", ""})
    ErrorOf([&] { database->Execute(refused); });
  ErrorOf([&] { database->ExecuteDdl("DELETE FROM T"); });
  EXPECT_EQ(Count("T"), 1);
  EXPECT_EQ(Text("INSERT INTO T VALUES (7, 'y') RETURNING A"), "7");
  EXPECT_TRUE(database->HasPendingWrites());
}

}  // namespace
}  // namespace orv
