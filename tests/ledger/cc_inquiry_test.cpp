// The ledger's screen, page "Acesso": what an inquiry finds, its totals, and the balances of the accounts.
#include <dlfcn.h>

#include "ledger/cc.h"
#include "tests/ledger/caller.h"
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

class InquiryTest : public CcTest {
 protected:
  InquiryTest() {
    for (const char* company : {"_001", "_002"}) Run("DELETE FROM CONTACOR" + std::string(company));
  }
  // Movements that each differ from the others in what a filter looks at.
  void StoreOneOfEach() {
    Put(Movimento{.lancamento = "A1", .docto = "D1"});
    Put(Movimento{.lancamento = "A2",
                  .docto = "D2",
                  .conta = kOutraConta,
                  .dt_cont = "11/20/2026",
                  .valor = "20.25",
                  .operacao = "+",
                  .grupo = "1101",
                  .historico = "008",
                  .tipo_doc = "CH",
                  .pendente = "S"});
    Put(Movimento{.lancamento = "A3",
                  .docto = "D3",
                  .valor = "30",
                  .operacao = "",
                  .observacao = "100% D'ÁGUA {X}",
                  .tipo_doc = "",
                  .pendente = "C"});
    // Of no account, and of no class.
    Put(Movimento{.lancamento = "A4", .docto = "D0", .conta = "99999", .pendente = "S"});
    Put(Movimento{
        .lancamento = "A5", .docto = "D5", .dt_cont = "12/31/2050", .grupo = "9999", .pendente = "S"});
    Run("UPDATE CONTACOR_001 SET BANCO = '000' WHERE LANCAMENTO = 'A5'");
  }
};

TEST_F(InquiryTest, FiltersFindTheirMovements) {
  StoreOneOfEach();
  struct Case {
    Fields fields;
    const char* found;
  };
  const Fields all = {{"RgBusca", "Todos"}};
  const Case cases[] = {
      {{}, "A5 A2"},
      {all, "A5 A1 A3 A2"},
      {{{"RgBusca", "Baixados"}}, "A1"},
      {{{"RgBusca", "Compensados"}}, "A3"},
      {{{"RgBusca", "Todos"}, {"RgTipo", "Duplicatas"}}, "A5 A1"},
      {{{"RgBusca", "Todos"}, {"RgTipo", "Cheques"}}, "A2"},
      {{{"RgBusca", "Todos"}, {"EdtValorDe", "20,25"}, {"EdtValorAte", "30,00"}}, "A3 A2"},
      {{{"RgBusca", "Todos"}, {"EdtValorDe", "0,00"}, {"EdtValorAte", "20,24"}}, ""},
      {{{"RgBusca", "Todos"}, {"EdtConsLanc", "A3"}}, "A3"},
      {{{"RgBusca", "Todos"}, {"EdtConsConta", kOutraConta}}, "A2"},
      {{{"RgBusca", "Todos"}, {"EdtCodGrupo", "1101"}}, "A2"},
      {{{"RgBusca", "Todos"}, {"EdtAObs", "% D'ÁGUA {X}"}}, "A3"},
      {{{"RgBusca", "Todos"}, {"EdtAObs", "' OR '1'='1"}}, ""},
      {{{"RgBusca", "Todos"}, {"edtCodHist", "008"}}, "A2"},
      {{{"RgBusca", "Todos"}, {"EdtDocto", "D5"}}, "A5"},
      {{{"RgBusca", "Todos"}, {"dtContIni", "20/11/2026"}, {"dtContFim", "31/12/2050"}}, "A5 A2"},
      {{{"RgBusca", "Todos"}, {"dtContIni", "10/11/2026"}, {"dtContFim", "19/11/2026"}}, "A1 A3"},
      {{{"RgBusca", "Todos"}, {"dtInicio", "11/11/2026"}, {"dtFim", "31/12/2050"}}, ""},
      {{{"RgBusca", "Todos"}, {"dtVencIni", "12/11/2026"}, {"dtVencFim", "12/11/2026"}}, "A5 A1 A3 A2"},
      // An emptied date matches nothing, the first one of a period too.
      {{{"RgBusca", "Todos"}, {"dtInicio", ""}}, ""},
      {{{"RgBusca", "Todos"}, {"dtVencFim", ""}}, ""},
  };
  Desk desk(database_);
  for (const Case& c : cases) {
    desk.Open("TfmCC");
    EXPECT_EQ(Consult(desk, c.fields), c.found)
        << (c.fields.size() > 1 ? c.fields[1].first : "") << " " << desk.Messages();
    EXPECT_EQ(desk.Messages(), "");
    desk.Close();
  }
}

TEST_F(InquiryTest, TotalsAreThoseOfTheRowsFound) {
  StoreOneOfEach();
  Run("UPDATE CONTACOR_001 SET VALOR = 0.1 WHERE LANCAMENTO = 'A1'");
  for (int i = 0; i < 9; ++i)
    Put(Movimento{.lancamento = "B" + std::to_string(i), .docto = "E", .valor = "0.1"});
  Desk desk(database_, At{"TfmCC"});
  EXPECT_EQ(Consult(desk, {{"RgBusca", "Todos"}, {"EdtConsConta", kConta}}),
            "A5 A1 A3 B0 B1 B2 B3 B4 B5 B6 B7 B8");
  // An operation that isn't a debit is a credit.
  EXPECT_EQ(desk.Text("EdtDebito") + " " + desk.Text("EdtCredito") + " " + desk.Text("EdtSaldo"),
            "151,00 30,00 -121,00");
  EXPECT_EQ(Selected(desk), "A5");
  EXPECT_TRUE(desk.Property("DBGridApagar", "readOnly").Bool());
  EXPECT_EQ(desk.Rows("TbConsulta").substr(0, 109),
            "A5|D5|000|10250-1|2050-12-31|2026-11-10|2026-11-12|150|-|S|COMO ESTAVA|019|9999||DP|L|-\n"
            "A1|D1|901|10250-1|202");
  // Nothing found: nothing told, nothing left of what was.
  EXPECT_EQ(Consult(desk, {{"EdtDocto", "NENHUM"}}), "");
  EXPECT_EQ(desk.Messages() + desk.Text("EdtDebito") + desk.Text("EdtSaldo"), "0,000,00");

  // Amounts that no field takes are added up and told.
  for (const char* numero : {"C1", "C2"})
    Put(Movimento{.lancamento = numero, .docto = "ENORME", .valor = "900000000000000"});
  EXPECT_EQ(Consult(desk, {{"EdtDocto", "ENORME"}}), "C1 C2");
  EXPECT_TRUE(desk.Messages().starts_with("note: ")) << desk.Messages();
  EXPECT_EQ(desk.Text("EdtDebito"), "1.800.000.000.000.000,00");
}

TEST_F(InquiryTest, OptionalFiltersClearThemselves) {
  Desk desk(database_, At{"TfmCC"});
  Consult(desk);
  desk.Leave("EdtConsConta", "77", "EdtDocto");
  EXPECT_EQ(desk.Told(), "Conta inexistente.");
  EXPECT_EQ(desk.Text("EdtConsConta"), "");
  EXPECT_EQ(desk.FocusName(), "EdtDocto");
  desk.Set({{"EdtCodGrupo", "77"}, {"EdtConsConta", kConta}});
  EXPECT_EQ(desk.Texts({"EdtConsEmp", "EdtCodGrupo"}), "MALHARIA SERRA AZUL LTDA|77");
  EXPECT_EQ(desk.End(), "idle");
}

TEST_F(InquiryTest, DoubleClickLoadsTheRow) {
  Put(Movimento{.lancamento = "T1", .docto = "TR", .operacao = "-", .tipo = "TR"});
  Put(Movimento{.lancamento = "T1", .docto = "TR", .conta = kOutraConta, .operacao = "+", .tipo = "TR"});
  Put(Movimento{.lancamento = "T2", .docto = "ZZ", .lanc_con = "000321"});
  Desk desk(database_, At{"TfmCC"});
  const auto load = [&](int row) { desk.DoubleClick("DBGridApagar", row, "DOCTO"); };
  EXPECT_EQ(Consult(desk, {{"RgBusca", "Todos"}}), "T1 T2 T1");
  // The filters of the page stand: coming to it enters no date.
  EXPECT_EQ(desk.Text("dtInicio") + desk.Text("dtFim"), "01/01/198031/12/2050");
  load(2);
  EXPECT_EQ(desk.Text("EdtConta"), kOutraConta);
  EXPECT_EQ(desk.Text("CbOper"), "+");
  EXPECT_TRUE(desk.Enabled("BitBtn2"));
  EXPECT_EQ(desk.FocusName(), "BitBtn2");
  Consult(desk);
  Consult(desk, {{"RgBusca", "Todos"}});
  load(1);
  EXPECT_EQ(desk.Text("EdtLancto"), "T2");
  EXPECT_FALSE(desk.Enabled("BitBtn2"));

  // What is being typed isn't thrown away.
  const std::string numero = New(desk, {{"EdtNumDoc", "MEU"}});
  Consult(desk);
  Consult(desk, {{"RgBusca", "Todos"}});
  load(0);
  EXPECT_EQ(desk.Told(), "Confirme ou cancele primeiro o lançamento em edição.");
  EXPECT_EQ(desk.Text("EdtLancto") + desk.Text("EdtNumDoc"), numero + "MEU");
}

// What the three functions give, called as another screen of the module would.
std::string Balances(Screen& screen, const std::string& account) {
  void* const library =
      dlopen((std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orvCC.so").c_str(),
             RTLD_NOLOAD | RTLD_LAZY);
  screen.Owner().Tabela().TbCadConta().Locate("CONTA", account);
  std::string text;
  for (const char* name : {"Saldo", "Pendente", "Previsao"}) {
    const std::string function = "Valor" + std::string(name) + "Conta";
    const std::string symbol = "_ZN3orv5TfmCC" + std::to_string(function.size()) + function + "Ev";
    using Member = Currency (*)(TfmCC*);
    const auto member = reinterpret_cast<Member>(dlsym(library, symbol.c_str()));
    text += member(static_cast<TfmCC*>(&screen)).Neutral() + " ";
  }
  dlclose(library);
  return text;
}

TEST_F(InquiryTest, BalancesNeverOverlap) {
  const Date today(2026, 11, 20), after = today.AddDays(1);
  Put(Movimento{.dt_cont = today, .valor = "1000.10", .operacao = "+"});
  Put(Movimento{.dt_cont = "11/19/2026", .valor = "200.05", .pendente = "C"});
  Put(Movimento{.dt_cont = today, .valor = 30, .operacao = "+", .pendente = "S"});
  Put(Movimento{.dt_cont = after, .valor = 4, .pendente = "S"});
  Put(Movimento{.dt_cont = after, .valor = "0.5", .operacao = "+"});
  Put(Movimento{.dt_cont = today, .valor = 7777, .operacao = "+", .pendente = ""});
  Put(Movimento{.dt_cont = today, .valor = 8888, .operacao = "*"});
  Put(Movimento{.dt_cont = today, .valor = 1, .operacao = "+"}, "_002");
  Put(Movimento{.conta = kOutraConta, .dt_cont = "11/01/2026", .valor = 9});
  Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'N' WHERE CONTA NOT IN ('10250-1', '20418-7')");
  const CallerScreens callers;
  const auto report = [&](Desk& desk) {
    desk.Open("TfmCC");
    desk.Click("BitBtn8");
    return desk.Rows("TbContas");
  };
  const auto one_by_one = [&](Desk& desk) {
    std::string text;
    on_call = [&](Screen& caller) {
      Screen& cc = *caller.Owner().FindComponent("fmCC");
      text = Balances(cc, kConta) + Balances(cc, kOutraConta);
    };
    desk.Open("TfmChamador");
    EXPECT_EQ(desk.Press("BtChama"), "");
    return text;
  };
  const std::string head = "10250-1|CONTA MOVIMENTO|MALHARIA SERRA AZUL LTDA|901|",
                    other = "20418-7|CONTA COBRANCA|MALHARIA SERRA AZUL LTDA|902|-9|0|0|002|C\n";
  {
    // Each company has its ledger: the account's movements there count too.
    Desk desk(database_);
    EXPECT_EQ(report(desk), head + "801.05|30|-3.5|001|C\n" + other);
    EXPECT_EQ(one_by_one(desk), "801.0500 30.0000 -3.5000 -9.0000 0.0000 0.0000 ");
  }
  Put(Compartilhada{.tabela = "CONTACOR", .emp_pat = "_001"});
  Desk desk(database_);
  EXPECT_EQ(report(desk), head + "800.05|30|-3.5|001|C\n" + other);
  EXPECT_EQ(one_by_one(desk), "800.0500 30.0000 -3.5000 -9.0000 0.0000 0.0000 ");
}

}  // namespace
}  // namespace orv::test
