// Movements by what became of them: what was settled in the period, what is pending, what is post-dated and
// what is still to be accounted for, each section with its running balance, and the titles that they settled.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/module.h"
#include "frame/report_screen.h"
#include "rules/periodo.h"
#include "toolkit/shared_texts.h"

namespace orv {

class ORV_EXPORT TfmRelVencto : public ReportScreen {
 public:
  explicit TfmRelVencto(Application& application);

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período"};
  DateEdit EdtDataDe{*this, "EdtDataDe", "De"};
  DateEdit edtDataAte{*this, "edtDataAte", "Até"};
  RadioGroup RgData{*this, "RgData", "Considerar Data", {"Lançamento", "Contabilização", "Vencimento"}, 0};
  Edit EdtConta{*this, "EdtConta", "Conta"};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  SmallButton SpeedButton1{*this, "SpeedButton1", "Limpar"};
  GroupBox GbFiltros{*this, "GbFiltros", "Movimentos"};
  Edit EdtClasse{*this, "EdtClasse", "Classe"};
  TPesquisa PqClasses{*this, "PqClasses", Classes()};
  SmallButton SpeedButton2{*this, "SpeedButton2", "Limpar"};
  Edit EdtHistHistorico{*this, "EdtHistHistorico", "Histórico", 5};
  TPesquisa PqHist{*this, "PqHist", Historicos()};
  ReadOnlyEdit EdtDesHistorico{*this, "EdtDesHistorico"};
  Edit EdtObs{*this, "EdtObs", "Observação", 100};
  GroupBox GbOpcoes{*this, "GbOpcoes", "Opções"};
  CheckBox CbPend{*this, "CbPend", "Buscar Pendentes", true};
  CheckBox CbPredata{*this, "CbPredata", "Buscar Pré-datados", true};
  CheckBox CbPendCont{*this, "CbPendCont", "Contabilização Pendente"};
  CheckBox CbFinanceiro{*this, "CbFinanceiro", "Buscar Financeiro"};
  Button BitBtn29{*this, "BitBtn29", "&Confirmar"};

  // The movements, laid down anew by each gathering. The sets and their fields are what the report reads by
  // name.
  static constexpr auto kRelatorio = std::to_array<ReportField>({
      {"Lancamento", FieldType::String, 7, {"Número", 0, 5}},
      {"Numero", FieldType::String, 15, {"Documento", 0, 6}},
      {"Banco", FieldType::String, 3, {"Banco", 0, 14}},
      {"Nome_Banco", FieldType::String, 20, {"Nome do Banco", 20, 15}},
      {"Conta", FieldType::String, 13, {"Conta", 0, 7}},
      {"Valor", FieldType::Currency, 0, {"Valor", 14, 9}},
      {"DtLanc", FieldType::Date, 0, {"Lançamento", 0, 2}},
      {"DtCont", FieldType::Date, 0, {"Contabilização", 0, 3}},
      {"DtVencto", FieldType::Date, 0, {"Vencimento", 0, 4}},
      {"DesGrupo", FieldType::String, 30, {"Classe", 26, 12}},
      {"Operacao", FieldType::String, 2, {"Op.", 0, 8}},
      {"Historico", FieldType::String, 30, {"Histórico", 24, 13}},
      {"Empresa", FieldType::String, 30, {"Titular", 24, 17}},
      {"Agencia", FieldType::String, 7, {"Agência", 0, 16}},
      {"Saldo", FieldType::Float, 0, {"Saldo", 14, 10}},
      {"SaldoIni", FieldType::Float, 0, {"Saldo Anterior", 14, 18}},
      {"Data_ini", FieldType::String, 12},
      {"data_fim", FieldType::String, 12},
      {"Grupo", FieldType::String, 2},
      {"Obs", FieldType::String, 100, {"Observação", 40, 11}},
      // The section's name as a whole, by which the report groups.
      {"Situacao", FieldType::String, 23, {"Situação", 24, 1}},
      {"Linha", FieldType::Integer},
  });
  TClientDataSet TbRelatorio{"TbRelatorio"};

  // The titles that they settled; the grid shows those of the row in focus. Linha is the row's.
  static constexpr auto kFinan = std::to_array<ReportField>({
      {"Tipo", FieldType::String, 1, {"Tipo", 9, 1}},
      {"Numero", FieldType::String, 12, {"Número", 0, 2}},
      {"Dupli", FieldType::String, 12, {"Duplicata", 0, 3}},
      {"Codcli", FieldType::String, 5, {"Código", 0, 4}},
      {"Nome", FieldType::String, 50, {"Cliente/Fornecedor", 30, 5}},
      {"Dt_Emissao", FieldType::Date, 0, {"Emissão", 0, 6}},
      {"Dt_Vencto", FieldType::Date, 0, {"Vencimento", 0, 7}},
      {"lancto", FieldType::String, 7},
      {"Obs", FieldType::String, 100, {"Observação", 40, 19}},
      {"CodHist", FieldType::String, 5, {"Hist.", 6, 15}},
      {"DescHist", FieldType::String, 50, {"Histórico", 24, 16}},
      {"DescClasse", FieldType::String, 50, {"Descrição da Classe", 28, 14}},
      {"Classe", FieldType::String, 6, {"Classe", 0, 13}},
      {"Valor", FieldType::Currency, 0, {"Valor", 14, 8}},
      {"Val_Pag", FieldType::Currency, 0, {"Pago", 14, 9}},
      {"Juros", FieldType::Currency, 0, {"Juros", 12, 10}},
      {"Val_Dev", FieldType::Currency, 0, {"Devolvido", 12, 11}},
      {"Desconto", FieldType::Currency, 0, {"Desconto", 12, 12}},
      {"ContaC", FieldType::String, 12, {"Conta Crédito", 0, 17}},
      {"ContaD", FieldType::String, 12, {"Conta Débito", 0, 18}},
      {"Obs_Baixa", FieldType::String, 100, {"Observação da Baixa", 40, 20}},
      {"Linha", FieldType::Integer},
  });
  TClientDataSet TbFinan{"TbFinan"};

  TOrvDBGrid DBGrid1;
  TOrvDBGrid DBGrid2;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  using Linha = ReportRow<kRelatorio>;
  using Titulo = ReportRow<kFinan>;
  // What was asked for by the latest gathering.
  struct Consulta {
    std::size_t dia = 0;  // of lancamentos::kDias
    Periodo periodo;
    std::string de, ate;  // as typed
    // Conditions with their leading AND: the opening balance doesn't know of the text.
    std::string filtro, filtro_texto;
    bool por_saldos = false;  // the kept sums know what `filtro` asks for
    std::string texto;        // in words
  };
  // Movements under one heading, in the order of a day.
  struct Secao {
    const char *situacao, *codigo;
    std::string condicao;
    std::size_t dia;
  };

  void BitBtn29Click();
  void BitBtn33Click();
  void FiltraTitulos();

  // --- The gathering (rel_vencto_gather.cpp).
  void Monta(Gathering& gathering);
  Consulta LeFiltros() const;
  void Monta_RelBaixado(Gathering& gathering);
  void Monta_RelPendente(Gathering& gathering);
  void Monta_RelPreDatado(Gathering& gathering);
  void Monta_RelContPendente(Gathering& gathering);
  // Appends the section's movements; how many there are.
  int64_t Monta_Rel(Gathering& gathering, const Secao& secao, Currency saldo);
  void BuscaFinanceiro(Gathering& gathering);
  // From FROM on, of the movements before the period that make the opening balance.
  std::string Anteriores() const;
  Currency SaldoAnterior() const;
  const char* Coluna() const;
  // Conditions on a column of days: up to the last day, after it.
  std::string Ate(const char* coluna) const;
  std::string Depois(const char* coluna) const;
  void Anexa(Linha& linha, const char* situacao, const char* codigo);

  // --- From a figure to where it comes from.
  void DBGrid1DblClick();
  void DBGrid2DblClick();
  void MostraLancamento(const std::string& lancamento);

  Consulta consulta_;
  Currency saldo_inicial_;
  // A balance that no field takes was met.
  bool cabem_ = true;
  // The sections' conditions, and the numbers of the movements row by row.
  std::vector<std::string> condicoes_;
  std::vector<Value> numeros_;
  // Names that many rows bear.
  SharedTexts nomes_;
};

extern ORV_EXPORT thread_local TfmRelVencto* fmRelVencto;

}  // namespace orv
