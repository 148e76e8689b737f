// What a screen asks of its host. The operations keep their Portuguese names; the host implements them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "toolkit/database.h"
#include "toolkit/form.h"
#include "toolkit/query.h"
#include "toolkit/table.h"

namespace orv {

class Screen;
class TImpCheque;

// The kind of an audit line.
enum class TOperacaoLog : uint8_t { Emissao = 0, Inclusao = 1, Exclusao = 2, Processo = 3 };

// A column of a row that is looked for, and its text as it stands there, unquoted.
struct ChaveBusca {
  std::string_view column;
  std::string text;
};

class IFuncoes {
 public:
  virtual ~IFuncoes() = default;

  // --- Text of SQL.
  // A quoted SQL literal.
  virtual std::string Aspas(std::string_view text) const = 0;
  // A quoted date, month first; the zero date for the empty one.
  virtual std::string AspasData(Date date) const = 0;
  // A number with a decimal point, unquoted.
  virtual std::string PermanecePonto(double number) const = 0;
  virtual std::string PermanecePonto(Currency amount) const = 0;
  // The list field `01, 02` or `'01','02'` taken apart and quoted anew for IN (...). "" for an empty list.
  virtual std::string ListaSQL(std::string_view list) const = 0;

  // --- Companies.
  // The company's suffix ("_001") and the table names of the company on which Tabela.tbEmpresa stands.
  virtual std::string vEmpresa_Atual() const = 0;
  virtual std::string DBLocal(std::string_view table, bool local) const = 0;
  // The statement with each {X} replaced, and the literal '{}' by the suffix.
  virtual std::string DBLocal_SQL(std::string_view sql, std::string_view table) const = 0;
  // The same for the company of that suffix, wherever Tabela.tbEmpresa stands.
  virtual std::string DBEmpresa_SQL(std::string_view sql, std::string_view suffix) const = 0;
  // The statement once for each company in one UNION ALL. Raises UserError when the companies are more than
  // one statement can hold.
  virtual std::string UnionTodasEmpresas(std::string_view sql, std::string_view table, bool all) const = 0;

  // --- Look-ups in a table of the company.
  // The column of the first row that has the keys, trimmed, "" without one; several columns ("A;B") come
  // joined by ";".
  virtual std::string Busca_Valor(std::string_view table, const std::vector<ChaveBusca>& keys,
                                  std::string_view column) = 0;
  // True when a row has the keys.
  virtual bool Existe(std::string_view table, const std::vector<ChaveBusca>& keys) = 0;
  // The next free number of a column, padded with zeros to `width`.
  virtual std::string Proximo(std::string_view table, std::string_view column, int width, bool local) = 0;
  // As many of them as asked for, ascending.
  virtual std::vector<std::string> Proximos(std::string_view table, std::string_view column, int width,
                                            bool local, std::size_t count) = 0;
  // The text of a parameter, "" when it isn't set.
  virtual std::string BuscaParametro(std::string_view group, int number) = 0;

  // --- The user.
  // True when the user has the right; a refusal is told by the service.
  virtual bool Acessa(std::string_view screen_class, char kind, std::string_view option,
                      std::string_view extra) = 0;
  virtual void Ocupado(bool on, Form& screen) = 0;
  // Writes an audit line in the same transaction.
  virtual void GeraLog(std::string_view area, std::string_view text, TOperacaoLog operation,
                       std::string_view key) = 0;
  // Asks for a date; false when the user gave up, which leaves `date` as it was.
  virtual bool InputBoxData(std::string_view title, std::string_view prompt, Date& date) = 0;
  // Shows the rows of an open query and waits.
  virtual void TelaDetalhamento(std::string_view title, DataSet& query) = 0;
  // Moves the focus forward on Enter ('\r'); any other character is left alone. True when it moved.
  virtual bool pSetFocus(Form& screen, char key) = 0;

  // --- Screens and reports.
  // Creates a screen of the module by class name, owned by the application, and shows it when `show`.
  virtual Screen& Carrega_Form(std::string_view module, std::string_view screen_class, std::string_view extra,
                               bool modal, bool show) = 0;
  // Runs a report over the working sets of a screen: graphic and text, graphic only, text only.
  virtual void Chama_Relatorio(Form& screen, std::string_view identifier) = 0;
  virtual void Chama_RelatorioWin(Form& screen, std::string_view identifier) = 0;
  virtual void Chama_RelatorioTxt(Form& screen, std::string_view identifier) = 0;

  // --- Calendar and texts.
  virtual Date Hoje() const = 0;
  // That day or the next working day; with `backwards` the one before.
  virtual Date VerificaDiaUtil(Date date, bool backwards) = 0;
  // Names of the months, [1] is "Janeiro"; days of each month as [1], February with 29.
  virtual const std::array<std::string, 13>& NomeMes() const = 0;
  virtual const std::array<int, 13>& DiaDoMes() const = 0;
  // The amount "1.234,56" in words, as a cheque has it. Raises UserError outside 0,01 to 999.999.999.999,99.
  virtual std::string Extenso(std::string_view amount) const = 0;
  // The text without thousand points.
  virtual std::string DeletaPonto(std::string_view text) const = 0;
  virtual std::vector<std::string> Explode(std::string_view text, std::string_view separator) const = 0;
  // True for a date "dd/mm/yyyy" that is in the calendar.
  virtual bool ValidaData(std::string_view text) const = 0;

  // A number from the user's own settings, `fallback` when it isn't set.
  virtual int LeConfiguracao(std::string_view key, std::string_view section, std::string_view name,
                             int fallback) = 0;
  // The user's own texts whose path begins so, by the rest of their paths; "" are those that he took back.
  virtual std::vector<std::pair<std::string, std::string>> LeTextos(std::string_view beginning) = 0;
  // Keeps one of them; the caller commits. Raises UserError for a path or a text that is too long.
  virtual void GravaTexto(std::string_view path, std::string_view text) = 0;
  virtual std::unique_ptr<TImpCheque> ImpCheque() = 0;

  // "S" when a movement of this account and history starts pending, else "N".
  virtual std::string LancamentoPendente(std::string_view account, std::string_view history) = 0;
};

// A row of CONTACOR.
struct MovimentoConta {
  std::string lancamento, docto;
  std::string banco{};  // "": that of the account
  std::string conta, grupo, historico;
  std::string tipo, pendente, operacao;
  std::string observacao{};  // cut to 100 characters
  Currency valor;
  Date dt_lan, dt_vencto, dt_cont;
  std::string tipo_doc{};  // "CH" for a cheque
};

// A row of CONTABIL. `docto`, `docto2` and `codigo` are cut to 12 characters, `observacao` to 200. `origem`
// is "CC", "AP", "PP", "RR", "RB", "RA" or "RC".
struct LinhaContabil {
  std::string lancamento, docto, docto2;
  std::string conta_c, conta_d;
  std::string operacao, origem;
  std::string classe{}, historico{};
  Currency valor;
  Date data;
  std::string codigo{}, observacao{};
};

// One posting's accounting lines, gathered, confirmed by the user, then written.
class TContabil {
 public:
  virtual ~TContabil() = default;
  // Adds a line.
  virtual void SetContabilidadeFinan(LinhaContabil linha) = 0;
  // Apportions the last line by the class's rule.
  virtual void GravaRaterioCentroCusto(std::string_view conta, std::string_view classe, std::string_view tipo,
                                       std::string_view tipo_val, Currency valor) = 0;
  // Shows the lines; false when the user refuses: nothing is to be written.
  virtual bool ConfirmaDadosContabilidade(int option) = 0;
  virtual void GravaContabilidadeFinan() = 0;
};

// A row of CONT_RATEIO, the rules by which a class is apportioned.
struct RegraRateio {
  std::string conta;
  double perc_conta = 0;
  std::string centro;
  double perc_centro = 0;
};

// Accounting. The caller commits.
class IContabil {
 public:
  virtual ~IContabil() = default;
  virtual std::unique_ptr<TContabil> Create() = 0;

  // Inserts a movement.
  virtual void LancaContaCorrente(const MovimentoConta& movimento) = 0;
  // Removes the rows of CONTACOR of that number, with what is attached to them.
  virtual void DeletaContaCorrente(std::string_view lancamento) = 0;
  // Removes what is attached to a number of which no row of CONTACOR is left, and tells it in the audit.
  virtual void DeletaAnexos(std::string_view lancamento) = 0;
  // Writes one row of CONTABIL at once.
  virtual void LancaContabilidade(const LinhaContabil& linha) = 0;
  // Removes the rows of CONTABIL of that number.
  virtual void DeletaContabilidadeFinan(std::string_view lancamento) = 0;
  // The rules of a class, in the order in which they stand; of any `tipo_val` where it is "".
  virtual std::vector<RegraRateio> RegrasRateio(std::string_view classe, std::string_view tipo,
                                                std::string_view tipo_val) = 0;
  // Apportions `valor` by the rules of the class under `numero`; asks the user where the rules leave a
  // difference, or where there are none and the class asks for it. False: the caller stops. Without `store`
  // nothing is written, and the same call with it then stores what the user was asked for.
  virtual bool SetRateioClasse(std::string_view numero, std::string_view classe, std::string_view origem,
                               Currency valor, std::string_view carteira, bool confirm, Date data,
                               bool store) = 0;
  // True when the date lies in a closed period, after telling the user. "CT" tests the account on which
  // Tabela.TbCadConta stands, "CX" the cash.
  virtual bool PeriodoConciliado(Date date, std::string_view kind) = 0;
  // The last day of that closed period, empty without one. Tells the user nothing.
  virtual Date PeriodoFechadoAte(std::string_view kind) = 0;
  // The day on which a document due on `date` will be credited, by its situation (TABSIT) or "".
  virtual Date DataContabilizacaoBancaria(Date date, std::string_view situacao, bool working_day) = 0;
};

// The shared data module.
class ITabela {
 public:
  virtual ~ITabela() = default;
  // Counted by name, which ignores case: a table is open until its last close.
  virtual void AbreTabela(std::string_view name, bool reread) = 0;
  virtual void FechaTabela(std::string_view name) = 0;
  // The same where nothing may run: the last one closes without an event and drops what is being typed.
  virtual void SoltaTabela(std::string_view name) noexcept = 0;
  virtual TOrvDatabase& IBDatabase() = 0;
  // Commits the session's transaction, which stays open for the screens.
  virtual void CommitRetaining() = 0;

  // A shared table by its name. Raises UserError for an unknown one.
  virtual TOrvTable& Table(std::string_view name) = 0;
  TOrvTable& tbEmpresa() { return Table("tbEmpresa"); }
  TOrvTable& TbCadConta() { return Table("TbCadConta"); }
  TOrvTable& tbBanco() { return Table("tbBanco"); }
  TOrvTable& tbHistorico() { return Table("tbHistorico"); }
  TOrvTable& tbsubGrupo() { return Table("tbsubGrupo"); }
  TOrvTable& tbEntidade() { return Table("tbEntidade"); }
  TOrvTable& tbRepresentante() { return Table("tbRepresentante"); }
  TOrvTable& TbSituacao() { return Table("TbSituacao"); }
  TOrvTable& tbContaCor() { return Table("tbContaCor"); }
  TOrvTable& tbCheque_pre() { return Table("tbCheque_pre"); }

  // Logical names of the tables that all companies share.
  virtual const std::vector<std::string>& TabelasCompartilhadas() = 0;
};

// A cheque printer on a serial port.
class TImpCheque {
 public:
  virtual ~TImpCheque() = default;

  // What stands on the cheque. `Data` is a text, "dd/mm/yyyy"; `Porta` is "COM1" and up.
  std::string Banco, Cidade, Data, Nome, Porta;
  Currency Valor;

  // A model from 1 to 4; another number leaves the model as it is.
  virtual void SetModelo(int model) = 0;
  // Prints the cheque. Raises UserError when the port can't be opened or doesn't take the data.
  virtual void ImprimirCheque() = 0;
};

}  // namespace orv
