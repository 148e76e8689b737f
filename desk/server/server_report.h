// The file of a report, or of an attachment, as an answer to a browser.
#pragma once

#include <filesystem>
#include <string>

#include "desk/http/http_types.h"

namespace orv {

// A page is shown inside the desk's own page and nowhere else, and runs nothing; a PDF and a text are shown,
// what else there is is kept under `name`. 404 when the file is gone.
HttpResponse ReportResponse(const std::filesystem::path& file, const std::string& name);

// An attachment is kept under `name` and never shown in a page of the desk's own. 404 when the file is gone.
HttpResponse AttachmentResponse(const std::filesystem::path& file, const std::string& name);

}  // namespace orv
