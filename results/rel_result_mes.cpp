#include "results/rel_result_mes.h"

#include "frame/entry/unit.h"

namespace orv {

thread_local TfmRelResultMes* fmRelResultMes = nullptr;

namespace {

const Unit kUnit("Relresultmes",
                 {"TfmRelResultMes", "Relatório de Resultado Mensal", ScreenKind::Child, "Resultado",
                  [](Application& a) { return std::make_unique<TfmRelResultMes>(a); }});

}  // namespace

TfmRelResultMes::TfmRelResultMes(Application& application)
    : ReportScreen(application, "TfmRelResultMes", "fmRelResultMes", "Relatório de Resultado Mensal"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, GridColumns(kRelatorio), true, "Resultado por classe"),
      DBGrid2(*this, "DBGrid2", TbGrafico, GridColumns(kGrafico), true, "Resultado mês a mês") {
  Layout(R"(
    @bar {
      GbPeriodo { EdtDataDe edtDataAte } RgRegime CbOrca
      @more {
        GbFiltros { EdtClasse PqClasse EdtDescClasse edtConta PqConta SpeedButton1 } /
        RgData GbOpcoes { CbTodasEmp CbLoja CbDevol CbVar }
      }
      @primary BitBtn29
    } /
    PageControl1 { TabSheet1 { DBGrid1 } TabSheet2 { Grafico / DBGrid2 } } /
    @actions { BitBtn33 PopupMenu1 { Detalhamento1 } @apart BitBtn5 }
  )");
  DBGrid1.FindColumn("TpConta")->words = {{"T", "Título", ""}, {"A", "Analítica", "muted"}};
  AddSet(TbRelatorio);
  AddSet(TbGrafico);
  CriaTabela();
  Period(EdtDataDe, edtDataAte);
  PqConta.Settings().Filtro = "IMP_FLUXO = " + Funcoes.Aspas("S");

  Lookups({{&EdtClasse, &PqClasse, {{"DESCRICAO", &EdtDescClasse}}, "", true, nullptr}});
  ListField(edtConta, PqConta, "CONTA", Choice::Adds, SpeedButton1);
  RgRegime.OnChange = [this] { RgRegimeClick(); };
  CbOrca.OnChange = CbVar.OnChange = [this] { MostraColunas(); };
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { BitBtn33Click(); };
  BitBtn5.OnClick = [this] { Close(); };
  // The item shows as it is before the menu opens, too.
  PopupMenu1.OnPopup = DBGrid1.OnColEnter = [this] { PopupMenu1Popup(); };
  Detalhamento1.OnClick = [this] { BuscaDetalhamento(); };
  DBGrid1.OnDblClick = [this] {
    PopupMenu1Popup();
    if (Detalhamento1.Enabled()) BuscaDetalhamento();
  };
  Answers["Filtros"] = {0, [this](auto) { return Value(Filtros()); }};
  MostraColunas();
  RgRegimeClick();
}

// Accounts are those of the ledger, and of settlements; shops and returns are those of titles.
void TfmRelResultMes::RgRegimeClick() {
  const Regime regime = RegimeEscolhido();
  const bool caixa = regime == Regime::Caixa, contas = caixa || regime == Regime::Pagamento;
  RgData.SetEnabled(contas);
  PqConta.SetEnabled(contas);
  SpeedButton1.SetEnabled(contas);
  for (CheckBox* box : {&CbLoja, &CbDevol}) {
    if (caixa) box->SetChecked(false);
    box->SetEnabled(!caixa);
  }
  if (!contas && !edtConta.Empty()) edtConta.Clear();
  PopupMenu1Popup();
}

void TfmRelResultMes::MostraColunas() {
  for (const ReportField& campo : kRelatorio) {
    const std::string_view nome = campo.name;
    const bool variacao = nome.starts_with("Var"), orcado = nome.find("Orc") != std::string_view::npos;
    if (variacao || orcado)
      DBGrid1.SetColumnVisible(nome, (!variacao || CbVar.Checked()) && (!orcado || CbOrca.Checked()));
  }
}

void TfmRelResultMes::BitBtn29Click() {
  Gather({&TbRelatorio, &TbGrafico}, [this](Gathering& andamento) { Monta(andamento); });
  PopupMenu1Popup();
}

void TfmRelResultMes::BitBtn33Click() {
  Funcoes.Chama_Relatorio(*this, CbOrca.Checked() ? "WResultOrcaMes" : "WResultMes");
}

int TfmRelResultMes::MesEscolhido() const {
  const std::string& campo = DBGrid1.SelectedField();
  for (int mes = 1; mes <= kMeses; ++mes)
    if (campo == "Mes" + std::to_string(mes)) return mes;
  return 0;
}

void TfmRelResultMes::PopupMenu1Popup() {
  Detalhamento1.SetEnabled(RegimeEscolhido() == Regime::Competencia && !TbRelatorio.IsEmpty() &&
                           MesEscolhido() > 0);
}

// What was asked for, as the paper tells it.
std::string TfmRelResultMes::Filtros() const {
  std::string texto = "Regime: " + RgRegime.Text();
  if (RegimeEscolhido() == Regime::Caixa) texto += " (" + RgData.Text() + ")";
  if (!EdtClasse.Empty()) texto += " - Classe: " + EdtClasse.Text() + " " + EdtDescClasse.Text();
  if (!edtConta.Empty()) texto += " - Contas: " + edtConta.Text();
  for (const CheckBox* box : {&CbTodasEmp, &CbLoja, &CbDevol})
    if (box->Checked()) texto += " - " + box->Caption();
  return texto;
}

void TfmRelResultMes::BuscaDetalhamento() {
  const int mes = MesEscolhido();
  if (mes == 0 || TbRelatorio.IsEmpty()) return;
  const auto titulos = [&](const char* prefixo, const char* tabela, const char* numero, const char* classe,
                           const char* valor, const char* dia, const char* situacao) {
    const std::string de = std::string(tabela) + ".", status = de + "STATUS",
                      mes_do_dia = "UDF_MONTH(" + de + dia + ")";
    std::string aceitos = "'N'";
    if (CbDevol.Checked()) aceitos += ", 'DV'";
    if (CbOrca.Checked()) aceitos += ", 'O'";
    return "SELECT CASE " + status + " WHEN 'N' THEN '" + prefixo + " NORMAL' WHEN 'O' THEN '" + prefixo +
           " ORÇAMENTO' WHEN 'DV' THEN '" + prefixo + " DEVOLUÇÃO' END AS \"Status\", " + de + numero +
           " AS \"Número\", " + de + classe +
           " AS \"Grupo\", SUBGRUPO.DESCRICAO AS \"Descrição\", SUBGRUPO.CONTA AS \"Conta\", "
           "SUBGRUPO.OPERACAO AS \"Operação\", SUM(" +
           de + valor + ") AS \"Valor\", " + mes_do_dia +
           " AS \"Mês\", SUBGRUPO.TP_CONTA AS \"Tipo\" FROM {" + tabela + "} " + tabela +
           " INNER JOIN {SUBGRUPO} SUBGRUPO ON (" + de + classe + " = SUBGRUPO.CODIGO) WHERE 1 = 1" +
           WhereBetween(de + dia, EdtDataDe.Date(), edtDataAte.Date()) +
           " AND SUBGRUPO.TIPO NOT IN ('Transferencia', 'Loja', 'Custo Producao') AND " + status + " IN (" +
           aceitos + ")" + situacao + " AND " + Igual("SUBGRUPO.CONTA", TbRelatorio["Classe"].AsString()) +
           " AND " + mes_do_dia + " = " + std::to_string(mes) + " GROUP BY " + status + ", " + de + numero +
           ", " + de + classe + ", SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, SUBGRUPO.OPERACAO, " + mes_do_dia +
           ", SUBGRUPO.TP_CONTA";
  };
  ShowDetail("Detalhamento",
             ForCompanies(titulos("REC.", "RECEBER", "NUMERO", "CLASSE", "VALOR2", "DT_EMISSAO",
                                  " AND RECEBER.SITUACAO <> 'P'") +
                              "\nUNION ALL\n" +
                              titulos("PAG.", "PAGTO", "NUM_AP", "NUM_OS", "VALOR", "DT_ATUAL", ""),
                          "", false, "ORDER BY 2"));
}

}  // namespace orv
