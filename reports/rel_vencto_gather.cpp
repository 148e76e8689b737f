// The gathering: the opening balance, the sections one behind the other, and the titles of their rows.
#include <unordered_map>
#include <utility>

#include "reports/lancamentos.h"
#include "reports/rel_vencto.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {

using namespace lancamentos;

namespace {

constexpr const char* kDe =
    " FROM {CONTACOR} CONTACOR LEFT JOIN {CADCONTA} CADCONTA ON (CONTACOR.CONTA = CADCONTA.CONTA)";
constexpr const char* kNomesDoDia[] = {"lançamento", "contabilização", "vencimento"};
constexpr std::size_t kContabilizacao = 1;

}  // namespace

TfmRelVencto::Consulta TfmRelVencto::LeFiltros() const {
  Consulta consulta;
  consulta.dia = Opcao(RgData);
  consulta.de = EdtDataDe.Text();
  consulta.ate = edtDataAte.Text();
  consulta.periodo = {Date::ParseBrazil(consulta.de), Date::ParseBrazil(consulta.ate)};
  const std::string alem =
      WhereIn("CONTACOR.GRUPO", EdtClasse) + Where("CONTACOR.HISTORICO", "=", EdtHistHistorico);
  consulta.filtro = WhereIn("CONTACOR.CONTA", EdtConta) + alem;
  consulta.por_saldos = alem.empty();
  if (!EdtObs.Empty())
    consulta.filtro_texto = " AND CONTACOR.OBSERVACAO LIKE " + Funcoes.Aspas("%" + EdtObs.Text() + "%");

  consulta.texto =
      "Período de " + consulta.de + " até " + consulta.ate + ", pela data de " + kNomesDoDia[consulta.dia];
  const std::pair<const char*, const Edit*> filtros[] = {{"contas ", &EdtConta},
                                                         {"classes ", &EdtClasse},
                                                         {"histórico ", &EdtHistHistorico},
                                                         {"observação com ", &EdtObs}};
  for (const auto& [nome, campo] : filtros) {
    if (!campo->Empty()) consulta.texto += std::string(", ") + nome + ReplaceAll(campo->Text(), "'", "");
  }
  return consulta;
}

const char* TfmRelVencto::Coluna() const { return kDias[consulta_.dia].coluna; }

void TfmRelVencto::Monta(Gathering& gathering) {
  TbFinan.SetFiltered(false);
  TbFinan.EmptyDataSet();
  LayDown(TbRelatorio, kRelatorio);
  consulta_ = LeFiltros();
  condicoes_.clear();
  numeros_.clear();
  cabem_ = true;

  Monta_RelBaixado(gathering);
  if (CbPend.Checked()) Monta_RelPendente(gathering);
  if (CbPredata.Checked()) Monta_RelPreDatado(gathering);
  if (CbPendCont.Checked()) Monta_RelContPendente(gathering);
  if (CbFinanceiro.Checked()) BuscaFinanceiro(gathering);
  if (!cabem_)
    ApontaForaDeMedida(User(), Tabela.IBDatabase(),
                       ForCompanies(ForaDeMedida(kContaCorrente), "CONTACOR", false));
}

// --- The sections.

void TfmRelVencto::Monta_RelBaixado(Gathering& gathering) {
  gathering.Stage("Saldo anterior");
  saldo_inicial_ = SaldoAnterior();
  cabem_ = saldo_inicial_.FitsField();
  const int64_t linhas = Monta_Rel(
      gathering,
      {"CAIXA", "A",
       " AND CONTACOR.PENDENTE = 'N'" + WhereBetween(Coluna(), consulta_.periodo.de, consulta_.periodo.ate),
       consulta_.dia},
      saldo_inicial_);
  if (linhas > 0) return;
  // The opening balance stays on the report.
  Linha linha;
  linha["Conta"] = EdtConta.Text();
  linha["Empresa"] = EdtConta.Text();
  linha["Saldo"] = saldo_inicial_;
  Anexa(linha, "A", "A");
}

void TfmRelVencto::Monta_RelPendente(Gathering& gathering) {
  Monta_Rel(gathering,
            {"CHEQUES PENDENTES", "B", " AND CONTACOR.PENDENTE = 'S' AND " + Ate(Coluna()), consulta_.dia},
            Currency());
}

void TfmRelVencto::Monta_RelPreDatado(Gathering& gathering) {
  Monta_Rel(gathering, {"CHEQUES PRE-DATADOS", "C", " AND " + Depois(Coluna()), consulta_.dia}, Currency());
}

void TfmRelVencto::Monta_RelContPendente(Gathering& gathering) {
  Monta_Rel(gathering,
            {"CONTABILIZAÇÃO PENDENTE", "D",
             " AND " + Ate("CONTACOR.DT_VENCTO") + " AND " + Ate("CONTACOR.DT_LAN") + " AND (" +
                 Depois("CONTACOR.DT_CONT") + " OR CONTACOR.PENDENTE = 'S')",
             kContabilizacao},
            Currency());
}

int64_t TfmRelVencto::Monta_Rel(Gathering& gathering, const Secao& secao, Currency saldo) {
  gathering.Stage(secao.situacao);
  condicoes_.push_back(secao.condicao);
  const std::string sql = std::string("SELECT ") + kColunas + kDe + kDescricoes + " WHERE 1 = 1" +
                          consulta_.filtro + consulta_.filtro_texto + secao.condicao;
  // Movements of one document stand by their numbers.
  const std::string ordem =
      std::string("ORDER BY ") + kDias[secao.dia].lugar + ", " + kLugarDocumento + ", " + kLugarLancamento;
  int64_t linhas = 0;
  ForEachRow<kRelatorio>(ForCompanies(sql, "CONTACOR", false, ordem), [&](Linha& linha, std::span<Value>) {
    const Currency valor = linha["Valor"].AsCurrency();
    const std::string_view operacao = linha["Operacao"].Text();
    if (operacao == "+") saldo += valor;
    if (operacao == "-") saldo -= valor;
    cabem_ = cabem_ && saldo.FitsField();
    linha["Saldo"] = saldo;
    for (const auto campo : Linha::Names{"Nome_Banco", "DesGrupo", "Historico", "Empresa"})
      nomes_.Share(linha[campo]);
    Anexa(linha, secao.situacao, secao.codigo);
    ++linhas;
    gathering.Advance();
  });
  return linhas;
}

void TfmRelVencto::Anexa(Linha& linha, const char* situacao, const char* codigo) {
  linha["SaldoIni"] = saldo_inicial_;
  linha["Data_ini"] = consulta_.de;
  linha["data_fim"] = consulta_.ate;
  linha["Grupo"] = codigo;
  linha["Situacao"] = situacao;
  nomes_.Share(linha["Situacao"]);
  linha["Linha"] = static_cast<int64_t>(numeros_.size());
  numeros_.push_back(linha["Lancamento"]);
  TbRelatorio.AppendRow(linha.Values());
}

std::string TfmRelVencto::Ate(const char* coluna) const {
  return std::string(coluna) + " <= " + Funcoes.AspasData(consulta_.periodo.ate);
}

std::string TfmRelVencto::Depois(const char* coluna) const {
  return std::string(coluna) + " > " + Funcoes.AspasData(consulta_.periodo.ate);
}

// --- The balance before the first section.

std::string TfmRelVencto::Anteriores() const {
  const Date ate = consulta_.periodo.de.AddDays(-1);
  return " FROM " +
         (consulta_.por_saldos ? SaldosAte(kContaCorrente, Coluna(), ate, Today())
                               : MovimentosAte(kContaCorrente, Coluna(), ate)) +
         " WHERE CONTACOR.PENDENTE <> 'S'" + consulta_.filtro;
}

Currency TfmRelVencto::SaldoAnterior() const {
  const std::string sql = "SELECT " + Soma(ComSinal(kContaCorrente, "CONTACOR")) + Anteriores();
  return TotalDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", false)).Round2();
}

// --- The titles.

// Each row brings the titles of its number, also where an earlier one has brought them.
void TfmRelVencto::BuscaFinanceiro(Gathering& gathering) {
  gathering.Stage("Financeiro");
  std::string secoes;
  for (const std::string& condicao : condicoes_)
    secoes += (secoes.empty() ? "(1 = 1" : " OR (1 = 1") + condicao + ")";
  const std::string movimentos = "SELECT DISTINCT CONTACOR.LANCAMENTO FROM {CONTACOR} CONTACOR WHERE (" +
                                 secoes + ")" + consulta_.filtro + consulta_.filtro_texto;
  std::unordered_map<std::string, std::vector<Titulo>> pagos, recebidos;
  const auto busca = [&](const std::string& sql, auto& titulos) {
    ForEachRow<kFinan>(ForCompanies(sql, "", false), [&](Titulo& titulo, std::span<Value>) {
      for (const auto campo : Titulo::Names{"Nome", "DescHist", "DescClasse"}) nomes_.Share(titulo[campo]);
      titulos[titulo["lancto"].AsString()].push_back(std::move(titulo));
      gathering.Advance();
    });
  };
  busca(Titulos(kPagas, movimentos, "DESCCLASSE", ""), pagos);
  busca(Titulos(kRecebidas, movimentos, "DESCCLASSE",
                ", RECEBER.HISTORICO AS CODHIST, HISTCP.DESCRICAO AS DESCHIST",
                " LEFT JOIN {HISTCP} HISTCP ON (HISTCP.HISTORICO = RECEBER.HISTORICO)"),
        recebidos);

  for (std::size_t linha = 0; linha < numeros_.size(); ++linha) {
    const std::string numero = numeros_[linha].AsString();
    if (numero.empty()) continue;
    for (const auto* titulos : {&pagos, &recebidos}) {
      const auto dele = titulos->find(numero);
      if (dele == titulos->end()) continue;
      for (Titulo titulo : dele->second) {
        titulo["Linha"] = static_cast<int64_t>(linha);
        TbFinan.AppendRow(titulo.Values());
      }
    }
  }
}

}  // namespace orv
