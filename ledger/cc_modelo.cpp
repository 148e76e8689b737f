#include "ledger/cc_modelo.h"

#include <algorithm>

#include "frame/entry/unit.h"
#include "toolkit/text.h"

namespace orv {

thread_local TFmCCModelo* FmCCModelo = nullptr;

namespace {

const Unit kUnit("Ccmodelo", {"TFmCCModelo", "Modelo de Lançamento", ScreenKind::Dialog, "",
                              [](Application& a) { return std::make_unique<TFmCCModelo>(a); }});

constexpr int kMaxMeses = 60;

// -1 for what isn't a number of months.
int Meses(const Edit& campo) {
  const std::string_view texto = Trim(campo.Text());
  if (texto.empty()) return 0;
  if (!std::all_of(texto.begin(), texto.end(), [](char c) { return c >= '0' && c <= '9'; })) return -1;
  const int meses = std::stoi(std::string(texto));
  return meses <= kMaxMeses ? meses : -1;
}

}  // namespace

TFmCCModelo::TFmCCModelo(Application& application)
    : Dialog(application, "TFmCCModelo", "FmCCModelo", "Modelo de Lançamento") {
  FmCCModelo = this;
  Layout(R"(
    LbModelo /
    @form { EdtNome:7 EdtMeses:3 EdtProximo:2 } /
    @actions { @primary BitBtn1 @danger BtExclui @apart BitBtn2 }
  )");
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BtExclui.OnClick = [this] { BtExcluiClick(); };
  BitBtn2.OnClick = [this] { Close(); };
  EdtMeses.OnExit = [this] { EdtMesesExit(); };
  Mostra();
}

void TFmCCModelo::Mostra() {
  std::vector<std::string> partes;
  const auto parte = [&](const char* nome, const std::string& texto) {
    if (!texto.empty()) partes.push_back(nome + texto);
  };
  parte("conta ", Modelo.conta);
  parte("documento ", Modelo.docto);
  parte("classe ", Modelo.classe);
  parte("histórico ", Modelo.historico);
  parte("valor ", Modelo.valor.IsZero() ? "" : Modelo.valor.Brazil());
  LbModelo.SetCaption(partes.empty() ? "Sem campos preenchidos." : "Guarda: " + Join(partes, ", ") + ".");
  EdtNome.SetText(Modelo.nome);
  EdtMeses.SetText(Modelo.meses > 0 ? std::to_string(Modelo.meses) : "");
  EdtProximo.SetDate(Modelo.proximo);
  BtExclui.SetEnabled(!Modelo.nome.empty());
}

void TFmCCModelo::EdtMesesExit() {
  // Of what is just being posted the next one is a period away.
  const int meses = Meses(EdtMeses);
  if (meses > 0 && EdtProximo.Empty()) EdtProximo.SetDate(Today().AddMonths(meses));
}

void TFmCCModelo::BitBtn1Click() {
  const std::string nome(Trim(EdtNome.Text()));
  if (nome.empty()) {
    Recusa("Dê um nome ao modelo.", EdtNome);
    return;
  }
  const int meses = Meses(EdtMeses);
  if (meses < 0) {
    Recusa("Repetição inválida: informe de 1 a 60 meses, ou deixe em branco.", EdtMeses);
    return;
  }
  if (meses > 0 && EdtProximo.Date().Empty()) {
    Recusa("Informe a próxima vez em que o modelo vence.", EdtProximo);
    return;
  }
  ModelosLanc modelos(Funcoes, Tabela);
  if (nome != Modelo.nome && modelos.Le(nome)) {
    Recusa("Já existe um modelo com este nome. Para alterá-lo, escolha-o em Modelos.", EdtNome);
    return;
  }
  Modelo.nome = nome;
  Modelo.meses = meses;
  // The 31st stays the 31st behind a month that has none.
  if (EdtProximo.Date() != Modelo.proximo || Modelo.dia == 0)
    Modelo.dia = meses > 0 ? EdtProximo.Date().Day() : 0;
  Modelo.proximo = meses > 0 ? EdtProximo.Date() : Date();
  modelos.Grava(Modelo);
  Tabela.CommitRetaining();
  Close();
  Stored("Modelo " + nome + " gravado.");
}

void TFmCCModelo::BtExcluiClick() {
  if (!Ask("Deseja eliminar o modelo " + Modelo.nome + "?", true)) return;
  ModelosLanc(Funcoes, Tabela).Exclui(Modelo.nome);
  Tabela.CommitRetaining();
  const std::string nome = Modelo.nome;
  Close();
  Stored("Modelo " + nome + " eliminado.");
}

}  // namespace orv
