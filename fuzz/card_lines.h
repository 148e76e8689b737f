// What a line of a card acquirer's file must be, whatever the file is.
#pragma once

#include "fuzz/require.h"
#include "reconciliation/formats/card_file.h"
#include "reconciliation/formats/statement.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {

class CheckedLines : public CardSink {
 public:
  // Of the input, in bytes: a character becomes three bytes at most, and two columns a text.
  explicit CheckedLines(std::size_t size) : most_(6 * size + 64) {}
  void Line(const CardLine& line) override {
    ++lines;
    for (const std::string_view text : {line.cartao, line.meio_pag, line.comprovante, line.parcela,
                                        line.status, line.desc_status, line.empresa, line.id}) {
      Require(ValidUtf8(text) && text.size() <= most_);
    }
    for (const Currency amount : {line.valor_parcela, line.valor_bruto, line.valor_liq})
      Require(amount.Abs() <= kMaxLineAmount);
    // A total is an instalment so many times, an order's fee a difference.
    Require(line.valor_total.Abs() <= Currency::FromRaw(kMaxLineAmount.Raw() << 31));
    Require(line.taxa.Abs() <= Currency::FromRaw(kMaxLineAmount.Raw() * 2));
    Require(line.data == DateTime() || (line.data.Day().Year() >= 1899 && line.data.Day().Year() <= 9999));
  }
  void TakeBack() noexcept override { lines = 0; }

  std::size_t lines = 0;

 private:
  std::size_t most_;
};

// Reads what may be refused: with a text that can be shown.
template <class Read>
void ReadOrRefuse(const Read& read) {
  try {
    read();
  } catch (const UserError& e) {
    Require(ValidUtf8(e.what()));
  }
}

}  // namespace orv
