// What the desk offers beside the record that a screen has in front: who did what to it, and the files that
// are attached to it.
#include <fstream>

#include "desk/random.h"
#include "desk/session/session.h"
#include "frame/screen.h"
#include "host/services/anexo_conteudo.h"
#include "host/services/anexos.h"
#include "host/services/companies.h"
#include "toolkit/client_dataset.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kMostLines = "500";

struct HistorySet : TClientDataSet {
  using TClientDataSet::TClientDataSet;
  Field When{*this, "QUANDO", FieldType::String, 19};
  Field Who{*this, "QUEM", FieldType::String, 40};
  Field What{*this, "O_QUE", FieldType::String, 1000};
  Field Area{*this, "ÁREA", FieldType::String, 40};
};

std::string Condition(const std::vector<ChaveHistorico>& keys) {
  std::vector<std::string> any;
  for (const ChaveHistorico& key : keys) {
    any.push_back("(CHAVE = " + Quote(key.chave) + " AND AREA = " + Quote(key.area) +
                  (key.texto.empty() ? "" : " AND TEXTO CONTAINING " + Quote(key.texto)) + ")");
  }
  return "(" + Join(any, " OR ") + ")";
}

}  // namespace

bool Session::RecordAction(const std::string& verb, const Json& in) {
  if (verb == "history") {
    ShowHistory();
  } else if (verb == "attachments") {
    SendAttachments(AttachableRecord());
  } else if (verb == "attach") {
    Attach();
  } else if (verb == "detach") {
    Detach(in);
  } else if (verb == "download") {
    Download(in);
  } else {
    return false;
  }
  return true;
}

Json Session::RecordOf(Screen& screen, Shown& shown) {
  const auto record = screen.RegistroAtual();
  if (!record) return {};
  Json told{{"title", record->titulo}};
  if (record->movimento.empty()) return told;
  if (shown.movement != record->movimento) {
    shown.attachments = services_->Anexos().Quantos(record->movimento);
    shown.movement = record->movimento;
  }
  told.Set("attachments", shown.attachments);
  return told;
}

void Session::ShowHistory() {
  const auto record = TopScreen().RegistroAtual();
  if (!record) throw RequestError("Escolha primeiro um registro.");
  const std::string company =
      services_->Companies().IsShared(record->tabela) ? "" : "EMP_PAT = " + Quote(options_.company) + " AND ";
  HistorySet lines("Historico");
  lines.CreateDataSet();
  for (const auto& row : attachment_->Rows(std::string("SELECT FIRST ") + kMostLines +
                                           " MOMENTO, LOGIN, TEXTO, AREA FROM AUDITORIA WHERE " + company +
                                           Condition(record->chaves()) + " ORDER BY ID DESC")) {
    lines.Append();
    lines.When = row[0].AsDateTime().Brazil();
    lines.Who = row[1];
    lines.What = row[2];
    lines.Area = row[3];
    lines.Post();
  }
  if (lines.IsEmpty()) {
    Note(NoteKind::Changed, record->titulo + ": nada foi registrado na auditoria.");
    return;
  }
  lines.First();
  Detail("Histórico: " + record->titulo, lines);
}

Registro Session::AttachableRecord() const {
  auto record = TopScreen().RegistroAtual();
  if (!record || record->movimento.empty()) throw RequestError("Escolha primeiro um lançamento.");
  return std::move(*record);
}

Registro Session::ChangeableRecord() const {
  Registro record = AttachableRecord();
  if (!standing_.May(TopScreen().ClassName(), 'A'))
    throw UserError("Você não tem o direito de alterar nesta tela: os anexos só podem ser lidos.");
  return record;
}

void Session::SendAttachments(const Registro& record) {
  Json::Array rows;
  for (const Anexo& one : services_->Anexos().Lista(record.movimento)) {
    rows.push_back(Json{{"id", one.numero},
                        {"name", one.nome},
                        {"kind", one.tipo},
                        {"size", one.tamanho},
                        {"who", one.login},
                        {"when", one.momento}});
  }
  Send({{"on", "attachments"},
        {"screen", TopId()},
        {"title", record.titulo},
        {"record", record.movimento},
        {"mayChange", standing_.May(TopScreen().ClassName(), 'A')},
        {"rows", std::move(rows)}});
}

void Session::AttachmentsChanged(const Registro& record) {
  attachment_->CommitRetaining();
  for (auto& [screen, shown] : shown_) shown.movement.clear();
  SendAttachments(record);
}

void Session::Attach() {
  const Registro record = ChangeableRecord();
  const auto path = OpenFile("", "PDF e imagens|*.pdf;*.png;*.jpg;*.jpeg;*.webp");
  if (!path) return SendAttachments(record);
  const AtEnd taken([&] { TakenIn(*path); });
  const auto file = OpenPath(*path);
  if (!file) throw UserError("O arquivo não está mais aqui. Envie-o de novo.");
  services_->Anexos().Inclui(record.movimento, *path, file->Bytes(Anexos::kMaiorAnexo));
  AttachmentsChanged(record);
}

void Session::Detach(const Json& in) {
  const Registro record = ChangeableRecord();
  const Anexo one = AttachmentNamed(record, in);
  if (Message(MessageKind::Question, "Anexos", "Deseja excluir o anexo \"" + one.nome + "\"?", Answer::No) !=
      Answer::Yes)
    return SendAttachments(record);
  services_->Anexos().Exclui(record.movimento, one.numero);
  AttachmentsChanged(record);
}

Anexo Session::AttachmentNamed(const Registro& record, const Json& in) {
  // The list that the user saw may be of another record.
  if (!(in["record"] == Json(record.movimento))) throw RequestError("O registro à frente é outro.");
  for (Anexo& one : services_->Anexos().Lista(record.movimento)) {
    if (in["id"] == Json(one.numero)) return std::move(one);
  }
  throw UserError("O anexo já foi excluído.");
}

void Session::Download(const Json& in) {
  const Registro record = AttachableRecord();
  const Anexo one = AttachmentNamed(record, in);
  const auto content = services_->Anexos().Conteudo(record.movimento, one.numero);
  const AnexoTipo* type = FindAnexoTipo(one.tipo);
  if (!content || type == nullptr) throw UserError("O anexo já foi excluído.");
  const std::filesystem::path file =
      ScratchFolder("dos anexos") / ("anexo-" + RandomHex(64) + std::string(type->ending));
  std::ofstream out(file, std::ios::binary);
  std::error_code error;
  std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                               error);
  out << *content;
  out.close();
  if (!out) {
    std::filesystem::remove(file, error);
    throw UserError("O anexo não pôde ser preparado. Tente de novo.");
  }
  Send({{"on", "attachment"}, {"id", one.numero}, {"name", one.nome}, {"file", file.string()}});
}

}  // namespace orv
