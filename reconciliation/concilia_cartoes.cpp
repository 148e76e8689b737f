// The page "Conciliação de Cartões": sales, movements and orders are listed beside the lines of an acquirer's
// file, and what matches is ticked.
#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "reconciliation/concilia.h"
#include "reconciliation/formats/card_sheets.h"
#include "reconciliation/formats/outside_file.h"
#include "reconciliation/inteiro.h"
#include "toolkit/row_writer.h"
#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {

namespace {

enum Busca { kConciliados = 0, kAConciliar = 1 };

constexpr const char* kOrdem = "TRANSACAO;CODVEN;PARCELA";
constexpr const char* kCsvOuTxt = "Arquivo inválido. Tente novamente com um arquivo .csv ou .txt";

// A field of TbCartao_Arq, and the layouts that have it.
struct CampoArquivo {
  const char* nome;
  FieldType tipo;
  int tamanho;
  const char* leiautes;  // of "C" Cielo, "G" separated, "S" Stone, "P" orders
  Value (*valor)(const CardLine& linha);
};

Value Texto(std::string_view texto) { return Value(texto); }

// In the order in which they are laid down. SEL and REC are the screen's.
constexpr CampoArquivo kCampos[] = {
    {"SEL", FieldType::Integer, 0, "CGSP", nullptr},
    {"REC", FieldType::Integer, 0, "CGSP", nullptr},
    {"CARTAO", FieldType::String, 18, "CGS", [](const CardLine& l) { return Texto(l.cartao); }},
    {"MEIO_PAG", FieldType::String, 100, "P", [](const CardLine& l) { return Texto(l.meio_pag); }},
    {"DATA", FieldType::DateTime, 0, "CGSP",
     [](const CardLine& l) { return l.data == DateTime() ? Value() : Value(l.data); }},
    {"COMPROVANTE_VENDA", FieldType::String, 40, "CGSP",
     [](const CardLine& l) { return Texto(l.comprovante); }},
    {"VALOR_TOTAL", FieldType::Currency, 0, "CGS", [](const CardLine& l) { return Value(l.valor_total); }},
    {"VALOR_BRUTO", FieldType::Currency, 0, "P", [](const CardLine& l) { return Value(l.valor_bruto); }},
    {"VALOR_PARCELA", FieldType::Currency, 0, "CGS",
     [](const CardLine& l) { return Value(l.valor_parcela); }},
    {"VALOR_PARCELA_LIQ", FieldType::Currency, 0, "C", [](const CardLine& l) { return Value(l.valor_liq); }},
    {"VALOR_LIQ_PARCELA", FieldType::Currency, 0, "G", [](const CardLine& l) { return Value(l.valor_liq); }},
    {"VALOR_LIQ", FieldType::Currency, 0, "P", [](const CardLine& l) { return Value(l.valor_liq); }},
    {"TAXA", FieldType::Currency, 0, "CGP", [](const CardLine& l) { return Value(l.taxa); }},
    {"PARCELA", FieldType::String, 5, "CGSP", [](const CardLine& l) { return Texto(l.parcela); }},
    {"TIPO_ARQUIVO", FieldType::String, 2, "C", [](const CardLine& l) { return Texto(l.tipo_arquivo); }},
    {"STATUS_PAG", FieldType::String, 2, "C", [](const CardLine& l) { return Texto(l.status); }},
    {"DESC_STATUS_PAG", FieldType::String, 25, "C", [](const CardLine& l) { return Texto(l.desc_status); }},
    {"EMPRESA", FieldType::String, 10, "C", [](const CardLine& l) { return Texto(l.empresa); }},
    {"ID", FieldType::String, 15, "P", [](const CardLine& l) { return Texto(l.id); }},
};

bool Tem(const CampoArquivo& campo, char leiaute) {
  return std::string_view(campo.leiautes).find(leiaute) != std::string_view::npos;
}

// Appends the lines of a file to TbCartao_Arq.
class Linhas : public CardSink {
 public:
  explicit Linhas(TClientDataSet& set) : set_(set), linha_(set), sel_(set["SEL"]), rec_(set["REC"]) {
    for (const CampoArquivo& campo : kCampos) {
      const Field* no_set = set.FindField(campo.nome);
      if (no_set != nullptr && campo.valor != nullptr) campos_.emplace_back(no_set, campo.valor);
    }
  }
  void Line(const CardLine& linha) override {
    linha_[sel_] = 0;
    linha_[rec_] = lidas_++;
    for (const auto& [campo, valor] : campos_) linha_[*campo] = valor(linha);
    linha_.Append();
  }
  void TakeBack() noexcept override {
    set_.EmptyDataSet();
    lidas_ = 0;
  }

 private:
  TClientDataSet& set_;
  RowWriter linha_;
  Field &sel_, &rec_;
  std::vector<std::pair<const Field*, Value (*)(const CardLine&)>> campos_;
  int64_t lidas_ = 0;
};

// The rows of a set by the text of a field, each as the set shows it.
using Lugares = std::unordered_map<std::string, std::vector<int64_t>>;
Lugares PorTexto(TClientDataSet& set, const Field& campo) {
  Lugares lugares;
  for (int64_t i = 0, linhas = set.DisplayCount(); i < linhas; ++i)
    lugares[set.Cell(i, campo).AsString()].push_back(i);
  return lugares;
}

// A transaction without a number is nobody's.
bool SemNumero(std::string_view transacao) { return Trim(transacao).empty(); }

}  // namespace

// --- The acquirers.

const TFmConcilia::RegraOperadora& TFmConcilia::Regra(int operadora) {
  static const ArquivoCartao kPlanilha{
      {".xlsx"}, false, "Arquivo inválido. Tente novamente com um arquivo .xlsx"};
  static const std::array<RegraOperadora, 6> kRegras{{
      {-1,
       false,
       {{".csv", ".txt"}, false, kCsvOuTxt},
       &TFmConcilia::ConciliaGetnet,
       &TFmConcilia::GravaGetnet},
      {kTipoVenda, false, kPlanilha, &TFmConcilia::ConciliaStone, &TFmConcilia::GravaStone},
      {-1, true, {{".CSV", ".TXT"}, true, kCsvOuTxt}, &TFmConcilia::ConciliaCielo, &TFmConcilia::GravaCielo},
      {kTipoPedido, true, kPlanilha, &TFmConcilia::ConciliaPagarMe, nullptr},
      {kTipoPedido, true, kPlanilha, &TFmConcilia::ConciliaYapay, nullptr},
      {-1,
       false,
       {{".csv"}, false, "Arquivo inválido. Tente novamente com um arquivo .csv."},
       &TFmConcilia::ConciliaGetnet,
       &TFmConcilia::GravaGetnet},
  }};
  return kRegras[static_cast<std::size_t>(operadora)];
}

void TFmConcilia::LigaCartoes() {
  DtCartao_Ini.SetDate(Date(2000, 1, 1));
  DtCartao_Fim.SetDate(Date(2050, 1, 1));
  TodayOnEnter(DtCartao_Ini);
  SameOnEnter(DtCartao_Fim, DtCartao_Ini);
  CbCartao_TipoConcilia.SetItemIndex(kTipoVenda);
  CbCartao_TipoConcilia.SetEnabled(false);
  CriaTabela(Leiaute::Cielo);
  Lookups({
      {&EdtCodBanco, &PqBanco, {{"NOME_BANCO", &EdtDescBanco}}, "", false, nullptr},
      {&EdtContaMoeda, &PqContaMoeda, {{"DESCRICAO", &EdtDescContaMoeda}}, "", false, nullptr},
  });

  cbCartao_Operadora.OnChange = [this] { cbCartao_OperadoraChange(); };
  SpeedButton2.OnClick = [this] {
    if (const auto arquivo = User().OpenFile("SpeedButton2", "csv|*.csv|txt|*.txt|xlsx|*.xlsx|Todos|*.*"))
      EdCartao_Arquivo.SetText(*arquivo);
  };
  BtCartao_Consultar.OnClick = [this] { BtCartao_ConsultarClick(); };
  BitBtn13.OnClick = [this] { BitBtn13Click(); };
  BitBtn2.OnClick = [this] { Close(); };
  CbConferencia.OnChange = CbDiferencas.OnChange = [this] { MostraConferencia(); };
  LbConferencia.SetVisible(false);
  TbVendas.Sel.OnChange = [this] {
    if (!casando_) TbVendasSELChange();
  };
  for (TOrvDBGrid* grade : {&GridCC, &GridArq}) {
    grade->SetDropZeros(true);
    grade->OnExit = [set = &grade->Set()] { set->PostIfEditing(); };
  }
}

void TFmConcilia::cbCartao_OperadoraChange() {
  if (cbCartao_Operadora.ItemIndex() < 0) return;
  const int tipo = Regra(cbCartao_Operadora.ItemIndex()).tipo;
  CbCartao_TipoConcilia.SetEnabled(tipo < 0);
  if (tipo >= 0) CbCartao_TipoConcilia.SetItemIndex(tipo);
}

void TFmConcilia::BtCartao_ConsultarClick() {
  const int operadora = cbCartao_Operadora.ItemIndex();
  if (operadora < 0) {
    Recusa("Selecione uma operadora.", cbCartao_Operadora);
    return;
  }
  const RegraOperadora& regra = Regra(operadora);
  if (CbCartao_TipoConcilia.ItemIndex() == kTipoPedido && !regra.pedidos) {
    Recusa("A " + cbCartao_Operadora.Text() +
               " não tem conciliação de pedidos. Escolha \"Venda\" ou "
               "\"Conta Corrente\".",
           CbCartao_TipoConcilia);
    return;
  }
  LbCartao.Mostra("");
  LbConferencia.SetCaption("");
  (this->*regra.concilia)();
  MostraConferencia();
}

void TFmConcilia::BitBtn13Click() {
  if (operadora_ < 0) return Inform("Não há conciliação de cartões a gravar.");
  if (cbCartao_Operadora.ItemIndex() != operadora_ || CbCartao_TipoConcilia.ItemIndex() != tipo_) {
    Recusa("A operadora ou o tipo foi trocado depois da consulta. Consulte novamente.", cbCartao_Operadora);
    return;
  }
  TbVendas.PostIfEditing();
  TbCartao_Arq.PostIfEditing();
  LbCartao.Mostra("");
  if (operadora_ == kStone && ParcelasDivergem()) return Inform("Valores das parcelas divergem.");
  if (tipo_ == kTipoPedido)
    GravaConciliacaoPedido();
  else
    (this->*Regra(operadora_).grava)();
  Inform("Operação concluída com sucesso.");
}

bool TFmConcilia::ParcelasDivergem() {
  const Inteiro vendas(TbVendas), arquivo(TbCartao_Arq);
  const Field& parcela = TbCartao_Arq["VALOR_PARCELA"];
  const Lugares linhas = PorTexto(TbCartao_Arq, TbCartao_Arq["COMPROVANTE_VENDA"]);
  for (int64_t i = 0, n = TbVendas.DisplayCount(); i < n; ++i) {
    if (TbVendas.Cell(i, TbVendas.Sel).Text() != "1") continue;
    const auto achadas = linhas.find(TbVendas.Cell(i, TbVendas.Transacao).AsString());
    if (achadas != linhas.end() && TbCartao_Arq.Cell(achadas->second.front(), parcela).AsCurrency() !=
                                       TbVendas.Cell(i, TbVendas.ValorParcela).AsCurrency())
      return true;
  }
  return false;
}

// --- What is listed.

void TFmConcilia::ConciliaCielo() {
  if (CbCartao_TipoConcilia.ItemIndex() == kTipoPedido) return ConciliaCieloPedido();
  const auto arquivo = Arquivo();
  if (!arquivo) {
    Recusa("Arquivo inválido", EdCartao_Arquivo);
    Abort();
  }
  const bool mapa = Funcoes.Existe("POSICAO", {{"BANCO", EdtCodBanco.Text()}, {"TIPO", "CT"}});
  if (mapa && NomeRecusado(Regra(kCielo).arquivo)) Abort();
  if (mapa && EdtCodBanco.Empty()) {
    Recusa("Banco inválido.", EdtCodBanco);
    Abort();
  }
  const BusyMark busy(Funcoes, *this);
  const bool vendas = CbCartao_TipoConcilia.ItemIndex() == kTipoVenda;
  const std::string texto = OutsideText(arquivo->Bytes(kMaxOutsideFile));
  CriaTabela(Leiaute::Cielo);
  ListaVendas(vendas ? SQLVenda() : SQLContaCorrente(), true, true);
  const auto volta = AtEnd([this] { TbCartao_Arq.First(); });
  try {
    CarregaLinhas([&](CardSink& linhas) {
      if (mapa)
        ReadCieloCsv(texto, Mapa(), Today(), linhas);
      else
        ReadCieloEdi(texto, vendas ? "03" : "04", linhas);
    });
  } catch (const WrongCardFile& e) {
    Inform(e.what());
    Abort();
  }
  CasaArquivo();
}

void TFmConcilia::ConciliaGetnet() {
  if (EdtCodBanco.Empty()) {
    Recusa("Banco inválido.", EdtCodBanco);
    return;
  }
  const BusyMark busy(Funcoes, *this);
  const bool vendas = CbCartao_TipoConcilia.ItemIndex() == kTipoVenda;
  CriaTabela(Leiaute::Separado);
  GridArq.SetColumnTitle("VALOR_PARCELA", vendas ? "Vl. Total Líq." : "Vl. Bruto Parcela");
  for (const char* campo : {"VALOR_LIQ_PARCELA", "TAXA", "PARCELA"}) GridArq.SetColumnVisible(campo, !vendas);
  ListaVendas(vendas ? SQLVenda() : SQLContaCorrente(), false, !vendas);
  const auto volta = AtEnd([this] { TbCartao_Arq.First(); });
  const auto arquivo = Arquivo();
  if (!arquivo) return;
  if (!NomeRecusado(Regra(operadora_).arquivo)) {
    try {
      const std::string texto = OutsideText(arquivo->Bytes(kMaxOutsideFile));
      CarregaLinhas([&](CardSink& linhas) {
        if (vendas)
          ReadSeparatedSales(texto, Mapa(), Today(), linhas);
        else
          ReadSeparatedPayments(texto, Mapa(), linhas);
      });
    } catch (const UserError& e) {
      Inform(std::string("Não foi possível carregar o arquivo.\n\n") + e.what());
    }
  }
  CasaLista(true);
}

void TFmConcilia::ConciliaStone() {
  const BusyMark busy(Funcoes, *this);
  CriaTabela(Leiaute::Stone);
  ListaVendas(SQLVenda(), false, false);
  const auto volta = AtEnd([this] { TbCartao_Arq.First(); });
  const auto arquivo = Arquivo();
  if (!arquivo || NomeRecusado(Regra(kStone).arquivo)) return;
  CarregaLinhas([&](CardSink& linhas) {
    StoneSheet leitor(linhas);
    Owner().Sheets().Read(*arquivo, leitor);
  });
  CasaLista(false);
}

std::string TFmConcilia::SQLVenda() const { return SQLCartao(false); }
std::string TFmConcilia::SQLContaCorrente() const { return SQLCartao(true); }

std::string TFmConcilia::SQLCartao(bool conta_corrente) const {
  const auto situacao = [&](const char* coluna, const char* conciliado, const char* aberto) {
    const int busca = RgCartao_Busca.ItemIndex();
    const char* valor = busca == kConciliados ? conciliado : busca == kAConciliar ? aberto : nullptr;
    return valor == nullptr ? "" : std::string(" AND ") + coluna + " = " + valor;
  };
  std::string sql = "SELECT VENDA.CODVEN, ITCONDIVENDA.CDITCONDIVENDA, VENDA.VALOR, ITCONDIVENDA.NRPARCELA, ";
  sql += conta_corrente ? "CONTACOR.VALOR AS VALOR_PARCELA, CONTACOR.LANCAMENTO, "
                          "CASE WHEN CONTACOR.PENDENTE = 'S' THEN 0 ELSE 1 END AS BAIXADO, "
                        : "ITCONDIVENDA.VALOR AS VALOR_PARCELA, '' AS LANCAMENTO, ITCONDIVENDA.BAIXADO, ";
  sql +=
      "ITCONDIVENDA.TRANSACAO, MOEDA.TXOPERADORA, "
      "(SELECT COUNT(*) FROM {ITCONDIVENDA} PARCELAS WHERE PARCELAS.CDCONDIVENDA = "
      "ITCONDIVENDA.CDCONDIVENDA) AS QT_PARCELAS, '{}' AS EMPRESA, MOEDA.CONTA, VENDA.DATA "
      "FROM {VENDA} VENDA "
      "INNER JOIN {CONDIVENDA} CONDIVENDA ON VENDA.CODVEN = CONDIVENDA.CDVENDA "
      "INNER JOIN {ITCONDIVENDA} ITCONDIVENDA ON CONDIVENDA.CDCONDIVENDA = ITCONDIVENDA.CDCONDIVENDA "
      "LEFT JOIN {MOEDA} MOEDA ON ITCONDIVENDA.CDMOEDA = MOEDA.CODMOE ";
  if (conta_corrente) {
    sql +=
        "INNER JOIN {RECEBERB} RECEBERB ON RECEBERB.NUMERO = VENDA.CODVEN||'C/'||ITCONDIVENDA.NRPARCELA "
        "INNER JOIN {CONTACOR} CONTACOR ON RECEBERB.LANCAMENTO = CONTACOR.LANCAMENTO ";
  }
  sql += "WHERE (ITCONDIVENDA.TRANSACAO = '' OR ITCONDIVENDA.TRANSACAO IS NOT NULL)" +
         WhereBetween(conta_corrente ? "CONTACOR.DT_VENCTO" : "VENDA.DATA", DtCartao_Ini.Date(),
                      DtCartao_Fim.Date());
  sql += conta_corrente ? " AND CONTACOR.TIPO = 'LJ'" + situacao("CONTACOR.PENDENTE", "'N'", "'S'")
                        : situacao("ITCONDIVENDA.BAIXADO", "1", "0");
  sql +=
      Where("ITCONDIVENDA.TRANSACAO", "=", EdCartao_Conciliacao) + Where("MOEDA.CONTA", "=", EdtContaMoeda);
  return ForCompanies(sql, "", CbTodasEmpresas.Checked());
}

void TFmConcilia::PreencheVendas(const std::string& sql, RowSink& linhas) {
  operadora_ = cbCartao_Operadora.ItemIndex();
  tipo_ = CbCartao_TipoConcilia.ItemIndex();
  const ScopedValue casando(casando_, true);
  const ControlsHold hold(TbVendas);
  TbVendas.Cancel();
  TbVendas.SetFiltered(false);
  TbVendas.SetIndexFieldNames("");
  TbVendas.EmptyDataSet();
  Tabela.IBDatabase().Fetch(sql, linhas);
  TbVendas.SetIndexFieldNames(kOrdem);
  TbVendas.First();
}

void TFmConcilia::ListaVendas(const std::string& sql, bool taxa, bool lancamento) {
  struct Vendas : RowSink {
    Vendas(VendasSet& s, bool com_taxa, bool com_lancamento)
        : set(s), taxa(com_taxa), lancamento(com_lancamento) {}
    void Columns(const std::vector<Column>&) override {}
    bool Row(std::span<Value> c) override {
      enum { kCodven, kItem, kValor, kParcela, kValorParcela, kLancamento, kBaixado, kTransacao, kTaxa };
      enum { kParcelas = kTaxa + 1, kEmpresa, kConta, kData };
      const char* sel = c[kBaixado].AsInteger() == 0 ? "0" : "1";
      linha[set.Sel] = sel;
      linha[set.SelOrig] = sel;
      linha[set.Parcela] =
          std::to_string(c[kParcela].AsInteger()) + "/" + std::to_string(c[kParcelas].AsInteger());
      if (taxa) linha[set.Txoperadora] = c[kTaxa];
      if (lancamento) linha[set.Lancamento] = std::move(c[kLancamento]);
      linha[set.Codven] = std::move(c[kCodven]);
      linha[set.Cditcondivenda] = c[kItem];
      linha[set.Valor] = c[kValor];
      linha[set.ValorParcela] = c[kValorParcela];
      linha[set.Transacao] = std::move(c[kTransacao]);
      linha[set.TaxaContratada] = c[kTaxa];
      linha[set.Emp] = std::move(c[kEmpresa]);
      linha[set.Conta] = std::move(c[kConta]);
      linha[set.Data] = c[kData];
      linha.Append();
      return true;
    }
    VendasSet& set;
    RowWriter linha{set};
    bool taxa, lancamento;
  } vendas(TbVendas, taxa, lancamento);
  PreencheVendas(sql, vendas);
}

// --- The file.

void TFmConcilia::CriaTabela(Leiaute leiaute) {
  const char letra = "CGSP"[static_cast<std::size_t>(leiaute)];
  TbCartao_Arq.Cancel();
  TbCartao_Arq.SetFiltered(false);
  TbCartao_Arq.SetIndexFieldNames("");
  TbCartao_Arq.Close();
  TbCartao_Arq.FieldDefs.Clear();
  for (const CampoArquivo& campo : kCampos) {
    const bool tem = Tem(campo, letra);
    if (tem) TbCartao_Arq.FieldDefs.Add(campo.nome, campo.tipo, campo.tamanho);
    if (GridArq.FindColumn(campo.nome) != nullptr) GridArq.SetColumnVisible(campo.nome, tem);
  }
  TbCartao_Arq.FieldDefs.Add("DIFERE", FieldType::String, 1);
  GridArq.SetColumnTitle("VALOR_PARCELA", "Vl. Parcela");
  TbCartao_Arq.CreateDataSet();
}

bool TFmConcilia::NomeRecusado(const ArquivoCartao& arquivo) {
  const std::string nome = arquivo.maiusculas ? Upper(EdCartao_Arquivo.Text()) : EdCartao_Arquivo.Text();
  const bool aceito = std::any_of(arquivo.nomes.begin(), arquivo.nomes.end(), [&](std::string_view parte) {
    return nome.find(parte) != std::string::npos;
  });
  if (!aceito) Recusa(arquivo.recusa, EdCartao_Arquivo);
  return !aceito;
}

ColumnMap TFmConcilia::Mapa() const {
  ColumnMap mapa;
  for (const auto& linha : Tabela.IBDatabase().Rows(
           "SELECT CAMPO, INICIO, SEPARADOR, LINHA FROM " + Funcoes.DBLocal("POSICAO", true) + " WHERE " +
           Igual("BANCO", EdtCodBanco.Text()) + " AND TIPO = 'CT'")) {
    if (mapa.Empty())
      mapa.separador = linha[2].AsString(), mapa.linha = static_cast<int>(linha[3].AsInteger());
    mapa.campos.try_emplace(std::string(Trim(linha[0].Text())), static_cast<int>(linha[1].AsInteger()));
  }
  return mapa;
}

void TFmConcilia::CarregaLinhas(const std::function<void(CardSink&)>& le) {
  const ControlsHold hold(TbCartao_Arq);
  Linhas linhas(TbCartao_Arq);
  const auto ordem = AtEnd([this] { TbCartao_Arq.SetIndexFieldNames("REC"); });
  le(linhas);
}

// --- What matches.

void TFmConcilia::Altera(TClientDataSet& set, int64_t linha, std::initializer_list<Celula> celulas) {
  set.SetRecNo(linha + 1);
  set.Edit();
  for (const Celula& celula : celulas) celula.campo = celula.valor;
  set.Post();
}

void TFmConcilia::CasaArquivo() {
  const ScopedValue casando(casando_, true);
  const ControlsHold hold({&TbVendas, &TbCartao_Arq});
  Field &sel = TbCartao_Arq["SEL"], &comprovante = TbCartao_Arq["COMPROVANTE_VENDA"],
        &tipo = TbCartao_Arq["TIPO_ARQUIVO"], &parcela = TbCartao_Arq["PARCELA"],
        &status = TbCartao_Arq["STATUS_PAG"], &data = TbCartao_Arq["DATA"];
  const Lugares vendas = PorTexto(TbVendas, TbVendas.Transacao);
  std::unordered_set<std::string> feitos;
  for (int64_t i = 0, n = TbCartao_Arq.DisplayCount(); i < n; ++i) {
    const std::string numero = TbCartao_Arq.Cell(i, comprovante).AsString();
    if (SemNumero(numero) || !feitos.insert(numero).second) continue;
    const auto achadas = vendas.find(numero);
    if (achadas == vendas.end()) continue;
    const Value desta = TbCartao_Arq.Cell(i, tipo);
    // Of a payment only the instalment that it names; a file of another kind ticks nothing.
    if (desta.Text() != "03" && desta.Text() != "04") continue;
    bool alguma = false;
    for (const int64_t linha : achadas->second) {
      if (desta.Text() == "04" &&
          TbVendas.Cell(linha, TbVendas.Parcela).Text() != TbCartao_Arq.Cell(i, parcela).Text())
        continue;
      Altera(TbVendas, linha,
             {{TbVendas.Sel, "1"},
              {TbVendas.StatusPag, TbCartao_Arq.Cell(i, status)},
              {TbVendas.DataConc, TbCartao_Arq.Cell(i, data)}});
      alguma = true;
    }
    if (alguma) Altera(TbCartao_Arq, i, {{sel, 1}});
  }
  TbVendas.First();
}

void TFmConcilia::CasaLista(bool datas) {
  const ScopedValue casando(casando_, true);
  const ControlsHold hold({&TbVendas, &TbCartao_Arq});
  Field &sel = TbCartao_Arq["SEL"], &data = TbCartao_Arq["DATA"];
  const Lugares arquivo = PorTexto(TbCartao_Arq, TbCartao_Arq["COMPROVANTE_VENDA"]);
  for (const auto& [numero, vendas] : PorTexto(TbVendas, TbVendas.Transacao)) {
    const auto achadas = SemNumero(numero) ? arquivo.end() : arquivo.find(numero);
    if (achadas == arquivo.end()) continue;
    const Value dia = TbCartao_Arq.Cell(achadas->second.front(), data);
    for (const int64_t linha : vendas) {
      Altera(TbVendas, linha, {{TbVendas.Sel, "1"}});
      if (datas) Altera(TbVendas, linha, {{TbVendas.DataConc, dia}});
    }
    for (const int64_t linha : achadas->second) Altera(TbCartao_Arq, linha, {{sel, 1}});
  }
  TbVendas.First();
}

void TFmConcilia::TbVendasSELChange() {
  const ScopedValue casando(casando_, true);
  const std::string sel = TbVendas.Sel.AsString(), transacao = TbVendas.Transacao.AsString(),
                    parcela = TbVendas.Parcela.AsString();
  TbVendas.Post();
  TbCartao_Arq.PostIfEditing();
  if (SemNumero(transacao)) return;
  const Inteiro vendas(TbVendas);
  Inteiro arquivo(TbCartao_Arq);
  if (tipo_ != kTipoPedido) {
    for (const int64_t linha : Com(TbVendas, {{TbVendas.Transacao, transacao}}))
      Altera(TbVendas, linha, {{TbVendas.Sel, sel}});
  }
  const Celula comprovante{TbCartao_Arq["COMPROVANTE_VENDA"], transacao};
  std::vector<int64_t> linhas;
  if (tipo_ == kTipoPedido)
    linhas = Com(TbCartao_Arq, {comprovante, {TbCartao_Arq["PARCELA"], NumeroDaParcela(parcela)}});
  if (linhas.empty()) linhas = Com(TbCartao_Arq, {comprovante});
  for (const int64_t linha : linhas) Altera(TbCartao_Arq, linha, {{TbCartao_Arq["SEL"], sel == "1" ? 1 : 0}});
  if (!linhas.empty()) arquivo.Volta(linhas.front() + 1);
  if (CbConferencia.Checked()) Confere(false);
}

std::string TFmConcilia::NumeroDaParcela(std::string_view parcela) {
  return std::string(parcela.substr(0, parcela.find('/')));
}

std::vector<int64_t> TFmConcilia::Com(TClientDataSet& set, std::initializer_list<Celula> celulas) {
  std::vector<int64_t> linhas;
  for (int64_t i = 0, n = set.DisplayCount(); i < n; ++i) {
    if (std::all_of(celulas.begin(), celulas.end(),
                    [&](const Celula& c) { return set.Cell(i, c.campo).Text() == c.valor.Text(); }))
      linhas.push_back(i);
  }
  return linhas;
}

// --- What the file says against what is listed.

namespace {

// The fields that hold a line's gross and net, "" where the file doesn't tell.
struct CamposDoValor {
  const char *bruto, *liquido;
};
CamposDoValor ValoresDe(TClientDataSet& arquivo, bool vendas) {
  if (arquivo.FindField("VALOR_BRUTO") != nullptr) return {"VALOR_BRUTO", "VALOR_LIQ"};
  if (arquivo.FindField("VALOR_PARCELA_LIQ") != nullptr) return {"VALOR_PARCELA", "VALOR_PARCELA_LIQ"};
  if (arquivo.FindField("VALOR_LIQ_PARCELA") == nullptr) return {"VALOR_PARCELA", ""};
  return vendas ? CamposDoValor{"VALOR_TOTAL", "VALOR_PARCELA"}
                : CamposDoValor{"VALOR_PARCELA", "VALOR_LIQ_PARCELA"};
}

// What the acquirer may be off by its rounding.
bool Difere(Currency cobrada, Currency contratada) {
  return (cobrada - contratada).Abs() > Currency::FromCents(1);
}

}  // namespace

void TFmConcilia::MostraConferencia() {
  LbConferencia.SetVisible(CbConferencia.Checked());
  for (TClientDataSet* set : std::initializer_list<TClientDataSet*>{&TbVendas, &TbCartao_Arq}) {
    set->PostIfEditing();
    set->SetFiltered(false);
    set->SetFilter("");
  }
  if (CbDiferencas.Checked() || CbConferencia.Checked()) Confere(CbDiferencas.Checked());
  if (!CbDiferencas.Checked()) return;
  for (TClientDataSet* set : std::initializer_list<TClientDataSet*>{&TbVendas, &TbCartao_Arq}) {
    set->SetFilter("DIFERE = 'S'");
    set->SetFiltered(true);
  }
}

void TFmConcilia::Confere(bool diferencas) {
  const ScopedValue casando(casando_, true);
  const ControlsHold hold({&TbVendas, &TbCartao_Arq});
  const int64_t nas_vendas = TbVendas.RecNo(), no_arquivo = TbCartao_Arq.RecNo();
  const CamposDoValor valores = ValoresDe(TbCartao_Arq, tipo_ == kTipoVenda);
  Field &comprovante = TbCartao_Arq["COMPROVANTE_VENDA"], &parcela = TbCartao_Arq["PARCELA"],
        &sel = TbCartao_Arq["SEL"], &bruto = TbCartao_Arq[valores.bruto], &difere = TbCartao_Arq["DIFERE"];
  const Field* liquido = TbCartao_Arq.FindField(valores.liquido);
  const Lugares vendas = PorTexto(TbVendas, TbVendas.Transacao);
  std::vector<bool> em_ordem(static_cast<std::size_t>(TbVendas.DisplayCount()));
  Currency total, taxas, cobradas, contratadas;
  int64_t conciliadas = 0;
  const int64_t linhas = TbCartao_Arq.DisplayCount();
  for (int64_t i = 0; i < linhas; ++i) {
    const Currency valor = TbCartao_Arq.Cell(i, bruto).AsCurrency();
    const Currency taxa =
        liquido == nullptr ? Currency() : valor - TbCartao_Arq.Cell(i, *liquido).AsCurrency();
    total += valor;
    taxas += taxa;
    bool certa = TbCartao_Arq.Cell(i, sel).AsInteger() == 1;
    conciliadas += certa ? 1 : 0;
    const auto achadas = vendas.find(TbCartao_Arq.Cell(i, comprovante).AsString());
    if (certa && achadas != vendas.end()) {
      const Value taxa_contratada = TbVendas.Cell(achadas->second.front(), TbVendas.TaxaContratada);
      if (liquido != nullptr && !taxa_contratada.IsNull()) {
        const Currency contratada = (valor * (taxa_contratada.AsFloat() / 100)).Round2();
        cobradas += taxa;
        contratadas += contratada;
        certa = !Difere(taxa, contratada);
      }
      // Of a transaction the instalment that the line names, or all.
      const std::string numero = TbCartao_Arq.Cell(i, parcela).AsString();
      const bool alguma = std::any_of(achadas->second.begin(), achadas->second.end(), [&](int64_t linha) {
        return TbVendas.Cell(linha, TbVendas.Parcela).Text() == numero;
      });
      for (const int64_t linha : achadas->second) {
        if (!alguma || TbVendas.Cell(linha, TbVendas.Parcela).Text() == numero)
          em_ordem[static_cast<std::size_t>(linha)] = certa;
      }
    }
    if (diferencas) Altera(TbCartao_Arq, i, {{difere, certa ? "N" : "S"}});
  }
  std::string texto = std::to_string(linhas) + (linhas == 1 ? " linha" : " linhas") + " no arquivo, " +
                      std::to_string(conciliadas) + (conciliadas == 1 ? " conciliada, " : " conciliadas, ") +
                      std::to_string(linhas - conciliadas) + " sem correspondência. Bruto " + total.Brazil();
  if (liquido != nullptr) texto += ", taxa " + taxas.Brazil() + ", líquido " + (total - taxas).Brazil();
  const Currency diferenca = cobradas - contratadas;
  if (!contratadas.IsZero()) {
    texto +=
        ". Nas conciliadas a taxa foi de " + cobradas.Brazil() + ", a contratada é de " +
        contratadas.Brazil() + ": " +
        (diferenca.IsZero() ? "sem diferença"
                            : diferenca.Abs().Brazil() + (diferenca > Currency() ? " a mais" : " a menos"));
  }
  LbConferencia.SetCaption(texto + ".");
  LbConferencia.SetColor(linhas == conciliadas && !Difere(cobradas, contratadas) ? "good" : "warning");
  if (diferencas) {
    for (std::size_t i = 0; i < em_ordem.size(); ++i)
      Altera(TbVendas, static_cast<int64_t>(i), {{TbVendas.Difere, em_ordem[i] ? "N" : "S"}});
  }
  TbVendas.SetRecNo(nas_vendas);
  TbCartao_Arq.SetRecNo(no_arquivo);
}

}  // namespace orv
