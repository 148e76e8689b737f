#include "host/data/fault.h"

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/text.h"

namespace orv::fb {
namespace {

using Kind = DatabaseError::Kind;

struct Meaning {
  ISC_STATUS code;
  Kind kind;
  const char* sentence;
};

constexpr const char* kConflict =
    "Outro usuário está alterando o mesmo registro. Aguarde um instante e tente novamente.";
constexpr const char* kLost =
    "A conexão com o banco de dados foi perdida. O que não estava gravado foi desfeito. Entre novamente.";
constexpr const char* kNoServer =
    "Não foi possível falar com o servidor do banco de dados. Verifique o endereço, a rede e se o servidor "
    "está "
    "no ar.";
constexpr const char* kLogin =
    "O servidor do banco de dados recusou o usuário ou a senha. Verifique ORVCC_DB_USER e ORVCC_DB_PASSWORD.";
constexpr const char* kTooLarge =
    "Um número é grande demais para o campo que o recebe. Verifique os valores.";
constexpr const char* kParent =
    "O registro aponta para outro que não existe, ou outro registro ainda depende dele. Nada foi gravado.";
constexpr const char* kDuplicate = "Já existe um registro com esta chave. Nada foi gravado.";
constexpr const char* kFull = "O disco está cheio. Libere espaço e tente novamente.";
constexpr const char* kReadOnly =
    "O banco de dados só permite leitura. Verifique as permissões do arquivo e da pasta.";
constexpr const char* kMayNotCreate =
    "O usuário do banco de dados não pode criar bancos neste servidor. No isql-fb, como SYSDBA: GRANT CREATE "
    "DATABASE TO USER nome; ou use um usuário que possa.";
constexpr const char* kTooMany =
    "A consulta reúne tabelas demais de uma só vez. Escolha menos empresas ou menos filtros.";
constexpr const char* kDamaged =
    "O banco de dados está danificado. Pare de usá-lo, guarde uma cópia e recupere o último backup.";
constexpr const char* kNotDatabase = "O arquivo não é um banco de dados.";
constexpr const char* kHeld =
    "O banco de dados está em uso por outro programa. Feche o outro programa ou use um servidor de banco de "
    "dados.";

// The surest meaning first: the engine gives several codes at once.
constexpr Meaning kMeanings[] = {
    {isc_cancelled, Kind::Cancelled, "A consulta foi cancelada."},
    {isc_too_many_contexts, Kind::Limit, kTooMany},
    {isc_dsql_too_many_values, Kind::Limit, "A lista tem mais de 1500 valores. Reduza a seleção."},
    {isc_err_stack_limit, Kind::Limit, "A consulta é complexa demais. Reduza a seleção."},
    {isc_already_opened, Kind::Connection, kHeld},
    {isc_instance_conflict, Kind::Connection, kHeld},
    {isc_update_conflict, Kind::Conflict, kConflict},
    {isc_obj_in_use, Kind::Conflict,
     "A tabela está em uso por outra sessão. Peça que as outras sessões sejam encerradas e tente novamente."},
    {isc_lock_conflict, Kind::Conflict, kConflict},
    {isc_lock_timeout, Kind::Conflict, kConflict},
    {isc_deadlock, Kind::Conflict, kConflict},
    {isc_string_truncation, Kind::Constraint, "Um texto é maior que o campo que o recebe. Encurte o texto."},
    {isc_exception_integer_divide_by_zero, Kind::Other, "Divisão por zero num cálculo do banco de dados."},
    {isc_exception_float_divide_by_zero, Kind::Other, "Divisão por zero num cálculo do banco de dados."},
    {isc_numeric_out_of_range, Kind::Constraint, kTooLarge},
    {isc_exception_integer_overflow, Kind::Constraint, kTooLarge},
    {isc_exception_float_overflow, Kind::Constraint, kTooLarge},
    {isc_arith_except, Kind::Constraint, kTooLarge},
    {isc_unique_key_violation, Kind::Constraint, kDuplicate},
    {isc_no_dup, Kind::Constraint, kDuplicate},
    {isc_foreign_key, Kind::Constraint, kParent},
    {isc_foreign_key_target_doesnt_exist, Kind::Constraint, kParent},
    {isc_foreign_key_references_present, Kind::Constraint, kParent},
    {isc_not_valid, Kind::Constraint,
     "Falta um campo obrigatório ou um valor não é aceito. Nada foi gravado."},
    {isc_check_constraint, Kind::Constraint, "Um valor não obedece a uma regra da tabela. Nada foi gravado."},
    {isc_malformed_string, Kind::Constraint, "O texto contém caracteres inválidos."},
    {isc_convert_error, Kind::Constraint, "Um texto não é o número ou a data que o campo espera."},
    {isc_read_only_database, Kind::ReadOnly, kReadOnly},
    {isc_read_only_trans, Kind::ReadOnly, kReadOnly},
    {isc_old_no_space, Kind::DiskFull, kFull},
    {isc_out_of_temp_space, Kind::DiskFull, kFull},
    {isc_bad_db_format, Kind::Connection, kNotDatabase},
    {isc_wrong_ods, Kind::Connection,
     "O banco de dados foi feito por outra versão do motor. Recupere-o de um backup com esta versão."},
    {isc_db_corrupt, Kind::Other, kDamaged},
    {isc_login, Kind::Connection, kLogin},
    {isc_login_error, Kind::Connection, kLogin},
    {isc_net_connect_err, Kind::Connection, kNoServer},
    {isc_net_lookup_err, Kind::Connection, kNoServer},
    {isc_net_init_error, Kind::Connection, kNoServer},
    {isc_connect_reject, Kind::Connection, kNoServer},
    {isc_net_read_err, Kind::Connection, kLost},
    {isc_net_write_err, Kind::Connection, kLost},
    {isc_lost_db_connection, Kind::Connection, kLost},
    {isc_conn_lost, Kind::Connection, kLost},
    {isc_network_error, Kind::Connection, kNoServer},
    {isc_att_shutdown, Kind::Connection, kLost},
    {isc_net_server_shutdown, Kind::Connection, kLost},
    {isc_shutdown, Kind::Connection, "O banco de dados está fechado para manutenção. Tente mais tarde."},
    {isc_max_att_exceeded, Kind::Limit, "O banco de dados atingiu o limite de conexões. Tente mais tarde."},
};

struct Vector {
  std::vector<ISC_STATUS> codes;
  std::string first_text;  // of the first error that has one
  int system_error = 0;
  bool Has(ISC_STATUS code) const {
    for (const ISC_STATUS one : codes)
      if (one == code) return true;
    return false;
  }
};

Vector Read(const Status& status) {
  Vector result;
  const intptr_t* at = status.getErrors();
  while (*at != isc_arg_end) {
    if (*at == isc_arg_gds && at[1] != 0) result.codes.push_back(static_cast<ISC_STATUS>(at[1]));
    if (*at == isc_arg_string && result.first_text.empty())
      result.first_text = reinterpret_cast<const char*>(at[1]);
    if (*at == isc_arg_unix) result.system_error = static_cast<int>(at[1]);
    at += *at == isc_arg_cstring ? 3 : 2;
  }
  return result;
}

// An error of the operating system on a file.
Meaning FileMeaning(int error, bool opening) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return {isc_io_error, Kind::DiskFull, kFull};
    case EACCES:
    case EPERM:
      if (opening)
        return {
            isc_io_error, Kind::Connection,
            "Falta permissão para abrir o banco de dados. Verifique as permissões do arquivo e da pasta."};
      [[fallthrough]];
    case EROFS:
      return {isc_io_error, Kind::ReadOnly, kReadOnly};
    case ENOENT:
    case ENOTDIR:
      return {isc_io_error, Kind::Connection, "O banco de dados não existe. Verifique o caminho do arquivo."};
    case EISDIR:
      return {isc_io_error, Kind::Connection, kNotDatabase};
    case EAGAIN:
      return {isc_io_error, Kind::Connection, kHeld};
    default:
      return {isc_io_error, opening ? Kind::Connection : Kind::Other,
              "O banco de dados não pôde ser lido ou gravado. Verifique o disco e o caminho do arquivo."};
  }
}

Meaning Find(const Vector& vector, bool opening) {
  for (const Meaning& meaning : kMeanings)
    if (vector.Has(meaning.code)) return meaning;
  if (opening && vector.Has(isc_no_priv) && vector.first_text == "CREATE")
    return {isc_no_priv, Kind::Connection, kMayNotCreate};
  if (opening && vector.Has(isc_no_priv)) return {isc_no_priv, Kind::ReadOnly, kReadOnly};
  // A file that ends within its first page.
  if (opening && vector.system_error == 0 && vector.Has(isc_io_error))
    return {isc_io_error, Kind::Connection, kNotDatabase};
  if (vector.system_error != 0 || vector.Has(isc_io_error)) return FileMeaning(vector.system_error, opening);
  if (vector.Has(isc_unavailable))
    return {isc_unavailable, Kind::Connection,
            "O banco de dados não está disponível. Verifique o endereço e tente novamente."};
  if (vector.Has(isc_no_priv))
    return {isc_no_priv, Kind::Other, "O usuário do banco de dados não tem permissão para esta operação."};
  if (vector.Has(isc_imp_exc))
    return {isc_imp_exc, Kind::Limit, "A operação excede um limite do banco de dados."};
  return {vector.codes.empty() ? 0 : vector.codes.front(), Kind::Other,
          "O banco de dados recusou a operação. Nada foi gravado. Avise o suporte."};
}

std::string EngineText(const Status& status) {
  std::string text(4096, '\0');
  Firebird::IUtil* const util = Master()->getUtilInterface();
  // The interface isn't const, though the call only reads.
  text.resize(
      util->formatStatus(text.data(), static_cast<unsigned>(text.size()), const_cast<Status*>(&status)));
  return CleanUtf8(text);
}

}  // namespace

DatabaseError Fault(const Status& status, std::string_view sql, std::string_view database) {
  const Vector vector = Read(status);
  const bool opening = !database.empty();
  const Meaning meaning = Find(vector, opening);
  std::string detail = EngineText(status);
  std::string sentence = meaning.sentence;
  if (opening) {
    sentence += " (" + std::string(database) + ")";
    detail += "\n" + std::string(database);
  }
  if (!sql.empty()) detail += "\n" + CleanUtf8(CutChars(sql, 4000));
  return DatabaseError(meaning.kind, static_cast<long>(meaning.code), sentence, std::move(detail));
}

bool IsConflict(const Status& status) {
  const Vector vector = Read(status);
  return !vector.Has(isc_obj_in_use) && (vector.Has(isc_update_conflict) || vector.Has(isc_lock_conflict) ||
                                         vector.Has(isc_lock_timeout) || vector.Has(isc_deadlock));
}

void Check(const Call& call, std::string_view sql, std::string_view database) {
  if (call.Failed()) throw Fault(call.Get(), sql, database);
}

}  // namespace orv::fb
