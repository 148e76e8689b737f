// The two reports of the cheques: what each filter leaves, groupings, rows that stay, companies, printed
// forms.
#include "tests/support/desk_test.h"
#include "tests/support/table.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

class RelChequeTest : public DeskTest {
 protected:
  RelChequeTest() {
    Empty(
        "CHEQUE_PRE_001 CHEQUE_DUP_001 CONTACOR_001 PAGTO_001 RECEBER_001 RECEBERB_001 CHEQUE_PRE_002 "
        "RECEBER_002");
    Run("UPDATE ENTIDADE_001 SET NOME = 'CONFECÇÕES SÃO JOÃO' WHERE CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIAÇÃO ÁGUIA' WHERE CODCLI = '00003'");
    Put(Cheque{.chave = "K1",
               .numero = "Z1",
               .banco = nullptr,
               .conta = nullptr,
               .valor = 9,
               .vencimento = "11/20/2026"},
        "_002");
    const char* const cheques[][8] = {
        // number, kind, state, amount, account, customer, supplier, representative
        {"K1", "R", "P", "100.10", kConta, "00002", "", "0001"},
        {"K2", "R", "B", "200", kConta, "00002", "", "0001"},
        {"K3", "P", "C", "300", kConta, "00001", "00003", "0001"},
        {"K4", "P", "P", "400", "88-2", "00003", "00003", "0001"},
        {"K5", "R", "D", "500", kConta, "00002", "", "0002"}};
    for (const auto& [numero, tipo, status, valor, conta, cliente, fornecedor, representante] : cheques) {
      Put(Cheque{numero, numero, "901", "0001", conta, valor, "11/10/2026", "11/20/2026", nullptr, tipo,
                 status, "JOSÉ", nullptr, cliente, fornecedor, representante});
    }
    Run("UPDATE CHEQUE_PRE_001 SET OBS = '100% D''Ávila {}', DUPLICATA = 'B7' WHERE CHAVE = 'K1'");
    Run("UPDATE CHEQUE_PRE_001 SET EMISSAO = '10/01/2026', DT_BAIXA = '11/12/2026', BANCO = '902' WHERE "
        "CHAVE = 'K2'");
    Run("UPDATE CHEQUE_PRE_001 SET VENCIMENTO = '12/05/2026' WHERE CHAVE = 'K3'");
    Usual(Receber{.dt_emissao = "11/10/2026", .dt_vencto = "11/20/2026", .status = "N", .codrep = "0001"});
    // K1 pays two titles to receive, K4 one to pay; K5 belongs to a batch, which is no title.
    for (const char* title : {"T1", "T2"}) Put(ChequeDup{.numero = "K1", .dupli = title});
    Put(ChequeDup{.conta = "88-2", .numero = "K4", .dupli = "000009"});
    Put(ChequeDup{.numero = "K5", .dupli = "LOTE"});
    Put(Pagto{.num_ap = "000009", .dupli = "NF 9", .valor = 400});
    Put(Receber{.numero = "T1", .valor2 = 60});
    Put(Receber{.numero = "T2", .valor2 = "40.10", .situacao = "4"});
    // Held as receivables: one cheque that paid T1 and was credited, and one that was returned.
    Put(Receber{.numero = "H1",
                .valor2 = 70,
                .status = "CH",
                .numero_ch = "H1",
                .conta_ch = kConta,
                .banco_ch = "901",
                .emissor_ch = "MARIA"});
    Put(ChequeDup{.numero = "H1", .dupli = "T1"});
    Put(Receberb{.numero = "H1", .dt_pagto = "11/15/2026", .valor_pago = 70, .portador = "00003"});
    Put(Receber{.numero = "H2",
                .dt_vencto = "12/05/2026",
                .valor2 = 80,
                .status = "CD",
                .numero_ch = "H2",
                .obs = std::string(120, 'x'),
                .codrep = "0002"});
    Put(Receberb{.numero = "H2", .dt_pagto = "11/16/2026", .valor_pago = 0});
  }
  // What each filter alone leaves of an open screen, beside those that all of them have.
  void Filter(const char* screen, const char* all, const char* set, std::initializer_list<const char*> shown,
              const char* cases) {
    Desk desk(database_);
    for (const auto& one : Table(cases, 2)) {
      desk.Open(screen);
      desk.Set(Named(all));
      desk.Set(Named(one[0]));
      EXPECT_EQ(desk.Press("BtnConfirma"), "");
      EXPECT_EQ(Trim(ReplaceAll(ReplaceAll(desk.Read(set, shown), "\n", " "), "|", "")), one[1]) << one[0];
      desk.Close();
    }
  }
};

TEST_F(RelChequeTest, RegisterByFilter) {
  Filter("TfmRelContCheq", "RgBusca=0 ; rgAgrupar=4", "QryRelatorio", {"NUMERO"}, ORV_FILES "register.txt");
}

TEST_F(RelChequeTest, RegisterKeepsRowsAndFields) {
  Desk desk(database_, At{"TfmRelContCheq"});
  EXPECT_EQ(desk.Texts({"DtBaixaIni", "DtBaixaFim", "edtDtEmiIni"}), "01/01/1200|31/12/2050|01/01/1980");
  // In the order of each grouping, which each row tells the report. "No" puts them under those that are
  // there.
  const char* orders[] = {"K1BS K4BS ", "K1CS K4CS ", "K1VS K4VS ", "K1NN K4NN ",
                          "K1S K4S ",   "K1S K4S ",   "K1S K4S ",   "K1S K1BS K4S K4BS "};
  for (int round = 0; round < 8; ++round) {
    desk.Set("rgAgrupar", std::to_string(round % 7));
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
  // One that can't be leaves the rows that were to stay.
  Run("EXECUTE BLOCK AS DECLARE I INTEGER = 300; BEGIN WHILE (I < 360) DO BEGIN "
      "INSERT INTO EMPRESA (EMP_PAT, EMP_NOME) VALUES ('_' || :I, 'x'); I = I + 1; END END");
  desk.Check("CbEmpresa", true);
  desk.Press("BtnConfirma", "no");
  EXPECT_NE(desk.Messages().find("alcança no máximo 50 empresas"), std::string::npos) << desk.Messages();
  EXPECT_EQ(desk.Column("QryRelatorio", "NUMERO"), "K1 K1 K4 K4");
  desk.DoubleClick("DBGrid1", 0, "NUMERO");
  std::string lines;
  for (const Json& out : desk.Latest()) {
    if (!(out["on"] == Json("detail"))) continue;
    for (const Json& line : out["rows"].Items()) lines += line.Items()[1].String() + " ";
  }
  EXPECT_EQ(lines, "K1 T1 T2 ");
  desk.Answer("ok");
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.Column("QryRelatorio", "NUMERO"), "K1 K4 K4");
  desk.Click("BitBtn1");
  EXPECT_EQ(desk.Press("BitBtn2") + desk.Column("QryRelatorio", "NUMERO"), "");

  // The list of cheques, and where the choices of the lookups lead.
  desk.Leave("EdtCheque", "nada", "EdtConta");
  EXPECT_EQ(desk.Refused(), "Cheque não encontrado. > EdtCheque");
  desk.Click("PqCheque");
  desk.Choose("K3");
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
    desk.Choose(key);
    EXPECT_EQ(desk.Text(field), key);
    EXPECT_NE(desk.Text(description), "");
    EXPECT_EQ(desk.FocusName(), focus) << lookup;
  }
}

TEST_F(RelChequeTest, TitlesByFilter) {
  Filter("TfmRelChequeRec", "RgSituacao=2", "TbRelatorio",
         {"ORIGEM", "TIPO_DOC", "NUMERO", "NUM_REC", "NUM_PAG"}, ORV_FILES "titles.txt");
  // The list holds literals, and a receivable's note comes whole.
  Desk desk(database_, At{"TfmRelChequeRec"});
  EXPECT_EQ(desk.Texts({"edtDtEmiIni", "edtDtVenFim", "DtBaixaIni"}), "01/01/2000|31/12/2050|");
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
    desk.Set(Named(fields));
    desk.Click("BtnConfirma");
    if (desk.End() == "waiting answer") desk.Answer("yes");
    printed += "##### " + fields + "\n" + test::Printed(desk, "Btnimprimir");
  };
  desk.Open("TfmRelContCheq");
  print("RgBusca=0 ; rgAgrupar=0 ; CbEmpresa=true");
  print("rgAgrupar=1 ; cbTotal=false ; CbEmpresa=false");
  print("rgAgrupar=2 ; cbTotal=true");
  print("rgAgrupar=3 ; EdtObs=nada");
  ExpectFile(printed, ORV_FILES "WCCCheq01.txt");
  for (const auto& [resumido, file] : {std::pair("false", "WChequeRec.txt"), {"true", "WChequeRecR.txt"}}) {
    printed.clear();
    desk.Open("TfmRelChequeRec");
    desk.Set({{"RgSituacao", "2"}, {"CbEmpresas", "true"}, {"ckbResumido", resumido}});
    for (const char* grupo : {"RgGrupo=0", "RgGrupo=1", "RgGrupo=2"}) print(grupo);
    ExpectFile(printed, std::string(ORV_FILES) + file);
  }
}

}  // namespace
}  // namespace orv::test
