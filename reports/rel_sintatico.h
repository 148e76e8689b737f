// Settled cash of a period on one page: the balances of the accounts at its start and its end, the movements
// by class, and the sales by region of the representative, payment condition and currency.
#pragma once

#include <array>
#include <string>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"

namespace orv {

class ORV_EXPORT TfmRelSintatico : public ReportScreen {
 public:
  explicit TfmRelSintatico(Application& application);

  GroupBox GbData{*this, "GbData", "Data"};
  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtEmp{*this, "EdtEmp"};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbSGrupo{*this, "CbSGrupo", "Somar p/ grupo"};
  CheckBox cbContas{*this, "cbContas", "Contas Zeradas", true};
  CheckBox CbEmpresas{*this, "CbEmpresas", "Todas Empresas"};
  GroupBox GbVendas{*this, "GbVendas", "Vendas"};
  CheckBox CbRep{*this, "CbRep", "Por Representante"};
  CheckBox CbCond{*this, "CbCond", "Por Cond.Pagamento"};
  CheckBox CbMoeda{*this, "CbMoeda", "Por Moeda"};
  Button BitBtn29{*this, "BitBtn29", "&Confirmar"};

  // Laid down anew by each gathering. The sets and their fields are what the report reads by name. Classes
  // and accounts are as wide as their tables have them.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"Valor", FieldType::Currency, 0, {"Valor", 16, 4}},
      {"Operacao", FieldType::String, 2, {"Op.", 4, 3}},
      {"Codigo", FieldType::String, 6, {"Classe", 8, 1}},
      {"Grupo", FieldType::String, 40, {"Descrição", 36, 2}},
      {"Classe", FieldType::String, 40, {"Grupo", 30, 5}},
      {"Data_ini", FieldType::String, 12},
      {"Data_fim", FieldType::String, 12},
      {"Opcao", FieldType::String, 5},
  });
  TClientDataSet Tbrelatorio{"Tbrelatorio"};
  // The sum of each account's credits and that of its debits, before the period and up to its end.
  static constexpr auto kSaldo = std::to_array<ReportField>({
      {"Valor", FieldType::Float},
      {"Empresa", FieldType::String, 30},
      {"Conta", FieldType::String, 13},
      {"Operacao", FieldType::String, 1},
  });
  TClientDataSet TbSaldo{"TbSaldo"};
  TClientDataSet TbTotal{"TbTotal"};
  // The same, an account a row, for the eye.
  static constexpr auto kContas = std::to_array<ReportField>({
      {"Conta", FieldType::String, 13, {"Conta"}},
      {"Empresa", FieldType::String, 30, {"Titular", 30}},
      {"Inicial", FieldType::Currency, 0, {"Saldo Inicial", 16}},
      {"Entradas", FieldType::Currency, 0, {"Entradas", 16}},
      {"Saidas", FieldType::Currency, 0, {"Saídas", 16}},
      {"Final", FieldType::Currency, 0, {"Saldo Final", 16}},
  });
  TClientDataSet TbContas{"TbContas"};
  TOrvQuery QryRep{Tabela.IBDatabase(), "QryRep"};
  TOrvQuery QryCond{Tabela.IBDatabase(), "QryCond"};
  TOrvQuery QryMoeda{Tabela.IBDatabase(), "QryMoeda"};

  PageControl PageControl1{*this, "PageControl1"};
  TabSheet TsCaixa{*this, "TsCaixa", "Caixa"};
  TOrvDBGrid DBGrid1;
  TOrvDBGrid DBGrid2;
  TabSheet TsVendas{*this, "TsVendas", "Vendas"};
  TOrvDBGrid DBGrid3;
  TOrvDBGrid DBGrid4;
  TOrvDBGrid DBGrid5;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  // What the latest gathering asked for.
  struct Consulta {
    Periodo periodo;
    std::string conta;  // a condition on the account, with its leading AND
    std::string opcao;  // which sections are asked for
    bool empresas = false;
  };

  void EdtContaExit();
  void BitBtn29Click();
  void Monta(Gathering& andamento);
  void Cria_Tabela();
  void busca_Saldos();
  void Executa_SQL(Gathering& andamento);
  void SomaPorClasse(Gathering& andamento);
  void BuscaVendas(bool representante, bool condicao, bool moeda);
  // A section that isn't asked for has no rows.
  void Busca_Representante(bool pedida);
  void Busca_CondPagto(bool pedida);
  void Busca_Moeda(bool pedida);

  std::string PorEmpresa(const std::string& sql, const char* ordem = "") const;
  // The movements of the period, from FROM on.
  std::string Movimentos() const;
  // Sales that count, between the dates of the period.
  std::string Vendas(bool pedidas) const;
  void Abre(TOrvQuery& query, const std::string& sql);

  void DBGrid1DblClick();
  void DBGrid2DblClick();
  // The sales of a row of a section: from where, and by which column of it.
  void MostraVendas(TOrvQuery& query, const char* de, const char* coluna, const char* valor);

  Consulta consulta_;
};

extern ORV_EXPORT thread_local TfmRelSintatico* fmRelSintatico;

}  // namespace orv
