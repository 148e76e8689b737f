// The page "Acesso": movements found by any mix of filters. And the balances of the accounts.
#include <algorithm>
#include <array>
#include <unordered_map>

#include "ledger/cc.h"
#include "ledger/cc_trans_conta.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// The columns of TbConsulta, in its order.
constexpr const char* kColunas =
    "CONTACOR.LANCAMENTO, CONTACOR.DOCTO, CONTACOR.BANCO, CONTACOR.CONTA, CONTACOR.DT_CONT, "
    "CONTACOR.DT_LAN, CONTACOR.DT_VENCTO, CONTACOR.VALOR, CONTACOR.OPERACAO, CONTACOR.PENDENTE, "
    "CONTACOR.OBSERVACAO, CONTACOR.HISTORICO, CONTACOR.GRUPO, CONTACOR.LANC_CON, CONTACOR.TIPO_DOC, "
    "CONTACOR.TIPO, SUBGRUPO.DESCRICAO AS DESC_GRUPO";
constexpr const char* kOrdem = "BANCO;CONTA;DOCTO";

// The settled balance, what is pending, what is yet to come: conditions on a movement.
constexpr const char* kBaixado = "PENDENTE IN ('N','C') AND DT_CONT <= ";
constexpr const char* kPendente = "PENDENTE = 'S' AND DT_CONT <= ";
constexpr const char* kPrevisto = "DT_CONT > ";
constexpr const char* kComSinal = "CASE OPERACAO WHEN '+' THEN VALOR WHEN '-' THEN -VALOR END";

// Takes the movements found into the working set and adds them up.
class Achados : public RowSink {
 public:
  explicit Achados(TfmCC::ConsultaSet& set)
      : set_(set),
        valor_(static_cast<std::size_t>(set.Valor.Index())),
        operacao_(static_cast<std::size_t>(set.Operacao.Index())) {}
  void Columns(const std::vector<Column>& columns) override {
    ORV_ASSERT(columns.size() == set_.Fields().size());
  }
  bool Row(std::span<Value> values) override {
    const Currency valor = values[valor_].AsCurrency();
    (values[operacao_].Text() == "-" ? debito : credito) += valor;
    if (!values[valor_].IsNull()) values[valor_] = valor.ToDouble();
    set_.AppendRow(values);
    return true;
  }

  Currency debito, credito;

 private:
  TfmCC::ConsultaSet& set_;
  std::size_t valor_, operacao_;
};

}  // namespace

// --- Inquiry.

void TfmCC::BitBtn5Click() {
  const BusyMark busy(Funcoes, *this);
  ConsultaLancamentos();
}

void TfmCC::ConsultaLancamentos() {
  for (MoneyEdit* total : {&EdtDebito, &EdtCredito, &EdtSaldo}) total->SetAmount(Currency());
  const ControlsHold hold(TbConsulta);
  TbConsulta.EmptyDataSet();
  TbConsulta.SetIndexFieldNames("");
  Achados achados(TbConsulta);
  if (const std::string sql = SqlConsulta(); !sql.empty()) {
    try {
      Tabela.IBDatabase().Fetch(sql, achados);
    } catch (...) {
      TbConsulta.EmptyDataSet();
      throw;
    }
  }
  // The rows stand as the database would order them, but need no order while they come.
  TbConsulta.SetIndexFieldNames(kOrdem);
  EdtDebito.SetAmount(achados.debito);
  EdtCredito.SetAmount(achados.credito);
  EdtSaldo.SetAmount(achados.credito - achados.debito);
  TbConsulta.First();
}

std::string TfmCC::SqlConsulta() const {
  std::string sql = std::string("SELECT ") + kColunas + " FROM " + Funcoes.DBLocal("CONTACOR", true) +
                    " CONTACOR INNER JOIN " + Funcoes.DBLocal("CADCONTA", true) +
                    " CADCONTA ON CADCONTA.CONTA = CONTACOR.CONTA LEFT JOIN " +
                    Funcoes.DBLocal("SUBGRUPO", true) + " SUBGRUPO ON SUBGRUPO.CODIGO = CONTACOR.GRUPO";
  const char* liga = " WHERE ";
  const auto filtro = [&](const std::string& condicao) {
    sql += liga + condicao;
    liga = " AND ";
  };

  struct Periodo {
    const char* coluna;
    const DateEdit &de, &ate;
  };
  for (const Periodo& p :
       {Periodo{"CONTACOR.DT_LAN", dtInicio, dtFim}, Periodo{"CONTACOR.DT_VENCTO", dtVencIni, dtVencFim},
        Periodo{"CONTACOR.DT_CONT", dtContIni, dtContFim}}) {
    // No movement has the empty date, and none lies between it and another.
    if (p.de.Date().Empty() || p.ate.Date().Empty()) return "";
    filtro(std::string(p.coluna) + " BETWEEN " + Funcoes.AspasData(p.de.Date()) + " AND " +
           Funcoes.AspasData(p.ate.Date()));
  }
  if (EdtValorDe.Amount() > Currency())
    filtro("CONTACOR.VALOR >= " + Funcoes.PermanecePonto(EdtValorDe.Amount()));
  if (EdtValorAte.Amount() > Currency())
    filtro("CONTACOR.VALOR <= " + Funcoes.PermanecePonto(EdtValorAte.Amount()));

  const auto igual = [&](const char* coluna, const Edit& campo) {
    if (!campo.Empty()) filtro(Igual(coluna, campo.Text()));
  };
  igual("CONTACOR.LANCAMENTO", EdtConsLanc);
  igual("CONTACOR.CONTA", EdtConsConta);
  igual("CONTACOR.GRUPO", EdtCodGrupo);
  if (!EdtAObs.Empty()) filtro("CONTACOR.OBSERVACAO LIKE " + Funcoes.Aspas("%" + EdtAObs.Text() + "%"));
  igual("CONTACOR.HISTORICO", edtCodHist);

  constexpr std::array<const char*, 4> kPendentes{"", "S", "N", "C"};
  constexpr std::array<const char*, 3> kTipos{"", "DP", "CH"};
  const auto opcao = [&](const char* coluna, const RadioGroup& grupo, const auto& codigos) {
    const auto escolha = static_cast<std::size_t>(std::max(grupo.ItemIndex(), 0));
    if (escolha > 0) filtro(Igual(coluna, codigos[escolha]));
  };
  opcao("CONTACOR.PENDENTE", RgBusca, kPendentes);
  igual("CONTACOR.DOCTO", EdtDocto);
  opcao("CONTACOR.TIPO_DOC", RgTipo, kTipos);
  return sql;
}

void TfmCC::DBGridApagarDblClick() {
  if (TbConsulta.IsEmpty()) return;
  if (Panel5.Visible()) {
    // What is being typed there isn't thrown away.
    PageControl1.SetActivePage(TabSheet2);
    Inform("Confirme ou cancele primeiro o lançamento em edição.");
    return;
  }
  BuscaLancamento(TbConsulta.Lancamento.AsString(), TbConsulta.Docto.AsString(), TbConsulta.Conta.AsString(),
                  TbConsulta.Operacao.AsString());
  PageControl1.SetActivePage(TabSheet2);
  EdtLanctoChange();
  (BitBtn2.Usable() ? BitBtn2 : BitBtn1).SetFocus();
}

void TfmCC::BitBtn7Click() {
  Funcoes.Carrega_Form("orvCC", "TFmCCTransConta", "", false, false);
  FmCCTransConta->ShowModal();
}

// --- Balances.

std::string TfmCC::SqlDoMovimento(const std::string& sql) {
  const auto& partilhadas = Tabela.TabelasCompartilhadas();
  const bool uma = std::any_of(partilhadas.begin(), partilhadas.end(),
                               [](const std::string& tabela) { return SameText(tabela, "CONTACOR"); });
  return uma ? Funcoes.DBLocal_SQL(sql, "") : Funcoes.UnionTodasEmpresas(sql, "", true);
}

Currency TfmCC::ValorConta(const std::string& condicao) {
  const std::string conta = Tabela.TbCadConta()["CONTA"].AsString();
  Currency valor;
  for (const auto& linha : Tabela.IBDatabase().Rows(
           SqlDoMovimento(std::string("SELECT SUM(") + kComSinal + ") AS VALOR FROM {CONTACOR} WHERE " +
                          Igual("CONTA", conta) + " AND " + condicao))) {
    valor += linha[0].AsCurrency();
  }
  return valor;
}

Currency TfmCC::ValorSaldoConta() { return ValorConta(kBaixado + Funcoes.AspasData(Today())); }
Currency TfmCC::ValorPendenteConta() { return ValorConta(kPendente + Funcoes.AspasData(Today())); }
Currency TfmCC::ValorPrevisaoConta() { return ValorConta(kPrevisto + Funcoes.AspasData(Today())); }

void TfmCC::BitBtn8Click() {
  {
    const BusyMark busy(Funcoes, *this);
    ConsultaContas();
  }
  struct Ordem {
    explicit Ordem(TClientDataSet& s) : set(s) { set.SetIndexFieldNames("Descricao"); }
    ~Ordem() { set.SetIndexFieldNames(""); }
    TClientDataSet& set;
  } const ordem(TbContas);
  Funcoes.Chama_RelatorioWin(*this, "WCCSaldoConta");
}

void TfmCC::ConsultaContas() {
  // The three values of all accounts in one pass over the movements.
  const std::string hoje = Funcoes.AspasData(Today());
  const auto soma = [&](const std::string& condicao) {
    return std::string(", SUM(CASE WHEN ") + condicao + hoje + " THEN " + kComSinal + " END)";
  };
  std::unordered_map<std::string, std::array<Currency, 3>> valores;
  for (const auto& linha :
       Tabela.IBDatabase().Rows(SqlDoMovimento("SELECT CONTA" + soma(kBaixado) + soma(kPendente) +
                                               soma(kPrevisto) + " FROM {CONTACOR} GROUP BY CONTA"))) {
    auto& da_conta = valores[linha[0].AsString()];
    for (std::size_t i = 0; i < da_conta.size(); ++i) da_conta[i] += linha[i + 1].AsCurrency();
  }

  TbContas.EmptyDataSet();
  const ControlsHold hold(TbContas);
  TOrvTable& contas = Tabela.TbCadConta();
  for (contas.First(); !contas.Eof(); contas.Next()) {
    if (contas["IMP_FLUXO"].AsString() != "S") continue;
    const auto& [saldo, pendente, previsao] = valores[contas["CONTA"].AsString()];
    TbContas.Append();
    TbContas.Contas = contas["CONTA"].Get();
    TbContas.Descricao = contas["DESCRICAO"].Get();
    TbContas.Empresa = contas["EMPRESA"].Get();
    TbContas.Banco = contas["BANCO"].Get();
    TbContas.Saldo = saldo.ToDouble();
    TbContas.Pendente = pendente.ToDouble();
    TbContas.Previsao = previsao.ToDouble();
    TbContas.Codigo = contas["CODIGO"].Get();
    TbContas.Tipo = contas["TIPO"].Get();
    TbContas.Post();
  }
  TbContas.First();
}

}  // namespace orv
