// What a person does, step after step, as the objects that go through the door.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/json.h"
#include "toolkit/text.h"

namespace orv::test {

// "open TfmCC; click BitBtn1; EdtConta=10250-1; row DBGrid1 1; cell Grid 0 Column value; yes".
inline std::vector<Json> Steps(std::string_view text) {
  std::vector<Json> all;
  for (const std::string& step : Split(text, "; ")) {
    const std::vector<std::string> word = Split(step, " ");
    const std::string& verb = word[0];
    const std::size_t equals = step.find('=');
    if (equals != std::string::npos) {
      all.push_back({{"do", "set"}, {"control", step.substr(0, equals)}, {"value", step.substr(equals + 1)}});
    } else if (word.size() == 1) {
      all.push_back({{"do", "answer"}, {"value", verb}});
    } else if (verb == "open") {
      all.push_back({{"do", verb}, {"class", word[1]}});
    } else if (verb == "choose") {
      all.push_back({{"do", verb}, {"key", word[1]}});
    } else if (verb == "page") {
      all.push_back({{"do", verb}, {"control", "PageControl1"}, {"page", word[1]}});
    } else {
      Json& one = all.emplace_back(Json{{"do", verb}, {"control", word[1]}});
      if (word.size() > 2) one.Set("row", std::stoi(word[2]));
      if (word.size() > 3) one.Set("column", word[3]);
      if (word.size() > 4) one.Set("value", word[4]);
    }
  }
  return all;
}

}  // namespace orv::test
