// An action that fails leaves nothing behind, and texts of any kind do no harm.
#include <fstream>
#include <sstream>

#include "tests/ledger/cc_desk.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

TEST_F(CcTest, AFailedActionLeavesNothing) {
  // The apportionment by class is written before the movement.
  Fin({80});
  // The audit line is the last thing written: by then all else is there.
  Ddl("CREATE EXCEPTION E_PARADA 'stop here'");
  Ddl("CREATE TRIGGER T_PARADA FOR AUDITORIA BEFORE INSERT AS DECLARE N INTEGER; BEGIN IF (NEW.CHAVE = "
      "'ZERO') THEN N = 1 / (CHAR_LENGTH(NEW.CHAVE) - 4); IF (NEW.CHAVE = 'PARADA') THEN EXCEPTION E_PARADA; "
      "END");
  Ddl("ALTER TABLE CONTACOR_001 ADD CONSTRAINT C_REGRA CHECK (DOCTO <> 'REGRA')");
  Desk desk(database_, At{"TfmCC"});

  struct Case {
    const char* docto;
    const char* message;
  };
  const Case cases[] = {
      {"ZERO", "error: Divisão por zero num cálculo do banco de dados."},
      {"PARADA", "error: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte."},
      {"REGRA", "error: Um valor não obedece a uma regra da tabela. Nada foi gravado."},
  };
  const std::string numero = New(desk, {{"EdtTipo", "3103"}, {"EdtHis", "012"}});
  const auto left = [&] {
    return Movement(numero) + Audit() + Count("CENTRO_RATEIO_001", "NUMERO = '" + numero + "'");
  };
  for (const Case& c : cases) {
    desk.Set("EdtNumDoc", c.docto);
    EXPECT_EQ(Confirm(desk), c.message);
    EXPECT_EQ(desk.End(), "idle");
    EXPECT_EQ(left(), "0") << c.docto;
    // All that was entered is still there.
    EXPECT_TRUE(desk.Visible("Panel5")) << c.docto;
    EXPECT_EQ(desk.Text("EdtLancto"), numero);
    EXPECT_EQ(desk.Text("EdtNumDoc"), c.docto);
  }
  desk.Set("EdtNumDoc", "BOM");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Count("CENTRO_RATEIO_001", "NUMERO = '" + numero + "'"), "3");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'BOM'"), "1");

  // The log tells whoever looks after the desk what the user needn't read.
  std::stringstream log;
  log << std::ifstream(database_.parent_path() / "desk.log").rdbuf();
  EXPECT_NE(log.str().find("E_PARADA"), std::string::npos);
}

// With entries checked, those are committed before the movement: whatever row fails, they are there whole or
// not at all, the movement isn't, and the second try stores each once.
TEST_F(CcTest, OnlyTheEntriesOutliveAFailure) {
  Fin({30, 50});
  Stoppable("CONTACOR_001 CONTABIL_001 CENTRO_RATEIO_001 AUDITORIA");
  Desk desk(database_, At{"TfmCC"});
  const char* const entries = "1.1.02.001|4.1.03.001|65.0000;1.1.02.001|4.1.03.002|35.0000";
  int failures = 0, outlived = 0;
  for (bool whole = false; !whole && failures < 20;) {
    const std::string numero = New(desk, {{"EdtTipo", "3103"}, {"EdtHis", "012"}});
    StopAt(failures);
    const std::string said = Confirm(desk);
    whole = said.empty();
    if (!whole) {
      ++failures;
      EXPECT_EQ(Movement(numero), "") << failures;
      const std::string left = Entries(numero);
      EXPECT_EQ(said, left.empty()
                          ? "error: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte."
                          : "error: O banco de dados recusou a operação. Avise o suporte. As partidas "
                            "contábeis ficaram gravadas, o lançamento não: confirme-o de novo.");
      EXPECT_TRUE(left.empty() || left == entries) << left;
      EXPECT_EQ(Split(Shares(numero), ";").size(), left.empty() ? 1U : 3U) << Shares(numero);
      outlived += left == entries;
      EXPECT_TRUE(desk.Visible("Panel5"));
      StopAt(-1);
      EXPECT_EQ(Confirm(desk), "");
    }
    EXPECT_NE(Movement(numero), "");
    EXPECT_EQ(Entries(numero), entries);
    EXPECT_EQ(Split(Shares(numero), ";").size(), 3U);
  }
  EXPECT_GT(failures, outlived);
  EXPECT_GT(outlived, 0);
  EXPECT_LT(failures, 20);
}

TEST_F(CcTest, AMissingTableHurtsOnlyWhatNeedsIt) {
  Desk desk(database_, At{"TfmCC"});
  desk.Click("BitBtn1");
  desk.Fill({{"EdtConta", kConta}, {"EdtNumDoc", "SEM TABELA"}, {"EdtTipo", "3104"}, {"EdtValor", "1,00"}});
  Ddl("DROP TABLE HIST_CONTA_001");
  desk.Set("EdtHis", "019");
  EXPECT_EQ(desk.Messages(),
            "error: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte.");
  EXPECT_EQ(desk.Text("EdtHis"), "019");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'SEM TABELA'"), "1");
}

// Two amounts that stand in the database and whose sum no column of it holds: every screen adds them up, and
// names them.
TEST_F(CcTest, AmountsBeyondAllMeasureHinderNoScreen) {
  Put(Movimento{.lancamento = "T00300", .docto = "ENORME"});
  Put(Movimento{.lancamento = "T00301", .docto = "ENORME"});
  Run("UPDATE CONTACOR_001 SET VALOR = 900000000000000, OPERACAO = '+', PENDENTE = 'N' WHERE DOCTO = "
      "'ENORME'");
  const std::string told =
      "note: As somas contêm valores grandes demais. Corrija ou exclua os lançamentos: T00300 "
      "(900.000.000.000.000,00); T00301 (900.000.000.000.000,00).";
  Desk desk(database_, At{"TfmCC"});
  Load(desk, "T00300");
  EXPECT_EQ(desk.Messages() + desk.End(), "idle");
  desk.Click("SpeedButton1");
  Consult(desk, {{"RgBusca", "Todos"}, {"EdtDocto", "ENORME"}});
  EXPECT_EQ(desk.Messages(), told);
  desk.Page("TabSheet2");
  EXPECT_EQ(desk.Press("BitBtn8"), told);
  EXPECT_NE(desk.Read("TbContas", {"Contas", "Saldo"}).find(std::string(kConta) + "|18000"),
            std::string::npos);
  for (const auto& [screen, button] : {std::pair{"TfmRelFluxo", "BitBtn29"},
                                       {"TfmRelResultMes", "BitBtn29"},
                                       {"TfmRelFluxoBanco", "btnConfirma"},
                                       {"TfmRelCC", "BitBtn29"},
                                       {"TFmConcilia", ""}}) {
    desk.Close();
    desk.Open(screen);
    if (screen == std::string("TfmRelCC")) desk.Set("RelConta", kConta);
    *button == 0 ? desk.Set("EdtConta", kConta) : desk.Click(button);
    EXPECT_EQ(desk.Messages(), told) << screen;
    if (screen != std::string("TfmRelFluxo")) continue;
    desk.DoubleClick("OrvDBGrid1", 0, "Conta");
    EXPECT_EQ(desk.End(), "waiting answer");
    desk.Answer("ok");
  }
  desk.Close();
  desk.Open("TfmCC");
  New(desk, {{"EdtNumDoc", "MENOR"}});
  for (const char* amount :
       {"99999999999999999999,00", "900000000000000,00", "12a3", "1e300", "-", "1,2,3", "R$ 5", "NaN"}) {
    desk.Set("EdtValor", amount);
    EXPECT_NE(desk.Messages(), "") << amount;
    EXPECT_EQ(desk.Text("EdtValor"), "100,00");
  }
  EXPECT_EQ(Confirm(desk), "");
}

const std::vector<std::string>& HostileTexts() {
  static const std::vector<std::string> texts = {
      "'",
      "''",
      "D'ÁGUA \"X\"",
      "{}",
      "'{}'",
      "{CONTACOR}",
      "'{CONTACOR}'",
      "%",
      "100%_[a]\\",
      "\xF0\x9F\x92\xB0\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7",
      std::string(10000, 'x'),
      std::string(5000, '\'') + "{}",
      "'; DROP TABLE CONTACOR_001; --",
      "' OR '1'='1",
      "x' || (SELECT 1 FROM RDB$DATABASE) || '",
      "/* ; */ -- ?",
      "a\nb\tc",
      "a;b,c",
      "?",
      ":p",
      "..\\../..",
      "<script>alert(1)</script>",
      std::string("a\0b", 3),
      "\xFF\xFE\x80",
      "\xED\xA0\x80",
      "  espa\xC3\xA7os  "};
  return texts;
}

// As the desk keeps a text in a field of so many characters.
std::string Kept(const std::string& text, std::size_t length) {
  return std::string(CutChars(CleanUtf8(text), length));
}

TEST_F(CcTest, HostileTextsAreStoredAsTheyAre) {
  Fin({30, 50});
  Put(RegraRateio{.codigo = "2103"});
  Desk desk(database_, At{"TfmCC"});
  const std::string tables = Sql("SELECT COUNT(*) FROM RDB$RELATIONS");
  for (const std::string& text : HostileTexts()) {
    SCOPED_TRACE(text.substr(0, 40));
    const std::string numero = New(desk, {{"EdtTipo", "2103"}, {"EdtNumDoc", text}, {"EdtHis", text}});
    desk.Set("EdtObs", text);
    EXPECT_EQ(Confirm(desk), "");
    if (desk.End() != "idle") desk.Answer("ok");
    std::vector<std::vector<Value>> rows = Db().Rows(
        "SELECT DOCTO, HISTORICO, OBSERVACAO FROM CONTACOR_001 WHERE LANCAMENTO = " + Quote(numero));
    Db().CommitRetaining();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][0].AsString(), Kept(text, 15));
    EXPECT_EQ(rows[0][1].AsString(), Kept(text, 5));
    EXPECT_EQ(rows[0][2].AsString(), Kept(text, 100));
    EXPECT_EQ(Count("AUDITORIA", "TEXTO CONTAINING 'LANCTO: " + numero + "'"), "1");
    EXPECT_NE(Entries(numero), "");
    EXPECT_NE(Shares(numero), "");
    // And the same movement comes back, and is altered and deleted, by its identity.
    desk.Click("btnConsulta");
    desk.Choose(numero);
    EXPECT_EQ(desk.Text("EdtNumDoc"), Kept(text, 15));
    EXPECT_EQ(desk.Text("EdtObs"), Kept(text, 100));
    desk.Click("BitBtn2");
    desk.Set("EdtObs", "SIMPLES");
    EXPECT_EQ(Confirm(desk), "");
    EXPECT_EQ(Count("CONTACOR_001", "LANCAMENTO = '" + numero + "' AND OBSERVACAO = 'SIMPLES'"), "1");
    Load(desk, numero);
    desk.Press("BitBtn3", "yes");
    EXPECT_EQ(desk.End(), "idle");
    EXPECT_EQ(Movement(numero) + Entries(numero) + Shares(numero), "");
  }
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM RDB$RELATIONS"), tables);
}

// Every text field of the screen, on both pages: a text that no code, date or amount can be is refused with a
// message or kept harmlessly, and the desk works on.
TEST_F(CcTest, HostileTextsInEveryField) {
  Desk desk(database_, At{"TfmCC"});
  const std::string rows = Count("CONTACOR_001", "1 = 1");
  for (const char* page : {"TabSheet2", "TabSheet1"}) {
    desk.Page(page);
    if (page == std::string("TabSheet2")) New(desk);
    std::vector<std::pair<std::string, int64_t>> fields;
    const Json state = desk.State();
    for (const auto& [name, control] : state["screens"].Items().back()["controls"].Members()) {
      const Json& kind = control["kind"];
      const bool text = kind == Json("edit") || kind == Json("money") || kind == Json("date");
      if (!text || !control["visible"].Bool() || !control["enabled"].Bool() || control["readOnly"].Bool())
        continue;
      fields.emplace_back(name, control["maxLength"].IsNull() ? 32000 : control["maxLength"].Integer());
    }
    ASSERT_GT(fields.size(), 7U);
    for (const auto& [field, length] : fields) {
      for (const std::string& text : HostileTexts()) {
        SCOPED_TRACE(field + " <- " + text.substr(0, 40));
        desk.Set(field, text);
        if (desk.End() == "idle") {
          EXPECT_TRUE(desk.Text(field) == Kept(text, static_cast<std::size_t>(length)) ||
                      desk.Messages().starts_with("error: ") || desk.Text(field) == "" ||
                      desk.Property(field, "kind") == Json("date"))
              << desk.Text(field).substr(0, 60);
        }
        // Leaving the field may tell that there is no such code or date.
        desk.Click(page == std::string("TabSheet2") ? "CbOper" : "RgBusca");
        for (int i = 0; desk.End() != "idle" && i < 5; ++i) {
          if (desk.End() == "waiting lookup") {
            desk.Do({{"do", "search"}, {"text", text}});
            EXPECT_EQ(desk.Messages(), "");
            desk.Choose(text);
            if (desk.End() == "waiting lookup") desk.Do({{"do", "choose"}});
          } else {
            desk.Answer("ok");
          }
        }
        ASSERT_EQ(desk.End(), "idle");
        // An inquiry takes it for what it is.
        if (page == std::string("TabSheet1")) {
          desk.Click("BitBtn5");
          EXPECT_FALSE(desk.Messages().starts_with("error: ")) << desk.Messages();
          while (desk.End() != "idle") desk.Answer("ok");
        }
      }
      // What was typed last may not be left behind in the way of the next field.
      desk.Set(field, field == "EdtConta" ? kConta : field == "EdtTipo" ? "3104" : "");
      desk.CloseLists();
    }
  }
  EXPECT_EQ(Count("CONTACOR_001", "1 = 1"), rows);
  EXPECT_EQ(Audit(), "");
}

// What no display of ours sends.
TEST_F(CcTest, HostileRequests) {
  Desk desk(database_, At{"TfmCC"});
  for (const std::string& text : HostileTexts()) {
    for (const char* verb : {"set", "click", "focus", "check", "page", "row", "cell", "append", "delete",
                             "dblclick", "title", "key", "menu", "open", "report", "file", text.c_str()}) {
      desk.Do(
          {{"do", verb}, {"control", text}, {"class", text}, {"value", text}, {"page", text}, {"id", text}});
      EXPECT_TRUE(desk.Messages().starts_with("error: ")) << verb;
      EXPECT_EQ(desk.End(), "idle");
    }
  }
  for (const int64_t from : {int64_t{-1}, INT64_MIN, INT64_MAX}) {
    for (const int64_t count : {int64_t{-1}, INT64_MIN, INT64_MAX}) {
      desk.Do({{"do", "read"}, {"from", from}, {"count", count}});
      EXPECT_EQ(desk.End(), "idle");
    }
  }
}

}  // namespace
}  // namespace orv::test
