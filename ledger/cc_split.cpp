// The accounting split of a movement: its entries and, for each, the cost centres that bear it.
#include "ledger/cc.h"
#include "rules/conta_contabil.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr Currency kTolerancia = Currency::FromRaw(500);  // 0.05

// The mode of the entries in which the program fills them and the logic for rows added by hand keeps out.
constexpr int kProgramFill = 1;

// True when a row stands there, one in insertion included.
bool HasRow(const DataSet& set) { return set.Editing() || !set.IsEmpty(); }

// Keeps what was typed and goes on with the row.
void PostAndEdit(DataSet& set) {
  if (set.Editing()) set.Post();
  set.Edit();
}

}  // namespace

// --- Proposal.

void TfmCC::PartidaContabil() {
  if (EstaGravado()) return;
  const ScopedValue fill(TbContabil.Tag, kProgramFill);
  EsvaziaRateio();

  const auto regras = Contabil.RegrasRateio(EdtTipo.Text(), "C", "VF");
  const std::string banco = ContaDoBanco();
  if (regras.empty()) IncluiPartida(banco, "", EdtValor.Amount());

  const RegraRateio* anterior = nullptr;
  for (const RegraRateio& regra : regras) {
    if (anterior == nullptr || regra.conta != anterior->conta) {
      IncluiPartida(banco, regra.conta, EdtValor.Amount() * (regra.perc_conta / 100));
    }
    anterior = &regra;

    TbCCusto.Append();
    TbCCusto.Codigo = regra.centro;
    TbCCusto.CentroCusto = DescricaoDe("CENTROCUSTO", regra.centro);
    TbCCusto.Perc = regra.perc_centro;
    TbCCusto.Valor = TbContabil.Valor.AsCurrency() * (regra.perc_centro / 100);
    TbCCusto.Post();
  }
  TbContabil.First();
}

std::string TfmCC::ContaDoBanco() {
  // The class's own row takes over from that of any class.
  return ContaContabil(Funcoes, Tabela,
                       {{.conta = EdtConta.Text(), .classe = EdtTipo.Text(), .carteira = "0"},
                        {.conta = EdtConta.Text(), .classe = "0", .carteira = "0"}});
}

void TfmCC::IncluiPartida(const std::string& banco, const std::string& conta, Currency valor) {
  const bool credito = CbOper.Text() == "+";
  const std::string& credita = credito ? conta : banco;
  const std::string& debita = credito ? banco : conta;
  TbContabil.Append();
  TbContabil.Credita = credita;
  TbContabil.DescC = DescricaoDe("CONTA_CONT", credita);
  TbContabil.Debita = debita;
  TbContabil.DescD = DescricaoDe("CONTA_CONT", debita);
  TbContabil.Valor = valor.ToDouble();
  TbContabil.Post();
}

std::string TfmCC::DescricaoDe(std::string_view tabela, const std::string& codigo) {
  return Funcoes.Busca_Valor(tabela, {{"CODIGO", codigo}}, "DESCRICAO");
}

// --- Loading.

void TfmCC::BuscaContabil(bool como_gravado) {
  const ScopedValue fill(TbContabil.Tag, kProgramFill);
  EsvaziaRateio();
  mexida_ = false;
  if (EdtLancto.Empty()) return;

  const auto plano = Funcoes.DBLocal("CONTA_CONT", true);
  const auto partidas = Tabela.IBDatabase().Rows(
      "SELECT C.CONTA_C, CONTA_C.DESCRICAO, C.CONTA_D, CONTA_D.DESCRICAO, C.VALOR FROM " +
      Funcoes.DBLocal("CONTABIL", true) + " C LEFT OUTER JOIN " + plano +
      " CONTA_C ON C.CONTA_C = CONTA_C.CODIGO LEFT OUTER JOIN " + plano +
      " CONTA_D ON C.CONTA_D = CONTA_D.CODIGO WHERE " + Igual("C.LANCAMENTO", EdtLancto.Text()));
  for (const auto& partida : partidas) {
    TbContabil.Append();
    TbContabil.Credita = partida[0].AsString();
    TbContabil.DescC = partida[1].AsString();
    TbContabil.Debita = partida[2].AsString();
    TbContabil.DescD = partida[3].AsString();
    TbContabil.Valor = partida[4].AsCurrency().ToDouble();
    TbContabil.Post();
  }

  const auto centros = Tabela.IBDatabase().Rows(
      "SELECT R.CONTA, R.CENTROCUSTO, C.DESCRICAO, R.PERC_RAT, R.VALOR_RAT, R.ORDEM FROM " +
      Funcoes.DBLocal("CENTRO_RATEIO", true) + " R LEFT OUTER JOIN " + Funcoes.DBLocal("CENTROCUSTO", true) +
      " C ON R.CENTROCUSTO = C.CODIGO WHERE " + Igual("R.LANCAMENTO", EdtLancto.Text()));
  for (const auto& centro : centros) {
    TbCCusto.Append();
    if (como_gravado) TbCCusto.Ordem = centro[5].AsString();
    TbCCusto.Conta = centro[0];
    TbCCusto.Codigo = centro[1].AsString();
    TbCCusto.CentroCusto = centro[2].AsString();
    TbCCusto.Perc = centro[3].AsFloat();
    TbCCusto.Valor = centro[4].AsCurrency();
    TbCCusto.Post();
  }
  FiltraCCusto();
}

void TfmCC::BuscaFinanceiro() {
  QryFinan.Close();
  if (EdtLancto.Empty()) return;
  std::string sql;
  if (EdtTipoLan.Text() == "R") {
    sql =
        "SELECT REC.NUMERO, REC.CODCLI AS CODIGO, ENT.NOME, RECB.VALOR_PAGO AS VALOR, REC.DT_EMISSAO AS "
        "EMISSAO, "
        "REC.DT_VENCTO AS VENCTO, RECB.DESCONTO, REC.JUROS, '{}' AS EMPRESA FROM {RECEBERB} RECB "
        "LEFT JOIN {RECEBER} REC ON (RECB.NUMERO = REC.NUMERO) "
        "LEFT JOIN {ENTIDADE} ENT ON (REC.CODCLI = ENT.CODCLI) WHERE " +
        Igual("RECB.LANCAMENTO", EdtLancto.Text());
  } else if (EdtTipoLan.Text() == "P") {
    sql =
        "SELECT PAG.NUM_AP AS NUMERO, PAG.CODCRE AS CODIGO, ENT.NOME, PAGB.VAL_PAG AS VALOR, "
        "PAG.DT_EMI AS EMISSAO, PAG.DT_VEN AS VENCTO, PAGB.DESCONTO, PAGB.JURO AS JUROS, '{}' AS EMPRESA "
        "FROM {PAGTO1} PAGB LEFT JOIN {PAGTO} PAG ON (PAGB.NUM_AP = PAG.NUM_AP) "
        "LEFT JOIN {ENTIDADE} ENT ON (PAG.CODCRE = ENT.CODCLI) WHERE " +
        Igual("PAGB.LANCAMENTO", EdtLancto.Text());
  } else {
    return;
  }
  QryFinan.SQL.Clear();
  QryFinan.SQL.Add(CbEmpFinan.Checked() ? Funcoes.UnionTodasEmpresas(sql, "", true)
                                        : Funcoes.DBLocal_SQL(sql, ""));
  QryFinan.Open();
}

// --- Rows of the two sets.

void TfmCC::FiltraCCusto() {
  TbCCusto.PostIfEditing();
  TbCCusto.SetFilter("ORDEM = " + Quote(std::to_string(TbContabil.RecNo())) +
                     " AND (CONTA = " + Quote(TbContabil.ContaRat.AsString()) + " OR CONTA IS NULL)");
  TbCCusto.SetFiltered(true);
}

void TfmCC::EsvaziaRateio() {
  TbContabil.EmptyDataSet();
  TbCCusto.SetFiltered(false);
  TbCCusto.EmptyDataSet();
  FiltraCCusto();
}

void TfmCC::TbContabilBeforePost() {
  const auto resultado = [this](const Field& conta) {
    return Funcoes.Existe("CONTA_CONT", {{"CODIGO", conta.AsString()}, {"CT_RESULT", "S"}});
  };
  TbContabil.ContaRat.Clear();
  if (resultado(TbContabil.Debita)) TbContabil.ContaRat = TbContabil.Debita.Get();
  if (resultado(TbContabil.Credita)) TbContabil.ContaRat = TbContabil.Credita.Get();
}

void TfmCC::TbContabilAfterInsert() {
  if (TbContabil.Tag != 0) return;
  TbContabil.Valor = 0.0;
  TbContabil.Post();
  Currency soma;
  for (int64_t row = 0; row < TbContabil.DisplayCount(); ++row) {
    soma += TbContabil.Cell(row, TbContabil.Valor).AsCurrency();
  }
  TbContabil.Last();
  TbContabil.Edit();
  TbContabil.Valor = (EdtValor.Amount() - soma).ToDouble();
}

void TfmCC::TbContabilBeforeDelete() {
  // The cost centres of an entry go with it, and those of the entries after it follow their new place.
  const int64_t ordem = TbContabil.RecNo();
  FiltraCCusto();
  while (!TbCCusto.IsEmpty()) TbCCusto.Delete();
  TbCCusto.SetFiltered(false);
  for (TbCCusto.First(); !TbCCusto.Eof(); TbCCusto.Next()) {
    if (TbCCusto.Ordem.AsInteger() <= ordem) continue;
    TbCCusto.Edit();
    TbCCusto.Ordem = std::to_string(TbCCusto.Ordem.AsInteger() - 1);
    TbCCusto.Post();
  }
}

void TfmCC::TbCCustoNewRecord() {
  TbCCusto.Ordem = std::to_string(TbContabil.RecNo());
  if (TbContabil.ContaRat.AsString().empty()) {
    TbCCusto.Conta.Clear();
  } else {
    TbCCusto.Conta = TbContabil.ContaRat.Get();
  }
}

// --- Keys of the grids.

void TfmCC::DbgContabilidadeKey(KeyPress& key) {
  const std::string& coluna = DbgContabilidade.SelectedField();
  const bool credita = SameText(coluna, "Credita");
  if (DbgContabilidade.ReadOnly() || (!credita && !SameText(coluna, "Debita"))) return;
  if (key.key == "F4") {
    key.handled = true;
    (credita ? PqContaC : PqContaD).AbrePesquisa();
  } else if (key.key == "Tab" && HasRow(TbContabil)) {
    PostAndEdit(TbContabil);
    const Field& conta = credita ? TbContabil.Credita : TbContabil.Debita;
    (credita ? TbContabil.DescC : TbContabil.DescD) = DescricaoDe("CONTA_CONT", conta.AsString());
  }
}

void TfmCC::DbgRateioCCKey(KeyPress& key) {
  const std::string& coluna = DbgRateioCC.SelectedField();
  if (DbgRateioCC.ReadOnly()) return;
  if (key.key == "F4" && SameText(coluna, "Codigo")) {
    key.handled = true;
    PqCCusto.AbrePesquisa();
  }
  if (key.key != "Tab" || !HasRow(TbCCusto)) return;

  const Currency valor = TbContabil.Valor.AsCurrency();
  if (SameText(coluna, "Codigo")) {
    PostAndEdit(TbCCusto);
    TbCCusto.CentroCusto = DescricaoDe("CENTROCUSTO", TbCCusto.Codigo.AsString());
  } else if (SameText(coluna, "Perc")) {
    PostAndEdit(TbCCusto);
    TbCCusto.Valor = valor * (TbCCusto.Perc.AsFloat() / 100);
  } else if (SameText(coluna, "Valor") && !valor.IsZero()) {
    PostAndEdit(TbCCusto);
    TbCCusto.Perc = RoundFloat(TbCCusto.Valor.AsFloat() * 100 / valor.ToDouble(), 2);
  }
}

// --- Checks.

bool TfmCC::ValidaCentroCusto() {
  for (TbCCusto.First(); !TbCCusto.Eof(); TbCCusto.Next()) {
    if (Funcoes.Existe("CENTROCUSTO", {{"CODIGO", TbCCusto.Codigo.AsString()}})) continue;
    Inform("Centro de Custo Inválido.");
    return false;
  }
  return true;
}

bool TfmCC::ValidaContabilidade() {
  const auto existe = [this](const Field& conta) {
    return Funcoes.Existe("CONTA_CONT", {{"CODIGO", conta.AsString()}});
  };
  Currency total;
  // The cost centres follow the entry in focus.
  for (TbContabil.First(); !TbContabil.Eof(); TbContabil.Next()) {
    if (!existe(TbContabil.Credita) || !existe(TbContabil.Debita)) {
      Inform("Conta Contábil Inválida.");
      return false;
    }
    if (fin50_ && !TbContabil.ContaRat.AsString().empty() && !ValidaRateio()) return false;
    total += TbContabil.Valor.AsCurrency().Round2();
  }
  if (total == EdtValor.Amount()) return true;
  Inform("Diferença nos Lançamentos " + (total - EdtValor.Amount()).Format2() + ".");
  PartidaContabil();
  return false;
}

bool TfmCC::ValidaRateio() {
  Currency perc, soma;
  for (TbCCusto.First(); !TbCCusto.Eof(); TbCCusto.Next()) {
    perc += TbCCusto.Perc.AsCurrency();
    soma += TbCCusto.Valor.AsCurrency().Round2();
  }
  // A debit must be borne by cost centres; of a credit only what was begun is checked.
  const bool obrigatorio = CbOper.Text() == "-";
  const Currency falta = Currency(100) - perc;
  if ((obrigatorio || perc > Currency()) && falta.Abs() > Currency::FromCents(1)) {
    Inform("Diferença no percentual de Rateio de Centro de Custo de " + falta.Format2() + "%");
    return false;
  }
  const Currency diferenca = TbContabil.Valor.AsCurrency() - soma;
  if ((obrigatorio || soma > Currency()) && diferenca.Abs() > kTolerancia) {
    Inform("Percentual Por Centro de Custo Incorreto.");
    return false;
  }
  ArredondaRateio();
  return true;
}

void TfmCC::ArredondaRateio() {
  const Currency valor = TbContabil.Valor.AsCurrency();
  Currency soma, outros;
  for (int64_t row = 0; row < TbCCusto.DisplayCount(); ++row) {
    const Currency parte = TbCCusto.Cell(row, TbCCusto.Valor).AsCurrency();
    soma += parte;
    if (row + 1 < TbCCusto.DisplayCount()) outros += parte.Round2();
  }
  if (soma == valor) return;
  const ScopedValue fill(TbContabil.Tag, kProgramFill);

  // All in whole cents, and the last row takes what the others leave. A credit without cost centres gets a
  // row of nobody's, which isn't stored.
  for (TbCCusto.First(); !TbCCusto.Eof(); TbCCusto.Next()) {
    TbCCusto.Edit();
    TbCCusto.Valor = TbCCusto.Valor.AsCurrency().Round2();
    TbCCusto.Post();
  }
  TbCCusto.Last();
  TbCCusto.Edit();
  TbCCusto.Valor = valor - outros;
  TbCCusto.Post();
}

// --- Storing.

void TfmCC::GravaContabilidade() {
  const std::string numero = EdtLancto.Text();
  const std::string docto(CutChars(EdtNumDoc.Text(), 12));
  Tabela.IBDatabase().Execute("DELETE FROM " + Funcoes.DBLocal("CENTRO_RATEIO", true) + " WHERE " +
                              Igual("LANCAMENTO", numero));
  for (TbContabil.First(); !TbContabil.Eof(); TbContabil.Next()) {
    Contabil.LancaContabilidade({.lancamento = numero,
                                 .docto = docto,
                                 .docto2 = docto,
                                 .conta_c = TbContabil.Credita.AsString(),
                                 .conta_d = TbContabil.Debita.AsString(),
                                 .operacao = CbOper.Text(),
                                 .origem = "CC",
                                 .classe = EdtTipo.Text(),
                                 .historico = EdtHis.Text(),
                                 .valor = TbContabil.Valor.AsCurrency(),
                                 .data = EdtDtCont.Date(),
                                 .observacao = EdtObs.Text()});
    GravaCentroCusto();
  }
  Tabela.CommitRetaining();
}

void TfmCC::AcompanhaContabilidade() {
  std::vector<std::string> colunas;
  const auto acompanha = [&](bool mudou, const char* coluna, const std::string& valor) {
    if (mudou) colunas.push_back(coluna + (" = " + valor));
  };
  acompanha(EdtDtCont.Date() != gravada_->dt_cont, "DATA", Funcoes.AspasData(EdtDtCont.Date()));
  acompanha(EdtTipo.Text() != gravada_->classe, "CLASSE", Funcoes.Aspas(EdtTipo.Text()));
  acompanha(EdtHis.Text() != gravada_->historico, "HISTORICO", Funcoes.Aspas(EdtHis.Text()));
  acompanha(EdtObs.Text() != gravada_->observacao, "OBSERVACAO", Funcoes.Aspas(EdtObs.Text()));
  if (colunas.empty()) return;
  Tabela.IBDatabase().Execute("UPDATE " + Funcoes.DBLocal("CONTABIL", true) + " SET " + Join(colunas, ", ") +
                              " WHERE " + Igual("LANCAMENTO", EdtLancto.Text()));
}

void TfmCC::GravaCentroCusto() {
  const std::string docto(CutChars(EdtNumDoc.Text(), 12));
  for (TbCCusto.First(); !TbCCusto.Eof(); TbCCusto.Next()) {
    if (TbCCusto.Codigo.AsString().empty()) continue;
    Tabela.IBDatabase().Execute(
        "INSERT INTO " + Funcoes.DBLocal("CENTRO_RATEIO", true) +
        " (LANCAMENTO, ORDEM, CONTA, NUMERO, CENTROCUSTO, TIPO, PERC_RAT, VALOR_RAT) VALUES (" +
        Funcoes.Aspas(EdtLancto.Text()) + ", " + TbCCusto.Ordem.AsString() + ", " +
        Funcoes.Aspas(TbCCusto.Conta.AsString()) + ", " + Funcoes.Aspas(docto) + ", " +
        Funcoes.Aspas(TbCCusto.Codigo.AsString()) + ", 'CC', " +
        Funcoes.PermanecePonto(TbCCusto.Perc.AsFloat()) + ", " +
        Funcoes.PermanecePonto(TbCCusto.Valor.AsCurrency()) + ")");
  }
}

}  // namespace orv
