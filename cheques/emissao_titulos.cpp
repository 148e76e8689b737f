// The open payables of which a cheque pays, and what is selected of them.
#include <array>
#include <span>

#include "cheques/emissao.h"
#include "rules/titulo.h"

namespace orv {
namespace {

// While it lives, the program fills the set and what follows a change of the user's keeps out.
class Carga {
 public:
  explicit Carga(DataSet& set) : set_(set) { set_.Tag = 1; }
  ~Carga() { set_.Tag = 0; }
  Carga(const Carga&) = delete;
  Carga& operator=(const Carga&) = delete;

 private:
  DataSet& set_;
};

// The columns of the statement, in order, by their fields; the balance is the last.
constexpr const char* kColunas =
    "PAGTO.NUM_AP, '{}' AS EMPRESA, PAGTO.CODCRE, FORNECED.NOME, PAGTO.DT_VEN, PAGTO.DT_EMI, PAGTO.VAL_PAG, "
    "PAGTO.DOCTO, PAGTO.DUPLI, PAGTO.NUM_OS, PAGTO.HISTORICO, ";

class Linhas : public RowSink {
 public:
  explicit Linhas(TfmEmissao::PagtoSet& set)
      : set_(set),
        campos_{&set.Numero,     &set.Empresa, &set.CodCre, &set.Nome,   &set.Dt_Vencto, &set.Dt_Emissao,
                &set.Valor_Pago, &set.NF,      &set.Dupli,  &set.Classe, &set.Historico, &set.Saldo},
        linha_(set.Fields().size()) {
    for (int64_t row = 0, rows = set.DisplayCount(); row < rows; ++row)
      chaves_.insert(set.Cell(row, set.Numero).AsString() + set.Cell(row, set.Empresa).AsString());
  }
  void Columns(const std::vector<Column>& columns) override { ORV_ASSERT(columns.size() == campos_.size()); }
  bool Row(std::span<Value> values) override {
    for (std::size_t i = 0; i < campos_.size(); ++i)
      Celula(*campos_[i]) = campos_[i]->Convert(std::move(values[i]));
    std::string chave = Celula(set_.Numero).AsString() + Celula(set_.Empresa).AsString();
    if (!chaves_.insert(chave).second) return true;
    Celula(set_.Baixar) = "N";
    Celula(set_.Valor) = Celula(set_.Saldo).AsFloat();
    Celula(set_.Val_Pag_Cheque) = Currency();
    novas.push_back(std::move(chave));
    set_.AppendRow(linha_);
    return true;
  }

  std::vector<std::string> novas;

 private:
  Value& Celula(const Field& campo) { return linha_[static_cast<std::size_t>(campo.Index())]; }

  TfmEmissao::PagtoSet& set_;
  const std::array<const Field*, 12> campos_;
  std::vector<Value> linha_;
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

std::vector<std::string> TfmEmissao::IncluiTitulos(const std::string& sql) {
  const Carga carga(TbPagto);
  const ControlsHold hold(TbPagto);
  Linhas linhas(TbPagto);
  Tabela.IBDatabase().Fetch(sql, linhas);
  return std::move(linhas.novas);
}

void TfmEmissao::SoSelecionados() {
  TbPagto.PostIfEditing();
  const Carga carga(TbPagto);
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
