// Layouts of outside files: bank statements, cheque returns, and the column maps of the acquirers.
#include "host/schema/demo_company.h"

namespace orv::demo {

void Company::Layouts() {
  const auto field = [&](std::string_view bank, std::string_view kind, std::string_view name, int start,
                         int length = 0, std::string_view mask = "", std::string_view separator = "",
                         int line = 0) {
    rows_.Add("POSICAO", {{"BANCO", bank},
                          {"TIPO", kind},
                          {"CAMPO", name},
                          {"INICIO", start},
                          {"TAMANHO", length},
                          {"MASCARA", mask},
                          {"SEPARADOR", separator},
                          {"LINHA", line}});
  };

  // Fixed columns: statement, and the same bank's return of cheques.
  field("901", "EX", "CONTA", 1, 10);
  field("901", "EX", "DIG_CONTA", 11, 1);
  field("901", "EX", "CHAVE", 12, 10);
  field("901", "EX", "IMPORTA", 22, 1);
  field("901", "EX", "DOCTO", 23, 10);
  field("901", "EX", "DT_CONT", 33, 8, "DDMMAAAA");
  field("901", "EX", "VALOR", 41, 12);
  field("901", "EX", "OPERACAO", 53, 1);
  field("901", "EX", "OBSERVACAO", 54, 25);
  field("901", "EX", "OBSERVACAO2", 79, 20);
  field("901", "EX", "BANCO_CH", 2, 3);
  field("901", "EX", "AGENCIA_CH", 5, 4);
  field("901", "EX", "CONTA_CH", 9, 10);
  field("901", "EX", "NUMERO_CH", 19, 6);
  field("901", "EX", "DATA_CONT", 25, 8);

  // Separated fields, in the order of INICIO.
  int place = 0;
  for (const char* name : {"CONTA", "DT_CONT", "DOCTO", "OBSERVACAO", "VALOR", "OPERACAO"}) {
    ++place;
    field("902", "EX", name, place, 0, place == 2 ? "AAAAMMDD" : "", ";");
  }

  // Column maps. The first data line is 2: each of these files has a title line.
  const auto map = [&](std::string_view bank, std::initializer_list<const char*> names) {
    int column = 0;
    for (const char* name : names) field(bank, "CT", name, ++column, 0, "", ";", 2);
  };
  map("951", {"DATA", "NR_COMPROVANTE", "CARTAO", "NR_PARCELA", "TOTAL_PARCELA", "VALOR_PARCELA", "TAXA",
              "VALOR_LIQ", "STATUS", "EMPRESA"});
  map("952",
      {"DATA", "CARTAO", "NR_AUTORIZACAO", "NR_COMPROVANTE", "NR_PARCELA", "VALOR_TOTAL", "VALOR_PARCELA"});
  map("953", {"DATA", "CARTAO", "NR_AUTORIZACAO", "NR_COMPROVANTE", "NR_PARCELA", "TOTAL_PARCELA",
              "VALOR_TOTAL", "VALOR_PARCELA", "TAXA", "VALOR_LIQ"});
  map("954",
      {"DATA", "NR_AUTORIZACAO", "NR_COMPROVANTE", "CARTAO", "VALOR_TOTAL", "NR_PARCELA", "VALOR_PARCELA"});
  map("955", {"DATA", "NR_AUTORIZACAO", "NR_COMPROVANTE", "CARTAO", "NR_PARCELA", "TOTAL_PARCELA",
              "VALOR_TOTAL", "VALOR_PARCELA", "VALOR_LIQ", "TAXA"});
  map("956", {"DATA", "ID", "NR_COMPROVANTE", "NR_PARCELA", "MEIO_PAG", "VALOR_BRU", "VAL_EST_BRU", "TAXA",
              "VALOR_LIQ", "VAL_EST_LIQ"});
  map("957", {"DATA", "NR_COMPROVANTE", "MEIO_PAG", "ID", "VALOR_LIQ", "NR_PARCELA", "VALOR_BRU", "TAXA"});
  map("958", {"MEIO_PAG", "DATA", "NR_PARCELA", "NR_COMPROVANTE", "VALOR_BRU", "VALOR_LIQ", "ID"});
}

}  // namespace orv::demo
