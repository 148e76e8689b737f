// The grid as a control of a screen: the current row both ways, typing into cells, keys, copying.
import { el } from "../dom.ts";
import { insertInto, isCharacter, type Press } from "../keys.ts";
import { completeDate, brazil } from "../text/date.ts";
import { isAmount } from "../text/money.ts";
import { ControlView, type ScreenContext } from "../controls/control.ts";
import type { Properties, SetState, StateOut, TreeNode } from "../protocol.ts";
import { kBlock } from "./blocks.ts";
import { readColumn, type Column } from "./columns.ts";
import { GridView, type GridOwner } from "./view.ts";

// More rows than anyone pastes anywhere.
const kMostCopied = 50_000;

export class GridControl extends ControlView implements GridOwner {
  readonly element: HTMLElement;
  readonly grid: GridView;
  private caption_: HTMLElement;
  private state: SetState = { version: -1, count: 0, row: -1, state: "inactive" };
  // Rows that the user moved to and the desk hasn't confirmed.
  private moves = 0;
  private editor: HTMLInputElement | null = null;
  private copying: { from: number; to: number } | null = null;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.grid = new GridView(this, this.caption || "Grade");
    this.caption_ = el("div", { class: "label" });
    this.element = el("div", { class: "field field-grid" }, this.caption_, this.grid.element);
    this.grid.scroller.addEventListener("copy", (event) => this.copy(event));
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
    return this.editor ?? this.grid.scroller;
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
    this.grid.setColumns(this.list("columns").map(readColumn));
    this.element.classList.toggle("is-editable", this.editable);
  }

  override update(changed: Properties): void {
    if (changed["enabled"] === false || changed["visible"] === false) this.endEdit();
    super.update(changed);
    // The program put the user into a column; one that he types into meanwhile stays his.
    if (Number(changed["placed"]) > 0 && this.editor === null) {
      const at = this.grid.columns.findIndex((one) => one.field === this.text("selected"));
      if (at >= 0) this.grid.show(this.grid.row, at);
    }
  }

  override setChanged(state: SetState): void {
    this.state = state;
    this.grid.renew(state.version, state.count);
    if (this.moves === 0) this.follow();
  }

  // The desk's row becomes the one shown.
  private follow(): void {
    if (this.state.row === this.grid.row) return;
    this.grid.anchor = -1;
    this.grid.show(this.state.row);
  }

  override stateRead(state: StateOut["screens"][number], from: number): void {
    const answer = state.controls[this.name];
    if (answer?.cells === undefined || answer.version === undefined) return;
    this.grid.store(answer.version, Math.floor(from / kBlock), answer.cells);
    if (this.copying !== null) this.copyOn();
  }

  // --- What the grid's view asks.

  fetch(block: number): void {
    this.desk.read(this.name, block * kBlock, kBlock);
  }

  storedWidth(column: Column): number | null {
    const width = Number(this.desk.remembered(this.widthKey(column)));
    return width > 0 ? width : null;
  }
  storeWidth(column: Column, width: number | null): void {
    this.desk.remember(this.widthKey(column), width === null ? null : String(width));
  }
  private widthKey(column: Column): string {
    return `${this.screen.screenClass}.${this.name}.${column.field}`;
  }

  pressedCell(row: number, column: number, event: MouseEvent): void {
    if (!this.enabled || event.target === this.editor) return;
    event.preventDefault();
    if (event.button === 2 && row === this.grid.row) return;
    this.desk.act(() => {
      this.screen.commit();
      this.endEdit();
      this.grid.anchor = event.shiftKey ? (this.grid.anchor < 0 ? this.grid.row : this.grid.anchor) : -1;
      const here = row === this.grid.row && (column === this.grid.column || !this.flag("watched"));
      this.grid.show(row, column);
      this.focus();
      if (!here || document.activeElement !== this.grid.scroller || this.desk.has(`row:${this.name}`)) this.sendRow(row, true);
      else this.screen.userFocus(this);
      const tick = this.grid.columns[column];
      if (event.button === 0 && tick?.kind === "check" && !event.shiftKey && this.mayEdit(column)) this.toggle(row, column);
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
      this.send("dblclick", { row, column: field }, { press: true });
    });
  }

  titlePressed(column: number): void {
    const field = this.grid.columns[column]?.field;
    if (!this.enabled || field === undefined) return;
    this.desk.act(() => {
      this.screen.commit();
      this.send("title", { column: field });
    });
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
    this.desk.send(
      { do: "row", control: this.name, row, ...(this.flag("watched") ? { column: this.field } : {}) },
      {
        hold,
        key: `row:${this.name}`,
        done: () => {
          this.moves -= 1;
          // A row that couldn't be reached: the desk's own is shown again.
          if (this.moves === 0) queueMicrotask(() => this.moves === 0 && this.follow());
        },
      },
    );
  }

  private goTo(row: number, extend: boolean): void {
    if (this.grid.scroll.count === 0) return;
    if (extend && this.grid.anchor < 0) this.grid.anchor = Math.max(this.grid.row, 0);
    if (!extend) this.grid.anchor = -1;
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
    this.send("key", { key, row: this.row, column: this.field });
  }

  // --- Keys.

  override focus(): void {
    if (document.activeElement !== this.focusElement) this.focusElement.focus({ preventScroll: true });
  }

  override press(press: Press): boolean {
    if (this.editor !== null) return this.pressEditor(this.editor, press);
    if (press.alt) {
      if (press.key !== "ArrowDown") return false;
      this.cellKey("F4");
      return true;
    }
    return this.pressMove(press) || this.pressCell(press);
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
      if (key === "Delete" && this.mayAppend && this.grid.row >= 0) this.send("delete", { row: this.row });
      else if (key.toLowerCase() === "a") this.selectAll();
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
      if (!this.editable || (this.state.state !== "edit" && this.state.state !== "insert")) return false;
      this.cellKey(key);
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
    if (this.grid.scroll.count === 0) return;
    this.goTo(0, false);
    this.grid.anchor = this.grid.scroll.count - 1;
    this.grid.draw();
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
      this.desk.readFirst(this.name, Math.floor(row / kBlock) * kBlock, kBlock, () => {
        if (this.grid.blocks.row(row) !== undefined) this.toggle(row, column);
      });
      return;
    }
    const on = values[column] === checked;
    this.send("cell", { row, column: field, value: on ? "false" : "true" });
  }

  // Opens the editor over the current cell, with a first character or with what stands there.
  private beginEdit(first: string | null): void {
    if (this.grid.row < 0) this.grid.show(0);
    this.grid.show(this.grid.row, this.grid.column);
    this.grid.drawNow();
    const cell = this.grid.cellElement(this.grid.row, this.grid.column);
    const column = this.grid.columns[this.grid.column];
    if (cell === null || column === undefined) return;
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
    this.editorAt = { row: this.grid.row, column: column.field, before: editor.value };
    editor.focus({ preventScroll: true });
    editor.select();
    if (first !== null) insertInto(editor, first);
  }
  private editorAt = { row: -1, column: "", before: "" };

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
    const { row, before } = this.editorAt;
    this.endEdit();
    if (value !== before) {
      // Shown at once; the rows that the desk sends next say how it took it.
      const shown = this.grid.blocks.row(row);
      const at = this.grid.columns.findIndex((one) => one.field === this.editorAt.column);
      if (shown !== undefined && at >= 0) shown[at] = value;
      this.grid.draw();
      this.desk.send(
        { do: "cell", control: this.name, row, column: this.editorAt.column, value },
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

  // --- Copying rows.

  private copy(event: ClipboardEvent): void {
    if (event.target === this.editor) return;
    event.preventDefault();
    const [from, to] = this.grid.selection;
    if (from < 0) return;
    const text = this.grid.textOf(from, to);
    if (text !== null) {
      event.clipboardData?.setData("text/plain", this.withTitles(text, from, to));
    } else {
      this.copying = { from, to: Math.min(to, from + kMostCopied - 1) };
      this.copyOn();
    }
  }

  private withTitles(text: string, from: number, to: number): string {
    return to > from ? `${this.grid.titles}\n${text}` : text;
  }

  private readonly gathered: string[] = [];

  // The rows that aren't at hand are asked for block by block.
  private copyOn(): void {
    const job = this.copying!;
    let at = job.from;
    while (at <= job.to) {
      const end = Math.min(job.to, (Math.floor(at / kBlock) + 1) * kBlock - 1);
      const text = this.grid.textOf(at, end);
      if (text === null) {
        job.from = at;
        this.fetch(Math.floor(at / kBlock));
        return;
      }
      this.gathered.push(text);
      at = end + 1;
    }
    this.copying = null;
    const lines = this.gathered.splice(0).join("\n");
    void navigator.clipboard?.writeText(`${this.grid.titles}\n${lines}`).catch(() => {});
  }

  override access(): void {
    this.screen.userFocus(this);
    this.focus();
  }

  override destroy(): void {
    this.grid.destroy();
  }
}
