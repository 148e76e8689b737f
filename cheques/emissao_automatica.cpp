// One cheque for each selected payable, with what stands on the screen.
#include "cheques/emissao.h"
#include "rules/historico.h"
#include "rules/titulo.h"
#include "toolkit/text.h"

namespace orv {

void TfmEmissao::BitBtn4Click() {
  TbPagto.PostIfEditing();
  if (!Ask("Deseja realmente gerar Cheques para as APs Selecionadas?")) return;
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}})) {
    Recusa("Conta Inválida.", EdtConta);
    return;
  }
  for (DateEdit* data : {&DtEmissao, &DtVencto}) {
    if (!data->Date().Empty()) continue;
    Recusa(data == &DtEmissao ? "Emissão inválida." : "Vencimento inválido.", *data);
    return;
  }
  const BusyMark busy(Funcoes, *this);
  for (const Titulo& titulo : Selecionados()) {
    if (titulo.valor > Currency()) GeraCheque(titulo);
  }
}

void TfmEmissao::GeraCheque(const Titulo& titulo) {
  EdtValor.SetAmount(titulo.valor);
  EdtDesNom.SetText(titulo.nome);
  TravaConta();
  EdtDoctoEnter();
  Lancamento = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
  Imprime_cheque();
  Currency saldo;
  try {
    BaixaTitulo(titulo, Lancamento, EdtDocto.Text());
    Contabil.LancaContabilidade({.lancamento = Lancamento,
                                 .docto = EdtDocto.Text(),
                                 .docto2 = titulo.dupli,
                                 .conta_c = EdtConta.Text(),
                                 .conta_d = titulo.codcre,
                                 .operacao = "-",
                                 .origem = "PP",
                                 .classe = titulo.classe,
                                 .historico = titulo.historico,
                                 .valor = titulo.valor,
                                 .data = DtEmissao.Date(),
                                 .codigo = "000-00"});
    MovimentoConta movimento = Movimento();
    movimento.historico = titulo.historico;
    movimento.pendente = "N";
    Contabil.LancaContaCorrente(movimento);
    AnotaMovimento(Funcoes, Lancamento, "CHEQUE " + EdtDocto.Text() + " EMITIDO PARA A AP " + titulo.numero,
                   TOperacaoLog::Emissao);
    GravaCheque(Lancamento, titulo.numero,
                {{.cheque = Numero(), .dupli = titulo.numero, .valor = titulo.valor}});
    saldo = Tabela.IBDatabase()
                .Scalar(ForCompany("SELECT " + EmAbertoPagar() + " FROM {PAGTO} PAGTO WHERE " +
                                       Igual("NUM_AP", titulo.numero),
                                   titulo.empresa))
                .AsCurrency();
    Tabela.CommitRetaining();
  } catch (...) {
    // What isn't written isn't printed; the cheques before it are.
    TiraDaFila(Lancamento);
    throw;
  }
  AtualizaTitulo(titulo, saldo);
}

void TfmEmissao::AtualizaTitulo(const Titulo& titulo, Currency saldo) {
  if (!TbPagto.Locate("Numero;Empresa", {Value(titulo.numero), Value(titulo.empresa)})) return;
  TbPagto.Edit();
  const Currency pago = TbPagto.Valor.AsCurrency() + TbPagto.Valor_Pago.AsCurrency();
  TbPagto.Val_Pag_Cheque = pago;
  TbPagto.Valor_Pago = pago;
  TbPagto.Valor = saldo.ToDouble();
  TbPagto.Saldo = saldo;
  TbPagto.Post();
}

}  // namespace orv
