// The gathering: the opening balance, the figures of the regime, their budget, and the titles of the
// structure.
#include <algorithm>

#include "results/rel_result_mes.h"
#include "rules/saldo.h"
#include "rules/soma.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// The types of classes that are left out.
constexpr const char* kSemTransferencia = " AND SUBGRUPO.TIPO <> 'Transferencia'";
constexpr const char* kSemLoja = " AND SUBGRUPO.TIPO <> 'Loja'";
constexpr const char* kSemCusto = " AND SUBGRUPO.TIPO <> 'Custo Producao'";

// How far a figure is from another one, in percent of that one.
Value Variacao(const std::optional<Currency>& valor, const std::optional<Currency>& base) {
  if (!base || base->IsZero()) return {};
  const Currency diferenca = valor.value_or(Currency()) - *base;
  return RoundFloat(diferenca.ToDouble() / base->Abs().ToDouble() * 100, 2);
}

}  // namespace

void TfmRelResultMes::CriaTabela() {
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbGrafico, kGrafico);
}

void TfmRelResultMes::Monta(Gathering& andamento) {
  CriaTabela();
  Consulta consulta{andamento, RegimeEscolhido(), {EdtDataDe.Date(), edtDataAte.Date()}, {}};
  andamento.Stage("Saldos das contas");
  const Currency saldo = BuscaSaldoContas();
  if (consulta.regime == Regime::Caixa) {
    BuscaDados(consulta);
  } else {
    BuscaDadosFinan(consulta);
    if (consulta.regime == Regime::Competencia) BuscaCPV(consulta);
  }
  if (CbOrca.Checked()) BuscaDadosOrca(consulta);
  GeraContaTitulo(consulta);
  Preenche(consulta, saldo);
  PreencheGrafico(consulta);
}

// --- The opening balance.

Currency TfmRelResultMes::BuscaSaldoContas() {
  const std::string sql = "SELECT " + Soma(CreditoOuDebito("CONTACOR")) +
                          " FROM {CADCONTA} CADCONTA INNER JOIN " +
                          SaldosAte(kContaCorrente, "DT_CONT", EdtDataDe.Date(), Today()) +
                          " ON (CONTACOR.CONTA = CADCONTA.CONTA) WHERE CADCONTA.IMP_FLUXO = 'S' AND "
                          "CONTACOR.PENDENTE = 'N'";
  return TotalDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", CbTodasEmp.Checked())).Round2();
}

// --- What the statements have in common.

std::string TfmRelResultMes::FiltroClasse() const {
  return EdtClasse.Empty() ? "" : " AND SUBGRUPO.CONTA LIKE " + Funcoes.Aspas(EdtClasse.Text() + "%");
}

std::string TfmRelResultMes::FiltroStatus(const char* tabela) const {
  return std::string(" AND ") + tabela + (CbDevol.Checked() ? ".STATUS IN ('N', 'DV')" : ".STATUS = 'N'");
}

// What is added up by few and short columns is sorted fast: the class comes to the sums, not to each row.
std::string TfmRelResultMes::PorClasse(const char* classe, const char* operacao, const char* dia,
                                       const std::string& valor, const std::string& de,
                                       const std::string& tipos) const {
  return std::string("SELECT F.GRUPO, SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, ") + operacao +
         " AS OPERACAO, F.VALOR, F.MES, SUBGRUPO.TP_CONTA FROM (SELECT " + classe +
         " AS GRUPO, EXTRACT(MONTH FROM " + dia + ") AS MES, " + Soma(valor) + " AS VALOR" + de +
         " GROUP BY 1, 2) F INNER JOIN {SUBGRUPO} SUBGRUPO ON (F.GRUPO = SUBGRUPO.CODIGO) WHERE 1 = 1" +
         tipos + FiltroClasse();
}

void TfmRelResultMes::Percorre(Consulta& consulta, const char* passo, const std::string& sql,
                               const char* tabela, const Destino& destino) {
  enum Coluna : uint8_t { fGrupo, fDescricao, fConta, fOperacao, fValor, fMes, fTipo };
  consulta.andamento.Stage(passo);
  ForEach(ForCompanies(sql, tabela, CbTodasEmp.Checked(), "ORDER BY 1 "), [&](std::span<Value> v) {
    // Quantities times prices come as numbers, sums of amounts as such.
    const Currency valor = v[fValor].IsText() ? SomaDe(v[fValor]) : Currency::FromDouble(v[fValor].AsFloat());
    Junta(consulta,
          {v[fConta].AsString(), v[fGrupo].AsString(), v[fDescricao].AsString(), v[fOperacao].AsString(),
           v[fTipo].AsString()},
          static_cast<int>(v[fMes].AsInteger()), valor, destino);
    consulta.andamento.Advance();
  });
}

void TfmRelResultMes::Junta(Consulta& consulta, const ClasseResultado& classe, int mes, Currency valor,
                            const Destino& destino) {
  if (EdtClasse.Empty() || classe.classe.find(EdtClasse.Text()) != std::string::npos) {
    consulta.resultado.Junta(classe, destino.quadro, mes, destino.devolucao ? -valor : valor);
    consulta.ultima = classe.classe;
  }
  if (!destino.recusa_titulo || !classe.Titulo()) return;
  Inform("Há lançamentos com classes do tipo Título.\n\rFavor corrigir os lançamentos.\n\r" +
         consulta.ultima + "...");
  Abort();
}

// --- The regimes.

void TfmRelResultMes::BuscaDados(Consulta& consulta) {
  const std::string dia = RgData.ItemIndex() == 1 ? "CONTACOR.DT_CONT" : "CONTACOR.DT_LAN";
  // Most movements are settled ones: they aren't looked for.
  const std::string sql =
      "SELECT F.GRUPO, SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, F.OPERACAO, F.VALOR, F.MES, SUBGRUPO.TP_CONTA "
      "FROM (SELECT CONTACOR.GRUPO, CONTACOR.OPERACAO, CONTACOR.CONTA, EXTRACT(MONTH FROM " +
      dia + ") AS MES, " + Soma("CONTACOR.VALOR") +
      " AS VALOR FROM {CONTACOR} CONTACOR WHERE CONTACOR.PENDENTE || '' = 'N'" +
      WhereBetween(dia, consulta.periodo.de, consulta.periodo.ate) + WhereIn("CONTACOR.CONTA", edtConta) +
      " GROUP BY 1, 2, 3, 4) F INNER JOIN {SUBGRUPO} SUBGRUPO ON (F.GRUPO = SUBGRUPO.CODIGO) LEFT JOIN "
      "{CADCONTA} CADCONTA ON (CADCONTA.CONTA = F.CONTA) WHERE CADCONTA.IMP_FLUXO = 'S'" +
      kSemTransferencia + kSemLoja + FiltroClasse();
  Percorre(consulta, "Lançamentos", sql, "CONTACOR", {});
}

void TfmRelResultMes::BuscaDadosFinan(Consulta& consulta) {
  static constexpr Colunas kColunas[] = {
      {},
      {"RECEBER.DT_VENCTO", "RECEBER.VALOR2", "PAGTO.DT_VEN", "PAGTO.VALOR"},
      {"RECEBER.DT_EMISSAO", "RECEBER.VALOR2", "PAGTO.DT_EMI", "PAGTO.VALOR"},
      {"RECEBER.DT_EMISSAO", "RECEBER.VALOR2", "PAGTO.DT_ATUAL", "PAGTO.VALOR"},
      {"RECEBERB.DT_CONT", "RECEBERB.VALOR_PAGO", "PAGTO1.DT_LAN", "PAGTO1.VAL_PAG"},
  };
  const Colunas& colunas = kColunas[static_cast<std::size_t>(consulta.regime)];
  const auto dos_dias = [&](const char* dia) {
    return WhereBetween(dia, consulta.periodo.de, consulta.periodo.ate);
  };
  std::string receber = " FROM {RECEBER} RECEBER", pagar = " FROM {PAGTO} PAGTO", contas;
  if (consulta.regime == Regime::Pagamento) {
    receber += " INNER JOIN {RECEBERB} RECEBERB ON (RECEBERB.NUMERO = RECEBER.NUMERO)";
    pagar += " INNER JOIN {PAGTO1} PAGTO1 ON (PAGTO1.NUM_AP = PAGTO.NUM_AP)";
    contas = WhereIn("CONTACOR.CONTA", edtConta);
    if (!contas.empty()) {
      receber += " LEFT JOIN {CONTACOR} CONTACOR ON (CONTACOR.LANCAMENTO = RECEBERB.LANCAMENTO)";
      pagar += " LEFT JOIN {CONTACOR} CONTACOR ON (CONTACOR.LANCAMENTO = PAGTO1.LANCAMENTO)";
    }
  }
  receber +=
      " WHERE RECEBER.SITUACAO <> 'P'" + dos_dias(colunas.dia_receber) + FiltroStatus("RECEBER") + contas;
  pagar += " WHERE 1 = 1" + dos_dias(colunas.dia_pagar) + FiltroStatus("PAGTO") + contas;
  std::string tipos = kSemTransferencia;
  if (!CbLoja.Checked()) tipos += kSemLoja;
  if (consulta.regime == Regime::Competencia) tipos += kSemCusto;
  Percorre(consulta, "Títulos",
           PorClasse("RECEBER.CLASSE", "SUBGRUPO.OPERACAO", colunas.dia_receber, colunas.valor_receber,
                     receber, tipos) +
               "\nUNION ALL\n" +
               PorClasse("PAGTO.NUM_OS", "SUBGRUPO.OPERACAO", colunas.dia_pagar, colunas.valor_pagar, pagar,
                         tipos),
           "RECEBER", {});
}

void TfmRelResultMes::BuscaDadosOrca(Consulta& consulta) {
  const bool emissao = consulta.regime == Regime::Emissao,
             competencia = consulta.regime == Regime::Competencia;
  const char* const dia_receber = emissao || competencia ? "RECEBER.DT_EMISSAO" : "RECEBER.DT_VENCTO";
  const char* const dia_pagar = emissao ? "PAGTO.DT_EMI" : competencia ? "PAGTO.DT_ATUAL" : "PAGTO.DT_VEN";
  const auto orcados = [&](const std::string& tabela, const char* dia) {
    return " FROM {" + tabela + "} " + tabela + " WHERE " + tabela + ".STATUS = 'O'" +
           WhereBetween(dia, consulta.periodo.de, consulta.periodo.ate);
  };
  const std::string tipos = std::string(kSemTransferencia) + kSemLoja;
  Percorre(consulta, "Orçamento",
           PorClasse("RECEBER.CLASSE", "'+'", dia_receber, "RECEBER.VALOR2", orcados("RECEBER", dia_receber),
                     tipos) +
               "\nUNION ALL\n" +
               PorClasse("PAGTO.NUM_OS", "'-'", dia_pagar, "PAGTO.VALOR", orcados("PAGTO", dia_pagar), tipos),
           "RECEBER", {Quadro::Orcado});
}

// --- The structure.

// The titles are the current company's, whoever's figures stand beneath them.
void TfmRelResultMes::GeraContaTitulo(Consulta& consulta) {
  ForEach("SELECT CONTA, CODIGO, DESCRICAO, OPERACAO, TP_CONTA FROM " + Funcoes.DBLocal("SUBGRUPO", true) +
              " SUBGRUPO WHERE TP_CONTA = 'T'" + FiltroClasse(),
          [&](std::span<Value> v) {
            consulta.resultado.InsereTitulo(
                {v[0].AsString(), v[1].AsString(), v[2].AsString(), v[3].AsString(), v[4].AsString()});
          });
  consulta.resultado.SomaTitulos();
}

// --- The sets.

void TfmRelResultMes::Preenche(const Consulta& consulta, Currency saldo) {
  static constexpr Linha::Name kMes[] = {"Mes1", "Mes2", "Mes3", "Mes4",  "Mes5",  "Mes6",
                                         "Mes7", "Mes8", "Mes9", "Mes10", "Mes11", "Mes12"};
  static constexpr Linha::Name kOrc[] = {"Orc1", "Orc2", "Orc3", "Orc4",  "Orc5",  "Orc6",
                                         "Orc7", "Orc8", "Orc9", "Orc10", "Orc11", "Orc12"};
  static constexpr Linha::Name kVar[] = {"Var1", "Var2", "Var3", "Var4",  "Var5",  "Var6",
                                         "Var7", "Var8", "Var9", "Var10", "Var11", "Var12"};
  static constexpr Linha::Name kVarOrc[] = {"VarOrc1", "VarOrc2",  "VarOrc3",  "VarOrc4",
                                            "VarOrc5", "VarOrc6",  "VarOrc7",  "VarOrc8",
                                            "VarOrc9", "VarOrc10", "VarOrc11", "VarOrc12"};
  const auto numero = [](const std::optional<Currency>& valor) {
    return valor ? Value(valor->ToDouble()) : Value();
  };
  const auto dinheiro = [](const std::optional<Currency>& valor) { return valor ? Value(*valor) : Value(); };
  const std::string de = EdtDataDe.Text(), ate = edtDataAte.Text();
  const int quantos = QtdeMeses(consulta.periodo);
  const bool seguidos = !RepeteMes(consulta.periodo);
  const std::vector<int> meses = MesesEmOrdem(consulta.periodo);
  bool cabem = saldo.FitsField();
  for (const LinhaResultado& classe : consulta.resultado.Linhas()) {
    Linha linha;
    linha["Classe"] = classe.classe;
    linha["Codigo"] = classe.codigo;
    linha["Descricao"] = classe.descricao;
    linha["Operacao"] = classe.operacao;
    linha["TpConta"] = classe.tp_conta;
    linha["Data_ini"] = de;
    linha["Data_fim"] = ate;
    linha["Nivel"] = int64_t(CharCount(classe.classe));
    linha["Saldo"] = saldo.ToDouble();
    linha["Meses"] = int64_t{quantos};
    const auto &feito = classe.Do(Quadro::Realizado), &orcado = classe.Do(Quadro::Orcado);
    for (std::size_t i = 0; i < kMeses; ++i) {
      linha[kMes[i]] = numero(feito[i]);
      linha[kOrc[i]] = numero(orcado[i]);
      linha[kVarOrc[i]] = Variacao(feito[i], orcado[i]);
    }
    // Where years are added up no month comes before another.
    for (std::size_t i = 1; seguidos && i < meses.size(); ++i) {
      const auto mes = static_cast<std::size_t>(meses[i] - 1),
                 antes = static_cast<std::size_t>(meses[i - 1] - 1);
      linha[kVar[mes]] = Variacao(feito[mes], feito[antes]);
    }
    const auto total = classe.Total(Quadro::Realizado), total_orcado = classe.Total(Quadro::Orcado);
    linha["Valor"] = dinheiro(total);
    linha["ValorOrc"] = dinheiro(total_orcado);
    linha["VarOrcTotal"] = Variacao(total, total_orcado);
    cabem = cabem && total.value_or(Currency()).FitsField();
    TbRelatorio.AppendRow(linha.Values());
  }
  TbRelatorio.SetIndexFieldNames("Classe;Codigo");
  if (!cabem)
    ApontaForaDeMedida(User(), Tabela.IBDatabase(),
                       ForCompanies(ForaDeMedida(kContaCorrente), "CONTACOR", CbTodasEmp.Checked()));
}

void TfmRelResultMes::PreencheGrafico(const Consulta& consulta) {
  for (const int mes : MesesEmOrdem(consulta.periodo)) {
    Currency recebimentos, pagamentos;
    for (const LinhaResultado& linha : consulta.resultado.Linhas()) {
      if (linha.tp_conta != "A") continue;
      const Currency valor =
          linha.Do(Quadro::Realizado)[static_cast<std::size_t>(mes - 1)].value_or(Currency());
      if (linha.operacao == "+") recebimentos += valor;
      if (linha.operacao == "-") pagamentos += valor;
    }
    const std::string& nome = Funcoes.NomeMes()[static_cast<std::size_t>(mes)];
    Value linha[] = {std::string(CutChars(nome, 3)), recebimentos, pagamentos, recebimentos - pagamentos};
    TbGrafico.AppendRow(linha);
  }
}

}  // namespace orv
