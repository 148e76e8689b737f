// The register of an account: its movements one under the other with the balance that each leaves, the newest
// in sight, searched while one types.
#pragma once

#include <array>
#include <string>
#include <unordered_set>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "toolkit/client_dataset.h"

namespace orv {

class ORV_EXPORT TfmRegistroConta : public ReportScreen {
 public:
  explicit TfmRegistroConta(Application& application);

  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtDescConta{*this, "EdtDescConta"};
  Edit EdtProcura{*this, "EdtProcura", "Procurar (documento, texto ou valor)", 40};
  Button BtConsulta{*this, "BtConsulta", "&Consultar"};

  // What isn't settled moves no balance.
  static constexpr auto kMovimentos = std::to_array<ReportField>({
      {"DtCont", FieldType::Date, 0, {"Contabilização", 0, 1}},
      {"DtLan", FieldType::Date, 0, {"Lançamento", 0, 2}},
      {"DtVencto", FieldType::Date, 0, {"Vencimento", 0, 3}},
      {"Lancamento", FieldType::String, 7, {"Número", 0, 4}},
      {"Docto", FieldType::String, 15, {"Documento", 0, 5}},
      {"Banco", FieldType::String, 3, {"Banco", 0, 6}},
      {"Observacao", FieldType::String, 100, {"Observação", 40, 7}},
      {"Valor", FieldType::Currency, 0, {"Valor", 14, 8}},
      {"Saldo", FieldType::Currency, 0, {"Saldo", 14, 9}},
      {"Situacao", FieldType::String, 1, {"Situação", 11, 10}},
      {"NoExtrato", FieldType::String, 1, {"Extrato", 12, 11}},
      {"Operacao", FieldType::String, 1},
      // All that is searched, folded.
      {"Procura", FieldType::String, 160},
  });
  TClientDataSet TbMovimentos{"TbMovimentos"};

  Label LbSaldo{*this, "LbSaldo"};
  TOrvDBGrid DBGrid1;
  Button BtAbre{*this, "BtAbre", "&Abrir lançamento"};
  Button BtFecha{*this, "BtFecha", "&Fechar"};

 private:
  using Linha = ReportRow<kMovimentos>;

  void BtConsultaClick();
  void Monta(Gathering& andamento);
  // The movements of the account, oldest first, and those without an accounting date at the head.
  std::vector<Linha> Le(Gathering& andamento) const;
  // The numbers under which lines of the account's statements are tied.
  std::unordered_set<std::string> Conciliacoes() const;
  // Of the rows only those in which every word is found.
  void Procura();
  void AbreMovimento();

  // The account whose movements are shown.
  std::string conta_;
};

extern ORV_EXPORT thread_local TfmRegistroConta* fmRegistroConta;

}  // namespace orv
