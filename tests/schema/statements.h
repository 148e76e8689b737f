// SQL as the screens to come write it, {X} standing for a table of the company and {} for its suffix.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv::test {

// Each runs on a company's tables; dates and codes are plausible ones.
const std::vector<std::string_view>& Statements();

// The statement for one company.
std::string ForCompany(std::string_view statement, std::string_view emp_pat);

}  // namespace orv::test
