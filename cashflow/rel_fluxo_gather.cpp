// What the statement reads, and how each source becomes rows.
#include <algorithm>

#include "cashflow/rel_fluxo.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// What titles and received cheques have beside a row's fields.
enum Receber : uint8_t {
  rValor,
  rJuros,
  rPago,
  rDevolvido,
  rDesconto,
  rVencimento,
  rSituacao,
  rEmpresa,
  rChave
};

constexpr const char* kReceber =
    "SELECT RECEBER.NUMERO, RECEBER.BANCO, CADBAN.NOME_BANCO, RECEBER.VALOR2, RECEBER.JUROS, "
    "RECEBER.VALOR_PAGO, RECEBER.VAL_DEV, RECEBER.DESCONTO, RECEBER.CODCLI AS COD_PESSOA, "
    "CLIENTE.NOME AS DESC_PESSOA, CLIENTE.CREDITO AS LIM_CREDITO, RECEBER.DT_VENCTO, RECEBER.SITUACAO, "
    "RECEBER.OBS, RECEBER.CLASSE AS CLASSEGER, SUBGRUPO.DESCRICAO AS DESCCLASSE, ";
constexpr const char* kDeReceber =
    " FROM {RECEBER} RECEBER"
    " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = RECEBER.BANCO"
    " LEFT JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = RECEBER.CODCLI"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON RECEBER.CLASSE = SUBGRUPO.CODIGO";
Titulo TituloDe(std::span<const Value> v) {
  return {v[rValor].AsCurrency(), v[rJuros].AsCurrency(), v[rDesconto].AsCurrency(), v[rPago].AsCurrency(),
          v[rDevolvido].AsCurrency()};
}

}  // namespace

void TfmRelFluxo::BitBtn29Click() {
  inteira_ = false;
  Gather(
      {&TbRelatorio, &TbSaldo}, [this](Gathering& andamento) { Monta(andamento); }, Half::Stays);
  inteira_ = true;
}

void TfmRelFluxo::Monta(Gathering& andamento) {
  Consulta consulta{andamento, {EdtDataDe.Date(), edtDataAte.Date()}, DiasEfetivos(Funcoes, Contabil)};
  Cria_Tabela();
  andamento.Stage("Saldos das contas");
  busca_Saldos();
  Grava_Receber(consulta);
  Grava_Pagar(consulta);
  if (CbVenCom.Checked()) {
    BuscaPedidoPendente(consulta);
    BuscaCompraPendente(consulta);
  }
  if (CbCheque.Checked()) Grava_Cheque(consulta);
  if (!Funcoes.ListaSQL(edtBanco.Text()).empty()) BuscaSaldoAbertoBancos();
  MostraGrafico();
  Ordena();
}

// From the balance that the report begins with.
void TfmRelFluxo::MostraGrafico() {
  Currency inicial = CbSaldo.Checked() ? EdtSaldo.Amount() : Currency();
  for (int64_t linha = 0; !CbSaldo.Checked() && linha < TbSaldo.DisplayCount(); ++linha) {
    const auto celula = [&](const char* campo) { return TbSaldo.Cell(linha, *TbSaldo.FindField(campo)); };
    if (celula("Sel").Text() == "S") inicial += Currency::FromDouble(celula("Valor").AsFloat());
  }
  GrafDia.Show(inicial);
}

void TfmRelFluxo::Cria_Tabela() {
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbSaldo, kSaldo);
  GrafDia.Clear();
  origens_.Limpa();
}

void TfmRelFluxo::Ordena() {
  static constexpr const char* kOrdens[] = {
      "Dtlanc;Operacao;Desc_Pessoa;Vlr_Pagar",
      "ClasseGer;Dtlanc;Vlr_Pagar;Desc_Pessoa",
      "Desc_Pessoa",
      "Numero",
  };
  TbRelatorio.SetIndexFieldNames(CbProgramacao.Checked() ? "Dtlanc;Operacao;Conta;Data;Numero"
                                                         : kOrdens[std::max(rgOrdem.ItemIndex(), 0)]);
}

// --- What the steps have in common.

void TfmRelFluxo::Percorre(Consulta& consulta, const char* passo, std::string_view sql,
                           std::string_view tabela,
                           const std::function<void(Linha&, std::span<Value>)>& linha,
                           std::string_view ordem) {
  consulta.andamento.Stage(passo);
  ForEachRow<kRelatorio>(ForCompanies(sql, tabela, CbEmp.Checked(), ordem),
                         [&](Linha& lida, std::span<Value> resto) {
                           linha(lida, resto);
                           consulta.andamento.Advance();
                         });
}

void TfmRelFluxo::Anexa(Linha& linha, Fonte fonte, Value chave, std::string_view empresa) {
  linha["Data_ini"] = EdtDataDe.Text();
  linha["data_fim"] = edtDataAte.Text();
  linha["Vlr_Deb"] = Currency();
  if (linha["Vlr_Cre"].IsNull()) linha["Vlr_Cre"] = Currency();
  if (CbSaldo.Checked()) {
    linha["Saldo"] = EdtSaldo.Amount();
  } else if (RgTipo.ItemIndex() == 0) {
    linha["Saldo"] = linha["Vlr_Cre"];
  }
  for (const auto campo : Linha::Names{"Desc_Pessoa", "Nome_Banco", "DescClasse", "Historico"})
    nomes_.Share(linha[campo]);
  const auto soma = [&](std::initializer_list<Linha::Name> campos) {
    Currency total;
    for (const auto campo : campos) total += linha[campo].AsCurrency();
    return total;
  };
  GrafDia.Add(linha["DtLanc"].AsDate(), soma({"Vlr_receb", "Vlr_ChequeRec", "Vlr_Venda"}),
              soma({"Vlr_pagar", "Vlr_ChequePag", "Vlr_Compra"}));
  TbRelatorio.AppendRow(linha.Values());
  origens_.Anota(fonte, std::move(chave), empresa);
}

// The values of the sources are zero where a row has none of its own.
void TfmRelFluxo::Zera(Linha& linha) {
  for (const auto campo : Linha::Names{"Vlr_receb", "Vlr_pagar", "Vlr_Compra", "Vlr_Venda", "Vlr_ChequeRec"})
    linha[campo] = Currency();
}

std::string TfmRelFluxo::FiltroPeriodo(const char* coluna, const Consulta& consulta) const {
  return WhereBetween(coluna, consulta.periodo.de.AddDays(-kDiasAntes), consulta.periodo.ate);
}

std::string TfmRelFluxo::FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const {
  return WhereIn(tabela + ".SITUACAO", EdtSit) + WhereIn(tabela + ".SITUACAO", desconsiderar, false);
}

std::string TfmRelFluxo::FiltroProgramacao() const {
  if (!CbProgramacao.Checked()) return "";
  if (EdtConta.Empty()) return " AND BORDERO.CONTA <> '' AND BORDERO.CONTA IS NOT NULL";
  return " AND BORDERO.CONTA = " + Funcoes.Aspas(EdtConta.Text());
}

// --- Balances.

void TfmRelFluxo::busca_Saldos() {
  const std::string sql =
      SaldosDasContas("CONTACOR.PENDENTE = 'N'", dtSaldo.Date(), Today(),
                      EdtConta.Empty() ? "" : " AND CADCONTA.CONTA = " + Funcoes.Aspas(EdtConta.Text()));
  const auto contas =
      LeSaldos(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1"));
  if (!std::ranges::all_of(contas, [](const SaldoConta& conta) { return conta.valor.FitsField(); }))
    ApontaForaDeMedida(User(), Tabela.IBDatabase(),
                       ForCompanies(ForaDeMedida(kContaCorrente), "CONTACOR", CbEmp.Checked()));
  for (const SaldoConta& conta : contas) {
    Value linha[] = {"S", conta.valor, conta.titular, conta.conta, Value(), Value()};
    TbSaldo.AppendRow(linha);
  }
}

void TfmRelFluxo::BuscaSaldoAbertoBancos() {
  const std::string sql =
      "SELECT " + Soma(EmAbertoReceber()) + " AS SALDO FROM {RECEBER} RECEBER WHERE STATUS IN ('N','')" +
      WhereIn("BANCO", edtBanco) + " AND DT_VENCTO < " + Funcoes.AspasData(EdtDataDe.Date()) +
      " AND SITUACAO <> 'P' AND " + EmAbertoReceber() + " > 0";
  const Currency vencidos = Total(Tabela.IBDatabase(), ForCompanies(sql, "RECEBER", CbEmp.Checked()));
  for (TbSaldo.First(); !TbSaldo.Eof(); TbSaldo.Next()) {
    TbSaldo.Edit();
    TbSaldo["ValReceb_Bancos"] = vencidos.ToDouble();
    TbSaldo.Post();
  }
  TbSaldo.First();
}

// --- Titles.

void TfmRelFluxo::Grava_Receber(Consulta& consulta) {
  const std::string sql =
      std::string(kReceber) + "RECEBER.FATURA AS DOCUMENTO, BORDERO.CONTA, BORDERO.DATA, '{}' AS EMPRESA" +
      kDeReceber + " LEFT JOIN {BORDERO} BORDERO ON BORDERO.NUMERO = RECEBER.BORDERO AND BORDERO.TIPO = 'R'" +
      " WHERE " + kReceberAberto + FiltroPeriodo("RECEBER.DT_VENCTO", consulta) +
      StatusDeTitulo("RECEBER", CbOrcReceber.Checked()) + FiltroProgramacao() +
      FiltroSituacao("RECEBER", EdtSitDesc);
  const bool flutua = CbContBanc.Checked();
  Percorre(consulta, "Títulos a receber", sql, "RECEBER", [&](Linha& linha, std::span<Value> v) {
    const Date vencimento = v[rVencimento].AsDate();
    const Date dia =
        flutua ? consulta.dias.Credito(vencimento, v[rSituacao].Text()) : consulta.dias.DiaUtil(vencimento);
    if (!consulta.periodo.Contem(dia)) return;
    Zera(linha);
    linha["DtLanc"] = dia;
    linha["Vlr_receb"] = TituloDe(v).EmAberto();
    linha["Operacao"] = "+";
    linha["Historico"] = "";
    Anexa(linha, Fonte::Receber, linha["Numero"], v[rEmpresa].Text());
  });
}

void TfmRelFluxo::Grava_Pagar(Consulta& consulta) {
  enum Resto : uint8_t { pNumAp, pValor, pJuros, pPago, pDevolvido, pDesconto, pVencimento, pEmpresa };
  const bool programacao = CbProgramacao.Checked();
  const std::string sql =
      std::string(
          "SELECT PAGTO.NUM_OS AS CLASSEGER, PAGTO.NUM_AP, PAGTO.DUPLI AS NUMERO, PAGTO.NRBANCO AS BANCO, "
          "CADBAN.NOME_BANCO, PAGTO.VALOR, PAGTO.JUROS, PAGTO.VAL_PAG, PAGTO.VAL_DEV, PAGTO.DESCONTO, "
          "PAGTO.CODCRE AS COD_PESSOA, FORNECED.NOME AS DESC_PESSOA, PAGTO.DT_VEN, "
          "HISTCP.DESCRICAO AS HISTORICO, PAGTO.OBS, SUBGRUPO.DESCRICAO AS DESCCLASSE, "
          "PAGTO.DOCTO AS DOCUMENTO, BORDERO.CONTA, BORDERO.DATA, '{}' AS EMPRESA FROM {PAGTO} PAGTO"
          " LEFT JOIN {BORDERO} BORDERO ON PAGTO.LOTE > '0' AND BORDERO.TIPO = 'P'"
          " AND BORDERO.NUMERO = CAST(PAGTO.LOTE AS INTEGER)"
          " LEFT JOIN {CADBAN} CADBAN ON PAGTO.BANCO = CADBAN.BANCO"
          " LEFT JOIN {ENTIDADE} FORNECED ON PAGTO.CODCRE = FORNECED.CODCLI"
          " LEFT JOIN {HISTCP} HISTCP ON PAGTO.HISTORICO = HISTCP.HISTORICO"
          " LEFT JOIN {SUBGRUPO} SUBGRUPO ON PAGTO.NUM_OS = SUBGRUPO.CODIGO"
          " WHERE ") +
      kPagarAberto + StatusDeTitulo("PAGTO", CbOrcPagar.Checked()) + FiltroProgramacao() +
      FiltroPeriodo(programacao ? "BORDERO.DATA" : "PAGTO.DT_VEN", consulta) +
      FiltroSituacao("PAGTO", EdtSitDescPag);
  Percorre(
      consulta, "Títulos a pagar", sql, "PAGTO",
      [&](Linha& linha, std::span<Value> v) {
        const Date dia = consulta.dias.DiaUtil((programacao ? linha["Data"] : v[pVencimento]).AsDate());
        if (!consulta.periodo.Contem(dia)) return;
        const Titulo titulo{v[pValor].AsCurrency(), v[pJuros].AsCurrency(), v[pDesconto].AsCurrency(),
                            v[pPago].AsCurrency(), v[pDevolvido].AsCurrency()};
        Zera(linha);
        linha["DtLanc"] = dia;
        linha["Vlr_pagar"] = titulo.EmAberto();
        linha["Operacao"] = "-";
        Anexa(linha, Fonte::Pagar, std::move(v[pNumAp]), v[pEmpresa].Text());
      },
      rgOrdem.ItemIndex() == 1 ? "ORDER BY 1 " : "");
}

// --- Cheques.

void TfmRelFluxo::Grava_Cheque(Consulta& consulta) {
  GravaChequeEmitido(consulta);
  GravaChequeRecebido(consulta);
}

void TfmRelFluxo::GravaChequeEmitido(Consulta& consulta) {
  enum Resto : uint8_t { cValor, cChave, cEmpresa };
  std::string sql =
      "SELECT CHEQUE_PRE.NUMERO, CHEQUE_PRE.BANCO, CADBAN.NOME_BANCO, CHEQUE_PRE.VENCIMENTO AS DATA, "
      "CHEQUE_PRE.CLIENTE AS COD_PESSOA, CLIENTE.NOME AS DESC_PESSOA, CHEQUE_PRE.OBS AS HISTORICO, "
      "CHEQUE_PRE.VALOR, CHEQUE_PRE.CONTA, CHEQUE_PRE.CHAVE, '{}' AS EMPRESA FROM {CHEQUE_PRE} CHEQUE_PRE"
      " LEFT JOIN {ENTIDADE} CLIENTE ON CHEQUE_PRE.CLIENTE = CLIENTE.CODCLI"
      " LEFT JOIN {CADBAN} CADBAN ON CHEQUE_PRE.BANCO = CADBAN.BANCO"
      " WHERE CHEQUE_PRE.STATUS = 'P' AND CHEQUE_PRE.TIPO = 'P'" +
      FiltroPeriodo("CHEQUE_PRE.VENCIMENTO", consulta);
  if (CbProgramacao.Checked() && !EdtConta.Empty())
    sql += " AND CHEQUE_PRE.CONTA = " + Funcoes.Aspas(EdtConta.Text());
  Percorre(consulta, "Cheques emitidos", sql, "CHEQUE_PRE", [&](Linha& linha, std::span<Value> v) {
    const Date dia = consulta.dias.DiaUtil(linha["Data"].AsDate());
    if (!consulta.periodo.Contem(dia)) return;
    Zera(linha);
    linha["Vlr_ChequeRec"] = Value();
    linha["DtLanc"] = dia;
    linha["Vlr_ChequePag"] = v[cValor].AsCurrency();
    linha["Operacao"] = "+";
    Anexa(linha, Fonte::Cheque, std::move(v[cChave]), v[cEmpresa].Text());
  });
}

// Titles that are held as cheques or, where the accounts are programmed, the pending cheques of the ledger.
void TfmRelFluxo::GravaChequeRecebido(Consulta& consulta) {
  const bool programacao = CbProgramacao.Checked();
  const std::string sql =
      programacao
          ? std::string(
                "SELECT CONTACOR.DOCTO AS NUMERO, CONTACOR.BANCO, CADBAN.NOME_BANCO, CONTACOR.VALOR, "
                "0 AS JUROS, 0 AS VALOR_PAGO, 0 AS VAL_DEV, 0 AS DESCONTO, '' AS COD_PESSOA, "
                "'' AS DESC_PESSOA, CONTACOR.DT_VENCTO, '' AS SITUACAO, CONTACOR.OBSERVACAO AS OBS, "
                "CONTACOR.GRUPO AS CLASSEGER, SUBGRUPO.DESCRICAO AS DESCCLASSE, CONTACOR.CONTA, "
                "CONTACOR.DT_CONT AS DATA, '{}' AS EMPRESA, CONTACOR.LANCAMENTO FROM {CONTACOR} CONTACOR"
                " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = CONTACOR.BANCO"
                " LEFT JOIN {SUBGRUPO} SUBGRUPO ON CONTACOR.GRUPO = SUBGRUPO.CODIGO"
                " WHERE CONTACOR.PENDENTE = 'S' AND CONTACOR.TIPO_DOC = 'CH'") +
                FiltroPeriodo("CONTACOR.DT_VENCTO", consulta)
          : std::string(kReceber) + "'{}' AS EMPRESA, RECEBER.NUMERO AS CHAVE" + kDeReceber + " WHERE " +
                kReceberAberto + FiltroPeriodo("RECEBER.DT_VENCTO", consulta) + " AND RECEBER.STATUS = 'CH'" +
                FiltroSituacao("RECEBER", EdtSitDesc);
  Percorre(consulta, "Cheques recebidos", sql, programacao ? "CONTACOR" : "RECEBER",
           [&](Linha& linha, std::span<Value> v) {
             const Date dia = consulta.dias.DiaUtil(v[rVencimento].AsDate());
             if (!consulta.periodo.Contem(dia)) return;
             Zera(linha);
             linha["DtLanc"] = dia;
             linha["Vlr_ChequeRec"] = TituloDe(v).EmAberto();
             linha["Lim_Credito"] = linha["Lim_Credito"].AsCurrency();
             linha["Operacao"] = "+";
             linha["Historico"] = "";
             Anexa(linha, programacao ? Fonte::Movimento : Fonte::Receber, std::move(v[rChave]),
                   v[rEmpresa].Text());
           });
}

// --- Orders and purchases that aren't invoiced yet.

void TfmRelFluxo::BuscaPedidoPendente(Consulta& consulta) {
  const std::string sql =
      "SELECT PEDIDO.NUMERO, PEDIDO.DT_FATURA, PEDIDO.CODCLI AS COD_PESSOA, PEDIDO.PGTO, "
      "SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) AS VALOR, PEDIDO.PER_DESC, CLIENTE.NOME AS DESC_PESSOA, "
      "CLIENTE.CREDITO AS LIM_CREDITO, '{}' AS EMPRESA FROM {PEDIDO} PEDIDO"
      " INNER JOIN {PED_ITEN} PED_ITEN ON PED_ITEN.NUMERO = PEDIDO.NUMERO"
      " INNER JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = PEDIDO.CODCLI"
      " WHERE PEDIDO.DT_FATURA <= " +
      Funcoes.AspasData(consulta.periodo.ate) +
      " GROUP BY PEDIDO.NUMERO, PEDIDO.DT_FATURA, PEDIDO.CODCLI, PEDIDO.PGTO, PEDIDO.PER_DESC, CLIENTE.NOME, "
      "CLIENTE.CREDITO HAVING SUM(PED_ITEN.QTDE) > 0 ";
  Percorre(consulta, "Pedidos pendentes", sql, "PEDIDO", [&](Linha& linha, std::span<Value> v) {
    enum Resto : uint8_t { oData, oCondicao, oValor, oDesconto, oEmpresa };
    Gera_Duplicatas(consulta, {Fonte::Pedido, linha, v[oCondicao],
                               ValorPedido(v[oValor].AsFloat(), v[oDesconto].AsFloat()), v[oData].AsDate(),
                               std::string(v[oEmpresa].Text())});
  });
}

void TfmRelFluxo::BuscaCompraPendente(Consulta& consulta) {
  const std::string sql =
      "SELECT COMPRA.NUMERO, COMPRA.DT_ENTREGA, COMPRA.CODFOR AS COD_PESSOA, COMPRA.CONDICAO, "
      "SUM(CO_ITEN.PRECO*(CO_ITEN.QTDE - CO_ITEN.QTDE_B)) AS VALOR, FORNEC.NOME AS DESC_PESSOA, "
      "FORNEC.CREDITO AS LIM_CREDITO, '{}' AS EMPRESA FROM {COMPRA} COMPRA"
      " INNER JOIN {CO_ITEN} CO_ITEN ON CO_ITEN.NUMERO = COMPRA.NUMERO"
      " INNER JOIN {ENTIDADE} FORNEC ON COMPRA.CODFOR = FORNEC.CODCLI"
      " WHERE COMPRA.DT_ENTREGA <= " +
      Funcoes.AspasData(consulta.periodo.ate) +
      " AND CO_ITEN.SITUACAO = 'A' GROUP BY COMPRA.NUMERO, COMPRA.DT_ENTREGA, COMPRA.CODFOR, "
      "COMPRA.CONDICAO, FORNEC.NOME, FORNEC.CREDITO ";
  Percorre(consulta, "Ordens de compra", sql, "COMPRA", [&](Linha& linha, std::span<Value> v) {
    enum Resto : uint8_t { oData, oCondicao, oValor, oEmpresa };
    const Pendente compra{Fonte::Compra,     linha,
                          v[oCondicao],      Currency::FromDouble(v[oValor].AsFloat()),
                          v[oData].AsDate(), std::string(v[oEmpresa].Text())};
    try {
      Gera_Duplicatas(consulta, compra);
    } catch (const ConversionError&) {
      // What a purchase's condition hides doesn't hide the others.
    } catch (const RangeError&) {
    }
  });
}

void TfmRelFluxo::Gera_Duplicatas(Consulta& consulta, const Pendente& pendente) {
  const bool venda = pendente.fonte == Fonte::Pedido;
  const Value& numero = pendente.linha["Numero"];
  const auto anexa = [&](const Parcela& parcela) {
    if (!consulta.periodo.Contem(parcela.dia)) return;
    Linha linha = pendente.linha;
    Zera(linha);
    linha["Vlr_ChequePag"] = Currency();
    linha[venda ? Linha::Name("Vlr_Venda") : Linha::Name("Vlr_Compra")] = parcela.valor;
    // A purchase is paid on a working day, even one behind the period.
    linha["DtLanc"] = venda ? parcela.dia : consulta.dias.DiaUtil(parcela.dia);
    linha["Numero"] = NumeroParcela(numero.Text(), parcela.ordem);
    linha["Historico"] = (venda ? "PEDIDO PENDENTE Nº " : "ORDEM DE COMPRA Nº ") + std::string(numero.Text());
    linha["Operacao"] = "+";
    linha["Vlr_Cre"] = linha["Lim_Credito"] = linha["Lim_Credito"].AsCurrency();
    Anexa(linha, pendente.fonte, numero, pendente.empresa);
  };
  ParaCadaParcela(pendente.valor, pendente.base, pendente.condicao.Text(), CBCond.Checked(), anexa);
}

}  // namespace orv
