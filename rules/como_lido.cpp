#include "rules/como_lido.h"

namespace orv {

ComoLido& ComoLido::E(std::string condicao) {
  if (!condicao_.empty()) condicao_ += " AND ";
  condicao_ += condicao;
  return *this;
}

ComoLido& ComoLido::Chave(std::string_view coluna, std::string_view texto) {
  return E(std::string(coluna) + " = " + funcoes_.Aspas(texto));
}

ComoLido& ComoLido::Texto(std::string_view coluna, std::string_view texto) {
  return E("COALESCE(" + std::string(coluna) + ", '') = " + funcoes_.Aspas(texto));
}

ComoLido& ComoLido::Valor(std::string_view coluna, Currency valor) {
  return E("COALESCE(" + std::string(coluna) + ", 0) = " + funcoes_.PermanecePonto(valor));
}

ComoLido& ComoLido::Versao(int64_t versao) { return E("RDB$RECORD_VERSION = " + std::to_string(versao)); }

ComoLido& ComoLido::Ou(const ComoLido& um, const ComoLido& outro) {
  return E("((" + um.condicao_ + ") OR (" + outro.condicao_ + "))");
}

}  // namespace orv
