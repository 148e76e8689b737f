// The page "Conciliação de Cartões": what is ticked is written, in each row's own company. All that is read,
// refused and asked comes before the first write.
#include <algorithm>
#include <map>
#include <unordered_map>

#include "frame/companies.h"
#include "frame/lists.h"
#include "reconciliation/concilia.h"
#include "reconciliation/inteiro.h"
#include "rules/como_lido.h"
#include "rules/compensacao.h"
#include "rules/conta_contabil.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kArea = "CONCILIACAO";

constexpr const char* kPago = "01";

std::string Vezes(std::size_t n, const char* um, const char* varios) {
  return std::to_string(n) + " " + (n == 1 ? um : varios);
}

// Somebody else was there since the consultation: the user is told, whatever else is passed over.
class Alterado : public UserError {
 public:
  Alterado() : UserError("Outro usuário alterou lançamentos depois da consulta. Consulte novamente.") {}
};

}  // namespace

// What the page tells after a run.
struct TFmConcilia::Ressalvas {
  std::size_t conciliadas = 0, desfeitas = 0;
  std::size_t mudados = 0, sem_data = 0, no_extrato = 0, nao_pagos = 0;
  std::vector<std::string> falhas;
  // The rows of TbVendas that are as they stand in the database.
  std::vector<int64_t> gravadas;
};

// A movement as it stands in the database, and what the list wants of it.
struct TFmConcilia::Compensado {
  std::string docto, conta, historico, pendente, lanc_con;
  Date dt_cont;
  // The rows of its number and document, and their accounts with the earliest day.
  int64_t linhas = 0;
  std::map<std::string, Date> dias;
  bool no_extrato = false;

  bool Pendente() const { return pendente == "S"; }
  // What the last of its rows in TbVendas wants: cleared on a day, or pending.
  std::vector<int64_t> vendas;
  bool marcada = false;
  Date dia;
  // It isn't so already.
  bool Muda() const {
    if (vendas.empty()) return false;
    return marcada ? pendente != "N" || dt_cont != dia || lanc_con.empty() : !Pendente() || !lanc_con.empty();
  }
};

// What is written in a company.
struct TFmConcilia::GravacaoCartao {
  std::string empresa;
  struct Passo {
    // Rows of TbVendas.
    std::vector<int64_t> vendas;
    std::string codven;
    // Empty where nothing is to be changed. It touches `linhas` rows.
    std::string comando;
    int64_t linhas = 0;
    // The accounting of a clearing, and the clearing whose accounting goes.
    std::optional<LinhaContabil> partida;
    std::string apaga;
  };
  std::vector<Passo> passos;
  std::unique_ptr<TContabil> partidas;
};

// --- Sales.

void TFmConcilia::PlanejaVendas(GravacaoCartao& gravacao, const std::vector<int64_t>& linhas) {
  // What another user has written meanwhile isn't written again.
  std::vector<std::string> chaves;
  std::unordered_map<int64_t, int64_t> agora;
  for (const int64_t linha : linhas) {
    if (TbVendas.Cell(linha, TbVendas.Sel) != TbVendas.Cell(linha, TbVendas.SelOrig))
      chaves.push_back(std::to_string(TbVendas.Cell(linha, TbVendas.Cditcondivenda).AsInteger()));
  }
  const std::string tabela = Funcoes.DBLocal("ITCONDIVENDA", true);
  EmListas(chaves, [&](const std::string& lote) {
    for (const auto& lida : Tabela.IBDatabase().Rows("SELECT CDITCONDIVENDA, BAIXADO FROM " + tabela +
                                                     " WHERE CDITCONDIVENDA IN (" + lote + ")"))
      agora.emplace(lida[0].AsInteger(), lida[1].AsInteger());
  });
  for (const int64_t linha : linhas) {
    const int64_t chave = TbVendas.Cell(linha, TbVendas.Cditcondivenda).AsInteger();
    const auto achada = agora.find(chave);
    if (achada == agora.end()) continue;
    const std::string sel = TbVendas.Cell(linha, TbVendas.Sel).AsString();
    GravacaoCartao::Passo passo{{linha}, TbVendas.Cell(linha, TbVendas.Codven).AsString(), "", 0, {}, ""};
    if (std::to_string(achada->second) != sel) {
      passo.comando = "UPDATE " + tabela + " SET BAIXADO = " + (sel == "1" ? "1" : "0") +
                      " WHERE CDITCONDIVENDA = " + std::to_string(chave);
      passo.linhas = 1;
    }
    gravacao.passos.push_back(std::move(passo));
  }
}

// --- Movements.

std::unordered_map<std::string, TFmConcilia::Compensado> TFmConcilia::BuscaInfoLancamento(
    const std::vector<int64_t>& linhas) {
  std::unordered_map<std::string, Compensado> achados;
  std::vector<std::string> numeros, compensacoes;
  for (const int64_t linha : linhas) {
    const std::string lancamento = TbVendas.Cell(linha, TbVendas.Lancamento).AsString();
    if (!Trim(lancamento).empty() && achados.try_emplace(lancamento).second)
      numeros.push_back(Funcoes.Aspas(lancamento));
  }
  EmListas(numeros, [&](const std::string& lote) {
    for (const auto& lida : Tabela.IBDatabase().Rows(
             "SELECT LANCAMENTO, DOCTO, CONTA, HISTORICO, PENDENTE, LANC_CON, DT_CONT FROM " +
             Funcoes.DBLocal("CONTACOR", true) + " WHERE LANCAMENTO IN (" + lote + ")")) {
      Compensado& este = achados[lida[0].AsString()];
      const Date dia = lida[6].AsDate();
      if (este.linhas == 0) {
        este.docto = lida[1].AsString();
        este.conta = lida[2].AsString();
        este.historico = Trim(lida[3].Text()).empty() ? "0" : lida[3].AsString();
        este.pendente = lida[4].AsString();
        este.lanc_con = Trim(lida[5].Text());
        este.dt_cont = dia;
        if (!este.lanc_con.empty()) compensacoes.push_back(Funcoes.Aspas(este.lanc_con));
      } else if (lida[1].AsString() != este.docto) {
        continue;
      }
      ++este.linhas;
      const auto [primeiro, novo] = este.dias.try_emplace(lida[2].AsString(), dia);
      if (!novo && dia < primeiro->second) primeiro->second = dia;
    }
  });
  std::set<std::string> no_extrato;
  EmListas(compensacoes, [&](const std::string& lote) {
    for (const auto& lida :
         Tabela.IBDatabase().Rows("SELECT DISTINCT LANC_CON FROM " + Funcoes.DBLocal("EXTRATO", true) +
                                  " WHERE LANC_CON IN (" + lote + ") AND CONCILIADO = 'S'"))
      no_extrato.emplace(Trim(lida[0].Text()));
  });
  for (auto& [lancamento, este] : achados) este.no_extrato = no_extrato.contains(este.lanc_con);
  return achados;
}

void TFmConcilia::PlanejaLancamentos(GravacaoCartao& gravacao, const std::vector<int64_t>& linhas,
                                     Ressalvas& ressalvas) {
  auto movimentos = BuscaInfoLancamento(linhas);
  std::vector<std::pair<const std::string, Compensado>*> mudancas;
  for (const int64_t linha : linhas) {
    const auto achado = movimentos.find(TbVendas.Cell(linha, TbVendas.Lancamento).AsString());
    if (achado == movimentos.end()) continue;
    Compensado& este = achado->second;
    const bool marcada = Marcada(linha), antes = TbVendas.Cell(linha, TbVendas.SelOrig).Text() == "1";
    const Date dia = TbVendas.Cell(linha, TbVendas.DataConc).AsDate();
    if (este.linhas == 0 || este.Pendente() == antes) {
      // What another user has done stays, and what he has done as it is wanted needs no word.
      if (marcada != antes && (este.linhas == 0 || este.Pendente() == marcada)) ++ressalvas.mudados;
      continue;
    }
    if (marcada && dia.Empty()) {
      // One that was cleared keeps its day.
      if (!antes) ++ressalvas.sem_data;
      continue;
    }
    if (!marcada && este.no_extrato) {
      if (antes) ++ressalvas.no_extrato;
      continue;
    }
    if (este.vendas.empty()) mudancas.push_back(&*achado);
    este.vendas.push_back(linha);
    este.marcada = marcada;
    este.dia = dia;
  }
  std::erase_if(mudancas, [](const auto* mudanca) { return !mudanca->second.Muda(); });

  // Of an account the earliest day that is left or reached: a period is closed up to its end.
  std::map<std::string, Date> dias;
  std::size_t novos = 0;
  for (const auto* mudanca : mudancas) {
    const Compensado& este = mudanca->second;
    novos += este.marcada && este.lanc_con.empty() ? 1 : 0;
    for (const auto& [conta, antes] : este.dias) {
      for (const Date dia : {antes, este.dia}) {
        Date& primeiro = dias[conta];
        if (!dia.Empty() && (primeiro.Empty() || dia < primeiro)) primeiro = dia;
      }
    }
  }
  for (const auto& [conta, dia] : dias) {
    if (bloqueio_.Movimento(conta, {dia})) Abort();
  }

  const std::vector<std::string> numeros = Funcoes.Proximos("CONTACOR", "LANCAMENTO", 6, true, novos);
  auto numero = numeros.begin();
  std::map<std::pair<std::string, std::string>, std::string> contas;
  const auto contabil = [&](const std::string& conta, const std::string& historico) {
    const auto [achada, nova] = contas.try_emplace({conta, historico});
    if (nova) achada->second = ContaContabil(Funcoes, Tabela, {{.conta = conta, .historico = historico}});
    return achada->second;
  };
  gravacao.partidas = Contabil.Create();
  for (const auto* mudanca : mudancas) {
    const auto& [lancamento, este] = *mudanca;
    const int64_t venda = este.vendas.front();
    GravacaoCartao::Passo passo{
        este.vendas, TbVendas.Cell(venda, TbVendas.Codven).AsString(), "", este.linhas, {}, ""};
    std::string compensacao = este.lanc_con;
    if (!este.marcada) {
      passo.apaga = este.lanc_con;
    } else if (compensacao.empty()) {
      compensacao = *numero++;
      passo.partida = LinhaContabil{.lancamento = compensacao,
                                    .docto = este.docto,
                                    .docto2 = este.docto,
                                    .conta_c = contabil(este.conta, este.historico),
                                    .conta_d = contabil(este.conta, "0"),
                                    .operacao = "+",
                                    .origem = "CC",
                                    .historico = este.historico,
                                    .valor = TbVendas.Cell(venda, TbVendas.ValorParcela).AsCurrency(),
                                    .data = Today(),
                                    .codigo = "000",
                                    .observacao = "COMPENSAÇÃO DOCTO NR: " + este.docto + "."};
      gravacao.partidas->SetContabilidadeFinan(*passo.partida);
    }
    // The user may think for long over the accounting: the row must still be as it was read.
    passo.comando = "UPDATE " + Funcoes.DBLocal("CONTACOR", true) +
                    (este.marcada ? " SET PENDENTE = 'N', DT_CONT = " + Funcoes.AspasData(este.dia) +
                                        ", LANC_CON = " + Funcoes.Aspas(compensacao)
                                  : " SET PENDENTE = 'S', LANC_CON = ''") +
                    " WHERE " +
                    ComoLido(Funcoes)
                        .Chave("LANCAMENTO", lancamento)
                        .Texto("DOCTO", este.docto)
                        .Texto("PENDENTE", este.pendente)
                        .Texto("LANC_CON", este.lanc_con)
                        .Condicao();
    gravacao.passos.push_back(std::move(passo));
  }
  // Refused, they are cleared without accounting.
  if (!gravacao.partidas->ConfirmaDadosContabilidade(0)) gravacao.partidas = nullptr;
}

// --- The write.

void TFmConcilia::EscreveCartoes(const GravacaoCartao& gravacao, Ressalvas& ressalvas) {
  TOrvDatabase& db = Tabela.IBDatabase();
  // A sale whose accounting fails is left as it was, and the others go on.
  std::set<std::string> falhas;
  if (gravacao.partidas) {
    db.Execute("SAVEPOINT PARTIDAS");
    try {
      gravacao.partidas->GravaContabilidadeFinan();
    } catch (const UserError&) {
      db.Execute("ROLLBACK TO SAVEPOINT PARTIDAS");
      std::map<std::string, std::vector<const LinhaContabil*>> vendas;
      for (const auto& passo : gravacao.passos) {
        if (passo.partida) vendas[passo.codven].push_back(&*passo.partida);
      }
      for (const auto& [codven, partidas] : vendas) {
        db.Execute("SAVEPOINT PARTIDAS");
        try {
          for (const LinhaContabil* partida : partidas) Contabil.LancaContabilidade(*partida);
        } catch (const UserError& e) {
          db.Execute("ROLLBACK TO SAVEPOINT PARTIDAS");
          falhas.insert(codven);
          ressalvas.falhas.push_back(codven + ": " + e.what());
          Funcoes.GeraLog(kArea, "FALHA NA CONCILIACAO CARTAO DA VENDA " + codven + ": " + e.what(),
                          TOperacaoLog::Processo, codven);
        }
      }
    }
  }
  std::vector<std::string> comandos;
  int64_t esperadas = 0;
  for (const auto& passo : gravacao.passos) {
    if (passo.comando.empty() || falhas.contains(passo.codven)) continue;
    ApagaPartidasDaCompensacao(Funcoes, Contabil, Tabela, passo.apaga);
    comandos.push_back(passo.comando);
    esperadas += passo.linhas;
  }
  if (Executa(comandos) != esperadas) throw Alterado();
  for (const auto& passo : gravacao.passos) {
    if (falhas.contains(passo.codven)) continue;
    for (const int64_t linha : passo.vendas) {
      ressalvas.gravadas.push_back(linha);
      if (passo.comando.empty() ||
          TbVendas.Cell(linha, TbVendas.Sel) == TbVendas.Cell(linha, TbVendas.SelOrig))
        continue;
      const bool marcada = Marcada(linha);
      ++(marcada ? ressalvas.conciliadas : ressalvas.desfeitas);
      const std::string codven = TbVendas.Cell(linha, TbVendas.Codven).AsString();
      Funcoes.GeraLog(kArea,
                      (marcada ? "CONCILIACAO" : "DESCONCILIACAO") + std::string(" CARTAO DO LANCAMENTO ") +
                          TbVendas.Cell(linha, TbVendas.Transacao).AsString() + " DA VENDA " + codven,
                      TOperacaoLog::Processo, codven);
    }
  }
}

void TFmConcilia::GravaCartoes(bool so_pagos) {
  const BusyMark busy(Funcoes, *this);
  const Inteiro vendas(TbVendas);
  Ressalvas ressalvas;
  std::map<std::string, std::vector<int64_t>> empresas;
  for (int64_t i = 0, n = TbVendas.DisplayCount(); i < n; ++i) {
    if (so_pagos && TbVendas.Cell(i, TbVendas.StatusPag).Text() != kPago) {
      ressalvas.nao_pagos += Marcada(i) && TbVendas.Cell(i, TbVendas.SelOrig).Text() != "1" ? 1U : 0U;
      continue;
    }
    empresas[TbVendas.Cell(i, TbVendas.Emp).AsString()].push_back(i);
  }
  std::vector<GravacaoCartao> gravacoes;
  for (const auto& [empresa, linhas] : empresas) {
    NaEmpresa(Tabela, empresa, [&, &linhas = linhas] {
      GravacaoCartao& gravacao = gravacoes.emplace_back();
      if (tipo_ == kTipoVenda)
        PlanejaVendas(gravacao, linhas);
      else
        PlanejaLancamentos(gravacao, linhas, ressalvas);
    });
    gravacoes.back().empresa = empresa;
  }
  Tabela.IBDatabase().Execute("SAVEPOINT CARTOES");
  try {
    for (const GravacaoCartao& gravacao : gravacoes)
      NaEmpresa(Tabela, gravacao.empresa, [&] { EscreveCartoes(gravacao, ressalvas); });
  } catch (const UserError&) {
    Tabela.IBDatabase().Execute("ROLLBACK TO SAVEPOINT CARTOES");
    throw;
  }
  Tabela.CommitRetaining();
  for (const int64_t linha : ressalvas.gravadas)
    Altera(TbVendas, linha, {{TbVendas.SelOrig, TbVendas.Cell(linha, TbVendas.Sel)}});
  MostraRessalvas(ressalvas);
}

void TFmConcilia::MostraRessalvas(const Ressalvas& r) {
  std::vector<std::string> partes;
  const auto parte = [&](std::size_t n, const char* um, const char* varios) {
    if (n > 0) partes.push_back(Vezes(n, um, varios));
  };
  parte(r.sem_data, "marcado à mão, sem data no arquivo, ficou de fora",
        "marcados à mão, sem data no arquivo, ficaram de fora");
  parte(r.nao_pagos, "marcado ficou de fora: o arquivo não diz que foi pago",
        "marcados ficaram de fora: o arquivo não diz que foram pagos");
  parte(r.no_extrato, "não foi desfeito: está conciliado com o extrato, volte antes aquela conciliação",
        "não foram desfeitos: estão conciliados com o extrato, volte antes aquela conciliação");
  parte(r.mudados, "foi alterado por outro usuário e ficou como está",
        "foram alterados por outro usuário e ficaram como estão");
  for (const std::string& falha : r.falhas) partes.push_back("Venda não gravada, " + falha);
  LbCartao.Mostra(partes.empty() ? "" : Join(partes, "; ") + ".");
  if (r.conciliadas + r.desfeitas > 0)
    Stored(Vezes(r.conciliadas, "conciliada", "conciliadas") + ", " +
           Vezes(r.desfeitas, "desfeita", "desfeitas") + ".");
}

// What fails is passed over by the action: the page and the audit tell of it.
void TFmConcilia::GravaSemFalha(bool so_pagos) {
  try {
    GravaCartoes(so_pagos);
  } catch (const Alterado&) {
    throw;
  } catch (const DatabaseError& e) {
    if (e.Why() == DatabaseError::Kind::Cancelled || e.Why() == DatabaseError::Kind::Connection) throw;
    ContaFalha(e.what());
  } catch (const UserError& e) {
    ContaFalha(e.what());
  }
}

void TFmConcilia::ContaFalha(const std::string& motivo) {
  LbCartao.Mostra("Nada foi gravado: " + motivo);
  Funcoes.GeraLog(kArea, "FALHA NA CONCILIACAO CARTAO: " + motivo, TOperacaoLog::Processo, "");
  Tabela.CommitRetaining();
}

void TFmConcilia::GravaCielo() { GravaSemFalha(tipo_ == kTipoContaCorrente); }
void TFmConcilia::GravaGetnet() { GravaSemFalha(false); }
void TFmConcilia::GravaStone() { GravaCartoes(false); }

}  // namespace orv
