// From a figure to where it comes from: the titles, settlements and orders of a month, or of a group.
#include "results/rel_cc_mes.h"
#include "rules/origem.h"
#include "rules/titulo.h"

namespace orv {

using namespace origem;

void TFmRelCCMes::Mostra(const std::string& titulo, const std::string& sql) {
  ShowDetail(titulo, Funcoes.DBLocal_SQL(sql, ""));
}

std::string TFmRelCCMes::Pagamentos(const Periodo& mes, const std::string& mais) const {
  const Periodo dias = mes.Comum(consulta_.recebimento);
  return BaixasPagar("NUM_AP IN (SELECT P.NUM_AP FROM {PAGTO} P WHERE P.STATUS = 'N'" + consulta_.classes +
                     mais + ")" + WhereBetween("B.DT_LAN", dias.de, dias.ate));
}

std::string TFmRelCCMes::Recebimentos(const Periodo& dias, const std::string& mais) const {
  return BaixasReceber("NUMERO IN (SELECT R.NUMERO FROM {RECEBER} R WHERE R." + Titulos() + mais + ")" +
                       WhereBetween("B.DT_PAGTO", dias.de, dias.ate));
}

std::string TFmRelCCMes::Faturados() const {
  return Titulos() + WhereBetween("R.DT_EMISSAO", consulta_.emissao.de, consulta_.emissao.ate);
}

void TFmRelCCMes::DBGrid1DblClick() {
  if (TbMeses.IsEmpty() || consulta_.ano.de.Empty()) return;
  const int numero = static_cast<int>(TbMeses.RecNo());
  const Date primeiro(consulta_.ano.de.Year(), numero, 1);
  const Periodo mes{primeiro, primeiro.LastOfMonth()}, emissao = mes.Comum(consulta_.emissao),
                                                       vencimento = mes.Comum(consulta_.vencimento),
                                                       recebimento = mes.Comum(consulta_.recebimento);
  const std::string& coluna = DBGrid1.SelectedField();
  const auto e = [&](const char* nome) { return SameText(coluna, nome); };
  const std::string de = " de " + TbMeses["Mes"].AsString() + " de " + consulta_.ano.de.Brazil().substr(6),
                    receber = Titulos(), receber_banco = receber + consulta_.bancos,
                    pagar = "STATUS = 'N'" + consulta_.classes;
  const std::string vencem = WhereBetween("R.DT_VENCTO", vencimento.de, vencimento.ate);
  // The average terms take in the month of every year.
  const auto do_mes = [&](const char* coluna_do_dia) {
    return std::string(" AND EXTRACT(MONTH FROM ") + coluna_do_dia + ") = " + std::to_string(numero);
  };
  if (e("Recebido")) {
    Mostra("Recebimentos" + de, Recebimentos(recebimento, consulta_.bancos));
  } else if (e("Pendentes")) {
    Mostra("Pendentes" + de, Receber(receber_banco + vencem + " AND " + EmAbertoReceber("R") + " > 0"));
  } else if (e("Vencido")) {
    Mostra("Vencimentos" + de, Receber(receber_banco + vencem));
  } else if (e("Pedidos")) {
    Mostra("Pedidos" + de,
           Linhas("Pedido", "O.NUMERO", "O.PED_CLI", "O.DT_FATURA", "COALESCE(E.NOME, '')",
                  Valor("(SELECT SUM(X.PRECO * X.QTDE) FROM {PED_ITEN} X WHERE X.NUMERO = O.NUMERO)").c_str(),
                  "{PEDIDO} O LEFT JOIN {ENTIDADE} E ON E.CODCLI = O.CODCLI") +
               " WHERE 1 = 1" + WhereBetween("O.DT_FATURA", emissao.de, emissao.ate));
  } else if (e("Pagos")) {
    Mostra("Pagamentos" + de, Pagamentos(mes));
  } else if (e("APagar")) {
    Mostra("A pagar" + de, Pagar(pagar + WhereBetween("P.DT_VEN", vencimento.de, vencimento.ate)));
  } else if (e("PrazoFat")) {
    Mostra("Vendas do mês, de todos os anos", Receber(receber + do_mes("R.DT_EMISSAO")));
  } else if (e("PrazoCompras")) {
    Mostra("Compras do mês, de todos os anos", Pagar(pagar + do_mes("P.DT_EMI")));
  } else {
    Mostra("Faturamento" + de,
           Receber(receber_banco + WhereBetween("R.DT_EMISSAO", emissao.de, emissao.ate)));
  }
}

void TFmRelCCMes::DBGrid2DblClick() {
  if (TbGrupos.IsEmpty()) return;
  const std::string& coluna = DBGrid2.SelectedField();
  Periodo dias = consulta_.ano;
  for (int mes = 1; mes <= kMeses; ++mes) {
    if (!SameText(coluna, "Mes" + std::to_string(mes))) continue;
    const Date primeiro(dias.de.Year(), mes, 1);
    dias = {primeiro, primeiro.LastOfMonth()};
    break;
  }
  const std::string codigo = TbGrupos["Codigo"].AsString(),
                    nome = codigo.empty() ? "sem grupo" : codigo + " " + TbGrupos["Descricao"].AsString();
  // Codes that name no group stand together.
  const auto do_grupo = [&](const char* coluna_da_classe, const char* tabela) {
    if (!codigo.empty()) return " AND " + Igual(coluna_da_classe, codigo);
    return std::string(" AND NOT EXISTS (SELECT 1 FROM {") + tabela +
           "} G WHERE G.CODIGO = " + coluna_da_classe + ")";
  };
  if (TbGrupos["Tipo"].AsString() == "R") {
    dias = dias.Comum(consulta_.vencimento);
    Mostra("Pendentes: " + nome,
           Receber(Titulos() + consulta_.bancos + do_grupo("R.CLASSE", "TABSIT") +
                   WhereBetween("R.DT_VENCTO", dias.de, dias.ate) + " AND " + EmAbertoReceber("R") + " > 0"));
  } else {
    Mostra("Pagos: " + nome, Pagamentos(dias, do_grupo("P.NUM_OS", "SUBGRUPO")));
  }
}

void TFmRelCCMes::DBGrid3DblClick() {
  if (TbRel.IsEmpty()) return;
  const std::string& coluna = DBGrid3.SelectedField();
  const auto& [de, ate] = consulta_.vencimento;
  if (SameText(coluna, "RecPer")) {
    Mostra("Recebido no período", Recebimentos(consulta_.recebimento, ""));
  } else if (SameText(coluna, "VenPer")) {
    Mostra("A vencer no período", Receber(Titulos() + WhereBetween("R.DT_VENCTO", de, ate) + " AND " +
                                          EmAbertoReceber("R") + " > 0"));
  } else if (SameText(coluna, "PrazoMedCom")) {
    Mostra("Compras do período",
           Pagar("STATUS = 'N'" + consulta_.classes +
                 WhereBetween("P.DT_EMI", consulta_.emissao.de, consulta_.emissao.ate)));
  } else {
    Mostra("Emitido no período", Receber(Faturados()));
  }
}

void TFmRelCCMes::DBGrid4DblClick() {
  if (TbVencto.IsEmpty()) return;
  constexpr int kFaixas = static_cast<int>(kVencto.size());
  for (int faixa = 0; faixa < kFaixas; ++faixa) {
    const ReportField& campo = kVencto.at(static_cast<std::size_t>(faixa));
    if (!SameText(DBGrid4.SelectedField(), campo.name)) continue;
    const std::string dias = " AND COALESCE(DATEDIFF(DAY FROM R.DT_EMISSAO TO R.DT_VENCTO), 0)",
                      mais_de = faixa == 0 ? "" : dias + " > " + std::to_string(15 * (faixa - 1)),
                      ate = faixa == kFaixas - 1 ? "" : dias + " <= " + std::to_string(15 * faixa);
    Mostra(std::string("Faturamento por prazo: ") + campo.column.title, Receber(Faturados() + mais_de + ate));
  }
}

void TFmRelCCMes::DBGrid5DblClick() {
  if (TbEmi.IsEmpty()) return;
  for (int semana = 1; semana <= static_cast<int>(kEmi.size()); ++semana) {
    const ReportField& campo = kEmi.at(static_cast<std::size_t>(semana - 1));
    if (!SameText(DBGrid5.SelectedField(), campo.name)) continue;
    Mostra(std::string("Faturamento: ") + campo.column.title,
           Receber(Faturados() + " AND EXTRACT(DAY FROM R.DT_EMISSAO) BETWEEN " +
                   std::to_string(7 * semana - 6) + " AND " + std::to_string(7 * semana)));
  }
}

}  // namespace orv
