// Files of card acquirers that match what a made-up company sold, to try the reconciliation of cards out.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orv {

class Attachment;

struct DemoFile {
  std::string name, acquirer, kind;
  // Whose column map the file follows; empty for an acquirer's own columns.
  std::string bank;
  int lines = 0;
  // Lines whose transaction the company has, and those of them that are still to be reconciled.
  int known = 0, open = 0;
};

// Writes a file for each acquirer, kind and map into a folder: the latest transactions that the company's
// tables hold, some of them at another rate than was agreed, and some that nobody sold. The same tables give
// the same files. Raises UserError for a company without such sales and orders or maps, DatabaseError where a
// file exists or the folder can't be written; then there is no file.
std::vector<DemoFile> WriteDemoFiles(Attachment& db, const std::string& company,
                                     const std::filesystem::path& folder);

}  // namespace orv
