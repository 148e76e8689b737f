// The page "Acesso": issued cheques are found and picked. And a picked cheque is deleted or cancelled.
#include "cheques/emissao.h"
#include "rules/bloqueio.h"
#include "rules/rateio.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kConciliado =
    "O lançamento do cheque já está compensado ou conciliado. Desfaça primeiro a conciliação.";
constexpr const char* kSumiu = "Outro usuário já excluiu este cheque. Nada foi gravado.";
// What the register holds of a note.
constexpr std::size_t kObs = 50;

}  // namespace

void TfmEmissao::BitBtn3Click() {
  const BusyMark busy(Funcoes, *this);
  SqlLines& sql = QryConsulta.SQL;
  QryConsulta.Close();
  sql.Clear();
  sql.Add(
      "SELECT CHEQUE.NUMERO, CHEQUE.EMISSAO, CHEQUE.VENCIMENTO, CHEQUE.VALOR, CHEQUE.BANCO, "
      "CADCONTA.AGENCIA, CHEQUE.CONTA, CHEQUE.FORNECEDOR, ENTIDADE.NOME, CHEQUE.CHAVE, ENTIDADE.CNPJ, "
      "CHEQUE.OBS FROM " +
      Funcoes.DBLocal("CHEQUE_PRE", true) + " CHEQUE");
  sql.Add("LEFT JOIN " + Funcoes.DBLocal("ENTIDADE", true) +
          " ENTIDADE ON CHEQUE.FORNECEDOR = ENTIDADE.CODCLI");
  sql.Add("LEFT JOIN " + Funcoes.DBLocal("CADCONTA", true) +
          " CADCONTA ON CHEQUE.BANCO = CADCONTA.BANCO AND CHEQUE.CONTA = CADCONTA.CONTA");
  sql.Add("WHERE CHEQUE.TIPO = 'P'" + WhereBetween("CHEQUE.EMISSAO", DtCIni.Date(), DtCFim.Date()));
  constexpr const char* kStatus[] = {"", " AND CHEQUE.STATUS <> 'C'", " AND CHEQUE.STATUS = 'C'"};
  if (RgCStatus.ItemIndex() > 0) sql.Add(kStatus[RgCStatus.ItemIndex()]);
  sql.Add(Where("CHEQUE.BANCO", "=", EdtCCodBan) + Where("CHEQUE.CONTA", "=", EdtCConta) +
          Where("CHEQUE.FORNECEDOR", "=", EdtCCodFor) + Where("CHEQUE.NUMERO", "=", EdtCCheque));
  QryConsulta.Open();
}

// --- Picking.

void TfmEmissao::DBGrid1DblClick() {
  if (!QryConsulta.Active() || QryConsulta.IsEmpty()) return;
  const auto texto = [this](const char* campo) { return QryConsulta[campo].AsString(); };
  const Cheque cheque{.chave = texto("CHAVE"),
                      .numero = {texto("BANCO"), texto("CONTA"), texto("NUMERO")},
                      .agencia = texto("AGENCIA"),
                      .valor = QryConsulta["VALOR"].AsCurrency(),
                      .emissao = QryConsulta["EMISSAO"].AsDate(),
                      .vencimento = QryConsulta["VENCIMENTO"].AsDate(),
                      .obs = texto("OBS")};
  {
    const BusyMark busy(Funcoes, *this);
    for (int64_t row = 0; row < TbCheque.DisplayCount(); ++row) {
      if (TbCheque.Cell(row, TbCheque.Lacto).AsString() == cheque.chave)
        return Inform("Cheque já selecionado.");
    }
    EsvaziaTitulos();
    // The register keeps no payee: the note tells of him.
    PoeNaFila(cheque, *cheque.obs, texto("CNPJ"), "", "");
    QryDup.SQL.SetText("SELECT * FROM " + Funcoes.DBLocal("CHEQUE_DUP", true) + " WHERE " +
                       Igual("NUMERO", cheque.numero.numero) + " AND " + Igual("CONTA", cheque.numero.conta));
    QryDup.Open();
    for (; !QryDup.Eof(); QryDup.Next())
      BuscaAPCheque(QryDup["CHAVE"].AsString(), QryDup["DUPLI"].AsString());
  }
  User().Note(NoteKind::Changed, "Cheque " + cheque.numero.numero + " na fila de impressão.");
}

void TfmEmissao::BuscaAPCheque(const std::string& lancamento, const std::string& numero) {
  SoSelecionados();
  const int64_t novas =
      IncluiTitulos(SqlTitulos(" LEFT JOIN {PAGTO1} PAGTO1 ON (PAGTO1.NUM_AP = PAGTO.NUM_AP AND " +
                                   Igual("PAGTO1.LANCAMENTO", lancamento) + ")",
                               Igual("PAGTO.NUM_AP", numero)));
  if (novas == 0) return;
  const Currency pago = PagoPelaFila(numero);
  for (TbPagto.SetRecNo(TbPagto.RecordCount() - novas + 1); !TbPagto.Eof(); TbPagto.Next()) {
    TbPagto.Edit();
    TbPagto.Val_Pag_Cheque = pago;
    TbPagto.Post();
  }
  TbPagto.Edit();
  TbPagto.Baixar = "S";
  TbPagto.PostIfEditing();
  apanhados_.insert(TbPagto.Numero.AsString() + TbPagto.Empresa.AsString());
}

Currency TfmEmissao::PagoPelaFila(const std::string& numero) {
  std::unordered_set<std::string> fila;
  for (int64_t row = 0; row < TbCheque.DisplayCount(); ++row)
    fila.insert(TbCheque.Cell(row, TbCheque.Lacto).AsString());
  Currency pago;
  for (const auto& linha : Tabela.IBDatabase().Rows(Funcoes.UnionTodasEmpresas(
           "SELECT VAL_PAG, LANCAMENTO FROM {PAGTO1} WHERE " + Igual("NUM_AP", numero), "PAGTO1", true))) {
    if (fila.contains(linha[1].AsString())) pago += linha[0].AsCurrency();
  }
  return pago;
}

// --- Deletion and cancellation.

bool TfmEmissao::Preso(const std::string& lancamento, bool periodo) {
  const auto linhas =
      Tabela.IBDatabase().Rows("SELECT CONTA, DT_CONT, LANC_CON FROM " + Funcoes.DBLocal("CONTACOR", true) +
                               " WHERE " + Igual("LANCAMENTO", lancamento));
  Bloqueio bloqueio(Contabil, Tabela);
  if (periodo && linhas.empty() && bloqueio.Conta(TbCheque.Conta.AsString(), {Today()})) return true;
  for (const auto& linha : linhas) {
    // A movement without its date counts as of today.
    const Date data = linha[1].AsDate().Empty() ? Today() : linha[1].AsDate();
    if (periodo && bloqueio.Movimento(linha[0].AsString(), {data})) return true;
  }
  for (const auto& linha : linhas) {
    if (Trim(linha[2].AsString()).empty()) continue;
    Inform(kConciliado);
    return true;
  }
  return false;
}

void TfmEmissao::BitBtn2Click() {
  if (TbCheque.IsEmpty()) return;
  const std::string lancamento = TbCheque.Lacto.AsString(), numero = TbCheque.Numero.AsString();
  if (Preso(lancamento, true)) return;
  if (!Ask("Tem certeza que deseja Excluir este cheque?", true)) return;

  TOrvDatabase& db = Tabela.IBDatabase();
  Contabil.DeletaContabilidadeFinan(lancamento);
  const int64_t cheques = db.Execute("DELETE FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) + " WHERE " +
                                     Igual("CHAVE", lancamento));
  const int64_t movimentos = db.Execute("DELETE FROM " + Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
                                        Igual("LANCAMENTO", lancamento));
  if (cheques + movimentos == 0) throw UserError(kSumiu);
  ApagaRateioDoMovimento(Funcoes, Tabela, lancamento);
  Contabil.DeletaAnexos(lancamento);
  Funcoes.GeraLog("EMISSAO DE CHEQUES", "EXCLUSAO DO LANCAMENTO " + lancamento + " CHEQUE " + numero,
                  TOperacaoLog::Exclusao, lancamento);
  // Of whatever company the payables are.
  const auto baixas = db.Rows(Funcoes.UnionTodasEmpresas(
      "SELECT NUM_AP, VAL_PAG, '{}' AS EMP FROM {PAGTO1} WHERE " + Igual("LANCAMENTO", lancamento), "PAGTO1",
      true));
  for (const auto& baixa : baixas) {
    const std::string ap = Igual("NUM_AP", baixa[0].AsString()), empresa = baixa[2].AsString();
    db.Execute(ForCompany("UPDATE {PAGTO} SET VAL_PAG = VAL_PAG - ", empresa) +
               Funcoes.PermanecePonto(baixa[1].AsCurrency()) + " WHERE " + ap);
    db.Execute(ForCompany("DELETE FROM {PAGTO1} WHERE ", empresa) + Igual("LANCAMENTO", lancamento) +
               " AND " + ap);
  }
  Tabela.CommitRetaining();
  if (!baixas.empty()) DevolveTitulo(baixas[0][0].AsString(), baixas[0][1].AsCurrency());
  TiraDaFila(lancamento);
  Stored("Cheque " + numero + " excluído.");
}

void TfmEmissao::DevolveTitulo(const std::string& numero, Currency valor) {
  if (!TbPagto.Locate("Numero", Value(numero))) return;
  TbPagto.Edit();
  const Currency pago = TbPagto.Valor_Pago.AsCurrency() - valor;
  TbPagto.Val_Pag_Cheque = pago;
  TbPagto.Valor_Pago = pago;
  TbPagto.Saldo = TbPagto.Saldo.AsCurrency() + valor;
  TbPagto.Valor = (TbPagto.Valor.AsCurrency() + valor).ToDouble();
  TbPagto.Post();
}

void TfmEmissao::BitBtn7Click() {
  if (TbCheque.IsEmpty()) return;
  const std::string lancamento = TbCheque.Lacto.AsString(), numero = TbCheque.Numero.AsString();
  if (Preso(lancamento, false)) return;
  if (!Ask("Tem certeza que deseja Cancelar este cheque?", true)) return;
  const auto motivo = User().InputBox("Cancelamento de Cheque", "Motivo do Cancelamento", "");
  if (!motivo) return;

  TOrvDatabase& db = Tabela.IBDatabase();
  Contabil.DeletaContabilidadeFinan(lancamento);
  const std::string nota(
      CutChars(Funcoes.Busca_Valor("CHEQUE_PRE", {{"CHAVE", lancamento}}, "OBS") + " / " + *motivo, kObs));
  const int64_t cheques =
      db.Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) +
                 " SET STATUS = 'C', OBS = " + Funcoes.Aspas(nota) + " WHERE " + Igual("CHAVE", lancamento));
  const int64_t movimentos = db.Execute("DELETE FROM " + Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
                                        Igual("LANCAMENTO", lancamento));
  if (cheques + movimentos == 0) throw UserError(kSumiu);
  ApagaRateioDoMovimento(Funcoes, Tabela, lancamento);
  Contabil.DeletaAnexos(lancamento);
  Funcoes.GeraLog("EMISSAO DE CHEQUES",
                  "EXCLUSAO DO LANCAMENTO " + lancamento + ", CANCELAMENTO DO CHEQUE " + numero,
                  TOperacaoLog::Exclusao, lancamento);
  const std::string baixas = Funcoes.DBLocal("PAGTO1", true) + " WHERE " + Igual("LANCAMENTO", lancamento);
  for (const auto& baixa : db.Rows("SELECT NUM_AP, VAL_PAG FROM " + baixas)) {
    db.Execute("UPDATE " + Funcoes.DBLocal("PAGTO", true) + " SET VAL_PAG = VAL_PAG - " +
               Funcoes.PermanecePonto(baixa[1].AsCurrency()) + " WHERE " +
               Igual("NUM_AP", baixa[0].AsString()));
  }
  db.Execute("DELETE FROM " + baixas);
  Tabela.CommitRetaining();
  TiraDaFila(lancamento);
  Stored("Cheque " + numero + " cancelado.");
}

}  // namespace orv
