// The page "Conciliação de Extrato": what is ticked is tied under one number, and untied again.
#include <algorithm>
#include <set>

#include "frame/lists.h"
#include "reconciliation/concilia.h"
#include "rules/como_lido.h"
#include "rules/compensacao.h"
#include "rules/conta_contabil.h"
#include "rules/historico.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kDiferentes = "Valores diferentes no Extrato. Impossível conciliar.";
constexpr const char* kMultiplos = "Impossível fazer a conciliação de múltiplos cheques ao mesmo tempo.";
constexpr const char* kSemConciliacao = "Lançamento sem conciliação. Impossível continuar.";

// Changes sent at once: each alone costs the engine more to read than to do. It takes 127 in one block, and
// 64 KiB of text.
constexpr std::size_t kComandos = 100, kTexto = 40000;

// The earliest of some days: a closed period takes in all that lie before its end.
struct PrimeiroDia {
  Date dia;
  void Toma(Date outro) {
    if (!outro.Empty() && (dia.Empty() || outro < dia)) dia = outro;
  }
};

// A movement's number and document, as the database compares them.
using Par = std::pair<std::string, std::string>;
Par ParDe(std::string_view lancto, std::string_view docto) {
  return {std::string(Trim(lancto)), std::string(Trim(docto))};
}

[[noreturn]] void Mudou(const std::string& o_que) {
  throw UserError("Outro usuário alterou ou conciliou " + o_que +
                  " depois da consulta. Nada foi gravado, e as marcações continuam na tela.");
}

}  // namespace

// --- Reconciliation.

void TFmConcilia::BitBtn4Click() {
  CalculaTotais();
  if (tot_mov_ != tot_ext_) return Inform(kDiferentes);
  std::vector<Movimento> movimentos = Marcados();
  ProcuraCheques(movimentos);
  const bool cheque =
      std::any_of(movimentos.begin(), movimentos.end(), [](const Movimento& m) { return m.cheque; });
  const bool varios = movimentos.size() > 1;
  std::vector<Conjunto> conjuntos = Conjuntos(std::move(movimentos));
  const bool nada = conjuntos.front().movimentos.empty() && conjuntos.front().linhas.empty();
  if (!nada && EdtConta.Text() != conta_) {
    Recusa("A conta foi trocada depois da consulta. Consulte novamente.", EdtConta);
    return;
  }
  if (varios && cheque) return Inform(kMultiplos);
  if (Fechado(conjuntos)) return;
  const std::vector<std::string> numeros =
      Funcoes.Proximos("CONTACOR", "LANC_CON", 6, true, conjuntos.size());
  for (std::size_t i = 0; i < conjuntos.size(); ++i) conjuntos[i].numero = numeros[i];

  // What is asked comes before the first write: nothing is held while the user thinks.
  std::unique_ptr<TContabil> partida;
  if (cheque) {
    const Conjunto& deste = *std::find_if(conjuntos.begin(), conjuntos.end(),
                                          [](const Conjunto& c) { return !c.movimentos.empty(); });
    const Movimento& movimento = deste.movimentos.front();
    if (!Ha("CONTACOR", ComoCarregado(movimento, deste.numero))) Mudou("o lançamento " + movimento.lancto);
    partida = PartidaDoCheque(movimento, deste.numero);
    if (!partida) return;
  }

  const BusyMark busy(Funcoes, *this);
  ConciliaMovimentos(conjuntos);
  if (partida) partida->GravaContabilidadeFinan();
  ConciliaLinhas(conjuntos);
  Tabela.CommitRetaining();
  CarregaMovimentos();
  CalculaTotais();
  // The balances above tell the new state too.
  EdtContaChange();
  if (!nada)
    Stored(conjuntos.size() == 1 ? "Conciliado sob o número " + conjuntos.front().numero + "."
                                 : "Conciliados " + std::to_string(conjuntos.size()) + " grupos, números " +
                                       numeros.front() + " a " + numeros.back() + ".");
}

std::vector<TFmConcilia::Movimento> TFmConcilia::Marcados() {
  std::vector<Movimento> movimentos;
  marcas_mov_.ForEach([&](int64_t i) {
    const auto texto = [&](const Field& campo) { return TbMov.Cell(i, campo).AsString(); };
    movimentos.push_back({texto(TbMov.Lancto), texto(TbMov.Docto), texto(TbMov.Operacao) == "C" ? "+" : "-",
                          texto(TbMov.Historico), texto(TbMov.LancCon),
                          TbMov.Cell(i, TbMov.Valor).AsCurrency(), i});
  });
  return movimentos;
}

std::vector<TFmConcilia::Conjunto> TFmConcilia::Conjuntos(std::vector<Movimento> movimentos) {
  // The group of each place; without one the place is the user's own.
  std::map<int64_t, int64_t> do_movimento, da_linha;
  const std::set<int64_t> inteiras = SugestoesInteiras();
  const int64_t sugeridas = TbSugestao.RecordCount();
  for (int64_t i = 0; i < sugeridas; ++i) {
    const auto celula = [&](const Field& campo) { return TbSugestao.Cell(i, campo).AsInteger(); };
    const int64_t grupo = celula(TbSugestao.Grupo);
    if (!inteiras.contains(grupo)) continue;
    do_movimento.emplace(celula(TbSugestao.LugarMov) - 1, grupo);
    da_linha.emplace(celula(TbSugestao.LugarArq) - 1, grupo);
  }
  const auto grupo_de = [](const std::map<int64_t, int64_t>& grupos, int64_t lugar) {
    const auto achado = grupos.find(lugar);
    return achado == grupos.end() ? 0 : achado->second;
  };
  // Rows of one number and document are settled together, so that they can't be tied apart.
  std::map<Par, std::set<int64_t>> grupos_do_par;
  for (const Movimento& m : movimentos)
    grupos_do_par[ParDe(m.lancto, m.docto)].insert(grupo_de(do_movimento, m.lugar));
  std::set<int64_t> juntos;
  for (const auto& [par, grupos] : grupos_do_par) {
    if (grupos.size() > 1) juntos.insert(grupos.begin(), grupos.end());
  }

  std::map<int64_t, Conjunto> por_grupo;
  const auto conjunto = [&](int64_t grupo) -> Conjunto& {
    return por_grupo[juntos.contains(grupo) ? 0 : grupo];
  };
  for (Movimento& m : movimentos)
    conjunto(grupo_de(do_movimento, m.lugar)).movimentos.push_back(std::move(m));
  marcas_arq_.ForEach([&](int64_t i) {
    Conjunto& deste = conjunto(grupo_de(da_linha, i));
    if (deste.linhas.empty()) deste.data = TbArq.Cell(i, TbArq.Data).AsDate();
    deste.linhas.push_back(i);
  });
  std::vector<Conjunto> conjuntos;
  for (auto& [grupo, deste] : por_grupo) conjuntos.push_back(std::move(deste));
  if (conjuntos.empty()) conjuntos.emplace_back();
  return conjuntos;
}

bool TFmConcilia::Fechado(const std::vector<Conjunto>& conjuntos) {
  std::map<Par, Date> dias;
  std::vector<std::string> chaves;
  for (const Conjunto& conjunto : conjuntos) {
    for (const Movimento& m : conjunto.movimentos) {
      dias.emplace(ParDe(m.lancto, m.docto), Dia(conjunto));
      chaves.push_back(Funcoes.Aspas(m.lancto));
    }
  }
  PrimeiroDia primeiro;
  EmListas(chaves, [&](const std::string& lista) {
    for (const auto& linha : Tabela.IBDatabase().Rows(
             "SELECT LANCAMENTO, DOCTO, DT_CONT, PENDENTE FROM " + Funcoes.DBLocal("CONTACOR", true) +
             " WHERE CONTA = " + Funcoes.Aspas(conta_) + " AND LANCAMENTO IN (" + lista + ")")) {
      const auto dia = dias.find(ParDe(linha[0].Text(), linha[1].Text()));
      if (dia == dias.end()) continue;
      const Date antes = linha[2].AsDate(), depois = dia->second.Empty() ? antes : dia->second;
      if (linha[3].Text() == "N" && antes == depois) continue;
      primeiro.Toma(antes);
      primeiro.Toma(depois);
    }
  });
  return bloqueio_.Movimento(conta_, {primeiro.dia});
}

void TFmConcilia::ProcuraCheques(std::vector<Movimento>& movimentos) {
  std::vector<std::string> chaves;
  for (const Movimento& movimento : movimentos) chaves.push_back(Funcoes.Aspas(movimento.lancto));
  std::set<Par> cheques;
  EmListas(chaves, [&](const std::string& lista) {
    for (const auto& linha :
         Tabela.IBDatabase().Rows("SELECT CHAVE, NUMERO FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) +
                                  " WHERE CHAVE IN (" + lista + ")"))
      cheques.insert(ParDe(linha[0].Text(), linha[1].Text()));
  });
  for (Movimento& movimento : movimentos)
    movimento.cheque = cheques.contains(ParDe(movimento.lancto, movimento.docto));
}

std::unique_ptr<TContabil> TFmConcilia::PartidaDoCheque(const Movimento& cheque, const std::string& numero) {
  auto partida = Contabil.Create();
  // Dated by the line at which the user stands.
  partida->SetContabilidadeFinan(
      {.lancamento = numero,
       .docto = cheque.docto,
       .docto2 = cheque.docto,
       .conta_c = ContaContabil(Funcoes, Tabela, {{.historico = cheque.historico, .codcli = ""}}),
       .conta_d = ContaContabil(Funcoes, Tabela, {{.conta = EdtConta.Text(), .historico = cheque.historico}}),
       .operacao = "-",
       .origem = "CC",
       .historico = cheque.historico,
       .valor = cheque.valor,
       .data = TbArq.Data.AsDate(),
       .codigo = "000-00",
       .observacao = "COMPENSACAO DO CHEQUE NR: " + cheque.docto});
  return partida->ConfirmaDadosContabilidade(0) ? std::move(partida) : nullptr;
}

std::string TFmConcilia::ComoCarregado(const Movimento& movimento, const std::string& numero) const {
  return ComoLido(Funcoes)
      .Chave("LANCAMENTO", movimento.lancto)
      .Chave("DOCTO", movimento.docto)
      .Chave("CONTA", conta_)
      .Chave("OPERACAO", movimento.operacao)
      .Valor("VALOR", movimento.valor)
      .Ou(ComoLido(Funcoes).Chave("PENDENTE", "S").Texto("LANC_CON", movimento.lanc_con),
          ComoLido(Funcoes).Chave("LANC_CON", numero))
      .Condicao();
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

void TFmConcilia::ConciliaMovimentos(const std::vector<Conjunto>& conjuntos) {
  const std::string tabela = Funcoes.DBLocal("CONTACOR", true);
  const auto altera = [&](const Conjunto& conjunto) {
    const Date dia = Dia(conjunto);
    return "UPDATE " + tabela + " SET PENDENTE = 'N', LANC_CON = " + Funcoes.Aspas(conjunto.numero) +
           (dia.Empty() ? "" : ", DT_CONT = " + Funcoes.AspasData(dia)) + " WHERE ";
  };
  // One statement both looks and changes the row, so that of two users only the first one does.
  std::vector<std::string> comandos;
  for (const Conjunto& conjunto : conjuntos) {
    for (const Movimento& m : conjunto.movimentos)
      comandos.push_back(altera(conjunto) + ComoCarregado(m, conjunto.numero));
  }
  if (Executa(comandos) != static_cast<int64_t>(comandos.size())) {
    for (const Conjunto& conjunto : conjuntos) {
      for (const Movimento& m : conjunto.movimentos) {
        if (!Ha("CONTACOR", ComoCarregado(m, conjunto.numero))) Mudou("o lançamento " + m.lancto);
      }
    }
  }
  comandos.clear();
  for (const Conjunto& conjunto : conjuntos) {
    for (const Movimento& m : conjunto.movimentos) {
      const std::string lancto = Funcoes.Aspas(m.lancto), docto = Funcoes.Aspas(m.docto);
      const std::string deste =
          "LANCAMENTO = " + lancto + " AND DOCTO = " + docto + " AND CONTA = " + Funcoes.Aspas(conta_);
      comandos.push_back(altera(conjunto) + deste);
      if (!m.cheque) continue;
      // Without a line the cheque was settled on its own day.
      comandos.push_back("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'B', DT_BAIXA = " +
                         (conjunto.data.Empty()
                              ? "(SELECT MIN(DT_CONT) FROM " + tabela + " WHERE " + deste + ")"
                              : Funcoes.AspasData(conjunto.data)) +
                         " WHERE CHAVE = " + lancto + " AND NUMERO = " + docto + " AND STATUS = 'P'");
    }
  }
  Executa(comandos);
  for (const Conjunto& conjunto : conjuntos) {
    for (const Movimento& m : conjunto.movimentos)
      Funcoes.GeraLog("CONCILIACAO", "CONCILIACAO DO LANCAMENTO " + m.lancto, TOperacaoLog::Processo,
                      m.lancto);
  }
}

void TFmConcilia::ConciliaLinhas(const std::vector<Conjunto>& conjuntos) {
  std::vector<std::string> comandos, como_lidas;
  std::vector<int64_t> lugares;
  for (const Conjunto& conjunto : conjuntos) {
    for (const int64_t i : conjunto.linhas) {
      como_lidas.push_back(ComoLido(Funcoes)
                               .Chave("LANCTO", TbArq.Cell(i, TbArq.Lancto).Text())
                               .Chave("CONTA", conta_)
                               .Chave("OPERACAO", TbArq.Cell(i, TbArq.Operacao).Text())
                               .Valor("VALOR", TbArq.Cell(i, TbArq.Valor).AsCurrency())
                               .Ou(ComoLido(Funcoes)
                                       .Chave("COALESCE(CONCILIADO, 'N')", "N")
                                       .Texto("LANC_CON", TbArq.Cell(i, TbArq.LancCon).Text()),
                                   ComoLido(Funcoes).Chave("LANC_CON", conjunto.numero))
                               .Condicao());
      comandos.push_back("UPDATE " + Funcoes.DBLocal("EXTRATO", true) + " SET CONCILIADO = 'S', LANC_CON = " +
                         Funcoes.Aspas(conjunto.numero) + " WHERE " + como_lidas.back());
      lugares.push_back(i);
    }
  }
  if (Executa(comandos) == static_cast<int64_t>(comandos.size())) {
    for (const Conjunto& conjunto : conjuntos) {
      for (const int64_t i : conjunto.linhas)
        AnotaLinha(Funcoes, TbArq.Cell(i, TbArq.Lancto).AsString(), "CONCILIACAO " + conjunto.numero);
    }
    return;
  }
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
  MostraVolta(numero);
  if (VoltaFechado(numero)) return;
  if (!Ask("Tem certeza que deseja voltar conciliação?", true)) return;

  const std::string lancto = TbMov.Lancto.AsString();
  const std::string desta = " WHERE LANC_CON = " + Funcoes.Aspas(numero);
  TOrvDatabase& db = Tabela.IBDatabase();
  const auto outros = db.Rows("SELECT DISTINCT LANCAMENTO FROM " + Funcoes.DBLocal("CONTACOR", true) + desta +
                              " AND LANCAMENTO <> " + Funcoes.Aspas(lancto));
  const auto linhas = db.Rows("SELECT LANCTO FROM " + Funcoes.DBLocal("EXTRATO", true) + desta);
  if (db.Execute("UPDATE " + Funcoes.DBLocal("CONTACOR", true) + " SET PENDENTE = 'S', LANC_CON = ''" +
                 desta) == 0) {
    EdtConcilia.Clear();
    throw UserError("Outro usuário já voltou a conciliação " + numero + ". Nada foi gravado.");
  }
  db.Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) +
             " SET STATUS = 'P' WHERE CHAVE = " + Funcoes.Aspas(lancto) + " AND STATUS = 'B'");
  db.Execute("UPDATE " + Funcoes.DBLocal("EXTRATO", true) + " SET CONCILIADO = 'N', LANC_CON = ''" + desta);
  ApagaPartidasDaCompensacao(Funcoes, Contabil, Tabela, numero);
  Funcoes.GeraLog("CONCILIACAO", "VOLTA CONCILIACAO DO LANCAMENTO " + lancto, TOperacaoLog::Processo, lancto);
  // What else was in it is told under its own number.
  for (const auto& outro : outros)
    AnotaMovimento(Funcoes, outro[0].AsString(), "VOLTA DA CONCILIACAO " + numero);
  for (const auto& linha : linhas) AnotaLinha(Funcoes, linha[0].AsString(), "VOLTA DA CONCILIACAO " + numero);
  EdtConcilia.Clear();
  Tabela.CommitRetaining();
  BitBtn1Click();
  EdtContaChange();
  Stored("A conciliação " + numero + " foi desfeita.");
}

void TFmConcilia::MostraVolta(const std::string& numero) {
  const auto soma = [&](const char* tabela, const char* debito, const char* um, const char* varios) {
    const auto linha =
        Tabela.IBDatabase().Rows("SELECT COUNT(*), SUM(CASE WHEN OPERACAO = " + Funcoes.Aspas(debito) +
                                 " THEN -VALOR ELSE VALOR END) FROM " + Funcoes.DBLocal(tabela, true) +
                                 " WHERE LANC_CON = " + Funcoes.Aspas(numero));
    const int64_t n = linha.front()[0].AsInteger();
    return std::to_string(n) + " " + (n == 1 ? um : varios) + ", total " +
           linha.front()[1].AsCurrency().Brazil();
  };
  LbVolta.Mostra("A conciliação " + numero +
                 " volta inteira: " + soma("CONTACOR", "-", "lançamento", "lançamentos") + "; " +
                 soma("EXTRATO", "D", "linha do extrato", "linhas do extrato") + ".");
}

bool TFmConcilia::VoltaFechado(const std::string& numero) {
  for (const auto& linha :
       Tabela.IBDatabase().Rows("SELECT CONTA, MIN(DT_CONT) FROM " + Funcoes.DBLocal("CONTACOR", true) +
                                " WHERE LANC_CON = " + Funcoes.Aspas(numero) +
                                " AND COALESCE(PENDENTE, '') <> 'S' GROUP BY CONTA")) {
    if (bloqueio_.Movimento(linha[0].AsString(), {linha[1].AsDate()})) return true;
  }
  return false;
}

}  // namespace orv
