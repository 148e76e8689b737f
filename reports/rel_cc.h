// Account statement: the movements of one account, of all accounts of the cash flow or of those of all
// companies, with the balance before the period, a running balance and the titles that each one settled.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/module.h"
#include "frame/report_screen.h"
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

  // The movements; its fields are laid down by each gathering.
  TClientDataSet TbRelatorio{"TbRelatorio"};

  // The titles that they settled.
  struct FinanSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Tipo{*this, "Tipo", FieldType::String, 1};
    Field Lancto{*this, "Lancto", FieldType::String, 7};
    Field Docto{*this, "Docto", FieldType::String, 15};
    Field Numero{*this, "Numero", FieldType::String, 12};
    Field Dupli{*this, "Dupli", FieldType::String, 12};
    Field Codcli{*this, "Codcli", FieldType::String, 5};
    Field Nome{*this, "Nome", FieldType::String, 80};
    Field DtEmissao{*this, "Dt_Emissao", FieldType::Date};
    Field DtVencto{*this, "Dt_Vencto", FieldType::Date};
    Field Obs{*this, "Obs", FieldType::String, 100};
    Field DescHist{*this, "DescHist", FieldType::String, 50};
    Field CodHist{*this, "CodHist", FieldType::String, 4};
    Field Valor{*this, "Valor", FieldType::Currency};
    Field ValPag{*this, "Val_Pag", FieldType::Currency};
    Field Juros{*this, "Juros", FieldType::Currency};
    Field ValDev{*this, "Val_Dev", FieldType::Currency};
    Field Desconto{*this, "Desconto", FieldType::Currency};
    Field ContaC{*this, "ContaC", FieldType::String, 12};
    Field ContaD{*this, "ContaD", FieldType::String, 12};
    Field ObsBaixa{*this, "Obs_Baixa", FieldType::String, 100};
    Field Classe{*this, "Classe", FieldType::String, 6};
    Field DescClasse{*this, "Desc_Classe", FieldType::String, 50};
    Field Cnpj{*this, "CNPJ", FieldType::String, 18};
  } TbFinan{"TbFinan"};

  TOrvDBGrid DBGrid1;
  TOrvDBGrid DBGrid2;
  Button BitBtn33{*this, "BitBtn33", "&Imprimir"};
  Button BitBtn5{*this, "BitBtn5", "&Fechar"};

 private:
  enum class Tipo : uint8_t { PorConta, TodasContas, TodasEmpresas };
  // A title as TbFinan has it.
  using Titulo = std::array<Value, 23>;
  // What was asked for by the latest gathering, as its drill-downs need it.
  struct Consulta {
    Tipo tipo = Tipo::PorConta;
    const char* data = "";  // the column of the period
    Date de, ate;
    std::string filtro;         // of the balance and of the movements, with its leading AND
    std::string filtro_linhas;  // of the movements only
  };
  // Some days of the period whose movements are brought together, and the companies that have any.
  struct Janela {
    Date de, ate;
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
  void CriaRelatorio();
  Consulta LeFiltros() const;
  std::string Indice() const;
  Currency SaldoAnterior() const;
  std::vector<Janela> Janelas(int64_t& linhas);
  void BuscaPessoas(const Janela& janela, Anexos& anexos) const;
  void BuscaFinanceiro(const Janela& janela, Anexos& anexos) const;
  void Anexa(std::span<Value> movimento, Anexos& anexos, Currency inicial, Currency& saldo);
  void AnexaTitulos(const std::vector<Titulo>& titulos, const std::string& lancamento, bool repete,
                    uint16_t empresa);
  void ContasSemMovimento(Currency inicial);
  // The statement's text from FROM on, for the movements between two days; " AND " and what else narrows
  // them.
  std::string Movimentos(Date de, Date ate, std::string_view mais = "") const;
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
