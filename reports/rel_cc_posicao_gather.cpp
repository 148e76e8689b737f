// The gathering, one side like the other: the position at the start, what was issued and what was settled;
// then the position day by day. And from a figure to where it comes from.
#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "reports/rel_cc_posicao.h"
#include "rules/origem.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/text.h"

namespace orv {

// Columns of the titles (T) and of their settlements (B).
struct TFmRelCCPosicao::Lado {
  const char *nome, *titulos, *chave, *entidade, *classe, *emissao, *vencimento, *documentos, *valor;
  std::string aberto;
  const char *baixas, *dia, *pago, *juros, *desconto;
  // What a settlement takes off the position.
  const char* baixado;
  // The situation asked for narrows settlements, too.
  bool situacao_nas_baixas;
  std::string (*titulo)(const std::string& condicao);
  std::string (*baixa)(const std::string& condicao);
};

const TFmRelCCPosicao::Lado TFmRelCCPosicao::kLadoReceber = {
    .nome = "a receber",
    .titulos = "RECEBER",
    .chave = "NUMERO",
    .entidade = "CODCLI",
    .classe = "CLASSE",
    .emissao = "T.DT_EMISSAO",
    .vencimento = "T.DT_VENCTO",
    .documentos = "T.FATURA AS DOCTO",
    .valor = "T.VALOR2",
    .aberto = EmAbertoReceber("T"),
    .baixas = "RECEBERB",
    .dia = "B.DT_CONT",
    .pago = "B.VALOR_PAGO",
    .juros = "B.JUROS",
    .desconto = "(B.DESCONTO + B.DESCONTO2 + B.DESCONTO3)",
    .baixado = "(B.VALOR_PAGO + B.VAL_DEV + B.DESCONTO + B.DESCONTO2 + B.DESCONTO3 - B.JUROS)",
    .situacao_nas_baixas = true,
    .titulo = origem::Receber,
    .baixa = origem::BaixasReceber};

// Interest isn't part of a payable's amount, and what was paid of it counts with what was given back and
// discounted.
const TFmRelCCPosicao::Lado TFmRelCCPosicao::kLadoPagar = {
    .nome = "a pagar",
    .titulos = "PAGTO",
    .chave = "NUM_AP",
    .entidade = "CODCRE",
    .classe = "NUM_OS",
    .emissao = "T.DT_DIGITA",
    .vencimento = "T.DT_VEN",
    .documentos = "T.DOCTO, T.DUPLI",
    .valor = "T.VALOR",
    .aberto = "(T.VALOR - T.DESCONTO - T.VAL_PAG - T.VAL_DEV)",
    .baixas = "PAGTO1",
    .dia = "B.DT_LAN",
    .pago = "(B.VAL_PAG + B.VAL_DEV - B.JURO + B.DESCONTO)",
    .juros = "B.JURO",
    .desconto = "B.DESCONTO",
    .baixado = "(B.VAL_PAG + B.VAL_DEV - B.JURO + B.DESCONTO)",
    .situacao_nas_baixas = false,
    .titulo = origem::Pagar,
    .baixa = origem::BaixasPagar};

namespace {

// A longer period is shown by months.
constexpr int kMaisDias = 62;

constexpr ReportField kMesesDoSaldo[] = {{"Ano", FieldType::Integer},
                                         {"Mês de emissão", FieldType::Integer},
                                         {"Linhas", FieldType::Integer},
                                         {"Em aberto hoje", FieldType::Currency},
                                         {"Baixado desde o início", FieldType::Currency}};
constexpr ReportField kDoDia[] = {{"Lado", FieldType::String, 10},   {"Dia", FieldType::Date},
                                  {"Número", FieldType::String, 12}, {"Nome", FieldType::String, 50},
                                  {"Vencimento", FieldType::Date},   {"Emitido", FieldType::Currency},
                                  {"Baixado", FieldType::Currency},  {"Juros", FieldType::Currency},
                                  {"Desconto", FieldType::Currency}, {"Devolvido", FieldType::Currency}};

std::string Chave(const Value& numero, const Value& dia) {
  return numero.AsString() + "|" + std::to_string(dia.AsDate().Days());
}

Value SemZero(Currency valor) { return valor == Currency() ? Value() : Value(valor); }

// "05/11/26", or "11/2026" for the month.
std::string Rotulo(Date dia, bool mes) {
  const std::string inteiro = dia.Brazil();
  return mes ? inteiro.substr(3) : inteiro.substr(0, 6) + inteiro.substr(8);
}

}  // namespace

void TFmRelCCPosicao::Monta(Gathering& gathering) {
  for (TClientDataSet* conjunto : {&TbReceber, &TbPagar, &TbPosicao}) {
    conjunto->EmptyDataSet();
    conjunto->SetIndexFieldNames("");
  }
  consulta_ = LeFiltros();
  receber_ = pagar_ = {};
  if (CbReceber.Checked()) BuscaReceber(gathering);
  if (CbPagar.Checked()) BuscaPagar(gathering);
  MontaPosicao();
}

TFmRelCCPosicao::Consulta TFmRelCCPosicao::LeFiltros() const {
  const bool considera = CbSituacao.ItemIndex() != 1;
  Consulta consulta;
  consulta.periodo = {EdtDataIni.Date(), EdtDataFim.Date()};
  consulta.todas = CbEmpresa.Checked();
  consulta.cliente = EdtCodCli.Text();
  consulta.classe = EdtCodClasse.Text();
  consulta.situacao = WhereIn("T.SITUACAO", EdtSituacao, considera);

  consulta.texto = "Período de " + EdtDataIni.Text() + " até " + EdtDataFim.Text();
  if (!EdtCodCli.Empty()) consulta.texto += ", " + EdtCodCli.Text() + " " + EdtNomeCli.Text();
  if (!EdtCodClasse.Empty()) consulta.texto += ", classe " + EdtCodClasse.Text();
  if (!consulta.situacao.empty())
    consulta.texto +=
        (considera ? ", situações " : ", sem as situações ") + ReplaceAll(EdtSituacao.Text(), "'", "");
  if (consulta.todas) consulta.texto += ", todas as empresas";
  return consulta;
}

void TFmRelCCPosicao::BuscaReceber(Gathering& gathering) {
  receber_ = Busca<kReceber>(gathering, kLadoReceber, TbReceber);
}

void TFmRelCCPosicao::BuscaPagar(Gathering& gathering) {
  pagar_ = Busca<kPagar>(gathering, kLadoPagar, TbPagar);
}

std::string TFmRelCCPosicao::PorEmpresa(std::string_view sql, const char* tabela,
                                        std::string_view ordem) const {
  return ForCompanies(sql, tabela, consulta_.todas, ordem);
}

std::string TFmRelCCPosicao::Filtros(const Lado& lado) const {
  std::string filtros = " AND T.STATUS = 'N'";
  if (!consulta_.cliente.empty())
    filtros += " AND " + Igual(std::string("T.") + lado.entidade, consulta_.cliente);
  if (!consulta_.classe.empty())
    filtros += " AND " + Igual(std::string("T.") + lado.classe, consulta_.classe);
  return filtros;
}

// Whatever was settled since is put back, so that a title stands as it did at the start.
std::string TFmRelCCPosicao::LinhasDoSaldo(const Lado& lado) const {
  const std::string inicio = Funcoes.AspasData(consulta_.periodo.de), emissao = lado.emissao,
                    nada = "CAST(0 AS NUMERIC(18,4))";
  const std::string antes = emissao + " < " + inicio + Filtros(lado);
  return " FROM (SELECT " + emissao + " AS DIA, " + lado.aberto + " AS ABERTO, " + nada +
         " AS BAIXADO FROM {" + lado.titulos + "} T WHERE " + antes + " AND " + lado.aberto +
         " > 0 UNION ALL SELECT " + emissao + ", " + nada + ", " + lado.baixado + " FROM {" + lado.baixas +
         "} B INNER JOIN {" + lado.titulos + "} T ON (T." + lado.chave + " = B." + lado.chave + ") WHERE " +
         lado.dia + " >= " + inicio + " AND " + antes + ") S";
}

Currency TFmRelCCPosicao::ValorSaldo(const Lado& lado) const {
  return Total(Tabela.IBDatabase(),
               PorEmpresa("SELECT " + Soma("S.ABERTO + S.BAIXADO") + LinhasDoSaldo(lado), lado.titulos));
}

template <const auto& kFields>
TFmRelCCPosicao::Posicao TFmRelCCPosicao::Busca(Gathering& gathering, const Lado& lado,
                                                TClientDataSet& conjunto) {
  using Linha = ReportRow<kFields>;
  const std::string nome = lado.nome, chave = std::string("T.") + lado.chave;
  const std::string colunas = "SELECT " + chave + " AS NUMERO, " + lado.vencimento + " AS DT_VENCTO, T." +
                              lado.entidade + " AS CODCLI, " + lado.documentos + ", ENTIDADE.NOME, ";
  const std::string entidade = std::string(" LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = T.") +
                               lado.entidade + ") WHERE 1 = 1";

  Posicao posicao;
  posicao.pedida = true;
  gathering.Stage("Posição inicial " + nome);
  posicao.inicial = ValorSaldo(lado);
  const auto anexa = [&](Linha& linha) {
    linha["Saldo_Ini"] = posicao.inicial;
    nomes_.Share(linha["Nome"]);
    conjunto.AppendRow(linha.Values());
  };

  // What was settled of a title on one day is one row, that of its issue where it was issued on that day. It
  // is read first, so that each row is appended whole.
  gathering.Stage("Baixas " + nome);
  std::vector<Linha> baixas;
  std::unordered_map<std::string, std::size_t> do_dia;
  ForEachRow<kFields>(
      PorEmpresa(colunas + lado.dia + " AS DT_MOVTO, " + lado.pago + " AS VAL_PAG, B.VAL_DEV, " + lado.juros +
                     " AS JUROS, " + lado.desconto + " AS DESCONTO, " + lado.baixado + " FROM {" +
                     lado.baixas + "} B INNER JOIN {" + lado.titulos + "} T ON (" + chave + " = B." +
                     lado.chave + ")" + entidade +
                     WhereBetween(lado.dia, consulta_.periodo.de, consulta_.periodo.ate) + Filtros(lado) +
                     (lado.situacao_nas_baixas ? consulta_.situacao : ""),
                 lado.baixas),
      [&](Linha& linha, std::span<Value> baixado) {
        posicao.dias[linha["Dt_Movto"].AsDate()].baixado += baixado[0].AsCurrency();
        const auto [dele, nova] =
            do_dia.try_emplace(Chave(linha["Numero"], linha["Dt_Movto"]), baixas.size());
        if (nova) {
          baixas.push_back(std::move(linha));
        } else {
          for (const auto campo : typename Linha::Names{"Val_Pag", "Val_Dev", "Juros", "Desconto"}) {
            Value& soma = baixas[dele->second][campo];
            soma = Value(soma.AsCurrency() + linha[campo].AsCurrency());
          }
        }
        gathering.Advance();
      });

  gathering.Stage("Emissões " + nome);
  std::vector<bool> juntas(baixas.size());
  ForEachRow<kFields>(
      PorEmpresa(colunas + lado.emissao + " AS DT_MOVTO, " + lado.valor + " AS VAL_EMI FROM {" +
                     lado.titulos + "} T" + entidade +
                     WhereBetween(lado.emissao, consulta_.periodo.de, consulta_.periodo.ate) + Filtros(lado) +
                     consulta_.situacao,
                 lado.titulos),
      [&](Linha& linha, std::span<Value>) {
        posicao.dias[linha["Dt_Movto"].AsDate()].emitido += linha["Val_Emi"].AsCurrency();
        const auto dele = do_dia.find(Chave(linha["Numero"], linha["Dt_Movto"]));
        if (dele != do_dia.end() && !juntas[dele->second]) {
          juntas[dele->second] = true;
          for (const auto campo : typename Linha::Names{"Val_Pag", "Val_Dev", "Juros", "Desconto"})
            linha[campo] = std::move(baixas[dele->second][campo]);
        }
        anexa(linha);
        gathering.Advance();
      });
  for (std::size_t i = 0; i < baixas.size(); ++i) {
    if (!juntas[i]) anexa(baixas[i]);
  }
  if (conjunto.IsEmpty()) {
    // The report still shows the position.
    Linha linha;
    anexa(linha);
  }
  gathering.Stage("Ordem das linhas " + nome);
  conjunto.SetIndexFieldNames("Dt_Movto;Codcli");
  return posicao;
}

void TFmRelCCPosicao::MontaPosicao() {
  const bool por_mes = consulta_.periodo.ate.Days() - consulta_.periodo.de.Days() > kMaisDias;
  // By its first day: what moved receivables, and payables.
  std::map<Date, std::pair<Movimento, Movimento>> pontos;
  const auto junta = [&](const Posicao& posicao, Movimento std::pair<Movimento, Movimento>::*lado) {
    for (const auto& [dia, movimento] : posicao.dias) {
      Movimento& ponto = pontos[por_mes ? dia.FirstOfMonth() : dia].*lado;
      ponto.emitido += movimento.emitido;
      ponto.baixado += movimento.baixado;
    }
  };
  junta(receber_, &std::pair<Movimento, Movimento>::first);
  junta(pagar_, &std::pair<Movimento, Movimento>::second);

  ReportRow<kPosicao> linha;
  Currency receber = receber_.inicial, pagar = pagar_.inicial;
  const auto anexa = [&](const std::string& periodo, const Movimento& r, const Movimento& p) {
    linha["Periodo"] = periodo;
    linha["Emi_Receber"] = SemZero(r.emitido);
    linha["Bai_Receber"] = SemZero(r.baixado);
    linha["Receber"] = receber += r.emitido - r.baixado;
    linha["Emi_Pagar"] = SemZero(p.emitido);
    linha["Bai_Pagar"] = SemZero(p.baixado);
    linha["Pagar"] = pagar += p.emitido - p.baixado;
    TbPosicao.AppendRow(linha.Values());
  };
  anexa("Início", {}, {});
  for (const auto& [dia, movimentos] : pontos) {
    linha["De"] = dia;
    linha["Ate"] = por_mes ? dia.LastOfMonth() : dia;
    anexa(Rotulo(dia, por_mes), movimentos.first, movimentos.second);
  }
}

// --- From a figure to where it comes from.

void TFmRelCCPosicao::MostraTitulo(const Lado& lado, const TOrvDBGrid& grade, TClientDataSet& conjunto) {
  if (conjunto.IsEmpty()) return;
  const std::string numero = conjunto["Numero"].AsString();
  if (numero.empty() || grade.SelectedField() == "Saldo_Ini") {
    MostraSaldo(lado);
    return;
  }
  const std::string dele = Igual(lado.chave, numero);
  ShowDetail("Título " + std::string(lado.nome) + " " + numero,
             PorEmpresa(lado.titulo(dele) + origem::kUniao + lado.baixa(dele), lado.titulos));
}

// A position is too many titles to list one by one.
void TFmRelCCPosicao::MostraSaldo(const Lado& lado) {
  const std::string sql = SaldoPorMes("S.DIA", "S.ABERTO", "S.BAIXADO", LinhasDoSaldo(lado), "1");
  ShowDetail("Posição " + std::string(lado.nome) + " antes de " + consulta_.periodo.de.Brazil(),
             PorEmpresa(sql, lado.titulos, "ORDER BY 1, 2"), kMesesDoSaldo, CompletaMes);
}

// The titles of a day or a month, of the side in whose column the user stands.
void TFmRelCCPosicao::MostraDias() {
  if (TbPosicao.IsEmpty()) return;
  const std::string& coluna = DBGrid3.SelectedField();
  const bool so_pagar = coluna.ends_with("Pagar"), so_receber = coluna.ends_with("Receber");
  if (TbPosicao["De"].IsNull()) {
    MostraSaldo(so_pagar || !receber_.pedida ? kLadoPagar : kLadoReceber);
    return;
  }
  const Periodo dias{TbPosicao["De"].AsDate(), TbPosicao["Ate"].AsDate()};
  TClientDataSet linhas("Detalhe");
  LayDown(linhas, kDoDia);
  const auto junta = [&](const Lado& lado, TClientDataSet& conjunto) {
    const auto valor = [&](int64_t linha, const char* campo) {
      return conjunto.Cell(linha, conjunto[campo]);
    };
    for (int64_t i = 0; i < conjunto.DisplayCount(); ++i) {
      if (!dias.Contem(valor(i, "Dt_Movto").AsDate())) continue;
      const Value juros = valor(i, "Juros"), desconto = valor(i, "Desconto"), devolvido = valor(i, "Val_Dev");
      Currency baixado = valor(i, "Val_Pag").AsCurrency();
      // As it took off the position.
      if (&lado == &kLadoReceber)
        baixado += desconto.AsCurrency() + devolvido.AsCurrency() - juros.AsCurrency();
      Value linha[] = {Value(lado.nome),
                       valor(i, "Dt_Movto"),
                       valor(i, "Numero"),
                       valor(i, "Nome"),
                       valor(i, "Dt_Vencto"),
                       valor(i, "Val_Emi"),
                       Value(baixado),
                       juros,
                       desconto,
                       devolvido};
      linhas.AppendRow(linha);
    }
  };
  if (!so_pagar) junta(kLadoReceber, TbReceber);
  if (!so_receber) junta(kLadoPagar, TbPagar);
  linhas.First();
  Funcoes.TelaDetalhamento("Títulos de " + TbPosicao["Periodo"].AsString(), linhas);
}

}  // namespace orv
