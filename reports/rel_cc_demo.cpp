#include "reports/rel_cc_demo.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

#include "frame/entry/unit.h"
#include "rules/parcelas.h"
#include "rules/soma.h"
#include "rules/titulo.h"

namespace orv {

thread_local TfmRelCCDemo* fmRelCCDemo = nullptr;

namespace {

const Unit kUnit("Relccdemo",
                 {"TfmRelCCDemo", "Relatorio de Fluxo por Período", ScreenKind::Child, "Contas Correntes",
                  [](Application& a) { return std::make_unique<TfmRelCCDemo>(a); }});

constexpr int kDiasDoPeriodo = 185;
constexpr int kVagasCompra = 9;
// What stands under "Mais de" ends here for orders; titles have no end.
const Date kFim(2100, 1, 1);
const Date kSempre(1, 1, 1), kNunca(9999, 12, 31);
// More days reach beyond any order.
constexpr int kMaisDias = 36500;

int Dias(const std::string& texto) {
  int dias = 0;
  const auto [fim, erro] = std::from_chars(texto.data(), texto.data() + texto.size(), dias);
  if (!texto.empty() &&
      (erro != std::errc() || fim != texto.data() + texto.size() || dias < 0 || dias > kMaisDias)) {
    throw UserError("\"" + texto +
                    "\" não é um número de dias. Em \"Interv. Dias\" escreva números separados por vírgulas, "
                    "como 5, 10, 30.");
  }
  return dias;
}

}  // namespace

TfmRelCCDemo::TfmRelCCDemo(Application& application)
    : ReportScreen(application, "TfmRelCCDemo", "fmRelCCDemo", "Relatorio de Fluxo por Período"),
      DBGrid1(*this, "DBGrid1", TbRelPer, GridColumns(kRelPer), true, "Por vencimento"),
      ChVencimentos(*this, "ChVencimentos", "A receber e a pagar", TbRelPer, "Grupo_Dias",
                    {{"Vlr_receb", "A Receber"}, {"Vlr_pagar", "A Pagar"}}, 15),
      ChAnual(*this, "ChAnual", "Faturamento por mês", tbAnual, "DescMes",
              {{"Valor", "Faturado"}, {"Val_Dev", "Devolvido"}}, kMeses),
      DBGrid2(*this, "DBGrid2", tbAnual, GridColumns(kAnual), true, "Faturamento do ano"),
      DBGrid3(*this, "DBGrid3", TbPed, GridColumns(kPed), true, "Pedidos por mês"),
      DBGrid4(*this, "DBGrid4", TbBanco, GridColumns(kBanco), true, "Limites dos bancos") {
  Layout(R"(
    @bar {
      GbPeriodo { DtIni DtFin } EdtDias CbEmp
      @more {
        GbOpcoes { CbComVen CbAnual CbPed CbLim } /
        GbAno { EdtAno } GbReceber { EdtSitDup PqSitDup SpeedButton1 }
        GbLimites { EdtSit PqSituacao SpeedButton }
      }
      @primary BitBtn29
    } /
    PageControl1 {
      TsVencimentos { DBGrid1 }
      TsGrafico { ChVencimentos }
      TsFaturamento { @sides { ChAnual DBGrid2 } }
      TsPedidos { @sides { DBGrid3 DBGrid4 } }
    } /
    @actions { BitBtn33 @apart BitBtn5 }
  )");
  for (TClientDataSet* set : {&TbRelPer, &TbBanco, &tbAnual, &TbPed}) AddSet(*set);
  AbreTabelas({"TbSituacao"});
  DtIni.SetDate(Today());
  DtFin.SetDate(Today().AddDays(kDiasDoPeriodo));
  EdtDias.SetText("5, 10, 15, 30, 45, 60, 90, 120");
  EdtAno.SetText(std::to_string(Today().Year()));
  CriaTabelas();

  TodayOnEnter(DtIni);
  SameOnEnter(DtFin, DtIni);
  ListField(EdtSitDup, PqSitDup, "CODIGO", Choice::Adds, SpeedButton1);
  ListField(EdtSit, PqSituacao, "CODIGO", Choice::Adds, SpeedButton);
  BitBtn29.OnClick = [this] { BitBtn29Click(); };
  BitBtn33.OnClick = [this] { Funcoes.Chama_Relatorio(*this, "WCCDemo"); };
  BitBtn5.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { DBGrid1DblClick(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
  DBGrid3.OnDblClick = [this] { DBGrid3DblClick(); };
  DBGrid4.OnDblClick = [this] { DBGrid4DblClick(); };
  // What the report is about stays what was gathered, whatever is chosen since.
  const auto responde = [this](const char* nome, auto valor) {
    Answers[nome] = {0, [this, valor](auto) { return Value(valor(consulta_)); }};
  };
  responde("De", [](const Consulta& c) { return c.periodo.de; });
  responde("Ate", [](const Consulta& c) { return c.periodo.ate; });
  responde("Ano", [](const Consulta& c) { return c.ano.de.Empty() ? 0 : c.ano.de.Year(); });
  responde("TodasEmpresas", [](const Consulta& c) { return c.empresas ? 1 : 0; });
  responde("ComprasVendas", [](const Consulta& c) { return c.compras_vendas ? 1 : 0; });
}

void TfmRelCCDemo::BitBtn29Click() {
  Gather({&TbRelPer, &TbBanco, &tbAnual, &TbPed}, [this](Gathering& andamento) { Monta(andamento); });
}

TfmRelCCDemo::Consulta TfmRelCCDemo::LeFiltros() const {
  if (DtIni.Date().Empty() || DtFin.Date().Empty())
    throw UserError("Preencha as duas datas do período de vencimento.");
  return {.periodo = {DtIni.Date(), DtFin.Date()},
          .dias = PreencheListaDias(),
          .ano = DiasDoAno(EdtAno.Text()),
          .receber = WhereIn("R.SITUACAO", EdtSitDup),
          .limites = WhereIn("R.SITUACAO", EdtSit),
          .compras_vendas = CbComVen.Checked(),
          .empresas = CbEmp.Checked()};
}

void TfmRelCCDemo::Monta(Gathering& andamento) {
  CriaTabelas();
  consulta_ = LeFiltros();
  GeraExtratoFluxo(andamento);
  const std::pair<const CheckBox*, void (TfmRelCCDemo::*)()> passos[] = {
      {&CbAnual, &TfmRelCCDemo::FaturamentoAnual},
      {&CbPed, &TfmRelCCDemo::PedidosPendentes},
      {&CbLim, &TfmRelCCDemo::LimiteBancario}};
  for (const auto& [opcao, passo] : passos) {
    if (!opcao->Checked()) continue;
    andamento.Stage(opcao->Caption());
    (this->*passo)();
  }
}

void TfmRelCCDemo::CriaTabelas() {
  LayDown(TbRelPer, kRelPer);
  LayDown(TbBanco, kBanco);
  LayDown(tbAnual, kAnual);
  LayDown(TbPed, kPed);
  faixas_.clear();
  anual_.clear();
  pedidos_.clear();
}

// Blanks between commas are no horizon; a list of nothing else is that of the day itself.
std::vector<std::string> TfmRelCCDemo::PreencheListaDias() const {
  std::vector<std::string> lista;
  for (const std::string& parte : Split(EdtDias.Text(), ",")) {
    const std::string dias(Trim(parte));
    Dias(dias);
    if (!dias.empty() && std::find(lista.begin(), lista.end(), dias) == lista.end()) lista.push_back(dias);
  }
  if (lista.empty()) lista.emplace_back("0");
  return lista;
}

std::string TfmRelCCDemo::PorEmpresa(const std::string& sql, const char* tabela) const {
  return ForCompanies(sql, tabela, consulta_.empresas);
}

// --- Horizons.

Currency TfmRelCCDemo::PorDia::Entre(const Periodo& dias) const {
  Currency soma;
  if (dias.ate < dias.de) return soma;
  const auto fim = dias_.upper_bound(dias.ate);
  for (auto dia = dias_.lower_bound(dias.de); dia != fim; ++dia) soma += dia->second;
  return soma;
}

TfmRelCCDemo::PorDia TfmRelCCDemo::Titulos(const std::string& sql, const char* tabela) const {
  PorDia titulos;
  ForEach(PorEmpresa(sql, tabela), [&](std::span<Value> linha) {
    if (!linha[0].IsNull()) titulos.Junta(linha[0].AsDate(), SomaDe(linha[1]));
  });
  return titulos;
}

void TfmRelCCDemo::Encomendas(Qual qual, const Periodo& dias, bool com_nomes,
                              const std::function<void(const Encomenda&)>& cada) const {
  const bool compra = qual == Qual::Compra;
  const std::string tabela = compra ? "COMPRA" : "PEDIDO", item = compra ? "CO_ITEN" : "PED_ITEN",
                    base = tabela + (compra ? ".DT_ENTREGA" : ".DT_FATURA");
  // An instalment falls on its base date or behind it.
  const Periodo bases = {qual == Qual::Pedido ? dias.de : dias.de.AddDays(-CondicaoPagamento::kMaiorPrazo),
                         qual == Qual::Venda ? std::min(consulta_.periodo.ate, dias.ate) : dias.ate};
  std::string sql = "SELECT " + tabela + ".NUMERO, MAX(" + base + "), MAX(" + tabela +
                    (compra ? ".CONDICAO), 0E0" : ".PGTO), MAX(PEDIDO.PER_DESC)") + ", SUM(" + item +
                    ".PRECO*" + item + ".QTDE)" + (com_nomes ? ", MAX(ENTIDADE.NOME)" : "") + " FROM {" +
                    tabela + "} " + tabela + " INNER JOIN {" + item + "} " + item + " ON " + item +
                    ".NUMERO = " + tabela + ".NUMERO";
  if (com_nomes) {
    sql += " LEFT JOIN {ENTIDADE} ENTIDADE ON ENTIDADE.CODCLI = " + tabela + (compra ? ".CODFOR" : ".CODCLI");
  }
  sql += " WHERE 1 = 1" + WhereBetween(base, bases.de, bases.ate) +
         (compra ? " AND CO_ITEN.SITUACAO = 'A'" : "") + " GROUP BY " + tabela + ".NUMERO" +
         (qual == Qual::Venda ? " HAVING SUM(PED_ITEN.QTDE) > 0" : "");
  ForEach(PorEmpresa(sql, tabela.c_str()), [&](std::span<Value> linha) {
    cada({.numero = linha[0],
          .pessoa = com_nomes ? linha[5] : Value(),
          .base = linha[1].AsDate(),
          .condicao = linha[2].AsString(),
          .vagas = compra ? kVagasCompra : CondicaoPagamento::kVagas,
          .valor = ValorPedido(linha[4].AsFloat(), linha[3].AsFloat())});
  });
}

void TfmRelCCDemo::Parcelas(Qual qual, const Encomenda& encomenda,
                            const std::function<void(Date, int, Currency)>& cada) {
  if (qual == Qual::Pedido) {
    cada(encomenda.base, 1, encomenda.valor);
    return;
  }
  const CondicaoPagamento condicao(encomenda.condicao, encomenda.vagas);
  const int parcelas = condicao.Parcelas();
  if (parcelas == 0) return;
  const Currency parte = parcelas > 1 ? ValorParcela(encomenda.valor, parcelas, 1) : Currency();
  for (int k = 1; k <= parcelas; ++k) {
    cada(encomenda.base.AddDays(condicao.Dias(k)), k,
         k < parcelas ? parte : encomenda.valor - parte * (parcelas - 1));
  }
}

std::string TfmRelCCDemo::Receber(const Periodo& dias) const {
  return "STATUS = 'N'" + consulta_.receber + WhereBetween("R.DT_VENCTO", dias.de, dias.ate);
}

// Of what is overdue only payables that are open count.
std::string TfmRelCCDemo::Pagar(const Periodo& dias) const {
  return "STATUS = 'N'" + WhereBetween("P.DT_VEN", dias.de, dias.ate) +
         " AND (P.DT_VEN >= " + Funcoes.AspasData(consulta_.periodo.de) + " OR " + EmAbertoPagar("P") +
         " > 0)";
}

void TfmRelCCDemo::GeraExtratoFluxo(Gathering& andamento) {
  const Date ini = consulta_.periodo.de;
  const Periodo todos = {kSempre, kNunca}, encomendas = {ini, kFim};
  andamento.Stage("Títulos a receber");
  const PorDia receber = Titulos("SELECT R.DT_VENCTO, " + Soma(EmAbertoReceber("R")) +
                                     " FROM {RECEBER} R WHERE R." + Receber(todos) + " GROUP BY R.DT_VENCTO",
                                 "RECEBER");
  andamento.Stage("Títulos a pagar");
  const PorDia pagar = Titulos("SELECT P.DT_VEN, " + Soma(EmAbertoPagar("P")) + " FROM {PAGTO} P WHERE P." +
                                   Pagar(todos) + " GROUP BY P.DT_VEN",
                               "PAGTO");
  std::array<PorDia, 3> partes;
  for (const Qual qual : {Qual::Compra, Qual::Venda, Qual::Pedido}) {
    if (!consulta_.compras_vendas) break;
    andamento.Stage(qual == Qual::Compra ? "Compras" : "Pedidos");
    Encomendas(qual, encomendas, false, [&](const Encomenda& encomenda) {
      Parcelas(qual, encomenda, [&](Date dia, int, Currency valor) {
        partes[static_cast<std::size_t>(qual)].Junta(dia, valor);
      });
      andamento.Advance();
    });
  }

  const auto anexa = [&](const std::string& grupo, const Faixa& faixa) {
    ReportRow<kRelPer> linha;
    linha["Sel"] = "S";
    linha["Grupo_Dias"] = grupo;
    linha["Data"] = ini;
    linha["Vlr_receb"] = receber.Entre(faixa.titulos);
    linha["Vlr_pagar"] = pagar.Entre(faixa.titulos);
    linha["Vlr_Compra"] = partes[0].Entre(faixa.encomendas);
    linha["Vlr_Venda"] = partes[1].Entre(faixa.encomendas);
    linha["Vlr_Ped"] = partes[2].Entre(faixa.encomendas);
    TbRelPer.AppendRow(linha.Values());
    faixas_.push_back(faixa);
  };
  const auto ate = [&](int dias) { return Periodo{ini, ini.AddDays(dias)}; };
  anexa("Atraso", {{kSempre, ini.AddDays(-1)}, {ini, ini.AddDays(-1)}});
  anexa("No Dia", {ate(0), ate(0)});
  const int alcance = std::max(std::abs(consulta_.periodo.ate - ini) + 1, Dias(consulta_.dias.front()));
  std::string ultimo;
  for (const std::string& dias : consulta_.dias) {
    ultimo = dias;
    anexa("Ate " + dias + " dias", {ate(Dias(dias)), ate(Dias(dias))});
    if (Dias(dias) > alcance) break;
  }
  const Date depois = ini.AddDays(Dias(ultimo));
  anexa("Mais de " + ultimo + " dias", {{depois.AddDays(1), kNunca}, {depois, kFim}});
}

// --- By month and by bank.

void TfmRelCCDemo::FaturamentoAnual() {
  struct Mes {
    bool ha = false;
    Currency valor, devolvido;
  };
  std::array<Mes, kMeses + 1> meses;
  const std::string sql = "SELECT EXTRACT(MONTH FROM R.DT_EMISSAO), " + Soma("R.VALOR2") + ", " +
                          Soma("R.VAL_DEV") + " FROM {RECEBER} R WHERE 1 = 1" +
                          WhereBetween("R.DT_EMISSAO", consulta_.ano.de, consulta_.ano.ate) +
                          consulta_.receber + " GROUP BY EXTRACT(MONTH FROM R.DT_EMISSAO)";
  ForEach(PorEmpresa(sql, "RECEBER"), [&](std::span<Value> linha) {
    Mes& mes = meses.at(static_cast<std::size_t>(linha[0].AsInteger()));
    mes.ha = true;
    mes.valor += SomaDe(linha[1]);
    mes.devolvido += SomaDe(linha[2]);
  });
  for (int numero = 1; numero <= kMeses; ++numero) {
    const auto indice = static_cast<std::size_t>(numero);
    const Mes& mes = meses[indice];
    if (!mes.ha) continue;
    Value linha[] = {std::to_string(numero), Funcoes.NomeMes()[indice], mes.valor, mes.devolvido};
    tbAnual.AppendRow(linha);
    const Date primeiro(consulta_.ano.de.Year(), numero, 1);
    anual_.push_back({primeiro, primeiro.LastOfMonth()});
  }
}

void TfmRelCCDemo::PedidosPendentes() {
  const std::string mes = "EXTRACT(YEAR FROM PEDIDO.DT_FATURA), EXTRACT(MONTH FROM PEDIDO.DT_FATURA)";
  const std::string sql = "SELECT " + mes +
                          ", SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) FROM {PEDIDO} PEDIDO INNER JOIN {PED_ITEN} "
                          "PED_ITEN ON PED_ITEN.NUMERO = PEDIDO.NUMERO GROUP BY " +
                          mes + " HAVING SUM(PED_ITEN.PRECO*PED_ITEN.QTDE) > 0";
  // By year and month; orders without a date come first.
  std::map<std::pair<int64_t, int64_t>, double> meses;
  ForEach(PorEmpresa(sql, "PEDIDO"), [&](std::span<Value> linha) {
    meses[{linha[0].AsInteger(), linha[1].AsInteger()}] += linha[2].AsFloat();
  });
  for (const auto& [quando, valor] : meses) {
    const auto [ano, numero] = quando;
    if (ano == 0) {
      Value linha[] = {"", "", valor, "Sem data"};
      TbPed.AppendRow(linha);
      pedidos_.emplace_back();
      continue;
    }
    const std::string digitos = std::to_string(numero);
    Value linha[] = {std::string(2 - digitos.size(), '0') + digitos, std::to_string(ano), valor,
                     Funcoes.NomeMes().at(static_cast<std::size_t>(numero))};
    TbPed.AppendRow(linha);
    const Date primeiro(static_cast<int>(ano), static_cast<int>(numero), 1);
    pedidos_.push_back({primeiro, primeiro.LastOfMonth()});
  }
  TbPed.SetIndexFieldNames("ano;mes");
}

void TfmRelCCDemo::LimiteBancario() {
  const std::string sql =
      "SELECT TITULOS.BANCO, BANCO.NOME_BANCO, BANCO.VAL_CONTRATO, TITULOS.VALOR FROM (SELECT "
      "R.BANCO, " +
      Soma(EmAbertoReceber("R")) + " AS VALOR FROM {RECEBER} R WHERE 1 = 1" + consulta_.limites +
      " GROUP BY R.BANCO) TITULOS LEFT OUTER JOIN {CADBAN} BANCO ON BANCO.BANCO = TITULOS.BANCO";
  struct Banco {
    Value nome;
    Currency limite, valor;
  };
  std::map<std::string, Banco> bancos;
  ForEach(PorEmpresa(sql, "RECEBER"), [&](std::span<Value> linha) {
    const auto [achado, novo] = bancos.try_emplace(std::string(TrimCode(linha[0].Text())));
    Banco& banco = achado->second;
    if (novo) banco.nome = linha[1], banco.limite = linha[2].AsCurrency();
    banco.valor += SomaDe(linha[3]);
  });
  for (const auto& [codigo, banco] : bancos) {
    Value linha[] = {codigo, banco.nome, banco.limite, banco.valor};
    TbBanco.AppendRow(linha);
  }
}

}  // namespace orv
