// Finds what a house's data say against themselves.
#pragma once

#include <string>
#include <vector>

namespace orv {

class Attachment;

// One line in Portuguese for each contradiction, company by company; empty where there is none. Of each kind
// at most twenty lines stand for a company, and one more that says so. Changes nothing.
std::vector<std::string> CheckData(Attachment& db);

}  // namespace orv
