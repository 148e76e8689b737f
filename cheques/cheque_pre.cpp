// How the screen of the cheques is made, what its fields do, and the query of the page "Acesso".
#include "cheques/cheque_pre.h"

#include "frame/entry/unit.h"
#include "frame/registry.h"
#include "rules/historico.h"
#include "toolkit/text.h"

namespace orv {

thread_local TfmChequePre* fmChequePre = nullptr;

namespace {

const Unit kUnit("Cheque_pre", {"TfmChequePre", "Controle de Cheques", ScreenKind::Child, "Cheques",
                                [](Application& a) { return std::make_unique<TfmChequePre>(a); }});

constexpr const char* kEmEdicao = "Confirme ou desista primeiro do cheque em edição.";
constexpr const char* kEmTransferencia = "Confirme ou desista primeiro da transferência.";
constexpr const char* kSumiu = "Outro usuário alterou ou excluiu este cheque. Consulte novamente.";

}  // namespace

TfmChequePre::TfmChequePre(Application& application)
    : Child(application, "TfmChequePre", "fmChequePre", "Controle de Cheques") {
  fmChequePre = this;
  AbreTabelas({"tbRepresentante", "tbEntidade", "tbBanco", "tbCheque_pre"});
  for (DataSet* set : {static_cast<DataSet*>(&tbCheque_pre), static_cast<DataSet*>(&qryConsulta),
                       static_cast<DataSet*>(&QryEmp), static_cast<DataSet*>(&QryDup)}) {
    AddSet(*set);
  }
  Desenha();
  LigaAcesso();
  LigaCampos();
  LigaAcoes();
  EnterMovesOn(true);
  ListaEmpresas();
  Bar_Confirma(false);
  MostraNomes();
  Btincluir.SetFocus();
}

void TfmChequePre::FormClose() {
  StopListening();
  // What wasn't confirmed isn't kept for the next one who has the table open.
  tbCheque_pre.Cancel();
  Screen::FormClose();
}

std::optional<Registro> TfmChequePre::RegistroAtual() {
  const bool acesso = PageControl1.ActivePage() == &TabSheet1;
  DataSet& set = acesso ? static_cast<DataSet&>(qryConsulta) : tbCheque_pre;
  if (!set.Active() || set.IsEmpty() || set.State() == DataSetState::Insert) return std::nullopt;
  return RegistroDoLancamento(Funcoes, Tabela, "Cheque " + set["NUMERO"].AsString(), set["CHAVE"].AsString());
}

void TfmChequePre::Desenha() {
  Layout(R"(
    PageControl1 {
      TabSheet1 {
        @bar {
          GbAVencimento { dtAVencIni dtAVencFim } edtACliente PqACliente EdtANomeCli rgASituacao
          @more {
            edtAFornec PqAFornec edtANomeFor edtABanco PqABanco EdtANomeBanco
            GbAEmissao { dtAEmiIni dtAEmiFim }
          }
          @primary BitBtn6
        } /
        DBGrid2 /
        @actions { @apart BitBtn9 }
      }
      TabSheet2 {
        PainelDados {
          @form {
            EDChave:2 DBEDCodBan PqBanco EDNomeBanco RgSituacao:5 /
            DBEDAgencia:2 DBEDConta:2 DBEDChequeNro:2 @amount DBEDValor:3 /
            DBEDT_DtEmissao:2 DBEDT_DtVencto:2 DBEDT_DtDevolucao:2 Label12:4 /
            DBEDTCodCli PqCliente EDCliente EdtCpf DBEDCodRep:5 PqRepresentante EDRepresentante /
            EdtCodFor:5 PqForneced EdtNomeFor EdtObs:4 RgTipo:3 /
            EdtDup:2 EdtEmissor:4 EdtCnpjEmi:3 EdtBarra:3
          }
        } /
        DBGrid1 /
        @actions {
          PainelConfirma { Label15 CBEmpresa @primary BtnConfirmar BtnDesistir }
          PainelControle {
            @nav sbPrimeiro @nav sbAnterior @nav sbProximo @nav sbUltimo
            @primary Btincluir BtnAltera BtnConsulta PqConsulta BitBtn4 BitBtn7 BitBtn2 BitBtn5
            @danger BitBtn3 @danger BtExcluir @apart BtSaida
          }
        }
      }
    })");

  // This list opens by a button of its own.
  PqConsulta.SetVisible(false);
  // There is no button to a screen that isn't there.
  BitBtn5.SetVisible(ClassRegistry::Instance().Find("TFmCadChequeLote").has_value());
  EDChave.SetReadOnly(true);
  DBEDT_DtDevolucao.SetReadOnly(true);
  DBEDT_DtDevolucao.SetEnabled(false);
  Label12.SetEnabled(false);
  Label12.SetColor("muted");
  RgSituacao.SetEnabled(false);
  CBEmpresa.SetVisible(false);
  Label15.SetVisible(false);
}

void TfmChequePre::LigaAcesso() {
  const std::pair<DateEdit*, DateEdit*> periodos[] = {{&dtAEmiIni, &dtAEmiFim}, {&dtAVencIni, &dtAVencFim}};
  for (const auto& [inicio, fim] : periodos) {
    inicio->SetDate(Date(2000, 1, 1));
    fim->SetDate(Date(2050, 12, 31));
    TodayOnEnter(*inicio);
    SameOnEnter(*fim, *inicio);
  }
  Lookups({
      {&edtACliente, &PqACliente, {{"NOME", &EdtANomeCli}}, "", true, nullptr},
      {&edtAFornec, &PqAFornec, {{"NOME", &edtANomeFor}}, "", true, nullptr},
      {&edtABanco, &PqABanco, {{"NOME_BANCO", &EdtANomeBanco}}, "", true, nullptr},
  });
  BitBtn6.OnClick = [this] { BitBtn6Click(); };
  BitBtn9.OnClick = [this] { Close(); };
  DBGrid2.OnDblClick = [this] { DBGrid2DblClick(); };
}

void TfmChequePre::LigaPesquisa(DBEdit& campo, TPesquisa& pesquisa, const char* chave,
                                std::function<bool()> abre) {
  campo.OnChange = [this] { MostraNomes(); };
  campo.OnExit = [&campo, &pesquisa, abre = std::move(abre)] {
    if (campo.Text().empty() && abre()) pesquisa.AbrePesquisa();
  };
  campo.OnKey = [&pesquisa](KeyPress& key) {
    if (key.key != "F4") return;
    key.handled = true;
    pesquisa.AbrePesquisa();
  };
  pesquisa.OnFechaPesquisa = [this, &campo, &pesquisa, chave] {
    tbCheque_pre.Edit();
    tbCheque_pre[campo.FieldName()] = pesquisa.RetornoPesquisa(chave);
    MostraNomes();
    if (&pesquisa == &PqBanco) DBEDAgencia.SetFocus();
  };
}

void TfmChequePre::LigaCampos() {
  const auto em_edicao = [this] { return tbCheque_pre.Editing(); };
  LigaPesquisa(DBEDCodBan, PqBanco, "BANCO", em_edicao);
  LigaPesquisa(DBEDTCodCli, PqCliente, "CODCLI", em_edicao);
  LigaPesquisa(DBEDCodRep, PqRepresentante, "CODREP", em_edicao);
  LigaPesquisa(EdtCodFor, PqForneced, "CODCLI", [] { return true; });
  EdtDup.OnExit = [this] { EdtDupExit(); };
  EdtBarra.OnExit = [this] { EdtDupExit(); };

  Listen(tbCheque_pre.AfterScroll, [this] { MostraNomes(); });
  Listen(tbCheque_pre.AfterCancel, [this] { MostraNomes(); });
  Listen(tbCheque_pre.BeforeEdit, [this] {
    // A cheque goes to the other company as it is stored.
    if (Transferindo()) throw UserError("Durante a transferência o cheque não pode ser alterado.");
  });
}

void TfmChequePre::LigaAcoes() {
  Btincluir.OnClick = [this] { BtincluirClick(); };
  BtnAltera.OnClick = [this] { BtnAlteraClick(); };
  BtExcluir.OnClick = [this] { BtExcluirClick(); };
  BtnConfirmar.OnClick = [this] { BtnConfirmarClick(); };
  BtnDesistir.OnClick = [this] { BtnDesistirClick(); };
  BtnConsulta.OnClick = [this] { PqConsulta.AbrePesquisa(); };
  PqConsulta.OnFechaPesquisa = [this] { PqConsultaFechaPesquisa(); };
  BitBtn2.OnClick = [this] { BitBtn2Click(); };
  BitBtn3.OnClick = [this] { BitBtn3Click(); };
  BitBtn4.OnClick = [this] { BitBtn4Click(); };
  BitBtn5.OnClick = [this] { Funcoes.Carrega_Form("orvCC", "TFmCadChequeLote", "", false, true); };
  BitBtn7.OnClick = [this] { BitBtn7Click(); };
  BtSaida.OnClick = [this] { Close(); };
  sbPrimeiro.OnClick = [this] { tbCheque_pre.First(); };
  sbAnterior.OnClick = [this] { tbCheque_pre.Prior(); };
  sbProximo.OnClick = [this] { tbCheque_pre.Next(); };
  sbUltimo.OnClick = [this] { tbCheque_pre.Last(); };
}

// --- Fields.

void TfmChequePre::MostraNomes() {
  const auto nome = [this](const char* tabela, const char* chave, const char* coluna, const DBEdit& campo) {
    const std::string codigo = campo.Text();
    return codigo.empty() ? std::string() : Funcoes.Busca_Valor(tabela, {{chave, codigo}}, coluna);
  };
  TOrvTable& bancos = Tabela.tbBanco();
  const std::string banco = DBEDCodBan.Text();
  const bool conhecido = !banco.empty() && bancos.Locate("BANCO", Value(banco));
  EDNomeBanco.SetText(conhecido ? bancos["NOME_BANCO"].AsString() : "");
  EDCliente.SetText(nome("ENTIDADE", "CODCLI", "NOME", DBEDTCodCli));
  EdtCpf.SetText(nome("ENTIDADE", "CODCLI", "CNPJ", DBEDTCodCli));
  EDRepresentante.SetText(nome("REPRESEN", "CODREP", "NOME", DBEDCodRep));
  EdtNomeFor.SetText(nome("ENTIDADE", "CODCLI", "NOME", EdtCodFor));
}

void TfmChequePre::EdtDupExit() {
  const std::string titulo = EdtDup.Text();
  if (Trim(titulo).empty() || !tbCheque_pre.Editing()) return;
  if (Funcoes.Existe("RECEBER", {{"NUMERO", titulo}})) return;
  Inform("Duplicata Inexistente.");
  tbCheque_pre["LOTE"].Clear();
  EdtDup.SetFocus();
}

// --- The query.

void TfmChequePre::BitBtn6Click() {
  const BusyMark busy(Funcoes, *this);
  const std::string entidade = Funcoes.DBLocal("ENTIDADE", true);
  const auto periodo = [this](const char* coluna, const DateEdit& de, const DateEdit& ate) {
    return std::string(coluna) + " BETWEEN " + Funcoes.AspasData(de.Date()) + " AND " +
           Funcoes.AspasData(ate.Date());
  };
  SqlLines& sql = qryConsulta.SQL;
  qryConsulta.Close();
  sql.Clear();
  sql.Add(
      "SELECT CHEQUE_PRE.BANCO, CHEQUE_PRE.AGENCIA, CHEQUE_PRE.CONTA, CHEQUE_PRE.NUMERO, CHEQUE_PRE.VALOR, "
      "CHEQUE_PRE.EMISSAO, CHEQUE_PRE.VENCIMENTO, CHEQUE_PRE.DT_BAIXA, CHEQUE_PRE.STATUS, CHEQUE_PRE.TIPO, "
      "CHEQUE_PRE.CLIENTE, CLIENTE.NOME, CHEQUE_PRE.FORNECEDOR, FORNEC.NOME AS NOME_FORNEC, "
      "CHEQUE_PRE.DUPLICATA, CHEQUE_PRE.EMISSOR, CHEQUE_PRE.OBS, CHEQUE_PRE.LOTE, CHEQUE_PRE.REPRESENTANTE, "
      "CHEQUE_PRE.CHAVE");
  sql.Add("FROM " + Funcoes.DBLocal("CHEQUE_PRE", true) + " CHEQUE_PRE");
  sql.Add("LEFT JOIN " + entidade + " CLIENTE ON CLIENTE.CODCLI = CHEQUE_PRE.CLIENTE");
  sql.Add("LEFT JOIN " + entidade + " FORNEC ON FORNEC.CODCLI = CHEQUE_PRE.FORNECEDOR");
  sql.Add("WHERE " + periodo("CHEQUE_PRE.EMISSAO", dtAEmiIni, dtAEmiFim));
  sql.Add("AND " + periodo("CHEQUE_PRE.VENCIMENTO", dtAVencIni, dtAVencFim));
  const std::pair<const char*, const Edit*> filtros[] = {
      {"CLIENTE", &edtACliente}, {"FORNECEDOR", &edtAFornec}, {"BANCO", &edtABanco}};
  for (const auto& [coluna, campo] : filtros) {
    if (!Trim(campo->Text()).empty())
      sql.Add("AND CHEQUE_PRE." + std::string(coluna) + " = " + Funcoes.Aspas(campo->Text()));
  }
  constexpr const char* kStatus[] = {"P", "B", "C", "D"};
  const int situacao = rgASituacao.ItemIndex();
  if (situacao >= 0 && situacao < 4) sql.Add("AND CHEQUE_PRE.STATUS = " + Funcoes.Aspas(kStatus[situacao]));
  qryConsulta.Open();
}

void TfmChequePre::DBGrid2DblClick() {
  if (!qryConsulta.Active() || qryConsulta.IsEmpty()) return;
  // What is being typed there isn't thrown away.
  if (PainelConfirma.Visible()) {
    PageControl1.SetActivePage(TabSheet2);
    return Inform(Transferindo() ? kEmTransferencia : kEmEdicao);
  }
  std::vector<Value> identidade;
  for (const char* campo : {"CHAVE", "BANCO", "CONTA", "NUMERO"})
    identidade.push_back(qryConsulta[campo].Get());
  PageControl1.SetActivePage(TabSheet2);
  if (!Localiza(identidade)) return Inform(kSumiu);
  BtnAltera.SetFocus();
}

}  // namespace orv
