// The page's files, held in memory: nothing that a request says is ever taken as a path.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "desk/http/http_types.h"

namespace orv {

class HttpFiles {
 public:
  // Reads the files of known kinds below a folder, links left out. Beside a file may stand the same one
  // compressed, as "app.js.gz". Raises UserError when there is no "index.html", or more than a page can be.
  explicit HttpFiles(const std::filesystem::path& folder);

  // "/" is "/index.html". Status 404 for anything that isn't exactly one of the files.
  HttpResponse Get(const HttpRequest& request) const;

 private:
  struct File {
    std::string type, body, compressed, tag;
  };
  std::map<std::string, File, std::less<>> files_;
};

}  // namespace orv
