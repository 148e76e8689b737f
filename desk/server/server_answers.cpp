#include "desk/server/server_answers.h"

#include "toolkit/text.h"

namespace orv {

HttpResponse Told(int status, std::string_view text) {
  return {status, "application/json; charset=utf-8", Json{{"text", text}}.Text(), {}};
}

HttpResponse Given(const Json& json) { return {200, "application/json; charset=utf-8", json.Text(), {}}; }

HttpResponse TooBusy() { return Told(503, "A mesa está muito ocupada. Tente de novo em instantes."); }
HttpResponse NoDatabase() { return Told(503, "O banco de dados não responde. Tente de novo em instantes."); }
HttpResponse NotLoggedIn() { return Told(401, "Entre com seu usuário e sua senha."); }

std::optional<std::string> Member(const Json& json, std::string_view name, std::size_t most) {
  const Json& member = json[name];
  if (!member.IsString() || member.String().size() > most || !ValidUtf8(member.String())) return std::nullopt;
  return member.String();
}

}  // namespace orv
