// What the forecast expects of orders, of purchases, and of invoices that aren't written yet.
#include <tuple>

#include "cashflow/rel_prev_fluxo.h"
#include "rules/parcelas.h"
#include "rules/saldo.h"
#include "toolkit/row_writer.h"
#include "toolkit/text.h"

namespace orv {

// --- Orders.

void TfmRelPrevFluxo::BuscaPedidoPendente(Consulta& consulta) {
  const std::string sql =
      "SELECT PEDIDO.NUMERO, PEDIDO.DT_FATURA, ENTIDADE.NOME, ENTIDADE.ATRASO_MEDIO, "
      "SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) AS VALOR, PEDIDO.PER_DESC, PEDIDO.PGTO, '{}' AS EMPRESA"
      " FROM {PEDIDO} PEDIDO INNER JOIN {PED_ITEN} PED_ITEN ON PED_ITEN.NUMERO = PEDIDO.NUMERO"
      " INNER JOIN {ENTIDADE} ENTIDADE ON ENTIDADE.CODCLI = PEDIDO.CODCLI WHERE PEDIDO.ENTREGA <= " +
      Funcoes.AspasData(consulta.periodo.ate) +
      " GROUP BY PEDIDO.NUMERO, PEDIDO.DT_FATURA, ENTIDADE.NOME, ENTIDADE.ATRASO_MEDIO, PEDIDO.PER_DESC, "
      "PEDIDO.PGTO HAVING SUM(PED_ITEN.QTDE) > 0 ";
  Percorre(
      consulta, "Pedidos pendentes", sql, false,
      [&](std::span<Value> v) {
        Gera_Duplicatas(consulta, {Tipo::Pedido, v[0], v[2], v[7], v[6].AsString(),
                                   ValorPedido(v[4].AsFloat(), v[5].AsFloat()), v[1].AsDate(), 0,
                                   static_cast<int>(v[3].AsInteger())});
      },
      "ORDER BY 1");
}

void TfmRelPrevFluxo::BuscaCompraPendente(Consulta& consulta) {
  const std::vector<Compra> compras = LeCompras(consulta);
  const Date vespera = VesperaDaCotacao(Today());
  Cotacoes::Pedidas pedidas;
  for (const Compra& compra : compras) {
    if (compra.moeda.empty()) continue;
    pedidas.emplace(compra.moeda, vespera);
    pedidas.emplace(compra.moeda, DtCotacao.Date());
  }
  Cotacoes cotacoes(Funcoes, Tabela.IBDatabase(), pedidas);
  std::vector<std::string> ilegiveis;
  for (const Compra& compra : compras) {
    Pendente pendente = compra.pendente;
    pendente.valor = Currency::FromDouble(compra.valor * cotacoes.Taxa(compra.moeda, vespera));
    pendente.cotacao = cotacoes.Conhecida(compra.moeda, DtCotacao.Date());
    try {
      Gera_Duplicatas(consulta, pendente);
    } catch (const ConversionError&) {
      // What a purchase's condition hides doesn't hide the others.
      ilegiveis.push_back(pendente.numero.AsString());
    } catch (const RangeError&) {
      ilegiveis.push_back(pendente.numero.AsString());
    }
  }
  if (const std::string faltam = cotacoes.Faltam(); !faltam.empty()) avisos_.push_back(faltam);
  if (!ilegiveis.empty())
    avisos_.push_back("Compras de fora, pela condição de pagamento: " + Join(ilegiveis, ", ") + ".");
}

std::vector<TfmRelPrevFluxo::Compra> TfmRelPrevFluxo::LeCompras(Consulta& consulta) {
  const std::string sql =
      "SELECT COMPRA.NUMERO, COMPRA.DT_ENTREGA, FORNEC.NOME, COMPRA.MOEDA, COMPRA.PARCELAS, COMPRA.CONDICAO, "
      "SUM(CO_ITEN.PRECO*(CO_ITEN.QTDE - CO_ITEN.QTDE_B)) AS VALOR, '{}' AS EMPRESA"
      " FROM {COMPRA} COMPRA INNER JOIN {CO_ITEN} CO_ITEN ON CO_ITEN.NUMERO = COMPRA.NUMERO"
      " LEFT OUTER JOIN {ENTIDADE} FORNEC ON FORNEC.CODCLI = COMPRA.CODFOR WHERE COMPRA.DT_ENTREGA <= " +
      Funcoes.AspasData(consulta.periodo.ate) + " AND CO_ITEN.SITUACAO = 'A'" +
      WhereIn("COMPRA.CLASSE", EdtClasse) +
      " GROUP BY COMPRA.NUMERO, COMPRA.DT_ENTREGA, FORNEC.NOME, COMPRA.MOEDA, COMPRA.PARCELAS, "
      "COMPRA.CONDICAO";
  std::vector<Compra> compras;
  Percorre(
      consulta, "Ordens de compra", sql, false,
      [&](std::span<Value> v) {
        compras.push_back({{Tipo::Compra, v[0], v[2], v[7], v[5].AsString(), Currency(), v[1].AsDate(),
                            static_cast<int>(v[4].AsInteger())},
                           std::string(TrimCode(v[3].Text())),
                           v[6].AsFloat()});
      },
      "ORDER BY 1");
  return compras;
}

void TfmRelPrevFluxo::Gera_Duplicatas(Consulta& consulta, const Pendente& pendente) {
  const bool venda = pendente.tipo == Tipo::Pedido;
  const Lado lado = venda ? kRecebe : kPaga;
  // What was to come by today comes tomorrow at the earliest.
  const Date base = pendente.base > Today() ? pendente.base : Today().AddDays(1);
  std::vector<Parcela> parcelas;
  const auto junta = [&](const Parcela& parcela) { parcelas.push_back(parcela); };
  if (pendente.parcelas != 0) {
    ParaCadaParcelaIgual(pendente.valor, base, pendente.condicao, pendente.parcelas, junta);
  } else {
    ParaCadaParcela(pendente.valor, base, pendente.condicao, true, junta);
  }
  for (const Parcela& parcela : parcelas) {
    if (!consulta.periodo.Contem(parcela.dia)) continue;
    Date dia = parcela.dia;
    if (venda) {
      if (CbAtraso.Checked()) dia = dia.AddDays(pendente.atraso);
      if (!consulta.periodo.Contem(dia)) {
        SemColuna(lado, parcela.valor);
        continue;
      }
      dia = consulta.dias.Credito(dia, "");
    } else {
      dia = consulta.dias.DiaUtil(dia);
    }
    Lido lido{venda ? "VEN" : "COM",
              "",
              venda ? "PEDIDO DE VENDAS" : "ORDEM DE COMPRAS",
              Value(),
              {pendente.tipo, NumeroParcela(pendente.numero.AsString(), parcela.ordem), pendente.nome,
               pendente.empresa, parcela.dia, parcela.valor}};
    const std::size_t antes = quadros_[lado].linhas.size();
    AdicionaClasse(lado, lido, ColunaValor(dia), dia, Currency());
    // The rate that the row shows is that of the purchase that made it.
    if (!venda && quadros_[lado].linhas.size() > antes)
      quadros_[lado].linhas.back().cotacao = Currency::FromDouble(pendente.cotacao);
  }
}

// --- The revenue forecast: budgets by month, spread over the days of the month and over terms as past
// invoicing was.

std::string TfmRelPrevFluxo::FiltroBase() const {
  return " FROM {RECEBER} RECEBER WHERE RECEBER.STATUS = 'N' AND RECEBER.SITUACAO <> 'P'" +
         WhereBetween("RECEBER.DT_EMISSAO", DtAtualIni.Date(), DtAtualFim.Date());
}

void TfmRelPrevFluxo::GeraPercentualFaturamento(Consulta& consulta) {
  consulta.andamento.Stage("Previsão de receita");
  const Faturado faturado = LeFaturado();
  // Without invoicing there is nothing to learn from.
  if (faturado.total.IsZero()) return;
  DistribuiPorPrazo(faturado);
  PreveEmissoes(LeOrcamentos(), DistribuiPorDia(faturado));
  PreveRecebimentos(consulta);
}

// The base may be all that a company ever invoiced: it is read once for its total and both of its shares.
TfmRelPrevFluxo::Faturado TfmRelPrevFluxo::LeFaturado() {
  Faturado faturado;
  const std::string sql = "SELECT RECEBER.DT_EMISSAO, RECEBER.DT_VENCTO, '{}' AS EMPRESA, " +
                          Soma("RECEBER.VALOR2") + " AS VALOR" + FiltroBase() +
                          " GROUP BY RECEBER.DT_EMISSAO, RECEBER.DT_VENCTO";
  ForEach(ForCompanies(sql, "", CbEmpresa.Checked()), [&](std::span<Value> v) {
    const Date emissao = v[0].AsDate();
    const std::string empresa = v[2].AsString();
    const Currency valor = SomaDe(v[3]);
    std::optional<int> prazo;
    if (!v[1].IsNull()) prazo = v[1].AsDate() - emissao;
    faturado.total += valor;
    faturado.por_prazo[{prazo, empresa}] += valor;
    faturado.por_dia[{emissao.Day(), empresa}] += valor;
  });
  return faturado;
}

void TfmRelPrevFluxo::DistribuiPorPrazo(const Faturado& faturado) {
  for (const auto& [prazo, valor] : faturado.por_prazo) {
    Value linha[] = {prazo.first ? Value(*prazo.first) : Value(),
                     valor.ToDouble() * 100 / faturado.total.ToDouble(), faturado.total};
    TbCond.AppendRow(linha);
  }
}

const TfmRelPrevFluxo::Classe& TfmRelPrevFluxo::DistribuiPorDia(const Faturado& faturado) {
  const std::size_t linha =
      Linha(kRecebe, "EMI", [](Classe& nova) { nova.descricao = "PERCENTUAL DE EMISSOES."; });
  Classe& emissoes = quadros_[kRecebe].linhas[linha];
  for (const auto& [dia, valor] : faturado.por_dia) {
    const auto d = static_cast<std::size_t>(dia.first) - 1;
    emissoes.valores[d] =
        (emissoes.valores[d] + Currency::FromDouble(valor.ToDouble() * 100 / faturado.total.ToDouble()))
            .Round2();
    emissoes.tem.set(d);
  }
  return emissoes;
}

// By the day in the database: its functions of month and year cost more than the rows.
std::vector<TfmRelPrevFluxo::Orcamento> TfmRelPrevFluxo::LeOrcamentos() {
  std::map<std::tuple<int, int, std::string>, Currency> meses;
  ForEach(ForCompanies("SELECT RECEBER.DT_EMISSAO, '{}' AS EMPRESA, " + Soma("RECEBER.VALOR2") +
                           " AS VALOR FROM {RECEBER} RECEBER WHERE RECEBER.STATUS = 'O' AND "
                           "RECEBER.SITUACAO <> 'P' GROUP BY RECEBER.DT_EMISSAO",
                       "", CbEmpresa.Checked()),
          [&](std::span<Value> v) {
            if (v[0].IsNull()) return;
            const Date dia = v[0].AsDate();
            meses[{dia.Year(), dia.Month(), v[1].AsString()}] += SomaDe(v[2]);
          });
  std::vector<Orcamento> orcamentos;
  for (const auto& [mes, valor] : meses) orcamentos.push_back({std::get<1>(mes), std::get<0>(mes), valor});
  return orcamentos;
}

// Of a February with 28 days the 29th counts on the last one.
void TfmRelPrevFluxo::PreveEmissoes(const std::vector<Orcamento>& orcamentos, const Classe& percentuais) {
  for (const Orcamento& orcamento : orcamentos) {
    const int dias = Funcoes.DiaDoMes()[static_cast<std::size_t>(orcamento.mes)];
    for (int d = 1; d <= dias; ++d) {
      const Date emissao(orcamento.ano, orcamento.mes,
                         std::min(d, DaysInMonth(orcamento.ano, orcamento.mes)));
      Value linha[] = {
          emissao, Value(),
          percentuais.valores[static_cast<std::size_t>(d) - 1].ToDouble() * orcamento.valor.ToDouble() / 100};
      TbPrev.AppendRow(linha);
    }
  }
}

void TfmRelPrevFluxo::PreveRecebimentos(Consulta& consulta) {
  const Field &emissao = TbPrev["Emissao"], &valor = TbPrev["Valor"], &prazo = TbCond["Dia"],
              &perc = TbCond["Perc"];
  for (int64_t i = 0, n = TbPrev.DisplayCount(); i < n; ++i, consulta.andamento.Advance()) {
    const Date de = TbPrev.Cell(i, emissao).AsDate();
    const double emitido = TbPrev.Cell(i, valor).AsFloat();
    if (emitido == 0) continue;
    for (int64_t k = 0, m = TbCond.DisplayCount(); k < m; ++k) {
      const auto dias = static_cast<int>(TbCond.Cell(k, prazo).AsInteger());
      const Date dia = dias > 0 ? de.AddDays(dias) : de;
      if (!consulta.periodo.Contem(dia)) continue;
      Lido lido{"PREV",
                "",
                "PREVISAO DE RECEITA",
                Value(),
                {Tipo::Previsao, de.Brazil(), "Prazo de " + std::to_string(dias) + " dias", Value(), dia,
                 Currency::FromDouble(TbCond.Cell(k, perc).AsFloat() * emitido / 100)}};
      AdicionaClasse(kRecebe, lido, ColunaValor(dia), dia, Currency());
    }
  }
}

}  // namespace orv
