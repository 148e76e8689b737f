// The door over WebSocket: sessions that outlive their links, and what ends them.
#include "desk/server/server_control.h"
#include "tests/server/server_test.h"

namespace orv::test {
namespace {

Json Set(std::string_view control, std::string_view value) {
  return {{"do", "set"}, {"control", control}, {"value", value}};
}
Json Click(std::string_view control) { return {{"do", "click"}, {"control", control}}; }
const Json kOpen{{"do", "open"}, {"class", "TfmCC"}};

// A movement all but confirmed.
void Fill(Door& door, const std::string& docto) {
  door.Do(kOpen);
  door.Do(Click("BitBtn1"));
  door.Do(Set("EdtConta", "10250-1"));
  door.Do(Set("EdtNumDoc", docto));
  door.Do(Set("EdtTipo", "1202"));
  door.Do(Set("EdtHis", "020"));
  door.Do(Set("EdtValor", "1250,40"));
}

std::string Posted(const std::string& docto) {
  return "SELECT COUNT(*) FROM CONTACOR_001 WHERE DOCTO = '" + docto + "'";
}

// What the last object of an answer tells.
std::string End(const std::vector<Json>& all) {
  const Json& last = all.back();
  if (last.IsNull()) return "closed";
  return last["on"].String() + (last["for"].IsNull() ? "" : " " + last["for"].String());
}

std::string EndText(Door& door) {
  for (;;) {
    const Json out = door.Next();
    if (out.IsNull()) return "closed";
    if (out["on"] == Json("ended")) return out["text"].IsNull() ? "" : out["text"].String();
  }
}

TEST_F(ServerTest, PostsAMovementAndAnswersInOrder) {
  Serve();
  Browser ana = Ana();
  Door door(ana);
  ASSERT_NE(door.Session(), "");
  ASSERT_EQ(End(door.Await()), "idle");
  Fill(door, "REDE 1");
  EXPECT_EQ(End(door.Do(Click("SpeedButton2"))), "idle");
  EXPECT_EQ(Sql(Posted("REDE 1")), "1");
  // Sent at once, answered one after the other.
  for (int i = 0; i < 200; ++i) door.Send(R"({"do":"nada )" + std::to_string(i) + "\"}");
  for (int i = 0; i < 200; ++i) {
    EXPECT_EQ(Only(door.Await(), "error")[0]["text"].String(),
              "O pedido \"nada " + std::to_string(i) + "\" não existe.");
  }
}

TEST_F(ServerTest, ComesBackToTheOpenQuestion) {
  Serve();
  Browser ana = Ana();
  auto door = std::make_unique<Door>(ana);
  const std::string session = door->Session();
  door->Await();
  Fill(*door, "REDE 2");
  Json away = Set("EdtConta", "99999");
  away.Set("n", 7);
  door->Do(away);
  EXPECT_EQ(End(door->Do({{"do", "focus"}, {"control", "EdtNumDoc"}})), "waiting answer");
  // The link breaks without a word.
  door.reset();

  Door back(ana, session);
  const Json hello = back.Next();
  EXPECT_EQ(hello["session"].String(), session);
  EXPECT_EQ(hello["received"].Integer(), 7);
  const std::vector<Json> all = back.Await();
  EXPECT_EQ(End(all), "waiting answer");
  ASSERT_EQ(Only(all, "screen").size(), 1U);
  EXPECT_EQ(Only(all, "screen")[0]["id"].Integer(), 1);
  ASSERT_EQ(Only(all, "change").size(), 1U);
  EXPECT_EQ(Only(all, "change")[0]["focus"].String(), "EdtConta");
  EXPECT_EQ(Only(all, "message")[0]["text"].String(), "Conta inexistente.");
  EXPECT_TRUE(Only(all, "refresh").empty());
  EXPECT_EQ(End(back.Do({{"do", "answer"}, {"value", "ok"}})), "idle");

  // A question is told once it is answered no more; a second link takes the session from the first.
  Door second(ana, session);
  EXPECT_EQ(second.Session(), session);
  const std::vector<Json> later = second.Await();
  EXPECT_EQ(End(later), "idle");
  EXPECT_TRUE(Only(later, "message").empty());
  EXPECT_TRUE(back.Next().IsNull());
  second.Do(Set("EdtConta", "10250-1"));
  EXPECT_EQ(End(second.Do(Click("SpeedButton2"))), "idle");
  EXPECT_EQ(Sql(Posted("REDE 2")), "1");

  // Another login's session is none of theirs.
  Browser leo = Visitor();
  ASSERT_EQ(leo.LogIn("leo", kLeo).status, 200);
  Door other(leo, session);
  EXPECT_NE(other.Session(), session);
  EXPECT_EQ(other.Await().size(), 1U);
  EXPECT_EQ(Only(other.Do(kOpen), "error")[0]["text"].String(), "A tela \"TfmCC\" não está disponível.");
}

TEST_F(ServerTest, WindowsAreSessionsAndBounded) {
  options_.windows = 2;
  Serve();
  Browser ana = Ana();
  auto first = std::make_unique<Door>(ana);
  const std::string name = first->Session();
  first->Await();
  first->Do(kOpen);
  Door second(ana);
  EXPECT_NE(second.Session(), name);
  second.Await();
  EXPECT_TRUE(Only(second.Do({{"do", "read"}}), "state")[0]["screens"].Items().empty());

  Door third(ana);
  EXPECT_EQ(EndText(third), "Já há 2 janelas abertas. Feche uma delas e entre de novo.");

  // One that is away gives way.
  first->Close();
  first.reset();
  std::string session;
  for (int i = 0; i < 1000 && session.empty(); ++i) session = Door(ana).Session();
  EXPECT_NE(session, "");
  EXPECT_NE(session, name);
}

TEST_F(ServerTest, TimeEndsSessions) {
  using std::chrono::minutes;
  Serve();
  Browser ana = Ana();
  Door door(ana);
  door.Session();
  door.Await();
  // Use keeps it alive, being asked for doesn't.
  Pass(minutes(29));
  EXPECT_EQ(End(door.Do({{"do", "read"}})), "idle");
  Pass(minutes(29));
  EXPECT_EQ(ana.Get("/me").status, 200);
  Pass(minutes(2));
  EXPECT_EQ(EndText(door), "A sessão terminou por falta de uso ou por ter chegado ao seu limite de tempo.");
  EXPECT_EQ(ana.Get("/me").status, 401);

  // However much it is used, it ends after half a day.
  ana = Ana();
  Door all_day(ana);
  all_day.Session();
  all_day.Await();
  for (int i = 0; i < 28; ++i) {
    Pass(minutes(25));
    ASSERT_EQ(End(all_day.Do({{"do", "read"}})), "idle") << i;
  }
  Pass(minutes(20));
  EXPECT_NE(EndText(all_day), "closed");

  // A window without a link waits for the grace time.
  ana = Ana();
  Door stays(ana);
  stays.Session();
  stays.Await();
  auto goes = std::make_unique<Door>(ana);
  const std::string gone = goes->Session();
  goes->Await();
  goes->Close();
  goes.reset();
  Pass(minutes(9));
  {
    Door back(ana, gone);
    EXPECT_EQ(back.Session(), gone);
    back.Close();
  }
  int64_t windows = 2;
  for (int i = 0; i < 50 && windows == 2; ++i) {
    // The desk may not have seen yet that the link is gone.
    Pass(minutes(11));
    stays.Do({{"do", "read"}});
    windows = AskDesk(options_.data, {{"do", "list"}})["sessions"].Items().at(0)["windows"].Integer();
  }
  EXPECT_EQ(windows, 1);
  EXPECT_NE(Door(ana, gone).Session(), gone);
}

TEST_F(ServerTest, WhoLosesAccessOrARightIsCutOff) {
  struct Case {
    const char* sql;
    const char* told;  // "" for a session that goes on
  };
  const char* const right =
      "Um direito seu foi retirado. O que não estava confirmado foi desfeito. Entre de novo.";
  const char* const access = "Seu acesso foi retirado ou sua senha foi trocada. Entre de novo.";
  const Case cases[] = {
      {"INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmChequePre', '*')", ""},
      {"DELETE FROM DIREITO WHERE CLASSE = 'TfmChequePre'", ""},
      {"UPDATE DIREITO SET TIPOS = 'E' WHERE LOGIN_BUSCA = 'leo'", right},
      {"DELETE FROM DIREITO WHERE LOGIN_BUSCA = 'leo'", right},
      {"UPDATE USUARIO SET SENHA = (SELECT SENHA FROM USUARIO WHERE LOGIN = 'ana') WHERE LOGIN = 'leo'",
       access},
      {"DELETE FROM USUARIO WHERE LOGIN = 'leo'", access},
  };
  Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmCC', 'AE')");
  Serve();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.sql);
    Browser leo = Visitor();
    const bool changed = std::string(c.sql).starts_with("DELETE FROM USUARIO");
    ASSERT_EQ(leo.LogIn("leo", changed ? kAna : kLeo).status, 200);
    // Amid a posting, before a question, and away from the desk's windows.
    Door posting(leo), asking(leo), idle(leo);
    for (Door* door : {&posting, &asking, &idle}) {
      door->Session();
      door->Await();
    }
    Fill(posting, "CORTE");
    asking.Do(kOpen);
    asking.Do(Click("BitBtn1"));
    ASSERT_EQ(End(asking.Do(Click("SpeedButton2"))), "waiting lookup");
    idle.Do(kOpen);
    Run(c.sql);
    if (*c.told == '\0') {
      Pass(std::chrono::seconds(0));
      EXPECT_EQ(End(idle.Do({{"do", "read"}})), "idle");
      continue;
    }
    EXPECT_EQ(posting.Do(Click("SpeedButton2")).back()["text"].String(), c.told);
    EXPECT_EQ(asking.Do({{"do", "choose"}}).back()["text"].String(), c.told);
    EXPECT_EQ(leo.Get("/preferences").status, c.told == access ? 401 : 200);
    // Without a word of its user, too.
    Pass(std::chrono::seconds(0));
    EXPECT_EQ(EndText(idle), c.told);
    EXPECT_EQ(Door(leo).Status(), c.told == access ? 401 : 101);
    Run("UPDATE DIREITO SET TIPOS = 'AE' WHERE LOGIN_BUSCA = 'leo'");
    if (std::string(c.sql).starts_with("DELETE FROM DIREITO"))
      Run("INSERT INTO DIREITO (LOGIN_BUSCA, CLASSE, TIPOS) VALUES ('leo', 'TfmCC', 'AE')");
  }
  EXPECT_EQ(Sql(Posted("CORTE")), "0");
}

TEST_F(ServerTest, OnesOwnPasswordAndSessions) {
  Serve();
  Browser here = Ana();
  Pass(std::chrono::seconds(1));
  Browser there = Ana();
  Pass(std::chrono::seconds(1));
  Browser third = Ana();
  Door door(here), away(there);
  for (Door* one : {&door, &away}) {
    one->Session();
    one->Await();
  }
  const auto change = [&](Browser& browser, const char* present, const char* fresh) {
    return browser.Ask("POST", "/password", Json{{"present", present}, {"new", fresh}}.Text());
  };
  // One session of several is ended; a stranger's, or the own one, isn't.
  Browser leo = Visitor();
  ASSERT_EQ(leo.LogIn("leo", kLeo).status, 200);
  const Json list = Json::Parse(here.Get("/sessions").body)["sessions"];
  ASSERT_EQ(list.Items().size(), 3U);
  EXPECT_TRUE(list.Items()[0]["own"].Bool());
  const auto end = [&](Browser& who, int at) {
    return who.Ask("POST", "/sessions",
                   Json{{"id", list.Items()[static_cast<std::size_t>(at)]["id"]}}.Text());
  };
  for (const int at : {0, 2}) EXPECT_EQ(end(at == 0 ? here : leo, at).status, 200);
  EXPECT_EQ(third.Get("/me").status, 200);
  EXPECT_EQ(end(here, 2).status, 200);
  EXPECT_EQ(third.Get("/me").status, 401);

  EXPECT_EQ(change(here, "não é esta", "outra mesa 2026").Text(), "A senha atual não confere.");
  EXPECT_EQ(change(here, kAna, "curta").Text(), "A senha deve ter pelo menos 12 caracteres.");
  EXPECT_EQ(change(here, kAna, "senha2024!!!").Text(), "A senha é muito comum. Escolha outra.");
  EXPECT_EQ(change(here, kAna, kAna).Text(), "A senha nova é igual à atual.");
  EXPECT_EQ(there.Get("/me").status, 200);
  const std::string earlier = here.device;
  EXPECT_EQ(change(here, kAna, "outra mesa 2026").status, 200);
  EXPECT_NE(here.device, earlier);
  EXPECT_EQ(EndText(away), "Sua senha foi trocada em outra sessão. Entre de novo.");
  EXPECT_EQ(there.Get("/me").status, 401);
  Pass(std::chrono::seconds(0));
  EXPECT_EQ(here.Get("/me").status, 200);
  EXPECT_EQ(End(door.Do(kOpen)), "idle");
  EXPECT_EQ(there.LogIn("ana", kAna).status, 401);
  EXPECT_EQ(there.LogIn("ana", "outra mesa 2026").status, 200);
  EXPECT_EQ(there.Ask("POST", "/sessions", "{}").status, 200);
  EXPECT_EQ(here.Get("/me").status, 401);
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM AUDITORIA WHERE TEXTO STARTING WITH 'TROCA DA SENHA'"), "2");
  server_->Stop();
  for (const char* secret : {"clara", "outra", "esta"}) EXPECT_EQ(LogText().find(secret), std::string::npos);
}

TEST_F(ServerTest, LogoutAndTheAdministratorEndAllWindows) {
  Serve();
  Browser ana = Ana();
  Door first(ana);
  Door second(ana);
  EXPECT_EQ(ana.Ask("POST", "/logout").Header("set-cookie"),
            "orvcc=; Path=/; HttpOnly; SameSite=Strict; Max-Age=0");
  EXPECT_EQ(EndText(first), "A sessão foi encerrada.");
  EXPECT_TRUE(first.Next().IsNull());
  EXPECT_EQ(EndText(second), "A sessão foi encerrada.");
  EXPECT_EQ(ana.Get("/me").status, 401);
  EXPECT_EQ(Door(ana).Status(), 401);

  Browser leo = Visitor();
  leo.LogIn("leo", kLeo);
  ana = Ana();
  Door door(ana);
  door.Session();
  Pass(std::chrono::minutes(5));
  const auto list = AskDesk(options_.data, {{"do", "list"}})["sessions"].Items();
  ASSERT_EQ(list.size(), 2U);
  const Json& session = list[0]["user"] == Json("ana") ? list[0] : list[1];
  EXPECT_EQ(session["minutes"].Integer(), 5);
  EXPECT_EQ(session["windows"].Integer(), 1);
  EXPECT_EQ(session["address"].String(), "127.0.0.1");
  EXPECT_FALSE(AskDesk(options_.data, {{"do", "end"}, {"id", "x"}})["ended"].Bool());
  EXPECT_TRUE(AskDesk(options_.data, {{"do", "end"}, {"id", session["id"]}})["ended"].Bool());
  EXPECT_EQ(EndText(door), "A sessão foi encerrada pelo administrador.");
  EXPECT_EQ(ana.Get("/me").status, 401);
  EXPECT_EQ(leo.Get("/me").status, 200);

  EXPECT_EQ(std::filesystem::status(options_.data / "desk.sock").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_THROW(AskDesk(options_.data, {{"do", "outra coisa"}}), UserError);
  EXPECT_THROW(Server(options_, log_), UserError);
  server_->Stop();
  EXPECT_THROW(AskDesk(options_.data, {{"do", "list"}}), UserError);
}

TEST_F(ServerTest, BadMessagesCostTheLinkNotTheSession) {
  Serve();
  Browser ana = Ana();
  std::string session;
  {
    Door door(ana);
    session = door.Session();
    door.Await();
    for (const char* text : {"", "{", "[]", "5", R"({"do":7})", R"({"do":"set","control":[]})", "\"\\ud800\"",
                             R"({"do":"read","from":1e300,"count":"x"})"}) {
      const std::vector<Json> all = door.Do(Json());
      EXPECT_EQ(End(all), "idle");
      door.Send(text);
      EXPECT_EQ(Only(door.Await(), "error").size(), 1U) << text;
    }
    // A file that nobody asked for.
    door.Send(R"({"do":"file","name":"a.txt","content":")" + std::string(2 << 20, 'A') + "\"}");
    EXPECT_EQ(End(door.Await()), "closed");
  }
  {
    Door door(ana, session);
    EXPECT_EQ(door.Session(), session);
    door.Await();
    door.Send("{\"do\":\"read\"}", true);
    EXPECT_EQ(End(door.Await()), "closed");
  }
  // What fits is read, also where it is long.
  Door door(ana, session);
  EXPECT_EQ(door.Session(), session);
  door.Await();
  door.Send(R"({"do":")" + std::string(500 << 10, 'a') + "\"}");
  EXPECT_EQ(Only(door.Await(), "error").size(), 1U);
}

TEST_F(ServerTest, StoppingUndoesWhatIsOpenAndTellsTheUsers) {
  Serve();
  Browser ana = Ana();
  Door idle(ana);
  idle.Session();
  Door asked(ana);
  asked.Session();
  asked.Await();
  Fill(asked, "REDE 3");
  asked.Do(Set("EdtConta", "99999"));
  EXPECT_EQ(End(asked.Do(Click("SpeedButton2"))), "waiting answer");
  server_->Stop();
  EXPECT_EQ(EndText(idle), "A mesa está sendo encerrada.");
  EXPECT_EQ(EndText(asked), "A mesa está sendo encerrada.");
  EXPECT_EQ(Sql(Posted("REDE 3")), "0");
  const std::string log = LogText();
  EXPECT_NE(log.find("\"stopped\""), std::string::npos);
  EXPECT_EQ(log.find("1250"), std::string::npos);
  // What ended can begin again in the same folder.
  Serve();
  EXPECT_EQ(Ana().Get("/me").status, 200);
}

}  // namespace
}  // namespace orv::test
