// How the screen of the statement lines is made, and its page "Acesso".
#include "reconciliation/cadextrado.h"

#include "frame/entry/unit.h"
#include "rules/historico.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {

thread_local TFmCadExtrato* FmCadExtrato = nullptr;

namespace {

const Unit kUnit("Cadextrado",
                 {"TFmCadExtrato", "Cadastro de Extrato Bancário", ScreenKind::Child, "Conciliação",
                  [](Application& a) { return std::make_unique<TFmCadExtrato>(a); }});

}  // namespace

TFmCadExtrato::TFmCadExtrato(Application& application)
    : Child(application, "TFmCadExtrato", "FmCadExtrato", "Cadastro de Extrato Bancário") {
  TbImporta.CreateDataSet();
  AddSet(QryExtrato);
  AddSet(TbExtrato);
  AddSet(TbImporta);

  Desenha();
  LigaAcesso();
  LigaCadastro();
  LigaImportacao();

  TbExtrato.SetKey("LANCTO");
  TbExtrato.SetIndexFieldNames("LANCTO");
  TbExtrato.Open();
  TbExtrato.Last();
  Bar_Confirma(false);
  EdtCDocto.SetFocus();
}

std::vector<GridColumn> TFmCadExtrato::ColunasExtrato() {
  return {{"LANCTO", "Lançamento"},
          {"CONTA", "Conta"},
          {"DOCTO", "Documento"},
          {"DT_CONT", "Data"},
          {"OBSERVACAO", "Observação"},
          {.field = "OPERACAO",
           .title = "Operação",
           .words = {{"C", "Crédito", "muted"}, {"D", "Débito", "muted"}}},
          {"VALOR", "Valor"},
          {.field = "CONCILIADO",
           .title = "Conciliado",
           .words = {{"S", "Conciliado", "good"}, {"N", "A conciliar", "warning"}}}};
}

std::optional<Registro> TFmCadExtrato::RegistroAtual() {
  const TabSheet* pagina = PageControl1.ActivePage();
  if (pagina == &TabSheet3) return std::nullopt;
  DataSet& set = pagina == &TabSheet1 ? static_cast<DataSet&>(QryExtrato) : TbExtrato;
  if (!set.Active() || set.IsEmpty() || set.State() == DataSetState::Insert) return std::nullopt;
  return RegistroDaLinha(Funcoes, Tabela, set["LANCTO"].AsString());
}

void TFmCadExtrato::Desenha() {
  Layout(R"(
    PageControl1 {
      TabSheet1 {
        @bar {
          GbPeriodo { dtInicio dtFim } edtAConta pqAConta RgBusca EdtCDocto @primary BitBtn5
        } /
        DBGrid2 /
        @actions { BitBtn1 }
      }
      TabSheet2 {
        PainelDados {
          @form {
            EdtLancamento:2 EdtConta:4 PqConta EdtData:2 EdtDocto:4 /
            CbOperacao:2 @amount EdtValor:4 CbConciliado:2 EdtSaldo:4 /
            EdtObs:12
          }
        } /
        DBGrid1 /
        @actions {
          PainelConfirma { @primary SbConfirmar SbDesistir }
          PainelControle {
            @nav sbPrimeiro @nav sbAnterior @nav sbProximo @nav sbUltimo
            @primary btnincluir BtnAltera SbConsulta PqExtrato BitBtn2 @danger BtExcluir @apart BtSaida
          }
        }
      }
      TabSheet3 {
        @bar { EdtCam BitBtn3 EdtArq DtArq } /
        @bar { EdtIConta PqIConta EdtINomeConta EdtISaldo @primary BitBtn6 } /
        LbCarga /
        DBGrid3 /
        @sums { EdtSaldoFinal } /
        @actions { @primary BitBtn4 LbParada }
      }
    })");

  // The list opens by a button of its own.
  PqExtrato.SetVisible(false);
  for (DBEdit* campo : {&EdtLancamento, &CbConciliado}) campo->SetReadOnly(true);
  for (MoneyEdit* saldo : {&EdtSaldo, &EdtISaldo, &EdtSaldoFinal}) saldo->SetReadOnly(true);
}

void TFmCadExtrato::LigaAcesso() {
  dtInicio.SetDate(Date(2000, 1, 1));
  dtFim.SetDate(Date(2050, 1, 1));
  TodayOnEnter(dtInicio);
  SameOnEnter(dtFim, dtInicio);
  Lookups({{&edtAConta, &pqAConta, {}, "", true, nullptr}});
  edtAConta.OnExit = [this] { ContaExit(edtAConta); };

  BitBtn5.OnClick = [this] { BitBtn5Click(); };
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  DBGrid2.OnTitleClick = [this](const std::string& coluna) { ConsultaExtrato(coluna); };
}

// The lines that were found are printed, under the period that found them.
void TFmCadExtrato::BitBtn1Click() {
  if (!QryExtrato.Active()) BitBtn5Click();
  const AtEnd volta([this, de = dtInicio.Text(), ate = dtFim.Text()] {
    dtInicio.SetText(de);
    dtFim.SetText(ate);
  });
  dtInicio.SetText(consultado_.first);
  dtFim.SetText(consultado_.second);
  Funcoes.Chama_RelatorioWin(*this, "WCCDigExtrato");
}

void TFmCadExtrato::BitBtn5Click() { ConsultaExtrato("DT_CONT "); }

void TFmCadExtrato::ConsultaExtrato(const std::string& ordem) {
  const BusyMark busy(Funcoes, *this);
  QryExtrato.Close();
  QryExtrato.SQL.Clear();
  QryExtrato.SQL.Add("SELECT * FROM " + Funcoes.DBLocal("EXTRATO", true));
  QryExtrato.SQL.Add("WHERE DT_CONT >= " + Funcoes.AspasData(dtInicio.Date()));
  QryExtrato.SQL.Add("AND DT_CONT <= " + Funcoes.AspasData(dtFim.Date()));
  if (!Trim(EdtCDocto.Text()).empty()) QryExtrato.SQL.Add("AND DOCTO = " + Funcoes.Aspas(EdtCDocto.Text()));
  if (!Trim(edtAConta.Text()).empty()) QryExtrato.SQL.Add("AND CONTA = " + Funcoes.Aspas(edtAConta.Text()));
  if (RgBusca.ItemIndex() == 1) QryExtrato.SQL.Add("AND CONCILIADO = 'N'");
  if (RgBusca.ItemIndex() == 2) QryExtrato.SQL.Add("AND CONCILIADO = 'S'");
  QryExtrato.SQL.Add("ORDER BY " + ordem);
  QryExtrato.Open();
  consultado_ = {dtInicio.Text(), dtFim.Text()};
}

void TFmCadExtrato::DBGrid2DblClick() {
  if (QryExtrato.IsEmpty()) return;
  PageControl1.SetActivePage(TabSheet2);
  if (TbExtrato.Editing()) {
    // What is being typed there isn't thrown away.
    Inform("Confirme ou desista primeiro do lançamento em edição.");
    return;
  }
  if (!TbExtrato.Locate("LANCTO", QryExtrato["LANCTO"].Get())) {
    Inform("O lançamento não existe mais. Consulte de novo.");
    return;
  }
  btnincluir.SetFocus();
}

}  // namespace orv
