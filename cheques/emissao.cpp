// How the screen that issues cheques is made, what its fields do, and how a cheque gets its number.
#include "cheques/emissao.h"

#include "frame/entry/unit.h"
#include "rules/cheque_impresso.h"
#include "rules/historico.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmEmissao* fmEmissao = nullptr;

namespace {

const Unit kUnit("Chequeemi", {"TfmEmissao", "Emissão de cheque", ScreenKind::Child, "Cheques",
                               [](Application& a) { return std::make_unique<TfmEmissao>(a); }});

constexpr std::size_t kDigitos = 6, kChave = 7;
constexpr const char* kConta = "Conta Inválida.";
constexpr const char* kHistorico = "Histórico Inválido.";

}  // namespace

TfmEmissao::TfmEmissao(Application& application)
    : Child(application, "TfmEmissao", "fmEmissao", "Emissão de cheque"),
      CodEmpresa(Trim(Funcoes.BuscaParametro("FAC", 80))),
      ParamRateio(Funcoes.BuscaParametro("FIN", 80) == "S"),
      ParamRateioCredito(Funcoes.BuscaParametro("FIN", 100) == "S") {
  fmEmissao = this;
  AbreTabelas({"tbsubGrupo", "tbBanco", "TbCadConta"});
  for (DataSet* set : {static_cast<DataSet*>(&TbPagto), static_cast<DataSet*>(&TbCheque),
                       static_cast<DataSet*>(&QryConsulta), static_cast<DataSet*>(&QryDup)}) {
    AddSet(*set);
  }
  TbPagto.CreateDataSet();
  TbCheque.CreateDataSet();
  Answers["Extenso"] = RespondeExtenso(Funcoes);
  Desenha();
  LigaAcesso();
  LigaTitulos();
  LigaCheque();
  LigaAcoes();
  DtEmissao.SetDate(Today());
  DtVencto.SetDate(Today());
  RgTipo.SetFocus();
}

std::optional<Registro> TfmEmissao::RegistroAtual() {
  const bool acesso = PageControl1.ActivePage() == &TabSheet1;
  DataSet& set = acesso ? static_cast<DataSet&>(QryConsulta) : TbCheque;
  if (!set.Active() || set.IsEmpty()) return std::nullopt;
  return RegistroDoLancamento(Funcoes, Tabela, "Cheque " + set["NUMERO"].AsString(),
                              set[acesso ? "CHAVE" : "LACTO"].AsString());
}

void TfmEmissao::Desenha() {
  Layout(R"(
    PageControl1 {
      TabSheet1 {
        @bar {
          GbCEmissao { DtCIni DtCFim } EdtCConta PqCConta edtCNomeConta EdtCCheque RgCStatus
          @more { EdtCCodBan PqCBanco EdtCNomeBan EdtCCodFor PqCFornec EdtCNomeFor }
          @primary BitBtn3
        } /
        DBGrid1
      }
      TabSheet2 {
        @sides {
          PainelCheque {
            @form {
              RgTipo:12 /
              EdtConta:8 wwBuscaConta EdtBanco EdtDocto:4 /
              EdtHist:5 PqHist EdtDescHist EdtCodClasse:5 PqClasse EdtDescClasse EdtOpera CbPendente:2 /
              EdtDesNom:8 PqForAnt @amount EdtValor:4 /
              DtEmissao:3 DtVencto:3 EdtObs:6 /
              Panel5 { EdtHistAnt PqHistAnt EdtDescHistAnt } /
              Panel6 { EdtContaDep PqContaDeposito DtDeposito }
            } /
            @compact GbFila { DBGrid2 }
          }
          GbPagar {
            @bar {
              edtCodCliente PqCliente edtNomeCliente EdtAP
              @more {
                GbEmissao { edtEmiIni edtEmiFim } GbVencimento { edtVenIni edtVenFim } /
                EdtHist1 PqHist1 EdtDescHist1 CbEmpresa
              }
              BitBtn5
            } /
            wwDBGrid1
          }
        } /
        @actions {
          EdtTotal @primary BitBtn8 BitBtn4 RgTpImpressora BtnImprimir BitBtn6 BitBtn1 @danger BitBtn2 @danger BitBtn7
          @apart BitBtn9
        }
      }
    })");
  wwDBGrid1.SetRowsFixed(true);
  EdtTotal.SetReadOnly(true);
  EdtTotal.SetAmount(Currency());
  Panel5.SetVisible(false);
  Panel6.SetVisible(false);
}

void TfmEmissao::LigaAcesso() {
  DtCIni.SetDate(Date(2000, 1, 1));
  DtCFim.SetDate(Date(2050, 1, 1));
  Lookups({
      {&EdtCCodBan, &PqCBanco, {{"NOME_BANCO", &EdtCNomeBan}}},
      {&EdtCConta, &PqCConta, {{"EMPRESA", &edtCNomeConta}}},
      {&EdtCCodFor, &PqCFornec, {{"NOME", &EdtCNomeFor}}},
  });
  BitBtn3.OnClick = [this] { BitBtn3Click(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
}

void TfmEmissao::LigaTitulos() {
  const std::pair<DateEdit*, DateEdit*> periodos[] = {{&edtEmiIni, &edtEmiFim}, {&edtVenIni, &edtVenFim}};
  for (const auto& [inicio, fim] : periodos) {
    inicio->SetDate(Date(1980, 1, 1));
    fim->SetDate(Date(2050, 12, 31));
    TodayOnEnter(*inicio);
    SameOnEnter(*fim, *inicio);
  }
  Lookups({
      {&edtCodCliente, &PqCliente, {{"NOME", &edtNomeCliente}}, "Fornecedor Inválido.", true},
      {&EdtHist1, &PqHist1, {{"DESCRICAO", &EdtDescHist1}}},
  });
  RgTipo.OnChange = [this] { RgTipoClick(); };
  BitBtn5.OnClick = [this] { BitBtn5Click(); };
  BitBtn4.OnClick = [this] { BitBtn4Click(); };
  TbPagto.BeforePost = [this] { TbPagtoBeforePost(); };
  TbPagto.AfterPost = [this] { TbPagtoAfterPost(); };
  marcas_.MoveOn([this] { return !SameText(wwDBGrid1.SelectedField(), "Baixar"); });
  TbPagto.Baixar.OnChange = [this, adiante = std::move(TbPagto.Baixar.OnChange)] {
    // Ticked anew it is there to be paid.
    if (TbPagto.Baixar.AsString() != "S")
      apanhados_.erase(TbPagto.Numero.AsString() + TbPagto.Empresa.AsString());
    adiante();
  };
  wwDBGrid1.OnExit = [this] { TbPagto.PostIfEditing(); };
}

void TfmEmissao::LigaCheque() {
  const auto pendente = [this] {
    CbPendente.SetChecked(Funcoes.LancamentoPendente(EdtConta.Text(), EdtHist.Text()) == "S");
  };
  Lookups({
      {&EdtConta, &wwBuscaConta, {{"BANCO", &EdtBanco}}, kConta, false, [this] { NotaRegistrado(); }},
      {&EdtHist, &PqHist, {{"DESCRICAO", &EdtDescHist}}, kHistorico, false, pendente},
      {&EdtCodClasse,
       &PqClasse,
       {{"DESCRICAO", &EdtDescClasse}, {"OPERACAO", &EdtOpera}},
       "Classe Gerencial Inválida."},
      {&EdtHistAnt, &PqHistAnt, {{"DESCRICAO", &EdtDescHistAnt}}, kHistorico},
      {&EdtContaDep, &PqContaDeposito},
  });
  wwBuscaConta.OnFechaPesquisa = [this] {
    EdtConta.SetText(wwBuscaConta.RetornoPesquisa("CONTA"));
    EdtBanco.SetText(wwBuscaConta.RetornoPesquisa("BANCO"));
    EdtConta.SetFocus();
  };
  // The deposit's field does what the account's does, and to the account's.
  EdtContaDep.OnChange = EdtConta.OnChange;
  EdtContaDep.OnExit = EdtConta.OnExit;

  EdtDocto.OnChange = [this] { NotaRegistrado(); };
  EdtDocto.OnEnter = [this] { EdtDoctoEnter(); };
  EdtDocto.OnExit = [this] { EdtDoctoExit(); };

  EdtDesNom.OnChange = [this] { EdtDesNom.SetText(Upper(EdtDesNom.Text())); };
  EdtDesNom.OnExit = [this] { EdtObs.SetText("PAGTO DE CHEQUE A " + EdtDesNom.Text()); };
  EdtDesNom.OnKey = [this](KeyPress& key) {
    if (key.key != "F4") return;
    key.handled = true;
    PqForAnt.AbrePesquisa();
  };
  PqForAnt.OnFechaPesquisa = [this] {
    EdtDesNom.SetText(PqForAnt.RetornoPesquisa("NOME"));
    CodFornecedor = PqForAnt.RetornoPesquisa("CODCLI");
  };

  // The dates of the other page are entered as this one is, and keep what they hold.
  for (DateEdit* data : {&DtEmissao, &DtCIni, &DtCFim})
    data->OnEnter = [this] { DtEmissao.SetDate(Today()); };
  TodayOnEnter(DtVencto);
}

void TfmEmissao::LigaAcoes() {
  BitBtn8.OnClick = [this] { BitBtn8Click(); };
  BtnImprimir.OnClick = [this] { BtnImprimirClick(); };
  BitBtn6.OnClick = [this] { Funcoes.Chama_Relatorio(*this, "WEmiRecCheque"); };
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
  BitBtn7.OnClick = [this] { BitBtn7Click(); };
  BitBtn9.OnClick = [this] { Close(); };
}

// --- What the fields do.

void TfmEmissao::RgTipoClick() {
  EsvaziaTitulos();
  for (Control* dos_titulos : std::initializer_list<Control*>{&GbPagar, &BitBtn4})
    dos_titulos->SetEnabled(RgTipo.ItemIndex() == kTitulos);
  Panel5.SetVisible(RgTipo.ItemIndex() == kAntecipado);
  Panel6.SetVisible(RgTipo.ItemIndex() == kDeposito);
  if (RgTipo.ItemIndex() == kDeposito) DtDeposito.SetText(DtVencto.Text());
}

void TfmEmissao::BitBtn1Click() {
  for (Edit* campo : std::initializer_list<Edit*>{&EdtBanco, &EdtCodClasse, &EdtHist, &EdtConta, &EdtDocto,
                                                  &EdtDesNom, &EdtObs, &EdtAP}) {
    campo->Clear();
  }
  DtEmissao.SetDate(Today());
  DtVencto.SetDate(Today());
  EdtValor.SetAmount(Currency());
  EsvaziaTitulos();
  TbCheque.EmptyDataSet();
}

// --- Numbering.

void TfmEmissao::EdtDoctoEnter() {
  EdtDocto.SetText(ProximoCheque());
  NotaRegistrado();
}

void TfmEmissao::EdtDoctoExit() {
  if (EdtDocto.Empty()) return EdtDocto.SetFocus();
  if (!Funcoes.Existe("CHEQUE_PRE", {{"CONTA", EdtConta.Text()}, {"NUMERO", EdtDocto.Text()}})) return;
  Inform("Cheque já Gerado.");
  EdtDocto.Clear();
  EdtDocto.SetFocus();
}

std::string TfmEmissao::ProximoCheque() {
  // Keys grow with time: the latest cheque of the account and its number in one.
  const std::string ultimo =
      Tabela.IBDatabase()
          .Scalar("SELECT MAX(LPAD(CHAVE, " + std::to_string(kChave) +
                  ", '0') || COALESCE(NUMERO, '')) FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) + " WHERE " +
                  Igual("CONTA", EdtConta.Text()) + " AND " + Igual("BANCO", EdtBanco.Text()))
          .AsString();
  const std::string anterior = "0" + std::string(Trim(ultimo.size() > kChave ? ultimo.substr(kChave) : ""));
  // What isn't a number counts as none.
  const bool digitos = anterior.find_first_not_of("0123456789") == std::string::npos;
  for (int64_t numero = (digitos ? std::stoll(anterior) : 0) + 1;; ++numero) {
    std::string texto = std::to_string(numero);
    if (texto.size() < kDigitos) texto.insert(0, kDigitos - texto.size(), '0');
    if (!Funcoes.Existe("CHEQUE_PRE",
                        {{"CONTA", EdtConta.Text()}, {"BANCO", EdtBanco.Text()}, {"NUMERO", texto}})) {
      return texto;
    }
  }
}

}  // namespace orv
