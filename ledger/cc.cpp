// How the screen of the ledger is made: its parameters, its layout and who answers to what.
#include "ledger/cc.h"

#include "frame/entry/unit.h"
#include "rules/historico.h"

namespace orv {

thread_local TfmCC* fmCC = nullptr;

namespace {

const Unit kUnit("Cc", {"TfmCC", "Movimento de Contas Correntes", ScreenKind::Child, "Contas Correntes",
                        [](Application& a) { return std::make_unique<TfmCC>(a); }});

}  // namespace

TfmCC::TfmCC(Application& application)
    : Child(application, "TfmCC", "fmCC", "Movimento de Contas Correntes") {
  fmCC = this;
  AbreTabelas({"tbCadConta"});
  for (TClientDataSet* set :
       {static_cast<TClientDataSet*>(&TbContas), static_cast<TClientDataSet*>(&TbContabil),
        static_cast<TClientDataSet*>(&TbCCusto), static_cast<TClientDataSet*>(&TbConsulta)}) {
    set->CreateDataSet();
    AddSet(*set);
  }
  AddSet(QryFinan);

  Desenha();
  LigaAcesso();
  LigaManutencao();
  LigaGrades();
  EnterMovesOn(true);

  LeParametros();
  EdtLanctoChange();
  ModoEdicao(false);
  BitBtn1.SetFocus();
}

void TfmCC::LeParametros() {
  const auto ligado = [this](int number) { return Funcoes.BuscaParametro("FIN", number) == "S"; };
  fin30_ = ligado(30);
  fin50_ = ligado(50);
  fin80_ = ligado(80);
  fin100_ = ligado(100);
  PanelCont.SetVisible(fin30_ || ligado(40) || fin50_);
  GroupBox3.SetVisible(fin50_);
}

std::optional<Registro> TfmCC::RegistroAtual() {
  const bool acesso = PageControl1.ActivePage() == &TabSheet1;
  if (acesso ? TbConsulta.IsEmpty() : !gravada_) return std::nullopt;
  const std::string numero = acesso ? TbConsulta.Lancamento.AsString() : EdtLancto.Text();
  return RegistroDoLancamento(Funcoes, Tabela, "Lançamento " + numero, numero);
}

void TfmCC::Desenha() {
  Layout(R"(
    PageControl1 {
      TabSheet1 {
        @bar {
          GbConsLanc { dtInicio dtFim } EdtConsConta PqConsConta EdtConsEmp RgBusca
          @more {
            EdtCodGrupo PqConsClasse EdtNomeGrupo edtCodHist PqHist edtDescHist /
            EdtConsLanc EdtDocto EdtAObs RgTipo /
            GbConsValor { EdtValorDe EdtValorAte } GbConsVenc { dtVencIni dtVencFim }
            GbConsCont { dtContIni dtContFim }
          }
          @primary BitBtn5
        } /
        DBGridApagar /
        @sums { EdtDebito EdtCredito EdtSaldo } /
        @actions { DtBaixaComp SpeedButton8 SpeedButton6 @apart BitBtn6 }
      }
      TabSheet2 {
        Panel4 {
          @form {
            EdtLancto:2 EdtConta:3 PqConta EdtCodBan EdtDesBan /
            EdtNumDoc EdtTipoDocto EdtDtLanc:2 EdtDtVencto:2 EdtDtCont:2 /
            EdtTipo PqClasse EdtDesTipo EdtHis pqHistorico EdtDescHis /
            CbOper:2 @amount EdtValor:3 EdtValDoc:2 RgSituacao /
            EdtObs:8 EdtTipoLan:2 EdtLancConc:2
          }
        } /
        @compact GroupBox1 { CbEmpFinan / DbgFinanceiro } /
        PanelCont {
          @sides {
            GroupBox2 { DbgContabilidade / PqContaC PqContaD }
            GroupBox3 { DbgRateioCC / PqCCusto }
          }
        } /
        @actions {
          Panel5 { @primary SpeedButton2 SpeedButton1 }
          Panel6 { @primary BitBtn1 BitBtn2 btnConsulta PqFluxo BitBtn7 BitBtn8 @danger BitBtn3 @apart BitBtn4 }
        }
      }
    })");

  // These lists open by a key in a grid or by a button of their own.
  for (TPesquisa* pesquisa : {&PqContaC, &PqContaD, &PqCCusto, &PqFluxo}) pesquisa->SetVisible(false);
  for (MoneyEdit* total : {&EdtValDoc, &EdtDebito, &EdtCredito, &EdtSaldo}) total->SetReadOnly(true);
}

void TfmCC::LigaAcesso() {
  const Date de(1980, 1, 1), ate(2050, 12, 31);
  const std::pair<DateEdit*, DateEdit*> periodos[] = {
      {&dtInicio, &dtFim}, {&dtVencIni, &dtVencFim}, {&dtContIni, &dtContFim}};
  for (const auto& [inicio, fim] : periodos) {
    inicio->SetDate(de);
    fim->SetDate(ate);
    TodayOnEnter(*inicio);
    SameOnEnter(*fim, *inicio);
  }
  DtBaixaComp.SetDate(Today());
  TodayOnEnter(DtBaixaComp);

  Lookups({
      {&EdtConsConta, &PqConsConta, {{"EMPRESA", &EdtConsEmp}}, "Conta inexistente.", true, nullptr},
      {&EdtCodGrupo, &PqConsClasse, {{"DESCRICAO", &EdtNomeGrupo}}, "", true, nullptr},
      {&edtCodHist, &PqHist, {{"DESCRICAO", &edtDescHist}}, "", true, nullptr},
  });

  BitBtn5.OnClick = [this] { BitBtn5Click(); };
  BitBtn6.OnClick = [this] { Close(); };
  DBGridApagar.OnDblClick = [this] { DBGridApagarDblClick(); };
  SpeedButton8.OnClick = [this] { SpeedButton8Click(); };
  SpeedButton6.OnClick = [this] { SpeedButton6Click(); };
}

void TfmCC::LigaManutencao() {
  PqConta.Settings().BuscaTable = &Tabela.TbCadConta();
  Lookups({
      {&EdtConta, &PqConta, {{"BANCO", &EdtCodBan}}, "Conta inexistente.", false, nullptr},
      {&EdtTipo,
       &PqClasse,
       {{"DESCRICAO", &EdtDesTipo}},
       "Classe Gerencial Inválida.",
       false,
       [this] { EdtTipoChange(); }},
      {&EdtHis, &pqHistorico, {{"DESCRICAO", &EdtDescHis}}, "", false, [this] { EdtHisChange(); }},
  });
  EdtCodBan.OnChange = [this] {
    EdtDesBan.SetText(Funcoes.Busca_Valor("CADBAN", {{"BANCO", EdtCodBan.Text()}}, "NOME_BANCO"));
  };

  EdtLancto.OnChange = [this] { EdtLanctoChange(); };
  EdtNumDoc.OnChange = [this] { ValorDocumento(); };
  EdtDtLanc.OnExit = [this] { EdtDtLancExit(); };
  EdtDtCont.OnExit = [this] { EdtDtContExit(); };
  EdtObs.OnExit = [this] { EdtObsExit(); };

  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
  BitBtn3.OnClick = [this] { BitBtn3Click(); };
  BitBtn4.OnClick = [this] { Close(); };
  SpeedButton1.OnClick = [this] { SpeedButton1Click(); };
  SpeedButton2.OnClick = [this] { SpeedButton2Click(); };
  btnConsulta.OnClick = [this] { PqFluxo.AbrePesquisa(); };
  PqFluxo.OnFechaPesquisa = [this] { PqFluxoFechaPesquisa(); };
  BitBtn7.OnClick = [this] { BitBtn7Click(); };
  BitBtn8.OnClick = [this] { BitBtn8Click(); };
}

void TfmCC::LigaGrades() {
  CbEmpFinan.OnChange = [this] { BuscaFinanceiro(); };

  const auto mexe = [this] { mexida_ = mexida_ || TbContabil.Tag == 0; };
  TbContabil.BeforePost = [this, mexe] {
    mexe();
    TbContabilBeforePost();
  };
  TbContabil.AfterPost = [this] { FiltraCCusto(); };
  TbContabil.AfterScroll = [this] { FiltraCCusto(); };
  TbContabil.AfterInsert = [this] { TbContabilAfterInsert(); };
  TbContabil.BeforeDelete = [this, mexe] {
    mexe();
    TbContabilBeforeDelete();
  };
  TbCCusto.BeforePost = mexe;
  TbCCusto.BeforeDelete = mexe;
  TbCCusto.OnNewRecord = [this] { TbCCustoNewRecord(); };

  DbgContabilidade.OnExit = [this] { TbContabil.PostIfEditing(); };
  DbgContabilidade.OnKey = [this](KeyPress& key) { DbgContabilidadeKey(key); };
  DbgRateioCC.OnExit = [this] { TbCCusto.PostIfEditing(); };
  DbgRateioCC.OnKey = [this](KeyPress& key) { DbgRateioCCKey(key); };

  const auto escolhe = [](TPesquisa& pesquisa, TClientDataSet& set, Field& codigo, Field* descricao) {
    pesquisa.OnFechaPesquisa = [&pesquisa, &set, &codigo, descricao] {
      set.Edit();
      codigo = pesquisa.RetornoPesquisa("CODIGO");
      if (descricao != nullptr) *descricao = pesquisa.RetornoPesquisa("DESCRICAO");
    };
  };
  escolhe(PqContaC, TbContabil, TbContabil.Credita, nullptr);
  escolhe(PqContaD, TbContabil, TbContabil.Debita, nullptr);
  escolhe(PqCCusto, TbCCusto, TbCCusto.Codigo, &TbCCusto.CentroCusto);
}

}  // namespace orv
