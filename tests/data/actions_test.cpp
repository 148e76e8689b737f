#include <atomic>
#include <thread>

#include "host/data/versions.h"
#include "tests/data/fixture.h"

namespace orv {
namespace {

using namespace std::chrono_literals;

class ActionTest : public DataTest {
 protected:
  ActionTest() {
    database->ExecuteDdl("CREATE TABLE T (ID INTEGER NOT NULL PRIMARY KEY, N INTEGER DEFAULT 0)");
  }
  void Insert(int id) { database->Execute("INSERT INTO T (ID) VALUES (" + std::to_string(id) + ")"); }
  std::string Ids() { return Text("SELECT LIST(ID, ' ') FROM (SELECT ID FROM T ORDER BY ID)"); }
};

TEST_F(ActionTest, AnActionIsUndoneToItsBeginning) {
  database->BeginAction();
  Insert(1);
  EXPECT_TRUE(database->HasPendingWrites());
  database->RollbackAction();
  EXPECT_FALSE(database->HasPendingWrites());
  EXPECT_EQ(Ids(), "");

  // What was pending before stays pending.
  Insert(2);
  database->BeginAction();
  Insert(3);
  database->RollbackAction();
  EXPECT_TRUE(database->HasPendingWrites());
  EXPECT_EQ(Ids(), "2");

  // A commit inside takes along what was pending; only what came after it goes.
  database->BeginAction();
  Insert(4);
  database->CommitRetaining();
  Insert(5);
  database->RollbackAction();
  EXPECT_EQ(Ids(), "2 4");
  EXPECT_EQ(Attachment::Open(file)->Scalar("SELECT COUNT(*) FROM T").AsInteger(), 2);
}

TEST_F(ActionTest, ActionsNest) {
  database->BeginAction();
  Insert(1);
  database->BeginAction();
  Insert(2);
  database->EndAction();
  database->BeginAction();
  Insert(3);
  database->BeginAction();
  Insert(4);
  database->RollbackAction();
  EXPECT_EQ(Ids(), "1 2 3");
  database->RollbackAction();
  EXPECT_EQ(Ids(), "1 2");
  database->RollbackAction();
  EXPECT_EQ(Ids(), "");

  // A commit in the inner action ends what the outer one could undo.
  database->BeginAction();
  Insert(5);
  database->BeginAction();
  Insert(6);
  database->CommitRetaining();
  Insert(7);
  database->EndAction();
  Insert(8);
  database->RollbackAction();
  EXPECT_EQ(Ids(), "5 6");
  EXPECT_FALSE(database->HasPendingWrites());
}

TEST_F(ActionTest, AFailedStatementLeavesTheOthers) {
  Insert(1);
  EXPECT_EQ(ErrorOf([&] { Insert(1); }).Why(), Kind::Constraint);
  EXPECT_EQ(database->Execute("UPDATE T SET N = 1 WHERE ID = 99"), 0);
  EXPECT_EQ(database->Execute("UPDATE T SET N = 1"), 1);
  database->CommitRetaining();
  EXPECT_EQ(database->Execute("DELETE FROM T WHERE ID = 99"), 0);
  EXPECT_FALSE(database->HasPendingWrites());
}

TEST_F(ActionTest, AConflictIsToldAfterItsTime) {
  Insert(1);
  database->CommitRetaining();
  database->Execute("UPDATE T SET N = 1 WHERE ID = 1");
  std::thread([&] {
    const auto other = Attachment::Open(file);
    other->SetConflictTime(120ms);
    const auto from = std::chrono::steady_clock::now();
    const DatabaseError error = ErrorOf([&] { other->Execute("UPDATE T SET N = 2 WHERE ID = 1"); });
    EXPECT_EQ(error.Why(), Kind::Conflict);
    EXPECT_NE(std::string(error.what()).find("Outro usuário"), std::string::npos);
    EXPECT_NE(error.Detail().find("UPDATE T"), std::string::npos);
    EXPECT_GE(std::chrono::steady_clock::now() - from, 120ms);
  }).join();

  // Released in time, the other one goes through, and sees what was committed.
  std::atomic<bool> tried = false;
  std::thread second([&] {
    const auto other = Attachment::Open(file);
    other->SetConflictTime(60s);
    other->Scalar("SELECT N FROM T");
    tried = true;
    tried.notify_one();
    EXPECT_EQ(other->Execute("UPDATE T SET N = N + 10 WHERE ID = 1"), 1);
    other->CommitRetaining();
  });
  tried.wait(false);
  database->CommitRetaining();
  second.join();
  EXPECT_EQ(Text("SELECT N FROM T"), "11");
}

constexpr const char* kEndless =
    "SELECT COUNT(*) FROM RDB$FIELDS A, RDB$FIELDS B, RDB$FIELDS C, RDB$FIELDS D, RDB$FIELDS E";

TEST_F(ActionTest, ALongStatementIsCancelled) {
  Insert(1);
  database->CommitRetaining();
  database->Execute("UPDATE T SET N = 5");
  for (const bool waiting : {false, true}) {
    const auto other = Attachment::Open(file);
    other->SetConflictTime(60s);
    std::atomic<bool> ended = false;
    std::thread work([&] {
      const DatabaseError error = ErrorOf(
          [&] { waiting ? void(other->Execute("UPDATE T SET N = 6")) : void(other->Scalar(kEndless)); });
      EXPECT_EQ(error.Why(), Kind::Cancelled) << error.Detail();
      ended = true;
    });
    while (!ended) {
      other->Cancel();
      std::this_thread::yield();
    }
    work.join();
    // The next one isn't touched, nor by a request that comes when nothing runs.
    other->Cancel();
    EXPECT_EQ(other->Scalar("SELECT 1 FROM RDB$DATABASE").AsInteger(), 1);
  }
}

TEST_F(ActionTest, CancelNeverReachesTheNextStatement) {
  std::atomic<bool> stop = false;
  std::thread pest([&] {
    while (!stop) database->Cancel();
  });
  int cancelled = 0;
  for (int i = 0; i < 2000; ++i) try {
      database->Scalar("SELECT COUNT(*) FROM RDB$FIELDS");
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.Why(), Kind::Cancelled) << error.Detail();
      ++cancelled;
    }
  stop = true;
  pest.join();
  EXPECT_EQ(Text("SELECT 1 FROM RDB$DATABASE"), "1");
  Insert(1);
  database->CommitRetaining();
  EXPECT_EQ(Ids(), "1");
}

// Sessions that only look, and one that works all day.
TEST_F(ActionTest, NoVersionsPileUp) {
  Insert(1);
  database->CommitRetaining();
  const auto reader = Attachment::Open(file);
  reader->BeginAction();
  reader->Scalar("SELECT COUNT(*) FROM T");
  reader->EndAction();
  for (int i = 0; i < 2000; ++i) {
    database->BeginAction();
    database->Execute("UPDATE T SET N = N + 1");
    database->CommitRetaining();
    database->EndAction();
  }
  EXPECT_LT(DeadVersions(file, "T"), 20);
  EXPECT_EQ(Text("SELECT N FROM T"), "2000");
}

// Each start of a transaction is written to the disk: actions that only look need no new one, and see what
// others commit meanwhile.
TEST_F(ActionTest, LookingStartsNoTransactions) {
  std::string first;
  for (int i = 0; i < 5; ++i) {
    const auto other = Attachment::Open(file);
    other->Execute("INSERT INTO T (ID) VALUES (" + std::to_string(i) + ")");
    other->CommitRetaining();
    database->BeginAction();
    const std::string number = Text("SELECT CURRENT_TRANSACTION FROM RDB$DATABASE");
    if (i == 0) first = number;
    EXPECT_EQ(number, first);
    EXPECT_EQ(Text("SELECT COUNT(*) FROM T"), std::to_string(i + 1));
    database->EndAction();
  }
  // Rows can come from what writes: that is no looking.
  EXPECT_EQ(Text("EXECUTE BLOCK RETURNS (N INTEGER) AS BEGIN DELETE FROM T; N = ROW_COUNT; SUSPEND; END"),
            "5");
  EXPECT_TRUE(database->HasPendingWrites());
  EXPECT_EQ(Text("SELECT COUNT(*) FROM T"), "0");
  database->CommitRetaining();
  EXPECT_EQ(Attachment::Open(file)->Scalar("SELECT COUNT(*) FROM T").AsInteger(), 0);
}

}  // namespace
}  // namespace orv
