// What a cheque pays: the four payments, told apart by the rows of one table.
#include "cheques/emissao.h"
#include "rules/conta_contabil.h"
#include "rules/titulo.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// What PAGTO.OBS holds of the note.
constexpr std::size_t kObsDoTitulo = 100;

}  // namespace

struct TfmEmissao::Pagamento {
  // Of the accounting lines.
  const char *origem, *operacao, *codigo;
  // The accounts of the one line; without it there is a line for each payable that the cheque reaches, from
  // the account to the supplier, and each of them is settled.
  Lados (TfmEmissao::*contas)();
  // The note of the line.
  std::string (*observacao)(const TfmEmissao& tela);
  // A new payable stands for what is paid in advance.
  bool antecipa;
  // A second movement puts the value into another account.
  bool deposita;
  // The movement is apportioned by its class.
  bool rateia;
};

const TfmEmissao::Pagamento& TfmEmissao::PagamentoDe(int item) {
  const auto nota = [](const TfmEmissao& tela) { return tela.EdtObs.Text(); };
  const auto nenhuma = [](const TfmEmissao&) { return std::string(); };
  const auto deposito = [](const TfmEmissao& tela) {
    return "EMISSÃO DE CHEQUE NR: " + tela.EdtDocto.Text() + ".(DEPOSITO).";
  };
  static const Pagamento pagamentos[] = {
      {"PP", "+", "000", nullptr, nota, false, false, false},
      {"AP", "+", "000", &TfmEmissao::ContasAntecipacao, nota, true, false, false},
      {"CC", "-", "000-00", &TfmEmissao::ContasSimples, nenhuma, false, false, true},
      {"CC", "-", "000", &TfmEmissao::ContasDeposito, deposito, false, true, false},
  };
  ORV_ASSERT(item >= kTitulos && item <= kDeposito);
  return pagamentos[item];
}

bool TfmEmissao::Paga(const std::vector<Titulo>& selecionados) {
  const Pagamento& pagamento = PagamentoDe(RgTipo.ItemIndex());
  const std::vector<Titulo> partes = Partes(selecionados, TbCheque.Total.AsCurrency());
  const std::string antecipacao =
      pagamento.antecipa ? Funcoes.Proximo("PAGTO", "NUM_AP", 6, true) : std::string();

  // All that the user is asked comes before the first write. An apportionment that he gives up leaves the
  // advance out, and the cheque goes on.
  const bool paga = !pagamento.antecipa || RateiaAntecipacao(antecipacao, false);
  const auto partida = Contabil.Create();
  bool rateia = false;
  if (paga) {
    for (LinhaContabil& linha : Partidas(pagamento, partes, antecipacao))
      partida->SetContabilidadeFinan(std::move(linha));
    if (!partida->ConfirmaDadosContabilidade(0)) {
      TbCheque.EmptyDataSet();
      Abort();
    }
    rateia = pagamento.rateia && RateiaSimples(false);
  }
  TravaConta();
  if (Registrado() != registrado_) return false;
  if (!paga) return true;

  partida->GravaContabilidadeFinan();
  for (const Titulo& titulo : partes) BaixaTitulo(titulo, Lancamento, titulo.numero);
  if (pagamento.antecipa) {
    RateiaAntecipacao(antecipacao, true);
    IncluiAntecipacao(antecipacao);
  }
  MovimentoConta movimento = Movimento();
  Contabil.LancaContaCorrente(movimento);
  if (pagamento.deposita) {
    movimento.conta = EdtContaDep.Text();
    movimento.operacao = "+";
    movimento.pendente = "N";
    movimento.dt_vencto = movimento.dt_cont = DtDeposito.Date();
    Contabil.LancaContaCorrente(movimento);
  }
  if (rateia) RateiaSimples(true);
  return true;
}

// --- Accounting.

std::vector<LinhaContabil> TfmEmissao::Partidas(const Pagamento& pagamento, const std::vector<Titulo>& partes,
                                                const std::string& antecipacao) {
  const LinhaContabil comum{.lancamento = Lancamento,
                            .docto = EdtDocto.Text(),
                            .docto2 = pagamento.antecipa ? antecipacao : EdtDocto.Text(),
                            .conta_c = EdtConta.Text(),
                            .conta_d = "",
                            .operacao = pagamento.operacao,
                            .origem = pagamento.origem,
                            .classe = EdtCodClasse.Text(),
                            .historico = EdtHist.Text(),
                            .valor = EdtValor.Amount(),
                            .data = DtEmissao.Date(),
                            .codigo = pagamento.codigo,
                            .observacao = pagamento.observacao(*this)};
  std::vector<LinhaContabil> linhas;
  for (const Titulo& titulo : partes) {
    LinhaContabil& linha = linhas.emplace_back(comum);
    linha.docto2 = titulo.dupli;
    linha.conta_d = titulo.codcre;
    linha.valor = titulo.parte;
  }
  if (pagamento.contas != nullptr) {
    LinhaContabil& linha = linhas.emplace_back(comum);
    const Lados contas = (this->*pagamento.contas)();
    linha.conta_c = contas.credito;
    linha.conta_d = contas.debito;
  }
  return linhas;
}

TfmEmissao::Lados TfmEmissao::ContasAntecipacao() {
  const auto conta = [this](const Edit& historico) {
    return ContaContabil(
        Funcoes, Tabela,
        {{.conta = EdtConta.Text(), .historico = historico.Text(), .classe = "0", .carteira = "0"}});
  };
  return {conta(EdtHist), conta(EdtHistAnt)};
}

TfmEmissao::Lados TfmEmissao::ContasSimples() {
  const auto conta = [this](const std::string& banco) {
    return ContaContabil(Funcoes, Tabela,
                         {{.conta = banco, .historico = EdtHist.Text(), .classe = "0", .carteira = "0"}});
  };
  return {conta(EdtConta.Text()), conta("0")};
}

TfmEmissao::Lados TfmEmissao::ContasDeposito() {
  const auto conta = [this](const Edit& banco) {
    return ContaContabil(Funcoes, Tabela,
                         {{.conta = banco.Text(), .historico = EdtHist.Text()}, {.conta = banco.Text()}});
  };
  return {conta(EdtConta), conta(EdtContaDep)};
}

bool TfmEmissao::RateiaAntecipacao(const std::string& antecipacao, bool grava) {
  return Contabil.SetRateioClasse(antecipacao, EdtCodClasse.Text(), "CP", EdtValor.Amount(), "0", true,
                                  Date(), grava);
}

bool TfmEmissao::RateiaSimples(bool grava) {
  if (!ParamRateio || (EdtOpera.Text() != "-" && !ParamRateioCredito)) return false;
  Tabela.TbCadConta().Locate("CONTA", Value(EdtConta.Text()));
  return Contabil.SetRateioClasse(Lancamento, EdtCodClasse.Text(), "CC", EdtValor.Amount(), "0", true,
                                  DtEmissao.Date(), grava);
}

// --- Payables and movements.

void TfmEmissao::BaixaTitulo(const Titulo& titulo, const std::string& lancamento,
                             const std::string& chave_log) {
  const std::string valor = Funcoes.PermanecePonto(titulo.parte), numero = Funcoes.Aspas(titulo.numero);
  // One statement both looks and pays, so that two users don't pay the same twice.
  if (Tabela.IBDatabase().Execute(
          ForCompany("UPDATE {PAGTO} SET VAL_PAG = VAL_PAG + ", titulo.empresa) + valor + " WHERE NUM_AP = " +
          numero + " AND " + ForCompany(EmAbertoPagar("{PAGTO}"), titulo.empresa) + " >= " + valor) == 0) {
    throw UserError("Outro usuário alterou a AP " + titulo.numero +
                    " depois da consulta. O cheque não foi gravado. Consulte novamente.");
  }
  Tabela.IBDatabase().Execute(
      ForCompany("INSERT INTO {PAGTO1} ", titulo.empresa) +
      "(DOCTO, DT_LAN, NUM_AP, CLASSE, HISTORICO, LANCAMENTO, VAL_PAG, JURO, VAL_DEV, DESCONTO) VALUES (" +
      Funcoes.Aspas(EdtDocto.Text()) + ", " + Funcoes.AspasData(DtEmissao.Date()) + ", " + numero + ", " +
      Funcoes.Aspas(EdtCodClasse.Text()) + ", " + Funcoes.Aspas(EdtHist.Text()) + ", " +
      Funcoes.Aspas(lancamento) + ", " + valor + ", 0, 0, 0)");
  Funcoes.GeraLog("BAIXA PAGAR", "EMISSAO CHEQUE BAIXA A.P.  NR.: " + titulo.numero, TOperacaoLog::Processo,
                  chave_log);
}

void TfmEmissao::IncluiAntecipacao(const std::string& numero) {
  const std::string valor = Funcoes.PermanecePonto(EdtValor.Amount()), docto = Funcoes.Aspas(EdtDocto.Text()),
                    emissao = Funcoes.AspasData(DtEmissao.Date()),
                    vencto = Funcoes.AspasData(DtVencto.Date());
  Tabela.IBDatabase().Execute(
      "INSERT INTO " + Funcoes.DBLocal("PAGTO", true) +
      " (CODCRE, DT_EMI, DOCTO, DUPLI, DT_VEN, NUM_OS, NUM_AP, BANCO, VALOR, VAL_NOTA, VALOR_ORIG, VAL_DEV, "
      "VAL_PAG, ICM, IPI, VAL_IPI, JUROS, DESCONTO, VAL_ICM, DT_ATUAL, OBS, DATA_ORIG, STATUS, BLOQUEIO, "
      "SITUACAO, HISTORICO) VALUES (" +
      Join({Funcoes.Aspas(CodFornecedor), emissao, docto, docto, vencto, Funcoes.Aspas(EdtCodClasse.Text()),
            Funcoes.Aspas(numero), Funcoes.Aspas(EdtBanco.Text()), valor, valor, valor,
            "0, 0, 0, 0, 0, 0, 0, 0", Funcoes.AspasData(Today()),
            Funcoes.Aspas(CutChars(EdtObs.Text(), kObsDoTitulo)), vencto, "'A', 'N', '0'",
            Funcoes.Aspas(EdtHist.Text())},
           ", ") +
      ")");
}

MovimentoConta TfmEmissao::Movimento() const {
  return {.lancamento = Lancamento,
          .docto = EdtDocto.Text(),
          .banco = EdtBanco.Text(),
          .conta = EdtConta.Text(),
          .grupo = EdtCodClasse.Text(),
          .historico = EdtHist.Text(),
          .tipo = "P",
          .pendente = CbPendente.Checked() ? "S" : "N",
          .operacao = "-",
          .observacao = EdtObs.Text(),
          .valor = TbCheque.Total.AsCurrency(),
          .dt_lan = DtEmissao.Date(),
          .dt_vencto = DtVencto.Date(),
          .dt_cont = DtVencto.Date(),
          .tipo_doc = "CH"};
}

}  // namespace orv
