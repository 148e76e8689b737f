// The list of a lookup: it narrows while one types; arrows choose, Enter takes.
import { el, icon } from "../dom.ts";
import type { Press } from "../keys.ts";
import { isCharacter } from "../keys.ts";
import type { Column } from "../grid/columns.ts";
import { kBlock } from "../grid/blocks.ts";
import { GridView, type GridOwner } from "../grid/view.ts";
import { showCount } from "../text/money.ts";
import type { LookupOut, SetRows } from "../protocol.ts";
import { shownCell, columnKind } from "./cells.ts";
import { Dialog } from "./dialog.ts";

export interface LookupUser {
  search(text: string): void;
  choose(rows: number[]): void;
  cancel(): void;
  read(control: string, from: number, count: number): void;
}

const kRest = 180;

export class LookupDialog extends Dialog implements GridOwner {
  private input: HTMLInputElement;
  private grid: GridView;
  private count: HTMLElement;
  private timer = 0;
  private version = 0;
  private searched = "";
  // The user moves in the list rather than types.
  private moving = false;
  private takeWhenFound = false;
  private searching = 0;
  private chosen = new Set<number>();

  constructor(
    private out: LookupOut,
    caption: string,
    private user: LookupUser,
  ) {
    super({ title: caption === "" ? "Pesquisa" : `Pesquisa: ${caption}`, className: "dialog-lookup", cancel: () => user.cancel() });
    const kinds = out.columns.map((column) => column.kind);
    const also = [kinds.includes("money") ? ["um valor"] : [], kinds.includes("date") ? ["uma data"] : []].flat();
    this.input = el("input", {
      type: "text",
      class: "input",
      placeholder: also.length === 0 ? "Digite para procurar" : `Digite para procurar, também ${also.join(" ou ")} por inteiro`,
      "aria-label": "Procurar",
      autocomplete: "off",
      spellcheck: "false",
    });
    this.count = el("div", { class: "lookup-count", role: "status" });
    this.body.append(el("div", { class: "lookup-search" }, icon("search"), this.input, this.count));
    this.grid = new GridView(this, this.out.multiple ? "Resultados, escolha várias linhas com a barra de espaço" : "Resultados", "Nada encontrado");
    if (out.multiple) this.grid.scroller.setAttribute("aria-multiselectable", "true");
    this.body.append(this.grid.element);
    this.input.addEventListener("input", () => this.typed());
    this.addButton({ caption: out.multiple ? "Escolher marcadas" : "Escolher", primary: true, run: () => this.take() });
    this.addButton({ caption: "Cancelar", run: () => user.cancel() });
    this.show(out);
  }

  get control(): string {
    return this.out.control;
  }

  // The list, new or narrowed.
  show(out: LookupOut): void {
    this.out = out;
    this.version += 1;
    this.chosen.clear();
    const marks: Column[] = out.multiple
      ? [{ field: "", title: "✓", width: 2, kind: "check", readOnly: true, checked: "1", unchecked: "0" }]
      : [];
    const shown = out.columns.map<Column>((column) => ({
      field: column.field,
      title: column.title,
      width: /descri|nome|observa|raz/i.test(column.title) ? 38 : /opera/i.test(column.title) ? 9 : column.kind === "date" ? 11 : 14,
      kind: columnKind(column.kind),
      readOnly: true,
      checked: "",
      unchecked: "",
    }));
    this.grid.setColumns([...marks, ...shown]);
    this.grid.renew(this.version, out.count);
    this.grid.show(out.count > 0 ? 0 : -1, 0);
    this.tell();
    if (this.searching > 0) this.searching -= 1;
    if (this.takeWhenFound && this.searching === 0 && !this.pendingText) {
      this.takeWhenFound = false;
      this.take();
    }
  }

  private tell(): void {
    const marked = this.chosen.size > 0 ? `${showCount(this.chosen.size)} de ` : "";
    this.count.textContent = `${marked}${showCount(this.out.count)} ${this.out.count === 1 ? "linha" : "linhas"}`;
  }

  rows(set: SetRows, from: number): void {
    const at = this.out.columns.map((column) => set.fields.findIndex((field) => field.toUpperCase() === column.field.toUpperCase()));
    const rows = set.rows.map((row, i) => {
      const cells = at.map((column, c) => shownCell(row[column] ?? "", this.out.columns[c]!.kind));
      return this.out.multiple ? [this.chosen.has(from + i) ? "1" : "0", ...cells] : cells;
    });
    this.grid.store(this.version, Math.floor(from / kBlock), rows);
  }

  private get pendingText(): boolean {
    return this.input.value.trim() !== this.searched;
  }

  private typed(): void {
    this.moving = false;
    window.clearTimeout(this.timer);
    this.timer = window.setTimeout(() => this.search(), kRest);
  }

  private search(): void {
    window.clearTimeout(this.timer);
    if (!this.pendingText) return;
    this.searched = this.input.value.trim();
    this.searching += 1;
    this.user.search(this.searched);
  }

  private take(): void {
    if (this.pendingText || this.searching > 0) {
      // What is typed narrows the list first.
      this.takeWhenFound = true;
      this.search();
      return;
    }
    const rows = this.chosen.size > 0 ? [...this.chosen].sort((a, b) => a - b) : [this.grid.row];
    if (rows[0]! >= 0 && this.out.count > 0) this.user.choose(rows);
  }

  private mark(row: number): void {
    if (row < 0) return;
    if (!this.chosen.delete(row)) this.chosen.add(row);
    const cells = this.grid.blocks.row(row);
    if (cells !== undefined) cells[0] = this.chosen.has(row) ? "1" : "0";
    this.tell();
    this.grid.draw();
  }

  marked(row: number): boolean {
    return this.chosen.has(row);
  }

  override press(press: Press): boolean {
    if (press.key === "Enter" && !(document.activeElement instanceof HTMLButtonElement)) {
      this.take();
      return true;
    }
    if (document.activeElement instanceof HTMLButtonElement) return false;
    const row = press.alt ? -1 : this.rowOf(press);
    if (row >= 0) {
      this.moving = true;
      this.grid.show(row);
      this.announce();
      return true;
    }
    if (press.key === " " && this.out.multiple && (this.moving || press.ctrl || this.input.value === "")) {
      this.mark(this.grid.row);
      const next = Math.min(this.grid.row + 1, this.out.count - 1);
      this.grid.show(next);
      this.moving = true;
      return true;
    }
    if (isCharacter(press) && document.activeElement !== this.input) this.input.focus();
    return false;
  }

  private rowOf(press: Press): number {
    if (this.out.count === 0) return -1;
    // Home and End belong to the text while there is one.
    const inText = document.activeElement === this.input && this.input.value !== "" && !press.ctrl;
    if (press.key === "Home" && !inText) return 0;
    if (press.key === "End" && !inText) return this.out.count - 1;
    return this.grid.rowFor(press.key, false);
  }

  // The row in which one stands, for who hears it while the focus is in the text.
  private announce(): void {
    const cells = this.grid.blocks.row(this.grid.row);
    if (cells !== undefined) this.input.setAttribute("aria-description", cells.slice(this.out.multiple ? 1 : 0).join(", "));
  }

  fetch(block: number): void {
    this.user.read(this.out.control, block * kBlock, kBlock);
  }
  pressedCell(row: number, column: number, event: MouseEvent): void {
    event.preventDefault();
    this.moving = true;
    this.grid.show(row, column);
    if (this.out.multiple && (column === 0 || event.ctrlKey)) this.mark(row);
    this.input.focus();
  }
  doublePressed(row: number): void {
    this.grid.show(row);
    this.chosen.clear();
    this.take();
  }

  override focusFirst(): void {
    this.input.focus();
  }
  override destroy(): void {
    window.clearTimeout(this.timer);
    this.grid.destroy();
    super.destroy();
  }
}
