// What the analysis gathers of titles, cheques and the ledger.
#include "cashflow/rel_analise_fluxo.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kAtraso = "01";

// A receivable in the fields of a detail row; behind them its due date, what is open of it, its key and the
// company.
enum Titulo : uint8_t { tVencimento, tAberto, tChave, tEmpresa };

std::string SelectReceber(const char* documento, const char* representante) {
  return "SELECT RECEBER.STATUS AS TIPO, RECEBER.NUMERO, " + std::string(documento) +
         " AS DOCTO, RECEBER.DT_EMISSAO AS EMISSAO, RECEBER.CODCLI AS CLIENTE, CLIENTE.NOME, "
         "RECEBER.SITUACAO AS CODSIT, TABSIT.DESCRICAO AS SITUACAO, RECEBER.CLASSE, RECEBER.OBS AS "
         "OBSERVACAO, "
         "RECEBER.BANCO, CADBAN.NOME_BANCO, " +
         representante + "RECEBER.DT_VENCTO, " + EmAbertoReceber() +
         " AS ABERTO, RECEBER.NUMERO AS CHAVE, '{}' AS EMPRESA FROM {RECEBER} RECEBER"
         " LEFT JOIN {ENTIDADE} CLIENTE ON CLIENTE.CODCLI = RECEBER.CODCLI"
         " LEFT JOIN {TABSIT} TABSIT ON TABSIT.CODIGO = RECEBER.SITUACAO"
         " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = RECEBER.BANCO";
}
constexpr const char* kRepresentante = "REPRESEN.NOME AS NOME_REP, ";
constexpr const char* kCodigoRepresentante = "REPRESEN.CODREP AS NOME_REP, ";
constexpr const char* kDeRepresentante = " LEFT JOIN {REPRESEN} REPRESEN ON REPRESEN.CODREP = RECEBER.CODREP";

std::string SelectPagar(const char* banco) {
  return "SELECT PAGTO.STATUS AS TIPO, PAGTO.DUPLI AS DOCTO, PAGTO.DT_EMI AS EMISSAO, "
         "PAGTO.CODCRE AS CLIENTE, FORNECED.NOME, PAGTO.SITUACAO AS CODSIT, TABSIT.DESCRICAO AS SITUACAO, "
         "PAGTO.NUM_OS AS CLASSE, PAGTO.NUM_AP AS NUMERO, " +
         std::string(banco) + "PAGTO.DT_VEN, " + EmAbertoPagar() +
         " AS ABERTO, PAGTO.NUM_AP AS CHAVE, '{}' AS EMPRESA FROM {PAGTO} PAGTO"
         " LEFT OUTER JOIN {ENTIDADE} FORNECED ON FORNECED.CODCLI = PAGTO.CODCRE"
         " LEFT OUTER JOIN {TABSIT} TABSIT ON TABSIT.CODIGO = PAGTO.SITUACAO";
}

}  // namespace

void TfmRelAnaliseFluxo::BitBtn29Click() {
  LbConsulta.Mostra("A última consulta não terminou: faltam lançamentos.");
  // What stays of a gathering that doesn't end has no sums, and none of an earlier one stand beside it.
  LbMenor.SetCaption("");
  TbMenor.EmptyDataSet();
  TbClasseData.EmptyDataSet();
  ZeraTotais();
  Gather(
      {&TbRelatorio, &TbDetalha, &TbSaldo, &TbClasseData}, [this](Gathering& andamento) { Monta(andamento); },
      Half::Stays);
  PageControl1.SetActivePage(TabSheet2);
}

void TfmRelAnaliseFluxo::Monta(Gathering& andamento) {
  Consulta consulta{andamento, {EdtDataDe.Date(), edtDataAte.Date()}, DiasEfetivos(Funcoes, Contabil)};
  avisos_.clear();
  ocultos_.clear();
  fora_da_classe_.clear();
  TbDetalha.SetFiltered(false);
  LayDown(TbDetalha, kDetalha);
  LayDown(TbRelatorio, kRelatorio);
  origens_.Limpa();
  dias_.clear();
  por_conta_.clear();
  andamento.Stage("Saldos das contas");
  Busca_Saldos();
  consulta.contas = ContasMarcadas();
  if (CbPagtoAtraso.Checked()) BuscaAtraso(consulta);
  if (CbRecAtraso.Checked()) BuscaRecAtraso(consulta);
  if (CbChePag.Checked()) GravaChequePagar(consulta);
  if (CbCheRec.Checked()) GravaChequeReceber(consulta);
  if (CbPrevPag.Checked()) BuscaPrevisaoPagamentos(consulta);
  if (CbVendas.Checked()) BuscaPedidoPendente(consulta);
  if (CbCompras.Checked()) BuscaCompraPendente(consulta);
  if (CbDebPend.Checked() || CbCredPend.Checked()) PendentesContaCorrente(consulta);
  Grava_Receber(consulta);
  Grava_Pagar(consulta);
  TbDetalha.SetIndexFieldNames("Vencto");
  TbRelatorio.SetIndexFieldNames("CodPer");
  Gera_Analise(andamento);
  if (CbClasse.Checked()) GeraAnaliseClasseMes(andamento);
  if (CbTodosDias.Checked()) AdicionaDiasSemMov();
  CalculaSaldo();
  MostraOcultos();
  LbConsulta.Mostra(Join(avisos_, " "));
}

// --- Accounts and their balances.

void TfmRelAnaliseFluxo::Busca_Contas() {
  const std::string sql = Funcoes.DBLocal_SQL(
      "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, CADCONTA.DESCRICAO  FROM {CADCONTA} CADCONTA "
      "WHERE CADCONTA.IMP_FLUXO = 'S'",
      "");
  for (const auto& conta : Tabela.IBDatabase().Rows(sql + "\nORDER BY 1")) {
    Value linha[] = {"S", conta[0], conta[2], conta[1], Currency()};
    TbSaldo.AppendRow(linha);
  }
  TbSaldo.First();
}

void TfmRelAnaliseFluxo::Busca_Saldos() {
  const ScopedValue montando(montando_, true);
  const Date ate = CbSaldoDoDia.Checked() ? Today() : EdtDataDe.Date();
  // What is reconciled counts as what is settled.
  const std::string sql = SaldosDasContas(kBaixado, ate, Today());
  const auto saldos =
      LeSaldos(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1"));
  std::unordered_set<std::string> com_saldo;
  for (const SaldoConta& saldo : saldos) com_saldo.insert(saldo.conta.AsString());
  for (TbSaldo.First(); !TbSaldo.Eof();) {
    if (com_saldo.contains(TbSaldo["Conta"].AsString())) {
      TbSaldo.Next();
    } else {
      TbSaldo.Delete();
    }
  }
  for (const SaldoConta& saldo : saldos) {
    if (TbSaldo.Locate("Conta", saldo.conta)) {
      TbSaldo.Edit();
      TbSaldo["Saldo"] = saldo.valor;
      TbSaldo.Post();
    } else {
      Value linha[] = {"S", saldo.conta, saldo.descricao, saldo.titular, saldo.valor};
      TbSaldo.AppendRow(linha);
    }
  }
  if (!std::ranges::all_of(saldos, [](const SaldoConta& saldo) { return saldo.valor.FitsField(); }))
    ApontaForaDeMedida(User(), Tabela.IBDatabase(),
                       ForCompanies(ForaDeMedida(kContaCorrente), "CONTACOR", CbEmp.Checked()));
  AnexaSaldoInicial();
}

std::unordered_set<std::string> TfmRelAnaliseFluxo::ContasMarcadas() {
  std::unordered_set<std::string> marcadas;
  const Field &seleciona = TbSaldo["Seleciona"], &conta = TbSaldo["Conta"];
  for (int64_t i = 0, n = TbSaldo.DisplayCount(); i < n; ++i) {
    if (TbSaldo.Cell(i, seleciona).Text() == "S") marcadas.insert(TbSaldo.Cell(i, conta).AsString());
  }
  return marcadas;
}

// --- What the steps have in common.

Date TfmRelAnaliseFluxo::DiaEfetivo(Consulta& consulta, Move move, Date vencimento,
                                    std::string_view situacao) const {
  const bool util = CbDiasUteis.Checked(), flutua = CbContBanc.Checked() && move != Move::SoDiaUtil;
  // Both start from the due date, so that only the later one counts.
  if (flutua && (move == Move::FloatPorUltimo || !util)) return consulta.dias.Credito(vencimento, situacao);
  return util ? consulta.dias.DiaUtil(vencimento) : vencimento;
}

void TfmRelAnaliseFluxo::Percorre(Consulta& consulta, const char* passo, std::string_view sql,
                                  std::string_view tabela,
                                  const std::function<void(Linha&, std::span<Value>)>& linha) {
  consulta.andamento.Stage(passo);
  ForEachRow<kDetalha>(ForCompanies(sql, tabela, CbEmp.Checked()), [&](Linha& lida, std::span<Value> resto) {
    linha(lida, resto);
    consulta.andamento.Advance();
  });
}

void TfmRelAnaliseFluxo::Anexa(Linha& linha, Fonte fonte, Value chave, std::string_view empresa) {
  for (const auto campo : Linha::Names{"Nome", "Situacao", "DescConta", "Nome_Banco", "Nome_Rep"})
    nomes_.Share(linha[campo]);
  TbDetalha.AppendRow(linha.Values());
  origens_.Anota(fonte, std::move(chave), empresa);
}

std::string TfmRelAnaliseFluxo::FiltroPeriodo(const char* coluna, const Consulta& consulta) const {
  return WhereBetween(coluna, consulta.periodo.de.AddDays(-kDiasAntes), consulta.periodo.ate);
}

std::string TfmRelAnaliseFluxo::FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const {
  return WhereIn(tabela + ".SITUACAO", EdtSit) + WhereIn(tabela + ".SITUACAO", desconsiderar, false);
}

std::string TfmRelAnaliseFluxo::Antes(const char* coluna, const Consulta& consulta) const {
  return std::string(" AND ") + coluna + " < " + Funcoes.AspasData(consulta.periodo.de);
}

void TfmRelAnaliseFluxo::PercorreMovimentos(Consulta& consulta, const char* passo,
                                            const std::string& condicao, bool com_banco,
                                            const std::function<bool(Linha&, const Movimento&)>& movimento) {
  enum Resto : uint8_t { mVencimento, mValor, mOperacao, mTipoDoc, mChave, mEmpresa };
  const std::string sql =
      std::string(
          "SELECT CONTACOR.LANCAMENTO AS NUMERO, CONTACOR.DOCTO, CONTACOR.DT_LAN AS EMISSAO, CONTACOR.CONTA, "
          "CADCONTA.DESCRICAO AS DESCCONTA, CONTACOR.OBSERVACAO, CONTACOR.GRUPO AS CLASSE, ") +
      (com_banco ? "CADCONTA.BANCO, CADBAN.NOME_BANCO, " : "") +
      "CONTACOR.DT_VENCTO, CONTACOR.VALOR, CONTACOR.OPERACAO, CONTACOR.TIPO_DOC, "
      "CONTACOR.LANCAMENTO AS CHAVE, '{}' AS EMPRESA FROM {CONTACOR} CONTACOR"
      " INNER JOIN {CADCONTA} CADCONTA ON CADCONTA.CONTA = CONTACOR.CONTA" +
      (com_banco ? " INNER JOIN {CADBAN} CADBAN ON CADBAN.BANCO = CADCONTA.BANCO" : "") +
      " WHERE CONTACOR.PENDENTE = 'S'" + condicao;
  Percorre(consulta, passo, sql, "CONTACOR", [&](Linha& linha, std::span<Value> v) {
    if (!consulta.contas.contains(linha["Conta"].AsString())) return;
    const Movimento lido{v[mVencimento].AsDate(), v[mValor].AsCurrency(), v[mOperacao].Text() == "+",
                         v[mTipoDoc].Text() == "CH"};
    if (movimento(linha, lido)) Anexa(linha, Fonte::Movimento, std::move(v[mChave]), v[mEmpresa].Text());
  });
}

// --- What should have moved before the period.

void TfmRelAnaliseFluxo::BuscaAtraso(Consulta& consulta) {
  const std::string titulos = SelectPagar("") + " WHERE " + kPagarVencidoAberto +
                              Antes("PAGTO.DT_VEN", consulta) + kNoFluxo +
                              StatusDeTitulo("PAGTO", CbOrcaPag.Checked()) +
                              FiltroSituacao("PAGTO", EdtSitDescPag) + WhereIn("PAGTO.BANCO", edtBanco);
  Percorre(consulta, "Pagamentos em atraso", titulos, "PAGTO", [&](Linha& linha, std::span<Value> v) {
    linha["Vencto"] = v[tVencimento];
    linha["Valor_Pag"] = v[tAberto].AsCurrency();
    linha["CodPer"] = kAtraso;
    Anexa(linha, Fonte::Pagar, std::move(v[tChave]), v[tEmpresa].Text());
  });
  const std::string movimentos = Antes("CONTACOR.DT_VENCTO", consulta) + " AND CONTACOR.OPERACAO = '-'";
  PercorreMovimentos(
      consulta, "Débitos em atraso", movimentos, false, [&](Linha& linha, const Movimento& movimento) {
        const Date dia = DiaEfetivo(consulta, Move::FloatPorUltimo, movimento.vencimento);
        if (dia >= consulta.periodo.de) return false;
        linha["Vencto"] = dia;
        linha["CodPer"] = kAtraso;
        linha[movimento.cheque ? Linha::Name("Cheque_Pag") : Linha::Name("Pend_Pag")] = movimento.valor;
        DBGrid1.SetColumnVisible(movimento.cheque ? "Cheque_Pag" : "Pend_Pag", true);
        return true;
      });
}

void TfmRelAnaliseFluxo::BuscaRecAtraso(Consulta& consulta) {
  const std::string filtro = std::string(kNoFluxo) + kForaP + Antes("RECEBER.DT_VENCTO", consulta) +
                             FiltroSituacao("RECEBER", EdtSitDesc) + WhereIn("RECEBER.BANCO", edtBanco);
  const std::string onde = std::string(kDeRepresentante) + " WHERE " + kReceberAberto + filtro;

  const std::string titulos =
      SelectReceber("RECEBER.NUMERO", kRepresentante) + onde + StatusDeTitulo("RECEBER", CbOrcaRec.Checked());
  Percorre(consulta, "Recebimentos em atraso", titulos, "RECEBER", [&](Linha& linha, std::span<Value> v) {
    const Date dia =
        DiaEfetivo(consulta, Move::FloatPorUltimo, v[tVencimento].AsDate(), linha["CodSit"].Text());
    if (dia >= consulta.periodo.de) return;
    linha["Vencto"] = dia;
    linha["CodPer"] = kAtraso;
    linha[linha["Tipo"].Text() == "O" ? Linha::Name("Orca_Rec") : Linha::Name("Valor_Rec")] =
        v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Receber, std::move(v[tChave]), v[tEmpresa].Text());
  });

  const std::string cheques =
      SelectReceber("RECEBER.NUMERO_CH", kCodigoRepresentante) + onde +
      (cbChequesDevol.Checked() ? " AND RECEBER.STATUS IN ('CH','CD')" : " AND RECEBER.STATUS = 'CH'");
  Percorre(consulta, "Cheques em atraso", cheques, "RECEBER", [&](Linha& linha, std::span<Value> v) {
    DBGrid1.SetColumnVisible("Cheque_Rec", true);
    const Date dia = DiaEfetivo(consulta, Move::FloatPorUltimo, v[tVencimento].AsDate());
    if (dia >= consulta.periodo.de) return;
    linha["Vencto"] = dia;
    linha["CodPer"] = kAtraso;
    linha["Observacao"] = Value();
    linha["Cheque_Rec"] = v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Receber, std::move(v[tChave]), v[tEmpresa].Text());
  });

  const std::string movimentos = Antes("CONTACOR.DT_VENCTO", consulta) + " AND CONTACOR.OPERACAO = '+'";
  PercorreMovimentos(consulta, "Créditos em atraso", movimentos, false,
                     [&](Linha& linha, const Movimento& movimento) {
                       const Date dia = DiaEfetivo(consulta, Move::FloatPorUltimo, movimento.vencimento);
                       if (dia >= consulta.periodo.de) return false;
                       linha["Vencto"] = dia;
                       linha["CodPer"] = kAtraso;
                       linha["Pend_Rec"] = movimento.valor;
                       return true;
                     });
}

// --- Cheques.

void TfmRelAnaliseFluxo::GravaChequePagar(Consulta& consulta) {
  const std::string condicao = FiltroPeriodo("CONTACOR.DT_VENCTO", consulta) +
                               " AND CONTACOR.OPERACAO = '-' AND CONTACOR.TIPO_DOC = 'CH'";
  PercorreMovimentos(consulta, "Cheques a pagar", condicao, false,
                     [&](Linha& linha, const Movimento& movimento) {
                       const Date dia = DiaEfetivo(consulta, Move::DiaUtilPorUltimo, movimento.vencimento);
                       if (!consulta.periodo.Contem(dia)) return false;
                       linha["Vencto"] = dia;
                       linha["Cheque_Pag"] = movimento.valor;
                       return true;
                     });
}

void TfmRelAnaliseFluxo::GravaChequeReceber(Consulta& consulta) {
  const std::string sql = SelectReceber("RECEBER.NUMERO_CH", "") + " WHERE " + kReceberAberto +
                          FiltroPeriodo("RECEBER.DT_VENCTO", consulta) + kNoFluxo + kForaP +
                          " AND RECEBER.STATUS = 'CH'" + FiltroSituacao("RECEBER", EdtSitDesc) +
                          WhereIn("RECEBER.BANCO", edtBanco);
  Percorre(consulta, "Cheques a receber", sql, "RECEBER", [&](Linha& linha, std::span<Value> v) {
    const Date dia = DiaEfetivo(consulta, Move::DiaUtilPorUltimo, v[tVencimento].AsDate());
    if (!consulta.periodo.Contem(dia)) return;
    linha["Tipo"] = Value();
    linha["Vencto"] = dia;
    linha["Cheque_Rec"] = v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Receber, std::move(v[tChave]), v[tEmpresa].Text());
  });
}

// --- What is pending in the ledger, and advances.

void TfmRelAnaliseFluxo::PendentesContaCorrente(Consulta& consulta) {
  const std::string condicao = FiltroPeriodo("CONTACOR.DT_VENCTO", consulta) +
                               " AND (CONTACOR.TIPO_DOC <> 'CH' OR CONTACOR.TIPO_DOC IS NULL)";
  PercorreMovimentos(
      consulta, "Movimentos pendentes", condicao, true, [&](Linha& linha, const Movimento& movimento) {
        const Date dia = DiaEfetivo(consulta, Move::DiaUtilPorUltimo, movimento.vencimento);
        if (!consulta.periodo.Contem(dia)) return false;
        if (!(movimento.credito ? CbCredPend : CbDebPend).Checked()) return false;
        linha["Vencto"] = dia;
        linha[movimento.credito ? Linha::Name("Pend_Rec") : Linha::Name("Pend_Pag")] = movimento.valor;
        return true;
      });
  if (CbCredPend.Checked()) AdiantamentosFornecedor(consulta);
  if (CbDebPend.Checked()) AdiantamentosCliente(consulta);
}

// What was paid to suppliers in advance comes back as goods, on the first day: it counts as a credit.
void TfmRelAnaliseFluxo::AdiantamentosFornecedor(Consulta& consulta) {
  const std::string sql =
      SelectPagar(
          "PAGTO.OBS AS OBSERVACAO, PAGTO.BANCO, CADBAN.NOME_BANCO, (SELECT MAX(CONTACOR.CONTA) FROM "
          "{CONTACOR} CONTACOR WHERE CONTACOR.DOCTO = PAGTO.NUM_AP AND CONTACOR.TIPO = 'P' AND "
          "CONTACOR.TIPO_DOC = 'DP') AS CONTA, ") +
      " LEFT JOIN {CADBAN} CADBAN ON CADBAN.BANCO = PAGTO.BANCO WHERE PAGTO.STATUS = 'A' AND " +
      EmAbertoPagar() + " > 0" + FiltroSituacao("PAGTO", EdtSitDescPag);
  consulta.andamento.Stage("Adiantamentos a fornecedores");
  ForEachRow<kDetalha>(Funcoes.DBLocal_SQL(sql, ""), [&](Linha& linha, std::span<Value> v) {
    linha["Docto"] = v[tChave];
    linha["Numero"] = Value();
    linha["Vencto"] = consulta.periodo.de;
    linha["Pend_Rec"] = v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Pagar, std::move(v[tChave]), v[tEmpresa].Text());
  });
}

void TfmRelAnaliseFluxo::AdiantamentosCliente(Consulta& consulta) {
  const std::string sql = SelectReceber("RECEBER.NUMERO", kRepresentante) + kDeRepresentante +
                          " WHERE RECEBER.STATUS = 'A' AND " + EmAbertoReceber() + " > 0" +
                          FiltroSituacao("RECEBER", EdtSitDesc);
  consulta.andamento.Stage("Adiantamentos de clientes");
  ForEachRow<kDetalha>(Funcoes.DBLocal_SQL(sql, ""), [&](Linha& linha, std::span<Value> v) {
    linha["Numero"] = Value();
    linha["Vencto"] = consulta.periodo.de;
    linha["Pend_Pag"] = v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Receber, std::move(v[tChave]), v[tEmpresa].Text());
  });
}

// --- Titles.

void TfmRelAnaliseFluxo::Grava_Receber(Consulta& consulta) {
  const std::string sql = SelectReceber("RECEBER.NUMERO", kRepresentante) + kDeRepresentante + " WHERE " +
                          kReceberAberto + FiltroPeriodo("RECEBER.DT_VENCTO", consulta) + kForaP + kNoFluxo +
                          StatusDeTitulo("RECEBER", CbOrcaRec.Checked()) +
                          FiltroSituacao("RECEBER", EdtSitDesc) + WhereIn("RECEBER.BANCO", edtBanco);
  Percorre(consulta, "Títulos a receber", sql, "RECEBER", [&](Linha& linha, std::span<Value> v) {
    const Date dia =
        DiaEfetivo(consulta, Move::FloatPorUltimo, v[tVencimento].AsDate(), linha["CodSit"].Text());
    if (!consulta.periodo.Contem(dia)) return;
    linha["Vencto"] = dia;
    linha[linha["Tipo"].Text() == "O" ? Linha::Name("Orca_Rec") : Linha::Name("Valor_Rec")] =
        v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Receber, std::move(v[tChave]), v[tEmpresa].Text());
  });
}

// The period isn't widened, nor is the moved day tested again: a payable may be dated after the period.
void TfmRelAnaliseFluxo::Grava_Pagar(Consulta& consulta) {
  const std::string sql = SelectPagar("PAGTO.OBS AS OBSERVACAO, ") + " WHERE " + kPagarAberto +
                          WhereBetween("PAGTO.DT_VEN", consulta.periodo.de, consulta.periodo.ate) + kNoFluxo +
                          StatusDeTitulo("PAGTO", CbOrcaPag.Checked()) +
                          FiltroSituacao("PAGTO", EdtSitDescPag) + WhereIn("PAGTO.BANCO", edtBanco);
  Percorre(consulta, "Títulos a pagar", sql, "PAGTO", [&](Linha& linha, std::span<Value> v) {
    linha["Vencto"] = DiaEfetivo(consulta, Move::SoDiaUtil, v[tVencimento].AsDate());
    linha[linha["Tipo"].Text() == "O" ? Linha::Name("Orca_Pag") : Linha::Name("Valor_Pag")] =
        v[tAberto].AsCurrency();
    Anexa(linha, Fonte::Pagar, std::move(v[tChave]), v[tEmpresa].Text());
  });
}

}  // namespace orv
