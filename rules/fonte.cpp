#include "rules/fonte.h"

#include <algorithm>

#include "rules/origem.h"
#include "toolkit/currency.h"
#include "toolkit/text.h"

namespace orv {

using namespace origem;

namespace {

// What a line of an order says in figures: its discount, or a quantity and a price. Null is none.
std::string Figuras(const char* desconto, const char* quantidade, const char* preco) {
  const auto como = [](const char* coluna, const char* nome) {
    return std::string(", CAST(") + coluna + " AS DOUBLE PRECISION) AS " + nome;
  };
  return como(desconto, "PER_DESC") + como(quantidade, "QTDE") + como(preco, "PRECO");
}

std::string Itens(const char* tipo, const char* data, const char* quantidade, const char* tabela,
                  const std::string& numero) {
  const std::string valor =
      Valor((std::string("I.PRECO * ") + quantidade).c_str()) + Figuras("NULL", quantidade, "I.PRECO");
  return Linhas(tipo, "I.NUMERO", "NULL", data, "''", valor.c_str(), tabela) + " WHERE I.NUMERO = " + numero;
}

std::string Pedido(const std::string& numero) {
  return Linhas("Pedido", "O.NUMERO", "O.PED_CLI", "O.DT_FATURA", "COALESCE(E.NOME, '')",
                (Valor("(SELECT SUM(X.PRECO * X.QTDE) FROM {PED_ITEN} X WHERE X.NUMERO = O.NUMERO)") +
                 Figuras("COALESCE(O.PER_DESC, 0)", "NULL", "NULL"))
                    .c_str(),
                "{PEDIDO} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODCLI") +
         " WHERE O.NUMERO = " + numero + kUniao +
         Itens("Item", "I.DT_ENTREGA", "I.QTDE", "{PED_ITEN} I", numero);
}

std::string Compra(const std::string& numero) {
  return Linhas("Compra", "O.NUMERO", "O.DOCTO", "O.DT_ENTREGA",
                "COALESCE(E.NOME, '') || ' ' || COALESCE(SUBSTRING(O.OBS FROM 1 FOR 160), '')",
                (Valor("(SELECT SUM(X.PRECO * (X.QTDE - X.QTDE_B)) FROM {CO_ITEN} X "
                       "WHERE X.NUMERO = O.NUMERO AND X.SITUACAO = 'A')") +
                 Figuras("NULL", "NULL", "NULL"))
                    .c_str(),
                "{COMPRA} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODFOR") +
         " WHERE O.NUMERO = " + numero + kUniao +
         Itens("Item em aberto", "I.DT_ENTREGA", "(I.QTDE - I.QTDE_B)", "{CO_ITEN} I", numero) +
         " AND I.SITUACAO = 'A'";
}

// What a purchase costs beyond its items, and what was paid of it beforehand.
std::string RestoDaCompra(const std::string& numero) {
  const auto figuras = Figuras("NULL", "NULL", "NULL");
  return kUniao +
         Linhas("IPI e ST", "I.NUMERO", "NULL", "I.DT_ENTREGA",
                "'IPI ' || CAST(I.IPI AS NUMERIC(9,2)) || '%, ST ' || COALESCE(I.VALOR_ST, 0)",
                (Valor("I.PRECO * (I.QTDE - I.QTDE_B) / 100 * I.IPI + COALESCE(I.VALOR_ST, 0)") + figuras)
                    .c_str(),
                "{CO_ITEN} I") +
         " WHERE I.NUMERO = " + numero + " AND I.SITUACAO = 'A' AND (I.IPI <> 0 OR I.VALOR_ST <> 0)" +
         kUniao +
         Linhas("Frete", "O.NUMERO", "O.DOCTO", "O.DT_ENTREGA", "'Frete por nossa conta'",
                (Valor("O.VAL_FRETE") + figuras).c_str(), "{COMPRA} O") +
         " WHERE O.NUMERO = " + numero + " AND O.FRETE = '2'" + kUniao +
         Linhas("Já em títulos", "P.DUPLI", "P.DOCTO", "P.DT_VEN", "COALESCE(P.OBS, '')",
                (Valor("-P.VALOR") + figuras).c_str(),
                "{COMPRA} O INNER JOIN {PAGTO} P ON P.DOCTO = O.DOCTO AND P.STATUS = 'N'") +
         " WHERE O.NUMERO = " + numero;
}

// Work that is outside: each of its pieces or items.
std::string Faccao(const IFuncoes& funcoes, const std::vector<std::string>& chave) {
  return Linhas("Facção", "F.NUMERO", "F.OP", "F.DT_LAN",
                "COALESCE(E.NOME, '') || ' ' || COALESCE(F.PARTE, '')",
                (Valor("F.UNITARIO * F.QUANT") + Figuras("NULL", "F.QUANT", "F.UNITARIO")).c_str(),
                "{FACCAO3} F LEFT JOIN {ENTIDADE} E ON E.CODCLI = F.CODCLI") +
         " WHERE F.PAGO = 'N' AND F.NUMERO = " + funcoes.Aspas(chave.at(0)) +
         " AND COALESCE(F.OP, '') = " + funcoes.Aspas(chave.at(1)) +
         " AND COALESCE(F.PARTE, '') = " + funcoes.Aspas(chave.at(2));
}

std::string Tinturaria(const std::string& numero) {
  const char* const peso = "(I.PESO_BRUTO - I.PESO_RETORNO)";
  return Linhas("Beneficiamento", "I.NUMERO", "NULL", "O.DATR", "''",
                (Valor("(I.PESO_BRUTO - I.PESO_RETORNO) * (I.CUSTO + I.CUSTO_FLUXO)") +
                 Figuras("NULL", peso, "(I.CUSTO + I.CUSTO_FLUXO)"))
                    .c_str(),
                "{TINTUR_ITEN} I INNER JOIN {TINTUR} O ON O.NUMERO = I.NUMERO") +
         " WHERE I.SITUACAO <> 'B' AND I.NUMERO = " + numero;
}

std::string Tecelagem(const std::string& numero) {
  return Linhas("Tecelagem", "I.NUMERO", "NULL", "O.DT_INICIO", "I.CODIGO",
                (Valor("(I.QTDE - I.QTDE_B) * C.CUSTO") + Figuras("NULL", "(I.QTDE - I.QTDE_B)", "C.CUSTO"))
                    .c_str(),
                "{TECEL_ITEN} I INNER JOIN {TECEL} O ON O.NUMERO = I.NUMERO INNER JOIN {CADCORTI} C ON "
                "C.CODCLI = O.MALHARIA AND C.CODIGO = I.CODIGO AND C.TIPO = 'C'") +
         " WHERE I.BAIXADA <> 'S' AND I.NUMERO = " + numero;
}

}  // namespace

const std::array<ReportField, 10> kLinhasDeOrigem{{{"Tipo", FieldType::String, 20},
                                                   {"Número", FieldType::String, 12},
                                                   {"Documento", FieldType::String, 15},
                                                   {"Data", FieldType::Date},
                                                   {"Descrição", FieldType::String, 250},
                                                   {"Valor", FieldType::Currency},
                                                   {"Pago", FieldType::Currency},
                                                   {"Juros", FieldType::Currency},
                                                   {"Desconto", FieldType::Currency},
                                                   {"Devolvido", FieldType::Currency}}};

// The figures of an order become a part of the description.
void CompletaOrigem(std::span<Value> linha) {
  if (linha.size() == kLinhasDeOrigem.size()) return;
  Value& descricao = linha[4];
  const Value &desconto = linha[10], &quantidade = linha[11], &preco = linha[12];
  if (!desconto.IsNull())
    descricao = descricao.AsString() + " desconto " + desconto.AsCurrency().Brazil() + "%";
  if (preco.IsNull()) return;
  const Currency valor = preco.AsCurrency();
  const std::string texto = descricao.AsString();
  descricao = (texto.empty() ? "" : texto + " ") + quantidade.AsCurrency().Brazil(3) + " x " +
              valor.Brazil(valor == valor.Round2() ? 2 : 4);
}

DetalheDeOrigem DetalheDaFonte(const IFuncoes& funcoes, Fonte fonte, std::string_view texto,
                               std::string_view empresa) {
  const std::string chave = funcoes.Aspas(texto);
  const std::vector<std::string> partes = Split(texto, "\t");
  const auto detalhe = [&](const char* titulo, std::string sql) {
    return DetalheDeOrigem{titulo + partes.at(0), std::move(sql), std::string(empresa)};
  };
  switch (fonte) {
    case Fonte::Receber:
      return detalhe("Título a receber ",
                     Receber("NUMERO = " + chave) + kUniao + BaixasReceber("NUMERO = " + chave));
    case Fonte::Pagar:
      return detalhe("Título a pagar ",
                     Pagar("NUM_AP = " + chave) + kUniao + BaixasPagar("NUM_AP = " + chave));
    case Fonte::Cheque:
      return detalhe("Cheque ", Cheques("CHAVE = " + chave) + kUniao + Movimentos("LANCAMENTO = " + chave));
    case Fonte::Movimento:
      return detalhe(
          "Movimento ",
          Movimentos("LANCAMENTO = " + chave) + kUniao +
              Receber("NUMERO IN (SELECT X.NUMERO FROM {RECEBERB} X WHERE X.LANCAMENTO = " + chave + ")") +
              kUniao +
              Pagar("NUM_AP IN (SELECT X.NUM_AP FROM {PAGTO1} X WHERE X.LANCAMENTO = " + chave + ")") +
              kUniao + Contabilizacao("LANCAMENTO = " + chave));
    case Fonte::Pedido:
      return detalhe("Pedido ", Pedido(chave));
    case Fonte::Compra:
      return detalhe("Ordem de compra ", Compra(chave));
    case Fonte::CompraCompleta:
      return detalhe("Ordem de compra ", Compra(chave) + RestoDaCompra(chave));
    case Fonte::Faccao:
      return detalhe("Facção ", Faccao(funcoes, partes));
    case Fonte::Tinturaria:
      return detalhe("Ordem de beneficiamento ", Tinturaria(chave));
    case Fonte::Tecelagem:
      break;
  }
  return detalhe("Ordem de tecelagem ", Tecelagem(chave));
}

void Origens::Anota(Fonte fonte, Value chave, std::string_view empresa) {
  const auto found = std::find(empresas_.begin(), empresas_.end(), empresa);
  const auto place = static_cast<uint16_t>(found - empresas_.begin());
  if (found == empresas_.end()) empresas_.emplace_back(empresa);
  origens_.push_back({std::move(chave), place, fonte});
}

void Origens::Limpa() {
  origens_.clear();
  empresas_.clear();
}

DetalheDeOrigem Origens::Detalhe(const IFuncoes& funcoes, std::size_t linha) const {
  const Origem& origem = origens_.at(linha);
  return DetalheDaFonte(funcoes, origem.fonte, origem.chave.Text(), empresas_.at(origem.empresa));
}

}  // namespace orv
