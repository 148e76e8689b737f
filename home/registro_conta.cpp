#include "home/registro_conta.h"

#include <algorithm>
#include <utility>

#include "frame/entry/unit.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmRegistroConta* fmRegistroConta = nullptr;

namespace {

const Unit kUnit("Registroconta",
                 {"TfmRegistroConta", "Registro da conta", ScreenKind::Child, "Contas Correntes",
                  [](Application& a) { return std::make_unique<TfmRegistroConta>(a); }});

constexpr const char* kContaCorrenteTela = "TfmCC";

std::vector<GridColumn> Colunas() {
  std::vector<GridColumn> colunas = GridColumns(TfmRegistroConta::kMovimentos);
  for (GridColumn& coluna : colunas) {
    if (coluna.field == "Situacao")
      coluna.words = {
          {"S", "Pendente", "warning"}, {"P", "Pendente", "warning"}, {"N", "Baixado"}, {"C", "Baixado"}};
    if (coluna.field == "NoExtrato") coluna.words = {{"S", "Conciliado", "good"}, {"N", ""}};
  }
  return colunas;
}

// As it is searched: "1.234,56" and "1234,56" are one amount.
std::string SemPontos(std::string_view texto) { return ReplaceAll(texto, ".", ""); }

}  // namespace

TfmRegistroConta::TfmRegistroConta(Application& application)
    : ReportScreen(application, "TfmRegistroConta", "fmRegistroConta", "Registro da conta"),
      DBGrid1(*this, "DBGrid1", TbMovimentos, Colunas(), true, "Movimentos da conta") {
  Layout(R"(
    @bar { EdtConta PqConta EdtDescConta EdtProcura @primary BtConsulta } /
    LbSaldo /
    DBGrid1 /
    @actions { BtAbre @apart BtFecha }
  )");
  AddSet(TbMovimentos);
  AbreTabelas({"TbCadConta"});
  LayDown(TbMovimentos, kMovimentos);
  Lookups({{.field = &EdtConta,
            .lookup = &PqConta,
            .shows = {{"DESCRICAO", &EdtDescConta}},
            .message = "Conta inválida.",
            .optional = true,
            .back_first = true}});
  EdtProcura.OnChange = [this] { Procura(); };
  BtConsulta.OnClick = [this] { BtConsultaClick(); };
  BtAbre.OnClick = [this] { AbreMovimento(); };
  BtFecha.OnClick = [this] { Close(); };
  DBGrid1.OnDblClick = [this] { AbreMovimento(); };
}

void TfmRegistroConta::BtConsultaClick() {
  if (EdtConta.Empty()) {
    Recusa("Selecione uma Conta.", EdtConta);
    return;
  }
  LbSaldo.SetCaption("A última consulta não terminou. Consulte de novo.");
  LbSaldo.SetColor("warning");
  TbMovimentos.SetFiltered(false);
  Gather({&TbMovimentos}, [this](Gathering& andamento) { Monta(andamento); });
  Procura();
  DBGrid1.SetFocus();
}

void TfmRegistroConta::Monta(Gathering& andamento) {
  LayDown(TbMovimentos, kMovimentos);
  conta_ = EdtConta.Text();
  Currency saldo, de_hoje, pendente;
  for (Linha& linha : Le(andamento)) {
    const Currency valor = linha["Valor"].AsCurrency();
    const std::string_view situacao = linha["Situacao"].Text();
    const Date dia = linha["DtCont"].AsDate();
    if (situacao == "S") pendente += valor;
    if (!dia.Empty() && (situacao == "N" || situacao == "C")) {
      saldo += valor;
      if (dia <= Today()) de_hoje = saldo;
    }
    linha["Saldo"] = saldo;
    TbMovimentos.AppendRow(linha.Values());
  }
  LbSaldo.SetCaption("Saldo em " + Today().Brazil() + ": " + de_hoje.Brazil() +
                     (pendente.IsZero() ? "" : ". Pendente: " + pendente.Brazil()) +
                     (saldo == de_hoje ? "" : ". Com o que está datado adiante: " + saldo.Brazil()) + ".");
  LbSaldo.SetColor(de_hoje < Currency() ? "error" : "");
}

std::unordered_set<std::string> TfmRegistroConta::Conciliacoes() const {
  std::unordered_set<std::string> numeros;
  ForEach(ForCompanies("SELECT DISTINCT LANC_CON FROM {EXTRATO} WHERE CONTA = " + Funcoes.Aspas(conta_) +
                           " AND CONCILIADO = 'S' AND LANC_CON > ''",
                       "EXTRATO", false),
          [&](std::span<Value> v) { numeros.insert(v[0].AsString()); });
  return numeros;
}

std::vector<TfmRegistroConta::Linha> TfmRegistroConta::Le(Gathering& andamento) const {
  const std::unordered_set<std::string> conciliacoes = Conciliacoes();
  andamento.Stage("Movimentos");
  const std::string sql =
      "SELECT LANCAMENTO, DOCTO, BANCO, DT_LAN AS DTLAN, DT_CONT AS DTCONT, DT_VENCTO AS DTVENCTO, " +
      CreditoOuDebito("") +
      " AS VALOR, OPERACAO, PENDENTE AS SITUACAO, OBSERVACAO, LANC_CON FROM {CONTACOR} " +
      "WHERE CONTA = " + Funcoes.Aspas(conta_);
  std::vector<Linha> linhas;
  ForEachRow<kMovimentos>(ForCompanies(sql, "CONTACOR", false), [&](Linha& linha, std::span<Value> resto) {
    linha["NoExtrato"] = conciliacoes.contains(resto[0].AsString()) ? "S" : "N";
    std::string procura = Fold(linha["Observacao"].Text());
    procura.append(" ").append(Fold(linha["Docto"].Text())).append(" ").append(linha["Lancamento"].Text());
    linha["Procura"] = procura + " " + SemPontos(linha["Valor"].AsCurrency().Brazil());
    linhas.push_back(std::move(linha));
    andamento.Advance();
  });
  // Of one day by their numbers.
  std::ranges::sort(linhas, [](const Linha& a, const Linha& b) {
    const Date dia_a = a["DtCont"].AsDate(), dia_b = b["DtCont"].AsDate();
    return dia_a != dia_b ? dia_a < dia_b : a["Lancamento"].Text() < b["Lancamento"].Text();
  });
  return linhas;
}

void TfmRegistroConta::Procura() {
  std::vector<std::string> condicoes;
  for (const std::string& palavra : Split(Fold(EdtProcura.Text()), " ")) {
    if (palavra.empty()) continue;
    const auto contem = [&](const std::string& texto) {
      return "Procura LIKE " + Funcoes.Aspas("%" + texto + "%");
    };
    condicoes.push_back("(" + contem(palavra) + " OR " + contem(SemPontos(palavra)) + ")");
  }
  TbMovimentos.SetFilter(Join(condicoes, " AND "));
  TbMovimentos.SetFiltered(!condicoes.empty());
  TbMovimentos.Last();
}

// It is edited at the ledger, which finds it by its number and goes to it as by a double click.
void TfmRegistroConta::AbreMovimento() {
  if (TbMovimentos.IsEmpty()) return;
  const auto desta = [this](const char* campo) { return TbMovimentos[campo].AsString(); };
  const std::string numero = desta("Lancamento"), docto = desta("Docto"), operacao = desta("Operacao");
  FieldTexts campos{
      {"PageControl1", "TabSheet1"}, {"RgBusca", "Todos"}, {"RgTipo", "Todos"}, {"EdtConsLanc", numero}};
  for (const char* campo :
       {"EdtConsConta", "EdtCodGrupo", "edtCodHist", "EdtDocto", "EdtAObs", "EdtValorDe", "EdtValorAte"})
    campos.emplace_back(campo, "");
  for (const char* de : {"dtInicio", "dtVencIni", "dtContIni"}) campos.emplace_back(de, "01/01/1900");
  for (const char* ate : {"dtFim", "dtVencFim", "dtContFim"}) campos.emplace_back(ate, "31/12/2199");
  Screen& tela = Owner().OpenFilled(kContaCorrenteTela, campos, "BitBtn5");
  auto* achados = dynamic_cast<TOrvDBGrid*>(tela.Find("DBGridApagar"));
  if (achados == nullptr || !achados->Set().Active()) return;
  DataSet& set = achados->Set();
  const auto igual = [&](int64_t linha, const char* campo, const std::string& texto) {
    return set.Cell(linha, set[campo]).Text() == texto;
  };
  for (int64_t i = 0, n = set.DisplayCount(); i < n; ++i) {
    if (!igual(i, "DOCTO", docto) || !igual(i, "CONTA", conta_) || !igual(i, "OPERACAO", operacao)) continue;
    if (achados->CanFocus() && tela.SetFocus(*achados)) achados->UserDblClick(i, "LANCAMENTO");
    return;
  }
}

}  // namespace orv
