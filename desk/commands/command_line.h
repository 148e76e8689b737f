// The command line in Portuguese: help texts, and what is wrong with what was typed.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace orv {

// Gives a command the formatter of the help texts. Commands made below it inherit it.
void SpeakPortuguese(CLI::App& app);

// A sentence for an error that `app` found in the command line.
std::string PortugueseError(const CLI::App& app, const CLI::ParseError& error);

// A number between bounds, with a refusal in Portuguese.
CLI::Validator Between(int minimum, int maximum);

}  // namespace orv
