// What the statement reads, and how each source becomes rows.
#include <algorithm>
#include <unordered_map>

#include "cashflow/rel_fluxo.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr ReportField kRelatorio[] = {
    {"DtLanc", FieldType::Date},
    {"Numero", FieldType::String, 10},
    {"Documento", FieldType::String, 15},
    {"Vlr_receb", FieldType::Currency},
    {"Vlr_pagar", FieldType::Currency},
    {"Vlr_Compra", FieldType::Currency},
    {"Vlr_Venda", FieldType::Currency},
    {"Vlr_ChequeRec", FieldType::Currency},
    {"Vlr_ChequePag", FieldType::Currency},
    {"Cod_Pessoa", FieldType::String, 15},
    {"Desc_Pessoa", FieldType::String, 40},
    {"Operacao", FieldType::String, 2},
    {"Historico", FieldType::String, 40},
    {"Data_ini", FieldType::String, 12},
    {"data_fim", FieldType::String, 12},
    {"Vlr_Deb", FieldType::Currency},
    {"Vlr_Cre", FieldType::Currency},
    {"Saldo", FieldType::Currency},
    {"Lim_Credito", FieldType::Currency},
    {"Banco", FieldType::String, 5},
    {"Nome_Banco", FieldType::String, 30},
    {"Grupo_Dias", FieldType::Integer},
    {"SaldoCorr", FieldType::Currency},
    {"ClasseGer", FieldType::String, 6},
    {"DescClasse", FieldType::String, 50},
    {"Obs", FieldType::String, 250},
    {"Conta", FieldType::String, 13},
    {"Data", FieldType::Date},
};

constexpr ReportField kSaldo[] = {
    {"Sel", FieldType::String, 1},      {"Valor", FieldType::Float},
    {"Empresa", FieldType::String, 30}, {"Conta", FieldType::String, 15},
    {"Operacao", FieldType::String, 1}, {"ValReceb_Bancos", FieldType::Float},
};

// The columns that titles and received cheques are read by.
enum Receber : uint8_t {
  rNumero,
  rBanco,
  rNomeBanco,
  rValor,
  rJuros,
  rPago,
  rDevolvido,
  rDesconto,
  rCodCli,
  rNome,
  rCredito,
  rVencimento,
  rSituacao,
  rFatura,
  rObs,
  rClasse,
  rDescClasse,
  rConta,
  rData,
  rEmpresa,
  rChave
};

constexpr const char* kReceber =
    "SELECT RECEBER.NUMERO, RECEBER.BANCO, CADBAN.NOME_BANCO, RECEBER.VALOR2, RECEBER.JUROS, "
    "RECEBER.VALOR_PAGO, RECEBER.VAL_DEV, RECEBER.DESCONTO, RECEBER.CODCLI, CLIENTE.NOME, CLIENTE.CREDITO, "
    "RECEBER.DT_VENCTO, RECEBER.SITUACAO, RECEBER.FATURA, RECEBER.OBS, RECEBER.CLASSE, SUBGRUPO.DESCRICAO, ";
constexpr const char* kDeReceber =
    " FROM {RECEBER} RECEBER"
    " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = RECEBER.BANCO"
    " LEFT JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = RECEBER.CODCLI"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON RECEBER.CLASSE = SUBGRUPO.CODIGO";
constexpr const char* kReceberAberto =
    " WHERE ((RECEBER.VALOR2 + RECEBER.JUROS) > (RECEBER.VALOR_PAGO + RECEBER.DESCONTO + RECEBER.VAL_DEV))";

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
  Consulta consulta{andamento, EdtDataDe.Date(), edtDataAte.Date(), DiasEfetivos(Funcoes, Contabil)};
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
  Ordena();
}

void TfmRelFluxo::Cria_Tabela() {
  LayDown(TbRelatorio, kRelatorio);
  LayDown(TbSaldo, kSaldo);
  origens_.clear();
  empresas_.clear();
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
                           std::string_view tabela, const std::function<void(std::span<Value>)>& linha,
                           std::string_view ordem) {
  consulta.andamento.Stage(passo);
  ForEach(ForCompanies(sql, tabela, CbEmp.Checked(), ordem), [&](std::span<Value> valores) {
    linha(valores);
    consulta.andamento.Advance();
  });
}

void TfmRelFluxo::Anexa(Linha& linha, Origem origem) {
  linha[Data_ini] = EdtDataDe.Text();
  linha[data_fim] = edtDataAte.Text();
  linha[Vlr_Deb] = Currency();
  if (linha[Vlr_Cre].IsNull()) linha[Vlr_Cre] = Currency();
  if (CbSaldo.Checked()) {
    linha[Saldo] = EdtSaldo.Amount();
  } else if (RgTipo.ItemIndex() == 0) {
    linha[Saldo] = linha[Vlr_Cre];
  }
  for (const Campo campo : {Desc_Pessoa, Nome_Banco, DescClasse, Historico}) nomes_.Share(linha[campo]);
  TbRelatorio.AppendRow(linha);
  origens_.push_back(std::move(origem));
}

uint16_t TfmRelFluxo::Empresa(std::string_view sufixo) {
  const auto found = std::find(empresas_.begin(), empresas_.end(), sufixo);
  const auto empresa = static_cast<uint16_t>(found - empresas_.begin());
  if (found == empresas_.end()) empresas_.emplace_back(sufixo);
  return empresa;
}

std::string TfmRelFluxo::FiltroPeriodo(const char* coluna, const Consulta& consulta) const {
  return WhereBetween(coluna, consulta.de.AddDays(-kDiasAntes), consulta.ate);
}

std::string TfmRelFluxo::FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const {
  return WhereIn(tabela + ".SITUACAO", EdtSit) + WhereIn(tabela + ".SITUACAO", desconsiderar, false);
}

std::string TfmRelFluxo::FiltroStatus(const std::string& tabela, const CheckBox& orcamentos) const {
  return " AND " + tabela + (orcamentos.Checked() ? ".STATUS IN ('N','O')" : ".STATUS = 'N'");
}

std::string TfmRelFluxo::FiltroProgramacao() const {
  if (!CbProgramacao.Checked()) return "";
  if (EdtConta.Empty()) return " AND BORDERO.CONTA <> '' AND BORDERO.CONTA IS NOT NULL";
  return " AND BORDERO.CONTA = " + Funcoes.Aspas(EdtConta.Text());
}

// --- Balances.

void TfmRelFluxo::busca_Saldos() {
  // A sum for each account reads its movements without sorting them.
  std::string sql =
      "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, (SELECT " +
      Soma("COALESCE(CASE CONTACOR.OPERACAO WHEN '+' THEN CONTACOR.VALOR ELSE -CONTACOR.VALOR END, 0)") +
      " FROM {CONTACOR} CONTACOR WHERE CONTACOR.CONTA = CADCONTA.CONTA AND CONTACOR.PENDENTE = 'N' AND "
      "CONTACOR.DT_CONT <= " +
      Funcoes.AspasData(dtSaldo.Date()) +
      ") AS VALOR FROM {CADCONTA} CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'";
  if (!EdtConta.Empty()) sql += " AND CADCONTA.CONTA = " + Funcoes.Aspas(EdtConta.Text());

  struct Conta {
    Value conta, empresa;
    Currency valor;
  };
  std::vector<Conta> contas;
  std::unordered_map<std::string, std::size_t> onde;
  for (auto& row : Tabela.IBDatabase().Rows(ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1"))) {
    if (row[2].IsNull()) continue;
    const auto [found, added] = onde.try_emplace(row[0].AsString(), contas.size());
    if (added) contas.push_back({row[0], row[1], Currency()});
    contas[found->second].valor += SomaDe(row[2]);
  }
  if (!std::ranges::all_of(contas, [](const Conta& conta) { return conta.valor.FitsField(); }))
    ApontaForaDeMedida(User(), Tabela.IBDatabase(),
                       ForCompanies(ForaDeMedida(kContaCorrente), "CONTACOR", CbEmp.Checked()));
  for (const Conta& conta : contas) {
    Value linha[] = {"S", conta.valor, conta.empresa, conta.conta, Value(), Value()};
    TbSaldo.AppendRow(linha);
  }
}

void TfmRelFluxo::BuscaSaldoAbertoBancos() {
  const std::string sql = "SELECT " + Soma("VALOR2+JUROS-VALOR_PAGO-DESCONTO-VAL_DEV") +
                          " AS SALDO FROM {RECEBER} RECEBER WHERE STATUS IN ('N','')" +
                          WhereIn("BANCO", edtBanco) + " AND DT_VENCTO < " +
                          Funcoes.AspasData(EdtDataDe.Date()) +
                          " AND SITUACAO <> 'P' AND (VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO) > 0";
  Currency vencidos;
  for (const auto& row : Tabela.IBDatabase().Rows(ForCompanies(sql, "RECEBER", CbEmp.Checked())))
    vencidos += SomaDe(row[0]);
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
      std::string(kReceber) + "BORDERO.CONTA, BORDERO.DATA, '{}' AS EMPRESA" + kDeReceber +
      " LEFT JOIN {BORDERO} BORDERO ON BORDERO.NUMERO = RECEBER.BORDERO AND BORDERO.TIPO = 'R'" +
      kReceberAberto + FiltroPeriodo("RECEBER.DT_VENCTO", consulta) + FiltroStatus("RECEBER", CbOrcReceber) +
      FiltroProgramacao() + FiltroSituacao("RECEBER", EdtSitDesc);
  const bool flutua = CbContBanc.Checked();
  Percorre(consulta, "Títulos a receber", sql, "RECEBER", [&](std::span<Value> v) {
    const Date vencimento = v[rVencimento].AsDate();
    const Date dia =
        flutua ? consulta.dias.Credito(vencimento, v[rSituacao].Text()) : consulta.dias.DiaUtil(vencimento);
    if (!consulta.Dentro(dia)) return;
    Linha linha;
    Origem origem{v[rNumero], Empresa(v[rEmpresa].Text()), Fonte::Receber};
    linha[DtLanc] = dia;
    linha[Vlr_receb] = TituloDe(v).EmAberto();
    for (const Campo campo : {Vlr_pagar, Vlr_Compra, Vlr_Venda, Vlr_ChequeRec}) linha[campo] = Currency();
    linha[Operacao] = "+";
    linha[Historico] = "";
    linha[Numero] = std::move(v[rNumero]);
    linha[Documento] = std::move(v[rFatura]);
    linha[Lim_Credito] = std::move(v[rCredito]);
    linha[Cod_Pessoa] = std::move(v[rCodCli]);
    linha[Desc_Pessoa] = std::move(v[rNome]);
    linha[Banco] = std::move(v[rBanco]);
    linha[Nome_Banco] = std::move(v[rNomeBanco]);
    linha[Obs] = std::move(v[rObs]);
    linha[ClasseGer] = std::move(v[rClasse]);
    linha[DescClasse] = std::move(v[rDescClasse]);
    linha[Conta] = std::move(v[rConta]);
    linha[Data] = std::move(v[rData]);
    Anexa(linha, std::move(origem));
  });
}

void TfmRelFluxo::Grava_Pagar(Consulta& consulta) {
  enum Coluna : uint8_t {
    pClasse,
    pNumAp,
    pDupli,
    pNrBanco,
    pNomeBanco,
    pValor,
    pJuros,
    pPago,
    pDevolvido,
    pDesconto,
    pCodCre,
    pNome,
    pVencimento,
    pHistorico,
    pObs,
    pDescClasse,
    pDocto,
    pConta,
    pData,
    pEmpresa
  };
  const bool programacao = CbProgramacao.Checked();
  const std::string sql =
      std::string(
          "SELECT PAGTO.NUM_OS, PAGTO.NUM_AP, PAGTO.DUPLI, PAGTO.NRBANCO, CADBAN.NOME_BANCO, PAGTO.VALOR, "
          "PAGTO.JUROS, PAGTO.VAL_PAG, PAGTO.VAL_DEV, PAGTO.DESCONTO, PAGTO.CODCRE, FORNECED.NOME, "
          "PAGTO.DT_VEN, HISTCP.DESCRICAO, PAGTO.OBS, SUBGRUPO.DESCRICAO AS DESC_CLASSE, PAGTO.DOCTO, "
          "BORDERO.CONTA, BORDERO.DATA, '{}' AS EMPRESA FROM {PAGTO} PAGTO"
          " LEFT JOIN {BORDERO} BORDERO ON PAGTO.LOTE > '0' AND BORDERO.TIPO = 'P'"
          " AND BORDERO.NUMERO = CAST(PAGTO.LOTE AS INTEGER)"
          " LEFT JOIN {CADBAN} CADBAN ON PAGTO.BANCO = CADBAN.BANCO"
          " LEFT JOIN {ENTIDADE} FORNECED ON PAGTO.CODCRE = FORNECED.CODCLI"
          " LEFT JOIN {HISTCP} HISTCP ON PAGTO.HISTORICO = HISTCP.HISTORICO"
          " LEFT JOIN {SUBGRUPO} SUBGRUPO ON PAGTO.NUM_OS = SUBGRUPO.CODIGO"
          // What was given back doesn't close a payable here, though it lowers what is open.
          " WHERE ((PAGTO.VALOR + PAGTO.JUROS) > (PAGTO.VAL_PAG + PAGTO.DESCONTO))") +
      FiltroStatus("PAGTO", CbOrcPagar) + FiltroProgramacao() +
      FiltroPeriodo(programacao ? "BORDERO.DATA" : "PAGTO.DT_VEN", consulta) +
      FiltroSituacao("PAGTO", EdtSitDescPag);
  Percorre(
      consulta, "Títulos a pagar", sql, "PAGTO",
      [&](std::span<Value> v) {
        const Date dia = consulta.dias.DiaUtil(v[programacao ? pData : pVencimento].AsDate());
        if (!consulta.Dentro(dia)) return;
        const Titulo titulo{v[pValor].AsCurrency(), v[pJuros].AsCurrency(), v[pDesconto].AsCurrency(),
                            v[pPago].AsCurrency(), v[pDevolvido].AsCurrency()};
        Linha linha;
        linha[DtLanc] = dia;
        linha[Vlr_pagar] = titulo.EmAberto();
        for (const Campo campo : {Vlr_receb, Vlr_Compra, Vlr_Venda, Vlr_ChequeRec}) linha[campo] = Currency();
        linha[Operacao] = "-";
        linha[Numero] = std::move(v[pDupli]);
        linha[Documento] = std::move(v[pDocto]);
        linha[Historico] = std::move(v[pHistorico]);
        linha[Cod_Pessoa] = std::move(v[pCodCre]);
        linha[Desc_Pessoa] = std::move(v[pNome]);
        linha[Banco] = std::move(v[pNrBanco]);
        linha[Nome_Banco] = std::move(v[pNomeBanco]);
        linha[Obs] = std::move(v[pObs]);
        linha[ClasseGer] = std::move(v[pClasse]);
        linha[DescClasse] = std::move(v[pDescClasse]);
        linha[Conta] = std::move(v[pConta]);
        linha[Data] = std::move(v[pData]);
        Anexa(linha, {std::move(v[pNumAp]), Empresa(v[pEmpresa].Text()), Fonte::Pagar});
      },
      rgOrdem.ItemIndex() == 1 ? "ORDER BY 1 " : "");
}

// --- Cheques.

void TfmRelFluxo::Grava_Cheque(Consulta& consulta) {
  GravaChequeEmitido(consulta);
  GravaChequeRecebido(consulta);
}

void TfmRelFluxo::GravaChequeEmitido(Consulta& consulta) {
  enum Coluna : uint8_t {
    cNumero,
    cBanco,
    cNomeBanco,
    cVencimento,
    cCliente,
    cNome,
    cObs,
    cValor,
    cConta,
    cChave,
    cEmpresa
  };
  std::string sql =
      "SELECT CHEQUE_PRE.NUMERO, CHEQUE_PRE.BANCO, CADBAN.NOME_BANCO, CHEQUE_PRE.VENCIMENTO, "
      "CHEQUE_PRE.CLIENTE, CLIENTE.NOME, CHEQUE_PRE.OBS, CHEQUE_PRE.VALOR, CHEQUE_PRE.CONTA, "
      "CHEQUE_PRE.CHAVE, '{}' AS EMPRESA FROM {CHEQUE_PRE} CHEQUE_PRE"
      " LEFT JOIN {ENTIDADE} CLIENTE ON CHEQUE_PRE.CLIENTE = CLIENTE.CODCLI"
      " LEFT JOIN {CADBAN} CADBAN ON CHEQUE_PRE.BANCO = CADBAN.BANCO"
      " WHERE CHEQUE_PRE.STATUS = 'P' AND CHEQUE_PRE.TIPO = 'P'" +
      FiltroPeriodo("CHEQUE_PRE.VENCIMENTO", consulta);
  if (CbProgramacao.Checked() && !EdtConta.Empty())
    sql += " AND CHEQUE_PRE.CONTA = " + Funcoes.Aspas(EdtConta.Text());
  Percorre(consulta, "Cheques emitidos", sql, "CHEQUE_PRE", [&](std::span<Value> v) {
    const Date dia = consulta.dias.DiaUtil(v[cVencimento].AsDate());
    if (!consulta.Dentro(dia)) return;
    Linha linha;
    linha[DtLanc] = dia;
    linha[Vlr_ChequePag] = v[cValor].AsCurrency();
    for (const Campo campo : {Vlr_receb, Vlr_pagar, Vlr_Compra, Vlr_Venda}) linha[campo] = Currency();
    linha[Operacao] = "+";
    linha[Numero] = std::move(v[cNumero]);
    linha[Historico] = std::move(v[cObs]);
    linha[Cod_Pessoa] = std::move(v[cCliente]);
    linha[Desc_Pessoa] = std::move(v[cNome]);
    linha[Banco] = std::move(v[cBanco]);
    linha[Nome_Banco] = std::move(v[cNomeBanco]);
    linha[Conta] = std::move(v[cConta]);
    linha[Data] = std::move(v[cVencimento]);
    Anexa(linha, {std::move(v[cChave]), Empresa(v[cEmpresa].Text()), Fonte::Cheque});
  });
}

// Titles that are held as cheques or, where the accounts are programmed, the pending cheques of the ledger.
void TfmRelFluxo::GravaChequeRecebido(Consulta& consulta) {
  const bool programacao = CbProgramacao.Checked();
  const std::string sql =
      programacao
          ? std::string(
                "SELECT CONTACOR.DOCTO AS NUMERO, CONTACOR.BANCO, CADBAN.NOME_BANCO, "
                "CONTACOR.VALOR AS VALOR2, 0 AS JUROS, 0 AS VALOR_PAGO, 0 AS VAL_DEV, 0 AS DESCONTO, "
                "'' AS CODCLI, '' AS NOME, 0 AS CREDITO, CONTACOR.DT_VENCTO, '' AS SITUACAO, '' AS FATURA, "
                "CONTACOR.OBSERVACAO AS OBS, CONTACOR.GRUPO AS CLASSE, SUBGRUPO.DESCRICAO, CONTACOR.CONTA, "
                "CONTACOR.DT_CONT, '{}' AS EMPRESA, CONTACOR.LANCAMENTO FROM {CONTACOR} CONTACOR"
                " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = CONTACOR.BANCO"
                " LEFT JOIN {SUBGRUPO} SUBGRUPO ON CONTACOR.GRUPO = SUBGRUPO.CODIGO"
                " WHERE CONTACOR.PENDENTE = 'S' AND CONTACOR.TIPO_DOC = 'CH'") +
                FiltroPeriodo("CONTACOR.DT_VENCTO", consulta)
          : std::string(kReceber) +
                "'' AS CONTA, CAST(NULL AS DATE) AS DATA, '{}' AS EMPRESA, RECEBER.NUMERO AS CHAVE" +
                kDeReceber + kReceberAberto + FiltroPeriodo("RECEBER.DT_VENCTO", consulta) +
                " AND RECEBER.STATUS = 'CH'" + FiltroSituacao("RECEBER", EdtSitDesc);
  Percorre(consulta, "Cheques recebidos", sql, programacao ? "CONTACOR" : "RECEBER", [&](std::span<Value> v) {
    const Date dia = consulta.dias.DiaUtil(v[rVencimento].AsDate());
    if (!consulta.Dentro(dia)) return;
    Linha linha;
    linha[DtLanc] = dia;
    linha[Vlr_ChequeRec] = TituloDe(v).EmAberto();
    for (const Campo campo : {Vlr_receb, Vlr_pagar, Vlr_Venda, Vlr_Compra}) linha[campo] = Currency();
    linha[Operacao] = "+";
    linha[Historico] = "";
    linha[Numero] = std::move(v[rNumero]);
    linha[Lim_Credito] = v[rCredito].AsCurrency();
    linha[Cod_Pessoa] = std::move(v[rCodCli]);
    linha[Desc_Pessoa] = std::move(v[rNome]);
    linha[Banco] = std::move(v[rBanco]);
    linha[Nome_Banco] = std::move(v[rNomeBanco]);
    linha[Obs] = std::move(v[rObs]);
    linha[ClasseGer] = std::move(v[rClasse]);
    linha[DescClasse] = std::move(v[rDescClasse]);
    if (programacao) {
      linha[Conta] = std::move(v[rConta]);
      linha[Data] = std::move(v[rData]);
    }
    Anexa(linha, {std::move(v[rChave]), Empresa(v[rEmpresa].Text()),
                  programacao ? Fonte::Movimento : Fonte::Receber});
  });
}

// --- Orders and purchases that aren't invoiced yet.

void TfmRelFluxo::BuscaPedidoPendente(Consulta& consulta) {
  const std::string sql =
      "SELECT PEDIDO.NUMERO, PEDIDO.DT_FATURA, PEDIDO.CODCLI, PEDIDO.PGTO, "
      "SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) AS VALOR, PEDIDO.PER_DESC, CLIENTE.NOME, CLIENTE.CREDITO, "
      "'{}' AS EMPRESA FROM {PEDIDO} PEDIDO"
      " INNER JOIN {PED_ITEN} PED_ITEN ON PED_ITEN.NUMERO = PEDIDO.NUMERO"
      " INNER JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = PEDIDO.CODCLI"
      " WHERE PEDIDO.DT_FATURA <= " +
      Funcoes.AspasData(consulta.ate) +
      " GROUP BY PEDIDO.NUMERO, PEDIDO.DT_FATURA, PEDIDO.CODCLI, PEDIDO.PGTO, PEDIDO.PER_DESC, CLIENTE.NOME, "
      "CLIENTE.CREDITO HAVING SUM(PED_ITEN.QTDE) > 0 ";
  Percorre(consulta, "Pedidos pendentes", sql, "PEDIDO", [&](std::span<Value> v) {
    Gera_Duplicatas(consulta,
                    {Fonte::Pedido, v[0], v[2], v[6], v[3], v[7], ValorPedido(v[4].AsFloat(), v[5].AsFloat()),
                     v[1].AsDate(), Empresa(v[8].Text())});
  });
}

void TfmRelFluxo::BuscaCompraPendente(Consulta& consulta) {
  const std::string sql =
      "SELECT COMPRA.NUMERO, COMPRA.DT_ENTREGA, COMPRA.CODFOR, COMPRA.CONDICAO, "
      "SUM(CO_ITEN.PRECO*(CO_ITEN.QTDE - CO_ITEN.QTDE_B)) AS VALOR, FORNEC.NOME, FORNEC.CREDITO, "
      "'{}' AS EMPRESA FROM {COMPRA} COMPRA"
      " INNER JOIN {CO_ITEN} CO_ITEN ON CO_ITEN.NUMERO = COMPRA.NUMERO"
      " INNER JOIN {ENTIDADE} FORNEC ON COMPRA.CODFOR = FORNEC.CODCLI"
      " WHERE COMPRA.DT_ENTREGA <= " +
      Funcoes.AspasData(consulta.ate) +
      " AND CO_ITEN.SITUACAO = 'A' GROUP BY COMPRA.NUMERO, COMPRA.DT_ENTREGA, COMPRA.CODFOR, "
      "COMPRA.CONDICAO, FORNEC.NOME, FORNEC.CREDITO ";
  Percorre(consulta, "Ordens de compra", sql, "COMPRA", [&](std::span<Value> v) {
    const Pendente compra{Fonte::Compra,
                          v[0],
                          v[2],
                          v[5],
                          v[3],
                          v[6],
                          Currency::FromDouble(v[4].AsFloat()),
                          v[1].AsDate(),
                          Empresa(v[7].Text())};
    try {
      Gera_Duplicatas(consulta, compra);
    } catch (const ConversionError&) {
      // What a purchase's condition hides doesn't hide the others.
    } catch (const RangeError&) {
    }
  });
}

void TfmRelFluxo::Gera_Duplicatas(Consulta& consulta, const Pendente& pendente) {
  const bool venda = pendente.fonte == Fonte::Pedido, partes = CBCond.Checked();
  const CondicaoPagamento condicao(pendente.condicao.Text());
  const int parcelas = partes ? condicao.Parcelas() : 1;
  for (int i = 1; i <= parcelas; ++i) {
    const Date dia = pendente.base.AddDays(partes ? condicao.Dias(i) : 0);
    const Currency valor = ValorParcela(pendente.valor, parcelas, i);
    if (!consulta.Dentro(dia)) continue;
    Linha linha;
    for (const Campo campo : {Vlr_receb, Vlr_pagar, Vlr_Compra, Vlr_Venda, Vlr_ChequeRec, Vlr_ChequePag})
      linha[campo] = Currency();
    linha[venda ? Vlr_Venda : Vlr_Compra] = valor;
    // A purchase is paid on a working day, even one behind the period.
    linha[DtLanc] = venda ? dia : consulta.dias.DiaUtil(dia);
    linha[Numero] = NumeroParcela(pendente.numero.Text(), i);
    linha[Historico] =
        (venda ? "PEDIDO PENDENTE Nº " : "ORDEM DE COMPRA Nº ") + std::string(pendente.numero.Text());
    linha[Operacao] = "+";
    linha[Cod_Pessoa] = pendente.pessoa;
    linha[Desc_Pessoa] = pendente.nome;
    linha[Vlr_Cre] = linha[Lim_Credito] = pendente.limite.AsCurrency();
    Anexa(linha, {pendente.numero, pendente.empresa, pendente.fonte});
  }
}

}  // namespace orv
