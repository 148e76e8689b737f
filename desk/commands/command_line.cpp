#include "desk/commands/command_line.h"

#include <charconv>
#include <memory>

#include "toolkit/text.h"

namespace orv {
namespace {

class Formatter : public CLI::Formatter {
 public:
  Formatter() {
    label("Usage", "Uso");
    label("OPTIONS", "OPÇÕES");
    label("Positionals", "Argumentos");
    label("SUBCOMMAND", "COMANDO");
    label("SUBCOMMANDS", "COMANDOS");
    label("TEXT", "TEXTO");
    label("INT", "NÚMERO");
    label("REQUIRED", "(obrigatório)");
    label("Excludes", "exclui");
    label("Needs", "exige");
  }

  std::string make_group(std::string group, bool positional,
                         std::vector<const CLI::Option*> options) const override {
    return CLI::Formatter::make_group(group == "Options" ? "Opções" : std::move(group), positional,
                                      std::move(options));
  }

  std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override {
    return ReplaceAll(CLI::Formatter::make_subcommands(app, mode), "\nSubcommands:\n", "\nComandos:\n");
  }
};

// What stands before the first of some separators, and what after it.
std::pair<std::string, std::string> Parted(const std::string& text, std::string_view separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string::npos) return {text, ""};
  return {text.substr(0, at), text.substr(at + separator.size())};
}

}  // namespace

void SpeakPortuguese(CLI::App& app) {
  app.formatter(std::make_shared<Formatter>());
  app.set_help_flag("-h,--help", "Mostra esta ajuda");
}

std::string PortugueseError(const CLI::App& app, const CLI::ParseError& error) {
  const std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    const std::string name = Parted(text, " is required").first;
    if (name != "A subcommand") return "Falta " + name + ".";
    const std::vector<std::string> unknown = app.remaining(true);
    return unknown.empty() ? "Falta o comando." : "O comando \"" + unknown.front() + "\" não existe.";
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
    return "Argumento desconhecido: " + Parted(text, "expected: ").second + ".";
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    const auto [one, other] = Parted(text, " excludes ");
    return one + " e " + other + " não vão juntos.";
  }
  if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr) {
    const auto [one, other] = Parted(text, " requires ");
    return one + " exige " + other + ".";
  }
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    const auto [name, value] = Parted(Parted(text, "Could not convert: ").second, " = ");
    return name + ": \"" + value + "\" não é um número.";
  }
  if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) return text;
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string name = Parted(text, ": ").first;
    return text.ends_with("missing") ? "Falta o valor de " + name + "." : "Valores demais: " + name + ".";
  }
  return "A linha de comando não foi entendida: " + text;
}

CLI::Validator Between(int minimum, int maximum) {
  const auto check = [minimum, maximum](std::string& text) -> std::string {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec == std::errc() && read.ptr == end && number >= minimum && number <= maximum) return "";
    return "\"" + text + "\" não é um número de " + std::to_string(minimum) + " a " +
           std::to_string(maximum) + ".";
  };
  return CLI::Validator(check, "de " + std::to_string(minimum) + " a " + std::to_string(maximum));
}

}  // namespace orv
