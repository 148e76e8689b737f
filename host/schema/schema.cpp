#include "host/schema/schema.h"

#include <algorithm>
#include <utility>

#include "host/data/attachment.h"
#include "host/schema/balances.h"
#include "host/schema/ddl.h"
#include "host/schema/functions.h"
#include "host/schema/sharing.h"
#include "host/schema/tables.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {

namespace {

// What a desk reads before anybody has set it.
struct Parameter {
  const char* group;
  int number;
  const char* value;
};
constexpr Parameter kParameters[] = {
    {"FIN", 30, "N"}, {"FIN", 40, "N"},  {"FIN", 50, "N"},
    {"FIN", 80, "N"}, {"FIN", 100, "N"}, {"FIN", 110, "N"},
};

bool HasTable(Attachment& db, std::string_view name) {
  return !db.Scalar("SELECT 1 FROM RDB$RELATIONS WHERE RDB$RELATION_NAME = " + Quote(name)).IsNull();
}

void Append(std::vector<std::string>& ddl, const TableDef& table, std::string_view emp_pat) {
  ddl.push_back(CreateTableSql(table, emp_pat));
  for (std::string& sql : CreateIndexSql(table, emp_pat)) ddl.push_back(std::move(sql));
}

// Makes what isn't there yet of these tables, in every company that has its own: a table, or an index of it.
void MakeMissing(Attachment& db, const std::vector<std::string>& names) {
  std::vector<std::string> ddl;
  for (const std::string& name : names) {
    const TableDef& table = *FindTable(name);
    const auto same = [&](const TableDef& one) { return one.name == table.name; };
    const bool global = std::ranges::any_of(GlobalTables(), same);
    for (const std::string& company : global ? std::vector<std::string>{""} : CompanySuffixes(db)) {
      if (!HasTable(db, table.name + company)) {
        Append(ddl, table, company);
        continue;
      }
      const std::vector<std::string> indexes = CreateIndexSql(table, company);
      for (std::size_t i = 0; i < indexes.size(); ++i) {
        const std::string index = Quote(IndexName(table, company, i));
        if (db.Scalar("SELECT 1 FROM RDB$INDICES WHERE RDB$INDEX_NAME = " + index).IsNull())
          ddl.push_back(indexes[i]);
      }
    }
  }
  RunDdl(db, ddl);
}

// Runs a change whole or not at all, and commits it.
template <class Change>
void Whole(Attachment& db, Change change) {
  try {
    change();
    db.CommitRetaining();
  } catch (...) {
    db.Rollback();
    throw;
  }
}

void SetVersion(Attachment& db, int version) {
  db.Execute("UPDATE VERSAO_ESQUEMA SET VERSAO = " + std::to_string(version));
}

void BeginFolds(Attachment& db) {
  db.Execute(
      "INSERT INTO SALDO_DOBRA (VEZES) SELECT 0 FROM RDB$DATABASE WHERE NOT EXISTS (SELECT 1 FROM "
      "SALDO_DOBRA)");
}

void CheckCompany(const Company& company) {
  const std::string& pat = company.emp_pat;
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (pat.size() != 4 || pat[0] != '_' || !std::all_of(pat.begin() + 1, pat.end(), digit))
    throw UserError("O sufixo da empresa deve ser \"_\" e três dígitos, como \"_001\".");
  if (Trim(company.name).empty()) throw UserError("Informe o nome da empresa.");
  if (CharCount(company.name) > 40) throw UserError("O nome da empresa tem no máximo 40 caracteres.");
  if (!ValidUtf8(company.name) || !ValidUtf8(company.city) || CharCount(company.city) > 50)
    throw UserError("Nome ou cidade da empresa inválidos.");
}

void MakeCompany(Attachment& db, const Company& company) {
  std::vector<std::string> ddl;
  for (const TableDef& table : CompanyTables()) Append(ddl, table, company.emp_pat);
  for (const SequenceDef& s : Sequences())
    ddl.push_back("CREATE SEQUENCE " + SequenceName(s.table, s.column, company.emp_pat));
  for (std::string& sql : SumTriggersSql(company.emp_pat)) ddl.push_back(std::move(sql));
  RunDdl(db, ddl);
  db.Execute("INSERT INTO EMPRESA (EMP_PAT, EMP_NOME, EMP_SEP_DUPLI, EMP_LOGO, EMP_CIDADE) VALUES (" +
             Quote(company.emp_pat) + ", " + Quote(company.name) + ", '/', '', " + Quote(company.city) + ")");
}

int64_t Counter(Attachment& db, const std::string& sequence) {
  return db.Scalar("SELECT GEN_ID(" + sequence + ", 0) FROM RDB$DATABASE").AsInteger();
}

// The numbers of movements and of clearings, which two sequences gave, go on from one of them, above what
// both have given and what the tables hold.
void JoinNumbers(Attachment& db) {
  constexpr int kDigits = 6;
  const SequenceDef kind = SequenceOf("CONTACOR", "LANCAMENTO");
  const Sharing sharing(db);
  std::vector<std::string> ddl;
  for (const std::string& company : sharing.Companies()) {
    const NumberPlace place = sharing.NumbersOf(kind, company);
    int64_t top = TopNumber(db, place.columns, kDigits);
    for (const ColumnRef& column : kind.Columns()) {
      const std::string own = SequenceName(column.table, column.column, company);
      if (db.Scalar("SELECT 1 FROM RDB$GENERATORS WHERE RDB$GENERATOR_NAME = " + Quote(own)).IsNull())
        continue;
      top = std::max(top, Counter(db, own));
      if (column.table != kind.table || column.column != kind.column) ddl.push_back("DROP SEQUENCE " + own);
    }
    const std::string joint = SequenceName(kind.table, kind.column, place.suffix);
    if (Counter(db, joint) < top) db.Execute("SET GENERATOR " + joint + " TO " + std::to_string(top));
  }
  RunDdl(db, ddl);
}

// What is left out by "<>" isn't null: types of classes, situations of receivables.
void FillKinds(Attachment& db) {
  const Sharing sharing(db);
  std::vector<std::string> ddl;
  for (const std::string& company : sharing.Companies()) {
    db.Execute("UPDATE SUBGRUPO" + company + " SET TIPO = '' WHERE TIPO IS NULL");
    db.Execute("UPDATE RECEBER" + company + " SET SITUACAO = '' WHERE SITUACAO IS NULL");
    ddl.push_back("ALTER TABLE RECEBER" + company + " ALTER COLUMN SITUACAO SET DEFAULT ''");
  }
  RunDdl(db, ddl);
}

// The sums of movements and of lines of statements. Whoever was stopped halfway begins anew.
void KeepSums(Attachment& db) {
  MakeMissing(db, {"SALDO_DOBRA"});
  std::vector<std::string> ddl;
  for (const KeptSums& kept : AllKeptSums()) MakeMissing(db, {kept.sums});
  for (const std::string& company : CompanySuffixes(db))
    for (std::string& sql : SumTriggersSql(company)) ddl.push_back(std::move(sql));
  RunDdl(db, ddl);
  db.CommitRetaining();
  BeginFolds(db);
  db.CommitRetaining();
  MendSums(db);
}

// Brings a database from the version before `version` to it.
struct Step {
  int version;
  void (*run)(Attachment& db);
};

const Step kSteps[] = {
    {2, [](Attachment& db) { MakeMissing(db, {"PREFERENCIA"}); }},
    {3, [](Attachment& db) { MakeMissing(db, {"ARQUIVO_EXTRATO"}); }},
    {4, JoinNumbers},
    {5, FillKinds},
    {6, KeepSums},
    // Templates, rules and attachments; what is open, what is to be reconciled and the latest movements have
    // an index each.
    {7,
     [](Attachment& db) {
       MakeMissing(db, {"MODELO_LANC", "REGRA_EXTRATO", "ANEXO", "CONTACOR", "EXTRATO", "PAGTO", "RECEBER"});
     }},
};

}  // namespace

void CreateSchema(Attachment& db, const std::vector<Company>& companies) {
  if (HasTable(db, "VERSAO_ESQUEMA") || HasTable(db, "EMPRESA"))
    throw UserError("O banco de dados já contém um esquema.");
  for (const Company& company : companies) CheckCompany(company);
  Whole(db, [&] {
    std::vector<std::string> ddl = FunctionSql();
    for (const TableDef& table : GlobalTables()) Append(ddl, table, "");
    ddl.push_back("CREATE SEQUENCE " + SequenceName("AUDITORIA", "ID", ""));
    RunDdl(db, ddl);
  });
  Whole(db, [&] {
    for (const Parameter& p : kParameters)
      db.Execute("INSERT INTO PARAMETRO (EMP_PAT, GRUPO, NUMERO, VALOR) VALUES ('', " + Quote(p.group) +
                 ", " + std::to_string(p.number) + ", " + Quote(p.value) + ")");
    BeginFolds(db);
  });
  for (const Company& company : companies) AddCompany(db, company);
  // The version comes last: a database that was left halfway has none.
  Whole(db, [&] {
    db.Execute("INSERT INTO VERSAO_ESQUEMA (VERSAO) VALUES (" + std::to_string(kSchemaVersion) + ")");
  });
}

void AddCompany(Attachment& db, const Company& company) {
  CheckCompany(company);
  if (!db.Scalar("SELECT 1 FROM EMPRESA WHERE EMP_PAT = " + Quote(company.emp_pat)).IsNull())
    throw UserError("A empresa " + company.emp_pat + " já existe.");
  db.CommitRetaining();
  Whole(db, [&] { MakeCompany(db, company); });
}

int SchemaVersion(Attachment& db) {
  if (!HasTable(db, "VERSAO_ESQUEMA")) return 0;
  const Value version = db.Scalar("SELECT MAX(VERSAO) FROM VERSAO_ESQUEMA");
  return version.IsNull() ? 0 : static_cast<int>(version.AsInteger());
}

void UpgradeSchema(Attachment& db) {
  const int version = SchemaVersion(db);
  if (version == 0 || version > kSchemaVersion) RequireCurrentSchema(db);
  db.CommitRetaining();
  for (const Step& step : kSteps) {
    if (step.version <= version) continue;
    Whole(db, [&] {
      step.run(db);
      SetVersion(db, step.version);
    });
  }
  Whole(db, [&] { RunDdl(db, FunctionSql()); });
  if (version == kSchemaVersion) MendSums(db);
  FoldSums(db);
}

void RequireCurrentSchema(Attachment& db) {
  const int version = SchemaVersion(db);
  if (version == kSchemaVersion) return;
  if (version == 0) throw UserError("O banco de dados não contém o esquema desta mesa.");
  const std::string text = "O banco de dados é da versão " + std::to_string(version) +
                           ", e esta mesa precisa da versão " + std::to_string(kSchemaVersion) + ". ";
  throw UserError(text + (version < kSchemaVersion ? "Execute \"orvcc upgrade\"." : "Atualize o programa."));
}

std::vector<std::string> CompanySuffixes(Attachment& db) {
  std::vector<std::string> suffixes;
  for (const auto& row : db.Rows("SELECT EMP_PAT FROM EMPRESA ORDER BY EMP_PAT"))
    suffixes.push_back(row[0].AsString());
  return suffixes;
}

}  // namespace orv
