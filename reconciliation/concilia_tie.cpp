// The page "Conciliação de Extrato": what is ticked is tied under one number, and untied again.
#include <algorithm>
#include <set>

#include "reconciliation/concilia.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kDiferentes = "Valores diferentes no Extrato. Impossível conciliar.";
constexpr const char* kMultiplos = "Impossível fazer a conciliação de múltiplos cheques ao mesmo tempo.";
constexpr const char* kSemConciliacao = "Lançamento sem conciliação. Impossível continuar.";

// A statement takes at most 1500 values in IN (...).
constexpr std::size_t kLote = 500;

[[noreturn]] void Mudou(const std::string& o_que) {
  throw UserError("Outro usuário alterou ou conciliou " + o_que +
                  " depois da consulta. Nada foi gravado, e as marcações continuam na tela.");
}

}  // namespace

bool TFmConcilia::Ha(const char* tabela, const std::string& condicao) {
  return !Tabela.IBDatabase()
              .Rows("SELECT FIRST 1 1 FROM " + Funcoes.DBLocal(tabela, true) + " WHERE " + condicao)
              .empty();
}

// --- Reconciliation.

void TFmConcilia::BitBtn4Click() {
  CalculaTotais();
  if (tot_mov_ != tot_ext_) return Inform(kDiferentes);
  std::vector<Movimento> movimentos = Marcados();
  const int64_t linha = PrimeiraLinha();
  if ((linha >= 0 || !movimentos.empty()) && EdtConta.Text() != conta_)
    return Recusa("A conta foi trocada depois da consulta. Consulte novamente.", EdtConta);
  ProcuraCheques(movimentos);
  if (movimentos.size() > 1 &&
      std::any_of(movimentos.begin(), movimentos.end(), [](const Movimento& m) { return m.cheque; })) {
    return Inform(kMultiplos);
  }
  const std::string numero = Funcoes.Proximo("CONTACOR", "LANC_CON", 6, true);

  // What is asked comes before the first write: nothing is held while the user thinks.
  std::unique_ptr<TContabil> partida;
  if (!movimentos.empty() && movimentos.front().cheque) {
    const Movimento& cheque = movimentos.front();
    if (!Ha("CONTACOR", ComoCarregado(cheque, numero))) Mudou("o lançamento " + cheque.lancto);
    partida = PartidaDoCheque(cheque, numero);
    if (!partida) return;
  }

  const BusyMark busy(Funcoes, *this);
  const Date data = linha < 0 ? TbArq.Data.AsDate() : TbArq.Cell(linha, TbArq.Data).AsDate();
  for (const Movimento& movimento : movimentos) ConciliaMovimento(movimento, numero, data);
  if (partida) partida->GravaContabilidadeFinan();
  ConciliaLinhas(numero);
  Tabela.CommitRetaining();
  CarregaMovimentos();
  CalculaTotais();
}

std::vector<TFmConcilia::Movimento> TFmConcilia::Marcados() {
  std::vector<Movimento> movimentos;
  const int64_t linhas = TbMov.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (TbMov.Cell(i, TbMov.Conciliar).Text() != "N") continue;
    const auto texto = [&](const Field& campo) { return TbMov.Cell(i, campo).AsString(); };
    movimentos.push_back({texto(TbMov.Lancto), texto(TbMov.Docto), texto(TbMov.Operacao) == "C" ? "+" : "-",
                          texto(TbMov.Historico), texto(TbMov.LancCon),
                          TbMov.Cell(i, TbMov.Valor).AsCurrency()});
  }
  return movimentos;
}

int64_t TFmConcilia::PrimeiraLinha() {
  const int64_t linhas = TbArq.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (TbArq.Cell(i, TbArq.Concilia).Text() == "S") return i;
  }
  return -1;
}

void TFmConcilia::ProcuraCheques(std::vector<Movimento>& movimentos) {
  for (std::size_t de = 0; de < movimentos.size(); de += kLote) {
    const std::size_t ate = std::min(de + kLote, movimentos.size());
    std::vector<std::string> chaves;
    for (std::size_t i = de; i < ate; ++i) chaves.push_back(Funcoes.Aspas(movimentos[i].lancto));
    std::set<std::pair<std::string, std::string>> cheques;
    for (const auto& linha :
         Tabela.IBDatabase().Rows("SELECT CHAVE, NUMERO FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) +
                                  " WHERE CHAVE IN (" + Join(chaves, ",") + ")")) {
      cheques.emplace(Trim(linha[0].Text()), Trim(linha[1].Text()));
    }
    for (std::size_t i = de; i < ate; ++i) {
      movimentos[i].cheque =
          cheques.contains({std::string(Trim(movimentos[i].lancto)), std::string(Trim(movimentos[i].docto))});
    }
  }
}

std::unique_ptr<TContabil> TFmConcilia::PartidaDoCheque(const Movimento& cheque, const std::string& numero) {
  const std::string historico = Funcoes.Aspas(cheque.historico);
  const auto conta = [&](const char* chave, const std::string& valor) {
    return Funcoes.Busca_Valor("CLASSE_CONTA", std::string(chave) + ";HISTORICO", "CONTA_CONT",
                               valor + ";" + historico, true, true);
  };
  const std::string conta_c = conta("CODCLI", Funcoes.Aspas("")),
                    conta_d = conta("CONTA", Funcoes.Aspas(EdtConta.Text()));
  auto partida = Contabil.Create();
  // Dated by the line at which the user stands.
  partida->SetContabilidadeFinan(numero, cheque.docto, cheque.docto, conta_c, conta_d, "-", "CC", "",
                                 cheque.historico, cheque.valor, TbArq.Data.AsDate(), "000-00",
                                 "COMPENSACAO DO CHEQUE NR: " + cheque.docto);
  return partida->ConfirmaDadosContabilidade(0) ? std::move(partida) : nullptr;
}

std::string TFmConcilia::ComoCarregado(const Movimento& movimento, const std::string& numero) const {
  return "LANCAMENTO = " + Funcoes.Aspas(movimento.lancto) +
         " AND DOCTO = " + Funcoes.Aspas(movimento.docto) + " AND CONTA = " + Funcoes.Aspas(conta_) +
         " AND OPERACAO = " + Funcoes.Aspas(movimento.operacao) +
         " AND COALESCE(VALOR, 0) = " + Funcoes.PermanecePonto(movimento.valor) +
         " AND ((PENDENTE = 'S' AND COALESCE(LANC_CON, '') = " + Funcoes.Aspas(movimento.lanc_con) +
         ") OR LANC_CON = " + Funcoes.Aspas(numero) + ")";
}

void TFmConcilia::ConciliaMovimento(const Movimento& movimento, const std::string& numero, Date data) {
  TOrvDatabase& db = Tabela.IBDatabase();
  const std::string dia = data.Empty() ? "NULL" : Funcoes.AspasData(data);
  const std::string altera = "UPDATE " + Funcoes.DBLocal("CONTACOR", true) +
                             " SET PENDENTE = 'N', LANC_CON = " + Funcoes.Aspas(numero) +
                             (fin110_ && !data.Empty() ? ", DT_CONT = " + dia : "") + " WHERE ";
  // One statement both looks and changes the row, so that of two users only the first one does.
  if (db.Execute(altera + ComoCarregado(movimento, numero)) == 0) Mudou("o lançamento " + movimento.lancto);
  db.Execute(altera + "LANCAMENTO = " + Funcoes.Aspas(movimento.lancto) +
             " AND DOCTO = " + Funcoes.Aspas(movimento.docto) + " AND CONTA = " + Funcoes.Aspas(conta_));
  if (movimento.cheque) {
    db.Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'B', DT_BAIXA = " + dia +
               " WHERE CHAVE = " + Funcoes.Aspas(movimento.lancto) +
               " AND NUMERO = " + Funcoes.Aspas(movimento.docto) + " AND STATUS = 'P'");
  }
  Funcoes.GeraLog("CONCILIACAO", "CONCILIACAO DO LANCAMENTO " + movimento.lancto, TOperacaoLog::Processo,
                  movimento.lancto);
}

void TFmConcilia::ConciliaLinhas(const std::string& numero) {
  const std::string altera = "UPDATE " + Funcoes.DBLocal("EXTRATO", true) +
                             " SET CONCILIADO = 'S', LANC_CON = " + Funcoes.Aspas(numero) +
                             " WHERE LANCTO = ";
  const int64_t linhas = TbArq.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (TbArq.Cell(i, TbArq.Concilia).Text() != "S") continue;
    const auto aspas = [&](const Field& campo) { return Funcoes.Aspas(TbArq.Cell(i, campo).Text()); };
    const std::string lancto = aspas(TbArq.Lancto);
    if (Tabela.IBDatabase().Execute(
            altera + lancto + " AND CONTA = " + Funcoes.Aspas(conta_) +
            " AND OPERACAO = " + aspas(TbArq.Operacao) +
            " AND COALESCE(VALOR, 0) = " + Funcoes.PermanecePonto(TbArq.Cell(i, TbArq.Valor).AsCurrency()) +
            " AND COALESCE(CONCILIADO, 'N') = 'N' AND COALESCE(LANC_CON, '') = " + aspas(TbArq.LancCon)) !=
        1) {
      Mudou("a linha " + TbArq.Cell(i, TbArq.Lancto).AsString() + " do extrato");
    }
  }
}

// --- Undo.

void TFmConcilia::BitBtn8Click() {
  EdtConcilia.SetText(TbMov.LancCon.AsString());
  BitBtn1Click();
  const std::string numero(Trim(EdtConcilia.Text()));
  if (TbMov.IsEmpty() || numero.empty()) return Inform(kSemConciliacao);
  if (!Ask("Tem certeza que deseja voltar conciliação?", true)) return;

  const std::string lancto = TbMov.Lancto.AsString(), docto = TbMov.Docto.AsString();
  const std::string desta = " WHERE LANC_CON = " + Funcoes.Aspas(numero);
  const std::string da_chave = "CHAVE = " + Funcoes.Aspas(lancto);
  TOrvDatabase& db = Tabela.IBDatabase();
  if (db.Execute("UPDATE " + Funcoes.DBLocal("CONTACOR", true) + " SET PENDENTE = 'S', LANC_CON = ''" +
                 desta) == 0) {
    EdtConcilia.Clear();
    throw UserError("Outro usuário já voltou a conciliação " + numero + ". Nada foi gravado.");
  }
  db.Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'P' WHERE " + da_chave +
             " AND STATUS = 'B'");
  db.Execute("UPDATE " + Funcoes.DBLocal("EXTRATO", true) + " SET CONCILIADO = 'N', LANC_CON = ''" + desta);
  if (Ha("CHEQUE_PRE", da_chave + " AND NUMERO = " + Funcoes.Aspas(docto)))
    Contabil.DeletaContabilidadeFinan(numero);
  Funcoes.GeraLog("CONCILIACAO", "VOLTA CONCILIACAO DO LANCAMENTO " + lancto, TOperacaoLog::Processo, lancto);
  EdtConcilia.Clear();
  Tabela.CommitRetaining();
  BitBtn1Click();
}

}  // namespace orv
