// Cash-flow statement: day by day what the company expects to receive and to pay, beside the balances of its
// bank accounts.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "frame/daily_chart.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/dias_efetivos.h"
#include "rules/fonte.h"
#include "rules/parcelas.h"
#include "rules/periodo.h"
#include "rules/titulo.h"
#include "toolkit/client_dataset.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TfmRelFluxo : public ReportScreen {
 public:
  explicit TfmRelFluxo(Application& application);

  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  Edit EdtConta{*this, "EdtConta", "Conta", 13};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  ReadOnlyEdit EdtEmp{*this, "EdtEmp"};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Geral", "Resumido"}, 0};
  GroupBox GbConta{*this, "GbConta", "Saldos"};
  DateEdit dtSaldo{*this, "dtSaldo", "Saldo Até"};
  CheckBox CbSaldo{*this, "CbSaldo", "Digitar Saldo"};
  MoneyEdit EdtSaldo{*this, "EdtSaldo", "Saldo Inicial"};
  GroupBox GbBancos{*this, "GbBancos", "Vencidos em Banco"};
  Edit edtBanco{*this, "edtBanco", "Bancos"};
  TPesquisa pqBanco{*this, "pqBanco", Bancos()};
  SmallButton SpeedButton4{*this, "SpeedButton4", "Limpar"};
  RadioGroup rgOrdem{*this, "rgOrdem", "Ordem", {"Data Lançamento", "Classe", "Entidade", "Número"}, 0};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbEmp{*this, "CbEmp", "Todas Empresas"};
  CheckBox CbCheque{*this, "CbCheque", "Buscar Cheques"};
  CheckBox CbVenCom{*this, "CbVenCom", "Vendas/Compras"};
  CheckBox CbOrcPagar{*this, "CbOrcPagar", "Orçamentos a Pagar"};
  CheckBox CbOrcReceber{*this, "CbOrcReceber", "Orçamentos a Receber"};
  CheckBox CBCond{*this, "CBCond", "Condições Pedido"};
  CheckBox CbContBanc{*this, "CbContBanc", "Float Bancário"};
  CheckBox CbProgramacao{*this, "CbProgramacao", "Programação Conta"};
  GroupBox GbSituacao{*this, "GbSituacao", "Situação"};
  Edit EdtSit{*this, "EdtSit", "Receber/Pagar"};
  TPesquisa PqSituacaoRP{*this, "PqSituacaoRP", Situacoes()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  GroupBox GbDesconsiderar{*this, "GbDesconsiderar", "Desconsiderar"};
  Edit EdtSitDesc{*this, "EdtSitDesc", "Receber"};
  TPesquisa PqSituacaoRec{*this, "PqSituacaoRec", Situacoes()};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Limpar"};
  Edit EdtSitDescPag{*this, "EdtSitDescPag", "Pagar"};
  TPesquisa PqSituacaoPag{*this, "PqSituacaoPag", Situacoes()};
  SmallButton SpeedButton3{*this, "SpeedButton3", "Limpar"};
  Button BitBtn29{*this, "BitBtn29", "Consultar"};

  // Laid down anew by each gathering: what is expected, and the balances of the accounts.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"DtLanc", FieldType::Date, 0, {"Data"}},
      {"Numero", FieldType::String, 10, {"Número"}},
      {"Documento", FieldType::String, 15, {"Documento"}},
      {"Vlr_receb", FieldType::Currency, 0, {"A Receber"}},
      {"Vlr_pagar", FieldType::Currency, 0, {"A Pagar"}},
      {"Vlr_Compra", FieldType::Currency, 0, {"Compras"}},
      {"Vlr_Venda", FieldType::Currency, 0, {"Vendas"}},
      {"Vlr_ChequeRec", FieldType::Currency, 0, {"Ch. Recebido"}},
      {"Vlr_ChequePag", FieldType::Currency, 0, {"Ch. Emitido"}},
      {"Cod_Pessoa", FieldType::String, 15, {"Código", 8}},
      {"Desc_Pessoa", FieldType::String, 40, {"Cliente/Fornecedor", 30}},
      {"Operacao", FieldType::String, 2, {"Op."}},
      {"Historico", FieldType::String, 40, {"Histórico", 30}},
      {"Data_ini", FieldType::String, 12, {"De", 10}},
      {"data_fim", FieldType::String, 12, {"Até", 10}},
      {"Vlr_Deb", FieldType::Currency, 0, {"Débito"}},
      {"Vlr_Cre", FieldType::Currency, 0, {"Crédito"}},
      {"Saldo", FieldType::Currency, 0, {"Saldo"}},
      {"Lim_Credito", FieldType::Currency, 0, {"Limite de Crédito"}},
      {"Banco", FieldType::String, 5, {"Banco"}},
      {"Nome_Banco", FieldType::String, 30, {"Nome do Banco", 20}},
      {"Grupo_Dias", FieldType::Integer, 0, {"Dias"}},
      {"SaldoCorr", FieldType::Currency, 0, {"Saldo Corrente"}},
      {"ClasseGer", FieldType::String, 6, {"Classe Ger."}},
      {"DescClasse", FieldType::String, 50, {"Descrição da Classe", 30}},
      {"Obs", FieldType::String, 250, {"Observação", 40}},
      {"Conta", FieldType::String, 13, {"Conta"}},
      {"Data", FieldType::Date, 0, {"Data Conta"}},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};
  static constexpr auto kSaldo = std::to_array<ReportField>({
      {"Sel", FieldType::String, 1, {"Sel", 4, 1, ColumnRole::Tick}},
      {"Valor", FieldType::Float, 0, {"Valor", 14, 4, ColumnRole::Fixed}},
      {"Empresa", FieldType::String, 30, {"Empresa", 30, 3, ColumnRole::Fixed}},
      {"Conta", FieldType::String, 15, {"Conta", 13, 2, ColumnRole::Fixed}},
      {"Operacao", FieldType::String, 1},
      {"ValReceb_Bancos", FieldType::Float},
  });
  TClientDataSet TbSaldo{"TbSaldo"};
  DailyChart GrafDia{*this, "GrafDia", "Entradas, saídas e saldo previsto"};
  TOrvDBGrid DBGrid1;
  TOrvDBGrid OrvDBGrid1;
  Button BitBtn33{*this, "BitBtn33", "Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "Fechar"};

 private:
  using Linha = ReportRow<kRelatorio>;
  // The period, and what a gathering remembers.
  struct Consulta {
    Gathering& andamento;
    Periodo periodo;
    DiasEfetivos dias;
  };

  void BitBtn29Click();
  void BitBtn33Click();
  void CbSaldoClick();
  void OrvDBGrid1KeyDown(KeyPress& key);

  // --- The gathering.
  void Monta(Gathering& andamento);
  void Cria_Tabela();
  void MostraGrafico();
  void busca_Saldos();
  void Grava_Receber(Consulta& consulta);
  void Grava_Pagar(Consulta& consulta);
  void BuscaPedidoPendente(Consulta& consulta);
  void BuscaCompraPendente(Consulta& consulta);
  void Grava_Cheque(Consulta& consulta);
  void GravaChequeEmitido(Consulta& consulta);
  void GravaChequeRecebido(Consulta& consulta);
  void BuscaSaldoAbertoBancos();
  void Ordena();
  // An order or a purchase that is to be parted into its instalments.
  struct Pendente {
    Fonte fonte;
    // Its number, its customer or supplier and his limit.
    Linha linha;
    Value condicao;
    Currency valor;
    Date base;
    std::string empresa;
  };
  // Raises ConversionError for a slot of the condition that is no number.
  void Gera_Duplicatas(Consulta& consulta, const Pendente& pendente);

  // Conditions of the statements, each beginning with " AND ".
  std::string FiltroProgramacao() const;
  std::string FiltroPeriodo(const char* coluna, const Consulta& consulta) const;
  std::string FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const;

  // Hands on each row of the statement and the columns beside it, and tells how far the gathering is.
  void Percorre(Consulta& consulta, const char* passo, std::string_view sql, std::string_view tabela,
                const std::function<void(Linha&, std::span<Value>)>& linha, std::string_view ordem = "");
  static void Zera(Linha& linha);
  // Completes a row and appends it. Its values are moved out.
  void Anexa(Linha& linha, Fonte fonte, Value chave, std::string_view empresa);

  // --- From a figure to where it comes from.
  void DBGrid1DblClick();
  void OrvDBGrid1DblClick();

  // False while the sets hold what a gathering left that didn't end.
  bool inteira_ = true;
  Origens origens_;
  // Names that many rows bear.
  SharedTexts nomes_;
};

extern ORV_EXPORT thread_local TfmRelFluxo* fmRelFluxo;

}  // namespace orv
