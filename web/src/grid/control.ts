// The grid as a control of a screen: the current row both ways, typing into cells, keys, and the rows as the
// display orders and narrows them. Places are those of the view; the desk is told the numbers of the set.
import { el, icon } from "../dom.ts";
import { insertInto, isCharacter, type Press } from "../keys.ts";
import { completeDate, brazil } from "../text/date.ts";
import { isAmount, showCount } from "../text/money.ts";
import { ControlView, type ScreenContext } from "../controls/control.ts";
import type { Properties, SetState, StateOut, TreeNode } from "../protocol.ts";
import { ColumnsDialog } from "../dialogs/columns.ts";
import { kBlock } from "./blocks.ts";
import { countOf, holds, joined, without, type Range } from "./chosen.ts";
import { kNarrowest, readColumn, type Column } from "./columns.ts";
import { GridCopy } from "./copy.ts";
import { GridFind } from "./find.ts";
import { Plan } from "./plan.ts";
import { GridView, type GridOwner, type Sorted } from "./view.ts";

// After the last row that was chosen.
const kRest = 150;
// As many stretches of rows as the desk adds up.
const kMostStretches = 1000;

export class GridControl extends ControlView implements GridOwner {
  readonly element: HTMLElement;
  readonly grid: GridView;
  private caption_: HTMLElement;
  private state: SetState = { version: -1, count: 0, row: -1, state: "inactive" };
  // Rows that the user moved to and the desk hasn't confirmed.
  private moves = 0;
  private editor: HTMLInputElement | null = null;
  private copier: GridCopy;
  private find: GridFind;
  private plan: Plan;
  // The columns as the desk tells them, and which of them stand at the places that are shown.
  private told: Column[] = [];
  private order: number[] = [];
  private sumTimer = 0;
  // Rows were chosen one by one with the keyboard: they stay chosen while one goes on.
  private sticky = false;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.grid = new GridView(this, this.caption || "Grade");
    this.caption_ = el("div", { class: "label" });
    this.element = el("div", { class: "field field-grid" }, this.caption_, this.grid.element);
    this.plan = Plan.read(this.desk.remembered(this.planKey));
    this.find = new GridFind({
      find: (text, then) => this.look(text, then),
      toRows: () => this.toRows(),
      closed: () => this.focus(),
      entered: () => this.screen.userFocus(this),
    });
    this.grid.element.prepend(this.find.element);
    const menu = el("button", { type: "button", class: "grid-tool", tabindex: "-1", "aria-label": "Colunas e arquivo", title: "Colunas e arquivo (Ctrl+G)" }, icon("columns"));
    menu.addEventListener("mousedown", (event) => event.preventDefault());
    menu.addEventListener("click", () => this.desk.act(() => this.openColumns()));
    this.grid.foot.append(menu);
    this.grid.scroller.setAttribute("aria-multiselectable", "true");
    this.copier = new GridCopy(this.grid, (row) => this.fetch(Math.floor(row / kBlock)));
    this.grid.scroller.addEventListener("copy", (event) => event.target !== this.editor && this.copier.copy(event));
    this.grid.scroller.addEventListener("wheel", () => this.commit(), { passive: true });
    this.grid.scroller.addEventListener("mousedown", (event) => {
      if (event.target === this.grid.scroller || (event.target as HTMLElement).closest(".grid-spacer") === null) return;
      if ((event.target as HTMLElement).closest(".grid-row") === null) this.screen.userFocus(this);
    });
    this.render();
  }

  override get takesFocus(): boolean {
    return true;
  }
  override get focusElement(): HTMLElement {
    return this.editor ?? (this.find.within ? this.find.input : this.grid.scroller);
  }
  get editable(): boolean {
    return !this.flag("readOnly", true);
  }

  override render(): void {
    this.showState(this.element, this.grid.scroller);
    this.caption_.textContent = this.caption;
    this.caption_.hidden = this.caption === "";
    this.grid.label = this.label || "Grade";
    this.grid.scroller.setAttribute("aria-readonly", String(!this.editable));
    this.grid.letters = this.number("fontSize");
    this.lay();
    this.grid.setSort(this.sorted.field, this.sorted.sorted);
    this.element.classList.toggle("is-editable", this.editable);
  }

  override update(changed: Properties): void {
    if (changed["enabled"] === false || changed["visible"] === false) this.endEdit();
    super.update(changed);
    if ("view" in changed || "viewCount" in changed || "viewRow" in changed) this.renew("view" in changed);
    // The program put the user into a column; one that he types into meanwhile stays his.
    if (Number(changed["placed"]) > 0 && this.editor === null) {
      const at = this.grid.columns.findIndex((one) => one.field === this.text("selected"));
      if (at >= 0) this.grid.show(this.grid.row, at);
    }
  }

  override setChanged(state: SetState): void {
    this.state = state;
    this.renew(false);
  }

  // The rows are ordered or narrowed.
  private get arranged(): boolean {
    return this.number("view") > 0;
  }
  private versionOf(version: number): number | string {
    return this.arranged ? `${version}/${this.number("view")}` : version;
  }

  private renew(otherwise: boolean): void {
    if (otherwise) this.grid.choose([]);
    const count = this.arranged ? this.number("viewCount") : this.state.count;
    this.grid.renew(this.versionOf(this.state.version), count);
    this.find.show(this.text("find"), count, this.state.count, this.state.row >= 0 && this.number("viewRow", -1) < 0);
    if (this.moves === 0) this.follow();
  }

  // The desk's row becomes the one shown.
  private follow(): void {
    const row = this.arranged ? this.number("viewRow", -1) : this.state.row;
    if (row === this.grid.row) return;
    this.grid.anchor = -1;
    this.grid.show(row);
  }

  override stateRead(state: StateOut["screens"][number], from: number): void {
    const answer = state.controls[this.name];
    if (answer?.cells === undefined || answer.version === undefined) return;
    // What was asked before the rows were arranged otherwise has passed.
    if ((answer.rows !== undefined) !== this.arranged || (this.arranged && answer.view !== this.number("view"))) return;
    const version = this.versionOf(answer.version);
    if (answer.sums !== undefined) {
      if (version === this.grid.blocks.version) this.showSums(answer.sums);
      return;
    }
    const cells = answer.cells.map((row) => this.order.map((at) => row[at] ?? ""));
    this.grid.store(version, Math.floor(from / kBlock), cells, answer.rows);
    this.copier.goOn();
  }

  // --- What the grid's view asks.

  fetch(block: number): void {
    this.desk.read(this.name, block * kBlock, kBlock, this.window);
  }
  private get window(): Record<string, unknown> {
    return this.arranged ? { view: true } : {};
  }

  // Runs it with the number that the row at a place has in its set; its block is asked for first where it isn't
  // at hand, and what is typed meanwhile waits. `none` where it can't be had.
  private numbered(place: number, run: (number: number) => void, none?: () => void): void {
    const number = this.numberOf(place);
    if (number !== undefined) {
      run(number);
      return;
    }
    this.desk.readFirst(this.name, Math.floor(place / kBlock) * kBlock, kBlock, this.window, (answered) => {
      const there = this.numberOf(place);
      if (answered && there !== undefined) run(there);
      else none?.();
    });
  }
  private numberOf(place: number): number | undefined {
    if (!this.arranged) return place;
    // A row that has just been added is known before its block.
    return place === this.number("viewRow", -1) ? this.state.row : this.grid.blocks.number(place);
  }

  // --- Order, search, sums.

  private get sorted(): { field: string; sorted: Sorted } {
    const field = this.text("sort");
    return { field, sorted: field === "" ? "none" : this.flag("descending") ? "descending" : "ascending" };
  }
  // Ascending, descending, as the rows came.
  private sortBy(field: string, then?: () => void): void {
    const now = this.sorted;
    const turn = now.field !== field ? "ascending" : now.sorted === "ascending" ? "descending" : "none";
    this.screen.commit();
    this.send("view", { sort: turn === "none" ? "" : field, descending: turn === "descending" }, then === undefined ? {} : { done: then });
  }
  private look(text: string, then?: () => void): void {
    this.screen.commit();
    const columns = this.grid.columns.map((column) => column.field);
    const options = then === undefined ? { hold: false } : { done: (outcome: string) => outcome === "answered" && then() };
    this.send("view", { find: text, columns }, { key: `find:${this.name}`, ...options });
  }
  private toRows(): void {
    if (this.grid.row < 0 && this.grid.scroll.count > 0) this.goTo(0, false);
    this.focus();
  }

  chose(ranges: Range[]): void {
    window.clearTimeout(this.sumTimer);
    if (countOf(ranges) < 2 || ranges.length > kMostStretches) {
      this.grid.added = "";
      return;
    }
    this.sumTimer = window.setTimeout(() => this.desk.read(this.name, 0, 0, { ...this.window, sums: ranges }), kRest);
  }
  private showSums({ count, columns }: { count: number; columns: Record<string, string> }): void {
    if (count !== countOf(this.grid.chosen)) return;
    const sums = this.grid.columns.filter(({ field }) => columns[field] !== undefined).map(({ field, title }) => `${title}: ${columns[field]!}`);
    this.grid.added = [`${showCount(count)} linhas escolhidas`, ...sums].join("  ·  ");
  }

  // --- Columns.

  private get planKey(): string {
    return `${this.screen.screenClass}.${this.name}`;
  }
  private lay(): void {
    this.told = this.list("columns").map(readColumn);
    const order = this.plan.order(this.told);
    const shown = order.filter((column) => !this.plan.hidden(column.field) || this.fixed(column));
    const columns = shown.length > 0 ? shown : order;
    this.order = columns.map((column) => this.told.indexOf(column));
    this.grid.setColumns(columns);
  }
  // A column that takes typing stays in sight.
  private fixed(column: Column): boolean {
    return this.editable && !column.readOnly;
  }
  private planned(change: () => void): void {
    change();
    this.desk.remember(this.planKey, this.plan.text);
    this.lay();
  }

  storedWidth(column: Column): number | null {
    return this.plan.width(column.field);
  }
  storeWidth(column: Column, width: number | null): void {
    this.plan.widen(this.told, column.field, width);
    this.desk.remember(this.planKey, this.plan.text);
  }

  private openColumns(): void {
    this.screen.commit();
    let dialog: ColumnsDialog | null = null;
    const column = (field: string): number => this.grid.columns.findIndex((one) => one.field === field);
    this.desk.box((close) => {
      dialog = new ColumnsDialog(`Colunas: ${this.label || "Grade"}`, {
        choices: () =>
          this.plan.order(this.told).map((one) => ({
            field: one.field,
            title: one.title,
            hidden: column(one.field) < 0,
            fixed: this.fixed(one),
            sorted: one.field === this.sorted.field ? this.sorted.sorted : "none",
          })),
        hide: (field, hidden) => this.planned(() => this.plan.hide(this.told, field, hidden)),
        move: (field, by) => this.planned(() => this.plan.move(this.told, field, by)),
        widen: (field, by) => {
          const at = column(field);
          if (at >= 0) this.planned(() => this.plan.widen(this.told, field, Math.max(kNarrowest, this.grid.widthOf(at) + by)));
        },
        sort: (field) => this.sortBy(field, () => dialog?.draw()),
        restore: () => this.planned(() => (this.plan = Plan.read(null))),
        save: (format) => this.send("export", { format, columns: this.grid.columns.map((one) => one.field) }),
      }, close);
      return dialog;
    });
  }

  pressedCell(row: number, column: number, event: MouseEvent): void {
    if (!this.enabled || event.target === this.editor) return;
    event.preventDefault();
    if (event.button === 2 && row === this.grid.row) return;
    this.desk.act(() => {
      this.screen.commit();
      this.endEdit();
      this.find.within = false;
      if (event.ctrlKey || event.metaKey) this.turn(row);
      else if (event.shiftKey) this.grid.anchor = this.grid.anchor < 0 ? this.grid.row : this.grid.anchor;
      else this.grid.choose([]);
      this.sticky = false;
      const here = row === this.grid.row && (column === this.grid.column || !this.flag("watched"));
      this.grid.show(row, column);
      this.focus();
      if (!here || document.activeElement !== this.grid.scroller || this.desk.has(`row:${this.name}`)) this.sendRow(row, true);
      else this.screen.userFocus(this);
      const tick = this.grid.columns[column];
      if (event.button === 0 && tick?.kind === "check" && !event.shiftKey && !event.ctrlKey && this.mayEdit(column)) this.toggle(row, column);
    });
  }

  doublePressed(row: number, column: number): void {
    if (!this.enabled) return;
    if (this.mayEdit(column) && this.grid.columns[column]?.kind !== "check") {
      this.desk.act(() => {
        this.screen.commit();
        this.beginEdit(null);
      });
    } else {
      this.open(row, column, 1);
    }
  }

  // The double click on a cell, or the key that stands for it.
  private open(row: number, column: number, clicks: number): void {
    const field = this.grid.columns[column]?.field;
    if (field === undefined || row < 0) return;
    this.desk.press(this, clicks, () => {
      this.screen.commit();
      this.numbered(row, (number) => this.send("dblclick", { row: number, column: field }, { press: true }));
    });
  }

  titlePressed(column: number): void {
    const field = this.grid.columns[column]?.field;
    if (!this.enabled || field === undefined) return;
    this.desk.act(() => {
      if (!this.flag("titles")) {
        this.sortBy(field);
        return;
      }
      this.screen.commit();
      this.send("title", { column: field });
    });
  }
  titleMenu(event: MouseEvent): void {
    if (!this.enabled) return;
    event.preventDefault();
    this.desk.act(() => this.openColumns());
  }

  contextMenu(event: MouseEvent, row: number, column: number): void {
    if (!this.enabled) return;
    event.preventDefault();
    this.grid.show(row, column);
    this.screen.openMenu(event.clientX, event.clientY);
  }

  // --- Rows.

  private sendRow(row: number, hold = false): void {
    if (row < 0) {
      this.screen.userFocus(this);
      return;
    }
    this.moves += 1;
    const done = (): void => {
      this.moves -= 1;
      // A row that couldn't be reached: the desk's own is shown again.
      if (this.moves === 0) queueMicrotask(() => this.moves === 0 && this.follow());
    };
    const go = (number: number): void =>
      this.desk.send(
        { do: "row", control: this.name, row: number, ...(this.flag("watched") ? { column: this.field } : {}) },
        { hold, key: `row:${this.name}`, done },
      );
    this.numbered(row, go, done);
  }

  private goTo(row: number, extend: boolean): void {
    if (this.grid.scroll.count === 0) return;
    if (extend && this.grid.anchor < 0) this.grid.anchor = Math.max(this.grid.row, 0);
    if (!extend) this.grid.choose(this.sticky ? this.grid.chosen : []);
    const here = row === this.grid.row;
    this.grid.show(row);
    if (!here) this.sendRow(row);
  }

  // Another column of the row, of which the desk is told where it asks for that.
  private goAcross(column: number): void {
    const before = this.grid.column;
    this.grid.show(this.grid.row, column);
    if (this.flag("watched") && this.grid.column !== before && this.grid.row >= 0) this.sendRow(this.grid.row);
  }

  private get field(): string {
    return this.grid.columns[this.grid.column]?.field ?? "";
  }
  private get row(): number {
    return Math.max(this.grid.row, 0);
  }

  private cellKey(key: string): void {
    // A row that isn't shown is meant by no key.
    if (this.arranged && this.grid.row < 0) return;
    this.numbered(this.row, (row) => this.send("key", { key, row, column: this.field }));
  }

  // --- Keys.

  override focus(): void {
    if (document.activeElement !== this.focusElement) this.focusElement.focus({ preventScroll: true });
  }

  override press(press: Press): boolean {
    if (this.find.within && document.activeElement === this.find.input) return this.find.press(press);
    if (this.takes(press)) return this.pressOwn(press.key.toLowerCase());
    if (this.editor !== null) return this.pressEditor(this.editor, press);
    if (press.alt && press.key === "ArrowUp" && !press.ctrl) {
      this.titlePressed(this.grid.column);
      return true;
    }
    if (press.alt) {
      if (press.key !== "ArrowDown") return false;
      this.cellKey("F4");
      return true;
    }
    return this.pressMove(press) || this.pressCell(press);
  }

  override takes({ key, ctrl, alt }: Press): boolean {
    if (!ctrl || alt) return false;
    const letter = key.toLowerCase();
    return letter === "f" || letter === "g" || (letter === "a" && document.activeElement === this.grid.scroller);
  }
  private pressOwn(letter: string): boolean {
    this.screen.commit();
    if (letter === "a") this.selectAll();
    else if (letter === "g") this.openColumns();
    else this.find.open();
    return true;
  }

  private pressMove(press: Press): boolean {
    const { key, ctrl, shift } = press;
    const lastColumn = this.grid.columns.length - 1;
    const lastRow = this.grid.scroll.count - 1;
    switch (key) {
      case "ArrowLeft":
        this.goAcross(ctrl ? 0 : this.grid.column - 1);
        return true;
      case "ArrowRight":
        this.goAcross(ctrl ? lastColumn : this.grid.column + 1);
        return true;
      case "Home":
        if (ctrl || !this.editable) this.goTo(0, shift);
        else this.goAcross(0);
        return true;
      case "End":
        if (ctrl || !this.editable) this.goTo(lastRow, shift);
        else this.goAcross(lastColumn);
        return true;
      case "ArrowDown":
        if (this.grid.row === lastRow && !ctrl && !shift && this.mayAppend) {
          this.send("append");
          return true;
        }
        break;
      default:
        break;
    }
    const row = ctrl && key.startsWith("Page") ? -1 : this.grid.rowFor(key, ctrl);
    if (row < 0) return false;
    this.goTo(row, shift);
    return true;
  }

  private get mayAppend(): boolean {
    return this.editable && !this.flag("rowsFixed");
  }

  private pressCell(press: Press): boolean {
    const { key, ctrl, shift } = press;
    const column = this.grid.column;
    const check = this.grid.columns[column]?.kind === "check";
    if (key === "Tab") return this.tab(shift, ctrl);
    // What the mouse does with a double click.
    if (key === "Enter" && (ctrl || !this.editable)) {
      this.open(this.grid.row, column, 0);
      return true;
    }
    if (ctrl) {
      if (key === "Delete" && this.mayAppend && this.grid.row >= 0) this.numbered(this.row, (row) => this.send("delete", { row }));
      else if (key === " ") {
        this.turn(this.grid.row);
        this.sticky = true;
      }
      else return false;
      return true;
    }
    if (key === "F2" || (key === "Enter" && this.mayEdit(column) && !check)) {
      if (this.mayEdit(column) && !check) this.beginEdit(null);
      return true;
    }
    if (key === " " && check && this.mayEdit(column)) {
      this.toggle(this.row, column);
      return true;
    }
    if (key === "Insert" && this.mayAppend) {
      this.send("append");
      return true;
    }
    if (key === "Escape") {
      if (this.editable && (this.state.state === "edit" || this.state.state === "insert")) this.cellKey(key);
      else if (this.grid.chosen.length > 0) {
        this.sticky = false;
        this.grid.choose([]);
      } else if (this.find.shown) this.find.close();
      else return false;
      return true;
    }
    if (["Enter", "F4", "Delete"].includes(key)) {
      this.cellKey(key);
      return true;
    }
    if (key === "Dead" || key === "Process") {
      // An accent begins the text; the browser puts it into the editor that stands there now.
      if (this.mayEdit(column) && !check) this.beginEdit("");
      return false;
    }
    if (!isCharacter(press)) return false;
    if (this.mayEdit(column) && !check) this.beginEdit(key);
    else this.cellKey(key);
    return true;
  }

  // Tab goes through the cells of a grid that takes typing, and past a grid that only shows.
  private tab(back: boolean, ctrl: boolean): boolean {
    if (ctrl) return false;
    const to = this.grid.column + (back ? -1 : 1);
    const inside = this.editable && this.grid.scroll.count > 0 && to >= 0 && to < this.grid.columns.length;
    if (this.editable && this.grid.scroll.count > 0 && !back) this.cellKey("Tab");
    if (inside && back) this.goAcross(to);
    else if (inside) this.grid.show(this.grid.row, to);
    else this.screen.moveFocus(this, !back);
    return true;
  }

  private selectAll(): void {
    if (this.grid.scroll.count > 0) this.grid.choose([[0, this.grid.scroll.count - 1]]);
  }

  // Chooses a row beside those that are chosen, or takes it out of them.
  private turn(row: number): void {
    if (row < 0) return;
    const here = this.grid.row;
    const chosen: Range[] = this.grid.chosen.length === 0 && here >= 0 && here !== row ? [[here, here]] : this.grid.chosen;
    this.grid.choose(holds(chosen, row) ? without(chosen, row) : joined([...chosen, [row, row]]));
  }

  // --- Cells.

  private mayEdit(column: number): boolean {
    const there = this.grid.columns[column];
    return this.editable && this.enabled && there !== undefined && !there.readOnly && this.grid.scroll.count > 0;
  }

  private toggle(row: number, column: number): void {
    const { field, checked } = this.grid.columns[column]!;
    const values = this.grid.blocks.row(row);
    if (values === undefined) {
      // What stands there has to be seen before it is turned round; keys typed meanwhile wait.
      this.desk.readFirst(this.name, Math.floor(row / kBlock) * kBlock, kBlock, this.window, (answered) => {
        if (answered && this.grid.blocks.row(row) !== undefined) this.toggle(row, column);
      });
      return;
    }
    const on = values[column] === checked;
    this.numbered(row, (number) => this.send("cell", { row: number, column: field, value: on ? "false" : "true" }));
  }

  // Opens the editor over the current cell, with a first character or with what stands there.
  private beginEdit(first: string | null): void {
    if (this.grid.row < 0) this.grid.show(0);
    this.grid.show(this.grid.row, this.grid.column);
    this.grid.drawNow();
    const cell = this.grid.cellElement(this.grid.row, this.grid.column);
    const column = this.grid.columns[this.grid.column];
    const number = this.numberOf(this.grid.row);
    if (cell === null || column === undefined || number === undefined) return;
    this.endEdit();
    const editor = el("input", {
      type: "text",
      class: `grid-editor kind-${column.kind}`,
      autocomplete: "off",
      spellcheck: "false",
      "aria-label": column.title,
    });
    if (column.kind === "text" && column.width > 0) editor.maxLength = column.width;
    if (column.kind === "number") {
      editor.addEventListener("input", () => editor.classList.toggle("is-invalid", !isAmount(editor.value, column.decimals)));
    }
    const port = cell.closest(".grid-port")!;
    const origin = port.getBoundingClientRect();
    const box = cell.getBoundingClientRect();
    editor.style.left = `${box.left - origin.left}px`;
    editor.style.top = `${box.top - origin.top}px`;
    editor.style.width = `${Math.max(box.width, 60)}px`;
    editor.value = this.grid.blocks.row(this.grid.row)?.[this.grid.column] ?? "";
    port.append(editor);
    this.editor = editor;
    this.editorAt = { row: this.grid.row, number, column: column.field, before: editor.value };
    editor.focus({ preventScroll: true });
    editor.select();
    if (first !== null) insertInto(editor, first);
  }
  private editorAt = { row: -1, number: -1, column: "", before: "" };

  // Takes the editor away; the value is the user's to send before.
  private endEdit(): void {
    const editor = this.editor;
    if (editor === null) return;
    const had = document.activeElement === editor;
    this.editor = null;
    editor.remove();
    if (had) this.grid.scroller.focus({ preventScroll: true });
  }

  override commit(): void {
    const editor = this.editor;
    if (editor === null) return;
    const column = this.grid.columns.find((one) => one.field === this.editorAt.column);
    let value = editor.value;
    if (column?.kind === "date") value = completeDate(value, this.desk.today);
    const { row, number, before } = this.editorAt;
    this.endEdit();
    if (value !== before) {
      // Shown at once; the rows that the desk sends next say how it took it.
      const shown = this.grid.blocks.row(row);
      const at = this.grid.columns.findIndex((one) => one.field === this.editorAt.column);
      if (shown !== undefined && at >= 0) shown[at] = value;
      this.grid.draw();
      this.desk.send(
        { do: "cell", control: this.name, row: number, column: this.editorAt.column, value },
        { done: (outcome) => outcome === "refused" && this.refused(row, at, before, value) },
      );
    }
  }

  // What was typed stays, to be put right; what stands in the row is shown behind it.
  private refused(row: number, column: number, before: string, typed: string): void {
    const shown = this.grid.blocks.row(row);
    if (shown !== undefined) shown[column] = before;
    this.grid.show(row, column);
    this.beginEdit(null);
    if (this.editor === null) return;
    this.editor.value = typed;
    this.editor.classList.add("is-invalid");
    this.editor.select();
  }

  override revert(): boolean {
    if (this.editor === null) return false;
    this.endEdit();
    return true;
  }

  private pressEditor(editor: HTMLInputElement, press: Press): boolean {
    const { key, alt, shift } = press;
    const kind = this.grid.columns[this.grid.column]?.kind;
    if (key === "F4" || (alt && key === "ArrowDown")) {
      this.commit();
      this.cellKey("F4");
      return true;
    }
    if (key === "Tab") {
      this.commit();
      return this.tab(shift, press.ctrl);
    }
    if (key === "Enter") {
      this.commit();
      this.cellKey("Enter");
      if (this.grid.column + 1 < this.grid.columns.length) this.grid.show(this.grid.row, this.grid.column + 1);
      return true;
    }
    if (["ArrowUp", "ArrowDown", "PageUp", "PageDown"].includes(key)) {
      this.commit();
      return this.pressMove(press);
    }
    if (kind === "date" && (key === "h" || key === "H")) {
      editor.value = brazil(this.desk.today);
      return true;
    }
    return false;
  }

  override access(): void {
    this.screen.userFocus(this);
    this.focus();
  }

  override destroy(): void {
    window.clearTimeout(this.sumTimer);
    this.find.destroy();
    this.grid.destroy();
  }
}
