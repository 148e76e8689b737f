// The page "Conciliação de Cartões": orders paid on line, whose receivables the acquirer's file settles.
#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <unordered_set>

#include "frame/lists.h"
#include "reconciliation/concilia.h"
#include "reconciliation/formats/card_sheets.h"
#include "reconciliation/formats/outside_file.h"
#include "reconciliation/inteiro.h"
#include "rules/como_lido.h"
#include "rules/historico.h"
#include "rules/rateio.h"
#include "rules/titulo.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kObservacao = "Conciliação de cartões";
// What TbCartao_Arq.ID and RECEBERB.DOCTO hold.
constexpr std::size_t kId = 15;

// By whether what was paid, discounted and returned covers the receivable.
std::string Coberto(const char* sinal) {
  return "((RECEBER.VALOR2+RECEBER.JUROS) " + std::string(sinal) +
         " (RECEBER.VALOR_PAGO + RECEBER.DESCONTO + RECEBER.VAL_DEV ))";
}

// Lets lines through as long as the part of their operation that a settlement keeps tells them apart.
class Operacoes : public CardSink {
 public:
  explicit Operacoes(CardSink& linhas) : linhas_(linhas) {}
  void Line(const CardLine& linha) override {
    if (CharCount(linha.id) > kId) {
      const auto [inteira, nova] =
          longas_.try_emplace(std::string(CutChars(linha.id, kId)), std::string(linha.id));
      if (!nova && inteira->second != linha.id) {
        throw UserError("As operações \"" + inteira->second + "\" e \"" + std::string(linha.id) +
                        "\" só diferem depois do " + std::to_string(kId) +
                        "º caractere, que a baixa não guarda. Indique no layout do banco outra coluna para "
                        "o campo ID.");
      }
    }
    linhas_.Line(linha);
  }
  void TakeBack() noexcept override { linhas_.TakeBack(); }

 private:
  CardSink& linhas_;
  std::unordered_map<std::string, std::string> longas_;
};

// The lines of the file by their transaction and instalment.
class PorTransacao {
 public:
  explicit PorTransacao(TClientDataSet& arquivo) {
    const Field &comprovante = arquivo["COMPROVANTE_VENDA"], &parcela = arquivo["PARCELA"];
    for (int64_t i = 0, n = arquivo.DisplayCount(); i < n; ++i) {
      Linhas& linhas = transacoes_[arquivo.Cell(i, comprovante).AsString()];
      linhas.todas.push_back(i);
      linhas.parcelas[arquivo.Cell(i, parcela).AsString()].push_back(i);
    }
  }
  // Those of the transaction's instalment, or all of the transaction where it has none, or where instalments
  // don't count.
  const std::vector<int64_t>& De(const std::string& transacao, const std::string& parcela,
                                 bool parcelas = true) const {
    static const std::vector<int64_t> kNenhuma;
    const auto achada = transacoes_.find(transacao);
    if (Trim(transacao).empty() || achada == transacoes_.end()) return kNenhuma;
    const auto desta = achada->second.parcelas.find(parcela);
    return parcelas && desta != achada->second.parcelas.end() ? desta->second : achada->second.todas;
  }

 private:
  struct Linhas {
    std::vector<int64_t> todas;
    std::unordered_map<std::string, std::vector<int64_t>> parcelas;
  };
  std::unordered_map<std::string, Linhas> transacoes_;
};

// What settlements add to a receivable.
struct Liquidacao {
  Currency pago, desconto, juros;
  Liquidacao& operator+=(const Liquidacao& outra) {
    pago += outra.pago, desconto += outra.desconto, juros += outra.juros;
    return *this;
  }
  Liquidacao operator-() const { return {-pago, -desconto, -juros}; }
};

// What a settlement is known by: the receivable, the operation, the day of payment.
using Chave = std::tuple<std::string, std::string, Date>;

}  // namespace

// A receivable as it stands in the database, and what this run adds to it.
struct TFmConcilia::TituloPedido {
  std::string classe, historico, pendente;
  Currency valor2, aberto;
  int64_t versao = 0;
  bool tocado = false;
  Liquidacao soma{};
};

// A line of the file against a receivable.
struct TFmConcilia::BaixaPedido {
  std::string titulo, codcli, id, nota;
  Date pagamento;
  Currency valor_parcela, liquido, taxa;
  // A later line of the run stands in its place.
  bool substituida = false;

  bool Paga() const { return liquido > Currency(); }
  // A chargeback.
  bool Estorna() const { return liquido < Currency(); }
  Liquidacao Soma() const {
    if (Paga()) return {liquido, taxa, {}};
    if (Estorna()) return {{}, {}, -(taxa + liquido)};
    return {};
  }
};

// What a former run wrote under the same key.
struct TFmConcilia::BaixaAnterior {
  std::string lancamento;
  Liquidacao soma;
  Date dt_cont;
  int64_t linhas = 0;
  bool substituida = false;
};

struct TFmConcilia::GravacaoPedidos {
  std::string conta, banco, lancamento, docto;
  Date data;
  // In their order: two runs that want the same ones take them one after the other.
  std::map<std::string, TituloPedido> titulos;
  std::map<Chave, BaixaAnterior> anteriores;
  std::vector<BaixaPedido> baixas;
  // Of the last line.
  const TituloPedido* ultimo = nullptr;
  Currency total;
  // The movements of former runs that go, and how many rows they have.
  std::set<std::string> substituidos;
  int64_t movimentos = 0;
  // Transaction and order of the rows that the file has.
  std::vector<std::pair<std::string, std::string>> conciliadas;
  std::unique_ptr<TContabil> partida;
};

// --- What is listed.

std::string TFmConcilia::SeparadorDuplicata() const {
  const std::string separador =
      Tabela.IBDatabase()
          .Scalar("SELECT EMP_SEP_DUPLI FROM EMPRESA WHERE " + Igual("EMP_PAT", Funcoes.vEmpresa_Atual()))
          .AsString();
  return Trim(separador).empty() ? "/" : separador;
}

void TFmConcilia::BuscaPedidos() {
  std::string sql =
      "SELECT PEDIDO.NUMERO AS PEDIDO, CAST((CASE WHEN " + Coberto("<=") +
      " THEN 1 ELSE 0 END) AS INTEGER) AS BAIXADO, RECEBER.VALOR, RECEBER.VALOR2 AS VALOR_PARCELA, "
      "PEDIDO.ID_TRANSACAO AS TRANSACAO, SUBSTRING(RECEBER.NUMERO FROM POSITION(" +
      Funcoes.Aspas(SeparadorDuplicata()) +
      " IN RECEBER.NUMERO)+1) AS NR_PARCELA, "
      "(SELECT COUNT(*) FROM {RECEBER} R WHERE RECEBER.PEDIDO = R.PEDIDO) AS QT_PARCELAS, "
      "RECEBER.NUMERO AS TITULO, PEDIDO.CODCLI, PEDIDO.PED_CLI, PEDIDO.DT_EMISSAO, " +
      EmAbertoReceber() +
      " AS ABERTO FROM {PEDIDO} PEDIDO INNER JOIN {RECEBER} RECEBER ON PEDIDO.NUMERO = RECEBER.PEDIDO "
      "WHERE RECEBER.STATUS = 'N'" +
      WhereBetween("RECEBER.DT_VENCTO", DtCartao_Ini.Date(), DtCartao_Fim.Date());
  sql += EdCartao_Conciliacao.Empty() ? " AND COALESCE(PEDIDO.ID_TRANSACAO,'') <> ''"
                                      : Where("PEDIDO.ID_TRANSACAO", "=", EdCartao_Conciliacao);
  if (RgCartao_Busca.ItemIndex() == 0) sql += " AND " + Coberto("<=");
  if (RgCartao_Busca.ItemIndex() == 1) sql += " AND " + Coberto(">");

  struct Pedidos : RowSink {
    Pedidos(VendasSet& s, std::unordered_map<std::string, Currency>& a, const std::string& e)
        : set(s), abertos(a), empresa(e) {}
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> c) override {
      enum { kPedido, kBaixado, kValor, kValorParcela, kTransacao, kParcela, kParcelas, kTitulo };
      enum { kCodcli = kTitulo + 1, kPedCli, kEmissao, kAberto };
      const char* sel = c[kBaixado].AsInteger() == 0 ? "0" : "1";
      abertos[c[kTitulo].AsString()] = c[kAberto].AsCurrency();
      linha[set.Sel] = sel;
      linha[set.SelOrig] = sel;
      linha[set.Parcela] = c[kParcela].AsString() + "/" + c[kParcelas].AsString();
      linha[set.Emp] = empresa;
      linha[set.Codven] = std::move(c[kPedido]);
      linha[set.Valor] = c[kValor];
      linha[set.ValorParcela] = c[kValorParcela];
      linha[set.Transacao] = std::move(c[kTransacao]);
      linha[set.Titulo] = std::move(c[kTitulo]);
      linha[set.Codcli] = std::move(c[kCodcli]);
      linha[set.Pedcli] = std::move(c[kPedCli]);
      linha[set.Data] = c[kEmissao];
      linha.Append();
      return true;
    }
    VendasSet& set;
    RowWriter linha{set};
    std::unordered_map<std::string, Currency>& abertos;
    const Value empresa;
  } pedidos(TbVendas, abertos_, Funcoes.vEmpresa_Atual());
  abertos_.clear();
  PreencheVendas(ForCompanies(sql, "", false), pedidos);
}

void TFmConcilia::ConciliaCieloPedido() {
  static const ArquivoCartao kCsv{{".csv"}, false, "Arquivo inválido. Tente novamente com um arquivo .csv"};
  const BusyMark busy(Funcoes, *this);
  CriaTabelaArquivo();
  BuscaPedidos();
  const auto arquivo = Arquivo();
  if (!arquivo) {
    Recusa("Arquivo não encontrado.", EdCartao_Arquivo);
    return;
  }
  if (NomeRecusado(kCsv)) return;
  const std::string texto = OutsideText(arquivo->Bytes(kMaxOutsideFile));
  CarregaPedidos(
      [&](CardSink& linhas, const ColumnMap* mapa) { ReadCieloOrders(texto, mapa, Today(), linhas); });
}

template <class Planilha>
void TFmConcilia::ConciliaPlanilha() {
  const BusyMark busy(Funcoes, *this);
  CriaTabelaArquivo();
  BuscaPedidos();
  const auto arquivo = Arquivo();
  if (!arquivo) {
    throw UserError("Arquivo não encontrado: " + (EdCartao_Arquivo.Empty()
                                                      ? "escolha a planilha da operadora."
                                                      : EdCartao_Arquivo.Text()));
  }
  if (NomeRecusado(Regra(operadora_).arquivo)) return;
  CarregaPedidos([&](CardSink& linhas, const ColumnMap* mapa) {
    Planilha leitor(linhas, mapa, Today());
    Owner().Sheets().Read(*arquivo, leitor);
  });
}

void TFmConcilia::ConciliaPagarMe() { ConciliaPlanilha<PagarMeSheet>(); }
void TFmConcilia::ConciliaYapay() { ConciliaPlanilha<YapaySheet>(); }

void TFmConcilia::CarregaPedidos(const std::function<void(CardSink&, const ColumnMap*)>& le) {
  const ColumnMap mapa = EdtCodBanco.Empty() ? ColumnMap() : Mapa();
  CarregaLinhas([&](CardSink& linhas) {
    Operacoes operacoes(linhas);
    le(operacoes, mapa.Empty() ? nullptr : &mapa);
  });
  SelecionaVendaTransacao();
  TbCartao_Arq.First();
}

// --- What matches.

void TFmConcilia::SelecionaVendaTransacao() {
  const ScopedValue casando(casando_, true);
  const ControlsHold hold({&TbVendas, &TbCartao_Arq});
  Field& sel = TbCartao_Arq["SEL"];
  const PorTransacao arquivo(TbCartao_Arq);
  std::unordered_set<std::string> feitas;
  for (int64_t i = 0, n = TbVendas.DisplayCount(); i < n; ++i) {
    const std::string transacao = TbVendas.Cell(i, TbVendas.Transacao).AsString(),
                      parcela = NumeroDaParcela(TbVendas.Cell(i, TbVendas.Parcela).Text());
    if (!feitas.insert(transacao + "/" + parcela).second) continue;
    const std::vector<int64_t>& linhas = arquivo.De(transacao, parcela);
    if (linhas.empty()) continue;
    Altera(TbVendas, i, {{TbVendas.Sel, "1"}});
    for (const int64_t linha : linhas) Altera(TbCartao_Arq, linha, {{sel, 1}});
  }
  TbVendas.First();
}

// --- What is written.

void TFmConcilia::GravaConciliacaoPedido() {
  GravacaoPedidos gravacao;
  const auto contas =
      Tabela.IBDatabase().Rows("SELECT CONTA, BANCO FROM " + Funcoes.DBLocal("CADCONTA", true) + " WHERE " +
                               Igual("CONTA", EdtContaMoeda.Text()));
  if (Trim(EdtContaMoeda.Text()).empty() || contas.empty()) {
    Recusa("Conta corrente inválida.", EdtContaMoeda);
    Abort();
  }
  gravacao.conta = contas.front()[0].AsString();
  gravacao.banco = contas.front()[1].AsString();
  gravacao.data = Today();
  if (!Funcoes.InputBoxData(Caption(), "Informe a data de contabilização", gravacao.data) ||
      gravacao.data.Empty())
    Abort();

  const BusyMark busy(Funcoes, *this);
  PlanejaPedidos(gravacao);
  if (!gravacao.baixas.empty()) {
    TravaPedidos(gravacao);
    LeMovimentosAnteriores(gravacao);
    gravacao.lancamento = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
    gravacao.docto = Funcoes.Proximo("CONTACOR", "DOCTO", 8, true);
    PreparaPartidas(gravacao);
    // What goes is told before the user says yes, and stays on the page once it is gone.
    bool gravada = false;
    const auto desiste = AtEnd([&] {
      if (!gravada) LbCartao.SetVisible(false);
    });
    MostraSobras(gravacao);
    if (!gravacao.partida->ConfirmaDadosContabilidade(0)) Abort();
    EscrevePedidos(gravacao);
    gravada = true;
  }
  for (const auto& [transacao, pedido] : gravacao.conciliadas)
    Funcoes.GeraLog("CONCILIACAO", "CONCILIACAO CARTAO DO LANCAMENTO " + transacao + " PEDIDO " + pedido,
                    TOperacaoLog::Processo, pedido);
  Tabela.CommitRetaining();

  std::size_t titulos = 0;
  for (const auto& [numero, titulo] : gravacao.titulos) {
    if (!titulo.tocado) continue;
    abertos_[numero] = titulo.aberto + titulo.soma.juros - titulo.soma.pago - titulo.soma.desconto;
    ++titulos;
  }
  if (titulos == 0) return;
  Stored(std::to_string(titulos) + (titulos == 1 ? " título, líquido " : " títulos, líquido ") +
         gravacao.total.Brazil() +
         (gravacao.total > Currency() ? ", lançamento " + gravacao.lancamento + "."
                                      : ", sem lançamento na conta."));
}

// --- The plan.

void TFmConcilia::PlanejaPedidos(GravacaoPedidos& gravacao) {
  const Inteiro vendas(TbVendas), arquivo(TbCartao_Arq);
  const PorTransacao transacoes(TbCartao_Arq);
  const Field &sel = TbCartao_Arq["SEL"], &data = TbCartao_Arq["DATA"], &id = TbCartao_Arq["ID"],
              &liquido = TbCartao_Arq["VALOR_LIQ"], &taxa = TbCartao_Arq["TAXA"],
              &meio = TbCartao_Arq["MEIO_PAG"];
  const bool pagarme = operadora_ == kPagarMe, yapay = operadora_ == kYapay;
  std::vector<std::pair<int64_t, const std::vector<int64_t>*>> linhas;
  for (int64_t i = 0, n = TbVendas.DisplayCount(); i < n; ++i) {
    if (!Marcada(i)) continue;
    const std::string transacao = TbVendas.Cell(i, TbVendas.Transacao).AsString();
    const auto& desta =
        transacoes.De(transacao, NumeroDaParcela(TbVendas.Cell(i, TbVendas.Parcela).Text()), !pagarme);
    if (desta.empty()) continue;
    linhas.emplace_back(i, &desta);
    gravacao.titulos.try_emplace(TbVendas.Cell(i, TbVendas.Titulo).AsString());
    gravacao.conciliadas.emplace_back(transacao, TbVendas.Cell(i, TbVendas.Codven).AsString());
  }
  LeTitulos(gravacao);
  LeBaixasAnteriores(gravacao);

  std::map<Chave, std::size_t> desta_vez;
  for (const auto& [i, do_arquivo] : linhas) {
    const std::string numero = TbVendas.Cell(i, TbVendas.Titulo).AsString();
    TituloPedido& titulo = gravacao.titulos[numero];
    for (const int64_t linha : *do_arquivo) {
      if (TbCartao_Arq.Cell(linha, sel).AsInteger() != 1) continue;
      const auto celula = [&](const Field& campo) { return TbCartao_Arq.Cell(linha, campo); };
      BaixaPedido baixa{.titulo = numero,
                        .codcli = TbVendas.Cell(i, TbVendas.Codcli).AsString(),
                        .id = std::string(TrimCode(celula(id).AsString())),
                        .nota = yapay ? celula(meio).AsString() : "",
                        .pagamento = pagarme ? gravacao.data : celula(data).AsDate(),
                        .valor_parcela = TbVendas.Cell(i, TbVendas.ValorParcela).AsCurrency(),
                        .liquido = celula(liquido).AsCurrency(),
                        .taxa = celula(taxa).AsCurrency()};
      if (yapay && baixa.Paga()) baixa.taxa = titulo.valor2 - baixa.liquido;
      const Chave chave{numero, baixa.id, baixa.pagamento};
      const auto [lugar, nova] = desta_vez.try_emplace(chave, gravacao.baixas.size());
      const auto anterior = gravacao.anteriores.find(chave);
      if (!nova) {
        if (baixa.id.empty()) {
          throw UserError("O arquivo tem várias linhas da transação " +
                          TbVendas.Cell(i, TbVendas.Transacao).AsString() +
                          " sem o ID da operação, que as distingue. Nada foi gravado: indique no layout do "
                          "banco a coluna do campo ID.");
        }
        BaixaPedido& antes = gravacao.baixas[std::exchange(lugar->second, gravacao.baixas.size())];
        antes.substituida = true;
        titulo.soma += -antes.Soma();
        gravacao.total -= antes.liquido;
      } else if (anterior != gravacao.anteriores.end()) {
        anterior->second.substituida = true;
        titulo.soma += -anterior->second.soma;
        if (!anterior->second.lancamento.empty()) gravacao.substituidos.insert(anterior->second.lancamento);
      }
      titulo.tocado = true;
      titulo.soma += baixa.Soma();
      gravacao.total += baixa.liquido;
      gravacao.ultimo = &titulo;
      gravacao.baixas.push_back(std::move(baixa));
    }
  }
}

void TFmConcilia::LeTitulos(GravacaoPedidos& gravacao) {
  std::vector<std::string> numeros;
  for (const auto& [numero, titulo] : gravacao.titulos) numeros.push_back(Funcoes.Aspas(numero));
  std::size_t lidos = 0;
  EmListas(numeros, [&](const std::string& lista) {
    for (const auto& lida : Tabela.IBDatabase().Rows(
             "SELECT RECEBER.NUMERO, RECEBER.CLASSE, RECEBER.HISTORICO, HISTCP.SITUACAO, RECEBER.VALOR2, " +
             EmAbertoReceber() + ", RECEBER.RDB$RECORD_VERSION FROM " + Funcoes.DBLocal("RECEBER", true) +
             " RECEBER LEFT JOIN " + Funcoes.DBLocal("HISTCP", true) +
             " HISTCP ON RECEBER.HISTORICO = HISTCP.HISTORICO WHERE RECEBER.NUMERO IN (" + lista + ")")) {
      const std::string numero = lida[0].AsString();
      TituloPedido& titulo = gravacao.titulos[numero];
      titulo = {lida[1].AsString(),   lida[2].AsString(),   lida[3].Text() == "P" ? "S" : "N",
                lida[4].AsCurrency(), lida[5].AsCurrency(), lida[6].AsInteger()};
      if (titulo.aberto != abertos_[numero]) {
        throw UserError("Outro usuário alterou o título " + numero +
                        " depois da consulta. Nada foi gravado. Consulte novamente.");
      }
      ++lidos;
    }
  });
  if (lidos != numeros.size())
    throw UserError(
        "Outro usuário excluiu títulos depois da consulta. Nada foi gravado. Consulte novamente.");
}

void TFmConcilia::LeBaixasAnteriores(GravacaoPedidos& gravacao) {
  std::vector<std::string> numeros;
  for (const auto& [numero, titulo] : gravacao.titulos) numeros.push_back(Funcoes.Aspas(numero));
  EmListas(numeros, [&](const std::string& lista) {
    for (const auto& lida : Tabela.IBDatabase().Rows(
             "SELECT RB.NUMERO, RB.DOCTO, RB.DT_PAGTO, MAX(RB.LANCAMENTO), SUM(RB.VALOR_PAGO), "
             "SUM(RB.DESCONTO2), SUM(RB.JUROS), MIN(RB.DT_CONT), COUNT(*) FROM " +
             Funcoes.DBLocal("RECEBERB", true) + " RB WHERE RB.NUMERO IN (" + lista +
             ") AND RB.DOCTO IS NOT NULL AND RB.DT_PAGTO IS NOT NULL "
             "GROUP BY RB.NUMERO, RB.DOCTO, RB.DT_PAGTO")) {
      gravacao.anteriores.emplace(
          Chave{lida[0].AsString(), std::string(TrimCode(lida[1].Text())), lida[2].AsDate()},
          BaixaAnterior{std::string(Trim(lida[3].Text())),
                        {lida[4].AsCurrency(), lida[5].AsCurrency(), lida[6].AsCurrency()},
                        lida[7].AsDate(),
                        lida[8].AsInteger()});
    }
  });
}

// --- What is refused and asked.

void TFmConcilia::TravaPedidos(GravacaoPedidos& gravacao) {
  // A chargeback's former run has no movement, but its entries.
  std::vector<Date> caixa{gravacao.data};
  for (const auto& [chave, anterior] : gravacao.anteriores) {
    if (!anterior.substituida || anterior.dt_cont.Empty()) continue;
    if (caixa.size() == 1) caixa.push_back(anterior.dt_cont);
    caixa[1] = std::min(caixa[1], anterior.dt_cont);
  }
  if (bloqueio_.Caixa(caixa) || bloqueio_.Conta(gravacao.conta, {gravacao.data})) Abort();
}

void TFmConcilia::LeMovimentosAnteriores(GravacaoPedidos& gravacao) {
  std::vector<std::string> numeros;
  for (const std::string& numero : gravacao.substituidos) numeros.push_back(Funcoes.Aspas(numero));
  const std::string contacor = Funcoes.DBLocal("CONTACOR", true);
  std::set<std::string> de_cartoes;
  EmListas(numeros, [&](const std::string& lista) {
    const std::string destes = "LANCAMENTO IN (" + lista + ")";
    for (const auto& lida : Tabela.IBDatabase().Rows(
             "SELECT LANCAMENTO, LANC_CON, PENDENTE, OBSERVACAO FROM " + contacor + " WHERE " + destes)) {
      const std::string numero(Trim(lida[0].Text())), conciliacao(Trim(lida[1].Text()));
      if (!conciliacao.empty() || lida[2].Text() == "C") {
        const auto titulo =
            std::find_if(gravacao.anteriores.begin(), gravacao.anteriores.end(), [&](const auto& anterior) {
              return anterior.second.substituida && anterior.second.lancamento == numero;
            });
        Inform("O lançamento " + numero + ", de uma gravação anterior do título " +
               std::get<0>(titulo->first) + ", já está conciliado" +
               (conciliacao.empty() ? "" : " sob o número " + conciliacao) +
               ". Desfaça primeiro essa conciliação, ou desmarque o título, e grave de novo.");
        Abort();
      }
      if (lida[3].Text() == kObservacao) de_cartoes.insert(numero);
      ++gravacao.movimentos;
    }
    if (bloqueio_.Movimentos(contacor, destes)) Abort();
  });
  // Without an operation's number another settlement of the day could be taken for a former run.
  for (const auto& [chave, anterior] : gravacao.anteriores) {
    if (!anterior.substituida || !std::get<1>(chave).empty() || de_cartoes.contains(anterior.lancamento))
      continue;
    Inform(
        "O arquivo não tem o ID da operação do título " + std::get<0>(chave) + ", que já tem em " +
        std::get<2>(chave).Brazil() +
        " uma baixa sem documento. Indique no layout do banco a coluna do campo ID ou desmarque o título.");
    Abort();
  }
}

void TFmConcilia::MostraSobras(const GravacaoPedidos& gravacao) {
  std::vector<std::string> numeros;
  for (const std::string& numero : gravacao.substituidos) numeros.push_back(Funcoes.Aspas(numero));
  std::set<std::string> lancamentos;
  int64_t baixas = 0;
  Currency soma;
  EmListas(numeros, [&](const std::string& lista) {
    for (const auto& lida : Tabela.IBDatabase().Rows(
             "SELECT LANCAMENTO, NUMERO, COALESCE(DOCTO, ''), DT_PAGTO, SUM(VALOR_PAGO) FROM " +
             Funcoes.DBLocal("RECEBERB", true) + " WHERE LANCAMENTO IN (" + lista +
             ") GROUP BY LANCAMENTO, NUMERO, DOCTO, DT_PAGTO")) {
      const auto desta = gravacao.anteriores.find(
          Chave{lida[1].AsString(), std::string(TrimCode(lida[2].Text())), lida[3].AsDate()});
      if (desta != gravacao.anteriores.end() && desta->second.substituida) continue;
      lancamentos.insert(std::string(Trim(lida[0].Text())));
      soma += lida[4].AsCurrency();
      ++baixas;
    }
  });
  if (baixas == 0) return;
  const bool um = lancamentos.size() == 1;
  LbCartao.Mostra("Esta gravação substitui " + std::string(um ? "o lançamento " : "os lançamentos ") +
                  Join({lancamentos.begin(), lancamentos.end()}, ", ") + ", que " + (um ? "tem " : "têm ") +
                  std::to_string(baixas) +
                  (baixas == 1 ? " baixa que ela não grava de novo, total "
                               : " baixas que ela não grava de novo, total ") +
                  soma.Brazil() + (baixas == 1 ? ": fica" : ": ficam") + " sem lançamento na conta.");
}

void TFmConcilia::PreparaPartidas(GravacaoPedidos& gravacao) {
  gravacao.partida = Contabil.Create();
  for (const BaixaPedido& baixa : gravacao.baixas) {
    if (baixa.substituida || baixa.liquido.IsZero()) continue;
    const TituloPedido& titulo = gravacao.titulos.at(baixa.titulo);
    LinhaContabil linha{.lancamento = gravacao.lancamento,
                        .docto = gravacao.docto,
                        .docto2 = baixa.titulo,
                        .conta_c = baixa.codcli,
                        .conta_d = gravacao.conta,
                        .operacao = "+",
                        .origem = baixa.Paga() ? "RR" : "RB",
                        .classe = titulo.classe,
                        .historico = titulo.historico,
                        .valor = baixa.liquido.Abs(),
                        .data = gravacao.data,
                        .codigo = "000",
                        .observacao = baixa.codcli};
    gravacao.partida->SetContabilidadeFinan(linha);
    linha.conta_d = baixa.codcli;
    linha.operacao = baixa.Paga() ? "-" : "+";
    linha.origem = baixa.Paga() ? "RC" : "RA";
    linha.valor = baixa.Paga() ? baixa.taxa : -baixa.taxa;
    gravacao.partida->SetContabilidadeFinan(linha);
  }
}

// --- The write.

void TFmConcilia::EscrevePedidos(const GravacaoPedidos& gravacao) {
  // The first write holds the receivables: of two users only the first one goes on.
  std::vector<std::string> comandos;
  for (const auto& [numero, titulo] : gravacao.titulos) {
    if (!titulo.tocado) continue;
    const auto soma = [&](const char* coluna, Currency valor) {
      return std::string(coluna) + " = (" + coluna + " + " + Funcoes.PermanecePonto(valor) + ")";
    };
    comandos.push_back("UPDATE " + Funcoes.DBLocal("RECEBER", true) + " SET " +
                       soma("VALOR_PAGO", titulo.soma.pago) + ", " + soma("DESCONTO", titulo.soma.desconto) +
                       ", " + soma("JUROS", titulo.soma.juros) + " WHERE " +
                       ComoLido(Funcoes).Chave("NUMERO", numero).Versao(titulo.versao).Condicao());
  }
  if (Executa(comandos) != static_cast<int64_t>(comandos.size()))
    throw UserError(
        "Outro usuário alterou títulos destes pedidos durante a gravação. Nada foi gravado. Consulte "
        "novamente.");
  ApagaAnteriores(gravacao);

  std::vector<std::vector<Value>> linhas;
  for (const BaixaPedido& baixa : gravacao.baixas) {
    if (baixa.substituida || baixa.liquido.IsZero()) continue;
    const std::string& historico = gravacao.titulos.at(baixa.titulo).historico;
    const auto linha = [&](Currency pago, Currency juros, Currency desconto2, const char* comissao) {
      linhas.push_back({gravacao.lancamento, baixa.titulo, baixa.valor_parcela, baixa.pagamento,
                        gravacao.data, historico, pago, juros, 0, 0, 0, desconto2, 0, baixa.id, baixa.nota,
                        comissao});
    };
    const Currency zero;
    linha(baixa.Paga() ? baixa.liquido : zero, baixa.Paga() ? zero : -baixa.liquido, zero, "S");
    linha(zero, baixa.Paga() ? zero : -baixa.taxa, baixa.Paga() ? baixa.taxa : zero, "N");
  }
  auto proxima = linhas.begin();
  Tabela.IBDatabase().InsertRows(
      Funcoes.DBLocal("RECEBERB", true),
      {"LANCAMENTO", "NUMERO", "VALOR2", "DT_PAGTO", "DT_CONT", "HISTORICO", "VALOR_PAGO", "JUROS", "VAL_DEV",
       "QT_DEV", "DESCONTO", "DESCONTO2", "DESCONTO3", "DOCTO", "OBS", "COMISSAO"},
      [&](std::span<Value> linha) {
        if (proxima == linhas.end()) return false;
        std::move(proxima->begin(), proxima->end(), linha.begin());
        ++proxima;
        return true;
      });
  gravacao.partida->GravaContabilidadeFinan();
  if (gravacao.total <= Currency()) return;
  Contabil.LancaContaCorrente({.lancamento = gravacao.lancamento,
                               .docto = gravacao.docto,
                               .banco = gravacao.banco,
                               .conta = gravacao.conta,
                               .grupo = gravacao.ultimo->classe,
                               .historico = gravacao.ultimo->historico,
                               .tipo = "R",
                               .pendente = gravacao.ultimo->pendente,
                               .operacao = "+",
                               .observacao = kObservacao,
                               .valor = gravacao.total,
                               .dt_lan = Today(),
                               .dt_vencto = gravacao.data,
                               .dt_cont = gravacao.data,
                               .tipo_doc = "DP"});
  AnotaMovimento(Funcoes, gravacao.lancamento, "INCLUSAO DO LANCAMENTO PELOS PEDIDOS CONCILIADOS",
                 TOperacaoLog::Inclusao);
}

void TFmConcilia::ApagaAnteriores(const GravacaoPedidos& gravacao) {
  TOrvDatabase& db = Tabela.IBDatabase();
  int64_t movimentos = 0;
  for (const std::string& numero : gravacao.substituidos) {
    movimentos += db.Execute("DELETE FROM " + Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
                             Igual("LANCAMENTO", numero) +
                             " AND COALESCE(LANC_CON, '') = '' AND COALESCE(PENDENTE, '') <> 'C'");
    Contabil.DeletaAnexos(numero);
    AnotaMovimento(Funcoes, numero, "EXCLUSAO DO LANCAMENTO, SUBSTITUIDO POR " + gravacao.lancamento,
                   TOperacaoLog::Exclusao);
    Contabil.DeletaContabilidadeFinan(numero);
    ApagaRateioDoMovimento(Funcoes, Tabela, numero);
  }
  std::vector<std::string> comandos;
  int64_t linhas = 0;
  for (const auto& [chave, anterior] : gravacao.anteriores) {
    if (!anterior.substituida) continue;
    comandos.push_back("DELETE FROM " + Funcoes.DBLocal("RECEBERB", true) + " WHERE " +
                       Igual("NUMERO", std::get<0>(chave)) + " AND " + Igual("DOCTO", std::get<1>(chave)) +
                       " AND DT_PAGTO = " + Funcoes.AspasData(std::get<2>(chave)));
    linhas += anterior.linhas;
  }
  if (Executa(comandos) != linhas || movimentos != gravacao.movimentos)
    throw UserError(
        "Outro usuário alterou ou conciliou o que uma gravação anterior fez. Nada foi gravado. Consulte "
        "novamente.");
}

}  // namespace orv
