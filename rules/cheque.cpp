#include "rules/cheque.h"

#include "toolkit/text.h"

namespace orv {
namespace {

// The columns and the values of an INSERT.
class Linha {
 public:
  explicit Linha(const IFuncoes& funcoes) : funcoes_(funcoes) {}

  Linha& Texto(const char* coluna, const std::optional<std::string>& texto, std::size_t largura) {
    return texto ? Poe(coluna, funcoes_.Aspas(CutChars(*texto, largura))) : *this;
  }
  Linha& Valor(const char* coluna, Currency valor) { return Poe(coluna, funcoes_.PermanecePonto(valor)); }
  Linha& Data(const char* coluna, const std::optional<Date>& data) {
    return data ? Poe(coluna, funcoes_.AspasData(*data)) : *this;
  }
  Linha& Numero(const NumeroCheque& cheque) {
    return Texto("BANCO", cheque.banco, 3).Texto("CONTA", cheque.conta, 13).Texto("NUMERO", cheque.numero, 8);
  }
  std::string Insere(const std::string& tabela) const {
    return "INSERT INTO " + tabela + " (" + colunas_ + ") VALUES (" + valores_ + ")";
  }

 private:
  Linha& Poe(const char* coluna, const std::string& valor) {
    const char* liga = colunas_.empty() ? "" : ", ";
    colunas_.append(liga).append(coluna);
    valores_.append(liga).append(valor);
    return *this;
  }

  const IFuncoes& funcoes_;
  std::string colunas_, valores_;
};

}  // namespace

std::string Cheques::Condicao(const NumeroCheque& cheque) const {
  return "NUMERO = " + funcoes_.Aspas(cheque.numero) + " AND BANCO = " + funcoes_.Aspas(cheque.banco) +
         " AND CONTA = " + funcoes_.Aspas(cheque.conta);
}

void Cheques::Grava(const Cheque& c, std::string_view empresa) {
  const std::string tabela = empresa.empty() ? funcoes_.DBLocal("CHEQUE_PRE", true)
                                             : funcoes_.DBEmpresa_SQL("{CHEQUE_PRE}", empresa);
  tabela_.IBDatabase().Execute(Linha(funcoes_)
                                   .Texto("CHAVE", c.chave, 7)
                                   .Numero(c.numero)
                                   .Texto("AGENCIA", c.agencia, 7)
                                   .Valor("VALOR", c.valor)
                                   .Texto("EMISSOR", c.emissor, 50)
                                   .Texto("CNPJ_EMI", c.cnpj_emi, 18)
                                   .Texto("CLIENTE", c.cliente, 5)
                                   .Texto("TIPO", c.tipo, 1)
                                   .Texto("FORNECEDOR", c.fornecedor, 5)
                                   .Texto("REPRESENTANTE", c.representante, 5)
                                   .Data("EMISSAO", c.emissao)
                                   .Data("VENCIMENTO", c.vencimento)
                                   .Data("DT_BAIXA", c.dt_baixa)
                                   .Texto("DUPLICATA", c.duplicata, 12)
                                   .Texto("LOTE", c.lote, 12)
                                   .Texto("STATUS", c.status, 1)
                                   .Texto("BARRA", c.barra, 34)
                                   .Texto("OBS", c.obs, 50)
                                   .Insere(tabela));
}

void Cheques::Grava(const TituloDoCheque& t) {
  tabela_.IBDatabase().Execute(Linha(funcoes_)
                                   .Numero(t.cheque)
                                   .Texto("DUPLI", t.dupli, 12)
                                   .Texto("CHAVE", t.chave, 7)
                                   .Valor("JUROS", t.juros)
                                   .Valor("VALOR", t.valor)
                                   .Insere(funcoes_.DBLocal("CHEQUE_DUP", true)));
}

void Cheques::Apaga(const NumeroCheque& cheque) {
  tabela_.IBDatabase().Execute("DELETE FROM " + funcoes_.DBLocal("CHEQUE_PRE", true) + " WHERE " +
                               Condicao(cheque));
}

void Cheques::ApagaTitulos(const NumeroCheque& cheque) {
  tabela_.IBDatabase().Execute("DELETE FROM " + funcoes_.DBLocal("CHEQUE_DUP", true) + " WHERE " +
                               Condicao(cheque));
}

}  // namespace orv
