// The cost of what was sold, from the documents of the sales: it stands in the classes of the type "CPV".
#include <algorithm>
#include <map>
#include <unordered_map>

#include "results/rel_result_mes.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kClasse =
    "SELECT SUBGRUPO.CODIGO, SUBGRUPO.DESCRICAO, SUBGRUPO.CONTA, SUBGRUPO.OPERACAO, F.VALOR, F.MES, "
    "SUBGRUPO.TP_CONTA FROM (SELECT EXTRACT(MONTH FROM NOTA.DT_EMISSAO) AS MES, ";
// Nothing ties a class to a document: each of them has the whole cost.
constexpr const char* kCadaClasse =
    " GROUP BY 1) F INNER JOIN {SUBGRUPO} SUBGRUPO ON (SUBGRUPO.TIPO = 'CPV') WHERE 1 = 1";
constexpr const char* kNotas =
    "SUM(NOTAITEN.CUSTO * NOTAITEN.QTDE) AS VALOR FROM {NOTA} NOTA"
    " INNER JOIN {NOTAITEN} NOTAITEN ON (NOTA.FATURA = NOTAITEN.FATURA)"
    " INNER JOIN {NATUREZA} NATUREZA ON (NOTA.NATUREZA = NATUREZA.NATUREZA) WHERE NOTA.IMPRESSO = 'S'";
constexpr const char* kNotasEntrada =
    "SUM(NF_ITEN.VALOR * NF_ITEN.QTDE) AS VALOR FROM {NOTA_ENTRA} NOTA"
    " INNER JOIN {NF_ENTRA_ITEN} NF_ITEN ON (NOTA.NOTAFISCAL = NF_ITEN.NUMERO AND NOTA.CREDOR = "
    "NF_ITEN.CODCRE AND NOTA.SERIE = NF_ITEN.SERIE)"
    " INNER JOIN {NATUREZA} NATUREZA ON (NOTA.NATUREZA = NATUREZA.NATUREZA) WHERE 1 = 1";

// One statement for what a company's counters need, in this order: the classes, the items that were sold,
// and what the stock's movements say of their cost.
enum class Parte : uint8_t { Classe, Item, Custo };
enum Coluna : uint8_t {
  kEmpresa,
  kParte,
  kMes,
  kVenda,
  kCodigo,
  kTam,
  kCor,
  kDeposito,
  kLote,
  kValor,
  kFinal,
  kDia
};

std::string Selecao(Parte parte, const char* mes, const char* colunas, const char* valor,
                    const char* movimento = "'' AS FINAL, CAST(NULL AS DATE) AS DIA") {
  return "SELECT '{}' AS EMPRESA, " + std::to_string(static_cast<int>(parte)) + " AS PARTE, " + mes +
         " AS MES, " + colunas + ", CAST(" + valor + " AS DOUBLE PRECISION) AS VALOR, " + movimento;
}

// What a sale has of an article, and what each of its documents says of the cost on a day.
struct Item {
  int mes = 0;
  double quantidade = 0;
  struct Custo {
    std::string documento;
    Date dia;
    double custo;
  };
  std::vector<Custo> custos{};

  // Of several movements of a document the dearest counts.
  void Junta(std::string_view documento, Date dia, double custo) {
    const auto mesmo = std::find_if(custos.begin(), custos.end(), [&](const Custo& um) {
      return um.dia == dia && um.documento == documento;
    });
    if (mesmo == custos.end()) {
      custos.push_back({std::string(documento), dia, custo});
    } else {
      mesmo->custo = std::max(mesmo->custo, custo);
    }
  }
};

// A company's counters. An article of a sale is one by its text in all columns.
struct Loja {
  std::vector<ClasseResultado> classes;
  std::unordered_map<std::string, Item> itens;
  std::map<int, double> custo_do_mes;
  bool so_custos = false;
};

}  // namespace

void TfmRelResultMes::BuscaCPV(Consulta& consulta) {
  const std::string dias = WhereBetween("NOTA.DT_EMISSAO", consulta.periodo.de, consulta.periodo.ate);
  Percorre(consulta, "Custo das notas",
           kClasse + std::string(kNotas) + " AND NATUREZA.TIPO = 'V' AND NATUREZA.DUPLI = 'S'" + dias +
               kCadaClasse + FiltroClasse(),
           "NOTA", {.recusa_titulo = false});
  if (CbLoja.Checked()) BuscaCPVLoja(consulta, false);
  if (CbDevol.Checked()) BuscaCPVDevolucao(consulta);
}

void TfmRelResultMes::BuscaCPVDevolucao(Consulta& consulta) {
  const std::string dias = WhereBetween("NOTA.DT_EMISSAO", consulta.periodo.de, consulta.periodo.ate);
  for (const char* notas : {kNotas, kNotasEntrada})
    Percorre(consulta, "Custo das devoluções",
             kClasse + std::string(notas) + " AND NATUREZA.TIPO = 'D'" + dias + kCadaClasse + FiltroClasse(),
             notas == kNotas ? "NOTA" : "NOTA_ENTRA", {.recusa_titulo = false, .devolucao = true});
  if (CbLoja.Checked()) BuscaCPVLoja(consulta, true);
}

// The items meet their movements here, each looked up once: the engine compares each with each. A sale
// without a cost counts as one of zero, and without a class its cost stands alone.
void TfmRelResultMes::BuscaCPVLoja(Consulta& consulta, bool devolucao) {
  const std::string sql =
      Selecao(Parte::Classe, "0",
              "SUBGRUPO.CODIGO AS VENDA, SUBGRUPO.DESCRICAO AS CODIGO, SUBGRUPO.CONTA AS TAM, "
              "SUBGRUPO.OPERACAO AS COR, SUBGRUPO.TP_CONTA AS DEPOSITO, '' AS LOTE",
              "0") +
      " FROM {SUBGRUPO} SUBGRUPO WHERE SUBGRUPO.TIPO = 'CPV'" + FiltroClasse() + "\nUNION ALL\n" +
      Selecao(Parte::Item, "EXTRACT(MONTH FROM VENDA.DATA)",
              "VENDA.CODVEN, ITVENDA.CODIGO, ITVENDA.TAM, ITVENDA.COR, ITVENDA.DEPOSITO, ITVENDA.LOTE",
              "ITVENDA.QUANTIDADE") +
      " FROM {VENDA} VENDA LEFT JOIN {ITVENDA} ITVENDA ON (VENDA.CODVEN = ITVENDA.CODVEN) WHERE "
      "VENDA.FECHADA = 1 AND VENDA.TROCA = 0 AND VENDA.DEVOLUCAO = " +
      (devolucao ? "1" : "0") + " AND VENDA.CANCELADA = 0" +
      WhereBetween("VENDA.DATA", consulta.periodo.de, consulta.periodo.ate) + "\nUNION ALL\n" +
      // The last two characters of a document aren't the sale's.
      Selecao(Parte::Custo, "0",
              "SUBSTRING(PA_MOV.NUM_DOCTO FROM 1 FOR CHAR_LENGTH(PA_MOV.NUM_DOCTO) - 2), PA_MOV.CODIGO, "
              "PA_MOV.TAMANHO, PA_MOV.COR, PA_MOV.DEPOSITO, PA_MOV.LOTE",
              "PA_MOV.CUSTO", "RIGHT(PA_MOV.NUM_DOCTO, 2), PA_MOV.DT_MVTO") +
      " FROM {PA_MOV} PA_MOV WHERE PA_MOV.TP_MOV = 'LJ' AND PA_MOV.OPERACAO = " +
      (devolucao ? "'E'" : "'S'") + " AND CHAR_LENGTH(PA_MOV.NUM_DOCTO) >= 2";

  std::map<std::string, Loja> lojas;
  const auto chave = [](std::span<Value> v) {
    std::string texto;
    for (const Coluna coluna : {kVenda, kCodigo, kTam, kCor, kDeposito, kLote}) {
      if (v[coluna].IsNull()) return std::string();
      texto.append(TrimCode(v[coluna].Text())).push_back('\n');
    }
    return texto;
  };
  consulta.andamento.Stage(devolucao ? "Custo das devoluções da loja" : "Custo das vendas da loja");
  ForEach(ForCompanies(sql, "", CbTodasEmp.Checked()), [&](std::span<Value> v) {
    Loja& loja = lojas[v[kEmpresa].AsString()];
    consulta.andamento.Advance();
    switch (static_cast<Parte>(v[kParte].AsInteger())) {
      case Parte::Classe:
        loja.classes.push_back({v[kTam].AsString(), v[kVenda].AsString(), v[kCodigo].AsString(),
                                v[kCor].AsString(), v[kDeposito].AsString()});
        break;
      case Parte::Item: {
        ORV_ASSERT(!loja.so_custos);
        const int mes = static_cast<int>(v[kMes].AsInteger());
        loja.custo_do_mes[mes];
        if (std::string item = chave(v); !item.empty()) {
          Item& vendido = loja.itens[std::move(item)];
          vendido.mes = mes;
          vendido.quantidade += v[kValor].AsFloat();
        }
        break;
      }
      case Parte::Custo:
        loja.so_custos = true;
        if (const auto item = loja.itens.find(chave(v)); item != loja.itens.end())
          item->second.Junta(v[kFinal].Text(), v[kDia].AsDate(), v[kValor].AsFloat());
        break;
    }
  });
  for (auto& [empresa, loja] : lojas) {
    if (loja.classes.empty() && EdtClasse.Empty()) loja.classes.emplace_back();
    for (const auto& [chave_do_item, item] : loja.itens)
      for (const auto& custo : item.custos) loja.custo_do_mes[item.mes] += item.quantidade * custo.custo;
    for (const ClasseResultado& classe : loja.classes)
      for (const auto& [mes, custo] : loja.custo_do_mes)
        Junta(consulta, classe, mes, Currency::FromDouble(custo),
              {.recusa_titulo = false, .devolucao = devolucao});
  }
}

}  // namespace orv
