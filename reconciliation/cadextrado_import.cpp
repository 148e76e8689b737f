// The page "Importação": a bank's file, read for review and then written to EXTRATO.
#include <algorithm>
#include <filesystem>
#include <unordered_map>

#include "reconciliation/cadextrado.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kFiltros = "bbt|*.bbt|txt|*.txt|ofx|*.ofx|ret|*.ret|Todos(*.*)|*.*";
constexpr std::size_t kArquivo = 50, kDocto = 10, kObs = 50;

std::string Conta(std::size_t n, const char* um, const char* varios) {
  return std::to_string(n) + " " + (n == 1 ? um : varios);
}

}  // namespace

void TFmCadExtrato::LigaImportacao() {
  DtArq.SetDate(Today());
  TodayOnEnter(DtArq);
  Lookups({{&EdtIConta, &PqIConta, "CADCONTA", "CONTA", {{"DESCRICAO", &EdtINomeConta}}, "", true, [this] {
              EdtIContaChange();
            }}});
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
  std::error_code erro;
  if (caminho.filename().empty() || std::filesystem::is_directory(caminho, erro)) return;
  EdtArq.SetText(caminho.filename().string());
  EdtCam.SetText(caminho.parent_path().string());
}

void TFmCadExtrato::EdtArqChange() {
  NotOFX = Upper(std::filesystem::path(EdtArq.Text()).extension().string()) != ".OFX";
}

void TFmCadExtrato::BitBtn3Click() {
  const auto escolhido = User().OpenFile("BitBtn3", kFiltros);
  if (!escolhido) return;
  const std::filesystem::path caminho(*escolhido);
  EdtArq.SetText(caminho.filename().string());
  EdtCam.SetText(caminho.parent_path().string());
}

void TFmCadExtrato::EdtIContaChange() { EdtISaldo.SetAmount(SaldoExtrato(EdtIConta.Text())); }

// --- The load.

void TFmCadExtrato::CarregaArquivo() {
  TbImporta.EmptyDataSet();
  LbCarga.SetCaption("");
  // A file is known by its name, whatever folder was typed with it.
  if (const std::filesystem::path arquivo(EdtArq.Text()); arquivo.has_parent_path()) {
    EdtCam.SetText((std::filesystem::path(EdtCam.Text()) / arquivo.parent_path()).string());
    EdtArq.SetText(arquivo.filename().string());
  }
  if (!EdtCam.Empty() && !EdtCam.Text().ends_with('/')) EdtCam.SetText(EdtCam.Text() + "/");
  const std::string caminho = EdtCam.Text() + EdtArq.Text();
  if (!OutsideFileExists(caminho)) {
    Inform("Arquivo não encontrado.");
    return;
  }
  if (Funcoes.Existe("EXTRATO", "ARQUIVO", Funcoes.Aspas(CutChars(EdtArq.Text(), kArquivo)))) {
    Inform("Arquivo Já Carregado.");
    return;
  }
  const std::string banco =
      Funcoes.Busca_Valor("CADCONTA", "CONTA", "BANCO", Funcoes.Aspas(EdtIConta.Text()), true, true);
  const PositionLayout posicoes = Posicoes(banco);
  std::string texto;
  try {
    texto = OutsideText(OutsideFileBytes(caminho));
  } catch (const UserError& e) {
    Inform(e.what());
    return;
  }
  if (!NotOFX && !AceitaBanco(texto, banco)) return;

  LeArquivo(texto, posicoes);
  Inform("Arquivo carregado com sucesso.");
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

void TFmCadExtrato::LeArquivo(const std::string& texto, const PositionLayout& posicoes) {
  const BusyMark busy(Funcoes, *this);
  const ControlsHold hold(TbImporta);
  Currency saldo = EdtISaldo.Amount();
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
      ReadBankText(texto, posicoes, contas, EdtIConta.Text(), Inclui(saldo), lidas);
    } else {
      ReadOfx(texto, {Inclui(saldo), [this](Date dia) { DtArq.SetDate(dia.Empty() ? Today() : dia); }}, ofx);
    }
  } catch (...) {
    // What was read before the fault stays, and is told.
    mostra();
    throw;
  }
  mostra();
}

StatementSink TFmCadExtrato::Inclui(Currency& saldo) {
  return [this, &saldo,
          linha = std::vector<Value>(TbImporta.Fields().size())](const StatementLine& lida) mutable {
    const auto celula = [&](const Field& campo) -> Value& {
      return linha[static_cast<std::size_t>(campo.Index())];
    };
    const auto guarda = [&](const Field& campo, Value valor) {
      celula(campo) = campo.Convert(std::move(valor));
    };
    guarda(TbImporta.Conta, NotOFX ? Value(lida.conta) : Value(EdtIConta.Text()));
    guarda(TbImporta.Docto, lida.docto);
    guarda(TbImporta.DtCont, lida.dt_cont);
    guarda(TbImporta.Valor, lida.valor);
    guarda(TbImporta.Operacao, lida.operacao);
    guarda(TbImporta.Obs, lida.obs);
    guarda(TbImporta.Chave, lida.chave);
    saldo += celula(TbImporta.Operacao).Text() == "C" ? lida.valor : -lida.valor;
    TbImporta.AppendRow(linha);
  };
}

// --- What became of the file's lines.

std::string TFmCadExtrato::Resumo(const BankTextSummary& lidas) const {
  std::string texto = Conta(lidas.lines, "linha carregada", "linhas carregadas");
  std::vector<std::string> fora;
  if (lidas.other_account > 0) fora.push_back(std::to_string(lidas.other_account) + " de outra conta");
  if (lidas.refused > 0)
    fora.push_back(std::to_string(lidas.refused) + " sem chave ou marcadas para não importar");
  if (!fora.empty()) {
    texto += "; " + Conta(lidas.other_account + lidas.refused, "deixada de fora", "deixadas de fora") + " (" +
             Join(fora, ", ") + ")";
  }
  return texto + ".";
}

std::string TFmCadExtrato::Resumo(const OfxSummary& lidos) const {
  std::string texto = Conta(lidos.lines, "linha carregada", "linhas carregadas");
  std::vector<std::string> fora;
  if (lidos.unfinished > 0) fora.push_back(std::to_string(lidos.unfinished) + " sem fim no arquivo");
  if (lidos.unbegun > 0) fora.push_back(std::to_string(lidos.unbegun) + " sem início");
  if (!fora.empty()) {
    texto += "; " + Conta(lidos.unfinished + lidos.unbegun, "deixada de fora", "deixadas de fora") + " (" +
             Join(fora, ", ") + ")";
  }
  texto += ".";
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

std::string TFmCadExtrato::Repetidas() {
  const int64_t linhas = TbImporta.RecordCount();
  Date de, ate;
  for (int64_t i = 0; i < linhas; ++i) {
    const Date dia = TbImporta.Cell(i, TbImporta.DtCont).AsDate();
    de = i == 0 ? dia : std::min(de, dia);
    ate = i == 0 ? dia : std::max(ate, dia);
  }
  if (linhas == 0) return "";

  const auto chave = [](const Value& dia, const Value& valor, const Value& docto) {
    return std::to_string(dia.AsDate().Days()) + "|" + valor.AsCurrency().Neutral() + "|" +
           std::string(Trim(docto.Text()));
  };
  struct Gravadas : RowSink {
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> linha) override {
      ++chaves[chave(linha[0], linha[1], linha[2])];
      return true;
    }
    explicit Gravadas(std::string (*c)(const Value&, const Value&, const Value&)) : chave(c) {}
    std::string (*chave)(const Value&, const Value&, const Value&);
    std::unordered_map<std::string, int64_t> chaves;
  } gravadas(chave);
  Tabela.IBDatabase().Fetch("SELECT DT_CONT, VALOR, DOCTO FROM " + Funcoes.DBLocal("EXTRATO", true) +
                                " WHERE CONTA = " + Funcoes.Aspas(EdtIConta.Text()) +
                                " AND DT_CONT BETWEEN " + Funcoes.AspasData(de) + " AND " +
                                Funcoes.AspasData(ate),
                            gravadas);
  std::size_t repetidas = 0;
  for (int64_t i = 0; i < linhas && !gravadas.chaves.empty(); ++i) {
    // Each line that stands there is found once.
    const auto achada =
        gravadas.chaves.find(chave(TbImporta.Cell(i, TbImporta.DtCont), TbImporta.Cell(i, TbImporta.Valor),
                                   TbImporta.Cell(i, TbImporta.Docto)));
    if (achada != gravadas.chaves.end() && achada->second-- > 0) ++repetidas;
  }
  if (repetidas == 0) return "";
  return " " + Conta(repetidas, "já está", "já estão") +
         " no extrato com a mesma conta, data, valor e documento.";
}

// --- The confirmation.

void TFmCadExtrato::BitBtn4Click() {
  TbImporta.PostIfEditing();
  GravaExtrato();
  Inform("Arquivo importado com sucesso.");
  TbImporta.EmptyDataSet();
  LbCarga.SetCaption("");
  // The lines are among those of the other page, and in the balance before a next file.
  EdtIContaChange();
  if (!TbExtrato.Editing()) TbExtrato.Refresh();
}

void TFmCadExtrato::GravaExtrato() {
  const BusyMark busy(Funcoes, *this);
  const int64_t linhas = TbImporta.RecordCount();
  const std::vector<std::string> numeros =
      Funcoes.Proximos("EXTRATO", "LANCTO", 6, true, static_cast<std::size_t>(linhas));
  const Value banco =
      Funcoes.Busca_Valor("CADCONTA", "CONTA", "BANCO", Funcoes.Aspas(EdtIConta.Text()), true, true);
  const Value arquivo = CutChars(EdtArq.Text(), kArquivo), conta = EdtIConta.Text();
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
  Tabela.CommitRetaining();
}

}  // namespace orv
