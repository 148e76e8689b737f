// Cash-flow statement: day by day what the company expects to receive and to pay, beside the balances of its
// bank accounts.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/dias_efetivos.h"
#include "rules/parcelas.h"
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

  // Rebuilt by each gathering: what is expected, and the balances of the accounts.
  TClientDataSet TbRelatorio{"TbRelatorio"};
  TClientDataSet TbSaldo{"TbSaldo"};
  TOrvDBGrid DBGrid1;
  TOrvDBGrid OrvDBGrid1;
  Button BitBtn33{*this, "BitBtn33", "Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "Fechar"};

 private:
  // A row's fields, in the order of the set.
  enum Campo : uint8_t {
    DtLanc,
    Numero,
    Documento,
    Vlr_receb,
    Vlr_pagar,
    Vlr_Compra,
    Vlr_Venda,
    Vlr_ChequeRec,
    Vlr_ChequePag,
    Cod_Pessoa,
    Desc_Pessoa,
    Operacao,
    Historico,
    Data_ini,
    data_fim,
    Vlr_Deb,
    Vlr_Cre,
    Saldo,
    Lim_Credito,
    Banco,
    Nome_Banco,
    Grupo_Dias,
    SaldoCorr,
    ClasseGer,
    DescClasse,
    Obs,
    Conta,
    Data,
    kCampos
  };
  // Where a row comes from, with the table's key and the company.
  enum class Fonte : uint8_t { Receber, Pagar, Cheque, Movimento, Pedido, Compra };
  struct Origem {
    Value chave;
    uint16_t empresa;
    Fonte fonte;
  };
  using Linha = std::array<Value, kCampos>;
  // The period, and what a gathering remembers.
  struct Consulta {
    Gathering& andamento;
    Date de, ate;
    DiasEfetivos dias;
    bool Dentro(Date dia) const { return !dia.Empty() && de <= dia && dia <= ate; }
  };

  void BitBtn29Click();
  void BitBtn33Click();
  void CbSaldoClick();
  void EdtContaExit();
  void OrvDBGrid1KeyDown(KeyPress& key);

  // --- The gathering.
  void Monta(Gathering& andamento);
  void Cria_Tabela();
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
    Value numero, pessoa, nome, condicao, limite;
    Currency valor;
    Date base;
    uint16_t empresa;
  };
  // Raises ConversionError for a slot of the condition that is no number.
  void Gera_Duplicatas(Consulta& consulta, const Pendente& pendente);

  // Conditions of the statements, each beginning with " AND ".
  std::string FiltroProgramacao() const;
  std::string FiltroPeriodo(const char* coluna, const Consulta& consulta) const;
  std::string FiltroSituacao(const std::string& tabela, const Edit& desconsiderar) const;
  std::string FiltroStatus(const std::string& tabela, const CheckBox& orcamentos) const;

  // Hands on each row of the statement, and tells how far the gathering is.
  void Percorre(Consulta& consulta, const char* passo, std::string_view sql, std::string_view tabela,
                const std::function<void(std::span<Value>)>& linha, std::string_view ordem = "");
  // Completes a row and appends it. Its values are moved out.
  void Anexa(Linha& linha, Origem origem);
  uint16_t Empresa(std::string_view sufixo);

  // --- From a figure to where it comes from.
  void DBGrid1DblClick();
  void OrvDBGrid1DblClick();

  // False while the sets hold what a gathering left that didn't end.
  bool inteira_ = true;
  std::deque<Origem> origens_;
  std::vector<std::string> empresas_;
  // Names that many rows bear.
  SharedTexts nomes_;
};

extern ORV_EXPORT thread_local TfmRelFluxo* fmRelFluxo;

}  // namespace orv
