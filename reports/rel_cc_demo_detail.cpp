// From a figure to where it comes from: the titles and the orders of a row's days, of a month, of a bank.
#include "reports/rel_cc_demo.h"
#include "rules/origem.h"
#include "rules/titulo.h"

namespace orv {
namespace {

constexpr auto kEncomenda = std::to_array<ReportField>({{"Número", FieldType::String, 8},
                                                        {"Parcela", FieldType::Integer},
                                                        {"Data", FieldType::Date},
                                                        {"Cliente/Fornecedor", FieldType::String, 80},
                                                        {"Total", FieldType::Currency},
                                                        {"Valor", FieldType::Currency}});

}  // namespace

void TfmRelCCDemo::DBGrid1DblClick() {
  if (TbRelPer.IsEmpty()) return;
  const Faixa& faixa = faixas_.at(TbRelPer.CurrentRow());
  const std::string titulo = TbRelPer["Grupo_Dias"].AsString(), coluna = DBGrid1.SelectedField();
  if (SameText(coluna, "Vlr_Compra"))
    return MostraEncomendas("Compras: " + titulo, Qual::Compra, faixa.encomendas);
  if (SameText(coluna, "Vlr_Venda"))
    return MostraEncomendas("Vendas: " + titulo, Qual::Venda, faixa.encomendas);
  if (SameText(coluna, "Vlr_Ped"))
    return MostraEncomendas("Pedidos: " + titulo, Qual::Pedido, faixa.encomendas);
  const std::string receber =
      origem::Receber(Receber(faixa.titulos) + " AND " + EmAbertoReceber("R") + " <> 0");
  const std::string pagar = origem::Pagar(Pagar(faixa.titulos) + " AND " + EmAbertoPagar("P") + " <> 0");
  if (SameText(coluna, "Vlr_receb")) {
    ShowDetail("A receber: " + titulo, PorEmpresa(receber, "RECEBER"));
  } else if (SameText(coluna, "Vlr_pagar")) {
    ShowDetail("A pagar: " + titulo, PorEmpresa(pagar, "PAGTO"));
  } else {
    ShowDetail("Títulos: " + titulo,
               PorEmpresa(receber, "RECEBER") + origem::kUniao + PorEmpresa(pagar, "PAGTO"));
  }
}

void TfmRelCCDemo::MostraEncomendas(const std::string& titulo, Qual qual, const Periodo& dias) {
  TClientDataSet linhas("Detalhe");
  LayDown(linhas, kEncomenda);
  if (consulta_.compras_vendas && dias.de <= dias.ate) {
    Encomendas(qual, dias, true, [&](const Encomenda& encomenda) {
      Parcelas(qual, encomenda, [&](Date dia, int numero, Currency valor) {
        if (!dias.Contem(dia) || valor.IsZero()) return;
        Value linha[] = {encomenda.numero, numero, dia, encomenda.pessoa, encomenda.valor, valor};
        linhas.AppendRow(linha);
      });
    });
  }
  linhas.SetIndexFieldNames("Data;Número");
  linhas.First();
  Funcoes.TelaDetalhamento(titulo, linhas);
}

void TfmRelCCDemo::DBGrid2DblClick() {
  if (tbAnual.IsEmpty()) return;
  const Periodo& mes = anual_.at(tbAnual.CurrentRow());
  ShowDetail("Faturamento de " + tbAnual["DescMes"].AsString(),
             PorEmpresa(origem::Receber("NUMERO IS NOT NULL" + WhereBetween("R.DT_EMISSAO", mes.de, mes.ate) +
                                        consulta_.receber),
                        "RECEBER"));
}

void TfmRelCCDemo::DBGrid3DblClick() {
  if (TbPed.IsEmpty()) return;
  const Periodo& mes = pedidos_.at(TbPed.CurrentRow());
  const std::string quando =
      mes.de.Empty() ? "O.DT_FATURA IS NULL" : "1 = 1" + WhereBetween("O.DT_FATURA", mes.de, mes.ate);
  const std::string sql =
      origem::Linhas(
          "Pedido", "O.NUMERO", "O.PED_CLI", "O.DT_FATURA", "COALESCE(E.NOME, '')",
          origem::Valor("(SELECT SUM(X.PRECO * X.QTDE) FROM {PED_ITEN} X WHERE X.NUMERO = O.NUMERO)").c_str(),
          "{PEDIDO} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODCLI") +
      " WHERE " + quando;
  ShowDetail("Pedidos de " + TbPed["DescMes"].AsString(), PorEmpresa(sql, "PEDIDO"));
}

void TfmRelCCDemo::DBGrid4DblClick() {
  if (TbBanco.IsEmpty()) return;
  const std::string banco = TbBanco["Banco"].AsString();
  // Blank and null banks stand in one row.
  const std::string titulos =
      banco.empty() ? "NUMERO IS NOT NULL AND COALESCE(R.BANCO, '') = ''" : Igual("BANCO", banco);
  ShowDetail(
      banco.empty() ? "Títulos fora dos bancos" : "Títulos no banco " + banco,
      PorEmpresa(origem::Receber(titulos + consulta_.limites + " AND " + EmAbertoReceber("R") + " <> 0"),
                 "RECEBER"));
}

}  // namespace orv
