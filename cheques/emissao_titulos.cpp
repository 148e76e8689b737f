// The open payables of which a cheque pays, and what is selected of them.
#include <array>
#include <span>

#include "cheques/emissao.h"
#include "rules/titulo.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"

namespace orv {
namespace {

// The columns of the statement, in order, by their fields; the balance is the last.
constexpr const char* kColunas =
    "PAGTO.NUM_AP, '{}' AS EMPRESA, PAGTO.CODCRE, FORNECED.NOME, PAGTO.DT_VEN, PAGTO.DT_EMI, PAGTO.VAL_PAG, "
    "PAGTO.DOCTO, PAGTO.DUPLI, PAGTO.NUM_OS, PAGTO.HISTORICO, ";

// Takes the payables that aren't in the set yet.
class Linhas : public RowSink {
 public:
  explicit Linhas(TfmEmissao::PagtoSet& set)
      : set_(set),
        campos_{&set.Numero,     &set.Empresa, &set.CodCre, &set.Nome,   &set.Dt_Vencto, &set.Dt_Emissao,
                &set.Valor_Pago, &set.NF,      &set.Dupli,  &set.Classe, &set.Historico, &set.Saldo},
        linha_(set) {
    for (int64_t row = 0, rows = set.DisplayCount(); row < rows; ++row)
      chaves_.insert(set.Cell(row, set.Numero).AsString() + set.Cell(row, set.Empresa).AsString());
  }
  void Columns(const std::vector<Column>& columns) override { ORV_ASSERT(columns.size() == campos_.size()); }
  bool Row(std::span<Value> values) override {
    linha_.Take(campos_, values);
    if (!chaves_.insert(linha_[set_.Numero].AsString() + linha_[set_.Empresa].AsString()).second) return true;
    linha_[set_.Baixar] = "N";
    linha_[set_.Valor] = linha_[set_.Saldo].AsFloat();
    linha_[set_.Val_Pag_Cheque] = Currency();
    linha_.Append();
    ++novas;
    return true;
  }

  int64_t novas = 0;

 private:
  TfmEmissao::PagtoSet& set_;
  const std::array<const Field*, 12> campos_;
  RowWriter linha_;
  std::unordered_set<std::string> chaves_;
};

}  // namespace

// --- The set.

void TfmEmissao::BitBtn5Click() {
  const BusyMark busy(Funcoes, *this);
  SoSelecionados();
  std::string filtro = "PAGTO.STATUS = 'N' AND PAGTO.BLOQUEIO = 'N'" +
                       WhereBetween("PAGTO.DT_EMI", edtEmiIni.Date(), edtEmiFim.Date()) +
                       WhereBetween("PAGTO.DT_VEN", edtVenIni.Date(), edtVenFim.Date()) +
                       Where("PAGTO.CODCRE", "=", edtCodCliente) + Where("PAGTO.HISTORICO", "=", EdtHist1);
  filtro += EdtAP.Empty() ? " AND " + EmAbertoPagar() + " > 0" : Where("PAGTO.NUM_AP", "=", EdtAP);
  IncluiTitulos(SqlTitulos("", filtro));
  TbPagto.First();
}

std::string TfmEmissao::SqlTitulos(const std::string& juncao, const std::string& filtro) const {
  return ForCompanies("SELECT " + std::string(kColunas) + EmAbertoPagar() +
                          " AS VALOR FROM {PAGTO} PAGTO LEFT JOIN {ENTIDADE} FORNECED ON (FORNECED.CODCLI = "
                          "PAGTO.CODCRE)" +
                          juncao + " WHERE " + filtro,
                      "PAGTO", CbEmpresa.Checked());
}

int64_t TfmEmissao::IncluiTitulos(const std::string& sql) {
  const ScopedValue carga(TbPagto.Tag, 1);
  const ControlsHold hold(TbPagto);
  Linhas linhas(TbPagto);
  Tabela.IBDatabase().Fetch(sql, linhas);
  return linhas.novas;
}

void TfmEmissao::SoSelecionados() {
  TbPagto.PostIfEditing();
  const ScopedValue carga(TbPagto.Tag, 1);
  const ControlsHold hold(TbPagto);
  std::vector<std::vector<Value>> ficam;
  marcas_.ForEach([&](int64_t row) {
    std::vector<Value>& linha = ficam.emplace_back();
    for (const Field* campo : TbPagto.Fields()) linha.push_back(TbPagto.Cell(row, *campo));
  });
  TbPagto.EmptyDataSet();
  for (std::vector<Value>& linha : ficam) TbPagto.AppendRow(linha);
}

void TfmEmissao::EsvaziaTitulos() {
  TbPagto.EmptyDataSet();
  apanhados_.clear();
  EdtTotal.SetAmount(Currency());
}

void TfmEmissao::TbPagtoBeforePost() {
  if (TbPagto.Tag != 0 || TbPagto.Saldo.AsCurrency() >= TbPagto.Valor.AsCurrency()) return;
  Warn("O valor do Cheque não pode ser maior que o Saldo da Duplicata.");
  TbPagto.Valor = TbPagto.Saldo.AsFloat();
}

void TfmEmissao::TbPagtoAfterPost() {
  if (TbPagto.Tag != 0) return;
  const Currency soma = marcas_.Sum(TbPagto.Valor);
  EdtTotal.SetAmount(soma);
  EdtValor.SetAmount(soma);
}

// --- What is selected.

std::vector<TfmEmissao::Titulo> TfmEmissao::Selecionados() {
  std::vector<Titulo> selecionados;
  marcas_.ForEach([&](int64_t row) {
    const auto texto = [&](const Field& campo) { return TbPagto.Cell(row, campo).AsString(); };
    Titulo titulo{texto(TbPagto.Numero),
                  texto(TbPagto.Empresa),
                  texto(TbPagto.Dupli),
                  texto(TbPagto.CodCre),
                  texto(TbPagto.Nome),
                  texto(TbPagto.Classe),
                  texto(TbPagto.Historico),
                  TbPagto.Cell(row, TbPagto.Valor).AsCurrency(),
                  {}};
    if (apanhados_.contains(titulo.numero + titulo.empresa)) return;
    titulo.parte = titulo.valor;
    selecionados.push_back(std::move(titulo));
  });
  return selecionados;
}

std::vector<TfmEmissao::Titulo> TfmEmissao::Partes(const std::vector<Titulo>& titulos, Currency total) {
  std::vector<Titulo> partes;
  for (const Titulo& titulo : titulos) {
    if (total <= Currency()) break;
    partes.push_back(titulo);
    partes.back().parte = std::min(titulo.valor, total);
    total -= partes.back().parte;
  }
  return partes;
}

}  // namespace orv
