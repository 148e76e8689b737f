// A desk on the network in a temporary folder, whose time the test moves.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include "desk/server/server.h"
#include "host/services/users.h"
#include "tests/server/client.h"
#include "tests/support/desk_test.h"

namespace orv::test {

constexpr const char* kAna = "mesa clara 2026";
constexpr const char* kLeo = "mesa clara 2027";

class ServerTest : public DeskTest {
 protected:
  ServerTest() : log_((folder_.Path() / "server.log").string()) {
    static const Module module("orvCC");
    options_.database = database_.string();
    options_.data = folder_.Path() / "data";
    options_.web = folder_.Path() / "web";
    options_.clock = Clock(Date::ParseNeutral(kToday));
    options_.cost = PasswordCost::Least();
    options_.now = [this] { return Instant(std::chrono::seconds(now_)); };
    Write("web/index.html", "<!doctype html>");
    Write("web/app.js", "começo();");
    Write("web/app.js.gz", "comprimido");
    Write("web/segredo.pem", "chave");
    Write("fora.js", "fora");
    std::filesystem::create_symlink(folder_.Path() / "fora.js", folder_.Path() / "web" / "elo.js");
  }

  Server& Serve() {
    server_ = std::make_unique<Server>(options_, log_);
    return *server_;
  }
  Browser Visitor() { return Browser(server_->Port()); }
  Browser Ana() {
    Browser browser(server_->Port());
    EXPECT_EQ(browser.LogIn("ana", kAna).status, 200);
    return browser;
  }

  void Pass(std::chrono::seconds time) {
    now_ += time.count();
    server_->Sweep();
  }
  void Write(const std::string& file, const std::string& content) {
    const std::filesystem::path path = folder_.Path() / file;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
  }
  std::string LogText() {
    std::ifstream in(folder_.Path() / "server.log");
    return {std::istreambuf_iterator<char>(in), {}};
  }

  Log log_;
  ServerOptions options_;
  std::atomic<int64_t> now_{1000000};
  std::unique_ptr<Server> server_;
};

}  // namespace orv::test
