// The queue of cheques that wait to be printed, and their printing.
#include "cheques/emissao.h"
#include "rules/cheque_impresso.h"

namespace orv {

// --- The queue.

void TfmEmissao::Imprime_cheque() {
  const std::string agencia =
      Funcoes.Busca_Valor("CADCONTA", {{"CONTA", EdtConta.Text()}, {"BANCO", EdtBanco.Text()}}, "AGENCIA");
  const std::string cnpj = Funcoes.Busca_Valor("ENTIDADE", {{"CODCLI", CodFornecedor}}, "CNPJ");
  PoeNaFila({.chave = Lancamento,
             .numero = Numero(),
             .agencia = agencia,
             .valor = EdtValor.Amount(),
             .emissao = DtEmissao.Date(),
             .vencimento = DtVencto.Date(),
             .obs = EdtObs.Text()},
            EdtDesNom.Text(), cnpj, EdtCodClasse.Text(), EdtHist.Text());
}

void TfmEmissao::PoeNaFila(const Cheque& cheque, const std::string& nome, const std::string& cnpj,
                           const std::string& classe, const std::string& historico) {
  // What can't be said in words isn't queued.
  const std::string extenso = ExtensoMaiusculo(Funcoes, cheque.valor);
  const DataPorExtenso data(cheque.emissao);
  TbCheque.Append();
  TbCheque.Lacto = cheque.chave;
  TbCheque.Numero = cheque.numero.numero;
  TbCheque.Total = cheque.valor.ToDouble();
  TbCheque.Descricao = extenso;
  TbCheque.Nome = nome;
  TbCheque.CNPJ = cnpj;
  TbCheque.Banco = cheque.numero.banco;
  TbCheque.Agencia = cheque.agencia;
  TbCheque.Conta = cheque.numero.conta;
  TbCheque.Cidade = Tabela.tbEmpresa()["EMP_CIDADE"].AsString();
  TbCheque.Classe = classe;
  TbCheque.Historico = historico;
  TbCheque.Dia = data.dia;
  TbCheque.Mes = data.mes;
  TbCheque.Ano = data.ano;
  TbCheque.Data = cheque.emissao;
  TbCheque.Dt_Ven = cheque.vencimento;
  TbCheque.Obs = *cheque.obs;
  TbCheque.Post();
}

void TfmEmissao::TiraDaFila(const std::string& lancamento) {
  if (TbCheque.Locate("Lacto", Value(lancamento))) TbCheque.Delete();
}

// --- Printing.

void TfmEmissao::BtnImprimirClick() {
  QryDup.SQL.Clear();
  QryDup.SQL.Add("SELECT PAGTO.*, ENTIDADE.NOME, PAGTO1.LANCAMENTO, PAGTO1.VAL_PAG AS VAL_PAGO FROM " +
                 Funcoes.DBLocal("PAGTO", true) + " PAGTO");
  QryDup.SQL.Add("INNER JOIN " + Funcoes.DBLocal("PAGTO1", true) + " PAGTO1 ON PAGTO.NUM_AP = PAGTO1.NUM_AP");
  QryDup.SQL.Add("LEFT JOIN " + Funcoes.DBLocal("ENTIDADE", true) +
                 " ENTIDADE ON PAGTO.CODCRE = ENTIDADE.CODCLI");
  QryDup.SQL.Add("WHERE " + Igual("PAGTO1.LANCAMENTO", TbCheque.Lacto.AsString()));
  QryDup.Open();
  if (RgTpImpressora.ItemIndex() == 0) {
    Funcoes.Chama_Relatorio(*this, "WChequeEmi_" + TbCheque.Banco.AsString());
  } else {
    ImprimeNaImpressora();
  }
  TbCheque.EmptyDataSet();
  EsvaziaTitulos();
}

void TfmEmissao::ImprimeNaImpressora() {
  const auto impressora = ImpressoraDeCheques(Funcoes, {1, 2, 3, 4});
  // What is on paper leaves the queue, so that a printer that fails prints nothing twice.
  for (TbCheque.First(); !TbCheque.IsEmpty(); TbCheque.Delete()) {
    impressora->Banco = TbCheque.Banco.AsString();
    impressora->Cidade = TbCheque.Cidade.AsString();
    impressora->Data = TbCheque.Data.AsDate().Brazil();
    impressora->Nome = TbCheque.Nome.AsString();
    impressora->Valor = TbCheque.Total.AsCurrency();
    impressora->ImprimirCheque();
  }
}

}  // namespace orv
