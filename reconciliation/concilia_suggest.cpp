// The page "Conciliação de Extrato": ticks that the desk proposes, with the reason for each.
#include <algorithm>
#include <array>

#include "reconciliation/concilia.h"
#include "reconciliation/suggest.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kMaxPrazo = 90;

// The open rows of a set as the function wants them, and where they stand.
struct Abertos {
  std::vector<int64_t> lugares;
  // The items view these texts.
  std::vector<Value> doctos;
  std::vector<SuggestItem> itens;
};

Abertos LeAbertos(MemoryDataSet& set, const Field& marca, std::string_view aberta, const Field& lanc_con,
                  const Field& operacao, const Field& valor, const Field& docto, const Field& data) {
  Abertos abertos;
  const int64_t linhas = set.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    if (set.Cell(i, marca).Text() != aberta || !Trim(set.Cell(i, lanc_con).Text()).empty()) continue;
    abertos.lugares.push_back(i);
    abertos.doctos.push_back(set.Cell(i, docto));
    abertos.itens.push_back({set.Cell(i, operacao).Text() == "C" ? 'C' : 'D',
                             set.Cell(i, valor).AsCurrency(),
                             {},
                             set.Cell(i, data).AsDate()});
  }
  for (std::size_t i = 0; i < abertos.itens.size(); ++i) abertos.itens[i].document = abertos.doctos[i].Text();
  return abertos;
}

std::string Dias(int dias) {
  return dias == 0 ? "mesmo dia" : dias == 1 ? "1 dia" : std::to_string(dias) + " dias";
}

std::string Motivo(const Suggestion& sugestao) {
  switch (sugestao.reason) {
    case SuggestReason::Document:
      return "Mesmo valor e documento";
    case SuggestReason::Day:
      return "Mesmo valor, " + Dias(sugestao.days);
    case SuggestReason::Sum:
      return (sugestao.lines.size() > 1
                  ? "Soma de " + std::to_string(sugestao.lines.size()) + " linhas, "
                  : "Soma de " + std::to_string(sugestao.movements.size()) + " lançamentos, ") +
             Dias(sugestao.days);
  }
  return "";
}

// Ticks a row without what follows a click.
void Marca(MemoryDataSet& set, Field& marca, int64_t lugar, const char* valor) {
  set.SetRecNo(lugar + 1);
  set.Edit();
  marca = valor;
  set.Post();
}

// Ticks are set without what follows a click.
class Marcacao {
 public:
  Marcacao(TClientDataSet& mov, TClientDataSet& arq) : mov_(mov), arq_(arq) {}
  // Once all is marked: back to where the user was.
  void Volta() {
    mov_.SetRecNo(no_mov_);
    arq_.SetRecNo(no_arq_);
  }

 private:
  TClientDataSet &mov_, &arq_;
  const ScopedValue<int> modo_mov_{mov_.Tag, 2}, modo_arq_{arq_.Tag, 2};
  const ControlsHold hold_{{&mov_, &arq_}};
  const int64_t no_mov_ = mov_.RecNo(), no_arq_ = arq_.RecNo();
};

std::string Plural(std::size_t n, const char* um, const char* varios) {
  return std::to_string(n) + " " + (n == 1 ? um : varios);
}

}  // namespace

void TFmConcilia::BtSugerirClick() {
  const std::string texto(Trim(EdtPrazo.Text()));
  const bool numero =
      !texto.empty() && std::all_of(texto.begin(), texto.end(), [](char c) { return c >= '0' && c <= '9'; });
  const int64_t prazo = numero ? ParseInteger(texto) : -1;
  if (prazo < 0 || prazo > kMaxPrazo) {
    Recusa("Prazo inválido: informe de 0 a 90 dias.", EdtPrazo);
    return;
  }

  const BusyMark busy(Funcoes, *this);
  TbMov.PostIfEditing();
  TbArq.PostIfEditing();
  DesmarcaSugestoes();
  EsqueceSugestoes();
  const Abertos movimentos = LeAbertos(TbMov, TbMov.Conciliar, "S", TbMov.LancCon, TbMov.Operacao,
                                       TbMov.Valor, TbMov.Docto, TbMov.Data);
  const Abertos linhas = LeAbertos(TbArq, TbArq.Concilia, "N", TbArq.LancCon, TbArq.Operacao, TbArq.Valor,
                                   TbArq.Docto, TbArq.Data);
  std::vector<Suggestion> sugestoes = Suggest(movimentos.itens, linhas.itens, static_cast<int>(prazo));
  // What no movement was found for may have a rule.
  std::set<int64_t> sozinhas(linhas.lugares.begin(), linhas.lugares.end());
  for (const Suggestion& sugestao : sugestoes) {
    for (const uint32_t l : sugestao.lines) sozinhas.erase(linhas.lugares[l]);
  }
  const std::vector<LinhaComRegra> regras = LinhasComRegra(sozinhas);
  const std::size_t cheques = RetiraCheques(sugestoes, movimentos.lugares);
  const bool nada = sugestoes.empty() && regras.empty();
  if (!nada) MostraSugestoes(sugestoes, movimentos.lugares, linhas.lugares, cheques, regras);
  CalculaTotais();
  if (nada) Inform("Nenhuma correspondência encontrada no prazo de " + texto + " dias.");
}

std::set<int64_t> TFmConcilia::SugestoesInteiras() {
  std::set<int64_t> todas, mudadas;
  const int64_t linhas = TbSugestao.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    const auto celula = [&](const Field& campo) { return TbSugestao.Cell(i, campo).AsInteger(); };
    if (celula(TbSugestao.LugarMov) == 0) continue;
    const int64_t grupo = celula(TbSugestao.Grupo);
    todas.insert(grupo);
    if (TbMov.Cell(celula(TbSugestao.LugarMov) - 1, TbMov.Conciliar).Text() != "N" ||
        TbArq.Cell(celula(TbSugestao.LugarArq) - 1, TbArq.Concilia).Text() != "S") {
      mudadas.insert(grupo);
    }
  }
  for (const int64_t grupo : mudadas) todas.erase(grupo);
  return todas;
}

void TFmConcilia::DesmarcaSugestoes() {
  const std::set<int64_t> inteiras = SugestoesInteiras();
  Marcacao marcacao(TbMov, TbArq);
  const int64_t linhas = TbSugestao.RecordCount();
  for (int64_t i = 0; i < linhas; ++i) {
    const auto celula = [&](const Field& campo) { return TbSugestao.Cell(i, campo).AsInteger(); };
    if (!inteiras.contains(celula(TbSugestao.Grupo))) continue;
    Marca(TbMov, TbMov.Conciliar, celula(TbSugestao.LugarMov) - 1, "S");
    Marca(TbArq, TbArq.Concilia, celula(TbSugestao.LugarArq) - 1, "N");
  }
  marcacao.Volta();
}

std::size_t TFmConcilia::RetiraCheques(std::vector<Suggestion>& sugestoes,
                                       const std::vector<int64_t>& lugares) {
  std::vector<Movimento> movimentos;
  for (const Suggestion& sugestao : sugestoes) {
    for (const uint32_t m : sugestao.movements) {
      Movimento movimento;
      movimento.lancto = TbMov.Cell(lugares[m], TbMov.Lancto).AsString();
      movimento.docto = TbMov.Cell(lugares[m], TbMov.Docto).AsString();
      movimentos.push_back(std::move(movimento));
    }
  }
  ProcuraCheques(movimentos);
  // Ticks that stand already make a cheque one of several.
  const bool sozinho = Marcados().empty();
  std::vector<Suggestion> sem, com;
  std::size_t at = 0;
  for (Suggestion& sugestao : sugestoes) {
    bool cheque = false;
    for (std::size_t i = 0; i < sugestao.movements.size(); ++i) cheque |= movimentos[at++].cheque;
    (cheque ? com : sem).push_back(std::move(sugestao));
  }
  const auto um =
      std::find_if(com.begin(), com.end(), [](const Suggestion& s) { return s.movements.size() == 1; });
  std::size_t fora = com.size();
  if (sem.empty() && sozinho && um != com.end()) sem.push_back(std::move(*um)), --fora;
  sugestoes = std::move(sem);
  return fora;
}

void TFmConcilia::MostraSugestoes(const std::vector<Suggestion>& sugestoes,
                                  const std::vector<int64_t>& lugares_mov,
                                  const std::vector<int64_t>& lugares_arq, std::size_t cheques,
                                  const std::vector<LinhaComRegra>& regras) {
  const ControlsHold hold(TbSugestao);
  Marcacao marcacao(TbMov, TbArq);

  std::array<std::size_t, 3> por_motivo{};
  RowWriter linha(TbSugestao);
  int64_t grupo = 0;
  const auto da_linha = [&](int64_t lugar) {
    linha[TbSugestao.Linha] = TbArq.Cell(lugar, TbArq.Lancto);
    linha[TbSugestao.DoctoArq] = TbArq.Cell(lugar, TbArq.Docto);
    linha[TbSugestao.DataArq] = TbArq.Cell(lugar, TbArq.Data);
    linha[TbSugestao.ValorArq] = TbArq.Cell(lugar, TbArq.Valor);
    linha[TbSugestao.LugarArq] = lugar + 1;
  };
  for (const Suggestion& sugestao : sugestoes) {
    ++grupo;
    ++por_motivo[static_cast<std::size_t>(sugestao.reason)];
    for (const uint32_t m : sugestao.movements) Marca(TbMov, TbMov.Conciliar, lugares_mov[m], "N");
    for (const uint32_t l : sugestao.lines) Marca(TbArq, TbArq.Concilia, lugares_arq[l], "S");
    for (const uint32_t m : sugestao.movements) {
      for (const uint32_t l : sugestao.lines) {
        const auto do_movimento = [&](const Field& campo) { return TbMov.Cell(lugares_mov[m], campo); };
        linha[TbSugestao.Grupo] = grupo;
        linha[TbSugestao.Lancto] = do_movimento(TbMov.Lancto);
        linha[TbSugestao.DoctoMov] = do_movimento(TbMov.Docto);
        linha[TbSugestao.DataMov] = do_movimento(TbMov.Data);
        linha[TbSugestao.ValorMov] = do_movimento(TbMov.Valor);
        da_linha(lugares_arq[l]);
        linha[TbSugestao.Motivo] = Motivo(sugestao);
        linha[TbSugestao.LugarMov] = lugares_mov[m] + 1;
        linha.Append();
      }
    }
  }
  for (const LinhaComRegra& uma : regras) {
    linha[TbSugestao.Grupo] = ++grupo;
    linha[TbSugestao.Motivo] = "Regra: " + uma.regra;
    linha[TbSugestao.LugarMov] = 0;
    da_linha(uma.lugar);
    linha.Append();
  }
  marcacao.Volta();

  std::vector<std::string> partes;
  const auto parte = [&](SuggestReason motivo, const char* texto) {
    if (const std::size_t n = por_motivo[static_cast<std::size_t>(motivo)]; n > 0)
      partes.push_back(std::to_string(n) + " " + texto);
  };
  parte(SuggestReason::Document, "por valor e documento");
  parte(SuggestReason::Day, "por valor e data");
  parte(SuggestReason::Sum, "por soma");
  std::string texto;
  if (!sugestoes.empty()) {
    texto = Plural(sugestoes.size(), "sugestão marcada", "sugestões marcadas") + ": " + Join(partes, ", ") +
            ". Confira antes de conciliar.";
  }
  if (cheques > 0) {
    texto += " " + Plural(cheques, "cheque ficou de fora", "cheques ficaram de fora") +
             ": cada um é conciliado sozinho.";
  }
  if (!regras.empty()) {
    texto += (texto.empty() ? "" : " ") +
             Plural(regras.size(), "linha sem lançamento tem", "linhas sem lançamento têm") +
             " regra: Lançar Linha preenche o lançamento.";
  }
  GbSugestao.SetCaption(texto);
  GbSugestao.SetVisible(true);
}

void TFmConcilia::EsqueceSugestoes() {
  TbSugestao.EmptyDataSet();
  GbSugestao.SetVisible(false);
}

void TFmConcilia::TbSugestaoAfterScroll() {
  // The rows that stand against one another come into sight.
  if (TbSugestao.IsEmpty()) return;
  if (TbSugestao.LugarMov.AsInteger() > 0) TbMov.SetRecNo(TbSugestao.LugarMov.AsInteger());
  TbArq.SetRecNo(TbSugestao.LugarArq.AsInteger());
}

}  // namespace orv
