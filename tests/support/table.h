// Cases that differ in nothing but texts: a table in a file, a case a line, its columns parted by " | ".
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orv::test {

// "\n" stands for an end of line. Raises std::runtime_error where a line hasn't so many columns.
inline std::vector<std::vector<std::string>> Table(const std::filesystem::path& file, std::size_t columns) {
  std::ifstream in(file);
  std::vector<std::vector<std::string>> cases;
  for (std::string line; std::getline(in, line);) {
    for (std::size_t at = 0; (at = line.find("\\n", at)) != std::string::npos;) line.replace(at, 2, "\n");
    // An empty column at the end stands without its blank.
    if (line.ends_with(" |")) line += " ";
    line += " |";
    auto& row = cases.emplace_back();
    for (std::size_t at = 0, end; (end = line.find(" |", at)) != std::string::npos; at = end + 3)
      row.push_back(at < end ? line.substr(at, end - at) : "");
    if (row.size() != columns) throw std::runtime_error(file.string() + ": " + line);
  }
  if (cases.empty()) throw std::runtime_error(file.string() + " has no cases");
  return cases;
}

// Names with their values: "RgBusca=1 ; EdtConta=99".
inline std::vector<std::pair<std::string, std::string>> Named(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> fields;
  for (std::size_t at = 0, end; at < text.size(); at = end + 3) {
    end = std::min(text.find(" ; ", at), text.size());
    const std::size_t equals = text.find('=', at);
    fields.emplace_back(text.substr(at, equals - at), text.substr(equals + 1, end - equals - 1));
  }
  return fields;
}

}  // namespace orv::test
