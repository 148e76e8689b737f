// The page "Cadastro": statement lines typed, altered and deleted one by one.
#include "reconciliation/cadextrado.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kLog = "CADEXTRATO";

}  // namespace

void TFmCadExtrato::LigaCadastro() {
  TbExtrato.AfterScroll = [this] { TbExtratoAfterScroll(); };

  EdtConta.OnChange = [this] { EdtContaChange(); };
  EdtConta.OnExit = [this] { EdtContaExit(); };
  EdtConta.OnKey = [this](KeyPress& key) {
    if (key.key != "F4") return;
    key.handled = true;
    PqConta.AbrePesquisa();
  };
  PqConta.OnFechaPesquisa = [this] {
    TbExtrato.Edit();
    TbExtrato["CONTA"] = PqConta.RetornoPesquisa("CONTA");
    EdtContaChange();
  };
  EdtDocto.OnChange = [this] { Maiusculas("DOCTO"); };
  EdtObs.OnChange = [this] { Maiusculas("OBSERVACAO"); };
  CbOperacao.OnChange = [this] {
    if (TbExtrato.Editing()) TbExtrato["OPERACAO"] = CbOperacao.Text();
  };
  CbOperacao.OnExit = [this] { CbOperacaoExit(); };
  DBGrid1.OnTitleClick = [this](const std::string& coluna) { TbExtrato.SetIndexFieldNames(coluna); };

  btnincluir.OnClick = [this] { btnincluirClick(); };
  BtnAltera.OnClick = [this] { BtnAlteraClick(); };
  BtExcluir.OnClick = [this] { BtExcluirClick(); };
  SbConfirmar.OnClick = [this] { SbConfirmarClick(); };
  SbDesistir.OnClick = [this] { SbDesistirClick(); };
  SbConsulta.OnClick = [this] { PqExtrato.AbrePesquisa(); };
  PqExtrato.OnFechaPesquisa = [this] { TbExtrato.Locate("LANCTO", PqExtrato.RetornoPesquisa("LANCTO")); };
  BitBtn2.OnClick = [this] { Funcoes.Carrega_Form("orvCC", "TFmConcilia", "", false, true); };
  BtSaida.OnClick = [this] { Close(); };
  sbPrimeiro.OnClick = [this] { TbExtrato.First(); };
  sbAnterior.OnClick = [this] { TbExtrato.Prior(); };
  sbProximo.OnClick = [this] { TbExtrato.Next(); };
  sbUltimo.OnClick = [this] { TbExtrato.Last(); };
}

// --- What the row shows beside its fields.

void TFmCadExtrato::TbExtratoAfterScroll() {
  BtnAltera.SetEnabled(TbExtrato["CONCILIADO"].AsString() != "S");
  const std::string operacao = TbExtrato["OPERACAO"].AsString();
  CbOperacao.SetItemIndex(operacao == "C" ? 0 : operacao == "D" ? 1 : -1);
  if (TbExtrato["CONTA"].AsString() != conta_do_saldo_) EdtContaChange();
}

void TFmCadExtrato::EdtContaChange() {
  conta_do_saldo_ = TbExtrato["CONTA"].AsString();
  EdtSaldo.SetAmount(SaldoExtrato(conta_do_saldo_));
}

Currency TFmCadExtrato::SaldoExtrato(const std::string& conta) {
  if (conta.empty()) return {};
  const std::string sql = "SELECT " + Soma(Creditos(kExtrato)) + ", " + Soma(Debitos(kExtrato)) + " FROM " +
                          SaldosDeSempre(kExtrato) + " WHERE " + Igual("CONTA", conta);
  const auto linha = LinhasDeSaldo(Tabela.IBDatabase(), Funcoes.DBLocal_SQL(sql, "")).front();
  const Currency creditos = SomaDe(linha[0]), debitos = SomaDe(linha[1]);
  if (!creditos.FitsField() || !debitos.FitsField())
    ApontaForaDeMedida(User(), Tabela.IBDatabase(), Funcoes.DBLocal_SQL(ForaDeMedida(kExtrato), ""));
  return creditos - debitos;
}

void TFmCadExtrato::Maiusculas(const char* campo) {
  Field& field = TbExtrato[campo];
  field = Upper(field.AsString());
}

// --- Leaving the fields.

void TFmCadExtrato::ContaExit(Edit& campo) {
  if (Trim(campo.Text()).empty() || Funcoes.Existe("CADCONTA", {{"CONTA", campo.Text()}})) return;
  Inform("Conta não cadastrada.");
  campo.SetFocus();
}

void TFmCadExtrato::EdtContaExit() {
  if (!TbExtrato.Editing()) return;
  const std::string conta = TbExtrato["CONTA"].AsString();
  if (Trim(conta).empty()) {
    PqConta.AbrePesquisa();
  } else if (!Funcoes.Existe("CADCONTA", {{"CONTA", conta}})) {
    Inform("Conta não cadastrada.");
    EdtConta.SetFocus();
  }
}

void TFmCadExtrato::CbOperacaoExit() {
  if (TbExtrato.Editing() && CbOperacao.ItemIndex() < 0) CbOperacao.SetFocus();
}

// --- A line.

void TFmCadExtrato::Bar_Confirma(bool edita) {
  PainelDados.SetEnabled(edita);
  PainelConfirma.SetVisible(edita);
  PainelControle.SetVisible(!edita);
  DBGrid1.SetEnabled(!edita);
}

void TFmCadExtrato::btnincluirClick() {
  const std::string numero = Funcoes.Proximo("EXTRATO", "LANCTO", 6, true);
  Bar_Confirma(true);
  const Value conta = TbExtrato["CONTA"].Get();
  const Value data = TbExtrato.IsEmpty() ? Value(Today()) : TbExtrato["DT_CONT"].Get();
  TbExtrato.Append();
  TbExtrato["CONCILIADO"] = "N";
  TbExtrato["LANCTO"] = numero;
  TbExtrato["CONTA"] = conta;
  TbExtrato["DT_CONT"] = data;
  TbExtratoAfterScroll();
  // Account and day seldom change from line to line.
  (conta.IsNull() ? EdtConta : EdtDocto).SetFocus();
}

void TFmCadExtrato::BtnAlteraClick() {
  if (TbExtrato.IsEmpty()) return;
  TbExtrato.Edit();
  Bar_Confirma(true);
  EdtConta.SetFocus();
}

void TFmCadExtrato::BtExcluirClick() {
  if (TbExtrato.IsEmpty() || !Ask("Deseja eliminar este Registro?", true)) return;
  const std::string lancto = TbExtrato["LANCTO"].AsString();
  Funcoes.GeraLog(kLog, "EXCLUSAO LANCAMENTO " + lancto, TOperacaoLog::Exclusao, lancto);
  TbExtrato.Delete();
  Tabela.CommitRetaining();
  TbExtratoAfterScroll();
  EdtContaChange();
}

void TFmCadExtrato::SbConfirmarClick() {
  if (TbExtrato["VALOR"].AsCurrency() <= Currency()) {
    Inform("O Valor deve ser maior que Zero.");
    EdtValor.SetFocus();
    return;
  }
  if (Trim(TbExtrato["DOCTO"].AsString()).empty()) {
    Inform("O campo documento não pode ser vazio.");
    EdtDocto.SetFocus();
    return;
  }
  const std::string lancto = TbExtrato["LANCTO"].AsString();
  TbExtrato["BANCO"] = Funcoes.Busca_Valor("CADCONTA", {{"CONTA", TbExtrato["CONTA"].AsString()}}, "BANCO");
  // Before the row leaves its edit: where the line can't be written, the row stays as it was typed.
  Funcoes.GeraLog(kLog, "INCLUSAO / ALTERACAO LANCAMENTO " + lancto, TOperacaoLog::Inclusao, lancto);
  TbExtrato.Post();
  Tabela.CommitRetaining();
  TbExtrato.Refresh();
  TbExtrato.Last();
  EdtContaChange();
  Bar_Confirma(false);
  btnincluir.SetFocus();
}

void TFmCadExtrato::SbDesistirClick() {
  TbExtrato.Cancel();
  Bar_Confirma(false);
  TbExtratoAfterScroll();
  btnincluir.SetFocus();
}

}  // namespace orv
