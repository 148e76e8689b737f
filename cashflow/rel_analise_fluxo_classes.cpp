// The analysis by classes and days.
#include "cashflow/rel_analise_fluxo.h"
#include "toolkit/row_writer.h"
#include "toolkit/text.h"

namespace orv {

Date TfmRelAnaliseFluxo::DiaDaClasse(DiasEfetivos& dias, Date vencimento) const {
  if (CbDiasUteis.Checked()) return dias.DiaUtil(vencimento);
  return CbContBanc.Checked() ? dias.Credito(vencimento, "") : vencimento;
}

Currency TfmRelAnaliseFluxo::ValorDaClasse() {
  Currency valor;
  for (std::size_t i = 0; i < kSomados; ++i) {
    // Work that is outside doesn't reach the classes.
    if (kTipos[i].campo == std::string_view("Prev_Pag")) continue;
    const Currency um = TbDetalha[kTipos[i].detalhe].AsCurrency();
    valor += kTipos[i].entrada ? um : -um;
  }
  return valor;
}

void TfmRelAnaliseFluxo::GeraAnaliseClasseMes(Gathering& andamento) {
  andamento.Stage("Classes por dia", TbDetalha.RecordCount());
  const Date de = EdtDataDe.Date();
  base_classe_ = de;
  CriaAnaliseClasse(de);

  struct Classe {
    Value operacao, descricao, conta;
  };
  std::unordered_map<std::string, Classe> cadastro;
  ForEach(Funcoes.DBLocal_SQL("SELECT CODIGO, OPERACAO, DESCRICAO, CONTA FROM {SUBGRUPO} SUBGRUPO", ""),
          [&](std::span<Value> v) {
            cadastro[v[0].AsString()] = {v[1], v[2], v[3]};
          });

  struct Dias {
    std::array<Currency, kDias> valores{};
    Currency total;
  };
  std::map<std::string, Dias> classes;
  Dias todas;
  Currency entradas_fora, saidas_fora, oficinas;
  DiasEfetivos dias(Funcoes, Contabil);
  const Field &vencto = TbDetalha["Vencto"], &codigo = TbDetalha["Classe"], &oficina = TbDetalha["Prev_pag"];
  for (TbDetalha.First(); !TbDetalha.Eof(); TbDetalha.Next(), andamento.Advance()) {
    const Currency valor = ValorDaClasse();
    oficinas += oficina.AsCurrency();
    const Date dia = DiaDaClasse(dias, vencto.AsDate());
    if (dia < de || dia >= de.AddDays(kDias)) {
      (valor < Currency() ? saidas_fora : entradas_fora) += valor;
      continue;
    }
    const auto k = static_cast<std::size_t>(dia - de);
    for (Dias* soma : {&classes[codigo.AsString()], &todas}) {
      soma->valores[k] += valor;
      soma->total += valor;
    }
  }
  TbDetalha.First();

  RowWriter total(TbAnaliseClasseTotalDia);
  for (std::size_t k = 0; k < kDias; ++k) total[*TbAnaliseClasseTotalDia.Fields()[k]] = todas.valores[k];
  total.Append();
  for (const auto& [classe, soma] : classes) {
    const auto achada = cadastro.find(classe);
    Classe dados = achada == cadastro.end() ? Classe{} : achada->second;
    if (dados.operacao.Text().empty()) dados.operacao = "X";
    RowWriter linha(TbAnaliseClasse);
    linha[TbAnaliseClasse["Classe"]] = classe;
    linha[TbAnaliseClasse["Operacao"]] = dados.operacao;
    linha[TbAnaliseClasse["Descricao"]] = dados.descricao;
    linha[TbAnaliseClasse["Conta"]] = dados.conta;
    linha[TbAnaliseClasse["Total"]] = soma.total;
    for (std::size_t k = 0; k < kDias; ++k) linha[*TbAnaliseClasse.Fields()[k]] = soma.valores[k];
    linha.Append();
  }
  PassaClasses();

  std::vector<std::string> fora;
  if (!entradas_fora.IsZero() || !saidas_fora.IsZero())
    fora.push_back("Fora dos " + std::to_string(kDias) + " dias a partir de " + de.Brazil() + ": entradas " +
                   entradas_fora.Brazil() + ", saídas " + (-saidas_fora).Brazil() + ".");
  if (!oficinas.IsZero())
    fora.push_back("Pagamentos de terceiros não entram aqui: " + oficinas.Brazil() + ".");
  fora_da_classe_ = Join(fora, " ");
}

// The days that count close up, so that the table stays dense.
void TfmRelAnaliseFluxo::PassaClasses() {
  std::vector<std::size_t> contam;
  TbAnaliseClasseTotalDia.First();
  for (std::size_t k = 0; k < kDias; ++k) {
    if (CbTodosDias.Checked() || !TbAnaliseClasseTotalDia.Fields()[k]->AsCurrency().IsZero())
      contam.push_back(k);
  }
  for (std::size_t k = 0; k < kDias; ++k) {
    const std::string coluna = "Dia" + std::to_string(k + 1);
    const bool conta = k < contam.size();
    if (conta) DBGrid3.SetColumnTitle(coluna, TbAnaliseClasse.Fields()[contam[k]]->Name().substr(3, 10));
    DBGrid3.SetColumnVisible(coluna, conta);
  }
  for (TbAnaliseClasse.First(); !TbAnaliseClasse.Eof(); TbAnaliseClasse.Next()) {
    RowWriter linha(TbClasseData);
    for (const char* campo : {"Classe", "Descricao", "Operacao", "Conta", "Total"})
      linha[TbClasseData[campo]] = TbAnaliseClasse[campo].Get();
    for (std::size_t k = 0; k < contam.size(); ++k)
      linha[TbClasseData["Dia" + std::to_string(k + 1)]] = TbAnaliseClasse.Fields()[contam[k]]->Get();
    linha.Append();
  }
  TbAnaliseClasse.EmptyDataSet();
  TbClasseData.SetIndexFieldNames("Operacao;Conta;Classe");
}

void TfmRelAnaliseFluxo::CriaAnaliseClasse(Date de) {
  for (TClientDataSet* set : {&TbAnaliseClasse, &TbAnaliseClasseTotalDia}) {
    if (set->Active()) set->Close();
    set->FieldDefs.Clear();
    for (int dia = 0; dia < kDias; ++dia)
      set->FieldDefs.Add("Dia" + de.AddDays(dia).Brazil(), FieldType::Currency);
  }
  TbAnaliseClasse.FieldDefs.Add("Classe", FieldType::String, 6);
  TbAnaliseClasse.FieldDefs.Add("Operacao", FieldType::String, 1);
  TbAnaliseClasse.FieldDefs.Add("Descricao", FieldType::String, 30);
  TbAnaliseClasse.FieldDefs.Add("Conta", FieldType::String, 20);
  TbAnaliseClasse.FieldDefs.Add("Total", FieldType::Currency);
  TbAnaliseClasse.CreateDataSet();
  TbAnaliseClasseTotalDia.CreateDataSet();
}

}  // namespace orv
