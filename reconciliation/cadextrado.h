// The lines of the bank statements: found by filters, kept by hand, loaded from the files of the banks.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "frame/aviso.h"
#include "frame/module.h"
#include "frame/screen.h"
#include "reconciliation/formats/bank_text.h"
#include "reconciliation/formats/ofx.h"
#include "toolkit/client_dataset.h"
#include "toolkit/table.h"

namespace orv {

class ORV_EXPORT TFmCadExtrato : public Child {
 public:
  explicit TFmCadExtrato(Application& application);

  PageControl PageControl1{*this, "PageControl1", 0};

  // --- Acesso.
  TabSheet TabSheet1{*this, "TabSheet1", "Acesso"};

  GroupBox GbPeriodo{*this, "GbPeriodo", "Período"};
  DateEdit dtInicio{*this, "dtInicio", "De"};
  DateEdit dtFim{*this, "dtFim", "Até"};
  Edit edtAConta{*this, "edtAConta", "Conta", 13};
  TPesquisa pqAConta{*this, "pqAConta", Contas()};
  RadioGroup RgBusca{*this, "RgBusca", "Buscar", {"Todos", "A Conciliar", "Conciliados"}, 0};
  Edit EdtCDocto{*this, "EdtCDocto", "Documento", 12};
  Button BitBtn5{*this, "BitBtn5", "&Consultar"};

  TOrvQuery QryExtrato{Tabela.IBDatabase(), "QryExtrato"};
  TOrvDBGrid DBGrid2{*this, "DBGrid2", QryExtrato, ColunasExtrato()};
  Button BitBtn1{*this, "BitBtn1", "&Imprimir"};

  // --- Cadastro.
  TabSheet TabSheet2{*this, "TabSheet2", "Cadastro"};

  TOrvTable TbExtrato{Tabela.IBDatabase(), "TbExtrato", "EXTRATO"};

  Panel PainelDados{*this, "PainelDados"};
  DBEdit EdtLancamento{*this, "EdtLancamento", "Lançamento", TbExtrato, "LANCTO"};
  DBEdit EdtConta{*this, "EdtConta", "Conta", TbExtrato, "CONTA"};
  TPesquisa PqConta{*this, "PqConta", Contas()};
  DBEdit EdtData{*this, "EdtData", "Data", TbExtrato, "DT_CONT"};
  DBEdit EdtDocto{*this, "EdtDocto", "Documento", TbExtrato, "DOCTO"};
  ComboBox CbOperacao{*this, "CbOperacao", "Operação", {"C", "D"}};
  DBEdit EdtValor{*this, "EdtValor", "Valor", TbExtrato, "VALOR"};
  DBEdit CbConciliado{*this, "CbConciliado", "Conciliado", TbExtrato, "CONCILIADO"};
  MoneyEdit EdtSaldo{*this, "EdtSaldo", "Saldo"};
  DBEdit EdtObs{*this, "EdtObs", "Observação", TbExtrato, "OBSERVACAO"};

  TOrvDBGrid DBGrid1{*this, "DBGrid1", TbExtrato, ColunasExtrato()};

  Panel PainelConfirma{*this, "PainelConfirma"};
  Button SbConfirmar{*this, "SbConfirmar", "Confirmar "};
  // Leaves the focus where it is: giving up asks nothing of the field.
  SmallButton SbDesistir{*this, "SbDesistir", "Desistir"};

  Panel PainelControle{*this, "PainelControle"};
  SmallButton sbPrimeiro{*this, "sbPrimeiro", "Primeiro"};
  SmallButton sbAnterior{*this, "sbAnterior", "Anterior"};
  SmallButton sbProximo{*this, "sbProximo", "Próximo"};
  SmallButton sbUltimo{*this, "sbUltimo", "Último"};
  Button btnincluir{*this, "btnincluir", "&Incluir"};
  Button BtnAltera{*this, "BtnAltera", "&Alterar"};
  SmallButton SbConsulta{*this, "SbConsulta", "Consultar"};
  TPesquisa PqExtrato{*this, "PqExtrato",
                      ListOf("EXTRATO", "LANCTO",
                             {{"LANCTO", "Lançamento"},
                              {"CONTA", "Conta"},
                              {"DOCTO", "Documento"},
                              {"DT_CONT", "Data"},
                              {"VALOR", "Valor"},
                              {"OBSERVACAO", "Observação"}})};
  Button BitBtn2{*this, "BitBtn2", "Conciliar"};
  Button BtExcluir{*this, "BtExcluir", "&Excluir"};
  Button BtSaida{*this, "BtSaida", "Fechar"};

  // --- Importação.
  TabSheet TabSheet3{*this, "TabSheet3", "Importação"};

  Edit EdtCam{*this, "EdtCam", "Pasta", 1024};
  Button BitBtn3{*this, "BitBtn3", "Procurar..."};
  Edit EdtArq{*this, "EdtArq", "Arquivo"};
  DateEdit DtArq{*this, "DtArq", "Data do Arquivo"};
  Edit EdtIConta{*this, "EdtIConta", "Conta", 13};
  TPesquisa PqIConta{*this, "PqIConta", Contas()};
  ReadOnlyEdit EdtINomeConta{*this, "EdtINomeConta"};
  MoneyEdit EdtISaldo{*this, "EdtISaldo", "Saldo Anterior"};
  Button BitBtn6{*this, "BitBtn6", "Ca&rregar"};
  // What became of the file's lines.
  Label LbCarga{*this, "LbCarga"};

  // The lines loaded, for review.
  struct ImportaSet : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Conta{*this, "Conta", FieldType::String, 15};
    Field Docto{*this, "Docto", FieldType::String, 10};
    Field DtCont{*this, "Dt_Cont", FieldType::Date};
    Field Valor{*this, "Valor", FieldType::Currency};
    Field Operacao{*this, "Operacao", FieldType::String, 1};
    Field Obs{*this, "Obs", FieldType::String, 100};
    Field Chave{*this, "Chave", FieldType::String, 20};
  } TbImporta{"TbImporta"};

  TOrvDBGrid DBGrid3{*this,
                     "DBGrid3",
                     TbImporta,
                     {{"Docto", "Documento", 12, true},
                      {"Dt_Cont", "Data", 0, true},
                      {"Valor", "Valor", 0, true},
                      {"Operacao", "Operação", 0, true},
                      {"Obs", "Observação"}},
                     false};
  MoneyEdit EdtSaldoFinal{*this, "EdtSaldoFinal", "Saldo Final"};
  Button BitBtn4{*this, "BitBtn4", "&Confirmar"};
  // Where the load stopped, if it didn't come to the end of the file.
  Aviso LbParada{*this, "LbParada"};

  std::optional<Registro> RegistroAtual() override;

 private:
  // --- Creation (cadextrado.cpp).
  static std::vector<GridColumn> ColunasExtrato();
  void Desenha();
  void LigaAcesso();
  void LigaCadastro();
  void LigaImportacao();

  // --- Acesso (cadextrado.cpp).
  void BitBtn1Click();
  void BitBtn5Click();
  void ConsultaExtrato(const std::string& ordem);
  void DBGrid2DblClick();

  // --- Cadastro (cadextrado_lines.cpp).
  void btnincluirClick();
  void BtnAlteraClick();
  void BtExcluirClick();
  void SbConfirmarClick();
  void SbDesistirClick();
  void TbExtratoAfterScroll();
  void EdtContaChange();
  void EdtContaExit();
  void CbOperacaoExit();
  void Bar_Confirma(bool edita);
  // The field in capitals, as it was given.
  void Maiusculas(const char* campo);
  // What the bank reported of the account over all dates, credits less debits.
  Currency SaldoExtrato(const std::string& conta);
  // Tells that the account isn't there and keeps the focus. An empty field passes.
  void ContaExit(Edit& campo);

  // --- Importação (cadextrado_import.cpp).
  void EdtCamExit();
  void EdtArqChange();
  void EdtIContaChange();
  void BitBtn3Click();
  void BitBtn4Click();
  void CarregaArquivo();
  // The name by which the file is known.
  std::string Arquivo() const;
  // Forgets what was loaded.
  void Esquece();
  // False when the user wants nothing of a file of another bank.
  bool AceitaBanco(const std::string& texto, const std::string& banco);
  PositionLayout Posicoes(const std::string& banco);
  // True when the account's lines of the file were confirmed up to where its load had stopped.
  bool Interrompido();
  // How often each line stands in EXTRATO, where `condicao` finds it.
  using Contagem = std::unordered_map<std::string, int64_t>;
  Contagem Gravadas(const std::string& condicao);
  // Fills TbImporta, the balance and the line that tells of the load.
  void LeArquivo(const std::string& texto, const PositionLayout& posicoes, Contagem confirmadas);
  // Takes a line into TbImporta and into the balance, unless it is one of those that were confirmed before.
  StatementSink Inclui(Currency& saldo, Contagem confirmadas);
  std::string Resumo(const BankTextSummary& lidas) const;
  std::string Resumo(const OfxSummary& lidos) const;
  // Tells how many of the lines loaded stand in EXTRATO with the same account, date, amount, side and
  // document.
  std::string Repetidas();
  void GravaExtrato();
  // Keeps how the file ended, beside its lines.
  void GravaFim(int64_t linhas);

  // The period of the lines found.
  std::pair<std::string, std::string> consultado_;
  // The file chosen is no OFX.
  bool NotOFX = true;
  struct Carga {
    // The file's lines that were confirmed before, and so are left out.
    std::size_t confirmadas = 0;
    // The line of the file at which the load stopped, 0 where it came to the end.
    std::size_t parada = 0;
  } carga_;
  // The paths of the file whose lines are in review and of the one confirmed last.
  std::string carregado_, confirmado_;
  // The account whose balance stands in EdtSaldo.
  std::string conta_do_saldo_;
};

extern ORV_EXPORT thread_local TFmCadExtrato* FmCadExtrato;

}  // namespace orv
