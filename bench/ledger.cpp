// The ledger of a million movements: an inquiry of a hundred thousand beside the bare statement, the balances
// of fifty accounts and an opening balance, and what the sums that are kept for them cost a posting.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "bench/house.h"
#include "bench/measure.h"
#include "frame/module.h"
#include "host/schema/balances.h"
#include "host/schema/tables.h"
#include "rules/saldo.h"
#include "toolkit/database.h"
#include "toolkit/text.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int64_t kWanted = 100000;
constexpr int kAccounts = 50;
constexpr int kPostings = 200;

std::string Ms(const Seconds& seconds) { return Number(seconds.wall * 1e3) + " ms by the clock"; }

// The ledger's screen of a session.
class Ledger {
 public:
  explicit Ledger(const std::filesystem::path& house) : log_("/dev/null"), client_(Ana(house), log_) {
    Do({{"do", "open"}, {"class", "TfmCC"}});
  }
  std::vector<Json> Do(Json in) {
    auto out = client_.Do(std::move(in));
    list_ = out.back()["for"] == Json("lookup");
    for (const Json& one : out) {
      // The report itself is another's matter.
      if (one["on"] == Json("error") && one["text"].String().find("WCCSaldoConta") == std::string::npos)
        throw UserError(one["text"].String());
    }
    return out;
  }
  void Set(const char* control, const std::string& value) {
    Do({{"do", "set"}, {"control", control}, {"value", value}});
  }
  // Those that empty fields have opened.
  void CloseLists() {
    while (list_) Do({{"do", "choose"}});
  }
  void Page(const char* page) { Do({{"do", "page"}, {"control", "PageControl1"}, {"page", page}}); }
  std::vector<Json> Window(const char* set, int64_t from, int64_t count) {
    return Do({{"do", "read"}, {"control", set}, {"from", from}, {"count", count}});
  }
  int64_t Count(const char* set) {
    for (const Json& out : Window(set, 0, 1)) {
      if (out["on"] == Json("state")) return out["screens"].Items().back()["sets"][set]["count"].Integer();
    }
    return -1;
  }

 private:
  Log log_;
  DoorClient client_;
  bool list_ = false;
};

void Inquiry(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  // The day from which so many movements were posted.
  const Date from = db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(kWanted) +
                               " DT_LAN FROM CONTACOR_001 ORDER BY DT_LAN DESC")
                        .AsDate();
  const std::string those = " FROM CONTACOR_001 WHERE DT_LAN BETWEEN '" + from.Sql() + "' AND '12/31/2050'";
  const std::string rows =
      "SELECT LANCAMENTO, DOCTO, BANCO, CONTA, DT_CONT, DT_LAN, DT_VENCTO, VALOR, "
      "OPERACAO, PENDENTE, OBSERVACAO, HISTORICO, GRUPO, LANC_CON, TIPO_DOC, TIPO" +
      those;

  Ledger ledger(house);
  ledger.Page("TabSheet1");
  ledger.Set("RgBusca", "Todos");
  ledger.Set("dtInicio", from.Brazil());
  ledger.Set("dtFim", "31/12/2050");
  Best bare, inquiry, shown, window;
  for (int i = 0; i < kRuns; ++i) {
    Nothing nothing;
    bare.Take(Measure([&] { db->Fetch(rows, nothing); }));
    inquiry.Take(Measure([&] { ledger.Do({{"do", "click"}, {"control", "BitBtn5"}}); }));
    if (ledger.Count("TbConsulta") != nothing.rows) throw UserError("The rows don't agree.");
    shown.Take(Measure([&] { ledger.Window("TbConsulta", 0, 40); }));
    for (int64_t at = 1; at < nothing.rows; at = at * 7 + 13)
      window.Take(Measure([&] { ledger.Window("TbConsulta", at, 100); }));
    if (i + 1 == kRuns) {
      const std::string of = Number(static_cast<double>(nothing.rows)) + " rows";
      Print("bare fetch of a tenth of a million movements", bare.Cpu(), "s", of);
      Print("the inquiry of them (2 x bare)", inquiry.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s",
            Ms({inquiry.Cpu(), inquiry.Wall()}));
      Print("from the click to the first rows (2 x bare)", inquiry.Cpu() + shown.Cpu(), Bound::AtMost,
            2 * bare.Cpu(), "s");
      Print("a window of 100 rows at any place", window.Cpu() * 1e3, Bound::AtMost, 10, "ms");
    }
  }
}

// The house with its movements spread over so many accounts, made once.
std::filesystem::path Spread(const std::filesystem::path& house) {
  std::filesystem::path path = house;
  path.replace_filename(house.stem().string() + "-accounts.fdb");
  if (std::filesystem::exists(path)) return path;
  std::filesystem::path begun = path;
  begun.replace_filename("begun-" + path.filename().string());
  std::filesystem::copy_file(house, begun, std::filesystem::copy_options::overwrite_existing);
  {
    const auto db = Attachment::Open(begun.string());
    for (int i = 0; i < kAccounts; ++i) {
      db->Execute("INSERT INTO CADCONTA_001 (CONTA, BANCO, EMPRESA, DESCRICAO, IMP_FLUXO) VALUES ('M" +
                  std::to_string(i) + "', '901', 'MALHARIA', 'CONTA " + std::to_string(i) + "', 'S')");
    }
    db->CommitRetaining();
    const std::string trigger = "ALTER TRIGGER " + SumTriggerName(AllKeptSums().front(), "_001");
    db->ExecuteDdl(trigger + " INACTIVE");
    db->ExecuteDdl(
        "DROP INDEX " +
        db->Scalar("SELECT FIRST 1 I.RDB$INDEX_NAME FROM RDB$INDICES I JOIN RDB$INDEX_SEGMENTS S ON "
                   "S.RDB$INDEX_NAME = I.RDB$INDEX_NAME WHERE I.RDB$RELATION_NAME = 'CONTACOR_001' "
                   "AND S.RDB$FIELD_NAME = 'CONTA'")
            .AsString());
    db->Execute(
        "UPDATE CONTACOR_001 SET CONTA = 'M' || MOD(CHAR_LENGTH(OBSERVACAO) + EXTRACT(YEARDAY FROM "
        "DT_VENCTO) + CAST(VALOR AS INTEGER), " +
        std::to_string(kAccounts) + ")");
    db->CommitRetaining();
    db->ExecuteDdl("CREATE INDEX IX_SPREAD ON CONTACOR_001 (CONTA, DT_CONT)");
    db->Scalar("SELECT COUNT(*) FROM CONTACOR_001");
    db->CommitRetaining();
    db->ExecuteDdl(trigger + " ACTIVE");
    MendSums(*db);
    FoldSums(*db);
    db->Scalar("SELECT COUNT(*) FROM SALDO_CONTA_001");
    db->CommitRetaining();
    db->ExecuteDdl("SET STATISTICS INDEX " + IndexName(*FindTable("SALDO_CONTA"), "_001", 0));
  }
  std::filesystem::rename(begun, path);
  return path;
}

void Balances(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const Date today = Date::ParseNeutral(kToday);
  const std::string day = "'" + today.Sql() + "'";
  const std::string filters[] = {"PENDENTE IN ('N','C') AND DT_CONT <= " + day,
                                 "PENDENTE = 'S' AND DT_CONT <= " + day, "DT_CONT > " + day};
  const auto one_by_one = [&] {
    Nothing nothing;
    for (int account = 0; account < kAccounts; ++account) {
      for (const std::string& filter : filters) {
        for (const char* side : {"+", "-"}) {
          std::string sql;
          for (const char* company : {"_001", "_002"}) {
            sql += std::string(sql.empty() ? "" : " UNION ALL ") +
                   "SELECT SUM(VALOR) AS VALOR FROM CONTACOR" + company + " WHERE CONTA = 'M" +
                   std::to_string(account) + "' AND OPERACAO = '" + side + "' AND " + filter;
          }
          db->Fetch(sql, nothing);
        }
      }
    }
  };
  const auto grouped = [&](const char* by) {
    std::string sql;
    for (const char* company : {"_001", "_002"}) {
      sql += std::string(sql.empty() ? "" : " UNION ALL ") + "SELECT CONTA";
      for (const std::string& filter : filters)
        sql += ", SUM(CASE WHEN " + filter + " THEN CASE OPERACAO WHEN '+' THEN VALOR ELSE -VALOR END END)";
      sql += std::string(" FROM CONTACOR") + company + " GROUP BY CONTA" + by;
    }
    Nothing nothing;
    db->Fetch(sql, nothing);
  };

  Ledger ledger(house);
  Best each, bare, report, opening;
  for (int i = 0; i < kRuns; ++i) {
    if (i < 2) each.Take(Measure(one_by_one));
    bare.Take(Measure([&] { grouped(""); }));
    for (int k = 0; k < kRuns; ++k)
      report.Take(Measure([&] { ledger.Do({{"do", "click"}, {"control", "BitBtn8"}}); }));
    // By each date, before each day of a month that is long past and of this one.
    double worst = 0;
    for (const char* coluna : {"DT_LAN", "DT_CONT", "DT_VENCTO"}) {
      for (const Date month : {today.AddDays(-300), today}) {
        for (int day = 0; day < 28; ++day) {
          const std::string sql = ReplaceAll(
              ReplaceAll("SELECT " + Soma(ComSinal(kContaCorrente)) + " FROM " +
                             SaldosAte(kContaCorrente, coluna, month.FirstOfMonth().AddDays(day - 1), today) +
                             " WHERE CONTA = 'M7'",
                         "{", ""),
              "}", "_001");
          Best one;
          for (int k = 0; k < kRuns; ++k) one.Take(Measure([&] { TotalDeSaldo(*db, sql); }));
          worst = std::max(worst, one.Cpu());
          if (day == 0) opening.Take({one.Cpu(), one.Wall()});
        }
      }
    }
    if (i + 1 < kRuns) continue;
    Print("six bare sums for each of 50 accounts", each.Cpu(), "s", Number(each.Wall()) + " s by the clock");
    Print("the same sums in one bare statement", bare.Cpu(), "s", Number(bare.Wall()) + " s by the clock");
    Print("the balances of the accounts", report.Cpu() * 1e3, Bound::AtMost, 20, "ms",
          Ms({report.Cpu(), report.Wall()}));
    Print("an opening balance, of a month", opening.Cpu() * 1e3, Bound::AtMost, 2, "ms",
          Ms({opening.Cpu(), opening.Wall()}));
    Print("the same before any day, at worst", worst * 1e3, "ms");
  }
  if (ledger.Count("TbContas") < kAccounts) throw UserError("Accounts are missing.");
}

// Movements posted at the desk, with the sums that are kept for them and without.
void Postings(const std::filesystem::path& house) {
  const Copy copy(house, "ledger-postings.fdb");
  Best without, with;
  for (int i = 0; i < 2 * kRuns; ++i) {
    for (const char* state : {"INACTIVE", "ACTIVE"}) {
      Attachment::Open(copy.Path().string())
          ->ExecuteDdl("ALTER TRIGGER " + SumTriggerName(AllKeptSums().front(), "_001") + " " + state);
      Ledger ledger(copy.Path());
      const auto post = [&] {
        ledger.Do({{"do", "click"}, {"control", "BitBtn1"}});
        for (const auto& [field, value] : {std::pair("EdtConta", "M7"),
                                           {"EdtNumDoc", "P"},
                                           {"EdtTipo", "3104"},
                                           {"EdtHis", "019"},
                                           {"EdtValor", "1,00"}}) {
          ledger.Set(field, value);
          ledger.CloseLists();
        }
        ledger.Do({{"do", "click"}, {"control", "SpeedButton2"}});
        ledger.CloseLists();
      };
      post();
      (*state == 'A' ? with : without).Take(Measure([&] {
        for (int k = 0; k < kPostings; ++k) post();
      }));
    }
  }
  Print("a posting without kept sums", without.Cpu() * 1e3 / kPostings, "ms");
  Print("a posting with them (1.05 x)", with.Cpu() * 1e3 / kPostings, Bound::AtMost,
        1.05 * without.Cpu() * 1e3 / kPostings, "ms");
}

int Run() {
  const Module module("orvCC");
  const auto house = House(260);
  Inquiry(house);
  const auto spread = Spread(house);
  Balances(spread);
  Postings(spread);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
