#include "host/schema/ddl.h"

#include "host/data/attachment.h"
#include "toolkit/database.h"

namespace orv {

namespace {

// The engine takes a statement of 64 KiB.
constexpr std::size_t kLongest = 48000;

}  // namespace

void RunDdl(Attachment& db, const std::vector<std::string>& statements) {
  std::string block;
  const auto run = [&] {
    if (!block.empty()) db.Execute("EXECUTE BLOCK AS BEGIN\n" + block + "END");
    block.clear();
  };
  for (const std::string& statement : statements) {
    if (block.size() + statement.size() > kLongest) run();
    block += "EXECUTE STATEMENT " + Quote(statement) + ";\n";
  }
  run();
}

}  // namespace orv
