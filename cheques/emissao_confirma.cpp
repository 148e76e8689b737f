// A cheque is confirmed: what is asked of it, its payment, its place in the register.
#include "cheques/emissao.h"
#include "rules/bloqueio.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kConta = "Conta Inválida.";
constexpr const char* kDeDeposito = "Conta de Depósito não Encontrada. Operação Cancelada.";

bool EmBranco(const Edit& campo) { return Trim(campo.Text()).empty(); }

}  // namespace

void TfmEmissao::BitBtn8Click() {
  TbPagto.PostIfEditing();
  if (!Valida()) return;
  const bool titulos = RgTipo.ItemIndex() == kTitulos;
  if (titulos && !Ask("Essa Operação Irá Baixar as Duplicatas, Lançar o Cheque e Debitar o Valor da Conta "
                      "Corrente.\nDeseja Continuar?",
                      true)) {
    return;
  }
  if (!Emite()) {
    Recusa("Cheque já Gerado.", EdtDocto);
    return;
  }
  // Told when nothing is held any more: others work on while the user reads.
  Inform("Concluído. Lançamento " + Lancamento);
  for (Edit* campo : {&EdtDocto, &EdtDesNom, &EdtObs}) campo->Clear();
  DtEmissao.SetDate(Today());
  DtVencto.SetDate(Today());
  EdtValor.SetAmount(Currency());
  EdtDocto.SetFocus();
  if (!titulos) return;
  EsvaziaTitulos();
  BitBtn5Click();
}

// --- Checks.

bool TfmEmissao::Valida() {
  if (Bloqueio(Contabil, Tabela).Caixa({DtEmissao.Date()})) return false;
  if (DtVencto.Date() <= Date::FromDays(Date::kZeroDays)) return Recusa("Vencimento inválido.", DtVencto);
  if (EmBranco(EdtConta)) return Recusa(kConta, EdtConta);
  if (EmBranco(EdtDocto)) return Recusa("Nº do Cheque Inválido.", EdtDocto);
  if (EmBranco(EdtCodClasse)) return Recusa("Classe Gerencial Inválida.", EdtCodClasse);
  if (Funcoes.Busca_Valor("SUBGRUPO", {{"CODIGO", EdtCodClasse.Text()}}, "TP_CONTA") == "T") {
    Recusa("Classe Inválida. Não é possível lançar com classe do tipo Título.", EdtCodClasse);
    Abort();
  }
  if (EmBranco(EdtHist)) return Recusa("Histórico Inválido.", EdtHist);
  if (EmBranco(EdtDesNom)) return Recusa("Credor Inválido.", EdtDesNom);
  if (EdtValor.Amount() <= Currency()) return Recusa("O Valor deve ser maior que Zero.", EdtValor);
  if (RgTipo.ItemIndex() == kTitulos && Selecionados().empty()) {
    Inform("Para Fazer Pagamento de AP é necessário selecionar ao menos uma AP.");
    return false;
  }
  if (RgTipo.ItemIndex() == kAntecipado) {
    if (!Funcoes.Existe("ENTIDADE", {{"NOME", EdtDesNom.Text()}})) {
      Inform("Para Fazer Pagamento de Antecipação é necessário Selecionar um Fornecedor F4.");
      return false;
    }
    if (!Funcoes.Existe("HISTCP", {{"HISTORICO", EdtHistAnt.Text()}}))
      return Recusa("Histórico de Antecipação Inválido.", EdtHistAnt);
  }
  if (RgTipo.ItemIndex() == kDeposito && !Funcoes.Existe("CADCONTA", {{"CONTA", EdtContaDep.Text()}})) {
    Inform(kDeDeposito);
    Abort();
  }
  return ValidaDatasEContas();
}

bool TfmEmissao::ValidaDatasEContas() {
  const bool deposito = RgTipo.ItemIndex() == kDeposito;
  if (DtEmissao.Date().Empty()) return Recusa("Emissão inválida.", DtEmissao);
  if (deposito && DtDeposito.Date().Empty()) return Recusa("Data do Depósito inválida.", DtDeposito);
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}})) return Recusa(kConta, EdtConta);
  Bloqueio bloqueio(Contabil, Tabela);
  return !bloqueio.Movimento(EdtConta.Text(), {DtEmissao.Date(), DtVencto.Date()}) &&
         !(deposito && bloqueio.Movimento(EdtContaDep.Text(), {DtEmissao.Date(), DtDeposito.Date()}));
}

// --- The cheque.

bool TfmEmissao::Emite() {
  const std::vector<Titulo> selecionados =
      RgTipo.ItemIndex() == kTitulos ? Selecionados() : std::vector<Titulo>();
  Lancamento = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
  // The payment reads the amount from the queue.
  Imprime_cheque();
  try {
    if (!Paga(selecionados)) {
      Tabela.CommitRetaining();
      TiraDaFila(Lancamento);
      return false;
    }
    std::vector<TituloDoCheque> titulos;
    for (const Titulo& titulo : selecionados)
      titulos.push_back(
          {.cheque = Numero(), .dupli = titulo.numero, .chave = Lancamento, .valor = titulo.valor});
    if (!titulos.empty()) TbPagto.Last();
    GravaCheque(Lancamento, titulos.empty() ? "" : TbPagto.Numero.AsString(), titulos);
    Funcoes.GeraLog("EMISSAO CHEQUE",
                    "CHEQUE EMITIDO NUMERO:" + EdtDocto.Text() + " BANCO:" + EdtBanco.Text() +
                        " VALOR:" + EdtValor.Amount().Format2(),
                    TOperacaoLog::Emissao, EdtDocto.Text());
    Tabela.CommitRetaining();
  } catch (...) {
    // What isn't written isn't printed.
    TiraDaFila(Lancamento);
    throw;
  }
  return true;
}

// --- The register.

std::string TfmEmissao::Registrado() {
  std::string chaves;
  for (const auto& linha :
       Tabela.IBDatabase().Rows("SELECT CHAVE FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) + " WHERE " +
                                Cheques(Funcoes, Tabela).Condicao(Numero()) + " ORDER BY CHAVE")) {
    chaves += linha[0].AsString() + ";";
  }
  return chaves;
}

void TfmEmissao::TravaConta() {
  Tabela.IBDatabase().Execute("UPDATE " + Funcoes.DBLocal("CADCONTA", true) + " SET CONTA = CONTA WHERE " +
                              Igual("CONTA", EdtConta.Text()));
}

void TfmEmissao::GravaCheque(const std::string& chave, const std::string& duplicata,
                             const std::vector<TituloDoCheque>& titulos) {
  Cheques cheques(Funcoes, Tabela);
  cheques.Apaga(Numero());
  cheques.ApagaTitulos(Numero());
  const std::string agencia =
      Funcoes.Busca_Valor("CADCONTA", {{"CONTA", EdtConta.Text()}, {"BANCO", EdtBanco.Text()}}, "AGENCIA");
  cheques.Grava({.chave = chave,
                 .numero = Numero(),
                 .agencia = agencia.empty() ? "0000" : agencia,
                 .valor = EdtValor.Amount(),
                 .emissao = DtEmissao.Date(),
                 .vencimento = DtVencto.Date(),
                 .tipo = "P",
                 .status = "P",
                 .emissor = Tabela.tbEmpresa()["EMP_NOME"].AsString(),
                 .cliente = CodEmpresa,
                 .fornecedor = CodFornecedor,
                 .duplicata = duplicata,
                 .obs = EdtObs.Text()});
  for (const TituloDoCheque& titulo : titulos) cheques.Grava(titulo);
}

}  // namespace orv
