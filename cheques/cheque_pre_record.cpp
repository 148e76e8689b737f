// The page "Cadastro": a cheque is captured, altered, deleted, or handed over to another company.
#include "cheques/cheque_pre.h"
#include "rules/bloqueio.h"
#include "rules/cheque.h"
#include "rules/historico.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kIdentidade = "CHAVE;BANCO;CONTA;NUMERO";
constexpr const char* kNenhum = "Nenhum cheque selecionado.";
constexpr const char* kExcluido = "Outro usuário alterou ou excluiu este cheque. Consulte-o novamente.";
constexpr const char* kEmissao = "É necessário informar uma Data de Emissão válida para o Cheque.";
constexpr const char* kVencimento = "É necessário informar uma Data de Vencimento válida para o Cheque.";

}  // namespace

// --- Buttons.

void TfmChequePre::BtincluirClick() {
  if (!Funcoes.Acessa(ClassName(), 'A', "0", "")) return;
  const std::string chave = Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true);
  tbCheque_pre.Append();
  tbCheque_pre["CHAVE"] = chave;
  tbCheque_pre["EMISSAO"] = Today();
  tbCheque_pre["VENCIMENTO"] = Today();
  tbCheque_pre["STATUS"] = "P";
  tbCheque_pre["TIPO"] = "R";
  DBGrid1.SetEnabled(false);
  Bar_Confirma(true);
  DBEDCodBan.SetFocus();
}

void TfmChequePre::BtnAlteraClick() {
  if (!Funcoes.Acessa(ClassName(), 'A', "0", "")) return;
  if (!Rele()) return;
  tbCheque_pre.Edit();
  Bar_Confirma(true);
  DBGrid1.SetEnabled(false);
  EDChave.SetEnabled(false);
  DBEDT_DtEmissao.SetEnabled(false);
  RgTipo.SetEnabled(false);
  DBEDCodBan.SetFocus();
}

void TfmChequePre::BtExcluirClick() {
  if (!Funcoes.Acessa(ClassName(), 'E', "0", "")) return;
  if (!Rele()) return;
  const auto relacionados = Tabela.IBDatabase().Rows(
      "SELECT FIRST 1 1 FROM " + Funcoes.DBLocal("CONTACOR", true) +
      " WHERE LANCAMENTO = " + Funcoes.Aspas(Texto("CHAVE")) + " AND COALESCE(TIPO, '') <> 'L'");
  if (!relacionados.empty()) return Inform("Cheque relacionado a Duplicatas. Impossível Excluir.");
  if (!Ask("Deseja eliminar este Registro?")) return;
  Cheques(Funcoes, Tabela).ApagaTitulos({DBEDCodBan.Text(), DBEDConta.Text(), DBEDChequeNro.Text()});
  AnotaMovimento(Funcoes, Texto("CHAVE"), "EXCLUSAO DO CHEQUE " + Texto("NUMERO"), TOperacaoLog::Exclusao);
  tbCheque_pre.Remove();
  Tabela.CommitRetaining();
  tbCheque_pre.Refresh();
}

void TfmChequePre::BtnConfirmarClick() {
  if (tbCheque_pre.Editing()) {
    if (!Valida()) return;
    if (Vazio("CLIENTE")) tbCheque_pre["CLIENTE"] = "00000";
    if (Vazio("REPRESENTANTE")) tbCheque_pre["REPRESENTANTE"] = "0000";
    if (tbCheque_pre.State() == DataSetState::Insert) {
      if (!LancaCheque()) return;
    } else {
      const std::string movimento = MovimentoABaixar();
      if (!movimento.empty() && Bloqueio(Contabil, Tabela)
                                    .Movimentos(Funcoes.DBLocal("CONTACOR", true), movimento,
                                                {tbCheque_pre["DT_BAIXA"].AsDate()})) {
        return;
      }
      GravaCheque();
      if (!movimento.empty()) BaixaMovimento(movimento);
      Tabela.CommitRetaining();
    }
  } else {
    if (!Transferindo() || !Rele() || !ValidaTransferencia()) return;
    Transfere();
  }
  Conclui();
}

void TfmChequePre::BtnDesistirClick() {
  DBGrid1.SetEnabled(true);
  RgTipo.SetEnabled(true);
  Bar_Confirma(false);
  DBEDT_DtDevolucao.SetEnabled(false);
  Label12.SetEnabled(false);
  CBEmpresa.SetVisible(false);
  Label15.SetVisible(false);
  tbCheque_pre.Cancel();
  tbCheque_pre.Refresh();
  tbCheque_pre.Prior();
}

void TfmChequePre::BitBtn2Click() {
  if (!Rele()) return;
  ListaEmpresas();
  CBEmpresa.SetItemIndex(-1);
  CBEmpresa.SetVisible(true);
  Label15.SetVisible(true);
  Bar_Confirma(true);
  CBEmpresa.SetFocus();
}

void TfmChequePre::PqConsultaFechaPesquisa() {
  std::vector<Value> identidade;
  for (const std::string& campo : Split(kIdentidade, ";"))
    identidade.emplace_back(PqConsulta.RetornoPesquisa(campo));
  Localiza(identidade);
}

// --- The form.

void TfmChequePre::Bar_Confirma(bool confirma) {
  PainelDados.SetEnabled(confirma);
  PainelConfirma.SetVisible(confirma);
  PainelControle.SetVisible(!confirma);
}

void TfmChequePre::Conclui() {
  Bar_Confirma(false);
  DBGrid1.SetEnabled(true);
  DBEDT_DtEmissao.SetEnabled(true);
  RgTipo.SetEnabled(true);
  DBEDT_DtDevolucao.SetEnabled(false);
  Label12.SetEnabled(false);
  CBEmpresa.SetVisible(false);
  Label15.SetVisible(false);
  MostraGravado();
}

bool TfmChequePre::Vazio(const char* campo) { return Trim(Texto(campo)).empty(); }

bool TfmChequePre::Valida() {
  const Date emissao = tbCheque_pre["EMISSAO"].AsDate();
  if (emissao > tbCheque_pre["VENCIMENTO"].AsDate())
    return Recusa("A data de Vencimento não pode ser menor que a data de Emissão.", DBEDCodBan);
  if (Vazio("BANCO"))
    return Recusa("O Código do Banco não pode ser vazio, por favor informe um Banco.", DBEDCodBan);
  if (Vazio("NUMERO")) return Recusa("É necessário informar um Nro. Cheque.", DBEDChequeNro);
  if (Vazio("VALOR")) return Recusa("É necessário informar um Valor para o Cheque.", DBEDValor);
  if (tbCheque_pre.State() == DataSetState::Insert && (emissao.Empty() || emissao > Today())) {
    return Recusa(kEmissao, DBEDT_DtEmissao);
  }
  if (Vazio("VENCIMENTO")) return Recusa(kVencimento, DBEDT_DtVencto);
  return true;
}

// --- The row.

std::vector<Value> TfmChequePre::Identidade() {
  std::vector<Value> identidade;
  for (const std::string& campo : Split(kIdentidade, ";")) identidade.push_back(tbCheque_pre[campo].Get());
  return identidade;
}

bool TfmChequePre::Localiza(const std::vector<Value>& identidade) {
  return tbCheque_pre.Locate(kIdentidade, identidade) || tbCheque_pre.Locate("CHAVE", identidade[0]);
}

bool TfmChequePre::Rele() {
  tbCheque_pre.Cancel();
  if (tbCheque_pre.IsEmpty()) {
    Inform(kNenhum);
    return false;
  }
  const std::vector<Value> identidade = Identidade();
  tbCheque_pre.Refresh();
  if (Identidade() != identidade) throw UserError(kExcluido);
  return true;
}

void TfmChequePre::MostraGravado() {
  const std::vector<Value> identidade = Identidade();
  const bool edicao = tbCheque_pre.Editing();
  tbCheque_pre.Cancel();
  tbCheque_pre.Refresh();
  if (edicao) Localiza(identidade);
}

void TfmChequePre::GravaCheque() {
  const std::string numero = Texto("NUMERO");
  Funcoes.GeraLog("CONTACOR", "CHEQUE PRE NR.: " + numero, TOperacaoLog::Processo, numero);
  AnotaMovimento(
      Funcoes, Texto("CHAVE"),
      (tbCheque_pre.State() == DataSetState::Insert ? "INCLUSAO DO CHEQUE " : "ALTERACAO DO CHEQUE ") +
          numero + " BANCO " + Texto("BANCO"));
  tbCheque_pre.Store();
}

std::string TfmChequePre::MovimentoABaixar() {
  if (Texto("STATUS") != "B") return "";
  const Date baixa = tbCheque_pre["DT_BAIXA"].AsDate();
  return "LANCAMENTO = " + Funcoes.Aspas(Texto("CHAVE")) + " AND DOCTO = " + Funcoes.Aspas(Texto("NUMERO")) +
         " AND (PENDENTE IS DISTINCT FROM 'N'" +
         (baixa.Empty() ? ")"
                        : " OR DT_CONT IS DISTINCT FROM CAST(" + Funcoes.AspasData(baixa) + " AS DATE))");
}

void TfmChequePre::BaixaMovimento(const std::string& movimento) {
  const Date baixa = tbCheque_pre["DT_BAIXA"].AsDate();
  // A movement is never without its date.
  const std::string data = baixa.Empty() ? "" : "DT_CONT = " + Funcoes.AspasData(baixa) + ", ";
  Tabela.IBDatabase().Execute("UPDATE " + Funcoes.DBLocal("CONTACOR", true) + " SET " + data +
                              "PENDENTE = 'N' WHERE " + movimento);
}

bool TfmChequePre::LancaCheque() {
  if (!LancaFluxo(Texto("CHAVE"), "", [this] { GravaCheque(); })) return false;
  Tabela.CommitRetaining();
  return true;
}

void TfmChequePre::ListaEmpresas() {
  QryEmp.SQL.SetText("SELECT * FROM EMPRESA ORDER BY EMP_PAT");
  QryEmp.Open();
  std::vector<std::string> nomes;
  for (; !QryEmp.Eof(); QryEmp.Next()) nomes.emplace_back(Trim(QryEmp["EMP_NOME"].AsString()));
  CBEmpresa.SetItems(std::move(nomes));
}

bool TfmChequePre::ValidaTransferencia() {
  if (CBEmpresa.ItemIndex() < 0) throw UserError("Escolha a empresa para a qual o cheque vai.");
  QryEmp.SetRecNo(CBEmpresa.ItemIndex() + 1);
  if (Trim(QryEmp["EMP_PAT"].AsString()) == Funcoes.vEmpresa_Atual())
    return Recusa("O cheque já está nesta empresa. Escolha outra empresa.", CBEmpresa);
  if (Vazio("EMISSAO")) return Recusa(kEmissao, DBEDT_DtEmissao);
  if (Vazio("VENCIMENTO")) return Recusa(kVencimento, DBEDT_DtVencto);
  return true;
}

void TfmChequePre::Transfere() {
  const std::string numero = Texto("NUMERO");
  const std::string empresa(Trim(QryEmp["EMP_PAT"].AsString()));
  const auto data = [this](const char* campo) { return tbCheque_pre[campo].AsDate(); };
  // The state, the drawer and the bar line aren't handed over.
  Cheques(Funcoes, Tabela)
      .Grava({.chave = Texto("CHAVE"),
              .numero = {Texto("BANCO"), Texto("CONTA"), numero},
              .agencia = Texto("AGENCIA"),
              .valor = tbCheque_pre["VALOR"].AsCurrency(),
              .emissao = data("EMISSAO"),
              .vencimento = data("VENCIMENTO"),
              .tipo = Texto("TIPO"),
              .dt_baixa = data("DT_BAIXA"),
              .cliente = Texto("CLIENTE"),
              .fornecedor = Texto("FORNECEDOR"),
              .representante = Texto("REPRESENTANTE"),
              .duplicata = Texto("DUPLICATA"),
              .lote = Texto("LOTE"),
              .obs = Texto("OBS")},
             empresa);
  AnotaMovimento(Funcoes, Texto("CHAVE"), "TRANSFERENCIA DO CHEQUE " + numero + " PARA EMPRESA " + empresa);
  tbCheque_pre.Remove();
  Funcoes.GeraLog("CONTACOR", "CHEQUE PRE NR.: " + numero, TOperacaoLog::Processo, numero);
  Tabela.CommitRetaining();
}

}  // namespace orv
