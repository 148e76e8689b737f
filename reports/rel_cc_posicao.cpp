#include "reports/rel_cc_posicao.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TFmRelCCPosicao* FmRelCCPosicao = nullptr;

namespace {

const Unit kUnit("Relccposicao",
                 {"TFmRelCCPosicao", "Relatório de Posição do Conta Corrente", ScreenKind::Child,
                  "Contas Correntes", [](Application& a) { return std::make_unique<TFmRelCCPosicao>(a); }});

// Of the days and months of the longest period that anybody asks for.
constexpr int kPontosNaTela = 400;

}  // namespace

TFmRelCCPosicao::TFmRelCCPosicao(Application& application)
    : ReportScreen(application, "TFmRelCCPosicao", "FmRelCCPosicao",
                   "Relatório de Posição do Conta Corrente"),
      Grafico(*this, "Grafico", "Posição ao fim de cada dia", TbPosicao, "Periodo",
              {{"Receber", "A Receber", true}, {"Pagar", "A Pagar", true}}, kPontosNaTela),
      DBGrid3(*this, "DBGrid3", TbPosicao, GridColumns(kPosicao), true, "Posição e o que a moveu"),
      DBGrid1(*this, "DBGrid1", TbReceber, GridColumns(kReceber), true, "A Receber"),
      DBGrid2(*this, "DBGrid2", TbPagar, GridColumns(kPagar), true, "A Pagar") {
  Layout(R"(
    @bar {
      GbPeriodo { EdtDataIni EdtDataFim } EdtCodCli PqCliente EdtNomeCli CbReceber CbPagar
      @more {
        GbFiltros {
          EdtCodClasse PqClasse EdtDescClasse CbSituacao EdtSituacao PqSituacao SpeedButton2 CbEmpresa
        }
      }
      @primary BtnExecutaSQL
    } /
    PageControl1 {
      TsPosicao { @sides { Grafico DBGrid3 } }
      TsReceber { DBGrid1 }
      TsPagar { DBGrid2 }
    } /
    @actions { BtnImprimir @apart BitBtn5 }
  )");
  AddSet(TbReceber);
  AddSet(TbPagar);
  AddSet(TbPosicao);
  AbreTabelas({"tbEntidade"});
  LayDown(TbReceber, kReceber);
  LayDown(TbPagar, kPagar);
  LayDown(TbPosicao, kPosicao);
  EdtDataIni.SetDate(Today());
  EdtDataFim.SetDate(Today());
  TodayOnEnter(EdtDataIni);
  SameOnEnter(EdtDataFim, EdtDataIni);

  Lookups({{&EdtCodCli, &PqCliente, {{"NOME", &EdtNomeCli}}, "", true, nullptr},
           {&EdtCodClasse, &PqClasse, {{"DESCRICAO", &EdtDescClasse}}, "", true, nullptr}});
  PqSituacao.Settings().MultiSelecao = true;
  ListField(EdtSituacao, PqSituacao, "CODIGO", Choice::Adds, SpeedButton2);
  BtnExecutaSQL.OnClick = [this] { BtnExecutaSQLClick(); };
  BtnImprimir.OnClick = [this] { Funcoes.Chama_RelatorioWin(*this, "WCCPosicao"); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { MostraTitulo(kLadoReceber, DBGrid1, TbReceber); };
  DBGrid2.OnDblClick = [this] { MostraTitulo(kLadoPagar, DBGrid2, TbPagar); };
  DBGrid3.OnDblClick = [this] { MostraDias(); };
  Answers["Consultado"] = {0, [this](auto) { return Value(consulta_.texto); }};
  Answers["BuscouReceber"] = {0, [this](auto) { return Value(receber_.pedida ? 1 : 0); }};
  Answers["BuscouPagar"] = {0, [this](auto) { return Value(pagar_.pedida ? 1 : 0); }};
}

void TFmRelCCPosicao::BtnExecutaSQLClick() {
  Gather({&TbReceber, &TbPagar, &TbPosicao}, [this](Gathering& gathering) { Monta(gathering); });
}

}  // namespace orv
