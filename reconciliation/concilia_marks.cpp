// The page "Conciliação de Extrato": balances, the movements and lines of a period, and what is ticked.
#include <unordered_map>

#include "reconciliation/concilia.h"
#include "rules/soma.h"
#include "toolkit/text.h"

namespace orv {
namespace {

enum Busca { kConciliados = 0, kAConciliar = 1 };
enum Tipo { kPagamentos = 0, kRecebimentos = 1 };

// The mode of a set while it is loaded.
constexpr int kNormal = 0, kCarga = 2;

// A code as the database compares it, which takes trailing blanks for nothing.
std::string Codigo(const Value& value) {
  const std::string_view text = value.Text();
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

// Takes rows of a statement into a set: each column of the result into a field.
class Linhas : public RowSink {
 public:
  Linhas(TClientDataSet& set, std::vector<const Field*> campos)
      : set_(set), campos_(std::move(campos)), linha_(set.Fields().size()) {}
  void Columns(const std::vector<Column>& columns) override { ORV_ASSERT(columns.size() == campos_.size()); }
  bool Row(std::span<Value> values) override {
    for (std::size_t i = 0; i < campos_.size(); ++i)
      Celula(*campos_[i]) = campos_[i]->Convert(std::move(values[i]));
    Completa();
    set_.AppendRow(linha_);
    return true;
  }

 protected:
  Value& Celula(const Field& campo) { return linha_[static_cast<std::size_t>(campo.Index())]; }
  // What a row has that isn't in the statement.
  virtual void Completa() {}

 private:
  TClientDataSet& set_;
  std::vector<const Field*> campos_;
  std::vector<Value> linha_;
};

class Movimentos : public Linhas {
 public:
  // The classes' descriptions are few: looked up in memory they cost next to nothing beside a join.
  Movimentos(TFmConcilia::MovSet& set, const std::vector<std::vector<Value>>& classes)
      : Linhas(set,
               {&set.Conciliar, &set.Operacao, &set.Lancto, &set.Docto, &set.DataLancto, &set.Data,
                &set.DataVencto, &set.Classe, &set.Valor, &set.Historico, &set.Observacao, &set.LancCon}),
        set_(set) {
    for (const auto& classe : classes) classes_.emplace(Codigo(classe[0]), set.DescClasse.Convert(classe[1]));
  }

 private:
  void Completa() override {
    Value& operacao = Celula(set_.Operacao);
    operacao = operacao.Text() == "+" ? "C" : "D";
    const auto classe = classes_.find(Codigo(Celula(set_.Classe)));
    Celula(set_.DescClasse) = classe == classes_.end() ? Value() : classe->second;
  }

  TFmConcilia::MovSet& set_;
  std::unordered_map<std::string, Value> classes_;
};

// What is ticked, credits less debits.
Currency Marcado(MemoryDataSet& set, const Field& marca, std::string_view marcada, const Field& operacao,
                 const Field& valor) {
  Currency total;
  const int64_t linhas = set.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (set.Cell(i, marca).Text() != marcada) continue;
    const Currency amount = set.Cell(i, valor).AsCurrency();
    if (set.Cell(i, operacao).Text() == "D") {
      total -= amount;
    } else {
      total += amount;
    }
  }
  return total;
}

}  // namespace

void TFmConcilia::EdtContaChange() {
  const std::string ate = Funcoes.AspasData(DtFinal.Date()), conta = Funcoes.Aspas(EdtConta.Text());
  Currency saldo, conciliado;
  bool cabem = true, extrato_cabe = true;
  std::string descricao, banco;
  for (const auto& linha : Tabela.IBDatabase().Rows(
           "SELECT " + Soma("CONTACOR.VALOR") +
           " AS VALOR, CADCONTA.DESCRICAO, CADCONTA.BANCO, CONTACOR.OPERACAO, "
           "CONTACOR.PENDENTE FROM " +
           Funcoes.DBLocal("CONTACOR", true) + " CONTACOR JOIN " + Funcoes.DBLocal("CADCONTA", true) +
           " CADCONTA ON CADCONTA.CONTA = CONTACOR.CONTA WHERE CONTACOR.DT_CONT <= " + ate +
           " AND CONTACOR.CONTA = " + conta +
           " GROUP BY CADCONTA.DESCRICAO, CADCONTA.BANCO, CONTACOR.OPERACAO, CONTACOR.PENDENTE ")) {
    const Currency soma = SomaDe(linha[0]), valor = linha[3].Text() == "-" ? -soma : soma;
    cabem = cabem && soma.FitsField();
    saldo += valor;
    if (linha[4].Text() == "N") conciliado += valor;
    descricao = linha[1].AsString();
    banco = linha[2].AsString();
  }
  EdtSaldoMov.SetAmount(saldo);
  EdtSaldoMovCon.SetAmount(conciliado);
  EdtDescConta.SetText(descricao);
  EdtCodBan.SetText(banco);

  Currency extrato, extrato_conciliado;
  for (const auto& linha : Tabela.IBDatabase().Rows(
           "SELECT " + Soma("EXTRATO.VALOR") + " AS VALOR, EXTRATO.OPERACAO, EXTRATO.CONCILIADO FROM " +
           Funcoes.DBLocal("EXTRATO", true) + " EXTRATO WHERE EXTRATO.DT_CONT <= " + ate +
           " AND EXTRATO.CONTA = " + conta + " GROUP BY EXTRATO.OPERACAO, EXTRATO.CONCILIADO ")) {
    const Currency soma = SomaDe(linha[0]), valor = linha[1].Text() == "D" ? -soma : soma;
    extrato_cabe = extrato_cabe && soma.FitsField();
    extrato += valor;
    if (linha[2].Text() == "S") extrato_conciliado += valor;
  }
  EdtSaldoExt.SetAmount(extrato);
  EdtSaldoExtCon.SetAmount(extrato_conciliado);
  const auto aponta = [&](const char* tabela, const char* chave) {
    ApontaForaDeMedida(User(), Tabela.IBDatabase(), Funcoes.DBLocal_SQL(ForaDeMedida(tabela, chave), ""));
  };
  if (!cabem) aponta("CONTACOR", "LANCAMENTO");
  if (!extrato_cabe) aponta("EXTRATO", "LANCTO");
}

void TFmConcilia::BitBtn1Click() {
  const BusyMark busy(Funcoes, *this);
  CarregaMovimentos();
  CalculaTotais();
  TbMov.First();
  TbArq.First();
}

std::string TFmConcilia::Filtros(const char* operacao, const char* debito, const char* credito,
                                 const char* situacao, const char* feito, const char* aberto) const {
  std::string sql = " WHERE CONTA = " + Funcoes.Aspas(EdtConta.Text()) + " AND DT_CONT BETWEEN " +
                    Funcoes.AspasData(DtInicio.Date()) + " AND " + Funcoes.AspasData(DtFinal.Date());
  const auto igual = [&](const char* coluna, std::string_view texto) {
    sql += std::string(" AND ") + coluna + " = " + Funcoes.Aspas(texto);
  };
  if (RgTipo.ItemIndex() == kPagamentos) igual(operacao, debito);
  if (RgTipo.ItemIndex() == kRecebimentos) igual(operacao, credito);
  if (RgBusca.ItemIndex() == kConciliados) igual(situacao, feito);
  if (RgBusca.ItemIndex() == kAConciliar) igual(situacao, aberto);
  if (!EdtDocto.Empty()) igual("DOCTO", EdtDocto.Text());
  if (!EdtConcilia.Empty()) igual("LANC_CON", EdtConcilia.Text());
  return sql;
}

void TFmConcilia::CarregaMovimentos() {
  if (EdtConta.Empty()) return Recusa("Selecione uma Conta.", EdtConta);
  struct Carga {
    TFmConcilia& tela;
    explicit Carga(TFmConcilia& t) : tela(t) { tela.TbMov.Tag = tela.TbArq.Tag = kCarga; }
    ~Carga() { tela.TbMov.Tag = tela.TbArq.Tag = kNormal; }
  };
  {
    const Carga carga(*this);
    const ControlsHold movimentos(TbMov), extrato(TbArq);
    TOrvDatabase& db = Tabela.IBDatabase();
    EsqueceSugestoes();
    conta_ = EdtConta.Text();
    TbMov.Cancel();
    TbMov.EmptyDataSet();
    TbArq.Cancel();
    TbArq.EmptyDataSet();

    Movimentos lidos(TbMov, db.Rows("SELECT CODIGO, DESCRICAO FROM " + Funcoes.DBLocal("SUBGRUPO", true)));
    db.Fetch(
        "SELECT PENDENTE, OPERACAO, LANCAMENTO, DOCTO, DT_LAN, DT_CONT, DT_VENCTO, GRUPO, VALOR, HISTORICO, "
        "OBSERVACAO, LANC_CON FROM " +
            Funcoes.DBLocal("CONTACOR", true) + Filtros("OPERACAO", "-", "+", "PENDENTE", "N", "S"),
        lidos);
    Linhas linhas(TbArq, {&TbArq.Concilia, &TbArq.Operacao, &TbArq.Lancto, &TbArq.Docto, &TbArq.Data,
                          &TbArq.Valor, &TbArq.Observacao, &TbArq.Arquivo, &TbArq.LancCon});
    db.Fetch(
        "SELECT CONCILIADO, OPERACAO, LANCTO, DOCTO, DT_CONT, VALOR, OBSERVACAO, ARQUIVO, LANC_CON FROM " +
            Funcoes.DBLocal("EXTRATO", true) + Filtros("OPERACAO", "D", "C", "CONCILIADO", "S", "N"),
        linhas);
    BitBtn4.SetEnabled(RgBusca.ItemIndex() == kAConciliar);
    BitBtn8.SetEnabled(RgBusca.ItemIndex() == kConciliados);
    BtSugerir.SetEnabled(BitBtn4.Enabled());
  }
  TbMov.First();
  TbArq.First();
}

void TFmConcilia::CalculaTotais() {
  TbArq.PostIfEditing();
  TbMov.PostIfEditing();
  tot_ext_ = Marcado(TbArq, TbArq.Concilia, "S", TbArq.Operacao, TbArq.Valor);
  tot_mov_ = Marcado(TbMov, TbMov.Conciliar, "N", TbMov.Operacao, TbMov.Valor);
  EdtTotExt.SetAmount(tot_ext_);
  EdtTotMov.SetAmount(tot_mov_);
  // There is a difference only between sets that end on the same side.
  const bool mesma = TbMov.Cell(TbMov.RecordCount() - 1, TbMov.Operacao) ==
                     TbArq.Cell(TbArq.RecordCount() - 1, TbArq.Operacao);
  EdtDif.SetAmount(mesma ? tot_mov_ - tot_ext_ : Currency());
}

// A tick is posted and the next row is at hand.

void TFmConcilia::TbMovConciliarChange() {
  if (TbMov.Editing() && TbMov.Tag == kNormal) TbMov.Next();
}

void TFmConcilia::TbArqConciliaChange() {
  if (TbArq.Editing() && TbArq.Tag == kNormal) TbArq.Next();
}

}  // namespace orv
