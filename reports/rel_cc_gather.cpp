// The gathering: balance before the period, the movements some days at a time, and what each of them brings
// along.
#include <algorithm>
#include <map>
#include <utility>

#include "reports/lancamentos.h"
#include "reports/rel_cc.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {

using namespace lancamentos;

namespace {

// What a movement fills of the report beyond what it does of every one, and its company.
constexpr const char* kMais =
    ", CONTACOR.GRUPO, CONTACOR.PENDENTE, SUBGRUPO.CODIGO AS CODGRUPO, CONTACOR.HISTORICO AS CODHISTORICO, "
    "CONTACOR.TIPO, CADCONTA.LIMITE, '{}' AS SUFIXO";

// The accounts come first: they are few, and lead to their movements.
constexpr const char* kMovimentos =
    " FROM {CADCONTA} CADCONTA INNER JOIN {CONTACOR} CONTACOR ON (CONTACOR.CONTA = CADCONTA.CONTA)";

// Movements brought together. Many make few statements, few keep little in memory.
constexpr int64_t kLinhasPorJanela = 2000;

constexpr const char* kAgrupar[] = {"L", "G", "H", "S", "S", "D", "O", "C"};

// What finds again, among what the movements bring along, the part of one of them.
std::string Chave(uint16_t empresa, std::string_view lancamento) {
  return std::to_string(empresa).append("|").append(lancamento);
}

// A settled payable may be named by the movement's document.
std::string ChaveFornecedor(uint16_t empresa, std::string_view lancamento, std::string_view docto,
                            std::string_view tipo) {
  return Chave(empresa, lancamento).append("|").append(docto).append("|").append(tipo);
}

}  // namespace

TfmRelCC::Consulta TfmRelCC::LeFiltros() const {
  Consulta consulta;
  consulta.tipo = static_cast<Tipo>(Opcao(RgTipo));
  consulta.data = kDias[Opcao(RgData)].coluna;
  consulta.periodo = {EdtDataDe.Date(), edtDataAte.Date()};
  consulta.filtro = Where("CONTACOR.CONTA", "=", RelConta);
  if (consulta.tipo != Tipo::PorConta) consulta.filtro += " AND CADCONTA.IMP_FLUXO = 'S'";
  const std::string alem = Where("CONTACOR.GRUPO", ">=", EdtClasseIni) +
                           Where("CONTACOR.GRUPO", "<=", EdtClasseFim) +
                           Where("CONTACOR.HISTORICO", "=", EdtHistHistorico);
  consulta.filtro += alem;
  consulta.por_saldos = alem.empty();
  if (RgBusca.ItemIndex() == 1) consulta.filtro += " AND CONTACOR.PENDENTE <> 'S'";
  consulta.filtro_linhas = Where("CADCONTA.BANCO", "=", RelCodBan) + Where("CONTACOR.DOCTO", "=", EdtDocto);
  return consulta;
}

std::string TfmRelCC::Indice() const {
  const std::string data = kDias[Opcao(RgData)].campo;
  const std::string indices[] = {
      data + ";Lancamento",    "CodGrupo", "CodHistorico",     "CodGrupo;CodHistorico",
      "CodGrupo;CodHistorico", "Numero",   data + ";Operacao", "Conta;" + data};
  const std::string& indice = indices[Opcao(RgAgrupar)];
  return cbAgpPendente.Checked() ? "Pendente;" + indice : indice;
}

std::string TfmRelCC::PorEmpresa(std::string_view sql, std::string_view tabela,
                                 std::string_view ordem) const {
  return ForCompanies(sql, tabela, consulta_.tipo == Tipo::TodasEmpresas, ordem);
}

uint16_t TfmRelCC::Empresa(std::string_view sufixo) {
  const auto found = std::find(empresas_.begin(), empresas_.end(), sufixo);
  const auto numero = static_cast<uint16_t>(found - empresas_.begin());
  if (found == empresas_.end()) empresas_.emplace_back(sufixo);
  return numero;
}

std::string TfmRelCC::Movimentos(const Periodo& dias, std::string_view mais) const {
  return std::string(kMovimentos).append(mais) + " WHERE 1 = 1 " + consulta_.filtro +
         consulta_.filtro_linhas + WhereBetween(consulta_.data, dias.de, dias.ate);
}

void TfmRelCC::Monta_Rel(Gathering& gathering) {
  GrafDia.Clear();
  TbFinan.EmptyDataSet();
  TbFinan.SetIndexFieldNames("");
  LayDown(TbRelatorio, kRelatorio);
  consulta_ = LeFiltros();
  como_ = {RgData.ItemIndex(), RgAgrupar.ItemIndex(), cbAgpPendente.Checked()};
  empresas_.clear();
  empresa_da_linha_.clear();
  empresa_do_titulo_.clear();

  gathering.Stage("Saldo anterior");
  const Currency inicial = SaldoAnterior();
  Currency saldo = inicial;
  bool cabem = inicial.FitsField();
  int64_t linhas = 0;
  const std::vector<Janela> janelas = Janelas(linhas);
  const std::string ordem = std::string("ORDER BY ") + kDias[Opcao(RgData)].lugar + ", " + kLugarLancamento;
  gathering.Stage("Lançamentos", linhas);
  for (const Janela& janela : janelas) {
    Anexos anexos;
    BuscaPessoas(janela, anexos);
    if (CbFinanceiro.Checked()) BuscaFinanceiro(janela, anexos);
    const std::string sql = std::string("SELECT ") + kColunas + kMais + Movimentos(janela.dias, kDescricoes);
    ForEachRow<kRelatorio>(PorEmpresa(sql, "CONTACOR", ordem), [&](Linha& linha, std::span<Value> sufixo) {
      Anexa(linha, Empresa(Trim(sufixo[0].Text())), anexos, inicial, saldo);
      cabem = cabem && saldo.FitsField();
      gathering.Advance();
    });
  }
  if (TbRelatorio.IsEmpty() && CbZeradas.Checked()) ContasSemMovimento(inicial);

  if (!cabem) {
    ApontaForaDeMedida(User(), Tabela.IBDatabase(), PorEmpresa(ForaDeMedida(kContaCorrente), "CONTACOR"));
  }

  GrafDia.Show(inicial);
  gathering.Stage("Ordem das linhas");
  TbRelatorio.SetIndexFieldNames(Indice());
  TbFinan.SetIndexFieldNames("Nome;Numero");
}

Currency TfmRelCC::SaldoAnterior() const {
  const std::string sql = "SELECT " + Soma(ComSinal(kContaCorrente, "CONTACOR")) + Anteriores();
  return TotalDeSaldo(Tabela.IBDatabase(), PorEmpresa(sql, "CONTACOR")).Round2();
}

std::string TfmRelCC::Anteriores() const {
  const Date ate = consulta_.periodo.de.AddDays(-1);
  return " FROM {CADCONTA} CADCONTA INNER JOIN " +
         (consulta_.por_saldos ? SaldosAte(kContaCorrente, consulta_.data, ate, Today())
                               : MovimentosAte(kContaCorrente, consulta_.data, ate)) +
         " ON (CONTACOR.CONTA = CADCONTA.CONTA) WHERE 1 = 1 " + consulta_.filtro;
}

std::vector<TfmRelCC::Janela> TfmRelCC::Janelas(int64_t& linhas) {
  const std::string sql = std::string("SELECT ") + consulta_.data + ", '{}' AS SUFIXO, COUNT(*) AS LINHAS" +
                          Movimentos(consulta_.periodo) + " GROUP BY " + consulta_.data;
  struct Dia {
    int64_t linhas = 0;
    std::vector<uint16_t> empresas;
  };
  std::map<Date, Dia> dias;
  ForEach(PorEmpresa(sql, "CONTACOR"), [&](std::span<Value> valores) {
    Dia& dia = dias[valores[0].AsDate()];
    dia.linhas += valores[2].AsInteger();
    dia.empresas.push_back(Empresa(Trim(valores[1].Text())));
  });
  std::vector<Janela> janelas;
  int64_t na_janela = kLinhasPorJanela;
  for (const auto& [data, dia] : dias) {
    if (na_janela >= kLinhasPorJanela) {
      janelas.push_back({{data, data}, {}});
      na_janela = 0;
    }
    Janela& janela = janelas.back();
    janela.dias.ate = data;
    for (const uint16_t empresa : dia.empresas) {
      if (std::find(janela.empresas.begin(), janela.empresas.end(), empresa) == janela.empresas.end())
        janela.empresas.push_back(empresa);
    }
    na_janela += dia.linhas;
    linhas += dia.linhas;
  }
  return janelas;
}

// A movement of which a receivable was settled is its customer's, otherwise the supplier's of a payable. The
// first settlement of a movement says who.
void TfmRelCC::BuscaPessoas(const Janela& janela, Anexos& anexos) const {
  for (const uint16_t empresa : janela.empresas) {
    const std::string clientes =
        "SELECT M.LANCAMENTO, ENTIDADE.NOME FROM (SELECT DISTINCT CONTACOR.LANCAMENTO" +
        Movimentos(janela.dias) +
        ") M INNER JOIN {RECEBERB} RECEBERB ON (RECEBERB.LANCAMENTO = M.LANCAMENTO)"
        " LEFT JOIN {RECEBER} RECEBER ON (RECEBER.NUMERO = RECEBERB.NUMERO)"
        " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = RECEBER.CODCLI)";
    ForEach(ForCompany(clientes, empresas_[empresa]), [&](std::span<Value> valores) {
      anexos.clientes.try_emplace(Chave(empresa, valores[0].Text()), std::move(valores[1]));
    });
    const std::string fornecedores =
        "SELECT M.LANCAMENTO, M.DOCTO, M.TIPO, ENTIDADE.NOME FROM (SELECT DISTINCT CONTACOR.LANCAMENTO, "
        "CONTACOR.DOCTO, CONTACOR.TIPO" +
        Movimentos(janela.dias) +
        ") M INNER JOIN {PAGTO1} PAGTO1 ON (PAGTO1.LANCAMENTO = M.LANCAMENTO)"
        " LEFT JOIN {PAGTO} PAGTO ON (PAGTO.NUM_AP = CASE WHEN M.TIPO = 'P' AND POSITION('/' IN M.DOCTO) > 0"
        " THEN SUBSTRING(M.DOCTO FROM 1 FOR POSITION('/' IN M.DOCTO) - 1) ELSE PAGTO1.NUM_AP END)"
        " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = PAGTO.CODCRE)";
    ForEach(ForCompany(fornecedores, empresas_[empresa]), [&](std::span<Value> valores) {
      anexos.fornecedores.try_emplace(
          ChaveFornecedor(empresa, valores[0].Text(), valores[1].Text(), valores[2].Text()),
          std::move(valores[3]));
    });
  }
}

// The titles of a movement may stand in any company where all are asked for.
void TfmRelCC::BuscaFinanceiro(const Janela& janela, Anexos& anexos) const {
  const auto busca = [&](const Baixas& baixas, const char* mais, auto& titulos) {
    for (const uint16_t empresa : janela.empresas) {
      const std::string movimentos =
          ForCompany("SELECT DISTINCT CONTACOR.LANCAMENTO" + Movimentos(janela.dias) +
                         " AND CONTACOR.TIPO = " + Funcoes.Aspas(baixas.tipo),
                     empresas_[empresa]);
      ForEachRow<kFinan>(PorEmpresa(Titulos(baixas, movimentos, "DESC_CLASSE", mais), baixas.tabela),
                         [&](Titulo& titulo, std::span<Value>) {
                           titulos[Chave(empresa, titulo["Lancto"].Text())].push_back(std::move(titulo));
                         });
    }
  };
  busca(kPagas, ", PAGTO1.DOCTO, ENTIDADE.CNPJ", anexos.pagar);
  busca(kRecebidas, ", RECEBERB.DOCTO, ENTIDADE.CNPJ", anexos.receber);
}

void TfmRelCC::Anexa(Linha& linha, uint16_t empresa, Anexos& anexos, Currency inicial, Currency& saldo) {
  const Currency valor = linha["Valor"].AsCurrency();
  const std::string_view operacao = linha["Operacao"].Text();
  if (operacao == "+") saldo += valor;
  if (operacao == "-") saldo -= valor;
  static constexpr Linha::Name kDia[] = {"DtLanc", "DtCont", "DtVencto"};
  GrafDia.Add(linha[kDia[Opcao(RgData)]].AsDate(), operacao == "+" ? valor : Currency(),
              operacao == "-" ? valor : Currency());
  const std::string lancamento(linha["Lancamento"].Text());
  const std::string tipo(linha["Tipo"].Text());

  const std::string chave = Chave(empresa, lancamento);
  if (const auto cliente = anexos.clientes.find(chave); cliente != anexos.clientes.end()) {
    linha["Pessoa"] = cliente->second;
  } else if (const auto fornecedor =
                 anexos.fornecedores.find(ChaveFornecedor(empresa, lancamento, linha["Numero"].Text(), tipo));
             fornecedor != anexos.fornecedores.end()) {
    linha["Pessoa"] = fornecedor->second;
  } else {
    linha["Pessoa"] = linha["Obs"];
  }
  const std::string_view pendente = linha["Pendente"].Text();
  linha["Pendente"] = pendente == "N" || pendente == "C" ? "N" : "S";
  linha["Saldo"] = saldo;
  linha["SaldoIni"] = inicial;
  linha["Data_ini"] = consulta_.periodo.de;
  linha["data_fim"] = consulta_.periodo.ate;
  linha["Agrupar"] = kAgrupar[Opcao(RgAgrupar)];

  if (CbFinanceiro.Checked()) {
    const auto& titulos = tipo == "P" ? anexos.pagar : anexos.receber;
    if (const auto dele = titulos.find(chave); (tipo == "P" || tipo == "R") && dele != titulos.end())
      AnexaTitulos(dele->second, lancamento, tipo == "R", empresa);
  }
  for (const auto campo : Linha::Names{"Nome_Banco", "DesGrupo", "Historico", "Empresa", "Pessoa"})
    nomes_.Share(linha[campo]);
  TbRelatorio.AppendRow(linha.Values());
  empresa_da_linha_.push_back(empresa);
}

void TfmRelCC::AnexaTitulos(const std::vector<Titulo>& titulos, const std::string& lancamento, bool repete,
                            uint16_t empresa) {
  for (const Titulo& titulo : titulos) {
    // A payable is shown once a movement, whichever of its settlements comes first.
    if (!repete && TbFinan.Locate("Lancto;Numero", {Value(lancamento), titulo["Numero"]})) continue;
    Titulo linha = titulo;
    for (const auto campo : Titulo::Names{"Nome", "DescHist", "Desc_Classe", "CNPJ"})
      nomes_.Share(linha[campo]);
    TbFinan.AppendRow(linha.Values());
    empresa_do_titulo_.push_back(empresa);
  }
}

void TfmRelCC::ContasSemMovimento(Currency inicial) {
  if (RelConta.Empty()) return;
  Linha linha;
  linha["Conta"] = RelConta.Text();
  linha["Empresa"] = Edit1.Text();
  linha["SaldoIni"] = inicial;
  linha["Banco"] = RelCodBan.Text();
  linha["Nome_Banco"] = RelDesBan.Text();
  const auto conta =
      Tabela.IBDatabase().Rows("SELECT AGENCIA, LIMITE FROM " + Funcoes.DBLocal("CADCONTA", true) +
                               " WHERE CONTA = " + Funcoes.Aspas(RelConta.Text()));
  if (!conta.empty()) {
    linha["Agencia"] = conta[0][0];
    linha["Limite"] = conta[0][1];
  }
  linha["Data_ini"] = consulta_.periodo.de;
  linha["data_fim"] = consulta_.periodo.ate;
  TbRelatorio.AppendRow(linha.Values());
  empresa_da_linha_.push_back(Empresa(Funcoes.vEmpresa_Atual()));
}

}  // namespace orv
