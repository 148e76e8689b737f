#include "host/schema/schema.h"

#include <gtest/gtest.h>

#include "host/schema/tables.h"
#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

bool Exists(Attachment& db, const std::string& table) {
  return !db.Scalar("SELECT 1 FROM RDB$RELATIONS WHERE RDB$RELATION_NAME = " + Quote(table)).IsNull();
}

TEST(Schema, IsMadeOnceAndGrowsByCompanies) {
  TempDatabase db;
  EXPECT_EQ(SchemaVersion(*db), 0);
  EXPECT_EQ(ErrorOf([&] { RequireCurrentSchema(*db); }), "O banco de dados não contém o esquema desta mesa.");
  EXPECT_EQ(ErrorOf([&] { UpgradeSchema(*db); }), "O banco de dados não contém o esquema desta mesa.");

  CreateSchema(*db, {{"_001", "Casa d'Água Ltda", "Lajeado"}});
  RequireCurrentSchema(*db);
  EXPECT_EQ(ErrorOf([&] { CreateSchema(*db, {}); }), "O banco de dados já contém um esquema.");
  EXPECT_EQ(db->Scalar("SELECT EMP_NOME FROM EMPRESA WHERE EMP_PAT = '_001'").Text(), "Casa d'Água Ltda");
  EXPECT_EQ(
      db->Scalar("SELECT VALOR FROM PARAMETRO WHERE EMP_PAT = '' AND GRUPO = 'FIN' AND NUMERO = 110").Text(),
      "N");

  const std::string form = "O sufixo da empresa deve ser \"_\" e três dígitos, como \"_001\".";
  const std::string length = "O nome da empresa tem no máximo 40 caracteres.";
  const struct {
    Company company;
    std::string message;
  } refusals[] = {
      {{"", "X", ""}, form},
      {{"001", "X", ""}, form},
      {{"_01", "X", ""}, form},
      {{"_0A1", "X", ""}, form},
      {{"_001;", "X", ""}, form},
      {{"_003", "  ", ""}, "Informe o nome da empresa."},
      {{"_003", std::string(41, 'x'), ""}, length},
      {{"_001", "X", ""}, "A empresa _001 já existe."},
  };
  for (const auto& [company, message] : refusals)
    EXPECT_EQ(ErrorOf([&] { AddCompany(*db, company); }), message) << company.emp_pat;

  AddCompany(*db, {"_002", "Segunda", ""});
  EXPECT_EQ(CompanySuffixes(*db), (std::vector<std::string>{"_001", "_002"}));
  for (const TableDef& table : CompanyTables())
    EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM " + table.name + "_002").AsInteger(), 0) << table.name;
  for (const SequenceDef& s : Sequences())
    EXPECT_EQ(
        db->Scalar("SELECT NEXT VALUE FOR " + SequenceName(s.table, s.column, "_002") + " FROM RDB$DATABASE")
            .AsInteger(),
        1);
}

// A company whose tables can't all be made leaves none behind.
TEST(Schema, CompanyIsAddedWholeOrNotAtAll) {
  TempDatabase db;
  CreateSchema(*db, {{"_001", "Primeira", ""}});
  db->ExecuteDdl("CREATE TABLE TECEL_ITEN_002 (X INTEGER)");
  EXPECT_FALSE(ErrorOf([&] { AddCompany(*db, {"_002", "Segunda", ""}); }).empty());
  EXPECT_EQ(CompanySuffixes(*db), std::vector<std::string>{"_001"});
  EXPECT_FALSE(Exists(*db, "CONTACOR_002"));
  db->ExecuteDdl("DROP TABLE TECEL_ITEN_002");
  AddCompany(*db, {"_002", "Segunda", ""});
  EXPECT_TRUE(Exists(*db, "CONTACOR_002"));
}

TEST(Schema, OlderIsUpgradedAndNewerRefused) {
  TempDatabase db;
  CreateSchema(*db, {{"_001", "Primeira", ""}});
  // As the first version was.
  AddCompany(*db, {"_002", "Segunda", ""});
  for (const char* table :
       {"PREFERENCIA", "ARQUIVO_EXTRATO_001", "ARQUIVO_EXTRATO_002", "ANEXO_001", "ANEXO_002"})
    db->ExecuteDdl("DROP TABLE " + std::string(table));
  // Movements and clearings had a counter each; a lone number that was typed by hand takes nothing away.
  for (const char* company : {"_001", "_002"}) {
    db->ExecuteDdl("CREATE SEQUENCE SQ_CONTACOR_LANC_CON" + std::string(company));
    db->Execute("SET GENERATOR SQ_CONTACOR_LANC_CON" + std::string(company) + " TO 40");
  }
  db->Execute("SET GENERATOR SQ_CONTACOR_LANCAMENTO_001 TO 70");
  db->Execute("INSERT INTO CHEQUE_PRE_002 (CHAVE) VALUES ('000055')");
  db->Execute("INSERT INTO CONTACOR_002 (LANCAMENTO) VALUES ('999999')");
  // Kinds that the reports leave out by "<>" could be null.
  db->ExecuteDdl("ALTER TABLE RECEBER_002 ALTER COLUMN SITUACAO DROP DEFAULT");
  db->Execute("INSERT INTO RECEBER_002 (NUMERO) VALUES ('ANTIGO')");
  db->Execute("INSERT INTO SUBGRUPO_002 (CODIGO, TIPO) VALUES ('1', NULL)");
  db->Execute("UPDATE VERSAO_ESQUEMA SET VERSAO = 1");
  db->CommitRetaining();
  const std::string needs = ", e esta mesa precisa da versão " + std::to_string(kSchemaVersion) + ". ";
  EXPECT_EQ(ErrorOf([&] { RequireCurrentSchema(*db); }),
            "O banco de dados é da versão 1" + needs + "Execute \"orvcc upgrade\".");
  UpgradeSchema(*db);
  RequireCurrentSchema(*db);
  for (const char* table : {"PREFERENCIA", "ARQUIVO_EXTRATO_001", "ANEXO_002"})
    EXPECT_TRUE(Exists(*db, table)) << table;
  EXPECT_EQ(db->Scalar("SELECT GEN_ID(SQ_CONTACOR_LANCAMENTO_001, 0) FROM RDB$DATABASE").AsInteger(), 70);
  EXPECT_EQ(db->Scalar("SELECT GEN_ID(SQ_CONTACOR_LANCAMENTO_002, 0) FROM RDB$DATABASE").AsInteger(), 55);
  EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM RDB$GENERATORS WHERE RDB$GENERATOR_NAME CONTAINING 'LANC_CON'")
                .AsInteger(),
            0);
  db->Execute("INSERT INTO RECEBER_002 (NUMERO) VALUES ('NOVO')");
  EXPECT_EQ(RowsText(*db,
                     "SELECT COUNT(*) FROM RECEBER_002 WHERE SITUACAO <> 'P' UNION ALL SELECT COUNT(*) "
                     "FROM SUBGRUPO_002 WHERE TIPO <> 'Loja'"),
            "2;1");
  UpgradeSchema(*db);
  EXPECT_EQ(SchemaVersion(*db), kSchemaVersion);

  const std::string later = std::to_string(kSchemaVersion + 1);
  db->Execute("UPDATE VERSAO_ESQUEMA SET VERSAO = " + later);
  db->CommitRetaining();
  const std::string newer = "O banco de dados é da versão " + later + needs + "Atualize o programa.";
  EXPECT_EQ(ErrorOf([&] { RequireCurrentSchema(*db); }), newer);
  EXPECT_EQ(ErrorOf([&] { UpgradeSchema(*db); }), newer);
}

TEST(Schema, HostTablesKeepTheirPromises) {
  TempDatabase db;
  CreateSchema(*db, {{"_001", "Primeira", ""}});
  const std::string user =
      "INSERT INTO USUARIO (LOGIN, LOGIN_BUSCA, NOME, SENHA) VALUES ('Ana', 'ana', 'Ana', 'x')";
  db->Execute(user);
  EXPECT_FALSE(ErrorOf([&] { db->Execute(user); }).empty());
  db->Execute(
      "INSERT INTO AUDITORIA (ID, LOGIN, EMP_PAT, AREA, TEXTO, OPERACAO, CHAVE) VALUES (NEXT VALUE FOR "
      "SQ_AUDITORIA_ID, 'Ana', '_001', 'A', 'T', 3, 'K')");
  EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM AUDITORIA WHERE ID = 1 AND MOMENTO IS NOT NULL").AsInteger(), 1);
  // A title written with its bare numbers has an open amount; a cheque handed over is pending.
  db->Execute("INSERT INTO RECEBER_001 (NUMERO, VALOR2) VALUES ('1/1', 10.10)");
  EXPECT_EQ(db->Scalar("SELECT VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO FROM RECEBER_001").Neutral(),
            "10.1000");
  db->Execute("INSERT INTO CHEQUE_PRE_001 (CHAVE) VALUES ('000001')");
  EXPECT_EQ(db->Scalar("SELECT STATUS FROM CHEQUE_PRE_001").Text(), "P");
}

TEST(Schema, Functions) {
  TempDatabase db;
  CreateSchema(*db, {});
  const struct {
    const char* call;
    const char* result;
  } cases[] = {
      {"UDF_NVL(NULL)", "0"},
      {"UDF_NVL(5.25)", "5.25"},
      {"UDF_MONTH('12/25/2026')", "12"},
      {"UDF_YEAR('12/25/2026')", "2026"},
      {"UDF_DAY('12/25/2026')", "25"},
      {"UDF_MONTH(NULL)", ""},
      {"UDF_DAYSBETWEEN('03/01/2028', '02/28/2028')", "2"},
      {"UDF_DAYSBETWEEN('02/28/2028', '03/01/2028')", "-2"},
      {"UDF_COPY('030060090', 1, 3)", "030"},
      {"UDF_COPY('030060090', 4, 3)", "060"},
      {"UDF_COPY('ab', 1, 3)", "ab"},
      {"UDF_COPY('ab', 3, 3)", ""},
      {"UDF_COPY('ab', 0, -1)", ""},
      {"UDF_COPY(NULL, 1, 3)", ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(db->Scalar(std::string("SELECT ") + c.call + " FROM RDB$DATABASE").Neutral(), c.result)
        << c.call;
}

}  // namespace
}  // namespace orv::test
