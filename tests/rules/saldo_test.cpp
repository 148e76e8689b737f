// Balances from the sums that the database keeps: whatever was written, they are what plain sums give.
#include "rules/saldo.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

#include "host/data/backup.h"
#include "host/schema/balances.h"
#include "host/schema/check.h"
#include "host/schema/schema.h"
#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

const Date kHoje(2026, 11, 20);

// For the first company.
std::string Aqui(const std::string& sql) {
  std::string text;
  for (const char c : sql) text += c == '{' ? "" : c == '}' ? "_001" : std::string(1, c);
  return text;
}

// What is missing in the kept sums, of both companies.
std::string Missing(Attachment& db) {
  std::string missing;
  for (const char* company : {"_001", "_002"})
    for (const KeptSums& kept : AllKeptSums()) missing += RowsText(db, SumsMissingSql(kept, company));
  return missing;
}

std::unique_ptr<Attachment> House(const std::string& file) {
  auto db = Attachment::Create(file);
  CreateSchema(*db, {{"_001", "Primeira", ""}, {"_002", "Segunda", ""}});
  return db;
}

// A clerk, or another program: inserts, changes and deletes rows of his own, some of it taken back.
class Clerk {
 public:
  Clerk(Attachment& db, unsigned seed) : db_(db), random_(seed), number_(std::to_string(seed)) {}
  // ORV_SALDOS makes the work longer, so many times.
  void Work(int steps) {
    const char* given = std::getenv("ORV_SALDOS");
    if (given != nullptr) steps *= std::max(1, std::atoi(given));
    for (int i = 0; i < steps; ++i) {
      for (int k = Any(4); k >= 0; --k) Step();
      if (Any(5) == 0) db_.Rollback();
      db_.CommitRetaining();
    }
  }

 private:
  int Any(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
  std::string Pick(const std::vector<const char*>& of) { return of[random_() % of.size()]; }
  std::string Near() { return "'" + kHoje.AddDays(Any(120) - 90).Sql() + "'"; }
  std::string Day() {
    return Any(12) == 0 ? Pick({"NULL", "'12/30/1899'", "'01/31/2025'", "'02/01/2025'"}) : Near();
  }
  void Step() {
    const std::string own = "'C" + number_ + "'", account = Pick({"'A'", "'B'", "'D''E'", "NULL"}),
                      value = Pick(
                          {"0", "10.15", "-3.3333", "0.5", "NULL", "999999999999.99", "700000000000000"});
    if (Any(6) == 0) {
      db_.Execute("INSERT INTO EXTRATO_001 (LANCTO, CONTA, DT_CONT, VALOR, OPERACAO, CONCILIADO) VALUES ('" +
                  number_ + "-" + std::to_string(++lines_) + "', " + account + ", " + Day() + ", " + value +
                  ", " + Pick({"'C'", "'D'"}) + ", " + Pick({"'S'", "'N'"}) + ")");
      return;
    }
    const std::string table = Any(4) == 0 ? "CONTACOR_002" : "CONTACOR_001",
                      some = " WHERE OBSERVACAO = " + own + " AND DT_VENCTO > " + Near() + " ROWS 3";
    const std::string changes[] = {
        "PENDENTE = " + Pick({"'S'", "'N'", "'C'", "NULL"}), "DT_CONT = " + Day() + ", DT_LAN = " + Day(),
        "CONTA = " + account + ", VALOR = " + value + ", OPERACAO = " + Pick({"'+'", "'-'", "'?'", "NULL"})};
    const int what = Any(8);
    if (what == 0) {
      db_.Execute("DELETE FROM " + table + some);
    } else if (what < 4) {
      db_.Execute("UPDATE " + table + " SET " + changes[what - 1] + some);
    } else {
      db_.Execute(
          "INSERT INTO " + table +
          " (CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, OPERACAO, PENDENTE, OBSERVACAO) VALUES (" +
          Join({account, Day(), Day(), Day(), value, Pick({"'+'", "'-'"}), Pick({"'S'", "'N'", "'C'"}), own},
               ", ") +
          ")");
    }
  }

  Attachment& db_;
  std::mt19937 random_;
  const std::string number_;
  int lines_ = 0;
};

// Up to any day and after it, by each date, from the months and from the movements themselves.
void ExpectBalances(Attachment& db) {
  const std::string colunas = " CONTA, PENDENTE, OPERACAO, " + Soma("VALOR") + ", SUM(QUANTIDADE) FROM ",
                    por = " GROUP BY 1, 2, 3 HAVING SUM(QUANTIDADE) <> 0 ORDER BY 1, 2, 3";
  const auto texto = [&](const std::string& de) {
    std::string linhas;
    for (const auto& linha : LinhasDeSaldo(db, Aqui("SELECT" + colunas + de + por)))
      linhas += linha[0].AsString() + linha[1].AsString() + linha[2].AsString() + SomaDe(linha[3]).Neutral() +
                "|" + linha[4].AsString() + "\n";
    return linhas;
  };
  for (const char* coluna : {"DT_LAN", "CONTACOR.DT_CONT", "DT_VENCTO"}) {
    const std::string data = std::string(coluna).substr(std::string(coluna).find('.') + 1);
    for (int dia = -45; dia <= 45; dia += 7) {
      const Date ate = kHoje.AddDays(dia);
      for (const Date hoje : {kHoje, kHoje.AddDays(-90)}) {
        SCOPED_TRACE(data + " " + ate.Brazil());
        EXPECT_EQ(texto(SaldosAte(kContaCorrente, coluna, ate, hoje)),
                  texto(MovimentosAte(kContaCorrente, coluna, ate)));
        EXPECT_EQ(texto(SaldosApos(kContaCorrente, coluna, ate, hoje)),
                  texto("(SELECT M.*, 1 AS QUANTIDADE FROM CONTACOR_001 M WHERE M." + data + " > '" +
                        ate.Sql() + "') C"));
      }
    }
  }
}

TEST(Saldo, IsThatOfTheMovementsWhateverWasWritten) {
  TempFolder folder;
  const std::string file = folder.Path() / "a.fdb";
  auto db = House(file);
  std::atomic<bool> done = false;
  std::thread folder_of_sums([&] {
    const auto other = Attachment::Open(file);
    int folds = 0;
    while (!done) folds += FoldSums(*other);
    EXPECT_GT(folds, 0);
  });
  std::vector<std::thread> clerks;
  for (unsigned i = 1; i <= 3; ++i) {
    clerks.emplace_back([&, i] {
      const auto own = Attachment::Open(file);
      Clerk(*own, i).Work(40);
    });
  }
  for (std::thread& clerk : clerks) clerk.join();
  done = true;
  folder_of_sums.join();
  EXPECT_EQ(Missing(*db), "");
  ExpectBalances(*db);
  db->CommitRetaining();

  // Folded, each sum is one row, but for what no row could hold; folding again does nothing.
  EXPECT_TRUE(FoldSums(*db));
  const auto folded = [&] {
    return RowsText(*db,
                    "SELECT CONTA, MES FROM SALDO_CONTA_001 GROUP BY CONTA, DATA, MES, PENDENTE, OPERACAO "
                    "HAVING COUNT(*) > 1 AND ABS(SUM(CAST(VALOR AS BIGINT))) < 100000000000000") +
           RowsText(*db, "SELECT VEZES FROM SALDO_DOBRA");
  };
  const std::string before = folded();
  EXPECT_EQ(before.find('|'), std::string::npos);
  EXPECT_TRUE(FoldSums(*db));
  EXPECT_EQ(folded(), before);
  EXPECT_EQ(Missing(*db), "");
  ExpectBalances(*db);
  db->CommitRetaining();

  // A change of what doesn't count appends nothing.
  const std::string rows = RowsText(*db, "SELECT COUNT(*), SUM(QUANTIDADE) FROM SALDO_CONTA_001");
  db->Execute("UPDATE CONTACOR_001 SET DOCTO = 'X', LANC_CON = '1', DT_CONT = DT_CONT");
  EXPECT_EQ(RowsText(*db, "SELECT COUNT(*), SUM(QUANTIDADE) FROM SALDO_CONTA_001"), rows);
  db->CommitRetaining();

  // A fold that is stopped halfway has done nothing, nor has one that came second.
  Clerk(*db, 4).Work(20);
  db->ExecuteDdl(
      "CREATE TRIGGER T_PARADA FOR SALDO_CONTA_001 BEFORE DELETE AS BEGIN IF (OLD.DATA = 'V' AND 1 / 0 = 1) "
      "THEN EXIT; END");
  const std::string kept = RowsText(*db, "SELECT * FROM SALDO_CONTA_001 ORDER BY 1, 2, 3, 4, 5, 6");
  EXPECT_NE(ErrorOf([&] { FoldSums(*db); }), "");
  EXPECT_EQ(RowsText(*db, "SELECT * FROM SALDO_CONTA_001 ORDER BY 1, 2, 3, 4, 5, 6"), kept);
  db->ExecuteDdl("DROP TRIGGER T_PARADA");
  const auto other = Attachment::Open(file);
  other->Execute("UPDATE SALDO_DOBRA SET VEZES = VEZES");
  db->SetConflictTime(std::chrono::milliseconds(0));
  EXPECT_FALSE(FoldSums(*db));
  other->Rollback();

  // Copied with sums that aren't folded, and brought up from the version before they were kept.
  Backup(file, folder.Path() / "a.fbk");
  Restore(folder.Path() / "a.fbk", (folder.Path() / "b.fdb").string());
  db = Attachment::Open((folder.Path() / "b.fdb").string());
  Clerk(*db, 5).Work(20);
  EXPECT_EQ(Missing(*db), "");
  db->CommitRetaining();
  for (const char* company : {"_001", "_002"}) {
    for (const KeptSums& sums : AllKeptSums()) {
      db->ExecuteDdl("DROP TRIGGER " + SumTriggerName(sums, company));
      // Where an upgrade was stopped, the tables stand already.
      if (company == std::string("_002")) db->ExecuteDdl("DROP TABLE " + (sums.sums + std::string(company)));
    }
  }
  db->Execute("UPDATE VERSAO_ESQUEMA SET VERSAO = 5");
  Clerk(*db, 6).Work(20);
  UpgradeSchema(*db);
  Clerk(*db, 7).Work(20);
  EXPECT_EQ(Missing(*db), "");
  ExpectBalances(*db);

  // Sums that were tampered with are told, and mended.
  db->Execute(Insert(Movimento{.conta = "Z"}));
  db->Execute("DELETE FROM SALDO_CONTA_001 WHERE CONTA = 'Z' AND DATA = 'V'");
  db->CommitRetaining();
  const auto told = [&] {
    return Join(CheckData(*db), "\n")
               .find(
                   "Empresa _001, saldos guardados de CONTACOR: os da conta \"Z\", 11/2026, "
                   "diferem em 100,00 (registros: 1). Execute \"orvcc upgrade\".") != std::string::npos;
  };
  EXPECT_TRUE(told());
  UpgradeSchema(*db);
  EXPECT_FALSE(told());
}

// Another connection, beside which sums are folded when the first row of them has come.
class FoldingMeanwhile : public TOrvDatabase, private RowSink {
 public:
  explicit FoldingMeanwhile(const std::string& file)
      : own_(Attachment::Open(file)), other_(Attachment::Open(file)) {}
  void Fetch(std::string_view sql, RowSink& sink) override {
    sink_ = &sink;
    fold_ = sql.find("SALDO_CONTA") != std::string_view::npos;
    own_->Fetch(sql, *this);
  }
  int64_t Execute(std::string_view sql) override { return own_->Execute(sql); }
  void CommitRetaining() override { own_->CommitRetaining(); }
  std::string LocalName(std::string_view table) const override { return std::string(table); }

 private:
  void Columns(const std::vector<Column>& columns) override { sink_->Columns(columns); }
  bool Row(std::span<Value> values) override {
    if (std::exchange(fold_, false)) FoldSums(*other_);
    return sink_->Row(values);
  }
  std::unique_ptr<Attachment> own_, other_;
  RowSink* sink_ = nullptr;
  bool fold_ = false;
};

TEST(Saldo, IsReadWholeWhileItIsFolded) {
  TempFolder folder;
  const std::string file = folder.Path() / "a.fdb";
  const auto db = House(file);
  for (int i = 0; i < 500; ++i) db->Execute(Insert(Movimento{.conta = "A", .valor = 1}));
  db->CommitRetaining();
  FoldingMeanwhile reader(file);
  Currency total;
  for (const auto& linha : LinhasDeSaldo(
           reader,
           Aqui("SELECT VALOR FROM " + SaldosAte(kContaCorrente, "DT_CONT", Date(2026, 11, 30), kHoje))))
    total += linha[0].AsCurrency();
  EXPECT_EQ(total, Currency(500));
}

}  // namespace
}  // namespace orv::test
