// The ledger of a million movements: an inquiry of a hundred thousand and the balances of fifty accounts,
// beside the bare statements.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "bench/house.h"
#include "bench/measure.h"
#include "frame/module.h"
#include "toolkit/database.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int64_t kWanted = 100000;
constexpr int kAccounts = 50;

std::string Ms(const Seconds& seconds) { return Number(seconds.wall * 1e3) + " ms by the clock"; }

// The ledger's screen of a session.
class Ledger {
 public:
  explicit Ledger(const std::filesystem::path& house) : log_("/dev/null"), client_(Ana(house), log_) {
    Do({{"do", "open"}, {"class", "TfmCC"}});
  }
  std::vector<Json> Do(Json in) {
    auto out = client_.Do(std::move(in));
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
  }
  std::filesystem::rename(begun, path);
  return path;
}

void Balances(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const std::string today = "'" + Date::ParseNeutral(kToday).Sql() + "'";
  const std::string filters[] = {"PENDENTE IN ('N','C') AND DT_CONT <= " + today,
                                 "PENDENTE = 'S' AND DT_CONT <= " + today, "DT_CONT > " + today};
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
  Best each, bare, report;
  for (int i = 0; i < kRuns; ++i) {
    if (i < 2) each.Take(Measure(one_by_one));
    bare.Take(Measure([&] { grouped(""); }));
    report.Take(Measure([&] { ledger.Do({{"do", "click"}, {"control", "BitBtn8"}}); }));
  }
  if (ledger.Count("TbContas") < kAccounts) throw UserError("Accounts are missing.");
  Print("six bare sums for each of 50 accounts", each.Cpu(), "s", Number(each.Wall()) + " s by the clock");
  Print("the same sums in one bare statement", bare.Cpu(), "s", Number(bare.Wall()) + " s by the clock");
  Print("the balances of the accounts (1.3 x the lesser)", report.Cpu(), Bound::AtMost,
        1.3 * std::min(each.Cpu(), bare.Cpu()), "s", Number(report.Wall()) + " s by the clock");
}

int Run() {
  const Module module("orvCC");
  const auto house = House(260);
  Inquiry(house);
  Balances(Spread(house));
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
