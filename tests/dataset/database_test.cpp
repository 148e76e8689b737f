// Queries and tables on a real database.
#include <gtest/gtest.h>

#include <chrono>

#include "host/data/statement.h"
#include "tests/support/desk_test.h"
#include "toolkit/table.h"

namespace orv {
namespace {

// Counts what goes to the database behind it.
class Counted : public TOrvDatabase {
 public:
  explicit Counted(TOrvDatabase& inner) : inner_(inner) {}
  void Fetch(std::string_view sql, RowSink& sink) override {
    ++fetches;
    last = sql;
    inner_.Fetch(sql, sink);
  }
  int64_t Execute(std::string_view sql) override {
    ++writes;
    last = sql;
    return inner_.Execute(sql);
  }
  void CommitRetaining() override { inner_.CommitRetaining(); }
  std::string LocalName(std::string_view table) const override { return inner_.LocalName(table); }

  int fetches = 0, writes = 0;
  std::string last;

 private:
  TOrvDatabase& inner_;
};

class Tables : public testing::Test {
 protected:
  Tables() {
    Localize(*attachment_);
    attachment_->ExecuteDdl(
        "CREATE TABLE CHEQUE_001 (CHAVE VARCHAR(7) NOT NULL PRIMARY KEY, BANCO CHAR(3), VALOR NUMERIC(18,4), "
        "TAXA DOUBLE PRECISION, VENCIMENTO DATE, INCLUSAO TIMESTAMP DEFAULT '2026-01-02 03:04:05.6789', OBS "
        "VARCHAR(60))");
    attachment_->ExecuteDdl("CREATE TABLE MOEDA (CODIGO INTEGER NOT NULL PRIMARY KEY, NOME VARCHAR(20))");
  }
  static void Localize(Attachment& attachment) {
    attachment.SetLocalName([](std::string_view table) { return std::string(table) + "_001"; });
  }
  // Keys "000000" and up; banks of three, every tenth null.
  void Fill(int count) {
    attachment_->ExecuteDdl("RECREATE TABLE SEQ (N INTEGER)");
    attachment_->Execute(
        "EXECUTE BLOCK AS DECLARE N INTEGER = 0; BEGIN WHILE (N < " + std::to_string(count) +
        ") DO BEGIN INSERT INTO CHEQUE_001 (CHAVE, BANCO, VALOR, TAXA, VENCIMENTO, OBS) VALUES (LPAD(:N, 6, "
        "'0'), IIF(MOD(:N, 10) = 9, NULL, LPAD(MOD(:N, 3), 3, '0')), :N / 4.0000, :N / 3e0, DATEADD(:N DAY "
        "TO DATE '2026-01-01'), 'd''água ' || :N); N = N + 1; END END");
    attachment_->CommitRetaining();
  }

  test::TempDatabase temp_;
  const std::string& file_ = temp_.file;
  std::unique_ptr<Attachment>& attachment_ = temp_.db;
};

// The keys of a walk.
std::string Keys(DataSet& set, const char* field = "CHAVE") {
  std::string keys;
  for (set.First(); !set.Eof(); set.Next()) keys += set[field].AsString() + " ";
  return keys;
}

TEST_F(Tables, ATableReadsOnlyWhatIsAskedFor) {
  Fill(20000);
  Counted database(*attachment_);
  TOrvTable table(database, "tbCheque", "CHEQUE");
  table.SetKey("CHAVE");
  table.Open();
  EXPECT_EQ(database.fetches, 1);
  EXPECT_EQ(table.Fields().size(), 7u);

  database.fetches = 0;
  int64_t rows = 0;
  for (table.First(); !table.Eof(); table.Next()) ASSERT_EQ(table["CHAVE"].AsInteger(), rows++);
  EXPECT_EQ(rows, 20000);
  EXPECT_LE(database.fetches, 102);
  for (rows = 0; !table.Bof(); table.Prior()) ++rows;
  EXPECT_EQ(rows, 20000);

  // One statement a search, and its row's neighbours are where they belong.
  database.fetches = 0;
  EXPECT_TRUE(table.Locate("CHAVE", "012345"));
  EXPECT_FALSE(table.Locate("CHAVE", "d'água"));
  EXPECT_EQ(database.fetches, 2);
  EXPECT_EQ(table.RecNo(), 12346);
  EXPECT_EQ(table.MoveBy(-300), -300);
  EXPECT_EQ(table["CHAVE"].AsString(), "012045");
  EXPECT_TRUE(table.Locate("BANCO;VENCIMENTO", {"001", Date(2026, 1, 2)}));
  EXPECT_EQ(table.RecNo(), 2);
  EXPECT_TRUE(table.Locate("BANCO", Value()));
  EXPECT_EQ(table["CHAVE"].AsString(), "000009");
  EXPECT_TRUE(table.Locate("taxa", 7 / 3.0));
  EXPECT_EQ(table["CHAVE"].AsString(), "000007");

  // What a display shows doesn't move the cursor.
  EXPECT_EQ(table.DisplayCount(), 20000);
  EXPECT_EQ(table.Cell(19999, table["OBS"]).AsString(), "d'água 19999");
  EXPECT_EQ(table.Cell(10950, table["CHAVE"]).AsString(), "010950");
  EXPECT_EQ(table.Cell(11, table["CHAVE"]).AsString(), "000011");
  EXPECT_TRUE(table.Cell(20000, table["CHAVE"]).IsNull());
  EXPECT_EQ(table.DisplayRow(), 7);
  table.SetRecNo(15001);
  EXPECT_EQ(table["CHAVE"].AsString(), "015000");
  table.Last();
  EXPECT_EQ(table.RecNo(), 20000);
}

// Orders with nulls and equal values: forwards, backwards and by place they are the same list.
TEST_F(Tables, AnOrderIsOneListFromEverySide) {
  Fill(950);
  TOrvTable table(*attachment_, "tbCheque", "CHEQUE");
  table.SetKey("CHAVE");
  for (const char* order : {"BANCO", "BANCO;VALOR", "", "VENCIMENTO"}) {
    table.SetIndexFieldNames(order);
    table.Open();
    std::vector<std::string> forwards, backwards;
    for (table.First(); !table.Eof(); table.Next()) forwards.push_back(table["CHAVE"].AsString());
    for (table.Last(); !table.Bof(); table.Prior()) backwards.push_back(table["CHAVE"].AsString());
    std::reverse(backwards.begin(), backwards.end());
    ASSERT_EQ(forwards.size(), 950u) << order;
    EXPECT_EQ(forwards, backwards) << order;
    for (const std::size_t place : {0u, 94u, 95u, 500u, 949u}) {
      EXPECT_EQ(table.Cell(static_cast<int64_t>(place), table["CHAVE"]).AsString(), forwards[place]);
      ASSERT_TRUE(table.Locate("CHAVE", Value(forwards[place])));
      EXPECT_EQ(table.RecNo(), static_cast<int64_t>(place) + 1) << order;
    }
    table.SetIndexFieldNames("CHAVE");
    EXPECT_EQ(table["CHAVE"].AsString(), forwards[949]);
    table.Close();
  }
  table.SetFilterSql("BANCO = '001' OR BANCO IS NULL");
  table.SetIndexFieldNames("BANCO");
  table.Open();
  EXPECT_EQ(table.RecordCount(),
            attachment_->Scalar("SELECT COUNT(*) FROM CHEQUE_001 WHERE BANCO = '001' OR BANCO IS NULL")
                .AsInteger());
  EXPECT_FALSE(table.Locate("BANCO", "002"));
}

// The key has an index on its first column alone, and no order makes the database read and sort the table.
TEST_F(Tables, AScreenfulReadsNoMoreThanItShows) {
  attachment_->ExecuteDdl("CREATE TABLE PARTE_001 (NUMERO VARCHAR(6), CONTA VARCHAR(6), DIA INTEGER)");
  attachment_->ExecuteDdl("CREATE INDEX IX_PARTE_NUMERO ON PARTE_001 (NUMERO)");
  attachment_->ExecuteDdl("CREATE INDEX IX_PARTE_DIA ON PARTE_001 (DIA)");
  BulkInsert parts(*attachment_, "PARTE_001", {"NUMERO", "CONTA", "DIA"});
  for (int i = 0; i < 12000; ++i)
    parts.Add({std::to_string(100000 + i * 7919 % 12000 / 3), std::to_string(100000 + i), i % 400});
  parts.Finish();
  attachment_->CommitRetaining();
  const auto reads = [this] {
    attachment_->CommitRetaining();
    return attachment_
        ->Scalar(
            "SELECT R.MON$RECORD_SEQ_READS + R.MON$RECORD_IDX_READS FROM MON$ATTACHMENTS A"
            " JOIN MON$RECORD_STATS R ON R.MON$STAT_ID = A.MON$STAT_ID"
            " WHERE A.MON$ATTACHMENT_ID = CURRENT_CONNECTION")
        .AsInteger();
  };
  for (const std::string order : {"", "DIA"}) {
    TOrvTable table(*attachment_, "tbParte", "PARTE");
    table.SetKey("NUMERO;CONTA");
    table.SetIndexFieldNames(order);
    const int64_t before = reads();
    table.Open();
    table.First();
    table.Prepare(0, 40);
    EXPECT_LT(reads() - before, 3000) << order;
    const auto sorted = attachment_->Rows("SELECT FIRST 900 CONTA FROM PARTE_001 ORDER BY " +
                                          (order.empty() ? "" : order + ", ") + "NUMERO, CONTA");
    for (int row = 0; row < 900; ++row)
      ASSERT_EQ(table.Cell(row, table["CONTA"]), sorted[static_cast<std::size_t>(row)][0]) << order << row;
  }
}

TEST_F(Tables, RowsAreWrittenAsTheyAre) {
  Counted database(*attachment_);
  TOrvTable table(database, "tbCheque", "CHEQUE");
  table.SetKey("CHAVE");
  table.Open();
  EXPECT_TRUE(table.IsEmpty() && table.Eof());
  EXPECT_THROW(table.Delete(), UserError);
  table.Append();
  table["CHAVE"] = "A";
  table["BANCO"] = "001";
  table["VALOR"] = "1.234,5678";
  table["TAXA"] = 0.1 + 0.2;
  table["VENCIMENTO"] = Date(2026, 2, 1);
  table["OBS"] = "d'água; DROP";
  EXPECT_EQ(table.DisplayCount(), 1);
  table.Post();
  // A default of the database is there too.
  EXPECT_FALSE(table["INCLUSAO"].IsNull());
  EXPECT_EQ(attachment_->Scalar("SELECT VALOR FROM CHEQUE_001 WHERE VENCIMENTO = '02/01/2026'").AsCurrency(),
            Currency::ParseNeutral("1234.5678"));
  table.Append();
  table["CHAVE"] = "B";
  table.Post();
  EXPECT_EQ(Keys(table), "A B ");
  table.First();

  // Only what changed is written, and a row with floats and fractions of a second is still known.
  table.Edit();
  table["OBS"].Clear();
  table["TAXA"] = 1 / 3.0;
  table.Post();
  EXPECT_TRUE(database.last.find("SELECT") == 0);
  EXPECT_EQ(table["TAXA"].AsFloat(), 1 / 3.0);
  table.Edit();
  table["CHAVE"] = "C";
  table.Post();
  EXPECT_EQ(Keys(table), "B C ");
  database.writes = 0;
  table.Edit();
  table.Post();
  EXPECT_EQ(database.writes, 0);

  // A refusal of the database leaves the row in edit.
  table.Locate("CHAVE", "C");
  table.Edit();
  table["CHAVE"] = "B";
  EXPECT_THROW(table.Post(), DatabaseError);
  EXPECT_EQ(table.State(), DataSetState::Edit);
  table.Cancel();
  EXPECT_EQ(table["CHAVE"].AsString(), "C");
  table.Delete();
  EXPECT_EQ(Keys(table), "B ");
  EXPECT_TRUE(table.Eof());
  table.Delete();
  EXPECT_TRUE(table.IsEmpty());

  TOrvTable global(*attachment_, "tbMoeda", "MOEDA", false);
  global.Open();
  EXPECT_THROW(global.Append(), UserError);  // without a key it is read only
  attachment_->Execute(
      "EXECUTE BLOCK AS DECLARE N INTEGER = 0; BEGIN WHILE (N < 450) DO BEGIN INSERT INTO MOEDA (CODIGO, "
      "NOME) VALUES (:N, 'igual'); N = N + 1; END END");
  global.SetIndexFieldNames("NOME");
  int rows = 0;
  for (global.First(); !global.Eof(); global.Next()) ++rows;
  EXPECT_EQ(rows, 450);
}

TEST_F(Tables, AnotherUsersChangeIsTold) {
  Fill(4);
  auto other = Attachment::Open(file_);
  Localize(*other);
  TOrvTable mine(*attachment_, "tbCheque", "CHEQUE");
  TOrvTable theirs(*other, "tbCheque", "CHEQUE");
  for (TOrvTable* table : {&mine, &theirs}) {
    table->SetKey("CHAVE");
    table->Open();
    table->First();
  }
  const auto refusal = [](auto action) {
    try {
      action();
    } catch (const DatabaseError&) {
      return std::string("database");
    } catch (const UserError& error) {
      return std::string(error.what()).substr(0, 38);
    }
    return std::string("none");
  };
  mine.Edit();
  mine["OBS"] = "mine";
  theirs.Edit();
  theirs["VALOR"] = Currency(99);
  theirs.Post();
  other->CommitRetaining();
  EXPECT_EQ(refusal([&] { mine.Post(); }), "Outro usuário alterou este registro. ");
  EXPECT_EQ(mine.State(), DataSetState::Edit);
  mine.Cancel();
  EXPECT_EQ(mine["VALOR"].AsCurrency(), Currency(99));
  mine.Edit();
  mine["OBS"] = "mine";
  mine.Post();
  attachment_->CommitRetaining();

  // A row that is no longer as it was read isn't removed; the next attempt sees it.
  EXPECT_EQ(refusal([&] { theirs.Delete(); }), "Outro usuário alterou este registro. ");
  EXPECT_EQ(theirs["OBS"].AsString(), "mine");
  theirs.Delete();
  other->CommitRetaining();
  EXPECT_EQ(theirs["CHAVE"].AsString(), "000001");
  EXPECT_EQ(refusal([&] { mine.Delete(); }), "Outro usuário alterou este registro. ");
  EXPECT_EQ(mine["CHAVE"].AsString(), "000001");

  // Rereading stays on the row, and goes on from a row that has gone.
  mine.Next();
  other->Execute("UPDATE CHEQUE_001 SET OBS = 'dois' WHERE CHAVE = '000002'");
  other->Execute("INSERT INTO CHEQUE_001 (CHAVE) VALUES ('000000')");
  other->CommitRetaining();
  mine.Refresh();
  EXPECT_EQ(mine["OBS"].AsString(), "dois");
  EXPECT_EQ(mine.RecNo(), 3);
  other->Execute("DELETE FROM CHEQUE_001 WHERE CHAVE >= '000002'");
  other->CommitRetaining();
  mine.Refresh();
  EXPECT_EQ(mine["CHAVE"].AsString(), "000001");
  EXPECT_EQ(Keys(mine), "000000 000001 ");
}

// What a transaction that fails takes back was never shown as done.
TEST_F(Tables, StoredRowsWaitForTheCommit) {
  Fill(3);
  TOrvTable table(*attachment_, "tbCheque", "CHEQUE");
  table.SetKey("CHAVE");
  table.Open();
  table.First();
  table.Edit();
  table["OBS"] = "nova";
  table.Store();
  attachment_->Rollback();
  EXPECT_EQ(std::string(StateName(table.State())) + table["OBS"].AsString(), "editnova");
  table.Store();
  attachment_->CommitRetaining();
  table.Cancel();
  table.Refresh();
  EXPECT_EQ(table["OBS"].AsString(), "nova");

  table.Remove();
  attachment_->Rollback();
  EXPECT_EQ(table["CHAVE"].AsString(), "000000");
  table.Remove();
  attachment_->CommitRetaining();
  table.Refresh();
  EXPECT_EQ(table["CHAVE"].AsString(), "000001");
  EXPECT_EQ(Keys(table), "000001 000002 ");

  // Unchanged it is looked at all the same; the zero date, read as none, is no change.
  table.First();
  attachment_->Execute("UPDATE CHEQUE_001 SET VENCIMENTO = '12/30/1899' WHERE CHAVE = '000001'");
  table.Edit();
  EXPECT_THROW(table.Store(), UserError);
  table.Cancel();
  EXPECT_TRUE(table["VENCIMENTO"].IsNull());
  table.Edit();
  table.Store();
  table.Cancel();
  table.Remove();
  EXPECT_THROW(table.Store(), UserError);
  table.Refresh();
  EXPECT_EQ(Keys(table), "000002 ");
}

}  // namespace
}  // namespace orv
