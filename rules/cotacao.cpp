#include "rules/cotacao.h"

#include "toolkit/text.h"

namespace orv {

Date VesperaDaCotacao(Date hoje) { return hoje.AddDays(hoje.WeekDay() == 1 ? -3 : -1); }

Cotacoes::Cotacoes(IFuncoes& funcoes, TOrvDatabase& db, const Pedidas& pedidas) {
  if (pedidas.empty()) return;
  // More days than these are fewer rows than their list is long.
  constexpr std::size_t kDias = 100;
  std::set<std::string> moedas, datas;
  for (const auto& [moeda, data] : pedidas) {
    moedas.insert(funcoes.Aspas(moeda));
    datas.insert(funcoes.Aspas(data.Brazil()));
  }
  try {
    const std::string sql =
        "SELECT MOEDA, DATA, COALESCE(VALOR,0) AS VALOR FROM " + funcoes.DBLocal("VALOR_MOEDA", true) +
        " WHERE MOEDA IN (" + Join({moedas.begin(), moedas.end()}, ",") + ")" +
        (datas.size() <= kDias ? " AND DATA IN (" + Join({datas.begin(), datas.end()}, ",") + ")" : "");
    for (const auto& linha : db.Rows(sql))
      taxas_[{linha[0].AsString(), linha[1].AsString()}] = linha[2].AsFloat();
  } catch (const DatabaseError& error) {
    // A rate that can't be read is as one that isn't there; a user who gave up is told so.
    if (error.Why() == DatabaseError::Kind::Cancelled) throw;
  }
}

double Cotacoes::Conhecida(const std::string& moeda, Date dia) const {
  const auto achada = taxas_.find({moeda, dia.Brazil()});
  return achada == taxas_.end() ? 0 : achada->second;
}

double Cotacoes::Taxa(const std::string& moeda, Date dia) {
  const double taxa = Conhecida(moeda, dia);
  if (taxa > 0) return taxa;
  if (!moeda.empty()) faltam_.insert(moeda + " em " + dia.Brazil());
  return 1;
}

std::string Cotacoes::Faltam() const {
  constexpr std::size_t kDitas = 4;
  if (faltam_.empty()) return "";
  std::vector<std::string> ditas;
  for (const std::string& falta : faltam_) {
    if (ditas.size() < kDitas) ditas.push_back(falta);
  }
  const std::size_t outras = faltam_.size() - ditas.size();
  return "Compras sem cotação, contadas a 1,00: moeda " + Join(ditas, ", ") +
         (outras > 0 ? " e mais " + std::to_string(outras) : "") + ".";
}

}  // namespace orv
