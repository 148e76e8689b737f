// What screens ask of the user: each question is sent, and the session's thread waits for its answer.
#include <sodium.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "desk/random.h"
#include "desk/session/session.h"
#include "frame/screen.h"
#include "toolkit/lookup.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr auto kProgressEvery = std::chrono::milliseconds(100);

const char* KindName(MessageKind kind) {
  switch (kind) {
    case MessageKind::Information:
      return "information";
    case MessageKind::Warning:
      return "warning";
    case MessageKind::Question:
      return "question";
  }
  return "";
}

const char* AnswerName(Answer answer) {
  switch (answer) {
    case Answer::Ok:
      return "ok";
    case Answer::Yes:
      return "yes";
    case Answer::No:
      return "no";
    case Answer::Cancel:
      return "cancel";
  }
  return "";
}

// How a display writes a field's values.
const char* FieldKind(const Field* field) {
  if (field == nullptr) return "text";
  switch (field->Type()) {
    case FieldType::String:
      return "text";
    case FieldType::Integer:
      return "integer";
    case FieldType::Float:
    case FieldType::Currency:
      return "money";
    case FieldType::Date:
    case FieldType::DateTime:
      return "date";
  }
  return "text";
}

std::string Decoded(const std::string& base64) {
  std::string bytes(base64.size() / 4 * 3 + 3, '\0');
  std::size_t size = 0;
  const char* end = nullptr;
  const int failed =
      sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), base64.data(),
                        base64.size(), " \r\n", &size, &end, sodium_base64_VARIANT_ORIGINAL);
  // The decoder stops where the text is no longer base64, but takes bytes beyond ASCII for digits.
  const bool ascii =
      std::all_of(base64.begin(), base64.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (failed != 0 || !ascii || end != base64.data() + base64.size()) {
    throw UserError("O conteúdo do arquivo não está em base64.");
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

void Session::Wait(const char* what, const Json& question, const std::function<bool(const Json&)>& answer) {
  const Json waiting{{"on", "waiting"}, {"for", what}};
  // However the question ends, it is no longer open.
  const AtEnd closed([this] { question_ = Json(); });
  EndGathering();
  Collect(false);
  question_ = question;
  Send(question);
  Settle(waiting);
  for (;;) {
    attachment_->LetGo();
    const auto [in, refresh, recheck, cancels] = Take();
    RequireStanding();
    try {
      if (in["do"] == Json("read")) {
        Send(State(in));
      } else if (!cancels && answer(in)) {
        return;
      }
    } catch (const UserError& e) {
      // Told, and the question stays open.
      SendError(e.what());
    }
    Settle(waiting);
  }
}

Answer Session::Message(MessageKind kind, std::string_view title, std::string_view text, Answer initial) {
  const bool question = kind == MessageKind::Question;
  Answer given = Answer::Ok;
  Wait("answer",
       {{"on", "message"},
        {"kind", KindName(kind)},
        {"title", title},
        {"text", text},
        {"buttons", question ? Json::Array{"yes", "no"} : Json::Array{"ok"}},
        {"default", AnswerName(question ? initial : Answer::Ok)}},
       [&](const Json& in) {
         const std::string value = in["do"] == Json("answer") ? in["value"].String() : "";
         if (value.empty()) throw RequestError("A mensagem espera uma resposta.");
         if (question) {
           // Closing a question by its frame is a No.
           if (value == "yes") given = Answer::Yes;
           if (value == "no" || value == "cancel") given = Answer::No;
           if (given == Answer::Ok) throw RequestError("A pergunta espera \"yes\" ou \"no\".");
           return true;
         }
         if (value != "ok" && value != "cancel") throw RequestError("A mensagem espera \"ok\".");
         return true;
       });
  return given;
}

void Session::Note(NoteKind kind, std::string_view text) {
  const char* name = kind == NoteKind::Stored ? "stored" : kind == NoteKind::Changed ? "changed" : "warning";
  Send({{"on", "note"}, {"kind", name}, {"text", text}});
}

std::optional<std::string> Session::InputBox(std::string_view title, std::string_view prompt,
                                             std::string_view value) {
  std::optional<std::string> given;
  Wait("answer", {{"on", "input"}, {"title", title}, {"prompt", prompt}, {"value", value}},
       [&](const Json& in) {
         if (!(in["do"] == Json("answer"))) throw RequestError("A caixa espera uma resposta.");
         const std::string text = in["value"].String();
         if (text != "cancel") given = CleanUtf8(text);
         return true;
       });
  return given;
}

LookupChoice Session::Choose(TPesquisa& lookup) {
  LookupChoice choice;
  const auto describe = [&] {
    Json::Array columns;
    for (const auto& [column, title] : lookup.Settings().Colunas) {
      const char* kind = FieldKind(lookup.Rows()->FindField(column));
      columns.push_back(Json{{"field", column}, {"title", title}, {"kind", kind}});
    }
    return Json{{"on", "lookup"},
                {"control", lookup.Name()},
                {"columns", std::move(columns)},
                {"count", lookup.Rows()->DisplayCount()},
                {"multiple", lookup.Settings().MultiSelecao}};
  };
  Wait("lookup", describe(), [&](const Json& in) {
    const std::string verb = in["do"].IsNull() ? "" : in["do"].String();
    if (verb == "search") {
      lookup.Search(in["text"].String());
      question_ = describe();
      Send(question_);
      return false;
    }
    if (verb == "answer" && in["value"] == Json("cancel")) return true;
    if (verb != "choose") throw RequestError("A pesquisa espera uma escolha.");
    std::vector<int64_t> rows;
    if (in.Has("rows")) {
      for (const Json& row : in["rows"].Items()) rows.push_back(row.Integer());
    }
    Json::Array keys;
    if (in.Has("key")) keys.push_back(in["key"]);
    if (in.Has("keys")) keys = in["keys"].Items();
    for (const Json& key : keys) {
      rows.push_back(lookup.RowOfKey(key.String()));
      if (rows.back() < 0) throw RequestError("\"" + key.String() + "\" não está na pesquisa.");
    }
    const int64_t count = lookup.Rows()->DisplayCount();
    for (const int64_t row : rows) {
      if (row < 0 || row >= count) throw RequestError("A linha não está na pesquisa.");
    }
    if (rows.size() > 1 && !lookup.Settings().MultiSelecao) throw RequestError("Escolha uma só linha.");
    if (!rows.empty()) choice = std::move(rows);
    return true;
  });
  return choice;
}

std::optional<std::string> Session::OpenFile(std::string_view control, std::string_view filters) {
  // What came and wasn't chosen goes with the question.
  const AtEnd asked([this] {
    const std::lock_guard lock(mutex_);
    uploads_.clear();
  });
  std::optional<std::string> path;
  Wait("file", {{"on", "file"}, {"control", control}, {"filters", filters}}, [&](const Json& in) {
    if (in["do"] == Json("answer") && in["value"] == Json("cancel")) return true;
    if (!(in["do"] == Json("file"))) throw RequestError("A janela espera um arquivo.");
    path = files_.Keep(in["name"].String(), TakeUpload(in));
    return true;
  });
  return path;
}

Upload Session::TakeUpload(const Json& in) {
  if (in.Has("upload")) {
    const std::lock_guard lock(mutex_);
    auto given = uploads_.extract(in["upload"].String());
    if (given.empty()) throw RequestError("O arquivo enviado não está mais aqui. Envie-o de novo.");
    return std::move(given.mapped());
  }
  const std::string& content = in["content"].String();
  Upload upload = NewUpload(content.size() / 4 * 3);
  upload.Write(Decoded(content));
  return upload;
}

Upload Session::NewUpload(std::size_t size) const {
  if (size > options_.max_upload) {
    throw UserError("O arquivo é grande demais: o limite é de " + std::to_string(options_.max_upload >> 20) +
                    " MB.");
  }
  return {options_.scratch, options_.uploads.Take(options_.user, size)};
}

std::string Session::Give(Upload upload) {
  std::string name = RandomHex(128);
  const std::lock_guard lock(mutex_);
  uploads_.emplace(name, std::move(upload));
  return name;
}

bool Session::ConfirmPosting(std::string_view title, const std::vector<PostingLine>& lines) {
  Json::Array shown;
  for (const PostingLine& line : lines) {
    shown.push_back(Json{{"debit", line.debit},
                         {"debitDescription", line.debit_description},
                         {"credit", line.credit},
                         {"creditDescription", line.credit_description},
                         {"amount", line.amount},
                         {"note", line.note},
                         {"unknown", line.unknown_account}});
  }
  bool yes = false;
  Wait("answer", {{"on", "confirm"}, {"title", title}, {"lines", std::move(shown)}}, [&](const Json& in) {
    const std::string value = in["do"] == Json("answer") ? in["value"].String() : "";
    if (value != "yes" && value != "no" && value != "cancel")
      throw RequestError("A confirmação espera \"yes\" ou \"no\".");
    yes = value == "yes";
    return true;
  });
  return yes;
}

void Session::Detail(std::string_view title, DataSet& rows) {
  Json table = Rows(rows, 0, -1);
  Json::Array kinds;
  for (const Field* field : rows.Fields()) kinds.emplace_back(FieldKind(field));
  Wait("answer",
       {{"on", "detail"},
        {"title", title},
        {"columns", table["fields"]},
        {"kinds", std::move(kinds)},
        {"rows", table["rows"]}},
       [&](const Json& in) {
         if (!(in["do"] == Json("answer"))) throw RequestError("Feche primeiro a lista.");
         return true;
       });
}

void Session::Progress(int64_t value, int64_t of, std::string_view text) {
  {
    const std::lock_guard lock(mutex_);
    if (ending_) throw SessionEnd{};
    gathering_ = true;
    if (std::exchange(cancel_, false)) throw UserError("Operação cancelada.");
  }
  const auto now = std::chrono::steady_clock::now();
  if (now - last_progress_ < kProgressEvery && value != of) return;
  last_progress_ = now;
  Send({{"on", "progress"}, {"value", value}, {"of", of}, {"text", text}});
}

void Session::Busy(bool on) {
  busy_ = on;
  Send({{"on", "busy"}, {"value", on}});
}

void Session::RunModal(Form& form) {
  auto& screen = dynamic_cast<Screen&>(form);
  application_->HandleShown(screen);
  while (!screen.Closed()) {
    Collect(false);
    Settle({{"on", "idle"}});
    Handle(Take().in);
  }
  application_->HandleClosed(screen);
}

}  // namespace orv
