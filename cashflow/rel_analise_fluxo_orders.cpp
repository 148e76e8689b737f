// What the analysis expects of money that stands in no title yet: orders, purchases, and work that is
// outside.
#include "cashflow/rel_analise_fluxo.h"
#include "rules/cotacao.h"
#include "rules/soma.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A condition's slot.
constexpr std::size_t kLargura = 3;
// Work that went out longer ago isn't expected any more.
constexpr int kDiasOficina = 60;

std::string Chave(const std::string& empresa, std::string_view numero) {
  return empresa + '\t' + std::string(numero);
}

}  // namespace

// --- Sales orders.

void TfmRelAnaliseFluxo::BuscaPedidoPendente(Consulta& consulta) {
  enum Resto : uint8_t { oData, oCondicao, oValor, oDesconto, oSituacao, oEmpresa };
  const std::string data = CbDataItens.Checked() ? "PED_ITEN.DT_ENTREGA" : "PEDIDO.DT_FATURA";
  std::string sql = "SELECT PEDIDO.NUMERO, " + data +
                    " AS DT_FATURA, PEDIDO.CODCLI AS CLIENTE, PEDIDO.PGTO, "
                    "SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) AS VALOR, PEDIDO.PER_DESC, CLIENTE.NOME, "
                    "REPRESEN.NOME AS NOME_REP, PEDIDO.SIT_DUP, '{}' AS EMPRESA FROM {PEDIDO} PEDIDO"
                    " INNER JOIN {PED_ITEN} PED_ITEN ON PED_ITEN.NUMERO = PEDIDO.NUMERO"
                    " INNER JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = PEDIDO.CODCLI"
                    " LEFT JOIN {TABSIT} TABSIT ON PEDIDO.SIT_DUP = TABSIT.CODIGO"
                    " LEFT JOIN {REPRESEN} REPRESEN ON REPRESEN.CODREP = PEDIDO.CODREP WHERE " +
                    data + " <= " + Funcoes.AspasData(consulta.periodo.ate) +
                    " AND TABSIT.IMP_FLUXO <> 'N' AND PEDIDO.BLOQUEIO = '1' AND PED_ITEN.QTDE > 0";
  if (!CbBloq.Checked()) sql += " AND PEDIDO.FINANCEIRO = '1'";
  sql += " GROUP BY PEDIDO.NUMERO, " + data +
         ", PEDIDO.CODCLI, PEDIDO.PGTO, PEDIDO.PER_DESC, CLIENTE.NOME, CLIENTE.CREDITO, PEDIDO.CODREP, "
         "REPRESEN.NOME, PEDIDO.SIT_DUP";
  Percorre(consulta, "Pedidos pendentes", sql, "PEDIDO", [&](Linha& linha, std::span<Value> v) {
    const Value numero = std::exchange(linha["Numero"], Value());
    Gera_Duplicatas(consulta, {Fonte::Pedido, linha, numero.AsString(), v[oCondicao].AsString(),
                               v[oSituacao].AsString(), v[oEmpresa].AsString(),
                               ValorPedido(v[oValor].AsFloat(), v[oDesconto].AsFloat()), v[oData].AsDate()});
  });
}

void TfmRelAnaliseFluxo::Gera_Duplicatas(Consulta& consulta, const Pendente& pendente) {
  const bool venda = pendente.fonte == Fonte::Pedido;
  const auto anexa = [&](const Parcela& parcela) {
    const Date dia =
        CbContBanc.Checked() ? consulta.dias.Credito(parcela.dia, pendente.situacao) : parcela.dia;
    const bool atraso = dia < consulta.periodo.de;
    if (dia > consulta.periodo.ate || (atraso && !CbPedAtraso.Checked())) return;
    Linha linha = pendente.linha;
    linha["Numero"] = NumeroParcela(pendente.numero, parcela.ordem);
    linha["Docto"] = pendente.numero;
    linha["Emissao"] = pendente.base;
    linha["Vencto"] = dia;
    linha["Classe"] = venda ? "VENDA" : "COMPRA";
    linha[venda ? Linha::Name("Valor_Venda") : Linha::Name("Valor_Compra")] = parcela.valor;
    if (atraso) linha["CodPer"] = "01";
    Anexa(linha, pendente.fonte, pendente.numero, pendente.empresa);
  };
  ParaCadaParcela(pendente.valor, pendente.base, pendente.condicao, CBCond.Checked(), anexa);
}

// --- Purchases.

void TfmRelAnaliseFluxo::BuscaCompraPendente(Consulta& consulta) {
  const std::vector<Compra> compras = LeCompras(consulta);
  const Date vespera = VesperaDaCotacao(Today());
  const auto dia_da_taxa = [&](const Compra& compra) {
    return CbMoedaEmiOC.Checked() ? compra.emissao : vespera;
  };
  Cotacoes::Pedidas pedidas;
  for (const Compra& compra : compras) {
    if (!compra.moeda.empty()) pedidas.emplace(compra.moeda, dia_da_taxa(compra));
  }
  Cotacoes cotacoes(Funcoes, Tabela.IBDatabase(), pedidas);
  const Vencimentos vencimentos = LeVencimentos();
  bool avisado = false;
  for (const Compra& compra : compras) {
    const double taxa = cotacoes.Taxa(compra.moeda, dia_da_taxa(compra));
    Pendente pendente = compra.pendente;
    pendente.condicao = CondicaoDaCompra(compra, vencimentos, avisado);
    pendente.valor = Currency::FromDouble(compra.valor * taxa) - compra.adiantado;
    if (CbConsST.Checked()) pendente.valor += Currency::FromDouble(compra.valor_st * taxa);
    pendente.valor += compra.frete;
    Gera_Duplicatas(consulta, pendente);
  }
  if (const std::string faltam = cotacoes.Faltam(); !faltam.empty()) avisos_.push_back(faltam);
}

std::vector<TfmRelAnaliseFluxo::Compra> TfmRelAnaliseFluxo::LeCompras(Consulta& consulta) {
  enum Resto : uint8_t {
    cCondicao,
    cTipoFrete,
    cFrete,
    cMoeda,
    cAdiantado,
    cValor,
    cST,
    cEmissao,
    cEmpresa,
    cEntrega
  };
  const bool itens = CbDataItens.Checked();
  // The items are added up apart from the titles that share the purchase's document, so that neither repeats
  // the other.
  const std::string sql =
      "SELECT COMPRA.NUMERO, COMPRA.CODFOR AS CLIENTE, COMPRA.CONDICAO, FORNEC.NOME, COMPRA.FRETE, "
      "COMPRA.VAL_FRETE, MAX(CAST(COMPRA.OBS AS VARCHAR(4000))) AS OBSERVACAO, COMPRA.MOEDA, (SELECT " +
      Soma("PAGTO.VALOR") +
      " FROM {PAGTO} PAGTO WHERE PAGTO.DOCTO = COMPRA.DOCTO AND PAGTO.STATUS = 'N') AS VALOR_ANT_IMPORT, "
      "SUM((CO_ITEN.PRECO * (CO_ITEN.QTDE - CO_ITEN.QTDE_B)) + (((CO_ITEN.PRECO * (CO_ITEN.QTDE - "
      "CO_ITEN.QTDE_B))/100)*CO_ITEN.IPI)) AS VALOR, SUM(COALESCE(CO_ITEN.VALOR_ST,0)) AS VALOR_ST, "
      "COMPRA.DT_EMISSAO, '{}' AS EMP, " +
      (itens ? "CO_ITEN.DT_FATURA AS DT_ENTREGA " : "MIN(CO_ITEN.DT_ENTREGA) AS DT_ENTREGA ") +
      "FROM {COMPRA} COMPRA INNER JOIN {CO_ITEN} CO_ITEN ON CO_ITEN.NUMERO = COMPRA.NUMERO"
      " INNER JOIN {ENTIDADE} FORNEC ON COMPRA.CODFOR = FORNEC.CODCLI"
      " LEFT JOIN {SUBGRUPO} SUBGRUPO ON COMPRA.CLASSE = SUBGRUPO.CODIGO"
      " WHERE SUBGRUPO.TIPO <> 'Transferencia' AND CO_ITEN.SITUACAO = 'A'" +
      (CbBloq.Checked() ? " AND (COMPRA.LIBERADO <> 'N' OR COMPRA.LIBERADO IS NULL OR COMPRA.LIBERADO = '')"
                        : " AND COMPRA.LIBERADO = 'S'") +
      " GROUP BY COMPRA.NUMERO, COMPRA.CODFOR, COMPRA.CONDICAO, FORNEC.NOME, FORNEC.CREDITO, COMPRA.FRETE, "
      "COMPRA.VAL_FRETE, COMPRA.MOEDA, COMPRA.DT_EMISSAO, COMPRA.DOCTO" +
      (itens ? ", CO_ITEN.DT_FATURA" : "");
  std::vector<Compra> compras;
  Percorre(consulta, "Ordens de compra", sql, "COMPRA", [&](Linha& linha, std::span<Value> v) {
    const std::string numero = linha["Numero"].AsString();
    linha["Numero"] = Value();
    compras.push_back({{Fonte::CompraCompleta, linha, numero, v[cCondicao].AsString(), "",
                        v[cEmpresa].AsString(), Currency(), v[cEntrega].AsDate()},
                       v[cEmissao].AsDate(),
                       v[cMoeda].AsString(),
                       v[cValor].AsFloat(),
                       v[cST].AsFloat(),
                       SomaDe(v[cAdiantado]),
                       v[cTipoFrete].Text() == "2" ? v[cFrete].AsCurrency() : Currency()});
  });
  return compras;
}

TfmRelAnaliseFluxo::Vencimentos TfmRelAnaliseFluxo::LeVencimentos() {
  Vencimentos vencimentos;
  if (CbDataItens.Checked()) return vencimentos;
  const std::string sql = ForCompanies(
      "SELECT COND_PAGTO.NUMERO, COND_PAGTO.DT_VENCTO, '{}' AS EMP FROM {COND_PAGTO} COND_PAGTO WHERE "
      "COND_PAGTO.TIPO = 'C' AND COND_PAGTO.DT_VENCTO IS NOT NULL AND EXISTS (SELECT 1 FROM {CO_ITEN} "
      "CO_ITEN "
      "WHERE CO_ITEN.NUMERO = COND_PAGTO.NUMERO AND CO_ITEN.SITUACAO = 'A')",
      "COND_PAGTO", CbEmp.Checked(), "ORDER BY 2");
  ForEach(sql, [&](std::span<Value> v) {
    vencimentos[Chave(v[2].AsString(), v[0].Text())].push_back(v[1].AsDate());
  });
  return vencimentos;
}

// The purchase's own due dates as slots of days from its delivery, else its condition.
std::string TfmRelAnaliseFluxo::CondicaoDaCompra(const Compra& compra, const Vencimentos& vencimentos,
                                                 bool& avisado) {
  const auto datas = vencimentos.find(Chave(compra.pendente.empresa, compra.pendente.numero));
  if (datas == vencimentos.end() || compra.pendente.base.Empty()) return compra.pendente.condicao;
  std::string condicao;
  for (const Date data : datas->second) {
    std::string dias = std::to_string(data - compra.pendente.base);
    if (dias.size() > kLargura && !std::exchange(avisado, true))
      Warn("Prazo de vencimento muito longo para a ordem de compra " + compra.pendente.numero);
    dias.resize(kLargura, ' ');
    condicao += dias;
  }
  return condicao;
}

// --- Work that is outside.

bool TfmRelAnaliseFluxo::CalculaVencto(std::string_view condicao, Date& vencimento) const {
  const std::string_view vaga = Trim(CutChars(condicao, kLargura));
  int64_t dia = 0;
  try {
    dia = vaga.empty() ? 0 : ParseInteger(vaga);
  } catch (const ConversionError&) {
    return false;
  }
  if (dia <= 0) return false;
  const Date mes = Today().Day() > dia ? Today().FirstOfMonth().AddMonths(1) : Today();
  if (!Date::Exists(mes.Year(), mes.Month(), static_cast<int>(dia))) return false;
  vencimento = Date(mes.Year(), mes.Month(), static_cast<int>(dia));
  return true;
}

Date TfmRelAnaliseFluxo::VenctoOficina(Consulta& consulta, Date saida, std::string_view condicao) const {
  const Date dia = saida.AddDays(CondicaoPagamento(condicao).Dias(1));
  return CbDiasUteis.Checked() ? consulta.dias.DiaUtil(dia) : dia;
}

// Neither end of the period counts here.
void TfmRelAnaliseFluxo::AnexaOficina(Consulta& consulta, Linha& linha, const Oficina& oficina) {
  if (oficina.vencimento <= consulta.periodo.de || oficina.vencimento >= consulta.periodo.ate) return;
  linha["Docto"] = linha["Numero"];
  linha["Vencto"] = oficina.vencimento;
  linha["Prev_pag"] = oficina.valor.ToDouble();
  linha["Classe"] = oficina.classe;
  linha["Observacao"] = oficina.observacao;
  Anexa(linha, oficina.fonte, oficina.chave, oficina.empresa);
}

void TfmRelAnaliseFluxo::BuscaPrevisaoPagamentos(Consulta& consulta) {
  BuscaFaccoes(consulta);
  BuscaTinturarias(consulta);
  BuscaTecelagens(consulta);
}

void TfmRelAnaliseFluxo::BuscaFaccoes(Consulta& consulta) {
  enum Resto : uint8_t { fOp, fSetor, fParte, fQuantidade, fValor, fCondicao, fEmpresa };
  std::string sql =
      "SELECT FACCAO3.NUMERO, FACCAO3.OP, FACCAO3.CODCLI AS CLIENTE, FACCAO3.DT_LAN AS EMISSAO, "
      "ENTIDADE.NOME, "
      "CADFLUXO.DESCRICAO, FACCAO3.PARTE, SUM(FACCAO3.QUANT) AS QTDE, "
      "SUM(FACCAO3.UNITARIO * FACCAO3.QUANT) AS VALOR, UDF_COPY(ENTIDADE.CONDICAO,1,3) AS CONDICAO, "
      "'{}' AS EMPRESA FROM {FACCAO3} FACCAO3"
      " LEFT OUTER JOIN {ENTIDADE} ENTIDADE ON ENTIDADE.CODCLI = FACCAO3.CODCLI"
      " LEFT OUTER JOIN {CADFLUXO} CADFLUXO ON FACCAO3.OP = CADFLUXO.CODIGO"
      " WHERE CADFLUXO.IMP_FLUXO = 'S' AND FACCAO3.PAGO = 'N' AND FACCAO3.DT_LAN > " +
      Funcoes.AspasData(consulta.periodo.de.AddDays(-kDiasOficina));
  // The company's own work isn't paid.
  if (!Trim(fac80_).empty()) sql += " AND FACCAO3.CODCLI <> " + Funcoes.Aspas(fac80_);
  sql +=
      " GROUP BY FACCAO3.NUMERO, FACCAO3.OP, FACCAO3.CODCLI, FACCAO3.DT_LAN, ENTIDADE.NOME, "
      "CADFLUXO.DESCRICAO, FACCAO3.PARTE, ENTIDADE.CONDICAO";
  Percorre(consulta, "Facções", sql, "FACCAO3", [&](Linha& linha, std::span<Value> v) {
    const Currency valor = Currency::FromDouble(v[fValor].AsFloat());
    if (valor <= Currency()) return;
    const std::string numero = linha["Numero"].AsString(), op = v[fOp].AsString(),
                      parte = v[fParte].AsString();
    Date vencimento;
    if (!CalculaVencto(v[fCondicao].Text(), vencimento))
      vencimento = VenctoOficina(consulta, linha["Emissao"].AsDate(), v[fCondicao].Text());
    AnexaOficina(consulta, linha,
                 {Fonte::Faccao, numero + '\t' + op + '\t' + parte, v[fEmpresa].AsString(), vencimento, valor,
                  "FACCAO",
                  "OF " + numero + ". Setor - " + op + " - " + v[fSetor].AsString() + ". Parte - " + parte +
                      ". Quantidade " + v[fQuantidade].AsString()});
  });
}

void TfmRelAnaliseFluxo::BuscaTinturarias(Consulta& consulta) {
  PercorreOficinas(
      consulta, "Beneficiamento",
      "SELECT TINTUR.NUMERO, TINTUR.DATR AS EMISSAO, TINTUR.TINTURARIA AS CLIENTE, ENTIDADE.NOME, "
      "SUM((TINTUR_ITEN.PESO_BRUTO - TINTUR_ITEN.PESO_RETORNO) * TINTUR_ITEN.CUSTO + "
      "(TINTUR_ITEN.PESO_BRUTO - TINTUR_ITEN.PESO_RETORNO) * TINTUR_ITEN.CUSTO_FLUXO) AS VALOR, "
      "UDF_COPY(ENTIDADE.CONDICAO,1,3) AS CONDICAO, '{}' AS EMPRESA FROM {TINTUR_ITEN} TINTUR_ITEN"
      " LEFT OUTER JOIN {TINTUR} TINTUR ON TINTUR.NUMERO = TINTUR_ITEN.NUMERO"
      " LEFT OUTER JOIN {ENTIDADE} ENTIDADE ON TINTUR.TINTURARIA = ENTIDADE.CODCLI"
      " WHERE TINTUR_ITEN.SITUACAO <> 'B' AND TINTUR.DATR > " +
          Funcoes.AspasData(consulta.periodo.de.AddDays(-kDiasOficina)) +
          " GROUP BY TINTUR.NUMERO, TINTUR.DATR, TINTUR.TINTURARIA, ENTIDADE.NOME, "
          "ENTIDADE.CONDICAO",
      "TINTUR_ITEN", {Fonte::Tinturaria, "", "", {}, {}, "TINTUR", "ORDEM DE BENEFICIAMENTO NR. "});
}

void TfmRelAnaliseFluxo::BuscaTecelagens(Consulta& consulta) {
  PercorreOficinas(
      consulta, "Tecelagem",
      "SELECT TECEL.NUMERO, TECEL.DT_INICIO AS EMISSAO, TECEL.MALHARIA AS CLIENTE, ENTIDADE.NOME, "
      "SUM((TECEL_ITEN.QTDE - TECEL_ITEN.QTDE_B)*CADCORTI.CUSTO) AS VALOR, "
      "UDF_COPY(ENTIDADE.CONDICAO,1,3) AS CONDICAO, '{}' AS EMPRESA FROM {TECEL_ITEN} TECEL_ITEN"
      " LEFT OUTER JOIN {TECEL} TECEL ON TECEL.NUMERO = TECEL_ITEN.NUMERO"
      " LEFT OUTER JOIN {ENTIDADE} ENTIDADE ON TECEL.MALHARIA = ENTIDADE.CODCLI"
      " LEFT OUTER JOIN {CADCORTI} CADCORTI ON TECEL.MALHARIA = CADCORTI.CODCLI AND "
      "TECEL_ITEN.CODIGO = CADCORTI.CODIGO AND CADCORTI.TIPO = 'C'"
      " WHERE TECEL_ITEN.BAIXADA <> 'S' AND TECEL.DT_INICIO > " +
          Funcoes.AspasData(consulta.periodo.de.AddDays(-kDiasOficina)) +
          " GROUP BY TECEL.NUMERO, TECEL.DT_INICIO, TECEL.MALHARIA, ENTIDADE.NOME, "
          "ENTIDADE.CONDICAO",
      "TECEL_ITEN", {Fonte::Tecelagem, "", "", {}, {}, "TECEL", "ORDEM DE TECELAGEM NR. "});
}

void TfmRelAnaliseFluxo::PercorreOficinas(Consulta& consulta, const char* passo, const std::string& sql,
                                          const char* tabela, const Oficina& oficina) {
  enum Resto : uint8_t { rValor, rCondicao, rEmpresa };
  Percorre(consulta, passo, sql, tabela, [&](Linha& linha, std::span<Value> v) {
    Oficina uma = oficina;
    uma.valor = Currency::FromDouble(v[rValor].AsFloat());
    if (uma.valor <= Currency()) return;
    uma.chave = linha["Numero"].AsString();
    uma.empresa = v[rEmpresa].AsString();
    uma.vencimento = VenctoOficina(consulta, linha["Emissao"].AsDate(), v[rCondicao].Text());
    uma.observacao += uma.chave;
    AnexaOficina(consulta, linha, uma);
  });
}

}  // namespace orv
