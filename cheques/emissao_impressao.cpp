// The queue of cheques that wait to be printed, and their printing.
#include <array>

#include "cheques/emissao.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::array<const char*, 12> kMeses{"JANEIRO",  "FEVEREIRO", "MARCO",    "ABRIL",
                                             "MAIO",     "JUNHO",     "JULHO",    "AGOSTO",
                                             "SETEMBRO", "OUTUBRO",   "NOVEMBRO", "DEZEMBRO"};

// 1 for January.
std::string Mes_Extenso(int mes) { return kMeses.at(static_cast<std::size_t>(mes - 1)); }

// "" for the empty date.
std::string Parte(Date data, std::size_t de, std::size_t quantos) {
  const std::string texto = data.Brazil();
  return texto.empty() ? "" : texto.substr(de, quantos);
}

}  // namespace

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
  const std::string extenso = PorExtenso(cheque.valor);
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
  TbCheque.Dia = Parte(cheque.emissao, 0, 2);
  TbCheque.Mes = cheque.emissao.Empty() ? "" : Mes_Extenso(cheque.emissao.Month());
  TbCheque.Ano = Parte(cheque.emissao, 6, 4);
  TbCheque.Data = cheque.emissao;
  TbCheque.Dt_Ven = cheque.vencimento;
  TbCheque.Obs = *cheque.obs;
  TbCheque.Post();
}

void TfmEmissao::TiraDaFila(const std::string& lancamento) {
  if (TbCheque.Locate("Lacto", Value(lancamento))) TbCheque.Delete();
}

std::string TfmEmissao::PorExtenso(Currency valor) const {
  std::string texto = Funcoes.Extenso(valor.Format2());
  // Letters with accents stay as they are.
  for (char& c : texto) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return texto;
}

// --- Printing.

void TfmEmissao::BtnImprimirClick() {
  QryDup.SQL.Clear();
  QryDup.SQL.Add("SELECT PAGTO.*, ENTIDADE.NOME FROM " + Funcoes.DBLocal("PAGTO", true) + " PAGTO");
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
  const auto ajuste = [this](const char* nome) {
    return Funcoes.LeConfiguracao("Venda", "Parametros", nome, 0);
  };
  const std::string porta = "COM" + std::to_string(ajuste("PortaImpCheque") + 1);
  const int modelo = ajuste("TpImpCheque");
  // What is on paper leaves the queue, so that a printer that fails prints nothing twice.
  for (TbCheque.First(); !TbCheque.IsEmpty(); TbCheque.Delete()) {
    ImpCheque->Banco = TbCheque.Banco.AsString();
    ImpCheque->Cidade = TbCheque.Cidade.AsString();
    ImpCheque->Data = TbCheque.Data.AsDate().Brazil();
    ImpCheque->Nome = TbCheque.Nome.AsString();
    ImpCheque->Valor = TbCheque.Total.AsCurrency();
    ImpCheque->Porta = porta;
    ImpCheque->SetModelo(modelo);
    ImpCheque->ImprimirCheque();
  }
}

}  // namespace orv
