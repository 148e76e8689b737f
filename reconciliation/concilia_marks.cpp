// The page "Conciliação de Extrato": balances, the movements and lines of a period, and what is ticked.
#include <unordered_map>

#include "reconciliation/concilia.h"
#include "rules/saldo.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

enum Busca { kConciliados = 0, kAConciliar = 1 };
enum Tipo { kPagamentos = 0, kRecebimentos = 1 };

// The mode of a set while it is loaded.
constexpr int kCarga = 2;

// Takes rows of a statement into a set: each column of the result into a field.
class Linhas : public RowSink {
 public:
  Linhas(TClientDataSet& set, std::vector<const Field*> campos) : campos_(std::move(campos)), linha_(set) {}
  void Columns(const std::vector<Column>& columns) override { ORV_ASSERT(columns.size() == campos_.size()); }
  bool Row(std::span<Value> values) override {
    linha_.Take(campos_, values);
    Completa(linha_);
    linha_.Append();
    return true;
  }

 private:
  // What a row has that isn't in the statement.
  virtual void Completa(RowWriter&) {}

  std::vector<const Field*> campos_;
  RowWriter linha_;
};

class Movimentos : public Linhas {
 public:
  // The classes' descriptions are few: looked up in memory they cost next to nothing beside a join.
  Movimentos(TFmConcilia::MovSet& set, const std::vector<std::vector<Value>>& classes)
      : Linhas(set,
               {&set.Conciliar, &set.Operacao, &set.Lancto, &set.Docto, &set.DataLancto, &set.Data,
                &set.DataVencto, &set.Classe, &set.Valor, &set.Historico, &set.Observacao, &set.LancCon}),
        set_(set) {
    for (const auto& classe : classes)
      classes_.emplace(std::string(TrimCode(classe[0].Text())), set.DescClasse.Convert(classe[1]));
  }

 private:
  void Completa(RowWriter& linha) override {
    Value& operacao = linha[set_.Operacao];
    operacao = operacao.Text() == "+" ? "C" : "D";
    const auto classe = classes_.find(std::string(TrimCode(linha[set_.Classe].Text())));
    linha[set_.DescClasse] = classe == classes_.end() ? Value() : classe->second;
  }

  TFmConcilia::MovSet& set_;
  std::unordered_map<std::string, Value> classes_;
};

}  // namespace

void TFmConcilia::EdtContaChange() {
  // What tells the account only where it has movements.
  const auto saldos = [&](const Livro& livro, const char* conciliado, const char* mais, const std::string& de,
                          MoneyEdit& saldo, MoneyEdit& saldo_conciliado) {
    const std::string tabela = livro.tabela;
    const std::string sql = "SELECT " + Soma(Creditos(livro, tabela)) + ", " + Soma(Debitos(livro, tabela)) +
                            ", " + Soma(ComSinal(livro, tabela, conciliado)) + ", SUM(QUANTIDADE)" + mais +
                            " FROM " + SaldosAte(livro, "DT_CONT", DtFinal.Date(), Today()) + de + " WHERE " +
                            Igual(tabela + ".CONTA", EdtConta.Text());
    auto linha = LinhasDeSaldo(Tabela.IBDatabase(), Funcoes.DBLocal_SQL(sql, "")).front();
    const Currency creditos = SomaDe(linha[0]), debitos = SomaDe(linha[1]);
    saldo.SetAmount(creditos - debitos);
    saldo_conciliado.SetAmount(SomaDe(linha[2]));
    if (!creditos.FitsField() || !debitos.FitsField())
      ApontaForaDeMedida(User(), Tabela.IBDatabase(), Funcoes.DBLocal_SQL(ForaDeMedida(livro), ""));
    return linha;
  };
  const auto conta = saldos(kContaCorrente, "PENDENTE = 'N'", ", MIN(C.DESCRICAO), MIN(C.BANCO)",
                            " JOIN {CADCONTA} C ON C.CONTA = CONTACOR.CONTA", EdtSaldoMov, EdtSaldoMovCon);
  const bool tem = conta[3].AsInteger() != 0;
  EdtDescConta.SetText(tem ? conta[4].AsString() : "");
  EdtCodBan.SetText(tem ? conta[5].AsString() : "");
  saldos(kExtrato, "CONCILIADO = 'S'", "", "", EdtSaldoExt, EdtSaldoExtCon);
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
  if (EdtConta.Empty()) {
    Recusa("Selecione uma Conta.", EdtConta);
    return;
  }
  {
    const ScopedValue modo_mov(TbMov.Tag, kCarga), modo_arq(TbArq.Tag, kCarga);
    const ControlsHold hold({&TbMov, &TbArq});
    TOrvDatabase& db = Tabela.IBDatabase();
    EsqueceSugestoes();
    LbVolta.Mostra("");
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
  tot_ext_ = marcas_arq_.Balance(TbArq.Valor, TbArq.Operacao, "D");
  tot_mov_ = marcas_mov_.Balance(TbMov.Valor, TbMov.Operacao, "D");
  EdtTotExt.SetAmount(tot_ext_);
  EdtTotMov.SetAmount(tot_mov_);
  // There is a difference only between sets that end on the same side.
  const bool mesma = TbMov.Cell(TbMov.RecordCount() - 1, TbMov.Operacao) ==
                     TbArq.Cell(TbArq.RecordCount() - 1, TbArq.Operacao);
  EdtDif.SetAmount(mesma ? tot_mov_ - tot_ext_ : Currency());
  MostraDiferenca();
}

// In words, since the figure compares only sets that end on the same side.
void TFmConcilia::MostraDiferenca() {
  const bool pode = tot_mov_ == tot_ext_;
  const bool alguma = !pode || marcas_mov_.Any() || marcas_arq_.Any();
  const bool aberto = RgBusca.ItemIndex() == kAConciliar && alguma;
  LbDif.SetCaption(!aberto ? "" : pode ? "Pode conciliar" : "Faltam " + (tot_mov_ - tot_ext_).Abs().Brazil());
  LbDif.SetColor(pode ? "good" : "warning");
}

}  // namespace orv
