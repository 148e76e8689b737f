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
  db->ExecuteDdl("DROP TABLE PREFERENCIA");
  for (const std::string company : {"_001", "_002"}) {
    for (const char* table : {"ANEXO", "ARQUIVO_EXTRATO", "MODELO_LANC", "REGRA_EXTRATO"})
      db->ExecuteDdl(std::string("DROP TABLE ") + table + company);
    for (const std::string index : {"CONTACOR$_8", "EXTRATO$_5", "PAGTO$_5", "RECEBER$_7"})
      db->ExecuteDdl("DROP INDEX IX_" + ReplaceAll(index, "$", company));
  }
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
  for (const char* table :
       {"PREFERENCIA", "ARQUIVO_EXTRATO_001", "ANEXO_002", "MODELO_LANC_002", "REGRA_EXTRATO_002"})
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

}  // namespace
}  // namespace orv::test
