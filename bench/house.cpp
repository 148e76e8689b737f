#include "bench/house.h"

#include <cstdio>
#include <cstdlib>

#include "host/schema/demo.h"
#include "host/schema/schema.h"
#include "host/services/audit.h"
#include "host/services/users.h"

namespace orv::bench {
namespace {

const Date& Today() {
  static const Date today = Date::ParseNeutral(kToday);
  return today;
}

}  // namespace

std::filesystem::path House(int scale) {
  const char* given = std::getenv("ORVCC_BENCH_DIR");
  const std::filesystem::path folder = std::filesystem::absolute(given ? given : "build/bench-data");
  const std::string name = "house-" + std::to_string(kSchemaVersion) + "-" + std::to_string(scale) + ".fdb";
  const std::filesystem::path path = folder / name;
  if (std::filesystem::exists(path)) return path;
  std::fprintf(stderr, "making %s\n", path.c_str());
  std::filesystem::create_directories(folder);
  // A house that was only begun doesn't get the name of a whole one.
  const std::filesystem::path begun = folder / ("begun-" + name);
  std::filesystem::remove(begun);
  {
    const auto db = Attachment::Create(begun.string());
    MakeDemo(*db, {scale, Today(), 2});
    Audit audit(*db, Clock(Today()), "", "");
    Users(*db, audit, PasswordCost::Least()).Add({"ana", "Ana Prado", true, true}, "mesa clara 2026");
    db->CommitRetaining();
  }
  std::filesystem::rename(begun, path);
  return path;
}

Copy::Copy(const std::filesystem::path& house, const std::string& name) : path_(house.parent_path() / name) {
  std::filesystem::copy_file(house, path_, std::filesystem::copy_options::overwrite_existing);
}

Copy::~Copy() {
  std::error_code error;
  std::filesystem::remove(path_, error);
}

SessionOptions Ana(const std::filesystem::path& database) {
  SessionOptions options;
  options.database = database.string();
  options.user = "ana";
  options.company = "_001";
  options.clock = Clock(Today());
  options.folder = database.parent_path();
  return options;
}

}  // namespace orv::bench
