#include "reports/rel_cc.h"

#include <tuple>

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelCC* fmRelCC = nullptr;

namespace {

const Unit kUnit("Relcc", {"TfmRelCC", "Relatório de Lançamentos", ScreenKind::Child, "Contas Correntes",
                           [](Application& a) { return std::make_unique<TfmRelCC>(a); }});

}  // namespace

TfmRelCC::TfmRelCC(Application& application)
    : ReportScreen(application, "TfmRelCC", "fmRelCC", "Relatório de Lançamentos"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, GridColumns(kRelatorio), true, "Lançamentos"),
      DBGrid2(*this, "DBGrid2", TbFinan, GridColumns(kFinan), true, "Financeiro") {
  Layout(R"(
    @bar {
      GbPeriodo { EdtDataDe edtDataAte } RelConta wwrelConta Edit1 RgTipo
      @more {
        RgAgrupar / RgData RgBusca /
        GbFiltros { RelCodBan PqBanco RelDesBan EdtHistHistorico pqHistorico EdtDesHistorico EdtDocto } /
        GbClasse { EdtClasseIni PqClasseIni EdtClasseFim PqClasseFim }
        GbOpcoes { CbZeradas CbFinanceiro cbAgpPendente }
      }
      @primary BitBtn29
    } /
    @picture { GrafDia } / DBGrid1 / @compact DBGrid2 /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  AddSet(TbRelatorio);
  AddSet(TbFinan);
  AddSet(GrafDia.Rows);
  AbreTabelas({"tbSubgrupo", "tbBanco", "tbCadConta", "tbContaCor", "tbHistorico"});
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbFinan, kFinan);
  Period(EdtDataDe, edtDataAte);

  Lookups({{&RelConta, &wwrelConta, {{"EMPRESA", &Edit1}, {"BANCO", &RelCodBan}}, "", false, nullptr},
           {&RelCodBan, &PqBanco, {}, "", false, nullptr},
           {&EdtHistHistorico, &pqHistorico, {}, "", false, nullptr},
           {&EdtClasseIni, &PqClasseIni, {}, "", false, nullptr},
           {&EdtClasseFim, &PqClasseFim, {}, "", false, nullptr}});
  RelCodBan.OnChange = [this] { RelCodBanChange(); };
  EdtHistHistorico.OnChange = [this] { EdtHistHistoricoChange(); };
  RgTipo.OnChange = [this] { RgTipoClick(); };
  EnterMovesOn(false);
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  RgTipoClick();
}

// The bank is the account's where one account is asked for.
void TfmRelCC::RgTipoClick() {
  const bool livre = RgTipo.ItemIndex() != 0;
  RelCodBan.SetEnabled(livre);
  PqBanco.SetEnabled(livre);
}

void TfmRelCC::RelCodBanChange() {
  TOrvTable& bancos = Tabela.tbBanco();
  RelDesBan.SetText(bancos.Locate("BANCO", RelCodBan.Text()) ? bancos["NOME_BANCO"].AsString() : "");
}

void TfmRelCC::EdtHistHistoricoChange() {
  TOrvTable& historicos = Tabela.tbHistorico();
  EdtDesHistorico.SetText(
      historicos.Locate("HISTORICO", EdtHistHistorico.Text()) ? historicos["DESCRICAO"].AsString() : "");
}

// What was gathered is printed, whatever was chosen since then.
void TfmRelCC::BitBtn33Click() {
  const auto agora = std::tuple(RgData.ItemIndex(), RgAgrupar.ItemIndex(), cbAgpPendente.Checked());
  const auto escolhe = [this](const std::tuple<int, int, bool>& como) {
    RgData.SetItemIndex(std::get<0>(como));
    RgAgrupar.SetItemIndex(std::get<1>(como));
    cbAgpPendente.SetChecked(std::get<2>(como));
  };
  if (como_) escolhe(*como_);
  try {
    Funcoes.Chama_Relatorio(*this, "WccFluxo");
  } catch (...) {
    escolhe(agora);
    throw;
  }
  escolhe(agora);
}

void TfmRelCC::BitBtn29Click() {
  if (RgTipo.ItemIndex() == 0) {
    if (RelDesBan.Empty()) {
      Inform("Banco inexistente.");
      wwrelConta.AbrePesquisa();
      return;
    }
    if (RelConta.Empty()) {
      Inform("Conta inexistente.");
      RelConta.SetFocus();
      return;
    }
  }
  Gather({&TbRelatorio, &TbFinan}, [this](Gathering& gathering) { Monta_Rel(gathering); });
}

}  // namespace orv
