// The made-up screens: every kind of control stands in one of them.

export const kMenu = [
  { class: "Movimento", caption: "Movimento de Contas Correntes", group: "Contas Correntes" },
  { class: "Transferencia", caption: "Transferência entre Contas", group: "Contas Correntes" },
  { class: "Extrato", caption: "Extrato de Contas", group: "Contas Correntes" },
  { class: "Controles", caption: "Todos os Controles", group: "Exemplos" },
  { class: "Grade", caption: "Cem Mil Lançamentos", group: "Exemplos" },
  { class: "Milhao", caption: "Um Milhão de Lançamentos", group: "Exemplos" },
  { class: "Cheques", caption: "Cheques Recebidos", group: "Cheques" },
  { class: "Concilia", caption: "Conciliação Bancária", group: "Conciliação" },
  { class: "Lote", caption: "Lote de Cheques", group: "Cheques" },
  { class: "Fluxo", caption: "Fluxo de Caixa Realizado e Previsto", group: "Fluxo de Caixa" },
];

const kAccounts = [
  ["0001-5", "001", "Banco Central do Povo, agência Centro"],
  ["0002-3", "237", "Banco da Serra, cobrança"],
  ["0010-0", "341", "Banco do Litoral, aplicação automática"],
  ["9000-1", "999", "Caixa da matriz"],
];

const money = (text) => {
  if (text.trim() === "") return "";
  const plain = text.trim().replace(/\./g, "").replace(",", ".");
  if (!/^-?\d+(\.\d*)?$/.test(plain)) throw new Error(`"${text}" não é um valor.`);
  const [whole, cents] = Number(plain).toFixed(2).split(".");
  return whole.replace(/\B(?=(\d{3})+$)/g, ".") + "," + cents;
};

class SmallScreen {
  constructor(session, id, name, caption, kind) {
    Object.assign(this, { session, id, class: name, caption, kind, focus: "", rows: [], controls: {}, order: [], sets: {}, keyPreview: true });
    this.forget();
  }
  forget() {
    this.sent = {};
    this.sentSets = {};
    this.sentFocus = null;
  }
  add(name, kind, caption = "", more = {}) {
    const text = ["edit", "money", "date"].includes(kind) ? { text: "", readOnly: false } : {};
    this.controls[name] = { name, kind, caption, enabled: true, visible: true, color: "", ...text, ...more };
    this.order.push(name);
    return name;
  }
  button(name, caption, click, kind = "button") {
    return this.add(name, kind, caption, { handlers: { click } });
  }
  // A container with rows of names.
  hold(name, rows) {
    this.controls[name].rows = rows;
    return name;
  }
  node(name) {
    const { rows, handlers, ...properties } = this.controls[name];
    return rows === undefined ? properties : { ...properties, layout: rows.map((row) => row.map((child) => this.node(child))) };
  }
  out() {
    return { on: "screen", id: this.id, class: this.class, caption: this.caption, kind: this.kind, tree: { layout: this.rows.map((row) => row.map((name) => this.node(name))), keyPreview: this.keyPreview } };
  }
  takeChange() {
    const controls = {};
    for (const name of this.order) {
      const { rows, handlers, name: _, kind, ...now } = this.controls[name];
      const before = this.sent[name] ?? {};
      const changed = Object.fromEntries(Object.entries(now).filter(([key, value]) => JSON.stringify(before[key]) !== JSON.stringify(value)));
      if (Object.keys(changed).length > 0) controls[name] = changed;
      this.sent[name] = structuredClone(now);
    }
    const sets = {};
    for (const [name, set] of Object.entries(this.sets)) {
      const told = { version: set.version, count: set.count, row: set.row, state: set.state ?? "browse" };
      if (this.sentSets[name] === JSON.stringify(told)) continue;
      this.sentSets[name] = JSON.stringify(told);
      sets[name] = told;
    }
    const moved = this.focus !== this.sentFocus;
    this.sentFocus = this.focus;
    if (Object.keys(controls).length === 0 && Object.keys(sets).length === 0 && !moved) return null;
    return { on: "change", screen: this.id, controls, ...(moved ? { focus: this.focus } : {}), sets };
  }
  state(control, from, count) {
    const controls = {};
    const sets = {};
    const grid = this.controls[control];
    if (grid?.kind === "grid") {
      const set = this.sets[grid.set];
      const last = count < 0 ? set.count : Math.min(set.count, from + count);
      const cells = [];
      for (let row = from; row < last; ++row) cells.push(set.cells(row));
      controls[control] = { ...this.node(control), cells, version: set.version };
    }
    const set = this.sets[control];
    if (set?.neutral !== undefined) sets[control] = { fields: set.fields, count: set.count, row: set.row, state: "browse", version: set.version, rows: set.neutral.slice(from, count < 0 ? undefined : from + count) };
    if (this.list !== undefined && this.list.name === control) {
      sets[control] = { fields: this.list.fields, count: this.list.rows.length, row: 0, state: "browse", version: 1, rows: this.list.rows.slice(from, from + count) };
    }
    return { id: this.id, class: this.class, caption: this.caption, focus: this.focus, controls, sets };
  }
  canFocus(name) {
    const control = this.controls[name];
    return ["edit", "money", "date", "combo", "list", "radio", "check", "button", "track", "grid"].includes(control.kind) && !control.readOnly_ && control.enabled && control.visible && !(control.readOnly && control.kind !== "grid");
  }
  async reach(name) {
    if (this.focus === name) return true;
    const left = this.controls[this.focus];
    if (left?.handlers?.exit !== undefined) {
      const stay = await left.handlers.exit();
      if (stay === false) return false;
    }
    this.focus = name;
    await this.controls[name].handlers?.enter?.();
    return this.focus === name;
  }
  async next() {
    const at = this.order.indexOf(this.focus);
    for (let step = 1; step <= this.order.length; ++step) {
      const name = this.order[(at + step) % this.order.length];
      if (this.canFocus(name)) return void (await this.reach(name));
    }
  }
  async act(object) {
    const control = this.controls[object.control];
    if (control === undefined) throw new Error(`O controle ${object.control} não existe.`);
    if (!control.visible || !control.enabled) throw new Error(`O controle ${object.control} não está disponível.`);
    const handlers = control.handlers ?? {};
    if (object.do === "page") {
      control.page = object.page;
      this.applyPages();
    } else if (object.do === "focus") {
      await this.reach(object.control);
    } else if (object.do === "menu") {
      await handlers.click?.();
    } else if (object.do === "click") {
      if (control.kind !== "button" || (await this.reach(object.control))) await handlers.click?.();
    } else if (!(await this.reach(object.control))) {
      return;
    } else if (object.do === "set" || object.do === "check") {
      if (control.kind === "check") control.checked = object.value === true || object.value === "true";
      else if (control.kind === "money") control.text = money(object.value);
      else if (control.kind === "track") control.position = Number(object.value);
      else if (control.items !== undefined) control.index = Number(object.value);
      else control.text = object.value;
      await handlers.change?.();
    } else if (control.kind === "grid") {
      await handlers.grid?.(object);
    } else if (object.do === "key") {
      if (object.key === "F4" && handlers.lookup) await handlers.lookup();
      else if (object.key === "Tab" || (object.key === "Enter" && this.keyPreview)) await this.next();
    }
  }
  applyPages() {
    const show = (name, visible) => {
      const control = this.controls[name];
      control.visible = visible && control.own !== false;
      for (const child of (control.rows ?? []).flat()) show(child, control.visible && (control.kind !== "pages" || control.page === child));
    };
    for (const name of this.rows.flat()) show(name, true);
  }
  // A field with a code of an account: F4, its button, and leaving it empty open the list.
  accountField(field, lookup, description, multiple = false) {
    const control = this.controls[field];
    const follow = () => (this.controls[description].text = kAccounts.find(([code]) => code === control.text)?.[2] ?? "");
    const open = async () => {
      this.list = { name: lookup, fields: ["CONTA", "BANCO", "DESCRICAO"], rows: kAccounts };
      const described = () => ({
        on: "lookup",
        control: lookup,
        columns: [{ field: "CONTA", title: "Conta" }, { field: "BANCO", title: "Banco" }, { field: "DESCRICAO", title: "Descrição" }],
        count: this.list.rows.length,
        multiple,
      });
      for (;;) {
        const answer = await this.session.ask("lookup", described());
        if (answer.do === "search") {
          this.list.rows = kAccounts.filter((row) => row.some((text) => text.toLowerCase().includes(answer.text.toLowerCase())));
          continue;
        }
        const rows = (answer.rows ?? []).map((row) => this.list.rows[row][0]);
        this.list = undefined;
        if (rows.length > 0) control.text = rows.join(",");
        follow();
        return;
      }
    };
    control.handlers = {
      change: follow,
      lookup: open,
      exit: async () => {
        if (control.text === "") return void (await open());
        if (control.text.includes(",") || kAccounts.some(([code]) => code === control.text)) return true;
        await this.session.message("information", "Conta inexistente.");
        return false;
      },
    };
    this.controls[lookup].handlers = { click: open };
  }
}

// --- Sets of rows.

const kHistories = ["Recebimento de duplicata", "Pagamento a fornecedor", "Tarifa bancária", "Depósito em dinheiro", "Transferência recebida", "Aplicação financeira"];

function amountOf(row) {
  return money(String((((row * 7919) % 500000) - 150000) / 100).replace(".", ","));
}

class LedgerSet {
  constructor(count) {
    Object.assign(this, { count, row: count > 0 ? 0 : -1, version: 1, reversed: false, edits: new Map() });
  }
  at(row) {
    return this.reversed ? this.count - 1 - row : row;
  }
  cells(row) {
    const n = this.at(row);
    const day = String((n % 28) + 1).padStart(2, "0");
    const cells = [String(n + 1).padStart(7, "0"), `${day}/${String((n % 12) + 1).padStart(2, "0")}/2026`, kAccounts[n % 4][0], kHistories[n % 6], amountOf(n), n % 3 === 0 ? "S" : "N"];
    return (this.edits.get(n) ?? []).reduce((now, [column, value]) => now.with?.(column, value) ?? Object.assign([...now], { [column]: value }), cells);
  }
}

const kLedgerFields = ["LANCAMENTO", "DT_LAN", "CONTA", "HISTORICO", "VALOR", "PENDENTE"];
const kLedgerColumns = [
  "LANCAMENTO\tLançamento\t7\ttext\t1\t2\t\t",
  "DT_LAN\tData\t10\tdate\t1\t2\t\t",
  "CONTA\tConta\t13\ttext\t1\t2\t\t",
  "HISTORICO\tHistórico\t40\ttext\t0\t2\t\t",
  "VALOR\tValor\t0\tnumber\t0\t2\t\t",
  "PENDENTE\tPendente\t1\tcheck\t0\t2\tS\tN",
];

function ledgerGrid(screen, name, set, editable) {
  screen.sets[set.name] = set;
  screen.add(name, "grid", "", { set: set.name, readOnly: !editable, rowsFixed: true, selected: "", titles: true, columns: kLedgerColumns });
  screen.controls[name].handlers = {
    grid: async (object) => {
      if (object.row !== undefined && set.count > 0) set.row = object.row;
      if (object.do === "title") {
        set.reversed = !set.reversed;
        set.version += 1;
      } else if (object.do === "cell") {
        const column = kLedgerFields.indexOf(object.column);
        let { value } = object;
        if (column === 4) value = money(value);
        if (column === 5) value = value === "true" ? "S" : "N";
        const n = set.at(object.row);
        set.edits.set(n, [...(set.edits.get(n) ?? []), [column, value]]);
        set.version += 1;
      } else if (object.do === "dblclick") {
        await screen.session.message("information", `Linha ${object.row + 1}, coluna ${object.column}`);
      }
    },
  };
}

// --- The screens.

function movement(session, id) {
  const s = new SmallScreen(session, id, "Movimento", "Movimento de Contas Correntes", "child");
  s.add("Pages", "pages", "", { page: "Manutencao" });
  s.add("Acesso", "page", "&Acesso", { tab: true });
  s.add("De", "date", "De");
  s.add("Ate", "date", "Até");
  s.add("Buscar", "radio", "Buscar", { items: ["Todos", "Pendentes", "Baixados"], index: 1 });
  s.add("Achados", "group", "Período");
  s.add("Manutencao", "page", "&Manutenção", { tab: true });
  s.add("Painel", "panel");
  s.add("Numero", "edit", "Lançamento", { readOnly: true, text: "000123L" });
  s.add("Conta", "edit", "Conta", { maxLength: 13 });
  s.add("PqConta", "lookup");
  s.add("DescConta", "edit", "", { readOnly: true });
  s.add("Documento", "edit", "Documento", { maxLength: 15 });
  s.add("Lancamento", "date", "Lançamento", { text: "23/11/2026" });
  s.add("Vencimento", "date", "Vencimento", { text: "23/11/2026" });
  s.add("Valor", "money", "Valor", { decimals: 2 });
  s.add("Saldo", "money", "Saldo da conta", { readOnly: true, text: "-1.250,40", decimals: 2 });
  s.add("Operacao", "combo", "Operação", { items: ["+", "-"], index: 1, text: "-" });
  s.add("Situacao", "radio", "Situação", { items: ["&Pendente", "&Baixado", "&Conciliado"], index: 0 });
  s.add("Obs", "edit", "Observação", { maxLength: 100 });
  s.add("Financeiro", "group", "Financeiro");
  s.add("Todas", "check", "Todas Empresas", { checked: false });
  const set = Object.assign(new LedgerSet(0), { name: "QryFinan" });
  ledgerGrid(s, "GradeFinan", set, false);
  s.add("Contabil", "group", "Contabilidade");
  ledgerGrid(s, "GradeContabil", Object.assign(new LedgerSet(3), { name: "TbContabil" }), true);
  s.add("Centro", "group", "Centro de Custo");
  ledgerGrid(s, "GradeCentro", Object.assign(new LedgerSet(2), { name: "TbCCusto" }), true);
  s.add("Botoes", "panel");
  s.add("Confirmar", "button", "C&onfirmar");
  s.button("Cancelar", "&Cancelar", () => ["Conta", "Documento", "Valor", "Obs", "DescConta"].forEach((name) => (s.controls[name].text = "")), "smallButton");
  s.button("Excluir", "&Excluir", () => session.message("question", "Deseja eliminar este Registro?", undefined, "no"));
  s.add("Alterar", "button", "A&lterar", { enabled: false });
  s.button("Fechar", "&Fechar", () => session.closeTop());
  s.hold("Achados", [["De", "Ate"]]);
  s.hold("Acesso", [["Achados", "Buscar"]]);
  s.hold("Painel", [
    ["Numero", "Conta", "PqConta", "DescConta"],
    ["Documento", "Lancamento", "Vencimento"],
    ["Operacao", "Valor", "Saldo", "Situacao"],
    ["Obs"],
  ]);
  s.hold("Financeiro", [["Todas"], ["GradeFinan"]]);
  s.hold("Contabil", [["GradeContabil"]]);
  s.hold("Centro", [["GradeCentro"]]);
  s.hold("Botoes", [["Confirmar", "Cancelar", "Excluir", "Alterar", "Fechar"]]);
  s.hold("Manutencao", [["Painel"], ["Financeiro"], ["Contabil", "Centro"], ["Botoes"]]);
  s.hold("Pages", [["Acesso", "Manutencao"]]);
  s.rows = [["Pages"]];
  s.applyPages();
  s.accountField("Conta", "PqConta", "DescConta");
  const c = s.controls;
  const valid = (name) => async () => {
    if (c[name].text === "" || /^\d\d\/\d\d\/\d{4}$/.test(c[name].text)) return true;
    await session.message("information", "Data inválida.");
    return false;
  };
  for (const name of ["Lancamento", "Vencimento"]) c[name].handlers = { exit: valid(name) };
  c.Confirmar.handlers = {
    click: async () => {
      if (c.Valor.text === "") {
        await session.message("warning", "Valor Inválido.");
        s.focus = "Valor";
        return;
      }
      const answer = await session.ask("answer", {
        on: "confirm",
        title: "Confirmação contábil",
        lines: [
          { debit: "1.1.01.002", debitDescription: "Bancos conta movimento", credit: "1.1.03.001", creditDescription: "Duplicatas a receber", amount: c.Valor.text, note: "RECEBIMENTO DOC. " + c.Documento.text, unknown: false },
          { debit: "4.2.09.999", debitDescription: "", credit: "1.1.01.002", creditDescription: "Bancos conta movimento", amount: "12,50", note: "TARIFA", unknown: c.Documento.text === "SEM CONTA" },
        ],
      });
      if (answer.value === "yes") {
        session.posted = [...(session.posted ?? []), { conta: c.Conta.text, documento: c.Documento.text, valor: c.Valor.text, obs: c.Obs.text }];
        c.Cancelar.handlers.click();
        s.focus = "Conta";
      }
    },
  };
  s.focus = "Conta";
  return s;
}

function ledger(session, id, name, caption, count) {
  const s = new SmallScreen(session, id, name, caption, "child");
  s.add("Filtro", "edit", "Filtro", { maxLength: 20 });
  ledgerGrid(s, "Grade1", Object.assign(new LedgerSet(count), { name: "TbConsulta" }), true);
  s.add("Total", "money", "Total", { readOnly: true, text: "1.234.567,89", decimals: 2 });
  s.button("Fechar", "&Fechar", () => session.closeTop());
  s.rows = [["Filtro"], ["Grade1"], ["Total"], ["Fechar"]];
  s.focus = "Grade1";
  return s;
}

function controls(session, id) {
  const s = new SmallScreen(session, id, "Controles", "Todos os Controles", "child");
  const c = s.controls;
  const button = (...one) => s.button(...one);
  s.add("Texto", "edit", "&Texto", { maxLength: 30, text: "Texto livre" });
  s.add("Aviso", "label", "Período fechado para a caixa", { color: "warning" });
  s.add("Erro", "label", "Diferença de 10,00", { color: "error" });
  s.add("Bom", "label", "Conferido", { color: "good" });
  s.add("Contas", "edit", "Contas", { maxLength: 60 });
  s.add("PqContas", "lookup");
  s.add("DescContas", "edit", "", { readOnly: true });
  s.add("Lista", "list", "Modelo", { items: ["Analítico", "Sintético", "Por classe", "Por centro de custo"], index: 0 });
  s.add("Faixa", "track", "Dias", { minimum: 0, maximum: 30, position: 7 });
  s.add("Marca", "check", "&Simular", { checked: true });
  s.add("Barra", "progress", "Importação", { position: 40, maximum: 100 });
  s.add("Chart", "chart", "Entradas e saídas", { set: "Serie", label: "MES", pageSize: 12, page: 0, pages: 1, series: ["ENTRADA\tEntradas\tbar", "SAIDA\tSaídas\tbar", "SALDO\tSaldo\tline"] });
  s.sets.Serie = {
    version: 1, count: 12, row: 0, fields: ["MES", "ENTRADA", "SAIDA", "SALDO"],
    neutral: Array.from({ length: 12 }, (_, i) => [`2026-${String(i + 1).padStart(2, "0")}-01`, `${120000 + ((i * 37) % 11) * 9000}.0000`, `${100000 + ((i * 53) % 13) * 8000}.0000`, `${20000 + ((i * 31) % 9) * 6000 - 30000}.0000`]),
  };
  s.add("Menu", "menu", "Ações");
  button("ItemA", "&Baixar marcados", () => session.message("information", "Baixados."), "menuItem");
  button("ItemB", "&Estornar", () => {}, "menuItem");
  c.ItemB.enabled = false;
  s.hold("Menu", [["ItemA", "ItemB"]]);
  button("Informa", "&Informação", () => session.message("information", "Lançamento já conciliado."));
  button("Atencao", "Atençã&o", () => session.message("warning", "Período conciliado.\nNada foi gravado."));
  button("Pergunta", "&Pergunta", async () => (c.Texto.text = await session.message("question", "Deseja eliminar este Registro?")));
  button("Caixa", "&Caixa", async () => (c.Texto.text = (await session.ask("answer", { on: "input", title: "Observação", prompt: "Informe a observação", value: "REF. " })).value));
  button("Arquivo", "&Arquivo", async () => {
    const answer = await session.ask("file", { on: "file", control: "Abrir", filters: "Planilhas|*.xls;*.xlsx|Texto|*.txt" });
    if (answer.do === "file") c.Texto.text = `${answer.name} ${session.uploads.get(answer.upload).length}`;
  });
  button("Detalhe", "&Detalhe", () =>
    session.ask("answer", {
      on: "detail", title: "Composição do saldo", columns: ["NUMERO", "EMISSAO", "VALOR"], kinds: ["text", "date", "money"],
      rows: Array.from({ length: 250 }, (_, i) => [`${1000 + i}/1`, "2026-11-23", `${i * 10}.5000`]),
    }));
  button("Longo", "&Longo", async () => {
    session.gathering = true;
    session.cancelled = false;
    for (let value = 0; value <= 50 && !session.cancelled; ++value) {
      session.send({ on: "progress", value: value * 1000, of: 50000, text: "Lendo os lançamentos" });
      await new Promise((resolve) => setTimeout(resolve, 20));
    }
    session.gathering = false;
    if (session.cancelled) throw new Error("Operação cancelada.");
  });
  button("Dialogo", "Diálo&go", () => session.show("Dialogo"));
  button("Relatorio", "&Relatório", () => session.send({ on: "report", id: 7, identifier: "0112001", title: "Saldos", formats: ["html", "pdf", "csv", "xlsx"] }));
  s.rows = [
    ["Texto", "Aviso", "Erro", "Bom"],
    ["Contas", "PqContas", "DescContas"],
    ["Lista", "Faixa", "Marca", "Barra"],
    ["Chart"],
    ["Menu", "Informa", "Atencao", "Pergunta", "Caixa", "Arquivo", "Detalhe", "Longo", "Dialogo", "Relatorio"],
  ];
  s.accountField("Contas", "PqContas", "DescContas", true);
  c.Contas.handlers.exit = undefined;
  s.focus = "Texto";
  return s;
}

// What a press does changes what stands there: the current row, the buttons, the screen on top.
function cheques(session, id) {
  const s = new SmallScreen(session, id, "Cheques", "Cheques Recebidos", "child");
  const set = Object.assign(new LedgerSet(5), { name: "TbCheques" });
  ledgerGrid(s, "Grade", set, false);
  const typing = (on) => {
    s.controls.Confirmar.visible = on;
    s.controls.Incluir.visible = !on;
    s.focus = on ? "Confirmar" : "Incluir";
  };
  s.button("Incluir", "&Incluir", () => typing(true));
  s.button("Confirmar", "C&onfirmar", () => typing(false));
  s.button("Compensar", "&Compensar", () => (set.row += 1));
  s.button("Dialogo", "&Diálogo", () => session.show("Dialogo"));
  s.rows = [["Grade"], ["Incluir", "Confirmar", "Compensar", "Dialogo"]];
  typing(false);
  return s;
}

// A pile of cheques by a bar reader: a line read as a number is taken apart when its cell is left, and the next
// cheque begins.
function batch(session, id) {
  const s = new SmallScreen(session, id, "Lote", "Lote de Cheques", "child");
  const fields = ["NUMERO", "BANCO", "BARRA"];
  const set = { name: "TbCheque", count: 1, row: 0, version: 1, state: "insert", lines: [["", "", ""]], cells: (row) => set.lines[row] };
  s.sets[set.name] = set;
  const columns = [35, 3, 34].map((width, at) => `${fields[at]}\t${fields[at]}\t${width}\ttext\t0\t2\t\t`);
  s.add("Grade", "grid", "Lote", { set: set.name, readOnly: false, rowsFixed: false, selected: "", watched: true, placed: 0, columns });
  s.controls.Grade.handlers = {
    grid: (object) => {
      if (object.row !== undefined) set.row = object.row;
      const line = set.lines[set.row];
      if (object.do === "cell") line[fields.indexOf(object.column)] = object.value;
      set.version += 1;
      if (object.key !== "Enter" || object.column !== "NUMERO" || line[0].length !== 34) return;
      set.lines.splice(set.row, 1, [line[0].slice(13, 19), line[0].slice(1, 4), line[0]]);
      set.row = set.lines.push(["", "", ""]) - 1;
      set.count += 1;
      Object.assign(s.controls.Grade, { selected: "NUMERO", placed: s.controls.Grade.placed + 1 });
    },
  };
  s.rows = [["Grade"]];
  s.focus = "Grade";
  return s;
}

function dialog(session, id) {
  const s = new SmallScreen(session, id, "Dialogo", "Transferência entre Contas", "dialog");
  s.add("Origem", "edit", "Conta Origem", { maxLength: 13 });
  s.add("PqOrigem", "lookup");
  s.add("DescOrigem", "edit", "", { readOnly: true });
  s.add("Valor", "money", "Valor", { decimals: 2 });
  s.add("Data", "date", "Data Contabilização");
  s.button("Confirmar", "&Confirmar", () => session.message("information", "Conta Inexistente."));
  s.button("Fechar", "&Fechar", () => session.closeTop());
  s.accountField("Origem", "PqOrigem", "DescOrigem");
  s.controls.Origem.handlers.exit = undefined;
  s.rows = [["Origem", "PqOrigem", "DescOrigem"], ["Valor", "Data"], ["Confirmar", "Fechar"]];
  s.focus = "Origem";
  return s;
}

const kScreens = {
  Movimento: movement,
  Controles: controls,
  Cheques: cheques,
  Lote: batch,
  Dialogo: dialog,
  Grade: (session, id) => ledger(session, id, "Grade", "Cem Mil Lançamentos", 100_000),
  Milhao: (session, id) => ledger(session, id, "Milhao", "Um Milhão de Lançamentos", 1_000_000),
};
export function makeScreen(name, session, id) {
  if (kScreens[name] === undefined) throw new Error(`A tela "${name}" não está disponível.`);
  return kScreens[name](session, id);
}
