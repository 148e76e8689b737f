#include "reconciliation/formats/bank_text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <vector>

#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

enum Campo : std::size_t {
  kDocto,
  kDtCont,
  kValor,
  kOperacao,
  kObservacao,
  kObservacao2,
  kConta,
  kDigConta,
  kChave,
  kImporta,
  kCampos
};
constexpr std::array<std::string_view, kCampos> kNomes = {"DOCTO",      "DT_CONT",     "VALOR", "OPERACAO",
                                                          "OBSERVACAO", "OBSERVACAO2", "CONTA", "DIG_CONTA",
                                                          "CHAVE",      "IMPORTA"};

class Reader {
 public:
  Reader(const PositionLayout& layout, std::span<const std::string> accounts, std::string_view account,
         const StatementSink& sink, BankTextSummary& summary)
      : layout_(layout), accounts_(accounts), account_(account), sink_(sink), summary_(summary) {
    for (std::size_t i = 0; i < kCampos; ++i) campos_[i] = layout.Find(kNomes[i]);
    for (const PositionField& field : layout.campos) {
      const auto nome = std::find(kNomes.begin(), kNomes.end(), field.campo);
      ordem_.push_back(static_cast<Campo>(nome - kNomes.begin()));
    }
  }

  void Line(std::string_view line) {
    ++summary_.read;
    conta_.clear(), docto_.clear(), valor_.clear(), operacao_.clear(), obs_.clear(), chave_.clear();
    dia_.reset();
    const bool separated =
        !ordem_.empty() && layout_.Separated() && line.find(layout_.separador) != std::string_view::npos;
    if (separated ? Separated(line) : Fixed(line)) HandOn();
  }

 private:
  // --- Separated: every row of the layout takes one token.
  bool Separated(std::string_view line) {
    const std::string& separator = layout_.separador;
    for (std::size_t row = 0;; row = std::min(row + 1, ordem_.size() - 1)) {
      const std::size_t end = line.find(separator);
      Token(row, line.substr(0, end));
      if (end == std::string_view::npos) break;
      line.remove_prefix(end + separator.size());
    }
    return OfAccount();
  }

  void Token(std::size_t row, std::string_view text) {
    token_.clear();
    std::copy_if(text.begin(), text.end(), std::back_inserter(token_), [](char c) { return c != '"'; });
    token_ = Trim(token_);
    std::erase(token_, '.');
    token_ = Trim(token_);
    switch (ordem_[row]) {
      case kDocto:
        docto_ = token_;
        return;
      case kDtCont:
        dia_ = DateByMask(token_, layout_.campos[row].mascara);
        return;
      case kValor:
        valor_ = token_;
        return;
      case kOperacao:
        operacao_ = token_;
        return;
      case kObservacao:
        obs_ = token_;
        return;
      case kObservacao2:
        obs_ += ". ";
        obs_ += token_;
        return;
      case kConta:
        conta_ = token_;
        return;
      case kDigConta:
        AddDigit(token_);
        return;
      case kChave:
        chave_ = token_;
        return;
      case kImporta:
      case kCampos:
        return;
    }
  }

  // --- Fixed columns.
  bool Fixed(std::string_view line) {
    const auto campo = [&](Campo which) { return FixedText(line, campos_[which]); };
    conta_ = campo(kConta);
    AddDigit(campo(kDigConta));
    chave_ = campo(kChave);
    if (chave_.empty() || campo(kImporta) == "*") {
      ++summary_.refused;
      return false;
    }
    if (!OfAccount()) return false;
    docto_ = campo(kDocto);
    dia_ = DateByMask(campo(kDtCont), campos_[kDtCont] == nullptr ? "" : campos_[kDtCont]->mascara);
    valor_ = campo(kValor);
    operacao_ = campo(kOperacao);
    if (operacao_ == "+") operacao_ = "C";
    if (operacao_ == "-") operacao_ = "D";
    obs_ = campo(kObservacao);
    obs_ += ". ";
    obs_ += campo(kObservacao2);
    return true;
  }

  // --- Both.
  void AddDigit(std::string_view digit) {
    if (digit.empty()) return;
    conta_ += '-';
    conta_ += digit;
  }

  bool OfAccount() {
    // Most lines are of one account.
    if (!known_ || conta_ != asked_) {
      resolved_ = accounts_.Resolve(conta_);
      asked_ = conta_;
      known_ = true;
    }
    if (!resolved_.empty() && resolved_ == account_) return true;
    ++summary_.other_account;
    return false;
  }

  void HandOn() {
    // A line too short to have a date has none that can be read.
    const Date day = dia_ ? *dia_ : DateByMask("", "");
    const Currency amount = ImpliedAmount(valor_);
    RequireLineAmount(amount, amount.Brazil());
    ++summary_.lines;
    sink_({resolved_, docto_, day, amount, operacao_, obs_, chave_});
  }

  const PositionLayout& layout_;
  AccountBook accounts_;
  std::string_view account_;
  const StatementSink& sink_;
  BankTextSummary& summary_;
  std::array<const PositionField*, kCampos> campos_{};
  // What the rows of the layout mean, in their order; kCampos for one that isn't read.
  std::vector<Campo> ordem_;

  std::string conta_, docto_, valor_, operacao_, obs_, chave_, token_;
  std::optional<Date> dia_;
  // The latest account text and what it means.
  bool known_ = false;
  std::string asked_, resolved_;
};

}  // namespace

void ReadBankText(std::string_view text, const PositionLayout& layout, std::span<const std::string> accounts,
                  std::string_view account, const StatementSink& sink, BankTextSummary& summary) {
  Reader reader(layout, accounts, account, sink, summary);
  TextLines lines(text);
  std::string_view line;
  if (!lines.Next(line)) return;
  while (lines.Next(line)) {
    summary.line = lines.Number();
    if (Trim(line).empty()) continue;
    try {
      reader.Line(line);
    } catch (const ConversionError& e) {
      throw UserError("Linha " + std::to_string(lines.Number()) + " do arquivo: " + CleanUtf8(e.what()));
    }
  }
}

}  // namespace orv
