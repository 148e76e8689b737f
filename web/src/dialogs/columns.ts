// The columns of a grid as a user wants them, and its rows as a file.
import { el, uniqueId } from "../dom.ts";
import type { Press } from "../keys.ts";
import { Dialog } from "./dialog.ts";

export interface ColumnChoice {
  field: string;
  title: string;
  hidden: boolean;
  // One into which the user types stays in sight.
  fixed: boolean;
  sorted: "ascending" | "descending" | "none";
}

export interface ColumnsUser {
  // All columns in their order.
  choices(): ColumnChoice[];
  hide(field: string, hidden: boolean): void;
  move(field: string, by: 1 | -1): void;
  widen(field: string, by: number): void;
  sort(field: string): void;
  restore(): void;
  // As "csv" or "xlsx".
  save(format: string): void;
}

const kStep = 16;

export class ColumnsDialog extends Dialog {
  private list: HTMLElement;
  private id = uniqueId("column");
  private at = 0;

  constructor(
    title: string,
    private user: ColumnsUser,
    close: () => void,
  ) {
    super({ title, className: "dialog-columns", cancel: close });
    const hint = el(
      "p",
      { class: "lead", id: `${this.id}-hint` },
      "Espaço mostra ou esconde a coluna, Ctrl+↑ e Ctrl+↓ mudam de lugar, + e − mudam a largura, S ordena por ela.",
    );
    this.list = el("ul", { class: "columns-list", role: "listbox", tabindex: "0", "aria-label": "Colunas", "aria-multiselectable": "true", "aria-describedby": hint.id });
    this.list.addEventListener("mousedown", (event) => {
      const row = (event.target as HTMLElement).closest("li");
      if (row === null) return;
      this.at = [...this.list.children].indexOf(row);
      if ((event.target as HTMLElement).closest(".tick") !== null) this.toggle();
      this.draw();
    });
    const tool = (caption: string, run: (field: string) => void): HTMLElement => {
      const button = el("button", { type: "button", class: "button" }, caption);
      button.addEventListener("click", () => this.change(run));
      return button;
    };
    this.body.append(
      hint,
      el(
        "div",
        { class: "columns-box" },
        this.list,
        el(
          "div",
          { class: "columns-tools" },
          tool("Mostrar ou esconder", () => this.toggle()),
          tool("Para cima", (field) => this.move(field, -1)),
          tool("Para baixo", (field) => this.move(field, 1)),
          tool("Mais larga", (field) => user.widen(field, kStep)),
          tool("Mais estreita", (field) => user.widen(field, -kStep)),
          tool("Ordenar", (field) => user.sort(field)),
        ),
      ),
    );
    this.addButton({ caption: "&Restaurar", run: () => this.change(() => user.restore()) });
    for (const [caption, format] of [["&CSV", "csv"], ["&Excel", "xlsx"]] as const) {
      this.addButton({
        caption,
        run: () => {
          close();
          user.save(format);
        },
      });
    }
    this.addButton({ caption: "&Fechar", primary: true, run: close });
    this.draw();
  }

  private get field(): string {
    return this.user.choices()[this.at]?.field ?? "";
  }
  private change(run: (field: string) => void): void {
    run(this.field);
    this.draw();
  }
  private toggle(): void {
    const choice = this.user.choices()[this.at];
    if (choice !== undefined && !choice.fixed) this.user.hide(choice.field, !choice.hidden);
  }
  private move(field: string, by: 1 | -1): void {
    this.user.move(field, by);
    this.at = this.user.choices().findIndex((choice) => choice.field === field);
  }

  // Anew, also when the desk has ordered the rows meanwhile.
  draw(): void {
    const choices = this.user.choices();
    this.at = Math.min(Math.max(this.at, 0), choices.length - 1);
    this.list.replaceChildren(
      ...choices.map(({ title, hidden, fixed, sorted }, at) => {
        const mark = sorted === "none" ? "" : sorted === "ascending" ? " ▲" : " ▼";
        return el(
          "li",
          { role: "option", id: `${this.id}-${at}`, "aria-selected": String(!hidden), "aria-disabled": String(fixed), class: at === this.at ? "is-current" : "" },
          el("span", { class: `tick ${hidden ? "" : "is-on"}`, "aria-hidden": "true" }),
          `${title || "Sem título"}${mark}`,
        );
      }),
    );
    this.list.setAttribute("aria-activedescendant", `${this.id}-${this.at}`);
    this.list.children[this.at]?.scrollIntoView({ block: "nearest" });
  }

  override press({ key, ctrl, alt }: Press): boolean {
    if (document.activeElement !== this.list || alt) return false;
    const by = key === "ArrowDown" ? 1 : key === "ArrowUp" ? -1 : 0;
    if (by !== 0 && ctrl) this.change((field) => this.move(field, by));
    else if (ctrl) return false;
    else if (by !== 0 || key === "Home" || key === "End") {
      this.at = key === "Home" ? 0 : key === "End" ? this.list.childElementCount - 1 : this.at + by;
      this.draw();
    } else if (key === " ") this.change(() => this.toggle());
    else if (key === "+" || key === "-") this.change((field) => this.user.widen(field, key === "+" ? kStep : -kStep));
    else if (key.toLowerCase() === "s") this.change((field) => this.user.sort(field));
    else return false;
    return true;
  }
  override focusFirst(): void {
    this.list.focus();
  }
}

