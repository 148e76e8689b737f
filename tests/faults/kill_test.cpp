// A desk that is killed in the midst of a confirmation leaves all of the movement or nothing.
#include <chrono>
#include <thread>

#include "host/schema/check.h"
#include "tests/faults/ledger_actions.h"
#include "tests/support/kills.h"

namespace orv::test {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr int kKills = 48;

class KillTest : public CcTest {
 protected:
  // A desk that has a movement on the screen and needs only the confirming click.
  std::unique_ptr<DriveProcess> AtConfirmation(const std::string& docto, bool stored) {
    LetGo();
    auto desk = std::make_unique<DriveProcess>(database_);
    desk->Do({{"do", "open"}, {"class", "TfmCC"}});
    Fields fields = {{"EdtObs", docto}};
    if (stored) {
      desk->Do({{"do", "click"}, {"control", "btnConsulta"}});
      desk->Do({{"do", "choose"}, {"key", "T00100"}});
      desk->Do({{"do", "click"}, {"control", "BitBtn2"}});
    } else {
      desk->Do({{"do", "click"}, {"control", "BitBtn1"}});
      fields = {{"EdtConta", kConta}, {"EdtNumDoc", docto},   {"EdtTipo", "3103"},
                {"EdtHis", "012"},    {"EdtValor", "100,00"}, {"EdtObs", docto}};
    }
    for (const auto& [control, value] : fields)
      desk->Do({{"do", "set"}, {"control", control}, {"value", value}});
    desk->Do({{"do", "focus"}, {"control", "SpeedButton2"}});
    return desk;
  }

  // Movements and audit lines that bear the text of this confirmation, and all apportionments by class.
  std::string Left(const std::string& docto, bool stored) {
    return Count("CONTACOR_001", stored ? "LANCAMENTO = 'T00100'" : "DOCTO = '" + docto + "'") + "|" +
           Count("CONTACOR_001", "OBSERVACAO = '" + docto + "'") + "|" +
           Count("AUDITORIA", stored ? "CHAVE = 'NF 100'" : "CHAVE = '" + docto + "'") + "|" +
           Count("CENTRO_RATEIO_001", "LANCAMENTO = '' AND TIPO = 'CC'");
  }
};

TEST_F(KillTest, LeavesAllOrNothing) {
  // With the apportionment by class a new movement is three rows more.
  Fin({80});
  Store({"T00100", "NF 100"});
  int shares = std::stoi(Count("CENTRO_RATEIO_001", "LANCAMENTO = '' AND TIPO = 'CC'"));
  int landed = 0, altered = 0;
  const auto whole_new = [&] { return "1|1|1|" + std::to_string(shares + 3); };
  const auto whole_altered = [&] {
    return "1|1|" + std::to_string(altered + 1) + "|" + std::to_string(shares);
  };

  // How long a confirmation takes here: the kills are spread over it and a little beyond.
  microseconds whole[2];
  for (const bool stored : {false, true}) {
    const auto desk = AtConfirmation("WHOLE " + std::to_string(stored), stored);
    const auto begun = steady_clock::now();
    desk->Do({{"do", "click"}, {"control", "SpeedButton2"}});
    whole[stored] = std::chrono::duration_cast<microseconds>(steady_clock::now() - begun);
    desk->Kill();
    const std::string left = Left("WHOLE " + std::to_string(stored), stored);
    ASSERT_TRUE(left.starts_with("1|1|1|")) << left;
    // The first alteration makes shares too; later ones replace them.
    shares += 3;
    altered += stored;
  }
  for (int kill = 0; kill < kKills; ++kill) {
    const bool stored = kill % 2 == 1;
    const std::string docto = "KILL " + std::to_string(kill);
    const auto desk = AtConfirmation(docto, stored);
    // The last ones leave it the time that a busy machine takes.
    const auto until = steady_clock::now() +
                       (kill < kKills - 2 ? whole[stored] * kill / (kKills * 4 / 5) : 5 * whole[stored]);
    desk->Send({{"do", "click"}, {"control", "SpeedButton2"}});
    std::this_thread::sleep_until(until);
    desk->Kill();

    const std::string left = Left(docto, stored);
    if (left == (stored ? whole_altered() : whole_new())) {
      ++landed;
      stored ? ++altered : shares += 3;
    } else {
      EXPECT_EQ(left, (stored ? "1|0|" + std::to_string(altered) : "0|0|0") + "|" + std::to_string(shares))
          << docto;
    }
  }
  // The kills met the confirmation: some came too early, some too late.
  EXPECT_GT(landed, 0);
  EXPECT_LT(landed, kKills);
  EXPECT_TRUE(CheckData(Db()).empty());
}

TEST_F(ActionsTest, KilledActionsLeaveAllOrNothing) {
  constexpr int kMost = 10;
  for (const LedgerAction& action : Actions()) {
    SCOPED_TRACE(action.name);
    ExpectAllOrNothing(
        action.cheques ? kMost / 2 : kMost, action.last,
        [&] {
          Restore(action);
          LetGo();
          auto desk = std::make_unique<DriveProcess>(database_);
          for (const Json& in : action.before) desk->Do(in);
          return desk;
        },
        [&] { return Left(); });
  }
}

}  // namespace
}  // namespace orv::test
