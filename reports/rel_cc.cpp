#include "reports/rel_cc.h"

#include <tuple>

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelCC* fmRelCC = nullptr;

namespace {

const Unit kUnit("Relcc", {"TfmRelCC", "Relatório de Lançamentos", ScreenKind::Child, "Contas Correntes",
                           [](Application& a) { return std::make_unique<TfmRelCC>(a); }});

std::vector<GridColumn> ColunasRelatorio() {
  return {{"DtLanc", "Lançamento"},
          {"DtCont", "Contabilização"},
          {"DtVencto", "Vencimento"},
          {"Lancamento", "Número"},
          {"Numero", "Documento"},
          {"Conta", "Conta"},
          {"Operacao", "Op."},
          {"Valor", "Valor", 14},
          {"Saldo", "Saldo", 14},
          {"Pendente", "Pend."},
          {"Pessoa", "Cliente/Fornecedor", 30},
          {"Obs", "Observação", 40},
          {"CodGrupo", "Classe"},
          {"DesGrupo", "Descrição da Classe", 28},
          {"CodHistorico", "Hist.", 6},
          {"Historico", "Histórico", 24},
          {"Banco", "Banco"},
          {"Nome_Banco", "Nome do Banco", 24},
          {"Agencia", "Agência"},
          {"Empresa", "Titular", 24},
          {"SaldoIni", "Saldo Anterior", 14},
          {"Limite", "Limite", 14},
          {"Tipo", "Tipo"}};
}

std::vector<GridColumn> ColunasFinan() {
  return {{"Tipo", "Tipo"},
          {"Lancto", "Lançamento"},
          {"Numero", "Número"},
          {"Dupli", "Duplicata"},
          {"Docto", "Documento"},
          {"Codcli", "Código"},
          {"Nome", "Cliente/Fornecedor", 30},
          {"Dt_Emissao", "Emissão"},
          {"Dt_Vencto", "Vencimento"},
          {"Valor", "Valor", 14},
          {"Val_Pag", "Pago", 14},
          {"Juros", "Juros", 12},
          {"Val_Dev", "Devolvido", 12},
          {"Desconto", "Desconto", 12},
          {"Classe", "Classe"},
          {"Desc_Classe", "Descrição da Classe", 28},
          {"CodHist", "Hist.", 6},
          {"DescHist", "Histórico", 24},
          {"ContaC", "Conta Crédito"},
          {"ContaD", "Conta Débito"},
          {"Obs", "Observação", 40},
          {"Obs_Baixa", "Observação da Baixa", 40},
          {"CNPJ", "CNPJ"}};
}

}  // namespace

TfmRelCC::TfmRelCC(Application& application)
    : ReportScreen(application, "TfmRelCC", "fmRelCC", "Relatório de Lançamentos"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, ColunasRelatorio(), true, "Lançamentos"),
      DBGrid2(*this, "DBGrid2", TbFinan, ColunasFinan(), true, "Financeiro") {
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
    DBGrid1 / @compact DBGrid2 /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  DBGrid1.SetDropZeros(true);
  AddSet(TbRelatorio);
  AddSet(TbFinan);
  AbreTabelas({"tbSubgrupo", "tbBanco", "tbCadConta", "tbContaCor", "tbHistorico"});
  CriaRelatorio();
  TbFinan.CreateDataSet();
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
