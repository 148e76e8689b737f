// One posting's accounting lines, gathered until the user confirms them.
#pragma once

#include <string>
#include <vector>

#include "host/services/contabil_service.h"

namespace orv {

class Posting : public TContabil {
 public:
  explicit Posting(ContabilService& contabil) : contabil_(contabil) {}

  void SetContabilidadeFinan(std::string_view lancamento, std::string_view docto, std::string_view docto2,
                             std::string_view conta_c, std::string_view conta_d, std::string_view operacao,
                             std::string_view origem, std::string_view classe, std::string_view historico,
                             Currency valor, Date data, std::string_view codigo,
                             std::string_view observacao) override;
  void GravaRaterioCentroCusto(std::string_view conta, std::string_view classe, std::string_view tipo,
                               std::string_view tipo_val, Currency valor) override;
  // The user sees the lines with the descriptions of their accounts. A posting without lines needs no yes.
  bool ConfirmaDadosContabilidade(int option) override;
  // Raises UserError unless the user confirmed the lines as they stand; writes them once.
  void GravaContabilidadeFinan() override;

 private:
  struct Line {
    std::string lancamento, docto, docto2, conta_c, conta_d, operacao, origem, classe, historico;
    Currency valor;
    Date data;
    std::string codigo, observacao;
    std::vector<Share> shares;
  };
  std::vector<PostingLine> Shown();

  ContabilService& contabil_;
  std::vector<Line> lines_;
  bool confirmed_ = false;
};

}  // namespace orv
