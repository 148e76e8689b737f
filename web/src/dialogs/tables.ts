// Dialogs that show a table: the accounting lines to confirm, the rows of a drill-down.
import { el, icon } from "../dom.ts";
import type { ConfirmOut, DetailOut } from "../protocol.ts";
import type { Press } from "../keys.ts";
import { addAmounts, readAmount, showAmount } from "../text/money.ts";
import { GridView, type GridOwner } from "../grid/view.ts";
import { kBlock } from "../grid/blocks.ts";
import { columnKind, shownCell } from "./cells.ts";
import { Dialog } from "./dialog.ts";

function cell(text: string, className = ""): HTMLElement {
  return el("td", className === "" ? {} : { class: className }, text);
}

export class ConfirmDialog extends Dialog {
  private initial: HTMLButtonElement;

  constructor(out: ConfirmOut, answer: (value: string) => void) {
    super({ title: out.title || "Confirmação contábil", className: "dialog-confirm", cancel: () => answer("no") });
    const head = ["Débito", "Crédito", "Valor", "Histórico"].map((title) => el("th", { scope: "col", class: title === "Valor" ? "amount" : "" }, title));
    const rows = out.lines.map((line) => {
      const account = (code: string, description: string): HTMLElement =>
        el("td", {}, el("span", { class: "account" }, code), el("span", { class: "account-name" }, description));
      const row = el(
        "tr",
        { class: line.unknown ? "is-unknown" : "" },
        account(line.debit, line.debitDescription),
        account(line.credit, line.creditDescription),
        cell(line.amount, "amount"),
        cell(line.note),
      );
      if (line.unknown) row.lastElementChild!.prepend(el("span", { class: "flag" }, icon("warning"), "Conta não cadastrada"));
      return row;
    });
    const table = el("table", { class: "lines" }, el("thead", {}, el("tr", {}, ...head)), el("tbody", {}, ...rows));
    const side = (title: string, account: "debit" | "credit"): HTMLElement => {
      const sum = addAmounts(out.lines.filter((line) => line[account] !== "").map((line) => readAmount(line.amount)));
      return el("td", {}, title, " ", el("strong", {}, showAmount(sum)));
    };
    const total = el("tr", {}, side("Total a débito", "debit"), side("Total a crédito", "credit"), cell(""), cell(""));
    table.append(el("tfoot", {}, total));
    this.body.append(
      el("p", { class: "lead" }, "Confira os lançamentos contábeis antes de gravar."),
      el("div", { class: "lines-box", tabindex: "0", role: "region", "aria-label": "Lançamentos contábeis" }, table),
    );
    // What would go to an account that isn't there isn't posted by a mere Enter.
    const doubtful = out.lines.some((line) => line.unknown);
    const yes = this.addButton({ caption: "&Sim, gravar", primary: !doubtful, run: () => answer("yes") });
    const no = this.addButton({ caption: "&Não", primary: doubtful, run: () => answer("no") });
    this.initial = doubtful ? no : yes;
  }
  override focusFirst(): void {
    this.initial.focus();
  }
}

export class DetailDialog extends Dialog implements GridOwner {
  private grid: GridView;

  constructor(
    private out: DetailOut,
    close: () => void,
  ) {
    super({ title: out.title, className: "dialog-detail", cancel: close });
    this.grid = new GridView(this, out.title);
    this.body.append(this.grid.element);
    this.grid.setColumns(
      out.columns.map((name, at) => ({
        field: name,
        title: name.charAt(0).toUpperCase() + name.slice(1).toLowerCase().replace(/_/g, " "),
        width: Math.min(40, Math.max(8, ...out.rows.slice(0, 200).map((row) => (row[at] ?? "").length))),
        kind: columnKind(out.kinds?.[at]),
        readOnly: true,
        checked: "",
        unchecked: "",
      })),
    );
    this.grid.renew(1, out.rows.length);
    this.grid.show(out.rows.length > 0 ? 0 : -1);
    this.grid.scroller.addEventListener("copy", (event) => {
      const text = this.grid.textOf(...this.grid.selection);
      if (text !== null) event.clipboardData?.setData("text/plain", text);
      event.preventDefault();
    });
    this.addButton({ caption: "&Fechar", primary: true, run: close });
  }

  fetch(block: number): void {
    const rows = this.out.rows
      .slice(block * kBlock, (block + 1) * kBlock)
      .map((row) => row.map((value, at) => shownCell(value, this.out.kinds?.[at])));
    this.grid.store(1, block, rows);
  }
  pressedCell(row: number, column: number, event: MouseEvent): void {
    if (event.shiftKey) this.grid.anchor = this.grid.anchor < 0 ? this.grid.row : this.grid.anchor;
    else this.grid.anchor = -1;
    this.grid.show(row, column);
  }
  doublePressed(): void {}

  override press(press: Press): boolean {
    if (document.activeElement !== this.grid.scroller) return false;
    const { key, shift } = press;
    if (key === "ArrowLeft" || key === "ArrowRight") {
      this.grid.show(this.grid.row, this.grid.column + (key === "ArrowRight" ? 1 : -1));
      return true;
    }
    const last = this.out.rows.length - 1;
    const row = key === "Home" ? 0 : key === "End" ? last : this.grid.rowFor(key, press.ctrl);
    if (row < 0) return false;
    this.grid.anchor = shift ? (this.grid.anchor < 0 ? this.grid.row : this.grid.anchor) : -1;
    this.grid.show(row);
    return true;
  }
  override focusFirst(): void {
    this.grid.scroller.focus();
  }
  override destroy(): void {
    this.grid.destroy();
    super.destroy();
  }
}
