// Account statement: the movements of one account, of all accounts of the cash flow or of those of all
// companies, with the balance before the period, a running balance and the titles that each one settled.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/daily_chart.h"
#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TfmRelCC : public ReportScreen {
 public:
  explicit TfmRelCC(Application& application);

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período"};
  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  Edit RelConta{*this, "RelConta", "Conta", 13};
  TPesquisa wwrelConta{*this, "wwrelConta", Contas()};
  ReadOnlyEdit Edit1{*this, "Edit1"};
  RadioGroup RgTipo{*this, "RgTipo", "Tipo", {"Por Conta", "Todas Contas", "Todas Contas/Empresas"}, 0};
  RadioGroup RgAgrupar{*this,
                       "RgAgrupar",
                       "Agrupar por",
                       {"Data", "Clas. Gerencial", "Histórico", "Classe /Hist. /Analítico",
                        "Classe /Hist. /Sintético", "Documento", "Data/Operação", "Conta/Data"},
                       0};
  RadioGroup RgData{*this, "RgData", "Considerar Data", {"Lançamento", "Contabilização", "Vencimento"}, 1};
  RadioGroup RgBusca{*this, "RgBusca", "Buscar", {"Todos", "Baixados"}, 0};
  GroupBox GbFiltros{*this, "GbFiltros", "Movimentos"};
  Edit RelCodBan{*this, "RelCodBan", "Banco", 3};
  TPesquisa PqBanco{*this, "PqBanco", Bancos()};
  ReadOnlyEdit RelDesBan{*this, "RelDesBan"};
  Edit EdtHistHistorico{*this, "EdtHistHistorico", "Histórico", 5};
  TPesquisa pqHistorico{*this, "pqHistorico", Historicos()};
  ReadOnlyEdit EdtDesHistorico{*this, "EdtDesHistorico"};
  Edit EdtDocto{*this, "EdtDocto", "Doc.", 15};
  GroupBox GbClasse{*this, "GbClasse", "Classe Gerencial"};
  Edit EdtClasseIni{*this, "EdtClasseIni", "De", 6};
  TPesquisa PqClasseIni{*this, "PqClasseIni", Classes()};
  Edit EdtClasseFim{*this, "EdtClasseFim", "Até", 6};
  TPesquisa PqClasseFim{*this, "PqClasseFim", Classes()};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbZeradas{*this, "CbZeradas", "Contas Zeradas"};
  CheckBox CbFinanceiro{*this, "CbFinanceiro", "Buscar Financeiro"};
  CheckBox cbAgpPendente{*this, "cbAgpPendente", "Agrupa Pendente"};
  Button BitBtn29{*this, "BitBtn29", "&Consultar"};

  // The movements, laid down anew by each gathering. The sets and their fields are what the report reads by
  // name.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"Lancamento", FieldType::String, 7, {"Número", 0, 4}},
      {"Numero", FieldType::String, 15, {"Documento", 0, 5}},
      {"Banco", FieldType::String, 5, {"Banco", 0, 17}},
      {"Nome_Banco", FieldType::String, 40, {"Nome do Banco", 24, 18}},
      {"Conta", FieldType::String, 13, {"Conta", 0, 6}},
      {"Operacao", FieldType::String, 2, {"Op.", 0, 7}},
      {"Valor", FieldType::Currency, 0, {"Valor", 14, 8}},
      {"Saldo", FieldType::Float, 0, {"Saldo", 14, 9}},
      {"SaldoIni", FieldType::Float, 0, {"Saldo Anterior", 14, 21}},
      {"DtLanc", FieldType::Date, 0, {"Lançamento", 0, 1}},
      {"DtCont", FieldType::Date, 0, {"Contabilização", 0, 2}},
      {"DtVencto", FieldType::Date, 0, {"Vencimento", 0, 3}},
      {"CodGrupo", FieldType::String, 6, {"Classe", 0, 13}},
      {"DesGrupo", FieldType::String, 50, {"Descrição da Classe", 28, 14}},
      {"CodHistorico", FieldType::String, 5, {"Hist.", 6, 15}},
      {"Historico", FieldType::String, 30, {"Histórico", 24, 16}},
      {"Limite", FieldType::Currency, 0, {"Limite", 14, 22}},
      {"Empresa", FieldType::String, 30, {"Titular", 24, 20}},
      {"Agencia", FieldType::String, 7, {"Agência", 0, 19}},
      {"Data_ini", FieldType::Date},
      {"data_fim", FieldType::Date},
      {"Grupo", FieldType::String, 2},
      {"Obs", FieldType::String, 100, {"Observação", 40, 12}},
      {"Pessoa", FieldType::String, 40, {"Cliente/Fornecedor", 30, 11}},
      {"Agrupar", FieldType::String, 1},
      {"Pendente", FieldType::String, 1, {"Pend.", 0, 10}},
      {"Tipo", FieldType::String, 2, {"Tipo", 0, 23}},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};

  // The titles that they settled.
  static constexpr auto kFinan = std::to_array<ReportField>({
      {"Tipo", FieldType::String, 1, {"Tipo", 0, 1}},
      {"Lancto", FieldType::String, 7, {"Lançamento", 0, 2}},
      {"Docto", FieldType::String, 15, {"Documento", 0, 5}},
      {"Numero", FieldType::String, 12, {"Número", 0, 3}},
      {"Dupli", FieldType::String, 12, {"Duplicata", 0, 4}},
      {"Codcli", FieldType::String, 5, {"Código", 0, 6}},
      {"Nome", FieldType::String, 80, {"Cliente/Fornecedor", 30, 7}},
      {"Dt_Emissao", FieldType::Date, 0, {"Emissão", 0, 8}},
      {"Dt_Vencto", FieldType::Date, 0, {"Vencimento", 0, 9}},
      {"Obs", FieldType::String, 100, {"Observação", 40, 21}},
      {"DescHist", FieldType::String, 50, {"Histórico", 24, 18}},
      {"CodHist", FieldType::String, 4, {"Hist.", 6, 17}},
      {"Valor", FieldType::Currency, 0, {"Valor", 14, 10}},
      {"Val_Pag", FieldType::Currency, 0, {"Pago", 14, 11}},
      {"Juros", FieldType::Currency, 0, {"Juros", 12, 12}},
      {"Val_Dev", FieldType::Currency, 0, {"Devolvido", 12, 13}},
      {"Desconto", FieldType::Currency, 0, {"Desconto", 12, 14}},
      {"ContaC", FieldType::String, 12, {"Conta Crédito", 0, 19}},
      {"ContaD", FieldType::String, 12, {"Conta Débito", 0, 20}},
      {"Obs_Baixa", FieldType::String, 100, {"Observação da Baixa", 40, 22}},
      {"Classe", FieldType::String, 6, {"Classe", 0, 15}},
      {"Desc_Classe", FieldType::String, 50, {"Descrição da Classe", 28, 16}},
      {"CNPJ", FieldType::String, 18, {"CNPJ", 0, 23}},
  });
  TClientDataSet TbFinan{"TbFinan"};

  DailyChart GrafDia{*this, "GrafDia", "Movimento e saldo"};
  TOrvDBGrid DBGrid1;
  TOrvDBGrid DBGrid2;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  enum class Tipo : uint8_t { PorConta, TodasContas, TodasEmpresas };
  using Linha = ReportRow<kRelatorio>;
  using Titulo = ReportRow<kFinan>;
  // What was asked for by the latest gathering, as its drill-downs need it.
  struct Consulta {
    Tipo tipo = Tipo::PorConta;
    const char* data = "";  // the column of the period
    Periodo periodo;
    std::string filtro;         // of the balance and of the movements, with its leading AND
    std::string filtro_linhas;  // of the movements only
    bool por_saldos = false;    // the kept sums know what `filtro` asks for
  };
  // Some days of the period whose movements are brought together, and the companies that have any.
  struct Janela {
    Periodo dias;
    std::vector<uint16_t> empresas;
  };
  // What the movements of a window bring along, by the movement's key.
  struct Anexos {
    std::unordered_map<std::string, Value> clientes, fornecedores;
    std::unordered_map<std::string, std::vector<Titulo>> pagar, receber;
  };

  void RgTipoClick();
  void RelCodBanChange();
  void EdtHistHistoricoChange();
  void BitBtn29Click();
  void BitBtn33Click();

  // --- The gathering (rel_cc_gather.cpp).
  void Monta_Rel(Gathering& gathering);
  Consulta LeFiltros() const;
  std::string Indice() const;
  // What stands before the period, from FROM on.
  std::string Anteriores() const;
  Currency SaldoAnterior() const;
  std::vector<Janela> Janelas(int64_t& linhas);
  void BuscaPessoas(const Janela& janela, Anexos& anexos) const;
  void BuscaFinanceiro(const Janela& janela, Anexos& anexos) const;
  void Anexa(Linha& linha, uint16_t empresa, Anexos& anexos, Currency inicial, Currency& saldo);
  void AnexaTitulos(const std::vector<Titulo>& titulos, const std::string& lancamento, bool repete,
                    uint16_t empresa);
  void ContasSemMovimento(Currency inicial);
  // The statement's text from FROM on, for the movements between two days; " AND " and what else narrows
  // them.
  std::string Movimentos(const Periodo& dias, std::string_view mais = "") const;
  std::string PorEmpresa(std::string_view sql, std::string_view tabela, std::string_view ordem = "") const;
  uint16_t Empresa(std::string_view sufixo);

  // --- From a figure to where it comes from (rel_cc_detail.cpp).
  void DBGrid1DblClick();
  void DBGrid2DblClick();
  void MostraLancamento(const std::string& lancamento, uint16_t empresa);
  void MostraSaldoAnterior();

  Consulta consulta_;
  // The choices of RgData, RgAgrupar and cbAgpPendente by which the latest gathering was laid down.
  std::optional<std::tuple<int, int, bool>> como_;
  // Names that many rows bear.
  SharedTexts nomes_;
  // Suffixes of companies, and by row, as it was added, which of them it is of.
  std::vector<std::string> empresas_;
  std::vector<uint16_t> empresa_da_linha_, empresa_do_titulo_;
};

extern ORV_EXPORT thread_local TfmRelCC* fmRelCC;

}  // namespace orv
