#include "cheques/rel_cheque_pre.h"

#include <algorithm>
#include <vector>

#include "frame/entry/unit.h"
#include "rules/origem.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmRelContCheq* fmRelContCheq = nullptr;

namespace {

const Unit kUnit("Relcheque_pre",
                 {"TfmRelContCheq", "Relatório de Controle de Cheques", ScreenKind::Child, "Cheques",
                  [](Application& a) { return std::make_unique<TfmRelContCheq>(a); }});

// The days of clearing that let every cheque in, also those that weren't cleared.
constexpr const char* kBaixaAberta[] = {"01/01/1200", "31/12/2050"};

// By the item of RgBusca, of RgTipo and of rgAgrupar.
constexpr const char* kStatus[] = {"", "P", "B", "C", "D"};
constexpr const char* kTipo[] = {"", "R", "P"};
constexpr const char* kGrupo[] = {"B", "C", "V", "N", "", "", ""};
constexpr const char* kOrdem[] = {"banco;cliente",       "cliente;vencimento", "vencimento",
                                  "dt_Baixa;vencimento", "cliente;vencimento", "conta",
                                  "fornecedor"};
constexpr int kPorBaixa = 3;

std::size_t Opcao(const RadioGroup& grupo) {
  return static_cast<std::size_t>(std::max(grupo.ItemIndex(), 0));
}

}  // namespace

TfmRelContCheq::TfmRelContCheq(Application& application)
    : ReportScreen(application, "TfmRelContCheq", "fmRelContCheq", "Relatório de Controle de Cheques"),
      DBGrid1(*this, "DBGrid1", QryRelatorio, GridColumns(kRelatorio), true, "Cheques") {
  Layout(R"(
    @bar {
      GbVencimento { edtDtVenIni edtDtVenFim } RgBusca RgTipo
      @more {
        rgAgrupar cbTotal CbEmpresa /
        GbEmissao { edtDtEmiIni edtDtEmiFim } GbBaixa { DtBaixaIni DtBaixaFim } EdtBordero /
        EdtCliente PqCliente EDCliente EdtRepresen PqRepresentante EDRepresentante
        Edit1 PqFornecedor Edit2 /
        Edit3 PqBanco Edit4 EdtObs EdtConta PqConta EdtNomeConta /
        GbLista { EdtCheque PqCheque LbCheque SpeedButton1 }
      }
      @primary BtnConfirma
    } /
    DBGrid1 /
    @actions { Btnimprimir BitBtn1 BitBtn2 @apart BtnSaida }
  )");
  AddSet(QryRelatorio);
  AbreTabelas({"TbEntidade", "tbRepresentante", "tbBanco"});
  LayDown(QryRelatorio, kRelatorio);
  LigaCampos();
  rgAgrupar.OnChange = [this] { rgAgruparClick(); };
  BtnConfirma.OnClick = [this] { BtnConfirmaClick(); };
  Btnimprimir.OnClick = [this] { Funcoes.Chama_Relatorio(*this, "WCCCheq01"); };
  BitBtn1.OnClick = [this] { QryRelatorio.EmptyDataSet(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
  BtnSaida.OnClick = [this] { Close(); };
  Answers["Consultado"] = {0, [this](auto) { return Value(consultado_); }};
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
}

void TfmRelContCheq::LigaCampos() {
  Period(edtDtEmiIni, edtDtEmiFim);
  Period(edtDtVenIni, edtDtVenFim);
  Period(DtBaixaIni, DtBaixaFim);
  for (DateEdit* fim : {&edtDtEmiFim, &edtDtVenFim}) fim->SetDate(Date(2050, 12, 31));
  DtBaixaIni.SetText(kBaixaAberta[0]);
  DtBaixaFim.SetText(kBaixaAberta[1]);

  Lookups({{.field = &EdtCliente, .lookup = &PqCliente, .shows = {{"NOME", &EDCliente}}},
           {.field = &EdtRepresen,
            .lookup = &PqRepresentante,
            .after_change = [this] { EDRepresentante.SetText(PqRepresentante.RetornoPesquisa("NOME")); }},
           {.field = &Edit1, .lookup = &PqFornecedor, .shows = {{"NOME", &Edit2}}},
           {.field = &Edit3, .lookup = &PqBanco, .shows = {{"NOME_BANCO", &Edit4}}},
           {.field = &EdtConta, .lookup = &PqConta, .shows = {{"EMPRESA", &EdtNomeConta}}}});
  const auto segue = [](TPesquisa& pesquisa, Edit& proximo) {
    pesquisa.OnFechaPesquisa = [escolhe = pesquisa.OnFechaPesquisa, &proximo] {
      escolhe();
      proximo.SetFocus();
    };
  };
  segue(PqCliente, EdtRepresen);
  segue(PqFornecedor, Edit3);
  segue(PqBanco, EdtObs);

  EdtCheque.OnExit = [this] { EdtChequeExit(); };
  EdtCheque.OnKey = [this](KeyPress& key) {
    if (key.key != "F4") return;
    key.handled = true;
    PqCheque.AbrePesquisa();
  };
  PqCheque.OnFechaPesquisa = [this] { EdtCheque.SetText(PqCheque.RetornoPesquisa("NUMERO")); };
  SpeedButton1.OnClick = [this] { LbCheque.SetItems({}); };
}

void TfmRelContCheq::EdtChequeExit() {
  if (EdtCheque.Empty()) return;
  if (!Funcoes.Existe("CHEQUE_PRE", {{"NUMERO", EdtCheque.Text()}})) {
    Recusa("Cheque não encontrado.", EdtCheque);
    return;
  }
  JuntaCheque();
  EdtCheque.SetFocus();
}

void TfmRelContCheq::JuntaCheque() {
  std::vector<std::string> cheques = LbCheque.Items();
  cheques.push_back(EdtCheque.Text());
  LbCheque.SetItems(std::move(cheques));
  EdtCheque.Clear();
}

void TfmRelContCheq::rgAgruparClick() {
  const bool totais = rgAgrupar.ItemIndex() != kPorBaixa;
  cbTotal.SetChecked(totais);
  cbTotal.SetEnabled(totais);
}

void TfmRelContCheq::BtnConfirmaClick() {
  // A cheque chosen by the lookup's button is in the field before anybody enters it.
  if (!EdtCheque.Empty()) JuntaCheque();
  std::vector<std::string> numeros;
  for (const std::string& numero : LbCheque.Items()) numeros.push_back(Funcoes.Aspas(numero));
  ListaCheques = Join(numeros, ",");
  Gather(
      {&QryRelatorio}, [this](Gathering& andamento) { Monta(andamento); }, Half::Stays);
}

// A gathering that fails adds nothing to what is there.
void TfmRelContCheq::Monta(Gathering& andamento) {
  if (!QryRelatorio.IsEmpty() && Ask("Já existem informações no relatório. Deseja limpar a consulta?")) {
    QryRelatorio.EmptyDataSet();
  }
  if (QryRelatorio.IsEmpty()) consultado_.clear();
  andamento.Stage("Cheques");
  std::vector<Linha> linhas;
  ForEachRow<kRelatorio>(ForCompanies(AddCodigoSQL(), "CHEQUE_PRE", CbEmpresa.Checked()),
                         [&](Linha& linha, std::span<Value>) {
                           linhas.push_back(std::move(linha));
                           andamento.Advance();
                         });
  for (Linha& linha : linhas) QryRelatorio.AppendRow(linha.Values());
  QryRelatorio.SetIndexFieldNames(kOrdem[Opcao(rgAgrupar)]);
  if (const std::string agora = Consultado(); agora != consultado_)
    consultado_ += (consultado_.empty() ? "" : " e ") + agora;
}

std::string TfmRelContCheq::Consultado() const {
  return "Vencimento de " + edtDtVenIni.Text() + " até " + edtDtVenFim.Text() + ", situação " +
         RgBusca.Text() + ", tipo " + RgTipo.Text() + (CbEmpresa.Checked() ? ", todas as empresas" : "");
}

std::string TfmRelContCheq::AddCodigoSQL() const {
  return "SELECT CHEQUE.AGENCIA, CHEQUE.BANCO, CHEQUE.CHAVE, CHEQUE.CNPJ_EMI, CHEQUE.CLIENTE, CHEQUE.CONTA, "
         "CHEQUE.DT_BAIXA, CHEQUE.DUPLICATA, CHEQUE.EMISSAO, CHEQUE.FORNECEDOR, CHEQUE.EMISSOR, "
         "CHEQUE.NUMERO, CHEQUE.REPRESENTANTE, CHEQUE.VALOR, CHEQUE.VENCIMENTO, CHEQUE.OBS, "
         "CLIENTE.NOME AS NOMECLI, REPRESEN.NOME AS NOMEREP, BANCO.NOME_BANCO, FORNECED.NOME AS FORNOME, "
         "CHEQUE.BARRA, CLIENTE.CREDITO, " +
         Funcoes.Aspas(Opcoes()) +
         " AS OPCOES, '{}' AS EMPRESA FROM {CHEQUE_PRE} CHEQUE"
         " LEFT JOIN {ENTIDADE} FORNECED ON (CHEQUE.FORNECEDOR = FORNECED.CODCLI)"
         " LEFT JOIN {ENTIDADE} CLIENTE ON (CHEQUE.CLIENTE = CLIENTE.CODCLI)"
         " LEFT JOIN {REPRESEN} REPRESEN ON (CHEQUE.REPRESENTANTE = REPRESEN.CODREP)"
         " LEFT JOIN {CADBAN} BANCO ON (CHEQUE.BANCO = BANCO.BANCO) WHERE 1 = 1" +
         Filtros();
}

std::string TfmRelContCheq::Filtros() const {
  std::string sql = WhereBetween("CHEQUE.EMISSAO", edtDtEmiIni.Date(), edtDtEmiFim.Date()) +
                    WhereBetween("CHEQUE.VENCIMENTO", edtDtVenIni.Date(), edtDtVenFim.Date());
  if (DtBaixaIni.Text() != kBaixaAberta[0])
    sql += " AND CHEQUE.DT_BAIXA >= " + Funcoes.AspasData(DtBaixaIni.Date());
  if (DtBaixaFim.Text() != kBaixaAberta[1])
    sql += " AND CHEQUE.DT_BAIXA <= " + Funcoes.AspasData(DtBaixaFim.Date());
  if (const char* status = kStatus[Opcao(RgBusca)]; *status != 0)
    sql += " AND " + Igual("CHEQUE.STATUS", status);
  if (const char* tipo = kTipo[Opcao(RgTipo)]; *tipo != 0) sql += " AND " + Igual("CHEQUE.TIPO", tipo);
  sql += Where("CHEQUE.OBS", "CONTAINING", EdtObs) + Where("CHEQUE.CLIENTE", "=", EdtCliente) +
         Where("CHEQUE.FORNECEDOR", "=", Edit1) + Where("CHEQUE.BANCO", "=", Edit3) +
         Where("CHEQUE.CONTA", "=", EdtConta) + Where("CHEQUE.REPRESENTANTE", "=", EdtRepresen);
  return sql + (ListaCheques.empty() ? Where("CHEQUE.DUPLICATA", "=", EdtBordero)
                                     : " AND CHEQUE.NUMERO IN  (" + ListaCheques + ")");
}

std::string TfmRelContCheq::Opcoes() const {
  return std::string(kGrupo[Opcao(rgAgrupar)]) + (cbTotal.Checked() ? "S" : "N");
}

void TfmRelContCheq::BitBtn2Click() {
  if (!QryRelatorio.IsEmpty()) QryRelatorio.Delete();
}

void TfmRelContCheq::DBGrid1DblClick() {
  if (QryRelatorio.IsEmpty()) return;
  const std::string chave = Funcoes.Aspas(QryRelatorio["CHAVE"].AsString());
  ShowDetail("Cheque " + QryRelatorio["NUMERO"].AsString(),
             ForCompany(origem::Cheques("CHAVE = " + chave) + origem::kUniao +
                            origem::Movimentos("LANCAMENTO = " + chave),
                        QryRelatorio["EMPRESA"].AsString()));
}

}  // namespace orv
