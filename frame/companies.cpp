#include "frame/companies.h"

#include <string>

#include "toolkit/error.h"
#include "toolkit/table.h"

namespace orv {
namespace {

constexpr const char* kContas = "TbCadConta";

// The locks of an account are asked for where the table stands.
void Muda(ITabela& tabela, std::string_view sufixo) {
  if (!tabela.tbEmpresa().Locate("EMP_PAT", Value(sufixo)))
    throw UserError("A empresa \"" + std::string(sufixo) + "\" não existe mais.");
  if (!tabela.Table(kContas).Active()) return;
  tabela.AbreTabela(kContas, true);
  tabela.FechaTabela(kContas);
}

}  // namespace

void NaEmpresa(ITabela& tabela, std::string_view sufixo, const std::function<void()>& trabalho) {
  const std::string aqui = tabela.tbEmpresa()["EMP_PAT"].AsString();
  if (aqui == sufixo) return trabalho();
  try {
    Muda(tabela, sufixo);
    trabalho();
  } catch (...) {
    Muda(tabela, aqui);
    throw;
  }
  Muda(tabela, aqui);
}

}  // namespace orv
