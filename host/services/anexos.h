// Files beside a movement, such as its receipt: kept in the company's table, under the movement's number.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/data/attachment.h"
#include "host/services/audit.h"
#include "host/services/parameters.h"
#include "toolkit/date.h"

namespace orv {

struct Anexo {
  int numero = 0;  // among those of its movement
  std::string nome, tipo;
  int64_t tamanho = 0;         // bytes
  std::string login, momento;  // "dd/mm/yyyy hh:mm:ss"
};

class Anexos {
 public:
  static constexpr std::size_t kMaiorAnexo = std::size_t{5} << 20;
  static constexpr std::size_t kPorMovimento = 4;
  // The parameter of what a company's attachments may take together, in MB, and what holds without it.
  static constexpr const char* kGrupo = "ANEXO";
  static constexpr int kTotalMB = 10, kSemParametro = 1000;

  // `suffix` is that of the table CONTACOR of the company in use, `company` the one of the session.
  Anexos(Attachment& db, Audit& audit, Parameters& parameters, Clock clock, std::string login,
         std::string company, std::function<std::string()> suffix);

  std::vector<Anexo> Lista(std::string_view lancamento);
  int64_t Quantos(std::string_view lancamento);
  // The content; nothing when it is gone.
  std::optional<std::string> Conteudo(std::string_view lancamento, int numero);

  // --- In the running transaction, each with its audit line.
  // `nome` as the user's file is called. Raises UserError for a content that may not be attached, beyond the
  // bounds, or when there is no such movement.
  void Inclui(std::string_view lancamento, std::string_view nome, const std::string& conteudo);
  // Raises UserError when it is gone.
  void Exclui(std::string_view lancamento, int numero);
  // All of a number of which no movement is left.
  void ExcluiSemMovimento(std::string_view lancamento);

 private:
  std::string Tabela() const;
  bool HaMovimento(std::string_view lancamento);
  // From here to the commit nobody else attaches anything, so that bounds hold, nor takes a movement away
  // from under an attachment.
  void Trava();

  Attachment& db_;
  Audit& audit_;
  Parameters& parameters_;
  Clock clock_;
  std::string login_, company_;
  std::function<std::string()> suffix_;
};

}  // namespace orv
