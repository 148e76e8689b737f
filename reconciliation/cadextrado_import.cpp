// The page "Importação": a bank's file, read for review and then written to EXTRATO.
#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <utility>

#include "reconciliation/cadextrado.h"
#include "reconciliation/formats/outside_file.h"
#include "rules/historico.h"
#include "toolkit/error.h"
#include "toolkit/row_writer.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kFiltros = "bbt|*.bbt|txt|*.txt|ofx|*.ofx|ret|*.ret|Todos(*.*)|*.*";
constexpr const char* kAnterior = "de carga anterior";
constexpr std::size_t kArquivo = 50, kDocto = 10, kObs = 50;

std::string Conta(std::size_t n, const char* um, const char* varios) {
  return std::to_string(n) + " " + (n == 1 ? um : varios);
}

// How many lines came in, and why others didn't.
std::string Carregadas(int64_t linhas, const std::vector<std::pair<std::size_t, std::string>>& fora) {
  std::string texto = Conta(static_cast<std::size_t>(linhas), "linha carregada", "linhas carregadas");
  std::size_t total = 0;
  std::vector<std::string> motivos;
  for (const auto& [n, motivo] : fora) {
    total += n;
    if (n > 0) motivos.push_back(std::to_string(n) + " " + motivo);
  }
  if (total > 0)
    texto += "; " + Conta(total, "deixada de fora", "deixadas de fora") + " (" + Join(motivos, ", ") + ")";
  return texto + ".";
}

// A line as it is known again. A document is kept cut.
std::string Chave(const Value& dia, const Value& valor, const Value& operacao, const Value& docto) {
  return std::to_string(dia.AsDate().Days()) + "|" + valor.AsCurrency().Neutral() + "|" +
         std::string(operacao.Text()) + "|" + std::string(Trim(CutChars(docto.Text(), kDocto)));
}

// True when the line is one of those counted, which it then no longer is.
bool Retira(std::unordered_map<std::string, int64_t>& contagem, const std::string& chave) {
  const auto achada = contagem.find(chave);
  return achada != contagem.end() && achada->second-- > 0;
}

}  // namespace

void TFmCadExtrato::LigaImportacao() {
  DtArq.SetDate(Today());
  TodayOnEnter(DtArq);
  Lookups(
      {{&EdtIConta, &PqIConta, {{"DESCRICAO", &EdtINomeConta}}, "", true, [this] { EdtIContaChange(); }}});
  EdtIConta.OnExit = [this] { ContaExit(EdtIConta); };
  EdtCam.OnExit = [this] { EdtCamExit(); };
  EdtArq.OnChange = [this] { EdtArqChange(); };
  // Lines come from files only.
  TbImporta.BeforeInsert = [] { throw UserError("Aqui não se incluem linhas."); };

  BitBtn3.OnClick = [this] { BitBtn3Click(); };
  BitBtn4.OnClick = [this] { BitBtn4Click(); };
  BitBtn6.OnClick = [this] { CarregaArquivo(); };
}

// --- The file and its account.

void TFmCadExtrato::EdtCamExit() {
  const std::filesystem::path caminho(EdtCam.Text());
  if (caminho.filename().empty() || User().IsFolder(EdtCam.Text())) return;
  EdtArq.SetText(caminho.filename().string());
  EdtCam.SetText(caminho.parent_path().string());
}

void TFmCadExtrato::EdtArqChange() {
  carga_.confirmadas = 0;
  NotOFX = Upper(std::filesystem::path(EdtArq.Text()).extension().string()) != ".OFX";
}

void TFmCadExtrato::BitBtn3Click() {
  const auto escolhido = User().OpenFile("BitBtn3", kFiltros);
  if (!escolhido) return;
  const std::filesystem::path caminho(*escolhido);
  EdtArq.SetText(caminho.filename().string());
  EdtCam.SetText(caminho.parent_path().string());
}

void TFmCadExtrato::EdtIContaChange() {
  carga_.confirmadas = 0;
  EdtISaldo.SetAmount(SaldoExtrato(EdtIConta.Text()));
}

// --- The load.

void TFmCadExtrato::CarregaArquivo() {
  Esquece();
  carregado_.clear();
  // A file is known by its name, whatever folder was typed with it.
  if (const std::filesystem::path arquivo(EdtArq.Text()); arquivo.has_parent_path()) {
    EdtCam.SetText((std::filesystem::path(EdtCam.Text()) / arquivo.parent_path()).string());
    EdtArq.SetText(arquivo.filename().string());
  }
  if (!EdtCam.Empty() && !EdtCam.Text().ends_with('/')) EdtCam.SetText(EdtCam.Text() + "/");
  const std::string caminho = EdtCam.Text() + EdtArq.Text();
  const auto arquivo = User().OpenPath(caminho);
  // The copy of a file that was confirmed is gone, and its name still counts.
  if (!arquivo && caminho != confirmado_) {
    Inform("Arquivo não encontrado.");
    return;
  }
  Contagem confirmadas;
  if (Funcoes.Existe("EXTRATO", {{"ARQUIVO", Arquivo()}})) {
    if (!Interrompido()) {
      Inform("Arquivo Já Carregado.");
      return;
    }
    confirmadas = Gravadas("ARQUIVO = " + Funcoes.Aspas(Arquivo()));
  }
  if (!arquivo) {
    Inform("Arquivo não encontrado.");
    return;
  }
  const std::string banco = Funcoes.Busca_Valor("CADCONTA", {{"CONTA", EdtIConta.Text()}}, "BANCO");
  const PositionLayout posicoes = Posicoes(banco);
  std::string texto;
  try {
    texto = OutsideText(arquivo->Bytes(kMaxOutsideFile));
  } catch (const UserError& e) {
    Inform(e.what());
    return;
  }
  if (!NotOFX && !AceitaBanco(texto, banco)) return;

  carregado_ = caminho;
  LeArquivo(texto, posicoes, std::move(confirmadas));
  Inform("Arquivo carregado com sucesso.");
}

std::string TFmCadExtrato::Arquivo() const { return std::string(CutChars(EdtArq.Text(), kArquivo)); }

bool TFmCadExtrato::Interrompido() {
  return Tabela.IBDatabase()
             .Scalar("SELECT PARADA FROM " + Funcoes.DBLocal("ARQUIVO_EXTRATO", true) + " WHERE ARQUIVO = " +
                     Funcoes.Aspas(Arquivo()) + " AND CONTA = " + Funcoes.Aspas(EdtIConta.Text()))
             .AsInteger() > 0;
}

bool TFmCadExtrato::AceitaBanco(const std::string& texto, const std::string& banco) {
  return OfxBank(texto) == banco || Ask("Banco do Arquivo diferente do Selecionado. Continuar?", true);
}

PositionLayout TFmCadExtrato::Posicoes(const std::string& banco) {
  const std::string de = " FROM " + Funcoes.DBLocal("POSICAO", true) +
                         " WHERE BANCO = " + Funcoes.Aspas(banco) + " AND TIPO = 'EX'";
  PositionLayout posicoes;
  posicoes.separador = Tabela.IBDatabase().Scalar("SELECT FIRST 1 SEPARADOR" + de).AsString();
  for (const auto& linha :
       Tabela.IBDatabase().Rows("SELECT CAMPO, INICIO, TAMANHO, MASCARA" + de + " ORDER BY INICIO ")) {
    posicoes.campos.push_back({std::string(Trim(linha[0].AsString())), static_cast<int>(linha[1].AsInteger()),
                               static_cast<int>(linha[2].AsInteger()), linha[3].AsString()});
  }
  return posicoes;
}

void TFmCadExtrato::LeArquivo(const std::string& texto, const PositionLayout& posicoes,
                              Contagem confirmadas) {
  const BusyMark busy(Funcoes, *this);
  const ControlsHold hold(TbImporta);
  Currency saldo = EdtISaldo.Amount();
  const StatementSink inclui = Inclui(saldo, std::move(confirmadas));
  OfxSummary ofx;
  BankTextSummary lidas;
  const auto mostra = [&] {
    EdtSaldoFinal.SetAmount(saldo);
    LbCarga.SetCaption((NotOFX ? Resumo(lidas) : Resumo(ofx)) + Repetidas());
    TbImporta.First();
  };
  try {
    if (NotOFX) {
      std::vector<std::string> contas;
      for (const auto& linha :
           Tabela.IBDatabase().Rows("SELECT CONTA FROM " + Funcoes.DBLocal("CADCONTA", true))) {
        contas.push_back(linha[0].AsString());
      }
      ReadBankText(texto, posicoes, contas, EdtIConta.Text(), inclui, lidas);
    } else {
      ReadOfx(texto, {inclui, [this](Date dia) { DtArq.SetDate(dia.Empty() ? Today() : dia); }}, ofx);
    }
  } catch (...) {
    // What was read before the fault stays, and is told.
    carga_.parada = NotOFX ? lidas.line : ofx.line;
    if (carga_.parada > 0) LbParada.Mostra("Interrompido na linha " + std::to_string(carga_.parada));
    mostra();
    throw;
  }
  mostra();
}

StatementSink TFmCadExtrato::Inclui(Currency& saldo, Contagem confirmadas) {
  return [this, &saldo, confirmadas = std::move(confirmadas),
          linha = RowWriter(TbImporta)](const StatementLine& lida) mutable {
    linha[TbImporta.Conta] = NotOFX ? Value(lida.conta) : Value(EdtIConta.Text());
    linha[TbImporta.Docto] = lida.docto;
    linha[TbImporta.DtCont] = lida.dt_cont;
    linha[TbImporta.Valor] = lida.valor;
    linha[TbImporta.Operacao] = lida.operacao;
    linha[TbImporta.Obs] = lida.obs;
    linha[TbImporta.Chave] = lida.chave;
    linha.Fit();
    if (!confirmadas.empty() &&
        Retira(confirmadas, Chave(linha[TbImporta.DtCont], linha[TbImporta.Valor], linha[TbImporta.Operacao],
                                  linha[TbImporta.Docto]))) {
      ++carga_.confirmadas;
      return;
    }
    const Currency valor = linha[TbImporta.Valor].AsCurrency();
    saldo += linha[TbImporta.Operacao].Text() == "C" ? valor : -valor;
    linha.Append();
  };
}

// --- What became of the file's lines.

std::string TFmCadExtrato::Resumo(const BankTextSummary& lidas) const {
  return Carregadas(TbImporta.RecordCount(), {{carga_.confirmadas, kAnterior},
                                              {lidas.other_account, "de outra conta"},
                                              {lidas.refused, "sem chave ou marcadas para não importar"}});
}

std::string TFmCadExtrato::Resumo(const OfxSummary& lidos) const {
  std::string texto = Carregadas(TbImporta.RecordCount(), {{carga_.confirmadas, kAnterior},
                                                           {lidos.unfinished, "sem fim no arquivo"},
                                                           {lidos.unbegun, "sem início"},
                                                           {lidos.no_amounts, "sem valor"}});
  if (lidos.unread_amounts > 0)
    texto += " " + Conta(lidos.unread_amounts, "valor ilegível entrou", "valores ilegíveis entraram") +
             " com 0,00.";
  if (lidos.accounts.size() > 1) {
    texto += " O arquivo é de várias contas (" + Join(lidos.accounts, ", ") +
             (lidos.more_accounts ? "..." : "") + "): todas as linhas entram na conta " + EdtIConta.Text() +
             ".";
  }
  return texto;
}

TFmCadExtrato::Contagem TFmCadExtrato::Gravadas(const std::string& condicao) {
  struct Linhas : RowSink {
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> linha) override {
      ++contagem[Chave(linha[0], linha[1], linha[2], linha[3])];
      return true;
    }
    Contagem contagem;
  } linhas;
  Tabela.IBDatabase().Fetch("SELECT DT_CONT, VALOR, OPERACAO, DOCTO FROM " +
                                Funcoes.DBLocal("EXTRATO", true) +
                                " WHERE CONTA = " + Funcoes.Aspas(EdtIConta.Text()) + " AND " + condicao,
                            linhas);
  return std::move(linhas.contagem);
}

std::string TFmCadExtrato::Repetidas() {
  const int64_t linhas = TbImporta.RecordCount();
  Date de, ate;
  for (int64_t i = 0; i < linhas; ++i) {
    const Date dia = TbImporta.Cell(i, TbImporta.DtCont).AsDate();
    de = i == 0 ? dia : std::min(de, dia);
    ate = i == 0 ? dia : std::max(ate, dia);
  }
  if (linhas == 0) return "";

  Contagem gravadas = Gravadas("DT_CONT BETWEEN " + Funcoes.AspasData(de) + " AND " + Funcoes.AspasData(ate));
  std::size_t repetidas = 0;
  for (int64_t i = 0; i < linhas && !gravadas.empty(); ++i) {
    // Each line that stands there is found once.
    const auto celula = [&](const Field& campo) { return TbImporta.Cell(i, campo); };
    repetidas += Retira(gravadas, Chave(celula(TbImporta.DtCont), celula(TbImporta.Valor),
                                        celula(TbImporta.Operacao), celula(TbImporta.Docto)));
  }
  if (repetidas == 0) return "";
  return " " + Conta(repetidas, "já está", "já estão") +
         " no extrato com a mesma conta, data, valor e documento.";
}

// --- The confirmation.

void TFmCadExtrato::BitBtn4Click() {
  TbImporta.PostIfEditing();
  GravaExtrato();
  // Of a file that stopped the rest is still to be read.
  if (carga_.parada == 0) User().TakenIn(carregado_);
  if (!carregado_.empty()) confirmado_ = std::exchange(carregado_, "");
  Inform("Arquivo importado com sucesso.");
  Esquece();
  // The lines are among those of the other page, and in the balance before a next file.
  EdtIContaChange();
  if (!TbExtrato.Editing()) TbExtrato.Refresh();
}

void TFmCadExtrato::Esquece() {
  TbImporta.EmptyDataSet();
  LbCarga.SetCaption("");
  LbParada.Mostra("");
  carga_ = {};
}

void TFmCadExtrato::GravaExtrato() {
  const BusyMark busy(Funcoes, *this);
  const int64_t linhas = TbImporta.RecordCount();
  const std::vector<std::string> numeros =
      Funcoes.Proximos("EXTRATO", "LANCTO", 6, true, static_cast<std::size_t>(linhas));
  const Value banco = Funcoes.Busca_Valor("CADCONTA", {{"CONTA", EdtIConta.Text()}}, "BANCO");
  const Value arquivo = Arquivo(), conta = EdtIConta.Text();
  const Value data = DtArq.Date().Empty() ? Date::FromDays(Date::kZeroDays) : DtArq.Date();

  int64_t i = 0;
  Tabela.IBDatabase().InsertRows(Funcoes.DBLocal("EXTRATO", true),
                                 {"BANCO", "VALOR", "DOCTO", "DT_CONT", "DT_ARQ", "CONCILIADO", "ARQUIVO",
                                  "LANCTO", "CONTA", "OPERACAO", "CHAVE", "OBSERVACAO"},
                                 [&](std::span<Value> linha) {
                                   if (i == linhas) return false;
                                   const auto celula = [&](const Field& campo) {
                                     return TbImporta.Cell(i, campo);
                                   };
                                   const Value lancto = numeros[static_cast<std::size_t>(i)];
                                   const Value valores[] = {banco,
                                                            celula(TbImporta.Valor),
                                                            CutChars(celula(TbImporta.Docto).Text(), kDocto),
                                                            celula(TbImporta.DtCont),
                                                            data,
                                                            "N",
                                                            arquivo,
                                                            lancto,
                                                            conta,
                                                            celula(TbImporta.Operacao),
                                                            NotOFX ? celula(TbImporta.Chave) : lancto,
                                                            CutChars(celula(TbImporta.Obs).Text(), kObs)};
                                   std::copy(std::begin(valores), std::end(valores), linha.begin());
                                   ++i;
                                   return true;
                                 });
  GravaFim(linhas);
  AnotaImportacao(Funcoes, Arquivo(), EdtIConta.Text(), static_cast<std::size_t>(linhas));
  Tabela.CommitRetaining();
}

void TFmCadExtrato::GravaFim(int64_t linhas) {
  // A file of which nothing is there has no end to keep.
  if (linhas == 0 && carga_.confirmadas == 0) return;
  Tabela.IBDatabase().Execute("UPDATE OR INSERT INTO " + Funcoes.DBLocal("ARQUIVO_EXTRATO", true) +
                              " (ARQUIVO, CONTA, LINHAS, PARADA) VALUES (" + Funcoes.Aspas(Arquivo()) + ", " +
                              Funcoes.Aspas(EdtIConta.Text()) + ", " +
                              std::to_string(static_cast<std::size_t>(linhas) + carga_.confirmadas) + ", " +
                              std::to_string(carga_.parada) + ") MATCHING (ARQUIVO, CONTA)");
}

}  // namespace orv
