#include "cheques/cad_cheque_lote.h"

#include "frame/entry/unit.h"
#include "rules/bloqueio.h"
#include "rules/cheque.h"
#include "rules/historico.h"
#include "toolkit/text.h"

namespace orv {

thread_local TFmCadChequeLote* FmCadChequeLote = nullptr;

namespace {

const Unit kUnit("Cadchequelote", {"TFmCadChequeLote", "Cheques Recebidos", ScreenKind::Dialog, "",
                                   [](Application& a) { return std::make_unique<TFmCadChequeLote>(a); }});

constexpr const char* kConta = "Conta inválida.";
constexpr const char* kClasse = "Classe inválida.";
constexpr const char* kHistorico = "Histórico inválido.";

// What the bar reader types: the line of magnetic characters at a cheque's foot, with its marks.
constexpr std::size_t kLinhaDeBarras = 34;
// The columns of the register that the grid's fields are wider than.
constexpr std::size_t kNumero = 8, kContaDoCheque = 13;

// So many characters of a text, the first being 1.
std::string Trecho(std::string_view texto, std::size_t de, std::size_t quantos) {
  return std::string(CutChars(texto.substr(CutChars(texto, de - 1).size()), quantos));
}

}  // namespace

TFmCadChequeLote::TFmCadChequeLote(Application& application)
    : Dialog(application, "TFmCadChequeLote", "FmCadChequeLote", "Cheques Recebidos") {
  FmCadChequeLote = this;
  HideOnClose();
  TbCheque.CreateDataSet();
  AddSet(TbCheque);
  CodEmpresa = Funcoes.BuscaParametro("FAC", 80);
  Layout(R"(
    @form {
      EdtConta PqConta EdtDescConta /
      EdtTipo PqClasse EdtDesTipo EdtHis pqHistorico EdtDescHist
    } /
    DBGrid1 /
    @sums { EdtValCheque } /
    @actions { @primary BitBtn1 @apart BitBtn2 }
  )");
  Lookups(
      {{.field = &EdtConta, .lookup = &PqConta, .shows = {{"EMPRESA", &EdtDescConta}}, .message = kConta},
       {.field = &EdtTipo, .lookup = &PqClasse, .shows = {{"DESCRICAO", &EdtDesTipo}}, .message = kClasse},
       {.field = &EdtHis,
        .lookup = &pqHistorico,
        .shows = {{"DESCRICAO", &EdtDescHist}},
        .message = kHistorico}});
  EdtValCheque.SetReadOnly(true);
  DBGrid1.OnColExit = [this] { DBGrid1ColExit(); };
  DBGrid1.OnExit = [this] { TbCheque.PostIfEditing(); };
  TbCheque.AfterInsert = [this] { DBGrid1.SetSelectedField("Numero"); };
  TbCheque.AfterPost = [this] { TbChequeAfterPost(); };
  TbCheque.BeforeDelete = [this] { TbChequeBeforeDelete(); };
  EnterMovesOn(false);
  BitBtn1.OnClick = [this] { BitBtn1Click(); };
  BitBtn2.OnClick = [this] { Close(); };
}

void TFmCadChequeLote::DBGrid1ColExit() {
  if (DBGrid1.SelectedField() != "Numero") return;
  const std::string linha = TbCheque.Numero.AsString();
  if (CharCount(linha) != kLinhaDeBarras) return;
  TbCheque.PostIfEditing();
  TbCheque.Edit();
  TbCheque.Banco = Trecho(linha, 2, 3);
  TbCheque.Agencia = Trecho(linha, 5, 4);
  TbCheque.Conta = Trecho(linha, 26, 6);
  TbCheque.Barra = linha;
  TbCheque.Numero = Trecho(linha, 14, 6);
  TbCheque.Emissao = Today();
  TbCheque.Vencto = Today();
  TbCheque.Post();
  // What the bar line doesn't tell.
  DBGrid1.SetSelectedField("Valor");
}

void TFmCadChequeLote::TbChequeAfterPost() {
  Currency total;
  for (int64_t i = 0, linhas = TbCheque.RecordCount(); i < linhas; ++i)
    total += TbCheque.Cell(i, TbCheque.Valor).AsCurrency();
  EdtValCheque.SetAmount(total);
}

void TFmCadChequeLote::TbChequeBeforeDelete() {
  EdtValCheque.SetAmount(EdtValCheque.Amount() - TbCheque.Valor.AsCurrency());
}

void TFmCadChequeLote::BitBtn1Click() {
  TbCheque.PostIfEditing();
  if (!GravaCheque()) return;
  if (TOrvTable& cheques = Tabela.tbCheque_pre(); cheques.Active()) cheques.Refresh();
  Close();
}

bool TFmCadChequeLote::Valida() {
  const auto recusa = [this](int64_t linha, const char* campo, const std::string& mensagem) {
    TbCheque.SetRecNo(linha + 1);
    DBGrid1.SetSelectedField(campo);
    return Recusa(mensagem, DBGrid1);
  };
  std::vector<Date> datas;
  for (int64_t i = 0, linhas = TbCheque.RecordCount(); i < linhas; ++i) {
    const std::string numero = TbCheque.Cell(i, TbCheque.Numero).AsString();
    if (CharCount(numero) > kNumero)
      return recusa(i, "Numero", "O número do cheque tem mais de 8 caracteres: " + numero + ".");
    if (CharCount(TbCheque.Cell(i, TbCheque.Conta).AsString()) > kContaDoCheque)
      return recusa(i, "Conta", "A conta do cheque " + numero + " tem mais de 13 caracteres.");
    for (const Field* data : {&TbCheque.Emissao, &TbCheque.Vencto}) {
      datas.push_back(TbCheque.Cell(i, *data).AsDate());
      if (datas.back().Empty())
        return recusa(i, data->Name().c_str(), "Informe a emissão e o vencimento do cheque " + numero + ".");
    }
    if (TbCheque.Cell(i, TbCheque.Valor).AsCurrency() < Currency())
      return recusa(i, "Valor", "O valor do cheque " + numero + " é negativo.");
  }
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtConta.Text()}})) return Recusa(kConta, EdtConta);
  return !Bloqueio(Contabil, Tabela).Movimento(EdtConta.Text(), datas);
}

// False where the batch stays on the screen.
bool TFmCadChequeLote::GravaCheque() {
  for (const auto& [campo, mensagem] :
       {std::pair(&EdtConta, kConta), {&EdtTipo, kClasse}, {&EdtHis, kHistorico}}) {
    if (!campo->Empty()) continue;
    Inform(mensagem);
    return true;
  }
  if (!Valida()) return false;
  const std::string situacao = Funcoes.Busca_Valor("HISTCP", {{"HISTORICO", EdtHis.Text()}}, "SITUACAO"),
                    banco = Funcoes.Busca_Valor("CADCONTA", {{"CONTA", EdtConta.Text()}}, "BANCO");
  const auto linhas = static_cast<std::size_t>(TbCheque.RecordCount());
  const BusyMark busy(Funcoes, *this);
  const std::vector<std::string> chaves = Funcoes.Proximos("CONTACOR", "LANCAMENTO", 6, true, linhas);
  Cheques cheques(Funcoes, Tabela);
  const ControlsHold hold(TbCheque);
  TbCheque.First();
  for (const std::string& chave : chaves) {
    const NumeroCheque numero{TbCheque.Banco.AsString(), TbCheque.Conta.AsString(),
                              TbCheque.Numero.AsString()};
    const Currency valor = TbCheque.Valor.AsCurrency();
    cheques.Grava({.chave = chave,
                   .numero = numero,
                   .agencia = TbCheque.Agencia.AsString(),
                   .valor = valor,
                   .emissao = TbCheque.Emissao.AsDate(),
                   .vencimento = TbCheque.Vencto.AsDate(),
                   .tipo = "R",
                   .status = situacao,
                   .emissor = TbCheque.Emissor.AsString(),
                   .cnpj_emi = TbCheque.CnpjEmi.AsString(),
                   .cliente = std::string(Trim(CodEmpresa)),
                   .fornecedor = std::string(Trim(CodEmpresa)),
                   .representante = "0000",
                   .lote = "",
                   .barra = TbCheque.Barra.AsString(),
                   .obs = "REF. LOTE DE CHEQUE."});
    cheques.Grava(TituloDoCheque{.cheque = numero, .dupli = "LOTE", .valor = valor});
    Contabil.LancaContaCorrente({.lancamento = chave,
                                 .docto = numero.numero,
                                 .banco = banco,
                                 .conta = EdtConta.Text(),
                                 .grupo = EdtTipo.Text(),
                                 .historico = EdtHis.Text(),
                                 .tipo = "CH",
                                 .pendente = situacao,
                                 .operacao = "+",
                                 .valor = valor,
                                 .dt_lan = TbCheque.Emissao.AsDate(),
                                 .dt_vencto = TbCheque.Vencto.AsDate(),
                                 .dt_cont = TbCheque.Vencto.AsDate()});
    AnotaMovimento(Funcoes, chave,
                   "INCLUSAO DO CHEQUE " + numero.numero + " EM LOTE, CONTA " + EdtConta.Text(),
                   TOperacaoLog::Inclusao);
    TbCheque.Next();
  }
  Tabela.CommitRetaining();
  if (linhas > 0) {
    Stored((linhas == 1 ? "1 cheque lançado" : std::to_string(linhas) + " cheques lançados") + " na conta " +
           EdtConta.Text() + ": " + EdtValCheque.Text() + ".");
  }
  return true;
}

}  // namespace orv
