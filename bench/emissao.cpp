// The issue of cheques in a house of a million movements and 200,000 titles: the open payables, a tick among
// 20,000 of them, a cheque that pays fifty, a run of a hundred cheques, a batch of five hundred received
// ones, beside their bare statements.
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>

#include "bench/house.h"
#include "bench/measure.h"
#include "bench/recording.h"
#include "frame/module.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int kOpen = 20000;
constexpr int kTitles = 200000;
constexpr int kOfOneCheque = 50, kOfARun = 100;

constexpr int kOfABatch = 500;

class Clerk {
 public:
  Clerk(const std::filesystem::path& house, const char* screen)
      : log_("/dev/null"), client_(Ana(house), log_) {
    Do({{"do", "open"}, {"class", screen}});
  }
  void Fill(std::initializer_list<std::pair<const char*, const char*>> fields) {
    for (const auto& [field, value] : fields) Do({{"do", "set"}, {"control", field}, {"value", value}});
  }
  std::vector<Json> Do(Json in) {
    auto out = client_.Do(std::move(in));
    for (const Json& one : out) {
      if (one["on"] == Json("error")) throw UserError(one["text"].String());
    }
    return out;
  }
  void Click(const char* control) { Do({{"do", "click"}, {"control", control}}); }
  void Answer(const char* value) { Do({{"do", "answer"}, {"value", value}}); }
  void Tick(int row, const char* value = "S") {
    Do({{"do", "cell"}, {"control", "wwDBGrid1"}, {"row", row}, {"column", "Baixar"}, {"value", value}});
  }

 private:
  Log log_;
  DoorClient client_;
};

// A copy of the house with so many payables, of which so many are open.
void Fill(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const int64_t titles = db->Scalar("SELECT COUNT(*) FROM PAGTO_001").AsInteger();
  db->Execute("UPDATE PAGTO_001 SET BLOQUEIO = 'S' WHERE VAL_PAG < VALOR");
  const auto more = [&](const std::string& prefix, int64_t count, const char* paid) {
    for (int64_t at = 0; at < count; ++at) {
      db->Execute(
          "INSERT INTO PAGTO_001 (NUM_AP, CODCRE, DOCTO, DUPLI, DT_EMI, DT_VEN, NUM_OS, VALOR, "
          "VAL_PAG, STATUS, BLOQUEIO, SITUACAO, HISTORICO) VALUES ('" +
          prefix + std::to_string(100000 + at) +
          "', '00060', 'D', 'D/1', '11/01/2026', '12/01/2026', "
          "'2101', 100, " +
          paid + ", 'N', 'N', '0', '003')");
    }
  };
  more("X", kOpen, "0");
  more("Y", std::max<int64_t>(0, kTitles - titles - kOpen), "100");
  db->CommitRetaining();
}

int Run() {
  const Module module("orvCC");
  const auto made = House(260);
  const Copy copy(made, "emissao.fdb");
  Fill(copy.Path());
  const Copy other(copy.Path(), "emissao-bare.fdb");

  const std::string open =
      "SELECT PAGTO.NUM_AP, '_001' AS EMPRESA, PAGTO.CODCRE, FORNECED.NOME, PAGTO.DT_VEN, PAGTO.DT_EMI, "
      "PAGTO.VAL_PAG, PAGTO.DOCTO, PAGTO.DUPLI, PAGTO.NUM_OS, PAGTO.HISTORICO, (PAGTO.VALOR + PAGTO.JUROS - "
      "PAGTO.VAL_PAG - PAGTO.VAL_DEV - PAGTO.DESCONTO) AS VALOR FROM PAGTO_001 PAGTO LEFT JOIN ENTIDADE_001 "
      "FORNECED ON (FORNECED.CODCLI = PAGTO.CODCRE) WHERE PAGTO.STATUS = 'N' AND PAGTO.BLOQUEIO = 'N' AND "
      "PAGTO.DT_EMI BETWEEN '01/01/1980' AND '12/31/2050' AND PAGTO.DT_VEN BETWEEN '01/01/1980' AND "
      "'12/31/2050' AND (PAGTO.VALOR + PAGTO.JUROS - PAGTO.VAL_PAG - PAGTO.VAL_DEV - PAGTO.DESCONTO) > 0";
  const auto db = Attachment::Open(other.Path().string());
  Clerk issue(copy.Path(), "TfmEmissao");
  issue.Fill({{"EdtConta", "10250-1"},
              {"EdtDocto", "900001"},
              {"EdtHist", "004"},
              {"EdtCodClasse", "2101"},
              {"EdtDesNom", "TODOS"}});
  Best bare, query, tick;
  for (int run = 0; run < kRuns; ++run) {
    Nothing nothing;
    bare.Take(Measure([&] { db->Fetch(open, nothing); }));
    query.Take(Measure([&] { issue.Click("BitBtn5"); }));
    if (nothing.rows < kOpen) throw UserError("Payables are missing.");
  }
  for (int run = 0; run < kRuns; ++run) {
    tick.Take(Measure([&] { issue.Tick(kOpen / 2); }));
    issue.Tick(kOpen / 2, "N");
  }
  Print("bare fetch of 20,000 open payables of 200,000", bare.Cpu(), "s");
  Print("the query of them (1.5 x bare)", query.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s");
  Print("a tick among them", tick.Cpu() * 1e3, Bound::AtMost, 10, "ms");

  // What the screen takes, and its statements alone, noted as it sends them.
  Best cheque, cheque_bare, all, all_bare;
  std::size_t sent = 0;
  const auto beside = [&](Best& whole, Best& alone, const std::function<void()>& work) {
    StartRecording();
    whole.Take(Measure(work));
    const std::vector<Sent> statements = StopRecording();
    sent = statements.size();
    alone.Take(Measure([&] { SendBare(*db, statements); }));
  };
  const auto print = [&](const std::string& what, const Best& whole, const Best& alone) {
    Print("the bare statements of " + what, alone.Cpu(), "s",
          Number(static_cast<double>(sent)) + " statements");
    Print(what + " (2 x bare)", whole.Cpu(), Bound::AtMost, 2 * alone.Cpu(), "s");
  };
  for (int run = 0; run < kRuns; ++run) {
    for (int row = 0; row < kOfOneCheque; ++row) issue.Tick(row);
    issue.Click("BitBtn8");
    issue.Answer("yes");
    beside(cheque, cheque_bare, [&] { issue.Answer("yes"); });
    // The payables are asked for again, without those that are paid.
    issue.Answer("ok");
    issue.Do({{"do", "set"}, {"control", "EdtDesNom"}, {"value", "TODOS"}});
  }
  print("a cheque that pays 50 titles", cheque, cheque_bare);
  for (int run = 0; run < kRuns; ++run) {
    for (int row = 0; row < kOfARun; ++row) issue.Tick(run * kOfARun + row);
    issue.Click("BitBtn4");
    beside(all, all_bare, [&] { issue.Answer("yes"); });
  }
  print("a run of 100 cheques", all, all_bare);

  Clerk batch(copy.Path(), "TfmChequePre");
  Best received, received_bare;
  for (int run = 0; run < kRuns; ++run) {
    batch.Click("BitBtn5");
    batch.Fill({{"EdtConta", "10250-1"}, {"EdtTipo", "1101"}, {"EdtHis", "005"}});
    for (int row = 0; row < kOfABatch; ++row) {
      batch.Do({{"do", "append"}, {"control", "DBGrid1"}});
      const std::string number = std::to_string(100000 + run * kOfABatch + row);
      for (const auto& [column, value] : {std::pair<const char*, std::string>{"Numero", number},
                                          {"Banco", "341"},
                                          {"Conta", "77-1"},
                                          {"Emissao", "20/11/2026"},
                                          {"Vencto", "05/12/2026"},
                                          {"Valor", "150,5"}})
        batch.Do(
            {{"do", "cell"}, {"control", "DBGrid1"}, {"row", row}, {"column", column}, {"value", value}});
    }
    beside(received, received_bare, [&] { batch.Click("BitBtn1"); });
  }
  print("a batch of 500 received cheques", received, received_bare);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
