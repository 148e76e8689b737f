// The gathering: each table is read once, and its rows are added up in all the ways that the report asks for.
#include <map>
#include <unordered_map>
#include <utility>

#include "results/rel_cc_mes.h"
#include "rules/soma.h"
#include "rules/titulo.h"

namespace orv {
namespace {

using Meses = std::array<Currency, kMeses>;

std::size_t Mes(Date dia) { return static_cast<std::size_t>(dia.Month() - 1); }

// The place of the field that takes so many days: up to 0, 15, 30 and so on to 90, and above.
std::size_t Quinzena(int dias) {
  return dias <= 0 ? 0 : static_cast<std::size_t>(std::min((dias + 14) / 15, 7));
}

std::size_t Semana(Date dia) { return static_cast<std::size_t>((dia.Day() - 1) / 7); }

// Days from issue to due date, none where either isn't told.
int DiasEntre(Date emissao, Date vencimento) {
  return emissao.Empty() || vencimento.Empty() ? 0 : vencimento - emissao;
}

template <std::size_t N>
void AnexaUma(TClientDataSet& set, const std::array<Currency, N>& valores) {
  std::array<Value, N> linha;
  std::copy(valores.begin(), valores.end(), linha.begin());
  set.AppendRow(linha);
}

}  // namespace

// All that is added up.
struct TFmRelCCMes::Contas {
  Currency emitido, recebido, a_vencer;
  Prazo faturamento, compras;
  std::array<Meses, PrazoC> series{};
  std::array<Prazo, kMeses> compras_do_mes, vendas_do_mes;
  std::array<Currency, kVencto.size()> por_prazo;
  std::array<Currency, kEmi.size()> por_semana;
  // By code, as the titles have it.
  std::map<std::string, Meses> pendentes, pagos;
};

void TFmRelCCMes::Prazo::Junta(Currency quanto, int dias) {
  valor += quanto;
  pesado += quanto * dias;
}

double TFmRelCCMes::Prazo::Medio() const {
  return valor > Currency() ? RoundFloat(pesado.ToDouble() / valor.ToDouble(), 2) : 0;
}

void TFmRelCCMes::BtnExecutaSQLClick() {
  Gather({&TbRel, &TbGrupo, &TbVencto, &TbEmi, &TbMeses, &TbGrupos}, [this](Gathering& andamento) {
    CriaTabela();
    consulta_ = LeFiltros();
    Contas contas;
    LeReceber(contas, andamento);
    LePagar(contas, andamento);
    LeRecebimentos(contas, andamento);
    LePagamentos(contas, andamento);
    andamento.Stage("Pedidos");
    LePedidos(contas);
    GeraRelatorioMes(contas);
    GeraRelatorioVenctoQuinzena(contas);
    GeraRelatorioEmisssaoSemana(contas);
    GeraValoresGrupo(contas);
  });
}

void TFmRelCCMes::CriaTabela() {
  LayDown(TbRel, kRel);
  LayDown(TbGrupo, kGrupo);
  LayDown(TbVencto, kVencto);
  LayDown(TbEmi, kEmi);
  LayDown(TbMeses, kPorMes);
  LayDown(TbGrupos, kPorGrupo);
}

TFmRelCCMes::Consulta TFmRelCCMes::LeFiltros() const {
  return {.ano = DiasDoAno(EdtAno.Text()),
          .emissao = {EdtEmiIni.Date(), EdtEmiFim.Date()},
          .recebimento = {EdtRecIni.Date(), EdtRecFim.Date()},
          .vencimento = {EdtVenIni.Date(), EdtVenFim.Date()},
          .bancos = WhereIn("R.BANCO", EdtBanco),
          .clientes = WhereIn("R.CODCLI", EdtCliente, CbClientes.ItemIndex() == 1),
          .classes = WhereIn("P.NUM_OS", EdtClasse, CbClassePag.ItemIndex() == 1)};
}

// --- What the tables hold.

std::string TFmRelCCMes::DoBanco() const {
  return consulta_.bancos.empty() ? "1" : "CASE WHEN 1 = 1" + consulta_.bancos + " THEN 1 ELSE 0 END";
}

void TFmRelCCMes::LeReceber(Contas& contas, Gathering& andamento) {
  enum Coluna : uint8_t { cEmissao, cVencimento, cValor, cAberto, cClasse, cBanco };
  andamento.Stage("Títulos a receber");
  const Periodo emitidos = consulta_.ano.Comum(consulta_.emissao),
                vencem = consulta_.ano.Comum(consulta_.vencimento);
  const std::string sql = "SELECT R.DT_EMISSAO, R.DT_VENCTO, R.VALOR2, " + EmAbertoReceber("R") +
                          ", R.CLASSE, " + DoBanco() + " FROM {RECEBER} R WHERE R.STATUS = 'N'" +
                          consulta_.clientes;
  ForEach(Funcoes.DBLocal_SQL(sql, ""), [&](std::span<Value> linha) {
    const Date emissao = linha[cEmissao].AsDate(), vencimento = linha[cVencimento].AsDate();
    const Currency valor = linha[cValor].AsCurrency(), aberto = linha[cAberto].AsCurrency();
    const int dias = DiasEntre(emissao, vencimento);
    const bool banco = linha[cBanco].AsInteger() == 1, pendente = aberto > Currency();
    if (!emissao.Empty()) contas.vendas_do_mes[Mes(emissao)].Junta(valor, dias);
    if (consulta_.emissao.Contem(emissao)) {
      contas.emitido += valor;
      contas.faturamento.Junta(valor, dias);
      contas.por_prazo[Quinzena(dias)] += valor;
      contas.por_semana[Semana(emissao)] += valor;
    }
    if (pendente && consulta_.vencimento.Contem(vencimento)) contas.a_vencer += valor;
    if (banco && emitidos.Contem(emissao)) contas.series[Emi][Mes(emissao)] += valor;
    if (banco && vencem.Contem(vencimento)) {
      const std::size_t mes = Mes(vencimento);
      contas.series[Ven][mes] += valor;
      if (pendente) {
        contas.series[Pen][mes] += aberto;
        contas.pendentes[std::string(TrimCode(linha[cClasse].Text()))][mes] += aberto;
      }
    }
    andamento.Advance();
  });
}

void TFmRelCCMes::LePagar(Contas& contas, Gathering& andamento) {
  enum Coluna : uint8_t { cEmissao, cVencimento, cValor, cAberto };
  andamento.Stage("Títulos a pagar");
  const Periodo vencem = consulta_.ano.Comum(consulta_.vencimento);
  const std::string sql = "SELECT P.DT_EMI, P.DT_VEN, P.VALOR, " + EmAbertoPagar("P") +
                          " FROM {PAGTO} P WHERE P.STATUS = 'N'" + consulta_.classes;
  ForEach(Funcoes.DBLocal_SQL(sql, ""), [&](std::span<Value> linha) {
    const Date emissao = linha[cEmissao].AsDate(), vencimento = linha[cVencimento].AsDate();
    const Currency valor = linha[cValor].AsCurrency();
    const int dias = DiasEntre(emissao, vencimento);
    if (!emissao.Empty()) contas.compras_do_mes[Mes(emissao)].Junta(valor, dias);
    if (consulta_.emissao.Contem(emissao)) contas.compras.Junta(valor, dias);
    if (vencem.Contem(vencimento)) contas.series[PagPen][Mes(vencimento)] += linha[cAberto].AsCurrency();
    andamento.Advance();
  });
}

void TFmRelCCMes::LeRecebimentos(Contas& contas, Gathering& andamento) {
  andamento.Stage("Recebimentos");
  const std::string sql = "SELECT B.DT_PAGTO, B.VALOR_PAGO, " + DoBanco() +
                          " FROM {RECEBERB} B INNER JOIN {RECEBER} R ON R.NUMERO = B.NUMERO "
                          "WHERE R.STATUS = 'N'" +
                          consulta_.clientes +
                          WhereBetween("B.DT_PAGTO", consulta_.recebimento.de, consulta_.recebimento.ate);
  ForEach(Funcoes.DBLocal_SQL(sql, ""), [&](std::span<Value> linha) {
    const Date dia = linha[0].AsDate();
    const Currency valor = linha[1].AsCurrency();
    contas.recebido += valor;
    if (linha[2].AsInteger() == 1 && consulta_.ano.Contem(dia)) contas.series[Rec][Mes(dia)] += valor;
    andamento.Advance();
  });
}

void TFmRelCCMes::LePagamentos(Contas& contas, Gathering& andamento) {
  andamento.Stage("Pagamentos");
  const Periodo dias = consulta_.ano.Comum(consulta_.recebimento);
  const std::string sql =
      "SELECT B.DT_LAN, B.VAL_PAG, P.NUM_OS FROM {PAGTO1} B INNER JOIN {PAGTO} P ON P.NUM_AP = B.NUM_AP "
      "WHERE P.STATUS = 'N'" +
      consulta_.classes + WhereBetween("B.DT_LAN", dias.de, dias.ate);
  ForEach(Funcoes.DBLocal_SQL(sql, ""), [&](std::span<Value> linha) {
    const std::size_t mes = Mes(linha[0].AsDate());
    const Currency valor = linha[1].AsCurrency();
    contas.series[Pag][mes] += valor;
    contas.pagos[std::string(TrimCode(linha[2].Text()))][mes] += valor;
    andamento.Advance();
  });
}

void TFmRelCCMes::LePedidos(Contas& contas) {
  const Periodo dias = consulta_.ano.Comum(consulta_.emissao);
  const std::string sql =
      "SELECT EXTRACT(MONTH FROM PEDIDO.DT_FATURA), SUM(PED_ITEN.PRECO * PED_ITEN.QTDE) FROM {PEDIDO} PEDIDO "
      "INNER JOIN {PED_ITEN} PED_ITEN ON PEDIDO.NUMERO = PED_ITEN.NUMERO WHERE 1 = 1" +
      WhereBetween("PEDIDO.DT_FATURA", dias.de, dias.ate) +
      " GROUP BY EXTRACT(MONTH FROM PEDIDO.DT_FATURA) HAVING SUM(PED_ITEN.PRECO * PED_ITEN.QTDE) > 0";
  ForEach(Funcoes.DBLocal_SQL(sql, ""), [&](std::span<Value> linha) {
    contas.series[Ped].at(static_cast<std::size_t>(linha[0].AsInteger() - 1)) = linha[1].AsCurrency();
  });
}

// --- What becomes of it.

void TFmRelCCMes::GeraRelatorioMes(const Contas& contas) {
  std::vector<Value> rel = {EdtAno.Text(),
                            contas.emitido,
                            contas.recebido,
                            contas.a_vencer,
                            RoundFloat(contas.faturamento.Medio(), 0),
                            RoundFloat(contas.compras.Medio(), 0),
                            Value(),
                            Value()};
  for (const Meses& serie : contas.series) rel.insert(rel.end(), serie.begin(), serie.end());
  for (const auto* prazos : {&contas.compras_do_mes, &contas.vendas_do_mes}) {
    for (const Prazo& prazo : *prazos) rel.emplace_back(prazo.Medio());
  }
  const std::size_t primeira = rel.size() - std::size_t{kSeries} * kMeses;
  for (std::size_t mes = 0; mes < kMeses; ++mes) {
    std::vector<Value> linha = {Funcoes.NomeMes()[mes + 1]};
    for (std::size_t serie = 0; serie < kSeries; ++serie)
      linha.push_back(rel[primeira + serie * kMeses + mes]);
    TbMeses.AppendRow(linha);
  }
  TbRel.AppendRow(rel);
}

void TFmRelCCMes::GeraRelatorioVenctoQuinzena(const Contas& contas) { AnexaUma(TbVencto, contas.por_prazo); }

void TFmRelCCMes::GeraRelatorioEmisssaoSemana(const Contas& contas) { AnexaUma(TbEmi, contas.por_semana); }

void TFmRelCCMes::GeraValoresGrupo(const Contas& contas) {
  const auto grupos = [&](const char* tipo, const std::map<std::string, Meses>& por_codigo,
                          const std::string& tabela) {
    std::unordered_map<std::string, std::string> nomes;
    ForEach("SELECT CODIGO, DESCRICAO FROM " + Funcoes.DBLocal(tabela, true),
            [&](std::span<Value> linha) { nomes.emplace(TrimCode(linha[0].Text()), linha[1].Text()); });
    // A code that names no group stands in the row without one.
    std::map<std::string, Meses> por_grupo;
    for (const auto& [codigo, meses] : por_codigo) {
      Meses& soma = por_grupo[nomes.contains(codigo) ? codigo : ""];
      for (std::size_t mes = 0; mes < kMeses; ++mes) soma[mes] += meses[mes];
    }
    const bool pagos = *tipo == 'P';
    for (const auto& [codigo, meses] : por_grupo) {
      const std::string nome = codigo.empty() ? "" : nomes[codigo];
      std::vector<Value> grupo = {codigo, nome, tipo}, vista = {tipo, codigo, nome};
      Currency total;
      grupo.resize(kGrupo.size());
      for (std::size_t mes = 0; mes < kMeses; ++mes) {
        if (!meses[mes].IsZero()) grupo[3 + (pagos ? 0 : kMeses) + mes] = meses[mes];
        vista.emplace_back(meses[mes]);
        total += meses[mes];
      }
      vista.emplace_back(total);
      TbGrupo.AppendRow(grupo);
      TbGrupos.AppendRow(vista);
    }
  };
  grupos("R", contas.pendentes, "TABSIT");
  grupos("P", contas.pagos, "SUBGRUPO");
}

}  // namespace orv
