// What the desk answers over HTTP: who gets in, and what nobody gets.
#include "desk/folders.h"
#include "desk/http/http_guard.h"
#include "tests/server/server_test.h"

namespace orv::test {
namespace {

TEST_F(ServerTest, LoginGivesATokenAndRefusalsAreSlowedDown) {
  Serve();
  Browser browser = Visitor();
  const Answer in = browser.LogIn("ANA", kAna);
  ASSERT_EQ(in.status, 200);
  const std::string cookie = in.Header("set-cookie");
  EXPECT_EQ(cookie.substr(0, 6), "orvcc=");
  EXPECT_EQ(cookie.substr(6 + 32), "; Path=/; HttpOnly; SameSite=Strict");
  EXPECT_EQ(in.Header("cache-control"), "no-store");

  // A new login has a new token, and the old one opens nothing more.
  const std::string old = browser.cookie;
  ASSERT_EQ(browser.LogIn("ana", kAna, "_002").status, 200);
  EXPECT_NE(browser.cookie, old);
  EXPECT_EQ(browser.Get("/me", {{"Cookie", old}}).status, 401);
  const Json me = Json::Parse(browser.Get("/me").body);
  EXPECT_EQ(me["user"].String(), "ana");
  EXPECT_EQ(me["company"].String(), "_002");
  EXPECT_EQ(me["today"].String(), kToday);
  EXPECT_EQ(browser.LogIn("ana", kAna, "_009").status, 400);
  // A page that has not been told the companies yet.
  EXPECT_EQ(browser.LogIn("ana", kAna, "").Text(), "Escolha a empresa.");

  // Wrong password and unknown user read the same. From the fifth on it takes longer and longer.
  Browser guesser = Visitor();
  const Answer unknown = guesser.LogIn("senha no campo errado", kAna);
  EXPECT_EQ(unknown.status, 401);
  for (int i = 0; i < 5; ++i) {
    const Answer wrong = guesser.LogIn("leo", "errada errada " + std::to_string(i));
    EXPECT_EQ(wrong.status, 401);
    EXPECT_EQ(wrong.body, unknown.body);
  }
  const Answer slow = guesser.LogIn("LEO ", kLeo);
  EXPECT_EQ(slow.status, 429);
  EXPECT_EQ(slow.Header("retry-after"), "1");
  EXPECT_EQ(slow.Text(), "Muitas tentativas. Espere 1 segundo e tente de novo.");
  Pass(std::chrono::seconds(1));
  EXPECT_EQ(guesser.LogIn("leo", "errada").status, 401);
  EXPECT_EQ(guesser.LogIn("leo", kLeo).Header("retry-after"), "2");
  Pass(std::chrono::seconds(2));
  EXPECT_EQ(guesser.LogIn("leo", kLeo).status, 200);
  EXPECT_EQ(guesser.LogIn("leo", "errada").status, 401);

  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE TEXTO = 'LOGIN RECUSADO DE leo EM 127.0.0.1' AND LOGIN "
                "= 'leo'"),
            "7");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE TEXTO = 'LOGIN RECUSADO DE USUARIO DESCONHECIDO EM "
                "127.0.0.1'"),
            "1");
  server_->Stop();
  const std::string log = LogText();
  for (const char* secret : {"clara", "errad", "campo", browser.cookie.c_str() + 6}) {
    EXPECT_EQ(log.find(secret), std::string::npos) << secret;
  }
}

TEST_F(ServerTest, StrangersKeepNobodyOut) {
  options_.proxy = "127.0.0.1";
  Serve();
  const auto from = [](const std::string& address) { return Browser::Headers{{"X-Forwarded-For", address}}; };
  Browser leo = Visitor();
  const Answer in = leo.LogIn("leo", kLeo, "_001", from("10.0.0.1"));
  const std::string note = in.Header("device-cookie");
  EXPECT_EQ(note.substr(note.find(';')), "; Path=/; HttpOnly; SameSite=Strict; Max-Age=7776000");
  // Wrong passwords from changing addresses, and from the user's own.
  Browser stranger = Visitor();
  for (int i = 0; i < 8; ++i) {
    const std::string address = "10.0.1." + std::to_string(i);
    EXPECT_EQ(stranger.LogIn("leo", "errada errada", "_001", from(address)).status, 401);
    EXPECT_EQ(stranger.LogIn("leo", "errada errada", "_001", from("10.0.0.1")).status, i < 5 ? 401 : 429);
  }
  EXPECT_EQ(stranger.LogIn("leo", kLeo, "_001", from("10.0.2.1")).status, 200);
  EXPECT_EQ(stranger.LogIn("ana", kAna, "_001", from("10.0.0.1")).status, 200);
  // The note of an earlier login passes, for its user only, and is no leave to guess.
  leo.cookie.clear();
  EXPECT_EQ(leo.LogIn("LEO ", kLeo, "_001", from("10.0.0.1")).status, 200);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(leo.LogIn("leo", "errada", "_001", from("10.0.0.1")).status, 401);
  EXPECT_EQ(leo.LogIn("leo", kLeo, "_001", from("10.0.0.1")).status, 429);
  Pass(std::chrono::seconds(2));
  EXPECT_EQ(leo.LogIn("leo", kLeo, "_001", from("10.0.0.1")).status, 200);

  // Many at once, from everywhere: each is answered. One address doesn't take the others' turn.
  const auto request = [&](const std::string& user, const std::string& address) {
    const std::string body = Json{{"user", user}, {"password", "errada errada"}, {"company", "_001"}}.Text();
    return "POST /login HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nX-Forwarded-For: " + address +
           "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
  };
  std::vector<std::unique_ptr<Raw>> crowd;
  for (int i = 0; i < 120; ++i) {
    crowd.push_back(std::make_unique<Raw>(server_->Port()));
    const std::string name = "ninguem" + std::to_string(i);
    crowd.back()->Send(request(name, i < 60 ? "10.1.0." + std::to_string(i) : "10.2.0.1"));
  }
  std::map<std::string, int> answers[2];
  for (int i = 0; i < 120; ++i) ++answers[i / 60][crowd[static_cast<std::size_t>(i)]->Rest().substr(9, 3)];
  EXPECT_EQ(answers[0], (std::map<std::string, int>{{"401", 60}}));
  EXPECT_GE(answers[1]["429"], 40);
  EXPECT_EQ(answers[1]["503"], 0);
}

TEST_F(ServerTest, NothingPrivateWithoutALogin) {
  Serve();
  Browser visitor = Visitor();
  for (const char* cookie : {"", "orvcc=", "orvcc=0123456789abcdef0123456789abcdef"}) {
    visitor.cookie = cookie;
    EXPECT_EQ(visitor.Get("/me").status, 401);
    EXPECT_EQ(visitor.Get("/preferences").status, 401);
    EXPECT_EQ(visitor.Ask("PUT", "/preferences", R"({"key":"a","value":"b"})").status, 401);
    EXPECT_EQ(Door(visitor).Status(), 401);
  }
  const Json companies = Json::Parse(visitor.Get("/companies").body);
  ASSERT_EQ(companies.Items().size(), 2U);
  EXPECT_EQ(companies.Items()[0]["suffix"].String(), "_001");
  EXPECT_NE(companies.Items()[0]["name"].String(), "");
}

TEST_F(ServerTest, OnlyFilesOfThePage) {
  Serve();
  Browser visitor = Visitor();
  const Answer page = visitor.Get("/");
  EXPECT_EQ(page.status, 200);
  EXPECT_EQ(page.body, "<!doctype html>");
  EXPECT_EQ(page.Header("content-security-policy"),
            "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; font-src 'self'; "
            "connect-src 'self'; frame-src 'self'; base-uri 'none'; object-src 'none'; frame-ancestors "
            "'none'; form-action 'self'");
  EXPECT_EQ(page.Header("x-content-type-options"), "nosniff");
  EXPECT_EQ(page.Header("referrer-policy"), "no-referrer");

  const Answer script = visitor.Get("/app.js", {{"Accept-Encoding", "gzip, br"}});
  EXPECT_EQ(script.body, "comprimido");
  EXPECT_EQ(script.Header("content-encoding"), "gzip");
  EXPECT_EQ(visitor.Get("/app.js").body, "começo();");
  EXPECT_EQ(visitor.Get("/app.js", {{"If-None-Match", script.Header("etag")}}).status, 304);
  const Answer head = visitor.Ask("HEAD", "/app.js");
  EXPECT_EQ(head.Header("content-length"), "10");
  EXPECT_EQ(head.body, "");

  for (const char* target :
       {"/../fora.js", "/..%2ffora.js", "/%2e%2e/fora.js", "//etc/passwd", "/elo.js", "/segredo.pem",
        "/app.js.gz", "/app.js/", "/app.js%00.html", "/login/../fora.js"}) {
    EXPECT_EQ(visitor.Get(target).status, 404) << target;
  }
  EXPECT_EQ(visitor.Ask("POST", "/app.js").status, 405);
  EXPECT_EQ(visitor.Get("/login").Header("allow"), "POST");
  EXPECT_EQ(visitor.Get("/" + std::string(20000, 'a')).status, 431);
  EXPECT_EQ(visitor.Ask("POST", "/login", std::string(100000, 'a')).status, 413);
}

TEST_F(ServerTest, AnotherSitesPageReachesNothing) {
  Serve();
  Browser ana = Ana();
  const std::string own = "http://127.0.0.1:" + std::to_string(server_->Port());
  // A name of somebody else's that leads to this machine.
  EXPECT_EQ(ana.Get("/me", {{"Host", "mesa.exemplo.com"}}).status, 403);
  EXPECT_EQ(Door(ana, "", {{"Host", "mesa.exemplo.com"}, {"Origin", "http://mesa.exemplo.com"}}).Status(),
            403);
  for (const char* origin :
       {"", "null", "http://mesa.exemplo.com", "https://127.0.0.1", "http://127.0.0.1:1"}) {
    EXPECT_EQ(Door(ana, "", {{"Origin", origin}}).Status(), 403) << origin;
  }
  EXPECT_EQ(ana.Ask("POST", "/logout", "", {{"Origin", "null"}}).status, 403);
  EXPECT_EQ(ana.Ask("POST", "/logout", "", {{"Origin", ""}, {"Sec-Fetch-Site", "cross-site"}}).status, 403);
  EXPECT_EQ(ana.Ask("POST", "/login", "{}", {{"Content-Type", "text/plain"}}).status, 415);
  EXPECT_EQ(ana.Ask("POST", "/login", "[1").status, 400);
  EXPECT_EQ(ana.Ask("POST", "/login", R"({"user":1,"password":"x","company":"_001"})").status, 400);
  EXPECT_EQ(ana.Get("/me").status, 200);
  EXPECT_EQ(Door(ana, "", {{"Origin", own}}).Status(), 101);
  EXPECT_EQ(Door(ana, "", {{"Host", "localhost:9"}, {"Origin", "http://localhost:9"}}).Status(), 101);
}

TEST_F(ServerTest, MenuAndPreferencesAreTheUsersOwn) {
  Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmCC', 'A')");
  Serve();
  Browser ana = Ana();
  Browser leo = Visitor();
  ASSERT_EQ(leo.LogIn("leo", kLeo).status, 200);
  const Json menu = Json::Parse(leo.Get("/me").body)["menu"];
  ASSERT_EQ(menu.Items().size(), 1U);
  EXPECT_EQ(menu.Items()[0]["class"].String(), "TfmCC");
  EXPECT_NE(menu.Items()[0]["group"].String(), "");

  EXPECT_EQ(ana.Ask("PUT", "/preferences", R"({"key":"colunas.TfmCC","value":"80,'120'"})").status, 200);
  EXPECT_EQ(ana.Get("/preferences").body, R"({"colunas.TfmCC":"80,'120'"})");
  EXPECT_EQ(leo.Get("/preferences").body, "{}");
  EXPECT_EQ(ana.Ask("PUT", "/preferences", R"({"key":"colunas.TfmCC","value":""})").status, 200);
  EXPECT_EQ(ana.Get("/preferences").body, "{}");
  EXPECT_EQ(ana.Ask("PUT", "/preferences", R"({"key":"","value":"x"})").status, 400);

  // Who is no longer active is out with the next question.
  Run("UPDATE USUARIO SET ATIVO = 'N' WHERE LOGIN = 'leo'");
  Door door(leo);
  EXPECT_EQ(leo.Get("/me").status, 401);
  EXPECT_EQ(Door(leo).Status(), 401);
}

TEST_F(ServerTest, TlsMakesTheCookieSecure) {
  options_.certificate = (folder_.Path() / "mesa.pem").string();
  options_.key = (folder_.Path() / "mesa.key").string();
  EXPECT_THROW(Serve(), UserError);
  MakeCertificate(options_.certificate, options_.key);
  options_.subdomains = true;
  Serve();
  EXPECT_EQ(server_->Address().substr(0, 8), "https://");
  Browser browser(server_->Port(), true);
  const Answer in = browser.LogIn("ana", kAna);
  ASSERT_EQ(in.status, 200);
  EXPECT_EQ(in.Header("set-cookie").substr(0, 13), "__Host-orvcc=");
  EXPECT_EQ(in.Header("set-cookie").substr(13 + 32), "; Path=/; HttpOnly; SameSite=Strict; Secure");
  EXPECT_EQ(in.Header("strict-transport-security"), "max-age=31536000; includeSubDomains");
  EXPECT_EQ(browser.Get("/me").status, 200);
  for (const auto& [ciphers, taken] : {std::pair{"ECDHE-ECDSA-AES128-GCM-SHA256", true},
                                       {"ECDHE-ECDSA-CHACHA20-POLY1305", true},
                                       {"ECDHE-ECDSA-AES128-SHA256", false},
                                       {"ECDHE-ECDSA-AES256-SHA", false}}) {
    browser.ciphers = ciphers;
    if (taken) {
      EXPECT_EQ(browser.Get("/me").status, 200) << ciphers;
    } else {
      EXPECT_ANY_THROW(browser.Get("/me")) << ciphers;
    }
  }
}

TEST(HttpGuardTest, BehindAProxy) {
  const HttpGuard guard(false, "https://Mesa.exemplo.com/", "10.0.0.1");
  HttpRequest request;
  request.headers = {{"host", "mesa.exemplo.com"}, {"origin", "https://mesa.exemplo.com"}};
  EXPECT_TRUE(guard.HostAccepted(request));
  EXPECT_TRUE(guard.OriginAccepted(request));
  EXPECT_EQ(guard.SetCookie("t"), "__Host-orvcc=t; Path=/; HttpOnly; SameSite=Strict; Secure");
  request.headers["x-forwarded-for"] = "1.2.3.4, 2001:db8::1";
  request.address = "10.0.0.1";
  EXPECT_EQ(guard.AddressOfAsker(request), "2001:db8::1");
  request.headers["x-forwarded-for"] = "<script>";
  EXPECT_EQ(guard.AddressOfAsker(request), "10.0.0.1");
  // Only the proxy is believed.
  request.headers["x-forwarded-for"] = "1.2.3.4";
  request.address = "10.0.0.2";
  EXPECT_EQ(guard.AddressOfAsker(request), "10.0.0.2");
  EXPECT_THROW(HttpGuard(false, "mesa.exemplo.com", ""), UserError);
  EXPECT_THROW(HttpGuard(false, "https://mesa.exemplo.com/x", ""), UserError);
}

TEST(LoginsTest, BoundsWhatIsKept) {
  LoginThrottle throttle;
  const Instant now(std::chrono::hours(1));
  for (int i = 0; i < 30000; ++i) {
    throttle.Begin("u" + std::to_string(i), "a" + std::to_string(i), "", now + std::chrono::milliseconds(i));
  }
  EXPECT_LE(throttle.Size(), 20000U);

  // An address that tries many names is slowed down, too.
  int tried = 0;
  while (!throttle.Begin("x" + std::to_string(tried), "b", "", now)) ++tried;
  EXPECT_EQ(tried, 20);

  Logins logins({.per_user = 2});
  const auto first = logins.Add("ana", "_001", "", now);
  const auto second = logins.Add("ANA", "_001", "", now);
  logins.Touch(first.id, now + std::chrono::seconds(1));
  EXPECT_EQ(logins.Add("ana", "_001", "", now).dropped, second.id);
  EXPECT_EQ(logins.Find(second.token, now), nullptr);
  EXPECT_NE(logins.Find(first.token, now), nullptr);

  RateLimit rate(10, 2);
  EXPECT_EQ(rate.Take(now).count(), 0);
  EXPECT_EQ(rate.Take(now).count(), 0);
  EXPECT_EQ(rate.Take(now).count(), 101);
  EXPECT_EQ(rate.Take(now + std::chrono::milliseconds(300)).count(), 0);
}

TEST(LoginsTest, ADevicesNoteHoldsForItsUserPasswordAndTime) {
  const TempFolder folder;
  const Date today = Date::ParseNeutral(kToday);
  const KnownDevices devices(folder.Path() / "key"), again(folder.Path() / "key"), other(folder.Path() / "x");
  const std::string note = devices.Note("Ana", "selo", today);
  const std::string device = again.Device(note, "ana ", "selo", today.AddDays(90));
  EXPECT_EQ(device.size(), 32U);
  EXPECT_EQ(devices.Device(note, "ana", "selo", today.AddDays(91)), "");
  EXPECT_EQ(devices.Device(note, "leo", "selo", today), "");
  EXPECT_EQ(devices.Device(note, "ana", "outro", today), "");
  EXPECT_EQ(other.Device(note, "ana", "selo", today), "");
  EXPECT_EQ(devices.Device("9" + note.substr(1), "ana", "selo", today), "");
  for (const char* none : {"", ".", "2027-02-18", "2027-02-18.x.y"})
    EXPECT_EQ(devices.Device(none, "ana", "selo", today), "") << none;
}

TEST(FoldersTest, NoLoginLeavesItsFolder) {
  EXPECT_EQ(UserFolder("/d", "Ana.Prado", "_001"), "/d/users/ana.prado/_001");
  EXPECT_EQ(UserFolder("/d", "../x", "_001"), "/d/users/%2E.%2Fx/_001");
  EXPECT_EQ(UserFolder("/d", ".", "_001"), "/d/users/%2E/_001");
}

TEST(LogTest, AmountsAreTakenOut) {
  EXPECT_EQ(Masked("erro em '1.234,56': 99,90 de TABELA_001"), "erro em '': ##,## de TABELA_###");
}

}  // namespace
}  // namespace orv::test
