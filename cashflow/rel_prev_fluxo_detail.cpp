// From a figure of the forecast to what it is made of.
#include "cashflow/rel_prev_fluxo.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr auto kPartes = std::to_array<ReportField>({{"Tipo", FieldType::String, 20},
                                                     {"Número", FieldType::String, 15},
                                                     {"Cliente/Fornecedor", FieldType::String, 50},
                                                     {"Empresa", FieldType::String, 4},
                                                     {"Vencimento", FieldType::Date},
                                                     {"Dia", FieldType::Date},
                                                     {"Valor", FieldType::Currency}});
constexpr auto kParcelas =
    std::to_array<ReportField>({{"Parcela", FieldType::String, 60}, {"Valor", FieldType::Currency}});
constexpr auto kPorDia = std::to_array<ReportField>(
    {{"Dia", FieldType::Date}, {"Títulos", FieldType::Integer}, {"Valor", FieldType::Currency}});

// The column of a field of money, 0 for any other field.
std::size_t ColunaDe(const std::string& campo) {
  const std::size_t onde = campo.find("_");
  return campo.starts_with("Val_") || campo.starts_with("Desc_")
             ? static_cast<std::size_t>(ParseInteger(campo.substr(onde + 1)))
             : 0;
}

Value Empresa(const Value& sufixo) {
  const std::string_view texto = sufixo.Text();
  return texto.starts_with("_") ? texto.substr(1) : texto;
}

}  // namespace

void TfmRelPrevFluxo::AbreClasse(Lado lado, const TOrvDBGrid& grade, TClientDataSet& set) {
  static constexpr const char* kTipos[] = {"Título", "Adiantamento", "Orçamento", "Desconto",
                                           "Pedido", "Compra",       "Previsão"};
  if (set.IsEmpty()) return;
  const auto linha = set.CurrentRow();
  const Classe& classe = quadros_[lado].linhas.at(linha);
  const std::string& campo = grade.SelectedField();
  const std::size_t coluna = ColunaDe(campo);
  if (campo == "Vencidas") return AbreVencidas(lado, classe);
  if (classe.codigo.Text() == "EMI") {
    const std::string do_dia =
        coluna == 0 ? "" : " AND UDF_DAY(RECEBER.DT_EMISSAO) = " + std::to_string(coluna);
    return AbrePorDia("Emissões " + (coluna == 0 ? "do período base" : "do dia " + std::to_string(coluna)),
                      "RECEBER.DT_EMISSAO", FiltroBase() + do_dia, CbEmpresa.Checked());
  }
  TClientDataSet partes("Detalhe");
  LayDown(partes, kPartes);
  Currency soma;
  for (const Parte& parte : partes_) {
    if (parte.lado != lado || parte.linha != linha || (coluna != 0 && parte.coluna != coluna)) continue;
    Value uma[] = {kTipos[static_cast<std::size_t>(parte.tipo)],
                   parte.numero,
                   parte.nome,
                   Empresa(parte.empresa),
                   parte.vencimento,
                   parte.dia,
                   parte.valor};
    partes.AppendRow(uma);
    soma += parte.valor;
  }
  partes.First();
  Funcoes.TelaDetalhamento("Classe " + classe.codigo.AsString() +
                               (coluna == 0 ? "" : " em " + colunas_.Cabecalho(coluna)) + ": " +
                               soma.Brazil(),
                           partes);
}

void TfmRelPrevFluxo::AbreTitulos(const std::string& titulo, const std::string& sql, bool todas) {
  TClientDataSet partes("Detalhe");
  LayDown(partes, kPartes);
  ForEach(ForCompanies(sql, "", todas, "ORDER BY 6"), [&](std::span<Value> v) {
    Value uma[] = {"Título", v[6], v[7], Empresa(v[9]), v[5], v[5], v[8].AsCurrency()};
    partes.AppendRow(uma);
  });
  partes.First();
  Funcoes.TelaDetalhamento(titulo, partes);
}

void TfmRelPrevFluxo::AbreVencidas(Lado lado, const Classe& classe) {
  if (classe.vencidas.IsZero()) return;
  const std::string antes = " < " + Funcoes.AspasData(DtIni.Date()),
                    da_classe = " = " + Funcoes.Aspas(classe.vencidas_de);
  const std::string sql =
      lado == kRecebe ? SelectReceber("RECEBER.DT_VENCTO", "RECEBER.STATUS = 'N' AND RECEBER.CLASSE" +
                                                               da_classe + " AND RECEBER.DT_VENCTO" + antes +
                                                               " AND " + EmAbertoReceber() + " > 0")
                      : SelectPagar("'N' AND PAGTO.NUM_OS" + da_classe + " AND PAGTO.DT_VEN" + antes +
                                    " AND " + EmAbertoPagar() + " > 0");
  AbreTitulos("Vencidas da classe " + classe.vencidas_de, sql, CbEmpresa.Checked());
}

void TfmRelPrevFluxo::AbrePorDia(const std::string& titulo, const std::string& dia, const std::string& onde,
                                 bool todas) {
  const bool aberto = dia == "RECEBER.DT_VENCTO";
  const std::string sql = "SELECT " + dia + ", COUNT(*), " +
                          Soma(aberto ? EmAbertoReceber() : "RECEBER.VALOR2") + " AS VALOR" + onde +
                          " GROUP BY " + dia;
  ShowDetail(titulo, ForCompanies(sql, "", todas, "ORDER BY 1"), kPorDia,
             [](std::span<Value> linha) { linha[2] = SomaDe(linha[2]); });
}

// What the bank's contract holds until the day.
void TfmRelPrevFluxo::DBGrid2DblClick() {
  if (TbDesconto.IsEmpty()) return;
  const std::size_t coluna = ColunaDe(DBGrid2.SelectedField());
  const Date ate = DtIni.Date().AddDays(coluna == 0 ? kColunas - 1 : static_cast<int>(coluna) - 1);
  const std::string banco = TbDesconto["Banco"].AsString();
  AbrePorDia("Títulos no banco " + banco + " até " + ate.Brazil() + ", limite " +
                 TbDesconto["Limite"].AsCurrency().Brazil(),
             "RECEBER.DT_VENCTO",
             " FROM {RECEBER} RECEBER WHERE RECEBER.BANCO = " + Funcoes.Aspas(banco) + " AND " +
                 EmAbertoReceber() + " > 0 AND RECEBER.DT_VENCTO <= " + Funcoes.AspasData(ate),
             false);
}

void TfmRelPrevFluxo::DBGrid4DblClick() {
  if (TbCond.IsEmpty()) return;
  const std::string dias = TbCond["Dia"].AsString();
  AbrePorDia("Emissões com prazo de " + dias + " dias", "RECEBER.DT_EMISSAO",
             FiltroBase() + " AND RECEBER.DT_VENCTO - RECEBER.DT_EMISSAO = " + dias, CbEmpresa.Checked());
}

// The month's budget, of which a day has its share.
void TfmRelPrevFluxo::GridPrevDblClick() {
  if (TbPrev.IsEmpty()) return;
  const Date mes = TbPrev["Emissao"].AsDate();
  AbrePorDia("Orçamentos de " + mes.Brazil().substr(3), "RECEBER.DT_EMISSAO",
             " FROM {RECEBER} RECEBER WHERE RECEBER.STATUS = 'O' AND RECEBER.SITUACAO <> 'P'" +
                 WhereBetween("RECEBER.DT_EMISSAO", mes.FirstOfMonth(), mes.LastOfMonth()),
             CbEmpresa.Checked());
}

// A balance: the one before it, or the accounts, and what each class moves.
void TfmRelPrevFluxo::GridTotaisDblClick() {
  if (TbTotais.IsEmpty()) return;
  TClientDataSet parcelas("Detalhe");
  LayDown(parcelas, kParcelas);
  const auto soma = [&](const std::string& parcela, Currency valor) {
    Value linha[] = {parcela, valor};
    if (!valor.IsZero()) parcelas.AppendRow(linha);
  };
  const std::string& campo = GridTotais.SelectedField();
  const std::size_t coluna = ColunaDe(campo);
  const bool final_ = TbTotais.CurrentRow() == 1, vencidas = campo == "Vencidas", tudo = campo == "Total";
  if (final_ && coluna == 0) {
    for (int64_t i = 0, n = TbConta.DisplayCount(); i < n; ++i)
      soma("Conta " + TbConta.Cell(i, TbConta["Conta"]).AsString(),
           TbConta.Cell(i, TbConta["Saldo"]).AsCurrency());
  }
  if (final_ && coluna > 0)
    soma("Saldo anterior",
         TbTotais[coluna == 1 ? "Vencidas" : "Val_" + std::to_string(coluna - 1)].AsCurrency());
  for (const Lado lado : {kRecebe, kPaga}) {
    for (const Classe& classe : quadros_[lado].linhas) {
      if (classe.codigo.Text() == "EMI") continue;
      Currency valor = vencidas || tudo ? classe.vencidas : Currency();
      for (std::size_t i = 0; i < kColunas; ++i) {
        if (tudo || i + 1 == coluna) valor += classe.valores[i];
      }
      soma("Classe " + classe.codigo.AsString() + " " + classe.descricao.AsString(),
           lado == kRecebe ? valor : -valor);
    }
  }
  parcelas.First();
  Funcoes.TelaDetalhamento(
      TbTotais["Descricao"].AsString() + (coluna == 0 ? "" : " em " + colunas_.Cabecalho(coluna)), parcelas);
}

// A balance is too many movements to list one by one: it is shown month by month.
void TfmRelPrevFluxo::OrvDBGrid1DblClick() {
  if (TbConta.IsEmpty()) return;
  if (OrvDBGrid1.SelectedField() == "Val_Sit") {
    return AbreTitulos("Títulos da situação " + EdtCodSit.Text(),
                       SelectReceber("RECEBER.DT_VENCTO",
                                     "RECEBER.STATUS = 'N'" +
                                         WhereBetween("RECEBER.DT_VENCTO", DtSitIni.Date(), DtSitFim.Date()) +
                                         " AND RECEBER.SITUACAO = " + Funcoes.Aspas(EdtCodSit.Text()) +
                                         " AND " + EmAbertoReceber() + " > 0"),
                       CbEmpresa.Checked());
  }
  const bool pendente = OrvDBGrid1.SelectedField() == "Pendente";
  const std::string conta = TbConta["Conta"].AsString();
  const std::string sql =
      SaldoPorMes("DT_CONT", Creditos(kContaCorrente), pendente ? "0" : Debitos(kContaCorrente),
                  " FROM " + SaldosAte(kContaCorrente, "DT_CONT", dtSaldo.Date(), Today()) +
                      " WHERE CONTA = " + Funcoes.Aspas(conta) +
                      (pendente ? " AND OPERACAO = '+' AND PENDENTE = 'S'" : " AND PENDENTE = 'N'"));
  ShowDetail((pendente ? "Créditos pendentes da conta " : "Saldo da conta ") + conta,
             LinhasDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", false, "ORDER BY 1, 2")),
             kSaldoPorMes, CompletaMes);
}

}  // namespace orv
