// The made-up screens of the benchmark: grids of very many rows.

export const kMenu = [
  { class: "Grade", caption: "Cem Mil Lançamentos", group: "Exemplos" },
  { class: "Milhao", caption: "Um Milhão de Lançamentos", group: "Exemplos" },
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

const kScreens = {
  Grade: (session, id) => ledger(session, id, "Grade", "Cem Mil Lançamentos", 100_000),
  Milhao: (session, id) => ledger(session, id, "Milhao", "Um Milhão de Lançamentos", 1_000_000),
};
export function makeScreen(name, session, id) {
  if (kScreens[name] === undefined) throw new Error(`A tela "${name}" não está disponível.`);
  return kScreens[name](session, id);
}
