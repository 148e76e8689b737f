// The page "Manutenção": a movement is shown, made, changed, deleted, confirmed.
#include "ledger/cc.h"
#include "rules/bloqueio.h"
#include "rules/rateio.h"
#include "rules/soma.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kDataContabil = "A Data de Contabilização deve ser maior que a Data de Lançamento.";

constexpr const char* kAlterado =
    "Outro usuário alterou este registro depois que ele foi carregado. Nada foi gravado. Cancele e "
    "consulte-o novamente.";

constexpr const char* kModeloUsado =
    "Outro usuário já lançou este modelo, ou o deixou passar. Nada foi gravado.";

// Behind what the database says when the entries were committed already.
constexpr const char* kSoPartidas =
    " As partidas contábeis ficaram gravadas, o lançamento não: confirme-o de novo.";

}  // namespace

// --- Buttons.

void TfmCC::BitBtn1Click() {
  if (!Comeca()) return;
  if (Mantem()) {
    EdtNumDoc.SetFocus();
  } else {
    EdtConta.SetFocus();
  }
}

bool TfmCC::Comeca() {
  if (!Funcoes.Acessa(ClassName(), 'A', "0", "")) return false;
  LimpaTela();
  RgSituacao.SetItemIndex(kSitPendente);
  EdtTipoLan.SetText("L");
  EdtLancto.SetText(Funcoes.Proximo("CONTACOR", "LANCAMENTO", 6, true));
  for (DateEdit* data : {&EdtDtLanc, &EdtDtVencto, &EdtDtCont}) data->SetDate(Today());
  EdtTipoDocto.SetText("DP");
  ModoEdicao(true);
  nova_ = true;
  return true;
}

void TfmCC::BitBtn2Click() {
  if (!Funcoes.Acessa(ClassName(), 'A', "0", "")) return;
  if (!ValidaLancamento(EdtLancto.Text(), EdtDtCont.Date(), EdtDtLanc.Date(), true)) return;
  ModoEdicao(true);
  if (EdtNumDoc.Usable()) {
    EdtNumDoc.SetFocus();
  } else {
    EdtDtVencto.SetFocus();
  }
}

void TfmCC::BitBtn3Click() {
  if (!Funcoes.Acessa(ClassName(), 'E', "0", "")) return;
  const std::string numero = EdtLancto.Text(), docto = EdtNumDoc.Text();
  if (!ValidaLancamento(numero, EdtDtCont.Date(), EdtDtLanc.Date(), true)) return;
  if (Ask("Deseja eliminar este Registro?")) {
    RetiraLancamento();
    Contabil.DeletaContaCorrente(numero);
    ApagaRateioDoMovimento(Funcoes, Tabela, numero);
    // Without its movement an entry would stand for nothing.
    Contabil.DeletaContabilidadeFinan(numero);
    Funcoes.GeraLog("CONTACOR",
                    "EXCLUSAO LANCTO. " + numero + ", DOCTO. " + docto + " VALOR " + EdtValor.Text(),
                    TOperacaoLog::Exclusao, numero);
    const bool cheque = CancelaCheque(numero, docto);
    Tabela.CommitRetaining();
    // Told when nothing is held any more: others work on while the user reads.
    if (cheque) Inform("Cheque Cancelado.");
  }
  LimpaTela();
}

bool TfmCC::CancelaCheque(const std::string& numero, const std::string& docto) {
  if (!Funcoes.Existe("CHEQUE_PRE", {{"CHAVE", numero}, {"NUMERO", docto}})) return false;
  Tabela.IBDatabase().Execute("UPDATE " + Funcoes.DBLocal("CHEQUE_PRE", true) + " SET STATUS = 'C' WHERE " +
                              Igual("CHAVE", numero) + " AND " + Igual("NUMERO", docto));
  Funcoes.GeraLog("CONTACOR", "CANCELAMENTO DE CHEQUE " + docto + " LANCTO. " + numero,
                  TOperacaoLog::Inclusao, docto);
  return true;
}

void TfmCC::SpeedButton1Click() {
  ModoEdicao(false);
  MostraVencidos();
  BuscaLancamento(EdtLancto.Text(), EdtNumDoc.Text(), EdtConta.Text(), CbOper.Text());
  EdtLanctoChange();
}

void TfmCC::SpeedButton2Click() {
  if (!ValidaDatas()) return;
  // Where the amount comes from counts like where it goes to. Of an unknown account there is no period; that
  // it is missing is told below.
  std::vector<Date> datas = {EdtDtCont.Date()};
  if (gravada_) datas.push_back(gravada_->dt_cont);
  if (Bloqueio(Contabil, Tabela).Movimento(EdtConta.Text(), datas)) return;
  if (!ValidaCampos()) return;
  const ModeloLanc campos = Preenchido();
  ModelosLanc modelos(Funcoes, Tabela);
  const bool vencido = nova_ && modelo_ && modelo_->Vencido(Today());
  if (vencido && !modelos.Aberto(*modelo_)) throw UserError(kModeloUsado);
  // What nobody touched is looked at, and stays, as it is stored, whatever the grids can show of it.
  TbContabil.PostIfEditing();
  TbCCusto.PostIfEditing();
  const bool intacta = fin30_ && gravada_ && !mexida_;
  if (intacta) BuscaContabil(true);
  if (fin50_ && !ValidaCentroCusto()) return;
  // All that the user may be asked or told comes before the first write.
  if (!RateiaClasse(false)) return;
  if (fin30_ && !ValidaContabilidade()) return;
  if (!RateiaClasse(true)) return;
  const bool partidas = fin30_ && !intacta;
  if (partidas) {
    // The entries are committed before the movement is written.
    ExigeInalterado();
    Contabil.DeletaContabilidadeFinan(EdtLancto.Text());
    GravaContabilidade();
  }
  try {
    GravaLancamento();
    if (intacta) AcompanhaContabilidade();
    Funcoes.GeraLog("CONTACOR",
                    "INC. ALT. DOCTO: " + EdtNumDoc.Text() + " LANCTO: " + EdtLancto.Text() +
                        " VALOR: " + EdtValor.Text(),
                    TOperacaoLog::Inclusao, EdtNumDoc.Text());
    if (vencido) modelos.Avanca(*modelo_);
  } catch (const DatabaseError& e) {
    if (!partidas) throw;
    throw DatabaseError(e.Why(), e.Code(), ReplaceAll(e.what(), " Nada foi gravado.", "") + kSoPartidas,
                        e.Detail());
  }
  if (nova_) ultima_ = {campos, EdtDtLanc.Date(), EdtDtVencto.Date(), EdtDtCont.Date()};
  const std::string gravado =
      "Lançamento " + EdtLancto.Text() + " gravado: conta " + EdtConta.Text() + ", " + EdtValor.Text() + ".";
  ModoEdicao(false);
  LimpaTela();
  // Read before the commit: what fails behind it would seem not to be stored.
  MostraVencidos();
  Tabela.CommitRetaining();
  Stored(gravado);
}

void TfmCC::PqFluxoFechaPesquisa() {
  BuscaLancamento(PqFluxo.RetornoPesquisa("LANCAMENTO"), PqFluxo.RetornoPesquisa("DOCTO"),
                  PqFluxo.RetornoPesquisa("CONTA"), PqFluxo.RetornoPesquisa("OPERACAO"));
  EdtLanctoChange();
}

// --- Checks.

bool TfmCC::ValidaLancamento(const std::string& lancamento, Date data1, Date data2, bool verificaConciliado) {
  const auto linhas =
      Tabela.IBDatabase().Rows("SELECT CONTA, LANC_CON, DT_CONT FROM " + Funcoes.DBLocal("CONTACOR", true) +
                               " WHERE " + Igual("LANCAMENTO", lancamento));
  std::vector<Date> contabilizadas = {data1};
  for (const auto& linha : linhas) contabilizadas.push_back(linha[2].AsDate());
  Bloqueio bloqueio(Contabil, Tabela);
  bool valido = !bloqueio.Caixa(contabilizadas);
  for (const auto& linha : linhas) {
    if (bloqueio.Conta(linha[0].AsString(), {data2, data1, linha[2].AsDate()})) valido = false;
    if (verificaConciliado && !linha[1].AsString().empty()) {
      Inform("Lançamento já conciliado.");
      valido = false;
    }
  }
  return valido;
}

bool TfmCC::ValidaDatas() {
  if (EdtDtLanc.Date().Empty()) return Recusa("Data de Lançamento Inválida.", EdtDtLanc);
  if (EdtDtVencto.Date().Empty()) return Recusa("Data de Vencimento Inválida.", EdtDtVencto);
  if (EdtDtCont.Date().Empty()) return Recusa("Data de Contabilização Inválida.", EdtDtCont);
  return true;
}

bool TfmCC::ValidaCampos() {
  if (EdtDtCont.Date() < EdtDtLanc.Date()) return Recusa(kDataContabil, EdtDtCont);
  if (EdtValor.Empty()) return Recusa("Valor Inválido.", EdtValor);
  if (EdtTipo.Empty()) return Recusa("Classe Gerencial Inválida.", EdtTipo);
  if (Funcoes.Busca_Valor("SUBGRUPO", {{"CODIGO", EdtTipo.Text()}}, "TP_CONTA") == "T") {
    return Recusa("Classe Inválida, Não é possível lançar com classe do tipo Título.", EdtTipo);
  }
  if (EdtHis.Empty()) return Recusa("Histórico Inválido.", EdtHis);
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}}))
    return Recusa("Conta Inexistente.", EdtConta);
  if (EdtNumDoc.Empty()) return Recusa("Documento Inexistente.", EdtNumDoc);
  return true;
}

bool TfmCC::RateiaClasse(bool grava) {
  if (!fin80_ || EdtTipoLan.Text() == "TR" || (CbOper.Text() != "-" && !fin100_)) return true;
  return Contabil.SetRateioClasse(EdtLancto.Text(), EdtTipo.Text(), "CC", EdtValor.Amount(), "0", true,
                                  EdtDtCont.Date(), grava);
}

// --- What the fields do to one another.

void TfmCC::EdtLanctoChange() {
  const bool numero = !EdtLancto.Empty();
  const bool conciliado = !EdtLancConc.Empty();
  // A movement that came from elsewhere belongs to its origin.
  const bool alheio = EdtTipoLan.Text() != "L" && EdtTipoLan.Text() != "TR";
  const bool livre = !conciliado && !alheio;

  BuscaFinanceiro();
  BuscaContabil();

  BitBtn2.SetEnabled(numero && !conciliado && !(alheio && (fin30_ || fin80_)));
  BitBtn3.SetEnabled(numero && livre);
  EdtDtLanc.SetEnabled(livre);
  EdtValor.SetEnabled(livre);
  // The identity of a stored row stands.
  const bool identidade = livre && !(numero && EstaGravado());
  EdtConta.SetEnabled(identidade);
  PqConta.SetEnabled(identidade);
  EdtNumDoc.SetEnabled(identidade);
  CbOper.SetEnabled(identidade);
}

void TfmCC::EdtTipoChange() {
  if (preenche_ || EstaGravado()) return;
  const std::string operacao = Funcoes.Busca_Valor("SUBGRUPO", {{"CODIGO", EdtTipo.Text()}}, "OPERACAO");
  CbOper.SetItemIndex(operacao == "-" ? 1 : 0);
}

void TfmCC::EdtHisChange() {
  if (preenche_ || EstaGravado()) return;
  const bool pendente = Funcoes.LancamentoPendente(EdtConta.Text(), EdtHis.Text()) == "S";
  RgSituacao.SetItemIndex(pendente ? kSitPendente : kSitBaixado);
}

void TfmCC::EdtDtLancExit() {
  if (EstaGravado()) return;
  EdtDtVencto.SetText(EdtDtLanc.Text());
  EdtDtCont.SetText(EdtDtLanc.Text());
}

void TfmCC::EdtDtContExit() {
  if (EdtDtCont.Date() < EdtDtLanc.Date()) Recusa(kDataContabil, EdtDtCont);
}

void TfmCC::EdtObsExit() {
  if (EstaGravado()) return;
  PartidaContabil();
  SpeedButton2.SetFocus();
}

void TfmCC::ValorDocumento() {
  if (EdtNumDoc.Empty()) {
    EdtValDoc.Clear();
    return;
  }
  const Value soma = Tabela.IBDatabase().Scalar(
      "SELECT " + Soma("VALOR") + " AS VALOR FROM " + Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
      Igual("DOCTO", EdtNumDoc.Text()) + " AND " + Igual("CONTA", EdtConta.Text()) + " AND " +
      Igual("OPERACAO", CbOper.Text()) + " AND DT_LAN = " + Funcoes.AspasData(EdtDtLanc.Date()));
  EdtValDoc.SetAmount(SomaDe(soma));
}

// --- The row.

ComoLido TfmCC::Identidade(const std::string& lancamento, const std::string& docto, const std::string& conta,
                           const std::string& operacao) const {
  return ComoLido(Funcoes)
      .Chave("LANCAMENTO", lancamento)
      .Chave("DOCTO", docto)
      .Chave("CONTA", conta)
      .Chave("OPERACAO", operacao);
}

std::string TfmCC::LinhaGravada() const {
  ComoLido linha = Identidade(EdtLancto.Text(), EdtNumDoc.Text(), EdtConta.Text(), CbOper.Text());
  if (gravada_) linha.Versao(gravada_->versao);
  return linha.Condicao();
}

bool TfmCC::EstaGravado() const {
  return !EdtLancto.Empty() && Funcoes.Existe("CONTACOR", {{"LANCAMENTO", EdtLancto.Text()}});
}

void TfmCC::BuscaLancamento(const std::string& lancamento, const std::string& docto, const std::string& conta,
                            const std::string& operacao) {
  const auto linhas = Tabela.IBDatabase().Rows(
      "SELECT LANCAMENTO, CONTA, DOCTO, TIPO_DOC, DT_LAN, DT_VENCTO, DT_CONT, GRUPO, HISTORICO, OPERACAO, "
      "VALOR, "
      "OBSERVACAO, TIPO, LANC_CON, PENDENTE, RDB$RECORD_VERSION FROM " +
      Funcoes.DBLocal("CONTACOR", true) + " WHERE " +
      Identidade(lancamento, docto, conta, operacao).Condicao());
  if (linhas.empty()) {
    LimpaTela();
    EdtTipoLan.Clear();
    RgSituacao.SetItemIndex(kSitBaixado);
    return;
  }

  const ScopedValue filling(preenche_, true);
  const auto& linha = linhas.front();
  Edit* const textos[] = {&EdtLancto, &EdtConta, &EdtNumDoc, &EdtTipoDocto};
  for (std::size_t i = 0; i < std::size(textos); ++i) textos[i]->SetText(linha[i].AsString());
  EdtDtLanc.SetDate(linha[4].AsDate());
  EdtDtVencto.SetDate(linha[5].AsDate());
  EdtDtCont.SetDate(linha[6].AsDate());
  EdtTipo.SetText(linha[7].AsString());
  EdtHis.SetText(linha[8].AsString());
  CbOper.SetItemIndex(linha[9].AsString() == "-" ? 1 : 0);
  EdtValor.SetAmount(linha[10].AsCurrency());
  EdtObs.SetText(linha[11].AsString());
  EdtTipoLan.SetText(linha[12].AsString());
  EdtLancConc.SetText(linha[13].AsString());
  RgSituacao.SetItemIndex(SituacaoDe(linha[14].AsString()));
  gravada_ = {linha[15].AsInteger(), EdtDtCont.Date(), EdtTipo.Text(), EdtHis.Text(), EdtObs.Text()};
  // The sum needs account, operation and date, which came after the document.
  ValorDocumento();
}

void TfmCC::ExigeInalterado() const {
  if (!gravada_) return;
  if (!Ha("CONTACOR", LinhaGravada())) throw UserError(kAlterado);
}

void TfmCC::RetiraLancamento() {
  // One statement both looks and takes the row away, so that nobody comes in between.
  const int64_t retiradas = Tabela.IBDatabase().Execute("DELETE FROM " + Funcoes.DBLocal("CONTACOR", true) +
                                                        " WHERE " + LinhaGravada());
  if (gravada_ && retiradas == 0) throw UserError(kAlterado);
}

void TfmCC::GravaLancamento() {
  const std::string tabela = Funcoes.DBLocal("CONTACOR", true);
  const auto texto = [this](const Edit& edit) { return Funcoes.Aspas(edit.Text()) + ", "; };

  RetiraLancamento();
  Tabela.IBDatabase().Execute(
      "INSERT INTO " + tabela +
      " (LANCAMENTO, DOCTO, BANCO, CONTA, GRUPO, HISTORICO, OBSERVACAO, TIPO, TIPO_DOC, LANC_CON, OPERACAO, "
      "PENDENTE, VALOR, DT_LAN, DT_VENCTO, DT_CONT) VALUES (" +
      texto(EdtLancto) + texto(EdtNumDoc) + texto(EdtCodBan) + texto(EdtConta) + texto(EdtTipo) +
      texto(EdtHis) + texto(EdtObs) + texto(EdtTipoLan) + texto(EdtTipoDocto) + texto(EdtLancConc) +
      Funcoes.Aspas(CbOper.Text()) + ", " + Funcoes.Aspas(Letra(RgSituacao.ItemIndex())) + ", " +
      Funcoes.PermanecePonto(EdtValor.Amount()) + ", " + Funcoes.AspasData(EdtDtLanc.Date()) + ", " +
      Funcoes.AspasData(EdtDtVencto.Date()) + ", " + Funcoes.AspasData(EdtDtCont.Date()) + ")");
}

void TfmCC::LimpaTela() {
  const ScopedValue filling(preenche_, true);
  gravada_.reset();
  for (Edit* campo : std::initializer_list<Edit*>{&EdtLancConc, &EdtLancto, &EdtConta, &EdtCodBan, &EdtNumDoc,
                                                  &EdtTipoDocto, &EdtDtLanc, &EdtDtVencto, &EdtDtCont,
                                                  &EdtTipo, &EdtHis, &EdtValor, &EdtValDoc, &EdtObs}) {
    campo->Clear();
  }
  TbContas.EmptyDataSet();
  EsvaziaRateio();
}

void TfmCC::ModoEdicao(bool edicao) {
  Panel4.SetEnabled(edicao);
  DbgContabilidade.SetReadOnly(!edicao);
  DbgRateioCC.SetReadOnly(!edicao);
  Panel5.SetVisible(edicao);
  Panel6.SetVisible(!edicao);
  PanelVence.SetVisible(false);
  nova_ = preenchida_ = datas_ = false;
  if (!edicao) modelo_.reset();
  SetBadge(!edicao ? "" : (EstaGravado() ? "Alterando " : "Incluindo ") + EdtLancto.Text());
}

}  // namespace orv
