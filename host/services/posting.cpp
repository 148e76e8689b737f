#include "host/services/posting.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "frame/lists.h"
#include "frame/screen.h"
#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Where an account's description is looked for: the chart, the bank accounts, the entities.
struct Book {
  const char* table;
  const char* key;
  const char* description;
};
constexpr std::array<Book, 3> kBooks{{{"CONTA_CONT", "CODIGO", "DESCRICAO"},
                                      {"CADCONTA", "CONTA", "DESCRICAO"},
                                      {"ENTIDADE", "CODCLI", "NOME"}}};

}  // namespace

void Posting::SetContabilidadeFinan(LinhaContabil linha) {
  confirmed_ = false;
  lines_.push_back({std::move(linha), {}});
}

void Posting::GravaRaterioCentroCusto(std::string_view conta, std::string_view classe, std::string_view tipo,
                                      std::string_view tipo_val, Currency valor) {
  ORV_ASSERT(!lines_.empty());
  confirmed_ = false;
  const auto rules = contabil_.RegrasRateio(classe, tipo, tipo_val);
  std::vector<Share> shares = SharesOfAccount(rules, conta);
  if (shares.empty()) return;
  if (SharesAreWhole(shares)) {
    SetAmounts(shares, valor.Round2());
  } else {
    for (Share& share : shares) share.amount = (valor * (share.percent / 100)).Round2();
  }
  lines_.back().shares = std::move(shares);
}

std::vector<PostingLine> Posting::Shown() {
  std::unordered_map<std::string, std::string> descriptions;
  std::vector<std::string> wanted;
  for (const Line& line : lines_) {
    for (const std::string& account : {line.conta_c, line.conta_d}) {
      if (!account.empty() && descriptions.emplace(account, "").second) wanted.push_back(account);
    }
  }
  std::unordered_map<std::string, std::string> found;
  for (const Book& book : kBooks) {
    std::vector<std::string> literals;
    for (const std::string& account : wanted) {
      if (!found.contains(account)) literals.push_back(SqlLiteral(account));
    }
    EmListas(literals, [&](const std::string& list) {
      for (const auto& row :
           contabil_.Db().Rows(std::string("SELECT ") + book.key + ", " + book.description + " FROM " +
                               contabil_.Local(book.table) + " WHERE " + book.key + " IN (" + list + ")"))
        found.emplace(Trim(row[0].AsString()), Trim(row[1].AsString()));
    });
  }
  const auto description = [&](const std::string& account) {
    const auto at = found.find(account);
    return at == found.end() ? std::string() : at->second;
  };
  std::vector<PostingLine> shown;
  for (const Line& line : lines_) {
    shown.push_back({line.conta_d, description(line.conta_d), line.conta_c, description(line.conta_c),
                     line.valor.Brazil(), line.observacao,
                     !found.contains(line.conta_d) || !found.contains(line.conta_c)});
  }
  return shown;
}

bool Posting::ConfirmaDadosContabilidade(int) {
  confirmed_ = lines_.empty() || contabil_.App().User().ConfirmPosting(contabil_.Title(), Shown());
  return confirmed_;
}

void Posting::GravaContabilidadeFinan() {
  if (!confirmed_) throw UserError("O lançamento contábil não foi confirmado.");
  // A number's lines are counted together, in the order in which they were gathered.
  std::unordered_map<std::string, int> orders;
  for (const Line& line : lines_) {
    contabil_.LancaContabilidade(line);
    contabil_.WriteShares(line.lancamento, CutChars(line.docto, 12), line.origem, ++orders[line.lancamento],
                          true, line.shares);
  }
  lines_.clear();
}

}  // namespace orv
