// The page "Conciliação de Cheques": the bank's return file names the cheques that were cleared.
#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "frame/lists.h"
#include "reconciliation/concilia.h"
#include "reconciliation/formats/outside_file.h"
#include "rules/historico.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kFiltros = "ret|*.ret|txt|*.txt|Todos(*.*)|*.*";
// No column of a cheque is longer.
constexpr std::size_t kMaxNumero = 8;

// Bank, branch, account, number, in the order of the columns of RECEBER.
using Cheque = std::array<std::string, 4>;

struct ChequeHash {
  std::size_t operator()(const Cheque& cheque) const {
    std::size_t hash = 0;
    for (const std::string& parte : cheque) hash = hash * 1000003U ^ std::hash<std::string>()(parte);
    return hash;
  }
};

// The days until a cheque's money is there.
int Float(Date data) {
  constexpr int kSexta = 5, kSabado = 6;
  return data.WeekDay() == kSexta ? 3 : data.WeekDay() == kSabado ? 2 : 1;
}

}  // namespace

void TFmConcilia::SpeedButton1Click() {
  const auto arquivo = User().OpenFile("SpeedButton1", kFiltros);
  if (!arquivo) return;
  EdtCam.SetText(*arquivo);
  EdtArq.Clear();
}

void TFmConcilia::BitBtn6Click() {
  const BusyMark busy(Funcoes, *this);
  const auto retornos = LeArquivo();
  if (!retornos) return;
  caminho_arq_ = EdtCam.Text() + EdtArq.Text();
  CarregaPendentes();
  CarregaArquivo(*retornos);
  TbArquivo.SetFilter("Compensar = 'S'");
  TbArquivo.SetFiltered(true);
}

std::optional<std::vector<ChequeReturn>> TFmConcilia::LeArquivo() {
  const std::string caminho = EdtCam.Text() + EdtArq.Text();
  const auto arquivo = User().OpenPath(caminho);
  if (!arquivo) {
    Inform("Arquivo não encontrado.");
    return std::nullopt;
  }
  if (!Funcoes.Existe("CADCONTA", {{"CONTA", EdtContaArq.Text()}})) {
    Recusa("Conta não encontrada.", EdtContaArq);
    return std::nullopt;
  }
  try {
    const std::string texto = OutsideText(arquivo->Bytes(kMaxOutsideFile));
    PositionLayout posicoes;
    for (const auto& linha : Tabela.IBDatabase().Rows(
             "SELECT CAMPO, INICIO, TAMANHO FROM " + Funcoes.DBLocal("POSICAO", true) +
             " WHERE BANCO = " + Funcoes.Aspas(EdtBancoArq.Text()) + " AND TIPO = 'EX'")) {
      posicoes.campos.push_back({std::string(Trim(linha[0].AsString())),
                                 static_cast<int>(linha[1].AsInteger()),
                                 static_cast<int>(linha[2].AsInteger()), ""});
    }
    return ReadChequeReturn(texto, posicoes);
  } catch (const UserError& e) {
    Inform(e.what());
  }
  return std::nullopt;
}

void TFmConcilia::CarregaPendentes() {
  const ControlsHold hold(TbArquivo);
  TbArquivo.Cancel();
  TbArquivo.SetFiltered(false);
  TbArquivo.EmptyDataSet();
  conta_arq_ = EdtContaArq.Text();
  gravadas_.clear();
  LbRetorno.Mostra("");
  struct Pendentes : RowSink {
    explicit Pendentes(ArquivoSet& s) : set(s) {}
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> colunas) override {
      const Field* const campos[] = {&set.Lancto, &set.Docto,    &set.DtLan,    &set.Historico, &set.Classe,
                                     &set.Valor,  &set.Operacao, &set.DescHist, &set.DescClasse};
      linha.Take(campos, colunas);
      linha[set.Compensar] = "N";
      linha.Append();
      return true;
    }
    ArquivoSet& set;
    RowWriter linha{set};
  } pendentes(TbArquivo);
  Tabela.IBDatabase().Fetch(
      "SELECT C.LANCAMENTO, C.DOCTO, C.DT_LAN, C.HISTORICO, C.GRUPO, C.VALOR, C.OPERACAO, H.DESCRICAO AS "
      "DESCHIST, CL.DESCRICAO AS DESCCLASSE FROM " +
          Funcoes.DBLocal("CONTACOR", true) + " C LEFT OUTER JOIN " + Funcoes.DBLocal("HISTCP", true) +
          " H ON C.HISTORICO = H.HISTORICO LEFT OUTER JOIN " + Funcoes.DBLocal("SUBGRUPO", true) +
          " CL ON C.GRUPO = CL.CODIGO WHERE C.DT_LAN BETWEEN " + Funcoes.AspasData(DtIniArq.Date()) +
          " AND " + Funcoes.AspasData(DtFimArq.Date()) +
          " AND C.PENDENTE = 'S' AND C.CONTA = " + Funcoes.Aspas(conta_arq_),
      pendentes);
}

void TFmConcilia::CarregaArquivo(const std::vector<ChequeReturn>& retornos) {
  // The numbers of the cheques are asked for together; of several rows of a cheque the first one counts.
  std::vector<std::string> numeros;
  std::unordered_set<std::string> vistos;
  for (const ChequeReturn& retorno : retornos) {
    const std::string& numero = retorno.cheque.back();
    const bool nada = std::all_of(retorno.cheque.begin(), retorno.cheque.end(),
                                  [](const std::string& parte) { return parte.empty(); });
    if (!nada && CharCount(numero) <= kMaxNumero && vistos.insert(numero).second)
      numeros.push_back(Funcoes.Aspas(numero));
  }
  std::unordered_map<Cheque, std::string, ChequeHash> lancamentos;
  EmListas(numeros, [&](const std::string& lista) {
    for (const auto& linha : Tabela.IBDatabase().Rows(
             "SELECT RB.LANCAMENTO, R.BANCO_CH, R.AGENCIA_CH, R.CONTA_CH, R.NUMERO_CH FROM " +
             Funcoes.DBLocal("RECEBER", true) + " R JOIN " + Funcoes.DBLocal("RECEBERB", true) +
             " RB ON RB.NUMERO = R.NUMERO WHERE R.NUMERO_CH IN (" + lista + ")")) {
      // A comparison in the database takes a null for no text, and trailing blanks for nothing.
      if (std::any_of(linha.begin() + 1, linha.end(), [](const Value& v) { return v.IsNull(); })) continue;
      Cheque cheque;
      for (std::size_t c = 0; c < cheque.size(); ++c) {
        const std::string_view parte = linha[c + 1].Text();
        cheque[c] = TrimCode(parte);
      }
      lancamentos.try_emplace(std::move(cheque), linha[0].AsString());
    }
  });

  // The totals of the other page don't change by this: they are spared for every line.
  const ScopedValue carga(TbArq.Tag, 2);
  const ControlsHold hold(TbArquivo);
  for (const ChequeReturn& retorno : retornos) {
    const auto achado = lancamentos.find(retorno.cheque);
    if (achado == lancamentos.end() || !TbArquivo.Locate("Lancto", achado->second)) continue;
    const Date data = ChequeReturnDay(retorno.data);
    TbArquivo.Edit();
    TbArquivo.Compensar = "S";
    TbArquivo.DtComp = data.AddDays(CbDias.Checked() ? Float(data) : 0);
    TbArquivo.Post();
  }
  Inform("Arquivo Carregado Com Sucesso.");
}

void TFmConcilia::BitBtn10Click() {
  TbArquivo.PostIfEditing();
  std::vector<Compensada> linhas;
  const int64_t total = TbArquivo.RecordCount();
  for (int64_t i = 0; i < total; ++i) {
    const auto celula = [&](const Field& campo) { return TbArquivo.Cell(i, campo); };
    if (celula(TbArquivo.Compensar).Text() != "S") continue;
    linhas.push_back({celula(TbArquivo.Lancto).AsString(), celula(TbArquivo.Docto).AsString(),
                      celula(TbArquivo.Operacao).AsString(), celula(TbArquivo.Valor).AsCurrency(),
                      celula(TbArquivo.DtComp).AsDate()});
    if (!linhas.back().data.Empty()) continue;
    TbArquivo.SetRecNo(i + 1);
    Recusa("Informe a data de compensação do lançamento " + linhas.back().lancto + ".", OrvDBGrid3);
    return;
  }

  const BusyMark busy(Funcoes, *this);
  const std::set<std::string> fechadas = ComPeriodoFechado(linhas);
  std::erase_if(linhas, [&](const Compensada& linha) { return fechadas.contains(linha.lancto); });
  std::unordered_set<std::string> gravados;
  for (const Compensada& linha : linhas) {
    const std::string dia = Funcoes.AspasData(linha.data), numero = Funcoes.Aspas(linha.lancto);
    const auto gravada = gravadas_.find(linha.lancto);
    const std::string antes = gravada == gravadas_.end() ? dia : Funcoes.AspasData(gravada->second);
    const std::string altera = "UPDATE " + Funcoes.DBLocal("CONTACOR", true) +
                               " SET PENDENTE = 'N', DT_CONT = " + dia + " WHERE LANCAMENTO = " + numero;
    // A movement that isn't as the load found it was taken by another user; one that stands as this page left
    // it, or as it would leave it, is confirmed again.
    if (gravados.insert(linha.lancto).second &&
        Tabela.IBDatabase().Execute(altera + " AND COALESCE(DOCTO, '') = " + Funcoes.Aspas(linha.docto) +
                                    " AND CONTA = " + Funcoes.Aspas(conta_arq_) +
                                    " AND COALESCE(OPERACAO, '') = " + Funcoes.Aspas(linha.operacao) +
                                    " AND COALESCE(VALOR, 0) = " + Funcoes.PermanecePonto(linha.valor) +
                                    " AND (PENDENTE = 'S' OR (PENDENTE = 'N' AND DT_CONT = " + antes +
                                    " AND COALESCE(LANC_CON, '') = ''))") == 0) {
      throw UserError("Outro usuário alterou ou conciliou o lançamento " + linha.lancto +
                      " depois da carga. Nada foi gravado, e as marcações continuam na tela.");
    }
    Tabela.IBDatabase().Execute(altera);
    AnotaMovimento(Funcoes, linha.lancto, "COMPENSACAO PELO RETORNO DO BANCO EM " + linha.data.Brazil());
  }
  Tabela.CommitRetaining();
  for (const Compensada& linha : linhas) gravadas_[linha.lancto] = linha.data;
  LbRetorno.Mostra(fechadas.empty()
                       ? ""
                       : "Não compensados, pois mudariam um período fechado: " +
                             Join(std::vector<std::string>(fechadas.begin(), fechadas.end()), ", ") + ".");
  // Lines that were left may be confirmed once their period is open.
  if (fechadas.empty()) User().TakenIn(caminho_arq_);
  Inform("Conciliação concluída com sucesso!");
}

std::set<std::string> TFmConcilia::ComPeriodoFechado(const std::vector<Compensada>& linhas) {
  std::map<std::string, Date> dias;
  for (const Compensada& linha : linhas) dias[linha.lancto] = linha.data;
  std::vector<std::string> numeros;
  for (const auto& [lancto, dia] : dias) numeros.push_back(Funcoes.Aspas(lancto));
  // A number can stand in several accounts, each with its own closed period.
  std::map<std::string, Date> ate;
  std::set<std::string> fechadas;
  EmListas(numeros, [&](const std::string& lista) {
    for (const auto& linha : Tabela.IBDatabase().Rows("SELECT LANCAMENTO, CONTA, DT_CONT, PENDENTE FROM " +
                                                      Funcoes.DBLocal("CONTACOR", true) +
                                                      " WHERE LANCAMENTO IN (" + lista + ")")) {
      const std::string lancto = linha[0].AsString(), conta = linha[1].AsString();
      const auto dia = dias.find(lancto);
      const Date antes = linha[2].AsDate();
      if (dia == dias.end() || (linha[3].Text() == "N" && antes == dia->second)) continue;
      const auto [fim, nova] = ate.try_emplace(conta);
      if (nova) fim->second = bloqueio_.FechadoAte(conta);
      if (fim->second.Empty()) continue;
      if (dia->second <= fim->second || (!antes.Empty() && antes <= fim->second)) fechadas.insert(lancto);
    }
  });
  return fechadas;
}

}  // namespace orv
