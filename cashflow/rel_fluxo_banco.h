// Cash flow by bank: of each account the balance before a period, what moved in it, the pending cheques and
// the limit; beside them the titles that are due in the period.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/fonte.h"
#include "rules/periodo.h"
#include "toolkit/client_dataset.h"
#include "toolkit/query.h"

namespace orv {

class ORV_EXPORT TfmRelFluxoBanco : public ReportScreen {
 public:
  explicit TfmRelFluxoBanco(Application& application);

  GroupBox GbData{*this, "GbData", "Data"};
  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  DateEdit EdtDtCheque{*this, "EdtDtCheque", "Cheque"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtEmp{*this, "EdtEmp"};
  Edit EdtSit{*this, "EdtSit", "Situação"};
  TPesquisa PqSituacao{*this, "PqSituacao", Situacoes()};
  SmallButton SpeedButton{*this, "SpeedButton", "Limpar"};
  CheckBox CbEmpresa{*this, "CbEmpresa", "Todas Empresas"};
  CheckBox CbTotDia{*this, "CbTotDia", "Total Por Dia"};
  Button btnConfirma{*this, "btnConfirma", "&Confirmar"};

  // A row for each movement before the period; what the account has in all stands on its first row. An
  // account is told by all its characters.
  static constexpr auto kSaldo = std::to_array<ReportField>({
      {"Valor", FieldType::Float, 0, {"Valor", 14, 6}},
      {"Banco", FieldType::String, 3, {"Banco", 0, 2}},
      {"NomeBanco", FieldType::String, 30, {"Nome do Banco", 20, 3}},
      {"Conta", FieldType::String, 13, {"Conta", 0, 1}},
      {"Titular", FieldType::String, 50, {"Titular", 30, 4}},
      {"Operacao", FieldType::String, 1, {"Op.", 0, 5}},
      {"Cred_BCO", FieldType::Float, 0, {"Créditos", 14, 7}},
      {"Debi_BCO", FieldType::Float, 0, {"Débitos", 14, 8}},
      {"Cheq_Pend", FieldType::Float, 0, {"Cheq. Pendentes", 14, 9}},
      {"Limite", FieldType::Float, 0, {"Limite", 14, 10}},
      {"Periodo", FieldType::String, 25},
      {"TotDia", FieldType::String, 1},
  });
  TClientDataSet TbSaldo{"TbSaldo"};
  static constexpr auto kChequePendente = std::to_array<ReportField>({
      {"Conta", FieldType::String, 13},
      {"Valor", FieldType::Float},
  });
  TClientDataSet TbChequePendente{"TbChequePendente"};
  static constexpr auto kDebitosCreditos = std::to_array<ReportField>({
      {"Operacao", FieldType::String, 1},
      {"Conta", FieldType::String, 13},
      {"Valor", FieldType::Float},
  });
  TClientDataSet tbDebitosCreditos{"tbDebitosCreditos"};
  // The accounts of TbSaldo, one row each.
  static constexpr auto kContas = std::to_array<ReportField>({
      {"Conta", FieldType::String, 13, {"Conta"}},
      {"Banco", FieldType::String, 3, {"Banco", 5}},
      {"NomeBanco", FieldType::String, 30, {"Nome do Banco", 15}},
      {"Anterior", FieldType::Currency, 0, {"Saldo Anterior", 12}},
      {"Creditos", FieldType::Currency, 0, {"Créditos", 12}},
      {"Debitos", FieldType::Currency, 0, {"Débitos", 12}},
      {"Saldo", FieldType::Currency, 0, {"Saldo", 12}},
      {"Menor", FieldType::Currency, 0, {"Menor saldo", 12}},
      {"Dia", FieldType::Date, 0, {"Em"}},
      {"Cheq_Pend", FieldType::Currency, 0, {"Cheq. Pend.", 12}},
      {"Limite", FieldType::Currency, 0, {"Limite", 12}},
      {"Titular", FieldType::String, 50, {"Titular", 24}},
  });
  TClientDataSet TbContas{"TbContas"};
  TOrvQuery QryPagar{Tabela.IBDatabase(), "QryPagar"};
  TOrvQuery QryReceber{Tabela.IBDatabase(), "QryReceber"};

  Label LbMenor{*this, "LbMenor"};
  Aviso LbConsulta{*this, "LbConsulta"};
  Chart GrafContas{*this,    "GrafContas", "Saldo no fim do período e menor saldo de cada conta",
                   TbContas, "Conta",      {{"Saldo", "Saldo", false}, {"Menor", "Menor saldo", false}},
                   60};
  PageControl PageControl1{*this, "PageControl1", 0};
  TabSheet TabSheet1{*this, "TabSheet1", "Contas"};
  TOrvDBGrid GridContas;
  TabSheet TabSheet2{*this, "TabSheet2", "Movimentos anteriores"};
  TOrvDBGrid DBGrid2;
  TabSheet TabSheet3{*this, "TabSheet3", "A Pagar"};
  TOrvDBGrid GridPagar;
  TabSheet TabSheet4{*this, "TabSheet4", "A Receber"};
  TOrvDBGrid GridReceber;
  Button BtnImprime{*this, "BtnImprime", "&Imprimir"};
  Button BtFora{*this, "BtFora", "Contas fora da lista"};
  Button btnFechar{*this, "btnFechar", "&Fechar"};

 private:
  using Linha = ReportRow<kSaldo>;

  // What the gathering asks for, which the drill-downs and the report ask again.
  struct Consulta {
    Periodo periodo;
    Date cheque;
    bool todas = false, por_dia = false;
    std::string texto;  // "20/11/2026 a 31/12/2030"
    std::string conta;  // a condition on CONTACOR that begins with " AND ", or ""
  };
  // What an account of a company has. It is listed where it has movements before the period.
  struct DaConta {
    std::optional<Currency> pendente;
    std::map<std::string, Currency> por_operacao;
    std::map<Date, Currency> por_dia;
    bool listada = false;
    Value banco, nome_banco, titular;
    Currency anterior, limite;
  };
  using Chave = std::pair<std::string, std::string>;  // company, account
  // Accounts or banks, by company and code.
  struct Cadastrado {
    Value nome;
    Currency limite;
  };
  using Cadastro = std::map<Chave, Cadastrado>;

  // --- The gathering.
  void btnConfirmaClick();
  void BtnImprimeClick();
  void Monta(Gathering& andamento);
  void Cria_Tabela();
  void busca_Saldos(Gathering& andamento);
  void BuscaChequesPendentes();
  void BuscaDebitosCreditos();
  // By a statement of company, code, name and limit.
  Cadastro LeCadastro(std::string_view sql) const;
  void BuscaMovimentos(Gathering& andamento);
  static void PrimeiraDaConta(Linha& linha, DaConta& conta);
  void AbertoPagar();
  void AbertoReceber();
  void SomaContas();
  void MostraMenorSaldo();
  void MostraForaDaLista();

  // Conditions on CONTACOR, which begin with its date.
  std::string Antes() const;
  std::string NoPeriodo() const;
  std::string Pendentes() const;
  // Begins with " AND ".
  std::string VenceNoPeriodo(std::string_view coluna) const;
  std::string DeTodas(std::string_view sql, std::string_view tabela, std::string_view ordem) const {
    return ForCompanies(sql, tabela, consulta_.todas, ordem);
  }

  // --- From a figure to where it comes from.
  void GridContasDblClick();
  void DBGrid2DblClick();
  void BtForaClick();
  void AbreTitulo(TOrvQuery& titulos, Fonte fonte, const char* chave);
  // A column of an account's row; false where it has no figure.
  bool AbreDaConta(const std::string& coluna, const std::string& conta, const std::string& empresa);

  Consulta consulta_;
  std::map<Chave, DaConta> contas_;
  // Movements of neither operation, which no column sums.
  Currency sem_operacao_;
  Origens origens_;
};

extern ORV_EXPORT thread_local TfmRelFluxoBanco* fmRelFluxoBanco;

}  // namespace orv
