// The two reports of the cheques: what each filter leaves, groupings, rows that stay, companies, printed
// forms.
#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

// "NAME=value|NAME=value".
Fields F(std::string_view text) {
  Fields fields;
  for (const std::string& one : Split(text, "|")) {
    if (!one.empty()) fields.emplace_back(one.substr(0, one.find('=')), one.substr(one.find('=') + 1));
  }
  return fields;
}

constexpr const char* kCheque =
    "|BANCO=901|AGENCIA=0001|CONTA=77-1|EMISSAO=11/10/2026|VENCIMENTO=11/20/2026|EMISSOR=JOSÉ|CLIENTE=00002|"
    "REPRESENTANTE=0001|";
constexpr const char* kTitulo =
    "|CODCLI=00002|CODREP=0001|DT_EMISSAO=11/10/2026|DT_VENCTO=11/20/2026|STATUS=N|SITUACAO=0|";

class RelChequeTest : public DeskTest {
 protected:
  RelChequeTest() {
    for (const char* company : {"_001", "_002"}) {
      for (const char* table : {"CHEQUE_PRE", "CHEQUE_DUP", "CONTACOR", "PAGTO", "RECEBER", "RECEBERB"})
        Run("DELETE FROM " + std::string(table) + company);
    }
    Run("UPDATE ENTIDADE_001 SET NOME = 'CONFECÇÕES SÃO JOÃO' WHERE CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIAÇÃO ÁGUIA' WHERE CODCLI = '00003'");
    Cheque("K1", "TIPO=R|STATUS=P|VALOR=100.10|OBS=100% D'Ávila {}|DUPLICATA=B7");
    Cheque("K2", "TIPO=R|STATUS=B|VALOR=200|DT_BAIXA=11/12/2026|EMISSAO=10/01/2026|BANCO=902");
    Cheque("K3", "TIPO=P|STATUS=C|VALOR=300|VENCIMENTO=12/05/2026|FORNECEDOR=00003|CLIENTE=00001");
    Cheque("K4", "TIPO=P|STATUS=P|VALOR=400|CONTA=88-2|FORNECEDOR=00003|CLIENTE=00003");
    Cheque("K5", "TIPO=R|STATUS=D|VALOR=500|REPRESENTANTE=0002");
    Store("CHEQUE_PRE_002",
          F("CHAVE=K1|NUMERO=Z1|VALOR=9|TIPO=R|STATUS=P|EMISSAO=11/10/2026|VENCIMENTO=11/20/2026"));
    // K1 pays two titles to receive, K4 one to pay; K5 belongs to a batch, which is no title.
    for (const char* title : {"NUMERO=K1|CONTA=77-1|DUPLI=T1", "NUMERO=K1|CONTA=77-1|DUPLI=T2",
                              "NUMERO=K4|CONTA=88-2|DUPLI=000009", "NUMERO=K5|CONTA=77-1|DUPLI=LOTE",
                              "NUMERO=H1|CONTA=99-3|DUPLI=T1"})
      Store("CHEQUE_DUP_001", F(std::string("BANCO=901|") + title));
    Store("PAGTO_001", F("NUM_AP=000009|CODCRE=00003|DUPLI=NF 9|VALOR=400|SITUACAO=0"));
    // H1 and H2 are cheques: one paid for T1 and was credited, the other was returned.
    for (const std::string& title :
         {std::string("NUMERO=T1|VALOR2=60"), std::string("NUMERO=T2|VALOR2=40.10|SITUACAO=4"),
          std::string(
              "NUMERO=H1|VALOR2=70|STATUS=CH|NUMERO_CH=H1|CONTA_CH=99-3|BANCO_CH=901|EMISSOR_CH=MARIA"),
          "NUMERO=H2|VALOR2=80|STATUS=CD|NUMERO_CH=H2|CODREP=0002|DT_VENCTO=12/05/2026|OBS=" +
              std::string(120, 'x')})
      Store("RECEBER_001", F(kTitulo + title));
    Store("RECEBERB_001", F("NUMERO=H1|VALOR_PAGO=70|DT_PAGTO=11/15/2026|PORTADOR=00003"));
    Store("RECEBERB_001", F("NUMERO=H2|VALOR_PAGO=0|DT_PAGTO=11/16/2026"));
  }
  void Cheque(const std::string& key, const char* more) {
    Store("CHEQUE_PRE_001", F("CHAVE=" + key + "|NUMERO=" + key + kCheque + more));
  }
  static void Fill(Desk& desk, const Fields& fields) {
    for (const auto& [name, value] : fields) desk.Set(name, value);
  }
  // What each filter alone leaves of an open screen, beside those that all of them have.
  void Filter(const char* screen, const char* all, const char* set, std::initializer_list<const char*> shown,
              const std::vector<std::pair<const char*, const char*>>& cases) {
    Desk desk(database_);
    for (const auto& [filters, left] : cases) {
      desk.Open(screen);
      Fill(desk, F(all));
      Fill(desk, F(filters));
      desk.Click("BtnConfirma");
      EXPECT_EQ(desk.Messages(), "");
      EXPECT_EQ(ReplaceAll(ReplaceAll(desk.Read(set, shown), "\n", " "), "|", ""), left) << filters;
      desk.Do({{"do", "close"}});
    }
  }
};

TEST_F(RelChequeTest, RegisterByFilter) {
  Filter("TfmRelContCheq", "RgBusca=0|rgAgrupar=4", "QryRelatorio", {"NUMERO"},
         {{"", "K3 K1 K2 K5 K4 "},
          {"RgBusca=1", "K1 K4 "},
          {"RgBusca=2", "K2 "},
          {"RgBusca=3", "K3 "},
          {"RgBusca=4", "K5 "},
          {"RgTipo=1", "K1 K2 K5 "},
          {"RgTipo=2", "K3 K4 "},
          {"edtDtEmiIni=02/10/2026", "K3 K1 K5 K4 "},
          {"edtDtEmiFim=01/10/2026", "K2 "},
          {"edtDtVenIni=05/12/2026|edtDtVenFim=05/12/2026", "K3 "},
          {"DtBaixaIni=12/11/2026", "K2 "},
          {"DtBaixaIni=13/11/2026|DtBaixaFim=31/12/2050", ""},
          {"DtBaixaIni=01/01/1200|DtBaixaFim=12/11/2026", "K2 "},
          {"EdtCliente=00001", "K3 "},
          {"Edit1=00003", "K3 K4 "},
          {"Edit3=902", "K2 "},
          {"EdtConta=88-2", "K4 "},
          {"EdtRepresen=0002", "K5 "},
          {"EdtBordero=B7", "K1 "},
          {"EdtBordero=B7|EdtCheque=K2|EdtObs=|EdtCheque=K4|EdtObs=", "K2 K4 "},
          {"EdtObs=d'ávila", "K1 "},
          {"EdtObs=%", "K1 "},
          {"EdtObs={}", "K1 "},
          {"EdtObs=' OR 1=1 --", ""},
          {"EdtBordero=' OR 1=1", ""},
          {"EdtConta='OR 1=1--", ""},
          {"EdtCliente='{}'|Edit1={}|Edit3='--|EdtRepresen=%", ""},
          {"CbEmpresa=true|RgBusca=1", "Z1 K1 K4 "}});
}

TEST_F(RelChequeTest, RegisterKeepsRowsAndFields) {
  Desk desk(database_);
  desk.Open("TfmRelContCheq");
  EXPECT_EQ(desk.Text("DtBaixaIni") + desk.Text("DtBaixaFim") + desk.Text("edtDtEmiIni"),
            "01/01/120031/12/205001/01/1980");
  // In the order of each grouping, which each row tells the report. "No" puts them under those that are
  // there.
  const char* orders[] = {"K1BS K4BS ", "K1CS K4CS ", "K1VS K4VS ", "K1NN K4NN ",
                          "K1S K4S ",   "K1S K4S ",   "K1S K4S ",   "K1S K1BS K4S K4BS "};
  for (int round = 0; round < 8; ++round) {
    Fill(desk, {{"rgAgrupar", std::to_string(round % 7)}});
    EXPECT_EQ(desk.Enabled("cbTotal"), round != 3);
    desk.Click("BtnConfirma");
    if (round > 0) {
      EXPECT_EQ(desk.Messages(), "Já existem informações no relatório. Deseja limpar a consulta?");
      desk.Answer(round < 7 ? "yes" : "no");
    }
    std::string rows;
    for (const Row& row : desk.Read("QryRelatorio")) rows += row.at("NUMERO") + row.at("OPCOES") + " ";
    EXPECT_EQ(rows, orders[round]) << round;
  }
  desk.Do({{"do", "dblclick"}, {"control", "DBGrid1"}, {"row", 0}, {"column", "NUMERO"}});
  std::string lines;
  for (const Json& out : desk.Latest()) {
    if (!(out["on"] == Json("detail"))) continue;
    for (const Json& line : out["rows"].Items()) lines += line.Items()[1].String() + " ";
  }
  EXPECT_EQ(lines, "K1 T1 T2 ");
  desk.Answer("ok");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.Read("QryRelatorio", {"NUMERO"}), "K1\nK4\nK4\n");
  desk.Click("BitBtn1");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.Messages() + desk.Read("QryRelatorio", {"NUMERO"}), "");

  // The list of cheques, and where the choices of the lookups lead.
  desk.Set("EdtCheque", "nada");
  desk.Focus("EdtConta");
  EXPECT_EQ(desk.Messages(), "Cheque não encontrado.");
  desk.Answer("ok");
  EXPECT_EQ(desk.FocusName() + desk.Text("EdtCheque"), "EdtChequenada");
  desk.Click("PqCheque");
  desk.Do({{"do", "choose"}, {"key", "K3"}});
  EXPECT_EQ(desk.Text("EdtCheque"), "K3");
  desk.Focus("EdtConta");
  EXPECT_EQ(desk.FocusName() + desk.Text("EdtCheque"), "EdtCheque");
  EXPECT_EQ(desk.Property("LbCheque", "items").Items().size(), 1U);
  desk.Click("SpeedButton1");
  EXPECT_TRUE(desk.Property("LbCheque", "items").Items().empty());
  const char* choices[][5] = {{"PqCliente", "00002", "EdtCliente", "EDCliente", "EdtRepresen"},
                              {"PqFornecedor", "00003", "Edit1", "Edit2", "Edit3"},
                              {"PqBanco", "902", "Edit3", "Edit4", "EdtObs"},
                              {"PqRepresentante", "0002", "EdtRepresen", "EDRepresentante", "EdtObs"}};
  for (const auto& [lookup, key, field, description, focus] : choices) {
    desk.Click(lookup);
    desk.Do({{"do", "choose"}, {"key", key}});
    EXPECT_EQ(desk.Text(field), key);
    EXPECT_NE(desk.Text(description), "");
    EXPECT_EQ(desk.FocusName(), focus) << lookup;
  }
}

TEST_F(RelChequeTest, TitlesByFilter) {
  Filter("TfmRelChequeRec", "RgSituacao=2", "TbRelatorio",
         {"ORIGEM", "TIPO_DOC", "NUMERO", "NUM_REC", "NUM_PAG"},
         {{"", "ERK1T1- ERK1T2- ERK2-- EPK3-- EPK4-000009 ERK5-- RRH1T1 RRH2- "},
          {"RgSituacao=0", "ERK1T1- ERK1T2- EPK4-000009 RRH2- "},
          {"RgSituacao=1", "ERK2-- EPK3-- RRH1T1 "},
          {"RgTipo=1|RgGrupo=1", "EPK3-- EPK4-000009 "},
          {"RgTipo=2|RgGrupo=1", "ERK2-- ERK5-- ERK1T1- ERK1T2- RRH2- RRH1T1 "},
          {"edtDtEmiFim=01/10/2026", "ERK2-- "},
          {"edtDtVenIni=05/12/2026|edtDtVenFim=05/12/2026", "EPK3-- RRH2- "},
          {"DtBaixaIni=12/11/2026", "ERK2-- RRH1T1 "},
          {"DtBaixaIni=13/11/2026|DtBaixaFim=15/11/2026", "RRH1T1 "},
          {"EdtCliente=00002", "ERK1T1- ERK1T2- RRH1T1 RRH2- "},
          {"EdtCodFor=00003", "EPK4-000009 RRH1T1 "},
          {"EdtBanco=902", "ERK2-- "},
          {"edtCodRep=0002", "ERK5-- RRH2- "},
          {"Edtdupli=T1", "ERK1T1- "},
          {"Edtdupli=H2", "RRH2- "},
          {"EdtSit=4", "ERK1T2- "},
          {"Edtdupli=' OR 1=1|EdtCliente={}|EdtBanco=%|EdtSit='", ""},
          {"CbEmpresas=true|RgSituacao=0|RgGrupo=2|RgTipo=2", "ERK1T1- ERK1T2- ERZ1-- RRH2- "}});
  // The list holds literals, and a receivable's note comes whole.
  Desk desk(database_);
  desk.Open("TfmRelChequeRec");
  EXPECT_EQ(desk.Text("edtDtEmiIni") + desk.Text("edtDtVenFim") + desk.Text("DtBaixaIni"),
            "01/01/200031/12/2050");
  for (const char* number : {"", "') OR (1=1", "H2"}) {
    desk.Set("edtDocto", number);
    desk.Click("SpeedButton1");
  }
  desk.Click("BtnConfirma");
  EXPECT_EQ(desk.Read("TbRelatorio", {"NUMERO", "STATUS", "OBS"}), "H2|CD|" + std::string(120, 'x') + "\n");
  desk.Click("SpeedButton3");
  desk.Click("BtnConfirma");
  EXPECT_EQ(desk.Read("TbRelatorio").size(), 4U);
}

TEST_F(RelChequeTest, Printed) {
  Desk desk(database_);
  std::string printed;
  const auto print = [&](const std::string& fields) {
    Fill(desk, F(fields));
    desk.Click("BtnConfirma");
    if (desk.End() == "waiting answer") desk.Answer("yes");
    printed += "##### " + fields + "\n" + test::Printed(desk, "Btnimprimir");
  };
  desk.Open("TfmRelContCheq");
  print("RgBusca=0|rgAgrupar=0|CbEmpresa=true");
  print("rgAgrupar=1|cbTotal=false|CbEmpresa=false");
  print("rgAgrupar=2|cbTotal=true");
  print("rgAgrupar=3|EdtObs=nada");
  ExpectFile(printed, ORV_FILES "WCCCheq01.txt");
  for (const auto& [resumido, file] : {std::pair("false", "WChequeRec.txt"), {"true", "WChequeRecR.txt"}}) {
    printed.clear();
    desk.Open("TfmRelChequeRec");
    Fill(desk, {{"RgSituacao", "2"}, {"CbEmpresas", "true"}, {"ckbResumido", resumido}});
    for (const char* grupo : {"RgGrupo=0", "RgGrupo=1", "RgGrupo=2"}) print(grupo);
    ExpectFile(printed, std::string(ORV_FILES) + file);
  }
}

}  // namespace
}  // namespace orv::test
