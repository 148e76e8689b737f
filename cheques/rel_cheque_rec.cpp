#include "cheques/rel_cheque_rec.h"

#include <algorithm>
#include <unordered_set>

#include "cheques/cheque_pre.h"
#include "frame/entry/unit.h"
#include "rules/origem.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmRelChequeRec* fmRelChequeRec = nullptr;

namespace {

const Unit kUnit("Relchequerec",
                 {"TfmRelChequeRec", "Relatório de Controle de Cheques", ScreenKind::Child,
                  "Cheques e títulos", [](Application& a) { return std::make_unique<TfmRelChequeRec>(a); }});

// A row of the register of cheques, or of the receivables.
constexpr const char *kEmitido = "E", *kRecebido = "R";
enum Tipo { kTodos = 0, kEmitidos = 1, kRecebidos = 2 };
enum Situacao { kPendentes = 0, kBaixados = 1 };

constexpr const char* kOrdem[] = {"ORIGEM;NUMERO", "ORIGEM;NUM_REC;NUM_PAG", "ORIGEM;VENCIMENTO"};

// The note of a cheque is as wide as that of a receivable, so that the set takes both.
constexpr const char* kDoCadastro =
    "SELECT 'E' AS ORIGEM, CHEQUE.TIPO AS TIPO_DOC, CHEQUE.NUMERO, CHEQUE.CONTA, CHEQUE.AGENCIA, "
    "CHEQUE.BANCO, BANCO.NOME_BANCO, CHEQUE.EMISSOR, CHEQUE.VALOR, CHEQUE.VENCIMENTO, CHEQUE.EMISSAO, "
    "CAST(CHEQUE.OBS AS VARCHAR(250)) AS OBS, CHEQUE.REPRESENTANTE AS CODREP, REPRESEN.NOME AS NOME_REP, "
    "RECEBER.NUMERO AS NUM_REC, RECEBER.CODCLI, CLIENTE.NOME AS NOME_CLI, RECEBER.VALOR2 AS VAL_REC, "
    "RECEBER.SITUACAO, TABSIT.DESCRICAO AS DESC_SIT, 'CH' AS STATUS, PAGTO.NUM_AP AS NUM_PAG, PAGTO.DUPLI, "
    "PAGTO.CODCRE, FORNECEDOR.NOME AS NOME_CRE, PAGTO.VALOR AS VAL_PAG, CHEQUE.DT_BAIXA, "
    "CAST(CHEQUE.OBS AS VARCHAR(100)) AS OBS_PAG, CAST(CHEQUE.CHAVE AS VARCHAR(12)) AS CHAVE, "
    "'{}' AS EMPRESA FROM {CHEQUE_PRE} CHEQUE"
    " LEFT OUTER JOIN {REPRESEN} REPRESEN ON (CHEQUE.REPRESENTANTE = REPRESEN.CODREP)"
    " LEFT OUTER JOIN {CADBAN} BANCO ON (CHEQUE.BANCO = BANCO.BANCO)"
    " LEFT OUTER JOIN {CHEQUE_DUP} DUP ON (CHEQUE.BANCO = DUP.BANCO AND CHEQUE.CONTA = DUP.CONTA"
    " AND CHEQUE.NUMERO = DUP.NUMERO)"
    " LEFT OUTER JOIN {RECEBER} RECEBER ON (RECEBER.NUMERO = DUP.DUPLI)"
    " LEFT OUTER JOIN {ENTIDADE} CLIENTE ON (CLIENTE.CODCLI = RECEBER.CODCLI)"
    " LEFT OUTER JOIN {PAGTO} PAGTO ON (PAGTO.NUM_AP = DUP.DUPLI)"
    " LEFT OUTER JOIN {ENTIDADE} FORNECEDOR ON (FORNECEDOR.CODCLI = PAGTO.CODCRE)"
    " LEFT OUTER JOIN {TABSIT} TABSIT ON (PAGTO.SITUACAO = TABSIT.CODIGO) WHERE 1 = 1";

constexpr const char* kAReceber =
    "SELECT 'R' AS ORIGEM, 'R' AS TIPO_DOC, CHEQUE.NUMERO_CH AS NUMERO, CHEQUE.CONTA_CH AS CONTA, "
    "CHEQUE.AGENCIA_CH AS AGENCIA, CHEQUE.BANCO_CH AS BANCO, BANCO.NOME_BANCO, CHEQUE.EMISSOR_CH AS EMISSOR, "
    "CHEQUE.VALOR2 AS VALOR, CHEQUE.DT_VENCTO AS VENCIMENTO, CHEQUE.DT_EMISSAO AS EMISSAO, CHEQUE.OBS, "
    "CHEQUE.CODREP, REPRESEN.NOME AS NOME_REP, RECEBER.NUMERO AS NUM_REC, RECEBER.CODCLI, "
    "CLIENTE.NOME AS NOME_CLI, RECEBER.VALOR2 AS VAL_REC, RECEBER.SITUACAO, TABSIT.DESCRICAO AS DESC_SIT, "
    "CHEQUE.STATUS, '' AS NUM_PAG, '' AS DUPLI, RECEBERB.PORTADOR AS CODCRE, FORNECEDOR.NOME AS NOME_CRE, "
    "RECEBERB.VALOR_PAGO AS VAL_PAG, RECEBERB.DT_PAGTO AS DT_BAIXA, RECEBERB.OBS AS OBS_PAG, "
    "CHEQUE.NUMERO AS CHAVE, '{}' AS EMPRESA FROM {RECEBER} CHEQUE"
    " LEFT OUTER JOIN {REPRESEN} REPRESEN ON (CHEQUE.CODREP = REPRESEN.CODREP)"
    " LEFT OUTER JOIN {CADBAN} BANCO ON (CHEQUE.BANCO_CH = BANCO.BANCO)"
    " LEFT OUTER JOIN {CHEQUE_DUP} DUP ON (DUP.NUMERO = CHEQUE.NUMERO_CH AND DUP.CONTA = CHEQUE.CONTA_CH"
    " AND DUP.BANCO = CHEQUE.BANCO_CH)"
    " LEFT OUTER JOIN {RECEBER} RECEBER ON (DUP.DUPLI = RECEBER.NUMERO)"
    " LEFT OUTER JOIN {ENTIDADE} CLIENTE ON (RECEBER.CODCLI = CLIENTE.CODCLI)"
    " LEFT OUTER JOIN {RECEBERB} RECEBERB ON (CHEQUE.NUMERO = RECEBERB.NUMERO AND RECEBERB.VALOR_PAGO > 0)"
    " LEFT OUTER JOIN {ENTIDADE} FORNECEDOR ON (RECEBERB.PORTADOR = FORNECEDOR.CODCLI)"
    " LEFT OUTER JOIN {TABSIT} TABSIT ON (RECEBER.SITUACAO = TABSIT.CODIGO)"
    " WHERE CHEQUE.STATUS IN ('CH', 'CD')";

}  // namespace

TfmRelChequeRec::TfmRelChequeRec(Application& application)
    : ReportScreen(application, "TfmRelChequeRec", "fmRelChequeRec", "Relatório de Controle de Cheques"),
      DBGrid1(*this, "DBGrid1", TbRelatorio, GridColumns(kRelatorio), true, "Cheques e títulos") {
  Layout(R"(
    @bar {
      GbVencimento { edtDtVenIni edtDtVenFim } RgSituacao RgTipo
      @more {
        RgGrupo ckbResumido CbEmpresas /
        GbEmissao { edtDtEmiIni edtDtEmiFim } GbBaixas { DtBaixaIni DtBaixaFim } /
        EdtCliente PqCliente EDCliente EdtCodFor PqForn EdtNomeFor EdtBanco PqBanco Edit4 /
        edtCodRep PqRep edtDescRep Edtdupli EdtSit PqSituacao EdtdesSit /
        GbDocumentos { edtDocto SpeedButton1 lbDocto SpeedButton3 }
      }
      @primary BtnConfirma
    } /
    DBGrid1 /
    @actions { Btnimprimir @apart BtnSaida }
  )");
  DBGrid1.FindColumn("ORIGEM")->words = {{kEmitido, "Cadastro", "muted"}, {kRecebido, "A receber", ""}};
  DBGrid1.FindColumn("TIPO_DOC")->words = kTipos;
  DBGrid1.FindColumn("STATUS")->words = {{"CH", "Cheque", "muted"}, {"CD", "Devolvido", "error"}};
  AddSet(TbRelatorio);
  LayDown(TbRelatorio, kRelatorio);
  LigaCampos();
  BtnConfirma.OnClick = [this] { BtnConfirmaClick(); };
  Btnimprimir.OnClick = [this] { BtnimprimirClick(); };
  BtnSaida.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  Answers["Consultado"] = {0, [this](auto) { return Value(consultado_); }};
  Answers["TotalDosCheques"] = {0, [this](auto) { return TotalDosCheques(); }};
}

void TfmRelChequeRec::LigaCampos() {
  const std::pair<DateEdit*, DateEdit*> periodos[] = {{&edtDtEmiIni, &edtDtEmiFim},
                                                      {&edtDtVenIni, &edtDtVenFim}};
  for (const auto& [inicio, fim] : periodos) {
    Period(*inicio, *fim);
    inicio->SetDate(Date(2000, 1, 1));
    fim->SetDate(Date(2050, 12, 31));
  }
  Lookups({{.field = &EdtCliente, .lookup = &PqCliente, .shows = {{"NOME", &EDCliente}}},
           {.field = &EdtCodFor, .lookup = &PqForn, .shows = {{"NOME", &EdtNomeFor}}},
           {.field = &EdtBanco, .lookup = &PqBanco, .shows = {{"NOME_BANCO", &Edit4}}},
           {.field = &edtCodRep, .lookup = &PqRep, .shows = {{"NOME", &edtDescRep}}},
           {.field = &EdtSit, .lookup = &PqSituacao, .shows = {{"DESCRICAO", &EdtdesSit}}}});
  Edtdupli.OnChange = EdtBanco.OnChange;
  SpeedButton1.OnClick = [this] { SpeedButton1Click(); };
  SpeedButton3.OnClick = [this] { lbDocto.SetItems({}); };
}

void TfmRelChequeRec::SpeedButton1Click() {
  if (edtDocto.Empty()) return;
  std::vector<std::string> literais = lbDocto.Items();
  literais.push_back(Funcoes.Aspas(edtDocto.Text()));
  lbDocto.SetItems(std::move(literais));
}

void TfmRelChequeRec::BtnConfirmaClick() {
  Gather({&TbRelatorio}, [this](Gathering& andamento) { Monta(andamento); });
}

void TfmRelChequeRec::BtnimprimirClick() {
  // The layouts group by what is chosen now, and the rows follow.
  Ordena();
  Funcoes.Chama_Relatorio(*this, ckbResumido.Checked() ? "WChequeRecR" : "WChequeRec");
}

void TfmRelChequeRec::Monta(Gathering& andamento) {
  TTransDataSet transfere;
  TOrvQuery consulta(Tabela.IBDatabase());
  andamento.Stage("Cheques do cadastro");
  BuscaDadosEmitidos(consulta);
  transfere.SetTabelaOrigem(consulta);
  transfere.SetTabelaDestino(TbRelatorio);
  TbRelatorio.SetIndexFieldNames("");
  transfere.CriaCampos();
  Transfere(transfere, consulta, andamento);
  if (RgTipo.ItemIndex() != kEmitidos) {
    andamento.Stage("Cheques a receber");
    BuscaDadosRecebidos(consulta);
    Transfere(transfere, consulta, andamento);
  }
  andamento.Stage("Ordem das linhas");
  Ordena();
  consultado_ = "Vencimento de " + edtDtVenIni.Text() + " até " + edtDtVenFim.Text() + ", situação " +
                RgSituacao.Text() + ", tipo " + RgTipo.Text() +
                (CbEmpresas.Checked() ? ", todas as empresas" : "");
}

void TfmRelChequeRec::Transfere(TTransDataSet& transfere, const TOrvQuery& consulta,
                                Gathering& andamento) const {
  andamento.Stage("Linhas do relatório", consulta.RecordCount());
  transfere.OnRow = [&andamento] { andamento.Advance(); };
  transfere.TransfereDados();
}

void TfmRelChequeRec::Ordena() { TbRelatorio.SetIndexFieldNames(kOrdem[std::max(RgGrupo.ItemIndex(), 0)]); }

std::string TfmRelChequeRec::FiltroBaixa(const char* coluna) const {
  std::string sql;
  for (const auto& [data, sinal] : {std::pair(&DtBaixaIni, " >= "), std::pair(&DtBaixaFim, " <= ")}) {
    if (!data->Empty()) sql += " AND " + std::string(coluna) + sinal + Funcoes.AspasData(data->Date());
  }
  return sql;
}

std::string TfmRelChequeRec::FiltroLista(const char* coluna) const {
  return lbDocto.Items().empty() ? ""
                                 : " AND " + std::string(coluna) + " IN (" + Join(lbDocto.Items(), ",") + ")";
}

void TfmRelChequeRec::Abre(TOrvQuery& consulta, const std::string& sql, const char* tabela) const {
  consulta.SQL.SetText(ForCompanies(sql, tabela, CbEmpresas.Checked()));
  consulta.Open();
}

void TfmRelChequeRec::BuscaDadosEmitidos(TOrvQuery& consulta) const {
  std::string sql = kDoCadastro + WhereBetween("CHEQUE.EMISSAO", edtDtEmiIni.Date(), edtDtEmiFim.Date()) +
                    WhereBetween("CHEQUE.VENCIMENTO", edtDtVenIni.Date(), edtDtVenFim.Date());
  sql += FiltroBaixa("CHEQUE.DT_BAIXA");
  sql += Where("CLIENTE.CODCLI", "=", EdtCliente) + Where("FORNECEDOR.CODCLI", "=", EdtCodFor) +
         Where("CHEQUE.BANCO", "=", EdtBanco) + Where("DUP.DUPLI", "=", Edtdupli) +
         Where("RECEBER.SITUACAO", "=", EdtSit) + Where("CHEQUE.REPRESENTANTE", "=", edtCodRep) +
         FiltroLista("CHEQUE.NUMERO");
  if (RgSituacao.ItemIndex() == kPendentes) sql += " AND CHEQUE.STATUS = 'P'";
  if (RgSituacao.ItemIndex() == kBaixados) sql += " AND CHEQUE.STATUS IN ('B', 'C')";
  if (RgTipo.ItemIndex() == kEmitidos) sql += " AND CHEQUE.TIPO = 'P'";
  if (RgTipo.ItemIndex() == kRecebidos) sql += " AND CHEQUE.TIPO = 'R'";
  Abre(consulta, sql, "CHEQUE_PRE");
}

void TfmRelChequeRec::BuscaDadosRecebidos(TOrvQuery& consulta) const {
  std::string sql = kAReceber + WhereBetween("CHEQUE.DT_EMISSAO", edtDtEmiIni.Date(), edtDtEmiFim.Date()) +
                    WhereBetween("CHEQUE.DT_VENCTO", edtDtVenIni.Date(), edtDtVenFim.Date());
  sql += FiltroBaixa("RECEBERB.DT_PAGTO");
  sql += Where("RECEBERB.PORTADOR", "=", EdtCodFor) + Where("CHEQUE.CODCLI", "=", EdtCliente) +
         Where("CHEQUE.BANCO_CH", "=", EdtBanco) + Where("CHEQUE.CODREP", "=", edtCodRep) +
         Where("CHEQUE.NUMERO", "=", Edtdupli) + Where("CHEQUE.SITUACAO", "=", EdtSit) +
         FiltroLista("CHEQUE.NUMERO_CH");
  if (RgSituacao.ItemIndex() == kPendentes) sql += " AND RECEBERB.DT_PAGTO IS NULL";
  if (RgSituacao.ItemIndex() == kBaixados) sql += " AND NOT RECEBERB.DT_PAGTO IS NULL";
  Abre(consulta, sql, "RECEBER");
}

Value TfmRelChequeRec::TotalDosCheques() {
  std::unordered_set<std::string> contados;
  Currency total;
  const Field *origem = TbRelatorio.FindField("ORIGEM"), *chave = TbRelatorio.FindField("CHAVE"),
              *empresa = TbRelatorio.FindField("EMPRESA"), *valor = TbRelatorio.FindField("VALOR");
  const int64_t linhas = TbRelatorio.DisplayCount();
  for (int64_t linha = 0; linha < linhas; ++linha) {
    const auto texto = [&](const Field* campo) { return TbRelatorio.Cell(linha, *campo).AsString() + "|"; };
    if (contados.insert(texto(origem) + texto(chave) + texto(empresa)).second)
      total += TbRelatorio.Cell(linha, *valor).AsCurrency();
  }
  return Value(total);
}

void TfmRelChequeRec::DBGrid1DblClick() {
  if (TbRelatorio.IsEmpty()) return;
  const std::string chave = Funcoes.Aspas(TbRelatorio["CHAVE"].AsString());
  const bool registrado = TbRelatorio["ORIGEM"].AsString() == kEmitido;
  const std::string sql = registrado ? origem::Cheques("CHAVE = " + chave) + origem::kUniao +
                                           origem::Movimentos("LANCAMENTO = " + chave)
                                     : origem::Receber("NUMERO = " + chave) + origem::kUniao +
                                           origem::BaixasReceber("NUMERO = " + chave);
  ShowDetail("Cheque " + TbRelatorio["NUMERO"].AsString(),
             ForCompany(sql, TbRelatorio["EMPRESA"].AsString()));
}

}  // namespace orv
