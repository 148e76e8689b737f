// From a figure of the analysis to what it is made of.
#include "cashflow/rel_analise_fluxo.h"
#include "rules/saldo.h"
#include "toolkit/place_hold.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {

void TfmRelAnaliseFluxo::DBGrid2DblClick() {
  if (!TbDetalha.Active() || TbDetalha.IsEmpty()) return;
  const DetalheDeOrigem detalhe = origens_.Detalhe(Funcoes, TbDetalha.CurrentRow());
  ShowDetail(detalhe.titulo, ForCompany(detalhe.sql, detalhe.empresa), kLinhasDeOrigem, CompletaOrigem);
}

// A balance is too many movements to list one by one: it is shown month by month.
void TfmRelAnaliseFluxo::OrvDBGrid1DblClick() {
  if (TbSaldo.IsEmpty()) return;
  const std::string conta = TbSaldo["Conta"].AsString();
  const Date ate = CbSaldoDoDia.Checked() ? Today() : EdtDataDe.Date();
  const std::string sql =
      SaldoPorMes("DT_CONT", Creditos(kContaCorrente), "CASE WHEN OPERACAO = '+' THEN 0 ELSE VALOR END",
                  " FROM " + SaldosAte(kContaCorrente, "DT_CONT", ate, Today()) + " WHERE " + kBaixado +
                      " AND CONTA = " + Funcoes.Aspas(conta));
  ShowDetail(
      "Saldo da conta " + conta,
      LinhasDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1, 2")),
      kSaldoPorMes, CompletaMes);
}

// The rows of a class on a day, or on all days of the table.
void TfmRelAnaliseFluxo::DBGrid3DblClick() {
  if (TbClasseData.IsEmpty()) return;
  static constexpr auto kLinhas = std::to_array<ReportField>({{"Tipo", FieldType::String, 20},
                                                              {"Número", FieldType::String, 12},
                                                              {"Vencimento", FieldType::Date},
                                                              {"Cliente/Fornecedor", FieldType::String, 50},
                                                              {"Observação", FieldType::String, 250},
                                                              {"Valor", FieldType::Currency}});
  const std::string classe = TbClasseData["Classe"].AsString();
  const GridColumn* const coluna = DBGrid3.FindColumn(DBGrid3.SelectedField());
  const bool dia = coluna != nullptr && coluna->field.starts_with("Dia");
  const Date um = dia ? Date::ParseBrazilOr(coluna->title, Date()) : Date();
  const Date de = dia ? um : base_classe_, ate = dia ? um : base_classe_.AddDays(kDias - 1);

  TClientDataSet linhas("Detalhe");
  LayDown(linhas, kLinhas);
  {
    const PlaceHold lugar(TbDetalha);
    const bool filtrado = TbDetalha.Filtered();
    TbDetalha.SetFiltered(false);
    const AtEnd volta([&] { TbDetalha.SetFiltered(filtrado); });
    DiasEfetivos dias(Funcoes, Contabil);
    for (TbDetalha.First(); !TbDetalha.Eof(); TbDetalha.Next()) {
      if (TbDetalha["Classe"].AsString() != classe) continue;
      const Date quando = DiaDaClasse(dias, TbDetalha["Vencto"].AsDate());
      if (quando < de || quando > ate) continue;
      const auto tipo = std::find_if(kTipos.begin(), kTipos.begin() + kSomados,
                                     [this](const Tipo& t) { return !TbDetalha[t.detalhe].IsNull(); });
      Value linha[] = {tipo->titulo,
                       TbDetalha[TbDetalha["Numero"].IsNull() ? "Docto" : "Numero"].Get(),
                       quando,
                       TbDetalha["Nome"].Get(),
                       TbDetalha["Observacao"].Get(),
                       ValorDaClasse()};
      linhas.AppendRow(linha);
    }
  }
  linhas.First();
  const std::string ocultos = Ocultos();
  Funcoes.TelaDetalhamento("Classe " + classe + (dia ? " em " + coluna->title : "") +
                               (ocultos.empty() ? "" : " (com os tipos ocultos em Análise: " + ocultos + ")"),
                           linhas);
}

// The balance of a period: the one before it and each kind of money that moves it. The opening balance: the
// accounts that are marked.
void TfmRelAnaliseFluxo::BtComposicaoClick() {
  if (TbRelatorio.IsEmpty()) return;
  static constexpr auto kLinhas =
      std::to_array<ReportField>({{"Parcela", FieldType::String, 60}, {"Valor", FieldType::Currency}});
  TClientDataSet linhas("Detalhe");
  LayDown(linhas, kLinhas);
  const auto soma = [&](const std::string& parcela, Currency valor) {
    Value linha[] = {parcela, valor};
    linhas.AppendRow(linha);
  };
  const Currency saldo = TbRelatorio["Saldo"].AsCurrency();
  if (TbRelatorio["CodPer"].Get().Text() == "00") {
    const PlaceHold lugar(TbSaldo);
    for (TbSaldo.First(); !TbSaldo.Eof(); TbSaldo.Next()) {
      if (TbSaldo["Seleciona"].Get().Text() == "S")
        soma("Conta " + TbSaldo["Conta"].AsString() + " " + TbSaldo["Descricao"].AsString(),
             TbSaldo["Saldo"].AsCurrency());
    }
  } else {
    Currency movimento;
    std::vector<std::pair<const Tipo*, Currency>> parcelas;
    for (const Tipo& tipo : kTipos) {
      const Currency valor = TbRelatorio[tipo.campo].AsCurrency();
      if (valor.IsZero()) continue;
      parcelas.emplace_back(&tipo, tipo.entrada ? valor : -valor);
      movimento += parcelas.back().second;
    }
    soma("Saldo anterior", saldo - movimento);
    for (const auto& [tipo, valor] : parcelas) {
      const bool oculto = tipo->caixa != nullptr && !(this->*tipo->caixa).Checked();
      soma(tipo->titulo + std::string(oculto ? " (oculto)" : ""), valor);
    }
  }
  soma("Saldo", saldo);
  linhas.First();
  Funcoes.TelaDetalhamento("Composição do saldo de " + std::string(Trim(TbRelatorio["Periodo"].AsString())),
                           linhas);
}

}  // namespace orv
