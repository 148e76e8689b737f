#include "results/rel_cc_mes.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TFmRelCCMes* FmRelCCMes = nullptr;

namespace {

const Unit kUnit("Relccmes", {"TFmRelCCMes", "Relatório de Fluxo Mensal", ScreenKind::Child, "Resultado",
                              [](Application& a) { return std::make_unique<TFmRelCCMes>(a); }});

// The periods are open on all days at first.
const Date kPrimeiro(1900, 1, 1), kUltimo(2050, 1, 1);

}  // namespace

TFmRelCCMes::TFmRelCCMes(Application& application)
    : ReportScreen(application, "TFmRelCCMes", "FmRelCCMes", "Relatório de Fluxo Mensal"),
      DBGrid1(*this, "DBGrid1", TbMeses, GridColumns(kPorMes), true, "Mês a mês"),
      ChMeses(*this, "ChMeses", "Faturado, recebido e pago por mês", TbMeses, "Mes",
              {{"Faturado", "Faturado"}, {"Recebido", "Recebido"}, {"Pagos", "Pagos", true}}, kMeses),
      DBGrid2(*this, "DBGrid2", TbGrupos, GridColumns(kPorGrupo), true, "Pendentes e pagos por grupo"),
      DBGrid3(*this, "DBGrid3", TbRel, GridColumns(kRel), true, "Totais dos períodos"),
      DBGrid4(*this, "DBGrid4", TbVencto, GridColumns(kVencto), true, "Faturamento por prazo"),
      DBGrid5(*this, "DBGrid5", TbEmi, GridColumns(kEmi), true, "Faturamento por semana do mês") {
  Layout(R"(
    @bar {
      EdtAno
      @more {
        GbEmissao { EdtEmiIni EdtEmiFim } GbRecebimento { EdtRecIni EdtRecFim }
        GbVencimento { EdtVenIni EdtVenFim } /
        GbBancos { EdtBanco PqBanco SpeedButton1 }
        GbClientes { CbClientes EdtCliente PqCliente SpeedButton2 }
        GbClasses { CbClassePag EdtClasse PqClasse SpeedButton3 }
      }
      @primary BtnExecutaSQL
    } /
    PageControl1 {
      TsMeses { DBGrid1 }
      TsGrafico { ChMeses }
      TsGrupos { DBGrid2 }
      TsPeriodo { DBGrid3 / DBGrid4 / DBGrid5 }
    } /
    @actions { BtnImprimir @apart BitBtn5 }
  )");
  for (TClientDataSet* set : {&TbRel, &TbGrupo, &TbVencto, &TbEmi, &TbMeses, &TbGrupos}) AddSet(*set);
  DBGrid2.FindColumn("Tipo")->words = {{"R", "Receber"}, {"P", "Pagar"}};
  CriaTabela();
  EdtAno.SetText(std::to_string(Today().Year()));
  EdtBanco.SetReadOnly(true);
  for (const auto& [de, ate] : {std::pair(&EdtEmiIni, &EdtEmiFim), std::pair(&EdtRecIni, &EdtRecFim),
                                std::pair(&EdtVenIni, &EdtVenFim)}) {
    Period(*de, *ate);
    de->SetDate(kPrimeiro);
    ate->SetDate(kUltimo);
  }
  ListField(EdtBanco, PqBanco, "BANCO", Choice::Adds, SpeedButton1);
  ListField(EdtCliente, PqCliente, "CODCLI", Choice::Adds, SpeedButton2);
  ListField(EdtClasse, PqClasse, "CODIGO", Choice::Adds, SpeedButton3);
  BtnExecutaSQL.OnClick = [this] { BtnExecutaSQLClick(); };
  BtnImprimir.OnClick = [this] { Funcoes.Chama_Relatorio(*this, "WCCMes"); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  DBGrid3.OnDblClick = [this] { DBGrid3DblClick(); };
  DBGrid4.OnDblClick = [this] { DBGrid4DblClick(); };
  DBGrid5.OnDblClick = [this] { DBGrid5DblClick(); };
  // The report asks for the fields of the periods, and means what was gathered by them.
  const auto responde = [this](const DateEdit& campo, auto dia) {
    Answers[campo.Name()] = {0, [this, dia](auto) { return Value(dia(consulta_)); }};
  };
  responde(EdtEmiIni, [](const Consulta& c) { return c.emissao.de; });
  responde(EdtEmiFim, [](const Consulta& c) { return c.emissao.ate; });
  responde(EdtRecIni, [](const Consulta& c) { return c.recebimento.de; });
  responde(EdtRecFim, [](const Consulta& c) { return c.recebimento.ate; });
  responde(EdtVenIni, [](const Consulta& c) { return c.vencimento.de; });
  responde(EdtVenFim, [](const Consulta& c) { return c.vencimento.ate; });
}

}  // namespace orv
