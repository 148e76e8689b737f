// Fields of a screen filled in a person's place.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orv {

class Form;

// Names of controls, each with what a person would type into it or choose; "true" and "false" for a box, the
// page's name for pages.
using FieldTexts = std::vector<std::pair<std::string, std::string>>;

// Gives them their values in the order of the page, as a person does who leaves one for the other. What isn't
// there, can't be reached or refuses the value is left as it is; the names of these.
std::vector<std::string> Fill(Form& form, const FieldTexts& fields);

}  // namespace orv
