// The gathering: balance before the period, the movements some days at a time, and what each of them brings
// along.
#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "reports/rel_cc.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A row of TbRelatorio. The sets and their fields are what the report reads by name.
enum Campo : std::size_t {
  Lancamento,
  Numero,
  Banco,
  Nome_Banco,
  Conta,
  Operacao,
  Valor,
  Saldo,
  SaldoIni,
  DtLanc,
  DtCont,
  DtVencto,
  CodGrupo,
  DesGrupo,
  CodHistorico,
  Historico,
  Limite,
  EmpresaConta,
  Agencia,
  Data_ini,
  data_fim,
  Grupo,
  Obs,
  Pessoa,
  Agrupar,
  Pendente,
  TipoMov,
  kCampos
};

constexpr ReportField kRelatorio[kCampos] = {{"Lancamento", FieldType::String, 7},
                                             {"Numero", FieldType::String, 15},
                                             {"Banco", FieldType::String, 5},
                                             {"Nome_Banco", FieldType::String, 40},
                                             {"Conta", FieldType::String, 13},
                                             {"Operacao", FieldType::String, 2},
                                             {"Valor", FieldType::Currency},
                                             {"Saldo", FieldType::Float},
                                             {"SaldoIni", FieldType::Float},
                                             {"DtLanc", FieldType::Date},
                                             {"DtCont", FieldType::Date},
                                             {"DtVencto", FieldType::Date},
                                             {"CodGrupo", FieldType::String, 6},
                                             {"DesGrupo", FieldType::String, 50},
                                             {"CodHistorico", FieldType::String, 5},
                                             {"Historico", FieldType::String, 30},
                                             {"Limite", FieldType::Currency},
                                             {"Empresa", FieldType::String, 30},
                                             {"Agencia", FieldType::String, 7},
                                             {"Data_ini", FieldType::Date},
                                             {"data_fim", FieldType::Date},
                                             {"Grupo", FieldType::String, 2},
                                             {"Obs", FieldType::String, 100},
                                             {"Pessoa", FieldType::String, 40},
                                             {"Agrupar", FieldType::String, 1},
                                             {"Pendente", FieldType::String, 1},
                                             {"Tipo", FieldType::String, 2}};

// The columns of the movements. Their places are named by the order.
enum Coluna : std::size_t {
  mBanco,
  mConta,
  mNomeBanco,
  mValor,
  mDtLan,
  mDtVencto,
  mDocto,
  mLancamento,
  mObservacao,
  mGrupo,
  mPendente,
  mCodGrupo,
  mDesGrupo,
  mOperacao,
  mCodHistorico,
  mHistorico,
  mDtCont,
  mEmpresa,
  mAgencia,
  mTipo,
  mLimite,
  mSufixo,
  kColunas
};

constexpr const char* kSelecao =
    "SELECT CONTACOR.BANCO, CONTACOR.CONTA, BANCO.NOME_BANCO, CONTACOR.VALOR, CONTACOR.DT_LAN, "
    "CONTACOR.DT_VENCTO, CONTACOR.DOCTO, CONTACOR.LANCAMENTO, CONTACOR.OBSERVACAO, CONTACOR.GRUPO, "
    "CONTACOR.PENDENTE, SUBGRUPO.CODIGO AS CODGRUPO, SUBGRUPO.DESCRICAO AS DESGRUPO, CONTACOR.OPERACAO, "
    "CONTACOR.HISTORICO AS CODHISTORICO, HISTORICO.DESCRICAO AS HISTORICO, CONTACOR.DT_CONT, "
    "CADCONTA.EMPRESA, CADCONTA.AGENCIA, CONTACOR.TIPO, CADCONTA.LIMITE, '{}' AS SUFIXO";

// The accounts come first: they are few, and lead to their movements.
constexpr const char* kMovimentos =
    " FROM {CADCONTA} CADCONTA INNER JOIN {CONTACOR} CONTACOR ON (CONTACOR.CONTA = CADCONTA.CONTA)";
constexpr const char* kDescricoes =
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (CONTACOR.GRUPO = SUBGRUPO.CODIGO)"
    " LEFT JOIN {CADBAN} BANCO ON (CONTACOR.BANCO = BANCO.BANCO)"
    " LEFT JOIN {HISTCP} HISTORICO ON (CONTACOR.HISTORICO = HISTORICO.HISTORICO)";

// Fields of TbFinan.
enum CampoTitulo : uint8_t {
  fTipo,
  fLancto,
  fDocto,
  fNumero,
  fDupli,
  fCodcli,
  fNome,
  fDtEmissao,
  fDtVencto,
  fObs,
  fDescHist,
  fCodHist,
  fValor,
  fValPag,
  fJuros,
  fValDev,
  fDesconto,
  fContaC,
  fContaD,
  fObsBaixa,
  fClasse,
  fDescClasse,
  fCnpj
};

// The titles of a kind, and into which field each column goes. Of settlements that differ in nothing one is
// shown; the statement's order says which comes first.
constexpr const char* kPagos =
    "SELECT DISTINCT M.LANCAMENTO, ENTIDADE.NOME, ENTIDADE.CONTAC AS ENT_CONTAC, "
    "ENTIDADE.CONTAD AS ENT_CONTAD, PAGTO1.VAL_PAG, PAGTO1.VAL_DEV, PAGTO1.JURO, PAGTO1.DESCONTO, "
    "HISTCP.DESCRICAO AS DESCHIST, PAGTO.NUM_AP, PAGTO.DUPLI, PAGTO.CODCRE, PAGTO.HISTORICO, PAGTO.OBS, "
    "PAGTO.DT_VEN, PAGTO.DT_EMI, PAGTO.VALOR, PAGTO1.OBS AS OBS_PAGTO, PAGTO1.DOCTO, "
    "PAGTO.NUM_OS AS CLASSE, SUBGRUPO.DESCRICAO AS DESC_CLASSE, ENTIDADE.CNPJ FROM ";
constexpr const char* kPagosDe =
    " INNER JOIN {PAGTO1} PAGTO1 ON (PAGTO1.LANCAMENTO = M.LANCAMENTO)"
    " INNER JOIN {PAGTO} PAGTO ON (PAGTO.NUM_AP = PAGTO1.NUM_AP)"
    " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = PAGTO.CODCRE)"
    " LEFT JOIN {HISTCP} HISTCP ON (HISTCP.HISTORICO = PAGTO.HISTORICO)"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (SUBGRUPO.CODIGO = PAGTO.NUM_OS)";
constexpr CampoTitulo kCamposPagos[] = {fLancto,  fNome,     fContaC,     fContaD,    fValPag, fValDev,
                                        fJuros,   fDesconto, fDescHist,   fNumero,    fDupli,  fCodcli,
                                        fCodHist, fObs,      fDtVencto,   fDtEmissao, fValor,  fObsBaixa,
                                        fDocto,   fClasse,   fDescClasse, fCnpj};
constexpr const char* kRecebidos =
    "SELECT DISTINCT M.LANCAMENTO, ENTIDADE.NOME, ENTIDADE.CONTAC AS ENT_CONTAC, "
    "ENTIDADE.CONTAD AS ENT_CONTAD, RECEBERB.VALOR_PAGO, "
    "(RECEBERB.DESCONTO + RECEBERB.DESCONTO2 + RECEBERB.DESCONTO3) AS DESCONTO, RECEBERB.JUROS, "
    "RECEBERB.VAL_DEV, RECEBER.NUMERO, RECEBER.CODCLI, RECEBER.DT_EMISSAO, RECEBER.DT_VENCTO, "
    "RECEBER.VALOR2, RECEBER.OBS, RECEBERB.OBS AS OBS_BAIXA, RECEBERB.DOCTO, RECEBER.CLASSE, "
    "SUBGRUPO.DESCRICAO AS DESC_CLASSE, ENTIDADE.CNPJ FROM ";
constexpr const char* kRecebidosDe =
    " INNER JOIN {RECEBERB} RECEBERB ON (RECEBERB.LANCAMENTO = M.LANCAMENTO)"
    " INNER JOIN {RECEBER} RECEBER ON (RECEBER.NUMERO = RECEBERB.NUMERO)"
    " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = RECEBER.CODCLI)"
    " LEFT JOIN {SUBGRUPO} SUBGRUPO ON (SUBGRUPO.CODIGO = RECEBER.CLASSE)";
constexpr CampoTitulo kCamposRecebidos[] = {
    fLancto,    fNome,     fContaC, fContaD, fValPag,   fDesconto, fJuros,  fValDev,     fNumero, fCodcli,
    fDtEmissao, fDtVencto, fValor,  fObs,    fObsBaixa, fDocto,    fClasse, fDescClasse, fCnpj};

// Movements brought together. Many make few statements, few keep little in memory.
constexpr int64_t kLinhasPorJanela = 2000;

constexpr const char* kDatas[] = {"CONTACOR.DT_LAN", "CONTACOR.DT_CONT", "CONTACOR.DT_VENCTO"};
constexpr const char* kOrdens[] = {"ORDER BY 5, 8", "ORDER BY 17, 8", "ORDER BY 6, 8"};
constexpr const char* kCamposData[] = {"DtLanc", "DtCont", "DtVencto"};
constexpr const char* kAgrupar[] = {"L", "G", "H", "S", "S", "D", "O", "C"};

std::size_t Opcao(const RadioGroup& grupo) {
  return static_cast<std::size_t>(std::max(grupo.ItemIndex(), 0));
}

// What finds again, among what the movements bring along, the part of one of them.
std::string Chave(uint16_t empresa, std::string_view lancamento) {
  return std::to_string(empresa).append("|").append(lancamento);
}

// A settled payable may be named by the movement's document.
std::string ChaveFornecedor(uint16_t empresa, std::string_view lancamento, std::string_view docto,
                            std::string_view tipo) {
  return Chave(empresa, lancamento).append("|").append(docto).append("|").append(tipo);
}

}  // namespace

TfmRelCC::Consulta TfmRelCC::LeFiltros() const {
  Consulta consulta;
  consulta.tipo = static_cast<Tipo>(Opcao(RgTipo));
  consulta.data = kDatas[Opcao(RgData)];
  consulta.de = EdtDataDe.Date();
  consulta.ate = edtDataAte.Date();
  consulta.filtro = Where("CONTACOR.CONTA", "=", RelConta);
  if (consulta.tipo != Tipo::PorConta) consulta.filtro += " AND CADCONTA.IMP_FLUXO = 'S'";
  consulta.filtro +=
      Where("CONTACOR.GRUPO", ">=", EdtClasseIni) + Where("CONTACOR.GRUPO", "<=", EdtClasseFim);
  consulta.filtro += Where("CONTACOR.HISTORICO", "=", EdtHistHistorico);
  if (RgBusca.ItemIndex() == 1) consulta.filtro += " AND CONTACOR.PENDENTE <> 'S'";
  consulta.filtro_linhas = Where("CADCONTA.BANCO", "=", RelCodBan) + Where("CONTACOR.DOCTO", "=", EdtDocto);
  return consulta;
}

std::string TfmRelCC::Indice() const {
  const std::string data = kCamposData[Opcao(RgData)];
  const std::string indices[] = {
      data + ";Lancamento",    "CodGrupo", "CodHistorico",     "CodGrupo;CodHistorico",
      "CodGrupo;CodHistorico", "Numero",   data + ";Operacao", "Conta;" + data};
  const std::string& indice = indices[Opcao(RgAgrupar)];
  return cbAgpPendente.Checked() ? "Pendente;" + indice : indice;
}

std::string TfmRelCC::PorEmpresa(std::string_view sql, std::string_view tabela,
                                 std::string_view ordem) const {
  return ForCompanies(sql, tabela, consulta_.tipo == Tipo::TodasEmpresas, ordem);
}

uint16_t TfmRelCC::Empresa(std::string_view sufixo) {
  const auto found = std::find(empresas_.begin(), empresas_.end(), sufixo);
  const auto numero = static_cast<uint16_t>(found - empresas_.begin());
  if (found == empresas_.end()) empresas_.emplace_back(sufixo);
  return numero;
}

std::string TfmRelCC::Movimentos(Date de, Date ate, std::string_view mais) const {
  return std::string(kMovimentos).append(mais) + " WHERE 1 = 1 " + consulta_.filtro +
         consulta_.filtro_linhas + WhereBetween(consulta_.data, de, ate);
}

void TfmRelCC::CriaRelatorio() { LayDown(TbRelatorio, kRelatorio); }

void TfmRelCC::Monta_Rel(Gathering& gathering) {
  TbFinan.EmptyDataSet();
  TbFinan.SetIndexFieldNames("");
  CriaRelatorio();
  consulta_ = LeFiltros();
  como_ = {RgData.ItemIndex(), RgAgrupar.ItemIndex(), cbAgpPendente.Checked()};
  empresas_.clear();
  empresa_da_linha_.clear();
  empresa_do_titulo_.clear();

  gathering.Stage("Saldo anterior");
  const Currency inicial = SaldoAnterior();
  Currency saldo = inicial;
  bool cabem = inicial.FitsField();
  int64_t linhas = 0;
  const std::vector<Janela> janelas = Janelas(linhas);
  gathering.Stage("Lançamentos", linhas);
  for (const Janela& janela : janelas) {
    Anexos anexos;
    BuscaPessoas(janela, anexos);
    if (CbFinanceiro.Checked()) BuscaFinanceiro(janela, anexos);
    const std::string sql = kSelecao + Movimentos(janela.de, janela.ate, kDescricoes);
    ForEach(PorEmpresa(sql, "CONTACOR", kOrdens[Opcao(RgData)]), [&](std::span<Value> movimento) {
      Anexa(movimento, anexos, inicial, saldo);
      cabem = cabem && saldo.FitsField();
      gathering.Advance();
    });
  }
  if (TbRelatorio.IsEmpty() && CbZeradas.Checked()) ContasSemMovimento(inicial);

  if (!cabem) {
    ApontaForaDeMedida(User(), Tabela.IBDatabase(), PorEmpresa(ForaDeMedida(kContaCorrente), "CONTACOR"));
  }

  gathering.Stage("Ordem das linhas");
  TbRelatorio.SetIndexFieldNames(Indice());
  TbFinan.SetIndexFieldNames("Nome;Numero");
}

Currency TfmRelCC::SaldoAnterior() const {
  const std::string sql = std::string("SELECT CONTACOR.OPERACAO, ") + Soma("CONTACOR.VALOR") + " AS VALOR" +
                          kMovimentos + " WHERE 1 = 1 " + consulta_.filtro + " AND " + consulta_.data +
                          " < " + Funcoes.AspasData(consulta_.de) + " GROUP BY CONTACOR.OPERACAO";
  Currency creditos, debitos;
  for (const auto& linha : Tabela.IBDatabase().Rows(PorEmpresa(sql, "CONTACOR"))) {
    if (linha[0].Text() == "+") creditos += SomaDe(linha[1]);
    if (linha[0].Text() == "-") debitos += SomaDe(linha[1]);
  }
  return (creditos - debitos).Round2();
}

std::vector<TfmRelCC::Janela> TfmRelCC::Janelas(int64_t& linhas) {
  const std::string sql = std::string("SELECT ") + consulta_.data + ", '{}' AS SUFIXO, COUNT(*) AS LINHAS" +
                          Movimentos(consulta_.de, consulta_.ate) + " GROUP BY " + consulta_.data;
  struct Dia {
    int64_t linhas = 0;
    std::vector<uint16_t> empresas;
  };
  std::map<Date, Dia> dias;
  ForEach(PorEmpresa(sql, "CONTACOR"), [&](std::span<Value> valores) {
    Dia& dia = dias[valores[0].AsDate()];
    dia.linhas += valores[2].AsInteger();
    dia.empresas.push_back(Empresa(Trim(valores[1].Text())));
  });
  std::vector<Janela> janelas;
  int64_t na_janela = kLinhasPorJanela;
  for (const auto& [data, dia] : dias) {
    if (na_janela >= kLinhasPorJanela) {
      janelas.push_back({data, data, {}});
      na_janela = 0;
    }
    Janela& janela = janelas.back();
    janela.ate = data;
    for (const uint16_t empresa : dia.empresas) {
      if (std::find(janela.empresas.begin(), janela.empresas.end(), empresa) == janela.empresas.end())
        janela.empresas.push_back(empresa);
    }
    na_janela += dia.linhas;
    linhas += dia.linhas;
  }
  return janelas;
}

// A movement of which a receivable was settled is its customer's, otherwise the supplier's of a payable. The
// first settlement of a movement says who.
void TfmRelCC::BuscaPessoas(const Janela& janela, Anexos& anexos) const {
  for (const uint16_t empresa : janela.empresas) {
    const std::string clientes =
        "SELECT M.LANCAMENTO, ENTIDADE.NOME FROM (SELECT DISTINCT CONTACOR.LANCAMENTO" +
        Movimentos(janela.de, janela.ate) +
        ") M INNER JOIN {RECEBERB} RECEBERB ON (RECEBERB.LANCAMENTO = M.LANCAMENTO)"
        " LEFT JOIN {RECEBER} RECEBER ON (RECEBER.NUMERO = RECEBERB.NUMERO)"
        " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = RECEBER.CODCLI)";
    ForEach(ForCompany(clientes, empresas_[empresa]), [&](std::span<Value> valores) {
      anexos.clientes.try_emplace(Chave(empresa, valores[0].Text()), std::move(valores[1]));
    });
    const std::string fornecedores =
        "SELECT M.LANCAMENTO, M.DOCTO, M.TIPO, ENTIDADE.NOME FROM (SELECT DISTINCT CONTACOR.LANCAMENTO, "
        "CONTACOR.DOCTO, CONTACOR.TIPO" +
        Movimentos(janela.de, janela.ate) +
        ") M INNER JOIN {PAGTO1} PAGTO1 ON (PAGTO1.LANCAMENTO = M.LANCAMENTO)"
        " LEFT JOIN {PAGTO} PAGTO ON (PAGTO.NUM_AP = CASE WHEN M.TIPO = 'P' AND POSITION('/' IN M.DOCTO) > 0"
        " THEN SUBSTRING(M.DOCTO FROM 1 FOR POSITION('/' IN M.DOCTO) - 1) ELSE PAGTO1.NUM_AP END)"
        " LEFT JOIN {ENTIDADE} ENTIDADE ON (ENTIDADE.CODCLI = PAGTO.CODCRE)";
    ForEach(ForCompany(fornecedores, empresas_[empresa]), [&](std::span<Value> valores) {
      anexos.fornecedores.try_emplace(
          ChaveFornecedor(empresa, valores[0].Text(), valores[1].Text(), valores[2].Text()),
          std::move(valores[3]));
    });
  }
}

// The titles of a movement may stand in any company where all are asked for.
void TfmRelCC::BuscaFinanceiro(const Janela& janela, Anexos& anexos) const {
  const auto busca = [&](const char* tipo, const char* selecao, const char* de, const char* tabela,
                         std::span<const CampoTitulo> campos, auto& titulos) {
    for (const uint16_t empresa : janela.empresas) {
      const std::string movimentos =
          ForCompany("(SELECT DISTINCT CONTACOR.LANCAMENTO" + Movimentos(janela.de, janela.ate) +
                         " AND CONTACOR.TIPO = " + Funcoes.Aspas(tipo) + ") M",
                     empresas_[empresa]);
      ForEach(PorEmpresa(selecao + movimentos + de, tabela), [&](std::span<Value> valores) {
        ORV_ASSERT(valores.size() == campos.size());
        Titulo titulo;
        titulo[fTipo] = tipo;
        for (std::size_t i = 0; i < campos.size(); ++i) titulo[campos[i]] = std::move(valores[i]);
        if (titulo[fTipo] == Value("R")) titulo[fDupli] = titulo[fNumero];
        titulos[Chave(empresa, titulo[fLancto].Text())].push_back(std::move(titulo));
      });
    }
  };
  busca("P", kPagos, kPagosDe, "PAGTO1", kCamposPagos, anexos.pagar);
  busca("R", kRecebidos, kRecebidosDe, "RECEBERB", kCamposRecebidos, anexos.receber);
}

void TfmRelCC::Anexa(std::span<Value> movimento, Anexos& anexos, Currency inicial, Currency& saldo) {
  ORV_ASSERT(movimento.size() == kColunas);
  const Currency valor = movimento[mValor].AsCurrency();
  const std::string_view operacao = movimento[mOperacao].Text();
  if (operacao == "+") saldo += valor;
  if (operacao == "-") saldo -= valor;
  const uint16_t empresa = Empresa(Trim(movimento[mSufixo].Text()));
  const std::string lancamento(movimento[mLancamento].Text());
  const std::string tipo(movimento[mTipo].Text());

  std::array<Value, kCampos> linha;
  const std::string chave = Chave(empresa, lancamento);
  if (const auto cliente = anexos.clientes.find(chave); cliente != anexos.clientes.end()) {
    linha[Pessoa] = cliente->second;
  } else if (const auto fornecedor = anexos.fornecedores.find(
                 ChaveFornecedor(empresa, lancamento, movimento[mDocto].Text(), tipo));
             fornecedor != anexos.fornecedores.end()) {
    linha[Pessoa] = fornecedor->second;
  } else {
    linha[Pessoa] = movimento[mObservacao];
  }
  const std::string_view pendente = movimento[mPendente].Text();
  linha[Pendente] = pendente == "N" || pendente == "C" ? "N" : "S";
  linha[Saldo] = saldo.ToDouble();
  linha[SaldoIni] = inicial.ToDouble();
  linha[Data_ini] = consulta_.de;
  linha[data_fim] = consulta_.ate;
  linha[Agrupar] = kAgrupar[Opcao(RgAgrupar)];
  constexpr std::pair<Campo, Coluna> kLidos[] = {{Lancamento, mLancamento},
                                                 {Numero, mDocto},
                                                 {Banco, mBanco},
                                                 {Nome_Banco, mNomeBanco},
                                                 {Conta, mConta},
                                                 {Operacao, mOperacao},
                                                 {Valor, mValor},
                                                 {DtLanc, mDtLan},
                                                 {DtCont, mDtCont},
                                                 {DtVencto, mDtVencto},
                                                 {CodGrupo, mCodGrupo},
                                                 {DesGrupo, mDesGrupo},
                                                 {CodHistorico, mCodHistorico},
                                                 {Historico, mHistorico},
                                                 {Limite, mLimite},
                                                 {EmpresaConta, mEmpresa},
                                                 {Agencia, mAgencia},
                                                 {Grupo, mGrupo},
                                                 {Obs, mObservacao},
                                                 {TipoMov, mTipo}};
  for (const auto& [campo, coluna] : kLidos) linha[campo] = std::move(movimento[coluna]);

  if (CbFinanceiro.Checked()) {
    const auto& titulos = tipo == "P" ? anexos.pagar : anexos.receber;
    if (const auto dele = titulos.find(chave); (tipo == "P" || tipo == "R") && dele != titulos.end())
      AnexaTitulos(dele->second, lancamento, tipo == "R", empresa);
  }
  for (const Campo campo : {Nome_Banco, DesGrupo, Historico, EmpresaConta, Pessoa})
    nomes_.Share(linha[campo]);
  TbRelatorio.AppendRow(linha);
  empresa_da_linha_.push_back(empresa);
}

void TfmRelCC::AnexaTitulos(const std::vector<Titulo>& titulos, const std::string& lancamento, bool repete,
                            uint16_t empresa) {
  for (const Titulo& titulo : titulos) {
    // A payable is shown once a movement, whichever of its settlements comes first.
    if (!repete && TbFinan.Locate("Lancto;Numero", {Value(lancamento), titulo[fNumero]})) continue;
    Titulo linha = titulo;
    for (const CampoTitulo campo : {fNome, fDescHist, fDescClasse, fCnpj}) nomes_.Share(linha[campo]);
    TbFinan.AppendRow(linha);
    empresa_do_titulo_.push_back(empresa);
  }
}

void TfmRelCC::ContasSemMovimento(Currency inicial) {
  if (RelConta.Empty()) return;
  std::array<Value, kCampos> linha;
  linha[Conta] = RelConta.Text();
  linha[EmpresaConta] = Edit1.Text();
  linha[SaldoIni] = inicial.ToDouble();
  linha[Banco] = RelCodBan.Text();
  linha[Nome_Banco] = RelDesBan.Text();
  const auto conta =
      Tabela.IBDatabase().Rows("SELECT AGENCIA, LIMITE FROM " + Funcoes.DBLocal("CADCONTA", true) +
                               " WHERE CONTA = " + Funcoes.Aspas(RelConta.Text()));
  if (!conta.empty()) {
    linha[Agencia] = conta[0][0];
    linha[Limite] = conta[0][1];
  }
  linha[Data_ini] = consulta_.de;
  linha[data_fim] = consulta_.ate;
  TbRelatorio.AppendRow(linha);
  empresa_da_linha_.push_back(Empresa(Funcoes.vEmpresa_Atual()));
}

}  // namespace orv
