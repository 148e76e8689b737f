#include "reports/rel_sintatico.h"

#include <unordered_map>
#include <utility>

#include "frame/entry/unit.h"
#include "rules/origem.h"
#include "rules/saldo.h"

namespace orv {

thread_local TfmRelSintatico* fmRelSintatico = nullptr;

namespace {

const Unit kUnit("Relsintatico",
                 {"TfmRelSintatico", "Relatóro Sintático de Fluxo de Caixa", ScreenKind::Child,
                  "Contas Correntes", [](Application& a) { return std::make_unique<TfmRelSintatico>(a); }});

std::vector<GridColumn> ColunasDe(const char* codigo, const char* titulo, bool comissao = false) {
  std::vector<GridColumn> colunas = {{.field = codigo, .title = "Código", .width = 8},
                                     {.field = "DESCRICAO", .title = titulo, .width = 24},
                                     {.field = "VALOR", .title = "Valor", .width = 14}};
  if (comissao) colunas.push_back({.field = "COMISSAO", .title = "Comissão", .width = 12});
  return colunas;
}

}  // namespace

TfmRelSintatico::TfmRelSintatico(Application& application)
    : ReportScreen(application, "TfmRelSintatico", "fmRelSintatico", "Relatóro Sintático de Fluxo de Caixa"),
      DBGrid1(*this, "DBGrid1", TbContas, GridColumns(kContas), true, "Contas"),
      DBGrid2(*this, "DBGrid2", Tbrelatorio, GridColumns(kRelatorio), true, "Movimentos por classe"),
      DBGrid3(*this, "DBGrid3", QryRep, ColunasDe("REGIAO", "Região", true), true, "Por representante"),
      DBGrid4(*this, "DBGrid4", QryCond, ColunasDe("CDCONDICAO", "Condição"), true,
              "Por condição de pagamento"),
      DBGrid5(*this, "DBGrid5", QryMoeda, ColunasDe("CDMOEDA", "Moeda"), true, "Por moeda") {
  Layout(R"(
    @bar {
      GbData { EdtDataDe edtDataAte } EdtConta PqConta EdtEmp
      @more { GbOpcoes { CbSGrupo cbContas CbEmpresas } GbVendas { CbRep CbCond CbMoeda } }
      @primary BitBtn29
    } /
    PageControl1 {
      TsCaixa { DBGrid1 / DBGrid2 }
      TsVendas { DBGrid3 / @sides { DBGrid4 DBGrid5 } }
    } /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  for (DataSet* set :
       {static_cast<DataSet*>(&Tbrelatorio), static_cast<DataSet*>(&TbSaldo), static_cast<DataSet*>(&TbTotal),
        static_cast<DataSet*>(&TbContas), static_cast<DataSet*>(&QryRep), static_cast<DataSet*>(&QryCond),
        static_cast<DataSet*>(&QryMoeda)}) {
    AddSet(*set);
  }
  AbreTabelas({"TbCadConta"});
  Cria_Tabela();
  BuscaVendas(false, false, false);
  Period(EdtDataDe, edtDataAte);
  EdtDataDe.OnEnter = nullptr;

  Lookups({{&EdtConta, &PqConta, {{"EMPRESA", &EdtEmp}}, "", true, nullptr}});
  EdtConta.OnExit = [this] { EdtContaExit(); };
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { Funcoes.Chama_Relatorio(*this, "WCCSistatico"); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  constexpr const char* kCondicoes = " INNER JOIN {CONDIVENDA} COND ON COND.CDVENDA = VENDA.CODVEN";
  DBGrid3.OnDblClick = [this] {
    // A sale counts with each of its titles.
    MostraVendas(QryRep, " LEFT OUTER JOIN {RECEBER} RECEBER ON VENDA.CODVEN = RECEBER.NRO_CUPOM",
                 "REPRESEN.REGIAO", "VENDA.VALOR");
  };
  DBGrid4.OnDblClick = [this] { MostraVendas(QryCond, kCondicoes, "COND.CDCONDICAO", "COND.VLVENDA"); };
  DBGrid5.OnDblClick = [this] { MostraVendas(QryMoeda, kCondicoes, "COND.CDMOEDA", "COND.VLVENDA"); };
  // What the report is about stays what was gathered, whatever is chosen since.
  const auto responde = [this](const char* nome, auto valor) {
    Answers[nome] = {0, [this, valor](auto) { return Value(valor(consulta_)); }};
  };
  responde("De", [](const Consulta& c) { return c.periodo.de; });
  responde("Ate", [](const Consulta& c) { return c.periodo.ate; });
  responde("TodasEmpresas", [](const Consulta& c) { return c.empresas ? 1 : 0; });
}

void TfmRelSintatico::EdtContaExit() {
  if (EdtConta.Empty() || Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}})) return;
  Inform("Conta inválida.");
  EdtConta.Clear();
  EdtConta.SetFocus();
}

void TfmRelSintatico::BitBtn29Click() {
  Gather({&Tbrelatorio, &TbSaldo, &TbTotal, &TbContas}, [this](Gathering& andamento) { Monta(andamento); });
}

void TfmRelSintatico::Monta(Gathering& andamento) {
  consulta_ = {.periodo = {EdtDataDe.Date(), edtDataAte.Date()},
               .conta = Where("CADCONTA.CONTA", "=", EdtConta),
               .opcao = "",
               .empresas = CbEmpresas.Checked()};
  for (const CheckBox* opcao : {&CbRep, &CbCond, &CbMoeda, &CbSGrupo})
    consulta_.opcao += opcao->Checked() ? "S" : "N";
  Cria_Tabela();
  andamento.Stage("Vendas");
  BuscaVendas(CbRep.Checked(), CbCond.Checked(), CbMoeda.Checked());
  andamento.Stage("Saldos das contas");
  busca_Saldos();
  Executa_SQL(andamento);
  andamento.Stage("Ordem das linhas");
  Tbrelatorio.SetIndexFieldNames("codigo");
}

void TfmRelSintatico::Cria_Tabela() {
  LayDown(Tbrelatorio, kRelatorio);
  LayDown(TbSaldo, kSaldo);
  LayDown(TbTotal, kSaldo);
  LayDown(TbContas, kContas);
}

std::string TfmRelSintatico::PorEmpresa(const std::string& sql, const char* ordem) const {
  return ForCompanies(sql, "CONTACOR", consulta_.empresas, ordem);
}

// --- Balances.

void TfmRelSintatico::busca_Saldos() {
  const auto& [de, ate] = consulta_.periodo;
  const auto somas = [&](Date dia) {
    const auto lado = [](const char* operacao) {
      return "COALESCE(" + SomaSe(std::string("OPERACAO = '") + operacao + "'") + ", '')";
    };
    return "(SELECT " + lado("+") + " || ';' || " + lado("-") + " FROM " +
           SaldosAte(kContaCorrente, "DT_CONT", dia, Today()) +
           " WHERE CONTACOR.CONTA = CADCONTA.CONTA AND CONTACOR.PENDENTE = 'N')";
  };
  std::string sql = "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, " + somas(de.AddDays(-1)) + ", " + somas(ate) +
                    " FROM {CADCONTA} CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'" + consulta_.conta;
  if (!cbContas.Checked()) {
    sql += " AND EXISTS (SELECT 1 FROM {CONTACOR} CONT WHERE CONT.CONTA = CADCONTA.CONTA" +
           WhereBetween("CONT.DT_CONT", de, ate) + ")";
  }

  // The sums of an account, "" where it has no such movement, by its side.
  struct Lado {
    bool ha = false;
    Currency valor;
    void Junta(const std::string& soma) {
      if (soma.empty()) return;
      ha = true;
      valor += SomaDe(Value(soma));
    }
  };
  struct Conta {
    Value conta, empresa;
    std::array<Lado, 2> inicio, fim;
  };
  std::vector<Conta> contas;
  for (const auto& linha : LinhasDeSaldo(Tabela.IBDatabase(), PorEmpresa(sql, "ORDER BY 1, 2"))) {
    // Companies may have accounts of one number: those of one holder are shown as one.
    if (contas.empty() || contas.back().conta != linha[0] || contas.back().empresa != linha[1])
      contas.push_back({linha[0], linha[1], {}, {}});
    Conta& conta = contas.back();
    const std::vector<std::string> inicio = Split(linha[2].Text(), ";"), fim = Split(linha[3].Text(), ";");
    for (const std::size_t lado : {0, 1}) {
      conta.inicio[lado].Junta(inicio[lado]);
      conta.fim[lado].Junta(fim[lado]);
    }
  }

  const auto anexa = [](TClientDataSet& set, const Conta& conta, const std::array<Lado, 2>& lados) {
    for (const std::size_t lado : {0, 1}) {
      if (!lados[lado].ha) continue;
      Value linha[] = {lados[lado].valor, conta.empresa, conta.conta, lado == 0 ? "+" : "-"};
      set.AppendRow(linha);
    }
  };
  bool cabem = true;
  for (const Conta& conta : contas) {
    anexa(TbSaldo, conta, conta.inicio);
    anexa(TbTotal, conta, conta.fim);
    const auto& [creditos, debitos] = conta.fim;
    if (!creditos.ha && !debitos.ha && !conta.inicio[0].ha && !conta.inicio[1].ha) continue;
    const Currency inicial = conta.inicio[0].valor - conta.inicio[1].valor;
    Value linha[] = {conta.conta,
                     conta.empresa,
                     inicial,
                     creditos.valor - conta.inicio[0].valor,
                     debitos.valor - conta.inicio[1].valor,
                     creditos.valor - debitos.valor};
    TbContas.AppendRow(linha);
    cabem = cabem && creditos.valor.FitsField() && debitos.valor.FitsField();
  }
  if (!cabem) ApontaForaDeMedida(User(), Tabela.IBDatabase(), PorEmpresa(ForaDeMedida(kContaCorrente)));
}

// --- Movements.

std::string TfmRelSintatico::Movimentos() const {
  return " FROM {CONTACOR} CONTACOR INNER JOIN {CADCONTA} CADCONTA ON CADCONTA.CONTA = CONTACOR.CONTA AND "
         "CADCONTA.IMP_FLUXO = 'S'" +
         consulta_.conta + " WHERE CONTACOR.PENDENTE = 'N'" +
         WhereBetween("CONTACOR.DT_LAN", consulta_.periodo.de, consulta_.periodo.ate);
}

void TfmRelSintatico::Executa_SQL(Gathering& andamento) {
  // Names of the classes, and of the groups that their first letters tell, by company.
  std::unordered_map<std::string, Value> nomes;
  const auto chave = [](const Value& sufixo, std::string_view codigo) {
    return std::string(Trim(sufixo.Text())).append("|").append(TrimCode(codigo));
  };
  ForEach(PorEmpresa("SELECT '{}', CODIGO, DESCRICAO FROM {SUBGRUPO}"), [&](std::span<Value> linha) {
    nomes[chave(linha[0], linha[1].Text())] = CutChars(linha[2].Text(), 40);
  });
  // Rows of one class follow one another.
  ReportRow<kRelatorio> linha;
  Value classe, sufixo;
  const auto anexa = [&](Value valor, Value operacao, const Value& da_classe, const Value& do_sufixo) {
    if (linha["Opcao"].IsNull() || classe != da_classe || sufixo != do_sufixo) {
      classe = da_classe;
      sufixo = do_sufixo;
      const auto nome = [&](std::string_view codigo) {
        const auto achado = nomes.find(chave(sufixo, codigo));
        return achado == nomes.end() ? Value() : achado->second;
      };
      linha["Codigo"] = classe;
      linha["Grupo"] = nome(classe.Text());
      linha["Classe"] = nome(CutChars(classe.Text(), 1));
      linha["Data_ini"] = consulta_.periodo.de.Brazil();
      linha["Data_fim"] = consulta_.periodo.ate.Brazil();
      linha["Opcao"] = consulta_.opcao;
    }
    linha["Valor"] = std::move(valor);
    linha["Operacao"] = std::move(operacao);
    ReportRow<kRelatorio> nova = linha;
    Tbrelatorio.AppendRow(nova.Values());
    andamento.Advance();
  };
  andamento.Stage("Movimentos");
  if (CbSGrupo.Checked()) {
    struct Classe {
      Value codigo, sufixo;
      std::string operacao;
      Currency valor;
    };
    std::vector<Classe> classes;
    std::unordered_map<std::string, std::size_t> onde;
    // A class's amount goes by the operation of its first movement.
    const std::string sql =
        "SELECT CONTACOR.GRUPO, '{}', " + Soma("CONTACOR.VALOR") +
        ", MIN(COALESCE(CONTACOR.LANCAMENTO, '') || '|' || COALESCE(CONTACOR.OPERACAO, ''))" + Movimentos() +
        " GROUP BY CONTACOR.GRUPO";
    ForEach(PorEmpresa(sql), [&](std::span<Value> linha) {
      const auto [achada, nova] = onde.try_emplace(std::string(TrimCode(linha[0].Text())), classes.size());
      if (nova) {
        const std::string_view primeiro = linha[3].Text();
        classes.push_back(
            {linha[0], linha[1], std::string(primeiro.substr(primeiro.rfind('|') + 1)), Currency()});
      }
      classes[achada->second].valor += SomaDe(linha[2]);
    });
    for (const Classe& classe : classes) anexa(classe.valor, classe.operacao, classe.codigo, classe.sufixo);
  } else {
    ForEach(
        PorEmpresa("SELECT CONTACOR.GRUPO, '{}', CONTACOR.OPERACAO, CONTACOR.VALOR, CONTACOR.LANCAMENTO" +
                       Movimentos(),
                   "ORDER BY 1, 5"),
        [&](std::span<Value> linha) { anexa(std::move(linha[3]), std::move(linha[2]), linha[0], linha[1]); });
  }
  if (Tbrelatorio.IsEmpty()) {
    linha["Opcao"] = consulta_.opcao;
    Tbrelatorio.AppendRow(linha.Values());
  }
}

// --- Sales.

// The sales of an earlier gathering would be of another period.
void TfmRelSintatico::BuscaVendas(bool representante, bool condicao, bool moeda) {
  const bool uma = !consulta_.empresas;
  Busca_Representante(uma && representante);
  Busca_CondPagto(uma && condicao);
  Busca_Moeda(uma && moeda);
}

std::string TfmRelSintatico::Vendas(bool pedidas) const {
  return std::string(pedidas ? " WHERE 1 = 1" : " WHERE 1 = 0") +
         WhereBetween("VENDA.DATA", consulta_.periodo.de, consulta_.periodo.ate) +
         " AND VENDA.CANCELADA <> 1 AND VENDA.TROCA <> 1 ";
}

void TfmRelSintatico::Abre(TOrvQuery& query, const std::string& sql) {
  query.SQL.SetText(Funcoes.DBLocal_SQL(sql, ""));
  query.Open();
}

void TfmRelSintatico::Busca_Representante(bool pedida) {
  Abre(QryRep,
       "SELECT SUM(VENDA.VALOR) AS VALOR, REPRESEN.REGIAO, REGIAO.DESCRICAO, "
       "SUM((RECEBER.VALOR2/100)*RECEBER.COM1) AS COMISSAO FROM {VENDA} VENDA "
       "LEFT OUTER JOIN {REPRESEN} REPRESEN ON REPRESEN.CODREP = VENDA.CODREP "
       "LEFT OUTER JOIN {REGIAO} REGIAO ON REGIAO.REGIAO = REPRESEN.REGIAO "
       "LEFT OUTER JOIN {RECEBER} RECEBER ON VENDA.CODVEN = RECEBER.NRO_CUPOM" +
           Vendas(pedida) + "GROUP BY REPRESEN.REGIAO, REGIAO.DESCRICAO");
}

void TfmRelSintatico::Busca_CondPagto(bool pedida) {
  Abre(QryCond,
       "SELECT COND.CDCONDICAO, CONDICAO.DESCRICAO, SUM(COND.VLVENDA) AS VALOR FROM {VENDA} VENDA "
       "INNER JOIN {CONDIVENDA} COND ON COND.CDVENDA = VENDA.CODVEN "
       "LEFT OUTER JOIN {CONDICAO} CONDICAO ON COND.CDCONDICAO = CONDICAO.CODCOND" +
           Vendas(pedida) + "GROUP BY COND.CDCONDICAO, CONDICAO.DESCRICAO");
}

void TfmRelSintatico::Busca_Moeda(bool pedida) {
  Abre(QryMoeda,
       "SELECT COND.CDMOEDA, MOEDA.DESCRICAO, SUM(COND.VLVENDA) AS VALOR FROM {VENDA} VENDA "
       "INNER JOIN {CONDIVENDA} COND ON COND.CDVENDA = VENDA.CODVEN "
       "LEFT OUTER JOIN {MOEDA} MOEDA ON COND.CDMOEDA = MOEDA.CODMOE" +
           Vendas(pedida) + "GROUP BY COND.CDMOEDA, MOEDA.DESCRICAO");
}

// --- From a figure to where it comes from.

// A balance is too many movements to list one by one.
void TfmRelSintatico::DBGrid1DblClick() {
  if (TbContas.IsEmpty()) return;
  const std::string conta = TbContas["Conta"].AsString();
  const std::string sql =
      SaldoPorMes("DT_CONT", Creditos(kContaCorrente), Debitos(kContaCorrente),
                  " FROM " + SaldosAte(kContaCorrente, "DT_CONT", consulta_.periodo.ate, Today()) +
                      " WHERE PENDENTE = 'N' AND " + Igual("CONTA", conta) +
                      " AND EXISTS (SELECT 1 FROM {CADCONTA} C WHERE C.CONTA = CONTACOR.CONTA AND "
                      "COALESCE(C.EMPRESA, '') = " +
                      Funcoes.Aspas(TbContas["Empresa"].AsString()) + ")");
  ShowDetail("Saldo da conta " + conta, LinhasDeSaldo(Tabela.IBDatabase(), PorEmpresa(sql, "ORDER BY 1, 2")),
             kSaldoPorMes, CompletaMes);
}

void TfmRelSintatico::DBGrid2DblClick() {
  if (Tbrelatorio.IsEmpty() || Tbrelatorio["Operacao"].IsNull()) return;
  const std::string classe = Tbrelatorio["Codigo"].AsString();
  const std::string sql = origem::Movimentos(
      (classe.empty() ? "LANCAMENTO IS NOT NULL AND COALESCE(M.GRUPO, '') = ''" : Igual("GRUPO", classe)) +
      " AND M.PENDENTE = 'N'" + WhereBetween("M.DT_LAN", consulta_.periodo.de, consulta_.periodo.ate) +
      " AND M.CONTA IN (SELECT CADCONTA.CONTA FROM {CADCONTA} CADCONTA WHERE "
      "CADCONTA.IMP_FLUXO = 'S'" +
      consulta_.conta + ")");
  ShowDetail("Movimentos da classe " + classe, PorEmpresa(sql));
}

void TfmRelSintatico::MostraVendas(TOrvQuery& query, const char* de, const char* coluna, const char* valor) {
  if (query.IsEmpty()) return;
  const std::string nome = std::string(coluna).substr(std::string_view(coluna).find('.') + 1),
                    codigo = query[nome].AsString();
  const std::string sql =
      origem::Linhas("Venda", "VENDA.CODVEN", "NULL", "VENDA.DATA", "COALESCE(REPRESEN.NOME, '')",
                     origem::Valor(valor).c_str(), "{VENDA} VENDA") +
      " LEFT OUTER JOIN {REPRESEN} REPRESEN ON REPRESEN.CODREP = VENDA.CODREP" + de + Vendas(true) + "AND " +
      (query[nome].IsNull() ? std::string(coluna) + " IS NULL" : Igual(coluna, codigo));
  ShowDetail("Vendas: " + codigo + " " + query["DESCRICAO"].AsString(), Funcoes.DBLocal_SQL(sql, ""));
}

}  // namespace orv
