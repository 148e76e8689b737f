// The posting of movements through the door, beside the same statements sent bare.
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "bench/house.h"
#include "bench/measure.h"
#include "bench/recording.h"
#include "frame/module.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 5;
constexpr int kPostings = 300;

void Act(DoorClient& client, Json in) {
  const std::vector<Json> out = client.Do(in);
  for (const Json& told : out) {
    if (told["on"] == Json("message") || told["on"] == Json("error"))
      throw UserError(in.Text() + ": " + told["text"].String());
  }
  if (!(out.back()["on"] == Json("idle"))) throw UserError(in.Text() + ": " + out.back().Text());
}

void Click(DoorClient& client, const char* control) { Act(client, {{"do", "click"}, {"control", control}}); }

void Set(DoorClient& client, const char* control, const std::string& value) {
  Act(client, {{"do", "set"}, {"control", control}, {"value", value}});
}

// A person's new movement, from "Incluir" to "Confirmar".
void Post(DoorClient& client, int number) {
  Click(client, "BitBtn1");
  Set(client, "EdtConta", "10250-1");
  Set(client, "EdtNumDoc", "NF " + std::to_string(number));
  Set(client, "EdtTipo", "3104");
  Set(client, "EdtHis", "019");
  Set(client, "EdtValor", std::to_string(number % 900 + 1) + ",50");
  Set(client, "EdtObs", "PAPEL E TINTA");
  Click(client, "SpeedButton2");
}

int64_t Movements(const std::filesystem::path& database) {
  return Attachment::Open(database.string())->Scalar("SELECT COUNT(*) FROM CONTACOR_001").AsInteger();
}

class Door {
 public:
  explicit Door(const std::filesystem::path& database) : client_(Ana(database), log_) {
    Act(client_, {{"do", "open"}, {"class", "TfmCC"}});
  }
  void Postings() {
    for (int i = 0; i < kPostings; ++i) Post(client_, i);
  }

 private:
  Log log_{"/dev/null"};
  DoorClient client_;
};

void CheckPosted(const std::filesystem::path& copy, int64_t before) {
  if (Movements(copy) != before + kPostings) throw UserError("Not every movement was posted.");
}

int Run() {
  const Module module("orvCC");
  const auto house = House(1);
  const int64_t before = Movements(house);

  std::vector<Sent> statements;
  {
    const Copy copy(house, "door.fdb");
    Door door(copy.Path());
    StartRecording();
    door.Postings();
    statements = StopRecording();
  }
  if (statements.empty()) throw UserError("No statement was noted.");

  // Both ways turn by turn, each on a fresh copy of the house.
  Best bare, door;
  for (int i = 0; i < kRuns; ++i) {
    {
      const Copy copy(house, "bare.fdb");
      {
        const auto db = Attachment::Open(copy.Path().string());
        bare.Take(Measure([&] { SendBare(*db, statements); }));
      }
      CheckPosted(copy.Path(), before);
    }
    const Copy copy(house, "door.fdb");
    {
      Door desk(copy.Path());
      door.Take(Measure([&] { desk.Postings(); }));
    }
    CheckPosted(copy.Path(), before);
  }
  const auto commits = std::count_if(statements.begin(), statements.end(),
                                     [](const Sent& sent) { return sent.kind == Sent::Kind::Commit; });
  const auto of_each = [](auto count) {
    return std::to_string(static_cast<std::size_t>(count) / kPostings) + "." +
           std::to_string(static_cast<std::size_t>(count) * 10 / kPostings % 10);
  };
  const std::string remark = of_each(static_cast<std::ptrdiff_t>(statements.size()) - commits) +
                             " statements and " + of_each(commits) + " commits each";
  Print("the statements of a posting, sent bare", kPostings / bare.Cpu(), "/s", remark);
  Print("postings through the door (half of bare)", kPostings / door.Cpu(), Bound::AtLeast,
        0.5 * kPostings / bare.Cpu(), "/s");
  Print("the same by the clock", kPostings / door.Wall(), Bound::AtLeast, 0.5 * kPostings / bare.Wall(),
        "/s");
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
