// One posting's accounting lines, gathered until the user confirms them.
#pragma once

#include <string>
#include <vector>

#include "host/services/contabil_service.h"

namespace orv {

class Posting : public TContabil {
 public:
  explicit Posting(ContabilService& contabil) : contabil_(contabil) {}

  void SetContabilidadeFinan(LinhaContabil linha) override;
  void GravaRaterioCentroCusto(std::string_view conta, std::string_view classe, std::string_view tipo,
                               std::string_view tipo_val, Currency valor) override;
  // The user sees the lines with the descriptions of their accounts. A posting without lines needs no yes.
  bool ConfirmaDadosContabilidade(int option) override;
  // Raises UserError unless the user confirmed the lines as they stand; writes them once.
  void GravaContabilidadeFinan() override;

 private:
  struct Line : LinhaContabil {
    std::vector<Share> shares;
  };
  std::vector<PostingLine> Shown();

  ContabilService& contabil_;
  std::vector<Line> lines_;
  bool confirmed_ = false;
};

}  // namespace orv
