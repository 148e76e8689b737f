#include "host/services/contabil_service.h"

#include "frame/screen.h"
#include "host/services/posting.h"
#include "host/services/rateio_dialog.h"
#include "host/services/sql_text.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// How long another session's change of the situations may stay unseen.
constexpr std::chrono::seconds kFresh{30};

std::string DateLiteral(Date date) { return SqlLiteral(date.Sql()); }

}  // namespace

std::string ContabilService::Local(std::string_view table) const {
  return tabela_.GetCompanies().Physical(table, tabela_.Standing());
}

std::string ContabilService::Title() const {
  const Screen* top = application_.Top();
  return top == nullptr ? "Contabilidade" : top->Caption();
}

std::unique_ptr<TContabil> ContabilService::Create() { return std::make_unique<Posting>(*this); }

void ContabilService::LancaContaCorrente(std::string_view lancamento, std::string_view docto,
                                         std::string_view banco, std::string_view conta,
                                         std::string_view grupo, std::string_view historico,
                                         std::string_view tipo, std::string_view pendente,
                                         std::string_view operacao, std::string_view observacao,
                                         Currency valor, Date dt_lan, Date data2, Date data3,
                                         std::string_view tipo_doc) {
  std::string bank(banco);
  if (bank.empty()) {
    bank = Trim(db_.Scalar("SELECT BANCO FROM " + Local("CADCONTA") + " WHERE CONTA = " + SqlLiteral(conta))
                    .AsString());
  }
  db_.Execute(
      "INSERT INTO " + Local("CONTACOR") +
      " (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, OPERACAO, GRUPO, HISTORICO, "
      "OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON) VALUES (" +
      SqlLiteral(lancamento) + ", " + SqlLiteral(docto) + ", " + SqlLiteral(bank) + ", " + SqlLiteral(conta) +
      ", " + DateLiteral(dt_lan) + ", " + DateLiteral(data3) + ", " + DateLiteral(data2) + ", " +
      valor.Neutral() + ", " + SqlLiteral(operacao) + ", " + SqlLiteral(grupo) + ", " +
      SqlLiteral(historico) + ", " + SqlLiteral(CutChars(observacao, 100)) + ", " + SqlLiteral(tipo) + ", " +
      SqlLiteral(tipo_doc) + ", " + SqlLiteral(pendente) + ", '')");
}

void ContabilService::DeletaContaCorrente(std::string_view lancamento) {
  db_.Execute("DELETE FROM " + Local("CONTACOR") + " WHERE LANCAMENTO = " + SqlLiteral(lancamento));
}

void ContabilService::LancaContabilidade(std::string_view lancamento, std::string_view docto,
                                         std::string_view docto2, std::string_view conta_c,
                                         std::string_view conta_d, std::string_view operacao,
                                         std::string_view origem, std::string_view classe,
                                         std::string_view historico, Currency valor, Date data,
                                         std::string_view codigo, std::string_view observacao) {
  db_.Execute(
      "INSERT INTO " + Local("CONTABIL") +
      " (LANCAMENTO, DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, CLASSE, HISTORICO, VALOR, DATA, "
      "CODIGO, OBSERVACAO) VALUES (" +
      SqlLiteral(lancamento) + ", " + SqlLiteral(CutChars(docto, 12)) + ", " +
      SqlLiteral(CutChars(docto2, 12)) + ", " + SqlLiteral(conta_c) + ", " + SqlLiteral(conta_d) + ", " +
      SqlLiteral(operacao) + ", " + SqlLiteral(origem) + ", " + SqlLiteral(classe) + ", " +
      SqlLiteral(historico) + ", " + valor.Neutral() + ", " + DateLiteral(data) + ", " +
      SqlLiteral(CutChars(codigo, 12)) + ", " + SqlLiteral(CutChars(observacao, 200)) + ")");
}

void ContabilService::DeletaContabilidadeFinan(std::string_view lancamento) {
  db_.Execute("DELETE FROM " + Local("CONTABIL") + " WHERE LANCAMENTO = " + SqlLiteral(lancamento));
}

void ContabilService::WriteShares(std::string_view lancamento, std::string_view numero, std::string_view tipo,
                                  int order, bool one_order, const std::vector<Share>& shares) {
  for (const Share& share : shares) {
    db_.Execute("INSERT INTO " + Local("CENTRO_RATEIO") +
                " (LANCAMENTO, ORDEM, CONTA, NUMERO, CENTROCUSTO, TIPO, PERC_RAT, VALOR_RAT) VALUES (" +
                SqlLiteral(lancamento) + ", " + std::to_string(order) + ", " + SqlLiteral(share.account) +
                ", " + SqlLiteral(numero) + ", " + SqlLiteral(share.centre) + ", " + SqlLiteral(tipo) + ", " +
                FloatText(share.percent) + ", " + share.amount.Neutral() + ")");
    if (!one_order) ++order;
  }
}

bool ContabilService::SharesOf(std::string_view classe, Currency total, bool confirm,
                               std::vector<Share>& shares) {
  const auto rules = ReadShareRules(db_, Local("CONT_RATEIO"), classe, "C", "VF");
  shares = SharesOfClass(rules);
  if (SharesAreWhole(shares)) {
    SetAmounts(shares, total);
    return true;
  }
  const bool demanded = !rules.empty() || db_.Scalar("SELECT RATEIO FROM " + Local("SUBGRUPO") +
                                                     " WHERE CODIGO = " + SqlLiteral(classe))
                                                  .Text() == "S";
  if (!demanded || total.IsZero()) {
    shares.clear();
    return true;
  }
  if (!confirm) return false;
  for (Share& share : shares) share.amount = (total * (share.percent / 100)).Round2();
  auto& dialog = static_cast<TfmRateio&>(application_.Adopt(std::make_unique<TfmRateio>(application_)));
  dialog.Prepare(shares, total);
  application_.Show(dialog);
  if (!dialog.Confirmed()) return false;
  shares = dialog.Shares();
  return true;
}

bool ContabilService::SetRateioClasse(std::string_view numero, std::string_view classe,
                                      std::string_view origem, Currency valor, std::string_view, bool confirm,
                                      Date, bool store) {
  const Currency total = valor.Round2();
  Prepared prepared{
      tabela_.Standing(), std::string(numero), std::string(classe), std::string(origem), total, {}};
  if (store && prepared_ && prepared_->Of(prepared)) {
    prepared = std::move(*prepared_);
    prepared_.reset();
  } else {
    prepared_.reset();
    if (!SharesOf(classe, total, confirm, prepared.shares)) return false;
  }
  if (!store) {
    prepared_ = std::move(prepared);
    return true;
  }
  const std::string_view number = CutChars(numero, 12);
  db_.Execute("DELETE FROM " + Local("CENTRO_RATEIO") + " WHERE NUMERO = " + SqlLiteral(number) +
              " AND TIPO = " + SqlLiteral(origem) + " AND (LANCAMENTO = '' OR LANCAMENTO IS NULL)");
  WriteShares("", number, origem, 1, false, prepared.shares);
  return true;
}

std::string ContabilService::LockAccount(std::string_view kind) {
  TOrvTable& accounts = tabela_.TbCadConta();
  if (kind != "CT" || !accounts.Active() || accounts.IsEmpty()) return "";
  return std::string(Trim(accounts["CONTA"].AsString()));
}

Date ContabilService::PeriodoFechadoAte(std::string_view kind) {
  return locks_.ClosedUntil(tabela_.Standing(), kind, LockAccount(kind));
}

bool ContabilService::PeriodoConciliado(Date date, std::string_view kind) {
  if (date.Empty()) return false;
  const std::string account = LockAccount(kind);
  const Date until = PeriodoFechadoAte(kind);
  if (until.Empty() || date > until) return false;
  const std::string text = kind == "CX" ? "Período do caixa fechado até " + until.Brazil() + "."
                           : account.empty()
                               ? "Período fechado até " + until.Brazil() + "."
                               : "Período fechado até " + until.Brazil() + " para a conta " + account + ".";
  application_.User().Message(MessageKind::Information, Title(), text, Answer::Ok);
  return true;
}

int ContabilService::FloatDays(std::string_view situacao, const std::string& company) {
  const auto now = std::chrono::steady_clock::now();
  if (float_company_ != company || now - float_read_at_ >= kFresh) {
    float_days_.clear();
    for (const auto& row : db_.Rows("SELECT CODIGO, DIAS_FLOAT FROM " + Local("TABSIT"))) {
      float_days_.emplace(Trim(row[0].AsString()), static_cast<int>(row[1].AsInteger()));
    }
    float_company_ = company;
    float_read_at_ = now;
  }
  const auto found = float_days_.find(std::string(Trim(situacao)));
  return found == float_days_.end() ? 0 : found->second;
}

Date ContabilService::DataContabilizacaoBancaria(Date date, std::string_view situacao, bool working_day) {
  if (date.Empty()) return date;
  const std::string company = tabela_.Standing();
  if (working_day) date = calendar_.WorkingDay(date, false, company);
  return Trim(situacao).empty() ? date
                                : calendar_.AddWorkingDays(date, FloatDays(situacao, company), company);
}

}  // namespace orv
