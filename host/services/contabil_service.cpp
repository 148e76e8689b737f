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
  return tabela_.GetCompanies().Physical(table, tabela_.CurrentCompany());
}

std::string ContabilService::Title() const {
  const Screen* top = application_.Top();
  return top == nullptr ? "Contabilidade" : top->Caption();
}

std::unique_ptr<TContabil> ContabilService::Create() { return std::make_unique<Posting>(*this); }

void ContabilService::LancaContaCorrente(const MovimentoConta& m) {
  const std::string banco = m.banco.empty()
                                ? std::string(Trim(db_.Scalar("SELECT BANCO FROM " + Local("CADCONTA") +
                                                              " WHERE CONTA = " + SqlLiteral(m.conta))
                                                       .AsString()))
                                : m.banco;
  db_.Execute(
      "INSERT INTO " + Local("CONTACOR") +
      " (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, OPERACAO, GRUPO, HISTORICO, "
      "OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON) VALUES (" +
      SqlLiteral(m.lancamento) + ", " + SqlLiteral(m.docto) + ", " + SqlLiteral(banco) + ", " +
      SqlLiteral(m.conta) + ", " + DateLiteral(m.dt_lan) + ", " + DateLiteral(m.dt_cont) + ", " +
      DateLiteral(m.dt_vencto) + ", " + m.valor.Neutral() + ", " + SqlLiteral(m.operacao) + ", " +
      SqlLiteral(m.grupo) + ", " + SqlLiteral(m.historico) + ", " + SqlLiteral(CutChars(m.observacao, 100)) +
      ", " + SqlLiteral(m.tipo) + ", " + SqlLiteral(m.tipo_doc) + ", " + SqlLiteral(m.pendente) + ", '')");
}

void ContabilService::DeletaContaCorrente(std::string_view lancamento) {
  db_.Execute("DELETE FROM " + Local("CONTACOR") + " WHERE LANCAMENTO = " + SqlLiteral(lancamento));
  DeletaAnexos(lancamento);
}

void ContabilService::LancaContabilidade(const LinhaContabil& l) {
  db_.Execute(
      "INSERT INTO " + Local("CONTABIL") +
      " (LANCAMENTO, DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, CLASSE, HISTORICO, VALOR, DATA, "
      "CODIGO, OBSERVACAO) VALUES (" +
      SqlLiteral(l.lancamento) + ", " + SqlLiteral(CutChars(l.docto, 12)) + ", " +
      SqlLiteral(CutChars(l.docto2, 12)) + ", " + SqlLiteral(l.conta_c) + ", " + SqlLiteral(l.conta_d) +
      ", " + SqlLiteral(l.operacao) + ", " + SqlLiteral(l.origem) + ", " + SqlLiteral(l.classe) + ", " +
      SqlLiteral(l.historico) + ", " + l.valor.Neutral() + ", " + DateLiteral(l.data) + ", " +
      SqlLiteral(CutChars(l.codigo, 12)) + ", " + SqlLiteral(CutChars(l.observacao, 200)) + ")");
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

std::vector<RegraRateio> ContabilService::RegrasRateio(std::string_view classe, std::string_view tipo,
                                                       std::string_view tipo_val) {
  std::string sql = "SELECT CONTA, PERC_CONTA, CCUSTO, PERC_CCUSTO FROM " + Local("CONT_RATEIO") +
                    " WHERE CODIGO = " + SqlLiteral(classe) + " AND TIPO = " + SqlLiteral(tipo);
  if (!tipo_val.empty()) sql += " AND TIPO_VAL = " + SqlLiteral(tipo_val);
  std::vector<RegraRateio> rules;
  for (const auto& row : db_.Rows(sql)) {
    rules.push_back({std::string(Trim(row[0].AsString())), row[1].AsFloat(),
                     std::string(Trim(row[2].AsString())), row[3].AsFloat()});
  }
  return rules;
}

bool ContabilService::SharesOf(std::string_view classe, Currency total, bool confirm,
                               std::vector<Share>& shares) {
  const auto rules = RegrasRateio(classe, "C", "VF");
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
  AskedShares asked{
      tabela_.CurrentCompany(), std::string(numero), std::string(classe), std::string(origem), total, {}};
  if (store && asked_ && asked_->Of(asked)) {
    asked = std::move(*asked_);
    asked_.reset();
  } else {
    asked_.reset();
    if (!SharesOf(classe, total, confirm, asked.shares)) return false;
  }
  if (!store) {
    asked_ = std::move(asked);
    return true;
  }
  const std::string_view number = CutChars(numero, 12);
  db_.Execute("DELETE FROM " + Local("CENTRO_RATEIO") + " WHERE NUMERO = " + SqlLiteral(number) +
              " AND TIPO = " + SqlLiteral(origem) + " AND (LANCAMENTO = '' OR LANCAMENTO IS NULL)");
  WriteShares("", number, origem, 1, false, asked.shares);
  return true;
}

std::string ContabilService::LockAccount(std::string_view kind) {
  TOrvTable& accounts = tabela_.TbCadConta();
  if (kind != "CT" || !accounts.Active() || accounts.IsEmpty()) return "";
  return std::string(Trim(accounts["CONTA"].AsString()));
}

Date ContabilService::PeriodoFechadoAte(std::string_view kind) {
  return locks_.ClosedUntil(tabela_.CurrentCompany(), kind, LockAccount(kind));
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
  const std::string company = tabela_.CurrentCompany();
  if (working_day) date = calendar_.WorkingDay(date, false, company);
  return Trim(situacao).empty() ? date
                                : calendar_.AddWorkingDays(date, FloatDays(situacao, company), company);
}

}  // namespace orv
