// The cheque printer on a serial port.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "frame/services.h"

namespace orv {

// Where a port's bytes go.
struct ChequePort {
  std::string path;
  // A file that is made when it isn't there, in place of a device.
  bool file = false;
};

// The port "COM1" is the first serial device of the machine, unless the environment variable
// `ORVCC_CHEQUE_PORT_COM1` names a file in its place. Raises UserError for a text that isn't a port.
ChequePort SystemChequePort(std::string_view port);

// Sends all bytes. Raises UserError when the port can't be opened or doesn't take them within ten seconds.
void SendToPort(const ChequePort& port, std::string_view bytes);

class ChequePrinter : public TImpCheque {
 public:
  // `words` gives an amount in words, `port` what a port's name stands for.
  ChequePrinter(std::function<std::string(Currency)> words, std::function<ChequePort(std::string_view)> port)
      : words_(std::move(words)), port_(std::move(port)) {}

  void SetModelo(int model) override;
  void ImprimirCheque() override;

 private:
  std::function<std::string(Currency)> words_;
  std::function<ChequePort(std::string_view)> port_;
  int model_ = 1;
};

}  // namespace orv
