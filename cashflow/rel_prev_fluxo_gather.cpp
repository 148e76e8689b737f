// What the forecast gathers of accounts and titles, and the customers' average delays.
#include "cashflow/rel_prev_fluxo.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::string Codigo(const Value& codigo) { return std::string(TrimCode(codigo.Text())); }

}  // namespace

void TfmRelPrevFluxo::BitBtn29Click() {
  for (Label* linha : {&LbAtraso, &LbMenor}) linha->SetCaption("");
  LbConsulta.Mostra("A última consulta não terminou: nada foi projetado.");
  const ScopedValue montando(montando_, true);
  Gather({&TbReceber, &TbPagar, &TbTotais, &TbConta, &TbMenor, &TbDesconto, &TbCond, &TbPrev},
         [this](Gathering& andamento) { Monta(andamento); });
}

void TfmRelPrevFluxo::Monta(Gathering& andamento) {
  Consulta consulta{andamento, {DtIni.Date(), DtFin.Date()}, DiasEfetivos(Funcoes, Contabil)};
  Cria_Tabelas();
  MontaCabecalho();
  andamento.Stage("Saldos das contas");
  BuscaSaldoContas();
  AtualizaDiasAtrazo(consulta);
  LeBorderos();
  LeVencidas(consulta);
  BuscaReceber(consulta);
  BuscaPagar(consulta);
  BuscaAntPagar(consulta);
  BuscaAntReceber(consulta);
  if (!Funcoes.ListaSQL(EdtSitDesc.Text()).empty()) BuscaDuplicatasDescontadas(consulta);
  if (CbPedVen.Checked()) BuscaPedidoPendente(consulta);
  if (CbPedCom.Checked()) BuscaCompraPendente(consulta);
  if (CbOrcaPag.Checked()) BuscaOrcamentoPagar(consulta);
  if (CbOrcaRec.Checked()) GeraPercentualFaturamento(consulta);
  if (CbLimDesc.Checked()) LimiteDescontoBancario(consulta);
  PassaClasses(kRecebe, TbReceber);
  PassaClasses(kPaga, TbPagar);
  MostraColunas();
  MostraFora(consulta);
  CalculaSaldos();
}

// --- Accounts.

void TfmRelPrevFluxo::BuscaSaldoContas() {
  const auto parte = [](const char* operacao, const char* pendente) {
    return "COALESCE(" +
           SomaSe(std::string("OPERACAO = '") + operacao + "' AND PENDENTE = '" + pendente + "'") + ", '')";
  };
  const bool saldos = CbSaldo.Checked();
  // Credits, pending credits and debits in one text: so an account is read once.
  const std::string somas = "(SELECT " + parte("+", "N") + " || ';' || " + parte("+", "S") + " || ';' || " +
                            parte("-", "N") + " FROM " +
                            SaldosAte(kContaCorrente, "DT_CONT", dtSaldo.Date(), Today()) +
                            " WHERE CONTACOR.CONTA = CADCONTA.CONTA)";
  const std::string sql =
      "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, CADCONTA.LIMITE, CADCONTA.IMP_FLUXO, " +
      (saldos ? somas : "''") + " AS SOMAS FROM {CADCONTA} CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'" +
      (saldos ? "" : " AND EXISTS (SELECT 1 FROM {CONTACOR} CONTACOR WHERE CONTACOR.CONTA = CADCONTA.CONTA)");
  auto contas = LinhasDeSaldo(Tabela.IBDatabase(), Funcoes.DBLocal_SQL(sql, "") + "\nORDER BY 1");
  for (auto& c : contas) {
    for (const std::string& soma : saldos ? Split(c[4].Text(), ";") : std::vector<std::string>{})
      c.push_back(soma.empty() ? Value() : Value(soma));
  }
  const auto anexa = [&](const std::vector<Value>& c, Currency saldo, const Value& pendente) {
    Value linha[] = {c[3], c[0], c[1], saldo, c[2], Value(), pendente};
    TbConta.AppendRow(linha);
  };
  if (!saldos) {
    for (const auto& c : contas) anexa(c, Currency(), Value());
  } else {
    // Accounts with settled credits come first, then those with pending ones, then those with debits.
    bool cabem = true;
    for (const std::size_t primeira : {5U, 6U, 7U}) {
      for (const auto& c : contas) {
        if (c[primeira].IsNull() || (primeira > 5 && !c[5].IsNull()) || (primeira > 6 && !c[6].IsNull()))
          continue;
        const Currency saldo = SomaDe(c[5]) - SomaDe(c[7]);
        cabem = cabem && saldo.FitsField() && SomaDe(c[6]).FitsField();
        anexa(c, saldo, c[6].IsNull() ? Value() : Value(SomaDe(c[6])));
      }
    }
    if (!cabem)
      ApontaForaDeMedida(User(), Tabela.IBDatabase(), Funcoes.DBLocal_SQL(ForaDeMedida(kContaCorrente), ""));
  }
  const Currency situacao = ValorSituacao();
  if (TbConta.IsEmpty()) return;
  TbConta.Last();
  TbConta.Edit();
  TbConta["Val_Sit"] = situacao;
  TbConta.Post();
}

Currency TfmRelPrevFluxo::ValorSituacao() {
  const std::string sql =
      "SELECT " + Soma(EmAbertoReceber()) + " AS VALOR FROM {RECEBER} RECEBER WHERE RECEBER.STATUS = 'N'" +
      WhereBetween("RECEBER.DT_VENCTO", DtSitIni.Date(), DtSitFim.Date()) +
      " AND RECEBER.SITUACAO = " + Funcoes.Aspas(EdtCodSit.Text()) + " AND " + EmAbertoReceber() + " > 0";
  return Total(Tabela.IBDatabase(), ForCompanies(sql, "RECEBER", CbEmpresa.Checked()));
}

// --- The customers' average delays.

std::map<std::string, int64_t> TfmRelPrevFluxo::AtrasosMedios() {
  std::map<std::string, int64_t> medios;
  ForEach("SELECT CODCLI, ATRASO_MEDIO FROM " + Funcoes.DBLocal("ENTIDADE", true) +
              " WHERE ATRASO_MEDIO IS NOT NULL",
          [&](std::span<Value> v) { medios[Codigo(v[0])] = v[1].AsInteger(); });
  return medios;
}

void TfmRelPrevFluxo::AtualizaDiasAtrazo(Consulta& consulta) {
  consulta.andamento.Stage("Atraso médio dos clientes");
  struct Atraso {
    Int128 pesado = 0, valor = 0;
  };
  std::map<std::string, Atraso> atrasos;
  const std::string sql = Funcoes.DBLocal_SQL(
      "SELECT RECEBER.VALOR2, RECEBER.DT_VENCTO, MAX(RECEBERB.DT_PAGTO) AS DT_PAGTO, RECEBER.CODCLI"
      " FROM {RECEBER} RECEBER LEFT JOIN {RECEBERB} RECEBERB ON RECEBERB.NUMERO = RECEBER.NUMERO"
      " WHERE RECEBER.STATUS = 'N'" +
          std::string(kForaP) + WhereBetween("RECEBER.DT_VENCTO", DtAtualIni.Date(), DtAtualFim.Date()) +
          " AND (RECEBER.VALOR + RECEBER.JUROS - RECEBER.DESCONTO - RECEBER.VAL_DEV - RECEBER.VALOR_PAGO) <= "
          "0 GROUP BY RECEBER.VALOR2, RECEBER.DT_VENCTO, RECEBER.CODCLI ORDER BY RECEBER.CODCLI ",
      "");
  ForEach(sql, [&](std::span<Value> v) {
    consulta.andamento.Advance();
    Atraso& atraso = atrasos[Codigo(v[3])];
    const Int128 valor = v[0].AsCurrency().Raw();
    const Date pago = v[2].AsDate();
    const int dias = pago.Empty() ? 0 : pago - v[1].AsDate();
    // What was paid on time or early pulls the average down.
    if (dias > 0) atraso.pesado += valor * dias;
    atraso.valor += valor;
  });

  const std::map<std::string, int64_t> medios = AtrasosMedios();
  std::vector<std::string> mudam;
  for (const auto& [cliente, atraso] : atrasos) {
    if (atraso.valor <= 0) continue;
    const auto medio = static_cast<int64_t>(atraso.pesado / atraso.valor);
    const auto antes = medios.find(cliente);
    if (antes != medios.end() && antes->second == medio) continue;
    mudam.push_back("UPDATE " + Funcoes.DBLocal("ENTIDADE", true) + " SET ATRASO_MEDIO = " +
                    std::to_string(medio) + " WHERE CODCLI = " + Funcoes.Aspas(cliente));
  }
  // From the first of these to the commit nothing reaches the user, who might let others wait.
  int64_t mudados = 0;
  for (const std::string& um : mudam) mudados += Tabela.IBDatabase().Execute(um);
  Tabela.CommitRetaining();
  LbAtraso.SetCaption("Atraso médio: " + (mudados == 0   ? std::string("nenhum cliente mudou.")
                                          : mudados == 1 ? "1 cliente mudou."
                                                         : std::to_string(mudados) + " clientes mudaram."));
}

// --- What is looked up for each title, read at once.

void TfmRelPrevFluxo::LeBorderos() {
  borderos_.clear();
  programas_.clear();
  ForEach(Funcoes.DBLocal_SQL("SELECT BORDERO.NUMERO, BORDERO.TIPO, BORDERO.CONTA, CADCONTA.DIAS_COMP FROM "
                              "{BORDERO} BORDERO LEFT JOIN {CADCONTA} CADCONTA ON CADCONTA.CONTA = "
                              "BORDERO.CONTA WHERE BORDERO.CONTA <> ''",
                              ""),
          [this](std::span<Value> v) {
            const std::string numero = Codigo(v[0]), conta = Codigo(v[2]);
            if (v[1].Text() == "R") borderos_[numero] = {conta, static_cast<int>(v[3].AsInteger()) - 1};
            try {
              if (v[1].Text() == "P") programas_[ParseInteger(numero)] = conta;
            } catch (const ConversionError&) {
              // No title names a program that isn't a number.
            }
          });
}

int TfmRelPrevFluxo::DiasCompensacaoConta(const std::string& bordero) const {
  const auto achado = borderos_.find(bordero);
  return achado == borderos_.end() ? 0 : achado->second.dias;
}

void TfmRelPrevFluxo::LeVencidas(Consulta& consulta) {
  const auto le = [&](Vencidas& vencidas, const char* passo, const char* classe, const std::string& aberto,
                      const std::string& onde) {
    Percorre(consulta, passo,
             std::string("SELECT ") + classe + " AS CLASSE, " + Soma(aberto) + " AS VALOR FROM " + onde +
                 " < " + Funcoes.AspasData(consulta.periodo.de) + " AND " + aberto + " > 0 GROUP BY " +
                 classe,
             CbEmpresa.Checked(), [&](std::span<Value> v) {
               // What has no class at all is in the row of none.
               vencidas[v[0].IsNull() ? "\t" : Codigo(v[0])] += SomaDe(v[1]);
             });
  };
  if (CbVencRec.Checked())
    le(consulta.vencidas_receber, "Vencidas a receber", "RECEBER.CLASSE", EmAbertoReceber(),
       "{RECEBER} RECEBER WHERE RECEBER.STATUS = 'N'" + std::string(kForaP) + " AND RECEBER.DT_VENCTO");
  if (CbVencPag.Checked())
    le(consulta.vencidas_pagar, "Vencidas a pagar", "PAGTO.NUM_OS", EmAbertoPagar(),
       "{PAGTO} PAGTO WHERE PAGTO.STATUS = 'N' AND PAGTO.DT_VEN");
}

Currency TfmRelPrevFluxo::ValorVencidasReceber(const Consulta& consulta, const std::string& classe) const {
  const auto achada = consulta.vencidas_receber.find(classe);
  return achada == consulta.vencidas_receber.end() ? Currency() : achada->second;
}

Currency TfmRelPrevFluxo::ValorVencidasPagar(const Consulta& consulta, const std::string& classe) const {
  const auto achada = consulta.vencidas_pagar.find(classe);
  return achada == consulta.vencidas_pagar.end() ? Currency() : achada->second;
}

// --- What the steps have in common.

void TfmRelPrevFluxo::Percorre(Consulta& consulta, const char* passo, const std::string& sql, bool todas,
                               const std::function<void(std::span<Value>)>& linha, std::string_view ordem) {
  consulta.andamento.Stage(passo);
  ForEach(ForCompanies(sql, "", todas, ordem), [&](std::span<Value> v) {
    linha(v);
    consulta.andamento.Advance();
  });
}

std::string TfmRelPrevFluxo::SelectReceber(const std::string& data, const std::string& onde) const {
  return "SELECT RECEBER.CLASSE, SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, ENTIDADE.ATRASO_MEDIO, "
         "RECEBER.BORDERO, " +
         data + " AS DT_VENCTO, RECEBER.NUMERO, ENTIDADE.NOME, " + EmAbertoReceber() +
         " AS VALOR, '{}' AS EMPRESA FROM {RECEBER} RECEBER"
         " LEFT OUTER JOIN {SUBGRUPO} SUBGRUPO ON RECEBER.CLASSE = SUBGRUPO.CODIGO"
         " LEFT OUTER JOIN {ENTIDADE} ENTIDADE ON RECEBER.CODCLI = ENTIDADE.CODCLI WHERE " +
         onde + kForaP;
}

std::string TfmRelPrevFluxo::SelectPagar(const std::string& onde) const {
  return "SELECT PAGTO.NUM_OS, SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, 0 AS ATRASO_MEDIO, PAGTO.LOTE, "
         "PAGTO.DT_VEN, PAGTO.NUM_AP, FORNECED.NOME, " +
         EmAbertoPagar() +
         " AS VALOR, '{}' AS EMPRESA FROM {PAGTO} PAGTO"
         " LEFT OUTER JOIN {SUBGRUPO} SUBGRUPO ON PAGTO.NUM_OS = SUBGRUPO.CODIGO"
         " LEFT OUTER JOIN {ENTIDADE} FORNECED ON PAGTO.CODCRE = FORNECED.CODCLI WHERE PAGTO.STATUS = " +
         onde;
}

void TfmRelPrevFluxo::PercorreTitulos(Consulta& consulta, const char* passo, const std::string& sql,
                                      Tipo tipo, const std::function<void(Lido&)>& lido) {
  const std::string atual = Funcoes.vEmpresa_Atual();
  const bool paga = sql.find("{PAGTO}") != std::string::npos;
  const auto le = [&](std::span<Value> v) {
    nomes_.Share(v[7]);
    Lido um{Codigo(v[0]),
            Codigo(v[0]),
            v[1],
            v[2],
            {tipo, std::move(v[6]), std::move(v[7]), v[9], v[5].AsDate(), v[8].AsCurrency()},
            static_cast<int>(v[3].AsInteger()),
            Codigo(v[4])};
    // The accounts are those of the present company.
    if (!um.bordero.empty() && v[9].Text() == atual) {
      if (!paga) {
        const auto achado = borderos_.find(um.bordero);
        if (achado != borderos_.end()) um.parte.conta = achado->second.conta;
      } else if (um.bordero.find_first_not_of("0123456789") == std::string::npos) {
        const auto achado = programas_.find(ParseInteger(um.bordero));
        if (achado != programas_.end()) um.parte.conta = achado->second;
      }
    }
    lido(um);
  };
  Percorre(consulta, passo, sql, CbEmpresa.Checked(), le, paga ? "ORDER BY 1, 6" : "ORDER BY 6, 1");
}

std::size_t TfmRelPrevFluxo::Linha(Lado lado, const std::string& classe,
                                   const std::function<void(Classe&)>& nova) {
  Quadro& quadro = quadros_[lado];
  const auto [achada, e_nova] = quadro.onde.try_emplace(classe, quadro.linhas.size());
  if (e_nova) {
    quadro.linhas.emplace_back().codigo = classe;
    nova(quadro.linhas.back());
  }
  return achada->second;
}

void TfmRelPrevFluxo::SomaNaClasse(Lado lado, std::size_t linha, std::size_t coluna, Date dia, Parte parte) {
  Classe& classe = quadros_[lado].linhas[linha];
  classe.valores[coluna - 1] += parte.valor;
  classe.tem.set(coluna - 1);
  const Currency com_sinal = lado == kRecebe ? parte.valor : -parte.valor;
  dias_[dia] += com_sinal;
  if (!parte.conta.empty()) {
    auto conta = por_conta_.find(parte.conta);
    if (conta == por_conta_.end()) conta = por_conta_.try_emplace(std::string(parte.conta)).first;
    conta->second[dia] += com_sinal;
  }
  parte.dia = dia;
  parte.lado = lado;
  parte.coluna = static_cast<uint8_t>(coluna);
  parte.linha = static_cast<uint32_t>(linha);
  partes_.push_back(std::move(parte));
}

void TfmRelPrevFluxo::AdicionaClasse(Lado lado, Lido& lido, std::size_t coluna, Date dia, Currency vencidas) {
  if (coluna == 0) return SemColuna(lado, lido.parte.valor);
  const std::size_t linha = Linha(lado, lido.classe, [&](Classe& nova) {
    nova.descricao = lido.descricao;
    nova.conta = lido.conta;
    nova.vencidas = vencidas;
    nova.vencidas_de = lido.classe_do_titulo;
  });
  SomaNaClasse(lado, linha, coluna, dia, std::move(lido.parte));
}

// --- Titles.

void TfmRelPrevFluxo::BuscaReceber(Consulta& consulta) {
  const std::string sql =
      SelectReceber(DataReceber(), "RECEBER.STATUS IN ('N','CH') AND " + EmAbertoReceber() + " > 0" +
                                       NoPeriodo(DataReceber()));
  PercorreTitulos(consulta, "Títulos a receber", sql, Tipo::Titulo, [&](Lido& lido) {
    const int atraso = CbAtraso.Checked() ? lido.atraso : DiasCompensacaoConta(lido.bordero);
    const Date dia = consulta.dias.Credito(lido.parte.vencimento.AddDays(atraso), "");
    AdicionaClasse(kRecebe, lido, consulta.periodo.Contem(dia) ? ColunaValor(dia) : 0, dia,
                   ValorVencidasReceber(consulta, lido.classe));
  });
}

// The day isn't tested again: the columns may reach beyond the period.
void TfmRelPrevFluxo::BuscaPagar(Consulta& consulta) {
  PercorreTitulos(consulta, "Títulos a pagar", SelectPagar("'N'" + NoPeriodo("PAGTO.DT_VEN")), Tipo::Titulo,
                  [&](Lido& lido) {
                    const Date dia = consulta.dias.DiaUtil(lido.parte.vencimento);
                    AdicionaClasse(kPaga, lido, ColunaValor(dia), dia,
                                   ValorVencidasPagar(consulta, lido.classe));
                  });
}

void TfmRelPrevFluxo::BuscaAntPagar(Consulta& consulta) {
  PercorreTitulos(consulta, "Adiantamentos a fornecedores", SelectPagar("'A'" + NoPeriodo("PAGTO.DT_VEN")),
                  Tipo::Adiantamento, [&](Lido& lido) {
                    const Date dia = consulta.dias.DiaUtil(lido.parte.vencimento);
                    lido.parte.valor = -lido.parte.valor;
                    AdicionaClasse(kPaga, lido, ColunaValor(dia), dia, Currency());
                  });
}

// The day isn't moved.
void TfmRelPrevFluxo::BuscaAntReceber(Consulta& consulta) {
  const std::string sql = SelectReceber("RECEBER.DT_VENCTO", "RECEBER.STATUS = 'A' AND " + EmAbertoReceber() +
                                                                 " > 0" + NoPeriodo("RECEBER.DT_VENCTO"));
  PercorreTitulos(consulta, "Adiantamentos de clientes", sql, Tipo::Adiantamento, [&](Lido& lido) {
    const Date dia = lido.parte.vencimento;
    lido.parte.valor = -lido.parte.valor;
    AdicionaClasse(kRecebe, lido, ColunaValor(dia), dia, Currency());
  });
}

void TfmRelPrevFluxo::BuscaOrcamentoPagar(Consulta& consulta) {
  PercorreTitulos(consulta, "Orçamentos a pagar", SelectPagar("'O'" + NoPeriodo("PAGTO.DT_VEN")),
                  Tipo::Orcamento, [&](Lido& lido) {
                    const Date dia = consulta.dias.DiaUtil(lido.parte.vencimento);
                    AdicionaClasse(kPaga, lido, ColunaValor(dia), dia, Currency());
                  });
}

// What the bank has paid out already leaves the receipts, in one row for all classes.
void TfmRelPrevFluxo::BuscaDuplicatasDescontadas(Consulta& consulta) {
  const std::string sql =
      SelectReceber(DataReceber(), "RECEBER.STATUS = 'N'" + WhereIn("RECEBER.SITUACAO", EdtSitDesc) +
                                       NoPeriodo(DataReceber()));
  PercorreTitulos(consulta, "Duplicatas descontadas", sql, Tipo::Desconto, [&](Lido& lido) {
    const Date dia = consulta.dias.Credito(lido.parte.vencimento, "");
    lido.parte.valor = -lido.parte.valor;
    const Currency vencidas = -ValorVencidasReceber(consulta, lido.classe);
    lido.classe = "DESC";
    lido.descricao = "DUPLICATAS DESCONTADAS";
    AdicionaClasse(kRecebe, lido, consulta.periodo.Contem(dia) ? ColunaValor(dia) : 0, dia, vencidas);
  });
}

// --- The room under the banks' contracts.

// For each of the days what is due until then.
void TfmRelPrevFluxo::LimiteDescontoBancario(Consulta& consulta) {
  const std::string primeiro = Funcoes.AspasData(consulta.periodo.de);
  const std::string dia = "CASE WHEN RECEBER.DT_VENCTO > " + primeiro + " THEN RECEBER.DT_VENCTO ELSE CAST(" +
                          primeiro + " AS DATE) END";
  const std::string banco = "RECEBER.BANCO, CADBAN.NOME_BANCO, CADBAN.VAL_CONTRATO";
  const std::string sql = "SELECT " + banco + " AS LIMITE, " + dia + " AS DIA, " + Soma(EmAbertoReceber()) +
                          " AS VALOR FROM {RECEBER} RECEBER INNER JOIN {CADBAN} CADBAN ON CADBAN.BANCO = "
                          "RECEBER.BANCO WHERE " +
                          EmAbertoReceber() + " > 0 AND RECEBER.DT_VENCTO < " +
                          Funcoes.AspasData(consulta.periodo.de.AddDays(kColunas)) + " GROUP BY " + banco +
                          ", " + dia;
  struct Banco {
    Value codigo, nome, limite;
    std::map<std::size_t, Currency> dias;
  };
  std::vector<Banco> bancos;
  std::unordered_map<std::string, std::size_t> onde;
  const auto soma = [&](std::span<Value> v) {
    const auto [achado, novo] = onde.try_emplace(Codigo(v[0]), bancos.size());
    if (novo) bancos.push_back({v[0], v[1], v[2], {}});
    bancos[achado->second].dias[static_cast<std::size_t>(v[3].AsDate() - consulta.periodo.de)] +=
        SomaDe(v[4]);
  };
  Percorre(consulta, "Limites de desconto", sql, false, soma, "ORDER BY 4, 1");
  RowWriter linha(TbDesconto);
  for (const Banco& banco_ : bancos) {
    linha[TbDesconto["Banco"]] = banco_.codigo;
    linha[TbDesconto["Nome_Banco"]] = banco_.nome;
    linha[TbDesconto["Limite"]] = banco_.limite;
    Currency resta = banco_.limite.AsCurrency();
    for (std::size_t i = banco_.dias.begin()->first; i < kColunas; ++i) {
      const auto vencem = banco_.dias.find(i);
      if (vencem != banco_.dias.end()) resta -= vencem->second;
      linha[TbDesconto["Desc_" + std::to_string(i + 1)]] = resta.Brazil();
    }
    linha.Append();
  }
}

}  // namespace orv
