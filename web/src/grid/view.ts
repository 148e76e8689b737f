// The grid: a window over any number of rows. The scroller has the focus; the current cell is its active
// descendant; rows are drawn where they are seen and nowhere else.
import { lettersScale, rowHeight } from "../display.ts";
import { el, uniqueId } from "../dom.ts";
import { showCount } from "../text/money.ts";
import { Blocks, kBlock } from "./blocks.ts";
import { holds, joined, type Range } from "./chosen.ts";
import { fittedWidths, kNarrowest, naturalWidth, type Column } from "./columns.ts";
import { Scroll } from "./scroll.ts";

export interface GridOwner {
  // Asks for a block of rows.
  fetch(block: number): void;
  pressedCell(row: number, column: number, event: MouseEvent): void;
  doublePressed(row: number, column: number): void;
  titlePressed?(column: number): void;
  titleMenu?(event: MouseEvent, column: number): void;
  contextMenu?(event: MouseEvent, row: number, column: number): void;
  // The width that the user gave a column, in pixels; null for none.
  storedWidth?(column: Column): number | null;
  storeWidth?(column: Column, width: number | null): void;
  // A row marked in a list of several choices.
  marked?(row: number): boolean;
  // Other rows are chosen.
  chose?(ranges: Range[]): void;
}

export type Sorted = "ascending" | "descending" | "none";

// The page's letters, in pixels.
const kLetters = 13;

interface DrawnRow {
  element: HTMLElement;
  cells: HTMLElement[];
  texts: (string | null)[];
  row: number;
  // Rows from the first place.
  place: number;
  // The cell in which the user stands, -1 in other rows.
  cell: number;
}

export class GridView {
  readonly element: HTMLElement;
  readonly scroller: HTMLElement;
  readonly blocks = new Blocks();
  readonly scroll = new Scroll(rowHeight());
  private scale = 1;
  columns: Column[] = [];
  row = -1;
  column = 0;
  // The other end of a stretch of chosen rows, -1 without one, and those that were chosen apart from it.
  anchor = -1;
  kept: Range[] = [];
  // The column by which the rows are ordered.
  private sort: { field: string; sorted: Sorted } = { field: "", sorted: "none" };
  // As the columns would be, which of them the user has sized, and as they are shown in the room there is.
  private widths: number[] = [];
  private sized: boolean[] = [];
  private shown: number[] = [];
  private room = 0;
  private head: HTMLElement;
  private spacer: HTMLElement;
  private port: HTMLElement;
  // All rows, moved as one; a row's own place changes only when it is used for another.
  private rows: HTMLElement;
  private empty: HTMLElement;
  private status: HTMLElement;
  private sums = el("div", { class: "grid-sums", role: "status" });
  // Beside the count of the rows.
  readonly foot: HTMLElement;
  private drawn: DrawnRow[] = [];
  private id = uniqueId("grid");
  private frame = 0;
  private observer: ResizeObserver;
  private fetchTimer = 0;

  constructor(
    private owner: GridOwner,
    label: string,
    emptyText = "Nenhum registro",
  ) {
    this.head = el("div", { class: "grid-head", role: "row", "aria-rowindex": "1" });
    this.rows = el("div", { class: "grid-rows", role: "presentation" });
    this.port = el("div", { class: "grid-port", role: "rowgroup" }, this.rows);
    this.spacer = el("div", { class: "grid-spacer", role: "presentation" }, this.port);
    this.empty = el("div", { class: "grid-empty" }, emptyText);
    this.status = el("div", { class: "grid-status", "aria-hidden": "true" });
    this.scroller = el(
      "div",
      { class: "grid-scroller", role: "grid", tabindex: "0", "aria-label": label },
      el("div", { class: "grid-headgroup", role: "rowgroup" }, this.head),
      this.spacer,
    );
    this.foot = el("div", { class: "grid-foot" }, this.sums, this.status);
    this.element = el("div", { class: "grid" }, this.scroller, this.empty, this.foot);
    this.scroller.addEventListener("scroll", () => this.scrolled(), { passive: true });
    this.scroller.addEventListener("wheel", (event) => this.wheel(event), { passive: false });
    this.port.addEventListener("mousedown", (event) => this.pointer(event));
    this.port.addEventListener("dblclick", (event) => {
      const at = this.cellAt(event);
      if (at !== null) this.owner.doublePressed(at.row, at.column);
    });
    this.port.addEventListener("contextmenu", (event) => {
      const at = this.cellAt(event);
      if (at !== null) this.owner.contextMenu?.(event, at.row, at.column);
    });
    this.observer = new ResizeObserver(() => this.measure());
    this.observer.observe(this.scroller);
    window.addEventListener("orv-display", this.redraw);
  }

  destroy(): void {
    this.observer.disconnect();
    window.removeEventListener("orv-display", this.redraw);
    cancelAnimationFrame(this.frame);
    window.clearTimeout(this.fetchTimer);
  }

  // The user has set another height of rows or letters.
  private redraw = (): void => {
    const first = this.scroll.first;
    this.scroll.rowHeight = rowHeight();
    this.spacer.style.height = `${this.scroll.height}px`;
    for (const one of this.drawn) one.place = -1;
    this.told = "";
    this.setColumns(this.columns);
    this.bar = this.scroll.moveTo(first * this.scroll.rowHeight);
    this.measure();
  };

  // The height of the letters in pixels, 0 for the page's own.
  set letters(pixels: number) {
    const scale = pixels > 0 ? pixels / kLetters : 1;
    if (scale === this.scale) return;
    this.scale = scale;
    if (pixels > 0) this.scroller.style.setProperty("--grid-letters", `${pixels}px`);
    else this.scroller.style.removeProperty("--grid-letters");
    // The columns are as wide as their letters ask.
    this.told = "";
  }

  set label(text: string) {
    this.scroller.setAttribute("aria-label", text);
  }

  // --- Columns.

  setColumns(columns: Column[]): void {
    const told = this.look(columns);
    if (told === this.told) return;
    this.told = told;
    this.columns = columns;
    if (this.column >= columns.length) this.column = Math.max(0, columns.length - 1);
    const stored = columns.map((column) => this.owner.storedWidth?.(column) ?? null);
    this.widths = columns.map((column, at) => stored[at] ?? this.natural(column));
    this.sized = stored.map((width) => width !== null);
    this.scroller.setAttribute("aria-colcount", String(columns.length));
    this.head.replaceChildren(...columns.map((column, at) => this.title(column, at)));
    this.markTitles();
    this.rows.replaceChildren();
    this.drawn = [];
    this.blocks.clear();
    this.spread();
    this.draw();
  }

  private told = "[]";
  // The columns with the widths that the user gave them.
  private look(columns: Column[]): string {
    return JSON.stringify(columns.map((column) => ({ ...column, words: [...(column.words ?? [])], own: this.owner.storedWidth?.(column) })));
  }

  setSort(field: string, sorted: Sorted): void {
    this.sort = { field, sorted };
    this.markTitles();
  }
  private markTitles(): void {
    this.columns.forEach(({ field }, at) => {
      const sorted = field === this.sort.field ? this.sort.sorted : "none";
      const title = this.head.children[at];
      if (sorted === "none") title?.removeAttribute("aria-sort");
      else title?.setAttribute("aria-sort", sorted);
    });
  }

  private title(column: Column, at: number): HTMLElement {
    const text = el("span", { class: "grid-title-text" }, column.title);
    const cell = el(
      "div",
      { class: `grid-title kind-${column.kind}`, role: "columnheader", "aria-colindex": String(at + 1), title: column.title },
      text,
    );
    cell.addEventListener("mousedown", (event) => event.preventDefault());
    cell.addEventListener("click", () => this.owner.titlePressed?.(at));
    cell.addEventListener("contextmenu", (event) => this.owner.titleMenu?.(event, at));
    if (this.owner.storeWidth !== undefined) {
      const grip = el("span", { class: "grid-grip", "aria-hidden": "true" });
      grip.addEventListener("pointerdown", (event) => this.drag(event, at));
      grip.addEventListener("click", (event) => event.stopPropagation());
      grip.addEventListener("dblclick", (event) => {
        event.stopPropagation();
        this.owner.storeWidth?.(column, null);
        this.told = this.look(this.columns);
        this.widths[at] = this.natural(column);
        this.sized[at] = false;
        this.spread();
      });
      cell.append(grip);
    }
    return cell;
  }

  private natural(column: Column): number {
    return Math.round(naturalWidth(column) * Math.max(this.scale, lettersScale()));
  }

  private drag(event: PointerEvent, at: number): void {
    event.preventDefault();
    event.stopPropagation();
    const grip = event.target as HTMLElement;
    const from = event.clientX;
    const width = this.shown[at]!;
    grip.setPointerCapture(event.pointerId);
    const move = (now: PointerEvent): void => {
      // The others stay as they are seen while one is dragged.
      this.widths = [...this.shown];
      this.widths[at] = Math.max(kNarrowest, Math.round(width + now.clientX - from));
      this.sized[at] = true;
      this.spread();
    };
    const end = (): void => {
      grip.removeEventListener("pointermove", move);
      grip.removeEventListener("pointerup", end);
      grip.removeEventListener("pointercancel", end);
      if (this.widths[at] === width) return;
      this.owner.storeWidth?.(this.columns[at]!, this.widths[at]!);
      this.told = this.look(this.columns);
    };
    grip.addEventListener("pointermove", move);
    grip.addEventListener("pointerup", end);
    grip.addEventListener("pointercancel", end);
  }

  // As wide as it is shown.
  widthOf(column: number): number {
    return this.shown[column] ?? 0;
  }

  private spread(): void {
    this.shown = this.room > 0 ? fittedWidths(this.columns, this.widths, this.sized, this.room) : this.widths;
    const template = this.shown.map((width) => `${width}px`).join(" ") + " 1fr";
    const total = this.shown.reduce((sum, width) => sum + width, 0);
    this.scroller.style.setProperty("--grid-columns", template);
    this.scroller.style.setProperty("--grid-width", `${total}px`);
  }

  // --- Rows.

  renew(version: number | string, count: number): void {
    if (version === this.blocks.version && count === this.blocks.count) return;
    if (count !== this.blocks.count) this.kept = [];
    this.blocks.renew(version, count);
    this.scroll.count = count;
    this.scroller.setAttribute("aria-rowcount", String(count + 1));
    this.spacer.style.height = `${this.scroll.height}px`;
    if (this.row >= count) this.row = count - 1;
    if (this.anchor >= count) this.anchor = -1;
    this.bar = this.scroll.moveTo(this.scroll.top);
    this.draw();
    // Asked for without waiting for the frame.
    this.askMissing();
  }

  store(version: number | string, block: number, rows: string[][], numbers?: number[]): void {
    if (this.blocks.store(version, block, rows, numbers)) this.drawNow();
  }

  // Makes a row current for the eye, and brings it into sight.
  show(row: number, column = this.column, reveal = true): void {
    const before = this.column;
    this.row = Math.min(row, this.scroll.count - 1);
    this.column = Math.min(Math.max(column, 0), Math.max(0, this.columns.length - 1));
    if (reveal && this.row >= 0 && this.scroll.view > 0) this.bar = this.scroll.reveal(this.row);
    if (reveal && this.column !== before) this.revealColumn();
    this.draw();
  }

  private revealColumn(): void {
    let left = 0;
    for (let at = 0; at < this.column; ++at) left += this.shown[at]!;
    const right = left + (this.shown[this.column] ?? 0);
    const box = this.scroller;
    if (left < box.scrollLeft) box.scrollLeft = left;
    else if (right > box.scrollLeft + box.clientWidth) box.scrollLeft = right - box.clientWidth;
  }

  // Whether the current row was seen when the grid was seen last.
  private inSight = true;

  // Where the scroll bar belongs, and where it was put last.
  private bar = 0;
  private barAt = 0;

  private measure(): void {
    if (this.scroller.clientWidth !== this.room) {
      this.room = this.scroller.clientWidth;
      this.spread();
    }
    const view = Math.max(0, this.scroller.clientHeight - this.head.offsetHeight);
    if (view === this.scroll.view) return;
    if (this.scroll.view > 0) this.inSight = this.row >= this.scroll.first && this.row <= this.scroll.last;
    this.scroll.view = view;
    this.port.style.height = `${view}px`;
    this.element.classList.toggle("is-tall", view >= 6 * this.scroll.rowHeight);
    this.bar = this.scroll.moveTo(this.scroll.top);
    // The current row stays in sight when the grid grows or shrinks around it, or was hidden meanwhile.
    if (view > 0 && this.row >= 0 && (this.inSight || document.activeElement === this.scroller)) this.bar = this.scroll.reveal(this.row);
    this.barAt = -1;
    this.draw();
  }

  private scrolled(): void {
    // What the bar did before a key moved the rows is told late, and is past.
    if (this.bar !== this.barAt && this.frame !== 0) return;
    const now = this.scroller.scrollTop;
    if (!this.scroll.scrolled(now)) return;
    this.bar = this.barAt = now;
    this.draw();
  }

  private wheel(event: WheelEvent): void {
    if (!this.scroll.scaled || event.ctrlKey || event.shiftKey || event.deltaY === 0) return;
    event.preventDefault();
    const unit = event.deltaMode === 1 ? this.scroll.rowHeight : event.deltaMode === 2 ? this.scroll.view : 1;
    this.bar = this.scroll.moveTo(this.scroll.top + event.deltaY * unit);
    this.draw();
  }

  draw(): void {
    if (this.frame === 0) this.frame = requestAnimationFrame(() => this.drawNow());
  }

  drawNow(): void {
    cancelAnimationFrame(this.frame);
    this.frame = 0;
    if (this.bar !== this.barAt) this.scroller.scrollTop = this.barAt = this.bar;
    const { first, last } = this.scroll;
    // The rows stand from a round number on, so that their places are small however far one scrolls.
    const base = first - (first % 1000);
    const wanted = this.scroll.count === 0 || this.scroll.view === 0 ? 0 : last - first + 1;
    this.empty.hidden = this.scroll.count > 0;
    this.element.classList.toggle("is-empty", this.scroll.count === 0);
    while (this.drawn.length < wanted) this.drawn.push(this.newRow());
    while (this.drawn.length > wanted) this.drawn.pop()!.element.remove();
    const byRow = [...this.drawn];
    // A row that stays in sight keeps its element, so that nothing is rewritten.
    const order: (DrawnRow | undefined)[] = new Array<DrawnRow | undefined>(wanted);
    const free: DrawnRow[] = [];
    for (const one of byRow) {
      const at = one.row - first;
      if (at >= 0 && at < wanted && order[at] === undefined) order[at] = one;
      else free.push(one);
    }
    const chosen = this.chosen.length > 0 ? this.chosen : [this.selection];
    for (let at = 0; at < wanted; ++at) {
      const one = order[at] ?? free.pop()!;
      const row = first + at;
      this.write(one, row, holds(chosen, row));
      if (one.place !== row - base) {
        one.place = row - base;
        one.element.style.top = `${one.place * this.scroll.rowHeight}px`;
      }
      order[at] = one;
    }
    this.drawn = order as DrawnRow[];
    this.rows.style.transform = `translateY(${Math.round(base * this.scroll.rowHeight - this.scroll.top)}px)`;
    // In the order of the rows for who reads them one by one.
    let before: Element | null = null;
    for (const one of this.drawn) {
      const next: Element | null = before === null ? this.rows.firstElementChild : before.nextElementSibling;
      if (next !== one.element) this.rows.insertBefore(one.element, next);
      before = one.element;
    }
    this.describe();
    this.askMissing();
  }

  get selection(): [number, number] {
    if (this.anchor < 0) return [this.row, this.row];
    return [Math.min(this.anchor, this.row), Math.max(this.anchor, this.row)];
  }

  // The rows that the user has chosen, nothing where he only stands in one.
  get chosen(): Range[] {
    return joined(this.anchor < 0 ? this.kept : [...this.kept, this.selection]);
  }
  choose(ranges: Range[]): void {
    this.kept = ranges;
    this.anchor = -1;
    this.draw();
  }

  // What the chosen rows add up to, "" for nothing.
  set added(text: string) {
    if (this.sums.textContent !== text) this.sums.textContent = text;
    this.sums.title = text;
    this.element.classList.toggle("has-sums", text !== "");
  }

  private chosenTold = "-1|";
  private describe(): void {
    const chosen = this.chosen;
    const now = `${this.blocks.version}|${chosen.join("|")}`;
    if (now !== this.chosenTold) {
      this.chosenTold = now;
      this.owner.chose?.(chosen);
    }
    if (this.row >= 0 && this.row >= this.scroll.first && this.row <= this.scroll.last && this.columns.length > 0) {
      this.scroller.setAttribute("aria-activedescendant", this.cellId(this.row, this.column));
    } else {
      this.scroller.removeAttribute("aria-activedescendant");
    }
    const count = this.scroll.count;
    const status = count === 0 ? "" : this.row < 0 ? showCount(count) : `${showCount(this.row + 1)} de ${showCount(count)}`;
    if (this.status.textContent !== status) this.status.textContent = status;
  }

  private cellId(row: number, column: number): string {
    return `${this.id}-${row}-${column}`;
  }

  private newRow(): DrawnRow {
    const cells = this.columns.map((column, at) =>
      el("div", { class: `grid-cell kind-${column.kind}`, role: "gridcell", "aria-colindex": String(at + 1) }),
    );
    const element = el("div", { class: "grid-row", role: "row", "aria-selected": "false" }, ...cells);
    this.rows.append(element);
    return { element, cells, texts: cells.map(() => null), row: -1, place: -1, cell: -1 };
  }

  private write(one: DrawnRow, row: number, among: boolean): void {
    const values = this.blocks.row(row);
    const current = row === this.row;
    const chosen = this.owner.marked?.(row) ?? among;
    if (one.row !== row) {
      one.row = row;
      one.element.setAttribute("aria-rowindex", String(row + 2));
      one.cells.forEach((cell, at) => (cell.id = this.cellId(row, at)));
    }
    const look = `grid-row${row % 2 === 1 ? " is-odd" : ""}${current ? " is-current" : ""}${chosen ? " is-selected" : ""}${values === undefined ? " is-loading" : ""}`;
    if (one.element.className !== look) {
      one.element.className = look;
      one.element.setAttribute("aria-selected", String(chosen));
    }
    const here = current ? this.column : -1;
    if (one.cell !== here) {
      one.cells[one.cell]?.classList.remove("is-cell");
      one.cells[here]?.classList.add("is-cell");
      one.cell = here;
    }
    one.cells.forEach((cell, at) => {
      const text = values?.[at] ?? "";
      if (one.texts[at] === text) return;
      one.texts[at] = text;
      this.writeCell(cell, this.columns[at]!, text, values !== undefined);
    });
  }

  private writeCell(cell: HTMLElement, column: Column, text: string, there: boolean): void {
    if (column.kind === "check") {
      const on = there && text === column.checked;
      cell.textContent = "";
      if (there) cell.append(el("span", { class: `tick ${on ? "is-on" : ""}`, role: "img", "aria-label": on ? "Sim" : "Não" }));
      return;
    }
    const code = column.words?.get(text);
    if (code !== undefined) {
      cell.replaceChildren(el("span", { class: `chip tone-${code.tone || "plain"}` }, code.word));
      cell.title = "";
      return;
    }
    cell.textContent = text;
    cell.title = text.length > 24 ? text : "";
    if (column.kind === "number") cell.classList.toggle("is-negative", text.startsWith("-"));
  }

  private askMissing(): void {
    window.clearTimeout(this.fetchTimer);
    const margin = this.scroll.page;
    const ask = (): void => {
      const needed = this.blocks.missing(this.scroll.first, this.scroll.last);
      const near = this.blocks.missing(this.scroll.first - margin, this.scroll.last + margin);
      const next = needed[0] ?? near[0];
      if (next !== undefined && this.scroll.view > 0) this.owner.fetch(next);
    };
    // While the bar is dragged, only where it comes to rest; rows that stand there and have changed, at once.
    const stale = this.blocks.missing(this.scroll.first, this.scroll.last).some((block) => this.blocks.row(block * kBlock) !== undefined);
    this.fetchTimer = window.setTimeout(ask, this.blocks.held === 0 || stale ? 0 : 12);
  }

  // --- Pointer.

  private cellAt(event: MouseEvent): { row: number; column: number } | null {
    const cell = (event.target as HTMLElement).closest<HTMLElement>(".grid-cell");
    const element = (event.target as HTMLElement).closest<HTMLElement>(".grid-row");
    const one = this.drawn.find((drawn) => drawn.element === element);
    if (one === undefined) return null;
    return { row: one.row, column: cell === null ? this.column : one.cells.indexOf(cell) };
  }

  private pointer(event: MouseEvent): void {
    const at = this.cellAt(event);
    if (at !== null) this.owner.pressedCell(at.row, at.column, event);
  }

  // The place of a cell that is drawn, for an editor over it.
  cellElement(row: number, column: number): HTMLElement | null {
    return this.drawn.find((one) => one.row === row)?.cells[column] ?? null;
  }

  // The text of rows as a spreadsheet takes it, null where some aren't at hand.
  textOf(from: number, to: number): string | null {
    const lines: string[] = [];
    for (let row = from; row <= to; ++row) {
      const values = this.blocks.fresh(row) ? this.blocks.row(row) : undefined;
      if (values === undefined) return null;
      lines.push(this.columns.map((column, at) => this.plainCell(column, values[at] ?? "")).join("\t"));
    }
    return lines.join("\n");
  }

  private plainCell(column: Column, text: string): string {
    if (column.kind === "check") return text === column.checked ? "Sim" : "Não";
    return (column.words?.get(text)?.word ?? text).replace(/[\t\r\n]+/g, " ");
  }

  // "" where it isn't at hand.
  cellText(row: number, column: number): string {
    const text = this.blocks.row(row)?.[column];
    return text === undefined ? "" : this.plainCell(this.columns[column]!, text);
  }

  get titles(): string {
    return this.columns.map((column) => column.title).join("\t");
  }

  // The row that a key of movement asks for, -1 when the key is another.
  rowFor(key: string, ctrl: boolean): number {
    const last = this.scroll.count - 1;
    const now = Math.max(this.row, 0);
    switch (key) {
      case "ArrowDown":
        return ctrl ? last : Math.min(this.row + 1, last);
      case "ArrowUp":
        return ctrl ? 0 : Math.max(now - 1, 0);
      case "PageDown":
        return Math.min(now + this.scroll.page - 1 || 1, last);
      case "PageUp":
        return Math.max(now - (this.scroll.page - 1 || 1), 0);
      default:
        return -1;
    }
  }

  static readonly block = kBlock;
}
