// Reports over HTTP: given to the window that made them, with what keeps them harmless.
#include "tests/server/server_test.h"

namespace orv::test {
namespace {

class ServerReportTest : public ServerTest {
 protected:
  // The address of the accounts' balances in a form; "" when there is none.
  std::string Made(Door& door, const char* format) {
    door.Do({{"do", "open"}, {"class", "TfmCC"}});
    const auto launched = Only(door.Do({{"do", "click"}, {"control", "BitBtn8"}}), "report");
    if (launched.empty()) return "";
    return Written(door, launched[0]["id"], format);
  }
  std::string Written(Door& door, const Json& id, const char* format) {
    const auto told = Only(door.Do({{"do", "report"}, {"id", id}, {"format", format}}), "report");
    if (told.empty()) return "";
    EXPECT_TRUE(told[0]["file"].IsNull()) << "a path of the desk's machine";
    return told[0]["address"].String();
  }
};

TEST_F(ServerReportTest, EachFormComesAsWhatItIs) {
  Serve();
  Browser ana = Ana();
  Door door(ana);
  door.Await();
  door.Do({{"do", "open"}, {"class", "TfmCC"}});
  const auto launched = Only(door.Do({{"do", "click"}, {"control", "BitBtn8"}}), "report");
  ASSERT_EQ(launched.size(), 1U);
  struct Form {
    const char *format, *type, *disposition, *begins;
  };
  const Form forms[] = {
      {"html", "text/html; charset=utf-8", "inline", "<!"},
      {"pdf", "application/pdf", "inline", "%PDF-"},
      {"csv", "text/csv; charset=utf-8", "attachment", "\xEF\xBB\xBF"},
      {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", "attachment", "PK"}};
  for (const Form& form : forms) {
    SCOPED_TRACE(form.format);
    const std::string address = Written(door, launched[0]["id"], form.format);
    const Answer given = ana.Get(address);
    EXPECT_EQ(given.status, 200);
    EXPECT_EQ(given.Header("content-type"), form.type);
    EXPECT_EQ(
        given.Header("content-disposition"),
        std::string(form.disposition) + "; filename=\"saldos_das_contas_correntes." + form.format + "\"");
    EXPECT_EQ(given.body.substr(0, std::string_view(form.begins).size()), form.begins);
    EXPECT_EQ(given.Header("cache-control"), "no-store");
    EXPECT_EQ(given.Header("x-content-type-options"), "nosniff");
    const std::string policy = given.Header("content-security-policy");
    EXPECT_TRUE(policy.starts_with("default-src 'none'; style-src 'sha256-")) << policy;
    EXPECT_EQ(policy.find("script-src"), std::string::npos);
    EXPECT_NE(policy.find("frame-ancestors 'self'"), std::string::npos);
  }
  EXPECT_EQ(Written(door, launched[0]["id"], "exe"), "");
}

TEST_F(ServerReportTest, IsGivenToItsOwnLoginAndGoesWithTheWindow) {
  Serve();
  Browser ana = Ana();
  auto door = std::make_unique<Door>(ana);
  door->Await();
  const std::string address = Made(*door, "html");
  ASSERT_EQ(address.substr(0, 11), "/relatorio/");
  EXPECT_EQ(ana.Get(address).status, 200);
  EXPECT_EQ(Visitor().Get(address).status, 401);
  Browser leo = Visitor();
  ASSERT_EQ(leo.LogIn("leo", kLeo).status, 200);
  EXPECT_EQ(leo.Get(address).status, 404);
  // Another login of the same user is another person at another machine.
  EXPECT_EQ(Ana().Get(address).status, 404);
  EXPECT_EQ(ana.Ask("POST", address, "{}").status, 405);
  const std::size_t name = address.rfind('/');
  const std::string secret = address.substr(11, name - 11);
  EXPECT_EQ(secret.size(), 32U);
  for (const std::string& other :
       {"/relatorio/" + std::string(32, '0') + address.substr(name),
        "/relatorio/" + secret.substr(1) + "/x.html", "/relatorio/" + secret + "0/x.html",
        std::string("/relatorio/"), "/relatorio//" + secret, std::string("/relatorio/../../users")}) {
    EXPECT_EQ(ana.Get(other).status, 404) << other;
  }
  // The file's name is the address's, and harms no header.
  EXPECT_EQ(ana.Get("/relatorio/" + secret + "/a%22%0d%0ab.html").Header("content-disposition").find("\r"),
            std::string::npos);
  const std::filesystem::path folder = options_.data / "sessoes";
  EXPECT_FALSE(std::filesystem::is_empty(folder));
  EXPECT_EQ(ana.Ask("POST", "/logout").status, 200);
  while (!door->Next().IsNull()) {
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(ServerReportTest, AnAttachmentIsKeptUnderItsNameAndNeverShown) {
  Serve();
  Browser ana = Ana();
  Door door(ana);
  door.Await();
  door.Do({{"do", "open"}, {"class", "TfmCC"}});
  door.Do({{"do", "click"}, {"control", "btnConsulta"}});
  door.Do({{"do", "choose"}, {"rows", Json::Array{0}}});
  door.Do({{"do", "attach"}});
  // "%PDF-1 %%EOF"
  const auto listed =
      Only(door.Do({{"do", "file"}, {"name", "Recibo ç (1).html"}, {"content", "JVBERi0xICUlRU9G"}}),
           "attachments");
  ASSERT_EQ(listed.size(), 1U);
  const auto given = Only(
      door.Do(
          {{"do", "download"}, {"record", listed[0]["record"]}, {"id", listed[0]["rows"].Items()[0]["id"]}}),
      "attachment");
  ASSERT_EQ(given.size(), 1U);
  EXPECT_TRUE(given[0]["file"].IsNull()) << "a path of the desk's machine";
  const std::string address = given[0]["address"].String();
  const Answer file = ana.Get(address);
  EXPECT_EQ(file.body, "%PDF-1 %%EOF");
  for (const auto& [header, value] : {std::pair{"content-type", "application/pdf"},
                                      {"content-security-policy", "default-src 'none'; sandbox"},
                                      {"x-content-type-options", "nosniff"},
                                      {"cache-control", "no-store"},
                                      {"content-disposition",
                                       "attachment; filename=\"Recibo_____1_.html.pdf\"; "
                                       "filename*=UTF-8''Recibo%20%C3%A7%20%281%29.html.pdf"}})
    EXPECT_EQ(file.Header(header), value);
  EXPECT_EQ(Visitor().Get(address).status, 401);
  EXPECT_EQ(Ana().Get(address).status, 404) << "another login";
  EXPECT_EQ(ana.Get("/relatorio/" + address.substr(7)).status, 404) << "it is no report";
}

}  // namespace
}  // namespace orv::test
