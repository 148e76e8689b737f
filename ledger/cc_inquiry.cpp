// The page "Acesso": movements found by any mix of filters. And the balances of the accounts.
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "ledger/cc.h"
#include "ledger/cc_trans_conta.h"
#include "rules/saldo.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// The columns of TbConsulta, in its order, without the description of the class.
constexpr const char* kColunas =
    "LANCAMENTO, DOCTO, BANCO, CONTA, DT_CONT, DT_LAN, DT_VENCTO, VALOR, OPERACAO, PENDENTE, OBSERVACAO, "
    "HISTORICO, GRUPO, LANC_CON, TIPO_DOC, TIPO";

// Takes the movements found, adds them up and lays them down in the order of the inquiry. A movement is one
// only where its account is in `contas`, and its class is described by `classes`: looked up in memory, they
// cost next to nothing beside a join.
class Achados : public RowSink {
 public:
  Achados(TfmCC::ConsultaSet& set, const std::vector<std::vector<Value>>& contas,
          const std::vector<std::vector<Value>>& classes)
      : set_(set), columns_(set.Fields().size()) {
    for (const auto& conta : contas) contas_.insert(std::string(TrimCode(conta[0].Text())));
    for (const auto& classe : classes) classes_.emplace(std::string(TrimCode(classe[0].Text())), classe[1]);
  }
  void Columns(const std::vector<Column>& columns) override { ORV_ASSERT(columns.size() + 1 == columns_); }
  bool Row(std::span<Value> values) override {
    if (!contas_.contains(std::string(TrimCode(At(values, set_.Conta).Text())))) return true;
    (At(values, set_.Operacao).Text() == "-" ? debito : credito) += At(values, set_.Valor).AsCurrency();
    const auto classe = classes_.find(std::string(TrimCode(At(values, set_.Grupo).Text())));
    cells_.insert(cells_.end(), std::move_iterator(values.begin()), std::move_iterator(values.end()));
    cells_.push_back(classe == classes_.end() ? Value() : classe->second);
    return true;
  }
  // By bank, account and document; rows that agree in them stand as they came.
  void Lay() {
    // Accounts are few: within one only the document is compared.
    using Conta = std::pair<Value, Value>;
    const auto antes = [](const Conta& a, const Conta& b) {
      const auto banco = Compare(a.first, b.first);
      return banco != 0 ? banco < 0 : Compare(a.second, b.second) < 0;
    };
    std::map<Conta, std::vector<std::span<Value>>, decltype(antes)> contas(antes);
    for (std::size_t at = 0; at < cells_.size(); at += columns_) {
      const std::span<Value> row(cells_.data() + at, columns_);
      contas[{At(row, set_.Banco), At(row, set_.Conta)}].push_back(row);
    }
    for (auto& [conta, rows] : contas) {
      std::stable_sort(rows.begin(), rows.end(), [&](std::span<Value> a, std::span<Value> b) {
        return Compare(At(a, set_.Docto), At(b, set_.Docto)) < 0;
      });
      for (const std::span<Value> row : rows) set_.AppendRow(row);
    }
  }

  Currency debito, credito;

 private:
  static Value& At(std::span<Value> row, const Field& field) {
    return row[static_cast<std::size_t>(field.Index())];
  }

  TfmCC::ConsultaSet& set_;
  std::size_t columns_;
  std::unordered_set<std::string> contas_;
  std::unordered_map<std::string, Value> classes_;
  std::vector<Value> cells_;
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
  TOrvDatabase& db = Tabela.IBDatabase();
  Achados achados(TbConsulta, db.Rows("SELECT CONTA FROM " + Funcoes.DBLocal("CADCONTA", true)),
                  db.Rows("SELECT CODIGO, DESCRICAO FROM " + Funcoes.DBLocal("SUBGRUPO", true)));
  if (const std::string sql = SqlConsulta(); !sql.empty()) db.Fetch(sql, achados);
  achados.Lay();
  EdtDebito.SetAmount(achados.debito);
  EdtCredito.SetAmount(achados.credito);
  EdtSaldo.SetAmount(achados.credito - achados.debito);
  if (!achados.credito.FitsField() || !achados.debito.FitsField())
    ApontaForaDeMedida(User(), db, Funcoes.DBLocal_SQL(ForaDeMedida(kContaCorrente), ""));
  TbConsulta.First();
}

std::string TfmCC::SqlConsulta() const {
  std::string sql = std::string("SELECT ") + kColunas + " FROM " + Funcoes.DBLocal("CONTACOR", true);
  const char* liga = " WHERE ";
  const auto filtro = [&](const std::string& condicao) {
    sql.append(liga).append(condicao);
    liga = " AND ";
  };

  struct Periodo {
    const char* coluna;
    const DateEdit &de, &ate;
  };
  for (const Periodo& p : {Periodo{"DT_LAN", dtInicio, dtFim}, Periodo{"DT_VENCTO", dtVencIni, dtVencFim},
                           Periodo{"DT_CONT", dtContIni, dtContFim}}) {
    // No movement has the empty date, and none lies between it and another.
    if (p.de.Date().Empty() || p.ate.Date().Empty()) return "";
    filtro(std::string(p.coluna) + " BETWEEN " + Funcoes.AspasData(p.de.Date()) + " AND " +
           Funcoes.AspasData(p.ate.Date()));
  }
  if (EdtValorDe.Amount() > Currency()) filtro("VALOR >= " + Funcoes.PermanecePonto(EdtValorDe.Amount()));
  if (EdtValorAte.Amount() > Currency()) filtro("VALOR <= " + Funcoes.PermanecePonto(EdtValorAte.Amount()));

  const auto igual = [&](const char* coluna, const Edit& campo) {
    if (!campo.Empty()) filtro(Igual(coluna, campo.Text()));
  };
  igual("LANCAMENTO", EdtConsLanc);
  igual("CONTA", EdtConsConta);
  igual("GRUPO", EdtCodGrupo);
  if (!EdtAObs.Empty()) filtro("OBSERVACAO LIKE " + Funcoes.Aspas("%" + EdtAObs.Text() + "%"));
  igual("HISTORICO", edtCodHist);

  constexpr std::array<const char*, 4> kPendentes{"", "S", "N", "C"};
  constexpr std::array<const char*, 3> kTipos{"", "DP", "CH"};
  const auto opcao = [&](const char* coluna, const RadioGroup& grupo, const auto& codigos) {
    const auto escolha = static_cast<std::size_t>(std::max(grupo.ItemIndex(), 0));
    if (escolha > 0) filtro(Igual(coluna, codigos.at(escolha)));
  };
  opcao("PENDENTE", RgBusca, kPendentes);
  igual("DOCTO", EdtDocto);
  opcao("TIPO_DOC", RgTipo, kTipos);
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

// The settled balance and what is pending, up to today, and what is yet to come.
Currency TfmCC::ValorConta(const std::string& saldos, const std::string& condicao) {
  return TotalDeSaldo(
      Tabela.IBDatabase(),
      SqlDoMovimento("SELECT " + Soma(ComSinal(kContaCorrente, "", condicao)) + " FROM " + saldos +
                     " WHERE " + Igual("CONTA", Tabela.TbCadConta()["CONTA"].AsString())));
}

std::string TfmCC::AteHoje() const { return SaldosAte(kContaCorrente, "DT_CONT", Today(), Today()); }
std::string TfmCC::AposHoje() const { return SaldosApos(kContaCorrente, "DT_CONT", Today(), Today()); }

Currency TfmCC::ValorSaldoConta() { return ValorConta(AteHoje(), kBaixado); }
Currency TfmCC::ValorPendenteConta() { return ValorConta(AteHoje(), kPendente); }
Currency TfmCC::ValorPrevisaoConta() { return ValorConta(AposHoje(), ""); }

void TfmCC::BitBtn8Click() {
  {
    const BusyMark busy(Funcoes, *this);
    ConsultaContas();
  }
  TbContas.SetIndexFieldNames("Descricao");
  const AtEnd volta([this] { TbContas.SetIndexFieldNames(""); });
  Funcoes.Chama_RelatorioWin(*this, "WCCSaldoConta");
}

void TfmCC::ConsultaContas() {
  // Both values up to today in one text: so an account is read once.
  const auto soma = [](const char* condicao) {
    return "COALESCE(" + Soma(ComSinal(kContaCorrente, "", condicao)) + ", '0 0')";
  };
  const auto da_conta = [](const std::string& somas, const std::string& saldos) {
    return ", (SELECT " + somas + " FROM " + saldos + " WHERE CONTACOR.CONTA = CADCONTA.CONTA)";
  };
  const std::string sql = "SELECT CADCONTA.CONTA" +
                          da_conta(soma(kBaixado) + " || ';' || " + soma(kPendente), AteHoje()) +
                          da_conta(soma(""), AposHoje()) + " FROM " + Funcoes.DBLocal("CADCONTA", true) +
                          " CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'";
  std::unordered_map<std::string, std::array<Currency, 3>> valores;
  bool cabem = true;
  for (const auto& linha : LinhasDeSaldo(Tabela.IBDatabase(), SqlDoMovimento(sql))) {
    const std::vector<std::string> ate_hoje = Split(linha[1].Text(), ";");
    const Currency somas[] = {SomaDe(Value(ate_hoje[0])), SomaDe(Value(ate_hoje[1])), SomaDe(linha[2])};
    auto& valor = valores[linha[0].AsString()];
    for (std::size_t i = 0; i < valor.size(); ++i) {
      valor[i] += somas[i];
      cabem = cabem && valor[i].FitsField();
    }
  }
  if (!cabem) ApontaForaDeMedida(User(), Tabela.IBDatabase(), SqlDoMovimento(ForaDeMedida(kContaCorrente)));

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
