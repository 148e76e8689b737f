// Clients that mean no good, or are broken: what they send costs them their link and nobody else anything.
#include <condition_variable>
#include <mutex>
#include <random>
#include <thread>

#include "frame/registry.h"
#include "frame/screen.h"
#include "tests/server/server_test.h"
#include "toolkit/client_dataset.h"

namespace orv::test {
namespace {

constexpr int kRows = 3000;

struct TbLinhas : TClientDataSet {
  TbLinhas() : TClientDataSet("TbLinhas") {}
  Field Texto{*this, "Texto", FieldType::String, 60};
};

// Where a screen's action waits until the test lets it go on.
class Gate {
 public:
  void Wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return open_; });
  }
  void Open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
};

// A screen with much to read, something hidden and something to wait for.
class TfmCofre : public Child {
 public:
  TfmCofre(Application& application, Gate& gate) : Child(application, "TfmCofre", "fmCofre", "Cofre") {
    Linhas.CreateDataSet();
    AddSet(Linhas);
    for (int i = 0; i < kRows; ++i) {
      Linhas.Append();
      Linhas["Texto"] = Value("linha " + std::to_string(i) + std::string(40, '.'));
      Linhas.Post();
    }
    Layout("EdtTexto LbArquivo / Grade / BtArquivo BtEspera BtSegredo Menu { ItSegredo }");
    BtSegredo.SetVisible(false);
    ItSegredo.SetEnabled(false);
    BtArquivo.OnClick = [this] {
      LbArquivo.SetCaption(User().OpenFile("BtArquivo", "txt|*.txt").value_or("nenhum"));
    };
    BtEspera.OnClick = [&gate] { gate.Wait(); };
    BtSegredo.OnClick = ItSegredo.OnClick = [this] { LbArquivo.SetCaption("aberto"); };
  }

  Edit EdtTexto{*this, "EdtTexto", "Texto", 20};
  Label LbArquivo{*this, "LbArquivo", "nenhum"};
  TbLinhas Linhas;
  TOrvDBGrid Grade{*this, "Grade", Linhas, {{"Texto", "Texto"}}, false};
  Button BtArquivo{*this, "BtArquivo", "&Arquivo"};
  Button BtEspera{*this, "BtEspera", "&Espera"};
  Button BtSegredo{*this, "BtSegredo", "&Segredo"};
  PopupMenu Menu{*this, "Menu"};
  MenuItem ItSegredo{*this, "ItSegredo", "Segredo"};
};

Json Click(std::string_view control) { return {{"do", "click"}, {"control", control}}; }
const Json kRead{{"do", "read"}};
const Json kOpen{{"do", "open"}, {"class", "TfmCofre"}};

bool Idle(const std::vector<Json>& all) { return all.back()["on"] == Json("idle"); }

std::string ErrorOf(const std::vector<Json>& all) {
  const auto errors = Only(all, "error");
  return errors.empty() ? "" : errors[0]["text"].String();
}

class HostileTest : public ServerTest {
 protected:
  HostileTest() {
    ClassRegistry::Instance().Register(
        {"TfmCofre", "Cofre", ScreenKind::Child, "Testes",
         [this](Application& a) { return std::make_unique<TfmCofre>(a, gate_); }});
  }
  ~HostileTest() override {
    gate_.Open();
    server_.reset();
    ClassRegistry::Instance().Unregister("TfmCofre");
  }
  // The other user, whom the desk answers all the while.
  std::unique_ptr<Door> Leo() {
    Browser leo = Visitor();
    EXPECT_EQ(leo.LogIn("leo", kLeo).status, 200);
    auto door = std::make_unique<Door>(leo);
    EXPECT_NE(door->Session(), "");
    EXPECT_TRUE(Idle(door->Await()));
    return door;
  }
  // A property of the open screen as it stands.
  static std::string Shown(Door& door, std::string_view control, const char* property) {
    const auto state = Only(door.Do({{"do", "read"}, {"control", control}}), "state");
    return state.at(0)["screens"].Items().at(0)["controls"][control][property].String();
  }

  Gate gate_;
};

// The same at every run: a distribution of the library's may differ from one to the next.
class Chance {
 public:
  explicit Chance(uint32_t seed) : engine_(seed) {}
  std::size_t Below(std::size_t most) { return engine_() % most; }
  char Byte() { return static_cast<char>(engine_()); }
  std::string Bytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = Byte();
    return bytes;
  }
  // Cut short, changed in places, or both.
  std::string Spoilt(std::string bytes) {
    const std::size_t kind = Below(3);
    if (kind != 1) bytes.resize(Below(bytes.size() + 1));
    for (std::size_t i = Below(8) + 1; kind != 0 && !bytes.empty() && i > 0; --i) {
      bytes[Below(bytes.size())] = Byte();
    }
    return bytes;
  }

 private:
  std::mt19937 engine_;
};

TEST_F(HostileTest, SpoiltRequestsHarmNobody) {
  Serve();
  const auto leo = Leo();
  const std::string host = "Host: 127.0.0.1:" + std::to_string(server_->Port()) + "\r\n";
  const std::vector<std::string> requests = {
      "GET /companies HTTP/1.1\r\n" + host + "\r\n",
      "POST /login HTTP/1.1\r\n" + host +
          "Content-Type: application/json\r\nContent-Length: 49\r\n\r\n"
          R"({"user":"ana","password":"errada","company":"_1"})",
      "PUT /preferences HTTP/1.1\r\n" + host +
          "Transfer-Encoding: chunked\r\n\r\n5\r\n{\"a\":\r\n2\r\n1}\r\n0\r\n\r\n",
      DoorRequest(Visitor())};
  Chance chance(20261120);
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    Raw raw(server_->Port());
    raw.Send(chance.Below(8) == 0 ? chance.Bytes(chance.Below(2000))
                                  : chance.Spoilt(requests[chance.Below(requests.size())]));
    raw.Done();
    const std::string said = raw.Rest();
    EXPECT_TRUE(said.empty() || said.starts_with("HTTP/1.")) << said;
    EXPECT_NE(said.substr(0, 10), "HTTP/1.1 5") << said;
    if (i % 20 == 0) {
      ASSERT_TRUE(Idle(leo->Do(kRead)));
      ASSERT_EQ(Visitor().Get("/companies").status, 200);
    }
  }
}

TEST_F(HostileTest, SpoiltFramesHarmNobody) {
  options_.messages_a_second = 10000;
  Serve();
  const auto leo = Leo();
  Browser ana = Ana();
  std::string session;
  {
    Door door(ana);
    session = door.Session();
    door.Await();
    door.Do(kOpen);
    door.Do({{"do", "set"}, {"control", "EdtTexto"}, {"value", "fica"}});
  }
  const std::string text = Frame(0x81, R"({"do":"read","control":"EdtTexto"})");
  const std::vector<std::string> frames = {
      text + text,
      Frame(0x01, R"({"do":)") + Frame(0x00, R"("read")") + Frame(0x80, "}"),
      Frame(0xC1, "\xaa\x56\x4a\xc9\x57\xb2\x52"),
      Frame(0x89, "viva") + text,
      Frame(0x88, "\x03\xe8"),
      Frame(0x81, std::string(70000, ' '))};
  Chance chance(20261121);
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    Raw raw(server_->Port());
    ASSERT_TRUE(raw.Open(DoorRequest(ana, session, chance.Below(2) == 0)));
    raw.Send(chance.Below(8) == 0 ? chance.Bytes(chance.Below(2000))
                                  : chance.Spoilt(frames[chance.Below(frames.size())]));
    raw.Done();
    raw.Rest();
    if (i % 20 == 0) {
      ASSERT_TRUE(Idle(leo->Do(kRead)));
    }
  }
  // What is said before the door is open isn't understood by halves.
  Raw early(server_->Port());
  early.Send(DoorRequest(ana, session) + text);
  EXPECT_EQ(early.Rest().substr(0, 12), "HTTP/1.1 400");

  Door back(ana, session);
  EXPECT_EQ(back.Session(), session);
  EXPECT_TRUE(Idle(back.Await()));
  EXPECT_EQ(Shown(back, "EdtTexto", "text"), "fica");
}

TEST_F(HostileTest, AFloodIsAnsweredInOrderAndHoldsNobodyUp) {
  constexpr int kFlood = 10000;
  options_.messages_a_second = 4000;
  Serve();
  const auto leo = Leo();
  Browser ana = Ana();
  Door door(ana);
  door.Session();
  door.Await();
  const auto begun = std::chrono::steady_clock::now();
  std::atomic<bool> over{false};
  std::thread flood([&] {
    for (int i = 0; i < kFlood; ++i) door.Send(R"({"do":"nada )" + std::to_string(i) + "\"}");
    for (int i = 0; i < kFlood; ++i) {
      const std::string told = ErrorOf(door.Await());
      if (told != "O pedido \"nada " + std::to_string(i) + "\" não existe.") {
        ADD_FAILURE() << i << ": " << told;
        break;
      }
    }
    over = true;
  });
  int answered = 0;
  while (!over) {
    EXPECT_TRUE(Idle(leo->Do(kRead)));
    ++answered;
  }
  flood.join();
  // Twice the messages of a second at once, then as many as the rate gives.
  EXPECT_GE(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(490));
  EXPECT_GE(answered, 20);
}

TEST_F(HostileTest, AheadOfTheAnswersOnlyAFewAreTaken) {
  Serve();
  const auto leo = Leo();
  Browser ana = Ana();
  auto door = std::make_unique<Door>(ana);
  const std::string session = door->Session();
  door->Await();
  door->Do(kOpen);
  const auto numbered = [](int n) { return Json{{"do", "nada " + std::to_string(n)}, {"n", n}}.Text(); };
  door->Send(Click("BtEspera").Text());
  for (int n = 1; n <= 200; ++n) door->Send(numbered(n));
  // The desk has had the time to take all that it means to.
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(Idle(leo->Do(kRead)));
  door.reset();

  Door back(ana, session);
  const Json hello = back.Next();
  ASSERT_EQ(hello["session"].String(), session);
  const auto received = static_cast<int>(hello["received"].Integer());
  EXPECT_LE(received, 32);
  gate_.Open();
  for (int n = received + 1; n <= 200; ++n) back.Send(numbered(n));
  // What was taken before is told to nobody; what comes after the screens are shown anew is.
  EXPECT_TRUE(Idle(back.Await()));
  for (int n = received + 1; n <= 200; ++n) {
    ASSERT_EQ(ErrorOf(back.Await()), "O pedido \"nada " + std::to_string(n) + "\" não existe.");
  }
}

TEST_F(HostileTest, WhoNeverReadsLosesTheLinkAndKeepsTheSession) {
  options_.messages_a_second = 10000;
  options_.max_rows = 2500;
  Serve();
  const auto leo = Leo();
  Browser ana = Ana();
  std::string session;
  std::size_t size = 0;
  {
    Door door(ana);
    session = door.Session();
    door.Await();
    door.Do(kOpen);
    door.Do({{"do", "set"}, {"control", "EdtTexto"}, {"value", "fica"}});
    // However much is asked for, an answer has its bound.
    const auto all = door.Do({{"do", "read"}, {"control", "Grade"}, {"count", 1000000000}});
    EXPECT_EQ(Only(all, "state").at(0)["screens"].Items().at(0)["controls"]["Grade"]["cells"].Items().size(),
              2500U);
    for (const Json& out : all) size += out.Text().size();
  }
  ASSERT_GT(size, std::size_t{100} << 10);
  {
    Raw raw(server_->Port());
    ASSERT_TRUE(raw.Open(DoorRequest(ana, session)));
    int64_t n = 1;
    while (n < 1000000 && raw.Send(Frame(0x81, Json{{"do", "read"}, {"control", "Grade"}, {"n", n}}.Text())))
      ++n;
    EXPECT_LT(n, 1000000) << "the desk listens to one who never listens";
  }
  Door back(ana, session);
  const Json hello = back.Next();
  EXPECT_EQ(hello["session"].String(), session);
  // What was kept for it: the bound, what the system holds of a link, what was on its way.
  const auto taken = static_cast<std::size_t>(hello["received"].Integer());
  EXPECT_GE(taken * size, std::size_t{32} << 20);
  EXPECT_LE(taken * size, (std::size_t{48} << 20) + 40 * size);
  EXPECT_TRUE(Idle(back.Await()));
  EXPECT_EQ(Shown(back, "EdtTexto", "text"), "fica");
  EXPECT_TRUE(Idle(leo->Do(kRead)));
}

// The answer is made on another thread, and nobody is left to take it.
TEST_F(HostileTest, WhoHangsUpBeforeTheAnswerHarmsNobody) {
  Serve();
  const auto leo = Leo();
  Browser ana = Ana();
  std::string session;
  {
    Door door(ana);
    session = door.Session();
    door.Await();
  }
  const std::string host = " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server_->Port()) + "\r\n";
  const std::string body = R"({"user":"ninguem","password":"errada","company":"_001"})";
  const std::string requests[] = {
      "GET /preferences" + host + "Cookie: " + ana.cookie + "\r\nConnection: close\r\n\r\n",
      "POST /login" + host + "Content-Type: application/json\r\nContent-Length: " +
          std::to_string(body.size()) + "\r\n\r\n" + body};
  for (int i = 0; i < 60; ++i) {
    for (const std::string& request : requests) Raw(server_->Port()).Send(request);
    Raw link(server_->Port());
    ASSERT_TRUE(link.Open(DoorRequest(ana, session)));
    link.Send(Frame(0x81, std::string(70000, ' ')));
  }
  for (const std::string& request : requests) {
    Raw raw(server_->Port());
    raw.Send(request);
    raw.Done();
    EXPECT_NE(raw.Rest(), "");
  }
  EXPECT_TRUE(Idle(leo->Do(kRead)));
}

TEST_F(HostileTest, WhatIsTooLargeIsRefused) {
  Serve();
  const auto leo = Leo();
  const std::string host = " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server_->Port()) + "\r\n";
  const std::string login = "POST /login" + host + "Content-Type: application/json\r\n";
  const std::string chunk = "8000\r\n" + std::string(0x8000, 'a') + "\r\n";
  std::string many = "GET /me" + host;
  for (int i = 0; i < 5000; ++i) many += "x" + std::to_string(i) + ": y\r\n";
  const std::pair<std::string, const char*> kCases[] = {
      {"GET /" + std::string(1 << 20, 'a'), "431"},
      {"GET /me" + host + "x: " + std::string(1 << 20, 'a'), "431"},
      {many, "431"},
      {login + "Content-Length: 70000\r\n\r\n", "413"},
      {login + "Content-Length: 18446744073709551615\r\n\r\n", "413"},
      {login + "Content-Length: 99999999999999999999999\r\n\r\n", "400"},
      {login + "Content-Length: 2\r\nContent-Length: 70000\r\n\r\n{}", "400"},
      {login + "Transfer-Encoding: chunked\r\n\r\n" + chunk + chunk + chunk, "413"},
      {login + "Transfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\n", "413"},
      // Where the body ends isn't known: what follows would be taken for a request.
      {login + "Transfer-Encoding: gzip\r\n\r\nGET /companies" + host + "\r\n", "400"},
      {login + "Transfer-Encoding: identity\r\n\r\n", "400"},
      {login + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", "400"},
      {login + "Transfer-Encoding: chunked\r\nTransfer-Encoding: x\r\n\r\n0\r\n\r\n", "400"},
  };
  for (const auto& [request, status] : kCases) {
    SCOPED_TRACE(request.substr(0, 120));
    Raw raw(server_->Port());
    raw.Send(request);
    raw.Done();
    const std::string said = raw.Rest();
    // Who goes on sending what nobody reads may miss the answer.
    EXPECT_TRUE(said.empty() ? request.size() > 65536 : said.substr(9, 3) == status) << said;
    EXPECT_EQ(said.find("HTTP/1.1 ", 1), std::string::npos) << said;
  }

  // Messages: declared too long, in pieces without end, and blown up by what compression saves.
  Browser ana = Ana();
  std::string session;
  {
    Door door(ana);
    session = door.Session();
    door.Await();
    door.Send(std::string(64 << 20, 'a'));
    EXPECT_TRUE(door.Await().back().IsNull());
  }
  for (const bool pieces : {false, true}) {
    Raw raw(server_->Port());
    ASSERT_TRUE(raw.Open(DoorRequest(ana, session)));
    if (pieces) {
      raw.Send(Frame(0x01, ""));
      int sent = 0;
      while (sent < 10000 && raw.Send(Frame(0x00, std::string(10000, ' ')))) ++sent;
      EXPECT_LT(sent, 10000);
    } else {
      raw.Send(std::string("\x81\xFF\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\0\0", 14));
      raw.Rest();
    }
  }
  Door back(ana, session);
  EXPECT_EQ(back.Session(), session);
  EXPECT_TRUE(Idle(back.Await()));
  EXPECT_TRUE(Idle(leo->Do(kRead)));
}

TEST_F(HostileTest, FilesComeWithinTheirBoundsAndGoAgain) {
  constexpr int kLimit = 1 << 20;
  options_.max_upload = kLimit;
  options_.max_uploads = kLimit + 8192;
  Write("data/sessoes/saldos.pdf", "de uma mesa que foi morta");
  Serve();
  const std::filesystem::path kept = options_.data / "sessoes";
  const auto count = [&] {
    return std::filesystem::exists(kept) ? std::distance(std::filesystem::directory_iterator(kept), {}) : 0;
  };
  EXPECT_EQ(count(), 0);
  Browser ana = Ana();
  Door door(ana);
  const std::string session = door.Session(), address = "/upload?session=" + session;
  door.Await();
  door.Do(kOpen);
  const auto send = [&](std::size_t size) { return ana.Ask("POST", address, std::string(size, 'x')); };
  const auto give = [&](const std::string& name, const Answer& sent) {
    return door.Do({{"do", "file"}, {"name", name}, {"upload", Json::Parse(sent.body)["upload"]}});
  };
  const auto waits = [](const std::vector<Json>& all) {
    return all.back()["on"] == Json("waiting") && all.back()["for"] == Json("file");
  };

  EXPECT_EQ(send(2).status, 409) << "nobody asked for it";
  ASSERT_TRUE(waits(door.Do(Click("BtArquivo"))));
  EXPECT_EQ(Visitor().Ask("POST", address, "x").status, 401);
  EXPECT_EQ(Ana().Ask("POST", address, "x").status, 409) << "another login's window";
  EXPECT_EQ(ana.Ask("POST", address, "x", {{"Origin", "null"}}).status, 403);
  const std::string head = "POST " + address +
                           " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server_->Port()) +
                           "\r\nCookie: " + ana.cookie + "\r\n";
  for (const auto& [rest, status] : {std::pair{"Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n", "411"},
                                     {"Content-Length: 18446744073709551615\r\n\r\n", "413"},
                                     {"Content-Length: 1000\r\n\r\nabc", "400"}}) {
    Raw raw(server_->Port());
    raw.Send(head + rest);
    raw.Done();
    EXPECT_EQ(raw.Rest().substr(9, 3), status) << rest;
  }
  EXPECT_EQ(send(kLimit + 1).Text(), "O arquivo é grande demais: o limite é de 1 MB.");
  EXPECT_EQ(count(), 0) << "what didn't come whole stays";

  for (const char* name : {"../fora.txt", "..", "", "a/b.txt", "a\\b.txt", "a\x7f.txt", ".oculto"})
    EXPECT_TRUE(waits(give(name, send(2)))) << name;
  EXPECT_TRUE(waits(door.Do({{"do", "file"}, {"name", "a.txt"}, {"upload", "../saldos.pdf"}})));
  EXPECT_EQ(count(), 0);

  // A name is the user's own affair, also where the desk has a folder of that name.
  EXPECT_TRUE(Idle(give("sessoes", send(kLimit))));
  EXPECT_EQ(Shown(door, "LbArquivo", "caption"), "sessoes");
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(std::filesystem::file_size(std::filesystem::directory_iterator(kept)->path()), kLimit);
  ASSERT_TRUE(waits(door.Do(Click("BtArquivo"))));
  const Answer full = send(kLimit);
  EXPECT_EQ(full.status, 413);
  EXPECT_TRUE(full.Text().starts_with("Os arquivos que você enviou já ocupam o limite de 1 MB."))
      << full.body;
  // What was sent and not chosen goes with the question, what was replaced or stored at once.
  EXPECT_EQ(send(2).status, 200);
  EXPECT_TRUE(Idle(give("sessoes", send(2))));
  EXPECT_EQ(count(), 1);
  door.Do(Click("BtArquivo"));
  EXPECT_TRUE(Idle(give("outro.txt", send(kLimit))));
  server_->Stop();
  EXPECT_EQ(count(), 0);
}

TEST_F(HostileTest, AnAddressHasItsShareOfTheConnections) {
  options_.connections = 24;
  const auto ask = [&](Raw& raw, const std::string& headers) {
    raw.Send("GET /companies HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server_->Port()) + "\r\n" +
             headers + "\r\n");
    EXPECT_TRUE(raw.Ready(30000));
  };
  Serve();
  std::vector<std::unique_ptr<Raw>> held;
  for (int i = 0; i < 3; ++i) ask(*held.emplace_back(std::make_unique<Raw>(server_->Port())), "");
  EXPECT_EQ(Raw(server_->Port()).Rest(), "");
  held.clear();

  // Behind the proxy it is the address that the proxy tells, and who is logged in may have more.
  options_.proxy = "127.0.0.1";
  server_.reset();
  Serve();
  const std::string ana = "Cookie: " + Ana().cookie + "\r\n", from = "X-Forwarded-For: 1.2.3.4\r\n";
  for (int i = 0; i < 3; ++i) ask(*held.emplace_back(std::make_unique<Raw>(server_->Port())), from);
  for (int i = 0; i < 21; ++i) ask(*held.emplace_back(std::make_unique<Raw>(server_->Port())), from + ana);
  for (const auto& [headers, status] :
       {std::pair{from, "429"}, {from + ana, "429"}, {std::string("X-Forwarded-For: 1.2.3.5\r\n"), "200"}}) {
    Raw raw(server_->Port());
    ask(raw, headers + "Connection: close\r\n");
    EXPECT_EQ(raw.Rest().substr(9, 3), status) << headers;
  }
}

TEST_F(HostileTest, NothingIsReachedThatIsntShown) {
  Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmCC', 'A')");
  Serve();
  const auto leo = Leo();
  // Every class but the home and the one that he has the right to, however it is written.
  int refused = 0;
  for (const ScreenInfo& info : ClassRegistry::Instance().All()) {
    if (info.class_name == "TfmCC" || info.IsHome()) continue;
    for (const std::string& name :
         {info.class_name, Lower(info.class_name), " " + info.class_name,
          info.class_name + std::string(1, '\0'), std::string("TfmCC\0", 6) + info.class_name}) {
      EXPECT_EQ(ErrorOf(leo->Do({{"do", "open"}, {"class", name}})).substr(0, 8), "A tela \"") << name;
      ++refused;
    }
  }
  EXPECT_GE(refused, 5);
  EXPECT_TRUE(Only(leo->Do(kRead), "state").at(0)["screens"].Items().empty());
  EXPECT_EQ(ErrorOf(leo->Do({{"do", "open"}, {"class", "TfmCC"}})), "");

  Browser ana = Ana();
  Door door(ana);
  door.Session();
  door.Await();
  door.Do(kOpen);
  for (const char* verb : {"click", "focus", "set", "check", "key", "page", "row", "dblclick", "menu"}) {
    // Hidden, disabled, another session's.
    for (const char* control : {"BtSegredo", "ItSegredo", "EdtConta", "BitBtn1"}) {
      SCOPED_TRACE(std::string(verb) + " " + control);
      const Json in{{"do", verb}, {"control", control}, {"value", "true"},  {"key", "Enter"},
                    {"row", 0},   {"page", "x"},        {"column", "Texto"}};
      EXPECT_NE(ErrorOf(door.Do(in)), "");
    }
  }
  EXPECT_EQ(Shown(door, "LbArquivo", "caption"), "nenhum");
  for (const char* control : {"BtArquivo", "BtEspera", "Grade"})
    EXPECT_NE(ErrorOf(leo->Do(Click(control))), "");
}

TEST_F(HostileTest, WhoTakesForeverIsCutOff) {
  options_.request_time = std::chrono::milliseconds(300);
  Serve();
  const auto leo = Leo();
  const std::string host = "Host: 127.0.0.1:" + std::to_string(server_->Port()) + "\r\n";
  for (const std::string& begun :
       {std::string(), std::string("G"), "GET /companies HTTP/1.1\r\n" + host,
        "POST /login HTTP/1.1\r\n" + host + "Content-Type: application/json\r\nContent-Length: 50\r\n\r\n{",
        "POST /login HTTP/1.1\r\n" + host + "Transfer-Encoding: chunked\r\n\r\n5\r\n{"}) {
    SCOPED_TRACE(begun);
    Raw raw(server_->Port());
    raw.Send(begun);
    EXPECT_EQ(raw.Rest(), "");
  }
  // A byte now and then buys no time.
  Raw raw(server_->Port());
  raw.Send("GET /companies HTTP/1.1\r\n" + host + "X-Slow: ");
  int bytes = 0;
  while (bytes < 2000 && !raw.Ready(10) && raw.Send("a")) ++bytes;
  EXPECT_LT(bytes, 2000);
  EXPECT_EQ(raw.Rest(), "");
  // A link isn't a request: it stays.
  EXPECT_TRUE(Idle(leo->Do(kRead)));
}

}  // namespace
}  // namespace orv::test
