// The companies, and what the host keeps for itself.
#include "host/schema/columns.h"

namespace orv::schema_parts {

using namespace columns;

std::vector<TableDef> HostTables() {
  return {
      // EMP_PAT is the suffix of the company's tables, with its underscore. EMP_SEP_DUPLI blank counts as
      // "/".
      {"EMPRESA",
       {Text("EMP_PAT", 4), Text("EMP_NOME", 40), Text("EMP_SEP_DUPLI", 1), Text("EMP_LOGO", 250),
        Text("EMP_CIDADE", 50)},
       {"EMP_PAT"},
       {}},

      // One row.
      {"VERSAO_ESQUEMA", {Integer("VERSAO")}, {}, {}},

      // One row: how often the sums that the database keeps were folded (balances.h).
      {"SALDO_DOBRA", {Integer("VEZES")}, {}, {}},

      // LOGIN_BUSCA is the login in lower case, so that no two users differ in case only.
      {"USUARIO",
       {Text("LOGIN", 40), Text("LOGIN_BUSCA", 40), Text("NOME", 80), Text("SENHA", 128),
        Flag("ADMINISTRADOR"), Flag("ATIVO", "'S'"), Moment("CRIADO_EM")},
       {"LOGIN_BUSCA"},
       {}},

      // TIPOS is the set of kinds granted, such as "AE".
      {"DIREITO",
       {Text("LOGIN_BUSCA", 40), Text("CLASSE", 60), Text("TIPOS", 10)},
       {"LOGIN_BUSCA", "CLASSE"},
       {}},

      // EMP_PAT "" holds for all companies that have no row of their own.
      {"PARAMETRO",
       {Text("EMP_PAT", 4, "''"), Text("GRUPO", 10), Integer("NUMERO"), Text("VALOR", 250)},
       {"EMP_PAT", "GRUPO", "NUMERO"},
       {}},

      // ID comes from the sequence SQ_AUDITORIA_ID: it tells the order of lines of one moment.
      {"AUDITORIA",
       {Integer("ID"), Moment("MOMENTO"), Text("LOGIN", 40), Text("EMP_PAT", 4), Text("AREA", 40),
        Text("TEXTO", 1000), SmallInt("OPERACAO"), Text("CHAVE", 60)},
       {"ID"},
       {{{"MOMENTO"}}, {{"CHAVE"}}}},

      // A period is closed up to and including ATE. TIPO "CT" names its account, "CX" has none.
      {"BLOQUEIO",
       {Text("EMP_PAT", 4), Text("TIPO", 2), Text("CONTA", 13, "''"), Day("ATE")},
       {"EMP_PAT", "TIPO", "CONTA"},
       {}},

      // Holidays beside the national ones; EMP_PAT "" for all companies.
      {"FERIADO", {Day("DATA"), Text("EMP_PAT", 4, "''"), Text("NOME", 60)}, {"DATA", "EMP_PAT"}, {}},

      // Logical names of the tables that all companies share, and the company whose table is the one in use,
      // "" for the first company.
      {"COMPARTILHADA", {Text("TABELA", 31), Text("EMP_PAT", 4, "''")}, {"TABELA"}, {}},

      // What a user set and finds again, such as a grid's column widths.
      {"PREFERENCIA",
       {Text("LOGIN_BUSCA", 40), Text("CHAVE", 120), Text("VALOR", 2000)},
       {"LOGIN_BUSCA", "CHAVE"},
       {}},
  };
}

}  // namespace orv::schema_parts
