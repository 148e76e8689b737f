// Changes of schema in bulk.
#pragma once

#include <string>
#include <vector>

namespace orv {

class Attachment;

// Runs the changes in the attachment's transaction, which the caller commits: a commit for each of some
// hundred changes would take seconds, and would leave half of them behind when one fails. What they make can
// be used after the commit. Raises DatabaseError.
void RunDdl(Attachment& db, const std::vector<std::string>& statements);

}  // namespace orv
