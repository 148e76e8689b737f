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
// Changes sent at once: each alone costs the engine more to read than to do. It takes 127 in one block, and
// 64 KiB of text.
constexpr std::size_t kComandos = 100, kTexto = 40000;

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
  ConciliaMovimentos(movimentos, numero, data);
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

int64_t TFmConcilia::Executa(const std::vector<std::string>& comandos) {
  int64_t linhas = 0;
  std::string bloco;
  std::size_t no_bloco = 0;
  for (std::size_t i = 0; i < comandos.size(); ++i) {
    bloco += comandos[i] + ";\n";
    if (++no_bloco < kComandos && bloco.size() < kTexto && i + 1 < comandos.size()) continue;
    linhas +=
        Tabela.IBDatabase().Execute(no_bloco == 1 ? comandos[i] : "EXECUTE BLOCK AS BEGIN\n" + bloco + "END");
    bloco.clear();
    no_bloco = 0;
  }
  return linhas;
}

void TFmConcilia::ConciliaMovimentos(const std::vector<Movimento>& movimentos, const std::string& numero,
                                     Date data) {
  const std::string dia = data.Empty() ? "NULL" : Funcoes.AspasData(data);
  const std::string altera = "UPDATE " + Funcoes.DBLocal("CONTACOR", true) +
                             " SET PENDENTE = 'N', LANC_CON = " + Funcoes.Aspas(numero) +
                             (fin110_ && !data.Empty() ? ", DT_CONT = " + dia : "") + " WHERE ";
  // One statement both looks and changes the row, so that of two users only the first one does.
  std::vector<std::string> comandos;
  for (const Movimento& movimento : movimentos) comandos.push_back(altera + ComoCarregado(movimento, numero));
  if (Executa(comandos) != static_cast<int64_t>(movimentos.size())) {
    for (const Movimento& movimento : movimentos) {
      if (!Ha("CONTACOR", ComoCarregado(movimento, numero))) Mudou("o lançamento " + movimento.lancto);
    }
  }
  comandos.clear();
  for (const Movimento& movimento : movimentos) {
    const std::string lancto = Funcoes.Aspas(movimento.lancto), docto = Funcoes.Aspas(movimento.docto);
    comandos.push_back(altera + "LANCAMENTO = " + lancto + " AND DOCTO = " + docto +
                       " AND CONTA = " + Funcoes.Aspas(conta_));
    if (!movimento.cheque) continue;
    comandos.push_back("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'B', DT_BAIXA = " +
                       dia + " WHERE CHAVE = " + lancto + " AND NUMERO = " + docto + " AND STATUS = 'P'");
  }
  Executa(comandos);
  for (const Movimento& movimento : movimentos) {
    Funcoes.GeraLog("CONCILIACAO", "CONCILIACAO DO LANCAMENTO " + movimento.lancto, TOperacaoLog::Processo,
                    movimento.lancto);
  }
}

void TFmConcilia::ConciliaLinhas(const std::string& numero) {
  const std::string altera = "UPDATE " + Funcoes.DBLocal("EXTRATO", true) +
                             " SET CONCILIADO = 'S', LANC_CON = " + Funcoes.Aspas(numero) + " WHERE ";
  std::vector<std::string> comandos, como_lidas;
  std::vector<int64_t> lugares;
  const int64_t linhas = TbArq.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (TbArq.Cell(i, TbArq.Concilia).Text() != "S") continue;
    const auto aspas = [&](const Field& campo) { return Funcoes.Aspas(TbArq.Cell(i, campo).Text()); };
    como_lidas.push_back(
        "LANCTO = " + aspas(TbArq.Lancto) + " AND CONTA = " + Funcoes.Aspas(conta_) +
        " AND OPERACAO = " + aspas(TbArq.Operacao) +
        " AND COALESCE(VALOR, 0) = " + Funcoes.PermanecePonto(TbArq.Cell(i, TbArq.Valor).AsCurrency()) +
        " AND ((COALESCE(CONCILIADO, 'N') = 'N' AND COALESCE(LANC_CON, '') = " + aspas(TbArq.LancCon) +
        ") OR LANC_CON = " + Funcoes.Aspas(numero) + ")");
    comandos.push_back(altera + como_lidas.back());
    lugares.push_back(i);
  }
  if (Executa(comandos) == static_cast<int64_t>(comandos.size())) return;
  for (std::size_t i = 0; i < como_lidas.size(); ++i) {
    if (!Ha("EXTRATO", como_lidas[i]))
      Mudou("a linha " + TbArq.Cell(lugares[i], TbArq.Lancto).AsString() + " do extrato");
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
