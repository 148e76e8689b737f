// A favourite report, made without a window: what a scheduler runs.
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "desk/commands/commands.h"
#include "desk/folders.h"
#include "desk/session/door_client.h"
#include "frame/module.h"
#include "host/data/new_file.h"
#include "toolkit/text.h"

namespace orv::commands {
namespace {

constexpr const char* kFormats[] = {"pdf", "html", "txt", "csv", "xlsx"};

struct Refusal {
  ReportStatus status;
  std::string text;
};

const Json* Find(const std::vector<Json>& answer, const char* on) {
  const auto found = std::ranges::find_if(answer, [&](const Json& out) { return out["on"] == Json(on); });
  return found == answer.end() ? nullptr : &*found;
}

// What the desk and its screens said.
std::string Told(const std::vector<Json>& answer) {
  std::string told;
  for (const Json& out : answer) {
    if (out["on"] == Json("error") || out["on"] == Json("message") || out["on"] == Json("ended"))
      told += (told.empty() ? "" : " ") + (out["text"].IsString() ? out["text"].String() : "");
  }
  return told.empty() ? "A tela não imprimiu nada." : told;
}

SessionOptions OptionsOf(const Drive& door) {
  SessionOptions session;
  session.database = door.database;
  session.user = door.user;
  session.company = door.company;
  if (!door.today.empty()) session.clock = Clock(Date::ParseNeutral(door.today));
  session.folder = UserFolder(DataFolder(door.data), door.user, door.company);
  session.templates = TemplatesFolder(DataFolder(door.data));
  return session;
}

Json::Array Favourites(DoorClient& client) {
  const std::vector<Json> answer = client.Do({{"do", "favourites"}});
  const Json* list = Find(answer, "favourites");
  if (list == nullptr) throw Refusal{ReportStatus::Failed, Told(answer)};
  return (*list)["list"].Items();
}

// The file in which the report stands for the session's time.
std::filesystem::path Written(DoorClient& client, const FavouriteReport& options) {
  const auto list = Favourites(client);
  const auto found = std::ranges::find_if(
      list, [&](const Json& one) { return SameText(one["name"].String(), options.name); });
  if (found == list.end())
    throw Refusal{ReportStatus::Unknown, "Não há relatório favorito com o nome \"" + options.name +
                                             "\". Veja os que há com orvcc report --list."};
  if (!(*found)["mayOpen"].Bool())
    throw Refusal{ReportStatus::NoRight, "O usuário " + options.door.user + " não pode abrir a tela \"" +
                                             (*found)["screen"].String() + "\" do favorito \"" +
                                             options.name + "\"."};
  const std::vector<Json> answer = client.Do({{"do", "favourites"}, {"act", "run"}, {"name", options.name}});
  const Json* launched = Find(answer, "report");
  // Nobody is here to answer, and what a screen warns of isn't passed over.
  if (launched == nullptr || answer.back()["on"] != Json("idle"))
    throw Refusal{ReportStatus::Failed, Told(answer)};
  if ((*launched)["rows"].Integer() == 0)
    throw Refusal{ReportStatus::NoRows,
                  "O relatório \"" + options.name + "\" não tem linhas com estes filtros; nada foi gravado."};
  const std::vector<Json> file =
      client.Do({{"do", "report"}, {"id", (*launched)["id"]}, {"format", options.format}});
  const Json* made = Find(file, "report");
  if (made == nullptr) throw Refusal{ReportStatus::Failed, Told(file)};
  return (*made)["file"].String();
}

void Make(const FavouriteReport& options) {
  if (std::ranges::find(kFormats, options.format) == std::end(kFormats))
    throw Refusal{ReportStatus::Unknown,
                  "O formato \"" + options.format + "\" não existe. Use pdf, html, txt, csv ou xlsx."};
  std::optional<NewFile> target;
  try {
    target.emplace(options.out);
  } catch (const DatabaseError& e) {
    throw Refusal{ReportStatus::NoFile, e.what()};
  }
  Log log;
  DoorClient client(OptionsOf(options.door), log);
  const std::filesystem::path made = Written(client, options);
  std::error_code error;
  std::filesystem::copy_file(made, target->Path(), error);
  std::error_code ignored;
  std::filesystem::remove(made, ignored);
  if (error)
    throw Refusal{ReportStatus::NoFile,
                  "O arquivo \"" + options.out + "\" não pôde ser gravado: " + error.message() + "."};
  try {
    target->Keep();
  } catch (const DatabaseError& e) {
    throw Refusal{ReportStatus::NoFile, e.what()};
  }
  std::cout << "Relatório gravado em " << options.out << ".\n";
}

void List(const FavouriteReport& options) {
  Log log;
  DoorClient client(OptionsOf(options.door), log);
  for (const Json& one : Favourites(client)) {
    std::cout << one["name"].String() << "\t" << one["screen"].String() << "\t" << one["title"].String()
              << "\t" << (one["shared"].Bool() ? "de todos" : "próprio")
              << (one["mayOpen"].Bool() ? "" : "\tsem permissão") << "\n";
  }
}

}  // namespace

int RunReport(const FavouriteReport& options) {
  const Module module("orvCC");
  try {
    if (options.list) {
      List(options);
    } else {
      Make(options);
    }
    return 0;
  } catch (const Refusal& refusal) {
    std::cerr << "orvcc: " << refusal.text << "\n";
    return static_cast<int>(refusal.status);
  }
}

}  // namespace orv::commands
