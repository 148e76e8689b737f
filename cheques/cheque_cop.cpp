#include "cheques/cheque_cop.h"

#include "frame/entry/unit.h"
#include "rules/cheque_impresso.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmChequeCop* fmChequeCop = nullptr;

namespace {

const Unit kUnit("Chequecop", {"TfmChequeCop", "Emissão de cópia de cheque", ScreenKind::Child, "Cheques",
                               [](Application& a) { return std::make_unique<TfmChequeCop>(a); }});

enum Cheque { kProprio = 0, kCliente = 1 };
enum Impressora { kTexto = 0, kGrafico = 1, kSerial = 2 };

}  // namespace

TfmChequeCop::TfmChequeCop(Application& application)
    : Child(application, "TfmChequeCop", "fmChequeCop", "Emissão de cópia de cheque") {
  AbreTabelas({"tbsubGrupo", "tbBanco", "tbCadConta", "tbContaCor"});
  Cria_Tabela();
  Layout(R"(
    PainelDados {
      @form {
        EdtCodBan pqBanco Edit6 Edit4:3 /
        EdtDesNom:6 @amount EdtValor:3 Edit7:3 /
        RgTipo:5 TpImpressora:7
      }
    } /
    DBGrid1 /
    @actions { @primary BitBtn2 BitBtn8 @danger BitBtn1 @apart BitBtn9 }
  )");
  Lookups({{.field = &EdtCodBan, .lookup = &pqBanco, .shows = {{"NOME_BANCO", &Edit6}}, .optional = true}});
  pqBanco.Settings().BuscaTable = &Tabela.tbBanco();
  Edit4.OnExit = [this] { Edit4Exit(); };
  TodayOnEnter(Edit7);
  EnterMovesOn(true);
  Answers["Extenso"] = RespondeExtenso(Funcoes);
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
  BitBtn8.OnClick = [this] { BitBtn8Click(); };
  BitBtn9.OnClick = [this] { Close(); };
  EdtCodBan.SetFocus();
}

void TfmChequeCop::Cria_Tabela() {
  tbTemp1.CreateDataSet();
  AddSet(tbTemp1);
}

void TfmChequeCop::Edit4Exit() {
  Edit7.SetDate(Today());
  if (Trim(Edit4.Text()).empty() && FocusTarget() != &BitBtn9) Edit4.SetFocus();
}

void TfmChequeCop::BitBtn2Click() {
  if (Trim(Edit4.Text()).empty()) {
    Recusa("Nº do cheque inválido.", Edit4);
    return;
  }
  if (Trim(EdtDesNom.Text()).empty()) {
    Recusa("Credor inválido.", EdtDesNom);
    return;
  }
  Imprime_cheque();
}

void TfmChequeCop::Imprime_cheque() {
  const std::string extenso = ExtensoMaiusculo(Funcoes, EdtValor.Amount());
  const DataPorExtenso data(Edit7.Date());
  TOrvTable& empresa = Tabela.tbEmpresa();
  tbTemp1.Append();
  tbTemp1.Total = EdtValor.Amount();
  tbTemp1.Descricao = extenso;
  tbTemp1.Nome = RgTipo.ItemIndex() == kCliente ? empresa["EMP_NOME"].AsString() : EdtDesNom.Text();
  tbTemp1.Cidade = empresa["EMP_CIDADE"].AsString();
  tbTemp1.Dia = data.dia;
  tbTemp1.Mes = data.mes;
  tbTemp1.Ano = data.ano;
  tbTemp1.Banco = EdtCodBan.Text() + " - " + Edit6.Text();
  tbTemp1.Cheque = Edit4.Text();
  tbTemp1.Data = Edit7.Date();
  tbTemp1.CodBan = EdtCodBan.Text();
  tbTemp1.Post();
}

void TfmChequeCop::BitBtn1Click() {
  if (!tbTemp1.IsEmpty()) tbTemp1.Delete();
}

void TfmChequeCop::BitBtn8Click() {
  switch (TpImpressora.ItemIndex()) {
    case kTexto:
      return Funcoes.Chama_RelatorioTxt(*this, "TCheque" + EdtCodBan.Text());
    case kGrafico:
      return Funcoes.Chama_RelatorioWin(*this, "WCheque" + EdtCodBan.Text());
    default:
      return ImprimeSerial();
  }
}

void TfmChequeCop::ImprimeSerial() {
  const auto impressora = ImpressoraDeCheques(Funcoes, {1, 2, 4});
  for (tbTemp1.First(); !tbTemp1.Eof(); tbTemp1.Next()) {
    Inform("Confirme a impressão do cheque.");
    impressora->Banco = tbTemp1.CodBan.AsString();
    impressora->Cidade = tbTemp1.Cidade.AsString();
    impressora->Data = tbTemp1.Data.AsDate().Brazil();
    impressora->Nome = tbTemp1.Nome.AsString();
    impressora->Valor = tbTemp1.Total.AsCurrency();
    impressora->ImprimirCheque();
  }
}

}  // namespace orv
