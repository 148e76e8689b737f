// Templates of postings. They are the company's: what recurs is to be posted once, whoever is at the desk.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/services.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// What a posting is made of, beside its number and its dates.
struct ModeloLanc {
  std::string nome;
  std::string conta, docto, classe, historico;
  std::string operacao, pendente;  // as the ledger has them: "+" or "-"; "S", "N" or "C"
  Currency valor;                  // zero where it is typed each time
  std::string observacao{};
  // Months between two postings, 0 where it doesn't recur; its day of the month; when it is proposed next.
  int meses = 0, dia = 0;
  Date proximo{};

  bool Vencido(Date hoje) const { return meses > 0 && !proximo.Empty() && proximo <= hoje; }
  // The day after `proximo` on which it is proposed.
  Date Seguinte() const;
};

class ModelosLanc {
 public:
  ModelosLanc(IFuncoes& funcoes, ITabela& tabela) : funcoes_(funcoes), tabela_(tabela) {}

  std::optional<ModeloLanc> Le(std::string_view nome) const;
  // Those to be posted now, the oldest first.
  std::vector<ModeloLanc> Vencidos(Date hoje) const;
  // Takes the place of one of the same name. The caller commits, here and below.
  void Grava(const ModeloLanc& modelo);
  void Exclui(std::string_view nome);
  // Still proposed for that day: nobody posted it or passed it over meanwhile.
  bool Aberto(const ModeloLanc& modelo) const;
  // Goes on to the next day; false where somebody else did.
  bool Avanca(const ModeloLanc& modelo);

 private:
  std::string Tabela() const { return funcoes_.DBLocal("MODELO_LANC", true); }
  std::string Chave(std::string_view nome) const { return "NOME = " + funcoes_.Aspas(nome); }
  std::string NesteDia(const ModeloLanc& modelo) const;
  std::vector<ModeloLanc> Linhas(const std::string& condicao) const;

  IFuncoes& funcoes_;
  ITabela& tabela_;
};

}  // namespace orv
